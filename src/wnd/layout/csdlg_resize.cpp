// The size of a dialog while it is on the screen: its smallest one, the corner and the edges by
// which it is pulled.

#include "wnd/dialog/csdlg.h"
#include "wnd/dialog/dlg_hooks.h"
#include "wnd/draw/csdc.h"
#include "wnd/layout/coordinates.h"

namespace {
constexpr int kCornerReach = 16;   // of the hit test, along the two edges together
constexpr int kGripSize = 8;       // of the square that the dots lie in
constexpr int kGripEraseSize = 12; // of the square that a new size leaves behind
constexpr COLORREF kGripDark = 0xA3B4B8;
constexpr COLORREF kGripLight = RGB(255, 255, 255);

/// The square of that size in the bottom right of the client area.
RECT GetGripRect(HWND hwnd, int nSize) {
    RECT rc{};
    ::GetClientRect(hwnd, &rc);
    return {rc.right - nSize, rc.bottom - nSize, rc.right, rc.bottom};
}

/// The hit code of an edge or a corner of the client area, as thick as a sizing frame; lHit for
/// all other points.
LRESULT HitTestEdges(const RECT& rc, POINT pt, LRESULT lHit) {
    if (!::PtInRect(&rc, pt)) return lHit; // the frame and the caption have codes of their own
    const FrameThickness& frame = GetFrameThickness();
    bool bTop = pt.y < rc.top + frame.cy, bBottom = pt.y >= rc.bottom - frame.cy;
    if (pt.x < rc.left + frame.cx) return bTop ? HTTOPLEFT : bBottom ? HTBOTTOMLEFT : HTLEFT;
    if (pt.x >= rc.right - frame.cx) return bTop ? HTTOPRIGHT : bBottom ? HTBOTTOMRIGHT : HTRIGHT;
    return bTop ? HTTOP : bBottom ? HTBOTTOM : lHit;
}

LRESULT HitTestResizing(CSDlg* pDlg, POINT pt, LRESULT lHit) {
    RECT rc{};
    ::ScreenToClient(*pDlg, &pt);
    ::GetClientRect(*pDlg, &rc);
    if (pDlg->IsPtInResizingCorner(pt.x, pt.y, rc)) lHit = HTBOTTOMRIGHT;
    return pDlg->IsFlag(kDlgResizeEdges) ? HitTestEdges(rc, pt, lHit) : lHit;
}
} // namespace

// The messages of the window

int CSDlgMsgHandler::OnWndMessage(CSWnd* pWnd, UINT uMsg, WPARAM wParam, LPARAM lParam,
                                  LRESULT* plResult) {
    switch (uMsg) {
    case WM_PAINT:
    case WM_ERASEBKGND:
    case WM_SETCURSOR:
    case WM_NCHITTEST: break;
    default: return 0; // nearly all: they are not to cost more than this
    }
    if (!pWnd->IsDlg()) return 0;
    CSDlg* pDlg = static_cast<CSDlg*>(pWnd);
    HWND hwnd = *pDlg;
    if (!pDlg->IsFlag(kDlgResizeBoth) || ::IsZoomed(hwnd)) return 0;
    // Behind each DoWndMessage the dialog may be gone with its window.
    switch (uMsg) {
    case WM_PAINT:
        if (pDlg->IsFlag(kDlgNoCorner)) return 0;
        *plResult = pDlg->DoWndMessage(uMsg, wParam, lParam, this);
        if (::IsWindow(hwnd)) pDlg->DrawResizingCorner(ClientDC(hwnd));
        return 1;
    case WM_ERASEBKGND:
        if (pDlg->IsFlag(kDlgNoCorner)) return 0;
        *plResult = pDlg->DoWndMessage(uMsg, wParam, lParam, this);
        if (::IsWindow(hwnd)) pDlg->DrawResizingCorner(reinterpret_cast<HDC>(wParam));
        return 1;
    case WM_SETCURSOR:
        if (LOWORD(lParam) != HTBOTTOMRIGHT) return 0;
        pDlg->SetResizingCursor();
        *plResult = 1;
        return 1;
    case WM_NCHITTEST: {
        // Words with a sign: a monitor may lie to the left of the first one.
        POINT pt{static_cast<short>(LOWORD(lParam)), static_cast<short>(HIWORD(lParam))};
        *plResult = pDlg->DoWndMessage(uMsg, wParam, lParam, this);
        if (::IsWindow(hwnd)) *plResult = HitTestResizing(pDlg, pt, *plResult);
        return 1;
    }
    }
    return 0;
}

// The size

void CSDlg::OnWindowPosChanging(WINDOWPOS* pPos) {
    if (!pPos || ::IsIconic(hWnd) || (pPos->flags & SWP_NOSIZE)) return;
    if (IsFlag(kDlgResizeBoth)) {
        if (pPos->cx < minWidth || !IsFlag(kDlgResizeWidth)) pPos->cx = minWidth;
        if (pPos->cy < minHeight || !IsFlag(kDlgResizeHeight)) pPos->cy = minHeight;
        if (pPos->cx == curWidth && pPos->cy == curHeight) return;
        RECT rcGrip = GetGripRect(hWnd, kGripEraseSize);
        ::InvalidateRect(hWnd, &rcGrip, TRUE);
    } else if (IsFlag(kDlgFixedWidth | kDlgFixedHeight) && pPos->cx && pPos->cy) {
        if (!minWidth && !minHeight) {
            // Current as well, so that a page finds that this dialog has not been resized.
            curWidth = minWidth = prevWidth = pPos->cx;
            curHeight = minHeight = prevHeight = pPos->cy;
            return;
        }
        if (IsFlag(kDlgFixedWidth)) pPos->cx = minWidth;
        if (IsFlag(kDlgFixedHeight)) pPos->cy = minHeight;
    }
}

void CSDlg::OnWindowPosChanged(WINDOWPOS* pPos) {
    if (!pPos || !isInitialized) return;
    HWND hwnd = hWnd;
    if (IsFlag(kDlgResizeBoth) && !::IsIconic(hwnd) &&
        (pPos->cx != curWidth || pPos->cy != curHeight)) {
        prevWidth = curWidth;
        prevHeight = curHeight;
        curWidth = pPos->cx;
        curHeight = pPos->cy;
        Resize();
        if (!::IsWindow(hwnd)) return; // OnResize may have destroyed it, and the object
    }
    StoreResizingInfo(); // also when only the place has changed
}

void CSDlg::Resize() {
    int dw = GetDistance(prevWidth, curWidth), dh = GetDistance(prevHeight, curHeight);
    if (IsFlag(kDlgResizeBoth) && (dw || dh)) OnResize(dw, dh);
}

SIZE CSDlg::GetResizeData() {
    return {GetDistance(minWidth, curWidth), GetDistance(minHeight, curHeight)};
}

// The corner

int CSDlg::IsPtInResizingCorner(int x, int y, RECT& rcClient) {
    long long nFromCorner = static_cast<long long>(rcClient.right) + rcClient.bottom - x - y;
    return nFromCorner < kCornerReach;
}

void CSDlg::DrawResizingCorner(HDC hdc) {
    RECT rcGrip = GetGripRect(hWnd, kGripSize);
    ::InvalidateRect(hWnd, &rcGrip, FALSE);
    DrawResizingItem(hdc, rcGrip.right - 4, rcGrip.bottom - 4);
    DrawResizingItem(hdc, rcGrip.right - 8, rcGrip.bottom - 4);
    DrawResizingItem(hdc, rcGrip.right - 4, rcGrip.bottom - 8);
    ::ValidateRect(hWnd, &rcGrip);
}

void CSDlg::DrawResizingItem(HDC hdc, int x, int y) {
    ::SetPixel(hdc, x, y, kGripDark);
    ::SetPixel(hdc, x + 1, y, kGripDark);
    ::SetPixel(hdc, x, y + 1, kGripDark);
    ::SetPixel(hdc, x + 1, y + 1, kGripDark);
    ::SetPixel(hdc, x + 2, y + 1, kGripLight);
    ::SetPixel(hdc, x + 1, y + 2, kGripLight);
    ::SetPixel(hdc, x + 2, y + 2, kGripLight);
}

void CSDlg::SetResizingCursor() {
    LPCWSTR pszCursor = nullptr;
    switch (flags & kDlgResizeBoth) {
    case kDlgResizeBoth: pszCursor = IDC_SIZENWSE; break;
    case kDlgResizeWidth: pszCursor = IDC_SIZEWE; break;
    case kDlgResizeHeight: pszCursor = IDC_SIZENS; break;
    default: return;
    }
    ::SetCursor(::LoadCursorW(nullptr, pszCursor));
}
