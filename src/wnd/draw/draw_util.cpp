#include "wnd/draw/draw_util.h"
#include "runtime/base/ownership.h"
#include "wnd/draw/csdc.h"

#include <algorithm>
#include <cwchar>

namespace {
/// A channel of a fade: all of it where t is 0, nothing where t is the whole length.
BYTE FadeChannel(BYTE nChannel, long t, long nLength) {
    // In 64 bits: t * t * nChannel is too much for 32 from a height of about 2,900 on.
    long long qwLost = static_cast<long long>(t) * t * nChannel;
    return static_cast<BYTE>(nChannel - qwLost / (static_cast<long long>(nLength) * nLength));
}

/// A distance from pixels to the logical units of hdc. An origin that was moved does not count.
SIZE ToLogicalSize(HDC hdc, int cx, int cy) {
    POINT points[2] = {{0, 0}, {cx, cy}};
    ::DPtoLP(hdc, points, 2);
    return {points[1].x - points[0].x, points[1].y - points[0].y};
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

void DrawBitmap(HDC hdc, HBITMAP hbm, int x, int y, int srcX, int srcY, int width, int height) {
    if (!hdc || !hbm) return;
    CompatibleDC dcBitmap(hdc);
    if (!::SelectObject(dcBitmap, hbm)) return; // it is selected elsewhere
    ::SetMapMode(dcBitmap, ::GetMapMode(hdc));
    if (width == 0) {
        SIZE sizeWhole = GetBitmapSize(hbm);
        width = sizeWhole.cx;
        height = sizeWhole.cy;
    }
    SIZE size = ToLogicalSize(hdc, width, height);
    POINT ptSource{srcX, srcY};
    ::DPtoLP(dcBitmap, &ptSource, 1);
    ::BitBlt(hdc, x, y, size.cx, size.cy, dcBitmap, ptSource.x, ptSource.y, SRCCOPY);
}

HPEN CreateSolidPen(unsigned long color) { return ::CreatePen(PS_SOLID, 0, color); }

// QUIRK: the platform's style 2 is the dotted one; this is what is called dashed here.
// Test: Pens.DashedIsThePlatformsStyle2
HPEN CreateDashedPen(unsigned long color) { return ::CreatePen(PS_DOT, 0, color); }

HPEN CreateDottedPen(unsigned long color) {
    LOGBRUSH brush{BS_SOLID, color, 0};
    return ::ExtCreatePen(PS_COSMETIC | PS_ALTERNATE, 1, &brush, 0, nullptr);
}

namespace {
/// Makes a bitmap like hdc's and has fnDraw draw into it. 0 from fnDraw: there is no bitmap.
template <class Fn>
HBITMAP DrawNewBitmap(HDC hdc, int width, int height, Fn fnDraw) {
    if (width < 1 || height < 1) return nullptr; // the platform would give its shared 1 by 1 one
    OwnedBitmap bitmap(::CreateCompatibleBitmap(hdc, width, height));
    if (!bitmap) return nullptr;
    int bDrawn;
    {
        CompatibleDC dc(hdc);
        bDrawn = ::SelectObject(dc, bitmap.Get()) && fnDraw(static_cast<HDC>(dc));
    } // and is no longer selected
    return bDrawn ? bitmap.Release() : nullptr;
}
} // namespace

SIZE GetBitmapSize(HBITMAP hbm) {
    BITMAP bitmap{};
    if (!::GetObjectW(hbm, sizeof(bitmap), &bitmap)) return {0, 0};
    return {bitmap.bmWidth, bitmap.bmHeight};
}

HBITMAP CopyBitmap(HBITMAP hbm) {
    CSDC dcDisplay;
    CompatibleDC dcSource(dcDisplay);
    if (!hbm || !::SelectObject(dcSource, hbm)) return nullptr;
    SIZE size = GetBitmapSize(hbm);
    return DrawNewBitmap(dcDisplay, size.cx, size.cy, [&](HDC hdc) {
        return ::BitBlt(hdc, 0, 0, size.cx, size.cy, dcSource, 0, 0, SRCCOPY);
    });
}

HBITMAP MakeBitmap(HDC hdc, int x, int y, int width, int height) {
    return DrawNewBitmap(hdc, width, height, [&](HDC hdcNew) {
        return ::BitBlt(hdcNew, 0, 0, width, height, hdc, x, y, SRCCOPY);
    });
}

HBITMAP MakeScreenBitmap(int x, int y, int width, int height) {
    CSDC dcDisplay;
    return MakeBitmap(dcDisplay, x, y, width, height);
}

HBITMAP MakeScreenBitmap(const RECT& rc) {
    return MakeScreenBitmap(rc.left, rc.top, rc.right - rc.left, rc.bottom - rc.top);
}

HBITMAP MakeTextBitmap(int width, int height, LPCWSTR pszText, HFONT hfont, unsigned long textColor,
                       unsigned long bkgColor) {
    CSDC dcDisplay;
    return DrawNewBitmap(dcDisplay, width, height, [&](HDC hdc) {
        PaintRect(hdc, 0, 0, width, height, bkgColor);
        if (!pszText) return 1;
        if (hfont) ::SelectObject(hdc, hfont);
        ::SetTextColor(hdc, textColor);
        ::SetBkMode(hdc, TRANSPARENT);
        ::TextOutW(hdc, 0, 0, pszText, static_cast<int>(std::wcslen(pszText)));
        return 1;
    });
}

HBITMAP MakeShadedBitmap(int width, int height, unsigned long color, int fromTop, int steps) {
    CSDC dcDisplay;
    return DrawNewBitmap(dcDisplay, width, height, [&](HDC hdc) {
        PaintShadedRect(hdc, RECT{0, 0, width, height}, color, fromTop, steps);
        return 1;
    });
}

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
