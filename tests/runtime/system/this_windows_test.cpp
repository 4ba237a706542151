// What the product sees of the Windows that the run is for.
#include "support/this_windows.h"
#include "runtime/system/system_facts.h"
#include "runtime/version_questions.h"

#include <gtest/gtest.h>

namespace {
// The test programs' manifest names all of them, as the product's does.
TEST(ThisWindows, IsToldToTheProductAsItIs) {
    const OSVERSIONINFOEXW info = ThisWindows();
    DWORD dwServicePack = 0;
    const unsigned long long qw = GetWinVersion(&dwServicePack);
    EXPECT_EQ(info.dwMajorVersion, qw >> 48);
    EXPECT_EQ(info.dwMinorVersion, qw >> 32 & 0xFFFF);
    EXPECT_EQ(info.dwBuildNumber, static_cast<DWORD>(qw));
    EXPECT_EQ(info.wServicePackMajor, HIWORD(dwServicePack));
}

TEST(ThisWindows, IsAtLeastEachOneBeforeIt) {
    const struct {
        int (*pfn)();
        DWORD nMajor, nMinor;
    } kFirsts[] = {{&Win2K, 5, 0}, {&WinXP, 5, 1}, {&WinServer2003, 5, 2}, {&WinVista, 6, 0},
                   {&Win7, 6, 1},  {&Win8, 6, 2},  {&Win81, 6, 3},         {&Win10, 10, 0}};
    for (const auto& row : kFirsts) {
        EXPECT_EQ(IsThisWindowsAtLeast(row.nMajor, row.nMinor) ? 1 : 0, row.pfn())
            << row.nMajor << '.' << row.nMinor;
    }
    EXPECT_EQ(IsThisWindowsAtLeast(6, 0) && !IsThisWindowsAtLeast(6, 1), WinVista_only() == 1);
    EXPECT_EQ(IsThisWindowsAtLeast(6, 1) && !IsThisWindowsAtLeast(6, 2), Win7_only() == 1);
}

TEST(ThisWindows, NamesItsLanguageAsThatOneDoes) {
    wchar_t sz[85];
    ASSERT_EQ(1, GetWinLanguage(sz, 85));
    EXPECT_STREQ(IsThisWindowsAtLeast(6, 0) ? L"en-US" : L"English", sz);
}
} // namespace
