#include "files/operations/file_operation.h"
#include "files/operations/file_operation_object.h"
#include "files/operations/shell_file_op.h"
#include "files/text/cs_file.h"
#include "files/text/text_probe.h"
#include "runtime/base/ownership.h"
#include "runtime/system/runtime_func.h"

#include <windows.h>
#include <shellapi.h>
#include <shobjidl.h>

namespace {
/// Nothing is asked and nothing shown.
constexpr DWORD kOperationFlags =
    FOF_SILENT | FOF_NOCONFIRMATION | FOF_NOERRORUI | FOFX_DONTDISPLAYSOURCEPATH;

using CreateItemFunc = HRESULT WINAPI(PCWSTR, IBindCtx*, REFIID, void**); // since Vista
constexpr RuntimeFunc<CreateItemFunc> kCreateItem(L"shell32.dll", "SHCreateItemFromParsingName");

/// The shell's item of a path; the last result tells why there is none.
OwnedInterface<IShellItem> CreateItem(const UniPath* pPath) {
    OwnedInterface<IShellItem> item;
    const wchar_t* pszPath = PathOf(pPath); // null as well for any other kind
    CreateItemFunc* pfnCreate = kCreateItem.Get();
    HRESULT hr = E_NOTIMPL;
    if (pszPath && pfnCreate) {
        hr = pfnCreate(pszPath, nullptr, IID_IShellItem, reinterpret_cast<void**>(item.Put()));
    }
    if (FAILED(hr) || !item) {
        item.Reset();
        CoreIOObj::SetLastHRESULT(FAILED(hr) ? hr : E_FAIL);
    }
    return item;
}

HRESULT Queue(IFileOperation* pOperation, unsigned nOp, IShellItem* pSource, IShellItem* pTarget,
              const wchar_t* pszNewName) {
    switch (nOp) {
    case kFileOpMove: return pOperation->MoveItem(pSource, pTarget, pszNewName, nullptr);
    case kFileOpCopy: return pOperation->CopyItem(pSource, pTarget, pszNewName, nullptr);
    case kFileOpDelete: return pOperation->DeleteItem(pSource, nullptr);
    default: return pOperation->RenameItem(pSource, pszNewName, nullptr);
    }
}

HRESULT Perform(IFileOperation* pOperation) {
    HRESULT hr = pOperation->SetOperationFlags(kOperationFlags);
    return FAILED(hr) ? hr : pOperation->PerformOperations();
}
} // namespace

int CSFile::IFileOp(HWND hwnd, unsigned nOp, const UniPath* pSource, const UniPath* pTarget,
                    const wchar_t* pszNewName) {
    if (nOp < kFileOpMove || nOp > kFileOpRename) return 0;
    MyFileOperation operation; // first: it may be what makes COM ready for the items
    if (!operation.Get()) return RunShellFileOp(hwnd, nOp, pSource, pTarget, pszNewName);
    if (hwnd) operation.Get()->SetOwnerWindow(hwnd);
    OwnedInterface<IShellItem> source = CreateItem(pSource);
    if (!source) return 0;
    OwnedInterface<IShellItem> target;
    if (nOp == kFileOpMove || nOp == kFileOpCopy) {
        target = CreateItem(pTarget);
        if (!target) return 0;
    }
    SetLastHRESULT(Queue(operation.Get(), nOp, source.Get(), target.Get(), pszNewName));
    if (GetLastHRESULT() < 0) return 0;
    SetLastHRESULT(Perform(operation.Get()));
    return GetLastHRESULT() >= 0;
}
