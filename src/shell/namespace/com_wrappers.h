#pragma once
#include "runtime/base/export.h"
#include <windows.h>
#include <objidl.h>
#include <shtypes.h> // ITEMIDLIST

class iShellFolder;
class iShellLink;
struct IEnumIDList;

// COM interfaces by scope: an object owns one reference and gives it back in its end. What would
// call a null pointer gives 0, null or E_POINTER instead. COM belongs to the thread: whoever uses
// these has initialised it there.
//
// Copies share the reference: only one of two may release it, and the other forgets it (Abandon)
// before its end.

/// Any interface.
class TESSALY_API iUnk {
  public:
    iUnk() = default;
    /// Takes the interface (Attach).
    explicit iUnk(IUnknown* pShared) { Attach(pShared); }
    /// What QueryInterface gives for the other's interface, or nothing.
    iUnk(iUnk& other, REFIID iid);
    iUnk(const iUnk&) = default;            // shares the reference
    iUnk& operator=(const iUnk&) = default; // shares the reference; what was held is not released
    ~iUnk() { Detach(); }

    /// Releases what is held and takes the pointer, with a reference of its own, or null.
    void Attach(IUnknown* pShared);
    /// Releases what is held; the object is empty then.
    void Detach();
    /// Forgets the pointer without releasing it: for one of two copies.
    void Abandon() { pUnk = nullptr; }
    /// Asks for another interface of the same object: out owns it, and what out held is released.
    /// 1; 0, with out empty, if the object has none or this one is empty.
    int QueryInterface(REFIID iid, iUnk& out) const;
    /// The interface's own; the reference counts that they give are for looking at only.
    ULONG AddRef() const;
    ULONG Release() const; ///< The interface's own.
    /// 1 if there is an interface.
    int IsReady() const { return pUnk != nullptr; }
    /// The pointer, which stays the object's.
    operator IUnknown*() const { return pUnk; }

  protected:
    /// QueryInterface with the interface's own result; E_POINTER without one.
    HRESULT Query(REFIID iid, iUnk& out) const;

    IUnknown* pUnk = nullptr;
};

/// An interface with the result of the last call to it.
class TESSALY_API iUnkResult : public iUnk {
  public:
    using iUnk::iUnk;
    iUnkResult() = default;
    HRESULT GetLastResult() const { return hr; } ///< The result of the last call.

  protected:
    /// Keeps the result. 1 if it is not negative.
    int Keep(HRESULT hrNew);

    HRESULT hr = S_OK;
};

/// The shell's allocator; see also PIDL::csiMem. The last result is that of SHGetMalloc.
class TESSALY_API iMalloc : public iUnkResult {
  public:
    iMalloc();
    /// A block of cb bytes; null when out of memory.
    void* Alloc(DWORD cb) const;
    /// Changes a block's size. A null block is allocated anew. Null when out of memory: the block
    /// then stays as it is.
    void* Realloc(void* pBlock, DWORD cb) const;
    void Free(void* pBlock) const; ///< Frees the block; null does nothing.
    void HeapMinimize() const;     ///< Gives unused memory back to the system.
    operator IMalloc*() const { return static_cast<IMalloc*>(pUnk); }
};

/// A stream.
class TESSALY_API iStream : public iUnk {
  public:
    iStream() = default;
    explicit iStream(IStream* pShared); ///< Takes a reference of its own; null for none.
    operator IStream*() const { return static_cast<IStream*>(pUnk); }
};

/// What an object keeps in a stream.
class TESSALY_API iPersistStream : public iUnkResult {
  public:
    iPersistStream() = default;
    /// That interface of a link, or nothing.
    explicit iPersistStream(iShellLink& link);
    operator IPersistStream*() const { return static_cast<IPersistStream*>(pUnk); }
};

/// What an object keeps in a file.
class TESSALY_API iPersistFile : public iUnkResult {
  public:
    iPersistFile() = default;
    /// That interface of a link, or nothing.
    explicit iPersistFile(iShellLink& link);
    /// Reads the object from the file, which is opened for reading and writing and shared with
    /// nobody (STGM_READWRITE | STGM_SHARE_EXCLUSIVE), or without bWrite for reading only
    /// (STGM_SHARE_DENY_WRITE). 1, or 0.
    int Load(const wchar_t* pszPath, int bWrite);
    /// Writes the object to the file, which bRemember makes its own from then on. 1, or 0.
    int Save(const wchar_t* pszPath, int bRemember);
    operator IPersistFile*() const { return static_cast<IPersistFile*>(pUnk); }
};

/// A walk over the items of a folder.
class TESSALY_API iEnumIDList : public iUnkResult {
  public:
    /// Begins a walk over what SHCONTF_... in nFlags names; hwndOwner is for what the folder may
    /// ask the user. The outcome is the folder's last result. Empty if there is nothing to walk.
    iEnumIDList(iShellFolder& folder, HWND hwndOwner, DWORD nFlags);
    /// Back to the beginning. 1, or 0.
    int Reset();
    /// Fetches nCount items into ppidlOut; the caller frees each with PIDL::Free. Returns nCount; 0
    /// if there are not that many left, and what was fetched of them is freed.
    ULONG Next(ULONG nCount, ITEMIDLIST** ppidlOut);
    /// Fetches one; the caller frees it with PIDL::Free. Null if there is none left.
    [[nodiscard]] ITEMIDLIST* Next();
    operator IEnumIDList*() const;
};
