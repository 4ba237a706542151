#include "wnd/draw/bitmaps.h"
#include "runtime/base/dll_buf.h"
#include "wnd/draw/csdc.h"
#include "wnd/draw/draw_util.h"

#include <algorithm>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <cwchar>

namespace {
constexpr WORD kBitCount = 32;

void FreePixels(GDI_BGR* p) { FreeDllBuf(p); }
using OwnedPixels = OwnedHandleOf<GDI_BGR*, &FreePixels>;
using OwnedContext = OwnedHandleOf<HDC, &::DeleteDC>;

/// A distance from pixels to the logical units of hdc. An origin that was moved does not count.
SIZE ToLogicalSize(HDC hdc, int cx, int cy) {
    POINT points[2] = {{0, 0}, {cx, cy}};
    ::DPtoLP(hdc, points, 2);
    return {points[1].x - points[0].x, points[1].y - points[0].y};
}

/// Makes a bitmap like hdc's and has fnDraw draw into it. Null if fnDraw gives false.
template <class Fn>
HBITMAP DrawNewBitmap(HDC hdc, int width, int height, Fn fnDraw) {
    if (width < 1 || height < 1) return nullptr; // the platform would give its shared 1 by 1 one
    OwnedBitmap bitmap(::CreateCompatibleBitmap(hdc, width, height));
    if (!bitmap) return nullptr;
    bool bDrawn = false;
    {
        CompatibleDC dc(hdc);
        bDrawn = ::SelectObject(dc, bitmap.Get()) && fnDraw(static_cast<HDC>(dc));
    } // and is no longer selected
    return bDrawn ? bitmap.Release() : nullptr;
}

/// What both turns have in common. fnTurn(pIn, cxIn, cyIn, pOut) puts the pixels where they go, but
/// upside down: the array's first row becomes the bitmap's last.
template <class Fn>
bool TurnMemoryDC(HDC hdcTarget, const RECT* prc, HDC hdcSource, bool bQuarter, Fn fnTurn) {
    if (!prc) return false;
    int cx = std::abs(static_cast<int>(prc->right - prc->left));
    int cy = std::abs(static_cast<int>(prc->bottom - prc->top));
    int cxSource = bQuarter ? cy : cx, cySource = bQuarter ? cx : cy;
    OwnedBitmap bitmap(::CreateCompatibleBitmap(hdcTarget, cx, cy));
    if (!bitmap) return false;
    OwnedContext dc(::CreateCompatibleDC(hdcTarget)); // goes before the bitmap that is in it
    HGDIOBJ hbmBefore = ::SelectObject(dc.Get(), bitmap.Get());
    OwnedPixels source(GetDibBits(hdcSource, cxSource, cySource));
    OwnedPixels turned(GetDibBits(dc.Get(), cx, cy));
    if (!source || !turned) {
        // QUIRK: context and bitmap are left behind.
        // Test: RotateMemoryDC.LeavesWhatItMadeBehindWhenTheReadFails
        static_cast<void>(dc.Release());
        static_cast<void>(bitmap.Release());
        return false;
    }
    fnTurn(source.Get(), cxSource, cySource, turned.Get());
    // No bitmap may be written that is selected.
    BITMAPINFO info;
    FillBitmapInfo(&info, sizeof(info), cx, cy, kBitCount);
    ::SelectObject(dc.Get(), hbmBefore);
    ::SetDIBits(dc.Get(), bitmap.Get(), 0, static_cast<UINT>(cy), turned.Get(), &info,
                DIB_RGB_COLORS);
    ::SelectObject(dc.Get(), bitmap.Get());
    ::BitBlt(hdcTarget, prc->left, prc->top, cx, cy, dc.Get(), 0, 0, SRCCOPY);
    return true;
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
        return ::BitBlt(hdc, 0, 0, size.cx, size.cy, dcSource, 0, 0, SRCCOPY) != FALSE;
    });
}

HBITMAP MakeBitmap(HDC hdc, int x, int y, int width, int height) {
    return DrawNewBitmap(hdc, width, height, [&](HDC hdcNew) {
        return ::BitBlt(hdcNew, 0, 0, width, height, hdc, x, y, SRCCOPY) != FALSE;
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
        if (!pszText) return true;
        if (hfont) ::SelectObject(hdc, hfont);
        ::SetTextColor(hdc, textColor);
        ::SetBkMode(hdc, TRANSPARENT);
        ::TextOutW(hdc, 0, 0, pszText, static_cast<int>(std::wcslen(pszText)));
        return true;
    });
}

HBITMAP MakeShadedBitmap(int width, int height, unsigned long color, int fromTop, int steps) {
    CSDC dcDisplay;
    return DrawNewBitmap(dcDisplay, width, height, [&](HDC hdc) {
        PaintShadedRect(hdc, RECT{0, 0, width, height}, color, fromTop, steps);
        return true;
    });
}

// Drawing

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

// Pixels

GDI_BGR* GetDibBits(HDC hdc, int width, int height) {
    if (!hdc || width <= 0 || height <= 0) return nullptr;
    if (static_cast<long long>(width) * height > INT_MAX / static_cast<int>(sizeof(GDI_BGR)))
        return nullptr; // more than a bitmap's size can tell
    auto* hbm = static_cast<HBITMAP>(::GetCurrentObject(hdc, OBJ_BITMAP));
    if (!hbm) return nullptr;
    std::size_t nPixels = static_cast<std::size_t>(width) * static_cast<std::size_t>(height);
    OwnedPixels pixels(static_cast<GDI_BGR*>(std::calloc(nPixels, sizeof(GDI_BGR))));
    if (!pixels) return nullptr;
    BITMAPINFO info;
    FillBitmapInfo(&info, sizeof(info), width, -height, kBitCount);
    int nRows =
        ::GetDIBits(hdc, hbm, 0, static_cast<UINT>(height), pixels.Get(), &info, DIB_RGB_COLORS);
    return nRows ? pixels.Release() : nullptr;
}

int RotateMemoryDC(HDC hdcTarget, const RECT* prc, HDC hdcSource, int clockwise) {
    auto fnTurn = [clockwise](const GDI_BGR* pIn, std::ptrdiff_t cx, std::ptrdiff_t cy,
                              GDI_BGR* pOut) {
        int nStep = clockwise ? 1 : -1;
        GDI_BGR* p = clockwise ? pOut : pOut + cx * cy - 1;
        for (std::ptrdiff_t x = 0; x < cx; ++x) {
            for (std::ptrdiff_t y = 0; y < cy; ++y, p += nStep) *p = pIn[y * cx + x];
        }
    };
    return TurnMemoryDC(hdcTarget, prc, hdcSource, true, fnTurn);
}

int TwistMemoryDC(HDC hdcTarget, const RECT* prc, HDC hdcSource) {
    auto fnTurn = [](const GDI_BGR* pIn, std::ptrdiff_t cx, std::ptrdiff_t cy, GDI_BGR* pOut) {
        for (std::ptrdiff_t y = 0; y < cy; ++y) {
            std::reverse_copy(pIn + y * cx, pIn + (y + 1) * cx, pOut + y * cx);
        }
    };
    return TurnMemoryDC(hdcTarget, prc, hdcSource, false, fnTurn);
}

// Bitmaps of 32 bits a pixel

HRESULT MakeBitmap32(HDC hdc, const SIZE* psize, void** ppBits, HBITMAP* phResult) {
    *phResult = nullptr;
    void* pUnused = nullptr;
    HDC hdcScreen = hdc ? nullptr : ::GetDC(nullptr);
    HDC hdcUsed = hdc ? hdc : hdcScreen;
    if (!hdcUsed) return E_OUTOFMEMORY;
    BITMAPINFO info;
    FillBitmapInfo(&info, sizeof(info), psize->cx, psize->cy, kBitCount);
    *phResult =
        ::CreateDIBSection(hdcUsed, &info, DIB_RGB_COLORS, ppBits ? ppBits : &pUnused, nullptr, 0);
    if (hdcScreen) ::ReleaseDC(nullptr, hdcScreen);
    return *phResult ? S_OK : E_OUTOFMEMORY;
}

void FillBitmapInfo(BITMAPINFO* pInfo, DWORD cbInfo, LONG cx, LONG cy, WORD nBitCount) {
    std::memset(pInfo, 0, cbInfo);
    if (cbInfo < sizeof(BITMAPINFOHEADER)) return;
    BITMAPINFOHEADER& header = pInfo->bmiHeader;
    header.biSize = sizeof(header);
    header.biWidth = cx;
    header.biHeight = cy;
    header.biPlanes = 1;
    header.biBitCount = nBitCount;
    header.biCompression = BI_RGB;
}
