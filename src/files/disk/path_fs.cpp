#include "files/disk/path_fs.h"
#include "files/disk/path_drive.h"
#include "files/path/path_chars.h"
#include "files/path/path_join.h"
#include "files/path/path_name.h"
#include "files/path/path_shape.h"
#include "files/path/path_split.h"
#include "files/stream/core_file.h"
#include "runtime/messages/wait_cursor.h"
#include "runtime/system/system_facts.h"
#include "runtime/text/str_format.h"

#include <windows.h>
#include <shellapi.h>
#include <shlobj.h>
#include <cwchar>

namespace {
constexpr DWORD kTestNames = 100000000; // as many as eight digits have
constexpr DWORD kTestContent = 0x12345678;
constexpr std::size_t kTestNameSize = 16; // of eight digits, the extension and the terminator
/// What a path needs that gets a separator and still has 259 characters before.
constexpr std::size_t kFolderChars = kPathChars + 1;

bool Find(const wchar_t* pszPath, WIN32_FIND_DATAW* pData) {
    return FitsPath(pszPath) && CoreFile::GetInfo(pszPath, pData);
}

DWORD PlainAttributes(const wchar_t* pszPath) {
    return FitsPath(pszPath) ? ::GetFileAttributesW(pszPath) : INVALID_FILE_ATTRIBUTES;
}

bool IsFile(DWORD dwAttributes) {
    return dwAttributes != INVALID_FILE_ATTRIBUTES && !(dwAttributes & FILE_ATTRIBUTE_DIRECTORY);
}

bool IsFolder(DWORD dwAttributes) {
    return dwAttributes != INVALID_FILE_ATTRIBUTES && (dwAttributes & FILE_ATTRIBUTE_DIRECTORY);
}

/// A file of its own in the folder: the time is the name, so that two programs which ask at once
/// hardly meet. False if the folder leaves no room for it.
bool MakeTestFileName(wchar_t (&szFile)[kPathChars], const wchar_t* pszFolder) {
    wchar_t szName[kTestNameSize];
    FormatText(szName, L"%08d.tmp", static_cast<int>(GetCurTime() % kTestNames));
    CopyPath(szFile, pszFolder);
    AppendFileName(szFile, L""); // a separator, if there is none
    return AppendPath(szFile, szName);
}

bool IsOrBecomesFolder(const wchar_t* pszPath) {
    return FolderExists(pszPath) || ::CreateDirectoryW(pszPath, nullptr);
}

/// Tells the shell of what was done, if it was and if that was asked for. Gives bDone.
bool Tell(bool bDone, int bNotify, LONG nEvent, const wchar_t* psz,
          const wchar_t* pszNew = nullptr) {
    if (bDone && bNotify) ::SHChangeNotify(nEvent, SHCNF_PATHW, psz, pszNew);
    return bDone;
}
} // namespace

// Files

DWORD GetFileAttributes2(const wchar_t* pszPath) {
    DWORD dwAttributes = PlainAttributes(pszPath);
    if (dwAttributes != INVALID_FILE_ATTRIBUTES) return dwAttributes;
    WIN32_FIND_DATAW data;
    return Find(pszPath, &data) ? data.dwFileAttributes : INVALID_FILE_ATTRIBUTES;
}

int FileExists(const wchar_t* pszPath) { return IsFile(GetFileAttributes2(pszPath)); }

int FolderExists(const wchar_t* pszPath) { return IsFolder(GetFileAttributes2(pszPath)); }

int FileOrFolderExists(const wchar_t* pszPath) {
    return GetFileAttributes2(pszPath) != INVALID_FILE_ATTRIBUTES;
}

int IsFileExists(const wchar_t* pszPath) { return IsFile(PlainAttributes(pszPath)); }

int IsFolderExists(const wchar_t* pszPath) { return IsFolder(PlainAttributes(pszPath)); }

int IsFileOrFolderExists(const wchar_t* pszPath) {
    return PlainAttributes(pszPath) != INVALID_FILE_ATTRIBUTES;
}

unsigned __int64 FileSize(const wchar_t* pszPath) {
    return FitsPath(pszPath) ? CoreFile::GetSize64(pszPath) : 0;
}

int GetAltFileName(wchar_t* pszOut, unsigned cchOut, const wchar_t* pszPath) {
    if (!pszOut || cchOut == 0) return 0;
    WIN32_FIND_DATAW data;
    CopyTextCut(pszOut, cchOut, Find(pszPath, &data) ? data.cAlternateFileName : nullptr);
    return *pszOut != 0;
}

int GetAltFileName(wchar_t* pszOut, unsigned cchOut, const wchar_t* pszFolder,
                   const wchar_t* pszName) {
    wchar_t szPath[kPathChars];
    const bool bFits = MakePath(szPath, pszFolder, pszName, nullptr, 0);
    return GetAltFileName(pszOut, cchOut, bFits ? szPath : nullptr);
}

int GetShortFileName(const wchar_t* pszPath, wchar_t* pszOut, WIN32_FIND_DATAW* pData) {
    WIN32_FIND_DATAW data;
    if (!Find(pszPath, &data)) data = {};
    if (pData) *pData = data;
    CopyPath(pszOut, data.cAlternateFileName);
    return data.cAlternateFileName[0] != 0;
}

int IsFileInUse(const wchar_t* pszPath) {
    if (!FileExists(pszPath)) return 0;
    FILETIME ftCreation, ftAccess, ftWrite;
    const bool bTimes = CoreFile::GetTime(pszPath, &ftCreation, &ftAccess, &ftWrite);
    CoreFile file(pszPath, GENERIC_READ | GENERIC_WRITE, 0, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL);
    if (!file.IsReady()) return 1;
    file.Close();
    // The opening itself may count as an access.
    if (bTimes) CoreFile::SetTime(pszPath, &ftCreation, &ftAccess, &ftWrite);
    return 0;
}

int IsDirWritable(const wchar_t* pszPath) {
    wchar_t szFile[kPathChars];
    if (!FolderExists(pszPath) || !MakeTestFileName(szFile, pszPath)) return 0;
    CoreFile file(szFile, 1);
    if (!file.IsReady()) return 0;
    const bool bWritten = file.WriteBin(&kTestContent, sizeof(kTestContent), nullptr);
    file.Close();
    CoreFile::Delete(szFile, 0);
    return bWritten;
}

// Folders, renaming, the recycle bin

int CreateFolder(const wchar_t* pszPath) {
    if (!IsFullPathName(pszPath) || !FitsPath(pszPath)) return 0;
    CSWaitCursor cursor; // a drive or a server may take its time
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
    return Tell(CreateFolder(pszPath) != 0, bNotify, SHCNE_MKDIR, pszPath);
}

int RemoveDirectoryEx(const wchar_t* pszPath, int bNotify) {
    return Tell(FitsPath(pszPath) && ::RemoveDirectoryW(pszPath), bNotify, SHCNE_RMDIR, pszPath);
}

int RenameFile(const wchar_t* pszOld, const wchar_t* pszNew, int bNotify) {
    // Without a new name the platform's function would delete.
    const bool bDone =
        FitsPath(pszOld) && FitsPath(pszNew) &&
        ::MoveFileExW(pszOld, pszNew, MOVEFILE_COPY_ALLOWED | MOVEFILE_WRITE_THROUGH);
    return Tell(bDone, bNotify, SHCNE_RENAMEITEM, pszOld, pszNew);
}

int RenameFolder(const wchar_t* pszOld, const wchar_t* pszNew, int bNotify) {
    const bool bDone = FitsPath(pszOld) && FitsPath(pszNew) &&
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
    op.lpszProgressTitle = L"Deleting..."; // read with FOF_SIMPLEPROGRESS only
    return ::SHFileOperationW(&op) == 0;
}
