#include "runtime/threads/message_pump.h"
#include "runtime/threads/spin_lock.h"

namespace {
constinit SpinLock quitLock;
constinit QuitKeeper* pKeepers = nullptr; // of all threads, a thread's innermost one first
} // namespace

QuitKeeper::QuitKeeper() noexcept : dwThread(::GetCurrentThreadId()) {
    SpinLock::Guard lock(quitLock);
    pNext = pKeepers;
    pKeepers = this;
}

QuitKeeper::~QuitKeeper() {
    {
        SpinLock::Guard lock(quitLock);
        QuitKeeper** ppLink = &pKeepers;
        while (*ppLink != this) ppLink = &(*ppLink)->pNext;
        *ppLink = pNext;
    }
    if (bTaken)
        ::PostQuitMessage(nExitCode); // an outer keeper takes it out again if it has to wait
}

void QuitKeeper::Note(WPARAM nCode) noexcept {
    SpinLock::Guard lock(quitLock);
    for (QuitKeeper* p = pKeepers; p; p = p->pNext) {
        if (p->dwThread != ::GetCurrentThreadId()) continue;
        p->bTaken = true;
        p->nExitCode = static_cast<int>(nCode);
        return;
    }
}

int ProcessAllMessages(HWND hwnd) {
    int bGoOn = 1;
    MSG msg;
    while (::PeekMessageW(&msg, hwnd, 0, 0, PM_REMOVE)) {
        if (msg.message == WM_QUIT) {
            bGoOn = 0;
            QuitKeeper::Note(msg.wParam);
        }
        ::TranslateMessage(&msg);
        ::DispatchMessageW(&msg);
    }
    return bGoOn;
}

bool WaitPumpingMessages(HANDLE h, DWORD nTimeoutMs) {
    // The mask of 2000 to today without the touch and pointer input that later headers add.
    constexpr DWORD kAllInput = 1279;
    for (;;) {
        switch (::MsgWaitForMultipleObjects(1, &h, FALSE, nTimeoutMs, kAllInput)) {
        case WAIT_TIMEOUT: return false;
        case WAIT_OBJECT_0:
        case WAIT_ABANDONED_0:
        case WAIT_FAILED: return true;
        }
        ProcessAllMessages();
    }
}

int CSTimer::Start(HWND hwndOwner, unsigned nPeriodMs, TIMERPROC pfnTimer, unsigned nDefaultId) {
    // SetTimer replaces a timer only by the same window and id; any other would tick on unowned.
    if (!hwndOwner || hwndOwner != hwnd) Stop();
    hwnd = hwndOwner;
    if (nId == 0) nId = nDefaultId;
    uTimer = static_cast<unsigned>(::SetTimer(hwnd, nId, nPeriodMs, pfnTimer));
    return uTimer != 0;
}

void CSTimer::Stop() {
    if (uTimer) ::KillTimer(hwnd, hwnd ? nId : uTimer);
    uTimer = 0;
}
