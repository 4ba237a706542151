#include "wnd/control/cscombo.h"
#include "wnd/core/wnd_free.h"

namespace {
constexpr unsigned int kNoItem = 0xFFFFFFFF;
constexpr int kEditFieldId = 1001; // the platform's, of the edit field in a combo box

/// An index as the platform takes it: kNoItem is its -1.
WPARAM ToIndex(unsigned int nIndex) { return static_cast<WPARAM>(static_cast<int>(nIndex)); }

LPARAM ToParam(LPCWSTR psz) { return reinterpret_cast<LPARAM>(psz); }

bool IsError(LRESULT lResult) { return lResult == CB_ERR || lResult == CB_ERRSPACE; }
} // namespace

// Items

int CSComboBase::GetCount() { return static_cast<int>(SendMsg(CB_GETCOUNT, 0, 0)); }

int CSComboBase::AddStr(LPCWSTR pszText) {
    return static_cast<int>(SendMsg(CB_ADDSTRING, 0, ToParam(pszText)));
}

int CSComboBase::InsertStr(unsigned int nIndex, LPCWSTR pszText) {
    return static_cast<int>(SendMsg(CB_INSERTSTRING, ToIndex(nIndex), ToParam(pszText)));
}

int CSComboBase::GetStrLen(unsigned int nIndex) {
    return static_cast<int>(SendMsg(CB_GETLBTEXTLEN, ToIndex(nIndex), 0));
}

int CSComboBase::GetStr(unsigned int nIndex, wchar_t* psz) {
    return static_cast<int>(SendMsg(CB_GETLBTEXT, ToIndex(nIndex), ToParam(psz)));
}

unsigned __int64 CSComboBase::GetItemData(unsigned int nIndex) {
    return static_cast<unsigned __int64>(SendMsg(CB_GETITEMDATA, ToIndex(nIndex), 0));
}

int CSComboBase::SetItemData(unsigned int nIndex, unsigned __int64 qwData) {
    return SendMsg(CB_SETITEMDATA, ToIndex(nIndex), static_cast<LPARAM>(qwData)) != CB_ERR;
}

int CSComboBase::FindStrExact(LPCWSTR pszText, unsigned int nStartAfter) {
    return static_cast<int>(SendMsg(CB_FINDSTRINGEXACT, ToIndex(nStartAfter), ToParam(pszText)));
}

int CSComboBase::DelStr(unsigned int nIndex) {
    return SendMsg(CB_DELETESTRING, ToIndex(nIndex), 0) == 0;
}

int CSComboBase::DelAll() { return SendMsg(CB_RESETCONTENT, 0, 0) == 0; }

int CSComboBase::SetExtendedUI(int bOn) {
    return SendMsg(CB_SETEXTENDEDUI, static_cast<WPARAM>(bOn), 0) == 0;
}

int CSComboBase::GetCurSel() { return static_cast<int>(SendMsg(CB_GETCURSEL, 0, 0)); }

int CSComboBase::SetCurSel(unsigned int nIndex) {
    return static_cast<int>(SendMsg(CB_SETCURSEL, ToIndex(nIndex), 0));
}

// Items with their values

int CSComboBase::AddItem(LPCWSTR pszText, unsigned __int64 qwData) {
    int nIndex = AddStr(pszText);
    if (IsError(nIndex)) return 0;
    SetItemData(static_cast<unsigned int>(nIndex), qwData);
    return 1;
}

int CSComboBase::InsertItem(unsigned int nIndex, LPCWSTR pszText, unsigned __int64 qwData) {
    int nInserted = InsertStr(nIndex, pszText);
    if (IsError(nInserted)) return 0;
    SetItemData(static_cast<unsigned int>(nInserted), qwData);
    return 1;
}

unsigned __int64 CSComboBase::GetItem(unsigned int nIndex, wchar_t* psz) {
    if (psz) {
        *psz = 0;
        if (IsError(GetStr(nIndex, psz))) return 0;
    }
    return GetItemData(nIndex);
}

unsigned int CSComboBase::FindItem(unsigned __int64 qwData) {
    int nCount = GetCount();
    for (int i = 0; i < nCount; ++i) {
        auto nIndex = static_cast<unsigned int>(i);
        if (GetItemData(nIndex) == qwData) return nIndex;
    }
    return kNoItem;
}

int CSComboBase::SelectItem(unsigned __int64 qwData) { return SetCurSel(FindItem(qwData)); }

unsigned __int64 CSComboBase::GetSelectedItem() {
    return GetItemData(static_cast<unsigned int>(GetCurSel()));
}

int CSComboBase::SelectStr(LPCWSTR pszText) {
    int nIndex = FindStrExact(pszText, kNoItem);
    return nIndex < 0 ? nIndex : SetCurSel(static_cast<unsigned int>(nIndex));
}

int CSComboBase::CanMove(unsigned int nIndex, int bUp) {
    int nCount = GetCount();
    if (nCount <= 0 || nIndex >= static_cast<unsigned int>(nCount)) return 0;
    return bUp ? nIndex != 0 : nIndex + 1 < static_cast<unsigned int>(nCount);
}

void CSComboBase::MoveItem(unsigned int nIndex, int bUp) {
    if (!CanMove(nIndex, bUp)) return;
    int cch = GetStrLen(nIndex);
    if (cch < 0) cch = 0;
    HeapArray<wchar_t> text(static_cast<std::size_t>(cch) + 1);
    if (!text.IsReady()) return;
    // The message that reads knows no bounds, and whoever sees the control's messages may have
    // changed the item since it was measured.
    if (GetStrLen(nIndex) > cch) return;
    unsigned __int64 qwData = GetItem(nIndex, text.Get());
    DelStr(nIndex);
    unsigned int nNew = bUp ? nIndex - 1 : nIndex + 1;
    InsertItem(nNew, text.Get(), qwData);
    SetCurSel(nNew);
}

// The editable combo box

CSCombo::~CSCombo() {
    // The edit field may outlive this object; by then it may be another one's.
    if (CSWnd::FromHandle(editCtrl) == &editCtrl) editCtrl.Unsubclass();
}

void CSCombo::OnInit() {
    HWND hwndEdit = ::GetDlgItem(hWnd, kEditFieldId);
    if (hwndEdit) editCtrl.Tie(this, hwndEdit);
}

void CSCombo::CSCBEdit::Tie(CSCombo* pOwner, HWND hwndEdit) {
    owner = pOwner;
    ReplaceObjectOf(hwndEdit); // of a combo box object that was here before
    if (Subclass(hwndEdit)) SetLifeHolder(pOwner);
}

LRESULT CSCombo::CSCBEdit::OnWndMessage(UINT uMsg, WPARAM wParam, LPARAM lParam) {
    if (!owner) return CSWnd::OnWndMessage(uMsg, wParam, lParam);
    HWND hwndCombo = *owner;
    auto nId = static_cast<unsigned short>(owner->GetID());
    __int64 qwResult = 0;
    if (!owner->OnEditCtrlMsg(uMsg, wParam, lParam, &qwResult)) {
        qwResult = CSWnd::OnWndMessage(uMsg, wParam, lParam);
    }
    // Also of a text that was swallowed.
    if (uMsg == WM_SETTEXT) ::PostCommand(::GetParent(hwndCombo), nId, hwndCombo, kTextSet);
    return qwResult;
}

int CSCombo::OnEditCtrlMsg(unsigned int uMsg, unsigned __int64, __int64, __int64*) {
    if (uMsg != WM_SETTEXT || !blockEditText) return 0;
    blockEditText = 0;
    return 1;
}

/// The platform copies the text of the list's selection over the edit field when the list opens,
/// scrolls and closes. That is let through only where the user has chosen an item.
int CSCombo::OnCommand(unsigned short nCode, __int64*) {
    switch (nCode) {
    case CBN_SELCHANGE:
    case CBN_CLOSEUP: blockEditText = keepEditText; break;
    case CBN_KILLFOCUS: blockEditText = 0; break;
    case CBN_DROPDOWN:
        blockEditText = 1;
        keepEditText = 0;
        break;
    case CBN_SELENDOK:
        if (keepEditText) return 1;
        keepEditText = IsError(GetCurSel());
        break;
    case CBN_SELENDCANCEL: keepEditText = 1; break;
    }
    return 0;
}

void CSCombo::SetMaxTextLimit(unsigned int cch) { SendMsg(CB_LIMITTEXT, cch, 0); }

int CSCombo::ShowDropDown(int bShow) {
    return static_cast<int>(SendMsg(CB_SHOWDROPDOWN, static_cast<WPARAM>(bShow), 0));
}

int CSCombo::IsFocused() {
    HWND hwndFocus = ::GetFocus();
    return hwndFocus && (hwndFocus == hWnd || hwndFocus == static_cast<HWND>(editCtrl));
}
