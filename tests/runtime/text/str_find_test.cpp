#include "runtime/text/str_find.h"
#include "support/guard_page.h"

#include <gtest/gtest.h>
#include <random>
#include <string>

namespace {
TEST(StrStartsWith, TableOfAllCases) {
    const struct {
        const wchar_t* pszText;
        const wchar_t* pszPrefix;
        int bIgnoreCase;
        int nResult;
    } rows[] = {
        {L"abc", L"ab", 0, 1},
        {L"abc", L"abc", 0, 1},
        {L"abc", L"abcd", 0, 0},
        {L"abc", L"Ab", 0, 0},
        {L"abc", L"Ab", 1, 1},
        {L"\u00E4b", L"\u00C4", 1, 1},
        {L"\u00E4b", L"\u00C4", 0, 0},
        {L"abc", L"x", 1, 0},
        {L"abc", L"", 0, 1},
        {L"", L"", 0, 0},
        {L"", L"a", 0, 0},
        {L"abc", nullptr, 0, 1},
        {L"", nullptr, 0, 1},
        {nullptr, nullptr, 0, 1},
        {nullptr, L"", 0, 0},
        {nullptr, L"a", 1, 0},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(row.nResult, StrStartsWith(row.pszText, row.pszPrefix, row.bIgnoreCase))
            << (row.pszText ? row.pszText : L"(null)") << " "
            << (row.pszPrefix ? row.pszPrefix : L"(null)");
    }
}

TEST(StrIsSame, TableOfAllCases) {
    const struct {
        const wchar_t* pszText;
        const wchar_t* pszOther;
        int bIgnoreCase;
        int nResult;
    } rows[] = {
        {L"abc", L"abc", 0, 1},       {L"abc", L"aBc", 0, 0},   {L"abc", L"aBc", 1, 1},
        {L"abc", L"ab", 1, 0},        {L"ab", L"abc", 1, 0},    {L"\u00E4", L"\u00C4", 1, 1},
        {L"\u00E4", L"\u00C4", 0, 0}, {L"", L"", 0, 1},         {L"", L"a", 0, 0},
        {nullptr, L"", 0, 1},         {nullptr, nullptr, 1, 1}, {L"a", nullptr, 1, 0},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(row.nResult, StrIsSame(row.pszText, row.pszOther, row.bIgnoreCase))
            << (row.pszText ? row.pszText : L"(null)") << " "
            << (row.pszOther ? row.pszOther : L"(null)");
    }
}

TEST(StrFindInList, GivesTheIndexOfTheFirstEqualText) {
    GuardedText list(std::wstring_view(L"one\0two\0Two\0three\0", 18));
    EXPECT_EQ(0u, StrFindInList(list.Get(), L"one", 0));
    EXPECT_EQ(1u, StrFindInList(list.Get(), L"two", 0));
    EXPECT_EQ(2u, StrFindInList(list.Get(), L"Two", 0));
    EXPECT_EQ(1u, StrFindInList(list.Get(), L"TWO", 1));
    EXPECT_EQ(3u, StrFindInList(list.Get(), L"three", 0));
    for (const wchar_t* psz : {L"on", L"ones", L"TWO", L"four", L""}) {
        EXPECT_EQ(kNotFound, StrFindInList(list.Get(), psz, 0)) << psz;
    }
}

TEST(StrFindInList, EmptyListAndNullsHoldNothing) {
    EXPECT_EQ(0xFFFFFFFFu, StrFindInList(L"\0", L"a", 0));
    EXPECT_EQ(kNotFound, StrFindInList(L"\0", L"", 0));
    EXPECT_EQ(kNotFound, StrFindInList(nullptr, L"a", 0));
    EXPECT_EQ(kNotFound, StrFindInList(L"a\0", nullptr, 0));
}

TEST(IsStrInList, TableOfAllCases) {
    const struct {
        const wchar_t* pszText;
        const wchar_t* pszList;
        int bIgnoreCase;
        int nResult;
    } rows[] = {
        {L"ab", L"ab", 0, 1},     {L"ab", L"x,ab,y", 0, 1},
        {L"ab", L"x,y,ab", 0, 1}, {L"abcdef", L"x,ab", 0, 1}, // the item is how the text begins
        {L"a", L"x,ab", 0, 0},                                // and not the other way round
        {L"ab", L"x,y", 0, 0},    {L"AB", L"x,ab", 0, 0},
        {L"AB", L"x,ab", 1, 1},   {L"\u00C4", L"\u00E4", 1, 1},
        {L"ab", L"", 0, 0},       {L"", L"", 0, 0},
        {L"", L"ab", 0, 0},       {L"ab", L"x,,y", 0, 1}, // an empty item is how every text begins
        {L"", L"x,,y", 0, 1},     {L"ab", L",x", 0, 1},
        {L"ab", L"x,", 0, 0}, // behind the last separator there is none
        {L"x,y", L"x,y", 0, 1},   {nullptr, L"ab", 0, 0},
        {L"ab", nullptr, 0, 0},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(row.nResult, IsStrInList(row.pszText, row.pszList, L',', row.bIgnoreCase))
            << (row.pszText ? row.pszText : L"(null)") << " in "
            << (row.pszList ? row.pszList : L"(null)");
    }
}

TEST(IsStrInList, RandomListsStayWithinTheirTexts) {
    std::mt19937 random(3);
    GuardedArea areaText(64), areaList(64);
    for (int i = 0; i < 100000; ++i) {
        std::wstring strText, strList;
        for (auto n = random() % 6; n > 0; --n) strText += L"abB,"[random() % 4];
        for (auto n = random() % 12; n > 0; --n) strList += L"abB,"[random() % 4];
        int nExpected = 0;
        for (std::size_t nPos = 0; nPos < strList.size();) {
            std::size_t nEnd = std::min(strList.find(L',', nPos), strList.size());
            nExpected |= strText.starts_with(strList.substr(nPos, nEnd - nPos));
            nPos = nEnd + 1;
        }
        ASSERT_EQ(nExpected, IsStrInList(areaText.Put(strText), areaList.Put(strList), L',', 0))
            << strText << " in " << strList;
    }
}
} // namespace
