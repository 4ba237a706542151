#include "files/stream/core_file.h"
#include "runtime/text/str_format.h"

#include <windows.h>
#include <shlobj.h>
#include <winioctl.h>
#include <cstdarg>
#include <new>

namespace {
constexpr DWORD kPutsSize = 1024; // characters of a formatted text, with its terminator
constexpr wchar_t kByteOrderMark = 0xFEFF;

/// Puts a carriage return in front of a line feed that ends the text and has none. A text of one
/// line feed alone stays. There is room for one more character. Returns the new length.
template <class Ch>
DWORD CompleteLineEnd(Ch* pszText, DWORD cch) {
    if (cch < 2 || pszText[cch - 1] != '\n' || pszText[cch - 2] == '\r') return cch;
    pszText[cch - 1] = '\r';
    pszText[cch] = '\n';
    return cch + 1;
}

/// What a read or write gives: all that was asked for moved.
bool FinishTransfer(BOOL bDone, DWORD cbMoved, DWORD cbWanted, DWORD* pcbDone) {
    if (pcbDone) *pcbDone = cbMoved;
    return bDone && cbMoved == cbWanted;
}
} // namespace

// IsReady tells whether the opening succeeded.
CoreFile::CoreFile(const wchar_t* pszPath, int bToWrite) {
    static_cast<void>(Open(pszPath, bToWrite));
}

CoreFile::CoreFile(const wchar_t* pszPath, DWORD nAccess, DWORD nShare, DWORD nDisposition,
                   DWORD nFlags) {
    static_cast<void>(Open(pszPath, nAccess, nShare, nDisposition, nFlags));
}

CoreFile::~CoreFile() { CoreFile::Close(); } // by name: a derived object is gone by now

void CoreFile::InitCoreFile() {
    hFile = INVALID_HANDLE_VALUE;
    bWrite = 0;
}

int CoreFile::Open(const wchar_t* pszPath, int bToWrite) {
    if (bToWrite) {
        return Open(pszPath, GENERIC_READ | GENERIC_WRITE, 0, OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL);
    }
    return Open(pszPath, GENERIC_READ, FILE_SHARE_READ, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL);
}

int CoreFile::Open(const wchar_t* pszPath, DWORD nAccess, DWORD nShare, DWORD nDisposition,
                   DWORD nFlags) {
    bWrite = (nAccess & GENERIC_WRITE) != 0;
    hFile = ::CreateFileW(pszPath, nAccess, nShare, nullptr, nDisposition, nFlags, nullptr);
    SetLastWin32Error(::GetLastError());
    return hFile != INVALID_HANDLE_VALUE;
}

CoreFile* CoreFile::CreateObject(const wchar_t* pszPath, int bToWrite) {
    return new (std::nothrow) CoreFile(pszPath, bToWrite);
}

CoreIOObj* CoreIO::CreateFileObject(const wchar_t* pszPath, int bToWrite) {
    return CoreFile::CreateObject(pszPath, bToWrite);
}

void CoreFile::Close() {
    if (hFile != INVALID_HANDLE_VALUE) ::CloseHandle(hFile);
    hFile = INVALID_HANDLE_VALUE;
}

int CoreFile::IsReady() { return hFile != INVALID_HANDLE_VALUE; }

int CoreFile::IsToWrite() { return bWrite; }

int CoreFile::Flush() { return ::FlushFileBuffers(hFile) != 0; }

int CoreFile::SetEndOfFile() { return ::SetEndOfFile(hFile) != 0; }

DWORD CoreFile::MoveTo(long nLow, DWORD nMethod, long nHigh) {
    // With a high half the platform takes the low one as unsigned, so that a negative distance
    // must come without.
    return ::SetFilePointer(hFile, nLow, nHigh ? &nHigh : nullptr, nMethod);
}

__int64 CoreFile::MoveTo64(__int64 nDistance, DWORD nMethod) {
    LARGE_INTEGER n;
    n.QuadPart = nDistance;
    n.LowPart = ::SetFilePointer(hFile, static_cast<LONG>(n.LowPart), &n.HighPart, nMethod);
    // A low half of all ones is a position as well; the platform then clears the last error.
    if (n.LowPart == INVALID_SET_FILE_POINTER && ::GetLastError() != NO_ERROR) return -1;
    return n.QuadPart;
}

DWORD CoreFile::MoveToEnd() { return ::SetFilePointer(hFile, 0, nullptr, FILE_END); }

DWORD CoreFile::GetSize(DWORD* pnHigh) {
    DWORD nHigh = 0;
    ::SetLastError(NO_ERROR); // tells a failure from a low half of all ones
    DWORD nLow = ::GetFileSize(hFile, &nHigh);
    if (nLow == INVALID_FILE_SIZE) {
        nLow = 0;
        if (::GetLastError() != NO_ERROR) nHigh = 0;
    }
    if (pnHigh) *pnHigh = nHigh;
    return nLow;
}

unsigned __int64 CoreFile::GetSize64() {
    DWORD nHigh = 0;
    DWORD nLow = GetSize(&nHigh);
    return static_cast<unsigned __int64>(nHigh) << 32 | nLow;
}

int CoreFile::GetTime(FILETIME* pftCreation, FILETIME* pftAccess, FILETIME* pftWrite) {
    return ::GetFileTime(hFile, pftCreation, pftAccess, pftWrite) != 0;
}

int CoreFile::SetTime(const FILETIME* pftCreation, const FILETIME* pftAccess,
                      const FILETIME* pftWrite) {
    return ::SetFileTime(hFile, pftCreation, pftAccess, pftWrite) != 0;
}

int CoreFile::ReadBin(void* pBuffer, DWORD cb, DWORD* pcbDone) {
    if (!cb) return 1;
    DWORD cbMoved = 0;
    BOOL bDone = ::ReadFile(hFile, pBuffer, cb, &cbMoved, nullptr);
    return FinishTransfer(bDone, cbMoved, cb, pcbDone);
}

int CoreFile::WriteBin(const void* pData, DWORD cb, DWORD* pcbDone) {
    if (!cb) return 1;
    DWORD cbMoved = 0;
    BOOL bDone = ::WriteFile(hFile, pData, cb, &cbMoved, nullptr);
    return FinishTransfer(bDone, cbMoved, cb, pcbDone);
}

int CoreFile::CopyBinFrom(CoreFile& source, void* pBuffer, DWORD cb) {
    if (!cb) return 1;
    return source.ReadBin(pBuffer, cb, nullptr) && WriteBin(pBuffer, cb, nullptr);
}

// The platform tells of compression file by file; a file system without it fails the question.
int CoreFile::GetCompression() {
    USHORT nState = 0;
    DWORD cbDone = 0;
    return ::DeviceIoControl(hFile, FSCTL_GET_COMPRESSION, nullptr, 0, &nState, sizeof(nState),
                             &cbDone, nullptr) &&
           nState != COMPRESSION_FORMAT_NONE;
}

int CoreFile::SetCompression(int nState) {
    auto nFormat = static_cast<USHORT>(nState);
    DWORD cbDone = 0;
    return ::DeviceIoControl(hFile, FSCTL_SET_COMPRESSION, &nFormat, sizeof(nFormat), nullptr, 0,
                             &cbDone, nullptr) != 0;
}

int CoreFile::WriteUnicodeMarker() {
    if (GetFilePos64() != 0) return 0;
    return WriteBin(&kByteOrderMark, sizeof(kByteOrderMark), nullptr);
}

int CoreFile::WriteUTF8Marker() {
    if (GetFilePos64() != 0) return 0;
    return WriteBin("\xEF\xBB", 2, nullptr) && WriteBin("\xBF", 1, nullptr);
}

int CoreFile::puts(const wchar_t* pszFormat, ...) {
    wchar_t szText[kPutsSize + 2]; // a carriage return may come in
    va_list args;
    va_start(args, pszFormat);
    auto cch = static_cast<DWORD>(FormatTextV(szText, kPutsSize, pszFormat, args));
    va_end(args);
    return WriteBin(szText, CompleteLineEnd(szText, cch) * sizeof(wchar_t), nullptr);
}

int CoreFile::puts(const char* pszFormat, ...) {
    char szText[kPutsSize + 2];
    va_list args;
    va_start(args, pszFormat);
    auto cch = static_cast<DWORD>(FormatNarrowTextV(szText, kPutsSize, pszFormat, args));
    va_end(args);
    return WriteBin(szText, CompleteLineEnd(szText, cch), nullptr);
}

CoreFileAttrib::CoreFileAttrib(const wchar_t* pszFilePath, DWORD nAttributes)
    : pszPath(pszFilePath), nSaved(::GetFileAttributesW(pszFilePath)) {
    if (IsValid()) ::SetFileAttributesW(pszPath, nAttributes);
}

CoreFileAttrib::~CoreFileAttrib() {
    if (IsValid()) ::SetFileAttributesW(pszPath, nSaved);
}
// What takes a path: facts, deletion, renaming, and whole contents

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
    const bool bFound = GetInfo(pszPath, &data);
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
    ::SetLastError(NO_ERROR); // a failure that sets no error must not look like an older one
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
