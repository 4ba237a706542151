#include "support/rect.h"
#include "wnd/layout/fake_monitors.h"
#include "wnd/layout/layout_probe.h"
#include "wnd/layout/recorded_positions.h"
#include "wnd/layout/wnd_place.h"
#include "wnd/wnd_probe.h"

#include <gtest/gtest.h>
#include <climits>

extern "C" FARPROC __imp_GetCursorPos;

namespace {
constexpr UINT kMoveOnly = SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE;

/// A hidden window of just that size and place.
class Box {
  public:
    Box(int x, int y, int cx, int cy)
        : hwnd(::CreateWindowExW(WS_EX_TOOLWINDOW, L"STATIC", L"box", WS_POPUP, x, y, cx, cy,
                                 nullptr, nullptr, nullptr, nullptr)) {}
    ~Box() { ::DestroyWindow(hwnd); }
    Box(const Box&) = delete;
    Box& operator=(const Box&) = delete;
    operator HWND() const { return hwnd; }
    POINT At() const { return {WindowRect(hwnd).left, WindowRect(hwnd).top}; }
    int Left() const { return At().x; }
    int Top() const { return At().y; }

  private:
    HWND hwnd;
};

struct CenterCase {
    const char* pszName;
    SIZE size;        // of the window
    RECT rcOther;     // empty: none
    POINT ptExpected; // of its top left corner
};
void PrintTo(const CenterCase& row, std::ostream* pOut) { *pOut << row.pszName; }

class CenterWindowTest : public testing::TestWithParam<CenterCase> {};
TEST_P(CenterWindowTest, PutsTheWindowThereOnTwoMonitors) {
    FakeMonitors screen(FakeMonitors::Two());
    const CenterCase& row = GetParam();
    Box wnd(500, 20, row.size.cx, row.size.cy);
    const RECT& rc = row.rcOther;
    Box other(rc.left, rc.top, Width(rc), Height(rc));
    EXPECT_NE(0, CenterWindow(wnd, other));
    EXPECT_EQ(row.ptExpected.x, wnd.Left());
    EXPECT_EQ(row.ptExpected.y, wnd.Top());
    EXPECT_EQ(row.size.cx, Width(WindowRect(wnd)));
    EXPECT_EQ(row.size.cy, Height(WindowRect(wnd)));
}
INSTANTIATE_TEST_SUITE_P(
    Cases, CenterWindowTest,
    testing::Values(
        CenterCase{"InTheMiddle", {200, 100}, {100, 100, 500, 400}, {200, 200}},
        CenterCase{"OddSpaceIsHalvedDown", {201, 101}, {100, 100, 500, 400}, {199, 199}},
        CenterCase{"NegativeSpaceIsHalvedTowardZero", {301, 201}, {400, 400, 500, 500}, {300, 350}},
        CenterCase{"SameSize", {200, 100}, {300, 300, 500, 400}, {300, 300}},
        CenterCase{"LeftEdgeStopsIt", {200, 100}, {0, 300, 50, 400}, {0, 300}},
        CenterCase{"TopEdgeStopsIt", {200, 100}, {300, 0, 500, 20}, {300, 0}},
        CenterCase{"RightEdgeStopsIt", {200, 100}, {974, 300, 1024, 400}, {824, 300}},
        CenterCase{
            "BottomEdgeOfTheWholeMonitorStopsIt", {200, 100}, {300, 750, 500, 768}, {300, 668}},
        CenterCase{"OtherBeyondTheCorner", {200, 100}, {-300, -300, -200, -200}, {0, 0}},
        CenterCase{
            "WiderThanTheMonitorBeginsAtItsLeft", {1100, 100}, {300, 300, 500, 400}, {0, 300}},
        CenterCase{
            "HigherThanTheMonitorBeginsAtItsTop", {200, 800}, {300, 300, 500, 400}, {300, 0}},
        CenterCase{"TooWideFarRightEndsAtTheRight", {1040, 100}, {900, 300, 1120, 400}, {-16, 300}},
        CenterCase{"OnePixelIsTheMonitor", {200, 100}, {300, 300, 301, 301}, {412, 334}},
        CenterCase{"NoPixelIsTheMonitor", {200, 100}, {300, 300, 300, 300}, {412, 334}},
        CenterCase{"NoWidthAndOneHighIsTheMonitor", {200, 100}, {300, 300, 300, 301}, {412, 334}},
        CenterCase{"TwoByOneCounts", {200, 100}, {300, 300, 302, 301}, {201, 251}},
        CenterCase{"OneByTwoCounts", {200, 100}, {300, 300, 301, 302}, {201, 251}},
        CenterCase{"NoWidthAndFiveHighCounts", {200, 100}, {300, 300, 300, 305}, {200, 253}},
        CenterCase{"OnTheSecondMonitor", {200, 100}, {1100, -150, 1500, 50}, {1200, -100}},
        CenterCase{"SecondMonitorsOwnTop", {200, 100}, {1200, -200, 1400, -180}, {1200, -200}},
        CenterCase{"SecondMonitorsOwnLeft", {200, 100}, {1024, 0, 1044, 100}, {1024, 0}},
        CenterCase{"SecondMonitorsOwnRight", {200, 100}, {2294, 0, 2304, 100}, {2104, 0}},
        CenterCase{"SecondMonitorsOwnBottom", {200, 100}, {1300, 800, 1500, 824}, {1300, 724}},
        CenterCase{"OnePixelOnTheSecondMonitor", {200, 100}, {2000, 0, 2001, 1}, {1564, 262}}),
    [](const auto& row) { return std::string(row.param.pszName); });

TEST(PlaceOnMonitor, CentersWithoutOtherOnItsOwnWholeMonitor) {
    FakeMonitors screen(FakeMonitors::Two());
    Box first(10, 10, 200, 100), second(1500, 10, 201, 101);
    EXPECT_NE(0, CenterWindow(first, nullptr));
    EXPECT_EQ(412, first.Left());
    EXPECT_EQ(334, first.Top()) << "the bar at the bottom does not count";
    EXPECT_NE(0, CenterWindow(second, nullptr));
    EXPECT_EQ(1024 + (1280 - 201) / 2, second.Left());
    EXPECT_EQ(-200 + (1024 - 101) / 2, second.Top());
}

TEST(PlaceOnMonitor, CentersOnTheRealMonitor) {
    Box wnd(10, 10, 200, 100);
    EXPECT_NE(0, CenterWindow(wnd, nullptr));
    EXPECT_EQ((::GetSystemMetrics(SM_CXSCREEN) - 200) / 2, wnd.Left());
    EXPECT_EQ((::GetSystemMetrics(SM_CYSCREEN) - 100) / 2, wnd.Top());
}

TEST(PlaceOnMonitor, CentersWithinTheMonitorThatIsLeft) {
    // The other window stands where a monitor was until somebody took it away.
    FakeMonitors screen(std::vector<FakeMonitors::Monitor>{{{0, 0, 1024, 768}, {0, 0, 1024, 768}}});
    Box wnd(100, 100, 200, 100), other(3000, -900, 400, 300);
    EXPECT_NE(0, CenterWindow(wnd, other));
    EXPECT_EQ(824, wnd.Left());
    EXPECT_EQ(0, wnd.Top());
}

TEST(PlaceOnMonitor, MovesAloneWithoutActivating) {
    Box wnd(10, 10, 200, 100), other(100, 100, 300, 300);
    RecordedPositions recorded;
    CenterWindow(wnd, other);
    CascadeWindow(wnd, other);
    MoveWindowToMouse(wnd);
    EXPECT_EQ(std::vector<UINT>(3, kMoveOnly), recorded.FlagsOf(wnd));
    EXPECT_EQ(3u, recorded.Calls().size());
}

TEST(PlaceOnMonitor, GivesZeroForWhatIsNoWindow) {
    for (HWND hwnd : {HWND{}, DeadWindow()}) {
        EXPECT_EQ(0, CenterWindow(hwnd, nullptr));
        EXPECT_EQ(0, CascadeWindow(hwnd, nullptr));
        EXPECT_EQ(0, MoveWindowToMouse(hwnd));
        EnsureWindowVisible(hwnd, nullptr);
    }
}

TEST(PlaceOnMonitor, CentersOverADeadWindowAsOverNone) {
    Box wnd(10, 10, 200, 100);
    EXPECT_NE(0, CenterWindow(wnd, DeadWindow()));
    EXPECT_EQ((::GetSystemMetrics(SM_CXSCREEN) - 200) / 2, wnd.Left());
}

TEST(PlaceOnMonitor, CascadesByScrollBarAndCaption) {
    FakeMonitors screen(FakeMonitors::Two());
    const int dx = ::GetSystemMetrics(SM_CXVSCROLL), dy = ::GetSystemMetrics(SM_CYCAPTION);
    Box wnd(10, 10, 200, 100), other(100, 150, 300, 300), distant(1500, -200, 300, 300);
    EXPECT_NE(0, CascadeWindow(wnd, other));
    EXPECT_EQ(100 + dx, wnd.Left());
    EXPECT_EQ(150 + dy, wnd.Top());
    EXPECT_NE(0, CascadeWindow(wnd, distant));
    EXPECT_EQ(1500 + dx, wnd.Left());
    EXPECT_EQ(-200 + dy, wnd.Top());
    EXPECT_NE(0, CascadeWindow(wnd, nullptr));
    EXPECT_EQ(1024 + dx, wnd.Left()) << "the monitor on which it stands";
    EXPECT_EQ(-200 + dy, wnd.Top());
}

TEST(PlaceOnMonitor, CascadeStaysOnTheMonitor) {
    FakeMonitors screen(FakeMonitors::Two());
    Box wnd(10, 10, 200, 100), corner(900, 700, 100, 60), above(300, -90, 100, 100);
    CascadeWindow(wnd, corner);
    EXPECT_EQ(824, wnd.Left());
    EXPECT_EQ(668, wnd.Top());
    CascadeWindow(wnd, above);
    EXPECT_EQ(0, wnd.Top());
}

TEST(PlaceOnMonitor, CascadeOverAPixelStandsBesideIt) {
    FakeMonitors screen(FakeMonitors::Two());
    Box wnd(10, 10, 200, 100), pixel(300, 310, 1, 1);
    CascadeWindow(wnd, pixel);
    EXPECT_EQ(300 + ::GetSystemMetrics(SM_CXVSCROLL), wnd.Left());
    EXPECT_EQ(310 + ::GetSystemMetrics(SM_CYCAPTION), wnd.Top());
}

POINT ptCursor;
int nCursorAnswer;
BOOL WINAPI ToldCursor(POINT* ppt) {
    if (nCursorAnswer) *ppt = ptCursor;
    return nCursorAnswer;
}
struct MoveToMouse : testing::Test {
    MoveToMouse() { nCursorAnswer = 1; }
    void Expect(POINT ptMouse, POINT ptExpected) {
        ptCursor = ptMouse;
        EXPECT_NE(0, MoveWindowToMouse(wnd));
        EXPECT_EQ(ptExpected.x, wnd.Left()) << ptMouse.x << ' ' << ptMouse.y;
        EXPECT_EQ(ptExpected.y, wnd.Top()) << ptMouse.x << ' ' << ptMouse.y;
    }
    FakeMonitors screen{FakeMonitors::Two()};
    ReplaceImport cursor{__imp_GetCursorPos, &ToldCursor};
    Box wnd{10, 10, 200, 100};
};

TEST_F(MoveToMouse, PutsTheTopLeftCornerUnderTheCursor) {
    Expect({300, 400}, {300, 400});
    Expect({0, 0}, {0, 0});
    Expect({824, 668}, {824, 668});
    Expect({1300, -150}, {1300, -150});
}

TEST_F(MoveToMouse, StaysOnTheMonitor) {
    Expect({825, 669}, {824, 668});
    Expect({300, 767}, {300, 668});
    Expect({2303, 823}, {2104, 724});
    Expect({-5, -7}, {0, 0});
}

TEST_F(MoveToMouse, TakesTheMonitorThatHasMostOfIt) {
    Expect({1000, 300}, {1024, 300}); // 24 pixels on the first one, 176 on the second
    Expect({850, 300}, {824, 300});
}

TEST_F(MoveToMouse, GivesZeroWithoutACursor) {
    nCursorAnswer = 0;
    EXPECT_EQ(0, MoveWindowToMouse(wnd));
    EXPECT_EQ(10, wnd.Left());
    EXPECT_EQ(10, wnd.Top());
}

TEST(EnsureWindowVisible, LeavesAWindowAloneOfWhichAPixelIsSeen) {
    FakeMonitors screen(FakeMonitors::Two());
    RecordedPositions recorded;
    for (POINT pt : {POINT{10, 10}, POINT{-199, 0}, POINT{1023, 767}, POINT{2303, 823}}) {
        Box wnd(pt.x, pt.y, 200, 100);
        EnsureWindowVisible(wnd, nullptr);
        EXPECT_EQ(pt.x, wnd.Left());
        EXPECT_EQ(pt.y, wnd.Top());
    }
    EXPECT_TRUE(recorded.Calls().empty());
}

TEST(EnsureWindowVisible, CentersAWindowOnNoMonitor) {
    FakeMonitors screen(FakeMonitors::Two());
    Box other(1100, -150, 400, 200);
    for (POINT pt : {POINT{-200, 0}, POINT{2304, 0}, POINT{300, 769}, POINT{-30000, -30000}}) {
        Box wnd(pt.x, pt.y, 200, 100);
        EnsureWindowVisible(wnd, other);
        EXPECT_EQ(1200, wnd.Left());
        EXPECT_EQ(-100, wnd.Top());
    }
    Box alone(-500, 100, 200, 100);
    EnsureWindowVisible(alone, nullptr);
    EXPECT_EQ(412, alone.Left());
    EXPECT_EQ(334, alone.Top());
}

TEST(EnsureWindowVisible, BringsAWindowBackOnTheRealScreen) {
    Box wnd(20000, 20000, 200, 100);
    EnsureWindowVisible(wnd, nullptr);
    EXPECT_EQ((::GetSystemMetrics(SM_CXSCREEN) - 200) / 2, wnd.Left());
    EXPECT_EQ((::GetSystemMetrics(SM_CYSCREEN) - 100) / 2, wnd.Top());
}

struct FitCase {
    const char* pszName;
    RECT rc, rcExpected;
};
void PrintTo(const FitCase& row, std::ostream* pOut) { *pOut << row.pszName; }

class FitRectTest : public testing::TestWithParam<FitCase> {};
TEST_P(FitRectTest, FitsIntoTheWorkArea) {
    FakeMonitors screen(FakeMonitors::Two());
    RECT rc = GetParam().rc;
    FitRectToNearestMonitor(&rc);
    EXPECT_EQ(GetParam().rcExpected, rc);
}
INSTANTIATE_TEST_SUITE_P(
    Cases, FitRectTest,
    testing::Values(
        FitCase{"InsideStays", {100, 100, 300, 200}, {100, 100, 300, 200}},
        FitCase{"WholeAreaStays", {0, 0, 1024, 728}, {0, 0, 1024, 728}},
        FitCase{"RightAndBottomTouching", {824, 628, 1024, 728}, {824, 628, 1024, 728}},
        FitCase{"PastTheRight", {900, 100, 1100, 200}, {824, 100, 1024, 200}},
        FitCase{"PastTheBar", {100, 700, 300, 740}, {100, 688, 300, 728}},
        FitCase{"PastBoth", {825, 629, 1025, 729}, {824, 628, 1024, 728}},
        FitCase{"PastTheLeftIsCut", {-50, 100, 150, 200}, {0, 100, 150, 200}},
        FitCase{"PastTheTopIsCut", {100, -20, 300, 80}, {100, 0, 300, 80}},
        FitCase{"TooWideIsCut", {10, 100, 1210, 200}, {0, 100, 1024, 200}},
        FitCase{"TooLargeIsTheArea", {-10, -10, 1500, 2000}, {0, 0, 1024, 728}},
        FitCase{"OneTooWide", {0, 0, 1025, 728}, {0, 0, 1024, 728}},
        FitCase{"AllAbove", {100, -300, 300, -200}, {100, 0, 300, -200}},
        FitCase{"Empty", {100, 100, 100, 100}, {100, 100, 100, 100}},
        FitCase{"SecondMonitorsBar", {1030, 0, 1230, 100}, {1064, 0, 1230, 100}},
        FitCase{"SecondMonitorsRight", {2200, -300, 2400, -100}, {2104, -200, 2304, -100}},
        FitCase{"FarAwayNearTheSecond", {9000, 100, 9200, 200}, {2104, 100, 2304, 200}},
        FitCase{"HugeCoordinates",
                {INT_MAX - 200, INT_MAX - 100, INT_MAX, INT_MAX},
                {2104, 724, 2304, 824}},
        FitCase{"TinyCoordinates",
                {INT_MIN, INT_MIN, INT_MIN + 200, INT_MIN + 100},
                {0, 0, INT_MIN + 200, INT_MIN + 100}},
        FitCase{"AllThereIs", {INT_MIN, INT_MIN, INT_MAX, INT_MAX}, {1064, -200, 2304, 824}}),
    [](const auto& row) { return std::string(row.param.pszName); });

TEST(FitRect, BarsOnAllSidesCount) {
    FakeMonitors screen(
        std::vector<FakeMonitors::Monitor>{{{0, 0, 1000, 700}, {10, 20, 970, 660}}});
    RECT rc = {0, 0, 100, 100};
    FitRectToNearestMonitor(&rc);
    EXPECT_EQ((RECT{10, 20, 100, 100}), rc);
    rc = {900, 600, 1000, 700};
    FitRectToNearestMonitor(&rc);
    EXPECT_EQ((RECT{870, 560, 970, 660}), rc);
    rc = {0, 0, 1000, 700};
    FitRectToNearestMonitor(&rc);
    EXPECT_EQ((RECT{10, 20, 970, 660}), rc);
}

TEST(FitRect, WithoutARectangleIsNothing) {
    FitRectToNearestMonitor(nullptr);
    SUCCEED();
}

TEST(PlaceOnMonitor, WithoutAMonitorNothingMoves) {
    FakeMonitors screen(std::vector<FakeMonitors::Monitor>{});
    Box wnd(10, 20, 200, 100);
    EXPECT_EQ(0, CenterWindow(wnd, nullptr));
    EXPECT_EQ(0, CascadeWindow(wnd, nullptr));
    EXPECT_EQ(0, MoveWindowToMouse(wnd));
    EnsureWindowVisible(wnd, nullptr);
    EXPECT_EQ(10, wnd.Left());
    EXPECT_EQ(20, wnd.Top());
    RECT rc = {-50, -60, 5000, 6000};
    FitRectToNearestMonitor(&rc);
    EXPECT_EQ((RECT{-50, -60, 5000, 6000}), rc);
}

TEST(FitRect, UsesTheRealWorkArea) {
    RECT rcWork{};
    ::SystemParametersInfoW(SPI_GETWORKAREA, 0, &rcWork, 0);
    RECT rc = {0, 5000, 300, 5200};
    FitRectToNearestMonitor(&rc);
    EXPECT_EQ((RECT{0, rcWork.bottom - 200, 300, rcWork.bottom}), rc);
}

TEST(PlaceOnMonitor, MembersPlaceTheDialog) {
    FakeMonitors screen(FakeMonitors::Two());
    LayoutDlg dlg;
    ASSERT_TRUE(dlg.Make(IDD_LAYOUT_EMPTY));
    Box other(1100, -150, 900, 600);
    dlg.CenterWindow(other);
    RECT rc = WindowRect(dlg);
    EXPECT_EQ(1100 + (900 - Width(rc)) / 2, rc.left);
    EXPECT_EQ(-150 + (600 - Height(rc)) / 2, rc.top);
    dlg.CascadeWindow(other);
    EXPECT_EQ(1100 + ::GetSystemMetrics(SM_CXVSCROLL), WindowRect(dlg).left);
    // From the second monitor to the desktop's corner, where the function alone would stay.
    dlg.CascadeWindow(nullptr);
    EXPECT_EQ(::GetSystemMetrics(SM_CXVSCROLL), WindowRect(dlg).left);
    EXPECT_EQ(::GetSystemMetrics(SM_CYCAPTION), WindowRect(dlg).top);
}
} // namespace
