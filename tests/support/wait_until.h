#pragma once
#include <windows.h>

/// What a test waits for at most before it fails; far more than anything here takes.
constexpr DWORD kTestDeadlineMs = 10000;

/// Polls until fnDone gives true; false at the deadline.
template <class Fn>
bool WaitUntil(Fn fnDone, DWORD nDeadlineMs = kTestDeadlineMs) {
    DWORD nStart = ::GetTickCount();
    while (!fnDone()) {
        if (::GetTickCount() - nStart > nDeadlineMs) return false;
        ::Sleep(5);
    }
    return true;
}

/// The same on a thread with windows: dispatches its messages while it waits.
template <class Fn>
bool PumpUntil(Fn fnDone, DWORD nDeadlineMs = kTestDeadlineMs) {
    return WaitUntil(
        [&] {
            MSG msg;
            while (::PeekMessageW(&msg, nullptr, 0, 0, PM_REMOVE)) ::DispatchMessageW(&msg);
            return fnDone();
        },
        nDeadlineMs);
}
