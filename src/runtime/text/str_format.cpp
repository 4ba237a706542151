#include "runtime/text/str_format.h"

#include <windows.h>
#include <algorithm>
#include <cwchar>

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
