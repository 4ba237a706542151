#include "shell/namespace/shell_malloc.h"

#include <shlobj.h>
#include <atomic>

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

void* ShellMemory::Alloc(DWORD cb) const {
    IMalloc* pMalloc = GetShellMalloc();
    return pMalloc ? pMalloc->Alloc(cb) : nullptr;
}

void* ShellMemory::Realloc(void* pBlock, DWORD cb) const {
    IMalloc* pMalloc = GetShellMalloc();
    return pMalloc ? pMalloc->Realloc(pBlock, cb) : nullptr;
}

void ShellMemory::HeapMinimize() const {
    if (IMalloc* pMalloc = GetShellMalloc()) pMalloc->HeapMinimize();
}
