// How the messages of a dialog become its virtual operations.

#include "wnd/core/company_msg.h"
#include "wnd/core/object_table.h"
#include "wnd/core/wnd_input.h"
#include "wnd/dialog/csdlg.h"
#include "wnd/dialog/html_help.h"
#include "wnd/dialog/life_mark.h"

namespace {
constexpr LPARAM kMouseLeft = 0xFFFFFFFF;  // the place -1, -1 says that the mouse has left
constexpr WPARAM kSysCommandMask = 0xFFF0; // the low four bits are the platform's own

constinit ObjectTable helpRequests; // of this process, under way

bool IsOfThisProcess(HWND hwnd) {
    DWORD dwProcess = 0;
    ::GetWindowThreadProcessId(hwnd, &dwProcess);
    return dwProcess == ::GetCurrentProcessId();
}

bool IsWritable(const void* p, SIZE_T cb) {
    constexpr DWORD kWritable =
        PAGE_READWRITE | PAGE_WRITECOPY | PAGE_EXECUTE_READWRITE | PAGE_EXECUTE_WRITECOPY;
    MEMORY_BASIC_INFORMATION info;
    if (!::VirtualQuery(p, &info, sizeof(info)) || info.State != MEM_COMMIT) return false;
    if (!(info.Protect & kWritable) || (info.Protect & PAGE_GUARD)) return false;
    SIZE_T cbBefore = static_cast<SIZE_T>(static_cast<const BYTE*>(p) -
                                          static_cast<const BYTE*>(info.BaseAddress));
    return info.RegionSize - cbBefore >= cb;
}

/// The record that a message of any program points to; null if it can't be one of this process.
/// Our own requests are known. Others may come from this thread, on which a message sent by itself
/// can't be told from one that another program posted: such a one must at least name memory that
/// can be written to.
HelpRequest* GetHelpRequest(__int64 qwData) {
    void* p = reinterpret_cast<void*>(qwData);
    if (helpRequests.Has(p)) return static_cast<HelpRequest*>(p);
    bool bAligned = static_cast<unsigned __int64>(qwData) % alignof(HelpRequest) == 0;
    if (!p || !bAligned || ::InSendMessageEx(nullptr) != ISMEX_NOSEND) return nullptr;
    return IsWritable(p, sizeof(HelpRequest)) ? static_cast<HelpRequest*>(p) : nullptr;
}

/// The request climbs from dialog to parent; the record is of no use to another process.
void SendHelpRequest(HWND hwnd, HelpRequest* pRequest) {
    if (!IsOfThisProcess(hwnd)) return;
    ::SendMyCompanyMsg(hwnd, kMsgHelpRequest, reinterpret_cast<LPARAM>(pRequest));
}

/// What 0 for "not handled" must not be made of by a narrowing.
int ToHandled(__int64 qwResult) {
    int nResult = static_cast<int>(qwResult);
    return nResult || !qwResult ? nResult : 1;
}

} // namespace

LRESULT CSDlg::OnWndMessage(UINT uMsg, WPARAM wParam, LPARAM lParam) {
    if (uMsg >= WM_CTLCOLOREDIT && uMsg <= WM_CTLCOLORSTATIC) {
        HBRUSH hbr = nullptr;
        HDC hdc = reinterpret_cast<HDC>(wParam);
        if (OnCtlColor(uMsg, hdc, reinterpret_cast<HWND>(lParam), &hbr)) {
            return reinterpret_cast<LRESULT>(hbr);
        }
    } else if (uMsg == WM_MOUSEMOVE) {
        // Signed: left of and above the first monitor, and where the mouse has left.
        OnMouseMove(wParam, static_cast<short>(LOWORD(lParam)), static_cast<short>(HIWORD(lParam)));
    }
    return CSWnd::OnWndMessage(uMsg, wParam, lParam);
}

int CSDlgMsgHandler::OnDlgMessage(CSDlg* pDlg, UINT uMsg, WPARAM wParam, LPARAM lParam,
                                  LRESULT* plResult) {
    UINT uCompanyMsg = GetMyCompanyMsgId();
    if (uCompanyMsg && uMsg == uCompanyMsg) {
        return pDlg->HandleCompanyMsg(wParam, lParam, plResult);
    }
    unsigned nId = static_cast<unsigned>(wParam);
    switch (uMsg) {
    case WM_SHOWWINDOW:
        pDlg->OnShowWindow(static_cast<int>(wParam), static_cast<unsigned long>(lParam));
        return 0;
    case WM_DRAWITEM: pDlg->OnDrawItem(nId, reinterpret_cast<DRAWITEMSTRUCT*>(lParam)); return 1;
    case WM_MEASUREITEM:
        pDlg->OnMeasureItem(nId, reinterpret_cast<MEASUREITEMSTRUCT*>(lParam));
        return 1;
    case WM_DELETEITEM:
        pDlg->OnDeleteCtrlItem(nId, reinterpret_cast<DELETEITEMSTRUCT*>(lParam));
        return 1;
    case WM_WINDOWPOSCHANGING:
        pDlg->OnWindowPosChanging(reinterpret_cast<WINDOWPOS*>(lParam));
        return 0;
    case WM_WINDOWPOSCHANGED:
        pDlg->OnWindowPosChanged(reinterpret_cast<WINDOWPOS*>(lParam));
        return 0;
    case WM_NOTIFY:
        *plResult = pDlg->OnNotify(static_cast<int>(wParam), reinterpret_cast<NMHDR*>(lParam));
        return 1;
    case WM_HELP:
        pDlg->OnHelp(reinterpret_cast<HELPINFO*>(lParam));
        *plResult = 1;
        return 1;
    case WM_INITDIALOG: *plResult = pDlg->InitDialog(wParam, lParam); return 1;
    case WM_COMMAND:
        return ToHandled(
            pDlg->OnCommand(LOWORD(wParam), HIWORD(wParam), reinterpret_cast<HWND>(lParam)));
    case WM_SYSCOMMAND:
        if (!pDlg->OnSysCommand(static_cast<unsigned short>(wParam & kSysCommandMask),
                                LOWORD(lParam), HIWORD(lParam))) {
            return 0;
        }
        *plResult = 0;
        return 1;
    case WM_TIMER:
        if (wParam == pDlg->delayTimer.GetID()) pDlg->OnDelayedAction(pDlg->delayedAction);
        return 0;
    case WM_MOUSEMOVE:
        if (static_cast<DWORD>(lParam) != kMouseLeft) ::CatchMouseOut(pDlg->hWnd);
        return 0;
    case WM_MOUSELEAVE: ::PostMessageW(pDlg->hWnd, WM_MOUSEMOVE, 0, kMouseLeft); return 0;
    }
    return 0;
}

void CSDlg::OnShowWindow(int /*bShow*/, unsigned long /*dwStatus*/) {
    if (!ctrlGroupsMeasured) {
        MeasureCtrlGroups();
        ctrlGroupsMeasured = 1;
    }
    // What fills the controls may show the window, which is the first show still.
    if (controlsUpdated || inUpdateControls) return;
    LifeMark mark(*this);
    inUpdateControls = 1;
    UpdateControls();
    if (mark.IsGone()) return;
    inUpdateControls = 0;
    controlsUpdated = 1;
}

__int64 CSDlg::InitDialog(unsigned __int64 qwParam, __int64 qlParam) {
    LifeMark mark(*this);
    HWND hwndNew = hWnd;
    __int64 qwResult = OnInitDialog(qwParam, qlParam);
    // It may have closed the dialog.
    if (!mark.IsGone() && hWnd == hwndNew && ::IsWindow(hwndNew)) PostInitDialog();
    return qwResult;
}

int CSDlg::HandleCompanyMsg(unsigned __int64 qwCode, __int64 qwData, LRESULT* plResult) {
    LifeMark mark(*this);
    __int64 qwResult = *plResult;
    int bHandled = OnMyCompanyMsg(qwCode, qwData, &qwResult);
    *plResult = qwResult;
    if (bHandled || mark.IsGone()) return bHandled;
    if (qwCode == kMsgFindDialog) {
        if (!activationTag || qwData != activationTag) return 0;
        *plResult = 1;
        return 1;
    }
    if (qwCode != kMsgHelpRequest) return 0;
    HelpRequest* pRequest = GetHelpRequest(qwData);
    if (!pRequest) return 0;
    pRequest->pszPage = GetHtmlPage(pRequest->nHelpId);
    if (!pRequest->pszPage && !mark.IsGone() && hParent) SendHelpRequest(hParent, pRequest);
    return 1;
}

LPCWSTR CSDlg::AskForHelpPage() {
    HelpRequest request{helpId ? helpId : dlgId, nullptr};
    HWND hwndTop = hParent ? hParent : hWnd;
    while (HWND hwnd = ::GetParent(hwndTop)) hwndTop = hwnd;
    static_cast<void>(helpRequests.Add(&request)); // without it dialogs of other threads refuse
    SendHelpRequest(hwndTop, &request);
    helpRequests.Remove(&request);
    return request.pszPage;
}

void CSDlg::OnHelp(HELPINFO* /*pInfo*/) {
    LifeMark mark(*this);
    LPCWSTR pszPage = GetHtmlPage(0);
    if (!pszPage && !mark.IsGone()) pszPage = AskForHelpPage();
    if (!pszPage || mark.IsGone()) return;
    // Says itself what went wrong, and messages run meanwhile.
    int bShown = ::CSHtmlHelp(hWnd, pszPage, 0, 0);
    if (!bShown && !mark.IsGone()) OnHtmlHelpError(pszPage);
}
