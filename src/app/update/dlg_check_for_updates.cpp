// The dialog that asks for a check and then has it done: beside the other one, which the check
// shows.

#include "app/identity/product_info.h"
#include "app/update/dlg_update.h"
#include "app/update/update_check.h"
#include "resources/resource_ids.h"
#include "runtime/messages/res_str.h"

DlgCheckForUpdates::DlgCheckForUpdates(int nInitial, unsigned nDays, int* pbGetUpdate,
                                       HINSTANCE hinstTemplate, HWND hwndOwner)
    : DlgUpdateBase(nInitial, kCheckNumber, hinstTemplate, hwndOwner), nDaysSince(nDays),
      pbResult(pbGetUpdate) {}

int DlgCheckForUpdates::Show() {
    return static_cast<int>(Modal(IDD_CHECK_FOR_UPDATES, hResources, hParent));
}

__int64 DlgCheckForUpdates::OnInitDialog(unsigned __int64 wParam, __int64 lParam) {
    const __int64 nResult = DlgUpdateBase::OnInitDialog(wParam, lParam);
    const wchar_t* pszName = GetMyProductInfo().GetDisplayName();
    const ResStrFmt question(-IDS_ASK_FOR_UPDATES, pszName);
    title.SetTitleFmt(L"%s", static_cast<const wchar_t*>(question));
    // The template's text, which the title has put there, is a format.
    ::SetWindowTextW(hWnd, question);
    if (nDaysSince) {
        SetDlgItemTextFmt(IDC_UPDATE_DAYS, -IDS_LAST_CHECK, nDaysSince);
    } else {
        ShowDlgItem(IDC_UPDATE_DAYS, 0);
    }
    return nResult;
}

int DlgCheckForUpdates::UpdateData() {
    bAutoCheck = IsDlgButtonChecked(IDC_UPDATE_AUTO_CHECK) == BST_CHECKED;
    return DlgUpdateBase::UpdateData();
}

__int64 DlgCheckForUpdates::OnOK() {
    UpdateData();
    if (bYes) DoCheckForUpdates(hWnd, pbResult, nullptr);
    UpdateData();
    return CloseDialog(IDOK, 1);
}
