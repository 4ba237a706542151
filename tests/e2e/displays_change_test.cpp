// Changes of the real display with layouts that are known and unknown: what is put back, when, and
// what is told.

#include "e2e/displays_test_support.h"

namespace {
class DisplaysChange : public DisplaysTest {};

TEST_F(DisplaysChange, KnownLayoutIsPutBackOnceWithABalloon) {
    tray = std::make_unique<TrayThread>();
    StartWithTwoKnown(8);
    auto before = AllValues(store);
    display.SetSize(kLarge);
    ASSERT_TRUE(ComeAfterSettling(large));
    EXPECT_TRUE(WaitUntil([&] { return CountBalloons() == 1; }));
    EXPECT_EQ(1, CountRestores());
    EXPECT_EQ(1, CountCapturesAsked());  // to compare with, and only for that
    EXPECT_EQ(before, AllValues(store)); // neither stored nor marked
    // Captures are put off for a moment, as after a restore by the menu.
    EXPECT_TRUE(WaitUntil([&] { return recorder->Count(monitor.Window(), WM_TIMER, 11) == 1; }));
    FlushShell();
    EXPECT_EQ(large, ExpectedIcons());
    EXPECT_TRUE(HoldsFor([&] { return CountRestores() == 1 && CountBalloons() == 1; }, 1500));
    EXPECT_EQ(home, layouts.IconsOf(TextOf(kHome)));
    EXPECT_EQ(large, layouts.IconsOf(TextOf(kLarge)));
}

TEST_F(DisplaysChange, ChangeRenewsWhenTheSetUpWasUsed) {
    StartWithTwoKnown(4);
    uint64_t nBefore = Now();
    display.SetSize(kLarge);
    EXPECT_TRUE(WaitUntil([&] { return layouts.Of(TextOf(kLarge))->Used() >= nBefore; }));
    EXPECT_GE(Now(), *layouts.Of(TextOf(kLarge))->Used());
    EXPECT_EQ(large, layouts.IconsOf(TextOf(kLarge)));
}

TEST_F(DisplaysChange, SameLayoutIsLeftAloneWithoutABalloon) {
    tray = std::make_unique<TrayThread>();
    StartWithTwoKnown(4);
    layouts.Plant(TextOf(kLarge), home, 1);
    desktop->Reorder({2, 0, 3, 1}); // the order does not count, and so the index
    auto before = AllValues(store);
    display.SetSize(kLarge);
    EXPECT_TRUE(WaitUntil([&] { return CountCapturesAsked() == 1; }));
    FlushShell();
    EXPECT_TRUE(StayAfterSettling());
    EXPECT_EQ(0, CountBalloons());
    EXPECT_EQ(1, CountCapturesAsked());
    EXPECT_EQ(before, AllValues(store));
}

TEST_F(DisplaysChange, UnknownSetUpIsLeftAloneUntilACaptureMakesItKnown) {
    tray = std::make_unique<TrayThread>();
    StartSwitchedOn(4);
    home = ExpectedIcons();
    Record();
    display.SetSize(kLarge);
    EXPECT_TRUE(StayAfterSettling());
    EXPECT_EQ(0, CountCapturesAsked());
    EXPECT_EQ(1, layouts.Count());
    ShiftIcons(300, 220);
    ASSERT_TRUE(Capture());
    EXPECT_TRUE(WaitUntil([&] { return IsKnownAsItIs(TextOf(kLarge)); }));
    large = ExpectedIcons();
    EXPECT_EQ(2, store.Count());
    EXPECT_EQ(home, layouts.IconsOf(TextOf(kHome)));
    // And now there and back.
    display.SetSize(kHome);
    ASSERT_TRUE(ComeAfterSettling(home));
    display.SetSize(kLarge);
    ASSERT_TRUE(ComeAfterSettling(large));
    EXPECT_EQ(2, CountRestores());
    EXPECT_TRUE(WaitUntil([&] { return CountBalloons() == 2; }));
    EXPECT_EQ(2, store.Count());
    EXPECT_FALSE(store.Marked());
}

TEST_F(DisplaysChange, SameSizeOnceMoreCountsAsAChange) {
    StartWithTwoKnown(4);
    ShiftIcons(120, 90); // nobody has heard of it
    display.SetSize(kHome);
    EXPECT_TRUE(ComeAfterSettling(home));
    EXPECT_EQ(1, CountRestores());
    EXPECT_EQ(1, store.Count());
}

TEST_F(DisplaysChange, EachFurtherChangeStartsTheTimeAnew) {
    StartWithTwoKnown(4);
    for (SIZE size : {kLarge, kMiddle, kHome}) {
        display.SetSize(size);
        EXPECT_TRUE(HoldsFor([&] { return CountCapturesAsked() == 0; }, 1000));
    }
    EXPECT_TRUE(LieAs(home));
    display.SetSize(kLarge);
    EXPECT_TRUE(ComeAfterSettling(large));
    EXPECT_EQ(1, CountRestores());
    EXPECT_EQ(1, CountCapturesAsked());
}

TEST_F(DisplaysChange, TwentyTimesThereAndBackInQuickSuccessionArePutBackOnce) {
    StartWithTwoKnown(4);
    layouts.Plant(TextOf(kMiddle), SomeIcons(3), 1);
    auto before = AllValues(store);
    for (int n = 0; n < 20; ++n) {
        display.SetSize(kMiddle);
        display.SetSize(n < 19 ? kHome : kLarge);
    }
    EXPECT_TRUE(ComeAfterSettling(large));
    EXPECT_EQ(1, CountRestores());
    EXPECT_EQ(before, AllValues(store));
    EXPECT_EQ(home, layouts.IconsOf(TextOf(kHome)));
    EXPECT_EQ(SomeIcons(3), layouts.IconsOf(TextOf(kMiddle)));
}

/// Each part takes several settling times.
class DisplaysThereAndBack : public DisplaysChange, public testing::WithParamInterface<int> {};
TEST_P(DisplaysThereAndBack, IconsAreThoseOfTheDisplaysEachTime) {
    StartWithTwoKnown(12);
    const std::vector<StoredIcon> middle = Shifted(70, 40);
    layouts.Plant(TextOf(kMiddle), middle, 1);
    const std::vector<std::pair<SIZE, std::vector<StoredIcon>>> known{
        {kHome, home}, {kLarge, large}, {kMiddle, middle}};
    auto before = AllValues(store);
    size_t nNow = 0;
    for (int n = 0; n < 5; ++n) {
        nNow = (nNow + 1 + static_cast<size_t>(n + GetParam()) % 2) % 3;
        display.SetSize(known[nNow].first);
        ASSERT_TRUE(ComeAfterSettling(known[nNow].second)) << n;
        EXPECT_EQ(n + 1, CountRestores());
    }
    EXPECT_EQ(before, AllValues(store));
    for (const auto& [size, icons] : known) EXPECT_EQ(icons, layouts.IconsOf(TextOf(size)));
    EXPECT_TRUE(StillCaptures());
}
INSTANTIATE_TEST_SUITE_P(Parts, DisplaysThereAndBack, testing::Range(0, 4));

TEST_F(DisplaysChange, IconsThatCameSinceStayWhereTheyAre) {
    StartWithTwoKnown(4);
    desktop->Add(L"came since", {640, 480});
    desktop->Remove(1); // and one that has gone is not missed
    large.erase(large.begin() + 1);
    display.SetSize(kLarge);
    ASSERT_TRUE(ComeAfterSettling(large));
    FlushShell();
    DesktopItem item = desktop->ItemNamed(L"came since");
    EXPECT_EQ(640, item.pt.x);
    EXPECT_EQ(480, item.pt.y);
    EXPECT_EQ(4, desktop->Count());
    EXPECT_EQ(1, CountRestores());
}

TEST_F(DisplaysChange, PlacesOutsideOfAllDisplaysAreNotUsed) {
    StartWithTwoKnown(5);
    std::vector<StoredIcon> used = large;
    std::vector<StoredIcon> planted = large;
    const POINT outside[] = {{3000, 100}, {100, 2900}, {-900, 100}, {100, -900}};
    for (size_t n = 0; n < 4; ++n) {
        planted[n].x = outside[n].x;
        planted[n].y = outside[n].y;
        used[n] = home[n]; // it stays
    }
    layouts.Plant(TextOf(kLarge), planted, 1);
    display.SetSize(kLarge);
    ASSERT_TRUE(ComeAfterSettling(used));
    FlushShell();
    EXPECT_EQ(used, ExpectedIcons());
    EXPECT_EQ(1, CountRestores());
}

TEST_F(DisplaysChange, PlacesOnASecondDisplayAreUsedWhileItIsThere) {
    StartWithTwoKnown(4);
    const std::wstring strTwo = L"1024x768+0+0@96 800x600+1024+0@96";
    std::vector<StoredIcon> two = home;
    for (StoredIcon& icon : two) icon.x += 1100;
    layouts.Plant(strTwo, two, 1);
    display.PlugIn({{1024, 0, 1824, 600}});
    ASSERT_TRUE(ComeAfterSettling(two));
    display.Unplug();
    ASSERT_TRUE(ComeAfterSettling(home));
    EXPECT_EQ(2, CountRestores());
    EXPECT_EQ(two, layouts.IconsOf(strTwo));
}

TEST_F(DisplaysChange, DisplaysThatChangedWhileNoMonitorRanAreSeenByTheNextOne) {
    tray = std::make_unique<TrayThread>();
    StartWithTwoKnown(6);
    recorder.reset();
    int nBalloons = 0;
    for (SIZE size : {kLarge, kHome}) {
        monitor.Kill();
        display.SetSize(size);
        ShiftIcons(17, 23); // as the shell does it
        StartMonitor();
        EXPECT_TRUE(WaitUntil([&] { return LieAs(size.cx == kHome.cx ? home : large); }));
        ++nBalloons;
        EXPECT_TRUE(WaitUntil([&] { return CountBalloons() == nBalloons; }));
        EXPECT_EQ(home, layouts.IconsOf(TextOf(kHome)));
        EXPECT_EQ(large, layouts.IconsOf(TextOf(kLarge)));
    }
    EXPECT_FALSE(store.Marked());
}

TEST_F(DisplaysChange, CaptureWhileTheDisplaysSettleIsASnapshotAndNoLayout) {
    StartSwitchedOn(4);
    home = ExpectedIcons();
    Record();
    display.SetSize(kLarge);
    ShiftIcons(90, 110); // as a shell does it then
    ASSERT_TRUE(Capture());
    EXPECT_EQ(2, store.Count());
    EXPECT_EQ(ExpectedIcons(), store.Newest()->Icons());
    EXPECT_TRUE(StayAfterSettling());
    EXPECT_EQ(1, layouts.Count());
    EXPECT_EQ(home, layouts.IconsOf(TextOf(kHome)));
    ASSERT_TRUE(Capture());
    EXPECT_TRUE(WaitUntil([&] { return IsKnownAsItIs(TextOf(kLarge)); }));
    EXPECT_EQ(2, store.Count());
}

TEST_F(DisplaysChange, KnownLayoutOutlivesACaptureWhileTheDisplaysSettle) {
    StartWithTwoKnown(4);
    display.SetSize(kLarge);
    ShiftIcons(90, 110);
    ASSERT_TRUE(Capture());
    EXPECT_EQ(2, store.Count());
    EXPECT_EQ(large, layouts.IconsOf(TextOf(kLarge)));
    EXPECT_TRUE(WaitUntil([&] { return LieAs(large); }));
    EXPECT_EQ(2, store.Count());
    EXPECT_EQ(large, layouts.IconsOf(TextOf(kLarge)));
    EXPECT_EQ(home, layouts.IconsOf(TextOf(kHome)));
}

TEST_F(DisplaysChange, ThereIsNoTimerOnceTheyHaveSettled) {
    StartWithTwoKnown(4);
    display.SetSize(kLarge);
    ASSERT_TRUE(ComeAfterSettling(large));
    FlushShell();
    HoldsFor([] { return true; }, 1500); // for that long captures are put off, as after any restore
    recorder->Forget();
    EXPECT_TRUE(HoldsFor([&] { return recorder->All().empty(); }, 4000));
}

TEST_F(DisplaysChange, ThereIsNoTimerBeforeAnythingChanges) {
    StartSwitchedOn(4);
    FlushShell();
    Record();
    recorder->Forget();
    EXPECT_TRUE(HoldsFor([&] { return recorder->All().empty(); }, 4000));
}

TEST_F(DisplaysChange, HundredsOfIconsArePutBack) {
    StartWithTwoKnown(300);
    display.SetSize(kLarge);
    EXPECT_TRUE(WaitUntil([&] { return CountRestores() == 1; }));
    FlushShell();
    // Those that lie below all displays stay where they are.
    std::vector<StoredIcon> now = ExpectedIcons();
    for (size_t n = 0; n < now.size(); ++n) {
        bool bOutside = large[n].x >= kLarge.cx || large[n].y >= kLarge.cy;
        EXPECT_EQ(bOutside ? home[n] : large[n], now[n]) << n;
    }
}
} // namespace
