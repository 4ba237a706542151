#include "store/registry/reg_path.h"
#include "runtime/text/str_chars.h"
#include "store/registry/reg_key.h"

#include <algorithm>
#include <cwchar>

namespace {

/// As the registry compares the characters of names.
bool IsSameChar(wchar_t chLeft, wchar_t chRight) {
    return chLeft == chRight || CharToUpper(chLeft) == CharToUpper(chRight);
}

bool IsAtEnd(const wchar_t* psz) { return !*psz || *psz == kRegSeparator; }

const wchar_t* SkipSeparators(const wchar_t* psz) {
    while (*psz == kRegSeparator) ++psz;
    return psz;
}
} // namespace

const wchar_t* FindRegPathBelow(const wchar_t* pszPath, const wchar_t* pszOther) {
    for (;;) {
        pszPath = SkipSeparators(pszPath);
        pszOther = SkipSeparators(pszOther);
        if (!*pszOther) return pszPath;
        for (; !IsAtEnd(pszOther); ++pszPath, ++pszOther) {
            if (!IsSameChar(*pszPath, *pszOther)) return nullptr; // also at the path's own end
        }
        if (!IsAtEnd(pszPath)) return nullptr;
    }
}

const wchar_t* RegKey::FindLastSubkeyName(const wchar_t* pszPath) {
    if (!pszPath || !*pszPath) return nullptr;
    const wchar_t* pszLast = std::wcsrchr(pszPath, kRegSeparator);
    return pszLast ? pszLast + 1 : pszPath;
}

int RegKey::GetParentSubkeyName(const wchar_t* pszPath, wchar_t* pszOut, unsigned cchOut) {
    if (!pszOut || !cchOut) return 0;
    *pszOut = 0;
    const wchar_t* pszName = FindLastSubkeyName(pszPath);
    if (!pszName) return 0;
    // Without a backslash the name is all of the path, and nothing is in front of it.
    std::size_t cch = pszName == pszPath ? 0 : static_cast<std::size_t>(pszName - pszPath) - 1;
    cch = std::min<std::size_t>(cch, cchOut - 1);
    std::wmemcpy(pszOut, pszPath, cch);
    pszOut[cch] = 0;
    return 1;
}
