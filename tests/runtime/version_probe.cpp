// Prints what the version tests say, and what the product is before the library's start; started by
// the tests, also under names for which the platform shows itself as one Windows or another.
#include "runtime/base/current_product.h"
#include "runtime/system/elevation.h"
#include "runtime/system/system_facts.h"

#include <cstdio>
#include <cwchar>

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
    const CurrentProduct& product = GetCurrentProduct();
    std::printf("NameLength %u\n", static_cast<unsigned>(std::wcslen(product.pfnGetName())));
    std::printf("Id %u\n", product.pfnGetId());
    std::printf("HasModule %d\n", GetLibraryInstance() || product.pfnGetModule());
    SetLibraryInstance(::GetModuleHandleW(nullptr));
    std::printf("IsLibrary %d\n", product.pfnGetModule() == GetLibraryInstance());
    return 0;
}
