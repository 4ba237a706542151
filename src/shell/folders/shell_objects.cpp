#include "shell/folders/shell_objects.h"
#include "runtime/base/ownership.h"

#include <cwchar>

namespace {
constexpr const wchar_t* kViewClass = L"SHELLDLL_DefView";

static_assert(sizeof(SHDESCRIPTIONID) == 20);

bool IsOwnWindow(HWND hwnd) {
    DWORD nProcess = 0;
    return ::GetWindowThreadProcessId(hwnd, &nProcess) && nProcess == ::GetCurrentProcessId();
}
} // namespace

int GetIShellView(HWND hwnd, IShellView** ppOut) {
    if (!ppOut) return 0;
    *ppOut = nullptr;
    wchar_t szClass[MAX_PATH];
    if (!IsOwnWindow(hwnd) || !::GetClassNameW(hwnd, szClass, MAX_PATH)) return 0;
    if (std::wcscmp(szClass, kViewClass) != 0) return 0;
    auto* pView = reinterpret_cast<IShellView*>(::GetWindowLongPtrW(hwnd, 0));
    if (!pView) return 0;
    pView->AddRef();
    *ppOut = pView;
    return 1;
}

int GetFolderDescriptionId(SHDESCRIPTIONID* pOut, const ITEMIDLIST* pidl) {
    if (!pOut || !pidl) return 0;
    OwnedInterface<IShellFolder> parent;
    const ITEMIDLIST* pidlLast = nullptr;
    if (FAILED(::SHBindToParent(pidl, IID_IShellFolder, reinterpret_cast<void**>(parent.Put()),
                                &pidlLast)))
        return 0;
    return SUCCEEDED(
        ::SHGetDataFromIDListW(parent.Get(), pidlLast, SHGDFIL_DESCRIPTIONID, pOut, sizeof(*pOut)));
}
