// The whole product from outside: the time from the start of TSEXE64.exe to the first stored
// snapshot of a desktop with 100 icons, beside a program that makes a window and a tray icon and
// writes one value; the memory it then has, and the files' sizes. `bench_startup`, from the build
// folder of the programs.

#include "../measure.h"
#include "e2e/support/monitor_process.h"
#include "e2e/support/snapshot_reader.h"
#include "e2e/support/test_desktop.h"
#include "bare_tray.h"
#include "key_watch.h"

#include <windows.h>
#include <psapi.h>

namespace {
constexpr int kStarts = 15, kDesktopIcons = 100;
constexpr double kLimit = 2.0;

double SecondsToFirstSnapshot(TestDesktop& desktop, SIZE_T& cbWorkingSet) {
    SnapshotReader reader;
    reader.Clear();
    KeyWatch watch(SnapshotReader::kPath);
    MonitorProcess monitor;
    double dSeconds = Seconds([&] {
        monitor.Start();
        do watch.Wait();
        while (reader.Count() == 0);
    });
    monitor.WaitUntilOn(desktop);
    HANDLE hProcess =
        ::OpenProcess(PROCESS_QUERY_INFORMATION | PROCESS_VM_READ, FALSE, monitor.ProcessId());
    PROCESS_MEMORY_COUNTERS counters{};
    if (hProcess && ::GetProcessMemoryInfo(hProcess, &counters, sizeof(counters))) {
        cbWorkingSet = counters.WorkingSetSize;
    }
    if (hProcess) ::CloseHandle(hProcess);
    monitor.Exit();
    return dSeconds;
}

double SecondsToBareTray() {
    ::RegDeleteKeyW(HKEY_CURRENT_USER, kBareTrayPath);
    KeyWatch watch(kBareTrayPath);
    ChildProcess program;
    double dSeconds = Seconds([&] {
        program.Start(FolderBeside(L"e2e") + L"\\bare_tray.exe", L"");
        watch.Wait();
    });
    ::PostMessageW(::FindWindowW(kBareTrayClass, nullptr), WM_CLOSE, 0, 0);
    if (!program.WaitForEnd()) throw std::runtime_error("the bare program did not end");
    return dSeconds;
}

unsigned long long SizeOf(const std::wstring& strName) {
    WIN32_FILE_ATTRIBUTE_DATA data{};
    ::GetFileAttributesExW((ProductFolder() + L"\\" + strName).c_str(), GetFileExInfoStandard,
                           &data);
    return data.nFileSizeLow;
}
} // namespace

int main() {
    try {
        TestDesktop desktop(DesktopMode::Plain);
        desktop.Fill(kDesktopIcons);
        SIZE_T cbWorkingSet = 0;
        bool bOk =
            Report("start to first stored snapshot / to a bare tray icon and value",
                   CompareTimed(
                       kStarts, [&] { return SecondsToFirstSnapshot(desktop, cbWorkingSet); },
                       [] { return SecondsToBareTray(); }),
                   kLimit, true);
        ::RegDeleteKeyW(HKEY_CURRENT_USER, kBareTrayPath);
        std::printf("working set: %.1f MB\n", static_cast<double>(cbWorkingSet) / 1048576);
        std::printf("TSDLL64.dll: %llu bytes, TSEXE64.exe: %llu bytes\n", SizeOf(L"TSDLL64.dll"),
                    SizeOf(L"TSEXE64.exe"));
        return bOk ? 0 : 1;
    } catch (const std::exception& failure) {
        std::printf("bench_startup: %s\n", failure.what());
        return 1;
    }
}
