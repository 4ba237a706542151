#pragma once
#include "runtime/base/export.h"
#include <windows.h>

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
