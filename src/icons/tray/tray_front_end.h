#pragma once
#include "icons/monitor/front_end.h"

/// The monitor's face as the user has it: the icon in the notification area with its balloons, and
/// the menu. The one that the process starts with.
class TrayFrontEnd : public MonitorFrontEnd {
  public:
    constexpr TrayFrontEnd() noexcept = default;

    void OnMonitorStart() override;
    void OnRoundStart(MyMonitor_Wnd& monitor, int bAnnounce) override;
    void OnMenuRequest(MyMonitor_Wnd& monitor) override;
    void OnCaptureOutcome(const wchar_t* pszText) override;
    void OnMonitorClose() override;
    void OnRoundEnd() override;

    /// Says pszText in a balloon on the icon, for some seconds. Silent without an icon.
    static void ShowBalloon(const wchar_t* pszText);
};

extern TrayFrontEnd trayFrontEnd;
