#include "files/operations/file_wipe.h"
#include "files/path/path_chars.h"
#include "files/path/path_shape.h"
#include "files/path/path_split.h"
#include "files/stream/core_file.h"
#include "files/text/cs_file.h"
#include "runtime/base/heap_array.h"
#include "runtime/base/ownership.h"

#include <windows.h>
#include <shlobj.h>
#include <winioctl.h>
#include <algorithm>
#include <cstring>
#include <cwchar>
#include <iterator>

namespace {
constexpr int kMaxPasses = 3;
/// The byte of each pass, by the method's number from 1 on.
struct WipeBytes {
    int nPasses;
    BYTE bytes[kMaxPasses];
};
constexpr WipeBytes kWipeBytes[] = {{1, {0x00}}, {3, {0x55, 0xAA, 0x00}}};

const WipeBytes* FindWipeBytes(int nMethod) {
    return nMethod >= 1 && nMethod <= static_cast<int>(std::size(kWipeBytes))
               ? &kWipeBytes[nMethod - 1]
               : nullptr;
}

/// The characters of a path with a wiped name, without the terminator, if its folder does not end
/// in a separator.
constexpr std::size_t kWipedPathSize = kPathChars - 1;

/// Puts the full path into the buffer. False if it does not fit.
bool MakeFullPath(wchar_t (&szFull)[kPathChars], const wchar_t* pszPath) {
    DWORD cch = pszPath ? ::GetFullPathNameW(pszPath, kPathChars, szFull, nullptr) : 0;
    if (cch && cch < kPathChars) return true;
    ::SetLastError(cch ? ERROR_FILENAME_EXCED_RANGE : ERROR_PATH_NOT_FOUND);
    return false;
}

/// Puts a name of one character, which fills the path, behind the full path's folder.
void MakeWipedPath(wchar_t (&szWiped)[kPathChars], const wchar_t* pszPath, wchar_t ch) {
    CopyPath(szWiped, pszPath);
    auto cchFolder = static_cast<std::size_t>(LocateFileName(szWiped) - szWiped);
    // The folder's length without its separator, but for a root, and the name's make 258.
    const bool bRoot = cchFolder > 1 && szWiped[cchFolder - 2] == L':';
    const std::size_t cchWiped = bRoot ? kWipedPathSize - 1 : kWipedPathSize;
    for (std::size_t i = cchFolder; i < cchWiped; ++i) szWiped[i] = ch;
    szWiped[cchWiped] = 0;
}

enum class FileKind { plain, link, tagged, kept };

/// What an open file that bears a tag is: a link, which leads to another file, or a tagged one,
/// which only lies elsewhere, as in a store or packed, but whose bytes are its own. Kept if nobody
/// tells: it is not followed, and must not go with its bytes as they are either.
FileKind GetTaggedKind(HANDLE hFile) {
    HeapArray<BYTE> block(MAXIMUM_REPARSE_DATA_BUFFER_SIZE);
    DWORD cb = 0;
    if (!block.IsReady() ||
        !::DeviceIoControl(hFile, FSCTL_GET_REPARSE_POINT, nullptr, 0, block.Get(),
                           static_cast<DWORD>(block.GetCount()), &cb, nullptr)) {
        return FileKind::kept;
    }
    DWORD nTag = 0;
    if (cb < sizeof(nTag)) return FileKind::kept;
    std::memcpy(&nTag, block.Get(), sizeof(nTag));
    return IsReparseTagNameSurrogate(nTag) ? FileKind::link : FileKind::tagged;
}

/// What an open file is; kept: it cannot be wiped whole, and stays as it is then.
FileKind GetFileKind(HANDLE hFile) {
    BY_HANDLE_FILE_INFORMATION info;
    if (!::GetFileInformationByHandle(hFile, &info)) return FileKind::plain;
    // Where the platform leaves it to others who may write, as for a file server's administrator,
    // such a file was opened all the same.
    if (info.dwFileAttributes & FILE_ATTRIBUTE_READONLY) return FileKind::kept;
    if (!(info.dwFileAttributes & FILE_ATTRIBUTE_REPARSE_POINT)) return FileKind::plain;
    return GetTaggedKind(hFile);
}

/// One pass: where it writes, with what, and whom it tells.
struct WipePass {
    BYTE* pBuffer; // filled
    DWORD cbBuffer;
    unsigned __int64 cbFile;
    int nPass;
    WipeCallback pfnCallback; // may be null
    void* pContext;
};

/// Writes over the whole file. *pbCancelled is set if the callback ended the pass. False if a write
/// failed.
bool WriteOver(CoreFile& file, const WipePass& pass, bool* pbCancelled) {
    if (file.MoveTo64(0, FILE_BEGIN) != 0) return false;
    for (unsigned __int64 cbDone = 0; cbDone < pass.cbFile;) {
        const auto cbChunk =
            static_cast<DWORD>(std::min<unsigned __int64>(pass.cbFile - cbDone, pass.cbBuffer));
        if (!file.WriteBin(pass.pBuffer, cbChunk, nullptr)) return false;
        cbDone += cbChunk;
        if (pass.pfnCallback && !pass.pfnCallback(pass.pContext, pass.nPass, cbDone)) {
            *pbCancelled = true;
            break;
        }
    }
    return file.Flush(); // what the platform holds back would be dropped with the file
}

/// All passes.
// QUIRK: those behind a cancelled one are run, each until the callback ends it too.
// Test: FileQuirks.PassesGoOnAfterACancelledOne
bool WipeContents(CoreFile& file, unsigned __int64 cbFile, int nMethod, WipeCallback pfnCallback,
                  void* pContext, bool* pbCancelled) {
    const WipeBytes* pMethod = FindWipeBytes(nMethod);
    if (!pMethod) return true;
    const auto cbBuffer = static_cast<DWORD>(std::min<unsigned __int64>(cbFile, kWipeChunk));
    HeapArray<BYTE> buffer(cbBuffer);
    if (cbBuffer && !buffer.IsReady()) return false;
    for (int n = 0; n < pMethod->nPasses; ++n) {
        std::fill(buffer.begin(), buffer.end(), pMethod->bytes[n]);
        const WipePass pass = {buffer.Get(), cbBuffer, cbFile, n, pfnCallback, pContext};
        if (!WriteOver(file, pass, pbCancelled)) return false;
    }
    return true;
}

/// Overwrites the name, too, and deletes.
int DeleteWiped(const wchar_t* pszPath, bool bNotify) {
    wchar_t szWiped[kPathChars];
    CopyPath(szWiped, pszPath);
    if (!CSFile::WipeRename(szWiped)) {
        ScopeExit keepError([dwError = ::GetLastError()] { ::SetLastError(dwError); });
        if (std::wcscmp(szWiped, pszPath) != 0) CoreFile::RenameFile(szWiped, pszPath, 0);
        return 0;
    }
    if (bNotify && std::wcscmp(szWiped, pszPath) != 0) {
        ::SHChangeNotify(SHCNE_DELETE, SHCNF_PATHW, pszPath, nullptr);
    }
    return CoreFile::Delete(szWiped, bNotify);
}
} // namespace

int GetWipePasses(int nMethod) {
    const WipeBytes* pMethod = FindWipeBytes(nMethod);
    return pMethod ? pMethod->nPasses : 0;
}

int CSFile::IsWipedName(const wchar_t* pszName) { return ::IsWipedName(pszName); }

int CSFile::WipeDelete(const wchar_t* pszPath, WipeMethod nMethod, int bNotify,
                       WipeCallback pfnCallback, void* pContext) {
    wchar_t szFull[kPathChars]; // before anything is overwritten: a longer name cannot be wiped
    if (!MakeFullPath(szFull, pszPath)) return 0;
    CSFile file(szFull, GENERIC_READ | GENERIC_WRITE, 0, OPEN_ALWAYS,
                FILE_ATTRIBUTE_NORMAL | FILE_FLAG_OPEN_REPARSE_POINT);
    if (!file.IsReady()) return 0;
    const FileKind nKind = GetFileKind(file.hFile);
    if (nKind == FileKind::kept) {
        ::SetLastError(ERROR_ACCESS_DENIED);
        return 0;
    }
    if (nKind == FileKind::tagged) { // opened as what it is stored as; its bytes are wanted
        file.Close();
        if (!file.Open(szFull, 1)) return 0;
    }
    LARGE_INTEGER cbFile;
    if (!::GetFileSizeEx(file.hFile, &cbFile)) return 0;
    bool bCancelled = false;
    if (nKind != FileKind::link &&
        !WipeContents(file, static_cast<unsigned __int64>(cbFile.QuadPart), nMethod, pfnCallback,
                      pContext, &bCancelled)) {
        return 0;
    }
    file.Close(); // an open file cannot be renamed
    if (bCancelled) {
        ::SetLastError(ERROR_CANCELLED);
        return 0;
    }
    return DeleteWiped(szFull, bNotify != 0);
}

int CSFile::WipeRename(wchar_t* pszPath) {
    wchar_t szOld[kPathChars], szNew[kPathChars];
    if (!MakeFullPath(szOld, pszPath)) return 0;
    for (wchar_t ch : {kFirstWipedChar, kLastWipedChar}) {
        MakeWipedPath(szNew, szOld, ch);
        if (!RenameFile(szOld, szNew, 0)) return 0;
        CopyPath(szOld, szNew);
        CopyPath(pszPath, szNew);
    }
    return 1;
}
