#include "store/ini/parser.h"

#include <cwchar>

Parser::Parser(const wchar_t* pszText, unsigned cchText)
    : p(pszText ? pszText : L""), pEnd(pszText && cchText ? p + cchText : p + std::wcslen(p)) {}

int Parser::IsOneOf(const wchar_t* pszSet) const {
    return !NotEnd() || (pszSet && std::wcschr(pszSet, *p));
}

int Parser::SkipChar() {
    if (NotEnd()) ++p;
    return NotEnd();
}

int Parser::SkipLine() {
    while (p < pEnd && !IsLineEnd(p)) ++p;
    return SkipCR();
}

/// White characters and line ends are what stands between tokens.
int Parser::SkipToken() {
    while (IsTokenChar()) ++p;
    return NotEnd();
}

void Parser::TokenCopy(wchar_t* pszOut, unsigned cchOut) {
    if (!pszOut || !cchOut) return;
    wchar_t* const pLast = pszOut + cchOut - 1;
    while (pszOut < pLast && IsTokenChar()) CharCopy(pszOut);
    *pszOut = 0;
}

/// Copies while fnGoesOn says so of a place, up to what the buffer holds, and passes the rest.
template <class Fn>
unsigned Parser::CopyWhile(wchar_t* pszOut, unsigned cchOut, Fn fnGoesOn) {
    const wchar_t* pAt = p;
    const wchar_t* const pFull = pEnd - p >= cchOut ? p + (cchOut - 1) : pEnd;
    while (pAt < pFull && fnGoesOn(pAt)) *pszOut++ = *pAt++;
    *pszOut = 0;
    auto cch = static_cast<unsigned>(pAt - p);
    while (pAt < pEnd && fnGoesOn(pAt)) ++pAt;
    p = pAt;
    return cch;
}

int Parser::IsLineEnd(const wchar_t* pAt) const {
    // What is above the carriage return ends nothing: one comparison for most characters.
    if (*pAt > L'\r') return 0;
    return !*pAt || *pAt == L'\n' || (*pAt == L'\r' && pAt + 1 < pEnd && pAt[1] == L'\n');
}

unsigned Parser::CopyToLineEnd(wchar_t* pszOut, unsigned cchOut) {
    return CopyWhile(pszOut, cchOut, [this](const wchar_t* pAt) { return !IsLineEnd(pAt); });
}

unsigned Parser::CopyToChar(wchar_t ch, wchar_t* pszOut, unsigned cchOut) {
    return CopyWhile(pszOut, cchOut, [ch](const wchar_t* pAt) { return *pAt && *pAt != ch; });
}
