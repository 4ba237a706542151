#include "files/disk/path_home.h"
#include "files/disk/path_fs.h"
#include "files/disk/path_spelling.h"
#include "files/path/path_chars.h"
#include "files/path/path_join.h"
#include "files/path/path_name.h"
#include "files/path/path_shape.h"
#include "files/path/path_split.h"
#include "runtime/base/current_product.h"
#include "runtime/system/dll_loader.h"
#include "store/registry/home_folder.h"

#include <windows.h>
#include <cwchar>

namespace {
/// Empties an output, if there is one, for a result of 0.
bool Empty(wchar_t* pszOut) {
    if (pszOut) *pszOut = 0;
    return false;
}

bool GetModuleFolder(HINSTANCE hinst, wchar_t (&szFolder)[kPathChars]) {
    const bool bDone = GetModulePath(hinst, szFolder);
    DirFromPath(szFolder, szFolder);
    return bDone;
}

/// The folder of the module that this library is part of, as the shell shows it.
bool GetOwnFolder(wchar_t (&szFolder)[kPathChars]) {
    if (!GetModuleFolder(GetLibraryInstance(), szFolder)) return false;
    wchar_t szShown[kPathChars];
    CopyPath(szShown, szFolder);
    DosPathToShellPath(szShown);
    if (*szShown) CopyPath(szFolder, szShown); // empty: the true names are too long
    return true;
}

/// Puts a path into double quotes; it becomes empty if they do not fit.
bool Quote(wchar_t* pszPath) {
    if (std::wcslen(pszPath) + 2 >= kPathChars) return Empty(pszPath);
    AddQuotes(pszPath);
    return true;
}

/// Copies what fits whole; a null output takes nothing.
bool GiveWhole(wchar_t* pszOut, unsigned cchOut, const wchar_t* psz) {
    if (!pszOut) return true;
    if (CopyTextCut(pszOut, cchOut, psz) && *pszOut) return true;
    return cchOut ? Empty(pszOut) : false;
}

// The folders of canonical paths, each into a path buffer; empty if it is not known or does not fit

void EmptyUnlessFits(wchar_t* pszOut, UINT cch) {
    if (cch == 0 || cch >= kPathChars) *pszOut = 0;
}

void GetSystemFolder(wchar_t* pszOut) {
    EmptyUnlessFits(pszOut, ::GetSystemDirectoryW(pszOut, kPathChars));
}

void GetWindowsFolder(wchar_t* pszOut) {
    EmptyUnlessFits(pszOut, ::GetWindowsDirectoryW(pszOut, kPathChars));
}

void GetHome(wchar_t* pszOut) { ::GetHomeDir(pszOut); } // empty if there is none

struct CanonicalFolder {
    wchar_t chName;
    void (*pfnGet)(wchar_t* pszOut);
};
// In this order: the system folder lies in the Windows folder, and the home may be either.
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

// The home folder and the files in it

int GetHomeDir(wchar_t* pszOut) {
    if (!pszOut) return 0;
    wchar_t szHome[kPathChars] = L"";
    const bool bStored = GetHomeFolder(GetCurrentProduct().pfnGetName(), szHome) && *szHome;
    if (!bStored && !GetOwnFolder(szHome)) return Empty(pszOut);
    RemoveBackSlash(szHome);
    return CopyPath(pszOut, szHome);
}

int SetHomeDir() {
    wchar_t szHome[kPathChars] = L"";
    const wchar_t* pszProduct = GetCurrentProduct().pfnGetName();
    if (GetHomeFolder(pszProduct, szHome) && *szHome) return 1;
    return GetOwnFolder(szHome) && ProcessHomeFolder(RegKey::OpSet, pszProduct, szHome, kPathChars);
}

int GetModuleFNameExt(HINSTANCE hinst, wchar_t* pszOut) {
    wchar_t szPath[kPathChars];
    if (!pszOut || !GetModulePath(hinst, szPath)) return Empty(pszOut);
    return CopyPath(pszOut, LocateFileName(szPath));
}

int GetLocalPath(wchar_t* pszOut, const wchar_t* pszName, HINSTANCE hinst) {
    wchar_t szHome[kPathChars], szName[kPathChars];
    if (!pszOut || !GetHomeDir(szHome)) return Empty(pszOut);
    if (!pszName) {
        if (!GetModuleFNameExt(hinst, szName)) return Empty(pszOut);
        pszName = szName;
    }
    wchar_t szPath[kPathChars]; // the name may lie in the output
    const bool bFits = MakePath(szPath, szHome, pszName, nullptr, 0);
    CopyPath(pszOut, szPath);
    return bFits;
}

int GetLocalFileNameQuoted(wchar_t* pszOut, const wchar_t* pszName, HINSTANCE hinst) {
    return GetLocalPath(pszOut, pszName, hinst) && Quote(pszOut);
}

int GetSatellitePath(wchar_t* pszOut, const wchar_t* pszName, HINSTANCE hinst) {
    wchar_t szFolder[kPathChars];
    if (!pszOut || !GetModuleFolder(hinst ? hinst : GetLibraryInstance(), szFolder)) {
        return Empty(pszOut);
    }
    // As the output it is not expanded: a real folder may have a "%" in its name.
    const bool bFits = MakePath(szFolder, szFolder, pszName, nullptr, 0);
    CopyPath(pszOut, szFolder);
    return bFits;
}

int GetSatellitePathQuoted(wchar_t* pszOut, const wchar_t* pszName, HINSTANCE hinst) {
    return GetSatellitePath(pszOut, pszName, hinst) && Quote(pszOut);
}

int GetLocalPathDir(wchar_t* pszFull, wchar_t* pszFolder, unsigned cch) {
    wchar_t szFull[kPathChars], szFolder[kPathChars];
    GetModulePath(nullptr, szFull);
    DirFromPath(szFolder, szFull);
    const bool bFull = GiveWhole(pszFull, cch, szFull);
    const bool bFolder = GiveWhole(pszFolder, cch, szFolder);
    return bFull && bFolder;
}

int GetLocalFolder(wchar_t* pszOut, unsigned cch) {
    return pszOut ? GetLocalPathDir(nullptr, pszOut, cch) : 0;
}

int LocalFileExists(const wchar_t* pszName) {
    wchar_t szPath[kPathChars];
    return GetLocalPath(szPath, pszName, nullptr) && FileExists(szPath);
}

// Paths that hold on another machine

void MakeCanonicalPath(const wchar_t* pszPath, wchar_t* pszOut) {
    if (!pszOut) return;
    wchar_t szPath[kPathChars], szFolder[kPathChars]; // copies: the output may be the path
    CopyPath(szPath, pszPath);
    DirFromPath(szFolder, szPath);
    wchar_t szPrefix[] = L"%?\\";
    szPrefix[1] = LetterOf(szFolder);
    if (!szPrefix[1]) {
        CopyPath(pszOut, szPath);
        return;
    }
    CopyPath(pszOut, szPrefix);
    AppendPath(pszOut, FindLastPathComponent(szPath));
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
