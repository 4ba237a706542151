#include "runtime/text_format.h"
#include "runtime/scope_exit.h"

#include <cstdio>
#include <cwchar>
#include <new>

namespace {
bool IsOneOf(wchar_t ch, const wchar_t* pszSet) { return ch && std::wcschr(pszSet, ch); }

/// The end of the conversion that starts at the '%' of psz, or psz itself if the platform would
/// not know it, or if it would write (%n).
const wchar_t* EndOfConversion(const wchar_t* psz) {
    const wchar_t* p = psz + 1;
    if (*p == L'%') return p + 1;
    while (IsOneOf(*p, L"-+ #0")) ++p;
    while (IsOneOf(*p, L"*.0123456789")) ++p;
    if (p[0] == L'I' && ((p[1] == L'6' && p[2] == L'4') || (p[1] == L'3' && p[2] == L'2'))) {
        p += 3;
    } else {
        while (IsOneOf(*p, L"hlLIw")) ++p;
    }
    return IsOneOf(*p, L"cCdiouxXeEfgGsSp") ? p + 1 : psz;
}

bool IsSound(const wchar_t* pszFormat) {
    for (const wchar_t* p = pszFormat; *p;) {
        if (*p != L'%') {
            ++p;
            continue;
        }
        const wchar_t* pEnd = EndOfConversion(p);
        if (pEnd == p) return false;
        p = pEnd;
    }
    return true;
}

/// Copies the format with every '%' that starts no conversion doubled. The copy has room for twice
/// the format's length.
void CopyRepaired(wchar_t* pszOut, const wchar_t* pszFormat) {
    for (const wchar_t* p = pszFormat; *p;) {
        if (*p != L'%') {
            *pszOut++ = *p++;
            continue;
        }
        const wchar_t* pEnd = EndOfConversion(p);
        if (pEnd == p) {
            *pszOut++ = L'%';
            *pszOut++ = *p++;
        } else {
            while (p < pEnd) *pszOut++ = *p++;
        }
    }
    *pszOut = 0;
}

int FormatSound(wchar_t* pszBuffer, std::size_t cchBuffer, const wchar_t* pszFormat, va_list args) {
    // _vsnwprintf is the platform's own on every toolchain; vswprintf changes its dialect with the
    // C++ library's settings. It gives a negative result for a cut and then does not terminate.
    int n = _vsnwprintf(pszBuffer, cchBuffer - 1, pszFormat, args);
    if (n < 0 || static_cast<std::size_t>(n) >= cchBuffer) n = static_cast<int>(cchBuffer - 1);
    pszBuffer[n] = 0;
    return static_cast<int>(std::wcslen(pszBuffer)); // a %c of 0 ends the text early
}
} // namespace

int FormatTextV(wchar_t* pszBuffer, std::size_t cchBuffer, const wchar_t* pszFormat, va_list args) {
    if (!pszBuffer || cchBuffer == 0) return 0;
    std::wmemset(pszBuffer, 0, cchBuffer); // a conversion that fails half-way leaves no old text
    if (!pszFormat) return 0;
    if (IsSound(pszFormat)) return FormatSound(pszBuffer, cchBuffer, pszFormat, args);
    wchar_t* pszRepaired = new (std::nothrow) wchar_t[2 * std::wcslen(pszFormat) + 1];
    if (!pszRepaired) return 0;
    ScopeExit release([&] { delete[] pszRepaired; });
    CopyRepaired(pszRepaired, pszFormat);
    return FormatSound(pszBuffer, cchBuffer, pszRepaired, args);
}

int FormatText(wchar_t* pszBuffer, std::size_t cchBuffer, const wchar_t* pszFormat, ...) {
    va_list args;
    va_start(args, pszFormat);
    int n = FormatTextV(pszBuffer, cchBuffer, pszFormat, args);
    va_end(args);
    return n;
}
