#include "shell/namespace/pidl.h"
#include "runtime/base/heap_array.h"
#include "runtime/base/ownership.h"

#include <shlobj.h>
#include <atomic>

namespace {
constinit std::atomic<IMalloc*> pShellMalloc{nullptr};
} // namespace

// Item id lists

ITEMIDLIST* GetPidlOf(const wchar_t* pszPath) {
    if (!pszPath) return nullptr;
    IShellFolder* pDesktop = nullptr;
    if (FAILED(::SHGetDesktopFolder(&pDesktop)) || !pDesktop) return nullptr;
    ScopeExit release([&] { pDesktop->Release(); });
    HeapArray<wchar_t> path = CopyToHeap(pszPath); // the parser takes a text that it may write to
    if (!path.IsReady()) return nullptr;
    ITEMIDLIST* pidl = nullptr;
    if (FAILED(pDesktop->ParseDisplayName(nullptr, nullptr, path.Get(), nullptr, &pidl, nullptr)))
        return nullptr;
    return pidl;
}

// The shell's allocator

IMalloc* GetShellMalloc() {
    IMalloc* pMalloc = pShellMalloc;
    if (pMalloc) return pMalloc;
    IMalloc* pNew = nullptr;
    if (FAILED(::SHGetMalloc(&pNew)) || !pNew) return nullptr;
    if (pShellMalloc.compare_exchange_strong(pMalloc, pNew)) return pNew;
    pNew->Release(); // another thread was quicker
    return pMalloc;
}

void ShellFree(void* pBlock) {
    if (!pBlock) return;
    if (IMalloc* pMalloc = GetShellMalloc()) pMalloc->Free(pBlock);
}

void ReleaseShellMalloc() {
    if (IMalloc* pMalloc = pShellMalloc.exchange(nullptr)) pMalloc->Release();
}
