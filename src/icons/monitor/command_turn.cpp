#include "icons/monitor/command_turn.h"

namespace {
constexpr const wchar_t* kTurnName = L"Local\\Tessaly.Command";
constexpr DWORD kTurnPollMs = 50;

/// Owned after it: released by its last owner, or left by one that has ended.
bool WaitForMutex(HANDLE hMutex, DWORD nTimeoutMs) {
    DWORD dwResult = ::WaitForSingleObject(hMutex, nTimeoutMs);
    return dwResult == WAIT_OBJECT_0 || dwResult == WAIT_ABANDONED;
}
} // namespace

bool CommandTurn::Take(DWORD nTimeoutMs) {
    Release();
    DWORD dwStart = ::GetTickCount();
    for (DWORD nPassed = 0;; nPassed = ::GetTickCount() - dwStart) {
        OwnedHandle mutex(::CreateMutexW(nullptr, FALSE, kTurnName));
        if (mutex) {
            DWORD nLeft = nPassed < nTimeoutMs ? nTimeoutMs - nPassed : 0;
            if (!WaitForMutex(mutex.Get(), nLeft)) return false;
            hMutex = std::move(mutex);
            return true;
        }
        // Something else has the name, or somebody with higher rights, who will be done.
        if (nPassed >= nTimeoutMs) return false;
        ::Sleep(kTurnPollMs);
    }
}

void CommandTurn::Release() {
    if (!hMutex) return;
    ::ReleaseMutex(hMutex.Get());
    hMutex.Reset();
}
