#include "icons/engine/monitor.h"
#include "icons/agent/desktop_shared_data.h"
#include "icons/monitor/command_message.h"
#include "icons/monitor/command_turn.h"
#include "icons/monitor/desktop_discovery.h"
#include "icons/monitor/desktop_hook.h"
#include "icons/monitor/front_end.h"
#include "icons/monitor/monitor_wnd.h"
#include "icons/tray/tray_front_end.h"
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

/// Also ends a restart: a program whose shell is too slow to have its windows ready says so.
bool FindDesktop(HWND hwndParent, CommandTurn& turn) {
    DesktopSharedData& shared = GetDesktopSharedData();
    if (FindDesktopShellWnd(&shared.hwndView, &shared.hwndListView)) return true;
    turn.Release(); // nobody waits for the user's answer
    // The blank at the end is part of the text.
    Msg(hwndParent, MB_ICONERROR,
        L"Cannot obtain the desktop properties. Please report this error to technical support. ");
    return false;
}

/// From the window that stands to the end of the message loop.
void Watch(MyMonitor_Wnd& monitor, MonitorFrontEnd& frontEnd, bool bAnnounce, CommandTurn& turn) {
    GetDesktopSharedData().hwndMonitor = monitor; // before the first capture is asked for
    monitor.RegisterNotification();
    if (bAnnounce) monitor.SetSnapshotAnnounce(0);
    frontEnd.OnRoundStart(monitor, bAnnounce);
    monitor.RequestCapture();
    turn.Release(); // commands find the window
    RunMessageLoop();
    monitor.EndNotification();
    frontEnd.OnRoundEnd();
}

/// One round: on the desktop that stands now, until the monitor closes or the shell restarts. False
/// when the desktop's windows can't be found.
bool RunRound(MonitorFrontEnd& frontEnd, HWND hwndParent, int quiet, CommandTurn& turn) {
    if (!FindDesktop(hwndParent, turn)) return false;
    MyMonitor_Wnd monitor(frontEnd);
    monitor.SetHook(1);
    // The hook goes before the window object, on every way out.
    ScopeExit unhook([&] { monitor.SetHook(0); });
    // A window that cannot be created ends the round without a word, and with it DoMonitor.
    if (monitor.CreateHidden(hwndParent)) Watch(monitor, frontEnd, !quiet, turn);
    return true;
}
} // namespace

void DoMonitor(HWND hwndParent, int quiet) {
    TrayFrontEnd frontEnd;
    RunMonitor(frontEnd, hwndParent, quiet);
}

void RunMonitor(MonitorFrontEnd& frontEnd, HWND hwndParent, int quiet) {
    // A command that works without a monitor is let come to its end; the first round's window ends
    // the turn. A name that somebody else holds does not keep the monitor from starting.
    CommandTurn turn;
    static_cast<void>(turn.Take(kCommandTimeoutMs));
    ClaimDesktopSharedData(); // without, no hook is set either
    GetDesktopSharedData().nCompanyMsg = GetMyCompanyMsgId();
    RegisterTaskbarCreated();
    ForgetStaleDesktopHook();
    frontEnd.OnMonitorStart();
    while (GetRestartFlag()) {
        SetRestartFlag(false);
        if (!RunRound(frontEnd, hwndParent, quiet, turn)) break;
    }
    GetDesktopSharedData().hwndMonitor = nullptr;
}
