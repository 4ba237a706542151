#include "progress/progress_ticker.h"
#include "runtime/threads/message_pump.h"

#include <commctrl.h>
#include <algorithm>
#include <memory>
#include <new>

namespace {
/// How long a step waits for the bar's thread; a thread that hangs gets it later.
constexpr UINT kStepTimeoutMs = 1000;
constexpr DWORD kTickerEndTimeoutMs = 6000;

/// Up to 65,535 by the message that every bar knows.
void SetBarRange(HWND hwndBar, unsigned dwMax) {
    if (dwMax <= 0xFFFF) {
        ::SendMessageW(hwndBar, PBM_SETRANGE, 0, MAKELPARAM(0, dwMax));
    } else {
        ::SendMessageW(hwndBar, PBM_SETRANGE32, 0, static_cast<LPARAM>(dwMax));
    }
}
} // namespace

// The thread

ProgressTickerThread::ProgressTickerThread(ProgressTicker* pOf, unsigned long dwIntervalMs)
    : pTicker(pOf), dwInterval(std::max(dwIntervalMs, 1ul)) {}

ProgressTickerThread::~ProgressTickerThread() { Destroy(kTickerEndTimeoutMs); }

unsigned ProgressTickerThread::DoThreadEx() {
    // A wait on the event that stops it in place of a plain sleep: the end need not wait for it.
    while (!IsCanceled()) {
        pTicker->StepIt();
        if (WaitForCancel(dwInterval)) break;
    }
    return 0;
}

// The ticker

ProgressTicker::ProgressTicker(HWND hwndProgressBar, unsigned long dwIntervalMs,
                               unsigned long dwMaxPos, int bShow, unsigned long* pdwResult)
    : hwndBar(hwndProgressBar), dwInterval(dwIntervalMs), bShowHide(bShow), pResult(pdwResult),
      dwMax(dwMaxPos), pThread(new (std::nothrow) ProgressTickerThread(this, dwIntervalMs)) {
    QuitKeeper keeper;
    SetBarRange(hwndBar, dwMax);
    ::SendMessageW(hwndBar, PBM_SETPOS, 0, 0);
    ::SendMessageW(hwndBar, PBM_SETSTEP, 1, 0);
    if (bShowHide) ::ShowWindow(hwndBar, SW_SHOW);
    if (pThread) pThread->Start(THREAD_PRIORITY_ABOVE_NORMAL);
}

ProgressTicker::~ProgressTicker() {
    QuitKeeper keeper;
    if (std::unique_ptr<ProgressTickerThread> pEnding{pThread}) {
        // The thread may be sending to the bar, and that may be this thread's: this wait lets the
        // message in. Without a limit, as the thread uses this object; its own waits have one.
        pEnding->Stop(INFINITE);
    }
    if (bShowHide) ::ShowWindow(hwndBar, SW_HIDE);
    if (pResult) *pResult = dwPos;
}

void ProgressTicker::StepIt() {
    if (bPaused) return;
    unsigned dwBefore = dwPos.load();
    do {
        if (dwBefore >= dwMax) return;
    } while (!dwPos.compare_exchange_weak(dwBefore, dwBefore + 1));
    // With a limit, so that a bar's thread that hangs can't keep the ticker's from its end.
    DWORD_PTR dwResult = 0;
    ::SendMessageTimeoutW(hwndBar, PBM_STEPIT, 0, 0, SMTO_NORMAL, kStepTimeoutMs, &dwResult);
    QuitKeeper keeper;
    ::ProcessAllMessages(hwndBar);
}

void ProgressTicker::Pause(int bPause) { bPaused = bPause; }

ProgressTickerPause::ProgressTickerPause(ProgressTicker* pToPause) : pTicker(pToPause) {
    if (pTicker) pTicker->Pause(1);
}

ProgressTickerPause::~ProgressTickerPause() {
    if (pTicker) pTicker->Pause(0);
}
