#pragma once
#include "support/memory_picture.h"
#include "support/window_thread.h"

#include <gtest/gtest.h>
#include <windows.h>
#include <algorithm>
#include <atomic>
#include <functional>
#include <string>
#include <vector>

/// A function that shows a dialog and returns when that is closed, running on a thread of its own.
/// The dialog is cancelled with the object unless it is gone already.
class ShownDialog {
  public:
    /// fnFind gives the dialog once it is to be seen, and null until then.
    ShownDialog(std::function<void()> fnShow, const std::function<HWND()>& fnFind) {
        thread.Post([this, fnShow] {
            fnShow();
            bDone = true;
        });
        WaitFor(fnFind);
    }
    ~ShownDialog() {
        WaitUntil([this] {
            if (!bDone && ::IsWindowEnabled(hwnd)) ::PostMessageW(hwnd, WM_COMMAND, IDCANCEL, 0);
            return bDone.load();
        });
    }
    ShownDialog(const ShownDialog&) = delete;
    ShownDialog& operator=(const ShownDialog&) = delete;

    operator HWND() const { return hwnd; }
    HWND Item(int nId) const { return ::GetDlgItem(hwnd, nId); }
    bool IsOpen() const { return !bDone; }
    bool HasClosed() const {
        return WaitUntil([this] { return bDone.load(); });
    }
    HWND Focus() const {
        GUITHREADINFO info{};
        info.cbSize = sizeof(info);
        return ::GetGUIThreadInfo(thread.GetId(), &info) ? info.hwndFocus : nullptr;
    }
    /// As if the key came from the queue, so that the dialog's loop sees it.
    void PressKey(WPARAM wKey) const {
        ::PostMessageW(Focus(), WM_KEYDOWN, wKey, 1);
        ::PostMessageW(Focus(), WM_KEYUP, wKey, LPARAM{0xC0000001});
    }
    void Click(int nId) const { ::SendMessageW(Item(nId), BM_CLICK, 0, 0); }

  protected:
    /// From now on it is the dialog that fnFind gives.
    void WaitFor(const std::function<HWND()>& fnFind) {
        WaitUntil([&] { return bDone || (hwnd = fnFind()) != nullptr; });
        EXPECT_NE(nullptr, hwnd);
        ::SendMessageW(hwnd, WM_NULL, 0, 0); // answered when its loop runs
    }

  private:
    HWND hwnd = nullptr;
    std::atomic<bool> bDone{false};
    WindowThread thread;
};

inline std::wstring WindowText(HWND hwnd) {
    wchar_t sz[512] = L"";
    ::GetWindowTextW(hwnd, sz, 512);
    return sz;
}

/// Empty for null.
inline SIZE SizeOfIcon(HICON hicon) {
    ICONINFO info{};
    if (!::GetIconInfo(hicon, &info)) return {};
    BITMAP bitmap{};
    ::GetObjectW(info.hbmMask, sizeof(bitmap), &bitmap);
    if (info.hbmColor) ::DeleteObject(info.hbmColor);
    ::DeleteObject(info.hbmMask);
    return {bitmap.bmWidth, bitmap.bmHeight};
}
inline HICON IconOfWindow(HWND hwnd, WPARAM nWhich) {
    return reinterpret_cast<HICON>(::SendMessageW(hwnd, WM_GETICON, nWhich, 0));
}

inline bool IsOwnerDrawn(HWND hwndButton) {
    return (::GetWindowLongPtrW(hwndButton, GWL_STYLE) & BS_TYPEMASK) == BS_OWNERDRAW;
}

constexpr COLORREF kUndrawn = RGB(1, 2, 3);

/// An owner-drawn button in its idle state, drawn into a picture by its dialog.
inline void DrawButtonInto(HWND hwndDlg, int nId, const MemoryPicture& picture, SIZE size) {
    DRAWITEMSTRUCT item{};
    item.CtlType = ODT_BUTTON;
    item.CtlID = static_cast<UINT>(nId);
    item.itemAction = ODA_DRAWENTIRE;
    item.hwndItem = ::GetDlgItem(hwndDlg, nId);
    item.hDC = picture;
    item.rcItem = {0, 0, size.cx, size.cy};
    ::SendMessageW(hwndDlg, WM_DRAWITEM, static_cast<WPARAM>(nId), reinterpret_cast<LPARAM>(&item));
}

/// The smallest rectangle around what was drawn; empty if nothing was.
inline RECT DrawnPart(const MemoryPicture& picture, SIZE size) {
    RECT rc{size.cx, size.cy, 0, 0};
    for (int y = 0; y < size.cy; ++y)
        for (int x = 0; x < size.cx; ++x) {
            if (picture.Get(x, y) == kUndrawn) continue;
            rc = {std::min<LONG>(rc.left, x), std::min<LONG>(rc.top, y),
                  std::max<LONG>(rc.right, x + 1), std::max<LONG>(rc.bottom, y + 1)};
        }
    return rc.right ? rc : RECT{};
}

/// What stands in a dialog: ids and rectangles in its client area.
struct DialogItem {
    HWND hwnd;
    int nId;
    RECT rc;
};

inline std::vector<DialogItem> ItemsOf(HWND hwndDlg) {
    std::vector<DialogItem> items;
    for (HWND h = ::GetWindow(hwndDlg, GW_CHILD); h; h = ::GetWindow(h, GW_HWNDNEXT)) {
        RECT rc{};
        ::GetWindowRect(h, &rc);
        ::MapWindowPoints(nullptr, hwndDlg, reinterpret_cast<POINT*>(&rc), 2);
        items.push_back({h, ::GetDlgCtrlID(h), rc});
    }
    return items;
}

/// All items lie within the dialog, and none on another.
inline void ExpectNoOverlap(HWND hwndDlg) {
    RECT rcClient{};
    ::GetClientRect(hwndDlg, &rcClient);
    auto items = ItemsOf(hwndDlg);
    for (size_t n = 0; n < items.size(); ++n) {
        RECT rc{};
        ::UnionRect(&rc, &rcClient, &items[n].rc);
        EXPECT_TRUE(::EqualRect(&rc, &rcClient)) << items[n].nId << " is cut";
        for (size_t i = 0; i < n; ++i)
            EXPECT_FALSE(::IntersectRect(&rc, &items[n].rc, &items[i].rc))
                << items[n].nId << " lies on " << items[i].nId;
    }
}

/// The plain text of a static or a button has room in it.
inline void ExpectTextFits(const DialogItem& item) {
    auto hfont = reinterpret_cast<HFONT>(::SendMessageW(item.hwnd, WM_GETFONT, 0, 0));
    HDC hdc = ::GetDC(nullptr);
    HGDIOBJ hBefore = ::SelectObject(hdc, hfont);
    RECT rc{};
    ::DrawTextW(hdc, WindowText(item.hwnd).c_str(), -1, &rc, DT_CALCRECT | DT_SINGLELINE);
    ::SelectObject(hdc, hBefore);
    ::ReleaseDC(nullptr, hdc);
    EXPECT_LE(rc.right, item.rc.right - item.rc.left) << item.nId;
    EXPECT_LE(rc.bottom, item.rc.bottom - item.rc.top) << item.nId;
}

/// The client area has the size that the template gives.
inline void ExpectSizeInUnits(HWND hwndDlg, int cx, int cy) {
    RECT rcUnits{0, 0, cx, cy}, rcClient{};
    ::MapDialogRect(hwndDlg, &rcUnits);
    ::GetClientRect(hwndDlg, &rcClient);
    EXPECT_EQ(rcUnits.right, rcClient.right);
    EXPECT_EQ(rcUnits.bottom, rcClient.bottom);
}
