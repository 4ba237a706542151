#include "runtime/threads/synch.h"
#include "runtime/base/ownership.h"
#include "runtime/system/system_facts.h"
#include "runtime/text/str_format.h"

#include <sddl.h>

namespace {
constexpr unsigned kMaxDescriptor = 260; // characters of a security descriptor's text
} // namespace

const wchar_t* PrepareObjectName(wchar_t* pszBuffer, unsigned cchBuffer, const wchar_t* pszName,
                                 int bGlobal) {
    if (cchBuffer) pszBuffer[0] = 0;
    if (!pszName) return nullptr;
    FormatText(pszBuffer, cchBuffer, L"%s%s", bGlobal ? L"Global\\" : L"Local\\", pszName);
    return pszBuffer;
}

// Objects that are opened by name

const wchar_t* Synch::PrepareName(wchar_t* pszBuffer, unsigned cchBuffer, const wchar_t* pszName,
                                  int bGlobal) {
    return PrepareObjectName(pszBuffer, cchBuffer, pszName, bGlobal);
}

HANDLE Synch::Win32_Open(DWORD, int, const wchar_t*) { return nullptr; }

int Synch::Open(const wchar_t* pszName, int bGlobal, DWORD dwAccess, int bInherit) {
    Close();
    wchar_t szFull[kMaxObjectName];
    h = Win32_Open(dwAccess, bInherit, PrepareName(szFull, kMaxObjectName, pszName, bGlobal));
    return h != nullptr;
}

void Synch::Close() {
    if (h) ::CloseHandle(h);
    h = nullptr;
}

int Synch::Wait(DWORD nTimeoutMs) {
    dwLastWait = ::WaitForSingleObject(h, nTimeoutMs);
    return dwLastWait == WAIT_OBJECT_0;
}

int Synch::MsgWait(DWORD nTimeoutMs, DWORD dwWakeMask) {
    dwLastWait = ::MsgWaitForMultipleObjects(1, &h, FALSE, nTimeoutMs, dwWakeMask);
    return dwLastWait == WAIT_OBJECT_0;
}

// Events

HANDLE Event::Win32_Open(DWORD dwAccess, int bInherit, const wchar_t* pszName) {
    return ::OpenEventW(dwAccess, bInherit, pszName);
}

int Event::Create(const wchar_t* pszName, int bGlobal, int bManual, int bInitial,
                  SECURITY_ATTRIBUTES* pSecurity, int& bExisted) {
    Close();
    wchar_t szFull[kMaxObjectName];
    const wchar_t* pszFull = PrepareName(szFull, kMaxObjectName, pszName, bGlobal);
    ::SetLastError(ERROR_SUCCESS); // a success need not write it
    h = ::CreateEventW(pSecurity, bManual, bInitial, pszFull);
    bExisted = ::GetLastError() == ERROR_ALREADY_EXISTS;
    return h != nullptr;
}

int Event::CreateOrOpen(const wchar_t* pszName, int bGlobal, int bManual, int bInitial,
                        SECURITY_ATTRIBUTES* pSecurity) {
    int bExisted = 0;
    return Create(pszName, bGlobal, bManual, bInitial, pSecurity, bExisted);
}

int Event::CreateNew(const wchar_t* pszName, int bGlobal, int bManual, int bInitial,
                     SECURITY_ATTRIBUTES* pSecurity) {
    int bExisted = 0;
    int bCreated = Create(pszName, bGlobal, bManual, bInitial, pSecurity, bExisted);
    if (!bExisted) return bCreated;
    Close(); // somebody else's: its settings are not those that were asked for
    return 0;
}

int Event::CreateNewForUser(const wchar_t* pszName, int bGlobal, const wchar_t* pszSid,
                            DWORD dwAccess, int bManual, int bInitial) {
    if (!pszSid) return 0;
    // Two entries that allow: the user with those rights, LOCAL SERVICE (LS) with all (GA). Nobody
    // else, not even who makes the event, has any but through the handle that comes back.
    wchar_t szDescriptor[kMaxDescriptor];
    FormatText(szDescriptor, L"D:(A;;0x%lX;;;%s)(A;;GA;;;LS)", dwAccess, pszSid);
    PSECURITY_DESCRIPTOR pDescriptor = nullptr;
    if (!::ConvertStringSecurityDescriptorToSecurityDescriptorW(szDescriptor, SDDL_REVISION_1,
                                                                &pDescriptor, nullptr))
        return 0;
    OwnedLocal descriptor(pDescriptor);
    SECURITY_ATTRIBUTES security{sizeof(security), pDescriptor, TRUE};
    return CreateNew(pszName, bGlobal, bManual, bInitial, &security);
}

void Event::Set() {
    if (h) ::SetEvent(h);
}

void Event::Clear() {
    if (h) ::ResetEvent(h);
}

void Event::Pulse() {
    if (h) ::PulseEvent(h);
}

// Events under exactly the name given

EventSimple::EventSimple() { Open(nullptr, 0, 0); }

EventSimple::EventSimple(const wchar_t* pszName, int bManual, int bInitial) {
    Open(pszName, bManual, bInitial);
}

int EventSimple::Open(const wchar_t* pszName, int bManual, int bInitial) {
    h.Reset(); // first: the same name may be asked for again, and would exist through this handle
    ::SetLastError(ERROR_SUCCESS);
    HANDLE hCreated = ::CreateEventW(nullptr, bManual, bInitial, pszName);
    bExisted = ::GetLastError() == ERROR_ALREADY_EXISTS;
    h.Reset(hCreated);
    return IsReady();
}

int EventSimple::OpenEventW(DWORD dwAccess, int bInherit, const wchar_t* pszName) {
    h.Reset(::OpenEventW(dwAccess, bInherit, pszName));
    bExisted = IsReady();
    return bExisted;
}

void EventSimple::Set(int bSignalled) {
    if (!h) return;
    if (bSignalled)
        ::SetEvent(h.Get());
    else
        ::ResetEvent(h.Get());
}

void EventSimple::Clear() { Set(0); }

// Mutexes

MyMutex::MyMutex(int bGlobal, const wchar_t* pszName) {
    wchar_t szFull[kMaxObjectName];
    // Systems without name spaces take a backslash in a name for an error.
    if (Win2K() || WinXP()) pszName = PrepareObjectName(szFull, kMaxObjectName, pszName, bGlobal);
    h.Reset(::CreateMutexW(nullptr, FALSE, pszName));
}

int MyMutex::Wait(DWORD nTimeoutMs) {
    return ::WaitForSingleObject(h.Get(), nTimeoutMs) == WAIT_OBJECT_0;
}

void MyMutex::Release() { ::ReleaseMutex(h.Get()); }
