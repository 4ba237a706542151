#include "wnd/menu/csmenu.h"
#include "runtime/base/heap_array.h"
#include "runtime/base/ownership.h"
#include "runtime/text/str_find.h"
#include "runtime/text/str_format.h"
#include "wnd/draw/csicon.h"
#include "wnd/draw/rect_util.h"

#include <new>

namespace {
constexpr int kItemTextSize = 261;
constexpr unsigned kItemNotFound = 0xFFFFFFFF;
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
    auto* hicon = static_cast<HICON>(
        ::CopyImage(hShared, IMAGE_ICON, kShieldSize, kShieldSize, LR_COPYRETURNORG));
    ScopeExit destroyCopy([&] {
        if (hicon && hicon != hShared) ::DestroyIcon(hicon);
    });
    return CSIcon::IconToMenuBitmap(hicon);
}
} // namespace

MenuItemInfo::MenuItemInfo(unsigned int nMask) : MENUITEMINFOW{} {
    cbSize = sizeof(MENUITEMINFOW);
    fMask = nMask;
}

CSMenu::CSMenu(HMENU hmenuTaken, int bPopup)
    : hMenu(hmenuTaken), isPopup(bPopup), ownsMenu(hmenuTaken == nullptr) {}

CSMenu::~CSMenu() {
    if (ownsMenu) Destroy();
    // The menus of those that were appended here are gone by now. Destroying them again fails and
    // harms nothing, as the platform does not use a handle's value again soon.
    while (!subMenus.IsEmpty()) delete static_cast<CSMenu*>(subMenus.RemoveHead());
}

// Lifetime

int CSMenu::Create() {
    isPopup = 0;
    hMenu = ::CreateMenu();
    return hMenu != nullptr;
}

int CSMenu::CreatePopup() {
    isPopup = 1;
    hMenu = ::CreatePopupMenu();
    return hMenu != nullptr;
}

void CSMenu::Attach(HMENU hmenuTaken) {
    hMenu = hmenuTaken;
    isPopup = 0;
    ownsMenu = 0;
}

void CSMenu::Detach() {
    hMenu = nullptr;
    isPopup = 0;
    ownsMenu = 0;
}

void CSMenu::Destroy() {
    if (hMenu) ::DestroyMenu(hMenu);
    hMenu = nullptr;
}

CSMenu::operator HMENU() const { return this ? hMenu : nullptr; }

// Building

int CSMenu::AppendItem(unsigned int nId, LPCWSTR pszFormat, ...) {
    wchar_t szText[kItemTextSize];
    va_list args;
    va_start(args, pszFormat);
    FormatTextV(szText, kItemTextSize, pszFormat, args);
    va_end(args);
    return ::AppendMenuW(hMenu, MF_STRING, nId, szText);
}

int CSMenu::AppendSubMenu(HMENU hmenuSub, LPCWSTR pszFormat, ...) {
    // The result of formatting is nowhere to be seen, so it is not made: a text with a '%' and no
    // arguments would read what is not there.
    return ::AppendMenuW(hMenu, MF_POPUP, reinterpret_cast<UINT_PTR>(hmenuSub), pszFormat);
}

int CSMenu::AppendSeparator() { return ::AppendMenuW(hMenu, MF_SEPARATOR, 0, nullptr); }

CSMenu* CSMenu::MakeSubMenu() {
    CSMenu* pSub = CreateSubMenu();
    if (!pSub || subMenus.AddTail(pSub)) return pSub;
    delete pSub;
    return nullptr;
}

CSMenu* CSMenu::CreateSubMenu() { return new (std::nothrow) CSMenu; }

void CSMenu::DeleteAll() {
    while (GetCount() > 0) {
        if (!DeleteItemByPos(0)) return; // it would never get empty
    }
}

// Columns

int CSMenu::SetBreak(unsigned int nItem, int byPos, int bar) {
    // Writing the type writes the text too: what is not read with it would be lost.
    MenuItemInfo info(MIIM_TYPE);
    GetItemInfo(nItem, byPos, &info);
    HeapArray<wchar_t> text(info.cch + 1);
    if (!text.IsReady()) return 0;
    if (!(info.fType & (MFT_BITMAP | MFT_SEPARATOR | MFT_OWNERDRAW))) {
        // An empty text as well: written without any, the item would become a separator.
        info.dwTypeData = text.Get();
        ++info.cch;
        GetItemInfo(nItem, byPos, &info);
    }
    info.fType |= bar ? MFT_MENUBARBREAK : MFT_MENUBREAK;
    return SetItemInfo(nItem, byPos, &info);
}

void CSMenu::InsertBreaks(int every, int bar) {
    int nCount = GetCount();
    if (every < 2 || nCount <= every || nCount < 1) return;
    bool bVisited = false; // the item at this position has been pushed here by a separator
    for (int nPos = 0; nPos < nCount; ++nPos) {
        HMENU hmenuSub = bVisited ? nullptr : GetSubMenu(nPos);
        bVisited = false;
        if (hmenuSub) {
            CSMenu sub;
            sub.Attach(hmenuSub);
            sub.InsertBreaks(every, bar);
            sub.Detach();
        }
        if (!nPos || nPos % every) continue;
        if (!InsertSeparatorByPos(static_cast<unsigned>(nPos))) return;
        ++nCount;
        bVisited = true;
        SetBreakByPos(static_cast<unsigned>(nPos), bar);
    }
}

// Searching

unsigned int CSMenu::FindStrPos(LPCWSTR pszText) const {
    int nCount = GetCount();
    if (!pszText || nCount <= 0) return kItemNotFound;
    wchar_t szShort[kItemTextSize];
    for (int nPos = 0; nPos < nCount; ++nPos) {
        auto nItem = static_cast<unsigned>(nPos);
        int cch = GetStrLengthByPos(nItem) + 1;
        if (cch <= 1) continue;
        // Nearly all texts fit; a longer one gets a block for itself.
        HeapArray<wchar_t> block(cch > kItemTextSize ? static_cast<unsigned>(cch) : 0);
        if (cch > kItemTextSize && !block.IsReady()) return kItemNotFound;
        wchar_t* pszItem = block.IsReady() ? block.Get() : szShort;
        *pszItem = 0;
        GetStrByPos(nItem, pszItem, cch);
        if (StrIsSame(pszItem, pszText, 1)) return nItem;
    }
    return kItemNotFound;
}

unsigned int CSMenu::FindStrID(LPCWSTR pszText) const {
    unsigned nPos = FindStrPos(pszText);
    return nPos == kItemNotFound ? kItemNotFound : GetItemID(static_cast<int>(nPos));
}

// Showing

int CSMenu::Track(HWND hwndOwner, unsigned int nCtrlId) {
    POINT pt = CursorPos();
    HWND hwndCtrl = nCtrlId ? ::GetDlgItem(hwndOwner, static_cast<int>(nCtrlId)) : nullptr;
    RECT rc;
    if (hwndCtrl && ::GetWindowRect(hwndCtrl, &rc)) {
        // Outside: the menu was opened by keyboard, and the cursor can be anywhere.
        if (!RectHasPoint(rc, pt)) pt = {(rc.left + rc.right) / 2, (rc.top + rc.bottom) / 2};
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

// Bitmaps of items

HBITMAP CSMenu::GenerateBitmap(HICON hicon) { return CSIcon::IconToMenuBitmap(hicon); }

int CSMenu::SetShieldIconByID(unsigned int nId) {
    if (!hbmShield) hbmShield = MakeShieldBitmap();
    return hbmShield ? SetItemBitmapsByID(nId, hbmShield, hbmShield) : 0;
}

long CSMenu::Create32BitHBITMAP(HDC hdc, const SIZE* psize, void** ppBits, HBITMAP* phResult) {
    return CSIcon::Create32BitHBITMAP(hdc, psize, ppBits, phResult);
}

void CSMenu::InitBitmapInfo(BITMAPINFO* pInfo, unsigned long cbInfo, long cx, long cy,
                            unsigned short nBitCount) {
    CSIcon::InitBitmapInfo(pInfo, cbInfo, cx, cy, nBitCount);
}
