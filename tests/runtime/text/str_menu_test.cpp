#include "runtime/text/menu_text.h"
#include "support/guard_page.h"

#include <gtest/gtest.h>
#include <string>

namespace {
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
} // namespace
