// The second chain of hooks of a dialog, as the first one is that of its window object.

#include "wnd/dialog/csdlg.h"
#include "wnd/dialog/life_mark.h"

namespace {
// What waits for dlgMsgDepth to become 0.
constexpr int kRemoveAllDlgHooks = 1, kRemoveEmptyDlgHooks = 2;
} // namespace

void CSDlg::AddDlgHook(WMHook* pHook) { dlgHooks.AddHead(pHook); }

void CSDlg::RemoveDlgHook(WMHook* pHook) {
    POS pos = pHook ? dlgHooks.Find(pHook) : nullptr;
    if (!pos) return;
    if (dlgMsgDepth == 0) {
        dlgHooks.RemoveAt(pos);
        return;
    }
    // A walk may stand on this very node: it is emptied now and unlinked when none is under way.
    dlgHooks.SetAt(pos, nullptr);
    dlgHooksRemovalPending |= kRemoveEmptyDlgHooks;
}

void CSDlg::RemoveAllDlgHooks() {
    if (dlgMsgDepth != 0) {
        dlgHooksRemovalPending |= kRemoveAllDlgHooks;
        return;
    }
    while (!dlgHooks.IsEmpty()) dlgHooks.RemoveHead();
}

void CSDlg::SettleDlgHooks() {
    int nPending = dlgHooksRemovalPending;
    dlgHooksRemovalPending = 0;
    if (nPending & kRemoveAllDlgHooks) {
        RemoveAllDlgHooks();
        return;
    }
    for (POS pos = dlgHooks.GetHeadPos(); pos;) {
        if (dlgHooks.GetAt(pos)) {
            dlgHooks.GetNext(pos);
        } else {
            dlgHooks.RemoveAt(pos);
        }
    }
}

bool CSDlg::AskDlgHooks(unsigned int uMsg, unsigned __int64 qwParam, __int64 qlParam,
                        WMHook* pAfter, __int64* pqwResult, const LifeMark& mark) {
    for (POS pos = dlgHooks.GetHeadPos(); pos;) {
        POS posNow = pos;
        dlgHooks.GetNext(pos); // before the hook is asked, which may take itself off
        WMHook* pHook = static_cast<WMHook*>(dlgHooks.GetAt(posNow));
        if (!pHook) continue;
        if (pAfter) {
            if (pHook == pAfter) pAfter = nullptr;
            continue;
        }
        LRESULT lResult = *pqwResult;
        bool bHandled = pHook->OnDlgMessage(this, uMsg, qwParam, qlParam, &lResult) != 0;
        *pqwResult = lResult;
        if (bHandled || mark.IsGone()) return bHandled;
    }
    return false;
}

__int64 CSDlg::DoDlgMessage(unsigned int uMsg, unsigned __int64 wParam, __int64 lParam,
                            WMHook* pAfter) {
    LifeMark mark(*this);
    HWND hwndOfMessage = hWnd; // handlers may tie the object to another one
    __int64 qwResult = 0;
    HoldLife(); // a message may also be handed in here without the window procedure below it
    ++dlgMsgDepth;
    bool bHandled = AskDlgHooks(uMsg, wParam, lParam, pAfter, &qwResult, mark);
    if (!mark.IsGone()) {
        if (--dlgMsgDepth == 0 && dlgHooksRemovalPending) SettleDlgHooks();
    }
    if (mark.pOuter) mark.pOuter->bHandled = bHandled; // ModalProc's
    ::SetWindowLongPtrW(hwndOfMessage, DWLP_MSGRESULT, qwResult);
    if (!mark.IsGone()) ReleaseLife(true);
    return qwResult;
}

__int64 CSDlg::OnDlgMessage(unsigned int uMsg, unsigned __int64 wParam, __int64 lParam) {
    return DoDlgMessage(uMsg, wParam, lParam, nullptr);
}

void WMHook::AddToDlg(CSDlg* pDlg) { pDlg->AddDlgHook(this); }

void WMHook::RemoveFromDlg(CSDlg* pDlg) { pDlg->RemoveDlgHook(this); }
