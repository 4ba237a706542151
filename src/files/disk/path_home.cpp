#include "files/disk/path_home.h"
#include "app/identity/my_product_info.h"
#include "files/path/path_chars.h"
#include "files/disk/path_fs.h"
#include "files/path/path_join.h"
#include "files/disk/path_short.h"
#include "files/path/path_split.h"
#include "runtime/base/library_instance.h"
#include "runtime/system/module_path.h"
#include "store/registry/home_folder.h"

#include <cwchar>

namespace {
int Empty(wchar_t* pszOut) {
    if (pszOut) *pszOut = 0;
    return 0;
}

int GetModuleFolder(HINSTANCE hinst, wchar_t (&szFolder)[kPathChars]) {
    int bDone = GetModulePath(hinst, szFolder);
    DirFromPath(szFolder, szFolder);
    return bDone;
}

/// The folder of the module that this library is part of, as the shell shows it.
int GetOwnFolder(wchar_t (&szFolder)[kPathChars]) {
    if (!GetModuleFolder(GetLibraryInstance(), szFolder)) return 0;
    wchar_t szShown[kPathChars];
    CopyPath(szShown, szFolder);
    DosPathToShellPath(szShown);
    if (*szShown) CopyPath(szFolder, szShown); // empty: the true names are too long
    return 1;
}

int Quote(wchar_t* pszPath) {
    if (std::wcslen(pszPath) + 2 >= kPathChars) return Empty(pszPath);
    AddQuotes(pszPath);
    return 1;
}

/// Copies what fits whole; a null output takes nothing.
int GiveWhole(wchar_t* pszOut, unsigned cchOut, const wchar_t* psz) {
    if (!pszOut) return 1;
    if (CopyTextCut(pszOut, cchOut, psz) && *pszOut) return 1;
    return cchOut ? Empty(pszOut) : 0;
}
} // namespace

int GetHomeDir(wchar_t* pszOut) {
    if (!pszOut) return 0;
    wchar_t szHome[kPathChars] = L"";
    int bStored = GetHomeFolder(GetMyProductInfo().GetName(), szHome) && *szHome;
    if (!bStored && !GetOwnFolder(szHome)) return Empty(pszOut);
    RemoveBackSlash(szHome);
    return CopyPath(pszOut, szHome);
}

int SetHomeDir() {
    wchar_t szHome[kPathChars] = L"";
    const wchar_t* pszProduct = GetMyProductInfo().GetName();
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
    int bFits = MakePath(szPath, szHome, pszName, nullptr, 0);
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
    int bFits = MakePath(szFolder, szFolder, pszName, nullptr, 0);
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
    int bFull = GiveWhole(pszFull, cch, szFull);
    int bFolder = GiveWhole(pszFolder, cch, szFolder);
    return bFull && bFolder;
}

int GetLocalFolder(wchar_t* pszOut, unsigned cch) {
    return pszOut ? GetLocalPathDir(nullptr, pszOut, cch) : 0;
}

int LocalFileExists(const wchar_t* pszName) {
    wchar_t szPath[kPathChars];
    return GetLocalPath(szPath, pszName, nullptr) && FileExists(szPath);
}
