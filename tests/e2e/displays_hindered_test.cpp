// Changes of the display while something else goes on: a drag, a menu, a restore, a shell that
// restarts, a session that connects.

#include "e2e/displays_test_support.h"
#include "e2e/support/keyboard.h"
#include "e2e/support/mouse.h"

namespace {
class DisplaysHindered : public DisplaysTest {
  protected:
    void SendSession(WPARAM nCode) {
        DWORD_PTR nResult = 0;
        ASSERT_TRUE(::SendMessageTimeoutW(monitor.Window(), WM_WTSSESSION_CHANGE, nCode, 1,
                                          SMTO_NORMAL, kTestDeadlineMs, &nResult));
        FlushShell();
    }
    /// What the shell's thread is about, as GetGUIThreadInfo tells.
    DWORD ShellFlags() const {
        GUITHREADINFO info{};
        info.cbSize = sizeof(info);
        ::GetGUIThreadInfo(::GetWindowThreadProcessId(desktop->List(), nullptr), &info);
        return info.flags | (info.hwndCapture ? 0x10000 : 0);
    }
};

TEST_F(DisplaysHindered, NothingIsPutBackDuringADrag) {
    StartWithTwoKnown(5);
    POINT pt = desktop->OnScreen(2);
    mouse::Drag(pt, {pt.x + 200, pt.y + 300}, mouse::Button::Left, nullptr, [&] {
        EXPECT_NE(0u, ShellFlags());
        display.SetSize(kLarge);
        EXPECT_TRUE(HoldsFor([&] { return CountRestores() == 0; }, 2 * kSettleMs + 700));
        EXPECT_TRUE(LieAs(home));
    });
    EXPECT_TRUE(WaitUntil([&] { return LieAs(large); }));
    EXPECT_EQ(1, CountRestores());
    EXPECT_EQ(home, layouts.IconsOf(TextOf(kHome)));
    EXPECT_EQ(large, layouts.IconsOf(TextOf(kLarge)));
}

TEST_F(DisplaysHindered, NothingIsPutBackWhileAMenuOfTheShellIsOpen) {
    layouts.PlantSwitch(1);
    StartDesktop(DesktopMode::Real);
    StartMonitor();
    ASSERT_TRUE(WaitUntil([&] { return IsKnownAsItIs(TextOf(kHome)); }));
    large = Shifted(310, 190);
    layouts.Plant(TextOf(kLarge), large, 1);
    Record();
    // The view's own menu, on empty ground.
    ::PostMessageW(desktop->View(), WM_CONTEXTMENU, reinterpret_cast<WPARAM>(desktop->View()),
                   MAKELPARAM(600, 300));
    ASSERT_TRUE(WaitUntil([&] { return (ShellFlags() & GUI_INMENUMODE) != 0; }));
    display.SetSize(kLarge);
    EXPECT_TRUE(HoldsFor([&] { return CountRestores() == 0; }, 2 * kSettleMs + 700));
    EXPECT_TRUE((ShellFlags() & GUI_INMENUMODE) != 0);
    ::PostMessageW(desktop->View(), WM_CANCELMODE, 0, 0);
    keyboard::Press({keyboard::Key::Escape});
    ASSERT_TRUE(WaitUntil([&] { return (ShellFlags() & GUI_INMENUMODE) == 0; }));
    EXPECT_TRUE(WaitUntil([&] { return LieAs(large); }));
    EXPECT_EQ(1, CountRestores());
}

TEST_F(DisplaysHindered, AutoArrangedIconsAreLeftAloneAndNobodyIsAsked) {
    tray = std::make_unique<TrayThread>();
    StartWithTwoKnown(4);
    desktop->SetAutoArrange(true);
    display.SetSize(kLarge);
    EXPECT_TRUE(StayAfterSettling());
    EXPECT_EQ(nullptr, FindMessageBox(monitor.ProcessId()));
    EXPECT_EQ(0, CountBalloons());
    EXPECT_TRUE(desktop->IsAutoArranged());
    EXPECT_EQ(large, layouts.IconsOf(TextOf(kLarge)));
    // It is tried once for each change.
    desktop->SetAutoArrange(false);
    EXPECT_TRUE(HoldsFor([&] { return CountRestores() == 0; }, 500));
    display.SetSize(kLarge);
    EXPECT_TRUE(ComeAfterSettling(large));
}

TEST_F(DisplaysHindered, RestoreByHandWhileTheDisplaysSettleIsFollowedByTheDisplays) {
    StartWithTwoKnown(6);
    std::wstring strOld = NameBeforeNow(3600);
    std::vector<StoredIcon> old = Shifted(40, 330);
    store.Plant(strOld, MakeSnapshotBytes(old));
    ProductLibrary library;
    for (SIZE size : {kLarge, kHome}) {
        display.SetSize(size);
        library.Restore(strOld);
        EXPECT_TRUE(LieAs(old));
        EXPECT_TRUE(ComeAfterSettling(size.cx == kHome.cx ? home : large));
        EXPECT_EQ(strOld, store.Marked()); // that mark is the hand's
    }
    EXPECT_EQ(4, CountRestores());
}

TEST_F(DisplaysHindered, DisplaysThatChangeBetweenTheComparisonAndItsAnswerAreThoseThatCount) {
    StartWithTwoKnown(6);
    const std::vector<StoredIcon> middle = Shifted(55, 33);
    layouts.Plant(TextOf(kMiddle), middle, 1);
    display.SetSize(kLarge);
    // The shell answers only after the next change.
    EXPECT_TRUE(HoldsFor([&] { return CountRestores() == 0; }, 1500));
    desktop->Hang(1500);
    display.SetSize(kMiddle);
    EXPECT_TRUE(WaitUntil([&] { return LieAs(middle); }));
    EXPECT_EQ(1, CountRestores());
    EXPECT_EQ(1, store.Count());
    EXPECT_EQ(large, layouts.IconsOf(TextOf(kLarge)));
    EXPECT_EQ(middle, layouts.IconsOf(TextOf(kMiddle)));
}

TEST_F(DisplaysHindered, CaptureThatWasAskedForUnderOtherDisplaysIsASnapshotAndNoLayout) {
    StartSwitchedOn(4);
    home = ExpectedIcons();
    Record();
    store.Clear();       // the next capture is stored
    desktop->Hang(4500); // longer than the displays take to settle
    // Sent, so that it has asked on return: what is sent would overtake what was posted.
    ::SendMessageW(monitor.Window(), WM_WTSSESSION_CHANGE, WTS_SESSION_UNLOCK, 0);
    display.SetSize(kLarge);
    EXPECT_TRUE(WaitUntil([&] { return store.Count() == 1; }));
    ASSERT_EQ(0, ::SendMessageW(monitor.Window(), WM_NULL, 0, 0)); // it is done with it
    EXPECT_EQ(1, layouts.Count());
    EXPECT_EQ(1, CountCapturesAsked()); // one asked for since the displays have settled is a layout
    FlushShell();
    EXPECT_TRUE(StayAfterSettling()); // one that the displays have led to may come meanwhile
    EXPECT_EQ(home, layouts.IconsOf(TextOf(kHome)));
    ASSERT_TRUE(Capture());
    EXPECT_TRUE(WaitUntil([&] { return IsKnownAsItIs(TextOf(kLarge)); }));
}

TEST_F(DisplaysHindered, SwitchedOffWhileTheDisplaysSettleNothingIsPutBack) {
    StartWithTwoKnown(4);
    display.SetSize(kLarge);
    EXPECT_EQ(0u, RunHost(L"/DISPLAYS:OFF /QUIET"));
    EXPECT_TRUE(StayAfterSettling());
    EXPECT_EQ(0, CountRestores());
    EXPECT_EQ(large, layouts.IconsOf(TextOf(kLarge)));
}

TEST_F(DisplaysHindered, ShellThatRestartsMeanwhileGetsItsIconsBack) {
    StartWithTwoKnown(6);
    recorder.reset(); // its windows go
    display.SetSize(kLarge);
    desktop->Kill();
    desktop->Start(); // announces itself
    desktop->Fill(6);
    ASSERT_TRUE(monitor.WaitUntilOn(*desktop));
    EXPECT_TRUE(WaitUntil([&] { return LieAs(large); }));
    EXPECT_EQ(home, layouts.IconsOf(TextOf(kHome)));
    EXPECT_EQ(large, layouts.IconsOf(TextOf(kLarge)));
    EXPECT_TRUE(StillCaptures());
}

TEST_F(DisplaysHindered, ShellThatRestartsBetweenChangesGetsItsIconsBackEachTime) {
    StartWithTwoKnown(5);
    recorder.reset();
    for (SIZE size : {kLarge, kHome, kLarge}) {
        desktop->Kill();
        display.SetSize(size);
        desktop->Start();
        desktop->Fill(5);
        ASSERT_TRUE(monitor.WaitUntilOn(*desktop));
        ShiftIcons(11, 13);
        EXPECT_TRUE(WaitUntil([&] { return LieAs(size.cx == kHome.cx ? home : large); }));
    }
    EXPECT_TRUE(StillCaptures());
}

TEST_F(DisplaysHindered, NewShellOnTheSameDisplaysIsNotPutBack) {
    StartWithTwoKnown(5);
    recorder.reset();
    desktop->Kill();
    desktop->Start(Announce::No);
    desktop->Fill(5);
    ShiftIcons(40, 30);
    ::PostMessageW(monitor.Window(), ::RegisterWindowMessageW(L"TaskbarCreated"), 0, 0);
    ASSERT_TRUE(monitor.WaitUntilOn(*desktop));
    Record();
    EXPECT_TRUE(StayAfterSettling());
    EXPECT_TRUE(IsKnownAsItIs(TextOf(kHome))); // the new round's first capture
}

TEST_F(DisplaysHindered, SessionThatConnectsCountsAsAChange) {
    StartWithTwoKnown(4);
    int nStored = 1;
    for (WPARAM nCode : {WTS_CONSOLE_CONNECT, WTS_REMOTE_CONNECT}) {
        ShiftIcons(50, 60 + static_cast<int>(nCode));
        SendSession(nCode);
        EXPECT_EQ(++nStored, store.Count()); // as ever
        EXPECT_EQ(home, layouts.IconsOf(TextOf(kHome)));
        EXPECT_TRUE(ComeAfterSettling(home));
        EXPECT_EQ(nStored, store.Count());
    }
    EXPECT_EQ(2, CountRestores());
}

TEST_F(DisplaysHindered, SessionThatIsLockedOrUnlockedIsNoChange) {
    StartWithTwoKnown(4);
    for (WPARAM nCode : {WTS_SESSION_LOCK, WTS_SESSION_UNLOCK, WTS_CONSOLE_DISCONNECT,
                         WTS_REMOTE_DISCONNECT, WTS_SESSION_LOGON}) {
        ShiftIcons(3, 2);
        SendSession(nCode);
    }
    EXPECT_TRUE(StayAfterSettling());
    EXPECT_EQ(0, CountRestores());
    EXPECT_EQ(3, store.Count()); // locked and unlocked
}

TEST_F(DisplaysHindered, MonitorThatEndsWhileTheDisplaysSettleLeavesNothing) {
    StartWithTwoKnown(4);
    recorder.reset();
    display.SetSize(kLarge);
    ASSERT_TRUE(monitor.Exit());
    EXPECT_FALSE(desktop->HasGuest());
    EXPECT_TRUE(StayAfterSettling());
    EXPECT_EQ(home, layouts.IconsOf(TextOf(kHome)));
    EXPECT_EQ(large, layouts.IconsOf(TextOf(kLarge)));
}
} // namespace
