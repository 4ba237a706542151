// The program: it maps the library beside it, and leaves the work to that.

#include "app/my_product_info.h"
#include "app/single_instance.h"
#include "host/close_running.h"
#include "host/command_line.h"
#include "host/library.h"
#include "runtime/msg.h"
#include "runtime/owned_handle.h"
#include "runtime/text_format.h"
#include <windows.h>
#include <shellapi.h>

namespace {
enum ExitCode {
    kExitDone = 0,         // also: another one runs already, or nothing to close
    kExitStillRunning = 1, // the running one did not close in time
    kExitBadSwitch = 2,
    kExitNoLibrary = 3,
};

constexpr DWORD kCloseTimeoutMs = 15000;
constexpr int kBoxTextSize = 1024;

int TellBadSwitch(const wchar_t* pszUnknown) {
    wchar_t szText[kBoxTextSize];
    FormatText(szText,
               L"\"%.200s\" is not a switch of this program.\n\n"
               L"It knows:\n"
               L"/QUIET\tstarts without the opening balloon\n"
               L"/EXIT\tcloses the running program",
               pszUnknown);
    Msg(nullptr, MB_ICONWARNING, szText);
    return kExitBadSwitch;
}

/// The one box that the library cannot show: what stands against the library.
int TellNoLibrary(LibraryProblem problem, const wchar_t* pszPath) {
    wchar_t szText[kBoxTextSize];
    FormatText(szText, L"Tessaly cannot start without its library.\n\n%s\n%s",
               DescribeProblem(problem), pszPath);
    ::MessageBoxW(nullptr, szText, L"Tessaly", MB_OK | MB_SETFOREGROUND | MB_ICONERROR);
    return kExitNoLibrary;
}

int CloseTheRunningOne() {
    if (CloseRunning(kCloseTimeoutMs)) return kExitDone;
    Msg(nullptr, MB_ICONWARNING,
        L"Tessaly is still running: it was asked to close and did not in time.");
    return kExitStillRunning;
}

int RunMonitor(MonitorFunc* pfnMonitor, int bQuiet) {
    SingleInstanceXP instance;
    if (!instance.IsFirstInstance(0, GetMyProductInfo().GetName())) return kExitDone;
    pfnMonitor(nullptr, bQuiet);
    return kExitDone;
}

int Run(const HostOptions& options) {
    wchar_t szPath[MAX_PATH] = L"";
    MonitorFunc* pfnMonitor = nullptr;
    LibraryProblem problem = LibraryProblem::Missing;
    if (GetLibraryPath(szPath)) problem = LoadLibraryFile(szPath, pfnMonitor);
    if (problem != LibraryProblem::None) return TellNoLibrary(problem, szPath);
    if (options.pszUnknown) return TellBadSwitch(options.pszUnknown);
    return options.bExit ? CloseTheRunningOne() : RunMonitor(pfnMonitor, options.bQuiet);
}
} // namespace

int WINAPI wWinMain(HINSTANCE, HINSTANCE, LPWSTR, int) {
    int nArguments = 0;
    OwnedLocal arguments(::CommandLineToArgvW(::GetCommandLineW(), &nArguments));
    if (!arguments) nArguments = 0; // out of memory: as without switches
    return Run(ParseHostOptions(nArguments, static_cast<wchar_t**>(arguments.Get())));
}
