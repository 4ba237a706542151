#pragma once
#include "wnd/core/cswnd.h"
#include <windows.h>

/// Makes a button draw itself through WM_DRAWITEM; the rest of its style stays.
inline void MakeOwnerDrawn(CSWnd& button) {
    const DWORD dwStyle = button.GetStyle(0);
    button.SendMsg(BM_SETSTYLE, (dwStyle & ~static_cast<DWORD>(BS_TYPEMASK)) | BS_OWNERDRAW, TRUE);
}
