#pragma once
#include "runtime/base/export.h"
#include "wnd/core/cswnd.h"
#include <windows.h>

/// The built-in hook of a dialog, last of both its chains: turns the messages of the dialog
/// procedure into the virtual operations of CSDlg, and those of the window into the resizing
/// corner. A hook before it can keep any of them from it.
class TESSALY_API CSDlgMsgHandler : public WMHook {
  public:
    int OnWndMessage(CSWnd* pWnd, UINT uMsg, WPARAM wParam, LPARAM lParam,
                     LRESULT* plResult) override;
    int OnDlgMessage(CSDlg* pDlg, UINT uMsg, WPARAM wParam, LPARAM lParam,
                     LRESULT* plResult) override;
};

/// Lets a window be dragged by its whole body: a hit on the client area becomes one on the caption.
/// A maximised window stays where it is.
class TESSALY_API FullWndDragger : public WMHook {
  public:
    int OnWndMessage(CSWnd* pWnd, UINT uMsg, WPARAM wParam, LPARAM lParam,
                     LRESULT* plResult) override;
    /// Whether the point, in the window's client pixels, is one of the spots with the hand cursor.
    int DoHitTest(CSWnd* pWnd, int x, int y);

  protected:
    HCURSOR arrowCursor = nullptr; // shared with the system, loaded at first use
    HCURSOR handCursor = nullptr;
    int overHotSpot = 0; // for derived classes: set by their own hit test
    int inHitTest = 0;
};
