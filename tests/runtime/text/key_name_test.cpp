#include "runtime/text/menu_text.h"
#include "support/guard_page.h"

#include <windows.h>
#include <gtest/gtest.h>
#include <string>

namespace {
std::wstring PlatformName(UINT uVirtualKey, bool bExtended) {
    wchar_t sz[64] = {};
    LONG lKey = static_cast<LONG>(::MapVirtualKeyW(uVirtualKey, 0) << 16);
    ::GetKeyNameTextW(bExtended ? lKey | 1 << 24 : lKey, sz, 64);
    return sz;
}

TEST(GetKeyName, GivesThePlatformsNames) {
    int nNamed = 0;
    for (unsigned uVirtualKey = 0; uVirtualKey <= 0xFF; ++uVirtualKey) {
        for (int bExtended : {0, 1}) {
            std::wstring strExpected = PlatformName(uVirtualKey, bExtended);
            wchar_t sz[64] = L"old";
            EXPECT_EQ(static_cast<int>(strExpected.size()),
                      GetKeyName(sz, 64, uVirtualKey, bExtended));
            EXPECT_EQ(strExpected, sz) << uVirtualKey;
            nNamed += !strExpected.empty();
        }
    }
    EXPECT_GT(nNamed, 50);
}

TEST(GetKeyName, ExtendedTellsTheTwoKeysOfOneCodeApart) {
    wchar_t szBlock[64], szBeside[64];
    ASSERT_GT(GetKeyName(szBlock, 64, VK_HOME, 0), 0);
    ASSERT_GT(GetKeyName(szBeside, 64, VK_HOME, 1), 0);
    EXPECT_STRNE(szBlock, szBeside);
}

TEST(GetKeyName, KeepsToItsSize) {
    std::wstring strFull = PlatformName(VK_SPACE, false);
    ASSERT_GT(strFull.size(), 2u);
    for (int cch = 1; cch <= static_cast<int>(strFull.size()) + 2; ++cch) {
        GuardedMemory memory(static_cast<std::size_t>(cch) * sizeof(wchar_t));
        auto* psz = static_cast<wchar_t*>(memory.Get());
        GetKeyName(psz, cch, VK_SPACE, 0);
        EXPECT_EQ(strFull.substr(0, static_cast<std::size_t>(cch) - 1), psz) << cch;
    }
    wchar_t sz[4] = L"old";
    EXPECT_EQ(0, GetKeyName(sz, 0, VK_SPACE, 0));
    EXPECT_EQ(0, GetKeyName(sz, -1, VK_SPACE, 0));
    EXPECT_STREQ(L"old", sz);
    EXPECT_EQ(0, GetKeyName(nullptr, 4, VK_SPACE, 0));
}

TEST(GetHotKeyName, JoinsModifiersInTheirFixedOrder) {
    const std::wstring strCtrl = PlatformName(VK_CONTROL, false),
                       strShift = PlatformName(VK_SHIFT, false),
                       strAlt = PlatformName(VK_MENU, false), strF5 = PlatformName(VK_F5, false),
                       strHome = PlatformName(VK_HOME, true);
    const struct {
        unsigned uVirtualKey;
        unsigned uModifiers;
        std::wstring strExpected;
    } rows[] = {
        {VK_F5, 0, strF5},
        {VK_F5, 1, strShift + L" + " + strF5},
        {VK_F5, 2, strCtrl + L" + " + strF5},
        {VK_F5, 4, strAlt + L" + " + strF5},
        {VK_F5, 7, strCtrl + L" + " + strShift + L" + " + strAlt + L" + " + strF5},
        {VK_HOME, 8, strHome},
        {VK_HOME, 8 | 4, strAlt + L" + " + strHome},
        {0, 3, strCtrl + L" + " + strShift},
    };
    for (const auto& row : rows) {
        wchar_t sz[128];
        EXPECT_EQ(1, GetHotKeyName(sz, 128, row.uVirtualKey, row.uModifiers));
        EXPECT_EQ(row.strExpected, sz);
    }
}

TEST(GetHotKeyName, NothingGivesZeroAndTheEmptyText) {
    wchar_t sz[16] = L"old";
    EXPECT_EQ(0, GetHotKeyName(sz, 16, 0, 0));
    EXPECT_STREQ(L"", sz);
    EXPECT_EQ(0, GetHotKeyName(sz, 16, 0, HotKeyExtended));
    EXPECT_EQ(0, GetHotKeyName(nullptr, 16, VK_F5, 0));
    EXPECT_EQ(0, GetHotKeyName(sz, 0, VK_F5, 0));
}

TEST(GetHotKeyName, KeepsToItsSize) {
    wchar_t szFull[128];
    ASSERT_EQ(1, GetHotKeyName(szFull, 128, VK_F5, 7));
    std::wstring strFull = szFull;
    for (int cch = 1; cch <= static_cast<int>(strFull.size()) + 2; ++cch) {
        GuardedMemory memory(static_cast<std::size_t>(cch) * sizeof(wchar_t));
        auto* psz = static_cast<wchar_t*>(memory.Get());
        EXPECT_EQ(cch > 1, GetHotKeyName(psz, cch, VK_F5, 7));
        EXPECT_EQ(strFull.substr(0, static_cast<std::size_t>(cch) - 1), psz) << cch;
    }
}
} // namespace
