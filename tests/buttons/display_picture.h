#pragma once
#include "support/replace_import.h"

#include <windows.h>
#include <cwchar>

extern "C" FARPROC __imp_CreateDCW;

/// A picture of the test's in the place of the display, for what makes a context for that while the
/// function stands in the place of CreateDCW.
struct DisplayPicture {
    static HDC WINAPI Create(LPCWSTR pszDriver, LPCWSTR, LPCWSTR, const DEVMODEW*) {
        bDisplay = pszDriver && wcscmp(pszDriver, L"DISPLAY") == 0;
        HDC hdc = ::CreateCompatibleDC(nullptr);
        ::SelectObject(hdc, hbm);
        return hdc;
    }
    static inline HBITMAP hbm = nullptr;
    static inline bool bDisplay = false;
};
