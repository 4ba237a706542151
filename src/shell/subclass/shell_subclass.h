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
    static constexpr int kNotSetUp = -1; // nobody has looked yet
    static constexpr int kMissing = 0;   // there is no chain
    static constexpr int kReady = 1;     // the chain can be used
    static constexpr int kTagSize = 5;   // four characters and the terminator

    ShellSubclass() = delete;

    /// Looks for the platform's functions, unless that was done before. nNewId becomes the id of
    /// the library's subclasses; the first four characters of pszNewTag (null: none) the name of
    /// the window property of those who subclass without the chain. Returns the state.
    static int Initialize(UINT_PTR nNewId, const wchar_t* pszNewTag);
    /// Looks again, with the id and the tag that are stored. Returns the state.
    static int ReInitialize();
    /// kReady if the chain can be used, kMissing if not; looks first if nobody did.
    static int IsReady();
    /// The stored tag, of at most four characters.
    static const wchar_t* GetTag();

    /// SetWindowSubclass with the stored id. 1; 0 when the platform refused or has no such
    /// function.
    static int Set(HWND hwnd, SUBCLASSPROC pfnSubclass, DWORD_PTR dwRefData);
    /// RemoveWindowSubclass with the stored id. 1; 0 when the platform refused or has no such
    /// function.
    static int Remove(HWND hwnd, SUBCLASSPROC pfnSubclass);
    /// DefSubclassProc: what follows in the window's chain. If the pointer to it is not what was
    /// found, the functions are looked for again first. Returns the message's result.
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

/// Sees another window's messages before their present receiver: through the platform's subclass
/// chain (ShellSubclass) where there is one, otherwise by a replaced window procedure and a window
/// property named by the chain's tag. Derive from it and override OnWndMsg, which runs on the
/// window's thread.
///
/// It must be removed from its window (Unsubclass, or the window's end) before it is destroyed, and
/// may not be destroyed in its own OnWndMsg: the destructor does nothing.
class TESSALY_API ShellSubclasser {
  public:
    /// The number is what the object keeps for its user where there is the chain.
    explicit ShellSubclasser(UINT_PTR nFirstField) : nOldWndProc(nFirstField) {}
    ~ShellSubclasser() = default; // not virtual: nobody owns one through this class
    ShellSubclasser(const ShellSubclasser&) = delete; // the window knows its address
    ShellSubclasser& operator=(const ShellSubclasser&) = delete;

    /// Begins to see hwndOther's messages. 1; 0 when the platform refused, or without the chain if
    /// the window has a subclasser: then nothing has changed.
    int Subclass(HWND hwndOther);
    /// Leaves the window. 1; 0 when there was nothing to undo.
    int Unsubclass();

    /// Called for each message; the default passes it on. An override calls this one for what it
    /// does not handle. Returns the message's result.
    virtual LRESULT OnWndMsg(HWND hwndMsg, UINT uMsg, WPARAM wParam, LPARAM lParam);

  protected:
    static LRESULT CALLBACK ShellSubclasserProc(HWND hwndMsg, UINT uMsg, WPARAM wParam,
                                                LPARAM lParam, UINT_PTR nSubclassId,
                                                DWORD_PTR dwRefData);
    int Subclass_Win2K(HWND hwndOther);
    int Unsubclass_Win2K();
    static LRESULT CALLBACK ShellSubclasserWndProc_Win2K(HWND hwndMsg, UINT uMsg, WPARAM wParam,
                                                         LPARAM lParam);

    UINT_PTR nOldWndProc; // without the chain the window's procedure, else what was given
    HWND hwnd = nullptr;  // null while not subclassed
};
