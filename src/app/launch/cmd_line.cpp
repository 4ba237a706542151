#include "app/launch/cmd_line.h"
#include "runtime/text/str_chars.h"

namespace {
bool IsSwitchSign(wchar_t ch) { return ch == L'/' || ch == L'-'; }

bool IsDataSign(wchar_t ch) { return ch == L':' || ch == L'='; }

const wchar_t* SkipBlanks(const wchar_t* psz) {
    while (*psz == L' ') ++psz;
    return psz;
}

/// The characters from pszBegin up to pszEnd, as many as fit.
void CopyRange(wchar_t* pszBuffer, int cchBuffer, const wchar_t* pszBegin, const wchar_t* pszEnd) {
    if (!pszBuffer || cchBuffer <= 0) return;
    while (pszBegin < pszEnd && --cchBuffer > 0) *pszBuffer++ = *pszBegin++;
    *pszBuffer = 0;
}

const wchar_t* FindEnd(const wchar_t* psz) {
    while (*psz) ++psz;
    return psz;
}

/// The first quote; the terminator if there is none.
const wchar_t* FindQuote(const wchar_t* psz) {
    while (*psz && *psz != L'"') ++psz;
    return psz;
}

/// Where the text goes on behind the prefix; null if it does not begin with it.
const wchar_t* SkipPrefix(const wchar_t* pszText, const wchar_t* pszPrefix) {
    for (; *pszPrefix; ++pszText, ++pszPrefix) {
        if (*pszText == *pszPrefix) continue;
        if (!*pszText || CharToUpper(*pszText) != CharToUpper(*pszPrefix)) return nullptr;
    }
    return pszText;
}

bool IsSameName(const wchar_t* pszText, const wchar_t* pszName) {
    const wchar_t* pszRest = SkipPrefix(pszText, pszName);
    return pszRest && !*pszRest;
}

/// A line's first token, as it lies in the line.
struct FirstToken {
    const wchar_t* pszBegin;
    const wchar_t* pszEnd; // its closing quote, a blank, a tab or the terminator
    bool bQuoted;
};

FirstToken FindFirstToken(const wchar_t* pszLine) {
    FirstToken token{pszLine, nullptr, false};
    token.bQuoted = SkipLeadingWhiteSpaces(token.pszBegin) != 0;
    if (token.bQuoted) {
        token.pszEnd = FindQuote(token.pszBegin);
        return token;
    }
    token.pszEnd = token.pszBegin;
    while (*token.pszEnd && !IsBlankOrTab(*token.pszEnd)) ++token.pszEnd;
    return token;
}

const wchar_t* FindArguments(const wchar_t* pszLine) {
    pszLine = SkipBlanksAndTabs(pszLine);
    FirstToken token = FindFirstToken(pszLine);
    if (*token.pszBegin == L'/') return pszLine;
    // Of a quoted token that begins with its closing quote, of another with blanks.
    const wchar_t* psz = token.pszEnd;
    SkipLeadingWhiteSpaces(psz);
    return psz;
}
} // namespace

int GetCmdLnPath(const wchar_t* pszLine, wchar_t* pszBuffer, int cchBuffer) {
    if (!pszBuffer || cchBuffer <= 0) return 0;
    *pszBuffer = 0;
    if (!pszLine) return 0;
    FirstToken token = FindFirstToken(pszLine);
    if (!token.bQuoted && token.pszBegin == token.pszEnd) return 0;
    CopyRange(pszBuffer, cchBuffer, token.pszBegin, token.pszEnd);
    return 1;
}

const wchar_t* GetCmdLnArg(const wchar_t* pszLine, wchar_t* pszBuffer, int cchBuffer) {
    const wchar_t* psz = FindArguments(pszLine ? pszLine : L"");
    CopyRange(pszBuffer, cchBuffer, psz, FindEnd(psz));
    return *psz ? psz : nullptr;
}

int IsCmdLineOption(const wchar_t* pszToken, const wchar_t* pszName) {
    if (!pszToken || !pszName) return 0;
    if (IsSameName(pszToken, pszName)) return 1;
    return IsSwitchSign(*pszToken) && IsSameName(pszToken + 1, pszName);
}

int IsCmdLineSwitchPrefix(const wchar_t* pszToken, const wchar_t* pszName) {
    if (!pszToken || !pszName || !IsSwitchSign(*pszToken)) return 0;
    if (SkipPrefix(pszToken + 1, pszName)) return 1;
    return SkipPrefix(pszToken + 1, pszName + 1) != nullptr;
}

int IsCmdLinePrefix(const wchar_t* pszToken, const wchar_t* pszName) {
    if (!pszToken || !pszName) return 0;
    const wchar_t* pszRest = SkipPrefix(pszToken, pszName);
    return pszRest && IsDataSign(*pszRest);
}

int GetCmdLineSwitchData(const wchar_t* pszToken, wchar_t* pszBuffer, int cchBuffer,
                         const wchar_t** ppszRest) {
    if (ppszRest) *ppszRest = nullptr;
    CopyRange(pszBuffer, cchBuffer, nullptr, nullptr);
    if (!pszToken) return 0;
    while (*pszToken && !IsDataSign(*pszToken)) ++pszToken;
    if (!*pszToken) return 0;
    const wchar_t* pszBegin = pszToken + 1;
    const wchar_t* pszEnd = pszBegin;
    if (*pszBegin == L'"') {
        pszEnd = FindQuote(pszBegin + 1);
        if (*pszEnd) ++pszEnd;
    } else {
        while (*pszEnd && *pszEnd != L' ') ++pszEnd;
    }
    CopyRange(pszBuffer, cchBuffer, pszBegin, pszEnd);
    const wchar_t* pszRest = SkipBlanks(pszEnd);
    if (ppszRest && *pszRest) *ppszRest = pszRest;
    return 1;
}

int ParseCmdLn(const wchar_t* pszLine, wchar_t* pszPath, wchar_t* pszArguments) {
    if (!pszLine) pszLine = L"";
    bool bQuoted = *pszLine == L'"';
    const wchar_t* pszBegin = bQuoted ? pszLine + 1 : pszLine;
    const wchar_t* pszEnd = pszBegin;
    if (bQuoted) {
        pszEnd = FindQuote(pszBegin);
    } else {
        while (*pszEnd && *pszEnd != L' ') ++pszEnd;
    }
    int cchPath = static_cast<int>(pszEnd - pszBegin) + 1;
    CopyRange(pszPath, cchPath, pszBegin, pszEnd);
    while (*pszEnd == L'"' || *pszEnd == L' ') ++pszEnd;
    const wchar_t* pszLast = FindEnd(pszEnd);
    CopyRange(pszArguments, static_cast<int>(pszLast - pszEnd) + 1, pszEnd, pszLast);
    return cchPath > 1;
}
