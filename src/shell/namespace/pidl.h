#pragma once
#include "runtime/base/export.h"
#include "shell/namespace/shell_malloc.h"
#include <windows.h>
#include <shtypes.h> // ITEMIDLIST

class CSList;
class RegKey;

/// The item id list of a path, or of any text that the desktop folder can parse, counted from the
/// desktop. The caller owns it and frees it with PIDL::Free. Null if the text names nothing.
[[nodiscard]] TESSALY_API ITEMIDLIST* GetPidlOf(const wchar_t* pszPath);

/// An item id list, the name of an object in the shell's namespace, on the shell's allocator. It is
/// a run of items, each a 16-bit count of its bytes, which includes the two of the count, and its
/// data; a 16-bit zero ends it. A list of just that end is the desktop. Null is no list at all.
///
/// The static functions work on raw lists and believe their counts; those of the same name without
/// the list work on the object's own. Functions that ask the shell need COM on their thread.
class TESSALY_API PIDL {
  public:
    /// The bytes of the smallest list.
    static const unsigned iMinSize = 2;
    /// Where all lists come from and go to.
    static constexpr ShellMemory csiMem{};

    PIDL() = default;
    /// Takes a copy (CopyAll).
    explicit PIDL(const ITEMIDLIST* pidlCopied) { CopyAll(pidlCopied); }
    ~PIDL() { Clear(); }
    PIDL(const PIDL&) = delete; // owns the list
    PIDL& operator=(const PIDL&) = delete;
    /// The list, which stays the object's; null for none.
    operator ITEMIDLIST*() const { return pidl; }

    // Memory

    /// A block of cb bytes; null when out of memory.
    [[nodiscard]] static ITEMIDLIST* Alloc(DWORD cb);
    /// Frees a list; null does nothing.
    static void Free(ITEMIDLIST* pidlFreed);
    /// Copies that many bytes.
    static void Copy(ITEMIDLIST* pidlTo, const ITEMIDLIST* pidlFrom, DWORD cb);

    // Sizes in bytes

    /// Bytes of the first item; 0 for null and for an empty list.
    static unsigned GetSizeOne(const ITEMIDLIST* pidlAsked);
    /// Bytes of all items; 0 for null and for an empty list.
    static unsigned GetSizeAll(const ITEMIDLIST* pidlAsked);
    /// Bytes of all items with the end, 2 for an empty list; 0 for null.
    static unsigned GetSizeTotal(const ITEMIDLIST* pidlAsked);
    /// The size with the end for a list that may be none: nothing beyond cbMax bytes is read, and
    /// it is 0 if the end is not within them.
    static unsigned GetSizeWithin(const ITEMIDLIST* pidlAsked, unsigned cbMax);
    unsigned GetSizeOne() const { return GetSizeOne(pidl); }     ///< Bytes of the first item.
    unsigned GetSizeAll() const { return GetSizeAll(pidl); }     ///< Bytes of all items.
    unsigned GetSizeTotal() const { return GetSizeTotal(pidl); } ///< Bytes with the end.

    // Items, given as places in the list

    static unsigned GetCount(const ITEMIDLIST* pidlAsked); ///< The number of items; 0 for null.
    /// 1 if there is no item, also for null.
    static int IsEmpty(const ITEMIDLIST* pidlAsked);
    /// The first item; null if there is none.
    static ITEMIDLIST* GetFirst(const ITEMIDLIST* pidlAsked);
    /// What is behind the item, which for the last one is the list's end; null for that end, and
    /// for null.
    static ITEMIDLIST* GetNext(const ITEMIDLIST* pidlAsked);
    /// The last item; null if there is none.
    static ITEMIDLIST* GetLast(const ITEMIDLIST* pidlAsked);
    /// The list's end; null for null.
    static ITEMIDLIST* GetEnd(const ITEMIDLIST* pidlAsked);
    unsigned GetCount() const { return GetCount(pidl); }  ///< The number of items.
    int IsEmpty() const { return IsEmpty(pidl); }         ///< 1 if there is no item.
    ITEMIDLIST* GetLast() const { return GetLast(pidl); } ///< The last item; null if there is none.
    ITEMIDLIST* GetEnd() const { return GetEnd(pidl); }   ///< The list's end; null without a list.
    /// Whether the cb bytes there are one list, no more and no less. Nothing beyond them is read.
    /// Null is one with cb 0 only.
    static int IsValid(const ITEMIDLIST* pidlAsked, unsigned cb);

    // The object's list

    /// Takes the list as it stands, or null.
    // QUIRK: what was held is not freed; so it is with the next one and with Make.
    // Test: Pidl.AttachAndMakeDoNotFreeWhatWasHeld
    void Attach(ITEMIDLIST* pidlTaken) { pidl = pidlTaken; }
    /// Takes the list of a special folder (CSIDL_...). 1; 0 and null if there is none.
    int Attach(int nCsidl);
    /// Forgets the list without freeing it.
    void Detach() { pidl = nullptr; }
    /// Frees what is held; the object has no list then.
    void Clear();
    /// Frees what is held and makes an empty list.
    void Reset();
    /// Makes an empty list.
    void Make();
    /// Free what is held and take a copy of the first item, or of all of them. Null gives an empty
    /// list, and so does a list without items. The list may lie in the object's own.
    void CopyOne(const ITEMIDLIST* pidlItem);
    void CopyAll(const ITEMIDLIST* pidlCopied);
    /// Put the first item, or all of them, behind the object's. Null does nothing; an object
    /// without a list gets one. The list may lie in the object's own.
    void AppendOne(const ITEMIDLIST* pidlItem);
    void AppendAll(const ITEMIDLIST* pidlMore);
    /// Puts cb bytes of items behind the object's, as the two above do.
    void ReallocAppend(const ITEMIDLIST* pidlMore, unsigned cb);
    /// Ends the list before its last item, if there is one. It keeps its memory.
    void RemoveLast();

    // Lists counted from the desktop

    /// Cuts the list down to the drive or the server on which its object stands ("C:\",
    /// "\\server"). An object outside the file system gives the empty list; an empty list stays,
    /// and so does null.
    void MakeRoot();
    /// MakeRoot with an owner of its own, which frees the list at the end.
    // QUIRK: nothing remains: what the cutting gave goes with the list.
    // Test: Pidl.MakeRootOfARawListFreesIt
    static void MakeRoot(ITEMIDLIST* pidlTaken);
    /// Compares by the folders' own rules, item by item from the desktop: 0 for the same object, -1
    /// and 1 by the first items that differ, -2 if a ends before b, as its parent does, and 2 the
    /// other way round. Null ends before the empty list.
    static int CompareAbs(const ITEMIDLIST* pidlA, const ITEMIDLIST* pidlB);
    int CompareAbs(const ITEMIDLIST* pidlOther) const { return CompareAbs(pidl, pidlOther); }
    /// Whether it is the Internet's list (CSIDL_INTERNET), by CompareAbs.
    int IsIE(HWND hwnd) const;
    /// Whether it is that special folder's list (CSIDL_...), by CompareAbs.
    int IsSpecialFolder(HWND hwnd, int nCsidl) const;
    /// The place in the object's list at which it goes on behind all of the parent's, compared as
    /// by CompareAbs. Null if it is not below the parent; it is not below itself.
    ITEMIDLIST* GetChildOf(const ITEMIDLIST* pidlParent) const;

    // Texts, cut to cchOut characters. The result is their first character, 0 for none.

    /// The names of all items from the desktop on, as the user sees them, with " \u00BB " between
    /// them; names that are the traces of a wiped file (IsWipedName) are left out. For an empty
    /// list the desktop's name, for null an empty text. A name that cannot be had is the end.
    static int GetDisplayPath(const ITEMIDLIST* pidlAsked, wchar_t* pszOut, unsigned cchOut);
    int GetDisplayPath(wchar_t* pszOut, unsigned cchOut) const;
    /// The last item's name in its folder. Otherwise as GetDisplayPath.
    static int GetDisplayFileName(const ITEMIDLIST* pidlAsked, wchar_t* pszOut, unsigned cchOut);
    int GetDisplayFileName(wchar_t* pszOut, unsigned cchOut) const;

    // Storing

    /// With bGet writes the list with its end to pData, if that is not null, and returns its size
    /// (0 for a null list). Otherwise reads the list at pData and returns its size; 0 for null and
    /// for one without an end in 64 KiB, which leave the object alone.
    unsigned GetPut(int bGet, BYTE* pData);
    /// GetPut on each PIDL of the list in turn, one behind the other in pData; the sum of the
    /// sizes. Reading ends at the first that gives 0. The number is not used.
    static unsigned GetPutPIDLList(CSList& list, unsigned nUnused, int bGet, BYTE* pData);
    /// Reads the list from a registry value, or writes it there. A value that is missing, has no
    /// byte or more than 4,096, or is not exactly one list leaves the object alone. A null list
    /// deletes the value. Always 1.
    int Persist(int bWrite, RegKey& key, const wchar_t* pszName);

  protected:
    void CopyItems(const ITEMIDLIST* pidlCopied, unsigned cb);

    ITEMIDLIST* pidl = nullptr; // owned
};
