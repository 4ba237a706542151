#include "progress_page.h"
#include "resource_ids.h"

#include <commctrl.h>
#include <shlobj.h>

namespace {
constexpr SizeRule kRules[] = {
    {IDC_JOB_GROUP, 0, 0, 1, 0}, {IDC_JOB_RESULT, 0, 0, 1, 0},    {IDC_BAR_GROUP, 0, 0, 1, 0},
    {IDC_BAR, 0, 0, 1, 0},       {IDC_BAR_TEXT, 0, 0, 1, 0},      {IDC_DIGEST_GROUP, 0, 0, 1, 1},
    {IDC_FOLDER, 0, 0, 1, 0},    {IDC_BROWSE, 1, 0, 0, 0},        {IDC_DIGEST, 1, 0, 0, 0},
    {IDC_DIGESTS, 0, 0, 1, 1},   {IDC_DIGEST_RESULT, 0, 1, 1, 0},
};
constexpr UINT kMsgJobDone = WM_APP + 1;
constexpr unsigned long kBarStep = 1; // a code of this page for DelayAction
constexpr DWORD kBarStepMs = 50;
constexpr unsigned kMarqueeMs = 30;
constexpr int kBarEnd = 100;
} // namespace

// One of the four lines of text that a bar can have.
__int64 ProgressPage::OnInitDialog(unsigned __int64 wParam, __int64 lParam) {
    bar.Init(this, IDC_BAR, 0, kBarEnd, 0);
    bar.SetupLines(IDC_BAR_TEXT, 0, 0, 0);
    return GalleryPage::OnInitDialog(wParam, lParam);
}

int ProgressPage::UpdateControls() {
    CheckRadioButton(IDC_ON_THIS_THREAD, IDC_ON_OWN_THREAD, IDC_ON_THIS_THREAD);
    CheckDlgButton(IDC_CAN_CANCEL, BST_CHECKED);
    SetDlgItemInt(IDC_DELAY, 500, 0);
    SetDlgItemInt(IDC_LINES, 4, 0);
    SetDlgItemInt(IDC_STEPS, 150, 0);
    SetDlgItemTextFmtCtrl(IDC_JOB_RESULT, L"none yet");
    SetDlgItemTextFmtCtrl(IDC_DIGEST_RESULT, L"none yet");
    ShowBarText();
    return GalleryPage::UpdateControls();
}

void ProgressPage::OnButtonClicked(unsigned short nId) {
    const int bChecked = IsDlgButtonChecked(nId) == BST_CHECKED;
    switch (nId) {
    case IDC_RUN_JOB: RunSteps(); break;
    case IDC_BROWSE: Browse(); break;
    case IDC_DIGEST: RunDigests(); break;
    case IDC_BAR_GO: DelayAction(bChecked ? kBarStep : 0, kBarStepMs); break;
    case IDC_BAR_PAUSE: bar.Pause(bChecked); break;
    case IDC_BAR_MARQUEE: bar.DoMarquee(bChecked, kMarqueeMs); break;
    // On the button of the main window. Windows before 7 have none of that.
    case IDC_BAR_TASKBAR: bar.EnableTaskbarProgress(bChecked ? HWND{*parentDlg} : nullptr); break;
    }
    GalleryPage::OnButtonClicked(nId); // to the main dialog
}

// On this thread the loop of the work runs here; the dialog, on its own, stays alive.
void ProgressPage::RunSteps() {
    StepJob::Settings settings{};
    settings.hwndParent = *parentDlg;
    settings.nDelayMs = GetDlgItemInt(IDC_DELAY, nullptr, 0);
    settings.nLines = GetDlgItemInt(IDC_LINES, nullptr, 0);
    settings.nSteps = GetDlgItemInt(IDC_STEPS, nullptr, 0);
    settings.bCanCancel = IsDlgButtonChecked(IDC_CAN_CANCEL) == BST_CHECKED;
    settings.bByTicker = IsDlgButtonChecked(IDC_BY_TICKER) == BST_CHECKED;
    if (GetCheckedRadioButton(IDC_ON_THIS_THREAD, IDC_ON_OWN_THREAD) == IDC_ON_OWN_THREAD) {
        StartThread(std::make_unique<StepJob>(settings), IDC_JOB_RESULT);
        return;
    }
    StepJob job(settings);
    job.Run();
    SetDlgItemTextFmtCtrl(IDC_JOB_RESULT, job.GetResult().c_str());
}

void ProgressPage::RunDigests() {
    wchar_t szFolder[MAX_PATH] = L"";
    GetDlgItemTextW(IDC_FOLDER, szFolder, MAX_PATH);
    if (!szFolder[0]) return;
    SendDlgItemMsg(IDC_DIGESTS, LB_RESETCONTENT, 0, 0);
    StartThread(std::make_unique<DigestJob>(*parentDlg, szFolder), IDC_DIGEST_RESULT);
}

void ProgressPage::StartThread(std::unique_ptr<Job> pJobToRun, int nTextId) {
    if (pThread) return;
    pJob = std::move(pJobToRun);
    nResultId = nTextId;
    pThread = std::make_unique<JobThread>(*pJob, hWnd, kMsgJobDone);
    pThread->Start();
}

__int64 ProgressPage::OnDlgMessage(unsigned int uMsg, unsigned __int64 wParam, __int64 lParam) {
    if (uMsg == kMsgJobDone) OnJobDone();
    if (uMsg == WM_DESTROY) pThread.reset(); // before the window goes that it tells
    return GalleryPage::OnDlgMessage(uMsg, wParam, lParam);
}

void ProgressPage::OnJobDone() {
    pThread.reset();
    if (!pJob) return;
    SetDlgItemTextFmtCtrl(nResultId, pJob->GetResult().c_str());
    for (const std::wstring& str : pJob->GetLines())
        SendDlgItemMsg(IDC_DIGESTS, LB_ADDSTRING, 0, reinterpret_cast<LPARAM>(str.c_str()));
    pJob.reset();
}

void ProgressPage::Browse() {
    BROWSEINFOW info{};
    info.hwndOwner = *parentDlg;
    info.lpszTitle = L"SHA-1 of all files of which folder?";
    info.ulFlags = BIF_RETURNONLYFSDIRS;
    PIDLIST_ABSOLUTE pidl = ::SHBrowseForFolderW(&info);
    wchar_t szFolder[MAX_PATH];
    if (pidl && ::SHGetPathFromIDListW(pidl, szFolder)) SetDlgItemTextW(IDC_FOLDER, szFolder);
    ::CoTaskMemFree(pidl);
}

// The next step of the page's bar is due.
void ProgressPage::OnDelayedAction(unsigned long dwCode) {
    GalleryPage::OnDelayedAction(dwCode); // nothing waits any more
    if (dwCode != kBarStep) return;
    if (IsDlgButtonChecked(IDC_BAR_PAUSE) != BST_CHECKED) StepBar();
    DelayAction(kBarStep, kBarStepMs);
}

void ProgressPage::StepBar() {
    if (nBarSteps == kBarEnd) {
        bar.SetPos64(0);
        nBarSteps = 0;
    } else {
        bar.StepIt();
        ++nBarSteps;
    }
    ShowBarText();
}

// The time is an estimate by the steps so far.
void ProgressPage::ShowBarText() {
    ProgressEx* pModel = bar.GetProgressEx();
    wchar_t szTime[64];
    pModel->GetTextRemaining(szTime, 64, 0);
    bar.SetTextFmt(0, szTime[0] ? L"%d percent, %s remaining" : L"%d percent",
                   pModel->GetPercentCompleted(), szTime);
}

void ProgressPage::OnResize(int dw, int dh) { FollowSize(*this, kRules, dw, dh); }
