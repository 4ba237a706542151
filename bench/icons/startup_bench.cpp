// The whole product from outside: the time from the start of TSEXE64.exe to the first stored
// snapshot of a desktop with 100 icons, the memory it then has, and the files' sizes. Reported,
// with no limit. `bench_startup`, from the build folder of the programs.

#include "e2e/support/monitor_process.h"
#include "e2e/support/snapshot_reader.h"
#include "e2e/support/test_desktop.h"

#include <windows.h>
#include <psapi.h>
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <vector>

namespace {
constexpr int kStarts = 7, kDesktopIcons = 100;

double SecondsToFirstSnapshot(TestDesktop& desktop, SIZE_T& cbWorkingSet) {
    SnapshotReader reader;
    reader.Clear();
    MonitorProcess monitor;
    auto tStart = std::chrono::steady_clock::now();
    monitor.Start();
    if (!WaitUntil([&] { return reader.Count() > 0; })) throw std::runtime_error("no snapshot");
    double dSeconds =
        std::chrono::duration<double>(std::chrono::steady_clock::now() - tStart).count();
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
        std::vector<double> times;
        SIZE_T cbWorkingSet = 0;
        for (int i = 0; i < kStarts; ++i) {
            times.push_back(SecondsToFirstSnapshot(desktop, cbWorkingSet));
        }
        std::sort(times.begin(), times.end());
        std::printf("start to first stored snapshot: %.0f ms (%.0f to %.0f)\n",
                    times[kStarts / 2] * 1e3, times.front() * 1e3, times.back() * 1e3);
        std::printf("working set: %.1f MB\n", static_cast<double>(cbWorkingSet) / 1048576);
        std::printf("TSDLL64.dll: %llu bytes, TSEXE64.exe: %llu bytes\n", SizeOf(L"TSDLL64.dll"),
                    SizeOf(L"TSEXE64.exe"));
    } catch (const std::exception& failure) {
        std::printf("bench_startup: %s\n", failure.what());
        return 1;
    }
    return 0;
}
