#include "support/replace_import.h"
#include "wnd/layout/ctrl_place.h"
#include "wnd/layout/layout_probe.h"
#include "wnd/layout/recorded_positions.h"
#include "wnd/wnd_probe.h"

#include <gtest/gtest.h>
#include <climits>
#include <utility>
#include <vector>

extern "C" FARPROC __imp_RedrawWindow;

namespace {
constexpr UINT kMove = SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE;
constexpr UINT kSize = SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE;
constexpr UINT kMoveSize = SWP_NOZORDER | SWP_NOACTIVATE;
constexpr int kNoItem = 4711;

BOOL(WINAPI* pfnRedraw)(HWND, const RECT*, HRGN, UINT);
std::vector<std::pair<HWND, UINT>> redraws;
BOOL WINAPI RecordedRedraw(HWND hwnd, const RECT* prc, HRGN hrgn, UINT uFlags) {
    redraws.emplace_back(hwnd, uFlags);
    return pfnRedraw(hwnd, prc, hrgn, uFlags);
}

/// A hidden dialog with a button at (20, 30, 120, 60) and a frame around (10, 20, 310, 220).
struct CtrlPlace : testing::Test {
    CtrlPlace() {
        EXPECT_TRUE(dlg.Make(IDD_LAYOUT_ITEMS));
        PlaceItem(dlg, IDC_LAYOUT_BUTTON, {20, 30, 120, 60});
        PlaceItem(dlg, IDC_LAYOUT_FRAME, {10, 20, 310, 220});
        button = ::GetDlgItem(dlg, IDC_LAYOUT_BUTTON);
        frame = ::GetDlgItem(dlg, IDC_LAYOUT_FRAME);
    }
    RECT Button() const { return ChildRect(button); }
    void Show() {
        ::ShowWindow(dlg, SW_SHOWNOACTIVATE);
        ASSERT_TRUE(::IsWindowVisible(button));
    }
    LayoutDlg dlg;
    HWND button = nullptr, frame = nullptr;
};

TEST_F(CtrlPlace, RectanglesAreInClientPixels) {
    RECT rc{};
    EXPECT_NE(0, GetCtrlRect(dlg, button, &rc));
    EXPECT_EQ((RECT{20, 30, 120, 60}), rc);
    rc = {};
    EXPECT_NE(0, GetDlgItemRect(dlg, IDC_LAYOUT_BUTTON, &rc));
    EXPECT_EQ((RECT{20, 30, 120, 60}), rc);
    rc = {};
    EXPECT_NE(0, dlg.GetDlgItemRect(IDC_LAYOUT_BUTTON, &rc));
    EXPECT_EQ((RECT{20, 30, 120, 60}), rc);
}

TEST_F(CtrlPlace, RectanglesOfHiddenAndOutlyingItems) {
    PlaceItem(dlg, IDC_LAYOUT_SLOT, {-500, -40, -450, 2000});
    RECT rc{};
    EXPECT_NE(0, GetDlgItemRect(dlg, IDC_LAYOUT_SLOT, &rc));
    EXPECT_EQ((RECT{-500, -40, -450, 2000}), rc);
}

TEST_F(CtrlPlace, NoItemHasNoRectangle) {
    RECT rc = {1, 2, 3, 4};
    EXPECT_EQ(0, GetCtrlRect(dlg, nullptr, &rc));
    EXPECT_EQ(0, GetCtrlRect(dlg, DeadWindow(), &rc));
    EXPECT_EQ(0, GetDlgItemRect(dlg, kNoItem, &rc));
    EXPECT_EQ(0, dlg.GetDlgItemRect(kNoItem, &rc));
    EXPECT_EQ(0, GetCtrlRect(dlg, button, nullptr));
    EXPECT_EQ(0, GetDlgItemRect(nullptr, IDC_LAYOUT_BUTTON, &rc));
    EXPECT_EQ((RECT{1, 2, 3, 4}), rc);
}

TEST_F(CtrlPlace, NullControlsAndMissingItemsAreIgnored) {
    RecordedPositions recorded;
    for (HWND hwnd : {HWND{}, DeadWindow()}) {
        EXPECT_EQ(0, CenterCtrl(dlg, hwnd, 1, nullptr));
        EXPECT_EQ(0, MoveCtrl(dlg, hwnd, 1, 2, 1));
        EXPECT_EQ(0, ResizeCtrl(dlg, hwnd, 1, 2, 1));
        EXPECT_EQ(0, MoveResizeCtrl(dlg, hwnd, 1, 2, 3, 4, 1));
    }
    EXPECT_EQ(0, CenterDlgItem(dlg, kNoItem, 1, 0));
    EXPECT_EQ(0, MoveDlgItem(dlg, kNoItem, 1, 2, 1));
    EXPECT_EQ(0, ResizeDlgItem(dlg, kNoItem, 1, 2, 1));
    EXPECT_EQ(0, MoveResizeDlgItem(dlg, kNoItem, 1, 2, 3, 4, 1));
    dlg.CenterCtrl(kNoItem, 1, 0);
    dlg.MoveCtrl(kNoItem, 1, 2, 1);
    dlg.ResizeCtrl(kNoItem, 1, 2, 1);
    dlg.MoveResizeCtrl(kNoItem, 1, 2, 3, 4, 1);
    dlg.MoveCtrlToSlot(kNoItem, IDC_LAYOUT_SLOT);
    dlg.MoveCtrlToSlot(IDC_LAYOUT_BUTTON, kNoItem);
    dlg.MoveButtonToSlot(IDC_LAYOUT_BUTTON, kNoItem);
    dlg.MoveResizeCtrlToSlot(IDC_LAYOUT_BUTTON, kNoItem);
    dlg.MoveCtrlEdge(kNoItem, IDC_LAYOUT_FRAME, 1);
    dlg.MoveCtrlEdge(IDC_LAYOUT_BUTTON, kNoItem, 1);
    dlg.CenterDlgItem(kNoItem, 0, -1, -1);
    EXPECT_TRUE(recorded.Calls().empty());
    EXPECT_EQ((RECT{20, 30, 120, 60}), Button());
}

TEST_F(CtrlPlace, MovesByPixels) {
    MoveCtrl(dlg, button, 5, -7, 0);
    EXPECT_EQ((RECT{25, 23, 125, 53}), Button());
    EXPECT_NE(0, MoveDlgItem(dlg, IDC_LAYOUT_BUTTON, -30, 0, 0));
    EXPECT_EQ((RECT{-5, 23, 95, 53}), Button());
    dlg.MoveCtrl(IDC_LAYOUT_BUTTON, 0, 1000, 1);
    EXPECT_EQ((RECT{-5, 1023, 95, 1053}), Button());
    dlg.MoveCtrl(IDC_LAYOUT_BUTTON, 0, 0, 1);
    EXPECT_EQ((RECT{-5, 1023, 95, 1053}), Button());
}

TEST_F(CtrlPlace, ResizesByPixels) {
    ResizeCtrl(dlg, button, 5, -7, 0);
    EXPECT_EQ((RECT{20, 30, 125, 53}), Button());
    EXPECT_NE(0, ResizeDlgItem(dlg, IDC_LAYOUT_BUTTON, -5, 7, 1));
    EXPECT_EQ((RECT{20, 30, 120, 60}), Button());
    dlg.ResizeCtrl(IDC_LAYOUT_BUTTON, -100, -30, 0);
    EXPECT_EQ((RECT{20, 30, 20, 30}), Button());
    dlg.ResizeCtrl(IDC_LAYOUT_BUTTON, -1, -1, 0);
    EXPECT_EQ((RECT{20, 30, 20, 30}), Button()) << "less than nothing is nothing";
}

TEST_F(CtrlPlace, MovesAndResizesByPixels) {
    MoveResizeCtrl(dlg, button, 1, 2, 3, 4, 0);
    EXPECT_EQ((RECT{21, 32, 124, 66}), Button());
    EXPECT_NE(0, MoveResizeDlgItem(dlg, IDC_LAYOUT_BUTTON, -1, -2, -3, -4, 1));
    EXPECT_EQ((RECT{20, 30, 120, 60}), Button());
    dlg.MoveResizeCtrl(IDC_LAYOUT_BUTTON, 10, 0, 0, 10, 1);
    EXPECT_EQ((RECT{30, 30, 130, 70}), Button());
}

TEST_F(CtrlPlace, FlagsAreThoseOfAPlainMoveWithoutRedraw) {
    Show();
    RecordedPositions recorded;
    MoveCtrl(dlg, button, 1, 1, 0);
    ResizeCtrl(dlg, button, 1, 1, 0);
    MoveResizeCtrl(dlg, button, 1, 1, 1, 1, 0);
    EXPECT_EQ((std::vector<UINT>{kMove, kSize, kMoveSize}), recorded.FlagsOf(button));
}

TEST_F(CtrlPlace, RedrawHidesAVisibleControlAndShowsItByTheMove) {
    Show();
    RecordedPositions recorded;
    auto Check = [&](UINT uPlain, auto fnMove) {
        recorded.Forget();
        fnMove();
        auto flags = recorded.FlagsOf(button);
        ASSERT_FALSE(flags.empty());
        EXPECT_EQ(uPlain | SWP_SHOWWINDOW, flags.back());
        EXPECT_TRUE(::IsWindowVisible(button));
    };
    Check(kMove, [&] { MoveCtrl(dlg, button, 1, 1, 1); });
    Check(kSize, [&] { ResizeCtrl(dlg, button, 1, 1, 1); });
    Check(kMoveSize, [&] { MoveResizeCtrl(dlg, button, 1, 1, 1, 1, 1); });
    EXPECT_EQ((RECT{22, 32, 124, 64}), Button());
}

TEST_F(CtrlPlace, RedrawHidesTheControlBeforeItMoves) {
    Show();
    constexpr UINT kKept = SWP_HIDEWINDOW | SWP_SHOWWINDOW | SWP_NOMOVE;
    std::vector<UINT> changes;
    ProbeHook hook([&](CSWnd*, UINT uMsg, WPARAM, LPARAM lParam, LRESULT*) {
        if (uMsg == WM_WINDOWPOSCHANGED) {
            changes.push_back(reinterpret_cast<WINDOWPOS*>(lParam)->flags & kKept);
        }
        return 0;
    });
    CSWnd* pButton = CSWnd::FromHandle(button);
    ASSERT_NE(nullptr, pButton) << "each control has an object";
    pButton->AddWndHook(&hook);
    MoveCtrl(dlg, button, 1, 1, 1);
    EXPECT_EQ((std::vector<UINT>{SWP_HIDEWINDOW | SWP_NOMOVE, SWP_SHOWWINDOW}), changes);
    changes.clear();
    MoveCtrl(dlg, button, 1, 1, 0);
    EXPECT_EQ(std::vector<UINT>{0}, changes);
    pButton->RemoveWndHook(&hook);
}

TEST_F(CtrlPlace, RedrawLeavesAnInvisibleControlInvisible) {
    Show();
    ::ShowWindow(button, SW_HIDE);
    RecordedPositions recorded;
    MoveCtrl(dlg, button, 1, 1, 1);
    ResizeCtrl(dlg, button, 1, 1, 1);
    MoveResizeCtrl(dlg, button, 1, 1, 1, 1, 1);
    EXPECT_EQ((std::vector<UINT>{kMove, kSize, kMoveSize}), recorded.FlagsOf(button));
    EXPECT_FALSE(IsShown(button));
    EXPECT_EQ((RECT{22, 32, 124, 64}), Button());
}

TEST_F(CtrlPlace, RedrawInAHiddenDialogChangesNoStyle) {
    MoveCtrl(dlg, button, 1, 1, 1);
    EXPECT_TRUE(IsShown(button));
    EXPECT_FALSE(IsShown(dlg));
    EXPECT_EQ((RECT{21, 31, 121, 61}), Button());
}

TEST_F(CtrlPlace, CentersInTheDialog) {
    RECT rc = ClientRect(dlg);
    EXPECT_NE(0, CenterCtrl(dlg, button, 1, nullptr));
    EXPECT_EQ((rc.right - 100) / 2, Button().left);
    EXPECT_EQ(30, Button().top);
    CenterCtrl(dlg, button, 0, nullptr);
    EXPECT_EQ((rc.bottom - 30) / 2, Button().top);
    EXPECT_EQ((rc.right - 100) / 2, Button().left);
    EXPECT_EQ(100, Width(Button()));
}

TEST_F(CtrlPlace, CentersInAnotherControl) {
    EXPECT_NE(0, CenterCtrl(dlg, button, 1, frame));
    EXPECT_EQ((RECT{110, 30, 210, 60}), Button());
    CenterDlgItem(dlg, IDC_LAYOUT_BUTTON, 0, IDC_LAYOUT_FRAME);
    EXPECT_EQ((RECT{110, 105, 210, 135}), Button());
    PlaceItem(dlg, IDC_LAYOUT_FRAME, {0, 0, 31, 31});
    dlg.CenterCtrl(IDC_LAYOUT_BUTTON, 1, IDC_LAYOUT_FRAME);
    EXPECT_EQ(-34, Button().left) << "half of -69, toward 0";
    dlg.CenterCtrl(IDC_LAYOUT_BUTTON, 0, 0);
    EXPECT_EQ((ClientRect(dlg).bottom - 30) / 2, Button().top);
    EXPECT_NE(0, CenterDlgItem(dlg, IDC_LAYOUT_BUTTON, 1, 0));
    EXPECT_EQ((ClientRect(dlg).right - 100) / 2, Button().left);
}

TEST_F(CtrlPlace, CenteringRedrawsTheControl) {
    Show();
    ReplaceImport replaced(__imp_RedrawWindow, &RecordedRedraw);
    pfnRedraw = replaced.Original<BOOL WINAPI(HWND, const RECT*, HRGN, UINT)>();
    redraws.clear();
    RecordedPositions recorded;
    CenterCtrl(dlg, button, 1, frame);
    EXPECT_EQ(std::vector<UINT>{kMove}, recorded.FlagsOf(button));
    EXPECT_EQ((std::vector<std::pair<HWND, UINT>>{{button, RDW_INVALIDATE | RDW_ERASE}}), redraws);
}

TEST_F(CtrlPlace, GoesToASlot) {
    PlaceItem(dlg, IDC_LAYOUT_SLOT, {150, 90, 180, 99});
    dlg.MoveCtrlToSlot(IDC_LAYOUT_BUTTON, IDC_LAYOUT_SLOT);
    EXPECT_EQ((RECT{150, 90, 250, 120}), Button());
    PlaceItem(dlg, IDC_LAYOUT_SLOT, {-10, 0, 20, 9});
    dlg.MoveButtonToSlot(IDC_LAYOUT_BUTTON, IDC_LAYOUT_SLOT);
    EXPECT_EQ((RECT{-10, 0, 90, 30}), Button());
    PlaceItem(dlg, IDC_LAYOUT_SLOT, {15, 25, 45, 34});
    dlg.MoveResizeCtrlToSlot(IDC_LAYOUT_BUTTON, IDC_LAYOUT_SLOT);
    EXPECT_EQ((RECT{15, 25, 45, 34}), Button());
    EXPECT_EQ((RECT{15, 25, 45, 34}), ItemRect(dlg, IDC_LAYOUT_SLOT));
    dlg.MoveResizeCtrlToSlot(IDC_LAYOUT_BUTTON, IDC_LAYOUT_BUTTON);
    EXPECT_EQ((RECT{15, 25, 45, 34}), Button());
    EXPECT_TRUE(IsShown(button));
    EXPECT_FALSE(IsShown(::GetDlgItem(dlg, IDC_LAYOUT_SLOT)));
}

TEST_F(CtrlPlace, TakesAnEdgeAndKeepsTheOtherOne) {
    RecordedPositions recorded;
    dlg.MoveCtrlEdge(IDC_LAYOUT_BUTTON, IDC_LAYOUT_FRAME, 1);
    EXPECT_EQ((RECT{20, 30, 310, 60}), Button());
    dlg.MoveCtrlEdge(IDC_LAYOUT_BUTTON, IDC_LAYOUT_FRAME, 0);
    EXPECT_EQ((RECT{10, 30, 310, 60}), Button());
    EXPECT_EQ(std::vector<UINT>(2, SWP_NOZORDER | SWP_FRAMECHANGED), recorded.FlagsOf(button));
    PlaceItem(dlg, IDC_LAYOUT_BUTTON, {200, 30, 220, 60});
    PlaceItem(dlg, IDC_LAYOUT_FRAME, {50, 20, 90, 220});
    dlg.MoveCtrlEdge(IDC_LAYOUT_BUTTON, IDC_LAYOUT_FRAME, 0);
    EXPECT_EQ((RECT{50, 30, 220, 60}), Button());
}

TEST_F(CtrlPlace, AMirroredDialogCountsFromTheRight) {
    ::SetWindowLongW(dlg, GWL_EXSTYLE, ::GetWindowLongW(dlg, GWL_EXSTYLE) | WS_EX_LAYOUTRTL);
    PlaceItem(dlg, IDC_LAYOUT_BUTTON, {20, 30, 120, 60});
    RECT rc{};
    GetCtrlRect(dlg, button, &rc);
    EXPECT_EQ((RECT{20, 30, 120, 60}), rc);
    MoveResizeCtrl(dlg, button, 5, 1, 7, 3, 0);
    EXPECT_EQ((RECT{25, 31, 132, 64}), Button());
    dlg.MoveCtrlToSlot(IDC_LAYOUT_FRAME, IDC_LAYOUT_BUTTON);
    EXPECT_EQ(25, ChildRect(frame).left);
}

TEST_F(CtrlPlace, HugeDistancesBreakNothing) {
    for (int n : {INT_MAX, INT_MIN}) {
        dlg.MoveCtrl(IDC_LAYOUT_BUTTON, n, n, 0);
        dlg.MoveCtrl(IDC_LAYOUT_BUTTON, n, n, 1);
        dlg.ResizeCtrl(IDC_LAYOUT_BUTTON, n, n, 0);
        dlg.MoveResizeCtrl(IDC_LAYOUT_BUTTON, n, n, n, n, 0);
        dlg.CenterCtrl(IDC_LAYOUT_BUTTON, 1, 0);
        dlg.CenterDlgItem(IDC_LAYOUT_BUTTON, 0, n, n);
        dlg.CenterDlgItem(IDC_LAYOUT_BUTTON, 1, INT_MIN, INT_MAX);
    }
    EXPECT_TRUE(::IsWindow(button));
}

TEST_F(CtrlPlace, CenterDlgItemTakesTheClientAreaForMinusOne) {
    RECT rc = ClientRect(dlg);
    dlg.CenterDlgItem(IDC_LAYOUT_BUTTON, 1, -1, -1);
    EXPECT_EQ((rc.right - 100) / 2, Button().left);
    EXPECT_EQ(30, Button().top);
    dlg.CenterDlgItem(IDC_LAYOUT_BUTTON, 0, -1, -1);
    EXPECT_EQ((rc.bottom - 30) / 2, Button().top);
    EXPECT_EQ(30, Height(Button()));
}

TEST_F(CtrlPlace, CenterDlgItemTakesASpan) {
    struct Row {
        int nFrom, nTo, nStart;
    };
    // The button is 100 wide.
    for (Row row : {Row{0, 200, 50}, Row{10, 211, 60}, Row{100, 200, 100}, Row{-1, 199, 49},
                    Row{50, 100, 25}, Row{50, 99, 25}, Row{-300, -100, -250}, Row{200, 0, 50}}) {
        dlg.CenterDlgItem(IDC_LAYOUT_BUTTON, 1, row.nFrom, row.nTo);
        EXPECT_EQ(row.nStart, Button().left) << row.nFrom << ' ' << row.nTo;
        EXPECT_EQ(100, Width(Button()));
        EXPECT_EQ(30, Button().top);
    }
}

TEST_F(CtrlPlace, CenterDlgItemCutsHeightToTheSpan) {
    dlg.CenterDlgItem(IDC_LAYOUT_BUTTON, 0, 100, 200);
    EXPECT_EQ((RECT{20, 135, 120, 165}), Button());
    dlg.CenterDlgItem(IDC_LAYOUT_BUTTON, 0, 100, 130);
    EXPECT_EQ((RECT{20, 100, 120, 130}), Button());
    dlg.CenterDlgItem(IDC_LAYOUT_BUTTON, 0, 100, 120);
    EXPECT_EQ((RECT{20, 100, 120, 120}), Button()) << "both sides were past the span";
    PlaceItem(dlg, IDC_LAYOUT_BUTTON, {20, 30, 120, 60});
    dlg.CenterDlgItem(IDC_LAYOUT_BUTTON, 0, 100, 129);
    EXPECT_EQ((RECT{20, 100, 120, 129}), Button()) << "one pixel at the bottom";
}

TEST_F(CtrlPlace, AlignDlgItemsCentersThemAsOneBlock) {
    const int cx = ClientRect(dlg).right, cy = ClientRect(dlg).bottom;
    PlaceItem(dlg, IDC_LAYOUT_LABEL, {0, 10, 40, 30});
    PlaceItem(dlg, IDC_LAYOUT_BUTTON, {50, 15, 90, 35});
    PlaceItem(dlg, IDC_LAYOUT_EDIT, {100, 20, 161, 41});
    RECT rcSlot = ItemRect(dlg, IDC_LAYOUT_SLOT);
    dlg.AlignDlgItems(IDC_LAYOUT_LABEL, IDC_LAYOUT_EDIT, 1);
    int dx = (cx - 161) / 2;
    EXPECT_EQ((RECT{dx, 10, dx + 40, 30}), ItemRect(dlg, IDC_LAYOUT_LABEL));
    EXPECT_EQ((RECT{dx + 50, 15, dx + 90, 35}), ItemRect(dlg, IDC_LAYOUT_BUTTON));
    EXPECT_EQ((RECT{dx + 100, 20, dx + 161, 41}), ItemRect(dlg, IDC_LAYOUT_EDIT));
    EXPECT_EQ(rcSlot, ItemRect(dlg, IDC_LAYOUT_SLOT));
    dlg.AlignDlgItems(IDC_LAYOUT_LABEL, IDC_LAYOUT_EDIT, 0);
    int dy = (cy - 31) / 2 - 10;
    EXPECT_EQ((RECT{dx, 10 + dy, dx + 40, 30 + dy}), ItemRect(dlg, IDC_LAYOUT_LABEL));
    EXPECT_EQ((RECT{dx + 50, 15 + dy, dx + 90, 35 + dy}), ItemRect(dlg, IDC_LAYOUT_BUTTON));
}

TEST_F(CtrlPlace, AlignDlgItemsOfOneItem) {
    dlg.AlignDlgItems(IDC_LAYOUT_BUTTON, IDC_LAYOUT_BUTTON, 1);
    EXPECT_EQ((ClientRect(dlg).right - 100) / 2, Button().left);
    EXPECT_EQ(30, Button().top);
}

TEST_F(CtrlPlace, AlignDlgItemsShowsWhatWasVisibleAndNothingElse) {
    Show();
    RecordedPositions recorded;
    dlg.AlignDlgItems(IDC_LAYOUT_EDIT, IDC_LAYOUT_FRAME, 0);
    EXPECT_EQ(kMove | SWP_SHOWWINDOW, recorded.FlagsOf(::GetDlgItem(dlg, IDC_LAYOUT_EDIT)).back());
    EXPECT_EQ(kMove, recorded.FlagsOf(::GetDlgItem(dlg, IDC_LAYOUT_SLOT)).back());
    EXPECT_EQ(kMove | SWP_SHOWWINDOW, recorded.FlagsOf(frame).back());
    EXPECT_TRUE(IsShown(frame));
    EXPECT_FALSE(IsShown(::GetDlgItem(dlg, IDC_LAYOUT_SLOT)));
}

TEST_F(CtrlPlace, AlignDlgItemsWithoutAnEndOfTheRunIsNoHarm) {
    dlg.AlignDlgItems(kNoItem, IDC_LAYOUT_BUTTON, 1);
    dlg.AlignDlgItems(IDC_LAYOUT_BUTTON, kNoItem, 1);
    dlg.AlignDlgItems(kNoItem, kNoItem, 0);
    dlg.AlignDlgItems(0, 0, 0);
    // A run whose last item stands before its first ends with the siblings.
    dlg.AlignDlgItems(IDC_LAYOUT_OTHER, IDC_LAYOUT_LABEL, 1);
    EXPECT_EQ(30, Height(Button()));
}
} // namespace
