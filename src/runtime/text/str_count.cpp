#include "runtime/text/str_count.h"
#include "runtime/text/str_chars.h"

#include <cwchar>

int IsNumStr(const wchar_t* pszText) {
    if (!pszText || !*pszText) return 0;
    while (IsNumChar(*pszText)) ++pszText;
    return *pszText == 0;
}

unsigned FindChar(const wchar_t* pszText, wchar_t ch) {
    const wchar_t* pFound = pszText && ch ? std::wcschr(pszText, ch) : nullptr;
    return pFound ? static_cast<unsigned>(pFound - pszText) : kNotFound;
}

unsigned strPos(const wchar_t* pszText, wchar_t ch) { return FindChar(pszText, ch); }

unsigned StrCharCount(const wchar_t* pszText, wchar_t ch) {
    unsigned n = 0;
    for (; pszText && *pszText; ++pszText) n += *pszText == ch;
    return n;
}

unsigned StrCountChars(const wchar_t* pszText, const wchar_t* pszSet) {
    unsigned n = 0;
    if (!pszSet) return 0;
    for (; pszText && *pszText; ++pszText) n += std::wcschr(pszSet, *pszText) != nullptr;
    return n;
}

unsigned GetLineCount(const wchar_t* pszText, unsigned n) {
    if (!pszText || !*pszText) return 0;
    unsigned nLines = 1;
    for (unsigned i = 0; i < n && pszText[i]; ++i) nLines += pszText[i] == L'\n';
    return nLines;
}
