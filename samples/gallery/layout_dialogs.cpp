#include "layout_dialogs.h"
#include "gallery_page.h"
#include "resource_ids.h"

namespace {
constexpr const wchar_t* kPlaceValue = L"SizableDialog";

constexpr SizeRule kSizableRules[] = {
    {IDC_NOTES, 0, 0, 1, 1},
    {IDOK, 1, 1, 0, 0},
    {IDCANCEL, 1, 1, 0, 0},
};

/// A check box, and the group that it shows.
struct FoldRow {
    unsigned short nCheckId;
    unsigned int nFirst, nLast; // of the group, in the template's order
};
constexpr FoldRow kFoldRows[] = {
    {IDC_FOLD_ADDRESS, IDC_STREET_LABEL, IDC_TOWN},
    {IDC_FOLD_GIFT, IDC_GIFT_LABEL, IDC_GIFT},
};
} // namespace

SizableDialog::SizableDialog() {
    RegKey key(GetMyProductInfo().GetAppRootKey(), 0);
    // What is damaged counts as a first run.
    if (key.GetBinSize(kPlaceValue) != sizeof(place) ||
        !key.GetBin(kPlaceValue, &place, sizeof(place))) {
        place = MyWindowPlacement();
    }
    EnableResizing(kDlgResizeWidth | kDlgResizeHeight, &place);
}

SizableDialog::~SizableDialog() {
    if (!place.IsInitialized()) return; // was never shown
    RegKey key(GetMyProductInfo().GetAppRootKey(), 1);
    key.PutBin(kPlaceValue, &place, sizeof(place), REG_BINARY);
}

// A dialog that can be maximised has an icon in its title.
__int64 SizableDialog::OnInitDialog(unsigned __int64 wParam, __int64 lParam) {
    icon.InitEx(hWnd, IDI_GALLERY);
    return CSDlg::OnInitDialog(wParam, lParam);
}

void SizableDialog::OnResize(int dw, int dh) { FollowSize(*this, kSizableRules, dw, dh); }

// In the constructor, as a dialog may run more than once.
FoldDialog::FoldDialog() {
    for (const FoldRow& row : kFoldRows) AddCtrlGroup(row.nFirst, row.nLast, IDC_FOLD_FRAME, 0);
}

int FoldDialog::UpdateControls() {
    for (const FoldRow& row : kFoldRows) CheckDlgButton(row.nCheckId, BST_CHECKED);
    return CSDlg::UpdateControls();
}

void FoldDialog::OnButtonClicked(unsigned short nId) {
    for (const FoldRow& row : kFoldRows) {
        if (row.nCheckId != nId) continue;
        int nShift = ShowCtrlGroup(row.nFirst, IsDlgButtonChecked(nId) == BST_CHECKED, 0);
        ResizeWnd(hWnd, 0, nShift);
    }
}
