#include "runtime/text/code_page.h"

#include <windows.h>

namespace {
/// What the platform leaves in a destination that is too small has no terminator.
template <class Char>
int EmptyOnFailure(int n, Char* pszOut, int cOut) {
    if (n == 0 && pszOut && cOut > 0) *pszOut = 0;
    return n;
}

int Widen(UINT uCodePage, const char* pszText, wchar_t* pszOut, int cchOut) {
    int n = ::MultiByteToWideChar(uCodePage, 0, pszText, -1, pszOut, cchOut);
    return EmptyOnFailure(n, pszOut, cchOut);
}

int Narrow(UINT uCodePage, const wchar_t* pszText, char* pszOut, int cbOut) {
    int n = ::WideCharToMultiByte(uCodePage, 0, pszText, -1, pszOut, cbOut, nullptr, nullptr);
    return EmptyOnFailure(n, pszOut, cbOut);
}
} // namespace

int mb2wc(const char* pszText, wchar_t* pszOut, int cchOut) {
    return Widen(CP_ACP, pszText, pszOut, cchOut);
}
int wc2mb(const wchar_t* pszText, char* pszOut, int cbOut) {
    return Narrow(CP_ACP, pszText, pszOut, cbOut);
}
int mb2wcOEM(const char* pszText, wchar_t* pszOut, int cchOut) {
    return Widen(CP_OEMCP, pszText, pszOut, cchOut);
}
int wc2mbOEM(const wchar_t* pszText, char* pszOut, int cbOut) {
    return Narrow(CP_OEMCP, pszText, pszOut, cbOut);
}
int utf82wc(const char* pszText, wchar_t* pszOut, int cchOut) {
    return Widen(CP_UTF8, pszText, pszOut, cchOut);
}
int wc2utf8(const wchar_t* pszText, char* pszOut, int cbOut) {
    return Narrow(CP_UTF8, pszText, pszOut, cbOut);
}
