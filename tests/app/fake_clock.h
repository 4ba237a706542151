#pragma once
#include "support/replace_import.h"

#include <windows.h>

extern "C" FARPROC __imp_GetSystemTime;

/// A moment in the product's unit, seconds since the 26th of December 1995, as the platform tells
/// it.
inline SYSTEMTIME MomentOf(DWORD dwSeconds) {
    constexpr unsigned __int64 kTicks = 10'000'000; // of a file time, per second
    const unsigned __int64 qw = (11'644'473'600ull + 819'936'000ull + dwSeconds) * kTicks;
    const FILETIME ft{static_cast<DWORD>(qw), static_cast<DWORD>(qw >> 32)};
    SYSTEMTIME st{};
    ::FileTimeToSystemTime(&ft, &st);
    return st;
}

/// The clock stands for the length of a block. One at a time.
class FakeClock {
  public:
    explicit FakeClock(DWORD dwSeconds) : FakeClock(MomentOf(dwSeconds)) {}
    explicit FakeClock(const SYSTEMTIME& st) : replaced(__imp_GetSystemTime, &Tell) { now = st; }
    void Set(DWORD dwSeconds) { now = MomentOf(dwSeconds); }

  private:
    static void WINAPI Tell(SYSTEMTIME* p) { *p = now; }
    static inline SYSTEMTIME now{};
    ReplaceImport replaced;
};
