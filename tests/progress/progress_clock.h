#pragma once
#include "support/replace_import.h"

#include <windows.h>
#include <atomic>
#include <chrono>

extern "C" FARPROC __imp_GetTickCount;

/// A tick count that stands still until the test moves it, for all threads of the program. What
/// waits by the tick count waits for good meanwhile: PumpInRealTime does not.
class FakeClock {
  public:
    explicit FakeClock(DWORD dwStart = kStart) { nNow = dwStart; }
    void Set(DWORD dwTick) { nNow = dwTick; }
    void Advance(DWORD nMs) { nNow += nMs; }
    DWORD Get() const { return nNow; }

    static constexpr DWORD kStart = 100000;

  private:
    static DWORD WINAPI Now() { return nNow; }
    static inline std::atomic<DWORD> nNow;
    ReplaceImport replaced{__imp_GetTickCount, &Now};
};

/// PumpUntil of support/wait_until.h by another clock than the tick count.
template <class Fn>
bool PumpInRealTime(Fn fnDone, std::chrono::milliseconds deadline = std::chrono::seconds(10)) {
    constexpr DWORD kPauseMs = 2; // at most: the next message ends it
    auto tEnd = std::chrono::steady_clock::now() + deadline;
    for (;;) {
        MSG msg;
        while (::PeekMessageW(&msg, nullptr, 0, 0, PM_REMOVE)) ::DispatchMessageW(&msg);
        if (fnDone()) return true;
        if (std::chrono::steady_clock::now() >= tEnd) return false;
        ::MsgWaitForMultipleObjects(0, nullptr, FALSE, kPauseMs, QS_ALLINPUT);
    }
}
