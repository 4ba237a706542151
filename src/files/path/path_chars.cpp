#include "files/path/path_chars.h"

#include <cwchar>

namespace {
/// Writes nothing where the text stands already, so that a text may be cut in place.
void PutText(wchar_t* pszOut, const wchar_t* psz, std::size_t cch) {
    if (cch && psz != pszOut) std::wmemmove(pszOut, psz, cch);
    pszOut[cch] = 0;
}
} // namespace

int DriveOfLetter(wchar_t ch) { return IsAlphaChar(ch) ? CharToUpper(ch) - L'A' : -1; }

wchar_t* SkipRoot(wchar_t* pszPath) {
    if (StartsWithDriveRoot(pszPath)) return pszPath + 3;
    if (!StartsWithServer(pszPath)) return nullptr;
    wchar_t* p = EndOfName(pszPath + 2); // behind the server
    if (*p) p = EndOfName(p + 1);        // behind the share
    return *p ? p + 1 : p;
}

std::size_t LengthWithoutSeparator(const wchar_t* pszPath, std::size_t cch) {
    if (!EndsInSeparator(pszPath, cch)) return cch;
    // "C:" would be another folder than "C:\", and of two separators each has a meaning.
    return cch == 1 || !IsPathBreak(pszPath[cch - 2]) ? cch - 1 : cch;
}

std::size_t LengthUpTo(const wchar_t* psz, std::size_t cchMax) {
    std::size_t cch = 0;
    while (psz && cch < cchMax && psz[cch]) ++cch;
    return cch;
}

// Looks no further than a path may go: the text need not end there.
bool FitsPath(const wchar_t* psz) { return psz && LengthUpTo(psz, kPathChars) < kPathChars; }

std::size_t CopyTextPart(wchar_t* pszOut, const wchar_t* psz, std::size_t cchMax) {
    if (!pszOut) return 0;
    std::size_t cch = LengthUpTo(psz, cchMax);
    PutText(pszOut, psz, cch);
    return cch;
}

bool CopyTextCut(wchar_t* pszOut, std::size_t cchOut, const wchar_t* psz) {
    if (!pszOut || cchOut == 0) return false;
    std::size_t cch = LengthUpTo(psz, cchOut - 1);
    bool bWhole = !psz || !psz[cch]; // before the copy, which may lie over it
    PutText(pszOut, psz, cch);
    return bWhole;
}

bool AppendTextCut(wchar_t* pszOut, std::size_t cchOut, const wchar_t* psz) {
    std::size_t cch = std::wcslen(pszOut);
    return cch < cchOut ? CopyTextCut(pszOut + cch, cchOut - cch, psz) : !psz || !*psz;
}

void AddQuotes(wchar_t* pszPath) {
    std::size_t cch = std::wcslen(pszPath);
    std::wmemmove(pszPath + 1, pszPath, cch);
    pszPath[0] = pszPath[cch + 1] = L'"';
    pszPath[cch + 2] = 0;
}
