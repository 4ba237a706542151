#include "shell/folders/special_folders.h"
#include "files/disk/path_fs.h"
#include "files/path/path_chars.h"
#include "files/path/path_join.h"
#include "files/path/path_name.h"
#include "files/path/path_shape.h"
#include "runtime/text/str_copy.h"
#include "runtime/text/str_find.h"
#include "shell/folders/shell_names.h"
#include "shell/namespace/pidl.h"

#include <shlobj.h>

namespace {
constexpr int kRecords = 3;
constexpr const wchar_t* kLockScreenFolder =
    L"\\Packages\\Microsoft.Windows.ContentDeliveryManager_cw5n1h2txyewy\\LocalState\\Assets";

SPEC_FOLDER_DATA records[kRecords] = {
    {CSIDL_DESKTOPDIRECTORY, CSIDL_DESKTOP, nullptr, 0, nullptr},
    {CSIDL_NETHOOD, CSIDL_NETWORK, nullptr, 0, nullptr},
    {CSIDL_PERSONAL, CSIDL_PERSONAL, nullptr, 0, nullptr},
};
SPEC_FOLDER_DATA* recordList[kRecords + 1] = {&records[0], &records[1], &records[2], nullptr};
bool bRecordsMade = false;

/// The path, of which nothing need exist; 0 with an empty text if there is none.
int GetStoredPath(HWND hwnd, int nCsidl, wchar_t* pszOut) {
    *pszOut = 0;
    LPITEMIDLIST pidlFolder = nullptr;
    if (FAILED(::SHGetSpecialFolderLocation(hwnd, nCsidl, &pidlFolder)) || !pidlFolder) return 0;
    PIDL list;
    list.Attach(pidlFolder); // freed at the end
    if (!::SHGetPathFromIDListW(list, pszOut)) *pszOut = 0;
    return *pszOut != 0;
}

void MakeRecord(SPEC_FOLDER_DATA& record) {
    wchar_t szText[MAX_PATH + 1]; // with room for the backslash
    if (GetStoredPath(nullptr, record.nPathCsidl, szText)) {
        AppendBackSlash(szText);
        StrRealloc(record.pszPath, szText);
        record.cchPath = static_cast<unsigned>(LengthOf(record.pszPath));
    }
    PIDL list;
    if (list.Attach(record.nNamespaceCsidl) && GetShellNameOf(list, szText, MAX_PATH, 0))
        StrRealloc(record.pszName, szText);
}

void FreeRecord(SPEC_FOLDER_DATA& record) {
    StrRealloc(record.pszPath, nullptr);
    StrRealloc(record.pszName, nullptr);
    record.cchPath = 0;
}

bool IsWithin(const SPEC_FOLDER_DATA& record, const wchar_t* pszPath) {
    return record.pszPath && IsSubFolderOf(pszPath, record.pszPath, 0);
}
} // namespace

SPEC_FOLDER_DATA** GetSPEC_FOLDER_DATA(int bRelease) {
    if (bRelease) {
        for (SPEC_FOLDER_DATA& record : records) FreeRecord(record);
        bRecordsMade = false;
        return nullptr;
    }
    if (!bRecordsMade) {
        for (SPEC_FOLDER_DATA& record : records) MakeRecord(record);
        bRecordsMade = true;
    }
    return recordList;
}

SPEC_FOLDER_DATA* GetAnySpecialSubFolderData(const wchar_t* pszPath) {
    for (SPEC_FOLDER_DATA** pp = GetSPEC_FOLDER_DATA(0); *pp; ++pp)
        if (IsWithin(**pp, pszPath)) return *pp;
    return nullptr;
}

const wchar_t* GetNetHoodSubFolder(const wchar_t* pszPath) {
    for (SPEC_FOLDER_DATA** pp = GetSPEC_FOLDER_DATA(0); *pp; ++pp)
        if ((*pp)->nPathCsidl == CSIDL_NETHOOD && IsWithin(**pp, pszPath))
            return pszPath + (*pp)->cchPath;
    return nullptr;
}

void SimplifyShellName(wchar_t* pszPath, unsigned cch) {
    if (!pszPath) return;
    const SPEC_FOLDER_DATA* pRecord = GetAnySpecialSubFolderData(pszPath);
    if (!pRecord || !pRecord->pszName) return;
    wchar_t szShort[2 * MAX_PATH];
    CopyTextCut(szShort, MAX_PATH, pRecord->pszName);
    AppendTextCut(szShort, MAX_PATH + 1, L"\\");
    if (AppendTextCut(szShort, 2 * MAX_PATH, pszPath + pRecord->cchPath) && LengthOf(szShort) < cch)
        CopyTextCut(pszPath, cch, szShort);
}

void UnSimplifyShellName(wchar_t* pszPath, unsigned cch) {
    if (!pszPath) return;
    wchar_t* pszBreak = EndOfName(pszPath);
    if (!*pszBreak) return;
    const wchar_t chBreak = *pszBreak;
    *pszBreak = 0;
    const SPEC_FOLDER_DATA* pRecord = nullptr;
    for (SPEC_FOLDER_DATA** pp = GetSPEC_FOLDER_DATA(0); *pp && !pRecord; ++pp)
        if ((*pp)->pszPath && (*pp)->pszName && StrIsSame(pszPath, (*pp)->pszName, 1))
            pRecord = *pp;
    *pszBreak = chBreak;
    if (!pRecord) return;
    wchar_t szFull[MAX_PATH];
    if (!MakePath(szFull, pRecord->pszPath, pszBreak + 1, nullptr, 0) || LengthOf(szFull) >= cch)
        *szFull = 0;
    CopyTextCut(pszPath, cch, szFull);
}

int GetSpecialFolderPath(HWND hwnd, int nCsidl, wchar_t* pszOut) {
    if (!pszOut) return 0;
    const bool bLockScreen = nCsidl == kLockScreenPictures;
    if (!GetStoredPath(hwnd, bLockScreen ? CSIDL_LOCAL_APPDATA : nCsidl, pszOut)) return 0;
    if (bLockScreen && !AppendPath(pszOut, kLockScreenFolder)) return 0;
    return FolderExists(pszOut);
}

int GetSpecialFolderPathQuoted(HWND hwnd, int nCsidl, wchar_t* pszOut) {
    if (!pszOut) return 0;
    const int bExists = GetSpecialFolderPath(hwnd, nCsidl, pszOut);
    if (bExists)
        AddQuotes(pszOut);
    else
        *pszOut = 0;
    return bExists;
}
