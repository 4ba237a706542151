#include "files/path/path_cmd.h"
#include "files/path/path_chars.h"
#include "files/path/path_env.h"

#include <cwchar>

namespace {
constexpr wchar_t kPlace[] = L"%1";
constexpr std::size_t kPlaceLength = 2;

bool IsBlankOrTab(wchar_t ch) { return ch == L' ' || ch == L'\t'; }

const wchar_t* SkipBlanksAndTabs(const wchar_t* psz) {
    while (IsBlankOrTab(*psz)) ++psz;
    return psz;
}

/// The command's first word; psz moves to what follows.
const wchar_t* TakeWord(const wchar_t*& psz, std::size_t& cch) {
    const wchar_t* pWord = SkipBlanksAndTabs(psz);
    const wchar_t* pEnd = pWord;
    if (*pWord == L'"') {
        pEnd = ++pWord;
        while (*pEnd && *pEnd != L'"') ++pEnd;
    } else {
        while (*pEnd && !IsBlankOrTab(*pEnd)) ++pEnd;
    }
    cch = static_cast<std::size_t>(pEnd - pWord);
    psz = SkipBlanksAndTabs(*pEnd == L'"' ? pEnd + 1 : pEnd);
    return pWord;
}

/// The word, expanded, and two terminators into cchOut characters.
int PutProgram(wchar_t* pszOut, std::size_t cchOut, const wchar_t* pWord, std::size_t cchWord) {
    wchar_t szWord[kPathChars];
    if (cchOut < 2 || cchWord >= kPathChars) return 0;
    CopyTextPart(szWord, pWord, cchWord);
    if (!ExpandEnvStrings(szWord, pszOut, static_cast<unsigned>(cchOut - 1))) return 0;
    pszOut[std::wcslen(pszOut) + 1] = 0;
    return 1;
}

/// The rest of the command with the path in each of its places.
int PutInPlaces(wchar_t* pszOut, std::size_t cchOut, const wchar_t* pszRest,
                const wchar_t* pszPath) {
    for (const wchar_t* pPlace; (pPlace = std::wcsstr(pszRest, kPlace));
         pszRest = pPlace + kPlaceLength) {
        auto cch = static_cast<std::size_t>(pPlace - pszRest);
        if (cch + std::wcslen(pszPath) >= cchOut) return 0;
        cch = CopyTextPart(pszOut, pszRest, cch);
        cch += CopyTextPart(pszOut + cch, pszPath, cchOut - cch - 1);
        pszOut += cch;
        cchOut -= cch;
    }
    return CopyTextCut(pszOut, cchOut, pszRest);
}

int PutArgs(wchar_t* pszOut, std::size_t cchOut, const wchar_t* pszRest, const wchar_t* pszPath) {
    if (!*pszRest) return CopyTextCut(pszOut, cchOut, pszPath);
    if (std::wcsstr(pszRest, kPlace)) return PutInPlaces(pszOut, cchOut, pszRest, pszPath);
    return CopyTextCut(pszOut, cchOut, pszRest) && AppendTextCut(pszOut, cchOut, L" ") &&
           AppendTextCut(pszOut, cchOut, pszPath);
}
} // namespace

int PreparePathArg(const wchar_t* pszCommand, const wchar_t* pszPath, wchar_t* pszProgram,
                   wchar_t* pszArgs, unsigned cch) {
    if (!pszProgram || !pszArgs || cch == 0) return 0;
    const wchar_t* pszRest = pszCommand ? pszCommand : L"";
    std::size_t cchWord = 0;
    const wchar_t* pWord = TakeWord(pszRest, cchWord);
    *pszArgs = 0;
    if (!PutProgram(pszProgram, cch < kPathChars ? cch : kPathChars, pWord, cchWord)) {
        *pszProgram = 0; // a cut name would be another program
        return 0;
    }
    if (PutArgs(pszArgs, cch, pszRest, pszPath ? pszPath : L"")) return 1;
    *pszArgs = 0;
    return 0;
}
