#pragma once
#include "runtime/base/export.h"
#include "runtime/base/owned_handle.h"
#include <windows.h>

/// A mutex, not owned by anybody at first; of this logon session or, if bGlobal, of the whole
/// machine.
class TESSALY_API MyMutex {
  public:
    /// A null name makes an unnamed mutex. Without a handle, when the platform refused, every Wait
    /// gives 0.
    MyMutex(int bGlobal, const wchar_t* pszName);
    MyMutex(const MyMutex&) = delete; // owns the handle
    MyMutex& operator=(const MyMutex&) = delete;

    /// 1 if the mutex is now owned and its last owner had released it. After an abandonment it is
    /// owned too, but the result is 0.
    int Wait(DWORD nTimeoutMs);
    void Release();
    operator HANDLE() const { return h.Get(); }

  private:
    OwnedHandle h;
};
