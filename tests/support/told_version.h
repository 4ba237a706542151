#pragma once
#include "support/replace_import.h"
#include <windows.h>
#include <algorithm>
#include <cstring>

// Code that asks GetVersionExW, on any Windows: also on those that no test platform shows itself
// as.

extern "C" FARPROC __imp_GetVersionExW;

/// What a Windows tells of itself; nPlatform 2 is the NT family, nProductType 1 a workstation, and
/// 0x200 among the suites a home edition.
inline OSVERSIONINFOEXW Version(DWORD nPlatform, DWORD nMajor, DWORD nMinor, BYTE nProductType,
                                WORD nSuites = 0) {
    OSVERSIONINFOEXW info{};
    info.dwPlatformId = nPlatform;
    info.dwMajorVersion = nMajor;
    info.dwMinorVersion = nMinor;
    info.wProductType = nProductType;
    info.wSuiteMask = nSuites;
    return info;
}

/// A platform that tells of that Windows, or of none, for the length of a block.
class ToldVersion {
  public:
    explicit ToldVersion(const OSVERSIONINFOEXW& toldInfo) {
        info = toldInfo;
        bTells = TRUE;
    }
    ToldVersion() { bTells = FALSE; }

  private:
    static BOOL WINAPI Tell(OSVERSIONINFOW* pInfo) {
        // The size stays the caller's, and what lies beyond it is not told.
        DWORD cb = std::min<DWORD>(pInfo->dwOSVersionInfoSize, sizeof(info));
        info.dwOSVersionInfoSize = pInfo->dwOSVersionInfoSize;
        if (bTells) std::memcpy(pInfo, &info, cb);
        return bTells;
    }
    static inline OSVERSIONINFOEXW info;
    static inline BOOL bTells;
    ReplaceImport replaced{__imp_GetVersionExW, &Tell};
};

/// The first one whose menus show pictures.
class ToldVista {
    ToldVersion told{Version(VER_PLATFORM_WIN32_NT, 6, 0, VER_NT_WORKSTATION)};
};
