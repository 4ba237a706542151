#include "shell/namespace/com_wrappers.h"
#include "shell/namespace/pidl.h"

#include <shlobj.h>
#include <algorithm>

// iUnk

iUnk::iUnk(iUnk& other, REFIID iid) { other.QueryInterface(iid, *this); }

void iUnk::Attach(IUnknown* pShared) {
    // The new reference first: it may be to the very object whose last one this is.
    if (pShared) pShared->AddRef();
    Detach();
    pUnk = pShared;
}

void iUnk::Detach() {
    IUnknown* pHeld = pUnk;
    pUnk = nullptr;
    if (pHeld) pHeld->Release();
}

int iUnk::QueryInterface(REFIID iid, iUnk& out) const { return SUCCEEDED(Query(iid, out)); }

HRESULT iUnk::Query(REFIID iid, iUnk& out) const {
    void* pFound = nullptr;
    const HRESULT hrQuery = pUnk ? pUnk->QueryInterface(iid, &pFound) : E_POINTER;
    if (FAILED(hrQuery)) pFound = nullptr;
    out.Detach(); // after the question: out may be this object
    out.pUnk = static_cast<IUnknown*>(pFound);
    return hrQuery;
}

ULONG iUnk::AddRef() const { return pUnk ? pUnk->AddRef() : 0; }

ULONG iUnk::Release() const { return pUnk ? pUnk->Release() : 0; }

int iUnkResult::Keep(HRESULT hrNew) {
    hr = hrNew;
    return SUCCEEDED(hr);
}

// iMalloc

iMalloc::iMalloc() {
    IMalloc* pMalloc = nullptr;
    if (Keep(::SHGetMalloc(&pMalloc))) pUnk = pMalloc;
}

void* iMalloc::Alloc(DWORD cb) const {
    return pUnk ? static_cast<IMalloc*>(*this)->Alloc(cb) : nullptr;
}

void* iMalloc::Realloc(void* pBlock, DWORD cb) const {
    return pUnk ? static_cast<IMalloc*>(*this)->Realloc(pBlock, cb) : nullptr;
}

void iMalloc::Free(void* pBlock) const {
    if (pUnk) static_cast<IMalloc*>(*this)->Free(pBlock);
}

void iMalloc::HeapMinimize() const {
    if (pUnk) static_cast<IMalloc*>(*this)->HeapMinimize();
}

// iStream

iStream::iStream(IStream* pShared) : iUnk(pShared) {}

// iPersistFile

int iPersistFile::Load(const wchar_t* pszPath, int bWrite) {
    if (!pUnk || !pszPath) return Keep(E_POINTER);
    const DWORD nMode = bWrite ? STGM_READWRITE | STGM_SHARE_EXCLUSIVE : STGM_SHARE_DENY_WRITE;
    return Keep(static_cast<IPersistFile*>(*this)->Load(pszPath, nMode));
}

int iPersistFile::Save(const wchar_t* pszPath, int bRemember) {
    // No path is one too, for the object: the file that it remembers.
    return Keep(pUnk ? static_cast<IPersistFile*>(*this)->Save(pszPath, bRemember) : E_POINTER);
}

// iEnumIDList

iEnumIDList::operator IEnumIDList*() const { return static_cast<IEnumIDList*>(pUnk); }

int iEnumIDList::Reset() {
    return Keep(pUnk ? static_cast<IEnumIDList*>(*this)->Reset() : E_POINTER);
}

ULONG iEnumIDList::Next(ULONG nCount, ITEMIDLIST** ppidlOut) {
    if (!pUnk || !ppidlOut) {
        Keep(E_POINTER);
        return 0;
    }
    std::fill_n(ppidlOut, nCount, nullptr);
    ULONG nFetched = 0;
    Keep(static_cast<IEnumIDList*>(*this)->Next(nCount, ppidlOut, &nFetched));
    if (hr == S_OK) return nFetched;
    // The caller is told of none and would lose these.
    std::for_each_n(ppidlOut, nCount, [](ITEMIDLIST*& pidl) {
        PIDL::Free(pidl);
        pidl = nullptr;
    });
    return 0;
}

ITEMIDLIST* iEnumIDList::Next() {
    ITEMIDLIST* pidl = nullptr;
    Next(1, &pidl);
    return pidl;
}
