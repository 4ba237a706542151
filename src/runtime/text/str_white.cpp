#include "runtime/text/str_white.h"
#include "runtime/text/str_chars.h"

#include <cwchar>

namespace {
template <class Char>
void SkipBlanksAndTabs(Char*& p) {
    while (*p == L' ' || *p == L'\t') ++p;
}

template <class Char>
int SkipToQuoted(Char*& p) {
    if (!p) return 0;
    SkipBlanksAndTabs(p);
    if (*p != L'"') return 0;
    ++p;
    SkipBlanksAndTabs(p);
    return 1;
}
} // namespace

void StrTrimW(wchar_t* pszText) { TrimStr(pszText); }

void TrimStr(wchar_t* pszText) {
    if (!pszText) return;
    const wchar_t* pFirst = pszText;
    while (IsWhiteChar(*pFirst)) ++pFirst;
    const wchar_t* pEnd = pFirst + std::wcslen(pFirst);
    while (pEnd > pFirst && IsWhiteChar(pEnd[-1])) --pEnd;
    auto cch = static_cast<std::size_t>(pEnd - pFirst);
    std::wmemmove(pszText, pFirst, cch);
    pszText[cch] = 0;
}

int SkipLeadingWhiteSpaces(const wchar_t*& pszText) { return SkipToQuoted(pszText); }

int SkipLeadingWhiteSpaces(wchar_t*& pszText) { return SkipToQuoted(pszText); }
