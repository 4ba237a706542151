#pragma once
#include "runtime/base/export.h"
#include "shell/namespace/com_wrappers.h"
#include <windows.h>
#include <shlobj.h> // IShellLinkW

/// A shortcut in memory. Each function but the last five is a call to the interface's own.
/// Its result is 1 if that one's, which is kept, is not negative, 0 otherwise or without an object.
/// Buffers without a size have 260 characters.
class TESSALY_API iShellLink : public iUnkResult {
  public:
    /// A new, empty link; none if the platform refuses.
    iShellLink();

    /// The target's path, in the form nFlags (SLGP_...), and what is stored of the file; pData may
    /// be null.
    int GetPath(wchar_t* pszOut, WIN32_FIND_DATAW* pData, DWORD nFlags);
    /// The target's list. The caller frees it with PIDL::Free. A link without one gives 1 and null.
    int GetIDList(ITEMIDLIST*& pidlOut);
    int GetArgs(wchar_t* pszOut, int cchOut);  ///< The arguments for the target.
    int GetDescr(wchar_t* pszOut, int cchOut); ///< The comment.
    int GetDir(wchar_t* pszOut);               ///< The folder in which the target starts.
    int GetHotKey(WORD& nHotKey); ///< The key code in the low byte, HOTKEYF_... in the high one.
    int GetShow(int& nShow);      ///< The show command (SW_...).
    int GetIcon(wchar_t* pszOut, int& nIndex); ///< The icon's file and its index there.
    int SetPath(const wchar_t* pszPath);       ///< The path of another target.
    int SetIDList(const ITEMIDLIST* pidl);     ///< The list of another target, which is copied.
    /// The path of the link's own file; the platform does not use the list.
    int SetRelativePath(const wchar_t* pszPath, const ITEMIDLIST* pidlUnused);
    int SetArgs(const wchar_t* pszArgs);   ///< Other arguments.
    int SetDescr(const wchar_t* pszDescr); ///< Another comment.
    int SetDir(const wchar_t* pszDir);     ///< Another folder to start in.
    int SetHotKey(WORD nHotKey);           ///< As GetHotKey has it.
    int SetShow(int nShow);                ///< Another show command (SW_...).
    /// Another icon, by its file and the index there.
    int SetIcon(const wchar_t* pszPath, int nIndex);
    /// Looks after a target that was moved, with nFlags (SLR_...) and the window for what is asked.
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
