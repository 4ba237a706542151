#pragma once
#include "runtime/base/export.h"
#include "shell/namespace/com_wrappers.h"
#include <windows.h>
#include <shlobj.h> // IShellLinkW

/// A shortcut in memory. Each function but the last five is a call to the interface's own, whose
/// result it keeps; it gives 1 if that is not negative, and 0 otherwise or without an object.
/// Buffers without a size have 260 characters.
class TESSALY_API iShellLink : public iUnkResult {
  public:
    /// A new, empty link; none if the platform refuses.
    iShellLink();

    int GetPath(wchar_t* pszOut, WIN32_FIND_DATAW* pData, DWORD nFlags);
    /// The caller frees the list with PIDL::Free. A link without one gives 1 and null.
    int GetIDList(ITEMIDLIST*& pidlOut);
    int GetArgs(wchar_t* pszOut, int cchOut);
    int GetDescr(wchar_t* pszOut, int cchOut);
    int GetDir(wchar_t* pszOut);
    int GetHotKey(WORD& nHotKey);
    int GetShow(int& nShow);
    int GetIcon(wchar_t* pszOut, int& nIndex);
    int SetPath(const wchar_t* pszPath);
    int SetIDList(const ITEMIDLIST* pidl);
    /// The path of the link's own file; the platform does not use the list.
    int SetRelativePath(const wchar_t* pszPath, const ITEMIDLIST* pidlUnused);
    int SetArgs(const wchar_t* pszArgs);
    int SetDescr(const wchar_t* pszDescr);
    int SetDir(const wchar_t* pszDir);
    int SetHotKey(WORD nHotKey);
    int SetShow(int nShow);
    int SetIcon(const wchar_t* pszPath, int nIndex);
    int Resolve(HWND hwnd, DWORD nFlags);

    /// Release what file or stream holds and give it this link's. 1, or 0 with it empty.
    int GetPersistFile(iPersistFile& file);
    int GetPersistStream(iPersistStream& stream);
    /// Reads the link from a file that it denies to writers meanwhile. 1, or 0.
    int Load(const wchar_t* pszPath);
    /// Writes the link to a file, which becomes its own. 1, or 0.
    int Save(const wchar_t* pszPath);
    /// Opens the target with what the link holds: path or item id list, arguments, folder and show
    /// command. 1, or 0, which GetLastError explains.
    int Execute(HWND hwnd);
    operator IShellLinkW*() const { return static_cast<IShellLinkW*>(pUnk); }

  private:
    template <class... Params, class... Args>
    int Call(HRESULT (STDMETHODCALLTYPE IShellLinkW::*pfn)(Params...), Args... args);
};
