#include "progress/progress.h"
#include "progress/progress_dlg.h"
#include "runtime/threads/message_pump.h"

#include <iterator>
#include <new>
#include <utility>

namespace {
constexpr DWORD kDlgTimeoutMs = 5000;
constexpr __int64 kNone = -1;
} // namespace

/// The tick after that many milliseconds. 0 has a meaning of its own: the tick after it serves.
unsigned Progress::GetTickAfter(unsigned dwMs) {
    const unsigned dwTick = ::GetTickCount() + dwMs;
    return dwTick ? dwTick : 1;
}

// Life

Progress::Progress(HWND hwndOwner, unsigned long dwDelayMs, unsigned long dwTextIntervalMs,
                   unsigned nLinesCount, int bCancelEnabled)
    : hwndParent(hwndOwner), bCanCancel(bCancelEnabled), dwTextInterval(dwTextIntervalMs),
      dwNextTextTick(dwTextIntervalMs ? GetTickAfter(dwTextIntervalMs) : 0) {
    SetLinesCount(nLinesCount);
    if (hwndParent) {
        ::EnableWindow(hwndParent, FALSE);
        bParentDisabled = 1;
    }
    if (dwDelayMs) {
        dwShowTick = GetTickAfter(dwDelayMs);
    } else {
        StartThread();
    }
}

Progress::~Progress() {
    if (hwndParent) { // before the dialog goes, so that the foreground goes to it
        ::EnableWindow(hwndParent, TRUE);
        ::SetForegroundWindow(hwndParent);
    }
    const bool bHadThread = pThread != nullptr;
    Close();
    // A dialog that has only just come up takes the foreground once more, from the loop it runs in.
    if (hwndParent && bHadThread) ::SetForegroundWindow(hwndParent);
    DeleteEndedThreads();
    delete[] pszTitle;
    for (wchar_t* psz : pszText) delete[] psz;
}

void Progress::SetModelessParent(HWND hwndOwner) {
    if (bParentDisabled) ::EnableWindow(hwndParent, TRUE);
    bParentDisabled = 0;
    hwndParent = hwndOwner;
    bModeless = 1;
}

void Progress::StartThread() {
    if (pThread || bClosing) return;
    Call call(*this);
    QuitKeeper keeper;
    dwShowTick = 0;
    auto* pNew = new (std::nothrow) ProgressThread(this);
    if (!pNew) return;
    bHandedOver = 0;
    pThread = pNew;
    // Both waits dispatch messages, and what runs then may use this object. After a Close the new
    // object is still there, but its thread is not, so that the second wait is none.
    pNew->Start(THREAD_PRIORITY_ABOVE_NORMAL);
    pNew->WaitForDlgReady(kDlgTimeoutMs);
    GetLiveDlg();
}

void Progress::Close() {
    if (bClosing.exchange(1)) return; // a handler of the outer one, which waits already
    QuitKeeper keeper;
    if (ProgressThread* pEnding = pThread) {
        // For a dialog that is not up yet; it looks when it is.
        pEnding->SetCancel();
        ProgressDlg* pShown = pDlg;
        HWND hwnd = pShown && pShown->IsUp() ? static_cast<HWND>(*pShown) : nullptr;
        if (hwnd) ::PostMessageW(hwnd, WM_COMMAND, IDOK, 0);
        ::ProcessAllMessages(hwnd);
        pEnding->Stop(INFINITE);
        pThread = nullptr;
        pEnding->pNext = pEndedThread;
        while (!pEndedThread.compare_exchange_weak(pEnding->pNext, pEnding)) {
        }
        if (nCalls == 0) DeleteEndedThreads();
    } else {
        ::ProcessAllMessages();
    }
    bClosing = 0;
}

void Progress::DeleteEndedThreads() {
    for (ProgressThread* pEnded = pEndedThread.exchange(nullptr); pEnded;) {
        delete std::exchange(pEnded, pEnded->pNext);
    }
}

// The dialog, as far as it is there

/// The dialog once it is up, after it got what was stored. For use within a Call.
ProgressDlg* Progress::GetLiveDlg() {
    ProgressDlg* pShown = pDlg;
    if (!pShown || !pShown->IsUp() || bHandingOver) return nullptr;
    if (bHandedOver) return pShown;
    HandOver(pShown);
    return pDlg == pShown ? pShown : nullptr;
}

/// Each value is taken out before it is handed over: handlers that run meanwhile store newer ones,
/// which wait for the next call if they come too late for this one.
void Progress::HandOver(ProgressDlg* pShown) {
    bHandingOver = 1;
    if (wchar_t* psz = std::exchange(pszTitle, nullptr)) {
        pShown->SetTitle(psz);
        delete[] psz;
    }
    for (int nLine = 0; nLine < static_cast<int>(std::size(pszText)); ++nLine) {
        wchar_t* psz = std::exchange(pszText[nLine], nullptr);
        if (!psz) continue;
        // QUIRK: as any other text, these come too early while the interval runs, which the first
        // of them starts anew: the lines behind it are dropped. Test:
        // ProgressQuirks.StoredLinesAreDroppedWhileTheIntervalRuns
        ShowText(pShown, nLine, psz);
        delete[] psz;
    }
    if (nPendingLow >= 0 && nPendingHigh >= 0) {
        pShown->SetRange64(nPendingLow, nPendingHigh);
        nPendingLow = nPendingHigh = kNone;
    }
    if (nPendingSteps) pShown->SetPos64(std::exchange(nPendingSteps, 0));
    if (nPendingPos >= 0) pShown->SetPos64(std::exchange(nPendingPos, kNone));
    for (; nLateSteps && nPendingPos < 0; --nLateSteps) pShown->StepIt();
    if (dwTickerInterval) {
        pShown->EnableTicker(std::exchange(dwTickerInterval, 0u), dwTickerMax, pTickerResult);
    }
    bHandingOver = 0;
    bHandedOver = !IsAnythingStored();
}

/// Whether something waits for the dialog. A range and a position below 0 do not: -1 is none.
bool Progress::IsAnythingStored() const {
    bool bText = pszTitle != nullptr;
    for (const wchar_t* psz : pszText) bText = bText || psz;
    return bText || (nPendingLow >= 0 && nPendingHigh >= 0) || nPendingSteps || nPendingPos >= 0 ||
           nLateSteps || dwTickerInterval;
}

HWND Progress::GetDlgHWND() {
    Call call(*this);
    ProgressDlg* pShown = GetLiveDlg();
    return pShown && pShown->IsWindowThere() ? static_cast<HWND>(*pShown) : nullptr;
}

CSProgressCtrl* Progress::GetProgressCtrl() {
    Call call(*this);
    ProgressDlg* pShown = GetLiveDlg();
    return pShown ? &pShown->progressCtrl : nullptr;
}

ProgressEx* Progress::GetProgressEx() {
    CSProgressCtrl* pCtrl = GetProgressCtrl();
    return pCtrl ? pCtrl->GetProgressEx() : nullptr;
}

ProgressTicker* Progress::GetTicker() {
    Call call(*this);
    ProgressDlg* pShown = GetLiveDlg();
    return pShown ? pShown->pTicker : nullptr;
}

void Progress::Show(int bShow) {
    Call call(*this);
    ProgressDlg* pShown = GetLiveDlg();
    if (!pShown || !pShown->IsWindowThere()) return;
    HWND hwnd = *pShown;
    pShown->bHidden = !bShow;
    ::ShowWindow(hwnd, bShow ? SW_SHOW : SW_HIDE);
    if (bShow) ::SetForegroundWindow(hwnd);
}
