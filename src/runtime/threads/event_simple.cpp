#include "runtime/threads/event_simple.h"

EventSimple::EventSimple() { Open(nullptr, 0, 0); }

EventSimple::EventSimple(const wchar_t* pszName, int bManual, int bInitial) {
    Open(pszName, bManual, bInitial);
}

int EventSimple::Open(const wchar_t* pszName, int bManual, int bInitial) {
    h.Reset();
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
