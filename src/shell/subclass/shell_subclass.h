#pragma once
#include "runtime/base/export.h"
#include <windows.h>
#include <commctrl.h> // SUBCLASSPROC
#include <atomic>

/// The platform's chain of window subclasses, found at run time in the COMCTL32 that the process
/// has; Windows before XP has none. All subclasses of the library share one id, so that a window,
/// a procedure and that id name one entry of the chain.
///
/// Everything is constant-initialised and may be called from the first moment on. Set and Remove
/// keep each other out in the whole process; Default is on every message's path and takes no lock.
class TESSALY_API ShellSubclass {
  public:
    static constexpr int kNotSetUp = -1;
    static constexpr int kMissing = 0;
    static constexpr int kReady = 1;
    static constexpr int kTagSize = 5; // four characters and the terminator

    ShellSubclass() = delete;

    /// Looks for the platform's functions, unless that was done before. nNewId becomes the id of
    /// the library's subclasses; the first four characters of pszNewTag (null: none) the name of
    /// the window property of those who subclass without the chain. Gives the state.
    static int Initialize(UINT_PTR nNewId, const wchar_t* pszNewTag);
    /// Looks again, with the id and the tag that are stored. Gives the state.
    static int ReInitialize();
    /// kReady if the chain can be used, kMissing if not; looks first if nobody did.
    static int IsReady();
    static const wchar_t* GetTag();

    /// SetWindowSubclass and RemoveWindowSubclass with the stored id. 1; 0 when the platform
    /// refused or has no such function.
    static int Set(HWND hwnd, SUBCLASSPROC pfnSubclass, DWORD_PTR dwRefData);
    static int Remove(HWND hwnd, SUBCLASSPROC pfnSubclass);
    /// DefSubclassProc: what follows in the window's chain. If the pointer to it is not what was
    /// found, the functions are looked for again first.
    static LRESULT Default(HWND hwnd, UINT uMsg, WPARAM wParam, LPARAM lParam);

    /// The life of the lock, for the library's start and end alone. Without it nothing is locked.
    static void StartLock();
    static void StopLock();

  protected:
    using SetFunc = decltype(::SetWindowSubclass);
    using RemoveFunc = decltype(::RemoveWindowSubclass);
    using DefaultFunc = decltype(::DefSubclassProc);

    static std::atomic<int> nState;
    static UINT_PTR nId;
    static wchar_t szTag[kTagSize];
    static std::atomic<SetFunc*> pfnSet;
    static std::atomic<RemoveFunc*> pfnRemove;
    static std::atomic<DefaultFunc*> pfnDefault;
    static std::atomic<DefaultFunc*> pfnDefaultCopy; // tells that pfnDefault is still good
};
