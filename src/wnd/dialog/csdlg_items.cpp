// The members of CSDlg on its items: most hand on to the platform or to the free functions.

#include "runtime/messages/res_str.h"
#include "wnd/core/wnd_free.h"
#include "wnd/dialog/csdlg.h"
#include "wnd/dialog/dlg_items.h"

namespace {
constexpr int kCchItemString = 512;
constexpr int kNoItemId = 0xFFFF; // what templates of the old form have for -1

HWND FindItem(HWND hwndDlg, unsigned nId) { return ::GetDlgItem(hwndDlg, static_cast<int>(nId)); }

/// Calls fn with each sibling from hwndFirst to the one with that id, or to the last one.
template <class Fn>
void ForEachSibling(HWND hwndFirst, unsigned nLast, Fn fn) {
    for (HWND hwnd = hwndFirst; hwnd; hwnd = ::GetWindow(hwnd, GW_HWNDNEXT)) {
        fn(hwnd);
        if (static_cast<unsigned>(::GetDlgCtrlID(hwnd)) == nLast) return;
    }
}
} // namespace

HWND CSDlg::GetDlgItem(int nId) { return ::GetDlgItem(hWnd, nId); }

LRESULT CSDlg::SendDlgItemMsg(int nId, UINT uMsg, WPARAM wParam, LPARAM lParam) {
    return ::SendDlgItemMsg(hWnd, nId, uMsg, wParam, lParam);
}

unsigned int CSDlg::GetDlgItemID(HWND hwndItem) {
    int nId = ::GetDlgCtrlID(hwndItem);
    return static_cast<unsigned>(nId == kNoItemId ? -1 : nId);
}

int CSDlg::SetDlgDefaulButton(unsigned int nId) { return ::SetDlgDefBtnID(hWnd, nId); }

int CSDlg::EnableDlgItem(int nId, int bOn) { return ::EnableDlgItem(hWnd, nId, bOn); }

int CSDlg::ShowDlgItem(int nId, int bOn) { return ::ShowDlgItem(hWnd, nId, bOn); }

int CSDlg::HideDlgItem(int nId) { return ::TurnDlgItem(hWnd, nId, 0); }

int CSDlg::TurnDlgItem(int nId, int bOn) { return ::TurnDlgItem(hWnd, nId, bOn); }

void CSDlg::SetDlgItemFocus(unsigned int nId) { ::SetDlgItemFocus(hWnd, nId); }

int CSDlg::SimulateButton(unsigned short nId) { return ::SimulateButton(hWnd, nId); }

int CSDlg::IsDlgItemEnabled(int nId) { return ::IsWindowEnabled(::GetDlgItem(hWnd, nId)); }

int CSDlg::IsDlgItemVisible(int nId) {
    return (::GetWndStyle(::GetDlgItem(hWnd, nId), 0) & WS_VISIBLE) != 0;
}

// Buttons

unsigned int CSDlg::IsDlgButtonChecked(int nId) { return ::IsDlgButtonChecked(hWnd, nId); }

int CSDlg::CheckDlgButton(int nId, unsigned int uCheck) {
    return ::CheckDlgButton(hWnd, nId, uCheck);
}

int CSDlg::CheckRadioButton(int nFirst, int nLast, int nChecked) {
    return ::CheckRadioButton(hWnd, nFirst, nLast, nChecked);
}

unsigned int CSDlg::GetDlgButtonState(int nId) {
    return static_cast<unsigned>(SendDlgItemMsg(nId, BM_GETSTATE, 0, 0));
}

void CSDlg::SetDlgButtonState(int nId, unsigned int uState) {
    SendDlgItemMsg(nId, BM_SETSTATE, uState, 0);
}

int CSDlg::GetCheckedRadioButton(int nFirst, int nLast) {
    for (__int64 nId = nFirst; nId <= nLast; ++nId) { // the last id may be the greatest int
        if (::IsDlgButtonChecked(hWnd, static_cast<int>(nId))) return static_cast<int>(nId);
    }
    return 0;
}

// Texts and numbers

int CSDlg::GetDlgItemTextLength(int nId) { return ::GetWindowTextLengthW(::GetDlgItem(hWnd, nId)); }

int CSDlg::GetDlgItemTextW(int nId, LPWSTR pszText, int cch) {
    return static_cast<int>(::GetDlgItemTextW(hWnd, nId, pszText, cch));
}

int CSDlg::SetDlgItemTextW(int nId, LPCWSTR pszText) {
    return ::SetDlgItemTextW(hWnd, nId, pszText);
}

int CSDlg::SetDlgItemTextW(int nId, int nStringId, HINSTANCE hinst) {
    if (!hinst && nStringId >= 0) {
        hinst = reinterpret_cast<HINSTANCE>(::GetWindowLongPtrW(hWnd, GWLP_HINSTANCE));
    }
    ConvertResourceId(nStringId, hinst);
    wchar_t sz[kCchItemString] = {};
    ::LoadStringW(hinst, static_cast<UINT>(nStringId), sz, kCchItemString);
    return ::SetDlgItemTextW(hWnd, nId, sz);
}

unsigned int CSDlg::GetDlgItemInt(int nId, int* pbOk, int bSigned) {
    return ::GetDlgItemInt(hWnd, nId, pbOk, bSigned);
}

int CSDlg::SetDlgItemInt(int nId, unsigned int uValue, int bSigned) {
    return ::SetDlgItemInt(hWnd, nId, uValue, bSigned);
}

int CSDlg::SetDlgItemTextFmt(int nId, LPCWSTR pszFormat, ...) {
    ArgList args;
    va_start(args.v, pszFormat);
    int nResult = SetDlgItemTextFmtV(hWnd, nId, pszFormat, args);
    va_end(args.v);
    return nResult;
}

int CSDlg::SetDlgItemTextFmt(int nId, HINSTANCE hinst, int nStringId, ...) {
    ResStr format(nStringId, hinst);
    ArgList args;
    va_start(args.v, nStringId);
    int nResult = SetDlgItemTextFmtV(hWnd, nId, format, args);
    va_end(args.v);
    return nResult;
}

int CSDlg::SetDlgItemTextFmt(int nId, int nStringId, ...) {
    ResStr format(nStringId);
    ArgList args;
    va_start(args.v, nStringId);
    int nResult = SetDlgItemTextFmtV(hWnd, nId, format, args);
    va_end(args.v);
    return nResult;
}

// The tab order

HWND CSDlg::GetNextDlgTabItem(HWND hwndCtl) { return ::GetNextDlgTabItem(hWnd, hwndCtl, FALSE); }

HWND CSDlg::GetPrevDlgTabItem(HWND hwndCtl) { return ::GetNextDlgTabItem(hWnd, hwndCtl, TRUE); }

void CSDlg::NextDlgCtrl() { ::SendMessageW(hWnd, WM_NEXTDLGCTL, 0, FALSE); }

void CSDlg::PrevDlgCtrl() { ::SendMessageW(hWnd, WM_NEXTDLGCTL, 1, FALSE); }

void CSDlg::SetSpinRange(unsigned int nId, unsigned int uLow, unsigned int uHigh) {
    ::SetDlgItemSpinRange(hWnd, nId, uLow, uHigh);
}

// Look

void CSDlg::SetDlgColors(unsigned long crBkg, unsigned long crText, unsigned long crThird) {
    bkgColor = crBkg;
    textColor = crText;
    thirdColor = crThird;
    if (bkgBrush) ::DeleteObject(bkgBrush);
    bkgBrush = crBkg == CLR_INVALID ? nullptr : ::CreateSolidBrush(crBkg);
}

void CSDlg::EraseCtrlBkg(HDC hdcUnused, unsigned int nId) {
    EraseCtrlBkg(hdcUnused, FindItem(hWnd, nId));
}

void CSDlg::EraseCtrlBkg(HDC /*hdcUnused*/, HWND hwndCtl) {
    RECT rc;
    if (!hwndCtl || !::GetWindowRect(hwndCtl, &rc)) return;
    ::MapWindowPoints(HWND_DESKTOP, hWnd, reinterpret_cast<POINT*>(&rc), 2);
    ::RedrawWindow(hWnd, &rc, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_ERASENOW);
}

void CSDlg::ValidateDlgItem(unsigned int nId) {
    RECT rc;
    if (GetDlgItemRect(nId, &rc)) ::ValidateRect(hWnd, &rc);
}

void CSDlg::EnableDlgItems(unsigned int nFirst, unsigned int nLast, int bOn) {
    HWND hwndFirst = nFirst ? FindItem(hWnd, nFirst) : ::GetWindow(hWnd, GW_CHILD);
    ForEachSibling(hwndFirst, nLast, [bOn](HWND hwnd) { ::EnableWindow(hwnd, bOn); });
}

void CSDlg::ShowDlgItems(unsigned int nFirst, unsigned int nLast, int bOn) {
    ForEachSibling(FindItem(hWnd, nFirst), nLast,
                   [bOn](HWND hwnd) { ::ShowWindow(hwnd, bOn ? SW_SHOW : SW_HIDE); });
}

void CSDlg::ShiftNavButton(unsigned int nId, int bVisible) {
    RECT rc;
    if (!GetDlgItemRect(nId, &rc)) return;
    bool bIsVisible = rc.top >= 0;
    if (bIsVisible == (bVisible != 0)) return;
    ::SetWndOrigin(FindItem(hWnd, nId), rc.left, -rc.bottom, 0); // mirrored at the top edge
}
