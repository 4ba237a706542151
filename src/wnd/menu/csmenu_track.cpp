// Showing a menu, and the bitmaps of its items.

#include "wnd/menu/csmenu.h"
#include "runtime/base/scope_exit.h"
#include "wnd/draw/csicon.h"
#include "wnd/draw/icon_bitmap.h"

namespace {
constexpr UINT kTrackFlags = TPM_RIGHTBUTTON | TPM_RETURNCMD;
constexpr UINT kRaiseFlags = SWP_NOSIZE | SWP_NOMOVE | SWP_NOREDRAW;
constexpr WORD kShieldIcon = 32518; // IDI_SHIELD (winuser.h), from Windows Vista on
constexpr int kShieldSize = 16;

constinit HBITMAP hbmShield = nullptr; // kept for the life of the process

POINT CursorPos() {
    POINT pt{};
    ::GetCursorPos(&pt);
    return pt;
}

HBITMAP MakeShieldBitmap() {
    HANDLE hShared = ::LoadImageW(nullptr, MAKEINTRESOURCEW(kShieldIcon), IMAGE_ICON, 0, 0,
                                  LR_SHARED); // not to be destroyed
    if (!hShared) return nullptr;
    auto hicon = static_cast<HICON>(
        ::CopyImage(hShared, IMAGE_ICON, kShieldSize, kShieldSize, LR_COPYRETURNORG));
    ScopeExit destroyCopy([&] {
        if (hicon && hicon != hShared) ::DestroyIcon(hicon);
    });
    return CSIcon::IconToMenuBitmap(hicon);
}
} // namespace

int CSMenu::Track(HWND hwndOwner, unsigned int nCtrlId) {
    POINT pt = CursorPos();
    HWND hwndCtrl = nCtrlId ? ::GetDlgItem(hwndOwner, static_cast<int>(nCtrlId)) : nullptr;
    RECT rc;
    if (hwndCtrl && ::GetWindowRect(hwndCtrl, &rc)) {
        int bInside = pt.x >= rc.left && pt.x < rc.right && pt.y >= rc.top && pt.y < rc.bottom;
        // The menu was opened by keyboard: the cursor can be anywhere.
        if (!bInside) pt = {(rc.left + rc.right) / 2, (rc.top + rc.bottom) / 2};
    }
    return Track(hwndOwner, pt);
}

int CSMenu::Track(HWND hwndOwner, POINT ptWhere) {
    return ::TrackPopupMenu(hMenu, kTrackFlags, ptWhere.x, ptWhere.y, 0, hwndOwner, nullptr);
}

int CSMenu::Track2(HWND hwndOwner, int forTrayIcon) {
    HWND hwndForeground = ::GetForegroundWindow();
    ::SetWindowPos(hwndOwner, HWND_TOP, 0, 0, 0, 0, kRaiseFlags);
    // Without this a click elsewhere does not close the menu.
    ::SetForegroundWindow(hwndOwner);
    POINT pt = CursorPos();
    if (forTrayIcon) AdjustPointForTrayIcon(pt);
    int nChosen = Track(hwndOwner, pt);
    ::SetWindowPos(hwndOwner, HWND_BOTTOM, 0, 0, 0, 0, kRaiseFlags);
    if (hwndForeground) ::SetForegroundWindow(hwndForeground);
    return nChosen;
}

void CSMenu::AdjustPointForTrayIcon(POINT& pt) {
    int cx = ::GetSystemMetrics(SM_CXSMICON), cy = ::GetSystemMetrics(SM_CYSMICON);
    pt.x += pt.x < ::GetSystemMetrics(SM_CXSCREEN) / 2 ? cx : -cx;
    pt.y += pt.y < ::GetSystemMetrics(SM_CYSCREEN) / 2 ? cy : -cy;
}

HBITMAP CSMenu::GenerateBitmap(HICON hicon) { return MakeIconBitmap(hicon); }

int CSMenu::SetShieldIconByID(unsigned int nId) {
    if (!hbmShield) hbmShield = MakeShieldBitmap();
    return hbmShield ? SetItemBitmapsByID(nId, hbmShield, hbmShield) : 0;
}

long CSMenu::Create32BitHBITMAP(HDC hdc, const SIZE* psize, void** ppBits, HBITMAP* phResult) {
    return MakeBitmap32(hdc, psize, ppBits, phResult);
}

void CSMenu::InitBitmapInfo(BITMAPINFO* pInfo, unsigned long cbInfo, long cx, long cy,
                            unsigned short nBitCount) {
    FillBitmapInfo(pInfo, cbInfo, cx, cy, nBitCount);
}
