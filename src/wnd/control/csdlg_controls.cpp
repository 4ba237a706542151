// The members of CSDlg that know the objects of its controls.

#include "runtime/text/text_format.h"
#include "wnd/control/csctrl.h"
#include "wnd/dialog/csdlg.h"

#include <commctrl.h>
#include <iterator>

CSCtrl* CSDlg::GetDlgCtrl(int nId) { return GetDlgCtrl(::GetDlgItem(hWnd, nId)); }

CSCtrl* CSDlg::GetDlgCtrl(HWND hwndCtl) { return CSCtrl::FromHandle(hwndCtl); }

// All children

namespace {
/// Calls fn for the handle of each direct child that lives when its turn comes: a handler may
/// destroy some of them, or close the dialog, in which case all of them have gone.
template <class Fn>
void ForEachChild(HWND hwndParent, Fn fn) {
    struct Walk {
        HWND hwndParent;
        Fn* pfn;
        static BOOL CALLBACK Step(HWND hwnd, LPARAM lParam) {
            auto* pWalk = reinterpret_cast<Walk*>(lParam);
            if (::GetParent(hwnd) == pWalk->hwndParent) (*pWalk->pfn)(hwnd);
            return TRUE;
        }
    } walk{hwndParent, &fn};
    ::EnumChildWindows(hwndParent, &Walk::Step, reinterpret_cast<LPARAM>(&walk));
}
} // namespace

void CSDlg::PostInitDialog() {
    HWND hwndDlg = hWnd;
    bool bPage = isChildDlg != 0;
    constexpr unsigned int kNoId = 0xFFFF, kNoIdExtended = 0xFFFFFFFF; // labels
    ForEachChild(hwndDlg, [&](HWND hwnd) {
        int nId = ::GetDlgCtrlID(hwnd);
        auto nUnsignedId = static_cast<unsigned int>(nId);
        if (nUnsignedId == kNoId || nUnsignedId == kNoIdExtended) return;
        CSWnd* pWnd = CSWnd::FromHandle(hwnd);
        CSCtrl* pCtrl = pWnd && pWnd->IsCtrl() ? static_cast<CSCtrl*>(pWnd) : nullptr;
        // Of several controls with one id only the first can be found. Whatever other object a
        // child has, such as a page's dialog, stays.
        if (!pWnd && ::GetDlgItem(hwndDlg, nId) == hwnd) {
            pCtrl = CSCtrl::AutoInit(this, nUnsignedId);
        }
        if (pCtrl) pCtrl->PostInitDialog();
    });
    if (!bPage) ::SetForegroundWindow(hwndDlg);
}

void CSDlg::OKControls() {
    ForEachChild(hWnd, [](HWND hwnd) {
        if (CSCtrl* pCtrl = CSCtrl::FromHandle(hwnd)) pCtrl->OnOK();
    });
}

// To one control's object

__int64 CSDlg::OnCommand(unsigned short nId, unsigned short nCode, HWND hwndCtl) {
    __int64 qwResult = 0;
    CSCtrl* pCtrl = GetDlgCtrl(hwndCtl);
    if (pCtrl && pCtrl->OnCommand(nCode, &qwResult)) return qwResult;
    if (nCode == CBN_SELCHANGE) OnComboSelChanged(nId);
    if (nCode != BN_CLICKED) return 0;
    OnButtonClicked(nId);
    switch (nId) {
    case IDOK: return OnOK();
    case IDCANCEL: return OnCancel();
    case IDHELP: OnHelp(nullptr); return 1;
    }
    return 0;
}

int CSDlg::OnCtlColor(unsigned int uMsg, HDC hdc, HWND hwndCtl, HBRUSH* phbr) {
    if (bkgBrush) {
        if (textColor != CLR_INVALID) ::SetTextColor(hdc, textColor);
        ::SetBkMode(hdc, TRANSPARENT);
        *phbr = bkgBrush;
        return 1;
    }
    if (uMsg != WM_CTLCOLOREDIT && uMsg != WM_CTLCOLORBTN && uMsg != WM_CTLCOLORSTATIC) return 0;
    CSCtrl* pCtrl = GetDlgCtrl(hwndCtl);
    return pCtrl && pCtrl->OnCtlColor(uMsg, hdc, phbr);
}

void CSDlg::OnDrawItem(unsigned int nId, DRAWITEMSTRUCT* pItem) {
    if (CSCtrl* pCtrl = GetDlgCtrl(static_cast<int>(nId))) pCtrl->OnDrawItem(pItem);
}

void CSDlg::OnMeasureItem(unsigned int nId, MEASUREITEMSTRUCT* pItem) {
    if (CSCtrl* pCtrl = GetDlgCtrl(static_cast<int>(nId))) pCtrl->OnMeasureItem(pItem);
}

void CSDlg::OnDeleteCtrlItem(unsigned int nId, DELETEITEMSTRUCT* pItem) {
    if (CSCtrl* pCtrl = GetDlgCtrl(static_cast<int>(nId))) pCtrl->OnDeleteItem(pItem);
}

int CSDlg::SetDlgItemTextFmtCtrl(int nId, ...) {
    HWND hwnd = ::GetDlgItem(hWnd, nId);
    CSCtrl* pCtrl = GetDlgCtrl(hwnd);
    if (!pCtrl && !CSWnd::FromHandle(hwnd)) {
        pCtrl = CSCtrl::AutoInit(this, static_cast<unsigned int>(nId));
    }
    if (!pCtrl) return 0;
    wchar_t sz[kMessageSize];
    va_list args;
    va_start(args, nId);
    FormatTextV(sz, std::size(sz), pCtrl->GetOriginalText(), args);
    va_end(args);
    return ::SetWindowTextW(hwnd, sz);
}

// Notifications and tooltips

namespace {
/// A string of a module as the tooltip's text; the record is of either width.
template <class Info>
void SetTipResource(NMHDR* pHdr, HINSTANCE hinst, unsigned short nStringId) {
    auto* pInfo = reinterpret_cast<Info*>(pHdr);
    pInfo->hinst = hinst;
    pInfo->lpszText =
        reinterpret_cast<decltype(pInfo->lpszText)>(static_cast<ULONG_PTR>(nStringId));
}

constexpr unsigned int kTipChars = sizeof(NMTTDISPINFOA::szText); // in both records

void SetNarrowTip(char (&szTip)[kTipChars], const wchar_t* psz) {
    ::WideCharToMultiByte(CP_ACP, 0, psz, -1, szTip, kTipChars, nullptr, nullptr);
    szTip[kTipChars - 1] = 0; // in case it did not fit
}
} // namespace

__int64 CSDlg::OnNotify(int, NMHDR* pHdr) {
    if (!pHdr || !pHdr->hwndFrom) return 0;
    CSCtrl* pCtrl = GetDlgCtrl(pHdr->hwndFrom);
    // The source may be a child of the control, such as a list's header.
    if (!pCtrl) pCtrl = GetDlgCtrl(::GetParent(pHdr->hwndFrom));
    __int64 qwResult = 0;
    if (pCtrl && pCtrl->OnNotify(pHdr, &qwResult)) return qwResult;

    bool bWide = pHdr->code == TTN_NEEDTEXTW;
    if (!bWide && pHdr->code != TTN_NEEDTEXTA) return 0;
    auto nId = static_cast<unsigned int>(pHdr->idFrom);
    HINSTANCE hinst = nullptr;
    unsigned short nStringId = 0;
    if (GetTootTip(nId, hinst, nStringId) && nStringId) {
        if (bWide) {
            SetTipResource<NMTTDISPINFOW>(pHdr, hinst, nStringId);
        } else {
            SetTipResource<NMTTDISPINFOA>(pHdr, hinst, nStringId);
        }
        return 0;
    }
    if (bWide) {
        GetTootTip(nId, reinterpret_cast<NMTTDISPINFOW*>(pHdr)->szText, kTipChars);
        return 0;
    }
    wchar_t szTip[kTipChars] = L"";
    GetTootTip(nId, szTip, kTipChars);
    SetNarrowTip(reinterpret_cast<NMTTDISPINFOA*>(pHdr)->szText, szTip);
    return 0;
}
