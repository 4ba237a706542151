#include "files/disk/path_folder.h"
#include "files/path/path_chars.h"
#include "files/disk/path_drive.h"
#include "files/disk/path_fs.h"
#include "files/path/path_name.h"
#include "files/path/path_shape.h"
#include "files/path/path_split.h"
#include "wnd/core/wait_cursor.h"

#include <shellapi.h>
#include <shlobj.h>
#include <cwchar>

namespace {
/// What a path needs that gets a separator and still has 259 characters before.
constexpr std::size_t kFolderChars = kPathChars + 1;

int IsOrBecomesFolder(const wchar_t* pszPath) {
    return FolderExists(pszPath) || ::CreateDirectoryW(pszPath, nullptr);
}

int Tell(int bDone, int bNotify, LONG nEvent, const wchar_t* psz, const wchar_t* pszNew = nullptr) {
    if (bDone && bNotify) ::SHChangeNotify(nEvent, SHCNF_PATHW, psz, pszNew);
    return bDone != 0;
}
} // namespace

int CreateFolder(const wchar_t* pszPath) {
    if (!IsFullPathName(pszPath) || !FitsPath(pszPath)) return 0;
    CSWaitCursor cursor;
    wchar_t szFolder[kFolderChars];
    CopyTextCut(szFolder, kFolderChars, pszPath);
    ConvertSlashes(szFolder);
    std::size_t cch = std::wcslen(szFolder);
    if (szFolder[cch - 1] != L'\\') CopyTextPart(szFolder + cch, L"\\", 1);
    wchar_t* p = SkipRoot(szFolder);
    if (!p) return 0;
    for (p = EndOfName(p); *p; p = EndOfName(p + 1)) {
        *p = 0;
        if (!IsOrBecomesFolder(szFolder)) return 0;
        *p = L'\\';
    }
    return 1;
}

int CreateFolderEx(HWND hwnd, const wchar_t* pszPath) {
    return FitsPath(pszPath) && ::SHCreateDirectoryExW(hwnd, pszPath, nullptr) == ERROR_SUCCESS;
}

int CreateDirectoryExW(const wchar_t* pszPath, int bNotify) {
    return Tell(CreateFolder(pszPath), bNotify, SHCNE_MKDIR, pszPath);
}

int RemoveDirectoryEx(const wchar_t* pszPath, int bNotify) {
    return Tell(FitsPath(pszPath) && ::RemoveDirectoryW(pszPath), bNotify, SHCNE_RMDIR, pszPath);
}

int RenameFile(const wchar_t* pszOld, const wchar_t* pszNew, int bNotify) {
    // Without a new name the platform's function would delete.
    int bDone = FitsPath(pszOld) && FitsPath(pszNew) &&
                ::MoveFileExW(pszOld, pszNew, MOVEFILE_COPY_ALLOWED | MOVEFILE_WRITE_THROUGH);
    return Tell(bDone, bNotify, SHCNE_RENAMEITEM, pszOld, pszNew);
}

int RenameFolder(const wchar_t* pszOld, const wchar_t* pszNew, int bNotify) {
    int bDone = FitsPath(pszOld) && FitsPath(pszNew) &&
                ::MoveFileExW(pszOld, pszNew, MOVEFILE_WRITE_THROUGH);
    return Tell(bDone, bNotify, SHCNE_RENAMEFOLDER, pszOld, pszNew);
}

int CanRecycle(const wchar_t* pszPath) {
    wchar_t szRoot[kPathChars];
    return GetRootPath(szRoot, pszPath) && GetDriveTypeFromPath(szRoot) == DRIVE_FIXED;
}

int Recycle(HWND hwnd, const wchar_t* pszPath) {
    if (!FitsPath(pszPath) || !*pszPath) return 0; // an empty list would mean the current folder
    wchar_t szList[kPathChars + 1] = {};           // ends with two terminators
    CopyPath(szList, pszPath);
    SHFILEOPSTRUCTW op{};
    op.hwnd = hwnd;
    op.wFunc = FO_DELETE;
    op.pFrom = szList;
    op.fFlags = FOF_NOCONFIRMATION | FOF_ALLOWUNDO | FOF_SIMPLEPROGRESS | FOF_NOERRORUI;
    op.lpszProgressTitle = L"Deleting...";
    return ::SHFileOperationW(&op) == 0;
}
