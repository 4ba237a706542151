#include "files/path_chars.h"

#include <cwchar>

std::size_t CopyTextPart(wchar_t* pszOut, const wchar_t* psz, std::size_t cchMax) {
    if (!pszOut) return 0;
    std::size_t cch = 0;
    while (psz && cch < cchMax && psz[cch]) ++cch;
    if (cch && psz != pszOut) std::wmemmove(pszOut, psz, cch);
    pszOut[cch] = 0;
    return cch;
}

int CopyTextCut(wchar_t* pszOut, std::size_t cchOut, const wchar_t* psz) {
    if (!pszOut || cchOut == 0) return 0;
    const wchar_t* pszEnd = psz;
    while (pszEnd && *pszEnd && static_cast<std::size_t>(pszEnd - psz) < cchOut) ++pszEnd;
    bool bWhole = static_cast<std::size_t>(pszEnd - psz) < cchOut;
    CopyTextPart(pszOut, psz, cchOut - 1);
    return bWhole;
}

int AppendTextCut(wchar_t* pszOut, std::size_t cchOut, const wchar_t* psz) {
    std::size_t cch = std::wcslen(pszOut);
    return cch < cchOut ? CopyTextCut(pszOut + cch, cchOut - cch, psz) : !psz || !*psz;
}
