#pragma once
#include "icons/monitor/front_end.h"

/// The monitor's face as the user has it: the icon in the notification area with its balloons, and
/// the menu. Has no state of its own: the icon is MyTBIcon's.
class TrayFrontEnd : public MonitorFrontEnd {
  public:
    void OnMonitorStart() override;
    void OnRoundStart(MyMonitor_Wnd& monitor, bool bAnnounce) override;
    void OnMenuRequest(MyMonitor_Wnd& monitor) override;
    /// Silent without an icon, which may have closed by itself.
    void OnCaptureOutcome(const wchar_t* pszText) override;
    void OnMonitorClose() override;
    void OnRoundEnd() override;
};
