#include "runtime/text/text_format.h"
#include "runtime/base/heap_array.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <string_view>

// The host program is compiled with this too, so that it can say something before the library is
// there: nothing here may need another part of the library.
//
// The platform reads a format that it does not know in ways of its own, and would write through %n;
// such formats are repaired before they get there.

namespace {
template <class Ch>
bool IsOneOf(Ch ch, std::string_view set) {
    return std::any_of(set.begin(), set.end(), [ch](char chOne) { return ch == Ch(chOne); });
}

/// The end of the conversion that starts at the '%' of psz, or psz itself if the platform would
/// not know it, or if it would write (%n).
template <class Ch>
const Ch* EndOfConversion(const Ch* psz) {
    const Ch* p = psz + 1;
    if (*p == '%') return p + 1;
    while (IsOneOf(*p, "-+ #0")) ++p;
    while (IsOneOf(*p, "*.0123456789")) ++p;
    if (p[0] == 'I' && ((p[1] == '6' && p[2] == '4') || (p[1] == '3' && p[2] == '2'))) {
        p += 3;
    } else {
        while (IsOneOf(*p, "hlLIw")) ++p;
    }
    return IsOneOf(*p, "cCdiouxXeEfgGsSp") ? p + 1 : psz;
}

/// Whether the platform knows every conversion.
template <class Ch>
bool IsSound(const Ch* pszFormat) {
    for (const Ch* p = pszFormat; *p;) {
        if (*p != '%') {
            ++p;
            continue;
        }
        const Ch* pEnd = EndOfConversion(p);
        if (pEnd == p) return false;
        p = pEnd;
    }
    return true;
}

/// Copies the format with every '%' that starts no conversion doubled. The copy has room for twice
/// the format's length.
template <class Ch>
void CopyRepaired(Ch* pszOut, const Ch* pszFormat) {
    for (const Ch* p = pszFormat; *p;) {
        if (*p != '%') {
            *pszOut++ = *p++;
            continue;
        }
        const Ch* pEnd = EndOfConversion(p);
        if (pEnd == p) {
            *pszOut++ = '%';
            *pszOut++ = *p++;
        } else {
            while (p < pEnd) *pszOut++ = *p++;
        }
    }
    *pszOut = 0;
}

// These two are the platform's own on every toolchain; vswprintf and vsnprintf change their dialect
// with the C++ library's settings. They give a negative result for a cut and then do not terminate.
int Print(wchar_t* pszBuffer, std::size_t cch, const wchar_t* pszFormat, va_list args) {
    return _vsnwprintf(pszBuffer, cch, pszFormat, args);
}
int Print(char* pszBuffer, std::size_t cch, const char* pszFormat, va_list args) {
    return _vsnprintf(pszBuffer, cch, pszFormat, args);
}

template <class Ch>
int FormatSound(Ch* pszBuffer, std::size_t cchBuffer, const Ch* pszFormat, va_list args) {
    int n = Print(pszBuffer, cchBuffer - 1, pszFormat, args);
    if (n < 0 || static_cast<std::size_t>(n) >= cchBuffer) n = static_cast<int>(cchBuffer - 1);
    pszBuffer[n] = 0;
    // A %c of 0 ends the text early.
    return static_cast<int>(std::char_traits<Ch>::length(pszBuffer));
}

template <class Ch>
int FormatAny(Ch* pszBuffer, std::size_t cchBuffer, const Ch* pszFormat, va_list args) {
    if (!pszBuffer || cchBuffer == 0) return 0;
    // A conversion that fails half-way leaves no old text.
    std::memset(pszBuffer, 0, cchBuffer * sizeof(Ch));
    if (!pszFormat) return 0;
    if (IsSound(pszFormat)) return FormatSound(pszBuffer, cchBuffer, pszFormat, args);
    std::size_t cchFormat = std::char_traits<Ch>::length(pszFormat);
    HeapArray<Ch> repaired(2 * cchFormat + 1);
    if (!repaired.IsReady()) return 0;
    CopyRepaired(repaired.Get(), pszFormat);
    return FormatSound(pszBuffer, cchBuffer, static_cast<const Ch*>(repaired.Get()), args);
}
} // namespace

int FormatTextV(wchar_t* pszBuffer, std::size_t cchBuffer, const wchar_t* pszFormat, va_list args) {
    return FormatAny(pszBuffer, cchBuffer, pszFormat, args);
}

int FormatNarrowTextV(char* pszBuffer, std::size_t cchBuffer, const char* pszFormat, va_list args) {
    return FormatAny(pszBuffer, cchBuffer, pszFormat, args);
}

int FormatText(wchar_t* pszBuffer, std::size_t cchBuffer, const wchar_t* pszFormat, ...) {
    va_list args;
    va_start(args, pszFormat);
    int n = FormatTextV(pszBuffer, cchBuffer, pszFormat, args);
    va_end(args);
    return n;
}
