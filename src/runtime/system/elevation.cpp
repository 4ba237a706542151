#include "runtime/system/elevation.h"
#include "runtime/system/runtime_func.h"
#include "runtime/system/system_facts.h"

namespace {
// Of winnt.h from Windows Vista on.
constexpr auto kTokenElevationType = static_cast<TOKEN_INFORMATION_CLASS>(18);
constexpr auto kTokenElevation = static_cast<TOKEN_INFORMATION_CLASS>(20);
constexpr DWORD kElevationTypeDefault = 1;

/// One DWORD of what this process's token tells; dwDefault if it does not.
DWORD ReadTokenDword(TOKEN_INFORMATION_CLASS nInfoClass, DWORD dwDefault) {
    AccessToken token;
    if (!token.OpenProcess(TOKEN_QUERY)) return dwDefault;
    DWORD dwValue = 0, cb = 0;
    if (!::GetTokenInformation(token, nInfoClass, &dwValue, sizeof(dwValue), &cb)) return dwDefault;
    return cb == sizeof(dwValue) ? dwValue : dwDefault;
}
} // namespace

int AccessToken::OpenProcess(DWORD dwAccess) {
    return ::OpenProcessToken(::GetCurrentProcess(), dwAccess, h.Put()) != 0;
}

int GetElevationType() {
    return static_cast<int>(ReadTokenDword(kTokenElevationType, kElevationTypeDefault));
}

int IsSplitToken() { return GetElevationType() != static_cast<int>(kElevationTypeDefault); }

int IsElevated() { return ReadTokenDword(kTokenElevation, 0) != 0; }

int IsAdminXP() {
    auto* pfn = FindSystemFunc<BOOL WINAPI()>(L"shell32.dll", "IsUserAnAdmin");
    return !pfn || pfn();
}

int EnablePrivilege(const wchar_t* pszName, int bOn) {
    if (!WinNT() || !pszName) return 0;
    AccessToken token;
    if (!token.OpenProcess(TOKEN_ADJUST_PRIVILEGES | TOKEN_QUERY)) return 0;
    TOKEN_PRIVILEGES privileges{};
    privileges.PrivilegeCount = 1;
    privileges.Privileges[0].Attributes = bOn ? SE_PRIVILEGE_ENABLED : 0;
    if (!::LookupPrivilegeValueW(nullptr, pszName, &privileges.Privileges[0].Luid)) return 0;
    ::SetLastError(ERROR_SUCCESS);
    ::AdjustTokenPrivileges(token, FALSE, &privileges, 0, nullptr, nullptr);
    // The call succeeds also for a token without the privilege; only the error tells.
    return ::GetLastError() == ERROR_SUCCESS;
}

int SetupExitToken() { return !WinNT() || EnablePrivilege(L"SeShutdownPrivilege", 1); }

int MyDuplicateTokenEx(HANDLE hToken, DWORD dwAccess, SECURITY_ATTRIBUTES* pSecurity,
                       SECURITY_IMPERSONATION_LEVEL nLevel, TOKEN_TYPE nType, HANDLE* phNew) {
    return ::DuplicateTokenEx(hToken, dwAccess, pSecurity, nLevel, nType, phNew) != 0;
}
