#pragma once
#include "runtime/base/cs_list.h"
#include "runtime/base/export.h"
#include <windows.h>

/// A MENUITEMINFOW of zeros with its size and mask (MIIM_ flags) filled in.
struct TESSALY_API MenuItemInfo : MENUITEMINFOW {
    explicit MenuItemInfo(unsigned int nMask); ///< With that mask.
};
static_assert(sizeof(MenuItemInfo) == 80);

/// A menu handle with every operation in two spellings, by position (from 0) and by command id. An
/// id is looked for in all sub-menus too. Results are the platform's, 0 or null for failure, and
/// nothing is shown to the user. Without a handle every operation fails as its platform call does.
///
/// The object belongs to the thread that uses the menu. A menu that was handed in is not destroyed
/// with the object; one that it created is. The platform destroys an appended sub-menu with its
/// parent: whoever holds that in an object of its own calls Detach there.
class TESSALY_API CSMenu {
  public:
    /// With no menu the object is an empty popup that will own what it creates.
    explicit CSMenu(HMENU hmenuTaken = nullptr, int bPopup = 1);
    CSMenu(const CSMenu&) = delete; // owns the menu and the sub-menus
    CSMenu& operator=(const CSMenu&) = delete;
    /// Destroys the menu if it is owned, then the sub-menu objects, first made first.
    virtual ~CSMenu();
    /// Deletes all items, and with them the menus of those that have one.
    virtual void DeleteAll();
    /// The object that MakeSubMenu adds; null when out of memory. A derived class makes its own
    /// kind.
    virtual CSMenu* CreateSubMenu();

    /// Makes a menu bar. Overwrites the handle without destroying what was held. Whether there is
    /// one now.
    int Create();
    int CreatePopup(); ///< Makes a popup, otherwise as Create.
    /// Takes a handle that stays somebody else's.
    void Attach(HMENU hmenuTaken);
    /// Forgets the handle without destroying it.
    void Detach();
    /// Destroys the menu, whoever owns it.
    void Destroy();
    int IsReady() { return IsValid(); }              ///< Whether there is a menu.
    int IsValid() const { return hMenu != nullptr; } ///< Whether there is a menu.
    /// Defined on a null object, too: null.
    operator HMENU() const;

    // GetMenuItemInfoW and SetMenuItemInfoW on the caller's record, whose size and mask are set;
    // the forms without ByPos and ByID go by position if byPos is non-zero.
    int GetItemInfoByPos(unsigned int nPos, MENUITEMINFOW* pInfo) const;
    int GetItemInfoByID(unsigned int nId, MENUITEMINFOW* pInfo) const;
    int GetItemInfo(unsigned int nItem, int byPos, MENUITEMINFOW* pInfo) const;
    int SetItemInfoByPos(unsigned int nPos, const MENUITEMINFOW* pInfo);
    int SetItemInfoByID(unsigned int nId, const MENUITEMINFOW* pInfo);
    int SetItemInfo(unsigned int nItem, int byPos, const MENUITEMINFOW* pInfo);
    /// Non-zero if there is such an item.
    int ItemExistsByID(unsigned int nId) const;

    /// The item's data; 0 also on failure.
    unsigned __int64 GetItemDataByPos(unsigned int nPos) const;
    unsigned __int64 GetItemDataByID(unsigned int nId) const;
    unsigned __int64 GetItemData(unsigned int nItem, int byPos) const;
    int SetItemDataByPos(unsigned int nPos, unsigned __int64 qwData); ///< Gives the item data.
    int SetItemDataByID(unsigned int nId, unsigned __int64 qwData);
    int SetItemData(unsigned int nItem, int byPos, unsigned __int64 qwData);

    /// Characters without the terminator; 0 for an item without text.
    int GetStrLengthByPos(unsigned int nPos) const;
    int GetStrLengthByID(unsigned int nId) const;
    /// Copies the text, cut to cch characters with the terminator; returns the length copied.
    int GetStrByPos(unsigned int nPos, LPWSTR pszBuffer, int cch) const;
    int GetStrByID(unsigned int nId, LPWSTR pszBuffer, int cch) const;
    /// Replaces the text and nothing else of the item.
    int SetStrByPos(unsigned int nPos, LPCWSTR pszText);
    int SetStrByID(unsigned int nId, LPCWSTR pszText);
    /// Replaces the text and nothing else of the item.
    int SetStr(unsigned int nItem, int byPos, LPCWSTR pszText);

    int DeleteItemByPos(unsigned int nPos); ///< Takes the item away and destroys its sub-menu.
    int DeleteItemByID(unsigned int nId);
    int RemoveItemByPos(unsigned int nPos); ///< Takes the item away; its sub-menu lives on.
    int RemoveItemByID(unsigned int nId);

    /// Makes the item the menu's default one, which is shown in bold.
    int SetDefaultByPos(unsigned int nPos);
    int SetDefaultByID(unsigned int nId);
    /// GMDI_ flags; 0xFFFFFFFF if there is no default item.
    unsigned int GetDefaultPos(unsigned int nFlags) const;
    unsigned int GetDefaultID(unsigned int nFlags) const;

    /// MF_CHECKED or 0, as it was before; 0xFFFFFFFF if there is no such item.
    unsigned long CheckItemByPos(unsigned int nPos, int check);
    unsigned long CheckItemByID(unsigned int nId, int check);
    /// Marks one item of a range, both ends included.
    int CheckRadioItemByPos(unsigned int nFirst, unsigned int nLast, unsigned int nCheck);
    int CheckRadioItemByID(unsigned int nFirst, unsigned int nLast, unsigned int nCheck);
    /// Enabled or greyed. The flags as they were before; -1 if there is no such item.
    int EnableItemByPos(unsigned int nPos, int enable);
    int EnableItemByID(unsigned int nId, int enable);

    // Insertion before that item, with MF_ flags. Positions behind the last one, and ids that are
    // not there, add the item at the end.

    /// Inserts an item with a text.
    int InsertItemByPos(unsigned int nWhere, unsigned int nId, LPCWSTR pszText,
                        unsigned int nFlags);
    int InsertItemByID(unsigned int nWhere, unsigned int nId, LPCWSTR pszText, unsigned int nFlags);
    /// Inserts an item with a sub-menu.
    int InsertSubmenuByPos(unsigned int nWhere, HMENU hmenuSub, LPCWSTR pszText,
                           unsigned int nFlags);
    int InsertSubmenuByID(unsigned int nWhere, HMENU hmenuSub, LPCWSTR pszText,
                          unsigned int nFlags);
    int InsertSeparatorByPos(unsigned int nWhere); ///< Inserts a separator.
    int InsertSeparatorByID(unsigned int nWhere);

    // The look of items

    /// The bitmaps stay the caller's and must live as long as the item.
    int SetItemBitmapsByPos(unsigned int nPos, HBITMAP hbmUnchecked, HBITMAP hbmChecked);
    int SetItemBitmapsByID(unsigned int nId, HBITMAP hbmUnchecked, HBITMAP hbmChecked);
    /// Marks the item with the system's shield, which is made on first use and kept for the
    /// process. 0, to be tried again, if there is none.
    int SetShieldIconByID(unsigned int nId);

    /// A new column begins at the item, with a bar before it if bar is non-zero.
    int SetBreakByPos(unsigned int nPos, int bar);
    int SetBreakByID(unsigned int nId, int bar);
    /// A new column begins at the item, with a bar before it if bar is non-zero.
    int SetBreak(unsigned int nItem, int byPos, int bar);
    /// Splits the menu and all its sub-menus into columns by putting a separator with a break at
    /// each multiple of `every`: the first column has `every` items, each further one the separator
    /// and one item fewer. A menu that fits into one column is left alone with all below it. Does
    /// nothing for `every` below 2, with which a column would have no room for an item.
    void InsertBreaks(int every, int bar);

    // The menu itself

    int GetCount() const; ///< The number of items; -1 without a menu.
    /// The item's id; 0xFFFFFFFF for a sub-menu and for none.
    unsigned int GetItemID(int nPos) const;
    HMENU GetSubMenu(int nPos) const;     ///< The item's sub-menu; null for none.
    int SetHelpId(unsigned long nHelpId); ///< The number by which the menu's help is found.
    unsigned long GetHelpId() const;      ///< That number; 0 for none.

    // Building at the end

    /// Adds an item at the end. pszFormat is always a format (FormatText; the text is cut to 260
    /// characters): texts from elsewhere go through "%s".
    int AppendItem(unsigned int nId, LPCWSTR pszFormat, ...);
    /// Adds an item with a sub-menu at the end.
    // QUIRK: the text is shown as it stands, whatever it holds and whatever arguments come along.
    // Test: CSMenuBuilding.AppendSubMenuShowsItsFormatAsItStands
    int AppendSubMenu(HMENU hmenuSub, LPCWSTR pszFormat, ...);
    int AppendSeparator(); ///< Adds a separator at the end.
    /// Adds an object of CreateSubMenu's, which stays this one's; it has no handle yet. Null when
    /// out of memory.
    CSMenu* MakeSubMenu();

    // Finding and showing

    /// The first item with that text, without regard to case. Items without a text are passed over.
    /// 0xFFFFFFFF if there is none.
    unsigned int FindStrPos(LPCWSTR pszText) const;
    /// The id of that item, otherwise as FindStrPos.
    unsigned int FindStrID(LPCWSTR pszText) const;

    /// Shows the menu and returns the chosen id, 0 for none. At the cursor, or, if the owner has a
    /// control of that id (0: none) and the cursor is not over it, at the control's centre.
    int Track(HWND hwndOwner, unsigned int nCtrlId);
    /// The same at a point of the screen.
    int Track(HWND hwndOwner, POINT ptWhere);
    /// As Track at the cursor, for an owner that is hidden: it is brought to the front before and
    /// put to the back after, and the window that was in front is put there again. With forTrayIcon
    /// non-zero the place is moved off the taskbar.
    int Track2(HWND hwndOwner, int forTrayIcon);

    /// A bitmap for a menu item, as CSIcon::IconToMenuBitmap.
    [[nodiscard]] static HBITMAP GenerateBitmap(HICON hicon);
    /// CSIcon::Create32BitHBITMAP.
    static long Create32BitHBITMAP(HDC hdc, const SIZE* psize, void** ppBits, HBITMAP* phResult);
    /// CSIcon::InitBitmapInfo.
    static void InitBitmapInfo(BITMAPINFO* pInfo, unsigned long cbInfo, long cx, long cy,
                               unsigned short nBitCount);

  protected:
    /// Moves the point one small icon's size away from the nearest edges of the screen.
    void AdjustPointForTrayIcon(POINT& pt);

    HMENU hMenu = nullptr;
    int isPopup;     // how the menu was made; nothing depends on it
    int ownsMenu;    // the destructor destroys hMenu
    CSList subMenus; // of CSMenu, owned
};
