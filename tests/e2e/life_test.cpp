// Starts, restarts and ends of the monitor and of the shell, orderly and not.

#include "e2e/engine_test_support.h"
#include "e2e/support/mouse.h"

#include <commctrl.h>

namespace {
constexpr LPARAM kProductId = 16738;
constexpr wchar_t kNoDesktopText[] =
    L"Cannot obtain the desktop properties. Please report this error to technical support. ";

std::wstring HostPath() { return ProductFolder() + L"\\TSEXE64.exe"; }

class Life : public EngineTest {
  protected:
    /// The present monitor is on the present desktop and its capture of that is stored.
    testing::AssertionResult TookUp() {
        if (!monitor.WaitUntilOn(*desktop)) return testing::AssertionFailure() << "not attached";
        if (!WaitUntil([&] { return store.Count() > 0; }))
            return testing::AssertionFailure() << "nothing was captured";
        // The colour's turn comes after the capture under way.
        FlushShell();
        if (store.Newest()->Icons() != ExpectedIcons())
            return testing::AssertionFailure() << "another desktop was captured";
        return testing::AssertionSuccess();
    }
    /// Nobody of ours is in the shell, which goes on working.
    testing::AssertionResult ShellIsClean() {
        if (!desktop->IsRunning()) return testing::AssertionFailure() << "the shell has ended";
        if (desktop->HasGuest()) return testing::AssertionFailure() << "somebody is attached";
        std::map<std::wstring, std::wstring> state = desktop->State();
        for (const wchar_t* pszProps : {L"view.props", L"list.props"}) {
            for (const wchar_t* pszOurs : {L"CSWND", L"TSLY"}) {
                if (state[pszProps].find(pszOurs) != std::wstring::npos)
                    return testing::AssertionFailure() << "a property is left";
            }
        }
        desktop->Move(0, {77, 88});
        desktop->Notify(LVN_BEGINDRAG);
        ::PostMessageW(desktop->List(), WM_MOUSEMOVE, 0, 0);
        FlushShell();
        return testing::AssertionSuccess();
    }
};

TEST_F(Life, TakesUpTheShellThatWasKilledAndStartedTenTimes) {
    StartDesktop(DesktopMode::Real);
    StartMonitor();
    for (int n = 0; n < 10; ++n) {
        store.Clear();
        desktop->Kill();
        desktop->Start();
        ASSERT_TRUE(TookUp()) << n;
        ASSERT_TRUE(monitor.IsRunning());
    }
    EXPECT_TRUE(StillCaptures());
    ASSERT_TRUE(monitor.Exit());
    EXPECT_TRUE(ShellIsClean());
}

TEST_F(Life, TakesUpTheShellAfterACrashAndAfterAnOrderlyEnd) {
    StartDesktop(DesktopMode::WorkerW);
    StartMonitor();
    for (bool bOrderly : {false, true, true, false}) {
        if (bOrderly) {
            EXPECT_EQ(0u, desktop->End());
        } else {
            desktop->Crash();
        }
        EXPECT_TRUE(monitor.IsRunning());
        desktop->Start();
        desktop->Fill(3);
        ASSERT_TRUE(monitor.WaitUntilOn(*desktop))
            << (FindMessageBox(monitor.ProcessId()) ? "a box tells why" : "no box tells why");
        EXPECT_TRUE(StillCaptures());
    }
}

TEST_F(Life, TakesUpAShellThatAnnouncesItselfWithoutHavingGone) {
    StartPlain(4);
    StartMonitor();
    for (int n = 0; n < 5; ++n) {
        HWND hwndBefore = monitor.Window();
        ::PostMessageW(hwndBefore, ::RegisterWindowMessageW(L"TaskbarCreated"), 0, 0);
        ASSERT_TRUE(WaitUntil([&] { return !::IsWindow(hwndBefore); }));
        ASSERT_TRUE(monitor.WaitUntilOn(*desktop));
        EXPECT_TRUE(StillCaptures());
    }
    ASSERT_TRUE(monitor.Exit());
    EXPECT_TRUE(ShellIsClean());
}

TEST_F(Life, ShellWorksOnWhenTheMonitorIsKilled) {
    StartPlain(5);
    for (int n = 0; n < 3; ++n) {
        StartMonitor();
        monitor.Kill();
        auto before = AllValues(store);
        // The windows still have the agent in them, with nobody to talk to.
        POINT pt = desktop->Items().at(1).pt, ptHold = desktop->OnScreen(1);
        int dx = n % 2 ? -150 : 150;
        mouse::Drag(ptHold, {ptHold.x + dx, ptHold.y + 40});
        EXPECT_TRUE(WaitUntil([&] { return desktop->Items().at(1).pt.x == pt.x + dx; }));
        desktop->Notify(LVN_SETDISPINFOW);
        ::PostMessageW(desktop->List(), CompanyMsg(), kCodeCapture, 0);
        FlushShell();
        EXPECT_EQ(5, desktop->Count());
        EXPECT_TRUE(desktop->IsRunning());
        EXPECT_EQ(before, AllValues(store));
    }
    StartMonitor(); // a new one works, and takes the old one's leavings away
    EXPECT_EQ(ExpectedIcons(), store.Newest()->Icons());
    EXPECT_TRUE(StillCaptures());
    ASSERT_TRUE(monitor.Exit());
    EXPECT_TRUE(ShellIsClean());
}

TEST_F(Life, ShellThatOutlivedAKilledMonitorEndsOrderly) {
    StartPlain(3);
    StartMonitor();
    monitor.Kill();
    EXPECT_EQ(0u, desktop->End());
    desktop->Start();
    desktop->Fill(3);
    StartMonitor();
    EXPECT_TRUE(StillCaptures());
}

enum class Way { ExitSwitch, CloseCode, BroadcastCode, WmClose, EndOfSession };
class EveryExit : public Life, public testing::WithParamInterface<std::tuple<Way, DesktopMode>> {
  protected:
    void Leave(Way way) {
        UINT uMsg = CompanyMsg();
        switch (way) {
        case Way::ExitSwitch: EXPECT_TRUE(monitor.Exit()); break;
        case Way::CloseCode: monitor.PostCompanyMsg(kCodeClose, kProductId); break;
        case Way::BroadcastCode:
            ::PostMessageW(HWND_BROADCAST, uMsg, kCodeClose, kProductId);
            break;
        case Way::WmClose: ::PostMessageW(monitor.Window(), WM_CLOSE, 0, 0); break;
        case Way::EndOfSession:
            EXPECT_NE(0, ::SendMessageW(monitor.Window(), WM_QUERYENDSESSION, 0, 0));
            ::SendMessageW(monitor.Window(), WM_ENDSESSION, TRUE, 0);
            break;
        }
    }
};
TEST_P(EveryExit, LeavesNothingInTheShell) {
    auto [way, mode] = GetParam();
    StartDesktop(mode);
    if (mode != DesktopMode::Real) desktop->Fill(3);
    StartMonitor();
    HWND hwndMonitor = monitor.Window();
    Leave(way);
    EXPECT_EQ(DWORD{0}, monitor.WaitForEnd());
    EXPECT_FALSE(::IsWindow(hwndMonitor));
    EXPECT_TRUE(ShellIsClean());
    EXPECT_EQ(0u, desktop->End());
}
std::string WayName(const testing::TestParamInfo<std::tuple<Way, DesktopMode>>& row) {
    constexpr const char* kNames[] = {"ExitSwitch", "CloseCode", "BroadcastCode", "WmClose",
                                      "EndOfSession"};
    auto [way, mode] = row.param;
    return std::string(kNames[static_cast<int>(way)]) +
           (mode == DesktopMode::Real ? "OnReal" : "OnPlain");
}
INSTANTIATE_TEST_SUITE_P(Ways, EveryExit,
                         testing::Combine(testing::Values(Way::ExitSwitch, Way::CloseCode,
                                                          Way::BroadcastCode, Way::WmClose,
                                                          Way::EndOfSession),
                                          testing::Values(DesktopMode::Real, DesktopMode::Plain)),
                         WayName);

TEST_F(Life, ExitsWhileTheShellIsAway) {
    StartPlain(3);
    StartMonitor();
    desktop->Kill();
    EXPECT_TRUE(monitor.Exit());
}

TEST_F(Life, ExitsWhileTheShellIsComingBack) {
    StartPlain(3);
    for (int n = 0; n < 3; ++n) {
        StartMonitor();
        desktop->Kill();
        desktop->Start(); // announces itself
        EXPECT_TRUE(monitor.Exit());
        EXPECT_FALSE(desktop->HasGuest());
        desktop->Fill(3);
    }
}

TEST_F(Life, ExitsThoughItGoesRoundAgainMeanwhile) {
    StartPlain(3);
    StartMonitor();
    // The shell does not answer for a while, the monitor waits for it, and what closes the present
    // window stands before what is asked of it.
    desktop->Hang(2000);
    ::PostMessageW(monitor.Window(), WM_QUERYENDSESSION, 0, 0);
    ::PostMessageW(monitor.Window(), ::RegisterWindowMessageW(L"TaskbarCreated"), 0, 0);
    ::PostMessageW(monitor.Window(), WM_CLOSE, 0, 0);
    EXPECT_TRUE(monitor.Exit());
    EXPECT_FALSE(desktop->HasGuest());
}

TEST_F(Life, SaysThatThereIsNoDesktopAndEnds) {
    monitor.Start();
    std::optional<SeenMessageBox> box = AnswerMessageBox(monitor.ProcessId(), IDOK, 20000);
    ASSERT_TRUE(box);
    EXPECT_EQ(L"Tessaly", box->strTitle);
    EXPECT_EQ(kNoDesktopText, box->strText);
    EXPECT_EQ((std::vector<int>{IDOK}), box->buttons);
    EXPECT_TRUE(monitor.WaitForEnd());
    EXPECT_FALSE(store.KeyExists());
}

TEST_F(Life, SaysThatThereIsNoDesktopWhenARestartFindsNone) {
    StartPlain(3);
    StartMonitor();
    desktop->Kill();
    ::PostMessageW(monitor.Window(), ::RegisterWindowMessageW(L"TaskbarCreated"), 0, 0);
    std::optional<SeenMessageBox> box = AnswerMessageBox(monitor.ProcessId(), IDOK);
    ASSERT_TRUE(box);
    EXPECT_EQ(kNoDesktopText, box->strText);
    EXPECT_TRUE(monitor.WaitForEnd());
}

TEST_F(Life, SecondStartLeavesAtOnce) {
    StartPlain(3);
    StartMonitor();
    HWND hwndMonitor = monitor.Window();
    for (const wchar_t* pszArguments : {L"/QUIET", L""}) {
        ChildProcess second;
        second.Start(HostPath(), pszArguments);
        EXPECT_EQ(DWORD{0}, second.WaitForEnd());
    }
    EXPECT_EQ(hwndMonitor, monitor.Window());
    EXPECT_TRUE(desktop->IsFullyAttached());
    EXPECT_TRUE(StillCaptures());
}

TEST_F(Life, StartsWithItsAnnouncement) {
    StartPlain(3);
    monitor.StartOn(*desktop, L"");
    ASSERT_TRUE(Capture());
    EXPECT_EQ(1, store.Count());
}

TEST_F(Life, ExitWithNoneRunningIsDone) {
    ChildProcess host;
    host.Start(HostPath(), L"/EXIT");
    EXPECT_EQ(DWORD{0}, host.WaitForEnd());
}

TEST_F(Life, UnknownSwitchIsToldAndTheRunningOneGoesOn) {
    StartPlain(3);
    StartMonitor();
    ChildProcess host;
    host.StartForBoxes(HostPath(), L"/BOGUS");
    std::optional<SeenMessageBox> box = AnswerMessageBox(host.Id(), IDOK);
    ASSERT_TRUE(box);
    for (const wchar_t* pszPart : {L"/BOGUS", L"/QUIET", L"/EXIT"}) {
        EXPECT_NE(std::wstring::npos, box->strText.find(pszPart));
    }
    EXPECT_NE(DWORD{0}, host.WaitForEnd());
    EXPECT_TRUE(StillCaptures());
}

/// A folder with a copy of the program, and another that is the current one.
class TwoFolders : public Life {
  protected:
    void SetUp() override {
        Life::SetUp();
        wchar_t sz[MAX_PATH];
        ::GetTempPathW(MAX_PATH, sz);
        strBase = sz + std::wstring(L"two folders");
        strHost = strBase + L"\\host";
        strCurrent = strBase + L"\\current";
        for (const std::wstring& str : {strBase, strHost, strCurrent}) {
            ::CreateDirectoryW(str.c_str(), nullptr);
        }
        ASSERT_TRUE(Copy(HostPath(), strHost + L"\\TSEXE64.exe"));
    }
    void TearDown() override {
        host.Kill();
        Life::TearDown();
        for (const std::wstring& str : {strHost, strCurrent}) {
            ::DeleteFileW((str + L"\\TSDLL64.dll").c_str());
            ::DeleteFileW((str + L"\\TSEXE64.exe").c_str());
            ::RemoveDirectoryW(str.c_str());
        }
        ::RemoveDirectoryW(strBase.c_str());
    }
    static bool Copy(const std::wstring& strFrom, const std::wstring& strTo) {
        return ::CopyFileW(strFrom.c_str(), strTo.c_str(), FALSE) != 0;
    }
    static void WriteText(const std::wstring& strPath) {
        HANDLE h =
            ::CreateFileW(strPath.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr);
        DWORD cb = 0;
        ::WriteFile(h, "no library", 10, &cb, nullptr);
        ::CloseHandle(h);
    }
    /// The copy says that something is wrong with that very file, and ends with a failure.
    void ExpectRefusal() {
        host.Start(strHost + L"\\TSEXE64.exe", L"/QUIET", strCurrent);
        std::optional<SeenMessageBox> box = AnswerMessageBox(host.Id(), IDOK);
        ASSERT_TRUE(box);
        EXPECT_EQ(L"Tessaly", box->strTitle);
        EXPECT_NE(std::wstring::npos, box->strText.find(strHost + L"\\TSDLL64.dll"));
        std::optional<DWORD> exitCode = host.WaitForEnd();
        ASSERT_TRUE(exitCode);
        EXPECT_NE(0u, *exitCode);
        EXPECT_FALSE(desktop->HasGuest());
        host.Kill();
    }
    std::wstring strBase, strHost, strCurrent;
    ChildProcess host;
};

TEST_F(TwoFolders, LibraryThatIsMissingOrForeignIsToldAndNoneElsewhereIsTaken) {
    StartPlain(3);
    ASSERT_TRUE(Copy(ProductFolder() + L"\\TSDLL64.dll", strCurrent + L"\\TSDLL64.dll"));
    ExpectRefusal();
    WriteText(strHost + L"\\TSDLL64.dll");
    ExpectRefusal();
    ASSERT_TRUE(Copy(L"C:\\windows\\system32\\version.dll", strHost + L"\\TSDLL64.dll"));
    ExpectRefusal(); // a library, but without what the program calls
    EXPECT_FALSE(store.KeyExists());
}

TEST_F(TwoFolders, LibraryBesideTheProgramIsTakenFromAnyCurrentFolder) {
    StartPlain(3);
    ASSERT_TRUE(Copy(ProductFolder() + L"\\TSDLL64.dll", strHost + L"\\TSDLL64.dll"));
    WriteText(strCurrent + L"\\TSDLL64.dll");
    host.Start(strHost + L"\\TSEXE64.exe", L"/QUIET", strCurrent);
    ASSERT_TRUE(WaitUntil([&] { return desktop->IsFullyAttached() && store.Count() == 1; }));
    EXPECT_EQ(
        0, ::lstrcmpiW((strHost + L"\\TSDLL64.dll").c_str(), desktop->State()[L"library"].c_str()));
    ChildProcess closer;
    closer.Start(strHost + L"\\TSEXE64.exe", L"/EXIT", strCurrent);
    EXPECT_EQ(DWORD{0}, closer.WaitForEnd());
    EXPECT_EQ(DWORD{0}, host.WaitForEnd());
    EXPECT_TRUE(ShellIsClean());
    desktop->End(); // it holds the library's file
}
} // namespace
