#include "wnd/core/cswnd.h"
#include "wnd/wnd_probe.h"

#include <gtest/gtest.h>

namespace {
constexpr UINT kMsgAct = WM_APP + 7; // makes a handler do what the test is about

struct CSWndEnd : testing::Test {
    ProbeClass cls;
    ProbeRecord record;
};

TEST_F(CSWndEnd, DestroyEndsTheLifeAndKeepsTheObject) {
    ProbeWnd wnd(record);
    ASSERT_EQ(1, wnd.Make());
    HWND hwnd = wnd;
    HWND hwndAtPost = nullptr;
    int bNcDestroyedAtPost = -1;
    wnd.onPost = [&](ProbeWnd& w) {
        hwndAtPost = w.hWnd;
        bNcDestroyedAtPost = w.ncDestroyed;
    };
    wnd.Destroy();
    EXPECT_FALSE(::IsWindow(hwnd));
    EXPECT_EQ(nullptr, wnd.hWnd);
    EXPECT_EQ(hwnd, hwndAtPost);
    EXPECT_EQ(0, bNcDestroyedAtPost);
    EXPECT_EQ(1, record.nPostNcDestroys);
    EXPECT_EQ(0, record.nDeletes);
    EXPECT_EQ(WM_NCDESTROY, static_cast<int>(record.messages.back()));
    wnd.Destroy(); // of an object without a window
    EXPECT_EQ(1, record.nPostNcDestroys);
}

TEST_F(CSWndEnd, AutoDeleteDeletesAfterTheLastMessage) {
    auto* pWnd = new ProbeWnd(record);
    ASSERT_EQ(1, pWnd->Make());
    pWnd->autoDelete = 1;
    HWND hwnd = *pWnd;
    pWnd->Destroy();
    EXPECT_FALSE(::IsWindow(hwnd));
    EXPECT_EQ(1, record.nDeletes);
    EXPECT_EQ(1, record.nPostNcDestroys);
    EXPECT_EQ(0, record.nFramesAtDelete);
}

TEST_F(CSWndEnd, AutoDeleteIsReadAfterOnPostNcDestroy) {
    auto* pWnd = new ProbeWnd(record);
    ASSERT_EQ(1, pWnd->Make());
    pWnd->onPost = [](ProbeWnd& w) { w.autoDelete = 1; };
    pWnd->Destroy();
    EXPECT_EQ(1, record.nDeletes);
}

TEST_F(CSWndEnd, PlatformsDestroyIsTheSame) {
    auto* pWnd = new ProbeWnd(record);
    ASSERT_EQ(1, pWnd->Make());
    pWnd->autoDelete = 1;
    ::DestroyWindow(*pWnd);
    EXPECT_EQ(1, record.nDeletes);
    EXPECT_EQ(1, record.nPostNcDestroys);
}

TEST_F(CSWndEnd, WmCloseDestroysInsideTheDefaultProcessing) {
    auto* pWnd = new ProbeWnd(record);
    ASSERT_EQ(1, pWnd->Make());
    pWnd->autoDelete = 1;
    HWND hwnd = *pWnd;
    ::SendMessageW(hwnd, WM_CLOSE, 0, 0);
    EXPECT_FALSE(::IsWindow(hwnd));
    EXPECT_EQ(1, record.nPostNcDestroys);
    EXPECT_EQ(0, record.nFramesAtPost);
    EXPECT_EQ(1, record.nDeletes);
    EXPECT_EQ(0, record.nFramesAtDelete);
}

/// The object is destroyed from inside its own handler, before or after the handler's base call.
class CSWndEndInHandler : public testing::TestWithParam<int> {};
TEST_P(CSWndEndInHandler, WaitsForTheHandlersFrame) {
    ProbeClass cls;
    ProbeRecord record;
    auto* pWnd = new ProbeWnd(record);
    ASSERT_EQ(1, pWnd->Make());
    pWnd->autoDelete = 1;
    int bPostInHandler = -1, bDeletedInHandler = -1;
    LRESULT lBase = -1;
    pWnd->onMessage = [&](ProbeWnd& w, UINT uMsg, WPARAM wParam, LPARAM lParam) {
        if (uMsg != kMsgAct) return ProbeWnd::Answer();
        if (GetParam() == 1) lBase = w.CSWnd::OnWndMessage(uMsg, wParam, lParam);
        ::DestroyWindow(w.hWnd);
        bPostInHandler = record.nPostNcDestroys;
        bDeletedInHandler = record.nDeletes;
        if (record.nDeletes) return ProbeWnd::Answer(0);
        if (GetParam() == 2) lBase = w.CSWnd::OnWndMessage(uMsg, wParam, lParam);
        return ProbeWnd::Answer(42);
    };
    HWND hwnd = *pWnd;
    EXPECT_EQ(42, ::SendMessageW(hwnd, kMsgAct, 0, 0));
    EXPECT_EQ(0, bPostInHandler);
    EXPECT_EQ(0, bDeletedInHandler);
    EXPECT_EQ(GetParam() ? 0 : -1, lBase);
    EXPECT_EQ(1, record.nPostNcDestroys);
    EXPECT_EQ(0, record.nFramesAtPost);
    EXPECT_EQ(1, record.nDeletes);
    EXPECT_EQ(0, record.nFramesAtDelete);
    EXPECT_FALSE(::IsWindow(hwnd));
}
constexpr const char* kBaseCalls[] = {"None", "Before", "After"};
INSTANTIATE_TEST_SUITE_P(BaseCall, CSWndEndInHandler, testing::Values(0, 1, 2),
                         [](const auto& row) { return std::string(kBaseCalls[row.param]); });

TEST_F(CSWndEnd, WaitsForTheOutermostOfManyFrames) {
    auto* pWnd = new ProbeWnd(record);
    ASSERT_EQ(1, pWnd->Make());
    pWnd->autoDelete = 1;
    std::vector<int> deletesAfter;
    pWnd->onMessage = [&](ProbeWnd& w, UINT uMsg, WPARAM wParam, LPARAM) {
        if (uMsg != kMsgAct) return ProbeWnd::Answer();
        if (wParam) {
            ::SendMessageW(w.hWnd, kMsgAct, wParam - 1, 0);
        } else {
            ::DestroyWindow(w.hWnd);
        }
        deletesAfter.push_back(record.nDeletes + record.nPostNcDestroys);
        return ProbeWnd::Answer(static_cast<LRESULT>(wParam));
    };
    EXPECT_EQ(5, ::SendMessageW(*pWnd, kMsgAct, 5, 0));
    EXPECT_EQ(std::vector<int>(6, 0), deletesAfter);
    EXPECT_EQ(1, record.nPostNcDestroys);
    EXPECT_EQ(0, record.nFramesAtPost);
    EXPECT_EQ(1, record.nDeletes);
    EXPECT_EQ(0, record.nFramesAtDelete);
}

TEST_F(CSWndEnd, DestroyedInsideAHookWaitsForTheDispatch) {
    auto* pWnd = new ProbeWnd(record);
    ASSERT_EQ(1, pWnd->Make());
    pWnd->autoDelete = 1;
    int nBehind = 0, bDeletedInHook = -1;
    ProbeHook destroyer([&](CSWnd* p, UINT uMsg, WPARAM, LPARAM, LRESULT*) {
        if (uMsg != kMsgAct) return 0;
        p->Destroy();
        bDeletedInHook = record.nDeletes + record.nPostNcDestroys;
        return 0;
    });
    ProbeHook behind([&](CSWnd*, UINT uMsg, WPARAM, LPARAM, LRESULT*) {
        nBehind += uMsg == kMsgAct;
        return 0;
    });
    pWnd->AddWndHook(&behind);
    pWnd->AddWndHook(&destroyer);
    ::SendMessageW(*pWnd, kMsgAct, 0, 0);
    EXPECT_EQ(0, bDeletedInHook);
    EXPECT_EQ(1, nBehind) << "the walk goes on, the object lives";
    EXPECT_EQ(1, record.nPostNcDestroys);
    EXPECT_EQ(1, record.nDeletes);
    EXPECT_EQ(0, record.nFramesAtDelete);
}

TEST_F(CSWndEnd, DestroyedInsideItsOwnCreateMessage) {
    ProbeWnd wnd(record);
    wnd.autoDelete = 1;
    int nEndedInHandler = -1;
    wnd.onMessage = [&](ProbeWnd& w, UINT uMsg, WPARAM, LPARAM) {
        if (uMsg != WM_CREATE) return ProbeWnd::Answer();
        ::DestroyWindow(w.hWnd);
        nEndedInHandler = record.nPostNcDestroys + record.nDeletes;
        return ProbeWnd::Answer(0);
    };
    wnd.Make();
    EXPECT_EQ(0, nEndedInHandler);
    EXPECT_EQ(1, record.nPostNcDestroys);
    EXPECT_EQ(0, record.nFramesAtPost);
    EXPECT_EQ(0, record.nDeletes) << "it never was a window that its owner got";
    EXPECT_EQ(0, wnd.IsReady());
    EXPECT_EQ(nullptr, wnd.hWnd);
    wnd.autoDelete = 0;
}

TEST_F(CSWndEnd, DestroyedByTheParentsEnd) {
    ProbeRecord recordChild;
    ProbeWnd wnd(record);
    ASSERT_EQ(1, wnd.Make());
    auto* pChild = new ProbeWnd(recordChild);
    ASSERT_EQ(1, pChild->Make(wnd));
    pChild->autoDelete = 1;
    wnd.Destroy();
    EXPECT_EQ(1, recordChild.nDeletes);
    EXPECT_EQ(0, recordChild.nFramesAtDelete);
}

TEST_F(CSWndEnd, SwallowedNcDestroyNeverEndsTheLife) {
    ProbeWnd wnd(record);
    ASSERT_EQ(1, wnd.Make());
    wnd.onMessage = [](ProbeWnd&, UINT uMsg, WPARAM, LPARAM) {
        return uMsg == WM_NCDESTROY ? ProbeWnd::Answer(0) : std::nullopt;
    };
    HWND hwnd = wnd;
    wnd.Destroy();
    EXPECT_FALSE(::IsWindow(hwnd));
    EXPECT_EQ(0, record.nPostNcDestroys);
    EXPECT_EQ(hwnd, wnd.hWnd);
    EXPECT_EQ(0, wnd.IsReady());
}

TEST_F(CSWndEnd, HooksAreOffAfterTheLastMessage) {
    ProbeWnd wnd(record);
    int nNcDestroys = 0;
    ProbeHook hook([&](CSWnd*, UINT uMsg, WPARAM, LPARAM, LRESULT*) {
        nNcDestroys += uMsg == WM_NCDESTROY;
        return 0;
    });
    wnd.AddWndHook(&hook);
    ASSERT_EQ(1, wnd.Make());
    wnd.Destroy();
    EXPECT_EQ(1, nNcDestroys);
    EXPECT_TRUE(wnd.hooks.IsEmpty());
}

TEST_F(CSWndEnd, HookThatTakesNcDestroyDoesNotStopTheEnd) {
    ProbeWnd wnd(record);
    ProbeHook hook(
        [](CSWnd*, UINT uMsg, WPARAM, LPARAM, LRESULT*) { return uMsg == WM_NCDESTROY; });
    ASSERT_EQ(1, wnd.Make());
    wnd.AddWndHook(&hook);
    wnd.Destroy();
    EXPECT_EQ(1, record.nPostNcDestroys);
    EXPECT_EQ(nullptr, wnd.hWnd);
}

TEST_F(CSWndEnd, DetachedWindowDropsItsMessagesAndTheObjectStays) {
    ProbeWnd wnd(record);
    ASSERT_EQ(1, wnd.Make());
    HWND hwnd = wnd.Detach();
    EXPECT_TRUE(::IsWindow(hwnd));
    EXPECT_EQ(nullptr, wnd.hWnd);
    EXPECT_EQ(nullptr, wnd.Detach());
    EXPECT_EQ(static_cast<CSWnd*>(&wnd), ::GetPropW(hwnd, L"CSWND")) << "Detach removes nothing";
    size_t nBefore = record.messages.size();
    EXPECT_EQ(0, ::SendMessageW(hwnd, WM_GETTEXTLENGTH, 0, 0));
    ::DestroyWindow(hwnd);
    EXPECT_EQ(nBefore, record.messages.size());
    EXPECT_EQ(0, record.nPostNcDestroys);
}

TEST_F(CSWndEnd, ObjectThatGoesBeforeItsWindowLeavesNoName) {
    HWND hwnd = nullptr;
    {
        ProbeWnd wnd(record);
        ASSERT_EQ(1, wnd.Make());
        hwnd = wnd;
    }
    EXPECT_TRUE(::IsWindow(hwnd));
    EXPECT_EQ(nullptr, ::GetPropW(hwnd, L"CSWND"));
    EXPECT_EQ(0, ::SendMessageW(hwnd, WM_GETTEXTLENGTH, 0, 0));
    ::DestroyWindow(hwnd);
    EXPECT_EQ(0, record.nPostNcDestroys);
}

TEST_F(CSWndEnd, ObjectThatNeverHadAWindowLeavesOthersNames) {
    ProbeWnd wnd(record);
    ASSERT_EQ(1, wnd.Make());
    {
        ProbeWnd other(record);
        other.Attach(wnd.hWnd);
    }
    EXPECT_EQ(static_cast<CSWnd*>(&wnd), ::GetPropW(wnd, L"CSWND"));
    wnd.Destroy();
}
} // namespace
