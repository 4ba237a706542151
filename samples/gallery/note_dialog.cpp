#include "note_dialog.h"
#include "resource_ids.h"

// Once, before the dialog is seen.
int NoteDialog::UpdateControls() {
    SetText(pszTitle);
    CheckDlgButton(IDC_BODY, IsFullDrag() ? BST_CHECKED : BST_UNCHECKED);
    return CSDlg::UpdateControls();
}

// OK was pressed: 0 keeps the dialog open.
int NoteDialog::UpdateData() {
    GetDlgItemTextW(IDC_NAME, szName, static_cast<int>(std::size(szName)));
    if (!*szName) {
        Msg(hWnd, MB_OK | MB_ICONINFORMATION, L"Please enter a name.");
        SetDlgItemFocus(IDC_NAME);
        return 0;
    }
    return CSDlg::UpdateData();
}

void NoteDialog::OnButtonClicked(unsigned short nId) {
    if (nId == IDC_BODY) EnableFullDrag(IsDlgButtonChecked(IDC_BODY) == BST_CHECKED);
}

// However it is closed: by a button, by Escape, by the cross in its title.
void NoteDialog::DoClose(int nResult) {
    CSDlg::DoClose(nResult);
    if (pListener) pListener->OnNoteClosed(*this, nResult);
}
