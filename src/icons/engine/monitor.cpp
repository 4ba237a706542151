#include "icons/engine/monitor.h"
#include "icons/agent/desktop_shared_data.h"
#include "icons/monitor/desktop_discovery.h"
#include "icons/monitor/desktop_hook.h"
#include "icons/monitor/front_end.h"
#include "icons/monitor/monitor_wnd.h"
#include "runtime/base/ownership.h"
#include "runtime/messages/msg.h"
#include "wnd/core/company_msg.h"

namespace {
void RunMessageLoop() {
    MSG msg;
    while (::GetMessageW(&msg, nullptr, 0, 0) > 0) {
        ::TranslateMessage(&msg);
        ::DispatchMessageW(&msg);
    }
}

int FindDesktop(HWND hwndParent) {
    if (FindDesktopShellWnd(&desktopSharedData.hwndView, &desktopSharedData.hwndListView)) {
        return 1;
    }
    // The blank at the end is part of the text.
    Msg(hwndParent, MB_ICONERROR,
        L"Cannot obtain the desktop properties. Please report this error to technical support. ");
    return 0;
}

/// From the window that stands to the end of the message loop.
void Watch(MyMonitor_Wnd& monitor, int bAnnounce) {
    MonitorFrontEnd* pFrontEnd = GetMonitorFrontEnd();
    desktopSharedData.hwndMonitor = monitor;
    monitor.RegisterNotification();
    if (bAnnounce) monitor.SetSnapshotAnnounce(0);
    if (pFrontEnd) pFrontEnd->OnRoundStart(monitor, bAnnounce);
    PostMyCompanyMsg(desktopSharedData.hwndListView, kCodeCapture, 0);
    RunMessageLoop();
    monitor.EndNotification();
    if (pFrontEnd) pFrontEnd->OnRoundEnd();
}

/// One round: on the desktop that stands now, until the monitor closes or the shell restarts. 0
/// when the desktop's windows can't be found.
int RunRound(HWND hwndParent, int quiet) {
    if (!FindDesktop(hwndParent)) return 0;
    MyMonitor_Wnd monitor;
    monitor.SetHook(1);
    // The hook goes before the window object, on every way out.
    ScopeExit unhook([&] { monitor.SetHook(0); });
    if (monitor.CreateHidden(hwndParent)) Watch(monitor, !quiet);
    return 1;
}
} // namespace

void DoMonitor(HWND hwndParent, int quiet) {
    desktopSharedData.nCompanyMsg = GetMyCompanyMsgId();
    RegisterTaskbarCreated();
    ForgetStaleDesktopHook();
    if (MonitorFrontEnd* pFrontEnd = GetMonitorFrontEnd()) pFrontEnd->OnMonitorStart();
    while (GetRestartFlag()) {
        SetRestartFlag(0);
        if (!RunRound(hwndParent, quiet)) break;
    }
    desktopSharedData.hwndMonitor = nullptr;
}
