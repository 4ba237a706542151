#include "runtime/system/system_facts.h"
#include "runtime/base/ownership.h"
#include "runtime/system/runtime_func.h"

namespace {
/// What the system says about itself; 0 if it does not.
int ReadVersion(OSVERSIONINFOEXW& info) {
    info = {};
    info.dwOSVersionInfoSize = sizeof(info);
    return ::GetVersionExW(reinterpret_cast<OSVERSIONINFOW*>(&info)) != 0;
}

int ReadNtVersion(OSVERSIONINFOEXW& info) {
    return ReadVersion(info) && info.dwPlatformId == VER_PLATFORM_WIN32_NT;
}

int IsAtLeast(DWORD dwMajor, DWORD dwMinor) {
    OSVERSIONINFOEXW info;
    if (!ReadNtVersion(info)) return 0;
    if (info.dwMajorVersion != dwMajor) return info.dwMajorVersion > dwMajor;
    return info.dwMinorVersion >= dwMinor;
}

int IsExactly(DWORD dwMajor, DWORD dwMinor) {
    OSVERSIONINFOEXW info;
    if (!ReadNtVersion(info)) return 0;
    return info.dwMajorVersion == dwMajor && info.dwMinorVersion == dwMinor;
}
} // namespace

int WinNT() {
    OSVERSIONINFOEXW info;
    return ReadNtVersion(info);
}

int Win2K() { return IsAtLeast(5, 0); }
int WinXP() { return IsAtLeast(5, 1); }
int WinServer2003() { return IsAtLeast(5, 2); }
int WinVista() { return IsAtLeast(6, 0); }
int Win7() { return IsAtLeast(6, 1); }
int Win8() { return IsAtLeast(6, 2); }
int Win81() { return IsAtLeast(6, 3); }
int Win10() { return IsAtLeast(10, 0); }

int Win2K_only() { return IsExactly(5, 0); }
int WinXP_only() { return IsExactly(5, 1); }
int WinVista_only() { return IsExactly(6, 0); }
int Win7_only() { return IsExactly(6, 1); }

int WinServer() {
    OSVERSIONINFOEXW info;
    return ReadNtVersion(info) && info.wProductType != VER_NT_WORKSTATION;
}

int WinPro() {
    OSVERSIONINFOEXW info;
    if (!ReadNtVersion(info)) return 0;
    if (info.dwMajorVersion < 5) return 1;
    if (info.wSuiteMask & VER_SUITE_PERSONAL) return 0;
    return info.wProductType >= VER_NT_WORKSTATION && info.wProductType <= VER_NT_SERVER;
}

unsigned long long GetWinVersion(DWORD* pdwServicePack) {
    OSVERSIONINFOEXW info;
    int bKnown = ReadVersion(info);
    if (pdwServicePack)
        *pdwServicePack = bKnown ? MAKELONG(info.wServicePackMinor, info.wServicePackMajor) : 0;
    if (!bKnown) return 0;
    DWORD dwVersion = MAKELONG(info.dwMinorVersion, info.dwMajorVersion);
    return static_cast<unsigned long long>(dwVersion) << 32 | info.dwBuildNumber;
}

int IsWow64() {
    static constinit RuntimeFunc<BOOL WINAPI(HANDLE, BOOL*)> func(L"kernel32.dll",
                                                                  "IsWow64Process");
    auto* pfn = func.Get();
    BOOL bWow64 = FALSE;
    return pfn && pfn(::GetCurrentProcess(), &bWow64) && bWow64;
}

#ifndef LOCALE_SNAME
#define LOCALE_SNAME 0x0000005c // winnls.h from Windows Vista on
#endif

int SingleFloppy() {
    int bBoth =
        ::GetDriveTypeW(L"A:\\") == DRIVE_REMOVABLE && ::GetDriveTypeW(L"B:\\") == DRIVE_REMOVABLE;
    return !bBoth;
}

int IsFastUserSwitchingEnabled() {
    HKEY hkey = nullptr;
    constexpr const wchar_t* kWinlogon =
        L"SOFTWARE\\Microsoft\\Windows NT\\CurrentVersion\\Winlogon";
    if (::RegOpenKeyExW(HKEY_LOCAL_MACHINE, kWinlogon, 0, KEY_QUERY_VALUE, &hkey) != ERROR_SUCCESS)
        return 0;
    OwnedHandleOf<HKEY, &::RegCloseKey> key(hkey);
    DWORD dwValue = 0, cb = sizeof(dwValue);
    LSTATUS status = ::RegQueryValueExW(key.Get(), L"AllowMultipleTSSessions", nullptr, nullptr,
                                        reinterpret_cast<BYTE*>(&dwValue), &cb);
    return status == ERROR_SUCCESS ? static_cast<int>(dwValue) : 0;
}

int GetWinLanguage(wchar_t* pszBuffer, int cchBuffer) {
    if (cchBuffer <= 0) return 0; // a capacity of 0 would ask for the length
    LCTYPE nWhat = WinVista() ? LOCALE_SNAME : LOCALE_SENGLANGUAGE;
    if (::GetLocaleInfoW(LOCALE_SYSTEM_DEFAULT, nWhat, pszBuffer, cchBuffer)) return 1;
    pszBuffer[0] = 0;
    return 0;
}

namespace {
constexpr unsigned long long kTicksPerSecond = 10'000'000;    // FILETIME counts 100 ns
constexpr unsigned long long kUnixSince1601 = 11'644'473'600; // seconds
constexpr unsigned long long kProductSinceUnix = 819'936'000; // seconds
constexpr unsigned kFirstDosYear = 1980;
} // namespace

DWORD GetProductTime(const FILETIME& ft) {
    unsigned long long n =
        static_cast<unsigned long long>(ft.dwHighDateTime) << 32 | ft.dwLowDateTime;
    return static_cast<DWORD>(n / kTicksPerSecond - kUnixSince1601 - kProductSinceUnix);
}

DWORD GetCurTime() {
    FILETIME ft{};
    GetSysFileTime(&ft);
    return GetProductTime(ft);
}

int GetSysFileTime(FILETIME* pft) {
    SYSTEMTIME st;
    ::GetSystemTime(&st);
    return ::SystemTimeToFileTime(&st, pft) != 0;
}

DWORD GetDOSdate(const SYSTEMTIME* pst) {
    SYSTEMTIME stToday;
    if (!pst) {
        ::GetLocalTime(&stToday);
        pst = &stToday;
    }
    return (pst->wYear - kFirstDosYear) << 9 | pst->wMonth << 5 | pst->wDay;
}
