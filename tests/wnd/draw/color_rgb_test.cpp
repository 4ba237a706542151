#include "support/memory_picture.h"
#include "wnd/draw/draw_util.h"

#include <gtest/gtest.h>

namespace {
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
