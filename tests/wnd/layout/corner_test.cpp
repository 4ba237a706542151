#include "support/memory_picture.h"
#include "support/wait_until.h"
#include "wnd/layout/layout_probe.h"

#include <gtest/gtest.h>
#include <string>

namespace {
constexpr unsigned long kBoth = kDlgResizeWidth | kDlgResizeHeight;
constexpr COLORREF kDot = 0xA3B4B8, kWhite = RGB(255, 255, 255), kPaper = RGB(10, 20, 30);

/// A dialog with a client area of 200 by 150 pixels, hidden.
struct DialogCorner : testing::Test {
    bool Make(unsigned long dwFlags = kBoth) {
        dlg.alignMode = 0;
        if (!dlg.MakeSizing(kBoth)) return false;
        dlg.minWidth = dlg.minHeight = 1;
        RECT rc = WindowRect(dlg), rcClient = ClientRect(dlg);
        dlg.SetSize(Width(rc) - rcClient.right + 200, Height(rc) - rcClient.bottom + 150);
        dlg.flags = dwFlags | kDlgStartHidden;
        return ClientRect(dlg) == RECT{0, 0, 200, 150};
    }
    LRESULT HitTest(int x, int y) {
        POINT pt = {x, y};
        ::ClientToScreen(dlg, &pt);
        return ::SendMessageW(dlg, WM_NCHITTEST, 0, PointParam(pt.x, pt.y));
    }
    LayoutDlg dlg;
};

TEST_F(DialogCorner, IsATriangleOfSixteenPixels) {
    RECT rc = {0, 0, 200, 150};
    EXPECT_TRUE(dlg.IsPtInResizingCorner(200, 150, rc)) << "the corner itself";
    EXPECT_TRUE(dlg.IsPtInResizingCorner(199, 149, rc));
    EXPECT_FALSE(dlg.IsPtInResizingCorner(192, 142, rc)) << "8 and 8 lie just outside";
    EXPECT_TRUE(dlg.IsPtInResizingCorner(193, 142, rc));
    EXPECT_TRUE(dlg.IsPtInResizingCorner(192, 143, rc));
    EXPECT_TRUE(dlg.IsPtInResizingCorner(185, 150, rc));
    EXPECT_FALSE(dlg.IsPtInResizingCorner(184, 150, rc));
    EXPECT_TRUE(dlg.IsPtInResizingCorner(200, 135, rc));
    EXPECT_FALSE(dlg.IsPtInResizingCorner(200, 134, rc));
    EXPECT_FALSE(dlg.IsPtInResizingCorner(0, 0, rc));
    EXPECT_FALSE(dlg.IsPtInResizingCorner(-30000, -30000, rc));
    EXPECT_TRUE(dlg.IsPtInResizingCorner(205, 155, rc)) << "past it";
    RECT rcEmpty = {0, 0, 0, 0};
    EXPECT_TRUE(dlg.IsPtInResizingCorner(0, 0, rcEmpty));
    EXPECT_FALSE(dlg.IsPtInResizingCorner(-8, -8, rcEmpty));
}

TEST_F(DialogCorner, ADotIsRaised) {
    // D: the dot's own colour, w: the white of its shadow, -: untouched.
    const char* const rows[] = {"------", "-DD---", "-DDw--", "--ww--", "------"};
    MemoryPicture picture(6, 5, kPaper);
    dlg.DrawResizingItem(picture, 1, 1);
    for (int y = 0; y < 5; ++y) {
        for (int x = 0; x < 6; ++x) {
            char ch = rows[y][x];
            COLORREF cr = ch == 'D' ? kDot : ch == 'w' ? kWhite : kPaper;
            EXPECT_EQ(cr, picture.Get(x, y)) << x << ' ' << y;
        }
    }
}

const char* const kGrip[] = {
    // The 12 by 12 pixels at the bottom right.
    "------------", "------------", "------------", "------------", "--------DD--", "--------DDw-",
    "---------ww-", "------------", "----DD--DD--", "----DDw-DDw-", "-----ww--ww-", "------------"};

/// All pixels of a picture of the client area against the three dots; without them if bGrip is not
/// set. Gives what differs.
std::string CompareGrip(const MemoryPicture& picture, int cx, int cy, bool bGrip) {
    std::string strDiffers;
    for (int y = 0; y < cy; ++y) {
        for (int x = 0; x < cx; ++x) {
            int dx = x - (cx - 12), dy = y - (cy - 12);
            char ch = bGrip && dx >= 0 && dy >= 0 ? kGrip[dy][dx] : '-';
            COLORREF cr = ch == 'D' ? kDot : ch == 'w' ? kWhite : kPaper;
            if (picture.Get(x, y) != cr) {
                strDiffers += " " + std::to_string(x) + "," + std::to_string(y);
            }
        }
    }
    return strDiffers;
}

TEST_F(DialogCorner, GripIsThreeDots) {
    ASSERT_TRUE(Make());
    MemoryPicture picture(200, 150, kPaper);
    dlg.DrawResizingCorner(picture);
    EXPECT_EQ("", CompareGrip(picture, 200, 150, true));
}

TEST_F(DialogCorner, GripIsDrawnOnTheErasedBackground) {
    ASSERT_TRUE(Make());
    auto DotsAfterErase = [&] {
        MemoryPicture picture(200, 150, kPaper);
        LRESULT lResult = ::SendMessageW(dlg, WM_ERASEBKGND,
                                         reinterpret_cast<WPARAM>(static_cast<HDC>(picture)), 0);
        EXPECT_NE(0, lResult) << "as the dialog's own erasing answers";
        EXPECT_NE(kPaper, picture.Get(1, 1)) << "what lies behind has painted";
        return picture.Get(196, 146) == kDot && picture.Get(192, 146) == kDot &&
               picture.Get(196, 142) == kDot && picture.Get(198, 147) == kWhite;
    };
    EXPECT_TRUE(DotsAfterErase());
    dlg.flags = kDlgResizeWidth;
    EXPECT_TRUE(DotsAfterErase());
    dlg.flags = kBoth | kDlgNoCorner;
    EXPECT_FALSE(DotsAfterErase());
    dlg.flags = 0;
    EXPECT_FALSE(DotsAfterErase());
}

TEST_F(DialogCorner, GripIsPaintedOnTheWindow) {
    ASSERT_TRUE(Make());
    ::SetWindowPos(dlg, HWND_TOPMOST, 50, 60, 0, 0, SWP_NOSIZE | SWP_SHOWWINDOW);
    auto IsDot = [&] {
        ::RedrawWindow(dlg, nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_UPDATENOW);
        HDC hdc = ::GetDC(dlg);
        COLORREF cr = ::GetPixel(hdc, 196, 146);
        ::ReleaseDC(dlg, hdc);
        return cr == kDot;
    };
    EXPECT_TRUE(PumpUntil(IsDot));
    EXPECT_FALSE(::GetUpdateRect(dlg, nullptr, FALSE)) << "the painting asks for no other";
    dlg.flags |= kDlgNoCorner;
    EXPECT_TRUE(PumpUntil([&] { return !IsDot(); }));
}

TEST_F(DialogCorner, DrawingLeavesItsOwnPlaceValid) {
    ASSERT_TRUE(Make());
    ::SetWindowPos(dlg, HWND_TOPMOST, 50, 60, 0, 0, SWP_NOSIZE | SWP_SHOWWINDOW);
    ::RedrawWindow(dlg, nullptr, nullptr, RDW_UPDATENOW | RDW_ALLCHILDREN);
    ::ValidateRect(dlg, nullptr);
    RECT rcLast = {180, 130, 200, 150};
    ::InvalidateRect(dlg, &rcLast, FALSE);
    HDC hdc = ::GetDC(dlg);
    dlg.DrawResizingCorner(hdc);
    ::ReleaseDC(dlg, hdc);
    HRGN hrgn = ::CreateRectRgn(0, 0, 0, 0);
    ASSERT_NE(ERROR, ::GetUpdateRgn(dlg, hrgn, FALSE));
    EXPECT_FALSE(::PtInRegion(hrgn, 193, 143));
    EXPECT_FALSE(::PtInRegion(hrgn, 199, 149));
    EXPECT_TRUE(::PtInRegion(hrgn, 191, 149));
    EXPECT_TRUE(::PtInRegion(hrgn, 199, 141));
    ::DeleteObject(hrgn);
}

TEST_F(DialogCorner, IsHitAsTheBottomRightCorner) {
    ASSERT_TRUE(Make());
    EXPECT_EQ(HTBOTTOMRIGHT, HitTest(199, 149));
    EXPECT_EQ(HTBOTTOMRIGHT, HitTest(193, 142));
    EXPECT_EQ(HTCAPTION, HitTest(192, 142)) << "the body, by which it is dragged";
    EXPECT_EQ(HTCAPTION, HitTest(5, 5));
    dlg.EnableFullDrag(0);
    EXPECT_EQ(HTCLIENT, HitTest(192, 142));
    EXPECT_EQ(HTBOTTOMRIGHT, HitTest(199, 149));
}

TEST_F(DialogCorner, IsHitOnAMonitorLeftOfThePrimaryOne) {
    ASSERT_TRUE(Make());
    ::SetWindowPos(dlg, nullptr, -1000, -800, 0, 0, SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
    EXPECT_EQ(HTBOTTOMRIGHT, HitTest(199, 149));
    EXPECT_EQ(HTCAPTION, HitTest(50, 50));
    dlg.flags |= kDlgResizeEdges;
    EXPECT_EQ(HTLEFT, HitTest(0, 70));
}

TEST_F(DialogCorner, IsHitAlsoWhereItIsNotDrawn) {
    ASSERT_TRUE(Make(kBoth | kDlgNoCorner));
    EXPECT_EQ(HTBOTTOMRIGHT, HitTest(199, 149));
}

TEST_F(DialogCorner, OneDirectionIsEnough) {
    ASSERT_TRUE(Make(kDlgResizeWidth));
    EXPECT_EQ(HTBOTTOMRIGHT, HitTest(199, 149));
    dlg.flags = kDlgResizeHeight;
    EXPECT_EQ(HTBOTTOMRIGHT, HitTest(199, 149));
    dlg.flags = kDlgFixedWidth | kDlgFixedHeight | kDlgResizeEdges;
    EXPECT_EQ(HTCAPTION, HitTest(199, 149));
    EXPECT_EQ(HTCAPTION, HitTest(0, 70));
}

TEST_F(DialogCorner, EdgesAreTestedInTheirOrder) {
    ASSERT_TRUE(Make(kBoth | kDlgResizeEdges));
    dlg.EnableFullDrag(0);
    const int cx = GetFrameThickness().cx, cy = GetFrameThickness().cy;
    ASSERT_LT(1, cx);
    ASSERT_LT(1, cy);
    ASSERT_GT(15, cx);
    struct Row {
        int x, y, nHit;
    };
    const Row rows[] = {
        {0, 70, HTLEFT},
        {cx - 1, 70, HTLEFT},
        {cx + 1, 70, HTCLIENT},
        {0, 0, HTTOPLEFT},
        {cx - 1, cy - 1, HTTOPLEFT},
        {cx - 1, cy + 1, HTLEFT},
        {cx + 1, cy - 1, HTTOP},
        {0, 149, HTBOTTOMLEFT},
        {cx - 1, 150 - cy + 1, HTBOTTOMLEFT},
        {cx - 1, 150 - cy - 2, HTLEFT},
        {cx + 1, 149, HTBOTTOM},
        {199, 70, HTRIGHT},
        {200 - cx + 1, 70, HTRIGHT},
        {200 - cx - 2, 70, HTCLIENT},
        {199, 0, HTTOPRIGHT},
        {199, cy - 1, HTTOPRIGHT},
        {199, cy + 1, HTRIGHT},
        {199, 149, HTBOTTOMRIGHT},
        {200 - cx + 1, 150 - cy + 1, HTBOTTOMRIGHT},
        {100, 0, HTTOP},
        {100, cy - 1, HTTOP},
        {100, cy + 1, HTCLIENT},
        {100, 149, HTBOTTOM},
        {100, 150 - cy + 1, HTBOTTOM},
        {100, 150 - cy - 2, HTCLIENT},
        // In the triangle of the corner the edges have the last word.
        {199, 150 - cy - 2, HTRIGHT},
        {200 - cx - 2, 149, HTBOTTOM},
        {200 - cx - 2, 150 - cy - 2, HTBOTTOMRIGHT},
    };
    for (const Row& row : rows) EXPECT_EQ(row.nHit, HitTest(row.x, row.y)) << row.x << ' ' << row.y;
}

TEST_F(DialogCorner, LeftGoesBeforeRightWhereTheDialogIsNarrow) {
    ASSERT_TRUE(Make(kBoth | kDlgResizeEdges));
    const FrameThickness before = GetFrameThickness();
    const_cast<FrameThickness&>(GetFrameThickness()) = {1000, 1000};
    EXPECT_EQ(HTTOPLEFT, HitTest(199, 149));
    const_cast<FrameThickness&>(GetFrameThickness()) = {0, 0};
    EXPECT_EQ(HTBOTTOMRIGHT, HitTest(199, 149)) << "the triangle is what remains";
    EXPECT_EQ(HTCAPTION, HitTest(1, 70));
    const_cast<FrameThickness&>(GetFrameThickness()) = before;
}

TEST_F(DialogCorner, WithoutTheFlagEdgesAreBody) {
    ASSERT_TRUE(Make());
    EXPECT_EQ(HTCAPTION, HitTest(0, 70));
    EXPECT_EQ(HTCAPTION, HitTest(100, 0));
    EXPECT_EQ(HTCAPTION, HitTest(0, 149));
}

TEST_F(DialogCorner, CursorSaysWhereItCanBeDragged) {
    struct Row {
        unsigned long dwFlags;
        LPCWSTR pszCursor;
    };
    for (Row row : {Row{kBoth, IDC_SIZENWSE}, Row{kDlgResizeWidth, IDC_SIZEWE},
                    Row{kDlgResizeHeight, IDC_SIZENS}}) {
        dlg.flags = row.dwFlags;
        ::SetCursor(::LoadCursorW(nullptr, IDC_WAIT));
        dlg.SetResizingCursor();
        EXPECT_EQ(::LoadCursorW(nullptr, row.pszCursor), ::GetCursor()) << row.dwFlags;
    }
    ::SetCursor(::LoadCursorW(nullptr, IDC_ARROW));
}

TEST_F(DialogCorner, SetCursorOverTheCornerIsAnswered) {
    ASSERT_TRUE(Make(kDlgResizeWidth));
    ::SetCursor(::LoadCursorW(nullptr, IDC_WAIT));
    EXPECT_EQ(1, ::SendMessageW(dlg, WM_SETCURSOR, reinterpret_cast<WPARAM>(static_cast<HWND>(dlg)),
                                MAKELPARAM(HTBOTTOMRIGHT, WM_MOUSEMOVE)));
    EXPECT_EQ(::LoadCursorW(nullptr, IDC_SIZEWE), ::GetCursor());
    ::SetCursor(::LoadCursorW(nullptr, IDC_ARROW));
    LRESULT lResult = 77;
    EXPECT_EQ(0, dlg.msgHandler.OnWndMessage(&dlg, WM_SETCURSOR, 0,
                                             MAKELPARAM(HTBOTTOM, WM_MOUSEMOVE), &lResult));
    EXPECT_EQ(77, lResult);
}

TEST_F(DialogCorner, MaximisedDialogHasNone) {
    dlg.EnableResizing(kBoth | kDlgResizeEdges, nullptr);
    ASSERT_TRUE(dlg.Make(IDD_LAYOUT_SIZING));
    ::ShowWindow(dlg, SW_SHOWMAXIMIZED);
    ASSERT_TRUE(::IsZoomed(dlg));
    RECT rc = ClientRect(dlg);
    EXPECT_EQ(HTCLIENT, HitTest(rc.right - 1, rc.bottom - 1));
    EXPECT_EQ(HTCLIENT, HitTest(0, rc.bottom / 2));
    MemoryPicture picture(rc.right, rc.bottom, kPaper);
    ::SendMessageW(dlg, WM_ERASEBKGND, reinterpret_cast<WPARAM>(static_cast<HDC>(picture)), 0);
    EXPECT_EQ(picture.Get(1, 1), picture.Get(rc.right - 4, rc.bottom - 4));
    LRESULT lResult = 0;
    for (UINT uMsg : {WM_PAINT, WM_ERASEBKGND, WM_SETCURSOR, WM_NCHITTEST}) {
        EXPECT_EQ(0, dlg.msgHandler.OnWndMessage(&dlg, uMsg, 0, HTBOTTOMRIGHT, &lResult));
    }
}

TEST_F(DialogCorner, IsNoneForAWindowThatIsNoDialog) {
    CSWnd wnd;
    LRESULT lResult = 0;
    for (UINT uMsg : {WM_PAINT, WM_ERASEBKGND, WM_SETCURSOR, WM_NCHITTEST, WM_CLOSE}) {
        EXPECT_EQ(0, dlg.msgHandler.OnWndMessage(&wnd, uMsg, 0, HTBOTTOMRIGHT, &lResult));
    }
}

TEST_F(DialogCorner, OtherMessagesPass) {
    ASSERT_TRUE(Make());
    LRESULT lResult = 0;
    for (UINT uMsg : {WM_NULL, WM_CLOSE, WM_MOUSEMOVE, WM_NCLBUTTONDOWN, WM_SIZE}) {
        EXPECT_EQ(0, dlg.msgHandler.OnWndMessage(&dlg, uMsg, 0, 0, &lResult));
    }
}
} // namespace
