#include "host/close_running.h"
#include "app/identity/my_product_info.h"
#include "app/instance/single_instance.h"
#include "icons/agent/desktop_shared_data.h"
#include "runtime/base/ownership.h"
#include "wnd/core/company_msg.h"

namespace {
constexpr DWORD kPollMs = 50;

/// The time that is left of a wait that began at dwStart.
DWORD Remaining(DWORD dwStart, DWORD nTimeoutMs) {
    DWORD nPassed = ::GetTickCount() - dwStart;
    return nPassed < nTimeoutMs ? nTimeoutMs - nPassed : 0;
}

int IsNothingRunning() {
    SingleInstanceXP instance; // gives the mark back at once
    return instance.IsFirstInstance(0, GetMyProductInfo().GetName());
}

/// The running monitor's window, waiting for it while a program runs that has none yet. Null when
/// nothing runs or the time is over.
HWND WaitForMonitorWindow(DWORD dwStart, DWORD nTimeoutMs) {
    for (;;) {
        HWND hwnd = ::FindWindowW(kMonitorClass, nullptr);
        if (hwnd || IsNothingRunning() || !Remaining(dwStart, nTimeoutMs)) return hwnd;
        ::Sleep(kPollMs);
    }
}
} // namespace

int CloseRunning(DWORD nTimeoutMs) {
    DWORD dwStart = ::GetTickCount();
    HWND hwnd = WaitForMonitorWindow(dwStart, nTimeoutMs);
    if (!hwnd) return IsNothingRunning();
    DWORD dwProcess = 0;
    ::GetWindowThreadProcessId(hwnd, &dwProcess);
    // Null for another user's process, whose end takes its window and mark away.
    OwnedHandle process(::OpenProcess(SYNCHRONIZE, FALSE, dwProcess));
    HWND hwndAsked = nullptr;
    do {
        // When the shell restarts, the window goes with what was posted to it and a new one comes.
        hwnd = ::FindWindowW(kMonitorClass, nullptr);
        if (hwnd && hwnd != hwndAsked)
            PostMyCompanyMsg(hwndAsked = hwnd, kCompanyCodeClose, GetMyProductInfo().GetID());
        if (!process) {
            if (!hwnd && IsNothingRunning()) return 1;
            ::Sleep(kPollMs);
        } else if (::WaitForSingleObject(process.Get(), kPollMs) == WAIT_OBJECT_0) {
            return 1;
        }
    } while (Remaining(dwStart, nTimeoutMs));
    return 0;
}
