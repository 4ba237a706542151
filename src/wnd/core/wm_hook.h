#pragma once
#include "runtime/base/export.h"
#include <windows.h>

class CSDlg;
class CSWnd;

/// Put on a window object, sees that window's messages before its default processing. Not owned by
/// the window: it is taken off (or all hooks are) before it goes.
class TESSALY_API WMHook {
  public:
    WMHook() = default;
    virtual ~WMHook();
    /// Non-zero: the message is handled and *plResult is its result; neither the hooks behind this
    /// one nor the default processing see it. The default gives 0.
    virtual int OnWndMessage(CSWnd* pWnd, UINT uMsg, WPARAM wParam, LPARAM lParam,
                             LRESULT* plResult);
    /// The same for the messages of a dialog's procedure.
    virtual int OnDlgMessage(CSDlg* pDlg, UINT uMsg, WPARAM wParam, LPARAM lParam,
                             LRESULT* plResult);

    void AddToWnd(CSWnd* pWnd);
    void RemoveFromWnd(CSWnd* pWnd);
};
