#include "runtime/text/str_format.h"
#include "runtime/base/heap_array.h"

#include <windows.h>
#include <algorithm>
#include <cstdio>
#include <cstring>
#include <cwchar>
#include <string_view>

// The formatter. The platform reads a format that it does not know in ways of its own, and would
// write through %n; such formats are repaired before they get there.

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

// Sizes, times, names that have to fit

namespace {
constexpr unsigned kSecondsPerMinute = 60, kSecondsPerHour = 3600;

struct SizeUnit {
    unsigned nShift; // 2 to the nShift bytes are one
    const wchar_t* pszWithTenth;
    const wchar_t* pszWhole;
};
constexpr SizeUnit kSizeUnits[] = {
    {40, L"%d.%d TB", L"%d TB"},
    {30, L"%d.%d GB", L"%d GB"},
    {20, L"%d.%d MB", L"%d MB"},
    {10, L"%d.%d KB", L"%d KB"},
};
constexpr unsigned kUnitBits = 10;
} // namespace

// QUIRK: cut, not rounded: one byte less than 2 KB is "1.9 KB".
// Test: SizeToStrTable.GivesTheLargestUnit/CutNotRounded
void SizeToStr(wchar_t* pszText, unsigned cch, unsigned long long cb, int bAlwaysDecimal) {
    for (const SizeUnit& unit : kSizeUnits) {
        auto nWhole = static_cast<int>(cb >> unit.nShift);
        if (nWhole == 0) continue;
        constexpr unsigned kMask = (1u << kUnitBits) - 1;
        unsigned nNextBits = static_cast<unsigned>(cb >> (unit.nShift - kUnitBits)) & kMask;
        unsigned nTenth = nNextBits * 10 >> kUnitBits;
        const wchar_t* pszFormat = nTenth || bAlwaysDecimal ? unit.pszWithTenth : unit.pszWhole;
        FormatText(pszText, cch, pszFormat, nWhole, nTenth);
        return;
    }
    FormatText(pszText, cch, L"%d B", static_cast<int>(cb));
}

int GetTextRemaining(unsigned nSeconds, wchar_t* pszText, unsigned cch, int bLongForm) {
    if (pszText && cch) *pszText = 0;
    if (nSeconds == 0) return 0;
    if (nSeconds < kSecondsPerMinute) {
        FormatText(pszText, cch, bLongForm ? L"%d seconds" : L"%d s", nSeconds);
    } else if (nSeconds < kSecondsPerHour) {
        FormatText(pszText, cch, bLongForm ? L"%d minute(s) %d seconds" : L"%d m %d s",
                   nSeconds / kSecondsPerMinute, nSeconds % kSecondsPerMinute);
    } else {
        FormatText(pszText, cch, bLongForm ? L"%d hour(s) %d minutes" : L"%d h %d m",
                   nSeconds / kSecondsPerHour, nSeconds % kSecondsPerHour / kSecondsPerMinute);
    }
    return 1;
}

const wchar_t* FitText(const wchar_t* pszText, int cxFull, int cxWanted) {
    static wchar_t szFitted[kFitTextSize];
    static constexpr wchar_t kDots[] = L"...";
    constexpr int kDotsLength = 3;
    if (cxFull <= cxWanted || !pszText || !*pszText) return pszText;
    if (cxWanted <= 0) return L""; // the proportion below is made for widths
    int n = static_cast<int>(std::wcslen(pszText));
    int nCut = n - ::MulDiv(n, cxWanted, cxFull) + kDotsLength;
    int nHead = (n - nCut) / 2;
    if (nHead <= 0) return L"";
    const wchar_t* pTail = pszText + nHead + nCut;
    int nTail = n - nHead - nCut;
    // The buffer's bound falls on the head first, then on the tail.
    constexpr int kRoom = static_cast<int>(kFitTextSize) - 1 - kDotsLength;
    nHead = std::min(nHead, kRoom);
    nTail = std::min(nTail, kRoom - nHead);
    // The text may be an earlier result in the same buffer; the dots end before the tail begins,
    // because at least as much is cut.
    std::wmemmove(szFitted, pszText, static_cast<std::size_t>(nHead));
    std::wmemcpy(szFitted + nHead, kDots, kDotsLength);
    std::wmemmove(szFitted + nHead + kDotsLength, pTail, static_cast<std::size_t>(nTail));
    szFitted[nHead + kDotsLength + nTail] = 0;
    return szFitted;
}

// Formatting and appending

void StrAppendTextFmtV(wchar_t* pszText, unsigned cch, const wchar_t* pszFormat, va_list args) {
    if (!pszFormat) {
        if (pszText && cch) *pszText = 0;
        return;
    }
    wchar_t szFormatted[kMessageSize]; // apart from the text, which may be among the arguments
    auto cchNew = static_cast<std::size_t>(FormatTextV(szFormatted, kMessageSize, pszFormat, args));
    if (!pszText) return;
    std::size_t cchText = ::wcsnlen(pszText, cch);
    if (cchText == cch) return; // no end within its characters: nothing is behind it
    std::size_t cchFitting = std::min(cchNew, cch - 1 - cchText);
    std::wmemcpy(pszText + cchText, szFormatted, cchFitting);
    pszText[cchText + cchFitting] = 0;
}

void StrAppendTextFmt(wchar_t* pszText, unsigned cch, const wchar_t* pszFormat, ...) {
    va_list args;
    va_start(args, pszFormat);
    StrAppendTextFmtV(pszText, cch, pszFormat, args);
    va_end(args);
}
