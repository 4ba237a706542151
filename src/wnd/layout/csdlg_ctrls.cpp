// The members of CSDlg that place its controls.

#include "runtime/base/ownership.h"
#include "wnd/core/wnd_free.h"
#include "wnd/dialog/csdlg.h"
#include "wnd/draw/csdc.h"
#include "wnd/layout/coordinates.h"
#include "wnd/layout/ctrl_place.h"

#include <algorithm>

namespace {
constexpr int kCchMeasuredText = 1024; // with the terminator
constexpr int kRoomBelowText = 20;     // what a dialog grows by besides the text's height
constexpr UINT kMeasureFlags = DT_CALCRECT | DT_WORDBREAK | DT_NOFULLWIDTHCHARBREAK;

/// The size of a text with its words wrapped to the width of the client area, in the font of the
/// control. hwndCtl may be null.
SIZE MeasureWrappedText(HWND hwndCtl, const wchar_t* pszText, const RECT& rcClient) {
    ClientDC dc(hwndCtl);
    HFONT hfont = reinterpret_cast<HFONT>(::SendMessageW(hwndCtl, WM_GETFONT, 0, 0));
    HGDIOBJ hfontOld = hfont ? ::SelectObject(dc, hfont) : nullptr;
    ScopeExit restore([&] {
        if (hfontOld) ::SelectObject(dc, hfontOld);
    });
    RECT rc = rcClient;
    ::DrawTextExW(dc, const_cast<wchar_t*>(pszText), -1, &rc, kMeasureFlags, nullptr);
    return {GetWidth(rc), GetHeight(rc)};
}
} // namespace

int CSDlg::GetDlgItemRect(unsigned int nId, RECT* prc) { return ::GetDlgItemRect(hWnd, nId, prc); }

void CSDlg::CenterCtrl(unsigned int nId, int bHorizontal, unsigned int nRefId) {
    ::CenterDlgItem(hWnd, nId, bHorizontal, nRefId);
}

void CSDlg::MoveCtrl(unsigned int nId, int dx, int dy, int bRedraw) {
    ::MoveDlgItem(hWnd, nId, dx, dy, bRedraw);
}

void CSDlg::ResizeCtrl(unsigned int nId, int dw, int dh, int bRedraw) {
    ::ResizeDlgItem(hWnd, nId, dw, dh, bRedraw);
}

void CSDlg::MoveResizeCtrl(unsigned int nId, int dx, int dy, int dw, int dh, int bRedraw) {
    ::MoveResizeDlgItem(hWnd, nId, dx, dy, dw, dh, bRedraw);
}

// Slots and edges

void CSDlg::MoveCtrlToSlot(unsigned int nId, unsigned int nSlotId) {
    RECT rc;
    HWND hwndCtl = GetDlgItem(static_cast<int>(nId));
    if (hwndCtl && GetDlgItemRect(nSlotId, &rc)) ::SetWndOrigin(hwndCtl, rc.left, rc.top, 0);
}

void CSDlg::MoveButtonToSlot(unsigned int nId, unsigned int nSlotId) {
    MoveCtrlToSlot(nId, nSlotId);
}

void CSDlg::MoveResizeCtrlToSlot(unsigned int nId, unsigned int nSlotId) {
    RECT rc;
    HWND hwndCtl = GetDlgItem(static_cast<int>(nId));
    if (hwndCtl && GetDlgItemRect(nSlotId, &rc)) ::SetWndPos(hwndCtl, &rc, 0);
}

void CSDlg::MoveCtrlEdge(unsigned int nId, unsigned int nRefId, int bRightEdge) {
    RECT rc, rcRef;
    if (!GetDlgItemRect(nId, &rc) || !GetDlgItemRect(nRefId, &rcRef)) return;
    if (bRightEdge) {
        rc.right = rcRef.right;
    } else {
        rc.left = rcRef.left;
    }
    ::SetWindowPos(GetDlgItem(static_cast<int>(nId)), nullptr, rc.left, rc.top, GetWidth(rc),
                   GetHeight(rc), SWP_FRAMECHANGED | SWP_NOZORDER);
}

// Alignment

void CSDlg::CenterDlgItem(unsigned int nId, int bHorizontal, int nFrom, int nTo) {
    RECT rc, rcClient;
    HWND hwndDlg = hWnd; // what the control does when it is moved may end the dialog
    HWND hwndCtl = GetDlgItem(static_cast<int>(nId));
    if (!::GetCtrlRect(hwndDlg, hwndCtl, &rc)) return;
    if (nFrom == -1 && nTo == -1) {
        if (!::GetClientRect(hwndDlg, &rcClient)) return;
        nFrom = bHorizontal ? rcClient.left : rcClient.top;
        nTo = bHorizontal ? rcClient.right : rcClient.bottom;
    }
    if (bHorizontal) {
        int x = GetCenteredStart(nFrom, nTo, GetWidth(rc));
        ::MoveCtrl(hwndDlg, hwndCtl, GetDistance(rc.left, x), 0, 1);
        return;
    }
    int y = GetCenteredStart(nFrom, nTo, GetHeight(rc));
    ::MoveCtrl(hwndDlg, hwndCtl, 0, GetDistance(rc.top, y), 1);
    if (!::GetCtrlRect(hwndDlg, hwndCtl, &rc) || (rc.top >= nFrom && rc.bottom <= nTo)) return;
    rc.top = std::max<int>(rc.top, nFrom);
    rc.bottom = std::min<int>(rc.bottom, nTo);
    ::SetWndPos(hwndCtl, rc.left, rc.top, GetWidth(rc), GetHeight(rc), 0);
}

void CSDlg::AlignDlgItems(unsigned int nFirst, unsigned int nLast, int bHorizontal) {
    RECT rcFirst, rcLast, rcClient;
    if (!GetDlgItemRect(nFirst, &rcFirst) || !GetDlgItemRect(nLast, &rcLast) ||
        !::GetClientRect(hWnd, &rcClient)) {
        return;
    }
    int dx = 0, dy = 0;
    if (bHorizontal) {
        int cx = GetDistance(rcFirst.left, rcLast.right);
        dx = GetDistance(rcFirst.left, GetCenteredStart(rcClient.left, rcClient.right, cx));
    } else {
        int cy = GetDistance(rcFirst.top, rcLast.bottom);
        dy = GetDistance(rcFirst.top, GetCenteredStart(rcClient.top, rcClient.bottom, cy));
    }
    HWND hwndDlg = hWnd;
    HWND hwndCtl = GetDlgItem(static_cast<int>(nFirst));
    while (hwndCtl) {
        unsigned int nId = static_cast<unsigned int>(::GetDlgCtrlID(hwndCtl));
        HWND hwndNext = nId == nLast ? nullptr : ::GetWindow(hwndCtl, GW_HWNDNEXT);
        ::MoveCtrl(hwndDlg, hwndCtl, dx, dy, 1);
        hwndCtl = hwndNext;
    }
}

void CSDlg::AdjustHeight(unsigned int nId) {
    wchar_t szText[kCchMeasuredText];
    szText[0] = L'\0';
    HWND hwndCtl = GetDlgItem(static_cast<int>(nId));
    if (hwndCtl) ::GetWindowTextW(hwndCtl, szText, kCchMeasuredText);
    RECT rcCtl{}, rcDlg{};
    if (hwndCtl) ::GetClientRect(hwndCtl, &rcCtl);
    SIZE sizeText = MeasureWrappedText(hwndCtl, szText, rcCtl);
    int dw = sizeText.cx - GetWidth(rcCtl), dh = sizeText.cy - GetHeight(rcCtl);
    if ((dw <= 0 && dh <= 0) || !::GetWindowRect(hWnd, &rcDlg)) return;
    // The height may get its room also when the text is only too wide.
    ::SetWndSize(hWnd, AddCoordinates(GetWidth(rcDlg), std::max(dw, 0)),
                 AddCoordinates(GetHeight(rcDlg), std::max(dh + kRoomBelowText, 0)), 0);
}
