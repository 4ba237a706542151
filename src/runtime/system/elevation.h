#pragma once
#include "runtime/base/export.h"
#include "runtime/base/ownership.h"
#include <windows.h>

/// An access token for as long as the object lives; empty without one.
class TESSALY_API AccessToken {
  public:
    AccessToken() = default;
    /// Takes the handle over.
    explicit AccessToken(HANDLE hTaken) : h(hTaken) {}
    AccessToken(const AccessToken&) = delete; // owns the handle
    AccessToken& operator=(const AccessToken&) = delete;

    /// This process's token, with TOKEN_... rights; what was held is closed. Returns 1; 0 when the
    /// platform refused (GetLastError is kept).
    [[nodiscard]] int OpenProcess(DWORD dwAccess);
    operator HANDLE() const { return h.Get(); }

  private:
    OwnedHandle h;
};

/// The TOKEN_ELEVATION_TYPE of this process; 1, the default, where there is no such thing.
TESSALY_API int GetElevationType();
/// 1 if the user has two tokens, one of them with fewer rights.
TESSALY_API int IsSplitToken();
/// 1 if this process runs with the full token; 0 before Windows Vista.
TESSALY_API int IsElevated();
/// 1 if the user is an administrator, and 1 on systems that cannot tell.
TESSALY_API int IsAdminXP();

/// Turns a privilege such as SE_SHUTDOWN_NAME of this process on or off. Returns 1; 0 if the
/// process does not have it (GetLastError tells why).
TESSALY_API int EnablePrivilege(const wchar_t* pszName, int bOn);
/// Allows this process to shut the system down. 1, also where no privilege is needed; 0 if the
/// process may not (GetLastError tells why).
TESSALY_API int SetupExitToken();
/// The platform's DuplicateTokenEx. 1; 0 when it refused (GetLastError is kept).
[[nodiscard]] TESSALY_API int MyDuplicateTokenEx(HANDLE hToken, DWORD dwAccess,
                                                 SECURITY_ATTRIBUTES* pSecurity,
                                                 SECURITY_IMPERSONATION_LEVEL nLevel,
                                                 TOKEN_TYPE nType, HANDLE* phNew);
