#include "runtime/threads/cs_timer.h"

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
