#include "files/disk/path_spelling.h"
#include "files/disk/path_drive.h"
#include "files/path/path_chars.h"
#include "files/path/path_command.h"
#include "files/path/path_name.h"
#include "files/path/path_shape.h"
#include "files/path/path_split.h"
#include "files/stream/core_file.h"
#include "runtime/text/str_chars.h"

#include <windows.h>
#include <algorithm>
#include <cwchar>
#include <utility>

namespace {
constexpr wchar_t kLevel = L'|';
constexpr wchar_t kSpelling = L'>';
constexpr wchar_t kBetweenLevels[] = L"|";
constexpr wchar_t kBetweenSpellings[] = L">";

/// Ends a text early for the length of a block, where the platform is to see its start alone.
class CutText {
  public:
    explicit CutText(wchar_t* pCut) : pEnd(pCut), chBehind(std::exchange(*pCut, L'\0')) {}
    CutText(const CutText&) = delete; // mends the text once
    CutText& operator=(const CutText&) = delete;
    ~CutText() { *pEnd = chBehind; }

  private:
    wchar_t* pEnd;
    wchar_t chBehind;
};

// Short and long names

/// Puts a drive's root into upper case. False for any other path, which stays.
bool UpperDriveRoot(wchar_t* pszPath) {
    if (!IsDrivePath(pszPath) && !IsRootFolder(pszPath, 0)) return false;
    CharToUpper(pszPath);
    return true;
}

/// "." and "..", under which the platform finds the folder that they mean, by its own name.
bool IsDots(const wchar_t* psz, std::size_t cch) {
    return (cch == 1 || cch == 2) && psz[0] == L'.' && psz[cch - 1] == L'.';
}

/// Gives the short form of a path that exists, without changing it. False if it does not, or if the
/// short form does not fit.
bool GetShortForm(const wchar_t* pszPath, wchar_t (&szShort)[kPathChars]) {
    DWORD cch = ::GetShortPathNameW(pszPath, szShort, kPathChars);
    return cch > 0 && cch < kPathChars;
}

/// Gives the short form of the longest part that exists, with the rest of the path behind it, cut
/// to fit. False if nothing of it exists.
bool GetShortFormOfPart(const wchar_t* pszPath, wchar_t (&szShort)[kPathChars]) {
    wchar_t szPart[kPathChars];
    CopyPath(szPart, pszPath);
    ConvertSlashes(szPart);
    for (std::size_t i = std::wcslen(szPart); i-- > 0;) {
        if (szPart[i] != L'\\') continue;
        {
            CutText part(szPart + i);
            if (!GetShortForm(szPart, szShort)) continue;
        }
        AppendPath(szShort, szPart + i);
        return true;
    }
    return false;
}

/// Finds what the path up to pEnd names, as the file system has it. False if there is nothing.
bool FindUpTo(wchar_t* pszPath, wchar_t* pEnd, WIN32_FIND_DATAW* pData) {
    CutText cut(pEnd);
    return FitsPath(pszPath) && CoreFile::GetInfo(pszPath, pData);
}

/// Puts up to cch characters at the end of a path buffer's text and moves on behind them.
void Put(const wchar_t* pszBuffer, wchar_t*& pszOut, const wchar_t* psz, std::size_t cch) {
    auto cchUsed = static_cast<std::size_t>(pszOut - pszBuffer);
    if (cchUsed >= kPathChars) return;
    pszOut += CopyTextPart(pszOut, psz, std::min(cch, kPathChars - 1 - cchUsed));
}

/// The walk of DosPathToShellPath, from the last name to the first. False if the text would become
/// too long.
bool GiveTrueCase(wchar_t* pszPath) {
    if (std::wcslen(pszPath) <= 2) {
        CharToUpper(pszPath); // a separator has no case
        return true;
    }
    WIN32_FIND_DATAW data;
    if (!CoreFile::GetInfo(pszPath, &data)) return true;
    wchar_t* pszName = LocateFileName(pszPath);
    if (IsDots(pszName, std::wcslen(pszName))) CopyTextCut(data.cFileName, MAX_PATH, pszName);
    // A name that has no separator before it gets none: it would be another path.
    const wchar_t* pszBetween = L"";
    if (pszName > pszPath && IsPathSeparator(pszName[-1])) {
        pszBetween = L"\\";
        --pszName;
    }
    if (!*pszName) return true; // a device's name with a ":": there is nothing to cut
    *pszName = 0;
    if (!GiveTrueCase(pszPath)) return false;
    if (!ExpandEnvStrings(pszPath, pszPath, kPathChars)) return false;
    std::size_t cch = std::wcslen(pszPath);
    if (EndsInSeparator(pszPath, cch)) pszBetween = L"";
    return AppendPath(pszPath, pszBetween) && AppendPath(pszPath, data.cFileName);
}

// Mix paths

bool EndsLevel(wchar_t ch) { return !ch || IsPathSeparator(ch); }

template <class Char>
Char* SkipSeparators(Char* psz) {
    while (IsPathSeparator(*psz)) ++psz;
    return psz;
}

// Making a mix path: the first level, then the others. Each gives false if something does not fit
// or cannot be found.

/// Puts the first level of a network path behind the text; pszPath moves behind it.
bool PutNetworkHead(wchar_t* pszText, unsigned cch, wchar_t*& pszPath) {
    wchar_t* pszStart = pszPath;
    pszPath = EndOfName(pszPath + 2); // behind the server
    if (*pszPath) pszPath = EndOfName(pszPath + 1);
    CutText level(pszPath);
    return AppendTextCut(pszText, cch, pszStart);
}

/// Puts the first level of a path on a drive behind the text; pszPath moves behind it.
bool PutDriveHead(wchar_t* pszText, unsigned cch, wchar_t*& pszPath) {
    const wchar_t szDrive[] = {CharToUpper(*pszPath), L':', 0};
    pszPath += 2;
    if (!AppendTextCut(pszText, cch, szDrive)) return false;
    wchar_t szName[kPathChars];
    if (GetDriveTypeFromPath(szDrive) != DRIVE_REMOTE ||
        !GetUniversalName(szName, kPathChars, szDrive, 0)) {
        return true;
    }
    RemoveBackSlash(szName);
    return AppendTextCut(pszText, cch, kBetweenSpellings) && AppendTextCut(pszText, cch, szName);
}

bool PutHead(wchar_t* pszText, unsigned cch, wchar_t*& pszPath) {
    if (IsNetworkPath(pszPath)) return PutNetworkHead(pszText, cch, pszPath);
    if (!StartsWithDrive(pszPath) || !EndsLevel(pszPath[2])) return false;
    return PutDriveHead(pszText, cch, pszPath);
}

bool PutLevel(wchar_t* pszText, unsigned cch, const WIN32_FIND_DATAW& data) {
    if (!AppendTextCut(pszText, cch, kBetweenLevels) ||
        !AppendTextCut(pszText, cch, data.cFileName)) {
        return false;
    }
    if (!data.cAlternateFileName[0]) return true;
    return AppendTextCut(pszText, cch, kBetweenSpellings) &&
           AppendTextCut(pszText, cch, data.cAlternateFileName);
}

bool PutAll(wchar_t* pszText, unsigned cch, wchar_t (&szPath)[kPathChars]) {
    wchar_t* p = szPath;
    if (!PutHead(pszText, cch, p)) return false;
    for (p = SkipSeparators(p); *p; p = SkipSeparators(p)) {
        p = EndOfName(p);
        WIN32_FIND_DATAW data;
        if (!FindUpTo(szPath, p, &data) || !PutLevel(pszText, cch, data)) return false;
    }
    return true;
}

// Recognising a path

/// Where the path goes on behind the spelling, of cch characters, that it starts with; null if it
/// does not.
const wchar_t* MatchSpelling(const wchar_t* pszSpelling, std::size_t cch, const wchar_t* pszPath) {
    if (std::wcsncmp(pszSpelling, pszPath, cch) != 0) return nullptr;
    return EndsLevel(pszPath[cch]) ? pszPath + cch : nullptr;
}

/// Steps over one level of both. False, with neither moved, if no spelling matches.
bool Step(const wchar_t*& pszMix, const wchar_t*& pszPath) {
    const wchar_t* pszBehind = nullptr;
    const wchar_t* p = pszMix;
    for (;;) {
        const wchar_t* pszSpelling = p;
        while (*p && *p != kSpelling && *p != kLevel) ++p;
        if (!pszBehind) {
            pszBehind =
                MatchSpelling(pszSpelling, static_cast<std::size_t>(p - pszSpelling), pszPath);
        }
        if (*p != kSpelling) break;
        ++p;
    }
    if (!pszBehind) return false;
    pszMix = *p ? p + 1 : p;
    pszPath = SkipSeparators(pszBehind);
    return true;
}

/// Steps as long as levels match. True if the mix path is used up; pszPath is then what remains of
/// the path.
bool UseUp(const wchar_t* pszMix, const wchar_t*& pszPath) {
    if (!pszMix || !pszPath) return false;
    while (*pszMix) {
        if (!Step(pszMix, pszPath)) return false;
    }
    return true;
}
} // namespace

// Short and long names

int ConvertToShortPath(wchar_t* pszPath, unsigned cch) {
    if (!FitsPath(pszPath)) return 0;
    if (UpperDriveRoot(pszPath)) return 1;
    wchar_t szShort[kPathChars];
    if (!GetShortForm(pszPath, szShort) && !GetShortFormOfPart(pszPath, szShort)) return 0;
    if (std::wcslen(szShort) >= cch) return 0;
    CopyPath(pszPath, szShort);
    return 1;
}

void ConvertPathToLFN(wchar_t* pszOut, wchar_t* pszIn, wchar_t* pszOutTail, wchar_t* pszInTail) {
    if (!pszOut || !pszIn) return;
    if (!pszOutTail || !pszInTail) {
        pszInTail = SkipRoot(pszIn);
        if (!pszInTail) return;
        pszOutTail = pszOut;
        Put(pszOut, pszOutTail, pszIn, static_cast<std::size_t>(pszInTail - pszIn));
        ConvertSlashes(pszOut);
        if (!IsNetworkPath(pszIn)) CharToUpper(pszOut);
    }
    *pszOutTail = 0;
    while (*pszInTail) {
        wchar_t* pEnd = EndOfName(pszInTail);
        auto cch = static_cast<std::size_t>(pEnd - pszInTail);
        WIN32_FIND_DATAW data;
        if (IsDots(pszInTail, cch)) {
            Put(pszOut, pszOutTail, pszInTail, cch);
        } else if (FindUpTo(pszIn, pEnd, &data)) {
            Put(pszOut, pszOutTail, data.cFileName, MAX_PATH);
        } else {
            Put(pszOut, pszOutTail, pszInTail, std::wcslen(pszInTail));
            return;
        }
        if (!*pEnd) return;
        Put(pszOut, pszOutTail, L"\\", 1);
        pszInTail = pEnd + 1;
    }
}

int ShortToLFN(wchar_t* pszPath) {
    if (!pszPath) return 0;
    ConvertSlashes(pszPath);
    if (UpperDriveRoot(pszPath)) return 1;
    wchar_t szLong[kPathChars] = {};
    ConvertPathToLFN(szLong, pszPath, nullptr, nullptr);
    if (*szLong) CopyPath(pszPath, szLong);
    return 1;
}

void DosPathToShellPath(wchar_t* pszPath) {
    if (!pszPath) return;
    ConvertSlashes(pszPath);
    if (UpperDriveRoot(pszPath)) return;
    ShortToLFN(pszPath);
    if (FitsPath(pszPath) && !GiveTrueCase(pszPath)) *pszPath = 0;
}

// Mix paths

int MakeMixPath(wchar_t* pszText, unsigned cch, const wchar_t* pszPath) {
    if (!pszText || cch == 0) return 0;
    wchar_t szPath[kPathChars];
    bool bFits = CopyPath(szPath, pszPath); // before the text is emptied, which may be the path
    *pszText = 0;
    if (bFits && PutAll(pszText, cch, szPath)) return *pszText != 0;
    *pszText = 0;
    return 0;
}

int IsMixPath(const wchar_t* pszMixPath, const wchar_t* pszPath) {
    return UseUp(pszMixPath, pszPath) && !*pszPath;
}

int IsUnderMixPath(const wchar_t* pszMixPath, const wchar_t* pszPath) {
    return UseUp(pszMixPath, pszPath);
}
