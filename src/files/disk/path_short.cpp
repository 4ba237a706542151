#include "files/disk/path_short.h"
#include "files/path/path_chars.h"
#include "files/path/path_command.h"
#include "files/path/path_join.h"
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
int UpperDriveRoot(wchar_t* pszPath) {
    if (!IsDrivePath(pszPath) && !IsRootFolder(pszPath, 0)) return 0;
    CharToUpper(pszPath);
    return 1;
}

/// "." and "..", under which the platform finds the folder that they mean, by its own name.
bool IsDots(const wchar_t* psz, std::size_t cch) {
    return (cch == 1 || cch == 2) && psz[0] == L'.' && psz[cch - 1] == L'.';
}

/// The short form of a path that exists, without changing it. 1 if it fits.
int GetShortForm(const wchar_t* pszPath, wchar_t (&szShort)[kPathChars]) {
    DWORD cch = ::GetShortPathNameW(pszPath, szShort, kPathChars);
    return cch > 0 && cch < kPathChars;
}

/// The same for the longest part that exists, with the rest behind it, cut to fit.
int GetShortFormOfPart(const wchar_t* pszPath, wchar_t (&szShort)[kPathChars]) {
    wchar_t szPart[kPathChars];
    CopyPath(szPart, pszPath);
    ConvertSlashes(szPart);
    for (std::size_t i = std::wcslen(szPart); i-- > 0;) {
        if (szPart[i] != L'\\') continue;
        szPart[i] = 0;
        int bShort = GetShortForm(szPart, szShort);
        szPart[i] = L'\\';
        if (!bShort) continue;
        AppendTextCut(szShort, kPathChars, szPart + i);
        return 1;
    }
    return 0;
}

/// The name at pszName, which ends before cchName, as the file system has it. 0 if there is none.
int FindLongName(wchar_t* pszPath, wchar_t* pszName, std::size_t cchName, WIN32_FIND_DATAW* pData) {
    wchar_t chBehind = std::exchange(pszName[cchName], L'\0');
    int bFound = FitsPath(pszPath) && CoreFile::GetInfo(pszPath, pData);
    pszName[cchName] = chBehind;
    return bFound;
}

/// Puts up to cch characters at the end of a path buffer's text and moves on behind them.
void Put(const wchar_t* pszBuffer, wchar_t*& pszOut, const wchar_t* psz, std::size_t cch) {
    auto cchUsed = static_cast<std::size_t>(pszOut - pszBuffer);
    if (cchUsed < kPathChars)
        pszOut += CopyTextPart(pszOut, psz, std::min(cch, kPathChars - 1 - cchUsed));
}

/// The walk of DosPathToShellPath. 0 if the text would become too long.
int GiveTrueCase(wchar_t* pszPath) {
    if (std::wcslen(pszPath) <= 2) {
        CharToUpper(pszPath); // a separator has no case
        return 1;
    }
    WIN32_FIND_DATAW data;
    if (!CoreFile::GetInfo(pszPath, &data)) return 1;
    wchar_t* pszName = LocateFileName(pszPath);
    if (IsDots(pszName, std::wcslen(pszName))) CopyTextCut(data.cFileName, MAX_PATH, pszName);
    // A name that has no separator before it gets none: it would be another path.
    const wchar_t* pszBetween = L"";
    if (pszName > pszPath && IsPathSeparator(pszName[-1])) {
        pszBetween = L"\\";
        --pszName;
    }
    *pszName = 0;
    if (!GiveTrueCase(pszPath)) return 0;
    if (!ExpandEnvStrings(pszPath, pszPath, kPathChars)) return 0;
    std::size_t cch = std::wcslen(pszPath);
    if (cch > 0 && IsPathSeparator(pszPath[cch - 1])) pszBetween = L"";
    return AppendTextCut(pszPath, kPathChars, pszBetween) &&
           AppendTextCut(pszPath, kPathChars, data.cFileName);
}
} // namespace

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
        auto cch = static_cast<std::size_t>(EndOfName(pszInTail) - pszInTail);
        WIN32_FIND_DATAW data;
        if (IsDots(pszInTail, cch)) {
            Put(pszOut, pszOutTail, pszInTail, cch);
        } else if (FindLongName(pszIn, pszInTail, cch, &data)) {
            Put(pszOut, pszOutTail, data.cFileName, MAX_PATH);
        } else {
            Put(pszOut, pszOutTail, pszInTail, std::wcslen(pszInTail));
            return;
        }
        pszInTail += cch;
        if (!*pszInTail) return;
        Put(pszOut, pszOutTail, L"\\", 1);
        ++pszInTail;
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
