#pragma once
#include <windows.h>

// Waiting in tests, of the library's parts and of the whole alike: by a condition that is asked
// again and again, and with a deadline.

/// What a test waits for at most before it fails; far more than anything takes that does not wait
/// for a timer of the product's own.
constexpr DWORD kTestDeadlineMs = 10000;

/// Asks fnDone until it gives true; false at the deadline. The thread's messages lie meanwhile: it
/// must have no windows that somebody sends to. The pauses grow from 1 to 10 ms.
template <class Fn>
bool WaitUntil(Fn fnDone, DWORD nDeadlineMs = kTestDeadlineMs) {
    constexpr DWORD kLongestPauseMs = 10;
    DWORD nStart = ::GetTickCount();
    for (DWORD nPauseMs = 1; !fnDone();
         nPauseMs = nPauseMs * 2 < kLongestPauseMs ? nPauseMs * 2 : kLongestPauseMs) {
        if (::GetTickCount() - nStart >= nDeadlineMs) return false;
        ::Sleep(nPauseMs);
    }
    return true;
}

/// WaitUntil for a thread with windows: dispatches its messages while it waits, WM_QUIT as little
/// as a loop does that has not ended.
template <class Fn>
bool PumpUntil(Fn fnDone, DWORD nDeadlineMs = kTestDeadlineMs) {
    constexpr DWORD kPauseMs = 5; // at most: the next message ends it
    DWORD nStart = ::GetTickCount();
    for (;;) {
        MSG msg;
        while (::PeekMessageW(&msg, nullptr, 0, 0, PM_REMOVE)) ::DispatchMessageW(&msg);
        if (fnDone()) return true;
        if (::GetTickCount() - nStart >= nDeadlineMs) return false;
        ::MsgWaitForMultipleObjects(0, nullptr, FALSE, kPauseMs, QS_ALLINPUT);
    }
}

/// True if fnHolds gives true during all of that time: for what must not happen.
template <class Fn>
bool HoldsFor(Fn fnHolds, DWORD nMs) {
    return !WaitUntil([&] { return !fnHolds(); }, nMs);
}
