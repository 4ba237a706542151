#include "files/operations/shell_file_op.h"
#include "files/disk/path_fs.h"
#include "files/operations/file_operation.h"
#include "files/path/path_chars.h"
#include "files/path/path_shape.h"
#include "files/path/path_split.h"
#include "files/stream/core_io.h"
#include "files/text/text_probe.h"

#include <windows.h>
#include <shellapi.h>
#include <cwchar>

namespace {
constexpr FILEOP_FLAGS kShellFlags =
    FOF_SILENT | FOF_NOCONFIRMATION | FOF_NOERRORUI | FOF_NOCONFIRMMKDIR | FOF_MULTIDESTFILES;

/// The function's number for an operation, in the order of kFileOpMove and the others.
constexpr UINT kShellFuncs[] = {FO_MOVE, FO_COPY, FO_DELETE, FO_RENAME};

/// A list of one path, as the function takes it.
struct PathList {
    wchar_t sz[kPathChars + 1] = {}; // with the list's own terminator

    /// Both parts, of which the second may be null. False if they do not fit.
    bool Set(const wchar_t* pszFolder, const wchar_t* pszName) {
        if (!FitsPath(pszFolder)) return false;
        CopyPath(sz, pszFolder);
        if (!pszName) return true;
        const std::size_t cch = std::wcslen(sz);
        const bool bSeparator = cch && !EndsInSeparator(sz, cch);
        return AppendPath(sz, bSeparator ? L"\\" : L"") && AppendPath(sz, pszName);
    }
};

/// Where the source goes: into the target's folder, or under its new name beside itself. A new name
/// is no mask and does not lead elsewhere, as the object would not take one either.
bool SetTarget(PathList& to, unsigned nOp, const wchar_t* pszSource, const UniPath* pTarget,
               const wchar_t* pszNewName) {
    if (nOp == kFileOpDelete) return true;
    const bool bNewName = pszNewName && *pszNewName;
    if (bNewName && !IsValidFileName(pszNewName)) return false;
    if (nOp == kFileOpRename) {
        wchar_t szFolder[kPathChars];
        CopyPath(szFolder, pszSource);
        StripFileName(szFolder);
        return bNewName && to.Set(szFolder, pszNewName);
    }
    const wchar_t* pszFolder = PathOf(pTarget);
    if (!IsFolderExists(pszFolder)) return false;
    return to.Set(pszFolder, bNewName ? pszNewName : LocateFileName(pszSource));
}
} // namespace

int RunShellFileOp(HWND hwnd, unsigned nOp, const UniPath* pSource, const UniPath* pTarget,
                   const wchar_t* pszNewName) {
    const wchar_t* pszSource = PathOf(pSource);
    if (!pszSource) {
        CoreIOObj::SetLastHRESULT(E_NOTIMPL); // as of a path of another kind
        return 0;
    }
    PathList from, to;
    // What is not there would be taken for a mask.
    if (!IsFileOrFolderExists(pszSource) || !from.Set(pszSource, nullptr)) {
        CoreIOObj::SetLastWin32Error(ERROR_FILE_NOT_FOUND);
        return 0;
    }
    if (!SetTarget(to, nOp, pszSource, pTarget, pszNewName)) {
        CoreIOObj::SetLastWin32Error(ERROR_PATH_NOT_FOUND);
        return 0;
    }
    SHFILEOPSTRUCTW op{};
    op.hwnd = hwnd;
    op.wFunc = kShellFuncs[nOp - kFileOpMove];
    op.pFrom = from.sz;
    op.pTo = nOp == kFileOpDelete ? nullptr : to.sz;
    op.fFlags = kShellFlags;
    int nError = ::SHFileOperationW(&op);
    if (!nError && op.fAnyOperationsAborted) nError = ERROR_CANCELLED;
    CoreIOObj::SetLastWin32Error(static_cast<DWORD>(nError));
    return nError == 0;
}
