#include "edits_page.h"
#include "resource_ids.h"

#include <commctrl.h>

namespace {
constexpr SizeRule kRules[] = {
    {IDC_EDIT_GROUP, 0, 0, 1, 0},  {IDC_SOFT_EDIT, 0, 0, 1, 0},      {IDC_DROP_PATH, 0, 0, 1, 0},
    {IDC_DROP_FOLDER, 0, 0, 1, 0}, {IDC_BALLOON_RESULT, 0, 0, 1, 0}, {IDC_COMBO_GROUP, 0, 0, 1, 1},
    {IDC_TYPED, 0, 0, 1, 0},       {IDC_TYPED_TEXT, 0, 0, 1, 0},     {IDC_LIST, 0, 0, 1, 1},
    {IDC_UP, 1, 0, 0, 0},          {IDC_DOWN, 1, 0, 0, 0},
};

struct Colour {
    const wchar_t* pszName;
    unsigned long cr;
};
constexpr Colour kColours[] = {
    {L"None", CLR_INVALID},
    {L"Yellow", RGB(255, 255, 192)},
    {L"Green", RGB(208, 248, 208)},
    {L"Blue", RGB(208, 228, 255)},
};

constexpr const wchar_t* kFruit[] = {L"Apple", L"Cherry", L"Lemon", L"Plum"};
} // namespace

void KeepingEdit::Keep(int bOn) {
    bKeep = bOn;
    BlockNextSelAll(bOn);
}

// The edit loses the keyboard: what selects all when it comes back is let pass by, once.
int KeepingEdit::OnCommand(unsigned short nCode, __int64* pqwResult) {
    if (nCode == EN_KILLFOCUS) BlockNextSelAll(bKeep);
    return CSEdit::OnCommand(nCode, pqwResult);
}

// The place to tie the control objects to the controls. Those that are not named here get a plain
// object by themselves.
__int64 EditsPage::OnInitDialog(unsigned __int64 wParam, __int64 lParam) {
    softEdit.Init(this, IDC_SOFT_EDIT, nullptr, 0);
    colourList.Init(this, IDC_COLOUR, nullptr, 0);
    dropPathEdit.Init(this, IDC_DROP_PATH, nullptr, kDropAnyPath);
    dropFolderEdit.Init(this, IDC_DROP_FOLDER, nullptr, kDropFolder);
    typedCombo.Init(this, IDC_TYPED, nullptr, 0);
    list.Init(this, IDC_LIST, nullptr, 0);
    return GalleryPage::OnInitDialog(wParam, lParam);
}

int EditsPage::UpdateControls() {
    softEdit.SetText(L"Some text to work on");
    for (const Colour& colour : kColours) colourList.AddItem(colour.pszName, colour.cr);
    colourList.SelectItem(CLR_INVALID);
    for (const wchar_t* pszName : kFruit) {
        typedCombo.AddStr(pszName);
        list.AddStr(pszName);
    }
    list.SetCurSel(0);
    EnableMoves();
    ShowTypedText();
    return GalleryPage::UpdateControls();
}

// What has no virtual operation of its own.
__int64 EditsPage::OnCommand(unsigned short nId, unsigned short nCode, HWND hwndCtl) {
    // The second code is the library's own, for a text that was set and not typed.
    if (nId == IDC_TYPED && (nCode == CBN_EDITCHANGE || nCode == CSCombo::kTextSet))
        ShowTypedText();
    return GalleryPage::OnCommand(nId, nCode, hwndCtl);
}

void EditsPage::OnButtonClicked(unsigned short nId) {
    switch (nId) {
    case IDC_READ_ONLY: softEdit.SetReadOnly(IsDlgButtonChecked(nId)); break;
    case IDC_KEEP_SELECTION: softEdit.Keep(IsDlgButtonChecked(nId)); break;
    case IDC_BALLOON: ShowBalloon(); break;
    case IDC_UP: MoveChosen(1); break;
    case IDC_DOWN: MoveChosen(0); break;
    }
    GalleryPage::OnButtonClicked(nId);
}

void EditsPage::OnComboSelChanged(unsigned short nId) {
    if (nId == IDC_LIST) EnableMoves();
    if (nId == IDC_COLOUR) {
        auto cr = static_cast<unsigned long>(colourList.GetSelectedItem());
        if (cr == CLR_INVALID)
            softEdit.ClearBkgColor();
        else
            softEdit.SetBkgColor(cr);
    }
    GalleryPage::OnComboSelChanged(nId);
}

void EditsPage::ShowBalloon() {
    int bShown = softEdit.ShowBalloon(L"A balloon", L"It points at the edit.", TTI_INFO);
    SetDlgItemTextW(IDC_BALLOON_RESULT, bShown ? L"" : L"No balloons here");
}

void EditsPage::ShowTypedText() {
    wchar_t szText[256];
    typedCombo.GetText(szText, 256);
    SetDlgItemTextFmtCtrl(IDC_TYPED_TEXT, szText);
}

// The item's value moves along, and the item stays selected.
void EditsPage::MoveChosen(int bUp) {
    int nChosen = list.GetCurSel();
    if (nChosen >= 0) list.MoveItem(nChosen, bUp);
    EnableMoves();
}

// A button that loses its use while it has the keyboard hands that on.
void EditsPage::EnableMoves() {
    int nChosen = list.GetCurSel();
    int bUp = nChosen >= 0 && list.CanMove(nChosen, 1);
    int bDown = nChosen >= 0 && list.CanMove(nChosen, 0);
    HWND hwndFocus = ::GetFocus();
    if ((!bUp && hwndFocus == GetDlgItem(IDC_UP)) || (!bDown && hwndFocus == GetDlgItem(IDC_DOWN)))
        SetDlgItemFocus(IDC_LIST);
    EnableDlgItem(IDC_UP, bUp);
    EnableDlgItem(IDC_DOWN, bDown);
}

void EditsPage::OnResize(int dw, int dh) { FollowSize(*this, kRules, dw, dh); }
