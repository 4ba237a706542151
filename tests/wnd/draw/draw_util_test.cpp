#include "support/gui_objects.h"
#include "support/memory_picture.h"
#include "wnd/draw/draw_util.h"

#include <gtest/gtest.h>
#include <string>
#include <utility>
#include <vector>

namespace {
const COLORREF kA = MemoryPicture::ColorOf('A');

/// What was asked of a context, in order.
struct Recorded {
    std::vector<LOGBRUSH32> brushes;
    std::vector<LOGPEN> pens;
    std::vector<std::pair<char, POINT>> strokes; // 'm'oved to, drew a 'l'ine to
};
template <class Fn>
Recorded Record(Fn fnDraw) {
    HDC hdc = ::CreateEnhMetaFileW(nullptr, nullptr, nullptr, nullptr);
    fnDraw(hdc);
    HENHMETAFILE hemf = ::CloseEnhMetaFile(hdc);
    Recorded recorded;
    auto fnEach = [](HDC, HANDLETABLE*, const ENHMETARECORD* p, int, LPARAM lParam) -> int {
        auto& r = *reinterpret_cast<Recorded*>(lParam);
        switch (p->iType) {
        case EMR_CREATEBRUSHINDIRECT:
            r.brushes.push_back(reinterpret_cast<const EMRCREATEBRUSHINDIRECT*>(p)->lb);
            break;
        case EMR_CREATEPEN: r.pens.push_back(reinterpret_cast<const EMRCREATEPEN*>(p)->lopn); break;
        case EMR_MOVETOEX:
        case EMR_LINETO:
            const POINTL& pt = reinterpret_cast<const EMRLINETO*>(p)->ptl;
            r.strokes.push_back({p->iType == EMR_LINETO ? 'l' : 'm', {pt.x, pt.y}});
            break;
        }
        return 1;
    };
    ::EnumEnhMetaFile(nullptr, hemf, fnEach, &recorded, nullptr);
    ::DeleteEnhMetaFile(hemf);
    return recorded;
}

TEST(PaintRect, FillsWithoutTheRightAndBottomEdge) {
    MemoryPicture picture(5, 4);
    RECT rc{1, 1, 4, 3};
    PaintRect(picture, &rc, kA);
    EXPECT_EQ("...../.AAA./.AAA./.....", picture.Read());
    PaintRect(picture, 0, 0, 1, 4, MemoryPicture::ColorOf('B'));
    EXPECT_EQ("B..../BAAA./BAAA./B....", picture.Read());
}

TEST(PaintRect, WithoutSizeContextOrRectangleDoesNothing) {
    MemoryPicture picture(3, 1);
    PaintRect(picture, 1, 0, 0, 1, kA);
    PaintRect(picture, nullptr, kA);
    RECT rc{0, 0, 1, 1};
    PaintRect(nullptr, &rc, kA);
    EXPECT_EQ("...", picture.Read());
}

struct FrameCase {
    const char* pszName;
    int x, y, cx, cy;
    const char* pszExpected;
};
class DrawnFrame : public testing::TestWithParam<FrameCase> {};
TEST_P(DrawnFrame, EndsAtItsFarCorner) {
    const FrameCase& row = GetParam();
    MemoryPicture picture(5, 4);
    DrawRect(picture, row.x, row.y, row.cx, row.cy, kA, PS_SOLID);
    EXPECT_EQ(row.pszExpected, picture.Read());
}
INSTANTIATE_TEST_SUITE_P(
    Cases, DrawnFrame,
    testing::Values(FrameCase{"OnePixel", 1, 1, 1, 1, "...../...../...../....."},
                    FrameCase{"Frame", 1, 0, 4, 4, ".AAAA/.A..A/.A..A/.AAAA"},
                    FrameCase{"TwoByTwo", 1, 1, 2, 2, "...../.AA../.AA../....."},
                    FrameCase{"OneRow", 1, 1, 3, 1, "...../.AAA./...../....."},
                    FrameCase{"OneColumn", 1, 1, 1, 3, "...../.A.../.A.../.A..."}),
    [](const auto& row) { return std::string(row.param.pszName); });

TEST(DrawRect, TakesThePensStyle) {
    MemoryPicture picture(4, 3);
    DrawRect(picture, 0, 0, 4, 3, kA, PS_NULL);
    EXPECT_EQ("..../..../....", picture.Read());
}

TEST(DrawRect, GoesClockwiseFromTheTopLeftWithAPenOfWidth0) {
    Recorded recorded =
        Record([](HDC hdc) { DrawRect(hdc, 3, 4, 10, 20, RGB(1, 2, 3), PS_DASHDOT); });
    ASSERT_EQ(1u, recorded.pens.size());
    EXPECT_EQ(static_cast<UINT>(PS_DASHDOT), recorded.pens[0].lopnStyle);
    EXPECT_EQ(0, recorded.pens[0].lopnWidth.x);
    EXPECT_EQ(RGB(1, 2, 3), recorded.pens[0].lopnColor);
    std::string str;
    for (auto [chKind, pt] : recorded.strokes)
        str += chKind + std::to_string(pt.x) + "," + std::to_string(pt.y) + " ";
    EXPECT_EQ("m3,4 l12,4 l12,23 l3,23 l3,4 ", str);
}

TEST(DrawRect, LeavesThePenThatWasSelected) {
    MemoryPicture picture(4, 3);
    HGDIOBJ hpen = ::GetCurrentObject(picture, OBJ_PEN);
    DrawRect(picture, 0, 0, 4, 3, kA, PS_SOLID);
    EXPECT_EQ(hpen, ::GetCurrentObject(picture, OBJ_PEN));
    DrawRect(nullptr, 0, 0, 4, 3, kA, PS_SOLID);
}

/// The shade of a channel at t, from the definition.
int Shade(int nChannel, long long t, long long nLength) {
    return static_cast<BYTE>(nChannel - t * t * nChannel / (nLength * nLength));
}

TEST(PaintShadedRect, FadesFromTheBottomToBlackAtTheTop) {
    MemoryPicture picture(3, 20);
    PaintShadedRect(picture, RECT{0, 0, 2, 20}, RGB(200, 100, 7), 1, 5);
    for (int y = 4; y < 20; ++y) {
        int t = 20 - y / 4 * 4; // from the band's top edge to the bottom
        COLORREF cr = RGB(Shade(200, t, 20), Shade(100, t, 20), Shade(7, t, 20));
        EXPECT_EQ(cr, picture.Get(0, y)) << y;
        EXPECT_EQ(cr, picture.Get(1, y)) << y;
    }
}

TEST(PaintShadedRect, FadesFromTheTopToBlackAtTheBottom) {
    MemoryPicture picture(3, 20);
    PaintShadedRect(picture, RECT{0, 0, 2, 20}, RGB(200, 100, 7), 0, 5);
    for (int y = 4; y < 20; ++y) {
        int t = y / 4 * 4;
        EXPECT_EQ(RGB(Shade(200, t, 20), Shade(100, t, 20), Shade(7, t, 20)), picture.Get(0, y))
            << y;
    }
}

TEST(PaintShadedRect, DoesNotPaintWhatIsLeftAboveTheLastWholeBand) {
    MemoryPicture picture(3, 10);
    PaintShadedRect(picture, RECT{0, 0, 2, 10}, RGB(200, 100, 7), 1, 3);
    for (int y = 0; y < 10; ++y) { // bands of 3 from 10 down: 7, 4, 1
        EXPECT_EQ(y < 1, picture.Get(0, y) == RGB(255, 255, 255)) << y;
        EXPECT_EQ(RGB(255, 255, 255), picture.Get(2, y)) << y << ": right edge";
    }
    MemoryPicture other(3, 9);
    PaintShadedRect(other, RECT{0, 0, 2, 9}, RGB(200, 100, 7), 1, 3);
    for (int y = 0; y < 9; ++y) // no band begins at or below the height of one
        EXPECT_EQ(y < 3, other.Get(0, y) == RGB(255, 255, 255)) << y;
}

TEST(PaintShadedRect, BandsAreAtLeastOnePixelHigh) {
    MemoryPicture picture(1, 4);
    PaintShadedRect(picture, RECT{0, 0, 1, 4}, RGB(160, 160, 160), 1, 100);
    EXPECT_EQ(RGB(255, 255, 255), picture.Get(0, 0));
    for (int y = 1; y < 4; ++y) {
        int n = Shade(160, 4 - y, 4);
        EXPECT_EQ(RGB(n, n, n), picture.Get(0, y)) << y;
    }
}

TEST(PaintShadedRect, TakesPaletteColours) {
    Recorded recorded = Record([](HDC hdc) {
        PaintShadedRect(hdc, RECT{0, 0, 1, 4}, RGB(160, 80, 40), 1, 2);
    });
    ASSERT_EQ(1u, recorded.brushes.size());
    EXPECT_EQ(0x02000000u | RGB(Shade(160, 2, 4), Shade(80, 2, 4), Shade(40, 2, 4)),
              recorded.brushes[0].lbColor);
}

TEST(PaintShadedRect, StartsAtTheLeftEdge0) {
    MemoryPicture picture(4, 4);
    PaintShadedRect(picture, RECT{2, 0, 3, 4}, RGB(160, 160, 160), 1, 4);
    EXPECT_NE(RGB(255, 255, 255), picture.Get(0, 2));
    EXPECT_EQ(picture.Get(0, 2), picture.Get(2, 2));
    EXPECT_EQ(RGB(255, 255, 255), picture.Get(3, 2));
}

TEST(PaintShadedRect, TopOnlyCountsForTheShade) {
    MemoryPicture plain(1, 12), low(1, 12), picture(1, 12);
    PaintShadedRect(plain, RECT{0, 0, 1, 12}, RGB(160, 160, 160), 1, 4);
    PaintShadedRect(low, RECT{0, 6, 1, 12}, RGB(160, 160, 160), 1, 4);
    PaintShadedRect(picture, RECT{0, 6, 1, 12}, RGB(160, 160, 160), 0, 4);
    for (int y = 0; y < 12; ++y) {
        EXPECT_EQ(plain.Get(0, y), low.Get(0, y)) << y;
        if (y < 3) continue;
        int n = Shade(160, y / 3 * 3 - 6, 12);
        EXPECT_EQ(RGB(n, n, n), picture.Get(0, y)) << y;
    }
}

TEST(PaintShadedRect, CountsHighRectanglesIn64Bits) {
    constexpr int kHeight = 6000;
    MemoryPicture picture(1, kHeight);
    PaintShadedRect(picture, RECT{0, 0, 1, kHeight}, RGB(250, 0, 0), 1, kHeight);
    for (int y = 1; y < kHeight; y += 97) {
        EXPECT_EQ(RGB(Shade(250, kHeight - y, kHeight), 0, 0), picture.Get(0, y)) << y;
    }
}

TEST(PaintShadedRect, WithoutStepsOrHeightPaintsNothing) {
    MemoryPicture picture(2, 2);
    PaintShadedRect(picture, RECT{0, 0, 2, 2}, kA, 1, 0);
    PaintShadedRect(picture, RECT{0, 0, 2, 2}, kA, 1, -1);
    PaintShadedRect(picture, RECT{0, 0, 2, 0}, kA, 1, 3);
    PaintShadedRect(picture, RECT{0, -9, 2, -3}, kA, 1, 3);
    PaintShadedRect(picture, RECT{0, 0, 2, 1}, kA, 1, 1);
    EXPECT_EQ("../..", picture.Read());
}

LOGPEN PenOf(HPEN hpen) {
    LOGPEN pen{};
    EXPECT_NE(0, ::GetObjectW(hpen, sizeof(pen), &pen));
    ::DeleteObject(hpen);
    return pen;
}

TEST(Pens, SolidIsThePlatformsStyle0OfWidth0) {
    LOGPEN pen = PenOf(CreateSolidPen(kA));
    EXPECT_EQ(0u, pen.lopnStyle);
    EXPECT_EQ(0, pen.lopnWidth.x);
    EXPECT_EQ(kA, pen.lopnColor);
}

TEST(Pens, DashedIsThePlatformsStyle2) {
    LOGPEN pen = PenOf(CreateDashedPen(kA));
    EXPECT_EQ(2u, pen.lopnStyle);
    EXPECT_EQ(0, pen.lopnWidth.x);
    EXPECT_EQ(kA, pen.lopnColor);
}

TEST(Pens, DottedIsEveryOtherPixelOfASolidBrush) {
    HPEN hpen = CreateDottedPen(kA);
    EXTLOGPEN pen{};
    ASSERT_NE(0, ::GetObjectW(hpen, sizeof(pen), &pen));
    EXPECT_EQ(8u, pen.elpPenStyle);
    EXPECT_EQ(1u, pen.elpWidth);
    EXPECT_EQ(static_cast<UINT>(BS_SOLID), pen.elpBrushStyle);
    EXPECT_EQ(kA, pen.elpColor);
    MemoryPicture picture(8, 1);
    HGDIOBJ hBefore = ::SelectObject(picture, hpen);
    ::MoveToEx(picture, 0, 0, nullptr);
    ::LineTo(picture, 8, 0);
    ::SelectObject(picture, hBefore);
    ::DeleteObject(hpen);
    std::string strSeen = picture.Read();
    EXPECT_TRUE(strSeen == "A.A.A.A." || strSeen == ".A.A.A.A") << strSeen;
}

TEST(Painting, LeavesNoDrawingObjectsBehind) {
    MemoryPicture picture(4, 4);
    int nBefore = -1;
    for (int i = 0; i < 60; ++i) {
        PaintRect(picture, 0, 0, 2, 2, kA);
        DrawRect(picture, 0, 0, 2, 2, kA, PS_SOLID);
        PaintShadedRect(picture, RECT{0, 0, 4, 4}, kA, 1, 4);
        if (i == 9) nBefore = CountGdiObjects();
    }
    EXPECT_EQ(nBefore, CountGdiObjects());
}

struct ColorCase {
    const char* pszName;
    unsigned long color;
    int nLuminosity;
    unsigned long bright;
};
class Colors : public testing::TestWithParam<ColorCase> {};
TEST_P(Colors, HaveLuminosityAndABrightForm) {
    const ColorCase& row = GetParam();
    EXPECT_EQ(row.nLuminosity, GetLuminosity(row.color));
    EXPECT_EQ(row.nLuminosity, COLORRGB(row.color).GetLuminosity());
    EXPECT_EQ(row.bright, MakeColorBright(row.color));
}
INSTANTIATE_TEST_SUITE_P(
    Cases, Colors,
    testing::Values(ColorCase{"White", RGB(255, 255, 255), 240, RGB(255, 255, 255)},
                    ColorCase{"Black", RGB(0, 0, 0), 0, RGB(0, 0, 0)},
                    ColorCase{"PureRed", RGB(255, 0, 0), 120, RGB(255, 0, 0)},
                    ColorCase{"Brown", RGB(100, 50, 0), 47, RGB(255, 127, 0)},
                    ColorCase{"DarkestBlue", RGB(0, 0, 1), 0, RGB(0, 0, 255)},
                    // (3 * 240 + 255) / 510 is 1.9
                    ColorCase{"SumOfThree", RGB(1, 2, 1), 1, RGB(127, 255, 127)},
                    ColorCase{"SumOfTwo", RGB(1, 1, 1), 1, RGB(255, 255, 255)},
                    ColorCase{"Middle", RGB(128, 128, 128), 120, RGB(255, 255, 255)},
                    ColorCase{"ByteOnTopDoesNotCount", 0x02000000 | RGB(4, 254, 10), 121,
                              RGB(4, 255, 10)}),
    [](const auto& row) { return std::string(row.param.pszName); });

TEST(COLORRGB, IsTheColourAndItsBytes) {
    COLORRGB rgb(0x01020304);
    EXPECT_EQ(4, rgb.bytes.red);
    EXPECT_EQ(3, rgb.bytes.green);
    EXPECT_EQ(2, rgb.bytes.blue);
    rgb.bytes.red = 9;
    EXPECT_EQ(0x01020309u, rgb.color);
    EXPECT_EQ(0u, COLORRGB().color);
}

TEST(COLORRGB, MakeBrightWrapsAt256) {
    COLORRGB rgb(RGB(200, 128, 127));
    rgb.MakeBright();
    EXPECT_EQ(RGB(144, 0, 254), rgb.color);
}

TEST(COLORRGB, MakeDarkHalvesRoundingDown) {
    COLORRGB rgb(0x02000000 | RGB(255, 1, 128));
    rgb.MakeDark();
    EXPECT_EQ(0x02000000u | RGB(127, 0, 64), rgb.color);
}

TEST(COLORRGB, PaintsARectangle) {
    MemoryPicture picture(4, 3);
    COLORRGB(MemoryPicture::ColorOf('A')).PaintRect(picture, 1, 1, 2, 1);
    EXPECT_EQ("..../.AA./....", picture.Read());
}
} // namespace
