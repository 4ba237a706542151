#include "shell/namespace/pidl.h"
#include "files/path/path_shape.h"
#include "runtime/base/cs_list.h"
#include "runtime/base/heap_array.h"
#include "runtime/base/ownership.h"
#include "store/registry/reg_key.h"

#include <shlobj.h>
#include <cstring>

namespace {
constexpr unsigned kMaxStored = 4096;    // bytes of a list in a registry value
constexpr unsigned kMaxPacked = 0x10000; // bytes of a list whose end is not known

const ITEMIDLIST* Behind(const ITEMIDLIST* pidl, unsigned cb) {
    return reinterpret_cast<const ITEMIDLIST*>(reinterpret_cast<const BYTE*>(pidl) + cb);
}
ITEMIDLIST* Behind(ITEMIDLIST* pidl, unsigned cb) {
    return reinterpret_cast<ITEMIDLIST*>(reinterpret_cast<BYTE*>(pidl) + cb);
}

/// Stores the end behind that many bytes of items.
void EndAt(ITEMIDLIST* pidl, unsigned cbItems) { Behind(pidl, cbItems)->mkid.cb = 0; }
} // namespace

ITEMIDLIST* GetPidlOf(const wchar_t* pszPath) {
    if (!pszPath) return nullptr;
    OwnedInterface<IShellFolder> desktop;
    if (FAILED(::SHGetDesktopFolder(desktop.Put())) || !desktop) return nullptr;
    HeapArray<wchar_t> path = CopyToHeap(pszPath); // the parser takes a text that it may write to
    if (!path.IsReady()) return nullptr;
    ITEMIDLIST* pidl = nullptr;
    const HRESULT hr =
        desktop.Get()->ParseDisplayName(nullptr, nullptr, path.Get(), nullptr, &pidl, nullptr);
    return SUCCEEDED(hr) ? pidl : nullptr;
}

const unsigned PIDL::iMinSize; // its value stands in the header

// Memory

ITEMIDLIST* PIDL::Alloc(DWORD cb) { return static_cast<ITEMIDLIST*>(csiMem.Alloc(cb)); }

void PIDL::Free(ITEMIDLIST* pidlFreed) { csiMem.Free(pidlFreed); }

void PIDL::Copy(ITEMIDLIST* pidlTo, const ITEMIDLIST* pidlFrom, DWORD cb) {
    std::memcpy(static_cast<void*>(pidlTo), pidlFrom, cb);
}

void PIDL::Clear() {
    Free(pidl);
    pidl = nullptr;
}

// Sizes and items

unsigned PIDL::GetSizeOne(const ITEMIDLIST* pidlAsked) {
    return pidlAsked ? pidlAsked->mkid.cb : 0;
}

unsigned PIDL::GetSizeAll(const ITEMIDLIST* pidlAsked) {
    unsigned cbItems = 0;
    if (!pidlAsked) return cbItems;
    while (const unsigned cb = Behind(pidlAsked, cbItems)->mkid.cb) cbItems += cb;
    return cbItems;
}

unsigned PIDL::GetSizeTotal(const ITEMIDLIST* pidlAsked) {
    return pidlAsked ? GetSizeAll(pidlAsked) + iMinSize : 0;
}

unsigned PIDL::GetSizeWithin(const ITEMIDLIST* pidlAsked, unsigned cbMax) {
    unsigned cbItems = 0;
    while (pidlAsked && cbItems < cbMax && cbMax - cbItems >= iMinSize) {
        const unsigned cb = Behind(pidlAsked, cbItems)->mkid.cb;
        if (!cb) return cbItems + iMinSize;
        if (cb > cbMax - cbItems) return 0;
        cbItems += cb;
    }
    return 0;
}

unsigned PIDL::GetCount(const ITEMIDLIST* pidlAsked) {
    unsigned nCount = 0;
    for (const ITEMIDLIST* p = pidlAsked; !IsEmpty(p); p = GetNext(p)) ++nCount;
    return nCount;
}

int PIDL::IsEmpty(const ITEMIDLIST* pidlAsked) { return GetSizeOne(pidlAsked) == 0; }

ITEMIDLIST* PIDL::GetFirst(const ITEMIDLIST* pidlAsked) {
    return IsEmpty(pidlAsked) ? nullptr : const_cast<ITEMIDLIST*>(pidlAsked);
}

ITEMIDLIST* PIDL::GetNext(const ITEMIDLIST* pidlAsked) {
    if (IsEmpty(pidlAsked)) return nullptr;
    return Behind(const_cast<ITEMIDLIST*>(pidlAsked), pidlAsked->mkid.cb);
}

ITEMIDLIST* PIDL::GetLast(const ITEMIDLIST* pidlAsked) {
    ITEMIDLIST* pLast = nullptr;
    for (const ITEMIDLIST* p = pidlAsked; !IsEmpty(p); p = GetNext(p)) pLast = GetFirst(p);
    return pLast;
}

ITEMIDLIST* PIDL::GetEnd(const ITEMIDLIST* pidlAsked) {
    if (!pidlAsked) return nullptr;
    return Behind(const_cast<ITEMIDLIST*>(pidlAsked), GetSizeAll(pidlAsked));
}

int PIDL::IsValid(const ITEMIDLIST* pidlAsked, unsigned cb) {
    if (!pidlAsked) return cb == 0;
    return cb && GetSizeWithin(pidlAsked, cb) == cb;
}

// The object's list

int PIDL::Attach(int nCsidl) {
    LPITEMIDLIST pidlFolder = nullptr;
    if (FAILED(::SHGetSpecialFolderLocation(nullptr, nCsidl, &pidlFolder))) pidlFolder = nullptr;
    Attach(pidlFolder);
    return pidl != nullptr;
}

void PIDL::Reset() {
    Clear();
    Make();
}

void PIDL::Make() {
    pidl = Alloc(iMinSize);
    if (pidl) EndAt(pidl, 0);
}

void PIDL::CopyItems(const ITEMIDLIST* pidlCopied, unsigned cb) {
    ITEMIDLIST* pidlNew = Alloc(cb + iMinSize);
    if (pidlNew) {
        Copy(pidlNew, pidlCopied, cb);
        EndAt(pidlNew, cb);
    }
    Clear(); // last: the items may be its own
    pidl = pidlNew;
}

void PIDL::CopyOne(const ITEMIDLIST* pidlItem) { CopyItems(pidlItem, GetSizeOne(pidlItem)); }

void PIDL::CopyAll(const ITEMIDLIST* pidlCopied) { CopyItems(pidlCopied, GetSizeAll(pidlCopied)); }

void PIDL::ReallocAppend(const ITEMIDLIST* pidlMore, unsigned cb) {
    if (!pidlMore) return;
    const unsigned cbOld = GetSizeAll();
    const auto nAddress = reinterpret_cast<std::uintptr_t>(pidlMore);
    const std::uintptr_t nOffset = nAddress - reinterpret_cast<std::uintptr_t>(pidl);
    auto* pidlNew = static_cast<ITEMIDLIST*>(csiMem.Realloc(pidl, cbOld + cb + iMinSize));
    if (!pidlNew) return;
    // A part of the list itself has moved with it.
    if (pidl && nOffset <= cbOld) pidlMore = Behind(pidlNew, static_cast<unsigned>(nOffset));
    pidl = pidlNew;
    Copy(Behind(pidl, cbOld), pidlMore, cb);
    EndAt(pidl, cbOld + cb);
}

void PIDL::AppendOne(const ITEMIDLIST* pidlItem) { ReallocAppend(pidlItem, GetSizeOne(pidlItem)); }

void PIDL::AppendAll(const ITEMIDLIST* pidlMore) { ReallocAppend(pidlMore, GetSizeAll(pidlMore)); }

void PIDL::RemoveLast() {
    if (ITEMIDLIST* pLast = GetLast()) pLast->mkid.cb = 0;
}

void PIDL::MakeRoot() {
    if (IsEmpty()) return;
    wchar_t szPath[MAX_PATH] = L"";
    if (::SHGetPathFromIDListW(pidl, szPath)) {
        if (IsRootFolder(szPath, 1)) return;
        do {
            RemoveLast();
            if (::SHGetPathFromIDListW(pidl, szPath) && IsRootFolder(szPath, 1)) return;
        } while (!IsEmpty());
    }
    Reset();
}

void PIDL::MakeRoot(ITEMIDLIST* pidlTaken) {
    PIDL owner;
    owner.Attach(pidlTaken);
    owner.MakeRoot();
}

// Storing

unsigned PIDL::GetPut(int bGet, BYTE* pData) {
    if (bGet) {
        const unsigned cb = GetSizeTotal();
        if (pData && cb) std::memcpy(pData, pidl, cb);
        return cb;
    }
    if (!pData) return 0;
    const auto* pidlStored = reinterpret_cast<const ITEMIDLIST*>(pData);
    const unsigned cb = GetSizeWithin(pidlStored, kMaxPacked);
    if (IsValid(pidlStored, cb)) CopyAll(pidlStored);
    return cb;
}

unsigned PIDL::GetPutPIDLList(CSList& list, unsigned, int bGet, BYTE* pData) {
    unsigned cbAll = 0;
    for (POS pos = list.GetHeadPos(); pos;) {
        auto* pElement = static_cast<PIDL*>(list.GetNext(pos));
        if (!pElement) continue;
        const unsigned cb = pElement->GetPut(bGet, pData);
        if (!bGet && !cb) break;
        cbAll += cb;
        if (pData) pData += cb;
    }
    return cbAll;
}

int PIDL::Persist(int bWrite, RegKey& key, const wchar_t* pszName) {
    if (bWrite) {
        if (pidl)
            key.PutBin(pszName, pidl, GetSizeTotal(), REG_BINARY);
        else
            key.DelValue(pszName);
        return 1;
    }
    const unsigned cb = key.GetBinSize(pszName);
    if (!cb || cb > kMaxStored) return 1;
    BYTE bytes[kMaxStored] = {};
    if (!key.GetBin(pszName, bytes, sizeof(bytes))) return 1;
    const auto* pidlStored = reinterpret_cast<const ITEMIDLIST*>(bytes);
    if (IsValid(pidlStored, cb)) CopyAll(pidlStored);
    return 1;
}
