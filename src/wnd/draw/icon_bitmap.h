#pragma once
#include <windows.h>

// Bitmaps of 32 bits a pixel, which menus and icons make for themselves.

/// The icon as a top-down section of premultiplied pixels with alpha, such as menu items can show
/// without a black background. The caller owns it. Null before Windows Vista, without the
/// platform's imaging component, for what is no icon, and when out of memory. A thread without COM
/// gets it for the length of the call.
[[nodiscard]] HBITMAP MakeIconBitmap(HICON hicon);

/// A bottom-up section of 32 bits a pixel and that size, made on hdc or, if that is null, on the
/// screen. *phResult is cleared first; the caller owns what is stored there. ppBits receives the
/// pixels' address and may be null. S_OK; E_OUTOFMEMORY when no context or no section could be had.
HRESULT MakeBitmap32(HDC hdc, const SIZE* psize, void** ppBits, HBITMAP* phResult);

/// Zeroes cbInfo bytes and fills in the header of one plane without compression. A negative height
/// is a top-down bitmap's. Where the header does not fit into cbInfo there are only the zeros.
void FillBitmapInfo(BITMAPINFO* pInfo, DWORD cbInfo, LONG cx, LONG cy, WORD nBitCount);
