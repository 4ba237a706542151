#include "runtime/text/cvt.h"

#include <windows.h>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <cwchar>

namespace {
/// Converts pszText into at most cbOut bytes with the terminator, cut at whole characters: the
/// platform's own call fails on a text that does not fit and leaves an open end.
void Narrow(char* pszOut, unsigned cbOut, const wchar_t* pszText, unsigned cchMax) {
    if (!cbOut) return;
    int cbRoom = static_cast<int>(cbOut - 1 < INT_MAX ? cbOut - 1 : INT_MAX);
    int cchText = static_cast<int>(::wcsnlen(pszText, cchMax < INT_MAX ? cchMax : INT_MAX));
    if (cchText > cbRoom) cchText = cbRoom; // a character takes at least one byte
    int cbText = 0;
    while (cchText > 0 && cbRoom > 0) {
        cbText =
            ::WideCharToMultiByte(CP_ACP, 0, pszText, cchText, pszOut, cbRoom, nullptr, nullptr);
        if (cbText > 0) break;
        --cchText;
    }
    pszOut[cbText] = 0;
}

void Widen(wchar_t* pszOut, unsigned cchOut, const char* pszText, unsigned cbMax) {
    if (!cchOut) return;
    int cchRoom = static_cast<int>(cchOut - 1 < INT_MAX ? cchOut - 1 : INT_MAX);
    int cbText = static_cast<int>(::strnlen(pszText, cbMax < INT_MAX ? cbMax : INT_MAX));
    int cchText = 0;
    while (cbText > 0 && cchRoom > 0) {
        cchText = ::MultiByteToWideChar(CP_ACP, 0, pszText, cbText, pszOut, cchRoom);
        if (cchText > 0) break;
        --cbText;
    }
    pszOut[cchText] = 0;
}
} // namespace

CVT::CVT(unsigned cchWanted) : cch(cchWanted) {}

CVT::~CVT() { std::free(pBuffer); }

/// One block for both widths, so that a switch of direction never finds one that is too small.
int CVT::Allocate() {
    if (!pBuffer) {
        pBuffer = std::calloc(static_cast<std::size_t>(cch) + 1, sizeof(wchar_t));
    }
    return pBuffer != nullptr;
}

char* CVT::T_A(const wchar_t* pszText) {
    if (!Allocate()) return nullptr;
    char* pszNarrow = static_cast<char*>(pBuffer);
    unsigned cbBuffer = cch < UINT_MAX ? cch + 1 : cch;
    if (pszText) {
        Narrow(pszNarrow, cbBuffer, pszText, UINT_MAX);
    } else {
        *pszNarrow = 0;
    }
    return pszNarrow;
}

wchar_t* CVT::A_T() { return Allocate() ? static_cast<wchar_t*>(pBuffer) : nullptr; }

void CVT::T_A(char* pszOut) const {
    if (!pszOut) return;
    const wchar_t* pszText = pBuffer ? static_cast<const wchar_t*>(pBuffer) : L"";
    Narrow(pszOut, cch, pszText, pBuffer ? cch : 0);
}

void CVT::A_T(wchar_t* pszOut) const {
    if (!pszOut) return;
    const char* pszText = pBuffer ? static_cast<const char*>(pBuffer) : "";
    Widen(pszOut, cch, pszText, pBuffer ? cch : 0);
}
