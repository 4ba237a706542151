#include "support/replace_import.h"
#include "support/test_window.h"
#include "support/wait_until.h"
#include "wnd/layout/fake_monitors.h"
#include "wnd/layout/layout_probe.h"
#include "wnd/layout/recorded_positions.h"

#include <gtest/gtest.h>
#include <climits>

extern "C" FARPROC __imp_GetCursorPos;
extern "C" FARPROC __imp_ShowWindow;

namespace {
using Log = std::vector<std::string>;

using Show = BOOL WINAPI(HWND, int);
Show* pfnShow = nullptr;
std::vector<int> shows;
BOOL WINAPI RecordedShow(HWND hwnd, int nShow) {
    shows.push_back(nShow);
    return pfnShow(hwnd, nShow);
}
/// The calls of ShowWindow of this program for the length of a block, as `shows`.
struct RecordedShows {
    RecordedShows() {
        pfnShow = replaced.Original<Show>();
        shows.clear();
    }
    ReplaceImport replaced{__imp_ShowWindow, &RecordedShow};
};

int CenteredX(const RECT& rc) { return (::GetSystemMetrics(SM_CXSCREEN) - Width(rc)) / 2; }
int CenteredY(const RECT& rc) { return (::GetSystemMetrics(SM_CYSCREEN) - Height(rc)) / 2; }

TEST(DialogInit, PlainDialogIsAlignedAfterInitDone) {
    LayoutDlg dlg;
    RECT rcAtDone{};
    int nInitializedAtDone = 0;
    dlg.onInitDone = [&] {
        rcAtDone = WindowRect(dlg);
        nInitializedAtDone = dlg.IsInitialized();
        EXPECT_EQ(nullptr, dlg.dragger);
    };
    ASSERT_TRUE(dlg.Make(IDD_LAYOUT_EMPTY));
    EXPECT_EQ(1, nInitializedAtDone);
    EXPECT_EQ(Log{"InitDone"}, dlg.log);
    RECT rc = WindowRect(dlg);
    EXPECT_EQ(CenteredX(rc), rc.left);
    EXPECT_EQ(CenteredY(rc), rc.top);
    EXPECT_NE(rcAtDone.left, rc.left);
    EXPECT_FALSE(IsShown(dlg));
    EXPECT_EQ(0, dlg.minWidth);
    EXPECT_EQ(0, dlg.curWidth);
}

TEST(DialogInit, GivesOneOnBothPaths) {
    struct Asked : LayoutDlg {
        __int64 OnInitDialog(unsigned __int64 wParam, __int64 lParam) override {
            return qwAnswer = CSDlg::OnInitDialog(wParam, lParam);
        }
        __int64 qwAnswer = -1;
    } plain, sizing;
    ASSERT_TRUE(plain.Make(IDD_LAYOUT_EMPTY));
    EXPECT_EQ(1, plain.qwAnswer);
    ASSERT_TRUE(sizing.MakeSizing());
    EXPECT_EQ(1, sizing.qwAnswer);
}

TEST(DialogInit, ResizableDialogIsAlignedBeforeInitDone) {
    LayoutDlg dlg;
    RECT rcAtDone{};
    bool bShownAtDone = true;
    int nInitialized = 0;
    dlg.onInitDone = [&] {
        rcAtDone = WindowRect(dlg);
        bShownAtDone = IsShown(dlg);
        nInitialized = dlg.IsInitialized();
    };
    dlg.EnableResizing(kDlgResizeWidth | kDlgResizeHeight, nullptr);
    ASSERT_TRUE(dlg.Make(IDD_LAYOUT_SIZING));
    EXPECT_EQ((Log{"InitRect", "InitDone"}), dlg.log);
    EXPECT_EQ(CenteredX(rcAtDone), rcAtDone.left);
    EXPECT_EQ(rcAtDone, WindowRect(dlg));
    EXPECT_EQ(1, nInitialized);
    EXPECT_FALSE(bShownAtDone);
    EXPECT_TRUE(IsShown(dlg));
}

TEST(DialogInit, TemplateIsTheSmallestSize) {
    LayoutDlg dlg;
    ASSERT_TRUE(dlg.MakeSizing());
    RECT rc = WindowRect(dlg);
    EXPECT_LT(50, Width(rc));
    for (int cx : {dlg.minWidth, dlg.curWidth, dlg.prevWidth}) EXPECT_EQ(Width(rc), cx);
    for (int cy : {dlg.minHeight, dlg.curHeight, dlg.prevHeight}) EXPECT_EQ(Height(rc), cy);
    EXPECT_EQ(0, dlg.nResizes);
    SIZE size = dlg.GetResizeData();
    EXPECT_EQ(0, size.cx);
    EXPECT_EQ(0, size.cy);
}

TEST(DialogInit, InitRectChangesTheSmallestSize) {
    LayoutDlg dlg;
    RECT rcGiven{};
    dlg.onInitRect = [&](RECT& rc) {
        rcGiven = rc;
        EXPECT_EQ(WindowRect(dlg), rc);
        EXPECT_FALSE(dlg.IsInitialized());
        rc.right += 33;
        rc.bottom -= 11;
    };
    ASSERT_TRUE(dlg.MakeSizing());
    EXPECT_EQ(Width(rcGiven) + 33, Width(WindowRect(dlg)));
    EXPECT_EQ(Height(rcGiven) - 11, Height(WindowRect(dlg)));
    EXPECT_EQ(Width(rcGiven) + 33, dlg.minWidth);
    EXPECT_EQ(Height(rcGiven) - 11, dlg.minHeight);
    EXPECT_EQ(dlg.minWidth, dlg.curWidth);
    EXPECT_EQ(dlg.minHeight, dlg.prevHeight);
    EXPECT_EQ(0, dlg.nResizes) << "that is no resizing";
}

TEST(DialogInit, InitRectMayAlsoMoveTheDialog) {
    LayoutDlg dlg;
    dlg.alignMode = 0;
    dlg.onInitRect = [](RECT& rc) { rc = {77, 88, 377, 288}; };
    ASSERT_TRUE(dlg.MakeSizing());
    EXPECT_EQ((RECT{77, 88, 377, 288}), WindowRect(dlg));
}

TEST(DialogInit, OneDirectionIsEnoughForTheLongPath) {
    for (unsigned long dwFlag : {kDlgResizeWidth, kDlgResizeHeight}) {
        LayoutDlg dlg;
        ASSERT_TRUE(dlg.MakeSizing(dwFlag));
        EXPECT_EQ((Log{"InitRect", "InitDone"}), dlg.log);
    }
}

TEST(DialogInit, OtherFlagsAloneAreThePlainPath) {
    LayoutDlg dlg;
    dlg.SetFlags(kDlgFixedWidth | kDlgFixedHeight | kDlgResizeEdges | kDlgNoCorner, 1);
    ASSERT_TRUE(dlg.Make(IDD_LAYOUT_SIZING));
    EXPECT_EQ(Log{"InitDone"}, dlg.log);
    EXPECT_FALSE(IsShown(dlg));
}

TEST(DialogInit, ShowsItWithTheOrdinaryCommand) {
    LayoutDlg dlg;
    dlg.EnableResizing(kDlgResizeWidth, nullptr);
    RecordedShows recorded;
    ASSERT_TRUE(dlg.Make(IDD_LAYOUT_SIZING));
    ASSERT_FALSE(shows.empty());
    EXPECT_EQ(SW_SHOW, shows.back());
}

TEST(DialogInit, HidesItWhileItIsPrepared) {
    struct Early : LayoutDlg { // shows itself before it is its turn
        __int64 OnInitDialog(unsigned __int64 wParam, __int64 lParam) override {
            ::ShowWindow(hWnd, SW_SHOWNA);
            return CSDlg::OnInitDialog(wParam, lParam);
        }
    } hidden, shown;
    bool bShownAtDone = true;
    hidden.onInitDone = [&] { bShownAtDone = IsShown(hidden); };
    hidden.EnableResizing(kDlgResizeWidth, nullptr);
    ASSERT_TRUE(hidden.Make(IDD_LAYOUT_SIZING));
    EXPECT_FALSE(bShownAtDone);
    EXPECT_TRUE(IsShown(hidden));

    shown.onInitDone = [&] { bShownAtDone = IsShown(shown); };
    shown.EnableResizing(kDlgResizeWidth | kDlgShowsItself, nullptr);
    ASSERT_TRUE(shown.Make(IDD_LAYOUT_SIZING));
    EXPECT_TRUE(bShownAtDone);
}

TEST(DialogInit, ShowsItselfAndStartHiddenAreNotShown) {
    for (unsigned long dwFlag : {kDlgShowsItself, kDlgStartHidden}) {
        LayoutDlg dlg;
        dlg.EnableResizing(kDlgResizeWidth | kDlgResizeHeight | dwFlag, nullptr);
        ASSERT_TRUE(dlg.Make(IDD_LAYOUT_SIZING));
        EXPECT_FALSE(IsShown(dlg));
        EXPECT_TRUE(dlg.IsInitialized());
    }
}

TEST(DialogInit, ANewDialogCanBeDraggedByItsBody) {
    LayoutDlg dlg;
    EXPECT_FALSE(dlg.IsFullDrag());
    ASSERT_TRUE(dlg.Make(IDD_LAYOUT_EMPTY));
    EXPECT_TRUE(dlg.IsFullDrag());
    POS pos = dlg.hooks.GetHeadPos();
    ASSERT_NE(nullptr, pos);
    EXPECT_EQ(dlg.dragger, dlg.hooks.GetNext(pos)) << "before the built-in hook";
    ASSERT_NE(nullptr, pos);
    EXPECT_EQ(&dlg.msgHandler, dlg.hooks.GetNext(pos));
    EXPECT_EQ(nullptr, pos);
}

TEST(DialogInit, ADraggerThatIsThereStays) {
    LayoutDlg dlg;
    FullWndDragger* pEarly = nullptr;
    dlg.onInitDone = [&] {
        dlg.EnableFullDrag(1);
        pEarly = dlg.dragger;
    };
    ASSERT_TRUE(dlg.Make(IDD_LAYOUT_EMPTY));
    EXPECT_NE(nullptr, pEarly);
    EXPECT_EQ(pEarly, dlg.dragger);
    EXPECT_EQ(2, dlg.hooks.GetCount());
}

TEST(DialogInit, SecondRunOfAnObjectHasItsHooksOnce) {
    LayoutDlg dlg;
    for (int i = 0; i < 3; ++i) {
        ASSERT_TRUE(dlg.MakeSizing());
        EXPECT_TRUE(dlg.IsFullDrag());
        EXPECT_EQ(2, dlg.hooks.GetCount());
        dlg.Close();
    }
}

TEST(DialogInit, TopmostOnlyUntilItWasActive) {
    LayoutDlg dlg;
    ASSERT_TRUE(dlg.Make(IDD_LAYOUT_EMPTY));
    dlg.SetFlags(kDlgTopmostAtStart, 1); // (a new dialog is active before its maker can look)
    RecordedPositions recorded;
    dlg.CSDlg::OnInitDone();
    auto IsTopmost = [&] { return ::GetWindowLongW(dlg, GWL_EXSTYLE) & WS_EX_TOPMOST; };
    auto CallsAfter = [&](HWND hwndAfter) {
        int n = 0;
        for (const auto& call : recorded.Calls()) {
            if (call.hwnd != dlg || call.hwndAfter != hwndAfter) continue;
            EXPECT_EQ(unsigned{SWP_NOSIZE | SWP_NOMOVE | SWP_NOACTIVATE}, call.uFlags);
            ++n;
        }
        return n;
    };
    EXPECT_TRUE(IsTopmost());
    EXPECT_TRUE(dlg.IsFlag(kDlgTopmostAtStart));
    EXPECT_EQ(1, CallsAfter(HWND_TOPMOST));
    EXPECT_EQ(0, CallsAfter(HWND_NOTOPMOST));
    dlg.OnActivate(1);
    EXPECT_FALSE(IsTopmost());
    EXPECT_FALSE(dlg.IsFlag(kDlgTopmostAtStart));
    dlg.OnActivate(0);
    dlg.OnActivate(1);
    EXPECT_EQ(1, CallsAfter(HWND_NOTOPMOST));
}

TEST(DialogInit, RealActivationEndsTopmost) {
    LayoutDlg dlg;
    dlg.SetFlags(kDlgTopmostAtStart, 1);
    ASSERT_NE(nullptr, dlg.Modeless(IDD_LAYOUT_EMPTY, nullptr, nullptr, 1));
    ::SetForegroundWindow(dlg);
    EXPECT_TRUE(PumpUntil([&] { return !dlg.IsFlag(kDlgTopmostAtStart); }));
    EXPECT_FALSE(::GetWindowLongW(dlg, GWL_EXSTYLE) & WS_EX_TOPMOST);
}

TEST(DialogInit, WithoutTheFlagItIsNeverTopmost) {
    LayoutDlg dlg;
    ASSERT_TRUE(dlg.Make(IDD_LAYOUT_EMPTY));
    EXPECT_FALSE(::GetWindowLongW(dlg, GWL_EXSTYLE) & WS_EX_TOPMOST);
    RecordedPositions recorded;
    dlg.OnActivate(1);
    EXPECT_TRUE(recorded.Calls().empty());
}

/// An owner of 900 by 400 pixels at (60, 90), hidden.
struct AlignDialog : testing::Test {
    AlignDialog() { PlaceWindow(owner, {60, 90, 960, 490}); }
    RECT Run(int nMode, HWND hwndOwner) {
        LayoutDlg dlg;
        dlg.alignMode = nMode;
        EXPECT_TRUE(dlg.Make(IDD_LAYOUT_EMPTY, hwndOwner));
        return WindowRect(dlg);
    }
    TestWindow owner{{}, nullptr, WS_POPUP};
};

TEST_F(AlignDialog, CentersOverItsOwner) {
    RECT rc = Run(kDlgCentered, owner);
    EXPECT_EQ(60 + (900 - Width(rc)) / 2, rc.left);
    EXPECT_EQ(90 + (400 - Height(rc)) / 2, rc.top);
}

TEST_F(AlignDialog, StaysOnTheMonitorOfItsOwner) {
    FakeMonitors screen(FakeMonitors::Two());
    PlaceWindow(owner, {1030, -190, 1130, -150});
    RECT rc = Run(kDlgCentered, owner);
    EXPECT_EQ(1024, rc.left);
    EXPECT_EQ(-200, rc.top);
    PlaceWindow(owner, {2200, 700, 2300, 800});
    rc = Run(kDlgCascaded, owner);
    EXPECT_EQ(2304, rc.right);
    EXPECT_EQ(824, rc.bottom);
}

TEST_F(AlignDialog, CascadesOverItsOwnerOrTheDesktop) {
    const int dx = ::GetSystemMetrics(SM_CXVSCROLL), dy = ::GetSystemMetrics(SM_CYCAPTION);
    RECT rc = Run(kDlgCascaded, owner);
    EXPECT_EQ(60 + dx, rc.left);
    EXPECT_EQ(90 + dy, rc.top);
    rc = Run(kDlgCascaded, nullptr);
    EXPECT_EQ(dx, rc.left);
    EXPECT_EQ(dy, rc.top);
}

TEST_F(AlignDialog, CascadesOverTheDesktopFromAnyMonitor) {
    FakeMonitors screen(FakeMonitors::Two());
    LayoutDlg dlg;
    dlg.alignMode = kDlgCascaded;
    dlg.onInitDone = [&] { PlaceWindow(dlg, {1500, 100, 1800, 300}); };
    ASSERT_TRUE(dlg.Make(IDD_LAYOUT_EMPTY));
    EXPECT_EQ(::GetSystemMetrics(SM_CXVSCROLL), WindowRect(dlg).left);
    EXPECT_EQ(::GetSystemMetrics(SM_CYCAPTION), WindowRect(dlg).top);
}

POINT ptCursor{123, 234};
int nCursorAnswer = 1;
BOOL WINAPI ToldCursor(POINT* ppt) {
    if (nCursorAnswer) *ppt = ptCursor;
    return nCursorAnswer;
}

TEST_F(AlignDialog, GoesToTheMouse) {
    ReplaceImport cursor(__imp_GetCursorPos, &ToldCursor);
    nCursorAnswer = 1;
    RECT rc = Run(kDlgAtMouse, owner);
    EXPECT_EQ(123, rc.left);
    EXPECT_EQ(234, rc.top);
}

TEST_F(AlignDialog, CentersWithoutAMouse) {
    ReplaceImport cursor(__imp_GetCursorPos, &ToldCursor);
    nCursorAnswer = 0;
    RECT rc = Run(kDlgAtMouse, owner);
    EXPECT_EQ(60 + (900 - Width(rc)) / 2, rc.left);
}

TEST_F(AlignDialog, OtherModesLeaveItWhereTheTemplateSays) {
    RECT rc0 = Run(0, owner);
    for (int nMode : {-1, 4, 1000, INT_MIN, INT_MAX}) EXPECT_EQ(rc0, Run(nMode, owner));
    EXPECT_NE(rc0.left, Run(kDlgCentered, owner).left);
}

TEST_F(AlignDialog, AMinimisedOwnerIsNone) {
    ::SetWindowLongW(owner, GWL_STYLE, WS_POPUP | WS_CAPTION | WS_MINIMIZEBOX);
    ::ShowWindow(owner, SW_SHOWMINNOACTIVE);
    ASSERT_TRUE(::IsIconic(owner));
    LayoutDlg dlg;
    dlg.alignMode = kDlgCentered;
    ASSERT_TRUE(dlg.Make(IDD_LAYOUT_EMPTY, owner));
    RECT rc = WindowRect(dlg);
    EXPECT_EQ(CenteredX(rc), rc.left);
    EXPECT_EQ(CenteredY(rc), rc.top);
    RECT rcCascaded = Run(kDlgCascaded, owner);
    EXPECT_EQ(::GetSystemMetrics(SM_CXVSCROLL), rcCascaded.left);
}

TEST_F(AlignDialog, CanBeCalledAgain) {
    LayoutDlg dlg;
    ASSERT_TRUE(dlg.Make(IDD_LAYOUT_EMPTY, owner));
    RECT rc = WindowRect(dlg);
    ::SetWindowPos(dlg, nullptr, 5, 5, 0, 0, SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
    dlg.AlignDlg();
    EXPECT_EQ(rc, WindowRect(dlg));
}
} // namespace
