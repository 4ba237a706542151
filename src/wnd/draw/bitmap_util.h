#pragma once
#include "runtime/base/export.h"
#include <windows.h>

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
