#include "files/disk/path_canonical.h"
#include "files/path/path_chars.h"
#include "files/disk/path_home.h"
#include "files/path/path_join.h"
#include "files/path/path_shape.h"
#include "files/path/path_split.h"

#include <windows.h>
#include <cwchar>

namespace {
/// Puts the folder into a path buffer; empty if the platform does not give it.
void GetSystemFolder(wchar_t* pszOut) {
    UINT cch = ::GetSystemDirectoryW(pszOut, kPathChars);
    if (cch == 0 || cch >= kPathChars) *pszOut = 0;
}

void GetWindowsFolder(wchar_t* pszOut) {
    UINT cch = ::GetWindowsDirectoryW(pszOut, kPathChars);
    if (cch == 0 || cch >= kPathChars) *pszOut = 0;
}

void GetHome(wchar_t* pszOut) { ::GetHomeDir(pszOut); }

struct CanonicalFolder {
    wchar_t chName;
    void (*pfnGet)(wchar_t* pszOut);
};
constexpr CanonicalFolder kFolders[] = {
    {L'S', GetSystemFolder}, {L'W', GetWindowsFolder}, {L'_', GetHome}};

/// The letter of the first of the folders that this is; 0 if it is none.
wchar_t LetterOf(const wchar_t* pszFolder) {
    if (!*pszFolder) return 0;
    for (const CanonicalFolder& folder : kFolders) {
        wchar_t szFolder[kPathChars];
        folder.pfnGet(szFolder);
        if (IsSamePath(pszFolder, szFolder)) return folder.chName;
    }
    return 0;
}
} // namespace

void MakeCanonicalPath(const wchar_t* pszPath, wchar_t* pszOut) {
    if (!pszOut) return;
    wchar_t szPath[kPathChars], szFolder[kPathChars];
    CopyPath(szPath, pszPath);
    DirFromPath(szFolder, szPath);
    wchar_t szPrefix[] = L"%?\\";
    szPrefix[1] = LetterOf(szFolder);
    if (!szPrefix[1]) {
        CopyPath(pszOut, szPath);
        return;
    }
    CopyPath(pszOut, szPrefix);
    AppendTextCut(pszOut, kPathChars, FindLastPathComponent(szPath));
}

int GetPathFromCanonical(const wchar_t* pszText, wchar_t* pszOut) {
    if (!pszOut) return 0;
    wchar_t szText[kPathChars];
    CopyPath(szText, pszText);
    if (*szText != L'%') {
        CopyPath(pszOut, szText);
        return 0;
    }
    *pszOut = 0;
    for (const CanonicalFolder& folder : kFolders) {
        if (szText[1] == folder.chName) folder.pfnGet(pszOut);
    }
    const wchar_t* pszRest = szText[1] ? szText + 2 : szText + 1;
    if (IsPathSeparator(*pszRest)) ++pszRest;
    AppendFileName(pszOut, pszRest);
    return 1;
}
