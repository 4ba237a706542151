#include "runtime/text/str_append.h"
#include "runtime/messages/res_str.h"
#include "runtime/text/text_format.h"

#include <algorithm>
#include <cwchar>

namespace {
void Append(wchar_t* pszText, unsigned cch, const wchar_t* pszFormat, va_list args) {
    wchar_t szFormatted[kMessageSize];
    auto cchNew = static_cast<std::size_t>(FormatTextV(szFormatted, kMessageSize, pszFormat, args));
    if (!pszText) return;
    std::size_t cchText = ::wcsnlen(pszText, cch);
    if (cchText == cch) return; // no end within its characters: nothing is behind it
    std::size_t cchFitting = std::min(cchNew, cch - 1 - cchText);
    std::wmemcpy(pszText + cchText, szFormatted, cchFitting);
    pszText[cchText + cchFitting] = 0;
}

void Clear(wchar_t* pszText, unsigned cch) {
    if (pszText && cch) *pszText = 0;
}
} // namespace

void StrAppendTextFmt(wchar_t* pszText, unsigned cch, const wchar_t* pszFormat, ...) {
    if (!pszFormat) return Clear(pszText, cch);
    va_list args;
    va_start(args, pszFormat);
    Append(pszText, cch, pszFormat, args);
    va_end(args);
}

void StrAppendTextFmt(wchar_t* pszText, unsigned cch, int nFormatId, ...) {
    if (nFormatId == 0) return Clear(pszText, cch);
    ResStr format(nFormatId);
    va_list args;
    va_start(args, nFormatId);
    Append(pszText, cch, format, args);
    va_end(args);
}
