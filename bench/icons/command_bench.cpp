// The program's commands from outside, each from the start of TSEXE64.exe to its end, beside the
// start of a program that only asks about the screen: /RESTORE of 100 icons with a monitor and
// without one, when all icons are in their places, and /LIST of 25 snapshots. `bench_commands`,
// from the build folder of the programs.

#include "../measure.h"
#include "e2e/support/monitor_process.h"
#include "e2e/support/snapshot_reader.h"
#include "e2e/support/test_desktop.h"

#include <windows.h>
#include <cstdio>
#include <stdexcept>
#include <string>

namespace {
constexpr int kStarts = 21, kDesktopIcons = 100, kSnapshots = 25;
constexpr POINT kAway{700, 500};

double SecondsToEnd(const std::wstring& strPath, const std::wstring& strArguments) {
    ChildProcess program;
    double dSeconds = Seconds([&] {
        program.Start(strPath, strArguments);
        if (program.WaitForEnd() != 0u) throw std::runtime_error("a program failed");
    });
    return dSeconds;
}

double SecondsOfCommand(const std::wstring& strArguments) {
    return SecondsToEnd(ProductFolder() + L"\\TSEXE64.exe", strArguments);
}

double SecondsOfNothing() {
    return SecondsToEnd(FolderBeside(L"e2e") + L"\\empty_program.exe", L"");
}

/// The last icon is looked at, as it is moved last.
double SecondsOfRestore(TestDesktop& desktop, POINT ptBefore) {
    desktop.Move(kDesktopIcons - 1, kAway);
    double dSeconds = SecondsOfCommand(L"/RESTORE /QUIET");
    POINT pt = desktop.Items().back().pt;
    if (pt.x != ptBefore.x || pt.y != ptBefore.y)
        throw std::runtime_error("an icon is not where it belongs");
    return dSeconds;
}

/// The newest snapshot once more, under the times before it.
void PlantSnapshots(int nCount) {
    SnapshotReader reader;
    StoredSnapshot newest = reader.Newest().value();
    unsigned long long qwTime = std::stoull(newest.strName, nullptr, 16);
    for (int n = 1; n < nCount; ++n) {
        wchar_t szName[17];
        swprintf(szName, 17, L"%016llX", qwTime - n * 36000000000ull);
        reader.Plant(szName, newest.bytes);
    }
}

bool Measure(TestDesktop& desktop) {
    SnapshotReader().Clear();
    POINT ptLast = desktop.Items().back().pt;
    SecondsOfCommand(L"/REMEMBER /QUIET");
    auto restore = [&] { return SecondsOfRestore(desktop, ptLast); };
    bool bOk = Report("/RESTORE without a monitor / an empty program",
                      CompareTimed(kStarts, restore, &SecondsOfNothing), 2.0, true);
    PlantSnapshots(kSnapshots);
    bOk &= Report("/LIST of 25 / an empty program",
                  CompareTimed(
                      kStarts, [] { return SecondsOfCommand(L"/LIST /QUIET"); }, &SecondsOfNothing),
                  1.6, true);
    MonitorProcess monitor;
    monitor.StartOn(desktop);
    bOk &= Report("/RESTORE with a monitor / an empty program",
                  CompareTimed(kStarts, restore, &SecondsOfNothing), 2.0, true);
    monitor.Exit();
    SnapshotReader().Clear();
    return bOk;
}
} // namespace

int main() {
    try {
        TestDesktop desktop(DesktopMode::Plain);
        desktop.Fill(kDesktopIcons);
        return Measure(desktop) ? 0 : 1;
    } catch (const std::exception& failure) {
        std::printf("bench_commands: %s\n", failure.what());
        return 1;
    }
}
