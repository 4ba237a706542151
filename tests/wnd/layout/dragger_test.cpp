#include "wnd/layout/layout_probe.h"
#include "wnd/wnd_probe.h"

#include <gtest/gtest.h>

namespace {
struct ProbeDragger : FullWndDragger {
    using FullWndDragger::inHitTest;
    using FullWndDragger::overHotSpot;
};

HCURSOR Cursor(LPCWSTR psz) { return ::LoadCursorW(nullptr, psz); }
LPARAM CursorParam(int nHit) { return MAKELPARAM(nHit, WM_MOUSEMOVE); }

/// A dialog with a dragger of the test's behind its own, which is taken off.
struct Dragger : testing::Test {
    Dragger() {
        EXPECT_TRUE(dlg.Make(IDD_LAYOUT_SIZING));
        dlg.EnableFullDrag(0);
        dlg.AddWndHook(&dragger);
        ::SetCursor(Cursor(IDC_WAIT));
    }
    ~Dragger() override {
        dlg.RemoveWndHook(&dragger);
        ::SetCursor(Cursor(IDC_ARROW));
    }
    LRESULT HitTest(int x, int y) {
        POINT pt = {x, y};
        ::ClientToScreen(dlg, &pt);
        return ::SendMessageW(dlg, WM_NCHITTEST, 0, PointParam(pt.x, pt.y));
    }
    int Ask(UINT uMsg, LPARAM lParam, CSWnd* pWnd = nullptr) {
        lResult = 77;
        return dragger.OnWndMessage(pWnd ? pWnd : &dlg, uMsg, 0, lParam, &lResult);
    }
    LayoutDlg dlg;
    ProbeDragger dragger;
    LRESULT lResult = 77;
};

TEST_F(Dragger, BodyIsHitAsTheCaption) {
    dragger.overHotSpot = 1;
    EXPECT_EQ(HTCAPTION, HitTest(50, 50));
    EXPECT_EQ(1, dragger.inHitTest);
    EXPECT_EQ(0, dragger.overHotSpot);
}

TEST_F(Dragger, WhatIsNotBodyStays) {
    EXPECT_EQ(HTCAPTION, HitTest(50, -10));
    EXPECT_EQ(HTNOWHERE, HitTest(-5000, 20));
    dlg.RemoveWndHook(&dragger);
    LRESULT lBorder = HitTest(-1, 30);
    EXPECT_NE(HTCLIENT, lBorder);
    dlg.AddWndHook(&dragger);
    EXPECT_EQ(lBorder, HitTest(-1, 30));
}

TEST_F(Dragger, HooksBehindItAreAsked) {
    LRESULT lTold = HTHELP;
    ProbeHook behind([&](CSWnd*, UINT uMsg, WPARAM, LPARAM, LRESULT* pl) {
        if (uMsg != WM_NCHITTEST) return 0;
        *pl = lTold;
        return 1;
    });
    dlg.RemoveWndHook(&dragger);
    dlg.AddWndHook(&behind);
    dlg.AddWndHook(&dragger);
    EXPECT_EQ(HTHELP, HitTest(50, 50));
    lTold = HTCLIENT;
    EXPECT_EQ(HTCAPTION, HitTest(50, -10));
    lTold = HTTRANSPARENT;
    EXPECT_EQ(HTTRANSPARENT, HitTest(50, 50));
    dlg.RemoveWndHook(&behind);
}

TEST_F(Dragger, MaximisedDialogStaysWhereItIs) {
    ::ShowWindow(dlg, SW_SHOWMAXIMIZED);
    ASSERT_TRUE(::IsZoomed(dlg));
    EXPECT_EQ(HTCLIENT, HitTest(50, 50));
    EXPECT_EQ(1, dragger.inHitTest);
    EXPECT_EQ(0, Ask(WM_SETCURSOR, CursorParam(HTCAPTION)));
    EXPECT_EQ(77, lResult);
    EXPECT_EQ(0, dragger.inHitTest);
    EXPECT_EQ(Cursor(IDC_WAIT), ::GetCursor());
}

TEST_F(Dragger, CaptionAndBodyHaveTheArrow) {
    dragger.inHitTest = 1;
    EXPECT_EQ(1, Ask(WM_SETCURSOR, CursorParam(HTCAPTION)));
    EXPECT_EQ(1, lResult);
    EXPECT_EQ(Cursor(IDC_ARROW), ::GetCursor());
    EXPECT_EQ(0, dragger.inHitTest);
}

TEST_F(Dragger, CursorIsLeftAloneWithTheFlag) {
    dlg.SetFlags(kDlgKeepBodyCursor, 1);
    dragger.inHitTest = 1;
    EXPECT_EQ(0, Ask(WM_SETCURSOR, CursorParam(HTCAPTION)));
    EXPECT_EQ(77, lResult);
    EXPECT_EQ(Cursor(IDC_WAIT), ::GetCursor());
    EXPECT_EQ(0, dragger.inHitTest);
}

TEST_F(Dragger, CursorOfOtherPlacesIsLeftAlone) {
    for (int nHit : {HTCLIENT, HTLEFT, HTBOTTOMRIGHT, HTNOWHERE, HTERROR, HTSYSMENU}) {
        dragger.inHitTest = 1;
        EXPECT_EQ(0, Ask(WM_SETCURSOR, CursorParam(nHit))) << nHit;
        EXPECT_EQ(77, lResult);
        EXPECT_EQ(0, dragger.inHitTest);
    }
    EXPECT_EQ(Cursor(IDC_WAIT), ::GetCursor());
}

TEST_F(Dragger, HotSpotHasTheHand) {
    dragger.overHotSpot = 1;
    dragger.inHitTest = 1;
    EXPECT_EQ(1, Ask(WM_SETCURSOR, CursorParam(HTCLIENT)));
    EXPECT_EQ(1, lResult);
    EXPECT_EQ(Cursor(IDC_HAND), ::GetCursor());
    EXPECT_EQ(0, dragger.inHitTest);
    EXPECT_EQ(1, dragger.overHotSpot);
    EXPECT_EQ(0, Ask(WM_SETCURSOR, CursorParam(HTLEFT)));
    EXPECT_EQ(1, Ask(WM_SETCURSOR, CursorParam(HTCAPTION)));
    EXPECT_EQ(Cursor(IDC_ARROW), ::GetCursor());
}

TEST_F(Dragger, ShowsTheHandWhenAMenuOpens) {
    EXPECT_EQ(0, Ask(WM_INITMENUPOPUP, 0));
    EXPECT_EQ(77, lResult);
    EXPECT_EQ(Cursor(IDC_HAND), ::GetCursor());
    dragger.overHotSpot = 1;
    EXPECT_EQ(0, Ask(WM_INITMENUPOPUP, 0));
    EXPECT_EQ(1, dragger.overHotSpot);
}

TEST_F(Dragger, AMenuThatClosesEndsTheHotSpot) {
    dragger.overHotSpot = 1;
    EXPECT_EQ(0, Ask(WM_UNINITMENUPOPUP, 0));
    EXPECT_EQ(0, dragger.overHotSpot);
    EXPECT_EQ(77, lResult);
}

TEST_F(Dragger, HitTestOfItsOwnIsTheHotSpot) {
    EXPECT_EQ(0, dragger.DoHitTest(&dlg, 1, 2));
    dragger.overHotSpot = 5;
    EXPECT_EQ(5, dragger.DoHitTest(nullptr, -1, -2));
}

TEST_F(Dragger, OtherMessagesPass) {
    for (UINT uMsg : {WM_NULL, WM_MOUSEMOVE, WM_PAINT, WM_CLOSE, WM_NCLBUTTONDOWN}) {
        EXPECT_EQ(0, Ask(uMsg, 0));
    }
    EXPECT_EQ(0, dragger.OnDlgMessage(&dlg, WM_CLOSE, 0, 0, &lResult));
    EXPECT_EQ(77, lResult);
}

TEST_F(Dragger, ServesAWindowThatIsNoDialog) {
    ProbeClass cls;
    ProbeRecord record;
    ProbeWnd wnd(record);
    ASSERT_TRUE(wnd.Make());
    ProbeDragger own;
    wnd.AddWndHook(&own);
    POINT pt = {20, 20};
    ::ClientToScreen(wnd, &pt);
    EXPECT_EQ(HTCAPTION, ::SendMessageW(wnd, WM_NCHITTEST, 0, PointParam(pt.x, pt.y)));
    EXPECT_EQ(0, own.OnWndMessage(&wnd, WM_SETCURSOR, 0, CursorParam(HTCAPTION), &lResult));
    EXPECT_EQ(Cursor(IDC_WAIT), ::GetCursor());
    own.overHotSpot = 1;
    EXPECT_EQ(1, own.OnWndMessage(&wnd, WM_SETCURSOR, 0, CursorParam(HTCLIENT), &lResult));
    EXPECT_EQ(Cursor(IDC_HAND), ::GetCursor());
    wnd.RemoveWndHook(&own);
    wnd.Destroy();
}

TEST(FullDrag, IsTurnedOnAndOff) {
    LayoutDlg dlg;
    dlg.EnableFullDrag(0);
    EXPECT_FALSE(dlg.IsFullDrag());
    ASSERT_TRUE(dlg.Make(IDD_LAYOUT_EMPTY));
    EXPECT_TRUE(dlg.IsFullDrag());
    for (int i = 0; i < 3; ++i) {
        dlg.EnableFullDrag(0);
        EXPECT_FALSE(dlg.IsFullDrag());
        EXPECT_EQ(1, dlg.hooks.GetCount());
        dlg.EnableFullDrag(0);
        dlg.EnableFullDrag(1);
        FullWndDragger* pDragger = dlg.dragger;
        dlg.EnableFullDrag(1);
        EXPECT_EQ(pDragger, dlg.dragger);
        EXPECT_EQ(2, dlg.hooks.GetCount());
    }
}

TEST(FullDrag, ObjectWithoutAWindowFreesItsDragger) {
    LayoutDlg dlg;
    dlg.EnableFullDrag(1);
    EXPECT_TRUE(dlg.IsFullDrag());
}

TEST(FullDrag, CanBeTurnedOffWhileTheDraggerIsAsked) {
    LayoutDlg dlg;
    ASSERT_TRUE(dlg.Make(IDD_LAYOUT_EMPTY));
    ProbeHook behind([&](CSWnd*, UINT uMsg, WPARAM, LPARAM, LRESULT*) {
        if (uMsg == WM_NCHITTEST) dlg.EnableFullDrag(0);
        return 0;
    });
    dlg.EnableFullDrag(0);
    dlg.AddWndHook(&behind);
    dlg.EnableFullDrag(1);
    POINT pt = {20, 20};
    ::ClientToScreen(dlg, &pt);
    ::SendMessageW(dlg, WM_NCHITTEST, 0, PointParam(pt.x, pt.y));
    EXPECT_FALSE(dlg.IsFullDrag());
    EXPECT_EQ(HTCLIENT, ::SendMessageW(dlg, WM_NCHITTEST, 0, PointParam(pt.x, pt.y)));
    dlg.RemoveWndHook(&behind);
}
} // namespace
