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
Fn* FindWhileLoaded(const char* pszName, const wchar_t* pszModule = kWtsModule) {
    return nObjects.load() > 0 ? FindSystemFunc<Fn>(pszModule, pszName) : nullptr;
}

/// One DWORD of what the platform knows about a session; false if it does not tell.
bool QueryDword(DWORD dwSession, WTS_INFO_CLASS nInfoClass, DWORD& dwValue) {
    LPWSTR pBuffer = nullptr;
    DWORD cb = 0;
    if (!WtsApi32::WTSQuerySessionInformationW(WTS_CURRENT_SERVER_HANDLE, dwSession, nInfoClass,
                                               &pBuffer, &cb))
        return false;
    if (!pBuffer) return false;
    ScopeExit release([&] { WtsApi32::WTSFreeMemory(pBuffer); });
    if (cb < sizeof(dwValue)) return false;
    std::memcpy(&dwValue, pBuffer, sizeof(dwValue));
    return true;
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
        if (pSessions) ::WTSFreeMemory(pSessions); // as it was had: whether or not an object lives
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
    auto* pfn = FindWhileLoaded<decltype(::WTSRegisterSessionNotification)>(
        "WTSRegisterSessionNotification");
    return pfn ? pfn(hwnd, dwFlags) : 0;
}

int WtsApi32::WTSUnRegisterSessionNotification(HWND hwnd) {
    auto* pfn = FindWhileLoaded<decltype(::WTSUnRegisterSessionNotification)>(
        "WTSUnRegisterSessionNotification");
    return pfn ? pfn(hwnd) : 0;
}

int WtsApi32::WTSQuerySessionInformationW(HANDLE hServer, DWORD dwSession,
                                          WTS_INFO_CLASS nInfoClass, LPWSTR* ppBuffer,
                                          DWORD* pcbReturned) {
    auto* pfn =
        FindWhileLoaded<decltype(::WTSQuerySessionInformationW)>("WTSQuerySessionInformationW");
    return pfn ? pfn(hServer, dwSession, nInfoClass, ppBuffer, pcbReturned) : 0;
}

void WtsApi32::WTSFreeMemory(void* pMemory) {
    if (auto* pfn = FindWhileLoaded<decltype(::WTSFreeMemory)>("WTSFreeMemory")) pfn(pMemory);
}

int WtsApi32::WTSLogoffSession(HANDLE hServer, DWORD dwSession, BOOL bWait) {
    auto* pfn = FindWhileLoaded<decltype(::WTSLogoffSession)>("WTSLogoffSession");
    return pfn ? pfn(hServer, dwSession, bWait) : 0;
}

int WtsApi32::WTSQueryUserToken(ULONG nSession, HANDLE* phToken) {
    auto* pfn = FindWhileLoaded<decltype(::WTSQueryUserToken)>("WTSQueryUserToken");
    return pfn ? pfn(nSession, phToken) : 0;
}

DWORD WtsApi32::WTSGetActiveConsoleSessionId() {
    auto* pfn = FindWhileLoaded<DWORD WINAPI()>("WTSGetActiveConsoleSessionId", L"kernel32.dll");
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
