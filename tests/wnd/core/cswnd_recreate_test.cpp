// A window object that gets its next window while the end of the last one is still to come.
#include "wnd/core/cswnd.h"
#include "wnd/wnd_probe.h"

#include <gtest/gtest.h>

namespace {
constexpr UINT kMsgAct = WM_APP + 7;  // makes a handler do what the test is about
constexpr UINT kMsgNote = WM_APP + 8; // is only noted

struct CSWndRecreate : testing::Test {
    ProbeClass cls;
    ProbeRecord record;
};

int Renew(ProbeWnd& wnd) {
    wnd.Destroy();
    return wnd.Make();
}

/// The object is tied to that living window and hears its messages.
void ExpectTied(ProbeWnd& wnd, HWND hwnd) {
    EXPECT_EQ(hwnd, wnd.hWnd);
    EXPECT_TRUE(::IsWindow(hwnd));
    EXPECT_EQ(&wnd, CSWnd::FromHandle(hwnd));
    int nBefore = wnd.record.Count(kMsgNote);
    ::SendMessageW(hwnd, kMsgNote, 0, 0);
    EXPECT_EQ(nBefore + 1, wnd.record.Count(kMsgNote));
    EXPECT_EQ(0, wnd.ncDestroyed);
    EXPECT_EQ(0, wnd.msgDepth);
}

TEST_F(CSWndRecreate, InOneHandlerLeavesTheNewWindowTied) {
    ProbeWnd wnd(record);
    ASSERT_EQ(1, wnd.Make());
    HWND hwndOld = wnd, hwndNew = nullptr, hwndAtPost = nullptr;
    wnd.onPost = [&](ProbeWnd& w) { hwndAtPost = w.hWnd; };
    wnd.onMessage = [&](ProbeWnd& w, UINT uMsg, WPARAM, LPARAM) {
        if (uMsg != kMsgAct) return ProbeWnd::Answer();
        EXPECT_EQ(1, Renew(w));
        hwndNew = w.hWnd;
        return ProbeWnd::Answer(9);
    };
    EXPECT_EQ(9, ::SendMessageW(hwndOld, kMsgAct, 0, 0));
    EXPECT_FALSE(::IsWindow(hwndOld));
    EXPECT_EQ(hwndOld, hwndAtPost)
        << "the old window's end is told while the object still names it";
    EXPECT_EQ(1, record.nPostNcDestroys);
    EXPECT_EQ(2, record.nPreInits);
    ExpectTied(wnd, hwndNew);
    EXPECT_EQ(&::DefWindowProcW, wnd.oldWndProc);
    wnd.Destroy();
    EXPECT_FALSE(::IsWindow(hwndNew));
    EXPECT_EQ(nullptr, wnd.hWnd);
    EXPECT_EQ(2, record.nPostNcDestroys) << "once for each window";
    EXPECT_EQ(0, record.nDeletes);
}

TEST_F(CSWndRecreate, AutoDeleteWaitsForTheNewWindowsEnd) {
    auto* pWnd = new ProbeWnd(record);
    ASSERT_EQ(1, pWnd->Make());
    pWnd->autoDelete = 1;
    pWnd->onMessage = [&](ProbeWnd& w, UINT uMsg, WPARAM, LPARAM) {
        if (uMsg != kMsgAct) return ProbeWnd::Answer();
        return ProbeWnd::Answer(Renew(w));
    };
    EXPECT_EQ(1, ::SendMessageW(*pWnd, kMsgAct, 0, 0));
    ASSERT_EQ(0, record.nDeletes);
    ExpectTied(*pWnd, *pWnd);
    pWnd->Destroy();
    EXPECT_EQ(1, record.nDeletes);
    EXPECT_EQ(2, record.nPostNcDestroys);
}

TEST_F(CSWndRecreate, InManyNestedFrames) {
    ProbeWnd wnd(record);
    ASSERT_EQ(1, wnd.Make());
    wnd.onMessage = [&](ProbeWnd& w, UINT uMsg, WPARAM wParam, LPARAM) {
        if (uMsg != kMsgAct) return ProbeWnd::Answer();
        if (wParam) ::SendMessageW(w.hWnd, kMsgAct, wParam - 1, 0);
        EXPECT_EQ(1, Renew(w));
        return ProbeWnd::Answer(0);
    };
    ::SendMessageW(wnd, kMsgAct, 3, 0);
    EXPECT_EQ(4, record.nPostNcDestroys);
    ExpectTied(wnd, wnd);
    wnd.Destroy();
    EXPECT_EQ(5, record.nPostNcDestroys);
}

TEST_F(CSWndRecreate, NewWindowThatGoesInTheSameHandlerEndsWithTheFrame) {
    auto* pWnd = new ProbeWnd(record);
    ASSERT_EQ(1, pWnd->Make());
    pWnd->autoDelete = 1;
    int nDeletedInHandler = -1;
    pWnd->onMessage = [&](ProbeWnd& w, UINT uMsg, WPARAM, LPARAM) {
        if (uMsg != kMsgAct) return ProbeWnd::Answer();
        Renew(w);
        w.Destroy();
        nDeletedInHandler = record.nDeletes;
        return ProbeWnd::Answer(0);
    };
    ::SendMessageW(*pWnd, kMsgAct, 0, 0);
    EXPECT_EQ(0, nDeletedInHandler);
    EXPECT_EQ(1, record.nDeletes);
    EXPECT_EQ(0, record.nFramesAtDelete);
    EXPECT_EQ(2, record.nPostNcDestroys);
}

TEST_F(CSWndRecreate, OldWindowsMessageHandedOnLeavesTheNewWindowAlone) {
    ProbeWnd wnd(record);
    ASSERT_EQ(1, wnd.Make());
    wnd.onMessage = [&](ProbeWnd& w, UINT uMsg, WPARAM, LPARAM) {
        if (uMsg == WM_CLOSE) Renew(w);
        return ProbeWnd::Answer(); // the default of WM_CLOSE destroys a window
    };
    ::SendMessageW(wnd, WM_CLOSE, 0, 0);
    EXPECT_EQ(1, record.nPostNcDestroys);
    ExpectTied(wnd, wnd);
    wnd.Destroy();
}

/// The new window is made while the old one's last message is handled, after or before the base
/// operation saw that.
class CSWndRecreateAtTheEnd : public testing::TestWithParam<bool> {};
TEST_P(CSWndRecreateAtTheEnd, LeavesTheNewWindowTied) {
    ProbeClass cls;
    ProbeRecord record;
    ProbeWnd wnd(record);
    ASSERT_EQ(1, wnd.Make());
    HWND hwndOld = wnd;
    wnd.onMessage = [&](ProbeWnd& w, UINT uMsg, WPARAM wParam, LPARAM lParam) {
        if (uMsg != WM_NCDESTROY) return ProbeWnd::Answer();
        w.onMessage = nullptr;
        if (GetParam()) w.CSWnd::OnWndMessage(uMsg, wParam, lParam);
        EXPECT_EQ(1, w.Make());
        if (!GetParam()) w.CSWnd::OnWndMessage(uMsg, wParam, lParam);
        return ProbeWnd::Answer(0);
    };
    wnd.Destroy();
    EXPECT_FALSE(::IsWindow(hwndOld));
    ExpectTied(wnd, wnd);
    wnd.Destroy();
    EXPECT_EQ(nullptr, wnd.hWnd);
}
INSTANTIATE_TEST_SUITE_P(Base, CSWndRecreateAtTheEnd, testing::Bool(),
                         [](const auto& row) { return row.param ? "First" : "Last"; });

TEST_F(CSWndRecreate, InOnPostNcDestroy) {
    auto* pWnd = new ProbeWnd(record);
    ASSERT_EQ(1, pWnd->Make());
    pWnd->autoDelete = 1;
    pWnd->onPost = [&](ProbeWnd& w) {
        w.onPost = nullptr;
        EXPECT_EQ(1, w.Make());
    };
    pWnd->Destroy();
    ASSERT_EQ(0, record.nDeletes);
    ExpectTied(*pWnd, *pWnd);
    pWnd->Destroy();
    EXPECT_EQ(2, record.nPostNcDestroys);
    EXPECT_EQ(1, record.nDeletes);
}

/// What refuses the second creation.
class CSWndRecreateRefused : public testing::TestWithParam<UINT> {};
TEST_P(CSWndRecreateRefused, LeavesTheObjectToItsOwner) {
    ProbeClass cls;
    ProbeRecord record;
    {
        ProbeWnd wnd(record);
        ASSERT_EQ(1, wnd.Make());
        wnd.autoDelete = 1;
        bool bRenewed = false;
        wnd.onMessage = [&](ProbeWnd& w, UINT uMsg, WPARAM, LPARAM) {
            if (uMsg == kMsgAct) {
                bRenewed = true;
                EXPECT_EQ(0, Renew(w));
                return ProbeWnd::Answer(0);
            }
            bool bRefuse = bRenewed && uMsg == GetParam();
            return bRefuse ? ProbeWnd::Answer(uMsg == WM_CREATE ? -1 : 0) : std::nullopt;
        };
        ::SendMessageW(wnd, kMsgAct, 0, 0);
        ASSERT_EQ(0, record.nDeletes);
        EXPECT_EQ(record.Count(WM_NCDESTROY), record.nPostNcDestroys);
        EXPECT_EQ(nullptr, wnd.hWnd);
        wnd.autoDelete = 0;
        wnd.onMessage = nullptr;
        ASSERT_EQ(1, wnd.Make()) << "the object may be used again";
        ExpectTied(wnd, wnd);
        wnd.Destroy();
    }
    EXPECT_EQ(1, record.nDeletes);
}
INSTANTIATE_TEST_SUITE_P(Message, CSWndRecreateRefused, testing::Values(WM_NCCREATE, WM_CREATE),
                         [](const auto& row) {
                             return row.param == WM_CREATE ? "Create" : "NcCreate";
                         });

TEST_F(CSWndRecreate, InAHookTakesTheOldHooksOffAndKeepsTheNewOnes) {
    ProbeWnd wnd(record);
    ASSERT_EQ(1, wnd.Make());
    int nOld = 0, nNew = 0;
    ProbeHook hookNew([&](CSWnd*, UINT uMsg, WPARAM, LPARAM, LRESULT*) {
        nNew += uMsg == kMsgNote;
        return 0;
    });
    ProbeHook hookBehind([&](CSWnd*, UINT uMsg, WPARAM, LPARAM, LRESULT*) {
        nOld += uMsg == kMsgNote || uMsg == WM_CLOSE;
        return 0;
    });
    ProbeHook hookRenews([&](CSWnd*, UINT uMsg, WPARAM, LPARAM, LRESULT*) {
        nOld += uMsg == kMsgNote;
        if (uMsg != WM_CLOSE) return 0;
        EXPECT_EQ(1, Renew(wnd));
        wnd.AddWndHook(&hookNew);
        return 0; // and the default would destroy a window
    });
    wnd.AddWndHook(&hookBehind);
    wnd.AddWndHook(&hookRenews);
    ::SendMessageW(wnd, WM_CLOSE, 0, 0);
    EXPECT_EQ(1, wnd.hooks.GetCount());
    ExpectTied(wnd, wnd);
    EXPECT_EQ(0, nOld);
    EXPECT_EQ(1, nNew);
    wnd.Destroy();
    EXPECT_TRUE(wnd.hooks.IsEmpty());
}

TEST_F(CSWndRecreate, AttachedInItsOwnHandler) {
    PlainWnd plain;
    ProbeWnd wnd(record);
    ASSERT_EQ(1, wnd.Make());
    wnd.onMessage = [&](ProbeWnd& w, UINT uMsg, WPARAM, LPARAM) {
        if (uMsg != kMsgAct) return ProbeWnd::Answer();
        w.Destroy();
        EXPECT_EQ(1, w.Attach(plain));
        return ProbeWnd::Answer(0);
    };
    ::SendMessageW(wnd, kMsgAct, 0, 0);
    EXPECT_EQ(1, record.nPostNcDestroys);
    EXPECT_EQ(static_cast<HWND>(plain), wnd.hWnd);
    EXPECT_EQ(L"plain", TextOf(plain));
    wnd.Detach();
}
} // namespace
