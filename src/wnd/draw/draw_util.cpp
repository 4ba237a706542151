#include "wnd/draw/draw_util.h"
#include "runtime/base/ownership.h"
#include "wnd/draw/csdc.h"

#include <algorithm>

namespace {
constexpr int kMaxChannel = 255;
constexpr int kMaxLuminosity = 240; // of the platform's scale

/// A channel of a fade: all of it where t is 0, nothing where t is the whole length.
BYTE FadeChannel(BYTE nChannel, long t, long nLength) {
    // In 64 bits: t * t * nChannel is too much for 32 from a height of about 2,900 on.
    long long qwLost = static_cast<long long>(t) * t * nChannel;
    return static_cast<BYTE>(nChannel - qwLost / (static_cast<long long>(nLength) * nLength));
}

int GetMaxChannel(unsigned long color) {
    return std::max({GetRValue(color), GetGValue(color), GetBValue(color)});
}

int GetMinChannel(unsigned long color) {
    return std::min({GetRValue(color), GetGValue(color), GetBValue(color)});
}
} // namespace

void PaintRect(HDC hdc, const RECT* prc, unsigned long color) {
    if (!hdc || !prc) return;
    OwnedBrush brush(::CreateSolidBrush(color));
    ::FillRect(hdc, prc, brush.Get());
}

void PaintRect(HDC hdc, int x, int y, int width, int height, unsigned long color) {
    RECT rc{x, y, x + width, y + height};
    PaintRect(hdc, &rc, color);
}

void DrawRect(HDC hdc, int x, int y, int width, int height, unsigned long color, int penStyle) {
    if (!hdc) return;
    OwnedPen pen(::CreatePen(penStyle, 0, color));
    HGDIOBJ hBefore = ::SelectObject(hdc, pen.Get());
    ScopeExit restore([&] { ::SelectObject(hdc, hBefore); }); // before the pen is deleted
    int nRight = x + width - 1, nBottom = y + height - 1;
    ::MoveToEx(hdc, x, y, nullptr);
    ::LineTo(hdc, nRight, y);
    ::LineTo(hdc, nRight, nBottom);
    ::LineTo(hdc, x, nBottom);
    ::LineTo(hdc, x, y);
}

void PaintShadedRect(HDC hdc, const RECT& rc, unsigned long color, int fromTop, int steps) {
    if (steps <= 0) return;
    // The bottom counts as the height: rectangles are meant to start at the origin.
    long nBand = std::max(rc.bottom / steps, 1L);
    long nDone = 0;
    for (long y = rc.bottom; y > nBand;) {
        y -= nBand;
        nDone += nBand;
        long t = fromTop ? nDone : y - rc.top;
        RECT rcBand{0, y, rc.right, y + nBand};
        PaintRect(hdc, &rcBand,
                  PALETTERGB(FadeChannel(GetRValue(color), t, rc.bottom),
                             FadeChannel(GetGValue(color), t, rc.bottom),
                             FadeChannel(GetBValue(color), t, rc.bottom)));
    }
}

// Pens

HPEN CreateSolidPen(unsigned long color) { return ::CreatePen(PS_SOLID, 0, color); }

HPEN CreateDashedPen(unsigned long color) { return ::CreatePen(PS_DOT, 0, color); }

HPEN CreateDottedPen(unsigned long color) {
    LOGBRUSH brush{BS_SOLID, color, 0};
    return ::ExtCreatePen(PS_COSMETIC | PS_ALTERNATE, 1, &brush, 0, nullptr);
}

// Colours

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
