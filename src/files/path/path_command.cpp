#include "files/path/path_command.h"
#include "files/path/path_chars.h"
#include "runtime/base/heap_array.h"
#include "runtime/text/str_chars.h"

#include <windows.h>
#include <shlwapi.h>
#include <algorithm>
#include <cwchar>

namespace {
constexpr wchar_t kPlace[] = L"%1";
constexpr std::size_t kPlaceLength = 2;
constexpr wchar_t kQuote = L'"';

// The parts of a command

/// Takes the command's first word; psz moves to what follows.
const wchar_t* TakeWord(const wchar_t*& psz, std::size_t& cch) {
    const wchar_t* pWord = SkipBlanksAndTabs(psz);
    const wchar_t* pEnd = pWord;
    if (*pWord == kQuote) {
        pEnd = ++pWord;
        while (*pEnd && *pEnd != kQuote) ++pEnd;
    } else {
        while (*pEnd && !IsBlankOrTab(*pEnd)) ++pEnd;
    }
    cch = static_cast<std::size_t>(pEnd - pWord);
    psz = SkipBlanksAndTabs(*pEnd == kQuote ? pEnd + 1 : pEnd);
    return pWord;
}

/// Writes the word, expanded, and two terminators into cchOut characters. False if it does not fit.
bool PutProgram(wchar_t* pszOut, std::size_t cchOut, const wchar_t* pWord, std::size_t cchWord) {
    wchar_t szWord[kPathChars];
    if (cchOut < 2 || cchWord >= kPathChars) return false;
    CopyTextPart(szWord, pWord, cchWord);
    if (!ExpandEnvStrings(szWord, pszOut, static_cast<unsigned>(cchOut - 1))) return false;
    pszOut[std::wcslen(pszOut) + 1] = 0;
    return true;
}

/// Writes the rest of the command with the path in each of its places. False if it does not fit.
bool PutInPlaces(wchar_t* pszOut, std::size_t cchOut, const wchar_t* pszRest,
                 const wchar_t* pszPath) {
    for (const wchar_t* pPlace; (pPlace = std::wcsstr(pszRest, kPlace));
         pszRest = pPlace + kPlaceLength) {
        auto cch = static_cast<std::size_t>(pPlace - pszRest);
        if (cch + std::wcslen(pszPath) >= cchOut) return false;
        cch = CopyTextPart(pszOut, pszRest, cch);
        cch += CopyTextPart(pszOut + cch, pszPath, cchOut - cch - 1);
        pszOut += cch;
        cchOut -= cch;
    }
    return CopyTextCut(pszOut, cchOut, pszRest);
}

bool PutArgs(wchar_t* pszOut, std::size_t cchOut, const wchar_t* pszRest, const wchar_t* pszPath) {
    if (!*pszRest) return CopyTextCut(pszOut, cchOut, pszPath);
    if (std::wcsstr(pszRest, kPlace)) return PutInPlaces(pszOut, cchOut, pszRest, pszPath);
    return CopyTextCut(pszOut, cchOut, pszRest) && AppendTextCut(pszOut, cchOut, L" ") &&
           AppendTextCut(pszOut, cchOut, pszPath);
}

// Environment strings

/// What became of a text.
enum class Outcome {
    Done,
    Cut,  // it is done, but did not fit whole
    None, // the platform failed or left nothing
};

Outcome Expand(const wchar_t* pszIn, wchar_t* pszOut, unsigned cchOut) {
    DWORD cch = ::ExpandEnvironmentStringsW(pszIn, pszOut, cchOut); // with the terminator
    if (cch <= cchOut) return cch > 1 && *pszOut ? Outcome::Done : Outcome::None;
    // What the platform then left in the output is anything.
    HeapArray<wchar_t> whole(cch);
    DWORD cchWhole = whole.IsReady() ? ::ExpandEnvironmentStringsW(pszIn, whole.Get(), cch) : 0;
    CopyTextCut(pszOut, cchOut, cchWhole > 0 && cchWhole <= cch ? whole.Get() : nullptr);
    return Outcome::Cut;
}

Outcome UnExpand(const wchar_t* pszIn, wchar_t* pszOut, unsigned cchOut) {
    bool bDone = ::PathUnExpandEnvStringsW(pszIn, pszOut, cchOut) && *pszOut;
    return bDone ? Outcome::Done : Outcome::None;
}

/// The platform's functions do not work in place, so that an input in the output is copied first.
template <class Fn>
bool ChangeOrCopy(Fn&& change, const wchar_t* pszIn, wchar_t* pszOut, unsigned cchOut) {
    if (!pszOut || cchOut == 0) return false;
    wchar_t szIn[kPathChars];
    if (pszIn >= pszOut && pszIn < pszOut + cchOut) {
        if (!CopyPath(szIn, pszIn)) return CopyTextCut(pszOut, cchOut, pszIn);
        pszIn = szIn;
    }
    Outcome outcome = pszIn && *pszIn ? change(pszIn, pszOut, cchOut) : Outcome::None;
    if (outcome != Outcome::None) return outcome == Outcome::Done;
    return CopyTextCut(pszOut, cchOut, pszIn);
}

// Quotes

/// Writes the cch characters at psz. In place they fit, whatever their length; elsewhere they are
/// cut.
void PutText(wchar_t* pszOut, const wchar_t* psz, std::size_t cch, bool bInPlace) {
    if (!bInPlace) cch = std::min(cch, kPathChars - 1);
    CopyTextPart(pszOut, psz, cch);
}

const wchar_t* DropBlanksAndTabs(const wchar_t* pStart, const wchar_t* pEnd) {
    while (pEnd > pStart && IsBlankOrTab(pEnd[-1])) --pEnd;
    return pEnd;
}
} // namespace

int PreparePathArg(const wchar_t* pszCommand, const wchar_t* pszPath, wchar_t* pszProgram,
                   wchar_t* pszArgs, unsigned cch) {
    if (!pszProgram || !pszArgs || cch == 0) return 0;
    const wchar_t* pszRest = pszCommand ? pszCommand : L"";
    std::size_t cchWord = 0;
    const wchar_t* pWord = TakeWord(pszRest, cchWord);
    *pszArgs = 0;
    if (!PutProgram(pszProgram, std::min<std::size_t>(cch, kPathChars), pWord, cchWord)) {
        *pszProgram = 0; // a cut name would be another program
        return 0;
    }
    if (PutArgs(pszArgs, cch, pszRest, pszPath ? pszPath : L"")) return 1;
    *pszArgs = 0;
    return 0;
}

int ExpandEnvStrings(const wchar_t* pszIn, wchar_t* pszOut, unsigned cchOut) {
    return ChangeOrCopy(Expand, pszIn, pszOut, cchOut);
}

int UnExpandEnvStrings(const wchar_t* pszIn, wchar_t* pszOut, unsigned cchOut) {
    return ChangeOrCopy(UnExpand, pszIn, pszOut, cchOut);
}

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
