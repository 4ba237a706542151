#include "buttons_page.h"
#include "resource_ids.h"

namespace {
constexpr SizeRule kRules[] = {
    {IDC_ICON_GROUP, 0, 0, 1, 0},
    {IDC_LABEL_GROUP, 0, 0, 1, 0},
    {IDC_BUTTON_PRESSED, 0, 0, 1, 0},
};

// Resources of the library: a negative id names them, whatever the module.
constexpr int kStripGo = -21530, kStripUndo = -21531, kStripWeb = -21532;
constexpr int kIconTessaly = -101;
constexpr int kIconClose = -20074, kIconCloseHover = -20075;
constexpr int kIconMinimize = -20076, kIconMinimizeHover = -20077;

constexpr int kStripSize = 48, kIconSize = 32;
constexpr unsigned long kCentered = kImageCenterVertically | kImageCenterHorizontally;
constexpr unsigned long kFace = kIconCenterVertically | kIconCenterHorizontally;
constexpr unsigned long kLink = kIconCenterVertically | kIconLink; // from the left

/// A button whose frames stand side by side in a bitmap, in the order normal, hover, pressed,
/// disabled, focus. They are laid one over the other.
ImageBtnBmp Strip(int nId) { return {kStripSize, kStripSize, nullptr, nId, 0, kCentered}; }

/// A button with an icon for each state, of which one is to be seen. 0 is none: then it is that of
/// the mouse, or the normal one. The first one's sign counts for all.
ImageBtnIcon Icons(int nNormal, int nHover, int nPressed, int nDisabled) {
    return {kIconSize, kIconSize, nullptr, nNormal, nHover, nPressed, nDisabled, 0, kCentered};
}

// The rows of the page, by the id of the first button.
struct Row {
    unsigned int nFirstId;
    const wchar_t* pszName;
};
constexpr Row kRows[] = {
    {IDC_GO, L"Go"},     {IDC_UNDO, L"Undo"},        {IDC_WEB, L"Web"},
    {IDC_APP, L"App"},   {IDC_ICON_CLOSE, L"Close"}, {IDC_ICON_MINIMIZE, L"Min"},
    {IDC_FACE, L"Face"}, {IDC_LINK, L"Link"},
};
constexpr const wchar_t* kStates[] = {L"normal", L"checked", L"disabled"};
constexpr unsigned int kStateCount = 3;
} // namespace

// An icon button has its two icons (normal, and under the mouse, which links alone show), its
// look, and a place for what is not centred.
ButtonsPage::ButtonsPage()
    : pictures{StateRow<ImageBtn>(Strip(kStripGo)),
               StateRow<ImageBtn>(Strip(kStripUndo)),
               StateRow<ImageBtn>(Strip(kStripWeb)),
               StateRow<ImageBtn>(Icons(kIconTessaly, 0, 0, 0)),
               StateRow<ImageBtn>(
                   Icons(kIconClose, kIconCloseHover, kIconCloseHover, kIconMinimize)),
               StateRow<ImageBtn>(
                   Icons(kIconMinimize, kIconMinimizeHover, kIconMinimizeHover, kIconClose))},
      labelled{StateRow<IconBtn>(kIconTessaly, 0, kFace, 0, 0),
               StateRow<IconBtn>(kIconClose, kIconCloseHover, kLink, 2, 0)} {}

// In the template these are push buttons. They draw themselves from here on.
__int64 ButtonsPage::OnInitDialog(unsigned __int64 wParam, __int64 lParam) {
    const Row* pRow = kRows;
    for (auto& row : pictures) row.Init(this, pRow++->nFirstId);
    for (auto& row : labelled) row.Init(this, pRow++->nFirstId);
    return GalleryPage::OnInitDialog(wParam, lParam);
}

int ButtonsPage::UpdateControls() {
    for (const Row& row : kRows) {
        ToggleCheck(row.nFirstId + 1);
        EnableDlgItem(row.nFirstId + 2, 0);
    }
    SetDlgItemTextFmtCtrl(IDC_BUTTON_PRESSED, L"none yet");
    return GalleryPage::UpdateControls();
}

void ButtonsPage::OnButtonClicked(unsigned short nId) {
    ShowPressed(nId);
    ToggleCheck(nId);
    GalleryPage::OnButtonClicked(nId);
}

void ButtonsPage::ShowPressed(unsigned int nId) {
    for (const Row& row : kRows) {
        if (nId < row.nFirstId || nId >= row.nFirstId + kStateCount) continue;
        wchar_t szText[64] = L"";
        StrAppendTextFmt(szText, 64, L"%s, %s", row.pszName, kStates[nId - row.nFirstId]);
        SetDlgItemTextFmtCtrl(IDC_BUTTON_PRESSED, szText);
    }
}

// A picture's check is the object's own; that of an icon button is the control's.
void ButtonsPage::ToggleCheck(unsigned int nId) {
    for (auto& row : pictures) {
        if (nId == row.checked.GetID()) row.checked.Check(!row.checked.IsChecked());
    }
    for (auto& row : labelled) {
        if (nId != row.checked.GetID()) continue;
        const bool bChecked = row.checked.SendMsg(BM_GETCHECK, 0, 0) == BST_CHECKED;
        row.checked.SendMsg(BM_SETCHECK, bChecked ? BST_UNCHECKED : BST_CHECKED, 0);
    }
}

void ButtonsPage::OnResize(int dw, int dh) { FollowSize(*this, kRules, dw, dh); }
