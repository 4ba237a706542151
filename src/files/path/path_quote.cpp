#include "files/path/path_quote.h"
#include "files/path/path_chars.h"
#include "runtime/text/str_white.h"

#include <cwchar>

namespace {
constexpr wchar_t kQuote = L'"';

/// The cch characters at psz, cut only if they come from elsewhere.
void PutText(wchar_t* pszOut, const wchar_t* psz, std::size_t cch, bool bInPlace) {
    if (!bInPlace && cch >= kPathChars) cch = kPathChars - 1;
    CopyTextPart(pszOut, psz, cch);
}

const wchar_t* DropBlanksAndTabs(const wchar_t* pStart, const wchar_t* pEnd) {
    while (pEnd > pStart && (pEnd[-1] == L' ' || pEnd[-1] == L'\t')) --pEnd;
    return pEnd;
}
} // namespace

void AddQuotesIfSpace(wchar_t* pszPath) {
    if (pszPath && std::wcschr(pszPath, L' ')) AddQuotes(pszPath);
}

void UnQuote(wchar_t* pszOut, const wchar_t* pszIn) {
    if (!pszOut) return;
    const wchar_t* p = pszIn ? pszIn : pszOut;
    const wchar_t* pEnd = nullptr;
    if (*p == kQuote) pEnd = std::wcschr(++p, kQuote);
    std::size_t cch = pEnd ? static_cast<std::size_t>(pEnd - p) : std::wcslen(p);
    PutText(pszOut, p, cch, !pszIn);
}

void RemoveWhiteSpacesAndQuotes(wchar_t* pszOut, const wchar_t* pszIn) {
    if (!pszOut) return;
    const wchar_t* p = pszIn ? pszIn : pszOut;
    SkipLeadingWhiteSpaces(p);
    const wchar_t* pEnd = DropBlanksAndTabs(p, p + std::wcslen(p));
    if (pEnd > p && pEnd[-1] == kQuote) pEnd = DropBlanksAndTabs(p, pEnd - 1);
    PutText(pszOut, p, static_cast<std::size_t>(pEnd - p), !pszIn);
}
