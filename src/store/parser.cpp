#include "store/parser.h"

#include <cwchar>

Parser::Parser(const wchar_t* pszText, unsigned cchText) {
    p = pszText ? pszText : L"";
    pEnd = pszText && cchText ? p + cchText : p + std::wcslen(p);
}

int Parser::IsOneOf(const wchar_t* pszSet) const {
    return !NotEnd() || (pszSet && std::wcschr(pszSet, *p));
}

int Parser::SkipIf(wchar_t ch) {
    MustBe(ch);
    return NotEnd();
}

int Parser::SkipChar() {
    if (NotEnd()) ++p;
    return NotEnd();
}

int Parser::SkipWhite() {
    while (IsWhite()) ++p;
    return NotEnd();
}

int Parser::SkipCR() {
    SkipIf(L'\r');
    return SkipIf(L'\n');
}

int Parser::SkipLine() {
    while (NotEnd() && !IsCR()) ++p;
    return SkipCR();
}

int Parser::SkipWhiteLines() {
    for (SkipWhite(); IsCR(); SkipWhite()) SkipCR();
    return NotEnd();
}

int Parser::SkipToken() {
    while (IsTokenChar()) ++p;
    return NotEnd();
}

int Parser::MustBe(wchar_t ch) {
    if (!NotEnd() || *p != ch) return 0;
    ++p;
    return 1;
}

void Parser::TokenCopy(wchar_t* pszOut, unsigned cchOut) {
    if (!pszOut || !cchOut) return;
    wchar_t* const pLast = pszOut + cchOut - 1;
    while (pszOut < pLast && IsTokenChar()) CharCopy(pszOut);
    *pszOut = 0;
}
