// The watcher in the monitor window that owns it: what comes in is messages, what goes out is
// messages, registry values and calls of the front end.
#include "icons/agent/desktop_shared_data.h"
#include "icons/displays/restore_on_change.h"
#include "icons/displays_test_support.h"
#include "icons/icons_test_support.h"
#include "icons/monitor/command_message.h"
#include "icons/monitor/monitor_wnd.h"
#include "support/heap_count.h"

#include <gtest/gtest.h>
#include <windows.h>
#include <commctrl.h>
#include <wtsapi32.h>
#include <optional>
#include <utility>

extern "C" FARPROC __imp_GetTickCount, __imp_GetGUIThreadInfo;

namespace {
constexpr UINT_PTR kDisplaysTimer = 12;
constexpr UINT kWtsSessionChange = 689;
const std::wstring kOne = L"1920x1080+0+0@96";
const std::wstring kTwo = L"1920x1080+0+0@96 1280x1024+1920+0@96";
const FakeDisplay kSecond{{1920, 0, 3200, 1024}};

DWORD dwPassed = 0; // of a clock that stands still by itself
DWORD WINAPI StandingClock() { return 0xFFFFFF00 + dwPassed; } // it wraps soon

GUITHREADINFO shellState{};
DWORD dwAskedThread = 0;
BOOL bGuiTold = TRUE;
BOOL WINAPI ShellState(DWORD dwThread, GUITHREADINFO* pInfo) {
    EXPECT_EQ(sizeof(GUITHREADINFO), pInfo->cbSize);
    dwAskedThread = dwThread;
    if (bGuiTold) *pInfo = shellState;
    return bGuiTold;
}

Layout Moved(Layout layout, std::size_t nAt, POINT pt) {
    layout[nAt].pt = pt;
    return layout;
}

class DisplayWatch : public EngineTest {
  protected:
    void SetUp() override {
        EngineTest::SetUp();
        dwPassed = 0;
        shellState = {};
        bGuiTold = TRUE;
    }
    void TearDown() override {
        EndRound();
        key.Delete();
        { // without the switch nothing is left for the rounds of other tests
            MyMonitor_Wnd last(frontEnd);
            EXPECT_TRUE(last.CreateHidden(nullptr));
            last.Destroy();
        }
        EngineTest::TearDown();
    }
    /// The window of a round, and its first request for a capture.
    void StartRound() {
        monitor.emplace(frontEnd);
        ASSERT_TRUE(monitor->CreateHidden(nullptr));
        Share(view, *monitor);
        monitor->RequestCapture();
        ClearRequests();
    }
    void EndRound() {
        if (monitor) monitor->Destroy();
        monitor.reset();
    }
    LRESULT Send(UINT uMsg, WPARAM wParam = 0, LPARAM lParam = 0) {
        return ::SendMessageW(*monitor, uMsg, wParam, lParam);
    }
    void SendCode(WPARAM wCode) { Send(GetTestCompanyMsg(), wCode, 0); }
    void ClearRequests() {
        PumpAll();
        view.spyListView.Clear();
        view.spyView.Clear();
    }
    /// The agent's answer to a request that was posted to that window.
    void Answer(HWND hwndAsked, const Layout& layout) {
        COPYDATASTRUCT data{layout.size(), static_cast<DWORD>(layout.size() * sizeof(IconRecord)),
                            const_cast<IconRecord*>(layout.data())};
        monitor->OnWndMessage(WM_COPYDATA, reinterpret_cast<WPARAM>(hwndAsked),
                              reinterpret_cast<LPARAM>(&data));
    }
    void AnswerList(const Layout& layout) { Answer(view.hwndListView, layout); }
    void AnswerView(const Layout& layout) { Answer(view.wndView, layout); }
    void SetDisplays(bool bTwo) {
        displays.displays = {{{0, 0, 1920, 1080}, true}};
        if (bTwo) displays.displays.push_back(kSecond);
    }
    void Change(bool bTwo) {
        SetDisplays(bTwo);
        Send(WM_DISPLAYCHANGE, 32, MAKELPARAM(1920, 1080));
    }
    void Tick(DWORD nMs) {
        dwPassed += nMs;
        Send(WM_TIMER, kDisplaysTimer, 0);
    }
    bool IsTicking() { return RunningTimers::IsRunning(*monitor, kDisplaysTimer); }
    int CompareRequests() {
        PumpAll();
        return view.spyView.CountOfCode(kCodeCapture);
    }
    int Requests() {
        PumpAll();
        return view.spyListView.CountOfCode(kCodeCapture);
    }
    /// What was sent to the list view last as a restore.
    std::optional<Layout> Restored() {
        std::vector<Layout> all = std::exchange(restores, {});
        EXPECT_LE(all.size(), 1u);
        return all.empty() ? std::nullopt : std::optional(all.back());
    }
    void ExpectRestored(const Layout& layout) {
        std::optional<Layout> sent = Restored();
        ASSERT_TRUE(sent.has_value());
        ASSERT_EQ(layout.size(), sent->size());
        EXPECT_EQ(0, memcmp(layout.data(), sent->data(), layout.size() * sizeof(IconRecord)));
    }
    void ExpectKept(const std::wstring& strText, const Layout& layout) {
        EXPECT_EQ(MakeSnapshotValue(layout), key.LayoutOf(strText));
    }
    /// On, under one display, with that layout known.
    void StartKnown(const Layout& layout) {
        key.TurnOn();
        StartRound();
        AnswerList(layout);
        ExpectKept(kOne, layout);
    }
    /// Changes to two displays and back, up to the request to compare.
    void ChangeAndSettle() {
        Change(true);
        Change(false);
        Tick(2000);
        EXPECT_EQ(1, CompareRequests());
        ClearRequests();
    }
    int OnTheList(UINT uMsg, LPARAM lParam) {
        if (uMsg != WM_COPYDATA) return 0;
        auto* pData = reinterpret_cast<const COPYDATASTRUCT*>(lParam);
        auto* pFirst = static_cast<const IconRecord*>(pData->lpData);
        EXPECT_EQ(pData->dwData * sizeof(IconRecord), pData->cbData);
        restores.push_back({pFirst, pFirst + pData->dwData});
        if (fnAtRestore) fnAtRestore();
        return 1;
    }

    ReplaceImport clock{__imp_GetTickCount, &StandingClock};
    ReplaceImport gui{__imp_GetGUIThreadInfo, &ShellState};
    FakeDisplays displays;
    DisplaysKey key;
    TestView view;
    std::vector<Layout> restores;
    std::function<void()> fnAtRestore;
    FakeFrontEnd frontEnd;
    std::optional<MyMonitor_Wnd> monitor;

    DisplayWatch() {
        view.spyListView.handler = [this](UINT uMsg, WPARAM, LPARAM lParam, LRESULT*) {
            return OnTheList(uMsg, lParam);
        };
    }
};

const Layout kThree = MakeLayout(3);
const Layout kShuffled = Moved(kThree, 1, {500, 500});

// Off

TEST_F(DisplayWatch, DoesNothingUnlessItIsTurnedOn) {
    StartRound();
    AnswerList(kThree);
    Change(true);
    Change(false);
    Send(kWtsSessionChange, WTS_CONSOLE_CONNECT, 1);
    EXPECT_EQ(1, Requests());
    EXPECT_FALSE(IsTicking());
    Tick(5000);
    AnswerList(kShuffled);
    AnswerView(kThree); // one of many
    SendCode(376);
    EXPECT_EQ(1, Requests());
    EXPECT_EQ(0, CompareRequests());
    EXPECT_EQ(0, displays.nAsked);
    EXPECT_EQ(3u, ReadStoredSnapshots().size());
    EXPECT_FALSE(key.Exists());
    EXPECT_TRUE(frontEnd.calls.empty());
    EXPECT_FALSE(Restored());
}

TEST_F(DisplayWatch, AsksForACaptureWhenItIsTurnedOn) {
    StartRound();
    SetRestoreOnChange(1);
    EXPECT_EQ(0, CompareRequests()); // the message has come
    EXPECT_EQ(1, Requests());
    AnswerList(kThree);
    ExpectKept(kOne, kThree);
    EXPECT_FALSE(IsTicking());
}

TEST_F(DisplayWatch, StopsWhenItIsTurnedOff) {
    StartKnown(kThree);
    Change(true);
    EXPECT_TRUE(IsTicking());
    SetRestoreOnChange(0);
    EXPECT_EQ(0, Requests());
    EXPECT_FALSE(IsTicking());
    Tick(2000);
    AnswerList(kShuffled);
    ExpectKept(kOne, kThree);
    Change(false);
    EXPECT_FALSE(IsTicking());
}

TEST_F(DisplayWatch, BelievesTheValueWhateverTheMessageSays) {
    key.TurnOn();
    StartRound();
    SendCode(376);
    SendCode(376);
    EXPECT_EQ(2, Requests());
    Change(true);
    SendCode(376); // settles on
    EXPECT_TRUE(IsTicking());
    Send(GetTestCompanyMsg(), 376, 77);
    EXPECT_TRUE(IsTicking());
}

// Keeping

TEST_F(DisplayWatch, KeepsWhatIsCapturedUnderThePresentDisplays) {
    StartKnown(kThree);
    monitor->RequestCapture();
    AnswerList(kShuffled);
    ExpectKept(kOne, kShuffled);
    AnswerList(kThree); // asked for by somebody else
    ExpectKept(kOne, kThree);
    EXPECT_EQ(1u, key.Dump().subkeys.size());
    EXPECT_EQ(3u, ReadStoredSnapshots().size());
}

TEST_F(DisplayWatch, KeepsACaptureThatTheSnapshotsHaveAlready) {
    StartKnown(kThree);
    key.Plant(kOne, kShuffled);
    AnswerList(kThree);
    ExpectKept(kOne, kThree);
    EXPECT_EQ(1u, ReadStoredSnapshots().size());
}

TEST_F(DisplayWatch, KeepsNothingWhileTheShellSettles) {
    StartKnown(kThree);
    Change(true);
    monitor->RequestCapture();
    AnswerList(kShuffled);
    EXPECT_EQ(2u, ReadStoredSnapshots().size()); // as ever
    EXPECT_TRUE(key.LayoutOf(kTwo).empty());
    ExpectKept(kOne, kThree);
    ClearRequests();
    Tick(2000);
    EXPECT_EQ(0, CompareRequests()); // unknown
    EXPECT_EQ(0, Requests());
    AnswerList(kShuffled);
    ExpectKept(kTwo, kShuffled);
    ExpectKept(kOne, kThree);
}

TEST_F(DisplayWatch, KeepsWhatTheUserHasHadPutBackAndStoresNoSnapshotOfIt) {
    StartKnown(kThree);
    monitor->NoteRestore();
    EXPECT_EQ(1, CompareRequests());
    AnswerView(kShuffled);
    ExpectKept(kOne, kShuffled);
    EXPECT_EQ(1u, ReadStoredSnapshots().size());
    EXPECT_FALSE(IsTicking());
    AnswerView(kShuffled); // nobody has asked for it
    EXPECT_EQ(2u, ReadStoredSnapshots().size());
}

TEST_F(DisplayWatch, KeepsOnlyWhatACommandHasPutBack) {
    StartKnown(kThree);
    unsigned __int64 qwTime = ParseSnapshotName(ReadStoredSnapshots().begin()->first.c_str());
    CommandMessage message{CommandCode::Restore, 0, qwTime};
    COPYDATASTRUCT data{kCommandData, sizeof(message), &message};
    LONG_PTR dwStyle = ::GetWindowLongPtrW(view.hwndListView, GWL_STYLE);
    ::SetWindowLongPtrW(view.hwndListView, GWL_STYLE, dwStyle | LVS_AUTOARRANGE);
    EXPECT_EQ(static_cast<LRESULT>(CommandResult::AutoArranged),
              Send(WM_COPYDATA, 0, reinterpret_cast<LPARAM>(&data)));
    EXPECT_EQ(0, CompareRequests());
    ::SetWindowLongPtrW(view.hwndListView, GWL_STYLE, dwStyle);
    EXPECT_EQ(static_cast<LRESULT>(CommandResult::Done),
              Send(WM_COPYDATA, 0, reinterpret_cast<LPARAM>(&data)));
    EXPECT_EQ(1, CompareRequests());
    ExpectRestored(kThree);
}

TEST_F(DisplayWatch, AsksForNothingAfterARestoreWhileItIsOffOrTheShellSettles) {
    StartRound();
    monitor->NoteRestore();
    EXPECT_EQ(0, CompareRequests());
    EndRound();
    StartKnown(kThree);
    Change(false);
    monitor->NoteRestore();
    EXPECT_EQ(0, CompareRequests());
}

TEST_F(DisplayWatch, DropsWhatWasPutBackUnderOtherDisplays) {
    StartKnown(kThree);
    monitor->NoteRestore();
    SetDisplays(true); // of which no message has come
    AnswerView(kShuffled);
    ExpectKept(kOne, kThree);
    EXPECT_TRUE(key.LayoutOf(kTwo).empty());
    EXPECT_TRUE(IsTicking());
}

TEST_F(DisplayWatch, DropsWhatWasPutBackIfTheDisplaysChangeBeforeTheAnswer) {
    StartKnown(kThree);
    monitor->NoteRestore();
    Change(false);
    AnswerView(kShuffled);
    ExpectKept(kOne, kThree);
    Tick(2000);
    AnswerView(kThree); // the one to compare with
    ExpectKept(kOne, kThree);
    EXPECT_EQ(1u, ReadStoredSnapshots().size());
}

TEST_F(DisplayWatch, DropsACaptureThatWasAskedForUnderOtherDisplays) {
    StartKnown(kThree);
    monitor->RequestCapture();
    Change(true);
    Tick(2000);
    AnswerList(kThree); // the shell hung
    EXPECT_TRUE(key.LayoutOf(kTwo).empty());
    monitor->RequestCapture();
    AnswerList(kShuffled);
    ExpectKept(kTwo, kShuffled);
    ExpectKept(kOne, kThree);
}

TEST_F(DisplayWatch, TakesOtherDisplaysForAChangeThoughNoMessageCame) {
    StartKnown(kThree);
    SetDisplays(true);
    AnswerList(kShuffled);
    EXPECT_TRUE(IsTicking());
    EXPECT_TRUE(key.LayoutOf(kTwo).empty());
    ExpectKept(kOne, kThree);
    Tick(2000);
    AnswerList(kShuffled);
    ExpectKept(kTwo, kShuffled);
}

TEST_F(DisplayWatch, KeepsNothingWhileNoDisplayIsThere) {
    StartKnown(kThree);
    displays.displays.clear();
    Send(WM_DISPLAYCHANGE);
    Tick(2000);
    AnswerList(kShuffled);
    EXPECT_FALSE(IsTicking()); // no wake-ups meanwhile
    SetDisplays(false);
    AnswerList(kShuffled);
    EXPECT_TRUE(IsTicking());
    Tick(2000);
    EXPECT_EQ(1, CompareRequests());
    ExpectKept(kOne, kThree);
}

unsigned __int64 NumberOf(const RegContent& content) {
    unsigned __int64 qw = 0;
    if (content.bytes.size() == sizeof(qw)) memcpy(&qw, content.bytes.data(), sizeof(qw));
    return qw;
}

TEST_F(DisplayWatch, NotesTheUseOfASetupThatBecomesThePresentOne) {
    constexpr unsigned __int64 kOld = 0x01DB000000000000;
    key.Plant(kOne, kThree, kOld);
    key.Plant(kTwo, kThree, kOld);
    key.TurnOn();
    StartRound();
    EXPECT_EQ(kOld, NumberOf(key.ValueOf(kOne, L"Used")));
    AnswerList(kThree); // the first of this life
    unsigned __int64 qwFirst = NumberOf(key.ValueOf(kOne, L"Used"));
    EXPECT_LT(kOld, qwFirst);
    AnswerList(kThree);
    EXPECT_EQ(qwFirst, NumberOf(key.ValueOf(kOne, L"Used")));
    Change(true);
    EXPECT_EQ(kOld, NumberOf(key.ValueOf(kTwo, L"Used")));
    Tick(2000);
    EXPECT_LT(kOld, NumberOf(key.ValueOf(kTwo, L"Used")));
}

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
    StartKnown(known);
    ChangeAndSettle();
    Layout present = known;
    for (IconRecord& record : present) record.pt = {40, 40};
    AnswerView(present);
    Tick(10);
    ExpectRestored({known[0], known[2], known[7]});
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
    AnswerView(kThree);       // nobody has asked for it
    EXPECT_EQ(3u, ReadStoredSnapshots().size());
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

// Rounds

TEST_F(DisplayWatch, SettlesInTheNextRoundIfTheLastOneEndedWithinAChange) {
    StartKnown(kThree);
    Change(false);
    EndRound();
    StartRound();
    EXPECT_TRUE(IsTicking());
    AnswerList(kShuffled); // of a shell that has just come up
    ExpectKept(kOne, kThree);
    Tick(2000);
    EXPECT_EQ(1, CompareRequests());
    AnswerView(kShuffled);
    EndRound(); // within it again
    StartRound();
    EXPECT_TRUE(IsTicking());
    Tick(2000);
    AnswerView(kShuffled);
    Tick(10);
    ExpectRestored(kThree);
    EndRound();
    StartRound();
    EXPECT_FALSE(IsTicking());
}

TEST_F(DisplayWatch, SettlesInTheNextRoundIfTheDisplaysHaveChangedBetween) {
    StartKnown(kThree);
    EndRound();
    SetDisplays(true);
    StartRound();
    EXPECT_TRUE(IsTicking());
    Tick(2000);
    EXPECT_EQ(0, CompareRequests());
    EXPECT_TRUE(key.LayoutOf(kTwo).empty());
    AnswerList(kShuffled);
    ExpectKept(kTwo, kShuffled);
}

TEST_F(DisplayWatch, SettlesNotInARoundAfterOneThatWasCalmOrOff) {
    StartKnown(kThree);
    EndRound();
    StartRound();
    EXPECT_FALSE(IsTicking());
    Change(true);
    EndRound();
    key.TurnOn(0);
    StartRound();
    EndRound();
    key.TurnOn();
    StartRound();
    EXPECT_FALSE(IsTicking());
}

TEST_F(DisplayWatch, ShellThatHasGoneLeavesItToTheNextRound) {
    StartKnown(kThree);
    ChangeAndSettle();
    AnswerView(kShuffled);
    HWND hwndListView = std::exchange(GetDesktopSharedData().hwndListView, nullptr);
    Tick(10);
    EXPECT_FALSE(IsTicking());
    EXPECT_TRUE(frontEnd.putBacks.empty());
    GetDesktopSharedData().hwndListView = hwndListView;
    EndRound();
    StartRound();
    ASSERT_TRUE(IsTicking());
    Tick(2000);
    AnswerView(kShuffled);
    fnAtRestore = [&] { GetDesktopSharedData().hwndView = nullptr; }; // in the middle of it
    Tick(10);
    EXPECT_TRUE(Restored());
    EXPECT_TRUE(frontEnd.putBacks.empty());
    AnswerList(kShuffled);
    ExpectKept(kOne, kThree);
    EndRound();
    StartRound();
    EXPECT_TRUE(IsTicking());
}

TEST_F(DisplayWatch, WaitsForTheNextRoundWhereTheShellHasGone) {
    StartKnown(kThree);
    Change(false);
    HWND hwndView = std::exchange(GetDesktopSharedData().hwndView, nullptr);
    Tick(2000);
    EXPECT_FALSE(IsTicking());
    GetDesktopSharedData().hwndView = hwndView;
    EXPECT_EQ(0, CompareRequests());
    AnswerList(kShuffled);
    ExpectKept(kOne, kThree);
    EndRound();
    StartRound();
    EXPECT_TRUE(IsTicking());
}
} // namespace
