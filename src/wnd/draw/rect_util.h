#pragma once
#include "runtime/base/export.h"
#include <windows.h>

// Plain arithmetic on rectangles, of which some have a notion of empty and of inside that is not
// the platform's. Two have the name of a platform function: a reference or a rectangle chooses
// these, a pointer or a point that one.

TESSALY_API void RectCopy(RECT& rcDst, const RECT& rcSrc); ///< Copies the rectangle.
/// Sets the four coordinates.
TESSALY_API void RectSet(RECT& rc, int left, int top, int right, int bottom);
TESSALY_API void RectShift(RECT& rc, int dx, int dy); ///< Moves it by so much.
/// Grows on all four sides.
TESSALY_API void RectInflate(RECT& rc, int dx, int dy);
/// Shrinks on all four sides.
TESSALY_API void DeflateRect(RECT* prc, int dx, int dy);
/// Puts rc into the middle of rcRef, keeping its size. Half the free space is a whole number,
/// rounded toward 0, so that a negative one is shared likewise.
TESSALY_API void RectCenter(RECT& rc, const RECT& rcRef);

/// 1 unless all four coordinates match.
TESSALY_API int IsRectDifferent(const RECT& a, const RECT& b);
/// 1 only if it has neither width nor height. The platform's function of this name, which takes a
/// pointer, is content with one of them.
TESSALY_API int IsRectEmpty(const RECT& rc);
/// The smallest rectangle around both; an empty one takes part like any other. rcDst may be one of
/// the two.
TESSALY_API void RectUnion(RECT& rcDst, const RECT& a, const RECT& b);
/// 1 if the point lies inside; left and top are inside, right and bottom outside.
TESSALY_API int RectHasPoint(const RECT& rc, const POINT& pt);
/// 1 if rcInner lies in rcOuter: left and top may touch, right and bottom may not. No rectangle
/// thus has itself.
TESSALY_API int RectHasRect(const RECT& rcOuter, const RECT& rcInner);

/// Swaps left with right and top with bottom.
TESSALY_API void TwistRect(RECT* prc);
/// Swaps left with top, and right with bottom.
TESSALY_API void FlipRect(RECT* prc);
TESSALY_API void FlipSize(SIZE* psize); ///< Swaps width and height.
/// Converts both corners from the window's client area to the screen. 1; 0 for what is no window.
TESSALY_API int ClientToScreen(HWND hwnd, RECT* prc);
