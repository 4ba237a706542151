#include "runtime/system/win_version.h"
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
