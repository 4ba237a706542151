#include "updates_page.h"
#include "resource_ids.h"

namespace {
constexpr SizeRule kRules[] = {
    {IDC_QUESTION_GROUP, 0, 0, 1, 0}, {IDC_ASK, 1, 0, 0, 0},
    {IDC_OFFER_GROUP, 0, 0, 1, 1},    {IDC_DESCRIPTION, 0, 0, 1, 1},
    {IDC_MORE_LABEL, 0, 1, 0, 0},     {IDC_MORE_INFO, 0, 1, 1, 0},
    {IDC_OFFER, 1, 1, 0, 0},          {IDC_REMINDER_LABEL, 0, 1, 0, 0},
    {IDC_REMINDER, 0, 1, 0, 0},       {IDC_UPDATE_ANSWER, 0, 1, 1, 0},
};

// As a server would send them: a link's page is the one of the address.
constexpr const wchar_t* kDescription =
    L"<b>Version 2.0</b> keeps the layouts of several screens apart, and brings them back with the "
    L"screen.<br><brhalf><a>What else is new</a>";
constexpr const wchar_t* kMoreInfo = L"http://orvanta.example/whats-new";
constexpr int kFieldSize = 260; // characters of what a server sends, with the terminator
constexpr unsigned int kDays = 12;

/// Tells what was chosen, where the class that it is made of would ask the server on a yes.
struct QuestionDialog : DlgCheckForUpdates {
    using DlgCheckForUpdates::DlgCheckForUpdates;
    __int64 OnOK() override { return DlgUpdateBase::OnOK(); }
};
} // namespace

// The list's texts are the library's, in the order of Check4UpdatesFreq.
__int64 UpdatesPage::OnInitDialog(unsigned __int64 wParam, __int64 lParam) {
    reminder.Init(this, IDC_REMINDER, nullptr, 0);
    PopulateFreqList(reminder);
    reminder.SetCurSel(kCheckWeekly);
    return GalleryPage::OnInitDialog(wParam, lParam);
}

int UpdatesPage::UpdateControls() {
    SetDlgItemInt(IDC_DAYS, kDays, 0);
    SendDlgItemMsg(IDC_DAYS, EM_SETLIMITTEXT, 5, 0);
    SendDlgItemMsg(IDC_DESCRIPTION, EM_SETLIMITTEXT, kFieldSize - 1, 0);
    SendDlgItemMsg(IDC_MORE_INFO, EM_SETLIMITTEXT, kFieldSize - 1, 0);
    SetDlgItemTextW(IDC_DESCRIPTION, kDescription);
    SetDlgItemTextW(IDC_MORE_INFO, kMoreInfo);
    SetDlgItemTextFmtCtrl(IDC_UPDATE_ANSWER, L"none yet");
    return GalleryPage::UpdateControls();
}

void UpdatesPage::OnButtonClicked(unsigned short nId) {
    switch (nId) {
    case IDC_ASK: RunQuestion(); break;
    case IDC_OFFER: RunOffer(); break;
    }
    GalleryPage::OnButtonClicked(nId); // to the main dialog
}

void UpdatesPage::RunQuestion() {
    const unsigned int nDays = GetDlgItemInt(IDC_DAYS, nullptr, 0);
    QuestionDialog dialog(reminder.GetCurSel(), nDays, nullptr, nullptr, hWnd);
    const int nResult = dialog.Show();
    ShowAnswer(L"Question", nResult, dialog, dialog.bAutoCheck);
}

// The texts are borrowed by the dialog.
void UpdatesPage::RunOffer() {
    wchar_t szDescription[kFieldSize] = L"", szMoreInfo[kFieldSize] = L"";
    GetDlgItemTextW(IDC_DESCRIPTION, szDescription, kFieldSize);
    GetDlgItemTextW(IDC_MORE_INFO, szMoreInfo, kFieldSize);
    DlgGetUpdates dialog(reminder.GetCurSel(), szDescription, szMoreInfo, nullptr, hWnd);
    const int nResult = dialog.Show();
    ShowAnswer(L"Offer", nResult, dialog, 0);
}

void UpdatesPage::ShowAnswer(const wchar_t* pszDialog, int nResult, const DlgUpdateBase& dialog,
                             int bAutomatic) {
    wchar_t szText[128] = L"";
    StrAppendTextFmt(szText, 128, L"%s: ", pszDialog);
    if (nResult == IDOK) {
        wchar_t szReminder[32] = L"?";
        reminder.GetStr(static_cast<unsigned int>(dialog.nFrequency), szReminder);
        StrAppendTextFmt(szText, 128, L"%s, %s", dialog.bYes ? L"yes" : L"no", szReminder);
        if (bAutomatic) StrAppendTextFmt(szText, 128, L", automatic");
    } else {
        StrAppendTextFmt(szText, 128, L"canceled");
    }
    SetDlgItemTextFmtCtrl(IDC_UPDATE_ANSWER, szText);
}

void UpdatesPage::OnResize(int dw, int dh) { FollowSize(*this, kRules, dw, dh); }
