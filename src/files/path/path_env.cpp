#include "files/path/path_env.h"
#include "files/path/path_chars.h"

#include <windows.h>
#include <shlwapi.h>

namespace {
int Expand(const wchar_t* pszIn, wchar_t* pszOut, unsigned cchOut) {
    DWORD cch = ::ExpandEnvironmentStringsW(pszIn, pszOut, cchOut); // with the terminator
    return cch > 1 && cch <= cchOut && *pszOut;
}

int UnExpand(const wchar_t* pszIn, wchar_t* pszOut, unsigned cchOut) {
    return ::PathUnExpandEnvStringsW(pszIn, pszOut, cchOut) && *pszOut;
}

/// The platform's functions do not work in place.
template <class Fn>
int ChangeOrCopy(Fn&& change, const wchar_t* pszIn, wchar_t* pszOut, unsigned cchOut) {
    if (!pszOut || cchOut == 0) return 0;
    wchar_t szIn[kPathChars];
    if (pszIn >= pszOut && pszIn < pszOut + cchOut) {
        if (!CopyPath(szIn, pszIn)) return CopyTextCut(pszOut, cchOut, pszIn);
        pszIn = szIn;
    }
    if (pszIn && *pszIn && change(pszIn, pszOut, cchOut)) return 1;
    return CopyTextCut(pszOut, cchOut, pszIn);
}
} // namespace

int ExpandEnvStrings(const wchar_t* pszIn, wchar_t* pszOut, unsigned cchOut) {
    return ChangeOrCopy(Expand, pszIn, pszOut, cchOut);
}

int UnExpandEnvStrings(const wchar_t* pszIn, wchar_t* pszOut, unsigned cchOut) {
    return ChangeOrCopy(UnExpand, pszIn, pszOut, cchOut);
}
