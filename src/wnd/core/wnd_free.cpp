#include "wnd/core/wnd_free.h"
#include "runtime/base/ownership.h"

#include <cwchar>

namespace {
constexpr DWORD kKeepSize = SWP_NOSIZE, kKeepPlace = SWP_NOMOVE, kKeepOrder = SWP_NOZORDER;
constexpr DWORD kQuiet = SWP_NOACTIVATE;

int StyleIndex(int bExtended) { return bExtended ? GWL_EXSTYLE : GWL_STYLE; }
} // namespace

DWORD GetWndStyle(HWND hwnd, int bExtended) {
    return static_cast<DWORD>(::GetWindowLongPtrW(hwnd, StyleIndex(bExtended)));
}

DWORD SetWndStyle(HWND hwnd, DWORD dwStyle, int bExtended) {
    // Not sign-extended: the platform looks at the low 32 bits only, but returns what was there.
    LONG_PTR lStyle = static_cast<LONG_PTR>(dwStyle);
    return static_cast<DWORD>(::SetWindowLongPtrW(hwnd, StyleIndex(bExtended), lStyle));
}

DWORD ModifyWndStyle(HWND hwnd, DWORD dwRemove, DWORD dwAdd, int bExtended) {
    DWORD dwStyle = GetWndStyle(hwnd, bExtended);
    SetWndStyle(hwnd, (dwStyle & ~dwRemove) | dwAdd, bExtended);
    return dwStyle;
}

void ModifyStyle(HWND hwnd, DWORD dwRemoveStyle, DWORD dwAddStyle, DWORD dwRemoveExStyle,
                 DWORD dwAddExStyle) {
    if (dwRemoveStyle || dwAddStyle) ModifyWndStyle(hwnd, dwRemoveStyle, dwAddStyle, 0);
    if (dwRemoveExStyle || dwAddExStyle) ModifyWndStyle(hwnd, dwRemoveExStyle, dwAddExStyle, 1);
}

int SetWndZOrder(HWND hwnd, HWND hwndAfter, DWORD dwFlags) {
    dwFlags = (dwFlags & ~kKeepOrder) | kKeepSize | kKeepPlace | kQuiet;
    return ::SetWindowPos(hwnd, hwndAfter, 0, 0, 0, 0, dwFlags);
}

int SetWndSize(HWND hwnd, int cx, int cy, DWORD dwFlags) {
    dwFlags = (dwFlags & ~kKeepSize) | kKeepPlace | kKeepOrder | kQuiet;
    return ::SetWindowPos(hwnd, nullptr, 0, 0, cx, cy, dwFlags);
}

int SetWndOrigin(HWND hwnd, int x, int y, DWORD dwFlags) {
    dwFlags = (dwFlags & ~kKeepPlace) | kKeepSize | kKeepOrder | kQuiet;
    return ::SetWindowPos(hwnd, nullptr, x, y, 0, 0, dwFlags);
}

int SetWndPos(HWND hwnd, int x, int y, int cx, int cy, DWORD dwFlags) {
    dwFlags = (dwFlags & ~(kKeepSize | kKeepPlace)) | kKeepOrder | kQuiet;
    return ::SetWindowPos(hwnd, nullptr, x, y, cx, cy, dwFlags);
}

int SetWndPos(HWND hwnd, const RECT* prc, DWORD dwFlags) {
    if (!prc) return 0;
    return SetWndPos(hwnd, prc->left, prc->top, prc->right - prc->left, prc->bottom - prc->top,
                     dwFlags);
}

int SetWndShow(HWND hwnd, int bShow, DWORD dwFlags) {
    dwFlags |=
        (bShow ? SWP_SHOWWINDOW : SWP_HIDEWINDOW) | kKeepSize | kKeepPlace | kKeepOrder | kQuiet;
    return ::SetWindowPos(hwnd, nullptr, 0, 0, 0, 0, dwFlags);
}

int OffsetWnd(HWND hwnd, int dx, int dy) {
    RECT rc;
    if (!::GetWindowRect(hwnd, &rc)) return 0;
    POINT pt{rc.left + dx, rc.top + dy};
    // The rectangle is of the screen; a window with a parent is placed in that one's client area.
    // Not GetParent, which gives the owner of a popup: that one stays on the screen.
    HWND hwndParent = ::GetAncestor(hwnd, GA_PARENT);
    if (hwndParent) ::MapWindowPoints(HWND_DESKTOP, hwndParent, &pt, 1);
    return ::SetWindowPos(hwnd, nullptr, pt.x, pt.y, 0, 0, kKeepSize | kKeepOrder | kQuiet);
}

int ResizeWnd(HWND hwnd, int dcx, int dcy) {
    RECT rc;
    if (!::GetWindowRect(hwnd, &rc)) return 0;
    return ::SetWindowPos(hwnd, nullptr, 0, 0, rc.right - rc.left + dcx, rc.bottom - rc.top + dcy,
                          kKeepPlace | kKeepOrder | kQuiet);
}

int SimulateButton(HWND hwndDlg, unsigned short nId) {
    return ::PostMessageW(hwndDlg, WM_COMMAND, nId,
                          reinterpret_cast<LPARAM>(::GetDlgItem(hwndDlg, nId)));
}

int PostCommand(HWND hwnd, unsigned short nId, HWND hwndCtl, unsigned short nCode) {
    return ::PostMessageW(hwnd, WM_COMMAND, MAKEWPARAM(nId, nCode),
                          reinterpret_cast<LPARAM>(hwndCtl));
}

LRESULT SendCommand(HWND hwnd, unsigned short nId, HWND hwndCtl, unsigned short nCode) {
    return ::SendMessageW(hwnd, WM_COMMAND, MAKEWPARAM(nId, nCode),
                          reinterpret_cast<LPARAM>(hwndCtl));
}

int PostMsg(HWND hwnd, UINT uMsg, WPARAM wParam, LPARAM lParam) {
    return ::PostMessageW(hwnd, uMsg, wParam, lParam);
}

LRESULT SendMsg(HWND hwnd, UINT uMsg, WPARAM wParam, LPARAM lParam) {
    return ::SendMessageW(hwnd, uMsg, wParam, lParam);
}

int GetTextSizeForWindow(HWND hwnd, LPCWSTR pszText, SIZE* psize) {
    if (!pszText || !psize) return 0;
    HDC hdcWnd = ::GetDC(hwnd);
    if (!hdcWnd) return 0;
    ScopeExit releaseWnd([&] { ::ReleaseDC(hwnd, hdcWnd); });
    HDC hdc = ::CreateCompatibleDC(hdcWnd);
    if (!hdc) return 0;
    ScopeExit releaseMemory([&] { ::DeleteDC(hdc); });
    HGDIOBJ hfont = reinterpret_cast<HGDIOBJ>(::SendMessageW(hwnd, WM_GETFONT, 0, 0));
    HGDIOBJ hOld = hfont ? ::SelectObject(hdc, hfont) : nullptr;
    ScopeExit restore([&] {
        if (hOld) ::SelectObject(hdc, hOld); // a selected font can't be deleted by its owner
    });
    return ::GetTextExtentPoint32W(hdc, pszText, static_cast<int>(std::wcslen(pszText)), psize);
}

int GetWndTextSize(HWND hwnd, LPCWSTR pszText, SIZE* psize) {
    if (!pszText || !psize) return 0;
    HGDIOBJ hfont = reinterpret_cast<HGDIOBJ>(::SendMessageW(hwnd, WM_GETFONT, 0, 0));
    if (!hfont) return 0;
    HDC hdc = ::GetDC(hwnd);
    if (!hdc) return 0;
    ScopeExit release([&] { ::ReleaseDC(hwnd, hdc); });
    HGDIOBJ hOld = ::SelectObject(hdc, hfont);
    ScopeExit restore([&] {
        if (hOld) ::SelectObject(hdc, hOld); // the context may be the window's own, and stay
    });
    return ::GetTextExtentPoint32W(hdc, pszText, static_cast<int>(std::wcslen(pszText)), psize);
}

int GetWndTextWidth(HWND hwnd, LPCWSTR pszText) {
    SIZE size;
    return GetWndTextSize(hwnd, pszText, &size) ? size.cx : 0;
}

HWND GetPopupParent(HWND hwnd) {
    while (hwnd && !(GetWndStyle(hwnd, 0) & WS_POPUP)) {
        // The owner of an overlapped window is no parent, and not given here.
        HWND hwndParent = ::GetParent(hwnd);
        if (!hwndParent) break;
        hwnd = hwndParent;
    }
    return hwnd;
}
