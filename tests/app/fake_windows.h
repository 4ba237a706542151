#pragma once
#include "support/replace_import.h"
#include "support/runtime_lookup.h"

#include <windows.h>
#include <cstring>

extern "C" FARPROC __imp_GetVersionExW;

/// A Windows of another version for the length of a block. One at a time.
class FakeWindows {
  public:
    FakeWindows(DWORD dwMajorNew, DWORD dwMinorNew) : replaced(__imp_GetVersionExW, &Tell) {
        dwMajor = dwMajorNew;
        dwMinor = dwMinorNew;
    }

  private:
    static BOOL WINAPI Tell(OSVERSIONINFOW* p) {
        p->dwMajorVersion = dwMajor;
        p->dwMinorVersion = dwMinor;
        p->dwPlatformId = VER_PLATFORM_WIN32_NT;
        return TRUE;
    }
    static inline DWORD dwMajor = 0, dwMinor = 0;
    ReplaceImport replaced;
};

/// Whether the user is an administrator, for the length of a block. One at a time.
class FakeAdmin {
  public:
    explicit FakeAdmin(BOOL bAdminNew) {
        bAdmin = bAdminNew;
        SetRuntimeLookup(&LookUp);
    }
    ~FakeAdmin() { SetRuntimeLookup(nullptr); }
    FakeAdmin(const FakeAdmin&) = delete;
    FakeAdmin& operator=(const FakeAdmin&) = delete;

  private:
    static BOOL WINAPI IsAdmin() { return bAdmin; }
    static FARPROC LookUp(const wchar_t* pszModule, const char* pszName) {
        if (!strcmp(pszName, "IsUserAnAdmin"))
            return reinterpret_cast<FARPROC>(reinterpret_cast<void*>(&IsAdmin));
        return FindSystemFunc(pszModule, pszName);
    }
    static inline BOOL bAdmin = FALSE;
};
