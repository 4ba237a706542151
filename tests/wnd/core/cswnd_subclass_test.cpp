#include "shell/subclass/shell_subclass.h"
#include "support/runtime_lookup.h"
#include "support/wait_until.h"
#include "wnd/core/cswnd.h"
#include "wnd/wnd_probe.h"

#include <gtest/gtest.h>
#include <atomic>
#include <cwchar>
#include <thread>

namespace {
constexpr UINT kMsg = WM_APP + 3;
constexpr LRESULT kPlainResult = 700;

/// The window's own procedure before anybody subclasses it.
std::atomic<int> nPlainCalls{0};
LRESULT CALLBACK PlainProc(HWND hwnd, UINT uMsg, WPARAM wParam, LPARAM lParam) {
    if (uMsg != kMsg) return ::DefWindowProcW(hwnd, uMsg, wParam, lParam);
    ++nPlainCalls;
    return kPlainResult + static_cast<LRESULT>(wParam);
}

/// A window with that procedure.
struct Target : PlainWnd {
    Target() {
        ::SetWindowLongPtrW(*this, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(&PlainProc));
        nPlainCalls = 0;
    }
    LRESULT Send(WPARAM wParam = 0) const { return ::SendMessageW(*this, kMsg, wParam, 0); }
    WNDPROC Proc() const {
        return reinterpret_cast<WNDPROC>(::GetWindowLongPtrW(*this, GWLP_WNDPROC));
    }
};

FARPROC LookupWithoutComctl(const wchar_t* pszModule, const char* pszName) {
    bool bHidden = ::_wcsnicmp(pszModule, L"comctl32", 8) == 0;
    return bHidden ? nullptr : FindSystemFunc(pszModule, pszName);
}

/// Both ways to subclass; the second is a platform without the chain.
enum Route { kChain, kProcedure };

class RouteTest : public testing::Test {
  protected:
    explicit RouteTest(Route routeNew) : route(routeNew) {
        if (route == kProcedure) ::SetRuntimeLookup(&LookupWithoutComctl);
        EXPECT_EQ(route == kChain ? ShellSubclass::kReady : ShellSubclass::kMissing,
                  ShellSubclass::ReInitialize());
    }
    ~RouteTest() override {
        ::SetRuntimeLookup(nullptr);
        ShellSubclass::ReInitialize();
    }
    int IsChain() const { return route == kChain; }

    Route route;
    ProbeClass cls;
    ProbeRecord record;
};
struct CSWndSubclass : RouteTest, testing::WithParamInterface<Route> {
    CSWndSubclass() : RouteTest(GetParam()) {}
};
struct CSWndSubclassChain : RouteTest {
    CSWndSubclassChain() : RouteTest(kChain) {}
};
struct CSWndSubclassProcedure : RouteTest {
    CSWndSubclassProcedure() : RouteTest(kProcedure) {}
};

INSTANTIATE_TEST_SUITE_P(Route, CSWndSubclass, testing::Values(kChain, kProcedure),
                         [](const auto& row) {
                             return std::string(row.param == kChain ? "Chain" : "Procedure");
                         });

TEST_P(CSWndSubclass, TiesTheObjectAndPassesMessagesOn) {
    Target target;
    WNDPROC pfnBefore = target.Proc();
    ProbeWnd wnd(record);
    ASSERT_EQ(1, wnd.Subclass(target));
    EXPECT_EQ(static_cast<HWND>(target), wnd.hWnd);
    EXPECT_EQ(static_cast<CSWnd*>(&wnd), ::GetPropW(target, L"CSWND"));
    EXPECT_EQ(&wnd, CSWnd::FromHandle(target));
    EXPECT_EQ(IsChain(), wnd.shellSubclassed);
    EXPECT_EQ(IsChain() ? nullptr : pfnBefore, wnd.oldWndProc);
    EXPECT_EQ(0, record.nPreInits) << "PreInit is for creation";

    EXPECT_EQ(kPlainResult + 4, target.Send(4));
    EXPECT_EQ(1, nPlainCalls);
    EXPECT_EQ(1, record.Count(kMsg));
    EXPECT_NE(0, wnd.Unsubclass());
}

TEST_P(CSWndSubclass, UnsubclassGivesTheWindowBack) {
    Target target;
    WNDPROC pfnBefore = target.Proc();
    ProbeWnd wnd(record);
    ASSERT_EQ(1, wnd.Subclass(target));
    EXPECT_NE(0, wnd.Unsubclass());
    EXPECT_EQ(nullptr, ::GetPropW(target, L"CSWND"));
    EXPECT_EQ(static_cast<HWND>(target), wnd.hWnd) << "stays as it is";
    EXPECT_EQ(nullptr, wnd.oldWndProc);
    EXPECT_EQ(IsChain(), wnd.shellSubclassed) << "never cleared again";
    EXPECT_EQ(kPlainResult, target.Send());
    EXPECT_EQ(0, record.Count(kMsg));
    EXPECT_EQ(pfnBefore, target.Proc());
    EXPECT_EQ(0, record.nPostNcDestroys);
}

TEST_P(CSWndSubclass, UnsubclassedWindowsEndIsNotToldToTheObject) {
    ProbeWnd wnd(record);
    wnd.autoDelete = 1;
    {
        Target target;
        ASSERT_EQ(1, wnd.Subclass(target));
        wnd.Unsubclass();
    }
    EXPECT_EQ(0, record.nPostNcDestroys);
    EXPECT_EQ(0, record.nDeletes);
    EXPECT_EQ(0, wnd.IsReady());
}

TEST_P(CSWndSubclass, WindowsEndEndsTheLife) {
    auto* pWnd = new ProbeWnd(record);
    {
        Target target;
        ASSERT_EQ(1, pWnd->Subclass(target));
        pWnd->autoDelete = 1;
    }
    EXPECT_EQ(1, record.nPostNcDestroys);
    EXPECT_EQ(1, record.nDeletes);
    EXPECT_EQ(0, record.nFramesAtDelete);
    EXPECT_TRUE(record.Saw(WM_NCDESTROY));
}

TEST_P(CSWndSubclass, WindowsEndLeavesAKeptObjectUntiedAndGoodForTheNextWindow) {
    ProbeWnd wnd(record);
    for (int n = 1; n <= 3; ++n) {
        {
            Target target;
            ASSERT_EQ(1, wnd.Subclass(target));
            EXPECT_EQ(kPlainResult, target.Send());
            EXPECT_EQ(n, record.Count(kMsg));
        }
        EXPECT_EQ(nullptr, wnd.hWnd);
        EXPECT_EQ(n, record.nPostNcDestroys);
        EXPECT_EQ(nullptr, wnd.oldWndProc);
        EXPECT_EQ(0, wnd.CommonUnsubclass()) << "it is untied";
    }
}

TEST_P(CSWndSubclass, DestroyedInItsOwnHandlerWaitsForTheFrame) {
    auto* pWnd = new ProbeWnd(record);
    Target target;
    ASSERT_EQ(1, pWnd->Subclass(target));
    pWnd->autoDelete = 1;
    int nEndedInHandler = -1;
    pWnd->onMessage = [&](ProbeWnd& w, UINT uMsg, WPARAM, LPARAM) {
        if (uMsg != kMsg) return ProbeWnd::Answer();
        ::DestroyWindow(w.hWnd);
        nEndedInHandler = record.nDeletes + record.nPostNcDestroys;
        return ProbeWnd::Answer(3);
    };
    EXPECT_EQ(3, target.Send());
    EXPECT_EQ(0, nEndedInHandler);
    EXPECT_EQ(1, record.nPostNcDestroys);
    EXPECT_EQ(1, record.nDeletes);
    EXPECT_EQ(0, record.nFramesAtDelete);
    EXPECT_FALSE(::IsWindow(target));
}

TEST_P(CSWndSubclass, UnsubclassInItsOwnHandler) {
    Target target;
    ProbeWnd wnd(record);
    ASSERT_EQ(1, wnd.Subclass(target));
    wnd.onMessage = [&](ProbeWnd& w, UINT uMsg, WPARAM, LPARAM) {
        if (uMsg != kMsg) return ProbeWnd::Answer();
        EXPECT_NE(0, w.Unsubclass());
        return ProbeWnd::Answer(8);
    };
    EXPECT_EQ(8, target.Send());
    EXPECT_EQ(kPlainResult, target.Send());
    EXPECT_EQ(1, record.Count(kMsg));
    EXPECT_EQ(nullptr, ::GetPropW(target, L"CSWND"));
}

TEST_P(CSWndSubclass, UnsubclassInItsOwnHandlerAndThenTheBase) {
    Target target;
    ProbeWnd wnd(record);
    ASSERT_EQ(1, wnd.Subclass(target));
    wnd.onMessage = [&](ProbeWnd& w, UINT uMsg, WPARAM, LPARAM) {
        if (uMsg == kMsg) {
            EXPECT_NE(0, w.Unsubclass());
        }
        return ProbeWnd::Answer();
    };
    target.Send();
    EXPECT_EQ(0, wnd.msgDepth);
    EXPECT_EQ(kPlainResult, target.Send());
    EXPECT_EQ(1, record.Count(kMsg));
}

TEST_P(CSWndSubclass, DetachAndUnsubclassInAHook) {
    Target target;
    ProbeWnd wnd(record);
    ASSERT_EQ(1, wnd.Subclass(target));
    ProbeHook hook([&](CSWnd* p, UINT uMsg, WPARAM, LPARAM, LRESULT* pl) {
        if (uMsg != kMsg) return 0;
        p->Unsubclass();
        p->Detach();
        *pl = 5;
        return 1;
    });
    wnd.AddWndHook(&hook);
    EXPECT_EQ(5, target.Send());
    EXPECT_EQ(nullptr, wnd.hWnd);
    EXPECT_EQ(kPlainResult, target.Send());
    wnd.RemoveAllWndHooks();
    EXPECT_TRUE(wnd.hooks.IsEmpty());
}

TEST_P(CSWndSubclass, NullMeansTheAttachedWindow) {
    Target target;
    ProbeWnd wnd(record);
    wnd.Attach(target);
    ASSERT_EQ(1, wnd.Subclass(nullptr));
    EXPECT_EQ(static_cast<HWND>(target), wnd.hWnd);
    EXPECT_EQ(kPlainResult, target.Send());
    EXPECT_EQ(1, record.Count(kMsg));
    wnd.Unsubclass();
}

TEST_P(CSWndSubclass, UntiedObjectHasNothingToUndo) {
    ProbeWnd wnd(record);
    EXPECT_EQ(0, wnd.CommonUnsubclass());
    EXPECT_EQ(0, wnd.Unsubclass());
}

TEST_P(CSWndSubclass, CommonSubclassAloneReplacesNoProcedure) {
    Target target;
    WNDPROC pfnBefore = target.Proc();
    ProbeWnd wnd(record);
    ASSERT_EQ(1, wnd.CommonSubclass(target));
    EXPECT_EQ(static_cast<CSWnd*>(&wnd), ::GetPropW(target, L"CSWND"));
    if (!IsChain()) {
        EXPECT_EQ(pfnBefore, target.Proc()) << "that is the caller's";
    }
    target.Send();
    EXPECT_EQ(IsChain(), record.Count(kMsg));
    EXPECT_EQ(1, wnd.CommonUnsubclass());
    EXPECT_EQ(pfnBefore, target.Proc());
}

TEST_P(CSWndSubclass, WindowCreatedByItsObjectEndsWithTheDefaultProcedure) {
    ProbeWnd wnd(record);
    ASSERT_EQ(1, wnd.Make());
    HWND hwnd = wnd;
    EXPECT_NE(0, wnd.Unsubclass());
    EXPECT_EQ(nullptr, wnd.oldWndProc);
    size_t nBefore = record.messages.size();
    EXPECT_EQ(5, ::SendMessageW(hwnd, WM_GETTEXTLENGTH, 0, 0)) << "the default processing";
    ::DestroyWindow(hwnd);
    EXPECT_EQ(nBefore, record.messages.size());
    EXPECT_EQ(0, record.nPostNcDestroys);
}

TEST_P(CSWndSubclass, HooksSeeTheMessagesFirst) {
    Target target;
    ProbeWnd wnd(record);
    ASSERT_EQ(1, wnd.Subclass(target));
    int nMode = 0;
    ProbeHook hook([&](CSWnd*, UINT uMsg, WPARAM, LPARAM, LRESULT* pl) {
        if (uMsg != kMsg) return 0;
        *pl = 11;
        return nMode;
    });
    wnd.AddWndHook(&hook);
    EXPECT_EQ(kPlainResult, target.Send());
    nMode = 1;
    nPlainCalls = 0;
    EXPECT_EQ(11, target.Send());
    EXPECT_EQ(0, nPlainCalls);
    wnd.Unsubclass();
}

TEST_P(CSWndSubclass, WindowOfAnotherThreadIsSubclassedThere) {
    std::atomic<HWND> hwnd{nullptr};
    std::atomic<bool> bSubclass{false}, bEnd{false};
    std::atomic<DWORD> dwHandlerThread{0}, dwOwner{0};
    ProbeWnd wnd(record);
    wnd.onMessage = [&](ProbeWnd&, UINT uMsg, WPARAM, LPARAM) {
        if (uMsg == kMsg) dwHandlerThread = ::GetCurrentThreadId();
        return ProbeWnd::Answer();
    };
    std::thread owner([&] {
        dwOwner = ::GetCurrentThreadId();
        Target target;
        EXPECT_EQ(1, wnd.Subclass(target));
        hwnd = target;
        PumpUntil([&] { return bEnd.load(); });
        EXPECT_NE(0, wnd.Unsubclass());
    });
    ASSERT_TRUE(WaitUntil([&] { return hwnd.load() != nullptr; }));
    EXPECT_EQ(kPlainResult, ::SendMessageW(hwnd, kMsg, 0, 0));
    EXPECT_EQ(dwOwner.load(), dwHandlerThread.load());
    bEnd = true;
    owner.join();
}

TEST_P(CSWndSubclass, FromAnotherThreadTiesAndNeverCrashes) {
    std::atomic<HWND> hwnd{nullptr};
    std::atomic<bool> bEnd{false};
    std::thread owner([&] {
        Target target;
        hwnd = target;
        PumpUntil([&] { return bEnd.load(); });
    });
    ASSERT_TRUE(WaitUntil([&] { return hwnd.load() != nullptr; }));
    ProbeWnd wnd(record);
    // The chain may refuse a foreign thread: the result is not looked at.
    EXPECT_EQ(1, wnd.Subclass(hwnd));
    EXPECT_EQ(hwnd.load(), wnd.hWnd);
    EXPECT_EQ(&wnd, CSWnd::FromHandle(hwnd));
    EXPECT_EQ(kPlainResult, ::SendMessageW(hwnd, kMsg, 0, 0));
    EXPECT_NE(0, wnd.Unsubclass());
    EXPECT_EQ(kPlainResult, ::SendMessageW(hwnd, kMsg, 0, 0));
    EXPECT_EQ(nullptr, CSWnd::FromHandle(hwnd));
    bEnd = true;
    owner.join();
}

TEST_P(CSWndSubclass, ThreadsSubclassTheirOwnWindowsAtOnce) {
    constexpr int kThreads = 4, kRounds = 40;
    std::atomic<int> nGood{0};
    std::vector<std::thread> threads;
    for (int n = 0; n < kThreads; ++n) {
        threads.emplace_back([&] {
            ProbeRecord own;
            for (int nRound = 0; nRound < kRounds; ++nRound) {
                PlainWnd plain;
                ProbeWnd wnd(own);
                wnd.Subclass(plain);
                ::SendMessageW(plain, kMsg, 0, 0);
                nGood += own.Count(kMsg) == nRound + 1 && wnd.Unsubclass();
            }
        });
    }
    for (auto& t : threads) t.join();
    EXPECT_EQ(kThreads * kRounds, nGood);
}

TEST_P(CSWndSubclass, SecondObjectOnAWindowTakesTheFirstsPlace) {
    Target target;
    WNDPROC pfnBefore = target.Proc();
    ProbeRecord recordSecond;
    ProbeWnd first(record), second(recordSecond);
    ASSERT_EQ(1, first.Subclass(target));
    ASSERT_EQ(1, second.Subclass(target));
    EXPECT_EQ(&second, CSWnd::FromHandle(target));
    EXPECT_EQ(kPlainResult, target.Send());
    EXPECT_EQ(0, record.Count(kMsg));
    EXPECT_EQ(1, recordSecond.Count(kMsg));
    EXPECT_EQ(1, nPlainCalls);
    EXPECT_NE(0, second.Unsubclass());
    EXPECT_EQ(nullptr, CSWnd::FromHandle(target));
    EXPECT_NE(0, first.Unsubclass()) << "it still has its handle";
    EXPECT_EQ(pfnBefore, target.Proc());
    EXPECT_EQ(kPlainResult, target.Send());
    EXPECT_EQ(0, record.Count(kMsg));
    EXPECT_EQ(1, recordSecond.Count(kMsg));
}

TEST_P(CSWndSubclass, SecondObjectEndsWithTheWindowAndTheFirstDoesNot) {
    ProbeRecord recordSecond;
    ProbeWnd first(record), second(recordSecond);
    {
        Target target;
        ASSERT_EQ(1, first.Subclass(target));
        ASSERT_EQ(1, second.Subclass(target));
    }
    EXPECT_EQ(0, record.nPostNcDestroys);
    EXPECT_EQ(1, recordSecond.nPostNcDestroys);
    EXPECT_EQ(nullptr, second.hWnd);
}

TEST_P(CSWndSubclass, SecondObjectOnACreatedWindowTakesTheFirstsPlace) {
    ProbeRecord recordSecond;
    ProbeWnd first(record), second(recordSecond);
    ASSERT_EQ(1, first.Make());
    HWND hwnd = first;
    record.messages.clear();
    ASSERT_EQ(1, second.Subclass(hwnd));
    EXPECT_EQ(&second, CSWnd::FromHandle(hwnd));
    EXPECT_EQ(L"probe", TextOf(hwnd)) << "the default processing, as the first has it";
    EXPECT_EQ(1, recordSecond.Count(WM_GETTEXT));
    EXPECT_EQ(0, ::SendMessageW(hwnd, kMsg, 0, 0));
    EXPECT_EQ(1, recordSecond.Count(kMsg));
    ::SendMessageW(hwnd, WM_CLOSE, 0, 0); // more messages come while its default runs
    EXPECT_FALSE(::IsWindow(hwnd));
    EXPECT_EQ(1, recordSecond.Count(WM_DESTROY));
    EXPECT_EQ(1, recordSecond.nPostNcDestroys);
    EXPECT_EQ(nullptr, second.hWnd);
    EXPECT_TRUE(record.messages.empty());
    EXPECT_EQ(0, record.nPostNcDestroys);
}

TEST_P(CSWndSubclass, ThirdObjectOnACreatedWindow) {
    ProbeRecord recordSecond, recordThird;
    ProbeWnd first(record), second(recordSecond), third(recordThird);
    ASSERT_EQ(1, first.Make());
    HWND hwnd = first;
    ASSERT_EQ(1, second.Subclass(hwnd));
    ASSERT_EQ(1, third.Subclass(hwnd));
    recordSecond.messages.clear();
    EXPECT_EQ(L"probe", TextOf(hwnd));
    EXPECT_EQ(1, recordThird.Count(WM_GETTEXT));
    EXPECT_TRUE(recordSecond.messages.empty());
    third.Destroy();
    EXPECT_EQ(1, recordThird.nPostNcDestroys);
}

TEST_P(CSWndSubclass, ObjectOnTheWindowThatItCreatedItself) {
    ProbeWnd wnd(record);
    ASSERT_EQ(1, wnd.Make());
    HWND hwnd = wnd;
    ASSERT_EQ(1, wnd.Subclass(nullptr));
    EXPECT_EQ(L"probe", TextOf(hwnd));
    EXPECT_EQ(1, record.Count(WM_GETTEXT)) << "it sees each message once";
    ASSERT_EQ(1, wnd.Subclass(hwnd));
    EXPECT_EQ(L"probe", TextOf(hwnd));
    EXPECT_EQ(2, record.Count(WM_GETTEXT));
    wnd.Destroy();
    EXPECT_EQ(1, record.nPostNcDestroys);
    EXPECT_EQ(nullptr, wnd.hWnd);
}

TEST_P(CSWndSubclass, ObjectOnAWindowThatNobodyOwnsAnyMore) {
    HWND hwnd = nullptr;
    {
        ProbeWnd gone(record);
        ASSERT_EQ(1, gone.Make());
        hwnd = gone;
    }
    ProbeRecord recordNext;
    ProbeWnd wnd(recordNext);
    ASSERT_EQ(1, wnd.Subclass(hwnd));
    EXPECT_EQ(L"probe", TextOf(hwnd));
    EXPECT_EQ(1, recordNext.Count(WM_GETTEXT));
    wnd.Destroy();
    EXPECT_EQ(1, recordNext.nPostNcDestroys);
}

TEST_P(CSWndSubclass, NextWindowInTheHandlerOfOneThatIsGone) {
    Target target, next;
    ProbeWnd wnd(record);
    ASSERT_EQ(1, wnd.Subclass(target));
    wnd.onMessage = [&](ProbeWnd& w, UINT uMsg, WPARAM, LPARAM) {
        if (uMsg != kMsg || w.hWnd != target) return ProbeWnd::Answer();
        w.Destroy();
        EXPECT_EQ(1, w.Subclass(next));
        return ProbeWnd::Answer(4);
    };
    EXPECT_EQ(4, target.Send());
    EXPECT_FALSE(::IsWindow(target));
    EXPECT_EQ(1, record.nPostNcDestroys);
    EXPECT_EQ(static_cast<HWND>(next), wnd.hWnd);
    EXPECT_EQ(&wnd, CSWnd::FromHandle(next));
    EXPECT_EQ(kPlainResult, next.Send());
    EXPECT_EQ(2, record.Count(kMsg));
    EXPECT_NE(0, wnd.Unsubclass());
    EXPECT_EQ(&PlainProc, next.Proc());
    EXPECT_EQ(kPlainResult, next.Send());
    EXPECT_EQ(2, record.Count(kMsg));
}

TEST_F(CSWndSubclassChain, FirstOfTwoTakesTheSharedEntryOff) {
    Target target;
    ProbeRecord recordSecond;
    ProbeWnd first(record), second(recordSecond);
    ASSERT_EQ(1, first.Subclass(target));
    ASSERT_EQ(1, second.Subclass(target));
    EXPECT_NE(0, first.Unsubclass());
    EXPECT_EQ(nullptr, ::GetPropW(target, L"CSWND"));
    EXPECT_EQ(kPlainResult, target.Send());
    EXPECT_EQ(0, recordSecond.Count(kMsg)) << "window, procedure and id are the same";
}

TEST_F(CSWndSubclassChain, OtherSubclassesOfTheWindowStayInTheChain) {
    Target target;
    static int nForeign = 0;
    nForeign = 0;
    SUBCLASSPROC pfnForeign = [](HWND hwnd, UINT uMsg, WPARAM wParam, LPARAM lParam, UINT_PTR,
                                 DWORD_PTR) {
        nForeign += uMsg == kMsg;
        return ::DefSubclassProc(hwnd, uMsg, wParam, lParam);
    };
    ASSERT_TRUE(::SetWindowSubclass(target, pfnForeign, 1, 0));
    ProbeWnd wnd(record);
    ASSERT_EQ(1, wnd.Subclass(target));
    EXPECT_EQ(kPlainResult, target.Send());
    EXPECT_EQ(1, nForeign);
    wnd.Unsubclass();
    EXPECT_EQ(kPlainResult, target.Send());
    EXPECT_EQ(2, nForeign);
    ::RemoveWindowSubclass(target, pfnForeign, 1);
}

TEST_F(CSWndSubclassChain, ResultOfThePlatformIsNotLookedAt) {
    HWND hwnd = DeadWindow();
    ProbeWnd wnd(record);
    EXPECT_EQ(1, wnd.CommonSubclass(hwnd));
    EXPECT_EQ(hwnd, wnd.hWnd);
    EXPECT_EQ(1, wnd.shellSubclassed);
    EXPECT_EQ(0, wnd.IsReady());
    EXPECT_EQ(1, wnd.CommonUnsubclass());
    wnd.Subclass(nullptr);
    EXPECT_EQ(0, wnd.IsReady());
}

TEST_F(CSWndSubclassChain, FlagIsNeverClearedAgain) {
    ProbeWnd wnd(record);
    {
        Target target;
        ASSERT_EQ(1, wnd.Subclass(target));
        wnd.Unsubclass();
        EXPECT_EQ(1, wnd.shellSubclassed);
        wnd.Detach();
        EXPECT_EQ(1, wnd.shellSubclassed);
    }
    {
        Target target;
        ASSERT_EQ(1, wnd.Subclass(target));
    }
    EXPECT_EQ(1, record.nPostNcDestroys);
    EXPECT_EQ(1, wnd.shellSubclassed) << "also after the end of life";
}

TEST_F(CSWndSubclassChain, SubclassProcedureLooksNeitherAtTheIdNorAtTheProperty) {
    PlainWnd plain;
    ProbeWnd wnd(record);
    wnd.Attach(plain);
    wnd.onMessage = [](ProbeWnd&, UINT, WPARAM wParam, LPARAM lParam) {
        return ProbeWnd::Answer(static_cast<LRESULT>(wParam) * 10 + lParam);
    };
    auto dwRef = reinterpret_cast<DWORD_PTR>(static_cast<CSWnd*>(&wnd));
    EXPECT_EQ(74, CSWnd::ShellSubclassProc(plain, kMsg, 7, 4, 12345, dwRef));
    wnd.Detach();
    EXPECT_EQ(0, CSWnd::ShellSubclassProc(plain, kMsg, 7, 4, 12345, dwRef)) << "no handle";
    EXPECT_EQ(1, record.Count(kMsg));
}

TEST_F(CSWndSubclassProcedure, BadHandleGivesZeroAndNoProperty) {
    for (HWND hwnd : {static_cast<HWND>(nullptr), DeadWindow()}) {
        ProbeWnd wnd(record);
        EXPECT_EQ(0, wnd.CommonSubclass(hwnd));
        EXPECT_EQ(nullptr, wnd.oldWndProc);
        EXPECT_EQ(0, wnd.Subclass(hwnd));
        EXPECT_EQ(0, wnd.shellSubclassed);
        EXPECT_EQ(0, wnd.IsReady());
    }
}

WNDPROC pfnBeforeLatecomer = nullptr;
int nLatecomerCalls = 0;
LRESULT CALLBACK LatecomerProc(HWND hwnd, UINT uMsg, WPARAM wParam, LPARAM lParam) {
    nLatecomerCalls += uMsg == kMsg;
    return ::CallWindowProcW(pfnBeforeLatecomer, hwnd, uMsg, wParam, lParam);
}

TEST_F(CSWndSubclassProcedure, UnsubclassCutsOutWhoeverCameLater) {
    Target target;
    ProbeWnd wnd(record);
    ASSERT_EQ(1, wnd.Subclass(target));
    pfnBeforeLatecomer = reinterpret_cast<WNDPROC>(
        ::SetWindowLongPtrW(target, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(&LatecomerProc)));
    nLatecomerCalls = 0;
    EXPECT_EQ(kPlainResult, target.Send());
    EXPECT_EQ(1, nLatecomerCalls);
    EXPECT_EQ(1, record.Count(kMsg));
    EXPECT_EQ(1, wnd.Unsubclass());
    EXPECT_EQ(&PlainProc, target.Proc());
    EXPECT_EQ(kPlainResult, target.Send());
    EXPECT_EQ(1, nLatecomerCalls) << "is no longer asked";
    EXPECT_EQ(1, record.Count(kMsg));
}

TEST_F(CSWndSubclassProcedure, TiedObjectKeepsItsWindow) {
    Target target;
    PlainWnd other;
    ProbeWnd wnd(record);
    ASSERT_EQ(1, wnd.Subclass(target));
    WNDPROC pfnOld = wnd.oldWndProc;
    EXPECT_EQ(1, wnd.Subclass(other));
    EXPECT_EQ(static_cast<HWND>(target), wnd.hWnd);
    EXPECT_EQ(pfnOld, wnd.oldWndProc);
    EXPECT_EQ(nullptr, ::GetPropW(other, L"CSWND"));
    EXPECT_TRUE(::SetWindowTextW(other, L"lives"));
    EXPECT_EQ(L"lives", TextOf(other));
    EXPECT_EQ(kPlainResult, target.Send());
    EXPECT_EQ(1, record.Count(kMsg));
    wnd.Unsubclass();
}

TEST_F(CSWndSubclassProcedure, SecondObjectOnAWindowThatTheFirstCreated) {
    ProbeRecord recordSecond;
    ProbeWnd first(record), second(recordSecond);
    ASSERT_EQ(1, first.Make());
    HWND hwnd = first;
    ASSERT_EQ(1, second.Subclass(hwnd));
    EXPECT_EQ(L"probe", TextOf(hwnd));
    EXPECT_TRUE(recordSecond.Saw(WM_GETTEXT));
    EXPECT_FALSE(record.Saw(WM_GETTEXT));
    EXPECT_NE(0, second.Unsubclass());
    ::DestroyWindow(hwnd);
}
} // namespace
