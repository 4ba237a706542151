#include "wnd/menu/csmenu.h"

// The operations of CSMenu on one item, by position and by command id. They are here apart from the
// menu's life, search and display (csmenu.cpp); each is one call of the platform.

int CSMenu::GetItemInfo(unsigned int nItem, int byPos, MENUITEMINFOW* pInfo) const {
    return ::GetMenuItemInfoW(hMenu, nItem, byPos, pInfo);
}

int CSMenu::GetItemInfoByPos(unsigned int nPos, MENUITEMINFOW* pInfo) const {
    return GetItemInfo(nPos, 1, pInfo);
}

int CSMenu::GetItemInfoByID(unsigned int nId, MENUITEMINFOW* pInfo) const {
    return GetItemInfo(nId, 0, pInfo);
}

int CSMenu::SetItemInfo(unsigned int nItem, int byPos, const MENUITEMINFOW* pInfo) {
    return ::SetMenuItemInfoW(hMenu, nItem, byPos, pInfo);
}

int CSMenu::SetItemInfoByPos(unsigned int nPos, const MENUITEMINFOW* pInfo) {
    return SetItemInfo(nPos, 1, pInfo);
}

int CSMenu::SetItemInfoByID(unsigned int nId, const MENUITEMINFOW* pInfo) {
    return SetItemInfo(nId, 0, pInfo);
}

int CSMenu::ItemExistsByID(unsigned int nId) const {
    MenuItemInfo info(0);
    return GetItemInfoByID(nId, &info);
}

// Data

unsigned __int64 CSMenu::GetItemData(unsigned int nItem, int byPos) const {
    MenuItemInfo info(MIIM_DATA);
    return GetItemInfo(nItem, byPos, &info) ? info.dwItemData : 0;
}

unsigned __int64 CSMenu::GetItemDataByPos(unsigned int nPos) const { return GetItemData(nPos, 1); }

unsigned __int64 CSMenu::GetItemDataByID(unsigned int nId) const { return GetItemData(nId, 0); }

int CSMenu::SetItemData(unsigned int nItem, int byPos, unsigned __int64 qwData) {
    MenuItemInfo info(MIIM_DATA);
    info.dwItemData = qwData;
    return SetItemInfo(nItem, byPos, &info);
}

int CSMenu::SetItemDataByPos(unsigned int nPos, unsigned __int64 qwData) {
    return SetItemData(nPos, 1, qwData);
}

int CSMenu::SetItemDataByID(unsigned int nId, unsigned __int64 qwData) {
    return SetItemData(nId, 0, qwData);
}

// Text

int CSMenu::GetStrLengthByPos(unsigned int nPos) const {
    return ::GetMenuStringW(hMenu, nPos, nullptr, 0, MF_BYPOSITION);
}

int CSMenu::GetStrLengthByID(unsigned int nId) const {
    return ::GetMenuStringW(hMenu, nId, nullptr, 0, MF_BYCOMMAND);
}

int CSMenu::GetStrByPos(unsigned int nPos, LPWSTR pszBuffer, int cch) const {
    return ::GetMenuStringW(hMenu, nPos, pszBuffer, cch, MF_BYPOSITION);
}

int CSMenu::GetStrByID(unsigned int nId, LPWSTR pszBuffer, int cch) const {
    return ::GetMenuStringW(hMenu, nId, pszBuffer, cch, MF_BYCOMMAND);
}

int CSMenu::SetStr(unsigned int nItem, int byPos, LPCWSTR pszText) {
    MenuItemInfo info(MIIM_STRING);
    info.dwTypeData = const_cast<LPWSTR>(pszText); // it is only read
    return SetItemInfo(nItem, byPos, &info);
}

int CSMenu::SetStrByPos(unsigned int nPos, LPCWSTR pszText) { return SetStr(nPos, 1, pszText); }

int CSMenu::SetStrByID(unsigned int nId, LPCWSTR pszText) { return SetStr(nId, 0, pszText); }

// Removal

int CSMenu::DeleteItemByPos(unsigned int nPos) { return ::DeleteMenu(hMenu, nPos, MF_BYPOSITION); }

int CSMenu::DeleteItemByID(unsigned int nId) { return ::DeleteMenu(hMenu, nId, MF_BYCOMMAND); }

int CSMenu::RemoveItemByPos(unsigned int nPos) { return ::RemoveMenu(hMenu, nPos, MF_BYPOSITION); }

int CSMenu::RemoveItemByID(unsigned int nId) { return ::RemoveMenu(hMenu, nId, MF_BYCOMMAND); }

// State

int CSMenu::SetDefaultByPos(unsigned int nPos) { return ::SetMenuDefaultItem(hMenu, nPos, 1); }

int CSMenu::SetDefaultByID(unsigned int nId) { return ::SetMenuDefaultItem(hMenu, nId, 0); }

unsigned int CSMenu::GetDefaultPos(unsigned int nFlags) const {
    return ::GetMenuDefaultItem(hMenu, 1, nFlags);
}

unsigned int CSMenu::GetDefaultID(unsigned int nFlags) const {
    return ::GetMenuDefaultItem(hMenu, 0, nFlags);
}

unsigned long CSMenu::CheckItemByPos(unsigned int nPos, int check) {
    return ::CheckMenuItem(hMenu, nPos, MF_BYPOSITION | (check ? MF_CHECKED : MF_UNCHECKED));
}

unsigned long CSMenu::CheckItemByID(unsigned int nId, int check) {
    return ::CheckMenuItem(hMenu, nId, MF_BYCOMMAND | (check ? MF_CHECKED : MF_UNCHECKED));
}

int CSMenu::CheckRadioItemByPos(unsigned int nFirst, unsigned int nLast, unsigned int nCheck) {
    return ::CheckMenuRadioItem(hMenu, nFirst, nLast, nCheck, MF_BYPOSITION);
}

int CSMenu::CheckRadioItemByID(unsigned int nFirst, unsigned int nLast, unsigned int nCheck) {
    return ::CheckMenuRadioItem(hMenu, nFirst, nLast, nCheck, MF_BYCOMMAND);
}

int CSMenu::EnableItemByPos(unsigned int nPos, int enable) {
    return ::EnableMenuItem(hMenu, nPos, MF_BYPOSITION | (enable ? MF_ENABLED : MF_GRAYED));
}

int CSMenu::EnableItemByID(unsigned int nId, int enable) {
    return ::EnableMenuItem(hMenu, nId, MF_BYCOMMAND | (enable ? MF_ENABLED : MF_GRAYED));
}

// Insertion

int CSMenu::InsertItemByPos(unsigned int nWhere, unsigned int nId, LPCWSTR pszText,
                            unsigned int nFlags) {
    return ::InsertMenuW(hMenu, nWhere, nFlags | MF_BYPOSITION, nId, pszText);
}

int CSMenu::InsertItemByID(unsigned int nWhere, unsigned int nId, LPCWSTR pszText,
                           unsigned int nFlags) {
    return ::InsertMenuW(hMenu, nWhere, nFlags | MF_BYCOMMAND, nId, pszText);
}

int CSMenu::InsertSubmenuByPos(unsigned int nWhere, HMENU hmenuSub, LPCWSTR pszText,
                               unsigned int nFlags) {
    return ::InsertMenuW(hMenu, nWhere, nFlags | MF_BYPOSITION | MF_POPUP,
                         reinterpret_cast<UINT_PTR>(hmenuSub), pszText);
}

int CSMenu::InsertSubmenuByID(unsigned int nWhere, HMENU hmenuSub, LPCWSTR pszText,
                              unsigned int nFlags) {
    return ::InsertMenuW(hMenu, nWhere, nFlags | MF_BYCOMMAND | MF_POPUP,
                         reinterpret_cast<UINT_PTR>(hmenuSub), pszText);
}

int CSMenu::InsertSeparatorByPos(unsigned int nWhere) {
    return ::InsertMenuW(hMenu, nWhere, MF_BYPOSITION | MF_SEPARATOR, 0, nullptr);
}

int CSMenu::InsertSeparatorByID(unsigned int nWhere) {
    return ::InsertMenuW(hMenu, nWhere, MF_BYCOMMAND | MF_SEPARATOR, 0, nullptr);
}

// Look

int CSMenu::SetItemBitmapsByPos(unsigned int nPos, HBITMAP hbmUnchecked, HBITMAP hbmChecked) {
    return ::SetMenuItemBitmaps(hMenu, nPos, MF_BYPOSITION, hbmUnchecked, hbmChecked);
}

int CSMenu::SetItemBitmapsByID(unsigned int nId, HBITMAP hbmUnchecked, HBITMAP hbmChecked) {
    return ::SetMenuItemBitmaps(hMenu, nId, MF_BYCOMMAND, hbmUnchecked, hbmChecked);
}

int CSMenu::SetBreakByPos(unsigned int nPos, int bar) { return SetBreak(nPos, 1, bar); }

int CSMenu::SetBreakByID(unsigned int nId, int bar) { return SetBreak(nId, 0, bar); }

// The menu as a whole

int CSMenu::GetCount() const { return ::GetMenuItemCount(hMenu); }

unsigned int CSMenu::GetItemID(int nPos) const { return ::GetMenuItemID(hMenu, nPos); }

HMENU CSMenu::GetSubMenu(int nPos) const { return ::GetSubMenu(hMenu, nPos); }

int CSMenu::SetHelpId(unsigned long nHelpId) { return ::SetMenuContextHelpId(hMenu, nHelpId); }

unsigned long CSMenu::GetHelpId() const { return ::GetMenuContextHelpId(hMenu); }
