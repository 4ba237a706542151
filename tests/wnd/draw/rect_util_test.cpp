#include "wnd/draw/rect_util.h"
#include "wnd/wnd_probe.h"

#include <gtest/gtest.h>

namespace {
void ExpectRect(const RECT& expected, const RECT& rc) {
    EXPECT_EQ(expected.left, rc.left);
    EXPECT_EQ(expected.top, rc.top);
    EXPECT_EQ(expected.right, rc.right);
    EXPECT_EQ(expected.bottom, rc.bottom);
}

TEST(RectUtil, CopiesSetsShiftsAndResizes) {
    RECT rc{};
    RectCopy(rc, RECT{1, 2, 3, 4});
    ExpectRect({1, 2, 3, 4}, rc);
    RectSet(rc, 10, 20, 30, 40);
    ExpectRect({10, 20, 30, 40}, rc);
    RectShift(rc, 1, -2);
    ExpectRect({11, 18, 31, 38}, rc);
    RectInflate(rc, 3, 5);
    ExpectRect({8, 13, 34, 43}, rc);
    DeflateRect(&rc, 3, 5);
    ExpectRect({11, 18, 31, 38}, rc);
    DeflateRect(&rc, -1, -1);
    ExpectRect({10, 17, 32, 39}, rc);
}

TEST(RectUtil, CentersKeepingTheSize) {
    RECT rc{100, 100, 110, 104};
    RectCenter(rc, RECT{10, 20, 31, 41}); // free: 11 and 17
    ExpectRect({15, 28, 25, 32}, rc);
    RECT rcLarge{0, 0, 10, 10};
    RectCenter(rcLarge, RECT{0, 0, 5, 4}); // free: -5 and -6
    ExpectRect({-2, -3, 8, 7}, rcLarge);
}

TEST(RectUtil, DiffersByAnyCoordinate) {
    RECT rc{1, 2, 3, 4};
    EXPECT_EQ(0, IsRectDifferent(rc, RECT{1, 2, 3, 4}));
    EXPECT_EQ(1, IsRectDifferent(rc, RECT{0, 2, 3, 4}));
    EXPECT_EQ(1, IsRectDifferent(rc, RECT{1, 0, 3, 4}));
    EXPECT_EQ(1, IsRectDifferent(rc, RECT{1, 2, 0, 4}));
    EXPECT_EQ(1, IsRectDifferent(rc, RECT{1, 2, 3, 0}));
}

TEST(RectUtil, IsEmptyOnlyWithoutBothSides) {
    RECT rcNoWidth{7, 0, 7, 5}, rcNoHeight{0, 3, 5, 3}, rcNothing{4, 5, 4, 5}, rcTurned{5, 5, 0, 0};
    EXPECT_EQ(0, IsRectEmpty(rcNoWidth));
    EXPECT_EQ(0, IsRectEmpty(rcNoHeight));
    EXPECT_EQ(1, IsRectEmpty(rcNothing));
    EXPECT_EQ(0, IsRectEmpty(rcTurned));
    EXPECT_TRUE(::IsRectEmpty(&rcNoWidth)) << "the platform's";
}

TEST(RectUtil, UnionTakesEmptyOnesToo) {
    RECT rc{};
    RectUnion(rc, RECT{5, 6, 7, 8}, RECT{1, 7, 6, 20});
    ExpectRect({1, 6, 7, 20}, rc);
    RectUnion(rc, rc, RECT{0, 0, 0, 0});
    ExpectRect({0, 0, 7, 20}, rc);
    RectUnion(rc, RECT{-3, 1, 2, 2}, rc);
    ExpectRect({-3, 0, 7, 20}, rc);
}

TEST(RectUtil, PointsOnTheLeftAndTopEdgeAreInside) {
    RECT rc{10, 20, 30, 40};
    EXPECT_EQ(1, RectHasPoint(rc, POINT{10, 20}));
    EXPECT_EQ(1, RectHasPoint(rc, POINT{29, 39}));
    EXPECT_EQ(0, RectHasPoint(rc, POINT{30, 39}));
    EXPECT_EQ(0, RectHasPoint(rc, POINT{29, 40}));
    EXPECT_EQ(0, RectHasPoint(rc, POINT{30, 40}));
    EXPECT_EQ(0, RectHasPoint(rc, POINT{9, 20}));
    EXPECT_EQ(0, RectHasPoint(rc, POINT{10, 19}));
}

TEST(RectUtil, InnerRectanglesMayTouchOnlyLeftAndTop) {
    RECT rc{10, 20, 30, 40};
    EXPECT_EQ(0, RectHasRect(rc, rc));
    EXPECT_EQ(1, RectHasRect(rc, RECT{10, 20, 29, 39}));
    EXPECT_EQ(0, RectHasRect(rc, RECT{10, 20, 30, 39}));
    EXPECT_EQ(0, RectHasRect(rc, RECT{10, 20, 29, 40}));
    EXPECT_EQ(0, RectHasRect(rc, RECT{9, 20, 29, 39}));
    EXPECT_EQ(0, RectHasRect(rc, RECT{10, 19, 29, 39}));
}

TEST(RectUtil, TwistsAndFlips) {
    RECT rc{1, 2, 3, 4};
    TwistRect(&rc);
    ExpectRect({3, 4, 1, 2}, rc);
    rc = {1, 2, 3, 4};
    FlipRect(&rc);
    ExpectRect({2, 1, 4, 3}, rc);
    SIZE size{5, 6};
    FlipSize(&size);
    EXPECT_EQ(6, size.cx);
    EXPECT_EQ(5, size.cy);
}

TEST(RectUtil, ConvertsBothCornersToTheScreen) {
    PlainWnd wnd;
    ::SetWindowPos(wnd, nullptr, 33, 44, 0, 0, SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
    RECT rc{1, 2, 30, 40};
    EXPECT_EQ(1, ClientToScreen(wnd, &rc));
    ExpectRect({34, 46, 63, 84}, rc);
}

TEST(RectUtil, ConvertsNothingForADeadWindow) {
    RECT rc{1, 2, 30, 40};
    EXPECT_EQ(0, ClientToScreen(DeadWindow(), &rc));
    ExpectRect({1, 2, 30, 40}, rc);
}
} // namespace
