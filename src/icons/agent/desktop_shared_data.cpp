#include "icons/agent/desktop_shared_data.h"
#include "runtime/base/ownership.h"
#include "runtime/system/wts_api32.h"

#include <wtsapi32.h>
#include <algorithm>
#include <cwchar>
#include <span>

// There is no lock: each word is written before the message is posted that makes the shell read it,
// and the monitor's thread is the only writer.
//
// The initialiser keeps the table out of .bss, which would not be shared. A section's name has at
// most eight characters in an image.
__attribute__((section(".SDATA"), shared)) SessionTable sharedSessions = {};

namespace {
constinit SessionWords sessionWords{sharedSessions};

constexpr int kCchClass = 32; // a longer class name is not the monitor window's
constexpr LONG kNobody = 0;

/// This process's session as the holder of a place; kNobody if the platform does not tell it.
LONG GetOwnHolder() {
    DWORD dwSession = 0;
    if (!::ProcessIdToSessionId(::GetCurrentProcessId(), &dwSession)) return kNobody;
    return static_cast<LONG>(dwSession + 1);
}

bool HasSession(std::span<const WTS_SESSION_INFOW> sessions, LONG nHolder) {
    return std::ranges::any_of(sessions, [nHolder](const WTS_SESSION_INFOW& session) {
        return static_cast<LONG>(session.SessionId + 1) == nHolder;
    });
}

/// The first place that is the holder's or becomes it. Whoever of the same session does this at the
/// same time ends at the same place: both come to the first free one.
SessionPlace* TakePlace(SessionTable& table, LONG nHolder, bool& bNew) {
    for (SessionPlace& place : table.places) {
        LONG nBefore = ::InterlockedCompareExchange(&place.nHolder, nHolder, kNobody);
        bNew = nBefore == kNobody;
        if (bNew || nBefore == nHolder) return &place;
    }
    return nullptr;
}

/// The first place whose session has ended, made the holder's. No process of such a session is
/// there any more that could look at it.
SessionPlace* TakeOverPlace(SessionTable& table, LONG nHolder, bool& bNew) {
    WTS_SESSION_INFOW* pSessions = nullptr;
    DWORD nSessions = 0;
    if (!::WTSEnumerateSessionsW(WTS_CURRENT_SERVER_HANDLE, 0, 1, &pSessions, &nSessions) ||
        !pSessions)
        return nullptr;
    ScopeExit release([&] { WtsApi32::WTSFreeMemory(pSessions); });
    std::span<const WTS_SESSION_INFOW> sessions(pSessions, nSessions);
    // A list without the session that asks is no list of all sessions.
    if (!HasSession(sessions, nHolder)) return nullptr;
    for (SessionPlace& place : table.places) {
        LONG nBefore = place.nHolder;
        bNew = !HasSession(sessions, nBefore) &&
               ::InterlockedCompareExchange(&place.nHolder, nHolder, nBefore) == nBefore;
        // Not new: another process of the logon session was faster.
        if (bNew || place.nHolder == nHolder) return &place;
    }
    return nullptr;
}
} // namespace

DesktopSharedData& GetDesktopSharedData() { return sessionWords.Get(); }

bool ClaimDesktopSharedData() { return sessionWords.Claim(); }

HHOOK GetSharedHook() { return sessionWords.GetIfFound().hhook; }

bool IsMonitorWindow(HWND hwnd) {
    wchar_t szClass[kCchClass];
    return hwnd && ::GetClassNameW(hwnd, szClass, kCchClass) &&
           std::wcscmp(szClass, kMonitorClass) == 0;
}

DesktopSharedData& SessionWords::Get() {
    if (!IsFound()) {
        LONG nHolder = GetOwnHolder();
        for (SessionPlace& place : table.places) {
            if (place.nHolder == kNobody) break; // all behind it are nobody's, too
            if (place.nHolder != nHolder) continue;
            Keep(place);
            break;
        }
    }
    return *pWords.load(std::memory_order_relaxed);
}

bool SessionWords::Claim() {
    if (IsFound()) return true;
    LONG nHolder = GetOwnHolder();
    if (nHolder == kNobody) return false;
    bool bNew = false;
    SessionPlace* pPlace = TakePlace(table, nHolder, bNew);
    if (!pPlace) pPlace = TakeOverPlace(table, nHolder, bNew);
    if (!pPlace) return false;
    // A monitor of the logon session that was killed has left its words: those are looked at as
    // before.
    if (bNew) pPlace->words = ownWords;
    Keep(*pPlace);
    return true;
}
