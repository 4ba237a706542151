#include "runtime/text/str_menu.h"
#include "runtime/text/str_case.h"

#include <cwchar>

void StrRemoveAmpAndDots(wchar_t* pszText) {
    if (!pszText) return;
    wchar_t* pOut = pszText;
    for (const wchar_t* p = pszText; *p;) {
        if (*p == L'&') {
            ++p;
        } else if (p[0] == L'.' && p[1] == L'.' && p[2] == L'.') {
            p += 3;
        } else {
            *pOut++ = *p++;
        }
    }
    *pOut = 0;
}

// QUIRK: "&&", which a menu shows as one "&", is not told apart: it loses its first one, and the
// mark behind it stays. Test: RemoveMenuChar.DeletesTheFirstOnly
void RemoveMenuChar(wchar_t* pszText) {
    wchar_t* pAmp = pszText ? std::wcschr(pszText, L'&') : nullptr;
    if (pAmp) std::wmemmove(pAmp, pAmp + 1, std::wcslen(pAmp)); // with the terminator
}

const wchar_t* MakeNameFromMenu(const wchar_t* pszText) {
    static wchar_t szName[kMenuNameSize];
    unsigned cch = 0;
    bool bRemoved = false;
    // Forward, character by character: the text may be an earlier result in the same buffer.
    for (const wchar_t* p = pszText; p && *p && cch < kMenuNameSize - 1; ++p) {
        if (*p == L'&' && !bRemoved) {
            bRemoved = true;
        } else {
            szName[cch++] = *p;
        }
    }
    szName[cch] = 0;
    return szName;
}

wchar_t GetMenuItemChar(const wchar_t* pszText) {
    const wchar_t* pAmp = pszText ? std::wcschr(pszText, L'&') : nullptr;
    return pAmp ? CharToUpper(pAmp[1]) : L'\0';
}
