#pragma once
#include "runtime/base/export.h"
#include "runtime/base/ownership.h"
#include <windows.h>
#include <wtsapi32.h>
#include <span>

/// The terminal services' functions, found at run time so that the library starts on a system that
/// lacks them. While at least one object lives, the static members of the platform's names call the
/// platform; without an object, or on a system without the function, they return 0.
class TESSALY_API WtsApi32 {
  public:
    WtsApi32() noexcept; ///< Loads the functions, if this is the first object.
    ~WtsApi32();
    WtsApi32(const WtsApi32&) = delete; // owns the module
    WtsApi32& operator=(const WtsApi32&) = delete;

    /// The platform's functions of these names, with their results.
    ///@{
    static int WTSRegisterSessionNotification(HWND hwnd, DWORD dwFlags);
    static int WTSUnRegisterSessionNotification(HWND hwnd);
    static int WTSQuerySessionInformationW(HANDLE hServer, DWORD dwSession,
                                           WTS_INFO_CLASS nInfoClass, LPWSTR* ppBuffer,
                                           DWORD* pcbReturned);
    static void WTSFreeMemory(void* pMemory);
    static int WTSLogoffSession(HANDLE hServer, DWORD dwSession, BOOL bWait);
    static int WTSQueryUserToken(ULONG nSession, HANDLE* phToken);
    static DWORD WTSGetActiveConsoleSessionId();
    ///@}

    /// The id of a session, which may be given as WTS_CURRENT_SESSION; 0xFFFFFFFF if it cannot be
    /// asked.
    static DWORD GetSessionID(DWORD dwSession);
    /// The session's WTS_CONNECTSTATE_CLASS; 9 if it cannot be asked.
    static int GetSessionConnectState(DWORD dwSession);
    /// Logs the session off on this machine; dwFlags nonzero waits until it is done. Nonzero; 0
    /// when the platform refused.
    static int LogoffSession(DWORD dwSession, DWORD dwFlags);
    /// How many sessions this machine has; 0 if they cannot be listed.
    static DWORD GetSessionCount();
    /// The place in the list (not the id) of the last session that is active; 0xFFFFFFFF if none
    /// is.
    static DWORD GetActiveSessionID();
    /// The choice of GetActiveSessionID in a given list.
    static DWORD FindActiveSession(std::span<const WTS_SESSION_INFOW> sessions);

  private:
    OwnedModule hmod;
};
