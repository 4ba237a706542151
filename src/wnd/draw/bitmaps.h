#pragma once
#include "runtime/base/export.h"
#include <windows.h>

// Bitmaps: making, drawing and turning them, and reading their pixels. Colours are the platform's
// (0x00BBGGRR).

/// The size in pixels; 0 by 0 for what is no bitmap.
TESSALY_API SIZE GetBitmapSize(HBITMAP hbm);

/// Copies a part of the bitmap to (x, y). Its origin and size are in the bitmap's pixels, whatever
/// the mapping mode of hdc. With a width of 0 the size is the bitmap's, whatever the height. Does
/// nothing for a null context or bitmap, and for a bitmap that is selected somewhere.
// QUIRK: the bitmap's side takes the mode over but not the extents of MM_ISOTROPIC and
// MM_ANISOTROPIC: with these a part of another size is stretched.
// Test: DrawBitmap.TakesNoExtentsForTheBitmapsSide
TESSALY_API void DrawBitmap(HDC hdc, HBITMAP hbm, int x, int y, int srcX, int srcY, int width,
                            int height);

// Bitmaps that are made anew, each of which the caller owns. Null when one can't be made, as with a
// width or height below 1.

/// A copy that is compatible with the display. Null for a bitmap that is selected somewhere.
[[nodiscard]] TESSALY_API HBITMAP CopyBitmap(HBITMAP hbm);
/// A picture of a part of the context; null for a null context.
[[nodiscard]] TESSALY_API HBITMAP MakeBitmap(HDC hdc, int x, int y, int width, int height);
/// A picture of a part of the display, in screen coordinates.
[[nodiscard]] TESSALY_API HBITMAP MakeScreenBitmap(int x, int y, int width, int height);
[[nodiscard]] TESSALY_API HBITMAP MakeScreenBitmap(const RECT& rc);
/// The text on that background, from (0, 0) on, in that font (null: the platform's default one). A
/// null text is an empty one.
[[nodiscard]] TESSALY_API HBITMAP MakeTextBitmap(int width, int height, LPCWSTR pszText,
                                                 HFONT hfont, unsigned long textColor,
                                                 unsigned long bkgColor);
/// A fade over the whole bitmap; see PaintShadedRect in wnd/draw/draw_util.h.
[[nodiscard]] TESSALY_API HBITMAP MakeShadedBitmap(int width, int height, unsigned long color,
                                                   int fromTop, int steps);

/// A pixel of 32 bits as the platform's bitmaps hold it.
struct GDI_BGR {
    BYTE b, g, r, reserved; // each from 0 to 255
};
static_assert(sizeof(GDI_BGR) == 4);

/// The bitmap selected in the context as width times height pixels, the top row first; pixels that
/// it does not have are 0. Null for a null context, a context without a bitmap, a size below 1 by
/// 1, a failed read, and when out of memory. The caller frees the array with FreeDllBuf
/// (runtime/base/dll_buf.h).
[[nodiscard]] TESSALY_API GDI_BGR* GetDibBits(HDC hdc, int width, int height);

/// Turns the picture of the source by a quarter and copies it to the target at prc. With W and H
/// the width and height of prc (either may be negative; the picture goes right and down from its
/// left and top all the same), the source is H wide and W high. 1; 0 for a null context or
/// rectangle, for a prc without width or height, and when the pixels can't be read.
// QUIRK: a non-zero clockwise turns the picture counter-clockwise, 0 clockwise.
// Test: RotateMemoryDC.ClockwiseTurnsCounterClockwise
// QUIRK: when the pixels can't be read, the context and the bitmap made so far are left behind.
// Test: RotateMemoryDC.LeavesWhatItMadeBehindWhenTheReadFails
TESSALY_API int RotateMemoryDC(HDC hdcTarget, const RECT* prc, HDC hdcSource, int clockwise);
/// Turns it by a half; the source is W wide and H high. Otherwise as RotateMemoryDC, with what is
/// left behind too.
TESSALY_API int TwistMemoryDC(HDC hdcTarget, const RECT* prc, HDC hdcSource);

// For the classes of this folder and the menus, whose functions of other names these are.

/// A bottom-up section of 32 bits a pixel and that size, made on hdc or, if that is null, on the
/// screen. *phResult is cleared first; the caller owns what is stored there. ppBits receives the
/// pixels' address and may be null. S_OK; E_OUTOFMEMORY when no context or no section could be had.
HRESULT MakeBitmap32(HDC hdc, const SIZE* psize, void** ppBits, HBITMAP* phResult);

/// Zeroes cbInfo bytes and fills in the header of one plane without compression. A negative height
/// is a top-down bitmap's. Where the header does not fit into cbInfo there are only the zeros.
void FillBitmapInfo(BITMAPINFO* pInfo, DWORD cbInfo, LONG cx, LONG cy, WORD nBitCount);
