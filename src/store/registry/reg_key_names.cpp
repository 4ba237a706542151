#include "store/registry/reg_key_names.h"

#include <windows.h>

namespace {
constexpr wchar_t kSeparator = L'\\';

wchar_t UpperOf(wchar_t ch) {
    // A pointer below 64K is a single character for this function.
    auto* psz = reinterpret_cast<wchar_t*>(static_cast<ULONG_PTR>(ch));
    return static_cast<wchar_t>(reinterpret_cast<ULONG_PTR>(::CharUpperW(psz)));
}

int IsSameChar(wchar_t chLeft, wchar_t chRight) {
    return chLeft == chRight || UpperOf(chLeft) == UpperOf(chRight);
}

int IsAtEnd(const wchar_t* psz) { return !*psz || *psz == kSeparator; }

const wchar_t* SkipSeparators(const wchar_t* psz) {
    while (*psz == kSeparator) ++psz;
    return psz;
}
} // namespace

int IsSameRegName(const wchar_t* pszLeft, const wchar_t* pszRight) {
    for (; *pszLeft && *pszRight; ++pszLeft, ++pszRight) {
        if (!IsSameChar(*pszLeft, *pszRight)) return 0;
    }
    return *pszLeft == *pszRight;
}

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
