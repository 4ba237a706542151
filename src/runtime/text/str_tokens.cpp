#include "runtime/text/str_tokens.h"

#include <cwchar>

namespace {
template <class Char>
Char* SkipSeparators(Char* p, const wchar_t* pszSeparators) {
    while (*p && std::wcschr(pszSeparators, *p)) ++p;
    return p;
}

template <class Char>
Char* SkipToken(Char* p, const wchar_t* pszSeparators) {
    while (*p && !std::wcschr(pszSeparators, *p)) ++p;
    return p;
}
} // namespace

wchar_t* StrTokEx(wchar_t* pszText, const wchar_t* pszSeparators, wchar_t*& pszContext) {
    wchar_t* p = pszText ? pszText : pszContext;
    if (!p) return nullptr;
    if (!pszSeparators) pszSeparators = L"";
    wchar_t* pToken = SkipSeparators(p, pszSeparators);
    wchar_t* pEnd = SkipToken(pToken, pszSeparators);
    pszContext = *pEnd ? pEnd + 1 : pEnd;
    *pEnd = 0;
    return *pToken ? pToken : nullptr;
}

// QUIRK: a token that the 255th character cuts is given as cut, and what lies behind is in no
// token, though GetTokenCount counts it. Test: GetToken.SeesTheFirst255CharactersOnly
const wchar_t* GetToken(const wchar_t* pszText, const wchar_t* pszSeparators, int nIndex) {
    if (!pszText || nIndex < 0) return nullptr;
    static wchar_t szBuffer[kTokenBufferSize];
    std::size_t cch = ::wcsnlen(pszText, kTokenBufferSize - 1);
    std::wmemmove(szBuffer, pszText, cch); // may be an earlier token in the same buffer
    szBuffer[cch] = 0;
    wchar_t* pszContext = nullptr;
    wchar_t* pszToken = StrTokEx(szBuffer, pszSeparators, pszContext);
    while (pszToken && nIndex-- > 0) pszToken = StrTokEx(nullptr, pszSeparators, pszContext);
    return pszToken;
}

unsigned GetTokenCount(const wchar_t* pszText, const wchar_t* pszSeparators) {
    if (!pszText) return 0;
    if (!pszSeparators) pszSeparators = L"";
    unsigned n = 0;
    const wchar_t* p = SkipSeparators(pszText, pszSeparators);
    for (; *p; p = SkipSeparators(SkipToken(p, pszSeparators), pszSeparators)) ++n;
    return n;
}
