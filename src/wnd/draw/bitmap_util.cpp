#include "wnd/draw/bitmap_util.h"
#include "wnd/draw/csdc.h"
#include "wnd/draw/draw_util.h"
#include "wnd/draw/owned_gdi.h"

#include <cwchar>

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
