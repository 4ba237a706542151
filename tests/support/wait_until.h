#pragma once
#include <windows.h>

// Waiting in tests, of the library's parts and of the whole alike: by a condition that is asked
// again and again, and with a deadline.

/// What a test waits for at most before it fails; far more than anything takes that does not wait
/// for a timer of the product's own.
constexpr DWORD kTestDeadlineMs = 10000;

/// The pause before the next question: a twentieth of what has passed, from 1 to 40 ms. What is
/// waited for often has to be asked another program.
inline DWORD PauseAfter(DWORD nPassedMs) {
    constexpr DWORD kLongestMs = 40;
    return nPassedMs < 20 ? 1 : nPassedMs < 20 * kLongestMs ? nPassedMs / 20 : kLongestMs;
}

/// Asks fnDone until it gives true; false at the deadline. The thread's messages lie meanwhile: it
/// must have no windows that somebody sends to.
template <class Fn>
bool WaitUntil(Fn fnDone, DWORD nDeadlineMs = kTestDeadlineMs) {
    DWORD nStart = ::GetTickCount();
    while (!fnDone()) {
        DWORD nPassedMs = ::GetTickCount() - nStart;
        if (nPassedMs >= nDeadlineMs) return false;
        ::Sleep(PauseAfter(nPassedMs));
    }
    return true;
}

/// WaitUntil for a thread with windows: dispatches its messages while it waits, WM_QUIT as little
/// as a loop does that has not ended.
template <class Fn>
bool PumpUntil(Fn fnDone, DWORD nDeadlineMs = kTestDeadlineMs) {
    DWORD nStart = ::GetTickCount();
    for (;;) {
        MSG msg;
        while (::PeekMessageW(&msg, nullptr, 0, 0, PM_REMOVE)) ::DispatchMessageW(&msg);
        if (fnDone()) return true;
        DWORD nPassedMs = ::GetTickCount() - nStart;
        if (nPassedMs >= nDeadlineMs) return false;
        // The next message ends it.
        ::MsgWaitForMultipleObjects(0, nullptr, FALSE, PauseAfter(nPassedMs), QS_ALLINPUT);
    }
}

/// True if fnHolds gives true during all of that time: for what must not happen.
template <class Fn>
bool HoldsFor(Fn fnHolds, DWORD nMs) {
    return !WaitUntil([&] { return !fnHolds(); }, nMs);
}
