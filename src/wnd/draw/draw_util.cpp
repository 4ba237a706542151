#include "wnd/draw/draw_util.h"
#include "runtime/base/scope_exit.h"
#include "wnd/draw/bitmap_util.h"
#include "wnd/draw/csdc.h"
#include "wnd/draw/owned_gdi.h"

#include <algorithm>

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
