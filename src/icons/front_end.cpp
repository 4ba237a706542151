#include "icons/front_end.h"
#include "icons/monitor_wnd.h"

namespace {
constinit MonitorFrontEnd* pFrontEndInForce = nullptr;
} // namespace

MonitorFrontEnd* GetMonitorFrontEnd() { return pFrontEndInForce; }

void SetMonitorFrontEnd(MonitorFrontEnd* pNew) { pFrontEndInForce = pNew; }

void ReportCaptureOutcome(const wchar_t* pszText) {
    MyMonitor_Wnd* pMonitor = MyMonitor_Wnd::GetCurrent();
    if (!pMonitor || !pMonitor->GetSnapshotAnnounce()) return;
    pMonitor->SetSnapshotAnnounce(0);
    if (pFrontEndInForce) pFrontEndInForce->OnCaptureOutcome(pszText);
}
