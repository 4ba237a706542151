#include "files/text/text_encoding.h"

#include <windows.h>

void ReverseUnicodeBytes(BYTE* pBytes, DWORD cb) {
    if (!pBytes) return;
    for (DWORD i = 0; cb - i > 1; i += 2) { // bytes, as nothing says that they are aligned
        BYTE bFirst = pBytes[i];
        pBytes[i] = pBytes[i + 1];
        pBytes[i + 1] = bFirst;
    }
}

void ReverseUnicodeBytes(wchar_t* pszText, unsigned nCount) {
    if (!pszText) return;
    for (unsigned i = 0; i < nCount; ++i) {
        pszText[i] = static_cast<wchar_t>(pszText[i] << 8 | pszText[i] >> 8);
    }
}
