#pragma once
#include <windows.h>
#include <cstdlib>
#include <cstring>
#include <string>

// The Windows as which the platform shows itself in this run. `./test --windows=NAME` has it be
// another one than usually, and each test says what holds there.

/// A Windows by the run's name for it.
struct NamedWindows {
    const char* pszName;
    DWORD nMajor, nMinor, nBuild;
    WORD nServicePack;
};
inline constexpr NamedWindows kNamedWindows[] = {
    {"winxp64", 5, 2, 3790, 2}, {"vista", 6, 0, 6002, 2}, {"win7", 6, 1, 7601, 1},
    {"win8", 6, 2, 9200, 0},    {"win81", 6, 3, 9600, 0}, {"win10", 10, 0, 19045, 0},
    {"win11", 10, 0, 26100, 0},
};

/// What the platform tells of itself to those from whom it hides nothing.
inline OSVERSIONINFOEXW ThisWindows() {
    using Function = LONG WINAPI(OSVERSIONINFOEXW*);
    OSVERSIONINFOEXW info{};
    info.dwOSVersionInfoSize = sizeof(info);
    FARPROC pfn = ::GetProcAddress(::GetModuleHandleW(L"ntdll.dll"), "RtlGetVersion");
    if (pfn) reinterpret_cast<Function*>(reinterpret_cast<void*>(pfn))(&info);
    return info;
}

inline bool IsThisWindowsAtLeast(DWORD nMajor, DWORD nMinor) {
    const OSVERSIONINFOEXW info = ThisWindows();
    return info.dwMajorVersion > nMajor ||
           (info.dwMajorVersion == nMajor && info.dwMinorVersion >= nMinor);
}

/// The verb by which an administrator has a program started with his rights: before Vista he has
/// them anyhow, and there is none.
inline const wchar_t* ElevatingVerb() { return IsThisWindowsAtLeast(6, 0) ? L"runas" : nullptr; }

/// The Windows that the run is for; null if it takes the platform as it is.
inline const NamedWindows* WantedWindows() {
    const char* pszName = std::getenv("TESSALY_WINDOWS");
    for (const NamedWindows& row : kNamedWindows)
        if (pszName && std::strcmp(row.pszName, pszName) == 0) return &row;
    return nullptr;
}
