#include "shell/namespace/pidl.h"
#include "runtime/base/ownership.h"

#include <shlobj.h>
#include <atomic>
#include <cwchar>
#include <new>

ITEMIDLIST* GetPidlOf(const wchar_t* pszPath) {
    if (!pszPath) return nullptr;
    IShellFolder* pDesktop = nullptr;
    if (FAILED(::SHGetDesktopFolder(&pDesktop)) || !pDesktop) return nullptr;
    ScopeExit release([&] { pDesktop->Release(); });
    // The parser takes a text that it may write to.
    std::size_t cch = std::wcslen(pszPath) + 1;
    wchar_t* pszCopy = new (std::nothrow) wchar_t[cch];
    if (!pszCopy) return nullptr;
    ScopeExit freeCopy([&] { delete[] pszCopy; });
    std::wmemcpy(pszCopy, pszPath, cch);
    ITEMIDLIST* pidl = nullptr;
    if (FAILED(pDesktop->ParseDisplayName(nullptr, nullptr, pszCopy, nullptr, &pidl, nullptr)))
        return nullptr;
    return pidl;
}

namespace {
constinit std::atomic<IMalloc*> pShellMalloc{nullptr};
} // namespace

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
