#pragma once
#include "runtime/base/export.h"
#include <windows.h>

/// Sees another window's messages before their present receiver: through the platform's subclass
/// chain (ShellSubclass) where there is one, otherwise by a replaced window procedure and a window
/// property named by the chain's tag. Derive from it and override OnWndMsg, which runs on the
/// window's thread.
///
/// It must be removed from its window (Unsubclass, or the window's end) before it is destroyed, and
/// may not be destroyed in its own OnWndMsg: the destructor does nothing.
class TESSALY_API ShellSubclasser {
  public:
    explicit ShellSubclasser(UINT_PTR nFirstField) : nOldWndProc(nFirstField) {}
    ~ShellSubclasser() = default; // not virtual: nobody owns one through this class
    ShellSubclasser(const ShellSubclasser&) = delete; // the window knows its address
    ShellSubclasser& operator=(const ShellSubclasser&) = delete;

    /// 1; 0 when the platform refused, or without the chain if the window has a subclasser: then
    /// nothing has changed.
    int Subclass(HWND hwndOther);
    /// 1; 0 when there was nothing to undo.
    int Unsubclass();

    /// Called for each message; the default passes it on. An override calls this one for what it
    /// does not handle.
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
