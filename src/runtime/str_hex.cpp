#include "runtime/str_hex.h"

#include <algorithm>

unsigned char HexToCode(wchar_t ch) {
    if (ch >= L'0' && ch <= L'9') return static_cast<unsigned char>(ch - L'0');
    if (ch >= L'A' && ch <= L'F') return static_cast<unsigned char>(ch - L'A' + 10);
    if (ch >= L'a' && ch <= L'f') return static_cast<unsigned char>(ch - L'a' + 10);
    return 0;
}

unsigned char HexToChar(wchar_t chHigh, wchar_t chLow) {
    return static_cast<unsigned char>(HexToCode(chHigh) << 4 | HexToCode(chLow));
}

unsigned HexToBin(void* pData, const wchar_t* pszText) {
    auto* pBytes = static_cast<unsigned char*>(pData);
    unsigned n = 0;
    while (pszText && *pszText) {
        // After a single last character this reads the terminator, which counts as the digit 0.
        unsigned char bRead = HexToChar(pszText[0], pszText[1]);
        if (pBytes) pBytes[n] = bRead;
        ++n;
        pszText += pszText[1] ? 2 : 1;
    }
    return n;
}

unsigned HexToBinLE(void* pData, const wchar_t* pszText) {
    unsigned n = HexToBin(pData, pszText);
    auto* pBytes = static_cast<unsigned char*>(pData);
    if (pBytes) std::reverse(pBytes, pBytes + n);
    return n;
}
