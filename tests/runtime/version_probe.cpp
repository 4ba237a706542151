// Prints what the version tests say; started by the tests under names for which the platform shows
// itself as one Windows or another.
#include "runtime/system/elevation.h"
#include "runtime/system/system_facts.h"

#include <cstdio>

int wmain() {
    struct Row {
        const char* pszName;
        int (*pfn)();
    };
    const Row kRows[] = {
        {"WinNT", &WinNT},
        {"Win2K", &Win2K},
        {"WinXP", &WinXP},
        {"WinServer2003", &WinServer2003},
        {"WinVista", &WinVista},
        {"Win7", &Win7},
        {"Win8", &Win8},
        {"Win81", &Win81},
        {"Win10", &Win10},
        {"Win2K_only", &Win2K_only},
        {"WinXP_only", &WinXP_only},
        {"WinVista_only", &WinVista_only},
        {"Win7_only", &Win7_only},
        {"WinServer", &WinServer},
        {"WinPro", &WinPro},
    };
    for (const Row& row : kRows) std::printf("%s %d\n", row.pszName, row.pfn());
    DWORD dwServicePack = 0;
    unsigned long long qw = GetWinVersion(&dwServicePack);
    std::printf("GetWinVersion %u.%u.%u\n", static_cast<unsigned>(qw >> 48),
                static_cast<unsigned>(qw >> 32 & 0xFFFF), static_cast<unsigned>(qw));
    std::printf("ServicePack %08lX\n", dwServicePack);
    OSVERSIONINFOEXW info{};
    info.dwOSVersionInfoSize = sizeof(info);
    ::GetVersionExW(reinterpret_cast<OSVERSIONINFOW*>(&info));
    std::printf("ProductType %u\n", info.wProductType);
    wchar_t szLanguage[85];
    GetWinLanguage(szLanguage, 85);
    std::printf("Language %ls\n", szLanguage);
    return 0;
}
