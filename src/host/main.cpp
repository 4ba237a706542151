// The program: it maps the library beside it, and leaves the work to that.

#include "app/identity/product_info.h"
#include "app/instance/single_instance.h"
#include "app/launch/auto_run.h"
#include "app/update/update_check.h"
#include "host/command_line.h"
#include "host/commands/exit_code.h"
#include "host/commands/output.h"
#include "host/commands/run_command.h"
#include "host/displays_switch.h"
#include "host/library.h"
#include "host/running.h"
#include "icons/agent/desktop_shared_data.h"
#include "icons/engine/monitor.h"
#include "resources/resource_ids.h"
#include "runtime/base/ownership.h"
#include "runtime/messages/msg.h"
#include "runtime/text/text_format.h"
#include "wnd/core/company_msg.h"

#include <windows.h>
#include <shellapi.h>

namespace {
constexpr DWORD kCloseTimeoutMs = 15000;
constexpr DWORD kClosePollMs = 50;
constexpr DWORD kMarkTimeoutMs = 1000;
constexpr int kBoxTextSize = 2048; // holds the list of switches

constexpr const wchar_t* kSwitchList =
    L"/QUIET\tstarts without the opening balloon\n"
    L"/EXIT\tcloses the running program\n"
    L"/AUTOSTART:ON\tstarts with Windows from now on\n"
    L"/AUTOSTART:OFF\tno longer starts with Windows\n"
    L"/AUTOSTART\ttells whether it starts with Windows\n"
    L"/DISPLAYS:ON\tputs the icons back when the displays change\n"
    L"/DISPLAYS:OFF\tno longer does so\n"
    L"/DISPLAYS\ttells whether it does\n"
    L"check4updates\tasks for an update and tells the answer\n"
    L"/CHECK4UPDATES\tthe same, telling only of an update\n"
    L"/LIST\tlists the snapshots\n"
    L"/REMEMBER\tstores the icons as they lie\n"
    L"/RESTORE\tputs the newest snapshot back\n"
    L"/RESTORE:N\tthe same with number N, or a time\n"
    L"/DELETE:N\tdeletes the snapshot of number N\n"
    L"/DELETEALL\tdeletes all snapshots\n"
    L"/EXPORT:FILE\twrites them to a text file\n"
    L"/IMPORT:FILE\ttakes them in from such a file";

/// A mistake in a command's line is silent with "/QUIET" as all of the command is.
int TellBadSwitch(const HostOptions& options) {
    if (options.bQuiet && options.bCommandNamed) return kExitBadSwitch;
    wchar_t szText[kBoxTextSize];
    FormatText(szText, L"\"%.200s\" is not a switch of this program.\n\nIt knows:\n%s",
               options.pszUnknown, kSwitchList);
    TellUser(szText, true, true);
    return kExitBadSwitch;
}

int TellSwitches() {
    wchar_t szText[kBoxTextSize];
    FormatText(szText, L"Without a switch the program watches the desktop. It knows:\n%s",
               kSwitchList);
    TellUser(szText, false, false);
    return kExitDone;
}

/// The one box that the library cannot show: what stands against the library.
int TellNoLibrary(LibraryProblem problem, const wchar_t* pszPath) {
    wchar_t szText[kBoxTextSize];
    FormatText(szText, L"Tessaly cannot start without its library.\n\n%s\n%s",
               DescribeProblem(problem), pszPath);
    ::MessageBoxW(nullptr, szText, L"Tessaly", MB_OK | MB_SETFOREGROUND | MB_ICONERROR);
    return kExitNoLibrary;
}

// Closing the program that runs

/// The time that is left of a wait that began at dwStart.
DWORD Remaining(DWORD dwStart, DWORD nTimeoutMs) {
    DWORD nPassed = ::GetTickCount() - dwStart;
    return nPassed < nTimeoutMs ? nTimeoutMs - nPassed : 0;
}

bool IsNothingRunning() {
    SingleInstanceXP instance; // gives the mark back at once
    return instance.IsFirstInstance(0, GetMyProductInfo().GetName()) != 0;
}

/// The running monitor's window, waiting for it while a program runs that has none yet. Null when
/// nothing runs or the time is over.
HWND WaitForMonitorWindow(DWORD dwStart, DWORD nTimeoutMs) {
    for (;;) {
        HWND hwnd = ::FindWindowW(kMonitorClass, nullptr);
        if (hwnd || IsNothingRunning() || !Remaining(dwStart, nTimeoutMs)) return hwnd;
        ::Sleep(kClosePollMs);
    }
}

/// Asks the running program to close and waits until its process has gone. Whether nothing runs
/// (any more).
bool CloseRunning(DWORD nTimeoutMs) {
    DWORD dwStart = ::GetTickCount();
    HWND hwnd = WaitForMonitorWindow(dwStart, nTimeoutMs);
    if (!hwnd) return IsNothingRunning();
    DWORD dwProcess = 0;
    ::GetWindowThreadProcessId(hwnd, &dwProcess);
    // Null for another user's process, whose end takes its window and mark away.
    OwnedHandle process(::OpenProcess(SYNCHRONIZE, FALSE, dwProcess));
    HWND hwndAsked = nullptr;
    do {
        // When the shell restarts, the window goes with what was posted to it and a new one comes.
        hwnd = ::FindWindowW(kMonitorClass, nullptr);
        if (hwnd && hwnd != hwndAsked)
            PostMyCompanyMsg(hwndAsked = hwnd, kCompanyCodeClose, GetMyProductInfo().GetID());
        if (!process) {
            if (!hwnd && IsNothingRunning()) return true;
            ::Sleep(kClosePollMs);
        } else if (::WaitForSingleObject(process.Get(), kClosePollMs) == WAIT_OBJECT_0) {
            return true;
        }
    } while (Remaining(dwStart, nTimeoutMs));
    return false;
}

/// With bQuiet only the exit code tells.
int CloseTheRunningOne(bool bQuiet) {
    if (CloseRunning(kCloseTimeoutMs)) return kExitDone;
    if (bQuiet) return kExitStillRunning;
    Msg(nullptr, MB_ICONWARNING,
        L"Tessaly is still running: it was asked to close and did not in time.");
    return kExitStillRunning;
}

// The start with Windows

/// Of the current user. The arguments and the result are as for GetSetAutoRunDll32.
bool ProcessAutoStart(bool bWrite, bool bOn, int* pnOn) {
    constexpr int kCurrentUser = 1;
    return GetSetAutoRunDll32(bWrite, pnOn, bOn, kCurrentUser, GetMyProductInfo().GetName(),
                              kStartMonitorEntry) != 0;
}

/// With bQuiet only the exit code tells.
int SetAutoStart(bool bOn, bool bQuiet) {
    if (ProcessAutoStart(true, bOn, nullptr)) return kExitDone;
    if (bQuiet) return kExitNotWritten;
    Msg(nullptr, MB_ICONWARNING, -IDS_REGISTRY_NOT_WRITTEN);
    return kExitNotWritten;
}

/// With bQuiet only the exit code tells.
int TellAutoStart(bool bQuiet) {
    int bOn = 0;
    ProcessAutoStart(false, false, &bOn); // no key: no programs start with Windows
    if (!bQuiet)
        Msg(nullptr, MB_ICONINFORMATION,
            bOn ? L"Tessaly starts with Windows." : L"Tessaly does not start with Windows.");
    return bOn ? kExitDone : kExitNoAutoStart;
}

int RunAutoStart(const HostOptions& options) {
    if (options.autoStart == AutoStart::Tell) return TellAutoStart(options.bQuiet);
    return SetAutoStart(options.autoStart == AutoStart::On, options.bQuiet);
}

// The displays

int RunDisplaysSwitch(const HostOptions& options) {
    switch (RunDisplays(options.displays, options.bQuiet)) {
    case DisplaysAnswer::IsOff: return kExitNoDisplays;
    case DisplaysAnswer::NotWritten: return kExitNotWritten;
    case DisplaysAnswer::Done: break;
    }
    return kExitDone;
}

// Updates

/// Beside a monitor that runs, which has this done by a process of its own so as not to wait for
/// the network. Daily and automatic is forced as there.
void CheckNow(UpdateCheck check) {
    DoCheckForUpdatesCmdln(check == UpdateCheck::Silent ? kSilentCheckSwitch : kCheckSwitch, 1);
}

// The one that runs

int TellMarkTaken() {
    Msg(nullptr, MB_ICONWARNING,
        L"Tessaly does not start: the name by which it knows that it runs already is taken, but no "
        L"Tessaly is running. Another program must be using that name.");
    return kExitMarkTaken;
}

/// Takes the mark for this process. False with the exit code if it stays taken. One that nobody
/// seems to have may be going with a process that has just ended.
bool TakeMark(SingleInstanceXP& instance, int& nExitCode) {
    DWORD dwStart = ::GetTickCount();
    while (!instance.IsFirstInstance(0, GetMyProductInfo().GetName())) {
        if (IsRunningElsewhere()) {
            nExitCode = kExitDone;
            return false;
        }
        if (!Remaining(dwStart, kMarkTimeoutMs)) {
            nExitCode = TellMarkTaken();
            return false;
        }
        ::Sleep(kClosePollMs);
    }
    return true;
}

int RunMonitor(bool bQuiet) {
    SingleInstanceXP instance; // its mark stays until the monitor has returned
    int nExitCode = kExitDone;
    if (TakeMark(instance, nExitCode)) DoMonitor(nullptr, bQuiet);
    return nExitCode;
}

/// Whether it is to do something and end.
bool IsCommand(const HostOptions& options) {
    return options.bExit || options.autoStart != AutoStart::None ||
           options.displays != Displays::None || options.bCommandNamed;
}

int Run(const HostOptions& options) {
    wchar_t szPath[MAX_PATH] = L"";
    LibraryProblem problem = LibraryProblem::Missing;
    if (GetLibraryPath(szPath)) problem = MapLibrary(szPath);
    if (problem != LibraryProblem::None) {
        // A quiet command tells by its exit code alone, of this, too: the uninstaller of a damaged
        // copy gives two of them.
        if (options.bQuiet && IsCommand(options)) return kExitNoLibrary;
        return TellNoLibrary(problem, szPath);
    }
    if (options.pszUnknown) return TellBadSwitch(options);
    if (options.bHelp) return TellSwitches();
    if (options.request.command != SnapshotCommand::None) return RunCommand(options.request);
    bool bAutoStart = options.autoStart != AutoStart::None;
    int nExitCode = bAutoStart ? RunAutoStart(options) : kExitDone;
    bool bDisplays = options.displays != Displays::None;
    if (bDisplays) {
        int nDisplaysCode = RunDisplaysSwitch(options);
        if (nDisplaysCode != kExitDone) nExitCode = nDisplaysCode;
    }
    if (options.bExit) {
        int nCloseCode = CloseTheRunningOne(options.bQuiet);
        if (nCloseCode != kExitDone) nExitCode = nCloseCode;
    }
    if (options.updateCheck != UpdateCheck::None) CheckNow(options.updateCheck);
    bool bCheck = options.updateCheck != UpdateCheck::None;
    if (IsCommand(options) || bCheck) return nExitCode;
    return RunMonitor(options.bQuiet);
}
} // namespace

int WINAPI wWinMain(HINSTANCE, HINSTANCE, LPWSTR, int) {
    int nArguments = 0;
    OwnedLocal arguments(::CommandLineToArgvW(::GetCommandLineW(), &nArguments));
    if (!arguments) nArguments = 0; // out of memory: as without switches
    return Run(ParseHostOptions(nArguments, static_cast<wchar_t**>(arguments.Get())));
}
