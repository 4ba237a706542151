// What the worker reports: to the dialog if it is up, otherwise stored for it.

#include "progress/progress.h"
#include "progress/progress_dlg.h"
#include "runtime/base/heap_array.h"
#include "runtime/messages/res_str.h"
#include "runtime/text/text_format.h"
#include "runtime/threads/message_pump.h"

#include <cstdarg>
#include <cwchar>
#include <new>
#include <utility>

namespace {
constexpr unsigned kDefaultLines = 4;
constexpr int kTextLine = 1; // of Init and NextStep

/// An owned text becomes a copy of another one; null for null and when out of memory.
void ReplaceText(wchar_t*& pszOwned, const wchar_t* pszNew) {
    const std::size_t cch = pszNew ? std::wcslen(pszNew) + 1 : 0;
    wchar_t* pszCopy = cch ? new (std::nothrow) wchar_t[cch] : nullptr;
    if (pszCopy) std::wmemcpy(pszCopy, pszNew, cch);
    delete[] std::exchange(pszOwned, pszCopy);
}
} // namespace

// Text

void Progress::SetTitle(const wchar_t* pszNew) {
    Call call(*this);
    if (ProgressDlg* pShown = GetLiveDlg()) {
        pShown->SetTitle(pszNew);
    } else {
        ReplaceText(pszTitle, pszNew);
    }
}

void Progress::SetTitleFmt(const wchar_t* pszFormat, ...) {
    wchar_t szText[kMessageSize];
    va_list args;
    va_start(args, pszFormat);
    FormatTextV(szText, std::size(szText), pszFormat, args);
    va_end(args);
    SetTitle(szText);
}

void Progress::SetText(int nLine, const wchar_t* pszNew) {
    if (nLine < 0 || nLine >= static_cast<int>(std::size(pszText))) return;
    Call call(*this);
    if (ProgressDlg* pShown = GetLiveDlg()) {
        ShowText(pShown, nLine, pszNew);
        return;
    }
    if (pszNew != pszText[nLine]) ReplaceText(pszText[nLine], pszNew);
    TestClock();
}

void Progress::SetTextFmt(int nLine, const wchar_t* pszFormat, ...) {
    wchar_t szText[kMessageSize];
    va_list args;
    va_start(args, pszFormat);
    FormatTextV(szText, std::size(szText), pszFormat, args);
    va_end(args);
    SetText(nLine, szText);
}

void Progress::ShowText(ProgressDlg* pShown, int nLine, const wchar_t* pszNew) {
    if (dwNextTextTick && static_cast<int>(::GetTickCount() - dwNextTextTick) < 0) return;
    pShown->SetText(nLine, pszNew);
    dwNextTextTick = dwTextInterval ? GetTickAfter(dwTextInterval) : 0;
    // The dialog has a queue of its own: what waits here is a worker's that is an interface thread.
    QuitKeeper keeper;
    ::ProcessAllMessages();
}

void Progress::SetLinesCount(unsigned nCount) { nLines = nCount ? nCount : kDefaultLines; }

// Numbers

void Progress::Init(unsigned nMax, unsigned nTitleId, unsigned nTextId) {
    SetRange64(0, nMax);
    SetPos64(0);
    SetTitle(ResStr(static_cast<int>(nTitleId)));
    SetText(kTextLine, ResStr(static_cast<int>(nTextId)));
}

void Progress::SetRange(int nLow, int nHigh) {
    Call call(*this);
    if (ProgressDlg* pShown = GetLiveDlg()) {
        pShown->SetRange(nLow, nHigh);
    } else {
        SetRange64(nLow, nHigh);
    }
}

void Progress::SetRange64(__int64 qnLow, __int64 qnHigh) {
    Call call(*this);
    if (ProgressDlg* pShown = GetLiveDlg()) {
        pShown->SetRange64(qnLow, qnHigh);
        return;
    }
    nPendingLow = qnLow;
    nPendingHigh = qnHigh;
}

void Progress::SetPos(long lPos) { SetPos64(lPos); }

void Progress::SetPos64(__int64 qnPos) {
    nPos = qnPos;
    Call call(*this);
    if (ProgressDlg* pShown = GetLiveDlg()) {
        pShown->SetPos64(qnPos);
    } else {
        nPendingPos = qnPos;
        nLateSteps = 0;
    }
}

/// StepIt once there is a dialog, up or not.
void Progress::StepDlg() {
    ProgressDlg* pShown = pDlg;
    const bool bLive = pShown && pShown->IsUp() && bHandedOver && !bHandingOver;
    if (bLive && !pShown->CountSubStep()) return; // most steps: nothing is sent, nobody comes in
    Call call(*this);
    if (bLive) {
        pShown->StepBar();
    } else if ((pShown = GetLiveDlg()) != nullptr) {
        pShown->StepIt();
    } else if (bHandingOver) {
        ++nLateSteps;
    } else {
        ++nPendingSteps;
        TestClock();
    }
}

int Progress::NextStep(unsigned nTextId) {
    if (bCanceled) return 0;
    StepIt();
    SetText(kTextLine, ResStr(static_cast<int>(nTextId)));
    return 1;
}

void Progress::EnableTicker(unsigned long dwIntervalMs, unsigned long dwMax,
                            unsigned long* pdwResult) {
    Call call(*this);
    if (ProgressDlg* pShown = GetLiveDlg()) {
        if (dwIntervalMs) pShown->EnableTicker(dwIntervalMs, dwMax, pdwResult);
        return;
    }
    dwTickerInterval = dwIntervalMs;
    dwTickerMax = dwMax;
    pTickerResult = pdwResult;
}

void Progress::PauseTicker(int bPause) {
    Call call(*this);
    if (ProgressDlg* pShown = GetLiveDlg()) pShown->PauseTicker(bPause);
}

// Guards

ProgressPauseHide::ProgressPauseHide(Progress* pToHide) : pProgress(pToHide) {
    if (!pProgress) return;
    pProgress->PauseTicker(1);
    pProgress->Show(0);
}

ProgressPauseHide::~ProgressPauseHide() {
    if (!pProgress) return;
    pProgress->Show(1);
    pProgress->PauseTicker(0);
}
