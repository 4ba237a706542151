#include "runtime/messages/msg.h"
#include "runtime/system/system_facts.h"
#include "runtime/version_questions.h"
#include "support/other_windows.h"
#include "support/replace_import.h"
#include "support/runtime_lookup.h"
#include "support/told_version.h"

#include <gtest/gtest.h>
#include <algorithm>
#include <cstring>
#include <ctime>
#include <cwchar>
#include <iterator>
#include <map>
#include <set>
#include <sstream>
#include <string>
#include <utility>

extern "C" FARPROC __imp_GetLocaleInfoW;
extern "C" FARPROC __imp_GetDriveTypeW;
extern "C" FARPROC __imp_RegOpenKeyExW;

namespace {
// Versions and editions

struct VersionCase {
    const char* pszVersion; // the platform's name for it
    const char* pszTrue;    // the tests that say yes, beside WinNT, Win2K, WinPro and WinServer
    const char* pszNumber;
    const char* pszServicePack; // major and minor
    const char* pszProductType; // null: not the same on every platform
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
    EXPECT_EQ(row.pszServicePack, answers["ServicePack"]);
    // The kind of product is not always that of the name: win7 shows itself as a server here.
    std::string strType = row.pszProductType ? row.pszProductType : answers["ProductType"];
    EXPECT_EQ(strType, answers["ProductType"]);
    EXPECT_EQ(strType == "1" ? "0" : "1", answers["WinServer"]);
    // The locale's name from Vista on, its English name before; the environment's is American.
    bool bHasName = strTrue.find(" WinVista ") != std::string::npos;
    EXPECT_EQ(bHasName ? "en-US" : "English", answers["Language"]);
}
INSTANTIATE_TEST_SUITE_P(
    Windows, VersionTest,
    testing::Values(VersionCase{"win2k", "Win2K_only", "5.0.2195", "00040000", "1"},
                    VersionCase{"winxp64", "WinXP WinServer2003", "5.2.3790", "00020000", "1"},
                    VersionCase{"win2003", "WinXP WinServer2003", "5.2.3790", "00020000", "3"},
                    VersionCase{"vista", "WinXP WinServer2003 WinVista WinVista_only", "6.0.6002",
                                "00020000", "1"},
                    VersionCase{"win2008", "WinXP WinServer2003 WinVista WinVista_only", "6.0.6002",
                                "00020000", "3"},
                    VersionCase{"win7", "WinXP WinServer2003 WinVista Win7 Win7_only", "6.1.7601",
                                "00010000", nullptr},
                    VersionCase{"win8", "WinXP WinServer2003 WinVista Win7 Win8", "6.2.9200",
                                "00000000", "1"},
                    VersionCase{"win81", "WinXP WinServer2003 WinVista Win7 Win8 Win81", "6.3.9600",
                                "00000000", "1"},
                    VersionCase{"win10", "WinXP WinServer2003 WinVista Win7 Win8 Win81 Win10",
                                "10.0.18362", "00000000", "1"}),
    [](const auto& row) { return std::string(row.param.pszVersion); });

struct ToldCase {
    const char* pszName;
    OSVERSIONINFOEXW info;
    const char* pszTrue;
};
class ToldVersionTest : public testing::TestWithParam<ToldCase> {};

TEST_P(ToldVersionTest, EachTestAnswersForTheWindowsThatIsTold) {
    ToldVersion told(GetParam().info);
    std::istringstream stream(GetParam().pszTrue);
    std::set<std::string> wanted{std::istream_iterator<std::string>(stream), {}};
    for (const auto& [pszName, pfn] : kVersionQuestions) {
        EXPECT_EQ(wanted.contains(pszName), pfn() == 1) << pszName;
        EXPECT_EQ(!wanted.contains(pszName), pfn() == 0) << pszName;
    }
}
INSTANTIATE_TEST_SUITE_P(
    Windows, ToldVersionTest,
    testing::Values(
        ToldCase{"Windows98", Version(1, 4, 10, 1), ""},
        ToldCase{"NewerThanAnyOutsideTheFamily", Version(1, 10, 0, 3), ""},
        ToldCase{"NT4WithTheHomeBit", Version(2, 4, 0, 1, 0x200), "WinNT WinPro"},
        ToldCase{"NT4OfANewMinor", Version(2, 4, 99, 3), "WinNT WinPro WinServer"},
        ToldCase{"Server2000", Version(2, 5, 0, 3), "WinNT Win2K Win2K_only WinServer WinPro"},
        ToldCase{"XP", Version(2, 5, 1, 1), "WinNT Win2K WinXP WinXP_only WinPro"},
        ToldCase{"XPHome", Version(2, 5, 1, 1, 0x200), "WinNT Win2K WinXP WinXP_only"},
        ToldCase{"XPHomeWithMore", Version(2, 5, 1, 1, 0x300), "WinNT Win2K WinXP WinXP_only"},
        ToldCase{"OtherSuitesAreNoHome", Version(2, 5, 1, 1, 0xFDFF),
                 "WinNT Win2K WinXP WinXP_only WinPro"},
        ToldCase{"DomainController", Version(2, 5, 2, 2),
                 "WinNT Win2K WinXP WinServer2003 WinServer WinPro"},
        ToldCase{"UnknownProduct", Version(2, 5, 2, 4),
                 "WinNT Win2K WinXP WinServer2003 WinServer"},
        ToldCase{"NoProduct", Version(2, 5, 2, 0), "WinNT Win2K WinXP WinServer2003 WinServer"},
        ToldCase{"VistaHome", Version(2, 6, 0, 1, 0x200),
                 "WinNT Win2K WinXP WinServer2003 WinVista WinVista_only"},
        ToldCase{"SixDotFour", Version(2, 6, 4, 1),
                 "WinNT Win2K WinXP WinServer2003 WinVista Win7 Win8 Win81 WinPro"},
        ToldCase{"SevenDotZero", Version(2, 7, 0, 1),
                 "WinNT Win2K WinXP WinServer2003 WinVista Win7 Win8 Win81 WinPro"},
        ToldCase{"AfterTen", Version(2, 11, 0, 3),
                 "WinNT Win2K WinXP WinServer2003 WinVista Win7 Win8 Win81 Win10 WinServer "
                 "WinPro"}),
    [](const auto& row) { return std::string(row.param.pszName); });

TEST(VersionTests, AllAreZeroWhereThePlatformTellsNothing) {
    ToldVersion none;
    for (auto* pfn :
         {&WinNT, &Win2K, &WinXP, &WinServer2003, &WinVista, &Win7, &Win8, &Win81, &Win10,
          &Win2K_only, &WinXP_only, &WinVista_only, &Win7_only, &WinServer, &WinPro}) {
        EXPECT_EQ(0, pfn());
    }
    DWORD dwServicePack = 0xDEADBEEF;
    EXPECT_EQ(0u, GetWinVersion(&dwServicePack));
    EXPECT_EQ(0u, dwServicePack);
    EXPECT_EQ(0u, GetWinVersion());
}

TEST(GetWinVersion, PacksTheNumbers) {
    OSVERSIONINFOEXW info = Version(2, 0x1234, 0x5678, 1);
    info.dwBuildNumber = 0x9ABCDEF0;
    info.wServicePackMajor = 0x1357;
    info.wServicePackMinor = 0x2468;
    ToldVersion told(info);
    DWORD dwServicePack = 0xDEADBEEF;
    EXPECT_EQ(0x123456789ABCDEF0u, GetWinVersion(&dwServicePack));
    EXPECT_EQ(0x13572468u, dwServicePack);
    EXPECT_EQ(0x123456789ABCDEF0u, GetWinVersion());
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

UINT nTypeOfA, nTypeOfB;
UINT WINAPI TellDriveType(LPCWSTR pszRoot) {
    if (!pszRoot) return DRIVE_UNKNOWN;
    wchar_t ch = static_cast<wchar_t>(pszRoot[0] | 0x20);
    return ch == L'a' ? nTypeOfA : ch == L'b' ? nTypeOfB : UINT{DRIVE_REMOVABLE};
}
TEST(SingleFloppy, IsOneUnlessBothDrivesAreRemovable) {
    ReplaceImport replaced(__imp_GetDriveTypeW, &TellDriveType);
    constexpr UINT kOthers[] = {DRIVE_UNKNOWN, DRIVE_NO_ROOT_DIR, DRIVE_FIXED,
                                DRIVE_REMOTE,  DRIVE_CDROM,       DRIVE_RAMDISK};
    nTypeOfA = nTypeOfB = DRIVE_REMOVABLE;
    EXPECT_EQ(0, SingleFloppy());
    for (UINT nOther : kOthers) {
        nTypeOfA = nOther;
        nTypeOfB = DRIVE_REMOVABLE;
        EXPECT_EQ(1, SingleFloppy()) << nOther;
        std::swap(nTypeOfA, nTypeOfB);
        EXPECT_EQ(1, SingleFloppy()) << nOther;
        nTypeOfA = nTypeOfB = nOther;
        EXPECT_EQ(1, SingleFloppy()) << nOther;
    }
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

LSTATUS WINAPI RefuseKey(HKEY, LPCWSTR, DWORD, REGSAM, HKEY*) { return ERROR_ACCESS_DENIED; }

TEST(IsFastUserSwitchingEnabled, IsZeroWhereTheKeyCannotBeRead) {
    KeepSwitch keep;
    if (keep.hkey) keep.Put(1);
    ReplaceImport replaced(__imp_RegOpenKeyExW, &RefuseKey);
    EXPECT_EQ(0, IsFastUserSwitchingEnabled());
}

/// The locale of a system in Switzerland; the user's is another one.
int WINAPI TellLocale(LCID nLocale, LCTYPE nWhat, LPWSTR psz, int cch) {
    const wchar_t* pszTold = nLocale != 2048 ? L"other"
                             : nWhat == 92   ? L"de-CH"
                             : nWhat == 4097 ? L"German"
                                             : L"something else";
    int cchTold = static_cast<int>(std::wcslen(pszTold)) + 1;
    if (cch < cchTold) return cch ? 0 : cchTold;
    std::wmemcpy(psz, pszTold, static_cast<std::size_t>(cchTold));
    return cchTold;
}

TEST(GetWinLanguage, IsTheNameOfTheSystemsLocaleFromVistaOn) {
    ReplaceImport replaced(__imp_GetLocaleInfoW, &TellLocale);
    for (DWORD nMinor : {0u, 3u}) {
        ToldVersion told(Version(2, 6, nMinor, 1));
        wchar_t sz[6] = L"?";
        EXPECT_EQ(1, GetWinLanguage(sz, 6));
        EXPECT_STREQ(L"de-CH", sz);
        EXPECT_EQ(0, GetWinLanguage(sz, 5));
        EXPECT_STREQ(L"", sz);
    }
}

TEST(GetWinLanguage, IsTheEnglishNameOfItBefore) {
    ReplaceImport replaced(__imp_GetLocaleInfoW, &TellLocale);
    ToldVersion told(Version(2, 5, 2, 1));
    wchar_t sz[7] = L"?";
    EXPECT_EQ(1, GetWinLanguage(sz, 7));
    EXPECT_STREQ(L"German", sz);
    EXPECT_EQ(0, GetWinLanguage(sz, 6));
    EXPECT_STREQ(L"", sz);
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
