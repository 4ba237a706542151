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
