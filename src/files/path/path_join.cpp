#include "files/path/path_join.h"
#include "files/path/path_chars.h"
#include "files/path/path_command.h"
#include "files/path/path_name.h"
#include "files/path/path_shape.h"
#include "files/path/path_split.h"
#include "runtime/system/system_facts.h"
#include "runtime/text/str_chars.h"
#include "runtime/text/str_find.h"

#include <windows.h>
#include <cwchar>

namespace {
constexpr wchar_t kForNT[] = L":NT:";

/// Writes the folder, expanded, as the start of a path. False if it does not fit.
bool PutFolder(wchar_t* pszOut, std::size_t cchOut, const wchar_t* pszFolder) {
    if (pszOut == pszFolder) return true; // it stands there already
    return ExpandEnvStrings(pszFolder, pszOut, static_cast<unsigned>(cchOut));
}

const wchar_t* SkipOneSeparator(const wchar_t* psz) {
    return IsPathSeparator(*psz) ? psz + 1 : psz;
}

bool NeedsDot(const wchar_t* pszExt) { return pszExt && *pszExt != L'.'; }

/// Puts a piece behind the text if it fits the buffer whole. False if it does not, and also where
/// the text has then become too long for a path: both end the join.
bool AppendStage(wchar_t* pszOut, std::size_t cchOut, const wchar_t* psz) {
    std::size_t cch = std::wcslen(pszOut), cchMore = std::wcslen(psz);
    if (cch + cchMore >= cchOut) return false;
    CopyTextPart(pszOut + cch, psz, cchMore);
    return cch + cchMore < kPathChars;
}

/// Puts a path behind a root or a folder, cut to a path's length.
void PutBehind(wchar_t* pszPath, const wchar_t* pszBefore, bool bSeparator) {
    wchar_t szPath[kPathChars];
    CopyPath(szPath, pszBefore);
    if (bSeparator && !EndsInSeparator(szPath, std::wcslen(szPath))) AppendPath(szPath, L"\\");
    AppendPath(szPath, pszPath);
    CopyPath(pszPath, szPath);
}

/// The letter behind the current directory's drive; A if that is on no drive.
wchar_t DriveBehindCurrent() {
    wchar_t szCurrent[kPathChars];
    DWORD cch = ::GetCurrentDirectoryW(kPathChars, szCurrent);
    if (cch == 0 || cch >= kPathChars || !StartsWithDrive(szCurrent)) return L'A';
    // Behind Z comes a character that is no drive's; no such path can be found.
    return static_cast<wchar_t>(CharToUpper(szCurrent[0]) + 1);
}

/// Puts the base's root before a path that has none, or else a drive.
void AddDrive(wchar_t* pszPath, const wchar_t* pszBase) {
    wchar_t szRoot[kPathChars];
    if (!ExtractRootPath(szRoot, pszBase)) {
        szRoot[0] = DriveBehindCurrent();
        szRoot[1] = L':';
        szRoot[2] = 0;
    }
    PutBehind(pszPath, szRoot, false);
}
} // namespace

void AppendFileName(wchar_t* pszFolder, const wchar_t* pszName) {
    if (!pszFolder) return;
    if (!EndsInSeparator(pszFolder, std::wcslen(pszFolder))) AppendPath(pszFolder, L"\\");
    AppendPath(pszFolder, pszName);
}

int MakePath(wchar_t* pszOut, const wchar_t* pszFolder, const wchar_t* pszName,
             const wchar_t* pszExt, int bCut) {
    if (!pszOut) return 0;
    // One that is too long is cut, and no name fits behind it then. Out of memory it is not there.
    if (!PutFolder(pszOut, kPathChars, pszFolder) && !*pszOut) return 0;
    if (!pszName || !*pszName) return 1;
    std::size_t cch = std::wcslen(pszOut);
    bool bSeparator = cch && !EndsInSeparator(pszOut, cch);
    bool bDot = NeedsDot(pszExt);
    pszName = SkipOneSeparator(pszName);
    bool bFits = cch + bSeparator + std::wcslen(pszName) + bDot + LengthOf(pszExt) < kPathChars;
    if (!bFits && !bCut) {
        *pszOut = 0;
        return 0;
    }
    if (bSeparator) AppendPath(pszOut, L"\\");
    AppendPath(pszOut, pszName);
    if (!bFits) return 0;
    if (bDot) AppendPath(pszOut, L".");
    AppendPath(pszOut, pszExt);
    return 1;
}

int MakePathEx(wchar_t* pszOut, unsigned cchOut, const wchar_t* pszFolder, const wchar_t* pszName,
               const wchar_t* pszExt) {
    if (!pszOut || cchOut == 0) return 0;
    if (!PutFolder(pszOut, cchOut, pszFolder)) {
        *pszOut = 0; // a piece of a folder is another folder
        return 0;
    }
    std::size_t cch = std::wcslen(pszOut);
    if (cch >= kPathChars) return 0;
    if (!pszName || !*pszName) return 1;
    bool bSeparator = cch && !EndsInSeparator(pszOut, cch);
    if (bSeparator && !AppendStage(pszOut, cchOut, L"\\")) return 0;
    if (!AppendStage(pszOut, cchOut, SkipOneSeparator(pszName))) return 0;
    if (NeedsDot(pszExt) && !AppendStage(pszOut, cchOut, L".")) return 0;
    return !pszExt || AppendStage(pszOut, cchOut, pszExt);
}

int MakePathForOS(wchar_t* pszOut, const wchar_t* pszFolder, const wchar_t* pszName,
                  const wchar_t* pszExt) {
    if (!pszOut) return 0;
    if (pszName && *pszName == L':') {
        if (!WinNT() || !StrStartsWith(pszName, kForNT, 1)) {
            *pszOut = 0;
            return 0;
        }
        pszName += std::wcslen(kForNT);
    }
    return MakePath(pszOut, pszFolder, pszName, pszExt, 0);
}

void MakeFullPathName(wchar_t* pszPath, const wchar_t* pszBase) {
    if (!pszPath) return;
    if (!*pszPath) {
        if (pszBase) CopyPath(pszPath, pszBase);
        return;
    }
    RemoveWhiteSpacesAndQuotes(pszPath, nullptr);
    ConvertSlashes(pszPath);
    if (IsFullPathName(pszPath)) {
        if (*pszPath == L'\\' && pszPath[1] != L'\\') AddDrive(pszPath, pszBase);
        return;
    }
    if (IsFullPathName(pszBase)) {
        PutBehind(pszPath, pszBase, true);
        return;
    }
    wchar_t szFull[kPathChars];
    DWORD cch = ::GetFullPathNameW(pszPath, kPathChars, szFull, nullptr);
    if (cch > 0 && cch < kPathChars) CopyPath(pszPath, szFull);
}

void AppendSecondTermZero(wchar_t* pszText, unsigned cch) {
    for (unsigned i = 0; pszText && i + 1 < cch; ++i) {
        if (pszText[i]) continue;
        pszText[i + 1] = 0;
        return;
    }
}
