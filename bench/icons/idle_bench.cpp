// An idle monitor, from outside: after its first snapshot and before anything happens on the
// desktop it has no timer and is not woken, whether it looks after the displays or not. Counts for
// 30 seconds the messages of its thread and how often any thread of its process began to wait anew.
// `bench_idle`, from the build folder of the programs.

#include "e2e/support/layout_reader.h"
#include "e2e/support/monitor_process.h"
#include "e2e/support/snapshot_reader.h"
#include "e2e/support/test_desktop.h"
#include "e2e/support/unix_shell.h"
#include "message_count.h"
#include "support/program_folder.h"

#include <windows.h>
#include <cstdio>
#include <fstream>
#include <map>
#include <sstream>
#include <stdexcept>

namespace {
constexpr DWORD kIdleMs = 30000;
constexpr int kDesktopIcons = 100;
constexpr LONG kMostMessages = 0;
// A page that is fetched from disk is waited for too; a timer of a second would make 30.
constexpr long kMostWakeUps = 3;

template <class Fn>
Fn* FuncOf(HMODULE hmod, const char* pszName) {
    auto* pfn = reinterpret_cast<Fn*>(reinterpret_cast<void*>(::GetProcAddress(hmod, pszName)));
    if (!pfn) throw std::runtime_error(pszName);
    return pfn;
}

/// How often each thread of the running product of this environment gave up its processor to wait,
/// as the system below the platform counts it.
std::map<long, long> CountWaits() {
    RunUnixShell(L"for p in /proc/[0-9]*; do if grep -qsx TSEXE64.exe $p/comm && grep -qszx "
                 L"WINEPREFIX=$WINEPREFIX $p/environ; then cat $p/task/*/status; fi; done "
                 L"> $WINEPREFIX/drive_c/threads.txt");
    std::ifstream file("C:\\threads.txt");
    std::map<long, long> waits;
    std::string strLine, strName;
    for (long nThread = 0; std::getline(file, strLine);) {
        std::istringstream line(strLine);
        long n = 0;
        line >> strName >> n;
        if (strName == "Pid:") nThread = n;
        if (strName == "voluntary_ctxt_switches:") waits[nThread] = n;
    }
    if (waits.empty()) throw std::runtime_error("the product's threads are not found");
    return waits;
}

bool ReportCount(const char* pszWhat, long n, long nMost) {
    std::printf("%-58s %ld (at most %ld) %s\n", pszWhat, n, nMost, n <= nMost ? "ok" : "MISSED");
    return n <= nMost;
}

bool Measure(MonitorProcess& monitor) {
    HMODULE hmod = ::LoadLibraryW((ProgramFolder() + L"message_count.dll").c_str());
    if (!hmod) throw std::runtime_error("message_count.dll is missing");
    auto* pfnGetCounts = FuncOf<GetCountsFunc>(hmod, "GetCounts");
    DWORD dwThread = ::GetWindowThreadProcessId(monitor.Window(), nullptr);
    if (!FuncOf<InstallCountersFunc>(hmod, "InstallCounters")(dwThread))
        throw std::runtime_error("no hook on the monitor's thread");

    // The counters are mapped there with the first message, which they have to count.
    DWORD_PTR nResult = 0;
    ::PostMessageW(monitor.Window(), WM_NULL, 0, 0);
    ::SendMessageTimeoutW(monitor.Window(), WM_NULL, 0, 0, SMTO_NORMAL, kTestDeadlineMs, &nResult);
    MessageCounts before{};
    if (!WaitUntil([&] {
            before = pfnGetCounts();
            return before.nPosted > 0 && before.nSent > 0;
        })) {
        throw std::runtime_error("the counters do not count");
    }
    std::map<long, long> waitsBefore = CountWaits();
    ::Sleep(kIdleMs);
    MessageCounts after = pfnGetCounts();
    long nWakeUps = 0;
    for (auto [nThread, nWaits] : CountWaits()) nWakeUps += nWaits - waitsBefore[nThread];
    FuncOf<RemoveCountersFunc>(hmod, "RemoveCounters")();

    LONG nMessages = after.nPosted - before.nPosted + after.nSent - before.nSent;
    bool bOk = ReportCount("messages of its thread in 30 s", nMessages, kMostMessages);
    if (!bOk) std::printf("the last one: %#lx\n", after.nLast);
    return ReportCount("wake-ups of its threads in 30 s", nWakeUps, kMostWakeUps) && bOk;
}
bool MeasureIdle(TestDesktop& desktop, bool bDisplays) {
    std::printf("idle monitor, /DISPLAYS:%s\n", bDisplays ? "ON" : "OFF");
    SnapshotReader reader;
    LayoutReader layouts;
    reader.Clear();
    layouts.Clear();
    if (bDisplays) layouts.PlantSwitch(1);
    MonitorProcess monitor;
    // As its users start it: the opening balloon has no timer either.
    monitor.StartOn(desktop, L"");
    if (!WaitUntil([&] { return reader.Count() > 0; })) throw std::runtime_error("no snapshot");
    if (bDisplays && !WaitUntil([&] { return layouts.Count() > 0; }))
        throw std::runtime_error("no layout of the displays");
    bool bOk = Measure(monitor);
    monitor.Exit();
    layouts.Clear();
    return bOk;
}
} // namespace

int main() {
    try {
        TestDesktop desktop(DesktopMode::Plain);
        desktop.Fill(kDesktopIcons);
        bool bOk = MeasureIdle(desktop, false);
        bOk &= MeasureIdle(desktop, true);
        return bOk ? 0 : 1;
    } catch (const std::exception& failure) {
        std::printf("bench_idle: %s\n", failure.what());
        return 1;
    }
}
