// When the watcher has a layout put back: the settling, the comparison, the restore.
#include "icons/displays/display_watcher_test_support.h"
#include "support/heap_count.h"

#include <commctrl.h>
#include <algorithm>

namespace {
// The settling

TEST_F(DisplayWatch, WaitsTwoSecondsFromTheLastChange) {
    StartKnown(kThree);
    Change(true);
    Tick(1900 - 1);
    EXPECT_TRUE(IsTicking());
    Change(false);
    Tick(1000); // what waited in the queue
    EXPECT_TRUE(IsTicking());
    EXPECT_EQ(0, CompareRequests());
    Tick(1000);
    EXPECT_FALSE(IsTicking());
    EXPECT_EQ(1, CompareRequests());
    EXPECT_EQ(0, Requests());
}

TEST_F(DisplayWatch, TakesASessionThatConnectsForAChange) {
    StartKnown(kThree);
    for (int nEvent : {1, 3}) {
        Send(kWtsSessionChange, static_cast<WPARAM>(nEvent), 1);
        EXPECT_EQ(1, Requests()); // as ever
        EXPECT_TRUE(IsTicking());
        Tick(2000);
        EXPECT_EQ(1, CompareRequests());
        ClearRequests();
        AnswerView(kThree);
    }
    for (int nEvent : {0, 2, 4, 5, 6, 7, 8, 9})
        Send(kWtsSessionChange, static_cast<WPARAM>(nEvent));
    EXPECT_FALSE(IsTicking());
}

TEST_F(DisplayWatch, StartsOverWhileTheShellIsBusy) {
    StartKnown(kThree);
    Change(false);
    for (DWORD dwFlags : {GUI_INMENUMODE, GUI_INMOVESIZE, GUI_POPUPMENUMODE, GUI_SYSTEMMENUMODE}) {
        shellState.flags = dwFlags;
        Tick(2000);
        EXPECT_TRUE(IsTicking());
    }
    EXPECT_EQ(::GetCurrentThreadId(), dwAskedThread);
    shellState.flags = GUI_CARETBLINKING;
    shellState.hwndCapture = view.hwndListView;
    Tick(2000);
    EXPECT_TRUE(IsTicking());
    EXPECT_EQ(0, CompareRequests());
    shellState.hwndCapture = nullptr;
    Tick(1000);
    EXPECT_TRUE(IsTicking());
    Tick(1000);
    EXPECT_EQ(1, CompareRequests());
}

TEST_F(DisplayWatch, AsksNoThreadThatIsNotThere) {
    StartKnown(kThree);
    bGuiTold = FALSE;
    ChangeAndSettle();
    EXPECT_EQ(::GetCurrentThreadId(), dwAskedThread);
    dwAskedThread = 0;
    GetDesktopSharedData().hwndListView = nullptr; // would be the foreground's
    Change(false);
    Tick(2000);
    EXPECT_EQ(0u, dwAskedThread);
    EXPECT_EQ(0, CompareRequests());
}

TEST_F(DisplayWatch, IgnoresATimerThatIsNotRunning) {
    StartKnown(kThree);
    for (int n = 0; n < 3; ++n) Tick(10000);
    EXPECT_EQ(0, CompareRequests());
    ChangeAndSettle();
    AnswerView(kThree);
    Tick(10000);
    EXPECT_FALSE(Restored());
}

// Comparing and putting back

TEST_F(DisplayWatch, PutsBackWhatDiffers) {
    StartKnown(kThree);
    ChangeAndSettle();
    AnswerView(kShuffled);
    EXPECT_FALSE(Restored()); // not while the shell waits for an answer
    EXPECT_TRUE(IsTicking());
    monitor->ScheduleCapture();
    fnAtRestore = [&] { EXPECT_TRUE(IsSuppressing(*monitor)); };
    Tick(10);
    ExpectRestored(kThree);
    EXPECT_FALSE(IsTicking());
    EXPECT_TRUE(IsSuppressing(*monitor));
    EXPECT_FALSE(IsCapturePending(*monitor));
    EXPECT_EQ(std::vector<std::wstring>{L"The displays have changed. The icons are back as they "
                                        L"were with these displays."},
              frontEnd.putBacks);
    EXPECT_EQ(1u, ReadStoredSnapshots().size()); // the shuffled one is none of them
    ExpectKept(kOne, kThree);
    Tick(2000);
    EXPECT_FALSE(Restored()); // once
}

TEST_F(DisplayWatch, LeavesTheMarkOfTheSnapshotRestoredLast) {
    StartKnown(kThree);
    ChangeAndSettle();
    AnswerView(kShuffled);
    Tick(10);
    HKEY hkey = nullptr;
    ASSERT_EQ(0, ::RegOpenKeyExW(HKEY_CURRENT_USER, kStoreKey, 0, KEY_READ, &hkey));
    EXPECT_EQ(ERROR_FILE_NOT_FOUND,
              ::RegQueryValueExW(hkey, nullptr, nullptr, nullptr, nullptr, nullptr));
    ::RegCloseKey(hkey);
}

struct CompareCase {
    const char* pszName;
    Layout known, present;
    bool bRestored;
};
Layout Order(Layout layout) {
    std::reverse(layout.begin(), layout.end());
    for (unsigned n = 0; n < layout.size(); ++n) layout[n].nIndex = n;
    return layout;
}
Layout Diagonal(unsigned nIcons) {
    Layout layout = MakeLayout(nIcons);
    for (IconRecord& record : layout)
        record.pt = {static_cast<LONG>(record.nIndex), static_cast<LONG>(record.nIndex)};
    return layout;
}
Layout SameNames(std::vector<POINT> places) {
    Layout layout;
    for (POINT pt : places)
        layout.push_back(RecordOf(static_cast<unsigned>(layout.size()), L"same", pt));
    return layout;
}

class DisplayCompare : public DisplayWatch, public testing::WithParamInterface<CompareCase> {};

TEST_P(DisplayCompare, TellsByNamesAndPlaces) {
    StartKnown(GetParam().known);
    ChangeAndSettle();
    AnswerView(GetParam().present);
    EXPECT_EQ(GetParam().bRestored, IsTicking());
    Tick(10);
    EXPECT_EQ(GetParam().bRestored, Restored().has_value());
    EXPECT_EQ(GetParam().bRestored, !frontEnd.putBacks.empty());
}

INSTANTIATE_TEST_SUITE_P(
    Cases, DisplayCompare,
    testing::Values(CompareCase{"Same", kThree, kThree, false},
                    CompareCase{"OneMoved", kThree, kShuffled, true},
                    CompareCase{"OtherOrder", kThree, Order(kThree), false},
                    CompareCase{"OtherOrderAndOneMoved", kThree, Order(kShuffled), true},
                    CompareCase{"OneNew", kThree, MakeLayout(4), false},
                    CompareCase{"OneGone", MakeLayout(4), kThree, false},
                    CompareCase{"OneNewAndOneMoved", kThree, Moved(MakeLayout(4), 0, {9, 9}), true},
                    CompareCase{"AllNew", kThree, SameNames({{1, 1}}), false},
                    CompareCase{"SameNamesChangedPlaces", SameNames({{1, 1}, {2, 2}}),
                                SameNames({{2, 2}, {1, 1}}), false},
                    CompareCase{"OneOfTheSameNameMoved", SameNames({{1, 1}, {2, 2}}),
                                SameNames({{1, 1}, {3, 3}}), true},
                    CompareCase{"OneMoreOfTheSameName", SameNames({{1, 1}, {2, 2}}),
                                SameNames({{3, 3}, {2, 2}, {1, 1}}), false},
                    CompareCase{"OneLessOfTheSameName", SameNames({{1, 1}, {2, 2}, {3, 3}}),
                                SameNames({{2, 2}, {1, 1}}), false},
                    CompareCase{"AsManyAsThereMayBe", Diagonal(999),
                                Moved(Diagonal(999), 998, {7, 8}), true}),
    [](const auto& row) { return std::string(row.param.pszName); });

TEST_F(DisplayWatch, LeavesOutWhatWouldLieOutsideOfAllDisplays) {
    // The list view lies at 100, 50: its own coordinates are not the screen's.
    ::SetParent(view.hwndListView, nullptr);
    ::SetWindowPos(view.hwndListView, nullptr, 100, 50, 400, 400, SWP_NOZORDER | SWP_NOACTIVATE);
    Layout known = MakeLayout(8);
    const POINT places[8] = {{-100, -50}, {-101, -50},   {1819, 1029},  {1820, 0},
                             {0, 1030},   {LONG_MAX, 0}, {0, LONG_MIN}, {300, 300}};
    for (int n = 0; n < 8; ++n) known[static_cast<std::size_t>(n)].pt = places[n];
    ComeToKnownWithAllElsewhere(known);
    ExpectRestored({known[0], known[2], known[7]});
    ::DestroyWindow(view.hwndListView);
}

TEST_F(DisplayWatch, CountsFromTheRightEdgeWhereTheListViewDoes) {
    ::SetParent(view.hwndListView, nullptr);
    LONG_PTR dwStyle = ::GetWindowLongPtrW(view.hwndListView, GWL_EXSTYLE);
    ::SetWindowLongPtrW(view.hwndListView, GWL_EXSTYLE, dwStyle | WS_EX_LAYOUTRTL);
    // Its right edge is the display's.
    ::SetWindowPos(view.hwndListView, nullptr, 1520, 50, 400, 400, SWP_NOZORDER | SWP_NOACTIVATE);
    Layout known = MakeLayout(4);
    const POINT places[4] = {{0, 0}, {-1, 0}, {1919, 0}, {1920, 0}};
    for (std::size_t n = 0; n < 4; ++n) known[n].pt = places[n];
    ComeToKnownWithAllElsewhere(known);
    ExpectRestored({known[0], known[2]});
    ::DestroyWindow(view.hwndListView);
}

TEST_F(DisplayWatch, PutsNothingBackIfAllThatDiffersLiesOutside) {
    Layout known = Moved(kThree, 2, {5000, 5000});
    StartKnown(known);
    ChangeAndSettle();
    AnswerView(kThree);
    EXPECT_FALSE(IsTicking());
    ExpectKept(kOne, known);
    AnswerList(kThree);
    ExpectKept(kOne, kThree);
}

TEST_F(DisplayWatch, AsksNobodyWhereTheDesktopArrangesItsIcons) {
    StartKnown(kThree);
    ChangeAndSettle();
    AnswerView(kShuffled);
    LONG_PTR dwStyle = ::GetWindowLongPtrW(view.hwndListView, GWL_STYLE);
    ::SetWindowLongPtrW(view.hwndListView, GWL_STYLE, dwStyle | LVS_AUTOARRANGE);
    Tick(10);
    EXPECT_FALSE(Restored());
    EXPECT_FALSE(IsTicking());
    EXPECT_FALSE(IsSuppressing(*monitor));
    EXPECT_TRUE(frontEnd.putBacks.empty());
}

TEST_F(DisplayWatch, SettlesAgainIfTheShellGotBusyMeanwhile) {
    StartKnown(kThree);
    ChangeAndSettle();
    AnswerView(kShuffled);
    shellState.flags = GUI_INMENUMODE;
    Tick(10);
    EXPECT_FALSE(Restored());
    shellState.flags = 0;
    Tick(1000);
    EXPECT_EQ(0, CompareRequests());
    Tick(1000);
    EXPECT_EQ(1, CompareRequests());
    AnswerView(kShuffled);
    Tick(10);
    ExpectRestored(kThree);
}

TEST_F(DisplayWatch, StoresEveryCaptureButTheOneToCompareWith) {
    StartKnown(kThree);
    ChangeAndSettle();
    monitor->SetSnapshotAnnounce(1);
    AnswerView(kShuffled);
    EXPECT_EQ(1, monitor->GetSnapshotAnnounce()); // the user's is still to come
    EXPECT_EQ(1u, ReadStoredSnapshots().size());
    AnswerList(kShuffled);
    EXPECT_EQ(std::vector<std::wstring>{L"Icons stored"}, frontEnd.outcomes);
    EXPECT_EQ(2u, ReadStoredSnapshots().size());
    ExpectKept(kOne, kThree); // that is to be put back
    AnswerView(kThree);       // once more, as the shell looked at the request twice
    EXPECT_EQ(2u, ReadStoredSnapshots().size());
}

TEST_F(DisplayWatch, ComparesWithAnotherCaptureWhereItsOwnDoesNotCome) {
    StartKnown(kThree);
    ChangeAndSettle();
    monitor->RequestCapture();
    AnswerList(kShuffled);
    EXPECT_EQ(2u, ReadStoredSnapshots().size());
    ExpectKept(kOne, kThree);
    Tick(10);
    ExpectRestored(kThree);
    AnswerView(Moved(kThree, 0, {3, 3})); // it comes after all
    EXPECT_EQ(2u, ReadStoredSnapshots().size());
    EXPECT_FALSE(IsTicking());
}

TEST_F(DisplayWatch, DropsTheAnswerThatAChangeHasOvertaken) {
    StartKnown(kThree);
    ChangeAndSettle();
    Change(false);
    AnswerView(kShuffled);
    EXPECT_EQ(1u, ReadStoredSnapshots().size());
    Tick(2000);
    EXPECT_EQ(1, CompareRequests());
    AnswerView(kShuffled);
    Tick(10);
    ExpectRestored(kThree);
}

TEST_F(DisplayWatch, ComparesUnderNoOtherDisplaysThanThoseOfItsQuestion) {
    StartKnown(kThree);
    ChangeAndSettle();
    SetDisplays(true);
    AnswerView(kShuffled);
    Tick(10);
    EXPECT_FALSE(Restored());
    EXPECT_TRUE(IsTicking());
    Tick(2000);
    EXPECT_EQ(0, CompareRequests());
    EXPECT_TRUE(key.LayoutOf(kTwo).empty());
}

TEST_F(DisplayWatch, PutsBackUnderNoOtherDisplaysThanThoseOfTheComparison) {
    StartKnown(kThree);
    ChangeAndSettle();
    AnswerView(kShuffled);
    SetDisplays(true);
    Tick(10);
    EXPECT_FALSE(Restored());
    EXPECT_TRUE(IsTicking());
}

TEST_F(DisplayWatch, PutsNothingBackThatWasDamagedOrDeletedMeanwhile) {
    StartKnown(kThree);
    ChangeAndSettle();
    key.Put(L"Layout", REG_BINARY, {1, 2, 3}, DisplaysKey::NameOfText(kOne));
    AnswerView(kShuffled);
    EXPECT_FALSE(IsTicking());
    AnswerList(kThree);
    ExpectKept(kOne, kThree);
    ChangeAndSettle();
    AnswerView(kShuffled);
    key.Delete();
    Tick(10);
    EXPECT_FALSE(Restored());
    EXPECT_FALSE(IsTicking());
}

TEST_F(DisplayWatch, SaysNothingIfAChangeComesWhileTheIconsAreMoved) {
    StartKnown(kThree);
    ChangeAndSettle();
    AnswerView(kShuffled);
    fnAtRestore = [&] {
        Change(true);
        AnswerList(kShuffled); // half done
    };
    Tick(10);
    EXPECT_TRUE(Restored());
    EXPECT_TRUE(frontEnd.putBacks.empty());
    EXPECT_TRUE(IsTicking());
    ExpectKept(kOne, kThree);
    EXPECT_TRUE(key.LayoutOf(kTwo).empty());
}

TEST_F(DisplayWatch, KeepsNothingThatIsCapturedWhileTheIconsAreMoved) {
    StartKnown(kThree);
    ChangeAndSettle();
    AnswerView(kShuffled);
    fnAtRestore = [&] {
        AnswerList(kShuffled);
        Send(WM_TIMER, kDisplaysTimer, 0);
    };
    Tick(10);
    EXPECT_TRUE(Restored());
    EXPECT_EQ(1u, frontEnd.putBacks.size());
    ExpectKept(kOne, kThree);
}

TEST_F(DisplayWatch, OutlivesAWindowThatIsClosedWhileTheIconsAreMoved) {
    StartKnown(kThree);
    ChangeAndSettle();
    AnswerView(kShuffled);
    fnAtRestore = [&] { Send(WM_CLOSE); };
    Tick(10);
    EXPECT_TRUE(Restored());
    EXPECT_TRUE(frontEnd.putBacks.empty());
    EXPECT_FALSE(monitor->IsReady());
    PumpAll();
}

TEST_F(DisplayWatch, EndsWhenItIsTurnedOffWhileTheIconsAreMoved) {
    StartKnown(kThree);
    ChangeAndSettle();
    AnswerView(kShuffled);
    fnAtRestore = [&] {
        key.TurnOn(0);
        SendCode(376);
    };
    Tick(10);
    EXPECT_TRUE(frontEnd.putBacks.empty());
    EXPECT_FALSE(IsTicking());
    Tick(2000);
    EXPECT_EQ(0, CompareRequests());
    Restored();
}

TEST_F(DisplayWatch, GoesWithoutWhatThereIsNoMemoryFor) {
    SetRuntimeLookup(nullptr); // would want memory as well; the displays' scale is the screen's
    StartKnown(kThree);
    for (int n = 1; n <= 5; ++n) {
        key.Plant(kOne, kThree);
        ChangeAndSettle();
        FailBlock(n); // beyond these are the test's own, here and below
        AnswerView(kShuffled);
        FailBlock(0);
        Tick(10);
        Restored();
    }
    for (int n = 1; n <= 4; ++n) {
        key.Plant(kOne, kThree);
        ChangeAndSettle();
        AnswerView(kShuffled);
        FailBlock(n);
        Tick(10);
        FailBlock(0);
        for (const Layout& layout : std::exchange(restores, {})) EXPECT_EQ(3u, layout.size());
        AnswerList(kThree);
    }
    key.Plant(kOne, kThree);
    ChangeAndSettle();
    AnswerView(kShuffled);
    Tick(10);
    ExpectRestored(kThree);
}
} // namespace
