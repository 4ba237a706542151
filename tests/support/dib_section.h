#pragma once
#include <windows.h>

/// A bitmap section of 32 bits a pixel, the topmost row first, as it lies at *ppBits (which is
/// null, like the result, if it cannot be made). The caller destroys it.
inline HBITMAP MakeDibSection(int cx, int cy, void** ppBits) {
    BITMAPINFO info{};
    info.bmiHeader.biSize = sizeof(info.bmiHeader);
    info.bmiHeader.biWidth = cx;
    info.bmiHeader.biHeight = -cy;
    info.bmiHeader.biPlanes = 1;
    info.bmiHeader.biBitCount = 32;
    *ppBits = nullptr;
    return ::CreateDIBSection(nullptr, &info, DIB_RGB_COLORS, ppBits, nullptr, 0);
}
