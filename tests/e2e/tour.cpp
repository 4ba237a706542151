// The product's main job on a real desktop, step by step, for a person to read: each step says what
// was seen, and the program ends with 0 only if all of them held. With /KEEP the desktop and the
// product stay up at the end. TESSALY_SCREENSHOTS names the folder for the pictures.

#include "e2e/support/monitor_process.h"
#include "e2e/support/mouse.h"
#include "e2e/support/snapshot_reader.h"
#include "e2e/support/test_desktop.h"
#include "e2e/support/tray_menu.h"
#include "e2e/support/unix_shell.h"
#include "support/http_server.h"
#include "support/message_box_driver.h"
#include "support/platform_proxy.h"
#include "support/wait_until.h"

#include <windows.h>
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <stdexcept>

namespace {
using keyboard::Key;

constexpr DWORD kDebounceMs = 10000;
constexpr const wchar_t* kFiles[] = {L"Budget.txt",  L"Holiday photos.txt", L"Letter to Anna.txt",
                                     L"Recipes.txt", L"To do.txt",          L"\u00DCbersicht.txt"};
constexpr const wchar_t* kDragged = L"Recipes.txt";
constexpr const wchar_t* kTitle = L"Tessaly"; // of the product's boxes

// The server's answers to a check for updates.
constexpr const char* kNothingNew = "OK";
constexpr const char* kUpdate =
    "[dl]\nversion=1.2\ndescr=<b>Tessaly 1.2</b><br>Knows screens that are turned round.<br>"
    "<a>What is new</a>\nurlmoreinfo=https://orvanta.example/tessaly/news\n"
    "urldownload=https://orvanta.example/tessaly/1.2\n";

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

const DesktopItem* Find(const std::vector<DesktopItem>& items, const std::wstring& strName) {
    auto it = std::find_if(items.begin(), items.end(),
                           [&](const DesktopItem& item) { return item.strName == strName; });
    return it == items.end() ? nullptr : &*it;
}

/// Starts the product as the start menu does: from no console, with its output nowhere.
void StartFromNoConsole(const wchar_t* pszArguments) {
    std::wstring strLine = L"cmd.exe /c \"\"" + ProductFolder() + L"\\TSEXE64.exe\" ";
    strLine += std::wstring(pszArguments) + L"\"";
    STARTUPINFOW startup{};
    startup.cb = sizeof(startup);
    startup.dwFlags = STARTF_USESTDHANDLES;
    PROCESS_INFORMATION info{};
    if (!::CreateProcessW(nullptr, strLine.data(), nullptr, nullptr, FALSE, DETACHED_PROCESS,
                          nullptr, nullptr, &startup, &info)) {
        throw std::runtime_error("the program could not be started");
    }
    ::CloseHandle(info.hThread);
    ::CloseHandle(info.hProcess);
}

/// The box or dialog of that title; null if none comes in time.
HWND WaitForBox(const wchar_t* pszTitle) {
    HWND hwnd = nullptr;
    WaitUntil([&] {
        do {
            hwnd = ::FindWindowExW(nullptr, hwnd, L"#32770", pszTitle);
        } while (hwnd && !::IsWindowVisible(hwnd));
        return hwnd != nullptr;
    });
    return hwnd;
}

/// Clicks on a control of a box; false if the box stays.
bool ClickAway(HWND hwndBox, int nControl) {
    RECT rc{};
    ::GetWindowRect(::GetDlgItem(hwndBox, nControl), &rc);
    mouse::Click({(rc.left + rc.right) / 2, (rc.top + rc.bottom) / 2});
    return WaitUntil([&] { return !::IsWindow(hwndBox); });
}

/// The same icons, in any order, at the same places.
bool IsLaidOutAs(const std::vector<DesktopItem>& wanted, const std::vector<DesktopItem>& items) {
    return items.size() == wanted.size() &&
           std::all_of(wanted.begin(), wanted.end(), [&](const DesktopItem& item) {
               const DesktopItem* pFound = Find(items, item.strName);
               return pFound && pFound->pt == item.pt;
           });
}

class Tour {
  public:
    void Run();
    void Keep();

  private:
    void PrepareDesktop();
    void FirstCapture();
    void UnchangedCapture();
    void DragAndCapture();
    void RememberFromMenu();
    void ScatterAndRestore();
    void AskBeforeRestore();
    void RestartShell();
    void DeleteAllFromMenu();
    void ShowAbout();
    void TellInBoxes();
    void CheckForUpdates();
    void LeaveByMenu();
    TrayMenu Menu() const { return TrayMenu(monitor.ProcessId()); }
    int RowOf(const StoredSnapshot& snapshot) const;
    void TakeScreenshot(const std::wstring& strName);
    void TakePictureOf(HWND hwndBox, const std::wstring& strName);
    void TakePicture(const RECT& rc, const std::wstring& strName);
    void ShowBox(const wchar_t* pszArguments, const wchar_t* pszPart, const std::wstring& strName,
                 int nButton = IDOK);
    void ChooseSnapshot(int nRow);
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
    Check(TrayMenu::WaitForBalloon(), "a balloon tells that it is at work");
    TakeScreenshot(L"balloon");
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
    Check(WaitUntil([&] { return store.Count() == 2; }, kDebounceMs + kTestDeadlineMs),
          "a second snapshot is stored");
    printf("   %.1f seconds after the drop\n",
           static_cast<double>(::GetTickCount64() - nBegin) / 1000);
    chosen = *store.Newest();
    layout = desktop.Items();
    Check(chosen.DigestHolds() && Holds(chosen, layout), "it holds the new layout");
}

void Tour::RememberFromMenu() {
    Say("An icon is dragged again; a click on the tray icon, and the menu remembers at once");
    POINT ptHold = desktop.OnScreen(desktop.ItemNamed(kDragged).nIndex);
    mouse::Drag(ptHold, {ptHold.x - 110, ptHold.y + 90});
    ULONGLONG nBegin = ::GetTickCount64();
    Menu().Open();
    TakeScreenshot(L"menu");
    Menu().ClickFirst();
    Check(WaitUntil([&] { return store.Count() == 3; }, kDebounceMs / 2),
          "a third snapshot is stored without the ten seconds' wait");
    printf("   %.1f seconds after the drop\n",
           static_cast<double>(::GetTickCount64() - nBegin) / 1000);
    Check(TrayMenu::WaitForBalloon(), "a balloon tells the outcome");
    TakeScreenshot(L"remembered");
    layout = desktop.Items();
    chosen = *store.Newest();
    Check(chosen.DigestHolds() && Holds(chosen, layout), "it holds the layout");
}

/// Its row in the sub-menu, which has the newest first.
int Tour::RowOf(const StoredSnapshot& snapshot) const {
    int nRow = store.Count() - 1;
    for (const StoredSnapshot& stored : store.Values()) {
        if (stored.strName == snapshot.strName) return nRow;
        --nRow;
    }
    throw std::runtime_error("the snapshot is no longer stored");
}

/// Chooses that row of the sub-menu, with the keyboard.
void Tour::ChooseSnapshot(int nRow) {
    Menu().Open(mouse::Button::Right);
    Menu().Press({Key::Down, Key::Right}, 2);
    std::vector<Key> keys(static_cast<size_t>(nRow), Key::Down);
    if (!keys.empty()) Menu().Press(keys, 2);
    TakeScreenshot(L"submenu");
    Menu().Press({Key::Return}, 0);
}

/// Restores it from the menu and compares every icon with where it shall lie.
void Tour::Restore(const StoredSnapshot& snapshot, const std::vector<DesktopItem>& wanted) {
    std::vector<DesktopItem> before = desktop.Items();
    ChooseSnapshot(RowOf(snapshot));
    std::vector<DesktopItem> after;
    bool bAll = WaitUntil([&] { return IsLaidOutAs(wanted, after = desktop.Items()); });
    printf("   %-22s %12s %12s %12s\n", "icon", "snapshot", "before", "after");
    for (const DesktopItem& item : wanted) {
        const DesktopItem *pBefore = Find(before, item.strName),
                          *pAfter = Find(after, item.strName);
        if (!pBefore || !pAfter) continue;
        printf("   %-22s   %4ld, %4ld   %4ld, %4ld   %4ld, %4ld\n", Utf8(item.strName).c_str(),
               item.pt.x, item.pt.y, pBefore->pt.x, pBefore->pt.y, pAfter->pt.x, pAfter->pt.y);
    }
    Check(bAll, "every icon lies where the snapshot has it");
    Check(WaitUntil([&] { return store.Marked() == snapshot.strName; }),
          "the snapshot is marked as the one restored last");
}

void Tour::ScatterAndRestore() {
    Say("All icons are scattered; the snapshot is restored from the menu, by mouse and keyboard");
    int nMoved = 0;
    for (const DesktopItem& item : desktop.Items()) {
        desktop.Move(item.nIndex, {40 + 97 * nMoved % 800, 30 + 211 * nMoved % 600});
        ++nMoved;
    }
    Restore(chosen, layout);
}

void Tour::AskBeforeRestore() {
    Say("Where the desktop arranges its icons by itself, the program asks before it restores");
    desktop.SetAutoArrange(true);
    ChooseSnapshot(RowOf(chosen));
    HWND hwndBox = WaitForBox(kTitle);
    Check(hwndBox != nullptr, "it asks");
    TakePictureOf(hwndBox, L"auto-arrange");
    Check(ClickAway(hwndBox, IDNO) && desktop.IsAutoArranged(), "after a no nothing is changed");
    desktop.SetAutoArrange(false);
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

void Tour::DeleteAllFromMenu() {
    Say("The menu deletes all snapshots, after a question");
    Menu().Open();
    Menu().Press({Key::Down, Key::Down, Key::Return}, 0);
    HWND hwndBox = WaitForBox(kTitle);
    Check(hwndBox != nullptr, "it asks");
    TakePictureOf(hwndBox, L"question");
    Check(ClickAway(hwndBox, IDYES), "a click on Yes closes the box");
    Check(WaitUntil([&] { return store.Count() == 0; }), "there is no snapshot any more");
}

void Tour::ShowAbout() {
    Say("The menu shows the About box; chosen again, the same box comes forward");
    HWND hwndBox = nullptr;
    for (int n = 0; n < 2; ++n) {
        Menu().Open();
        Menu().Press({Key::Up, Key::Up, Key::Return}, 0);
        Check(WaitUntil([&] {
                  HWND hwnd = FindMessageBox(monitor.ProcessId(), L"About Tessaly");
                  if (!hwndBox) hwndBox = hwnd;
                  return hwnd && hwnd == hwndBox && ::GetForegroundWindow() == hwnd;
              }),
              n == 0 ? "the box is there" : "it is the same one, in front");
    }
    TakeScreenshot(L"about");
    Check(ClickAway(hwndBox, IDOK), "a click on OK closes it");
}

/// Starts the program with these arguments and looks at the box that it shows.
void Tour::ShowBox(const wchar_t* pszArguments, const wchar_t* pszPart, const std::wstring& strName,
                   int nButton) {
    StartFromNoConsole(pszArguments);
    HWND hwndBox = WaitForBox(kTitle);
    Check(
        hwndBox && ReadMessageBox(hwndBox).strText.find(pszPart) != std::wstring::npos,
        ("TSEXE64.exe " + Utf8(pszArguments) + ": a box tells \"" + Utf8(pszPart) + "\"").c_str());
    TakePictureOf(hwndBox, strName);
    Check(ClickAway(hwndBox, nButton), "a click closes it");
}

void Tour::TellInBoxes() {
    Say("Switches that tell something do so in a box, where there is no console");
    ShowBox(L"/?", L"/AUTOSTART:ON", L"switches");
    ShowBox(L"/AUTOSTART", L"does not start with Windows", L"autostart");
}

void Tour::CheckForUpdates() {
    Say("A check for updates: nothing new, no server, an update");
    HttpServer server;
    Check(server.IsRunning(), "a server of this tour answers in the place of the maker's");
    PlatformProxy proxy(server.Port());
    server.Say({Answer("text", kNothingNew)});
    ShowBox(L"check4updates", L"No updates are available", L"no-update");
    proxy.SetPort(server.RefusedPort());
    ShowBox(L"check4updates", L"Cannot connect", L"no-server", IDCANCEL);
    proxy.SetPort(server.Port());
    server.Say({Answer("text", kUpdate)});
    // The colour of links is nearly white on the test platform; this is that of Windows.
    const int nColor = COLOR_HOTLIGHT;
    const COLORREF crLink = RGB(0, 102, 204);
    ::SetSysColors(1, &nColor, &crLink);
    StartFromNoConsole(L"check4updates");
    HWND hwndDialog = WaitForBox(L"An update is available:");
    Check(hwndDialog != nullptr, "a dialog offers the update");
    TakePictureOf(hwndDialog, L"update");
    Check(ClickAway(hwndDialog, IDCANCEL), "a click on its cross closes it");
}

void Tour::LeaveByMenu() {
    Say("Exit in the menu ends the program and leaves nothing in the shell");
    Menu().Open();
    Menu().ClickLast();
    Check(monitor.WaitForEnd() == 0u, "the process has ended");
    Check(!desktop.HasGuest(), "the desktop's windows have their own procedures and no property");
    desktop.Count();
    Check(desktop.IsRunning(), "the shell goes on");
}

void Tour::TakeScreenshot(const std::wstring& strName) {
    if (!_wgetenv(L"TESSALY_SCREENSHOTS")) return;
    ::RedrawWindow(desktop.Progman(), nullptr, nullptr,
                   RDW_INVALIDATE | RDW_ALLCHILDREN | RDW_UPDATENOW);
    desktop.Count(); // answered after the painting
    TakePicture({0, 0, 1024, 768}, strName);
}

void Tour::TakePictureOf(HWND hwndBox, const std::wstring& strName) {
    if (!_wgetenv(L"TESSALY_SCREENSHOTS")) return;
    ::RedrawWindow(desktop.Progman(), nullptr, nullptr,
                   RDW_INVALIDATE | RDW_ALLCHILDREN | RDW_UPDATENOW);
    desktop.Count(); // answered after the painting
    ::SendMessageW(hwndBox, WM_NULL, 0, 0);
    RECT rc{};
    ::GetWindowRect(hwndBox, &rc);
    TakePicture(rc, strName);
}

void Tour::TakePicture(const RECT& rc, const std::wstring& strName) {
    std::wstring strFile =
        std::wstring(_wgetenv(L"TESSALY_SCREENSHOTS")) + L"/screenshot-" + strName + L".png";
    std::wstring strPlace = std::to_wstring(rc.right - rc.left) + L"x" +
                            std::to_wstring(rc.bottom - rc.top) + L"+" + std::to_wstring(rc.left) +
                            L"+" + std::to_wstring(rc.top);
    RunUnixShell(L"import -window root -crop " + strPlace + L" +repage '" + strFile + L"'");
    printf("   picture: %s\n", Utf8(strFile).c_str());
}

void Tour::Run() {
    PrepareDesktop();
    FirstCapture();
    UnchangedCapture();
    DragAndCapture();
    RememberFromMenu();
    ScatterAndRestore();
    TakeScreenshot(L"desktop");
    AskBeforeRestore();
    RestartShell();
    DeleteAllFromMenu();
    ShowAbout();
    TellInBoxes();
    CheckForUpdates();
    LeaveByMenu();
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
