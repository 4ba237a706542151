#include "files/operations/file_copy.h"
#include "files/operations/file_version.h"
#include "files/path/path_split.h"
#include "files/stream/core_file.h"
#include "files/text/cs_file.h"
#include "runtime/base/heap_array.h"

#include <windows.h>
#include <algorithm>
#include <cstring>
#include <cwchar>
#include <iterator>

namespace {
constexpr const wchar_t* kProgramExts[] = {L".exe", L".dll", L".sys"}; // with a version to compare

bool IsProgramFile(const wchar_t* pszPath) {
    const wchar_t* pszExt = LocateFileExt(pszPath);
    return pszExt && std::any_of(std::begin(kProgramExts), std::end(kProgramExts),
                                 [pszExt](auto psz) { return ::_wcsicmp(pszExt, psz) == 0; });
}

/// There is a file, not a folder, and it holds nothing. Asks for that one name, not for a mask.
bool IsEmptyFile(const wchar_t* pszPath) {
    WIN32_FILE_ATTRIBUTE_DATA data;
    return ::GetFileAttributesExW(pszPath, GetFileExInfoStandard, &data) &&
           !(data.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) && !data.nFileSizeLow &&
           !data.nFileSizeHigh;
}

/// What becomes of a target whose source is missing.
int CopyNothing(const wchar_t* pszTarget, bool bTarget, DWORD nFlags) {
    const bool bVerify = nFlags & kCopyVerifyOnly;
    const bool bEmpty = nFlags & kCopyMissingIsEmpty;
    if (!bTarget) {
        if (bVerify || !bEmpty) return 1;
        CoreFile made(pszTarget, 1);
        return made.IsReady();
    }
    if (nFlags & kCopyKeepIfNoSource) return 1;
    if (bEmpty && IsEmptyFile(pszTarget)) return 1;
    // QUIRK: a target that is not empty goes even where the missing source stands for an empty
    // file. Test: FileQuirks.AFilledTargetIsDeletedAlsoForAnEmptySource
    return bVerify ? 0 : CoreFile::Delete(pszTarget, 0);
}

/// The two files go on with the same cb bytes.
bool CompareBytes(CoreFile& source, CoreFile& target, DWORD cb) {
    HeapArray<BYTE> buffer(std::size_t{2} * std::min(cb, kFileCopyChunk));
    if (!buffer.IsReady()) return false;
    BYTE* pOther = buffer.Get() + buffer.GetCount() / 2;
    while (cb) {
        const DWORD cbChunk = std::min(cb, kFileCopyChunk);
        if (!source.ReadBin(buffer.Get(), cbChunk, nullptr)) return false;
        if (!target.ReadBin(pOther, cbChunk, nullptr)) return false;
        if (std::memcmp(buffer.Get(), pOther, cbChunk) != 0) return false;
        cb -= cbChunk;
    }
    return true;
}

/// Through a buffer of one chunk, or of cb bytes if that is less.
bool CopyBytes(CoreFile& source, CoreFile& target, BYTE* pBuffer, DWORD cb) {
    while (cb) {
        const DWORD cbChunk = std::min(cb, kFileCopyChunk);
        if (!target.CopyBinFrom(source, pBuffer, cbChunk)) return false;
        cb -= cbChunk;
    }
    return target.SetEndOfFile();
}

/// The low half of the size. Any value can be one, unlike what CoreFile::GetSize gives, which would
/// take the largest for an empty file. False if the file does not tell.
bool GetLowSize(CoreFile& file, DWORD* pcb) {
    const __int64 cb = file.MoveTo64(0, FILE_END);
    *pcb = static_cast<DWORD>(cb);
    return cb >= 0 && file.MoveTo64(0, FILE_BEGIN) == 0;
}

int Verify(CoreFile& source, const wchar_t* pszTarget) {
    CoreFile target(pszTarget, 0);
    if (!target.IsReady()) return 0;
    DWORD cb, cbTarget;
    if (!GetLowSize(source, &cb) || !GetLowSize(target, &cbTarget)) return 0;
    return cbTarget == cb && (!cb || CompareBytes(source, target, cb));
}

// QUIRK: only the low half of the size counts, as in CoreFile::CopyFileW, here and in Verify.
// Test: FileQuirks.OnlyTheLowHalfOfTheSizeCounts
int CopyContentsAndTimes(CoreFile& source, const wchar_t* pszSource, const wchar_t* pszTarget) {
    FILETIME ftCreation, ftAccess, ftWrite;
    const bool bTimes = source.GetTime(&ftCreation, &ftAccess, &ftWrite);
    // Before the target is opened, which makes it: without a size or memory nothing is touched.
    DWORD cb;
    if (!GetLowSize(source, &cb)) return 0;
    HeapArray<BYTE> buffer(std::min(cb, kFileCopyChunk));
    if (cb && !buffer.IsReady()) return 0;
    CoreFile target(pszTarget, 1);
    if (!target.IsReady()) return 0;
    if (!cb) return target.SetEndOfFile();
    if (!CopyBytes(source, target, buffer.Get(), cb)) return 0;
    // The contents are right by now: a file system that keeps neither times nor attributes is no
    // failure.
    if (bTimes) target.SetTime(&ftCreation, &ftAccess, &ftWrite);
    target.Close();
    const DWORD nAttributes = CoreFile::GetAttrib(pszSource);
    if (nAttributes != INVALID_FILE_ATTRIBUTES) ::SetFileAttributesW(pszTarget, nAttributes);
    return 1;
}
} // namespace

int CSFile::Copy(const wchar_t* pszTarget, const wchar_t* pszSource, DWORD nFlags) {
    if (!pszTarget || !*pszTarget || !pszSource || !*pszSource) {
        // No name is no missing file: nothing is deleted for want of one.
        ::SetLastError(ERROR_INVALID_NAME);
        return 0;
    }
    const bool bVerify = nFlags & kCopyVerifyOnly;
    const bool bTarget = CanFind(pszTarget);
    if (bTarget && (nFlags & kCopyKeepTarget) && !bVerify) return 1;
    if (!CanFind(pszSource)) return CopyNothing(pszTarget, bTarget, nFlags);
    if (bTarget && !(nFlags & kCopyAnyVersion) && IsProgramFile(pszSource)) {
        const unsigned __int64 nSource = GetFileVersion(pszSource, nullptr);
        const unsigned __int64 nTarget = nSource ? GetFileVersion(pszTarget, nullptr) : 0;
        if (nTarget && nSource < nTarget) return 1;
        if (nTarget && nSource > nTarget && bVerify) return 0;
    }
    CoreFile source(pszSource, 0);
    if (!source.IsReady()) return 0;
    return bVerify ? Verify(source, pszTarget) : CopyContentsAndTimes(source, pszSource, pszTarget);
}
