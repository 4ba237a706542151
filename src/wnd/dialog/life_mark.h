#pragma once
#include "wnd/dialog/csdlg.h"
#include <windows.h>

/// On the stack of a function that calls out to handlers: they may delete the dialog's object,
/// which tells all its marks. For a function that runs a dialog it also holds what became of the
/// window of that run.
class CSDlg::LifeMark {
  public:
    explicit LifeMark(CSDlg& dlgMarked) noexcept : pDlg(&dlgMarked), pOuter(dlgMarked.pLifeMark) {
        dlgMarked.pLifeMark = this;
    }
    ~LifeMark() {
        if (pDlg) pDlg->pLifeMark = pOuter;
    }
    LifeMark(const LifeMark&) = delete; // the object names it
    LifeMark& operator=(const LifeMark&) = delete;

    bool IsGone() const noexcept { return !pDlg; }
    CSDlg* GetDlg() const noexcept { return pDlg; }
    /// What CloseDialog was given, also by an object that has gone.
    int GetResult() const noexcept { return pDlg ? pDlg->result : nLastResult; }
    /// Whether the run is over: for good, or but for handlers that are still under way.
    bool HasEnded() const noexcept { return bEnded || !pDlg || !::IsWindow(hwndRun); }

  private:
    friend class CSDlg;

    CSDlg* pDlg;
    LifeMark* pOuter;
    int nLastResult = -1;

    bool bHandled = false; // a hook of the dialog handled the message

    // Of a run
    unsigned nTemplateId = 0;
    HWND hwndRun = nullptr;    // from the first message of the dialog procedure on
    bool bHoldsLife = false;   // until WM_INITDIALOG
    bool bInitialized = false; // WM_INITDIALOG was there
    bool bEnded = false;
};
