#pragma once
#include "runtime/base/export.h"
#include <windows.h>

// Painting with brushes and pens that are made for the call, pens to keep, and colours. Colours are
// the platform's (0x00BBGGRR); right and bottom edges are outside unless said otherwise. A null
// context or rectangle does nothing.

/// Fills the rectangle.
TESSALY_API void PaintRect(HDC hdc, const RECT* prc, unsigned long color);
TESSALY_API void PaintRect(HDC hdc, int x, int y, int width, int height, unsigned long color);

/// A frame one pixel thin, drawn clockwise from the top left with a pen of that style (PS_). Its
/// far corner is the pixel (x + width - 1, y + height - 1). One of a single pixel draws nothing,
/// because the end of a line is no part of it.
TESSALY_API void DrawRect(HDC hdc, int x, int y, int width, int height, unsigned long color,
                          int penStyle);

/// A quadratic fade to black in that many horizontal bands: from the colour at the bottom to black
/// at the top with a non-zero fromTop, the other way round without. Bands are at least one pixel
/// high; what is left above the last whole band is not painted. For rectangles that start at the
/// origin. With 0 or fewer steps it paints nothing.
// QUIRK: the left edge is 0, not rc.left, and rc.top only counts for how dark a band is.
// Test: PaintShadedRect.StartsAtTheLeftEdge0 and PaintShadedRect.TopOnlyCountsForTheShade
TESSALY_API void PaintShadedRect(HDC hdc, const RECT& rc, unsigned long color, int fromTop,
                                 int steps);

// Pens one pixel thin, which the caller deletes; null if there is none to be had.

/// A pen of the platform's style PS_SOLID.
[[nodiscard]] TESSALY_API HPEN CreateSolidPen(unsigned long color);
/// A pen with gaps.
// QUIRK: of the platform's style PS_DOT, not PS_DASH. Test: Pens.DashedIsThePlatformsStyle2
[[nodiscard]] TESSALY_API HPEN CreateDashedPen(unsigned long color);
/// A pen of every other pixel.
[[nodiscard]] TESSALY_API HPEN CreateDottedPen(unsigned long color);

/// How light a colour (0x00BBGGRR) is, from 0 (black) to 240 (white): the mean of its largest and
/// smallest channel on the platform's scale of lightness.
TESSALY_API int GetLuminosity(unsigned long color);
/// The brightest colour of the same hue: each channel grows in proportion, the largest to 255.
/// Black, which has no hue, stays black.
TESSALY_API unsigned long MakeColorBright(unsigned long color);

/// A colour in the platform's order, as one value and by its channels.
union TESSALY_API COLORRGB {
    constexpr COLORRGB() noexcept : color(0) {} ///< Black.
    /// That colour.
    constexpr explicit COLORRGB(unsigned long colorNew) noexcept : color(colorNew) {}

    /// Doubles the channels.
    // QUIRK: each wraps at 256, so that one of 128 or more gets darker.
    // Test: COLORRGB.MakeBrightWrapsAt256
    void MakeBright();
    /// Halves the channels.
    void MakeDark();
    /// The colour's luminosity, as the function of that name above.
    int GetLuminosity() const;
    /// Fills the rectangle, as the function of that name above.
    void PaintRect(HDC hdc, int x, int y, int width, int height) const;

    unsigned long color; // 0x00BBGGRR; the byte on top is what a palette colour marks itself with
    /// The four bytes of color, each from 0 to 255.
    struct {
        unsigned char red, green, blue, reserved; // the last one as the byte on top
    } bytes;
};
static_assert(sizeof(COLORRGB) == 4);
