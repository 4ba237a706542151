#pragma once
#include "support/rect.h"
#include "wnd/dialog/csdlg.h"
#include "wnd/layout/layout_ids.h"

#include <windows.h>
#include <functional>
#include <string>
#include <vector>

inline RECT WindowRect(HWND hwnd) {
    RECT rc{};
    ::GetWindowRect(hwnd, &rc);
    return rc;
}
inline RECT ClientRect(HWND hwnd) {
    RECT rc{};
    ::GetClientRect(hwnd, &rc);
    return rc;
}
/// A child's rectangle in its parent's client pixels, by the platform alone.
inline RECT ChildRect(HWND hwndChild) {
    RECT rc = WindowRect(hwndChild);
    ::MapWindowPoints(nullptr, ::GetParent(hwndChild), reinterpret_cast<POINT*>(&rc), 2);
    return rc;
}
inline RECT ItemRect(HWND hwndDlg, int nId) { return ChildRect(::GetDlgItem(hwndDlg, nId)); }
inline void PlaceWindow(HWND hwnd, const RECT& rc) {
    ::SetWindowPos(hwnd, nullptr, rc.left, rc.top, rc.right - rc.left, rc.bottom - rc.top,
                   SWP_NOZORDER | SWP_NOACTIVATE);
}
inline void PlaceItem(HWND hwndDlg, int nId, const RECT& rc) {
    PlaceWindow(::GetDlgItem(hwndDlg, nId), rc);
}
inline int Width(const RECT& rc) { return rc.right - rc.left; }
inline int Height(const RECT& rc) { return rc.bottom - rc.top; }
/// Whether the window would be seen if its parents are.
inline bool IsShown(HWND hwnd) { return ::GetWindowLongW(hwnd, GWL_STYLE) & WS_VISIBLE; }
inline LPARAM PointParam(int x, int y) { return MAKELPARAM(x, y); }

/// A dialog that writes down what is asked of it. Handlers that are set run first.
class LayoutDlg : public CSDlg {
  public:
    LayoutDlg() : CSDlg(nullptr) {}
    ~LayoutDlg() override { Close(); }

    void Close() {
        if (hWnd && ::IsWindow(hWnd)) ::DestroyWindow(hWnd);
    }
    /// Modeless, and hidden unless its own initialisation shows it.
    bool Make(int nTemplate, HWND hwndOwner = nullptr) {
        return Modeless(nTemplate, nullptr, hwndOwner, 0) != nullptr;
    }
    /// Resizable both ways, and hidden for good.
    bool MakeSizing(unsigned long dwFlags = kDlgResizeWidth | kDlgResizeHeight,
                    MyWindowPlacement* pPlacement = nullptr) {
        EnableResizing(dwFlags | kDlgStartHidden, pPlacement);
        return Make(IDD_LAYOUT_SIZING);
    }
    /// A child window with that id, the last of the siblings.
    HWND AddItem(int nId, const RECT& rc, const wchar_t* pszClass = L"STATIC",
                 DWORD dwStyle = WS_VISIBLE, const wchar_t* pszText = L"") {
        HWND hwnd = ::CreateWindowExW(
            0, pszClass, pszText, WS_CHILD | dwStyle, rc.left, rc.top, Width(rc), Height(rc), hWnd,
            reinterpret_cast<HMENU>(static_cast<INT_PTR>(nId)), nullptr, nullptr);
        // At the end of the order, where a template puts its items one after the other.
        ::SetWindowPos(hwnd, HWND_BOTTOM, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE);
        return hwnd;
    }

    void OnResize(int dw, int dh) override {
        log.push_back("Resize " + std::to_string(dw) + " " + std::to_string(dh));
        ++nResizes;
        nSumDw += dw;
        nSumDh += dh;
        if (onResize) onResize(dw, dh);
    }
    void OnInitRect(RECT& rc) override {
        log.push_back("InitRect");
        if (onInitRect) onInitRect(rc);
    }
    void OnInitDone() override {
        log.push_back("InitDone");
        if (onInitDone) onInitDone();
        CSDlg::OnInitDone();
    }
    void OnWindowPosChanging(WINDOWPOS* pPos) override {
        if (onChanging) onChanging(pPos);
        CSDlg::OnWindowPosChanging(pPos);
    }
    void OnWindowPosChanged(WINDOWPOS* pPos) override {
        if (onChanged) onChanged(pPos);
        CSDlg::OnWindowPosChanged(pPos);
    }
    void EnsureDlgItemVisible(HWND hwndItem) override {
        ensured.push_back(::GetDlgCtrlID(hwndItem));
    }
    /// Asks the dialog about a position as the platform would.
    WINDOWPOS AskChanging(int cx, int cy, UINT uFlags = SWP_NOZORDER | SWP_NOACTIVATE) {
        WINDOWPOS pos{hWnd, nullptr, 0, 0, cx, cy, uFlags};
        CSDlg::OnWindowPosChanging(&pos);
        return pos;
    }
    void SetSize(int cx, int cy) {
        ::SetWindowPos(hWnd, nullptr, 0, 0, cx, cy, SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
    }
    void ForgetLog() {
        log.clear();
        nResizes = nSumDw = nSumDh = 0;
    }

    using CSDlg::ctrlGroups;
    using CSDlg::ctrlGroupsMeasured;
    using CSDlg::curHeight;
    using CSDlg::curWidth;
    using CSDlg::dragger;
    using CSDlg::flags;
    using CSDlg::hooks;
    using CSDlg::isChildDlg;
    using CSDlg::isInitialized;
    using CSDlg::minHeight;
    using CSDlg::minWidth;
    using CSDlg::msgHandler;
    using CSDlg::placement;
    using CSDlg::prevHeight;
    using CSDlg::prevWidth;
    using CSDlg::result;

    std::vector<std::string> log;
    std::vector<int> ensured; // ids for EnsureDlgItemVisible
    int nResizes = 0, nSumDw = 0, nSumDh = 0;
    std::function<void(int, int)> onResize;
    std::function<void(RECT&)> onInitRect;
    std::function<void()> onInitDone;
    std::function<void(WINDOWPOS*)> onChanging, onChanged;
};
