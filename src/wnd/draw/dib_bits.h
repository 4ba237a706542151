#pragma once
#include "runtime/base/export.h"
#include <windows.h>

/// A pixel of 32 bits as the platform's bitmaps hold it.
struct GDI_BGR {
    BYTE b, g, r, reserved;
};
static_assert(sizeof(GDI_BGR) == 4);

/// The bitmap selected in the context as width times height pixels, the top row first; pixels that
/// it does not have are 0. Null for a null context, a context without a bitmap, a size below 1 by
/// 1, a failed read, and when out of memory. The caller frees the array, with the C library's free.
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
