#include "icons/agent/agent.h"
#include "icons/agent/desktop_shared_data.h"
#include "icons/icons_test_support.h"
#include "runtime/base/ownership.h"
#include "shell/subclass/shell_subclass.h"
#include "support/replace_import.h"
#include "support/runtime_lookup.h"

#include <gtest/gtest.h>
#include <optional>
#include <thread>

extern "C" FARPROC __imp_GetModuleHandleExW, __imp_CreateThread;

namespace {

constexpr UINT kForeignMsg = WM_APP + 5;
constexpr LRESULT kNextHookResult = 0x1234;

struct NextHookCall {
    int nCode;
    WPARAM wParam;
    LPARAM lParam;
};

LRESULT lAgentResult = 0;
std::vector<NextHookCall> nextHookCalls;

// Behind the agent's procedure in the chain of the test's thread.
LRESULT CALLBACK NextHookProc(int nCode, WPARAM wParam, LPARAM lParam) {
    nextHookCalls.push_back({nCode, wParam, lParam});
    return kNextHookResult;
}

LRESULT CALLBACK AgentInHookProc(int nCode, WPARAM wParam, LPARAM lParam) {
    return lAgentResult = DesktopHookProc(nCode, wParam, lParam);
}

class Agent : public EngineTest {
  protected:
    void SetUp() override {
        EngineTest::SetUp();
        Share(view, receiver);
        AddIcon(view.hwndListView, L"one", {1, 1});
        AddIcon(view.hwndListView, L"two", {2, 2});
        ClearSpies();
    }
    void TearDown() override {
        AgentListView().DetachFrom();
        AgentView().DetachFrom();
        EngineTest::TearDown();
    }
    void ClearSpies() {
        view.spyListView.Clear();
        view.spyView.Clear();
        receiver.spy.Clear();
    }
    LRESULT Hook(UINT uMsg, WPARAM wParam, LPARAM lParam, int nCode = HC_ACTION,
                 WPARAM wRemove = PM_REMOVE, HWND hwnd = nullptr) {
        MSG msg{};
        msg.hwnd = hwnd ? hwnd : view.hwndListView;
        msg.message = uMsg;
        msg.wParam = wParam;
        msg.lParam = lParam;
        return DesktopHookProc(nCode, wRemove, reinterpret_cast<LPARAM>(&msg));
    }
    void Attach() {
        Hook(GetTestCompanyMsg(), kCodeAttach, 1);
        ClearSpies();
    }
    LRESULT Notify(unsigned uCode, HWND hwndFrom) {
        NMLISTVIEW notify{};
        notify.hdr.hwndFrom = hwndFrom;
        notify.hdr.code = uCode;
        return ::SendMessageW(view.wndView, WM_NOTIFY, 0, reinterpret_cast<LPARAM>(&notify));
    }
    /// How often code 374 came to the monitor window, and only with lParam 0.
    int CountOfReports() {
        PumpAll();
        auto reports = receiver.spy.GetCode(374);
        for (const SeenMessage& report : reports) EXPECT_EQ(0, report.lParam);
        return static_cast<int>(reports.size());
    }
    void ExpectAttached(int bAttached) {
        HANDLE hListView = ::GetPropW(view.hwndListView, L"CSWND");
        HANDLE hView = ::GetPropW(view.wndView, L"CSWND");
        EXPECT_EQ(bAttached ? static_cast<CSWnd*>(&AgentListView()) : nullptr, hListView);
        EXPECT_EQ(bAttached ? static_cast<CSWnd*>(&AgentView()) : nullptr, hView);
        EXPECT_EQ(bAttached, AgentListView().IsAttached());
        EXPECT_EQ(bAttached, AgentView().IsAttached());
    }
    int NothingHappened() {
        PumpAll();
        return receiver.captures.empty() && receiver.spy.GetCode(374).empty() &&
               !AgentListView().IsAttached() && !AgentView().IsAttached();
    }

    TestView view;
    CaptureReceiver receiver;
};

// The hook procedure

TEST_F(Agent, PassesANullMessageOn) {
    EXPECT_EQ(0, DesktopHookProc(HC_ACTION, PM_REMOVE, 0));
    EXPECT_TRUE(NothingHappened());
}

TEST_F(Agent, PassesForeignMessagesOn) {
    Hook(kForeignMsg, kCodeCapture, 0);
    Hook(kForeignMsg, kCodeAttach, 1);
    Hook(GetTestTaskbarCreated(), kCodeCapture, 0);
    Hook(WM_NULL, kCodeCapture, 0);
    EXPECT_TRUE(NothingHappened());
}

TEST_F(Agent, TakesNoMessageForItsOwnBeforeTheIdIsShared) {
    GetDesktopSharedData().nCompanyMsg = 0;
    Hook(WM_NULL, kCodeCapture, 0);
    Hook(WM_NULL, kCodeAttach, 1);
    Hook(GetTestCompanyMsg(), kCodeCapture, 0);
    EXPECT_TRUE(NothingHappened());
}

TEST_F(Agent, IgnoresOtherCodes) {
    for (WPARAM wCode : {0ull, 1ull, 371ull, 374ull, 375ull, 372ull << 32, ~0ull})
        Hook(GetTestCompanyMsg(), wCode, 1);
    EXPECT_TRUE(NothingHappened());
}

TEST_F(Agent, CapturesOnCode372) {
    Hook(GetTestCompanyMsg(), 372, 0);
    ASSERT_EQ(1u, receiver.captures.size());
    const ReceivedCapture& capture = receiver.captures[0];
    EXPECT_EQ(2u, capture.dwData);
    EXPECT_EQ(48u, capture.cbData);
    EXPECT_EQ(reinterpret_cast<WPARAM>(view.hwndListView), capture.wParam);
    EXPECT_TRUE(SameRecord(RecordOf(0, L"one", {1, 1}), capture.records[0]));
    EXPECT_TRUE(SameRecord(RecordOf(1, L"two", {2, 2}), capture.records[1]));
}

TEST_F(Agent, CapturesForWhateverWindowOfTheThread) {
    TestWindow wndOther;
    Hook(GetTestCompanyMsg(), 372, 99, HC_ACTION, PM_REMOVE, wndOther);
    ASSERT_EQ(1u, receiver.captures.size());
    EXPECT_EQ(reinterpret_cast<WPARAM>(static_cast<HWND>(wndOther)), receiver.captures[0].wParam);
    EXPECT_EQ(2u, receiver.captures[0].dwData);
}

TEST_F(Agent, LooksNeitherAtTheHookCodeNorAtTheRemoveFlag) {
    Hook(GetTestCompanyMsg(), 372, 0, HC_NOREMOVE, PM_NOREMOVE);
    Hook(GetTestCompanyMsg(), 372, 0, -1, PM_REMOVE);
    EXPECT_EQ(2u, receiver.captures.size());
}

TEST_F(Agent, CapturesNothingOfAnEmptyDesktop) {
    SetIcons(view.hwndListView, {});
    Hook(GetTestCompanyMsg(), 372, 0);
    EXPECT_TRUE(NothingHappened());
}

TEST_F(Agent, CapturesWhileAttachedAsWell) {
    Attach();
    Hook(GetTestCompanyMsg(), 372, 0);
    EXPECT_EQ(1u, receiver.captures.size());
}

TEST_F(Agent, GivesTheNextHooksResultAndPassesItsArgumentsOn) {
    nextHookCalls.clear();
    HHOOK hNext =
        ::SetWindowsHookExW(WH_GETMESSAGE, &NextHookProc, nullptr, ::GetCurrentThreadId());
    HHOOK hAgent =
        ::SetWindowsHookExW(WH_GETMESSAGE, &AgentInHookProc, nullptr, ::GetCurrentThreadId());
    ASSERT_TRUE(hNext && hAgent);
    ScopeExit unhook([&] {
        ::UnhookWindowsHookEx(hAgent);
        ::UnhookWindowsHookEx(hNext);
    });
    GetDesktopSharedData().hhook = hAgent;
    for (UINT uMsg : {kForeignMsg, GetTestCompanyMsg()}) {
        nextHookCalls.clear();
        lAgentResult = 0;
        ::PostMessageW(view.hwndListView, uMsg, kCodeIconsMoved, 7);
        MSG msg{};
        ASSERT_TRUE(::PeekMessageW(&msg, view.hwndListView, uMsg, uMsg, PM_REMOVE));
        EXPECT_EQ(kNextHookResult, lAgentResult);
        ASSERT_EQ(1u, nextHookCalls.size());
        EXPECT_EQ(HC_ACTION, nextHookCalls[0].nCode);
        EXPECT_EQ(static_cast<WPARAM>(PM_REMOVE), nextHookCalls[0].wParam);
        EXPECT_NE(0, nextHookCalls[0].lParam);
        EXPECT_EQ(uMsg, msg.message); // it is not swallowed
        EXPECT_EQ(kCodeIconsMoved, msg.wParam);
        EXPECT_EQ(7, msg.lParam);
    }
    GetDesktopSharedData().hhook = nullptr; // the guard above removes it
}

TEST_F(Agent, DoesNotAttachToWindowsOfAnotherThread) {
    std::thread([&] { Hook(GetTestCompanyMsg(), kCodeAttach, 1); }).join();
    EXPECT_EQ(nullptr, ::GetPropW(view.hwndListView, L"CSWND"));
    EXPECT_EQ(nullptr, ::GetPropW(view.wndView, L"CSWND"));
    EXPECT_FALSE(AgentListView().IsAttached());
    EXPECT_FALSE(AgentView().IsAttached());
}

TEST_F(Agent, AttachesOneWindowWhenTheOtherIsGone) {
    TestWindow wndGone;
    GetDesktopSharedData().hwndView = wndGone;
    wndGone.Destroy();
    Hook(GetTestCompanyMsg(), kCodeAttach, 1);
    EXPECT_TRUE(AgentListView().IsAttached());
    EXPECT_FALSE(AgentView().IsAttached());
}

TEST_F(Agent, WithoutAnyWindowAttachesNothing) {
    GetDesktopSharedData().hwndView = GetDesktopSharedData().hwndListView = nullptr;
    Hook(GetTestCompanyMsg(), kCodeAttach, 1);
    EXPECT_TRUE(NothingHappened());
    Hook(GetTestCompanyMsg(), kCodeAttach, 0);
    EXPECT_TRUE(NothingHappened());
}

// Attaching and detaching, by each of the two ways to subclass

enum class Route { kChain, kProcedure };

class AgentRoute : public Agent, public testing::WithParamInterface<Route> {
  protected:
    void SetUp() override {
        Agent::SetUp();
        if (GetParam() == Route::kProcedure)
            hidden.emplace({"SetWindowSubclass", "RemoveWindowSubclass", "DefSubclassProc"});
        int nState = GetParam() == Route::kChain ? ShellSubclass::kReady : ShellSubclass::kMissing;
        ASSERT_EQ(nState, ShellSubclass::ReInitialize());
        procListView = ProcOf(view.hwndListView);
        procView = ProcOf(view.wndView);
    }
    static LONG_PTR ProcOf(HWND hwnd) { return ::GetWindowLongPtrW(hwnd, GWLP_WNDPROC); }
    void ExpectFormerProcedures() {
        EXPECT_EQ(procListView, ProcOf(view.hwndListView));
        EXPECT_EQ(procView, ProcOf(view.wndView));
    }
    /// A message that only an attached agent answers: it posts 374.
    int IsWatching() {
        receiver.spy.Clear();
        Notify(static_cast<unsigned>(LVN_SETDISPINFOW), view.hwndListView);
        return CountOfReports();
    }

    std::optional<HideFunctions> hidden;
    LONG_PTR procListView = 0, procView = 0;
};

TEST_P(AgentRoute, AttachesBothWindowsOnCode373) {
    ExpectAttached(0);
    EXPECT_EQ(0, IsWatching());
    Attach();
    ExpectAttached(1);
    EXPECT_EQ(1, IsWatching());
    if (GetParam() == Route::kProcedure) {
        EXPECT_EQ(reinterpret_cast<LONG_PTR>(&CSWnd::WndProc), ProcOf(view.hwndListView));
        EXPECT_EQ(reinterpret_cast<LONG_PTR>(&CSWnd::WndProc), ProcOf(view.wndView));
    }
}

TEST_P(AgentRoute, AttachesForAnyNonZeroNumber) {
    Hook(GetTestCompanyMsg(), kCodeAttach, static_cast<LPARAM>(1ull << 40));
    ExpectAttached(1);
}

TEST_P(AgentRoute, DetachesBothWindowsOnThePostedCode) {
    Attach();
    Hook(GetTestCompanyMsg(), kCodeAttach, 0);
    ExpectAttached(0);
    ExpectFormerProcedures();
    EXPECT_EQ(0, IsWatching());
}

TEST_P(AgentRoute, DetachesEachWindowOnItsSentCode) {
    Attach();
    EXPECT_EQ(0, ::SendMessageW(view.hwndListView, GetTestCompanyMsg(), kCodeAttach, 0));
    EXPECT_EQ(nullptr, ::GetPropW(view.hwndListView, L"CSWND"));
    EXPECT_NE(nullptr, ::GetPropW(view.wndView, L"CSWND"));
    EXPECT_EQ(0, ::SendMessageW(view.wndView, GetTestCompanyMsg(), kCodeAttach, 0));
    ExpectAttached(0);
    ExpectFormerProcedures();
    // Neither reached the windows' own procedures.
    EXPECT_EQ(0, view.spyListView.CountOfCode(kCodeAttach));
    EXPECT_EQ(0, view.spyView.CountOfCode(kCodeAttach));
}

TEST_P(AgentRoute, GivesZeroForASentDetachWhateverTheWindowWouldAnswer) {
    auto answer = [](UINT uMsg, WPARAM, LPARAM, LRESULT* plResult) {
        *plResult = 77;
        return static_cast<int>(uMsg == GetTestCompanyMsg());
    };
    view.spyListView.handler = view.spyView.handler = answer;
    Attach();
    EXPECT_EQ(0, ::SendMessageW(view.hwndListView, GetTestCompanyMsg(), kCodeAttach, 0));
    EXPECT_EQ(0, ::SendMessageW(view.wndView, GetTestCompanyMsg(), kCodeAttach, 0));
    EXPECT_EQ(77, ::SendMessageW(view.wndView, GetTestCompanyMsg(), kCodeAttach, 0));
}

TEST_P(AgentRoute, HandsASentAttachAndOtherCodesToTheBase) {
    Attach();
    for (WPARAM wCode : {1ull, 371ull, 372ull, 374ull})
        for (HWND hwnd : {view.hwndListView, static_cast<HWND>(view.wndView)})
            ::SendMessageW(hwnd, GetTestCompanyMsg(), wCode, 0);
    for (HWND hwnd : {view.hwndListView, static_cast<HWND>(view.wndView)})
        ::SendMessageW(hwnd, GetTestCompanyMsg(), kCodeAttach, 1);
    EXPECT_EQ(5, view.spyListView.CountOf(GetTestCompanyMsg()));
    EXPECT_EQ(5, view.spyView.CountOf(GetTestCompanyMsg()));
    ExpectAttached(1);
    EXPECT_TRUE(receiver.captures.empty());
}

TEST_P(AgentRoute, ASentAttachDoesNotAttach) {
    ::SendMessageW(view.hwndListView, GetTestCompanyMsg(), kCodeAttach, 1);
    ::SendMessageW(view.wndView, GetTestCompanyMsg(), kCodeAttach, 1);
    ExpectAttached(0);
}

TEST_P(AgentRoute, AttachingTwiceIsAttachingOnce) {
    Attach();
    Attach();
    ExpectAttached(1);
    EXPECT_EQ(1, IsWatching());
    ::SendMessageW(view.hwndListView, kForeignMsg, 0, 0);
    EXPECT_EQ(1, view.spyListView.CountOf(kForeignMsg));
    Hook(GetTestCompanyMsg(), kCodeAttach, 0);
    ExpectAttached(0);
    ExpectFormerProcedures();
    ::SendMessageW(view.hwndListView, kForeignMsg, 0, 0);
    EXPECT_EQ(2, view.spyListView.CountOf(kForeignMsg));
}

TEST_P(AgentRoute, DetachingTwiceIsDetachingOnce) {
    Hook(GetTestCompanyMsg(), kCodeAttach, 0);
    Attach();
    Hook(GetTestCompanyMsg(), kCodeAttach, 0);
    Hook(GetTestCompanyMsg(), kCodeAttach, 0);
    ::SendMessageW(view.hwndListView, GetTestCompanyMsg(), kCodeAttach, 0);
    ExpectAttached(0);
    ExpectFormerProcedures();
    ::SendMessageW(view.hwndListView, kForeignMsg, 0, 0);
    EXPECT_EQ(1, view.spyListView.CountOf(kForeignMsg));
}

TEST_P(AgentRoute, AttachesAgainAfterADetach) {
    for (int i = 0; i < 3; ++i) {
        Attach();
        ExpectAttached(1);
        EXPECT_EQ(1, IsWatching());
        Hook(GetTestCompanyMsg(), kCodeAttach, 0);
        ExpectAttached(0);
        ExpectFormerProcedures();
    }
}

TEST_P(AgentRoute, AttachesToTheWindowHeldBeforeWhenNoneIsShared) {
    Attach();
    Hook(GetTestCompanyMsg(), kCodeAttach, 0);
    GetDesktopSharedData().hwndListView = nullptr;
    Hook(GetTestCompanyMsg(), kCodeAttach, 1);
    EXPECT_NE(nullptr, ::GetPropW(view.hwndListView, L"CSWND"));
    EXPECT_TRUE(AgentListView().IsAttached());
}

TEST_P(AgentRoute, LetsAllMessagesThroughToTheWindows) {
    Attach();
    view.spyListView.handler = [](UINT uMsg, WPARAM wParam, LPARAM lParam, LRESULT* plResult) {
        if (uMsg != kForeignMsg) return 0;
        *plResult = static_cast<LRESULT>(wParam) + lParam;
        return 1;
    };
    EXPECT_EQ(42, ::SendMessageW(view.hwndListView, kForeignMsg, 40, 2));
    EXPECT_EQ(2, ::SendMessageW(view.hwndListView, LVM_GETITEMCOUNT, 0, 0));
}

TEST_P(AgentRoute, EndsWithAWindowThatIsDestroyedWhileAttached) {
    Attach();
    ::DestroyWindow(view.hwndListView);
    EXPECT_FALSE(AgentListView().IsAttached());
    EXPECT_EQ(1, view.spyListView.CountOf(WM_NCDESTROY));
    EXPECT_TRUE(AgentView().IsAttached());
    view.wndView.Destroy();
    EXPECT_FALSE(AgentView().IsAttached());
    Hook(GetTestCompanyMsg(), kCodeAttach, 0);
    EXPECT_TRUE(NothingHappened());
}

TEST_P(AgentRoute, AttachesToTheWindowsOfTheNextShell) {
    Attach();
    view.wndView.Destroy(); // takes the list view with it
    TestView viewNext;
    Share(viewNext, receiver);
    Hook(GetTestCompanyMsg(), kCodeAttach, 1);
    EXPECT_NE(nullptr, ::GetPropW(viewNext.hwndListView, L"CSWND"));
    EXPECT_NE(nullptr, ::GetPropW(viewNext.wndView, L"CSWND"));
    Hook(GetTestCompanyMsg(), kCodeAttach, 0);
    EXPECT_EQ(nullptr, ::GetPropW(viewNext.hwndListView, L"CSWND"));
    EXPECT_EQ(nullptr, ::GetPropW(viewNext.wndView, L"CSWND"));
}

INSTANTIATE_TEST_SUITE_P(Routes, AgentRoute, testing::Values(Route::kChain, Route::kProcedure),
                         [](const auto& row) {
                             return row.param == Route::kChain ? "Chain" : "Procedure";
                         });

// Drags and edits

class AgentDrag : public Agent, public testing::WithParamInterface<unsigned> {};

TEST_P(AgentDrag, IsReportedWithTheNextMouseMovementOnce) {
    Attach();
    Notify(GetParam(), view.hwndListView);
    EXPECT_EQ(0, CountOfReports());
    ::SendMessageW(view.hwndListView, WM_MOUSEMOVE, 0, MAKELPARAM(5, 5));
    EXPECT_EQ(1, CountOfReports());
    ::SendMessageW(view.hwndListView, WM_MOUSEMOVE, 0, MAKELPARAM(6, 6));
    EXPECT_EQ(1, CountOfReports());
    EXPECT_EQ(2, view.spyListView.CountOf(WM_MOUSEMOVE)); // never consumed
    EXPECT_EQ(1, view.spyView.CountOf(WM_NOTIFY));
}

TEST_P(AgentDrag, OfAnotherControlIsIgnored) {
    Attach();
    TestWindow wndOther;
    Notify(GetParam(), wndOther);
    Notify(GetParam(), view.wndView);
    Notify(GetParam(), nullptr);
    ::SendMessageW(view.hwndListView, WM_MOUSEMOVE, 0, 0);
    EXPECT_EQ(0, CountOfReports());
    EXPECT_EQ(3, view.spyView.CountOf(WM_NOTIFY));
}

INSTANTIATE_TEST_SUITE_P(Buttons, AgentDrag, testing::Values(0xFFFFFF93u, 0xFFFFFF91u),
                         [](const auto& row) {
                             return row.param == 0xFFFFFF93u ? "Left" : "Right";
                         });

TEST_F(Agent, ReportsAnEditedTextAtOnce) {
    Attach();
    Notify(0xFFFFFF4E, view.hwndListView);
    EXPECT_EQ(1, CountOfReports());
    ::SendMessageW(view.hwndListView, WM_MOUSEMOVE, 0, 0);
    EXPECT_EQ(1, CountOfReports());
    EXPECT_EQ(1, view.spyView.CountOf(WM_NOTIFY));
}

TEST_F(Agent, IgnoresAnEditOfAnotherControl) {
    Attach();
    TestWindow wndOther;
    Notify(0xFFFFFF4E, wndOther);
    EXPECT_EQ(0, CountOfReports());
    EXPECT_EQ(1, view.spyView.CountOf(WM_NOTIFY));
}

TEST_F(Agent, PostsReportsAndNeverSendsThem) {
    Attach();
    Notify(0xFFFFFF4E, view.hwndListView);
    Notify(0xFFFFFF93, view.hwndListView);
    ::SendMessageW(view.hwndListView, WM_MOUSEMOVE, 0, 0);
    EXPECT_EQ(0, receiver.spy.CountOfCode(374)); // still in the queue
    EXPECT_EQ(2, CountOfReports());
}

TEST_F(Agent, IgnoresOtherNotifications) {
    Attach();
    int nSent = 0;
    for (unsigned uCode = 0xFFFFFFFF; uCode > 0xFFFFFF00; --uCode) {
        if (uCode == 0xFFFFFF4E || uCode == 0xFFFFFF93 || uCode == 0xFFFFFF91) continue;
        Notify(uCode, view.hwndListView);
        ++nSent;
    }
    Notify(0, view.hwndListView);
    Notify(147, view.hwndListView);
    ::SendMessageW(view.hwndListView, WM_MOUSEMOVE, 0, 0);
    EXPECT_EQ(0, CountOfReports());
    EXPECT_EQ(nSent + 2, view.spyView.CountOf(WM_NOTIFY));
}

TEST_F(Agent, IgnoresANotificationWithoutData) {
    Attach();
    view.spyView.handler = [](UINT uMsg, WPARAM, LPARAM, LRESULT*) {
        return static_cast<int>(uMsg == WM_NOTIFY);
    };
    AgentView().OnWndMessage(WM_NOTIFY, 0, 0);
    EXPECT_EQ(0, CountOfReports());
    EXPECT_EQ(1, view.spyView.CountOf(WM_NOTIFY));
}

TEST_F(Agent, GivesTheViewsOwnAnswerToANotification) {
    Attach();
    view.spyView.handler = [](UINT uMsg, WPARAM, LPARAM, LRESULT* plResult) {
        *plResult = 55;
        return static_cast<int>(uMsg == WM_NOTIFY);
    };
    EXPECT_EQ(55, Notify(0xFFFFFF93, view.hwndListView));
    EXPECT_EQ(55, Notify(0xFFFFFF4E, view.hwndListView));
    EXPECT_EQ(55, Notify(0xFFFFFF00, view.hwndListView));
}

TEST_F(Agent, ReportsNoMovementWithoutADrag) {
    Attach();
    ::SendMessageW(view.hwndListView, WM_MOUSEMOVE, MK_LBUTTON, 0);
    EXPECT_EQ(0, CountOfReports());
    EXPECT_EQ(1, view.spyListView.CountOf(WM_MOUSEMOVE));
}

TEST_F(Agent, ReportsTwoDragsTwice) {
    Attach();
    for (int i = 0; i < 2; ++i) {
        Notify(0xFFFFFF93, view.hwndListView);
        Notify(0xFFFFFF93, view.hwndListView);
        ::SendMessageW(view.hwndListView, WM_MOUSEMOVE, 0, 0);
    }
    EXPECT_EQ(2, CountOfReports());
}

TEST_F(Agent, ReportsInVainToAMonitorThatIsNotThere) {
    Attach();
    TestWindow wndGone;
    HWND hwndStale = wndGone;
    wndGone.Destroy();
    for (HWND hwndMonitor : {static_cast<HWND>(nullptr), hwndStale}) {
        GetDesktopSharedData().hwndMonitor = hwndMonitor;
        ClearSpies();
        Notify(0xFFFFFF4E, view.hwndListView);
        Notify(0xFFFFFF93, view.hwndListView);
        ::SendMessageW(view.hwndListView, WM_MOUSEMOVE, 0, 0);
        Hook(GetTestCompanyMsg(), 372, 0);
        PumpAll();
        EXPECT_EQ(0, receiver.spy.CountOfAll());
        EXPECT_EQ(0, view.spyListView.CountOfCode(374)); // nor to the thread's own windows
        EXPECT_EQ(0, view.spyView.CountOfCode(374));
    }
}

// The shared words, as any program can write them that maps the library

TEST_F(Agent, ActsOnNoIdThatIsNoneOfARegisteredMessage) {
    Attach();
    for (unsigned long long nId : {0ull, 16ull, 0xBFFFull, 0x10000ull, 0xFFFFFFFFull}) {
        auto uMsg = static_cast<UINT>(nId);
        GetDesktopSharedData().nCompanyMsg = nId;
        ClearSpies();
        Notify(0xFFFFFF4E, view.hwndListView);
        Notify(0xFFFFFF93, view.hwndListView);
        ::SendMessageW(view.hwndListView, WM_MOUSEMOVE, 0, 0);
        Hook(uMsg, kCodeCapture, 0);
        Hook(uMsg, kCodeAttach, 0);
        PumpAll();
        EXPECT_EQ(0, receiver.spy.CountOfAll()) << nId;
        EXPECT_TRUE(receiver.captures.empty()) << nId;
        ExpectAttached(1);
    }
}

TEST_F(Agent, ActsOnTheIdsOfRegisteredMessages) {
    for (UINT uMsg : {0xC000u, 0xFFFFu}) {
        GetDesktopSharedData().nCompanyMsg = uMsg;
        Hook(uMsg, kCodeCapture, 0);
    }
    EXPECT_EQ(2u, receiver.captures.size());
}

TEST_F(Agent, TellsNothingToAWindowThatIsNotTheMonitors) {
    Attach();
    TestWindow wndOther;
    ProcSpy spyOther(wndOther);
    GetDesktopSharedData().hwndMonitor = wndOther;
    Hook(GetTestCompanyMsg(), kCodeCapture, 0);
    Notify(0xFFFFFF4E, view.hwndListView);
    Notify(0xFFFFFF93, view.hwndListView);
    ::SendMessageW(view.hwndListView, WM_MOUSEMOVE, 0, 0);
    PumpAll();
    EXPECT_EQ(0, spyOther.CountOf(WM_COPYDATA));
    EXPECT_EQ(0, spyOther.CountOfCode(kCodeIconsMoved));
}

TEST_F(Agent, ReadsNoListViewOfAnotherThread) {
    DesktopThread other({{L"other", {3, 3}}});
    other.SpyListView().Clear();
    GetDesktopSharedData().hwndListView = other.GetListView();
    Hook(GetTestCompanyMsg(), kCodeCapture, 0);
    for (UINT uMsg : {UINT{LVM_GETITEMCOUNT}, UINT{LVM_GETITEMPOSITION}, UINT{LVM_GETITEMW}})
        EXPECT_EQ(0, other.SpyListView().CountOf(uMsg));
    EXPECT_TRUE(receiver.captures.empty());
}

/// The references to this program's own module that were taken and are not yet to be given back,
/// as the platform is asked: for a module by an address in it, and for a thread that is handed it.
class LibraryReferences {
  public:
    LibraryReferences()
        : moduleHandle(__imp_GetModuleHandleExW, &Take), thread(__imp_CreateThread, &GiveBack) {
        pfnTake = moduleHandle.Original<TakeFunc>();
        pfnThread = thread.Original<ThreadFunc>();
        nHeld = 0;
    }
    LibraryReferences(const LibraryReferences&) = delete;
    LibraryReferences& operator=(const LibraryReferences&) = delete;
    int Count() const { return nHeld; }
    bool IsHeld() const { return nHeld > 0; }

  private:
    using TakeFunc = BOOL WINAPI(DWORD, LPCWSTR, HMODULE*);
    using ThreadFunc = HANDLE WINAPI(SECURITY_ATTRIBUTES*, SIZE_T, LPTHREAD_START_ROUTINE, void*,
                                     DWORD, DWORD*);
    static BOOL WINAPI Take(DWORD dwFlags, LPCWSTR pszName, HMODULE* phmod) {
        BOOL bDone = pfnTake(dwFlags, pszName, phmod);
        if (bDone && dwFlags == GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS) ++nHeld;
        return bDone;
    }
    static HANDLE WINAPI GiveBack(SECURITY_ATTRIBUTES* pSecurity, SIZE_T cbStack,
                                  LPTHREAD_START_ROUTINE pfn, void* p, DWORD dwFlags,
                                  DWORD* pdwThread) {
        if (p == ::GetModuleHandleW(nullptr)) --nHeld;
        return pfnThread(pSecurity, cbStack, pfn, p, dwFlags, pdwThread);
    }
    static inline TakeFunc* pfnTake;
    static inline ThreadFunc* pfnThread;
    static inline int nHeld;
    ReplaceImport moduleHandle, thread;
};

// Whether a reference keeps a library mapped shows only with the library itself, in the tests with
// a shell of its own; here the code is the program's.

TEST(LibraryHold, HoldsNothingAtFirst) {
    LibraryReferences library;
    constinit static LibraryHold hold;
    hold.Release();
    EXPECT_EQ(0, library.Count());
}

TEST(LibraryHold, TakesOneReferenceHoweverOftenItIsAsked) {
    LibraryReferences library;
    LibraryHold hold;
    hold.Take();
    EXPECT_EQ(1, library.Count());
    hold.Take();
    EXPECT_EQ(1, library.Count());
    hold.Release();
    EXPECT_EQ(0, library.Count());
    hold.Release();
    EXPECT_EQ(0, library.Count());
}

TEST(LibraryHold, CanBeTakenAgain) {
    LibraryReferences library;
    LibraryHold hold;
    for (int i = 0; i < 5; ++i) {
        hold.Take();
        EXPECT_EQ(1, library.Count());
        hold.Release();
        EXPECT_EQ(0, library.Count());
    }
}

// The agent's reference to its own library: whoever returns into a library that is gone takes the
// shell down.

constexpr UINT kMenuMsg = WM_APP + 6; // stands for a message whose handler runs a loop

class AgentLifetime : public EngineTest {
  protected:
    void SetUp() override {
        EngineTest::SetUp();
        ASSERT_EQ(ShellSubclass::kReady, ShellSubclass::ReInitialize());
        Share(view, receiver);
    }
    void TearDown() override {
        AgentListView().DetachFrom();
        AgentView().DetachFrom();
        EngineTest::TearDown();
    }
    void DetachBySending() {
        ::SendMessageW(view.hwndListView, GetTestCompanyMsg(), kCodeAttach, 0);
        ::SendMessageW(view.wndView, GetTestCompanyMsg(), kCodeAttach, 0);
    }

    TestView view;
    CaptureReceiver receiver;
    LibraryReferences library;
};

TEST_F(AgentLifetime, LibraryIsHeldWhileAWindowIsAttached) {
    PassThroughHook(kCodeAttach, 1);
    EXPECT_TRUE(library.IsHeld());
    ::SendMessageW(view.hwndListView, GetTestCompanyMsg(), kCodeAttach, 0);
    EXPECT_TRUE(library.IsHeld());
    ::SendMessageW(view.wndView, GetTestCompanyMsg(), kCodeAttach, 0);
    EXPECT_FALSE(library.IsHeld());
}

TEST_F(AgentLifetime, LibraryGoesAfterThePostedDetach) {
    PassThroughHook(kCodeAttach, 1);
    PassThroughHook(kCodeAttach, 0);
    EXPECT_FALSE(library.IsHeld());
}

TEST_F(AgentLifetime, LibraryIsNotHeldWhenNoWindowCouldBeAttached) {
    GetDesktopSharedData().hwndListView = GetDesktopSharedData().hwndView = nullptr;
    view.wndView.Destroy();
    PassThroughHook(kCodeAttach, 1);
    EXPECT_FALSE(library.IsHeld());
}

TEST_F(AgentLifetime, LibraryGoesWithTheWindows) {
    PassThroughHook(kCodeAttach, 1);
    ::DestroyWindow(view.hwndListView);
    EXPECT_TRUE(library.IsHeld());
    view.wndView.Destroy();
    EXPECT_FALSE(library.IsHeld());
}

TEST_F(AgentLifetime, LibraryStaysUnderAFrameThatWaitsForAMenu) {
    for (HWND hwnd : {view.hwndListView, static_cast<HWND>(view.wndView)}) {
        ProcSpy& spy = hwnd == view.hwndListView ? view.spyListView : view.spyView;
        bool bHeldInside = false;
        spy.handler = [&](UINT uMsg, WPARAM, LPARAM, LRESULT*) {
            if (uMsg != kMenuMsg) return 0;
            DetachBySending();
            bHeldInside = library.IsHeld();
            return 1;
        };
        PassThroughHook(kCodeAttach, 1);
        ::SendMessageW(hwnd, kMenuMsg, 0, 0);
        spy.handler = nullptr;
        EXPECT_TRUE(bHeldInside);
        EXPECT_FALSE(AgentListView().IsAttached());
        EXPECT_FALSE(AgentView().IsAttached());
        EXPECT_FALSE(library.IsHeld());
    }
}

TEST_F(AgentLifetime, LibraryStaysUnderAFrameWhenTheHookDetaches) {
    bool bHeldInside = false;
    view.spyView.handler = [&](UINT uMsg, WPARAM, LPARAM, LRESULT*) {
        if (uMsg != kMenuMsg) return 0;
        PassThroughHook(kCodeAttach, 0);
        bHeldInside = library.IsHeld();
        return 1;
    };
    PassThroughHook(kCodeAttach, 1);
    ::SendMessageW(view.wndView, kMenuMsg, 0, 0);
    EXPECT_TRUE(bHeldInside);
    EXPECT_FALSE(library.IsHeld());
}

TEST_F(AgentLifetime, LibraryStaysWhenAnotherCopyTakesTheWindowsProperty) {
    PassThroughHook(kCodeAttach, 1);
    ::RemovePropW(view.hwndListView, L"CSWND");
    ::SendMessageW(view.wndView, GetTestCompanyMsg(), kCodeAttach, 0);
    EXPECT_TRUE(AgentListView().IsAttached());
    EXPECT_TRUE(library.IsHeld()); // the list view still calls into it
    ::SendMessageW(view.hwndListView, GetTestCompanyMsg(), kCodeAttach, 0);
    EXPECT_FALSE(library.IsHeld());
}

TEST_F(AgentLifetime, WindowLeftForAnotherNoLongerCallsTheAgent) {
    PassThroughHook(kCodeAttach, 1);
    TestView viewNext;
    AddIcon(viewNext.hwndListView, L"one", {1, 1});
    Share(viewNext, receiver);
    PassThroughHook(kCodeAttach, 1);
    EXPECT_EQ(nullptr, ::GetPropW(view.hwndListView, L"CSWND"));
    EXPECT_NE(nullptr, ::GetPropW(viewNext.hwndListView, L"CSWND"));
    // A message of the old window would be answered by the new one.
    EXPECT_EQ(0, ::SendMessageW(view.hwndListView, LVM_GETITEMCOUNT, 0, 0));
    ::DestroyWindow(view.hwndListView);
    EXPECT_TRUE(AgentListView().IsAttached());
    EXPECT_TRUE(::IsWindow(viewNext.hwndListView));
    PassThroughHook(kCodeAttach, 0);
    EXPECT_FALSE(library.IsHeld());
}

} // namespace
