#pragma once
#include "runtime/base/export.h"
#include <windows.h>
#include <shlobj.h>

/// One registration of a window for the shell's change notifications, ended by the destructor. The
/// shell's functions are found at the first construction in the process; on a system without them
/// nothing is ever registered.
class TESSALY_API ShellNotify {
  public:
    ShellNotify();
    ~ShellNotify();
    ShellNotify(const ShellNotify&) = delete; // owns the registration
    ShellNotify& operator=(const ShellNotify&) = delete;

    /// Asks for nEvents (SHCNE_...) in that folder, with nRecursive also below it. They come to
    /// hwnd as uMsg, whose handler calls OnMsgStart and OnMsgEnd. A registration that is held ends
    /// first. A path without an item id list, or a null list, watches the whole namespace.
    /// Returns 1; 0 when nothing is registered.
    int Register(HWND hwnd, long nEvents, unsigned uMsg, const wchar_t* pszPath, int nRecursive);
    int Register(HWND hwnd, long nEvents, unsigned uMsg, const ITEMIDLIST* pidl, int nRecursive);

    /// Ends the registration, if one is held.
    void End();

    /// Opens the notification in a message's parameters: two lists and an SHCNE_... event, good
    /// until OnMsgEnd gets the lock that this returns. Null if there is nothing to open.
    [[nodiscard]] static void* OnMsgStart(WPARAM wParam, LPARAM lParam, ITEMIDLIST*** pppidl,
                                          long* pnEvent);
    /// Closes what OnMsgStart opened; null does nothing.
    static void OnMsgEnd(void* hLock);

  protected:
    static int bInitialized;
    static decltype(&::SHChangeNotifyRegister) pfnRegister;
    static decltype(&::SHChangeNotifyDeregister) pfnDeregister;
    static decltype(&::SHChangeNotification_Lock) pfnLock;
    static decltype(&::SHChangeNotification_Unlock) pfnUnlock;

  private:
    unsigned long nId = 0; // 0: none
};
