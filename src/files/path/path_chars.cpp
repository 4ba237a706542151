#include "files/path/path_chars.h"
#include "files/path/path_shape.h"
#include "runtime/text/str_chars.h"

#include <cwchar>

namespace {
std::size_t LengthUpTo(const wchar_t* psz, std::size_t cchMax) {
    std::size_t cch = 0;
    while (psz && cch < cchMax && psz[cch]) ++cch;
    return cch;
}

void PutText(wchar_t* pszOut, const wchar_t* psz, std::size_t cch) {
    if (cch && psz != pszOut) std::wmemmove(pszOut, psz, cch);
    pszOut[cch] = 0;
}
} // namespace

int DriveOfLetter(wchar_t ch) { return IsAlphaChar(ch) ? CharToUpper(ch) - L'A' : -1; }

wchar_t* SkipRoot(wchar_t* pszPath) {
    if (IsDosFolder(pszPath)) return pszPath + 3;
    if (!IsNetworkPath(pszPath)) return nullptr;
    wchar_t* p = EndOfName(pszPath + 2); // behind the server
    if (*p) p = EndOfName(p + 1);        // behind the share
    return *p ? p + 1 : p;
}

int FitsPath(const wchar_t* psz) {
    if (!psz) return 0;
    for (std::size_t i = 0; i < kPathChars; ++i) {
        if (!psz[i]) return 1;
    }
    return 0;
}

std::size_t CopyTextPart(wchar_t* pszOut, const wchar_t* psz, std::size_t cchMax) {
    if (!pszOut) return 0;
    std::size_t cch = LengthUpTo(psz, cchMax);
    PutText(pszOut, psz, cch);
    return cch;
}

int CopyTextCut(wchar_t* pszOut, std::size_t cchOut, const wchar_t* psz) {
    if (!pszOut || cchOut == 0) return 0;
    std::size_t cch = LengthUpTo(psz, cchOut - 1);
    int bWhole = !psz || !psz[cch]; // before the copy, which may lie over it
    PutText(pszOut, psz, cch);
    return bWhole;
}

int AppendTextCut(wchar_t* pszOut, std::size_t cchOut, const wchar_t* psz) {
    std::size_t cch = std::wcslen(pszOut);
    return cch < cchOut ? CopyTextCut(pszOut + cch, cchOut - cch, psz) : !psz || !*psz;
}

void AddQuotes(wchar_t* pszPath) {
    std::size_t cch = std::wcslen(pszPath);
    std::wmemmove(pszPath + 1, pszPath, cch);
    pszPath[0] = pszPath[cch + 1] = L'"';
    pszPath[cch + 2] = 0;
}
