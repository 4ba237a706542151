#include "support/replace_import.h"
#include "support/wait_until.h"
#include "wnd/layout/fake_monitors.h"
#include "wnd/layout/layout_probe.h"

#include <gtest/gtest.h>
#include <climits>

extern "C" FARPROC __imp_SetWindowPlacement;
extern "C" FARPROC __imp_ShowWindow;

namespace {
constexpr unsigned long kBoth = kDlgResizeWidth | kDlgResizeHeight;

BOOL(WINAPI* pfnSetPlacement)(HWND, const WINDOWPLACEMENT*);
std::vector<WINDOWPLACEMENT> placements;
BOOL WINAPI RecordedSetPlacement(HWND hwnd, const WINDOWPLACEMENT* pPlacement) {
    placements.push_back(*pPlacement);
    return pfnSetPlacement(hwnd, pPlacement);
}
BOOL(WINAPI* pfnShow)(HWND, int);
std::vector<int> shows;
BOOL WINAPI RecordedShow(HWND hwnd, int nShow) {
    shows.push_back(nShow);
    return pfnShow(hwnd, nShow);
}

/// A dialog's record as its caller keeps it, and what the dialog asks of the platform.
struct DialogPlacement : testing::Test {
    DialogPlacement() {
        pfnSetPlacement = replacedPlacement.Original<BOOL WINAPI(HWND, const WINDOWPLACEMENT*)>();
        pfnShow = replacedShow.Original<BOOL WINAPI(HWND, int)>();
        placements.clear();
        shows.clear();
    }
    void Store(const RECT& rc, UINT uShow = SW_SHOWNORMAL) {
        record.Initialize();
        record.showCmd = uShow;
        record.rcNormalPosition = rc;
    }
    bool Run(LayoutDlg& dlg, unsigned long dwFlags = kBoth) {
        dlg.EnableResizing(dwFlags, &record);
        shows.clear();
        placements.clear();
        return dlg.Make(IDD_LAYOUT_SIZING);
    }
    /// Everything the dialog was told adds up to what it has grown by.
    static void ExpectSumsHold(const LayoutDlg& dlg) {
        EXPECT_EQ(dlg.curWidth - dlg.minWidth, dlg.nSumDw);
        EXPECT_EQ(dlg.curHeight - dlg.minHeight, dlg.nSumDh);
        EXPECT_EQ(Width(WindowRect(dlg)), dlg.curWidth);
        EXPECT_EQ(Height(WindowRect(dlg)), dlg.curHeight);
    }

    MyWindowPlacement record;
    ReplaceImport replacedPlacement{__imp_SetWindowPlacement, &RecordedSetPlacement};
    ReplaceImport replacedShow{__imp_ShowWindow, &RecordedShow};
};

TEST_F(DialogPlacement, RecordStartsEmpty) {
    EXPECT_EQ(44u, sizeof(record));
    EXPECT_EQ(0u, record.length);
    EXPECT_FALSE(record.IsInitialized());
    EXPECT_EQ(0, record.rcNormalPosition.right);
    record.Initialize();
    EXPECT_EQ(44u, record.length);
    EXPECT_TRUE(record.IsInitialized());
}

TEST_F(DialogPlacement, FirstRunAlignsAndFillsTheRecord) {
    LayoutDlg dlg;
    ASSERT_TRUE(Run(dlg, kBoth | kDlgStartHidden));
    RECT rc = WindowRect(dlg);
    EXPECT_EQ((::GetSystemMetrics(SM_CXSCREEN) - Width(rc)) / 2, rc.left);
    EXPECT_EQ(44u, record.length);
    EXPECT_EQ(rc, record.rcNormalPosition);
    EXPECT_TRUE(placements.empty());
    EXPECT_EQ(Width(rc), dlg.curWidth);
}

TEST_F(DialogPlacement, ARecordAloneIsEnough) {
    {
        LayoutDlg first;
        ASSERT_TRUE(Run(first, 0));
        EXPECT_EQ((std::vector<std::string>{"InitRect", "InitDone"}), first.log);
        EXPECT_TRUE(IsShown(first));
        ::SetWindowPos(first, nullptr, 17, 23, 0, 0, SWP_NOSIZE | SWP_NOZORDER);
    }
    LayoutDlg second;
    ASSERT_TRUE(Run(second, 0));
    EXPECT_EQ(17, WindowRect(second).left);
    EXPECT_EQ(23, WindowRect(second).top);
}

TEST_F(DialogPlacement, SecondRunIsNotAligned) {
    RECT rc = {30, 40, 430, 340};
    {
        LayoutDlg dlg;
        ASSERT_TRUE(Run(dlg));
        PlaceWindow(dlg, rc);
        EXPECT_EQ(rc, record.rcNormalPosition) << "always up to date";
        dlg.CloseDialog(IDOK, 0);
        EXPECT_EQ(rc, record.rcNormalPosition);
    }
    LayoutDlg dlg;
    ASSERT_TRUE(Run(dlg));
    EXPECT_EQ(rc, WindowRect(dlg));
    EXPECT_EQ(400, dlg.curWidth);
    EXPECT_EQ(300, dlg.curHeight);
    EXPECT_TRUE(IsShown(dlg));
    ExpectSumsHold(dlg);
}

TEST_F(DialogPlacement, StoredSizeIsTheFirstResizingBeforeInitDone) {
    Store({30, 40, 430, 340});
    LayoutDlg dlg;
    int nAtResize = -1;
    bool bShown = true;
    dlg.onResize = [&](int, int) {
        nAtResize = dlg.IsInitialized();
        bShown = IsShown(dlg);
    };
    ASSERT_TRUE(Run(dlg));
    std::string strExpected =
        "Resize " + std::to_string(400 - dlg.minWidth) + " " + std::to_string(300 - dlg.minHeight);
    EXPECT_EQ((std::vector<std::string>{"InitRect", strExpected, "InitDone"}), dlg.log);
    EXPECT_EQ(0, nAtResize);
    EXPECT_FALSE(bShown);
    SIZE size = dlg.GetResizeData();
    EXPECT_EQ(400 - dlg.minWidth, size.cx);
    EXPECT_EQ(300 - dlg.minHeight, size.cy);
}

TEST_F(DialogPlacement, StoredSizeAsTheTemplatesIsNoResizing) {
    SIZE size{};
    {
        LayoutDlg dlg;
        ASSERT_TRUE(Run(dlg));
        size = {dlg.minWidth, dlg.minHeight};
    }
    Store({50, 60, 50 + size.cx, 60 + size.cy});
    LayoutDlg dlg;
    ASSERT_TRUE(Run(dlg));
    EXPECT_EQ(0, dlg.nResizes);
}

TEST_F(DialogPlacement, PlacesWithoutShowingAndThenShows) {
    for (UINT uShow : {SW_SHOWNORMAL, SW_SHOWMAXIMIZED, SW_SHOWNOACTIVATE, SW_SHOW, SW_SHOWNA,
                       SW_RESTORE, SW_SHOWDEFAULT}) {
        Store({30, 40, 430, 340}, uShow);
        LayoutDlg dlg;
        ASSERT_TRUE(Run(dlg));
        ASSERT_EQ(1u, placements.size()) << uShow;
        EXPECT_EQ(0u, placements[0].showCmd) << uShow;
        EXPECT_EQ(44u, placements[0].length);
        ASSERT_FALSE(shows.empty());
        EXPECT_EQ(static_cast<int>(uShow), shows.back());
    }
}

TEST_F(DialogPlacement, HiddenAndMinimisedComeBackNormal) {
    for (UINT uShow : {SW_HIDE, SW_SHOWMINIMIZED, SW_MINIMIZE, SW_SHOWMINNOACTIVE}) {
        Store({30, 40, 430, 340}, uShow);
        LayoutDlg dlg;
        ASSERT_TRUE(Run(dlg));
        ASSERT_EQ(1u, placements.size()) << uShow;
        EXPECT_EQ(0u, placements[0].showCmd) << uShow;
        EXPECT_EQ(SW_SHOWNORMAL, shows.back());
        EXPECT_FALSE(::IsIconic(dlg));
        EXPECT_TRUE(::IsWindowVisible(dlg));
        EXPECT_EQ((RECT{30, 40, 430, 340}), WindowRect(dlg));
    }
}

TEST_F(DialogPlacement, StoredButStartedHiddenStaysHidden) {
    Store({30, 40, 430, 340}, SW_SHOWMAXIMIZED);
    for (unsigned long dwFlag : {kDlgShowsItself, kDlgStartHidden}) {
        LayoutDlg dlg;
        ASSERT_TRUE(Run(dlg, kBoth | dwFlag));
        EXPECT_FALSE(IsShown(dlg));
        EXPECT_EQ((RECT{30, 40, 430, 340}), WindowRect(dlg));
    }
}

TEST_F(DialogPlacement, MaximisedComesBackMaximisedAndRestoresToItsSize) {
    const RECT rc = {30, 40, 430, 340};
    {
        LayoutDlg dlg;
        ASSERT_TRUE(Run(dlg));
        PlaceWindow(dlg, rc);
        ::ShowWindow(dlg, SW_SHOWMAXIMIZED);
        ASSERT_TRUE(::IsZoomed(dlg));
        ExpectSumsHold(dlg);
        dlg.CloseDialog(IDOK, 0);
    }
    EXPECT_EQ(unsigned{SW_SHOWMAXIMIZED}, record.showCmd);
    EXPECT_EQ(rc, record.rcNormalPosition);
    LayoutDlg dlg;
    ASSERT_TRUE(Run(dlg));
    EXPECT_TRUE(::IsZoomed(dlg));
    ExpectSumsHold(dlg);
    ::ShowWindow(dlg, SW_RESTORE);
    EXPECT_EQ(rc, WindowRect(dlg));
    ExpectSumsHold(dlg);
}

TEST_F(DialogPlacement, ClosedWhileMinimisedComesBackNormal) {
    const RECT rc = {30, 40, 430, 340};
    {
        LayoutDlg dlg;
        ASSERT_TRUE(Run(dlg));
        PlaceWindow(dlg, rc);
        int nBefore = dlg.nResizes;
        ::ShowWindow(dlg, SW_MINIMIZE);
        ASSERT_TRUE(::IsIconic(dlg));
        EXPECT_EQ(nBefore, dlg.nResizes) << "an icon has no layout";
        EXPECT_EQ(400, dlg.curWidth);
        dlg.CloseDialog(IDOK, 0);
    }
    LayoutDlg dlg;
    ASSERT_TRUE(Run(dlg));
    EXPECT_FALSE(::IsIconic(dlg));
    EXPECT_EQ(rc, WindowRect(dlg));
    ExpectSumsHold(dlg);
}

TEST_F(DialogPlacement, ADialogThatMaximisesItselfHasTheWorkAreasSize) {
    LayoutDlg dlg;
    dlg.onInitRect = [&](RECT&) { ::ShowWindow(dlg, SW_SHOWMAXIMIZED); };
    SIZE sizeAtDone{};
    dlg.onInitDone = [&] { sizeAtDone = {dlg.curWidth, dlg.curHeight}; };
    RECT rcWork{};
    ::SystemParametersInfoW(SPI_GETWORKAREA, 0, &rcWork, 0);
    ASSERT_TRUE(Run(dlg, kBoth | kDlgShowsItself));
    ASSERT_TRUE(::IsZoomed(dlg));
    EXPECT_EQ(Width(rcWork) + 2 * ::GetSystemMetrics(SM_CXFIXEDFRAME), sizeAtDone.cx);
    EXPECT_EQ(Height(rcWork) + 2 * ::GetSystemMetrics(SM_CYFIXEDFRAME), sizeAtDone.cy);
    ASSERT_LE(1, dlg.nResizes);
    EXPECT_EQ("Resize " + std::to_string(sizeAtDone.cx - dlg.minWidth) + " " +
                  std::to_string(sizeAtDone.cy - dlg.minHeight),
              dlg.log[1]);
}

TEST_F(DialogPlacement, StoredSmallerThanTheTemplateGrowsToIt) {
    // As after a change to larger fonts.
    Store({30, 40, 60, 60});
    LayoutDlg dlg;
    ASSERT_TRUE(Run(dlg));
    EXPECT_EQ(dlg.minWidth, Width(WindowRect(dlg)));
    EXPECT_EQ(dlg.minHeight, Height(WindowRect(dlg)));
    ExpectSumsHold(dlg);
    EXPECT_EQ(0, dlg.nResizes) << "no item is moved for a size that never was";
}

TEST_F(DialogPlacement, OneDirectionTakesNoOtherFromTheRecord) {
    Store({30, 40, 530, 540});
    LayoutDlg dlg;
    ASSERT_TRUE(Run(dlg, kDlgResizeWidth));
    EXPECT_EQ(500, Width(WindowRect(dlg)));
    EXPECT_EQ(dlg.minHeight, Height(WindowRect(dlg)));
    ExpectSumsHold(dlg);
}

TEST_F(DialogPlacement, AMonitorThatIsGoneLosesNoDialog) {
    for (RECT rc : {RECT{5000, 5000, 5400, 5300}, RECT{-4000, 100, -3600, 400},
                    RECT{100, -3000, 500, -2700}}) {
        Store(rc);
        LayoutDlg dlg;
        ASSERT_TRUE(Run(dlg));
        EXPECT_NE(nullptr, ::MonitorFromWindow(dlg, MONITOR_DEFAULTTONULL))
            << testing::PrintToString(WindowRect(dlg));
        ExpectSumsHold(dlg);
    }
}

TEST_F(DialogPlacement, WhatThePlatformLeavesOnNoMonitorIsCentered) {
    FakeMonitors screen(std::vector<FakeMonitors::Monitor>{{{0, 0, 500, 350}, {0, 0, 500, 350}}});
    Store({520, 360, 920, 660});
    LayoutDlg dlg;
    ASSERT_TRUE(Run(dlg));
    EXPECT_EQ((RECT{50, 25, 450, 325}), WindowRect(dlg));
    ExpectSumsHold(dlg);
}

TEST_F(DialogPlacement, DamagedRecordsStillGiveADialog) {
    const RECT rects[] = {{0, 0, 0, 0},
                          {100, 100, 50, 50},
                          {INT_MIN, INT_MIN, INT_MAX, INT_MAX},
                          {INT_MAX, INT_MAX, INT_MIN, INT_MIN},
                          {INT_MAX, 0, INT_MAX, 0},
                          {INT_MIN, INT_MIN, INT_MIN, INT_MIN}};
    for (const RECT& rc : rects) {
        for (UINT uShow : {1u, 3u, 77u, 0xFFFFFFFFu}) {
            SCOPED_TRACE(testing::Message() << testing::PrintToString(rc) << ' ' << uShow);
            Store(rc, uShow);
            LayoutDlg dlg;
            ASSERT_TRUE(Run(dlg));
            EXPECT_TRUE(dlg.IsInitialized());
            EXPECT_LE(dlg.minWidth, Width(WindowRect(dlg)));
            EXPECT_LE(dlg.minHeight, Height(WindowRect(dlg)));
        }
    }
}

TEST_F(DialogPlacement, RecordOfAnotherLengthStillGivesADialog) {
    for (UINT nLength : {1u, 43u, 45u, 0xFFFFFFFFu}) {
        Store({30, 40, 430, 340});
        record.length = nLength;
        LayoutDlg dlg;
        ASSERT_TRUE(Run(dlg)) << nLength;
        EXPECT_TRUE(dlg.IsInitialized());
        EXPECT_LE(dlg.minWidth, Width(WindowRect(dlg)));
    }
}

TEST_F(DialogPlacement, RecordFollowsEveryMove) {
    LayoutDlg dlg;
    ASSERT_TRUE(Run(dlg));
    int nResizes = dlg.nResizes;
    ::SetWindowPos(dlg, nullptr, 111, 122, 0, 0, SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
    EXPECT_EQ(111, record.rcNormalPosition.left);
    EXPECT_EQ(122, record.rcNormalPosition.top);
    EXPECT_EQ(nResizes, dlg.nResizes);
}

TEST_F(DialogPlacement, DisabledResizingForgetsTheRecord) {
    LayoutDlg dlg;
    dlg.EnableResizing(kBoth | kDlgResizeEdges | kDlgNoCorner, &record);
    dlg.DisableResizing();
    EXPECT_EQ(nullptr, dlg.placement);
    EXPECT_EQ(static_cast<unsigned long>(kDlgResizeEdges | kDlgNoCorner), dlg.flags);
    ASSERT_TRUE(dlg.Make(IDD_LAYOUT_SIZING));
    EXPECT_EQ(std::vector<std::string>{"InitDone"}, dlg.log);
    EXPECT_EQ(0u, record.length);
}

TEST_F(DialogPlacement, EnablingAddsFlagsAndTakesTheNewRecord) {
    LayoutDlg dlg;
    MyWindowPlacement other;
    dlg.EnableResizing(kDlgResizeWidth, &record);
    dlg.EnableResizing(kDlgResizeHeight, &other);
    EXPECT_TRUE(dlg.IsFlag(kDlgResizeWidth));
    EXPECT_TRUE(dlg.IsFlag(kDlgResizeHeight));
    EXPECT_EQ(&other, dlg.placement);
    dlg.EnableResizing(0, nullptr);
    EXPECT_EQ(nullptr, dlg.placement);
    EXPECT_TRUE(dlg.IsFlag(kDlgResizeWidth));
}

TEST_F(DialogPlacement, StoreResizingInfoReadsTheWindow) {
    LayoutDlg dlg;
    dlg.StoreResizingInfo(); // no record, no window
    ASSERT_TRUE(Run(dlg));
    const RECT rc = WindowRect(dlg);
    record.rcNormalPosition = {1, 2, 3, 4};
    dlg.StoreResizingInfo();
    EXPECT_EQ(rc, record.rcNormalPosition);
}

TEST_F(DialogPlacement, ClosingReadsThePlaceOnceMore) {
    LayoutDlg dlg;
    ASSERT_TRUE(Run(dlg));
    const RECT rc = WindowRect(dlg);
    record.rcNormalPosition = {1, 2, 3, 4};
    dlg.CloseDialog(IDCANCEL, 0);
    EXPECT_EQ(rc, record.rcNormalPosition);
}

TEST_F(DialogPlacement, ModalDialogKeepsItsPlaceAcrossRuns) {
    struct Closing : LayoutDlg {
        void UpdatePlace() { PlaceWindow(hWnd, {30, 40, 430, 340}); }
        int UpdateControls() override {
            rcSeen = WindowRect(hWnd);
            UpdatePlace();
            ::PostMessageW(hWnd, WM_COMMAND, IDCANCEL, 0);
            return 1;
        }
        RECT rcSeen{};
    };
    {
        Closing dlg;
        dlg.EnableResizing(kBoth, &record);
        EXPECT_EQ(IDCANCEL, dlg.Modal(IDD_LAYOUT_SIZING, nullptr, nullptr));
    }
    EXPECT_EQ((RECT{30, 40, 430, 340}), record.rcNormalPosition);
    Closing dlg;
    dlg.EnableResizing(kBoth, &record);
    EXPECT_EQ(IDCANCEL, dlg.Modal(IDD_LAYOUT_SIZING, nullptr, nullptr));
    EXPECT_EQ((RECT{30, 40, 430, 340}), dlg.rcSeen);
}
} // namespace
