// The parts of CoreFile that take a path: facts, deletion, renaming, and whole contents.

#include "files/stream/core_file.h"

#include <shlobj.h>

int CoreFile::GetInfo(const wchar_t* pszPath, WIN32_FIND_DATAW* pData) {
    WIN32_FIND_DATAW data;
    HANDLE hFind = ::FindFirstFileW(pszPath, &data);
    if (hFind == INVALID_HANDLE_VALUE) return 0;
    ::FindClose(hFind);
    if (pData) *pData = data;
    return 1;
}

DWORD CoreFile::GetSize(const wchar_t* pszPath, DWORD* pnHigh) {
    WIN32_FIND_DATAW data;
    int bFound = GetInfo(pszPath, &data);
    if (pnHigh) *pnHigh = bFound ? data.nFileSizeHigh : 0;
    return bFound ? data.nFileSizeLow : 0;
}

unsigned __int64 CoreFile::GetSize64(const wchar_t* pszPath) {
    DWORD nHigh = 0;
    DWORD nLow = GetSize(pszPath, &nHigh);
    return static_cast<unsigned __int64>(nHigh) << 32 | nLow;
}

int CoreFile::GetTime(const wchar_t* pszPath, FILETIME* pftCreation, FILETIME* pftAccess,
                      FILETIME* pftWrite) {
    WIN32_FIND_DATAW data;
    if (!GetInfo(pszPath, &data)) return 0;
    if (pftCreation) *pftCreation = data.ftCreationTime;
    if (pftAccess) *pftAccess = data.ftLastAccessTime;
    if (pftWrite) *pftWrite = data.ftLastWriteTime;
    return 1;
}

int CoreFile::SetTime(const wchar_t* pszPath, const FILETIME* pftCreation,
                      const FILETIME* pftAccess, const FILETIME* pftWrite) {
    CoreFile file(pszPath, 1);
    return file.IsReady() && file.SetTime(pftCreation, pftAccess, pftWrite);
}

DWORD CoreFile::GetAttrib(const wchar_t* pszPath) { return ::GetFileAttributesW(pszPath); }

int CoreFile::CanFind(const wchar_t* pszPath) {
    ::SetLastError(NO_ERROR);
    if (::GetFileAttributesW(pszPath) != INVALID_FILE_ATTRIBUTES) return 1;
    return ::GetLastError() != ERROR_FILE_NOT_FOUND;
}

int CoreFile::Delete(const wchar_t* pszPath, int bNotify) {
    if (!::DeleteFileW(pszPath)) return 0;
    if (bNotify) ::SHChangeNotify(SHCNE_DELETE, SHCNF_PATHW, pszPath, nullptr);
    return 1;
}

int CoreFile::RenameFile(const wchar_t* pszOld, const wchar_t* pszNew, int bNotify) {
    if (!::MoveFileW(pszOld, pszNew)) return 0;
    if (bNotify) ::SHChangeNotify(SHCNE_RENAMEITEM, SHCNF_PATHW, pszOld, pszNew);
    return 1;
}

int CoreFile::ReadFile(const wchar_t* pszPath, void* pBuffer, unsigned cb) {
    CoreFile file(pszPath, 0);
    return file.IsReady() && file.ReadBin(pBuffer, cb, nullptr);
}

int CoreFile::WriteFile(const wchar_t* pszPath, const void* pBytes, unsigned cb) {
    CoreFile file(pszPath, 1);
    // Cut only behind new contents: after a failed write as much as possible of the old stays.
    return file.IsReady() && file.WriteBin(pBytes, cb, nullptr) && file.SetEndOfFile();
}
