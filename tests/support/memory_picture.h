#pragma once
#include "support/dib_section.h"
#include <windows.h>
#include <string>

/// A top-down picture of 32 bits a pixel, selected into a memory context, for looking at what was
/// drawn. Starts with all pixels in crFill.
class MemoryPicture {
  public:
    MemoryPicture(int cxNew, int cyNew, COLORREF crFill = RGB(255, 255, 255))
        : cx(cxNew), cy(cyNew), hdc(::CreateCompatibleDC(nullptr)) {
        void* pBits = nullptr;
        hbm = MakeDibSection(cx, cy, &pBits);
        pPixels = static_cast<DWORD*>(pBits);
        hbmBefore = ::SelectObject(hdc, hbm);
        for (int y = 0; y < cy; ++y)
            for (int x = 0; x < cx; ++x) Set(x, y, crFill);
    }
    ~MemoryPicture() {
        ::SelectObject(hdc, hbmBefore);
        ::DeleteObject(hbm);
        ::DeleteDC(hdc);
    }
    MemoryPicture(const MemoryPicture&) = delete;
    MemoryPicture& operator=(const MemoryPicture&) = delete;

    operator HDC() const { return hdc; }
    HBITMAP GetBitmap() const { return hbm; } // selected into the context

    /// The colour of a pixel as 0x00BBGGRR; -1 outside.
    COLORREF Get(int x, int y) const {
        if (x < 0 || y < 0 || x >= cx || y >= cy) return CLR_INVALID;
        ::GdiFlush();
        DWORD dw = pPixels[y * cx + x];
        return RGB(dw >> 16 & 0xFF, dw >> 8 & 0xFF, dw & 0xFF);
    }
    void Set(int x, int y, COLORREF cr) {
        pPixels[y * cx + x] =
            static_cast<DWORD>(GetRValue(cr) << 16 | GetGValue(cr) << 8 | GetBValue(cr));
    }

    /// A picture in letters, a row each: white is a dot, other colours by the letter that was
    /// written with Write, anything else '?'.
    std::string Read() const {
        std::string str;
        for (int y = 0; y < cy; ++y) {
            for (int x = 0; x < cx; ++x) str += LetterOf(Get(x, y));
            if (y + 1 < cy) str += '/';
        }
        return str;
    }
    /// Draws such a picture: rows of letters divided by '/'.
    void Write(const std::string& str) {
        int x = 0, y = 0;
        for (char ch : str) {
            if (ch == '/') {
                x = 0;
                ++y;
            } else {
                Set(x++, y, ColorOf(ch));
            }
        }
    }
    static COLORREF ColorOf(char ch) {
        if (ch == '.') return RGB(255, 255, 255);
        if (ch == '#') return RGB(0, 0, 0);
        return RGB(ch, 255 - ch, 3 * (ch - '@'));
    }

  private:
    static char LetterOf(COLORREF cr) {
        for (char ch : std::string(".#ABCDEFGHIJKLMNOPQRSTUVWXYZ"))
            if (ColorOf(ch) == cr) return ch;
        return '?';
    }

    int cx, cy;
    HDC hdc;
    HBITMAP hbm = nullptr;
    HGDIOBJ hbmBefore = nullptr;
    DWORD* pPixels = nullptr;
};
