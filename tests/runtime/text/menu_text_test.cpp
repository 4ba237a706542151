#include "runtime/text/menu_text.h"
#include "support/guard_page.h"

#include <windows.h>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace {
// Texts of menus

std::wstring Edited(void (*pfnEdit)(wchar_t*), const std::wstring& str) {
    GuardedArea area((str.size() + 1) * sizeof(wchar_t));
    wchar_t* psz = area.Put(str);
    pfnEdit(psz);
    return psz;
}

struct MenuCase {
    const char* pszName;
    const wchar_t* pszText;
    const wchar_t* pszBare;        // StrRemoveAmpAndDots
    const wchar_t* pszWithoutMark; // RemoveMenuChar and MakeNameFromMenu
    wchar_t chItem;
};

class MenuTextTest : public testing::TestWithParam<MenuCase> {};

TEST_P(MenuTextTest, EachFunctionGivesItsForm) {
    const MenuCase& row = GetParam();
    EXPECT_EQ(row.pszBare, Edited(StrRemoveAmpAndDots, row.pszText));
    EXPECT_EQ(row.pszWithoutMark, Edited(RemoveMenuChar, row.pszText));
    GuardedText text(row.pszText);
    EXPECT_STREQ(row.pszWithoutMark, MakeNameFromMenu(text.Get()));
    EXPECT_EQ(row.chItem, GetMenuItemChar(text.Get()));
}

INSTANTIATE_TEST_SUITE_P(Cases, MenuTextTest,
                         testing::Values(MenuCase{"Plain", L"Open", L"Open", L"Open", 0},
                                         MenuCase{"Usual", L"&open...", L"open", L"open...", L'O'},
                                         MenuCase{"Inner", L"Sa\u00E4&\u00E4", L"Sa\u00E4\u00E4",
                                                  L"Sa\u00E4\u00E4", 0xC4},
                                         MenuCase{"TwoMarks", L"&a&b", L"ab", L"a&b", L'A'},
                                         MenuCase{"Doubled", L"R&&D &x", L"RD x", L"R&D &x", L'&'},
                                         MenuCase{"Last", L"a&", L"a", L"a", 0},
                                         MenuCase{"Only", L"&", L"", L"", 0},
                                         MenuCase{"Empty", L"", L"", L"", 0},
                                         MenuCase{"OneCharacter", L"x", L"x", L"x", 0},
                                         MenuCase{"TwoDots", L"a..", L"a..", L"a..", 0},
                                         MenuCase{"FourDots", L"....", L".", L"....", 0},
                                         MenuCase{"SixDots", L"a......b", L"ab", L"a......b", 0},
                                         MenuCase{"DotsThatMeet", L".&..", L"...", L"...", L'.'},
                                         MenuCase{"InnerDots", L"a...b...", L"ab", L"a...b...", 0}),
                         [](const auto& row) { return std::string(row.param.pszName); });

TEST(RemoveMenuChar, DeletesTheFirstOnly) {
    EXPECT_EQ(L"a&b", Edited(RemoveMenuChar, L"&a&b"));
    EXPECT_EQ(L"&a", Edited(RemoveMenuChar, L"&&a"));
}

TEST(RemoveMenuChar, NullIsHarmless) {
    RemoveMenuChar(nullptr);
    StrRemoveAmpAndDots(nullptr);
    EXPECT_STREQ(L"", MakeNameFromMenu(nullptr));
    EXPECT_EQ(0, GetMenuItemChar(nullptr));
}

TEST(MakeNameFromMenu, EachCallOverwritesTheLast) {
    const wchar_t* pszFirst = MakeNameFromMenu(L"&first");
    EXPECT_EQ(pszFirst, MakeNameFromMenu(L"&second"));
    EXPECT_STREQ(L"second", pszFirst);
}

TEST(MakeNameFromMenu, TakesItsOwnResult) {
    EXPECT_STREQ(L"a&b", MakeNameFromMenu(MakeNameFromMenu(L"&a&&b")));
}

TEST(MakeNameFromMenu, LongTextIsCut) {
    for (std::size_t n : {1022u, 1023u, 1024u, 5000u}) {
        std::wstring str(n, L'x');
        EXPECT_EQ(str.substr(0, 1023), MakeNameFromMenu(str.c_str())) << n;
        EXPECT_EQ(str.substr(0, 1023), MakeNameFromMenu((L'&' + str).c_str())) << n;
    }
}

// Names of keys

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

struct HotKeyCase {
    const char* pszName;
    unsigned uVirtualKey;
    unsigned uModifiers;
    std::vector<unsigned> keys; // whose names are joined
};

class GetHotKeyNameTable : public testing::TestWithParam<HotKeyCase> {};

TEST_P(GetHotKeyNameTable, JoinsModifiersInTheirFixedOrder) {
    std::wstring strExpected;
    for (unsigned uKey : GetParam().keys) {
        if (!strExpected.empty()) strExpected += L" + ";
        strExpected += PlatformName(uKey, uKey == VK_HOME);
    }
    wchar_t sz[128];
    EXPECT_EQ(1, GetHotKeyName(sz, 128, GetParam().uVirtualKey, GetParam().uModifiers));
    EXPECT_EQ(strExpected, sz);
}

INSTANTIATE_TEST_SUITE_P(
    Cases, GetHotKeyNameTable,
    testing::Values(HotKeyCase{"Alone", VK_F5, 0, {VK_F5}},
                    HotKeyCase{"Shift", VK_F5, 1, {VK_SHIFT, VK_F5}},
                    HotKeyCase{"Ctrl", VK_F5, 2, {VK_CONTROL, VK_F5}},
                    HotKeyCase{"Alt", VK_F5, 4, {VK_MENU, VK_F5}},
                    HotKeyCase{"AllThree", VK_F5, 7, {VK_CONTROL, VK_SHIFT, VK_MENU, VK_F5}},
                    HotKeyCase{"Extended", VK_HOME, 8, {VK_HOME}},
                    HotKeyCase{"ExtendedWithAlt", VK_HOME, 8 | 4, {VK_MENU, VK_HOME}},
                    HotKeyCase{"ModifiersAlone", 0, 3, {VK_CONTROL, VK_SHIFT}}),
    [](const auto& row) { return std::string(row.param.pszName); });

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
