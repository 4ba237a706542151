#include "runtime/system_facts.h"
#include "runtime/win_version.h"

#include <gtest/gtest.h>

namespace {
TEST(SingleFloppy, IsOneUnlessBothDrivesAreRemovable) {
    bool bBoth =
        ::GetDriveTypeW(L"A:\\") == DRIVE_REMOVABLE && ::GetDriveTypeW(L"B:\\") == DRIVE_REMOVABLE;
    EXPECT_EQ(bBoth ? 0 : 1, SingleFloppy());
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
} // namespace
