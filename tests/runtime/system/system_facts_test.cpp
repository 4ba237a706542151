#include "runtime/messages/msg.h"
#include "runtime/system/system_facts.h"
#include "support/other_windows.h"
#include "support/runtime_lookup.h"

#include <gtest/gtest.h>
#include <ctime>
#include <map>
#include <sstream>
#include <string>

namespace {
// Versions and editions

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
TEST(IsWow64, SaysWhatThePlatformSaysAndZeroWithoutTheFunction) {
    EXPECT_EQ(0, IsWow64()); // this is a 64-bit program
    {
        ReplaceFunctions yes{{{"IsWow64Process", AsProc(&SaysWow64)}}};
        EXPECT_EQ(1, IsWow64());
    }
    {
        ReplaceFunctions fails{{{"IsWow64Process", AsProc(&FailsAfterAll)}}};
        EXPECT_EQ(0, IsWow64());
    }
    HideFunctions hide{"IsWow64Process"};
    EXPECT_EQ(0, IsWow64());
}

// Drives, users, language

TEST(SingleFloppy, IsOneUnlessBothDrivesAreRemovable) {
    bool bBoth =
        ::GetDriveTypeW(L"A:\\") == DRIVE_REMOVABLE && ::GetDriveTypeW(L"B:\\") == DRIVE_REMOVABLE;
    EXPECT_EQ(bBoth ? 0 : 1, SingleFloppy());
}

/// The system's switch as it was, put back at the end.
struct KeepSwitch {
    HKEY hkey = nullptr;
    DWORD dwOld = 0, cb = sizeof(DWORD);
    bool bHad = false;
    KeepSwitch() {
        ::RegOpenKeyExW(HKEY_LOCAL_MACHINE,
                        L"SOFTWARE\\Microsoft\\Windows NT\\CurrentVersion\\Winlogon", 0,
                        KEY_ALL_ACCESS, &hkey);
        bHad = ::RegQueryValueExW(hkey, kName, nullptr, nullptr, reinterpret_cast<BYTE*>(&dwOld),
                                  &cb) == ERROR_SUCCESS;
    }
    ~KeepSwitch() {
        if (bHad)
            Put(dwOld);
        else
            ::RegDeleteValueW(hkey, kName);
        ::RegCloseKey(hkey);
    }
    void Put(DWORD dw) {
        ::RegSetValueExW(hkey, kName, 0, REG_DWORD, reinterpret_cast<const BYTE*>(&dw), sizeof(dw));
    }
    static constexpr const wchar_t* kName = L"AllowMultipleTSSessions";
};

TEST(IsFastUserSwitchingEnabled, IsTheSystemsSwitchAndZeroWithoutIt) {
    KeepSwitch keep;
    if (!keep.hkey) GTEST_SKIP() << "this user may not write the system's settings";
    keep.Put(1);
    EXPECT_EQ(1, IsFastUserSwitchingEnabled());
    keep.Put(0);
    EXPECT_EQ(0, IsFastUserSwitchingEnabled());
    ::RegDeleteValueW(keep.hkey, KeepSwitch::kName);
    EXPECT_EQ(0, IsFastUserSwitchingEnabled());
}

TEST(GetWinLanguage, IsTheSystemsLocale) {
    wchar_t szWanted[85], sz[85];
    ASSERT_NE(0, ::GetLocaleInfoW(2048, WinVista() ? 92 : 4097, szWanted, 85));
    ASSERT_EQ(1, GetWinLanguage(sz, 85));
    EXPECT_STREQ(szWanted, sz);
}

TEST(GetWinLanguage, FitsExactlyOrNotAtAll) {
    wchar_t sz[85];
    ASSERT_EQ(1, GetWinLanguage(sz, 85));
    int cch = static_cast<int>(wcslen(sz)) + 1;
    EXPECT_EQ(1, GetWinLanguage(sz, cch));
    wchar_t szShort[85] = L"before";
    EXPECT_EQ(0, GetWinLanguage(szShort, cch - 1));
    EXPECT_STREQ(L"", szShort);
    EXPECT_EQ(0, GetWinLanguage(szShort, 0));
    EXPECT_EQ(0, GetWinLanguage(szShort, -1));
}

// Times

FILETIME TimeOf(WORD wYear, WORD wMonth, WORD wDay, WORD wHour = 0, WORD wSecond = 0) {
    SYSTEMTIME st{wYear, wMonth, 0, wDay, wHour, 0, wSecond, 0};
    FILETIME ft{};
    EXPECT_TRUE(::SystemTimeToFileTime(&st, &ft));
    return ft;
}

TEST(GetProductTime, CountsFromTheProductsFirstDay) {
    EXPECT_EQ(0u, GetProductTime(TimeOf(1995, 12, 26)));
    EXPECT_EQ(1u, GetProductTime(TimeOf(1995, 12, 26, 0, 1)));
    EXPECT_EQ(86400u, GetProductTime(TimeOf(1995, 12, 27)));
    EXPECT_EQ(946684800u - 819936000u, GetProductTime(TimeOf(2000, 1, 1)));
    EXPECT_EQ(0xFFFFFFFFu, GetProductTime(TimeOf(1995, 12, 25, 23, 59)) + 3540); // 32 bits
}

TEST(GetCurTime, IsNow) {
    auto nUnix = static_cast<unsigned long long>(std::time(nullptr));
    DWORD dwNow = GetCurTime();
    EXPECT_GE(dwNow, static_cast<DWORD>(nUnix - 819936000 - 1));
    EXPECT_LE(dwNow, static_cast<DWORD>(nUnix - 819936000 + 5));
}

TEST(GetSysFileTime, IsNowInUtc) {
    FILETIME ft{}, ftBefore{};
    ::GetSystemTimeAsFileTime(&ftBefore);
    ASSERT_EQ(1, GetSysFileTime(&ft));
    EXPECT_LE(GetProductTime(ftBefore), GetProductTime(ft));
    EXPECT_LE(GetProductTime(ft) - GetProductTime(ftBefore), 5u);
}

TEST(GetDOSdate, PacksYearMonthAndDay) {
    SYSTEMTIME st{};
    st.wYear = 1980;
    st.wMonth = 1;
    st.wDay = 1;
    EXPECT_EQ(0x0021u, GetDOSdate(&st));
    st.wYear = 2024;
    st.wMonth = 12;
    st.wDay = 31;
    EXPECT_EQ(44u << 9 | 12u << 5 | 31u, GetDOSdate(&st));
}

TEST(GetDOSdate, WithoutATimeIsToday) {
    SYSTEMTIME stBefore, stAfter;
    ::GetLocalTime(&stBefore);
    DWORD dwToday = GetDOSdate();
    ::GetLocalTime(&stAfter);
    EXPECT_TRUE(dwToday == GetDOSdate(&stBefore) || dwToday == GetDOSdate(&stAfter));
}
} // namespace
