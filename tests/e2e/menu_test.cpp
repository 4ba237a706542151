// The tray menu of the running product, in the hands of a person at keyboard and mouse.

#include "e2e/engine_test_support.h"
#include "e2e/support/keyboard.h"
#include "e2e/support/mouse.h"
#include "e2e/support/tray_menu.h"
#include "support/launch_reports.h"

namespace {
using keyboard::Key;

constexpr wchar_t kSetupPath[] = L"Software\\Orvanta\\Tessaly\\Setup";

std::wstring Today() {
    wchar_t sz[128] = {};
    ::GetDateFormatW(LOCALE_USER_DEFAULT, 0, nullptr, nullptr, sz, 128);
    return sz;
}

/// A value of the key "Setup" as text; empty if it is not there.
std::wstring SetupText(const wchar_t* pszName) {
    wchar_t sz[128] = {};
    DWORD cb = sizeof(sz) - sizeof(wchar_t);
    ::RegGetValueW(HKEY_CURRENT_USER, kSetupPath, pszName, RRF_RT_ANY, nullptr, sz, &cb);
    return sz;
}

class Menu : public EngineTest {
  protected:
    void SetUp() override {
        EngineTest::SetUp();
        ::RegDeleteTreeW(HKEY_CURRENT_USER, kSetupPath); // the first day of use: no recommendation
        mouse::MoveTo({500, 300});
    }
    /// The popups of the monitor's process that are to be seen.
    int CountMenus() const {
        int n = 0;
        for (HWND hwnd = nullptr; (hwnd = ::FindWindowExW(nullptr, hwnd, L"#32768", nullptr));) {
            DWORD dwProcess = 0;
            ::GetWindowThreadProcessId(hwnd, &dwProcess);
            n += dwProcess == monitor.ProcessId() && ::IsWindowVisible(hwnd);
        }
        return n;
    }
    void OpenMenu() {
        monitor.PostCompanyMsg(kCodeOpenMenu, 1);
        ASSERT_TRUE(WaitUntil([this] { return CountMenus() == 1; }));
    }
    void Choose(const std::vector<Key>& keys) {
        OpenMenu();
        keyboard::Press(keys);
        EXPECT_TRUE(WaitUntil([this] { return CountMenus() == 0; }));
    }
};

TEST_F(Menu, RememberStoresTheLayoutAtOnce) {
    StartPlain(5);
    StartMonitor();
    ASSERT_EQ(1, store.Count());
    MoveSomething();
    Choose({Key::Down, Key::Return});
    EXPECT_TRUE(WaitUntil([this] { return store.Count() == 2; }));
    EXPECT_EQ(ExpectedIcons(), store.Newest()->Icons());
}

TEST_F(Menu, RestorePutsTheIconsOfTheChosenSnapshotBack) {
    StartPlain(5);
    StartMonitor();
    std::wstring strFirst = store.Newest()->strName;
    auto before = Places();
    for (int n = 0; n < 5; ++n) desktop->Move(n, {400 - 20 * n, 300});
    ASSERT_TRUE(Capture());
    ASSERT_EQ(2, store.Count());
    // Newest first: the older one is the second in the sub-menu.
    Choose({Key::Down, Key::Down, Key::Right, Key::Down, Key::Return});
    EXPECT_TRUE(WaitUntil([&] { return store.Marked() == strFirst; }));
    for (const auto& [strName, pt] : Places()) {
        EXPECT_EQ(before[strName].x, pt.x) << strName;
        EXPECT_EQ(before[strName].y, pt.y) << strName;
    }
    EXPECT_EQ(2, store.Count());
}

TEST_F(Menu, DeleteAllAsksAndEmptiesTheStore) {
    StartPlain(3);
    StartMonitor();
    const std::vector<Key> kDelete = {Key::Down, Key::Down, Key::Down, Key::Return};
    Choose(kDelete);
    auto box = AnswerMessageBox(monitor.ProcessId(), IDNO);
    ASSERT_TRUE(box.has_value());
    EXPECT_EQ(L"Are you sure you want to delete all snapshots?", box->strText);
    EXPECT_EQ(1, store.Count());
    Choose(kDelete);
    ASSERT_TRUE(AnswerMessageBox(monitor.ProcessId(), IDYES).has_value());
    EXPECT_TRUE(WaitUntil([this] { return store.Count() == 0; }));
    EXPECT_TRUE(StillCaptures());
}

TEST_F(Menu, ExitEndsTheMonitorAndLeavesTheDesktopClean) {
    StartPlain(3);
    StartMonitor();
    Choose({Key::Up, Key::Return});
    EXPECT_EQ(0u, monitor.WaitForEnd());
    EXPECT_FALSE(desktop->HasGuest());
}

TEST_F(Menu, MouseChoosesAnItem) {
    StartPlain(3);
    StartMonitor();
    OpenMenu();
    RECT rc{};
    ::GetWindowRect(::FindWindowW(L"#32768", nullptr), &rc);
    // It opens beside the cursor, on the side that is away from the screen's nearest edges.
    EXPECT_EQ(500 + ::GetSystemMetrics(SM_CXSMICON), rc.left);
    EXPECT_EQ(300 + ::GetSystemMetrics(SM_CYSMICON), rc.top);
    mouse::Click({rc.left + 30, rc.bottom - 12}); // the last one: Exit
    EXPECT_EQ(0u, monitor.WaitForEnd());
}

TEST_F(Menu, ExitWhileACaptureIsUnderWayEndsTheMonitorAllTheSame) {
    StartPlain(3);
    StartMonitor();
    MoveSomething();
    OpenMenu();
    keyboard::Press({Key::Up});
    desktop->Hang(1500); // the capture waits in the shell's queue
    MonitorProcess::RequestCapture(*desktop);
    keyboard::Press({Key::Return});
    EXPECT_EQ(0u, monitor.WaitForEnd());
    EXPECT_TRUE(WaitUntil([this] { return !desktop->HasGuest(); }));
}

TEST_F(Menu, EscapeChoosesNothing) {
    StartPlain(3);
    StartMonitor();
    uint64_t nWritten = store.LastWriteTime();
    Choose({Key::Down, Key::Escape});
    EXPECT_TRUE(monitor.IsRunning());
    EXPECT_EQ(nWritten, store.LastWriteTime());
    EXPECT_TRUE(StillCaptures());
}

TEST_F(Menu, DoubleClickOpensOneMenu) {
    StartPlain(3);
    StartMonitor();
    for (int n = 0; n < 3; ++n) monitor.PostCompanyMsg(kCodeOpenMenu, 1);
    ASSERT_TRUE(WaitUntil([this] { return CountMenus() == 1; }));
    keyboard::Press({Key::Escape});
    EXPECT_TRUE(WaitUntil([this] { return CountMenus() == 0; }));
    EXPECT_TRUE(StillCaptures());
    EXPECT_EQ(0, CountMenus()); // and it stays at that
}

TEST_F(Menu, DoubleClickOnTheIconOpensOneMenu) {
    StartPlain(3);
    StartMonitor();
    TrayMenu menu(monitor.ProcessId());
    menu.Open(); // on this icon; now twice in quick succession
    keyboard::Press({Key::Escape});
    ASSERT_TRUE(WaitUntil([&] { return CountMenus() == 0; }));
    mouse::Click(TrayMenu::Icon());
    mouse::Click(TrayMenu::Icon());
    EXPECT_TRUE(WaitUntil([&] { return CountMenus() == 1; }));
    EXPECT_TRUE(StillCaptures());
    EXPECT_GE(1, CountMenus());
    keyboard::Press({Key::Escape});
    EXPECT_TRUE(WaitUntil([&] { return CountMenus() == 0; }));
    menu.Open(mouse::Button::Right); // and the icon still serves
    keyboard::Press({Key::Up, Key::Return});
    EXPECT_EQ(0u, monitor.WaitForEnd());
}

TEST_F(Menu, CaptureIsStoredWhileTheMenuIsOpen) {
    StartPlain(3);
    StartMonitor();
    OpenMenu();
    EXPECT_TRUE(StillCaptures());
    EXPECT_EQ(1, CountMenus());
    keyboard::Press({Key::Escape});
    EXPECT_TRUE(WaitUntil([this] { return CountMenus() == 0; }));
}

TEST_F(Menu, OutcomeOfARememberedLayoutComesWhileTheMenuIsOpenAgain) {
    StartPlain(3);
    StartMonitor();
    MoveSomething();
    desktop->Hang(700); // so long the capture that was asked for waits
    Choose({Key::Down, Key::Return});
    OpenMenu();
    EXPECT_TRUE(WaitUntil([this] { return store.Count() == 2; }));
    EXPECT_TRUE(StillCaptures()); // the balloon is out; the monitor's thread goes on
    EXPECT_EQ(1, CountMenus());
    keyboard::Press({Key::Escape});
    EXPECT_TRUE(WaitUntil([this] { return CountMenus() == 0; }));
}

TEST_F(Menu, ShellThatRestartsWhileTheMenuIsOpenIsTakenUp) {
    StartPlain(3);
    StartMonitor();
    OpenMenu();
    desktop->Kill();
    desktop->Start(); // announces itself
    desktop->Fill(4);
    EXPECT_TRUE(monitor.WaitUntilOn(*desktop));
    EXPECT_EQ(0, CountMenus());
    EXPECT_TRUE(StillCaptures());
    OpenMenu();
    keyboard::Press({Key::Escape});
}

TEST_F(Menu, DayOfUseIsRememberedAtTheStart) {
    StartPlain(3);
    std::wstring strBefore = Today(); // another day, if it is midnight
    StartMonitor();
    std::wstring strDay = SetupText(L"LastUse");
    EXPECT_TRUE(strDay == strBefore || strDay == Today()) << strDay;
    EXPECT_EQ(L"", SetupText(L"DayCount"));
}

const std::vector<Key> kAbout = {Key::Up, Key::Up, Key::Return};
constexpr const wchar_t* kAboutTitle = L"About Tessaly";

/// The menu and the About box that it opens.
class AboutBox : public Menu {
  protected:
    void SetUp() override {
        Menu::SetUp();
        StartPlain(3);
        StartMonitor();
    }
    /// Opens it and returns when it takes messages.
    void OpenAbout() {
        Choose(kAbout);
        ASSERT_TRUE(WaitUntil([this] {
            hwndBox = FindMessageBox(monitor.ProcessId(), kAboutTitle);
            return hwndBox && ::GetForegroundWindow() == hwndBox;
        }));
        ::SendMessageW(hwndBox, WM_NULL, 0, 0);
    }
    std::wstring TextOf(int nId) const {
        wchar_t sz[256] = L"";
        ::SendMessageW(::GetDlgItem(hwndBox, nId), WM_GETTEXT, 256, reinterpret_cast<LPARAM>(sz));
        return sz;
    }
    POINT MiddleOf(int nId) const {
        RECT rc{};
        ::GetWindowRect(::GetDlgItem(hwndBox, nId), &rc);
        return {(rc.left + rc.right) / 2, (rc.top + rc.bottom) / 2};
    }
    bool IsForeground() const {
        return WaitUntil([this] { return ::GetForegroundWindow() == hwndBox; });
    }
    bool HasClosed() const {
        return WaitUntil([this] { return !::IsWindow(hwndBox); });
    }
    HWND hwndBox = nullptr;
};

TEST_F(AboutBox, ComesFromTheMenuAndTheMonitorGoesOnMeanwhile) {
    OpenAbout();
    EXPECT_EQ(L"Tessaly v. 1.1", TextOf(1003));
    EXPECT_EQ(L"Copyright (c) 2017 Orvanta. All rights reserved.", TextOf(1004));
    EXPECT_TRUE(StillCaptures());
    EXPECT_TRUE(::IsWindow(hwndBox));
    keyboard::Press({Key::Escape});
    EXPECT_TRUE(HasClosed());
    EXPECT_TRUE(StillCaptures());
}

TEST_F(AboutBox, SecondChoiceBringsTheOpenOneForward) {
    OpenAbout();
    Choose(kAbout); // the menu opens all the same
    EXPECT_TRUE(IsForeground());
    EXPECT_EQ(nullptr, ::FindWindowExW(nullptr, hwndBox, L"#32770", kAboutTitle));
    ::ShowWindow(hwndBox, SW_MINIMIZE);
    ASSERT_TRUE(WaitUntil([this] { return ::IsIconic(hwndBox); }));
    Choose(kAbout);
    EXPECT_TRUE(WaitUntil([this] { return !::IsIconic(hwndBox); }));
    EXPECT_TRUE(IsForeground());
    keyboard::Press({Key::Return});
    EXPECT_TRUE(HasClosed());
    EXPECT_EQ(nullptr, ::FindWindowExW(nullptr, nullptr, L"#32770", kAboutTitle));
}

TEST_F(AboutBox, ClickOnTheWebAddressOpensItInTheBrowser) {
    LaunchReports reports;
    std::wstring strBrowser = FolderBeside(L"tests") + L"\\launch_probe.exe";
    ClassKey handler(L"https\\shell\\open\\command", (L"\"" + strBrowser + L"\" %1").c_str());
    OpenAbout();
    RECT rc{};
    ::GetWindowRect(::GetDlgItem(hwndBox, 1002), &rc);
    mouse::Click({rc.left + 30, (rc.top + rc.bottom) / 2});
    auto report = reports.Take();
    ASSERT_TRUE(report);
    EXPECT_NE(std::wstring::npos, report->strLine.find(L" https://orvanta.example/"));
    mouse::Click(MiddleOf(IDOK));
    EXPECT_TRUE(HasClosed());
    EXPECT_TRUE(reports.IsEmpty());
}

TEST_F(AboutBox, ExitInTheMenuEndsTheMonitorWithTheBoxOpen) {
    OpenAbout();
    Choose({Key::Up, Key::Return});
    EXPECT_EQ(0u, monitor.WaitForEnd());
    EXPECT_TRUE(HasClosed());
    EXPECT_FALSE(desktop->HasGuest());
}

TEST_F(AboutBox, AnotherStartWithExitEndsTheMonitorWithTheBoxOpen) {
    OpenAbout();
    EXPECT_TRUE(monitor.Exit());
    EXPECT_FALSE(desktop->HasGuest());
}
} // namespace
