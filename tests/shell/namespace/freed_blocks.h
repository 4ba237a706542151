#pragma once
#include "shell/namespace/shell_malloc.h"
#include "support/replace_import.h"
#include <windows.h>
#include <objbase.h>
#include <shlobj.h>
#include <set>

extern "C" FARPROC __imp_SHGetMalloc;

/// Stands before the shell's allocator and knows which blocks were given back to it. (The allocator
/// itself cannot tell: with checked heaps a freed block is kept for a while.)
class FreedBlocks : public IMalloc {
  public:
    FreedBlocks() {
        ReleaseShellMalloc();
        pCurrent = this;
    }
    ~FreedBlocks() { ReleaseShellMalloc(); }
    FreedBlocks(const FreedBlocks&) = delete;
    FreedBlocks& operator=(const FreedBlocks&) = delete;
    bool Has(void* p) const { return freed.contains(p); }

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID, void**) override { return E_NOINTERFACE; }
    ULONG STDMETHODCALLTYPE AddRef() override { return 2; }
    ULONG STDMETHODCALLTYPE Release() override { return 1; }
    void* STDMETHODCALLTYPE Alloc(SIZE_T cb) override { return Given(::CoTaskMemAlloc(cb)); }
    void* STDMETHODCALLTYPE Realloc(void* p, SIZE_T cb) override {
        return Given(::CoTaskMemRealloc(p, cb));
    }
    void STDMETHODCALLTYPE Free(void* p) override {
        if (p) freed.insert(p);
        ::CoTaskMemFree(p);
    }
    SIZE_T STDMETHODCALLTYPE GetSize(void*) override { return 0; }
    int STDMETHODCALLTYPE DidAlloc(void*) override { return -1; }
    void STDMETHODCALLTYPE HeapMinimize() override { ++nMinimized; }
    int nMinimized = 0;

  private:
    static inline FreedBlocks* pCurrent = nullptr;
    static HRESULT WINAPI Give(LPMALLOC* pp) {
        *pp = pCurrent;
        return S_OK;
    }
    void* Given(void* p) {
        freed.erase(p);
        return p;
    }
    std::set<void*> freed;
    ReplaceImport replaced{__imp_SHGetMalloc, &Give};
};
