#pragma once
#include <windows.h>

/// Long enough for anything that is not waiting on a timer of the product's own.
constexpr DWORD kPatienceMs = 10000;

/// Asks until the condition holds or the time is over; the last answer.
template <class Condition>
bool WaitUntil(Condition condition, DWORD nMs = kPatienceMs) {
    ULONGLONG nEnd = ::GetTickCount64() + nMs;
    for (;;) {
        if (condition()) return true;
        if (::GetTickCount64() >= nEnd) return false;
        ::Sleep(10);
    }
}

/// True if the condition holds during all of the time: for what must not happen.
template <class Condition>
bool HoldsFor(Condition condition, DWORD nMs) {
    return !WaitUntil([&] { return !condition(); }, nMs);
}
