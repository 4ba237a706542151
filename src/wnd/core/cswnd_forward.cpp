// The members of CSWnd that only hand on to the platform or to the free functions.

#include "runtime/messages/res_str.h"
#include "runtime/text/str_format.h"
#include "wnd/core/cswnd.h"
#include "wnd/core/wnd_free.h"

namespace {
constexpr int kCchWndText = 1024; // what a formatted window text is cut to, with the terminator
constexpr unsigned kSmallIcon = 1, kBigIcon = 2; // bits of SetIcon
} // namespace

int CSWnd::Redraw(UINT uFlags) { return ::RedrawWindow(hWnd, nullptr, nullptr, uFlags); }

int CSWnd::Invalidate(const RECT* prc, int bErase) { return ::InvalidateRect(hWnd, prc, bErase); }

int CSWnd::InvalidateErase(const RECT* prc) { return ::InvalidateRect(hWnd, prc, TRUE); }

int CSWnd::InvalidateUpdate(const RECT* prc, int bErase) {
    ::InvalidateRect(hWnd, prc, bErase);
    return ::UpdateWindow(hWnd);
}

int CSWnd::v(const RECT* prc) { return ::ValidateRect(hWnd, prc); }

LRESULT CSWnd::SendMsg(UINT uMsg, WPARAM wParam, LPARAM lParam) {
    return ::SendMessageW(hWnd, uMsg, wParam, lParam);
}

int CSWnd::PostMsg(UINT uMsg, WPARAM wParam, LPARAM lParam) {
    return ::PostMessageW(hWnd, uMsg, wParam, lParam);
}

int CSWnd::PostCmd(unsigned short nId, HWND hwndCtl, unsigned short nCode) {
    return ::PostCommand(hWnd, nId, hwndCtl, nCode);
}

int CSWnd::ClickButton(unsigned short nId) { return ::PostMessageW(hWnd, WM_COMMAND, nId, 0); }

int CSWnd::HasFocus() { return ::GetFocus() == hWnd; }

int CSWnd::IsActive() { return ::GetActiveWindow() == hWnd; }

int CSWnd::IsForeground() { return ::GetForegroundWindow() == hWnd; }

HWND CSWnd::SetFocus() { return ::SetFocus(hWnd); }

int CSWnd::Enable(int bEnabled) { return ::EnableWindow(hWnd, bEnabled); }

HWND CSWnd::GetParent() { return ::GetParent(hWnd); }

int CSWnd::Show(int bVisible) { return ::ShowWindow(hWnd, bVisible ? SW_SHOW : SW_HIDE); }

int CSWnd::GetTextLength() { return ::GetWindowTextLengthW(hWnd); }

int CSWnd::GetText(wchar_t* psz, int cch) { return ::GetWindowTextW(hWnd, psz, cch); }

int CSWnd::SetText(LPCWSTR psz) { return ::SetWindowTextW(hWnd, psz); }

int CSWnd::SetTextV(LPCWSTR pszFormat, va_list args) {
    wchar_t sz[kCchWndText];
    FormatTextV(sz, kCchWndText, pszFormat, args);
    return ::SetWindowTextW(hWnd, sz);
}

int CSWnd::SetText(unsigned int nStringId, ...) {
    ResStr str(static_cast<int>(nStringId), nullptr, 0);
    va_list args;
    va_start(args, nStringId);
    int nResult = SetTextV(str, args);
    va_end(args);
    return nResult;
}

int CSWnd::SetTextFmt(LPCWSTR pszFormat, ...) {
    va_list args;
    va_start(args, pszFormat);
    int nResult = SetTextV(pszFormat, args);
    va_end(args);
    return nResult;
}

int CSWnd::SetTextFmt(HINSTANCE hinst, unsigned int nStringId, ...) {
    ResStr str(static_cast<int>(nStringId), hinst, 0);
    va_list args;
    va_start(args, nStringId);
    int nResult = SetTextV(str, args);
    va_end(args);
    return nResult;
}

DWORD CSWnd::GetStyle(int bExtended) { return ::GetWndStyle(hWnd, bExtended); }

DWORD CSWnd::SetStyle(DWORD dwStyle, int bExtended) {
    return ::SetWndStyle(hWnd, dwStyle, bExtended);
}

DWORD CSWnd::ModifyStyle(DWORD dwRemove, DWORD dwAdd, int bExtended) {
    return ::ModifyWndStyle(hWnd, dwRemove, dwAdd, bExtended);
}

DWORD CSWnd::SetStyleBits(DWORD dwBits, int bOn) {
    return ::ModifyWndStyle(hWnd, bOn ? 0 : dwBits, bOn ? dwBits : 0, 0);
}

HFONT CSWnd::GetFont() { return reinterpret_cast<HFONT>(::SendMessageW(hWnd, WM_GETFONT, 0, 0)); }

void CSWnd::SetIcon(HICON hicon, unsigned int nWhich) {
    LPARAM lParam = reinterpret_cast<LPARAM>(hicon);
    if (nWhich & kSmallIcon) ::SendMessageW(hWnd, WM_SETICON, ICON_SMALL, lParam);
    if (nWhich & kBigIcon) ::SendMessageW(hWnd, WM_SETICON, ICON_BIG, lParam);
}
