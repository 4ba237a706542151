#include "files/stream/core_file_copy.h"
#include "files/stream/core_file.h"
#include "files/stream/core_io.h"
#include "runtime/base/ownership.h"
#include "runtime/text/str_format.h"

#include <windows.h>
#include <shlobj.h>
#include <algorithm>
#include <cwchar>

namespace {
/// There is a file, not a folder.
bool IsFile(const wchar_t* pszPath) {
    DWORD nAttributes = ::GetFileAttributesW(pszPath);
    return nAttributes != INVALID_FILE_ATTRIBUTES && !(nAttributes & FILE_ATTRIBUTE_DIRECTORY);
}

/// The length without the dots and blanks at the end, which the platform drops from a name.
std::size_t GetNameLength(const wchar_t* pszPath) {
    std::size_t cch = std::wcslen(pszPath);
    while (cch && (pszPath[cch - 1] == L'.' || pszPath[cch - 1] == L' ')) --cch;
    return cch;
}

/// The two texts name one file in a folder, but for what the platform drops.
bool IsSameName(const wchar_t* pszPath, const wchar_t* pszOther) {
    std::size_t cch = GetNameLength(pszPath);
    return cch == GetNameLength(pszOther) && ::_wcsnicmp(pszPath, pszOther, cch) == 0;
}

/// Makes the name under which the target waits. False if that would be the target itself, whose
/// name leaves no room for more, or the source, which must not be deleted for it.
bool MakeBackupName(wchar_t (&szBackup)[MAX_PATH], const wchar_t* pszSource,
                    const wchar_t* pszTarget) {
    if (!pszSource || !pszTarget || !*pszTarget) return false;
    FormatText(szBackup, L"%s.temp", pszTarget);
    return !IsSameName(szBackup, pszTarget) && !IsSameName(szBackup, pszSource);
}
} // namespace

int CoreFile::CopyFileW(const wchar_t* pszSource, const wchar_t* pszTarget, int bNotify) {
    SetLastHRESULT(0);
    CoreFile source(pszSource, 0);
    if (!source.IsReady()) return 0;
    const bool bCompressed = source.GetCompression();
    DWORD cb = source.GetSize(nullptr);
    // Before the target is opened, which makes it: without memory nothing is touched.
    DWORD cbBuffer = std::min(cb, kCopyBufferSize);
    OwnedLocal buffer(cb ? ::LocalAlloc(LMEM_FIXED, cbBuffer) : nullptr);
    if (cb && !buffer) return 0;

    CoreFile target(pszTarget, 1);
    if (!target.IsReady()) return 0;
    if (!CopyContents(source, target, buffer.Get(), cbBuffer, cb)) {
        DWORD dwError = ::GetLastError();
        target.Close(); // an open file cannot be deleted
        ::DeleteFileW(pszTarget);
        source.Close();
        ::SetLastError(dwError); // why the copy failed, not what came of the cleaning up
        return 0;
    }
    buffer.Reset();
    target.SetCompression(bCompressed); // a file system without compression has nothing to set
    target.Close();
    if (bNotify) ::SHChangeNotify(SHCNE_CREATE, SHCNF_PATHW, pszTarget, nullptr);
    return 1;
}

int CoreFile::CopyFileSafe(const wchar_t* pszSource, const wchar_t* pszTarget) {
    wchar_t szBackup[MAX_PATH];
    if (!MakeBackupName(szBackup, pszSource, pszTarget)) {
        ::SetLastError(ERROR_INVALID_NAME);
        return 0;
    }
    {
        // While the source is open it cannot be deleted: it may be the backup in other letters.
        CoreFile source(pszSource, 0);
        if (IsFile(szBackup) && !Delete(szBackup, 1)) return 0;
    }
    if (IsFile(pszTarget) && !RenameFile(pszTarget, szBackup, 0)) return 0;
    if (CopyFileW(pszSource, pszTarget, 1)) {
        if (IsFile(szBackup)) Delete(szBackup, 1); // one that stays, as read-only, is no failure
        return 1;
    }
    ScopeExit keepError([dwError = ::GetLastError()] { ::SetLastError(dwError); });
    if (IsFile(szBackup)) RenameFile(szBackup, pszTarget, 0);
    return 0;
}

bool CopyChunks(CoreIOObj& source, CoreIOObj& target, void* pBuffer, DWORD cbBuffer, DWORD cb) {
    if (cb && !cbBuffer) return false; // would go on for ever
    while (cb) {
        DWORD cbChunk = std::min(cb, cbBuffer);
        if (!source.ReadBin(pBuffer, cbChunk, nullptr)) return false;
        if (!target.WriteBin(pBuffer, cbChunk, nullptr)) return false;
        cb -= cbChunk;
    }
    return true;
}

bool CopyContents(CoreIOObj& source, CoreIOObj& target, void* pBuffer, DWORD cbBuffer, DWORD cb) {
    target.MoveTo64(0, FILE_BEGIN);
    return CopyChunks(source, target, pBuffer, cbBuffer, cb) && target.SetEndOfFile();
}
