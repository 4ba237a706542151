#include "app/update/dlg_update.h"
#include "app/identity/product_info.h"
#include "app/launch/open_html.h"
#include "resources/resource_ids.h"
#include "runtime/messages/res_str.h"

namespace {
constexpr int kProceedSize = 48; // pixels

// The icons of the close button are its class's own, -IDI_DLG_CLOSE and its neighbour.
constexpr int kRemindTexts[] = {IDS_REMIND_TOMORROW, IDS_REMIND_NEXT_WEEK, IDS_REMIND_NEXT_MONTH,
                                IDS_REMIND_NEVER}; // in the order of Check4UpdatesFreq
} // namespace

DlgUpdateBase::DlgUpdateBase(int nInitial, unsigned short nNumber, HINSTANCE hinstTemplate,
                             HWND hwndOwner)
    : nFrequency(nInitial),
      proceedBtn(kProceedSize, kProceedSize, nullptr, -IDB_BUTTON_STRIP_1, ImageBtn::kAllFrames,
                 kImageCenterVertically | kImageCenterHorizontally) {
    activationTag = nNumber;
    hResources = hinstTemplate;
    hParent = hwndOwner;
}

__int64 DlgUpdateBase::OnInitDialog(unsigned __int64 wParam, __int64 lParam) {
    dlgIcon.InitEx(hWnd, static_cast<int>(GetMyProductInfo().GetIconID()));
    const __int64 nResult = CSDlg::OnInitDialog(wParam, lParam);
    title.InitTitle(this);
    if (GetDlgItem(IDC_UPDATE_DAYS)) daysLine.Init(this, IDC_UPDATE_DAYS, nullptr, 0);
    closeBtn.Init(this, IDCANCEL, nullptr, 0);
    proceedBtn.Init(this, IDOK, nullptr, 0);
    CheckRadioButton(IDC_UPDATE_YES, IDC_UPDATE_NO, IDC_UPDATE_YES);
    remindList.Init(this, IDC_UPDATE_REMIND, nullptr, 0);
    for (int nId : kRemindTexts) remindList.AddStr(ResStr(-nId));
    remindList.SetCurSel(static_cast<unsigned>(nFrequency));
    return nResult;
}

int DlgUpdateBase::UpdateData() {
    bYes = IsDlgButtonChecked(IDC_UPDATE_YES) == BST_CHECKED;
    const int nSelected = remindList.GetCurSel();
    if (nSelected >= 0) nFrequency = nSelected;
    return CSDlg::UpdateData();
}

__int64 DlgUpdateBase::OnOK() {
    UpdateData();
    return CloseDialog(IDOK, 1);
}

// Telling of an update

DlgGetUpdates::DlgGetUpdates(int nInitial, const wchar_t* pszDescr, const wchar_t* pszMoreInfo,
                             HINSTANCE hinstTemplate, HWND hwndOwner)
    : DlgUpdateBase(nInitial, kGetNumber, hinstTemplate, hwndOwner), pszDescription(pszDescr),
      pszUrlMoreInfo(pszMoreInfo) {}

int DlgGetUpdates::Show() { return static_cast<int>(Modal(IDD_GET_UPDATES, hResources, hParent)); }

__int64 DlgGetUpdates::OnInitDialog(unsigned __int64 wParam, __int64 lParam) {
    const __int64 nResult = DlgUpdateBase::OnInitDialog(wParam, lParam);
    title.SetTitleFmt(L"%s", static_cast<const wchar_t*>(ResStr(-IDS_UPDATE_AVAILABLE)));
    // The window's own text, which an empty description would leave on the screen; programs that
    // read the screen see it too.
    SetDlgItemTextW(IDC_UPDATE_DESCRIPTION, pszDescription ? pszDescription : L"");
    description.Init(this, IDC_UPDATE_DESCRIPTION, nullptr, 0);
    description.SetHTMLText(pszDescription ? pszDescription : L"");
    return nResult;
}

void DlgGetUpdates::OnButtonClicked(unsigned short nId) {
    if (nId != IDC_UPDATE_DESCRIPTION) {
        DlgUpdateBase::OnButtonClicked(nId);
        return;
    }
    if (pszUrlMoreInfo && *pszUrlMoreInfo) OpenHTML(hWnd, pszUrlMoreInfo, 0, 0);
}
