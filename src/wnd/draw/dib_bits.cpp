#include "wnd/draw/dib_bits.h"
#include "wnd/draw/csdc.h"
#include "wnd/draw/csicon.h"

#include <algorithm>
#include <climits>
#include <cstdlib>
#include <new>
#include <utility>

namespace {
constexpr WORD kBitCount = 32;

void FreePixels(GDI_BGR* p) { std::free(p); }
using OwnedPixels = OwnedHandleOf<GDI_BGR*, &FreePixels>;

/// The picture that is turned: a context of its own with a bitmap like the target's.
struct TurnedPicture {
    TurnedPicture(HDC hdcLike, int cxNew, int cyNew)
        : cx(cxNew), cy(cyNew), bitmap(::CreateCompatibleBitmap(hdcLike, cxNew, cyNew)),
          dc(hdcLike), hbmBefore(::SelectObject(dc, bitmap.Get())) {}

    /// Puts the rows into the bitmap, the bottom one first, and copies it to the target.
    void Finish(const GDI_BGR* pPixels, HDC hdcTarget, int x, int y) {
        BITMAPINFO info;
        FillBitmapInfo(&info, sizeof(info), cx, cy, kBitCount);
        // No bitmap may be written that is selected.
        ::SelectObject(dc, hbmBefore);
        ::SetDIBits(dc, bitmap.Get(), 0, static_cast<UINT>(cy), pPixels, &info, DIB_RGB_COLORS);
        ::SelectObject(dc, bitmap.Get());
        ::BitBlt(hdcTarget, x, y, cx, cy, dc, 0, 0, SRCCOPY);
    }

    int cx, cy;
    OwnedBitmap bitmap; // goes after the context that it is selected into
    CompatibleDC dc;
    HGDIOBJ hbmBefore;
};

void DeletePicture(TurnedPicture* p) { delete p; }
using OwnedPicture = OwnedHandleOf<TurnedPicture*, &DeletePicture>;

/// What both turns have in common. fnTurn(pIn, cxIn, cyIn, pOut) puts the pixels where they go.
template <class Fn>
int TurnMemoryDC(HDC hdcTarget, const RECT* prc, HDC hdcSource, int bQuarter, Fn fnTurn) {
    if (!prc) return 0;
    int cx = std::abs(static_cast<int>(prc->right - prc->left));
    int cy = std::abs(static_cast<int>(prc->bottom - prc->top));
    int cxSource = bQuarter ? cy : cx, cySource = bQuarter ? cx : cy;
    OwnedPicture picture(new (std::nothrow) TurnedPicture(hdcTarget, cx, cy));
    if (!picture || !picture.Get()->bitmap) return 0;
    OwnedPixels source(GetDibBits(hdcSource, cxSource, cySource));
    OwnedPixels turned(GetDibBits(picture.Get()->dc, cx, cy));
    if (!source || !turned) {
        // QUIRK: context and bitmap are left behind. Test: see dib_bits.h
        static_cast<void>(picture.Release());
        return 0;
    }
    fnTurn(source.Get(), cxSource, cySource, turned.Get());
    picture.Get()->Finish(turned.Get(), hdcTarget, prc->left, prc->top);
    return 1;
}
} // namespace

GDI_BGR* GetDibBits(HDC hdc, int width, int height) {
    if (!hdc || width <= 0 || height <= 0) return nullptr;
    if (static_cast<long long>(width) * height > INT_MAX / static_cast<int>(sizeof(GDI_BGR)))
        return nullptr; // more than a bitmap's size can tell
    auto hbm = static_cast<HBITMAP>(::GetCurrentObject(hdc, OBJ_BITMAP));
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
    auto fnTurn = [clockwise](const GDI_BGR* pIn, int cx, int cy, GDI_BGR* pOut) {
        int nStep = clockwise ? 1 : -1;
        GDI_BGR* p = clockwise ? pOut : pOut + cx * cy - 1;
        for (int x = 0; x < cx; ++x) {
            for (int y = 0; y < cy; ++y, p += nStep) *p = pIn[y * cx + x];
        }
    };
    return TurnMemoryDC(hdcTarget, prc, hdcSource, 1, fnTurn);
}

int TwistMemoryDC(HDC hdcTarget, const RECT* prc, HDC hdcSource) {
    auto fnTurn = [](const GDI_BGR* pIn, int cx, int cy, GDI_BGR* pOut) {
        for (int y = 0; y < cy; ++y) {
            std::reverse_copy(pIn + y * cx, pIn + (y + 1) * cx, pOut + y * cx);
        }
    };
    return TurnMemoryDC(hdcTarget, prc, hdcSource, 0, fnTurn);
}
