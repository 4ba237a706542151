#include "runtime/system/wts_api32.h"
#include "runtime/base/ownership.h"
#include "runtime/system/runtime_func.h"
#include <atomic>
#include <cstring>

namespace {
constexpr const wchar_t* kWtsModule = L"wtsapi32.dll";
constexpr DWORD kNoSession = 0xFFFFFFFF;
constexpr int kNoConnectState = 9; // the sessions that the platform lists never have it

std::atomic<int> nObjects{0};

/// The function while an object lives; otherwise null, as if the system did not have it.
template <class Fn>
Fn* WhileLoaded(RuntimeFunc<Fn>& func) {
    return nObjects.load() > 0 ? func.Get() : nullptr;
}

/// One DWORD of what the platform knows about a session; 0 if it does not tell.
int QueryDword(DWORD dwSession, WTS_INFO_CLASS nInfoClass, DWORD& dwValue) {
    LPWSTR pBuffer = nullptr;
    DWORD cb = 0;
    if (!WtsApi32::WTSQuerySessionInformationW(WTS_CURRENT_SERVER_HANDLE, dwSession, nInfoClass,
                                               &pBuffer, &cb))
        return 0;
    if (!pBuffer) return 0;
    ScopeExit release([&] { WtsApi32::WTSFreeMemory(pBuffer); });
    if (cb < sizeof(dwValue)) return 0;
    std::memcpy(&dwValue, pBuffer, sizeof(dwValue));
    return 1;
}

/// This machine's sessions for as long as it lives.
class SessionList {
  public:
    SessionList() {
        if (!::WTSEnumerateSessionsW(WTS_CURRENT_SERVER_HANDLE, 0, 1, &pSessions, &nCount)) {
            pSessions = nullptr;
            nCount = 0;
        }
    }
    ~SessionList() {
        if (pSessions) WtsApi32::WTSFreeMemory(pSessions);
    }
    SessionList(const SessionList&) = delete;
    SessionList& operator=(const SessionList&) = delete;
    std::span<const WTS_SESSION_INFOW> Get() const { return {pSessions, pSessions ? nCount : 0}; }

  private:
    WTS_SESSION_INFOW* pSessions = nullptr;
    DWORD nCount = 0;
};
} // namespace

WtsApi32::WtsApi32() noexcept {
    // The direct import of WTSEnumerateSessionsW has mapped the module already: this only counts,
    // also under the loader lock.
    HMODULE hmodCounted = nullptr;
    if (LoadSystemModule(kWtsModule) && ::GetModuleHandleExW(0, kWtsModule, &hmodCounted))
        hmod.Reset(hmodCounted);
    ++nObjects;
}

WtsApi32::~WtsApi32() { --nObjects; }

int WtsApi32::WTSRegisterSessionNotification(HWND hwnd, DWORD dwFlags) {
    static constinit RuntimeFunc<decltype(::WTSRegisterSessionNotification)> func(
        kWtsModule, "WTSRegisterSessionNotification");
    auto* pfn = WhileLoaded(func);
    return pfn ? pfn(hwnd, dwFlags) : 0;
}

int WtsApi32::WTSUnRegisterSessionNotification(HWND hwnd) {
    static constinit RuntimeFunc<decltype(::WTSUnRegisterSessionNotification)> func(
        kWtsModule, "WTSUnRegisterSessionNotification");
    auto* pfn = WhileLoaded(func);
    return pfn ? pfn(hwnd) : 0;
}

int WtsApi32::WTSQuerySessionInformationW(HANDLE hServer, DWORD dwSession,
                                          WTS_INFO_CLASS nInfoClass, LPWSTR* ppBuffer,
                                          DWORD* pcbReturned) {
    static constinit RuntimeFunc<decltype(::WTSQuerySessionInformationW)> func(
        kWtsModule, "WTSQuerySessionInformationW");
    auto* pfn = WhileLoaded(func);
    return pfn ? pfn(hServer, dwSession, nInfoClass, ppBuffer, pcbReturned) : 0;
}

void WtsApi32::WTSFreeMemory(void* pMemory) {
    static constinit RuntimeFunc<decltype(::WTSFreeMemory)> func(kWtsModule, "WTSFreeMemory");
    if (auto* pfn = WhileLoaded(func)) pfn(pMemory);
}

int WtsApi32::WTSLogoffSession(HANDLE hServer, DWORD dwSession, BOOL bWait) {
    static constinit RuntimeFunc<decltype(::WTSLogoffSession)> func(kWtsModule, "WTSLogoffSession");
    auto* pfn = WhileLoaded(func);
    return pfn ? pfn(hServer, dwSession, bWait) : 0;
}

int WtsApi32::WTSQueryUserToken(ULONG nSession, HANDLE* phToken) {
    static constinit RuntimeFunc<decltype(::WTSQueryUserToken)> func(kWtsModule,
                                                                     "WTSQueryUserToken");
    auto* pfn = WhileLoaded(func);
    return pfn ? pfn(nSession, phToken) : 0;
}

DWORD WtsApi32::WTSGetActiveConsoleSessionId() {
    static constinit RuntimeFunc<DWORD WINAPI()> func(L"kernel32.dll",
                                                      "WTSGetActiveConsoleSessionId");
    auto* pfn = WhileLoaded(func);
    return pfn ? pfn() : 0;
}

DWORD WtsApi32::GetSessionID(DWORD dwSession) {
    DWORD dwId = 0;
    return QueryDword(dwSession, WTSSessionId, dwId) ? dwId : kNoSession;
}

int WtsApi32::GetSessionConnectState(DWORD dwSession) {
    DWORD dwState = 0;
    return QueryDword(dwSession, WTSConnectState, dwState) ? static_cast<int>(dwState)
                                                           : kNoConnectState;
}

int WtsApi32::LogoffSession(DWORD dwSession, DWORD dwFlags) {
    return WTSLogoffSession(WTS_CURRENT_SERVER_HANDLE, dwSession, static_cast<BOOL>(dwFlags));
}

DWORD WtsApi32::GetSessionCount() { return static_cast<DWORD>(SessionList().Get().size()); }

DWORD WtsApi32::GetActiveSessionID() { return FindActiveSession(SessionList().Get()); }

// QUIRK: the place in the list, not the session's id, and the last one if several are active.
// Test: WtsApi32.ActiveSessionIsThePlaceOfTheLastActiveOne
DWORD WtsApi32::FindActiveSession(std::span<const WTS_SESSION_INFOW> sessions) {
    DWORD nFound = kNoSession;
    for (DWORD i = 0; i < sessions.size(); ++i)
        if (sessions[i].State == WTSActive) nFound = i;
    return nFound;
}
