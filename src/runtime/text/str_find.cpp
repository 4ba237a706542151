#include "runtime/text/str_find.h"
#include "runtime/text/str_chars.h"

#include <cwchar>

// Comparing texts, and texts in lists

namespace {
bool IsSame(wchar_t ch1, wchar_t ch2, int bIgnoreCase) {
    return ch1 == ch2 || (bIgnoreCase && CharToUpper(ch1) == CharToUpper(ch2));
}

/// Where the two texts first differ, or the first one's end.
const wchar_t* SkipSame(const wchar_t* p, const wchar_t* pOther, int bIgnoreCase) {
    while (*p && IsSame(*p, *pOther, bIgnoreCase)) {
        ++p;
        ++pOther;
    }
    return p;
}

/// Whether the item that starts at p, up to the separator or the end, is how the text begins.
bool IsItemPrefix(const wchar_t* p, const wchar_t* pszText, wchar_t chSeparator, int bIgnoreCase) {
    while (*p && *p != chSeparator) {
        if (!IsSame(*p++, *pszText++, bIgnoreCase)) return false; // also at the text's end
    }
    return true;
}
} // namespace

// QUIRK: the empty prefix is no beginning of the empty text, though a null one is.
// Test: StrStartsWithTable.AsksForThePrefix/EmptyPrefixOfEmpty
int StrStartsWith(const wchar_t* pszText, const wchar_t* pszPrefix, int bIgnoreCase) {
    if (!pszPrefix) return 1;
    if (!pszText || !*pszText) return 0;
    return *SkipSame(pszPrefix, pszText, bIgnoreCase) == 0;
}

int StrIsSame(const wchar_t* pszText, const wchar_t* pszOther, int bIgnoreCase) {
    if (!pszText) pszText = L"";
    if (!pszOther) pszOther = L"";
    const wchar_t* pEnd = SkipSame(pszText, pszOther, bIgnoreCase);
    return !*pEnd && !pszOther[pEnd - pszText];
}

unsigned StrFindInList(const wchar_t* pszList, const wchar_t* pszText, int bIgnoreCase) {
    if (!pszList || !pszText) return kNotFound;
    unsigned nIndex = 0;
    for (const wchar_t* p = pszList; *p; p += std::wcslen(p) + 1, ++nIndex) {
        if (StrIsSame(p, pszText, bIgnoreCase)) return nIndex;
    }
    return kNotFound;
}

// QUIRK: the text need not equal an item, only begin with one, so that an empty item matches every
// text. Test: IsStrInListTable.AsksForAnItemAtTheTextsBeginning/EmptyItemBeginsEveryText
int IsStrInList(const wchar_t* pszText, const wchar_t* pszList, wchar_t chSeparator,
                int bIgnoreCase) {
    if (!pszText) pszText = L"";
    while (pszList && *pszList) {
        if (IsItemPrefix(pszList, pszText, chSeparator, bIgnoreCase)) return 1;
        while (*pszList && *pszList != chSeparator) ++pszList;
        if (*pszList) ++pszList;
    }
    return 0;
}

// Counting and finding single characters

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

// Tokens

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
