#pragma once
#include "runtime/base/export.h"
#include "wnd/control/csctrl.h"
#include <windows.h>

/// A combo box whose items carry a value of 64 bits. Items go by their index from 0; results that
/// are not told are those of the message that is sent.
class TESSALY_API CSComboBase : public CSCtrl {
  public:
    int GetCount(); ///< The number of items.
    /// Adds an item, by its place in a sorted list, else at the end. Its index.
    int AddStr(LPCWSTR pszText);
    /// Inserts an item there (-1: at the end). Its index.
    int InsertStr(unsigned int nIndex, LPCWSTR pszText);
    /// Characters without the terminator; -1 without such an item.
    int GetStrLen(unsigned int nIndex);
    /// Copies the item's text: psz holds GetStrLen characters and a terminator.
    int GetStr(unsigned int nIndex, wchar_t* psz);
    unsigned __int64 GetItemData(unsigned int nIndex); ///< The item's value.
    /// Gives the item a value. 1 unless refused.
    int SetItemData(unsigned int nIndex, unsigned __int64 qwData);
    /// The next item with exactly that text, in any case, behind the index or from the start (-1).
    /// Its index.
    int FindStrExact(LPCWSTR pszText, unsigned int nStartAfter);
    /// Deletes the item. 1 if the list is empty then, 0 if it is not.
    // QUIRK: whether the list is empty now. Test: CSComboBase.DelStrTellsWhetherTheListIsEmpty
    int DelStr(unsigned int nIndex);
    int DelAll();                       ///< Empties the list. 1.
    int SetExtendedUI(int bOn);         ///< Lets the arrow keys open the list. 1 unless refused.
    int GetCurSel();                    ///< The selected item's index; -1 for none.
    int SetCurSel(unsigned int nIndex); ///< Selects an item; -1 clears the selection.
    /// AddStr, and the value. 1; 0 if the list has no room, and no value is set then.
    int AddItem(LPCWSTR pszText, unsigned __int64 qwData);
    /// InsertStr, and the value. The result is that of AddItem.
    int InsertItem(unsigned int nIndex, LPCWSTR pszText, unsigned __int64 qwData);
    /// The item's value, and its text where psz is not null; 0 if that can't be read.
    unsigned __int64 GetItem(unsigned int nIndex, wchar_t* psz);
    /// The first item with that value; 0xFFFFFFFF for none.
    unsigned int FindItem(unsigned __int64 qwData);
    /// Selects it; an unknown value clears the selection.
    int SelectItem(unsigned __int64 qwData);
    unsigned __int64 GetSelectedItem(); ///< The selected item's value.
    /// Selects the item with exactly that text (in any case); negative if there is none.
    int SelectStr(LPCWSTR pszText);
    /// Whether there is an item with a place above it, or below.
    int CanMove(unsigned int nIndex, int bUp);
    /// Moves the item by one place and selects it.
    void MoveItem(unsigned int nIndex, int bUp);
};

/// A drop-down list without an edit field.
class TESSALY_API CSComboList : public CSComboBase {};

/// An editable combo box. What the user typed is not overwritten while the list opens and closes.
class TESSALY_API CSCombo : public CSComboBase {
  public:
    ~CSCombo() override;

    void OnInit() override;
    int OnCommand(unsigned short nCode, __int64* pqwResult) override;
    /// Every message of the edit field; non-zero swallows it, and *pqwResult is the result.
    virtual int OnEditCtrlMsg(unsigned int uMsg, unsigned __int64 wParam, __int64 lParam,
                              __int64* pqwResult);

    /// The most characters that a user can type; 0: no limit.
    void SetMaxTextLimit(unsigned int cch);
    int ShowDropDown(int bShow); ///< Opens or closes the list. 1.
    /// 1 if the focus is on the combo box or its edit field.
    int IsFocused();

    /// The code of the WM_COMMAND that tells the dialog of a text set by program: the platform has
    /// no notification for that.
    static constexpr unsigned short kTextSet = 0x63;

  protected:
    /// The edit field inside.
    class TESSALY_API CSCBEdit : public CSWnd {
      public:
        LRESULT OnWndMessage(UINT uMsg, WPARAM wParam, LPARAM lParam) override;
        void Tie(CSCombo* pOwner, HWND hwndEdit);
        CSCombo* owner = nullptr; // set by CSCombo::OnInit
    };

    CSCBEdit editCtrl;
    int blockEditText = 0; // the next WM_SETTEXT to the edit field is swallowed
    int keepEditText = 0;  // the list closes without a choice: the typed text stays
};
