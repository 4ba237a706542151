// Prints what the version tests say, and what the product is before the library's start; started by
// the tests, also under names for which the platform shows itself as one Windows or another.
#include "runtime/base/current_product.h"
#include "runtime/system/elevation.h"
#include "runtime/system/system_facts.h"
#include "runtime/version_questions.h"

#include <cstdio>
#include <cwchar>

int wmain() {
    for (const VersionQuestion& row : kVersionQuestions)
        std::printf("%s %d\n", row.pszName, row.pfn());
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
