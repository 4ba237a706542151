#include "icons/monitor/front_end.h"
#include "icons/monitor/monitor_wnd.h"
#include "icons/tray/tray_front_end.h"

namespace {
constinit MonitorFrontEnd* pFrontEndInForce = &trayFrontEnd;
} // namespace

MonitorFrontEnd* GetMonitorFrontEnd() { return pFrontEndInForce; }

void SetMonitorFrontEnd(MonitorFrontEnd* pNew) { pFrontEndInForce = pNew; }

void ReportCaptureOutcome(const wchar_t* pszText) {
    MyMonitor_Wnd* pMonitor = MyMonitor_Wnd::GetCurrent();
    if (!pMonitor || !pMonitor->GetSnapshotAnnounce()) return;
    pMonitor->SetSnapshotAnnounce(0);
    if (pFrontEndInForce) pFrontEndInForce->OnCaptureOutcome(pszText);
}
