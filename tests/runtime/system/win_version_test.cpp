#include "runtime/system/system_facts.h"
#include "support/other_windows.h"
#include "support/runtime_lookup.h"

#include <gtest/gtest.h>
#include <map>
#include <sstream>
#include <string>

namespace {
struct VersionCase {
    const char* pszVersion; // the platform's name for it
    const char* pszTrue;    // the tests that say yes, beside WinNT, Win2K, WinPro and WinServer
    const char* pszNumber;
    const char* pszProductType = nullptr; // what the name must bring, if it does
};
class VersionTest : public testing::TestWithParam<VersionCase> {};

TEST_P(VersionTest, EachTestAnswersForThisWindows) {
    if (!CanShowOtherWindows()) GTEST_SKIP() << "a real Windows does not show itself as another";
    const VersionCase& row = GetParam();
    std::wstring strVersion(row.pszVersion, row.pszVersion + strlen(row.pszVersion));
    std::istringstream stream(OutputOnOtherWindows(L"version_probe.exe", strVersion));
    std::map<std::string, std::string> answers;
    for (std::string strName, strValue; stream >> strName >> strValue;) {
        if (!strValue.empty() && strValue.back() == '\r') strValue.pop_back();
        answers[strName] = strValue;
    }
    std::string strTrue = " WinNT Win2K WinPro " + std::string(row.pszTrue) + " ";
    for (const char* pszName :
         {"WinNT", "Win2K", "WinXP", "WinServer2003", "WinVista", "Win7", "Win8", "Win81", "Win10",
          "Win2K_only", "WinXP_only", "WinVista_only", "Win7_only", "WinPro"}) {
        bool bWanted = strTrue.find(" " + std::string(pszName) + " ") != std::string::npos;
        EXPECT_EQ(bWanted ? "1" : "0", answers[pszName]) << pszName;
    }
    EXPECT_EQ(row.pszNumber, answers["GetWinVersion"]);
    // The kind of product is not always that of the name: win7 shows itself as a server here.
    EXPECT_EQ(answers["ProductType"] == "1" ? "0" : "1", answers["WinServer"]);
    if (row.pszProductType) {
        EXPECT_EQ(row.pszProductType, answers["ProductType"]);
    }
    // The locale's name from Vista on, its English name before.
    bool bHasName = strTrue.find(" WinVista ") != std::string::npos;
    EXPECT_EQ(bHasName, answers["Language"].find('-') != std::string::npos) << answers["Language"];
}
INSTANTIATE_TEST_SUITE_P(
    Windows, VersionTest,
    testing::Values(
        VersionCase{"win2k", "Win2K_only", "5.0.2195"},
        VersionCase{"winxp64", "WinXP WinServer2003", "5.2.3790", "1"},
        VersionCase{"win2003", "WinXP WinServer2003", "5.2.3790", "3"},
        VersionCase{"vista", "WinXP WinServer2003 WinVista WinVista_only", "6.0.6002"},
        VersionCase{"win2008", "WinXP WinServer2003 WinVista WinVista_only", "6.0.6002"},
        VersionCase{"win7", "WinXP WinServer2003 WinVista Win7 Win7_only", "6.1.7601"},
        VersionCase{"win8", "WinXP WinServer2003 WinVista Win7 Win8", "6.2.9200"},
        VersionCase{"win81", "WinXP WinServer2003 WinVista Win7 Win8 Win81", "6.3.9600"},
        VersionCase{"win10", "WinXP WinServer2003 WinVista Win7 Win8 Win81 Win10", "10.0.18362"}),
    [](const auto& row) { return std::string(row.param.pszVersion); });

TEST(GetWinVersion, PacksNumbersAsThePlatformTellsThem) {
    OSVERSIONINFOEXW info{};
    info.dwOSVersionInfoSize = sizeof(info);
    ASSERT_TRUE(::GetVersionExW(reinterpret_cast<OSVERSIONINFOW*>(&info)));
    DWORD dwServicePack = 0xDEADBEEF;
    unsigned long long qw = GetWinVersion(&dwServicePack);
    EXPECT_EQ(info.dwBuildNumber, static_cast<DWORD>(qw));
    EXPECT_EQ(info.dwMinorVersion, static_cast<DWORD>(qw >> 32 & 0xFFFF));
    EXPECT_EQ(info.dwMajorVersion, static_cast<DWORD>(qw >> 48));
    EXPECT_EQ(info.wServicePackMajor, HIWORD(dwServicePack));
    EXPECT_EQ(info.wServicePackMinor, LOWORD(dwServicePack));
    EXPECT_EQ(qw, GetWinVersion());
}

BOOL WINAPI SaysWow64(HANDLE, BOOL* pb) {
    *pb = TRUE;
    return TRUE;
}
BOOL WINAPI FailsAfterAll(HANDLE, BOOL* pb) {
    *pb = TRUE;
    return FALSE;
}
template <auto pfn>
FARPROC Find(const wchar_t*, const char* pszName) {
    EXPECT_STREQ("IsWow64Process", pszName);
    return reinterpret_cast<FARPROC>(reinterpret_cast<void*>(pfn));
}

TEST(IsWow64, SaysWhatThePlatformSaysAndZeroWithoutTheFunction) {
    EXPECT_EQ(0, IsWow64()); // this is a 64-bit program
    SetRuntimeLookup(&Find<&SaysWow64>);
    EXPECT_EQ(1, IsWow64());
    SetRuntimeLookup(&Find<&FailsAfterAll>);
    EXPECT_EQ(0, IsWow64());
    SetRuntimeLookup([](const wchar_t*, const char*) -> FARPROC { return nullptr; });
    EXPECT_EQ(0, IsWow64());
    SetRuntimeLookup(nullptr);
}
} // namespace
