#pragma once
#include "support/runtime_lookup.h"
#include "wnd/draw/cdpi.h"
#include <windows.h>
#include <cstring>

namespace cdpi_detail {
extern INT_PTR nGetDpiForMonitor; // what the first search found
}

/// Monitors of that many dots per inch for the length of a block. One at a time.
class FakeMonitorDpi {
  public:
    explicit FakeMonitorDpi(UINT nDpiNew) {
        nDpi = nDpiNew;
        SetRuntimeLookup(&LookUp);
        Forget();
    }
    ~FakeMonitorDpi() {
        SetRuntimeLookup(nullptr);
        Forget();
    }
    FakeMonitorDpi(const FakeMonitorDpi&) = delete;
    FakeMonitorDpi& operator=(const FakeMonitorDpi&) = delete;

  private:
    static void Forget() {
        cdpi_detail::nGetDpiForMonitor = 0;
        PCDPI()->Invalidate();
    }
    static HRESULT WINAPI Tell(HMONITOR, int, UINT* px, UINT* py) {
        *px = *py = nDpi;
        return S_OK;
    }
    static FARPROC LookUp(const wchar_t* pszModule, const char* pszName) {
        if (!strcmp(pszName, "GetDpiForMonitor"))
            return reinterpret_cast<FARPROC>(reinterpret_cast<void*>(&Tell));
        return FindSystemFunc(pszModule, pszName);
    }
    static inline UINT nDpi = 96;
};
