#pragma once
#include "runtime/base/export.h"
#include <windows.h>
#include <objidl.h>
#include <shlobj.h> // CIDA
#include <shtypes.h>

class iDataObj;

/// The item id lists that a drag or a copy of the shell carries (CFSTR_SHELLIDLIST): that of a
/// folder, and one for each item, counted from that folder. They lie in a locked block of global
/// memory, are borrowed from there, and are good until the object's end. The block comes from
/// another program: a list that is not whole within it is given as null, and a count for which it
/// has no room is cut.
class TESSALY_API ID_List {
  public:
    ID_List() = default;
    /// What the object offers, nothing for null. Takes a reference of its own.
    explicit ID_List(IDataObject* pShared) { Init(pShared, nullptr); }
    /// A block that the caller keeps and that outlives this object; null for nothing.
    explicit ID_List(void* hGlobal) { Init(nullptr, hGlobal); }
    ~ID_List();
    ID_List(const ID_List&) = delete; // owns the object and the lock
    ID_List& operator=(const ID_List&) = delete;

    /// What the object offers or, without one, the block. What is held is given back first.
    void Init(IDataObject* pShared, void* hGlobal);
    /// 1 if there is an object or a block, whatever is in it.
    int IsReady() const { return pDataObj || hBlock; }
    /// The number of items.
    UINT GetCount() const;
    /// The folder's list.
    const ITEMIDLIST* GetFolderPidl() const;
    /// The first item's list, and then the next one's. Null behind the last.
    const ITEMIDLIST* GetFirstPidl();
    const ITEMIDLIST* GetNextPidl();

    /// The clipboard format's number, registered at the first use; 0 before it.
    static UINT cfIDLIST;

  protected:
    void Release();
    const ITEMIDLIST* GetListAt(UINT nIndex) const;

    iDataObj* pDataObj = nullptr; // owned
    void* hBlock = nullptr;
    const CIDA* pArray = nullptr; // hBlock, locked
    UINT nNext = 1;               // of the offsets, of which 0 is the folder's
};
