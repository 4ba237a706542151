#include "runtime/threads/my_mutex.h"
#include "runtime/threads/synch.h"
#include "runtime/system/win_version.h"

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
