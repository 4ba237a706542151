// What leads to a capture and what does not: drags, renames, changes of the desktop folder, the
// session's changes, and the timers between.

#include "e2e/engine_test_support.h"
#include "e2e/support/mouse.h"
#include "support/test_window.h"

#include <commctrl.h>

namespace {
constexpr LPARAM kProductId = 16738, kOtherProductId = 16739;

struct Heard {
    WPARAM wParam;
    LPARAM lParam;
};

/// Stands where the agent believes the monitor window, whose class it has, and hears what the agent
/// says.
class Spy {
  public:
    Spy() : hwndMonitor(library.Words().hwndMonitor) {
        uCompanyMsg = CompanyMsg();
        hwnd = ::CreateWindowExW(0, kMonitorClass, L"", WS_POPUP, 0, 0, 1, 1, nullptr, nullptr,
                                 ::GetModuleHandleW(nullptr), nullptr);
        ::SetWindowLongPtrW(hwnd, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
        ::SetWindowLongPtrW(hwnd, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(Proc));
        library.Words().hwndMonitor = hwnd;
    }
    ~Spy() {
        library.Words().hwndMonitor = hwndMonitor;
        ::DestroyWindow(hwnd);
    }
    Spy(const Spy&) = delete;
    Spy& operator=(const Spy&) = delete;

    const std::vector<Heard>& All() {
        MSG msg;
        while (::PeekMessageW(&msg, hwnd, 0, 0, PM_REMOVE)) ::DispatchMessageW(&msg);
        return heard;
    }
    /// The one message that an icon may have moved, and no second one.
    testing::AssertionResult HearsOfOneMove() {
        WaitUntil([&] { return !All().empty(); });
        HoldsFor([&] { return All().size() == 1; }, 300);
        std::vector<Heard> now = std::exchange(heard, {});
        if (now.size() == 1 && now[0].wParam == kCodeIconsMoved && now[0].lParam == 0)
            return testing::AssertionSuccess();
        return testing::AssertionFailure() << now.size() << " messages";
    }

  private:
    static LRESULT CALLBACK Proc(HWND hwnd, UINT uMsg, WPARAM wParam, LPARAM lParam) {
        auto* pThis = reinterpret_cast<Spy*>(::GetWindowLongPtrW(hwnd, GWLP_USERDATA));
        if (pThis && uMsg == pThis->uCompanyMsg) pThis->heard.push_back({wParam, lParam});
        return ::DefWindowProcW(hwnd, uMsg, wParam, lParam);
    }
    ProductLibrary library;
    TestClass monitorClass{kMonitorClass};
    HWND hwndMonitor;
    HWND hwnd = nullptr;
    UINT uCompanyMsg = 0;
    std::vector<Heard> heard;
};

void DragItem(TestDesktop& desktop, int nItem, int dx, int dy, mouse::Button button) {
    POINT pt = desktop.OnScreen(nItem);
    mouse::Drag(pt, {pt.x + dx, pt.y + dy}, button);
}

/// What the agent tells the monitor of.
class AgentEvents : public EngineTest, public testing::WithParamInterface<DesktopMode> {
  protected:
    void SetUp() override {
        EngineTest::SetUp();
        StartDesktop(GetParam());
        if (GetParam() != DesktopMode::Real) desktop->Fill(6);
        StartMonitor();
    }
    /// The mouse moves over the list view, with no button down.
    void MoveMouseOverList() {
        ::PostMessageW(desktop->List(), WM_MOUSEMOVE, 0, MAKELPARAM(640, 480));
        FlushShell();
    }
    int CountAfterFlush(Spy& spy) {
        FlushShell();
        return static_cast<int>(spy.All().size());
    }
};

TEST_P(AgentEvents, DragByEitherButtonIsToldOnceAfterTheDrop) {
    for (mouse::Button button : {mouse::Button::Left, mouse::Button::Right}) {
        Spy spy;
        POINT ptBefore = desktop->Items().at(1).pt;
        DragItem(*desktop, 1, 260, 130, button);
        EXPECT_TRUE(spy.HearsOfOneMove());
        POINT ptNow = desktop->Items().at(1).pt;
        EXPECT_EQ(ptBefore.x + 260, ptNow.x);
        EXPECT_EQ(ptBefore.y + 130, ptNow.y);
        MoveMouseOverList();
        EXPECT_EQ(0, CountAfterFlush(spy));
    }
}

TEST_P(AgentEvents, MouseWithoutADragIsNotTold) {
    Spy spy;
    for (int n = 0; n < 5; ++n) MoveMouseOverList();
    EXPECT_EQ(0, CountAfterFlush(spy));
}

TEST_P(AgentEvents, BeginningOfADragIsToldAtTheMousesNextMovement) {
    for (UINT nCode : {LVN_BEGINDRAG, LVN_BEGINRDRAG}) {
        Spy spy;
        desktop->Notify(nCode);
        EXPECT_EQ(0, CountAfterFlush(spy));
        MoveMouseOverList();
        EXPECT_TRUE(spy.HearsOfOneMove());
        MoveMouseOverList();
        EXPECT_EQ(0, CountAfterFlush(spy));
    }
}

TEST_P(AgentEvents, BeginningOfADragInAnotherWindowIsIgnored) {
    Spy spy;
    for (UINT nCode : {LVN_BEGINDRAG, LVN_BEGINRDRAG}) {
        desktop->Notify(nCode, true);
        MoveMouseOverList();
    }
    EXPECT_EQ(0, CountAfterFlush(spy));
}

TEST_P(AgentEvents, RenameIsToldAtOnce) {
    Spy spy;
    desktop->Notify(LVN_SETDISPINFOW);
    EXPECT_TRUE(spy.HearsOfOneMove());
    desktop->Notify(LVN_SETDISPINFOW, true); // of another window
    EXPECT_EQ(0, CountAfterFlush(spy));
}

TEST_P(AgentEvents, OtherNotificationsAreNotTold) {
    Spy spy;
    // The narrow form of the rename, ends of edits, clicks, item changes.
    for (UINT nCode : {static_cast<UINT>(LVN_SETDISPINFOA), static_cast<UINT>(LVN_ENDLABELEDITW),
                       static_cast<UINT>(LVN_BEGINLABELEDITW), static_cast<UINT>(NM_CLICK),
                       static_cast<UINT>(LVN_ITEMCHANGED), static_cast<UINT>(LVN_FIRST - 10), 0u}) {
        desktop->Notify(nCode);
        MoveMouseOverList();
    }
    EXPECT_EQ(0, CountAfterFlush(spy));
}

INSTANTIATE_TEST_SUITE_P(Modes, AgentEvents, testing::Values(DesktopMode::Real, DesktopMode::Plain),
                         ModeName);

/// The engine on a plain desktop with its first capture stored.
class Events : public EngineTest {
  protected:
    void SetUp() override {
        EngineTest::SetUp();
        StartPlain(6);
        StartMonitor();
        ASSERT_EQ(1, store.Count());
    }
    /// Returns after the monitor has handled the message and the shell what came of it.
    LRESULT Send(UINT uMsg, WPARAM wParam, LPARAM lParam) {
        DWORD_PTR nResult = 0;
        EXPECT_TRUE(::SendMessageTimeoutW(monitor.Window(), uMsg, wParam, lParam, SMTO_NORMAL,
                                          kTestDeadlineMs, &nResult));
        FlushShell();
        return static_cast<LRESULT>(nResult);
    }
    LRESULT SendCompany(WPARAM nCode, LPARAM lParam) { return Send(CompanyMsg(), nCode, lParam); }
};

TEST_F(Events, SessionThatIsConnectedLockedOrUnlockedIsCapturedAtOnce) {
    int nStored = 1;
    for (WPARAM nCode : {1, 3, 7, 8}) {
        MoveSomething();
        Send(WM_WTSSESSION_CHANGE, nCode, 1);
        EXPECT_EQ(++nStored, store.Count()) << nCode;
        Send(WM_WTSSESSION_CHANGE, nCode, 1);
        EXPECT_EQ(nStored, store.Count()) << nCode; // nothing moved
    }
}

TEST_F(Events, OtherChangesOfTheSessionDoNothing) {
    MoveSomething();
    for (WPARAM nCode : {0, 2, 4, 5, 6, 9, 10, 11, 0x10001, -1}) {
        Send(WM_WTSSESSION_CHANGE, nCode, 1);
        EXPECT_EQ(1, store.Count()) << nCode;
    }
}

TEST_F(Events, DebounceTimersTicksAreCapturesAndOthersAreNot) {
    MoveSomething();
    for (WPARAM nId : {0, 1, 9, 11, 12, 1000}) Send(WM_TIMER, nId, 0);
    EXPECT_EQ(1, store.Count());
    Send(WM_TIMER, 10, 0);
    EXPECT_EQ(2, store.Count());
    Send(WM_TIMER, 10, 0);
    EXPECT_EQ(2, store.Count());
}

TEST_F(Events, CodeThatAsksForACaptureWorksOnAnyWindowOfTheShellsThread) {
    UINT uMsg = CompanyMsg();
    int nStored = 1;
    for (HWND hwnd : {desktop->List(), desktop->View(), desktop->Progman()}) {
        MoveSomething();
        ::PostMessageW(hwnd, uMsg, kCodeCapture, 0);
        FlushShell();
        EXPECT_EQ(++nStored, store.Count());
    }
    MoveSomething();
    ::SendMessageW(desktop->List(), uMsg, kCodeCapture, 0); // sent, it does not come by the hook
    FlushShell();
    EXPECT_EQ(nStored, store.Count());
}

TEST_F(Events, CloseCodeOfAnotherProductDoesNothing) {
    for (LPARAM nId :
         {LPARAM{0}, LPARAM{1}, kOtherProductId, kProductId - 1, LPARAM{-1}, kProductId << 16}) {
        SendCompany(kCodeClose, nId);
    }
    EXPECT_TRUE(desktop->IsFullyAttached());
    EXPECT_TRUE(StillCaptures());
}

TEST_F(Events, CloseCodeCountsInItsLowerHalf) {
    monitor.PostCompanyMsg(kCodeClose, (LPARAM{0x1234} << 16) | kProductId);
    EXPECT_EQ(DWORD{0}, monitor.WaitForEnd());
    EXPECT_FALSE(desktop->HasGuest());
}

TEST_F(Events, SessionThatMayEndFindsTheShellClean) {
    EXPECT_NE(0, Send(WM_QUERYENDSESSION, 0, 0)); // no objection
    EXPECT_FALSE(desktop->HasGuest());
    EXPECT_EQ(nullptr, ProductLibrary().Words().hhook);
    MoveSomething();
    ASSERT_TRUE(Capture()); // nobody hears that
    EXPECT_EQ(1, store.Count());
    Send(WM_QUERYENDSESSION, 0, 0); // once more, with no hook set
    EXPECT_FALSE(desktop->HasGuest());
}

TEST_F(Events, CancelledEndOfTheSessionPutsEverythingBack) {
    for (int n = 0; n < 3; ++n) {
        Send(WM_QUERYENDSESSION, 0, 0);
        ASSERT_FALSE(desktop->HasGuest());
        Send(WM_ENDSESSION, FALSE, 0);
        ASSERT_TRUE(WaitUntil([&] { return desktop->IsFullyAttached(); }));
        EXPECT_TRUE(StillCaptures());
    }
    Send(WM_ENDSESSION, FALSE, 0); // the hook is set: nothing to do
    EXPECT_TRUE(desktop->IsFullyAttached());
    {
        Spy spy;
        desktop->Notify(LVN_SETDISPINFOW);
        EXPECT_TRUE(spy.HearsOfOneMove());
    }
    ASSERT_TRUE(monitor.Exit());
    EXPECT_FALSE(desktop->HasGuest());
}

TEST_F(Events, WordsThatAreSharedNameTheDesktopAndTheMonitor) {
    ProductLibrary library;
    EXPECT_EQ(CompanyMsg(), library.Words().nCompanyMsg);
    EXPECT_EQ(desktop->List(), library.Words().hwndList);
    EXPECT_NE(nullptr, library.Words().hhook);
    EXPECT_EQ(desktop->View(), library.Words().hwndView);
    EXPECT_EQ(monitor.Window(), library.Words().hwndMonitor);
    ASSERT_TRUE(monitor.Exit());
    EXPECT_EQ(nullptr, library.Words().hhook);
    EXPECT_EQ(nullptr, library.Words().hwndMonitor);
}

TEST(FolderEvents, FileThatIsCreatedOrDeletedIsCapturedWithTheNextTick) {
    SnapshotReader store;
    store.Clear();
    {
        TestDesktop desktop(DesktopMode::Real);
        MonitorProcess monitor;
        monitor.StartOn(desktop);
        ASSERT_TRUE(WaitUntil([&] { return store.Count() == 1; }));
        size_t nIcons = store.Newest()->Icons().size();
        desktop.CreateDesktopFile(L"made by a test.txt");
        monitor.PostShellEvent();
        ::PostMessageW(monitor.Window(), WM_TIMER, 10, 0);
        ASSERT_TRUE(WaitUntil([&] { return store.Count() == 2; }));
        EXPECT_EQ(nIcons + 1, store.Newest()->Icons().size());
        desktop.DeleteDesktopFile(L"made by a test.txt");
        monitor.PostShellEvent();
        ::PostMessageW(monitor.Window(), WM_TIMER, 10, 0);
        ASSERT_TRUE(WaitUntil([&] { return store.Count() == 3; }));
        EXPECT_EQ(nIcons, store.Newest()->Icons().size());
    }
    store.Clear();
}

/// In real time: nobody but the debounce asks for these captures.
class RealTime : public EngineTest {
  protected:
    static constexpr DWORD kEarlyMs = 9300, kLateMs = 3500;
    bool StoresNothingFor(DWORD nMs) {
        int nBefore = store.Count();
        return HoldsFor([&] { return store.Count() == nBefore; }, nMs);
    }
    bool StoresWithin(DWORD nMs) {
        int nBefore = store.Count();
        return WaitUntil([&] { return store.Count() == nBefore + 1; }, nMs);
    }
};

TEST_F(RealTime, DragOnTheRealDesktopIsStoredTenSecondsLater) {
    StartDesktop(DesktopMode::Real);
    StartMonitor();
    DragItem(*desktop, 0, 240, 160, mouse::Button::Left);
    EXPECT_TRUE(StoresNothingFor(kEarlyMs));
    ASSERT_TRUE(StoresWithin(kLateMs));
    EXPECT_EQ(ExpectedIcons(), store.Newest()->Icons());
}

TEST_F(RealTime, RightDragPutsOffTheCaptureThatARenameScheduled) {
    StartPlain(5);
    StartMonitor();
    MoveSomething();
    desktop->Notify(LVN_SETDISPINFOW);
    EXPECT_TRUE(StoresNothingFor(3000));
    DragItem(*desktop, 2, 240, 160, mouse::Button::Right);
    EXPECT_TRUE(StoresNothingFor(kEarlyMs));
    ASSERT_TRUE(StoresWithin(kLateMs));
    EXPECT_EQ(ExpectedIcons(), store.Newest()->Icons());
}

TEST_F(RealTime, ThreeEventsFourSecondsApartGiveOneCaptureAndThenOneEveryTenSeconds) {
    StartPlain(5);
    StartMonitor();
    MoveSomething();
    for (int n = 0; n < 2; ++n) {
        monitor.PostShellEvent();
        EXPECT_TRUE(StoresNothingFor(4000));
    }
    monitor.PostShellEvent();
    EXPECT_TRUE(StoresNothingFor(kEarlyMs));
    ASSERT_TRUE(StoresWithin(kLateMs));
    uint64_t nFirst = TimeOfName(store.Newest()->strName);
    MoveSomething(); // and no event of it
    EXPECT_TRUE(StoresNothingFor(8500));
    ASSERT_TRUE(StoresWithin(kLateMs));
    double nSeconds = static_cast<double>(TimeOfName(store.Newest()->strName) - nFirst) / 1e7;
    EXPECT_NEAR(10, nSeconds, 0.7);
}
} // namespace
