#include "wnd/dialog/dlg_items.h"
#include "runtime/messages/res_str.h"
#include "runtime/text/text_format.h"
#include "wnd/dialog/csdlg.h"

#include <commctrl.h>

namespace {
/// 0 if there is no such item.
LRESULT SendToItem(HWND hwndDlg, unsigned nId, UINT uMsg, WPARAM wParam, LPARAM lParam) {
    return ::SendDlgItemMsg(hwndDlg, static_cast<int>(nId), uMsg, wParam, lParam);
}
} // namespace

int TurnDlgItem(HWND hwndDlg, int nId, int bOn) {
    ::EnableDlgItem(hwndDlg, nId, bOn);
    return ::ShowDlgItem(hwndDlg, nId, bOn);
}

int EnableDlgItem(HWND hwndDlg, int nId, int bOn) {
    HWND hwnd = ::GetDlgItem(hwndDlg, nId);
    return hwnd ? ::EnableWindow(hwnd, bOn) : 0;
}

int ShowDlgItem(HWND hwndDlg, int nId, int bOn) {
    HWND hwnd = ::GetDlgItem(hwndDlg, nId);
    return hwnd ? ::ShowWindow(hwnd, bOn ? SW_SHOW : SW_HIDE) : 0;
}

int SetDlgItemFocus(HWND hwndDlg, unsigned int nId) {
    HWND hwnd = ::GetDlgItem(hwndDlg, static_cast<int>(nId));
    if (hwnd) ::SetFocus(hwnd);
    return hwnd != nullptr;
}

LRESULT SendDlgItemMsg(HWND hwndDlg, int nId, UINT uMsg, WPARAM wParam, LPARAM lParam) {
    HWND hwnd = ::GetDlgItem(hwndDlg, nId);
    return hwnd ? ::SendMessageW(hwnd, uMsg, wParam, lParam) : 0;
}

unsigned int GetDlgDefBtnID(HWND hwndDlg) {
    DWORD dwAnswer = static_cast<DWORD>(::SendMessageW(hwndDlg, DM_GETDEFID, 0, 0));
    return HIWORD(dwAnswer) == DC_HASDEFID ? LOWORD(dwAnswer) : 0;
}

int SetDlgDefBtnID(HWND hwndDlg, unsigned int nId) {
    unsigned nFormerId = ::GetDlgDefBtnID(hwndDlg);
    if (nFormerId == nId) return 1;
    if (nFormerId) SendToItem(hwndDlg, nFormerId, BM_SETSTYLE, BS_PUSHBUTTON, TRUE);
    ::SendMessageW(hwndDlg, DM_SETDEFID, nId, 0);
    return 1;
}

int SetDlgItemSpinRange(HWND hwndDlg, unsigned int nId, unsigned int uLow, unsigned int uHigh) {
    return static_cast<int>(
        SendToItem(hwndDlg, nId, UDM_SETRANGE32, uLow, static_cast<LPARAM>(uHigh)));
}

int SetDlgItemSpinPos(HWND hwndDlg, unsigned int nId, unsigned int uPos) {
    return static_cast<int>(SendToItem(hwndDlg, nId, UDM_SETPOS, 0, static_cast<LPARAM>(uPos)));
}

int SetDlgItemProgressRange(HWND hwndDlg, unsigned int nId, unsigned int uLow, unsigned int uHigh) {
    return static_cast<int>(
        SendToItem(hwndDlg, nId, PBM_SETRANGE32, uLow, static_cast<LPARAM>(uHigh)));
}

int SetDlgItemProgressPos(HWND hwndDlg, unsigned int nId, unsigned int uPos) {
    return static_cast<int>(SendToItem(hwndDlg, nId, PBM_SETPOS, uPos, 0));
}

// Texts

int SetDlgItemTextFmtV(HWND hwndDlg, int nId, LPCWSTR pszFormat, ArgList args) {
    HWND hwnd = ::GetDlgItem(hwndDlg, nId);
    if (!hwnd) return 0;
    wchar_t sz[kMessageSize];
    FormatTextV(sz, kMessageSize, pszFormat, args.v);
    return ::SetWindowTextW(hwnd, sz);
}

int SetDlgItemTextFmt(HWND hwndDlg, int nId, LPCWSTR pszFormat, ...) {
    ArgList args;
    va_start(args.v, pszFormat);
    int nResult = SetDlgItemTextFmtV(hwndDlg, nId, pszFormat, args);
    va_end(args.v);
    return nResult;
}

int SetDlgItemTextFmt(HWND hwndDlg, int nId, HINSTANCE hinst, int nStringId, ...) {
    ResStr format(nStringId, hinst);
    ArgList args;
    va_start(args.v, nStringId);
    int nResult = SetDlgItemTextFmtV(hwndDlg, nId, format, args);
    va_end(args.v);
    return nResult;
}

int SetDlgItemTextFmt(HWND hwndDlg, int nId, int nStringId, ...) {
    ResStr format(nStringId);
    ArgList args;
    va_start(args.v, nStringId);
    int nResult = SetDlgItemTextFmtV(hwndDlg, nId, format, args);
    va_end(args.v);
    return nResult;
}

int SetWndTextFmtCtrl(HWND hwnd, ...) {
    if (!hwnd || !::IsWindow(hwnd)) return 0;
    wchar_t szFormat[kMessageSize] = {};
    ::GetWindowTextW(hwnd, szFormat, kMessageSize);
    wchar_t sz[kMessageSize];
    va_list args;
    va_start(args, hwnd);
    FormatTextV(sz, kMessageSize, szFormat, args);
    va_end(args);
    return ::SetWindowTextW(hwnd, sz);
}

// Whole dialogs

CSDlg* GetTopDlg(HWND hwnd) {
    for (hwnd = ::GetParent(hwnd); hwnd; hwnd = ::GetParent(hwnd)) {
        CSWnd* pWnd = CSWnd::FromHandle(hwnd);
        if (!pWnd || !pWnd->IsDlg()) continue;
        CSDlg* pDlg = static_cast<CSDlg*>(pWnd);
        if (!pDlg->IsChildDlg()) return pDlg;
    }
    return nullptr;
}

int CheckDlgIDs(HWND hwndDlg, unsigned int* pnIds) {
    if (!pnIds) return 1; // as an empty list
    HWND hwnd = ::GetWindow(hwndDlg, GW_CHILD);
    for (; hwnd && *pnIds; hwnd = ::GetWindow(hwnd, GW_HWNDNEXT), ++pnIds) {
        if (static_cast<unsigned>(::GetDlgCtrlID(hwnd)) != *pnIds) return 0;
    }
    return 1;
}
