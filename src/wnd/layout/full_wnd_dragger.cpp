#include "wnd/core/cswnd.h"
#include "wnd/dialog/csdlg.h"
#include "wnd/dialog/dlg_hooks.h"

#include <new>

namespace {
void SetSharedCursor(HCURSOR& hcur, LPCWSTR pszName) {
    if (!hcur) hcur = ::LoadCursorW(nullptr, pszName);
    ::SetCursor(hcur);
}
} // namespace

int FullWndDragger::OnWndMessage(CSWnd* pWnd, UINT uMsg, WPARAM wParam, LPARAM lParam,
                                 LRESULT* plResult) {
    switch (uMsg) {
    case WM_NCHITTEST: {
        inHitTest = 1;
        overHotSpot = 0;
        HWND hwnd = *pWnd;
        LRESULT lHit = pWnd->DoWndMessage(uMsg, wParam, lParam, this);
        // From here on this object may be gone: a handler may have switched the drag off.
        *plResult = lHit == HTCLIENT && !::IsZoomed(hwnd) ? HTCAPTION : lHit;
        return 1;
    }
    case WM_SETCURSOR: {
        inHitTest = 0;
        if (::IsZoomed(*pWnd)) return 0;
        WORD nHit = LOWORD(lParam);
        if (nHit == HTCAPTION && pWnd->IsDlg() &&
            !static_cast<CSDlg*>(pWnd)->IsFlag(kDlgKeepBodyCursor)) {
            SetSharedCursor(arrowCursor, IDC_ARROW);
        } else if (nHit == HTCLIENT && overHotSpot) {
            SetSharedCursor(handCursor, IDC_HAND);
        } else {
            return 0;
        }
        *plResult = 1;
        return 1;
    }
    case WM_INITMENUPOPUP:
        // QUIRK: the hand, whatever the mouse is over.
        // Test: Dragger.ShowsTheHandWhenAMenuOpens
        SetSharedCursor(handCursor, IDC_HAND);
        return 0;
    case WM_UNINITMENUPOPUP: overHotSpot = 0; return 0;
    }
    return 0;
}

int FullWndDragger::DoHitTest(CSWnd*, int, int) { return overHotSpot; }

void CSDlg::EnableFullDrag(int bOn) {
    if (bOn && !dragger) {
        dragger = new (std::nothrow) FullWndDragger;
        if (dragger) AddWndHook(dragger);
    } else if (!bOn && dragger) {
        RemoveWndHook(dragger);
        delete dragger;
        dragger = nullptr;
    }
}
