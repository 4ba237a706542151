#include "support/wait_until.h"
#include "wnd/layout/layout_probe.h"

#include <gtest/gtest.h>
#include <climits>
#include <string>

namespace {
constexpr unsigned long kBoth = kDlgResizeWidth | kDlgResizeHeight;
constexpr unsigned long kFixed = kDlgFixedWidth | kDlgFixedHeight;

struct ForcedCase {
    const char* pszName;
    unsigned long dwFlags;
    SIZE asked;    // smallest size is 300 by 200
    SIZE expected; // current size is 400 by 250
};
void PrintTo(const ForcedCase& row, std::ostream* pOut) { *pOut << row.pszName; }

/// A hidden dialog whose size fields are the test's own.
struct DialogSizing : testing::Test {
    bool Make(unsigned long dwFlags, MyWindowPlacement* pPlacement = nullptr) {
        return dlg.MakeSizing(dwFlags, pPlacement);
    }
    void SetFields(int nMinWidth, int nMinHeight, int nCurWidth, int nCurHeight) {
        dlg.minWidth = nMinWidth;
        dlg.minHeight = nMinHeight;
        dlg.curWidth = dlg.prevWidth = nCurWidth;
        dlg.curHeight = dlg.prevHeight = nCurHeight;
    }
    LayoutDlg dlg;
};

struct ForcedSize : DialogSizing, testing::WithParamInterface<ForcedCase> {};
TEST_P(ForcedSize, IsWhatThePositionHolds) {
    const ForcedCase& row = GetParam();
    ASSERT_TRUE(Make(kBoth));
    dlg.flags = row.dwFlags;
    SetFields(300, 200, 400, 250);
    WINDOWPOS pos = dlg.AskChanging(row.asked.cx, row.asked.cy);
    EXPECT_EQ(row.expected.cx, pos.cx);
    EXPECT_EQ(row.expected.cy, pos.cy);
    EXPECT_EQ(400, dlg.curWidth) << "that has not happened yet";
    EXPECT_EQ(300, dlg.minWidth);
    EXPECT_EQ(0u, pos.flags & (SWP_NOSIZE | SWP_NOMOVE));
}
INSTANTIATE_TEST_SUITE_P(
    Cases, ForcedSize,
    testing::Values(
        ForcedCase{"LargerPasses", kBoth, {1000, 900}, {1000, 900}},
        ForcedCase{"SmallestPasses", kBoth, {300, 200}, {300, 200}},
        ForcedCase{"OneLessIsSmallest", kBoth, {299, 199}, {300, 200}},
        ForcedCase{"OneMorePasses", kBoth, {301, 201}, {301, 201}},
        ForcedCase{"NothingIsSmallest", kBoth, {0, 0}, {300, 200}},
        ForcedCase{"NegativeIsSmallest", kBoth, {-1, INT_MIN}, {300, 200}},
        ForcedCase{"LargestPasses", kBoth, {INT_MAX, INT_MAX}, {INT_MAX, INT_MAX}},
        ForcedCase{"WidthAloneHoldsHeight", kDlgResizeWidth, {500, 900}, {500, 200}},
        ForcedCase{"WidthAloneHoldsASmallHeight", kDlgResizeWidth, {500, 10}, {500, 200}},
        ForcedCase{"WidthAloneHasASmallestToo", kDlgResizeWidth, {10, 200}, {300, 200}},
        ForcedCase{"HeightAloneHoldsWidth", kDlgResizeHeight, {500, 900}, {300, 900}},
        ForcedCase{"HeightAloneHasASmallestToo", kDlgResizeHeight, {500, 10}, {300, 200}},
        ForcedCase{"FixedFlagsYieldToSizing", kBoth | kFixed, {500, 600}, {500, 600}},
        ForcedCase{
            "WidthWithFixedWidthMoves", kDlgResizeWidth | kDlgFixedWidth, {500, 600}, {500, 200}},
        ForcedCase{"FixedWidthOnly", kDlgFixedWidth, {500, 600}, {300, 600}},
        ForcedCase{"FixedHeightOnly", kDlgFixedHeight, {500, 600}, {500, 200}},
        ForcedCase{"FixedBoth", kFixed, {500, 600}, {300, 200}},
        ForcedCase{"FixedBothSmaller", kFixed, {5, 6}, {300, 200}},
        ForcedCase{"FixedLeavesNoWidth", kFixed, {0, 600}, {0, 600}},
        ForcedCase{"FixedLeavesNoHeight", kFixed, {500, 0}, {500, 0}},
        ForcedCase{"FixedNegativeIsNotZero", kFixed, {-5, -6}, {300, 200}},
        ForcedCase{"OtherFlagsAreNothing", kDlgNoCorner | kDlgResizeEdges, {5, 6}, {5, 6}}),
    [](const auto& row) { return std::string(row.param.pszName); });

TEST_F(DialogSizing, PositionWithoutSizeIsLeftAlone) {
    ASSERT_TRUE(Make(kBoth));
    WINDOWPOS pos = dlg.AskChanging(5, 6, SWP_NOSIZE);
    EXPECT_EQ(5, pos.cx);
    EXPECT_EQ(6, pos.cy);
    dlg.flags = kFixed;
    SetFields(0, 0, 0, 0);
    pos = dlg.AskChanging(5, 6, SWP_NOSIZE | SWP_NOMOVE);
    EXPECT_EQ(5, pos.cx);
    EXPECT_EQ(0, dlg.minWidth);
}

TEST_F(DialogSizing, MinimisedIsLeftAlone) {
    dlg.EnableResizing(kBoth, nullptr);
    ASSERT_TRUE(dlg.Make(IDD_LAYOUT_SIZING));
    ::ShowWindow(dlg, SW_SHOWMINNOACTIVE);
    ASSERT_TRUE(::IsIconic(dlg));
    WINDOWPOS pos = dlg.AskChanging(5, 6);
    EXPECT_EQ(5, pos.cx);
    EXPECT_EQ(6, pos.cy);
}

TEST_F(DialogSizing, FirstSizeSeenIsHeld) {
    dlg.SetFlags(kFixed, 1);
    ASSERT_TRUE(dlg.Make(IDD_LAYOUT_SIZING));
    ASSERT_EQ(0, dlg.minWidth);
    WINDOWPOS pos = dlg.AskChanging(0, 500);
    EXPECT_EQ(0, dlg.minWidth) << "no size is not the first one";
    pos = dlg.AskChanging(321, 234);
    EXPECT_EQ(321, pos.cx);
    EXPECT_EQ(234, pos.cy);
    EXPECT_EQ(321, dlg.minWidth);
    EXPECT_EQ(234, dlg.minHeight);
    EXPECT_EQ(321, dlg.prevWidth);
    EXPECT_EQ(234, dlg.prevHeight);
    pos = dlg.AskChanging(999, 888);
    EXPECT_EQ(321, pos.cx);
    EXPECT_EQ(234, pos.cy);
}

TEST_F(DialogSizing, FirstSizeNeedsBothToBeUnknown) {
    ASSERT_TRUE(Make(kBoth));
    dlg.flags = kDlgFixedWidth;
    SetFields(0, 200, 400, 250);
    WINDOWPOS pos = dlg.AskChanging(500, 600);
    EXPECT_EQ(0, pos.cx) << "what is held is 0 then";
    EXPECT_EQ(600, pos.cy);
    EXPECT_EQ(200, dlg.minHeight);
}

TEST_F(DialogSizing, FixedWidthHoldsRealWindow) {
    dlg.SetFlags(kDlgFixedWidth, 1);
    ASSERT_TRUE(dlg.Make(IDD_LAYOUT_SIZING));
    dlg.SetSize(333, 222);
    EXPECT_EQ(333, Width(WindowRect(dlg)));
    dlg.SetSize(444, 255);
    EXPECT_EQ(333, Width(WindowRect(dlg)));
    EXPECT_EQ(255, Height(WindowRect(dlg)));
    EXPECT_EQ(0, dlg.nResizes) << "it is not resizable";
}

TEST_F(DialogSizing, FixedHeightHoldsRealWindow) {
    dlg.SetFlags(kDlgFixedHeight, 1);
    ASSERT_TRUE(dlg.Make(IDD_LAYOUT_SIZING));
    dlg.SetSize(333, 222);
    dlg.SetSize(444, 255);
    EXPECT_EQ(444, Width(WindowRect(dlg)));
    EXPECT_EQ(222, Height(WindowRect(dlg)));
}

TEST_F(DialogSizing, FixedFlagsWithARecordHoldTheRectangleOfInitRect) {
    MyWindowPlacement record;
    dlg.onInitRect = [](RECT& rc) {
        rc.right = rc.left + 350;
        rc.bottom = rc.top + 260;
    };
    ASSERT_TRUE(Make(kFixed, &record));
    EXPECT_EQ(350, Width(WindowRect(dlg)));
    EXPECT_EQ(260, Height(WindowRect(dlg)));
    EXPECT_EQ(350, dlg.minWidth);
    EXPECT_EQ(260, dlg.curHeight);
    dlg.SetSize(500, 500);
    EXPECT_EQ(350, Width(WindowRect(dlg)));
    EXPECT_EQ(260, Height(WindowRect(dlg)));
    EXPECT_EQ(0, dlg.nResizes);
}

TEST_F(DialogSizing, FixedWidthTakesOnlyTheHeightFromTheRecord) {
    MyWindowPlacement record;
    record.Initialize();
    record.showCmd = SW_SHOWNORMAL;
    record.rcNormalPosition = {30, 40, 530, 440};
    dlg.onInitRect = [](RECT& rc) { rc.right = rc.left + 350; };
    ASSERT_TRUE(Make(kDlgFixedWidth, &record));
    EXPECT_EQ(350, Width(WindowRect(dlg)));
    EXPECT_EQ(400, Height(WindowRect(dlg)));
    EXPECT_EQ(350, dlg.curWidth);
    EXPECT_EQ(0, dlg.nResizes);
}

TEST_F(DialogSizing, WidthAloneHoldsRealWindow) {
    ASSERT_TRUE(Make(kDlgResizeWidth));
    int cy = dlg.minHeight;
    dlg.SetSize(10, 5000);
    EXPECT_EQ(dlg.minWidth, Width(WindowRect(dlg)));
    EXPECT_EQ(cy, Height(WindowRect(dlg)));
    dlg.SetSize(dlg.minWidth + 70, 10);
    EXPECT_EQ(dlg.minWidth + 70, Width(WindowRect(dlg)));
    EXPECT_EQ(cy, Height(WindowRect(dlg)));
    EXPECT_EQ(std::vector<std::string>({"InitRect", "InitDone", "Resize 70 0"}), dlg.log);
}

TEST_F(DialogSizing, EachChangeIsToldByItsDifference) {
    ASSERT_TRUE(Make(kBoth));
    dlg.ForgetLog();
    int cx = dlg.minWidth, cy = dlg.minHeight;
    dlg.SetSize(cx + 50, cy + 30);
    dlg.SetSize(cx + 50, cy + 31);
    dlg.SetSize(cx + 20, cy);
    dlg.SetSize(cx + 20, cy);
    EXPECT_EQ(std::vector<std::string>({"Resize 50 30", "Resize 0 1", "Resize -30 -31"}), dlg.log);
    EXPECT_EQ(cx + 20, dlg.curWidth);
    EXPECT_EQ(cx + 50, dlg.prevWidth);
    EXPECT_EQ(cy + 31, dlg.prevHeight);
}

TEST_F(DialogSizing, MovesAreNoResizing) {
    ASSERT_TRUE(Make(kBoth));
    dlg.ForgetLog();
    ::SetWindowPos(dlg, nullptr, 40, 50, 0, 0, SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
    ::SetWindowPos(dlg, HWND_TOP, 0, 0, 0, 0, SWP_NOSIZE | SWP_NOMOVE | SWP_NOACTIVATE);
    EXPECT_EQ(0, dlg.nResizes);
}

TEST_F(DialogSizing, NothingIsToldBeforeTheDialogIsInitialised) {
    ASSERT_TRUE(Make(kBoth));
    dlg.ForgetLog();
    dlg.isInitialized = 0;
    WINDOWPOS pos{dlg, nullptr, 0, 0, 700, 600, 0};
    dlg.CSDlg::OnWindowPosChanged(&pos);
    EXPECT_EQ(0, dlg.nResizes);
    EXPECT_EQ(dlg.minWidth, dlg.curWidth);
    dlg.isInitialized = 1;
    dlg.CSDlg::OnWindowPosChanged(&pos);
    EXPECT_EQ(1, dlg.nResizes);
    EXPECT_EQ(700, dlg.curWidth);
    EXPECT_EQ(dlg.minWidth, dlg.prevWidth);
    EXPECT_EQ(600, dlg.curHeight);
    dlg.flags = kFixed;
    pos.cx = 800;
    dlg.CSDlg::OnWindowPosChanged(&pos);
    EXPECT_EQ(1, dlg.nResizes);
    EXPECT_EQ(700, dlg.curWidth);
}

TEST_F(DialogSizing, ResizeTellsTheDifferenceOfCurrentAndPrevious) {
    dlg.Resize();
    EXPECT_EQ(0, dlg.nResizes);
    dlg.curWidth = 100;
    dlg.prevWidth = 60;
    dlg.curHeight = 10;
    dlg.prevHeight = 50;
    dlg.Resize();
    EXPECT_EQ(0, dlg.nResizes) << "not resizable";
    for (unsigned long dwFlag : {kDlgResizeWidth, kDlgResizeHeight}) {
        dlg.ForgetLog();
        dlg.flags = dwFlag;
        dlg.Resize();
        EXPECT_EQ(std::vector<std::string>{"Resize 40 -40"}, dlg.log);
    }
    dlg.ForgetLog();
    dlg.prevWidth = dlg.curWidth;
    dlg.Resize();
    EXPECT_EQ(std::vector<std::string>{"Resize 0 -40"}, dlg.log);
    dlg.prevHeight = dlg.curHeight;
    dlg.Resize();
    EXPECT_EQ(1, dlg.nResizes);
}

TEST_F(DialogSizing, ResizeDataIsCurrentLessSmallest) {
    SetFields(300, 200, 420, 180);
    SIZE size = dlg.GetResizeData();
    EXPECT_EQ(120, size.cx);
    EXPECT_EQ(-20, size.cy);
}

TEST_F(DialogSizing, NewSizeUncoversWhereTheGripStood) {
    dlg.EnableResizing(kBoth, nullptr);
    ASSERT_TRUE(dlg.Make(IDD_LAYOUT_SIZING));
    auto Settle = [&] {
        PumpUntil([] { return true; });
        ::RedrawWindow(dlg, nullptr, nullptr, RDW_UPDATENOW | RDW_ALLCHILDREN);
        ::ValidateRect(dlg, nullptr);
    };
    RECT rcUpdate{};
    Settle();
    dlg.AskChanging(dlg.curWidth, dlg.curHeight);
    EXPECT_FALSE(::GetUpdateRect(dlg, &rcUpdate, FALSE)) << "nothing changes";
    dlg.AskChanging(dlg.curWidth - 1000, dlg.curHeight - 1000);
    EXPECT_FALSE(::GetUpdateRect(dlg, &rcUpdate, FALSE)) << "the smallest is what it is";
    dlg.AskChanging(dlg.curWidth + 1, dlg.curHeight);
    ASSERT_TRUE(::GetUpdateRect(dlg, &rcUpdate, FALSE));
    RECT rc = ClientRect(dlg);
    EXPECT_EQ((RECT{rc.right - 12, rc.bottom - 12, rc.right, rc.bottom}), rcUpdate);
}

TEST_F(DialogSizing, AControlThatGoesDuringResizingIsNoHarm) {
    ASSERT_TRUE(Make(kBoth));
    dlg.onResize = [&](int dw, int dh) {
        if (HWND hwnd = ::GetDlgItem(dlg, IDC_LAYOUT_BUTTON)) ::DestroyWindow(hwnd);
        dlg.MoveResizeCtrl(IDC_LAYOUT_BUTTON, dw, dh, dw, dh, 1);
    };
    dlg.SetSize(500, 400);
    dlg.SetSize(600, 500);
    EXPECT_EQ(600, dlg.curWidth);
    EXPECT_EQ(2, dlg.nResizes);
}

TEST_F(DialogSizing, ResizingWithinResizingEndsAtTheLastSize) {
    ASSERT_TRUE(Make(kBoth));
    dlg.ForgetLog();
    int cx = dlg.minWidth, cy = dlg.minHeight;
    dlg.onResize = [&](int, int) {
        if (dlg.nResizes == 1) dlg.SetSize(cx + 100, cy + 100);
    };
    dlg.SetSize(cx + 40, cy + 40);
    EXPECT_EQ(std::vector<std::string>({"Resize 40 40", "Resize 60 60"}), dlg.log);
    EXPECT_EQ(cx + 100, Width(WindowRect(dlg)));
    EXPECT_EQ(cx + 100, dlg.curWidth);
}

TEST_F(DialogSizing, ADialogClosedWhileItsPositionChangesIsGone) {
    MyWindowPlacement record;
    for (bool bBefore : {true, false}) {
        LayoutDlg closing;
        auto Close = [&](WINDOWPOS*) {
            closing.onChanged = nullptr;
            closing.CloseDialog(IDCANCEL, 0);
        };
        if (bBefore) closing.onChanged = Close;
        ASSERT_TRUE(closing.MakeSizing(kBoth, &record));
        // (The initialisation changes positions too, before there is anything to close.)
        closing.onChanged = Close;
        if (::IsWindow(closing)) closing.SetSize(500, 400);
        EXPECT_FALSE(::IsWindow(closing));
        EXPECT_TRUE(closing.IsClosed());
    }
}

TEST_F(DialogSizing, ADialogClosedAndDeletedWhileItIsResizedIsNoHarm) {
    auto* pDlg = new LayoutDlg;
    pDlg->autoDelete = 1;
    ASSERT_TRUE(pDlg->MakeSizing(kBoth));
    HWND hwnd = *pDlg;
    pDlg->onResize = [pDlg](int, int) { pDlg->CloseDialog(IDCANCEL, 0); };
    ::SetWindowPos(hwnd, nullptr, 0, 0, 500, 400, SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
    EXPECT_FALSE(::IsWindow(hwnd));
}

TEST_F(DialogSizing, SettingChangesReadTheFramesAnew) {
    ASSERT_TRUE(Make(kBoth));
    const_cast<FrameThickness&>(GetFrameThickness()) = {-1, -1};
    ::SendMessageW(dlg, WM_SETTINGCHANGE, 0, 0);
    EXPECT_EQ(::GetSystemMetrics(SM_CXFRAME), GetFrameThickness().cx);
    EXPECT_EQ(::GetSystemMetrics(SM_CYFRAME), GetFrameThickness().cy);
    const_cast<FrameThickness&>(GetFrameThickness()) = {-1, -1};
    LayoutDlg another;
    EXPECT_EQ(::GetSystemMetrics(SM_CXFRAME), GetFrameThickness().cx);
    const_cast<FrameThickness&>(GetFrameThickness()) = {-1, -1};
    ReadFrameThickness();
    EXPECT_EQ(::GetSystemMetrics(SM_CYFRAME), GetFrameThickness().cy);
}
} // namespace
