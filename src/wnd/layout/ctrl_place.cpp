#include "wnd/layout/ctrl_place.h"
#include "wnd/core/wnd_free.h"
#include "wnd/layout/coordinates.h"

namespace {
/// Moves and resizes a control by so many pixels. What nKept names (SWP_NOMOVE, SWP_NOSIZE) stays.
int ChangeCtrl(HWND hwndDlg, HWND hwndCtl, const RECT& rcChange, DWORD nKept, int bRedraw) {
    RECT rc;
    if (!GetCtrlRect(hwndDlg, hwndCtl, &rc)) return 0;
    DWORD nFlags = nKept | SWP_NOZORDER | SWP_NOACTIVATE;
    if (bRedraw && ::IsWindowVisible(hwndCtl)) {
        SetWndShow(hwndCtl, 0, 0); // not ShowWindow, which may pass its focus on
        nFlags |= SWP_SHOWWINDOW;
    }
    return ::SetWindowPos(hwndCtl, nullptr, AddCoordinates(rc.left, rcChange.left),
                          AddCoordinates(rc.top, rcChange.top),
                          AddCoordinates(GetWidth(rc), rcChange.right),
                          AddCoordinates(GetHeight(rc), rcChange.bottom), nFlags);
}
} // namespace

int GetCtrlRect(HWND hwndDlg, HWND hwndCtl, RECT* prc) {
    RECT rc;
    if (!prc || !hwndCtl || !::GetWindowRect(hwndCtl, &rc)) return 0;
    // Both corners at once, so that a mirrored dialog has its left side on the left.
    ::MapWindowPoints(HWND_DESKTOP, hwndDlg, reinterpret_cast<POINT*>(&rc), 2);
    *prc = rc;
    return 1;
}

int GetDlgItemRect(HWND hwndDlg, unsigned int nId, RECT* prc) {
    return GetCtrlRect(hwndDlg, ::GetDlgItem(hwndDlg, static_cast<int>(nId)), prc);
}

int CenterCtrl(HWND hwndDlg, HWND hwndCtl, int bHorizontal, HWND hwndRef) {
    RECT rc, rcRef;
    if (!GetCtrlRect(hwndDlg, hwndCtl, &rc)) return 0;
    if (!(hwndRef ? GetCtrlRect(hwndDlg, hwndRef, &rcRef) : ::GetClientRect(hwndDlg, &rcRef))) {
        return 0;
    }
    int x = rc.left, y = rc.top;
    if (bHorizontal) {
        x = GetCenteredStart(rcRef.left, rcRef.right, GetWidth(rc));
    } else {
        y = GetCenteredStart(rcRef.top, rcRef.bottom, GetHeight(rc));
    }
    int nResult = SetWndOrigin(hwndCtl, x, y, 0);
    ::RedrawWindow(hwndCtl, nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE);
    return nResult;
}

int MoveCtrl(HWND hwndDlg, HWND hwndCtl, int dx, int dy, int bRedraw) {
    return ChangeCtrl(hwndDlg, hwndCtl, {dx, dy, 0, 0}, SWP_NOSIZE, bRedraw);
}

int ResizeCtrl(HWND hwndDlg, HWND hwndCtl, int dw, int dh, int bRedraw) {
    return ChangeCtrl(hwndDlg, hwndCtl, {0, 0, dw, dh}, SWP_NOMOVE, bRedraw);
}

int MoveResizeCtrl(HWND hwndDlg, HWND hwndCtl, int dx, int dy, int dw, int dh, int bRedraw) {
    return ChangeCtrl(hwndDlg, hwndCtl, {dx, dy, dw, dh}, 0, bRedraw);
}

int CenterDlgItem(HWND hwndDlg, unsigned int nId, int bHorizontal, unsigned int nRefId) {
    HWND hwndRef = nRefId ? ::GetDlgItem(hwndDlg, static_cast<int>(nRefId)) : nullptr;
    return CenterCtrl(hwndDlg, ::GetDlgItem(hwndDlg, static_cast<int>(nId)), bHorizontal, hwndRef);
}

int MoveDlgItem(HWND hwndDlg, unsigned int nId, int dx, int dy, int bRedraw) {
    return MoveCtrl(hwndDlg, ::GetDlgItem(hwndDlg, static_cast<int>(nId)), dx, dy, bRedraw);
}

int ResizeDlgItem(HWND hwndDlg, unsigned int nId, int dw, int dh, int bRedraw) {
    return ResizeCtrl(hwndDlg, ::GetDlgItem(hwndDlg, static_cast<int>(nId)), dw, dh, bRedraw);
}

int MoveResizeDlgItem(HWND hwndDlg, unsigned int nId, int dx, int dy, int dw, int dh, int bRedraw) {
    return MoveResizeCtrl(hwndDlg, ::GetDlgItem(hwndDlg, static_cast<int>(nId)), dx, dy, dw, dh,
                          bRedraw);
}
