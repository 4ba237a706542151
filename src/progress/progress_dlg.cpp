#include "progress/progress_dlg.h"
#include "progress/progress_ticker.h"
#include "resources/resource_ids.h"
#include "runtime/base/current_product.h"
#include "runtime/messages/msg.h"
#include "runtime/threads/spin_lock.h"

#include <algorithm>
#include <iterator>
#include <memory>
#include <new>
#include <utility>

namespace {
constexpr DWORD kEndTimeoutMs = 6000;
constexpr unsigned kLineIds[] = {IDC_PROGRESS_LINE_0, IDC_PROGRESS_LINE_1, IDC_PROGRESS_LINE_2,
                                 IDC_PROGRESS_LINE_3};
constexpr unsigned kLineCount = std::size(kLineIds);
constexpr UINT_PTR kShowTimer = 2; // 1 is CSDlg's own
constexpr UINT kShowPeriodMs = 40;

constinit SpinLock placementLock; // for wpResizing, which several dialogs' threads share

/// A message box over that window is answered with No; one without that button is closed.
BOOL CALLBACK AnswerNo(HWND hwnd, LPARAM lParam) {
    if (::GetWindow(hwnd, GW_OWNER) != reinterpret_cast<HWND>(lParam)) return TRUE;
    const bool bHasNo = ::GetDlgItem(hwnd, IDNO) != nullptr;
    ::PostMessageW(hwnd, bHasNo ? WM_COMMAND : WM_CLOSE, bHasNo ? IDNO : 0, 0);
    return TRUE;
}

/// In the foreground, and with nothing over it but windows that are always on top. The foreground
/// alone does not tell: another window can come to the top without it.
bool IsOnTop(HWND hwnd) {
    constexpr int kMaxAbove = 256; // the order may change meanwhile: no walk in circles
    if (::GetForegroundWindow() != hwnd) return false;
    HWND hwndAbove = hwnd;
    for (int n = 0; n < kMaxAbove; ++n) {
        hwndAbove = ::GetWindow(hwndAbove, GW_HWNDPREV);
        if (!hwndAbove) return true;
        if (!::IsWindowVisible(hwndAbove)) continue;
        return (::GetWindowLongPtrW(hwndAbove, GWL_EXSTYLE) & WS_EX_TOPMOST) != 0;
    }
    return false;
}
} // namespace

constinit MyWindowPlacement ProgressDlg::wpResizing;

// The thread

ProgressThread::ProgressThread(Progress* pOf)
    : pProgress(pOf), hDlgReady(::CreateEventW(nullptr, TRUE, FALSE, nullptr)) {}

// Before the dialog goes, which the worker uses.
ProgressThread::~ProgressThread() { Destroy(kEndTimeoutMs); }

int ProgressThread::WaitForDlgReady(unsigned long dwTimeoutMs) {
    return WaitForEvent(hDlgReady.Get(), dwTimeoutMs);
}

// The dialog's life

ProgressDlg::ProgressDlg(ProgressThread* pOf) : pThread(pOf) {}

ProgressDlg::~ProgressDlg() { EndRun(); }

/// What is to be done on the dialog's thread, when its window has gone; once more it does nothing.
void ProgressDlg::EndRun() {
    StopTicker(true);
    progressCtrl.EnableTaskbarProgress(nullptr);
    SharePlacement();
    placement = nullptr;
}

__int64 ProgressDlg::OnInitDialog(unsigned __int64 wParam, __int64 lParam) {
    HWND hwnd = hWnd;
    {
        SpinLock::Guard lock(placementLock);
        wpOwn = wpResizing;
    }
    EnableResizing(kDlgResizeWidth, &wpOwn);
    CSDlg::OnInitDialog(wParam, lParam);
    if (!::IsWindow(hwnd)) return 1;
    if (auto* pfnGetIconId = GetCurrentProduct().pfnGetIconId) {
        iconForDlg.InitEx(hwnd, static_cast<int>(pfnGetIconId()));
    }
    if (hwndParent) CenterWindow(hwndParent);
    ::SetForegroundWindow(hwnd);
    progressCtrl.Init(this, IDC_PROGRESS_BAR, 0, 1, 0);
    progressCtrl.SetupLines(kLineIds[0], kLineIds[1], kLineIds[2], kLineIds[3]);
    progressCtrl.Cancel(0);
    progressCtrl.EnableTaskbarProgress(hwnd);
    if (bCanCancel) {
        SetDlgItemFocus(IDCANCEL);
        // The Enter key too: without a default button it comes as IDOK, which is Close's alone.
        ::SendMessageW(hwnd, DM_SETDEFID, IDCANCEL, 0);
    } else {
        EnableDlgItem(IDCANCEL, 0);
    }
    if (!bModelessProgress) CutSystemMenu();
    ::SetTimer(hwnd, kShowTimer, kShowPeriodMs, nullptr);
    bUp = true;
    if (pThread) {
        pThread->SetDlgReady();
        // Close has either found the dialog up, or left word before that.
        if (pThread->IsCanceled()) PostCmd(IDOK, nullptr, 0);
    }
    return !bCanCancel; // 0: the focus has been set
}

// QUIRK: the thread marks every Progress as modeless before its dialog comes up, so that this never
// happens: the system menu stays complete. Test: ProgressQuirks.SystemMenuStaysComplete
void ProgressDlg::CutSystemMenu() {
    HMENU hmenu = ::GetSystemMenu(hWnd, FALSE);
    for (UINT nCmd : {SC_RESTORE, SC_MINIMIZE, SC_MAXIMIZE}) {
        ::DeleteMenu(hmenu, nCmd, MF_BYCOMMAND);
    }
}

__int64 ProgressDlg::OnDlgMessage(unsigned int uMsg, unsigned __int64 wParam, __int64 lParam) {
    switch (uMsg) {
    case WM_ENTERSIZEMOVE: bInSizeMove = 1; break;
    case WM_EXITSIZEMOVE: bInSizeMove = 0; break;
    case WM_COMMAND:
        // Without a button that could take it, the Enter key comes as IDOK, which is Close's alone.
        if (wParam == IDOK && !bCanCancel && pThread && !pThread->IsCanceled()) return 1;
        break;
    case WM_TIMER:
        if (wParam == kShowTimer) ShowSteps();
        break;
    case WM_WINDOWPOSCHANGING:
        // The loop that runs a dialog shows it once more when it has nothing to do for the first
        // time: not one that the worker has hidden before that.
        if (bHidden && !::InSendMessage()) {
            auto* pPos = reinterpret_cast<WINDOWPOS*>(lParam);
            if (pPos->flags & SWP_SHOWWINDOW) {
                pPos->flags = (pPos->flags & ~static_cast<UINT>(SWP_SHOWWINDOW)) | SWP_NOACTIVATE;
            }
        }
        break;
    }
    __int64 nResult = CSDlg::OnDlgMessage(uMsg, wParam, lParam);
    if (uMsg == WM_WINDOWPOSCHANGED && isInitialized) SharePlacement();
    return nResult;
}

void ProgressDlg::SharePlacement() {
    if (placement != &wpOwn || !wpOwn.IsInitialized()) return;
    SpinLock::Guard lock(placementLock);
    wpResizing = wpOwn;
}

__int64 ProgressDlg::OnCancel() {
    // Where Cancel is grey, not every platform keeps Escape and the caption's button away.
    if (!bCanCancel || bAsking) return 1; // one question is enough
    bAsking = true;
    const int nAnswer = ::Msg(hWnd, MB_YESNO | MB_ICONQUESTION, -IDS_PROGRESS_CANCEL);
    bAsking = false;
    if (nAnswer != IDYES || isClosed) return 1; // the work may have ended meanwhile
    progressCtrl.Cancel(1);
    CloseDialog(IDCANCEL, 0);
    return 1;
}

/// The end does not wait for the user: what he is doing in the dialog ends too.
void ProgressDlg::DoClose(int nResult) {
    CSDlg::DoClose(nResult);
    HWND hwnd = hWnd;
    if (!::IsWindowEnabled(hwnd)) ::EnumWindows(&AnswerNo, reinterpret_cast<LPARAM>(hwnd));
    if (bInSizeMove) ::PostMessageW(hwnd, WM_LBUTTONUP, 0, 0);
    ::SendMessageW(hwnd, WM_CANCELMODE, 0, 0); // menus
}

// Lines and size

void ProgressDlg::SetLinesCount(unsigned nCount) { nLines = nCount ? nCount : kLineCount; }

int ProgressDlg::CalcLinesResize() {
    int nHeight = 0;
    for (unsigned nLine = kLineCount - 1; nLine >= nLines && nLine > 0; --nLine) {
        RECT rc{}, rcAbove{};
        GetDlgItemRect(kLineIds[nLine], &rc);
        GetDlgItemRect(kLineIds[nLine - 1], &rcAbove);
        ShowDlgItem(static_cast<int>(kLineIds[nLine]), 0);
        nHeight += rc.bottom - rcAbove.bottom;
    }
    return nHeight;
}

void ProgressDlg::OnInitRect(RECT& rc) {
    const int nHeight = CalcLinesResize();
    if (!nHeight) return;
    OnResize(0, -nHeight);
    rc.bottom -= nHeight;
}

void ProgressDlg::OnResize(int dw, int dh) {
    for (unsigned nId : kLineIds) ResizeCtrl(nId, dw, 0, 1);
    MoveCtrl(IDCANCEL, dw, dh, 0);
    MoveResizeCtrl(IDC_PROGRESS_BAR, 0, dh, dw, 0, 1);
    ResizeCtrl(IDC_PROGRESS_FRAME, dw, dh, 1);
}

// What the worker calls

bool ProgressDlg::IsWindowThere() const { return hWnd && ::IsWindow(hWnd); }

void ProgressDlg::SetTitle(const wchar_t* pszNew) {
    if (IsWindowThere()) ::SetWindowTextW(hWnd, pszNew ? pszNew : L"");
}

void ProgressDlg::SetText(int nLine, const wchar_t* pszNew) {
    if (IsWindowThere()) progressCtrl.SetText(nLine, pszNew);
}

// QUIRK: only the form with 32 bits takes the position back to 0. Test:
// ProgressQuirks.OnlyTheShortRangeResetsThePosition
void ProgressDlg::SetRange(int nLow, int nHigh) {
    if (!IsWindowThere()) return;
    progressCtrl.SetRange64(nLow, nHigh);
    progressCtrl.SetPos64(0);
}

void ProgressDlg::SetRange64(__int64 qnLow, __int64 qnHigh) {
    if (IsWindowThere()) progressCtrl.SetRange64(qnLow, qnHigh);
}

void ProgressDlg::SetPos(long lPos) { SetPos64(lPos); }

void ProgressDlg::SetPos64(__int64 qnPos) {
    if (!IsWindowThere()) return;
    progressCtrl.SetPos64(qnPos);
    BringUp();
}

void ProgressDlg::StepIt() {
    if (CountSubStep()) StepBar();
}

/// The second half of StepIt, when the bar is to move.
void ProgressDlg::StepBar() {
    if (!IsWindowThere() || progressCtrl.progressEx.PutOffStep()) return;
    progressCtrl.progressEx.StepBar();
    BringUp();
}

/// On the dialog's thread: the steps that were put off.
void ProgressDlg::ShowSteps() {
    if (!progressCtrl.ShowPutOff()) return;
    if (::IsWindowVisible(hWnd)) BringUp(); // hidden meanwhile, it leaves the front to others
}

void ProgressDlg::BringUp() {
    // Not out of the question, which would lose the keyboard at each step; and a look costs far
    // less than the call.
    if (!bAsking && !IsOnTop(hWnd)) ::BringWindowToTop(hWnd);
    ::UpdateWindow(hWnd);
}

// The ticker. The worker makes it, and either side may end it; its thread is waited for without the
// lock, since what it sends may come round to the other side.

void ProgressDlg::EnableTicker(unsigned long dwIntervalMs, unsigned long dwMax,
                               unsigned long* pdwResult) {
    if (!IsWindowThere()) return;
    StopTicker(false);
    std::unique_ptr<ProgressTicker> pNew(
        new (std::nothrow) ProgressTicker(progressCtrl, dwIntervalMs, dwMax, 0, pdwResult));
    CritSecLock lock(csTicker);
    if (!bEnded && !pTicker) pTicker = pNew.release();
}

void ProgressDlg::StopTicker(bool bForGood) {
    ProgressTicker* pEnding = nullptr;
    {
        CritSecLock lock(csTicker);
        if (bForGood) bEnded = true;
        pEnding = std::exchange(pTicker, nullptr);
    }
    delete pEnding;
}

void ProgressDlg::PauseTicker(int bPause) {
    CritSecLock lock(csTicker);
    if (pTicker) pTicker->Pause(bPause);
}
