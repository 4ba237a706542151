// The product's main job on a real desktop, step by step, for a person to read: each step says what
// was seen, and the program ends with 0 only if all of them held. With /KEEP the desktop and the
// product stay up at the end. TESSALY_SCREENSHOT names the picture's file.

#include "e2e/support/monitor_process.h"
#include "e2e/support/mouse.h"
#include "e2e/support/snapshot_reader.h"
#include "e2e/support/test_desktop.h"
#include "e2e/support/unix_shell.h"
#include "e2e/support/wait_until.h"
#include "icons/snapshot_store.h"

#include <windows.h>
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <stdexcept>

namespace {
constexpr DWORD kDebounceMs = 10000;
constexpr const wchar_t* kFiles[] = {L"Budget.txt",  L"Holiday photos.txt", L"Letter to Anna.txt",
                                     L"Recipes.txt", L"To do.txt",          L"\u00DCbersicht.txt"};
constexpr const wchar_t* kDragged = L"Recipes.txt";

void Check(bool bHolds, const char* pszWhat) {
    printf("   %s %s\n", bHolds ? "[ok]    " : "[FAILED]", pszWhat);
    fflush(stdout);
    if (!bHolds) throw std::runtime_error(pszWhat);
}

void Say(const char* pszStep) {
    static int nStep = 0;
    printf("\n%d. %s\n", ++nStep, pszStep);
    fflush(stdout);
}

/// Console and log take UTF-8.
std::string Utf8(const std::wstring& str) {
    char sz[1024] = "";
    int cb = ::WideCharToMultiByte(CP_UTF8, 0, str.c_str(), static_cast<int>(str.size()), sz,
                                   sizeof(sz) - 1, nullptr, nullptr);
    return std::string(sz, cb);
}

bool operator==(POINT pt1, POINT pt2) { return pt1.x == pt2.x && pt1.y == pt2.y; }

class Tour {
  public:
    void Run();
    void Keep();

  private:
    void PrepareDesktop();
    void FirstCapture();
    void UnchangedCapture();
    void DragAndCapture();
    void ScatterAndRestore();
    void RestartShell();
    void TakeScreenshot();
    void LeaveCleanly();
    bool Holds(const StoredSnapshot& snapshot, const std::vector<DesktopItem>& items) const;
    void Restore(const StoredSnapshot& snapshot, const std::vector<DesktopItem>& wanted);

    TestDesktop desktop{DesktopMode::Real};
    MonitorProcess monitor;
    SnapshotReader store;
    StoredSnapshot chosen;           // what the restores bring back
    std::vector<DesktopItem> layout; // the icons as they lay when it was taken
};

void Tour::PrepareDesktop() {
    for (const wchar_t* pszFile : kFiles) desktop.CreateDesktopFile(pszFile);
    int nRow = 0;
    for (const wchar_t* pszFile : kFiles)
        desktop.MoveNamed(pszFile, {221 + 150 * (nRow % 3), 79 + 150 * (nRow / 3)}), ++nRow;
    store.Clear();
}

/// The snapshot names these icons in their order, with these positions.
bool Tour::Holds(const StoredSnapshot& snapshot, const std::vector<DesktopItem>& items) const {
    std::vector<StoredIcon> icons = snapshot.Icons();
    if (icons.size() != items.size()) return false;
    for (size_t n = 0; n < icons.size(); ++n) {
        const DesktopItem& item = items[n];
        StoredIcon expected{static_cast<uint32_t>(n), item.pt.x, item.pt.y,
                            static_cast<uint32_t>(item.strName.size()), KeyOfName(item.strName)};
        if (!(icons[n] == expected)) return false;
    }
    return true;
}

void Tour::FirstCapture() {
    Say("TSEXE64.exe starts on the desktop and stores a first capture");
    monitor.StartOn(desktop, L"");
    Check(WaitUntil([&] { return store.Count() == 1; }), "one snapshot is stored");
    StoredSnapshot snapshot = *store.Newest();
    std::vector<DesktopItem> items = desktop.Items();
    printf("   value %s of HKCU\\%s, %zu bytes\n", Utf8(snapshot.strName).c_str(),
           Utf8(SnapshotReader::kPath).c_str(), snapshot.bytes.size());
    std::vector<StoredIcon> icons = snapshot.Icons();
    for (size_t n = 0; n < icons.size() && n < items.size(); ++n) {
        printf("   %2u  %4d,%4d  key %016llX  %s\n", icons[n].nIndex, icons[n].x, icons[n].y,
               static_cast<unsigned long long>(icons[n].nNameKey), Utf8(items[n].strName).c_str());
    }
    Check(snapshot.DigestHolds(), "its digest is the MD5 of its records");
    Check(Holds(snapshot, items), "it holds every icon with its position and its name's key");
}

void Tour::UnchangedCapture() {
    Say("A capture of the unchanged desktop writes nothing");
    uint64_t nBefore = store.LastWriteTime();
    MonitorProcess::RequestCapture(desktop);
    Check(HoldsFor([&] { return store.LastWriteTime() == nBefore; }, 1500),
          "the key's last-write time stays");
    Check(store.Count() == 1, "there is still one snapshot");
}

void Tour::DragAndCapture() {
    Say("An icon is dragged with the mouse; ten quiet seconds later it is captured");
    DesktopItem before = desktop.ItemNamed(kDragged);
    POINT ptHold = desktop.OnScreen(before.nIndex);
    mouse::Drag(ptHold, {ptHold.x + 260, ptHold.y + 180});
    POINT ptAfter{};
    Check(WaitUntil([&] {
              ptAfter = desktop.ItemNamed(kDragged).pt;
              return !(ptAfter == before.pt);
          }),
          "the icon lies somewhere else");
    printf("   %s: %ld,%ld -> %ld,%ld\n", Utf8(kDragged).c_str(), before.pt.x, before.pt.y,
           ptAfter.x, ptAfter.y);
    ULONGLONG nBegin = ::GetTickCount64();
    Check(WaitUntil([&] { return store.Count() == 2; }, kDebounceMs + kPatienceMs),
          "a second snapshot is stored");
    printf("   %.1f seconds after the drop\n",
           static_cast<double>(::GetTickCount64() - nBegin) / 1000);
    chosen = *store.Newest();
    layout = desktop.Items();
    Check(chosen.DigestHolds() && Holds(chosen, layout), "it holds the new layout");
}

/// Restores it as the program's menu will, and compares every icon with where it shall lie.
void Tour::Restore(const StoredSnapshot& snapshot, const std::vector<DesktopItem>& wanted) {
    std::vector<DesktopItem> before = desktop.Items();
    RestoreSnapshot(std::stoull(snapshot.strName, nullptr, 16));
    std::vector<DesktopItem> after = desktop.Items();
    printf("   %-22s %12s %12s %12s\n", "icon", "snapshot", "before", "after");
    bool bAll = after.size() == wanted.size();
    for (const DesktopItem& item : wanted) {
        auto sameName = [&](const DesktopItem& other) { return other.strName == item.strName; };
        auto itBefore = std::find_if(before.begin(), before.end(), sameName);
        auto itAfter = std::find_if(after.begin(), after.end(), sameName);
        if (itBefore == before.end() || itAfter == after.end()) {
            bAll = false;
            continue;
        }
        printf("   %-22s   %4ld, %4ld   %4ld, %4ld   %4ld, %4ld\n", Utf8(item.strName).c_str(),
               item.pt.x, item.pt.y, itBefore->pt.x, itBefore->pt.y, itAfter->pt.x, itAfter->pt.y);
        bAll = bAll && itAfter->pt == item.pt;
    }
    Check(bAll, "every icon lies where the snapshot has it");
    Check(store.Marked() == snapshot.strName, "the snapshot is marked as the one restored last");
}

void Tour::ScatterAndRestore() {
    Say("All icons are scattered; the snapshot is restored");
    int nMoved = 0;
    for (const DesktopItem& item : desktop.Items()) {
        desktop.Move(item.nIndex, {40 + 97 * nMoved % 800, 30 + 211 * nMoved % 600});
        ++nMoved;
    }
    Restore(chosen, layout);
}

void Tour::RestartShell() {
    Say("The shell is killed and started again; the icons lie as the new shell puts them");
    DWORD dwBefore = desktop.ProcessId();
    desktop.Kill();
    Check(monitor.IsRunning(), "the monitor lives on");
    desktop.Start();
    printf("   the shell was process %lu and is now process %lu\n", dwBefore, desktop.ProcessId());
    Check(monitor.WaitUntilOn(desktop), "the monitor has taken up the new shell");
    Check(WaitUntil([&] { return Holds(*store.Newest(), desktop.Items()); }),
          "it has captured the new shell's layout");
    Restore(chosen, layout);
}

void Tour::TakeScreenshot() {
    const wchar_t* pszFile = _wgetenv(L"TESSALY_SCREENSHOT");
    if (!pszFile) return;
    ::RedrawWindow(desktop.Progman(), nullptr, nullptr,
                   RDW_INVALIDATE | RDW_ALLCHILDREN | RDW_UPDATENOW);
    desktop.Count(); // answered after the painting
    RunUnixShell(L"import -window root -crop 1024x768+0+0 +repage '" + std::wstring(pszFile) +
                 L"'");
    printf("\n   screenshot: %s\n", Utf8(pszFile).c_str());
}

void Tour::LeaveCleanly() {
    Say("TSEXE64.exe /EXIT ends the program and leaves nothing in the shell");
    Check(monitor.Exit(), "both processes have ended");
    Check(!desktop.HasGuest(), "the desktop's windows have their own procedures and no property");
    desktop.Count();
    Check(desktop.IsRunning(), "the shell goes on");
}

void Tour::Run() {
    PrepareDesktop();
    FirstCapture();
    UnchangedCapture();
    DragAndCapture();
    ScatterAndRestore();
    RestartShell();
    TakeScreenshot();
    LeaveCleanly();
}

void Tour::Keep() {
    monitor.StartOn(desktop, L"");
    monitor.LetGo();
    desktop.LetGo();
}
} // namespace

int wmain(int argc, wchar_t** argv) {
    try {
        Tour tour;
        tour.Run();
        printf("\nEach step was seen to hold.\n");
        if (argc > 1 && std::wstring(argv[1]) == L"/KEEP") tour.Keep();
        return 0;
    } catch (const std::exception& failure) {
        printf("\nThe tour ended early: %s\n", failure.what());
        return 1;
    }
}
