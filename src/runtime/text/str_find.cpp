#include "runtime/text/str_find.h"
#include "runtime/text/str_case.h"

#include <cwchar>

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

/// 1 if the item that starts at p, up to the separator or the end, is how the text begins.
bool IsItemPrefix(const wchar_t* p, const wchar_t* pszText, wchar_t chSeparator, int bIgnoreCase) {
    while (*p && *p != chSeparator) {
        if (!IsSame(*p++, *pszText++, bIgnoreCase)) return false; // also at the text's end
    }
    return true;
}
} // namespace

// QUIRK: the empty prefix is no beginning of the empty text, though a null one is.
// Test: StrStartsWith.TableOfAllCases
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
// text. Test: IsStrInList.TableOfAllCases
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
