#include "runtime/text/str_hex.h"
#include "runtime/base/cs_buf.h"
#include "runtime/text/cvt.h"

#include <windows.h>
#include <algorithm>
#include <climits>
#include <cstring>
#include <cwchar>

namespace {
template <class Char>
int WriteHex(Char* pszText, unsigned cch, const void* pData, unsigned n) {
    static constexpr char kDigits[] = "0123456789ABCDEF";
    if (!pszText || cch == 0) return 0;
    const auto* pBytes = static_cast<const unsigned char*>(pData);
    unsigned nFitting = std::min(pBytes ? n : 0, (cch - 1) / 2);
    for (unsigned i = 0; i < nFitting; ++i) {
        *pszText++ = static_cast<Char>(kDigits[pBytes[i] >> 4]);
        *pszText++ = static_cast<Char>(kDigits[pBytes[i] & 15]);
    }
    *pszText = 0;
    return nFitting == n;
}

/// Bytes in the system code page, up to the first zero among them, as terminated text.
int WriteText(wchar_t* pszOut, unsigned cch, const char* pszBytes, unsigned cb) {
    CSBuf buf(cb * sizeof(wchar_t)); // a byte gives at most one character
    if (!buf.IsReady()) return 0;
    auto* pszText = reinterpret_cast<wchar_t*>(static_cast<unsigned char*>(buf));
    int cbText = static_cast<int>(::strnlen(pszBytes, cb));
    int cchText = 0;
    if (cbText) {
        cchText = ::MultiByteToWideChar(CP_ACP, 0, pszBytes, cbText, pszText, static_cast<int>(cb));
    }
    unsigned cchFitting = std::min(static_cast<unsigned>(cchText), cch - 1);
    std::wmemcpy(pszOut, pszText, cchFitting);
    pszOut[cchFitting] = 0;
    return 1;
}
} // namespace

int BinToHex(wchar_t* pszText, unsigned cch, const void* pData, unsigned n) {
    return WriteHex(pszText, cch, pData, n);
}

int BinToHex(char* pszText, unsigned cch, const void* pData, unsigned n) {
    return WriteHex(pszText, cch, pData, n);
}

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

int StrToHex(wchar_t* pszOut, unsigned cch, const wchar_t* pszText) {
    CVT cvt(kHexSourceSize);
    const char* pszNarrow = pszText && *pszText ? cvt.T_A(pszText) : nullptr;
    unsigned cb = pszNarrow ? static_cast<unsigned>(std::strlen(pszNarrow)) : 0;
    BinToHex(pszOut, cch, pszNarrow, cb);
    return pszNarrow != nullptr;
}

int HexToStr(wchar_t* pszOut, unsigned cch, const wchar_t* pszText) {
    if (!pszOut || cch == 0) return 0;
    unsigned cb = HexToBin(nullptr, pszText);
    CSBuf bytes(cb);
    if (cb == 0 || cb > INT_MAX || !bytes.IsReady()) {
        *pszOut = 0;
        return cb == 0;
    }
    HexToBin(bytes, pszText);
    const auto* pszBytes = reinterpret_cast<const char*>(static_cast<unsigned char*>(bytes));
    int bDone = WriteText(pszOut, cch, pszBytes, cb);
    if (!bDone) *pszOut = 0;
    return bDone;
}
