#pragma once
#include "runtime/base/export.h"
#include "runtime/base/owned_handle.h"
#include <windows.h>

/// An event under exactly the name given, without a name space put before it.
class TESSALY_API EventSimple {
  public:
    /// An unnamed event that is not manual and not set.
    EventSimple();
    /// Makes the event or opens the one of that name; IsReady and HasExisted tell what came.
    EventSimple(const wchar_t* pszName, int bManual, int bInitial);
    EventSimple(const EventSimple&) = delete; // owns the handle
    EventSimple& operator=(const EventSimple&) = delete;

    /// As the constructor of the same arguments; what was open is closed. Returns 1 if a handle
    /// came.
    int Open(const wchar_t* pszName, int bManual, int bInitial);
    /// Opens an event that exists. Returns 1 if it could be opened.
    int OpenEventW(DWORD dwAccess, int bInherit, const wchar_t* pszName);
    /// bSignalled 0 clears. Both do nothing without a handle.
    void Set(int bSignalled = 1);
    void Clear();
    int IsReady() const { return h.Get() != nullptr; }
    /// After making: 1 if an event of that name existed already. After OpenEventW: its result.
    int HasExisted() const { return bExisted; }
    operator HANDLE() const { return h.Get(); }

  private:
    OwnedHandle h;
    int bExisted = 0;
};
