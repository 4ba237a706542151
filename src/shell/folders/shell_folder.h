#pragma once
#include "runtime/base/export.h"
#include "shell/namespace/com_wrappers.h"
#include <windows.h>
#include <shobjidl.h> // IShellFolder, IShellItem, IShellView
#include <shtypes.h>

class PIDL;

/// A folder of the shell's namespace, and what is known of the item last bound to. Items are lists
/// counted from this folder. Results are 1 for success and 0 for failure unless told otherwise;
/// GetLastResult tells why. An object without a folder gives failures.
class TESSALY_API iShellFolder : public iUnkResult {
  public:
    iShellFolder() = default;
    /// The folder of an item in the parent, whose last result tells the outcome; without a parent
    /// the desktop, whatever the item is.
    iShellFolder(iShellFolder* pParent, const ITEMIDLIST* pidlItem);
    /// The folder of a full path, slashes counting as backslashes, and its list from the root on,
    /// which is the computer or, for a path that starts with a separator, the network. Both are
    /// empty for an empty path, and if there is no such folder.
    iShellFolder(const wchar_t* pszPath, PIDL& pidlOut);

    // What SetupAttributes last recorded, 1 or 0.
    int IsFolder() const { return bFolder; }
    int IsInFileSystem() const { return bFileSystem; }
    int IsBrowsable() const { return bBrowsable; }
    /// A folder in the file system that is not browsable.
    int IsPlainFolder() const { return bPlainFolder; }
    /// Records what kind of object the item is. Nothing for null or if the folder does not say.
    void SetupAttributes(const ITEMIDLIST* pidlItem);

    // Going down

    /// SetupAttributes, and then the item as a folder, or as a shell item; the caller releases it.
    int BindToObject(const ITEMIDLIST* pidlItem, IShellFolder** ppOut);
    int BindToObject(const ITEMIDLIST* pidlItem, IShellItem** ppOut);
    /// Becomes the folder of the item; stays what it is on failure. An empty object becomes the
    /// desktop, whatever the item is.
    int BindTo(const ITEMIDLIST* pidlItem);
    /// Becomes the folder of a list counted from the desktop, item by item; the desktop for null
    /// and the empty list. An item that is no folder is passed over. 1 if it is a folder then.
    int BindToAbs(const ITEMIDLIST* pidlAbs);

    // Asking

    /// The folder's view, for that window.
    int CreateShellViewObject(HWND hwnd, IShellView** ppOut);
    /// The item's SFGAO_... of nMask; 0 on failure. A folder may tell more than it was asked for.
    DWORD GetAttributesOf(const ITEMIDLIST* pidlItem, DWORD nMask);
    /// An object that serves many items, for that window.
    int GetUIObjectOf(HWND hwnd, UINT nCount, const ITEMIDLIST** ppidlItems, REFIID iid,
                      void** ppOut);
    /// An object that serves one item, for that window.
    int GetItemObj(HWND hwnd, const ITEMIDLIST* pidlItem, REFIID iid, void** ppOut);
    /// The item's name in the form nFlags (SHGDN_...), cut to cchOut characters. Empty on failure.
    int GetDisplayNameOf(const ITEMIDLIST* pidlItem, DWORD nFlags, wchar_t* pszOut,
                         unsigned cchOut);
    /// The list of the object with that name; the caller frees it with PIDL::Free. Null on failure.
    /// *pnAttributes, unless null, names the attributes wanted and takes those that there are.
    [[nodiscard]] ITEMIDLIST* ParseDisplayName(const wchar_t* pszText, DWORD* pnAttributes);
    /// What the list itself holds, in that format (SHGDFIL_...), into cb bytes.
    int GetDataFromIDList(const ITEMIDLIST* pidlItem, int nFormat, void* pData, int cb);
    /// Compares two items: nResult is negative, 0 or positive. Items with the same name in any case
    /// are the same (with nFlags 0 by their names in the folder, else by their full ones); only of
    /// others the folder is asked, with qwParameter (CompareIDs). 0, with nResult as it was, if it
    /// does not say.
    int Compare(const ITEMIDLIST* pidlA, const ITEMIDLIST* pidlB, int nFlags, int& nResult,
                __int64 qwParameter);
    operator IShellFolder*() const { return static_cast<IShellFolder*>(pUnk); }

  private:
    friend class iEnumIDList; // its beginning is a call to the folder
    void Take(IShellFolder* pTaken);
    int BindToDesktop();
    int BindToPath(wchar_t* pszPath, wchar_t* pszEnd, PIDL& pidlOut);
    int BindToRoot(const wchar_t* pszPath, PIDL& pidlOut);
    template <class Interface>
    int Bind(const ITEMIDLIST* pidlItem, REFIID iid, Interface** ppOut);

    int bFolder = 0;
    int bFileSystem = 0;
    int bBrowsable = 0;
    int bPlainFolder = 0;
};

/// The text in a STRRET that a folder gave for the item, cut to cchOut characters; what the shell
/// allocated for it is freed. 0 and an empty text for an unknown kind.
[[nodiscard]] TESSALY_API int StrRetToText(STRRET& ret, const ITEMIDLIST* pidlItem, wchar_t* pszOut,
                                           unsigned cchOut);
