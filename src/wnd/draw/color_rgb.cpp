#include "wnd/draw/color_rgb.h"
#include "wnd/draw/draw_util.h"

#include <algorithm>

namespace {
constexpr int kMaxChannel = 255;
constexpr int kMaxLuminosity = 240;

int GetMaxChannel(unsigned long color) {
    return std::max({GetRValue(color), GetGValue(color), GetBValue(color)});
}

int GetMinChannel(unsigned long color) {
    return std::min({GetRValue(color), GetGValue(color), GetBValue(color)});
}
} // namespace

int GetLuminosity(unsigned long color) {
    int nSum = GetMaxChannel(color) + GetMinChannel(color);
    return (nSum * kMaxLuminosity + kMaxChannel) / (2 * kMaxChannel); // rounds to the nearest
}

unsigned long MakeColorBright(unsigned long color) {
    int nMax = GetMaxChannel(color);
    if (nMax == 0) return 0; // black has no channel to grow
    return RGB(GetRValue(color) * kMaxChannel / nMax, GetGValue(color) * kMaxChannel / nMax,
               GetBValue(color) * kMaxChannel / nMax);
}

void COLORRGB::MakeBright() {
    bytes.red = static_cast<unsigned char>(bytes.red * 2);
    bytes.green = static_cast<unsigned char>(bytes.green * 2);
    bytes.blue = static_cast<unsigned char>(bytes.blue * 2);
}

void COLORRGB::MakeDark() {
    bytes.red /= 2;
    bytes.green /= 2;
    bytes.blue /= 2;
}

int COLORRGB::GetLuminosity() const { return ::GetLuminosity(color); }

void COLORRGB::PaintRect(HDC hdc, int x, int y, int width, int height) const {
    ::PaintRect(hdc, x, y, width, height, color);
}
