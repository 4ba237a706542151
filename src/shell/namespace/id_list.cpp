#include "shell/namespace/id_list.h"
#include "shell/namespace/data_obj.h"
#include "shell/namespace/pidl.h"

#include <algorithm>
#include <climits>
#include <new>

constinit UINT ID_List::cfIDLIST = 0;

ID_List::~ID_List() { Release(); }

void ID_List::Release() {
    if (pArray) ::GlobalUnlock(hBlock); // before the object frees the block
    if (pDataObj) pDataObj->ReleaseMedium();
    delete pDataObj;
    pDataObj = nullptr;
    hBlock = nullptr;
    pArray = nullptr;
    nNext = 1;
}

void ID_List::Init(IDataObject* pShared, void* hGlobal) {
    Release();
    hBlock = hGlobal;
    if (pShared) {
        pDataObj = new (std::nothrow) iDataObj(pShared);
        if (!cfIDLIST) cfIDLIST = ::RegisterClipboardFormatW(CFSTR_SHELLIDLIST);
        hBlock = nullptr;
        if (pDataObj) pDataObj->GetData(static_cast<WORD>(cfIDLIST), &hBlock);
    }
    if (hBlock) pArray = static_cast<const CIDA*>(::GlobalLock(hBlock));
}

UINT ID_List::GetCount() const {
    // The count itself, the folder's offset, and one for each item.
    const SIZE_T cb = pArray ? ::GlobalSize(hBlock) : 0;
    if (cb < offsetof(CIDA, aoffset) + sizeof(UINT)) return 0;
    const SIZE_T nRoom = (cb - offsetof(CIDA, aoffset)) / sizeof(UINT) - 1;
    return static_cast<UINT>(std::min<SIZE_T>(pArray->cidl, nRoom));
}

const ITEMIDLIST* ID_List::GetListAt(UINT nIndex) const {
    const SIZE_T cb = pArray ? ::GlobalSize(hBlock) : 0;
    if (cb < offsetof(CIDA, aoffset) + (SIZE_T{nIndex} + 1) * sizeof(UINT)) return nullptr;
    const UINT nOffset = pArray->aoffset[nIndex];
    if (nOffset >= cb) return nullptr;
    const auto* pidl =
        reinterpret_cast<const ITEMIDLIST*>(reinterpret_cast<const BYTE*>(pArray) + nOffset);
    const auto cbRest = static_cast<unsigned>(std::min<SIZE_T>(cb - nOffset, UINT_MAX));
    return PIDL::GetSizeWithin(pidl, cbRest) ? pidl : nullptr;
}

const ITEMIDLIST* ID_List::GetFolderPidl() const { return GetListAt(0); }

const ITEMIDLIST* ID_List::GetFirstPidl() {
    nNext = 1;
    return GetNextPidl();
}

const ITEMIDLIST* ID_List::GetNextPidl() {
    if (nNext > GetCount()) return nullptr;
    return GetListAt(nNext++);
}
