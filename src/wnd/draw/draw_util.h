#pragma once
#include "runtime/base/export.h"
#include <windows.h>

// Painting with what is made for the call. Colours are the platform's (0x00BBGGRR); right and
// bottom edges are outside unless said otherwise. A null context or rectangle does nothing.

TESSALY_API void PaintRect(HDC hdc, const RECT* prc, unsigned long color);
TESSALY_API void PaintRect(HDC hdc, int x, int y, int width, int height, unsigned long color);

/// A frame one pixel thin, drawn clockwise from the top left with a pen of that style (PS_). Its
/// far corner is the pixel (x + width - 1, y + height - 1). One of a single pixel draws nothing,
/// because the end of a line is no part of it.
TESSALY_API void DrawRect(HDC hdc, int x, int y, int width, int height, unsigned long color,
                          int penStyle);

/// A quadratic fade to black in steps horizontal bands: from the colour at the bottom to black at
/// the top with a non-zero fromTop, the other way round without. Bands are at least one pixel high;
/// what is left above the last whole band is not painted. For rectangles that start at the origin.
/// A steps of 0 or less paints nothing.
// QUIRK: the left edge is 0, not rc.left, and rc.top only counts for how dark a band is.
// Test: PaintShadedRect.StartsAtTheLeftEdge0 and PaintShadedRect.TopOnlyCountsForTheShade
TESSALY_API void PaintShadedRect(HDC hdc, const RECT& rc, unsigned long color, int fromTop,
                                 int steps);

/// Copies a part of the bitmap to (x, y). Its origin and size are in the bitmap's pixels, whatever
/// the mapping mode of hdc. With a width of 0 the size is the bitmap's, whatever the height. A
/// bitmap that is selected somewhere is not drawn.
// QUIRK: the bitmap's side takes the mode over but not the extents of MM_ISOTROPIC and
// MM_ANISOTROPIC: with these a part of another size is stretched.
// Test: DrawBitmap.TakesNoExtentsForTheBitmapsSide
TESSALY_API void DrawBitmap(HDC hdc, HBITMAP hbm, int x, int y, int srcX, int srcY, int width,
                            int height);

// Pens one pixel thin, which the caller deletes.
[[nodiscard]] TESSALY_API HPEN CreateSolidPen(unsigned long color);
[[nodiscard]] TESSALY_API HPEN CreateDashedPen(unsigned long color);
/// Every other pixel.
[[nodiscard]] TESSALY_API HPEN CreateDottedPen(unsigned long color);

// Bitmaps that are made anew, each of which the caller owns. Null when one can't be made, as with a
// width or height below 1.

/// The size in pixels; 0 by 0 for what is no bitmap. Makes nothing.
TESSALY_API SIZE GetBitmapSize(HBITMAP hbm);

/// A copy that is compatible with the display. Null for a bitmap that is selected somewhere.
[[nodiscard]] TESSALY_API HBITMAP CopyBitmap(HBITMAP hbm);
/// A picture of a part of the context.
[[nodiscard]] TESSALY_API HBITMAP MakeBitmap(HDC hdc, int x, int y, int width, int height);
/// A picture of a part of the display, in screen coordinates.
[[nodiscard]] TESSALY_API HBITMAP MakeScreenBitmap(int x, int y, int width, int height);
[[nodiscard]] TESSALY_API HBITMAP MakeScreenBitmap(const RECT& rc);
/// The text on that background, from (0, 0) on, in that font (null: the platform's default one).
[[nodiscard]] TESSALY_API HBITMAP MakeTextBitmap(int width, int height, LPCWSTR pszText,
                                                 HFONT hfont, unsigned long textColor,
                                                 unsigned long bkgColor);
/// A fade over the whole bitmap; see PaintShadedRect in wnd/draw/draw_util.h.
[[nodiscard]] TESSALY_API HBITMAP MakeShadedBitmap(int width, int height, unsigned long color,
                                                   int fromTop, int steps);

/// How light a colour (0x00BBGGRR) is, from 0 (black) to 240 (white): the mean of its largest and
/// smallest channel on the platform's scale of lightness.
TESSALY_API int GetLuminosity(unsigned long color);
/// The brightest colour of the same hue: each channel grows in proportion, the largest to 255.
/// Black, which has no hue, stays black.
TESSALY_API unsigned long MakeColorBright(unsigned long color);

/// A colour in the platform's order, as one value and by its channels.
union TESSALY_API COLORRGB {
    constexpr COLORRGB() noexcept : color(0) {}
    constexpr explicit COLORRGB(unsigned long colorNew) noexcept : color(colorNew) {}

    /// Doubles the channels.
    // QUIRK: each wraps at 256, so that one of 128 or more gets darker.
    // Test: COLORRGB.MakeBrightWrapsAt256
    void MakeBright();
    /// Halves the channels.
    void MakeDark();
    int GetLuminosity() const;
    /// Fills the rectangle; see the function of that name in wnd/draw/draw_util.h.
    void PaintRect(HDC hdc, int x, int y, int width, int height) const;

    unsigned long color; // 0x00BBGGRR; the byte on top is what a palette colour marks itself with
    struct {
        unsigned char red, green, blue, reserved;
    } bytes;
};
static_assert(sizeof(COLORRGB) == 4);
