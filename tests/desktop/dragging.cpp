#include "desktop/dragging.h"

#include <windows.h>
#include <windowsx.h>
#include <commctrl.h>
#include <vector>

namespace {
HWND hwndOurView, hwndOurList;
WNDPROC pfnViewBelow, pfnListBelow;
DragSource dragSource;
bool bMadeUp; // the notification under way comes from a test

struct Carried {
    int nItem;
    POINT pt;
};

std::vector<Carried> SelectedItems() {
    std::vector<Carried> carried;
    for (int n = -1; (n = ListView_GetNextItem(hwndOurList, n, LVNI_SELECTED)) >= 0;) {
        Carried item{n, {}};
        ListView_GetItemPosition(hwndOurList, n, &item.pt);
        carried.push_back(item);
    }
    return carried;
}

/// Where the button was let go, by the message that said so: the mouse itself may be on its way
/// again.
POINT DropPointInList() {
    DWORD dwPos = ::GetMessagePos();
    POINT pt{GET_X_LPARAM(dwPos), GET_Y_LPARAM(dwPos)};
    ::ScreenToClient(hwndOurList, &pt);
    return pt;
}

void MoveBy(const std::vector<Carried>& carried, POINT ptFrom, POINT ptTo) {
    for (const Carried& item : carried) {
        ListView_SetItemPosition32(hwndOurList, item.nItem, item.pt.x + ptTo.x - ptFrom.x,
                                   item.pt.y + ptTo.y - ptFrom.y);
    }
}

/// The mouse's and the keyboard's messages end here while icons are carried, as in a drag that COM
/// runs. True if the button was let go, false if the drag was given up.
bool CarryUntilButtonUp(UINT uUpMsg) {
    ::SetCapture(hwndOurList);
    bool bDropped = false;
    MSG msg{};
    while (::GetCapture() == hwndOurList && ::GetMessageW(&msg, nullptr, 0, 0) > 0) {
        if (msg.message == uUpMsg) {
            bDropped = true;
            break;
        }
        if (msg.message == WM_KEYDOWN && msg.wParam == VK_ESCAPE) break;
        bool bMouse = msg.message >= WM_MOUSEFIRST && msg.message <= WM_MOUSELAST;
        bool bKey = msg.message >= WM_KEYFIRST && msg.message <= WM_KEYLAST;
        if (!bMouse && !bKey) ::DispatchMessageW(&msg);
    }
    if (msg.message == WM_QUIT) ::PostQuitMessage(static_cast<int>(msg.wParam));
    ::ReleaseCapture();
    return bDropped;
}

void Drag(POINT ptFrom, UINT uUpMsg) {
    std::vector<Carried> carried = SelectedItems();
    if (CarryUntilButtonUp(uUpMsg)) MoveBy(carried, ptFrom, DropPointInList());
}

LRESULT OnBeginDrag(HWND hwnd, WPARAM wParam, LPARAM lParam) {
    const NMLISTVIEW notify = *reinterpret_cast<NMLISTVIEW*>(lParam);
    if (notify.hdr.code == LVN_BEGINRDRAG) {
        Drag(notify.ptAction, WM_RBUTTONUP);
        return 0;
    }
    if (dragSource == DragSource::PlainView) {
        Drag(notify.ptAction, WM_LBUTTONUP);
        return 0;
    }
    std::vector<Carried> carried = SelectedItems();
    LRESULT nResult = ::CallWindowProcW(pfnViewBelow, hwnd, WM_NOTIFY, wParam, lParam);
    bool bGivenUp = ::GetAsyncKeyState(VK_ESCAPE) < 0;
    if (!bGivenUp) MoveBy(carried, notify.ptAction, DropPointInList());
    return nResult;
}

LRESULT CALLBACK ViewProc(HWND hwnd, UINT uMsg, WPARAM wParam, LPARAM lParam) {
    if (uMsg == WM_NOTIFY && lParam) {
        const NMHDR& hdr = *reinterpret_cast<NMHDR*>(lParam);
        if (bMadeUp) return 0;
        if (hdr.hwndFrom == hwndOurList &&
            (hdr.code == LVN_BEGINDRAG || hdr.code == LVN_BEGINRDRAG)) {
            return OnBeginDrag(hwnd, wParam, lParam);
        }
    }
    return ::CallWindowProcW(pfnViewBelow, hwnd, uMsg, wParam, lParam);
}

LRESULT CALLBACK ListProc(HWND hwnd, UINT uMsg, WPARAM wParam, LPARAM lParam) {
    return ::CallWindowProcW(pfnListBelow, hwnd, uMsg, wParam, lParam);
}

WNDPROC PutProcedure(HWND hwnd, WNDPROC pfn) {
    return reinterpret_cast<WNDPROC>(
        ::SetWindowLongPtrW(hwnd, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(pfn)));
}
} // namespace

void InstallDragging(HWND hwndView, HWND hwndList, DragSource source) {
    hwndOurView = hwndView;
    hwndOurList = hwndList;
    dragSource = source;
    pfnViewBelow = PutProcedure(hwndView, ViewProc);
    pfnListBelow = PutProcedure(hwndList, ListProc);
}

void SendMadeUpNotify(HWND hwndView, HWND hwndFrom, UINT nCode, int nItem) {
    // The larger of the two structures that these notifications carry; both begin alike.
    union {
        NMLISTVIEW list;
        NMLVDISPINFOW text;
    } notify{};
    notify.list.hdr = {hwndFrom, static_cast<UINT_PTR>(::GetDlgCtrlID(hwndFrom)), nCode};
    if (nCode == LVN_SETDISPINFOW) {
        notify.text.item.iItem = nItem;
    } else {
        notify.list.iItem = nItem;
    }
    bMadeUp = true;
    ::SendMessageW(hwndView, WM_NOTIFY, notify.list.hdr.idFrom, reinterpret_cast<LPARAM>(&notify));
    bMadeUp = false;
}

bool HasOwnProcedure(HWND hwnd) {
    WNDPROC pfn = reinterpret_cast<WNDPROC>(::GetWindowLongPtrW(hwnd, GWLP_WNDPROC));
    return pfn == (hwnd == hwndOurView ? ViewProc : ListProc);
}
