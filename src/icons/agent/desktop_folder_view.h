#pragma once
#include "runtime/base/ownership.h"
#include <windows.h>
#include <propsys.h>
#include <shobjidl.h>

// The shell's own object behind the desktop's list view. Since Windows 10 1809 it keeps a record of
// where the icons lie that takes no notice of what is done to the list view alone: the next start
// of the shell puts the icons back to that record. Both halves of the engine therefore ask it, too,
// the agent on the shell's thread and the monitor from its own process. Neither function shows
// anything.

/// Whether this Windows is one where the folder view has the last word: build 17763 or later. The
/// kernel's own answer, which no manifest changes; false if it gives none. Calls nothing of COM.
[[nodiscard]] bool IsFolderViewInCharge();

/// The folder view whose window is hwndView, found among the shell's windows (SWC_DESKTOP). Empty
/// if there is none, if it belongs to another window, if COM is not initialised on this thread, and
/// if any step on the way to it fails. Only where IsFolderViewInCharge says so.
///
/// The calls may go to another thread or process, and the platform may then deliver messages that
/// are sent to the caller's windows: whatever the caller knows of them may have changed meanwhile.
[[nodiscard]] OwnedInterface<IFolderView> FindDesktopFolderView(HWND hwndView);

// What shobjidl_core.h declares from Windows Vista on and the headers leave out for older systems.
#ifndef __IFolderView2_INTERFACE_DEFINED__
#define __IFolderView2_INTERFACE_DEFINED__ // NOLINT(bugprone-reserved-identifier): the platform's
/// The folder view from Windows 7 on: the methods as far as those that are called here, in the
/// order of the platform's declaration; more follow, which nobody may call through this one.
struct IFolderView2 : public IFolderView {
    virtual HRESULT STDMETHODCALLTYPE SetGroupBy(REFPROPERTYKEY key, BOOL bAscending) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetGroupBy(PROPERTYKEY* pKey, BOOL* pbAscending) = 0;
    virtual HRESULT STDMETHODCALLTYPE SetViewProperty(PCUITEMID_CHILD pidl, REFPROPERTYKEY key,
                                                      REFPROPVARIANT value) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetViewProperty(PCUITEMID_CHILD pidl, REFPROPERTYKEY key,
                                                      PROPVARIANT* pValue) = 0;
    virtual HRESULT STDMETHODCALLTYPE SetTileViewProperties(PCUITEMID_CHILD pidl,
                                                            LPCWSTR pszList) = 0;
    virtual HRESULT STDMETHODCALLTYPE SetExtendedTileViewProperties(PCUITEMID_CHILD pidl,
                                                                    LPCWSTR pszList) = 0;
    virtual HRESULT STDMETHODCALLTYPE SetText(int nType, LPCWSTR pszText) = 0; // FVTEXTTYPE
    virtual HRESULT STDMETHODCALLTYPE SetCurrentFolderFlags(DWORD dwMask, DWORD dwFlags) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetCurrentFolderFlags(DWORD* pdwFlags) = 0;
};
constexpr IID IID_IFolderView2 = {
    0x1af3a467, 0x214f, 0x4298, {0x90, 0x8e, 0x06, 0xb0, 0x3e, 0x0b, 0x39, 0xf9}};
#endif

/// The same view with its flags; empty where it does not have them.
[[nodiscard]] OwnedInterface<IFolderView2> FindDesktopFolderView2(HWND hwndView);
