#include "runtime/text/str_find.h"
#include "support/guard_page.h"

#include <gtest/gtest.h>
#include <random>
#include <string>
#include <vector>

namespace {
// Comparing texts, and texts in lists

struct CompareCase {
    const char* pszName;
    const wchar_t* pszText;
    const wchar_t* pszOther;
    int bIgnoreCase;
    int nResult;
};

class StrStartsWithTable : public testing::TestWithParam<CompareCase> {};

TEST_P(StrStartsWithTable, AsksForThePrefix) {
    const CompareCase& row = GetParam();
    EXPECT_EQ(row.nResult, StrStartsWith(row.pszText, row.pszOther, row.bIgnoreCase));
}

INSTANTIATE_TEST_SUITE_P(Cases, StrStartsWithTable,
                         testing::Values(CompareCase{"Prefix", L"abc", L"ab", 0, 1},
                                         CompareCase{"Whole", L"abc", L"abc", 0, 1},
                                         CompareCase{"LongerPrefix", L"abc", L"abcd", 0, 0},
                                         CompareCase{"OtherCase", L"abc", L"Ab", 0, 0},
                                         CompareCase{"CaseIgnored", L"abc", L"Ab", 1, 1},
                                         CompareCase{"LanguageCaseIgnored", L"\u00E4b", L"\u00C4",
                                                     1, 1},
                                         CompareCase{"LanguageCase", L"\u00E4b", L"\u00C4", 0, 0},
                                         CompareCase{"OtherLetter", L"abc", L"x", 1, 0},
                                         CompareCase{"EmptyPrefix", L"abc", L"", 0, 1},
                                         CompareCase{"EmptyPrefixOfEmpty", L"", L"", 0, 0},
                                         CompareCase{"PrefixOfEmpty", L"", L"a", 0, 0},
                                         CompareCase{"NullPrefix", L"abc", nullptr, 0, 1},
                                         CompareCase{"NullPrefixOfEmpty", L"", nullptr, 0, 1},
                                         CompareCase{"NullPrefixOfNull", nullptr, nullptr, 0, 1},
                                         CompareCase{"EmptyPrefixOfNull", nullptr, L"", 0, 0},
                                         CompareCase{"PrefixOfNull", nullptr, L"a", 1, 0}),
                         [](const auto& row) { return std::string(row.param.pszName); });

class StrIsSameTable : public testing::TestWithParam<CompareCase> {};

TEST_P(StrIsSameTable, ComparesWholeTexts) {
    const CompareCase& row = GetParam();
    EXPECT_EQ(row.nResult, StrIsSame(row.pszText, row.pszOther, row.bIgnoreCase));
}

INSTANTIATE_TEST_SUITE_P(Cases, StrIsSameTable,
                         testing::Values(CompareCase{"Same", L"abc", L"abc", 0, 1},
                                         CompareCase{"OtherCase", L"abc", L"aBc", 0, 0},
                                         CompareCase{"CaseIgnored", L"abc", L"aBc", 1, 1},
                                         CompareCase{"Shorter", L"abc", L"ab", 1, 0},
                                         CompareCase{"Longer", L"ab", L"abc", 1, 0},
                                         CompareCase{"LanguageCaseIgnored", L"\u00E4", L"\u00C4", 1,
                                                     1},
                                         CompareCase{"LanguageCase", L"\u00E4", L"\u00C4", 0, 0},
                                         CompareCase{"BothEmpty", L"", L"", 0, 1},
                                         CompareCase{"OneEmpty", L"", L"a", 0, 0},
                                         CompareCase{"NullIsEmpty", nullptr, L"", 0, 1},
                                         CompareCase{"BothNull", nullptr, nullptr, 1, 1},
                                         CompareCase{"OtherNull", L"a", nullptr, 1, 0}),
                         [](const auto& row) { return std::string(row.param.pszName); });

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

class IsStrInListTable : public testing::TestWithParam<CompareCase> {};

TEST_P(IsStrInListTable, AsksForAnItemAtTheTextsBeginning) {
    const CompareCase& row = GetParam();
    EXPECT_EQ(row.nResult, IsStrInList(row.pszText, row.pszOther, L',', row.bIgnoreCase));
}

INSTANTIATE_TEST_SUITE_P(
    Cases, IsStrInListTable,
    testing::Values(CompareCase{"OnlyItem", L"ab", L"ab", 0, 1},
                    CompareCase{"InnerItem", L"ab", L"x,ab,y", 0, 1},
                    CompareCase{"LastItem", L"ab", L"x,y,ab", 0, 1},
                    CompareCase{"TextBeginsWithItem", L"abcdef", L"x,ab", 0, 1},
                    CompareCase{"ItemBeginsWithText", L"a", L"x,ab", 0, 0},
                    CompareCase{"NotThere", L"ab", L"x,y", 0, 0},
                    CompareCase{"OtherCase", L"AB", L"x,ab", 0, 0},
                    CompareCase{"CaseIgnored", L"AB", L"x,ab", 1, 1},
                    CompareCase{"LanguageCaseIgnored", L"\u00C4", L"\u00E4", 1, 1},
                    CompareCase{"EmptyList", L"ab", L"", 0, 0},
                    CompareCase{"EmptyInEmpty", L"", L"", 0, 0},
                    CompareCase{"EmptyText", L"", L"ab", 0, 0},
                    CompareCase{"EmptyItemBeginsEveryText", L"ab", L"x,,y", 0, 1},
                    CompareCase{"EmptyItemBeginsTheEmptyText", L"", L"x,,y", 0, 1},
                    CompareCase{"EmptyFirstItem", L"ab", L",x", 0, 1},
                    CompareCase{"NoItemBehindTheLastSeparator", L"ab", L"x,", 0, 0},
                    CompareCase{"TextWithSeparator", L"x,y", L"x,y", 0, 1},
                    CompareCase{"NullText", nullptr, L"ab", 0, 0},
                    CompareCase{"NullList", L"ab", nullptr, 0, 0}),
    [](const auto& row) { return std::string(row.param.pszName); });

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

// Counting and finding single characters

struct NumStrCase {
    const char* pszName;
    const wchar_t* pszText;
    int nResult;
};

class IsNumStrTable : public testing::TestWithParam<NumStrCase> {};

TEST_P(IsNumStrTable, AsksForDigitsAndAtLeastOne) {
    EXPECT_EQ(GetParam().nResult, IsNumStr(GuardedText(GetParam().pszText).Get()));
}

INSTANTIATE_TEST_SUITE_P(
    Cases, IsNumStrTable,
    testing::Values(NumStrCase{"OneDigit", L"0", 1}, NumStrCase{"AllDigits", L"0123456789", 1},
                    NumStrCase{"Empty", L"", 0}, NumStrCase{"LetterBehind", L"12a", 0},
                    NumStrCase{"LetterBefore", L"a12", 0}, NumStrCase{"Sign", L"-1", 0},
                    NumStrCase{"BlankBefore", L" 1", 0}, NumStrCase{"BlankBehind", L"1 ", 0},
                    NumStrCase{"Point", L"1.5", 0}, NumStrCase{"OtherScript", L"\u0661", 0}),
    [](const auto& row) { return std::string(row.param.pszName); });

TEST(IsNumStr, NullIsNone) { EXPECT_EQ(0, IsNumStr(nullptr)); }

TEST(FindChar, GivesTheFirstIndexUnderBothNames) {
    for (auto* pfnFind : {FindChar, strPos}) {
        EXPECT_EQ(0u, pfnFind(L"abcb", L'a'));
        EXPECT_EQ(1u, pfnFind(L"abcb", L'b'));
        EXPECT_EQ(2u, pfnFind(L"ab\u00E4", 0xE4));
        EXPECT_EQ(0xFFFFFFFFu, pfnFind(L"abcb", L'x'));
        EXPECT_EQ(0xFFFFFFFFu, pfnFind(L"", L'x'));
        EXPECT_EQ(0xFFFFFFFFu, pfnFind(L"abc", L'\0')); // the terminator is no part of the text
        EXPECT_EQ(0xFFFFFFFFu, pfnFind(nullptr, L'x'));
    }
}

TEST(StrCharCount, CountsOneCharacter) {
    EXPECT_EQ(2u, StrCharCount(L"abcb", L'b'));
    EXPECT_EQ(0u, StrCharCount(L"abcb", L'x'));
    EXPECT_EQ(1u, StrCharCount(L"x", L'x'));
    EXPECT_EQ(0u, StrCharCount(L"", L'x'));
    EXPECT_EQ(0u, StrCharCount(L"abc", L'\0'));
    EXPECT_EQ(0u, StrCharCount(nullptr, L'x'));
}

TEST(StrCountChars, CountsTheCharactersOfASet) {
    EXPECT_EQ(3u, StrCountChars(L"abcb", L"bc"));
    EXPECT_EQ(3u, StrCountChars(L"abcb", L"bbbc")); // each only once
    EXPECT_EQ(0u, StrCountChars(L"abcb", L"xy"));
    EXPECT_EQ(0u, StrCountChars(L"abcb", L""));
    EXPECT_EQ(0u, StrCountChars(L"", L"ab"));
    EXPECT_EQ(0u, StrCountChars(nullptr, L"ab"));
    EXPECT_EQ(0u, StrCountChars(L"ab", nullptr));
}

struct LineCase {
    const char* pszName;
    const wchar_t* pszText;
    unsigned n;
    unsigned nLines;
};

class GetLineCountTable : public testing::TestWithParam<LineCase> {};

TEST_P(GetLineCountTable, IsOneMoreThanTheLineFeeds) {
    const LineCase& row = GetParam();
    EXPECT_EQ(row.nLines, GetLineCount(GuardedText(row.pszText).Get(), row.n));
}

INSTANTIATE_TEST_SUITE_P(
    Cases, GetLineCountTable,
    testing::Values(LineCase{"Empty", L"", 0, 0}, LineCase{"NoFurtherThanTheEmptyText", L"", 5, 0},
                    LineCase{"OneLine", L"a", 1, 1}, LineCase{"TwoLines", L"a\nb", 3, 2},
                    LineCase{"EmptyLastLineCounts", L"a\r\nb\r\n", 6, 3},
                    LineCase{"OnlyALineFeed", L"\n", 1, 2},
                    LineCase{"FirstCharactersOnly", L"a\nb\nc", 2, 2},
                    LineCase{"FirstCharacterOnly", L"a\nb\nc", 1, 1},
                    LineCase{"NoCharacters", L"a\nb\nc", 0, 1},
                    LineCase{"NoFurtherThanTheTerminator", L"a\nb\nc", 1000, 3},
                    LineCase{"CarriageReturnAlone", L"a\rb", 3, 1}),
    [](const auto& row) { return std::string(row.param.pszName); });

TEST(GetLineCount, NullHasNoLines) { EXPECT_EQ(0u, GetLineCount(nullptr, 3)); }

// Tokens

using Tokens = std::vector<std::wstring>;

/// All tokens, cut out of a text that ends at a page that may not be touched.
Tokens Cut(GuardedArea& area, const std::wstring& str, const wchar_t* pszSeparators) {
    Tokens tokens;
    wchar_t* pszContext = nullptr;
    wchar_t* psz = StrTokEx(area.Put(str), pszSeparators, pszContext);
    for (; psz; psz = StrTokEx(nullptr, pszSeparators, pszContext)) tokens.push_back(psz);
    EXPECT_EQ(nullptr, StrTokEx(nullptr, pszSeparators, pszContext)); // the end stays the end
    return tokens;
}

Tokens PlainTokens(const std::wstring& str, const std::wstring& strSeparators) {
    Tokens tokens;
    std::size_t nPos = str.find_first_not_of(strSeparators);
    while (nPos != std::wstring::npos) {
        std::size_t nEnd = std::min(str.find_first_of(strSeparators, nPos), str.size());
        tokens.push_back(str.substr(nPos, nEnd - nPos));
        nPos = str.find_first_not_of(strSeparators, nEnd);
    }
    return tokens;
}

struct TokenCase {
    const char* pszName;
    const wchar_t* pszText;
    const wchar_t* pszSeparators;
    Tokens tokens;
};

class TokenTest : public testing::TestWithParam<TokenCase> {};

TEST_P(TokenTest, AllThreeFunctionsSeeTheSameTokens) {
    const TokenCase& row = GetParam();
    GuardedArea area(256);
    EXPECT_EQ(row.tokens, Cut(area, row.pszText, row.pszSeparators));
    EXPECT_EQ(row.tokens.size(), GetTokenCount(row.pszText, row.pszSeparators));
    for (std::size_t i = 0; i < row.tokens.size(); ++i) {
        EXPECT_EQ(row.tokens[i], GetToken(row.pszText, row.pszSeparators, static_cast<int>(i)));
    }
    int nCount = static_cast<int>(row.tokens.size());
    EXPECT_EQ(nullptr, GetToken(row.pszText, row.pszSeparators, nCount));
    EXPECT_EQ(nullptr, GetToken(row.pszText, row.pszSeparators, nCount + 1));
    EXPECT_EQ(nullptr, GetToken(row.pszText, row.pszSeparators, -1));
}

INSTANTIATE_TEST_SUITE_P(
    Cases, TokenTest,
    testing::Values(TokenCase{"One", L"abc", L",", {L"abc"}},
                    TokenCase{"Three", L"a,bc,d", L",", {L"a", L"bc", L"d"}},
                    TokenCase{"SeveralSeparators", L"a, b;c", L",; ", {L"a", L"b", L"c"}},
                    TokenCase{"RowsOfSeparators", L",,a,,,b,,", L",", {L"a", L"b"}},
                    TokenCase{"OnlySeparators", L",,,", L",", {}},
                    TokenCase{"Empty", L"", L",", {}},
                    TokenCase{"OneCharacter", L"a", L",", {L"a"}},
                    TokenCase{"OneSeparator", L",", L",", {}},
                    TokenCase{"NoSeparators", L"a,b", L"", {L"a,b"}},
                    TokenCase{"NullSeparators", L"a,b", nullptr, {L"a,b"}}),
    [](const auto& row) { return std::string(row.param.pszName); });

TEST(StrTokEx, SetMayChangeFromCallToCall) {
    std::wstring str = L"name=a,b";
    wchar_t* pszContext = nullptr;
    EXPECT_STREQ(L"name", StrTokEx(str.data(), L"=", pszContext));
    EXPECT_STREQ(L"a", StrTokEx(nullptr, L",", pszContext));
    EXPECT_STREQ(L"b", StrTokEx(nullptr, L",", pszContext));
    EXPECT_EQ(nullptr, StrTokEx(nullptr, L",", pszContext));
}

TEST(StrTokEx, ContextsAreIndependent) {
    std::wstring str1 = L"a,b", str2 = L"c,d";
    wchar_t *pszContext1 = nullptr, *pszContext2 = nullptr;
    EXPECT_STREQ(L"a", StrTokEx(str1.data(), L",", pszContext1));
    EXPECT_STREQ(L"c", StrTokEx(str2.data(), L",", pszContext2));
    EXPECT_STREQ(L"b", StrTokEx(nullptr, L",", pszContext1));
    EXPECT_STREQ(L"d", StrTokEx(nullptr, L",", pszContext2));
}

TEST(StrTokEx, NullWithoutAContextIsTheEnd) {
    wchar_t* pszContext = nullptr;
    EXPECT_EQ(nullptr, StrTokEx(nullptr, L",", pszContext));
    EXPECT_EQ(nullptr, pszContext);
}

TEST(GetToken, NullTextHasNone) {
    EXPECT_EQ(nullptr, GetToken(nullptr, L",", 0));
    EXPECT_EQ(0u, GetTokenCount(nullptr, L","));
}

TEST(GetToken, EachCallOverwritesTheLast) {
    const wchar_t* psz = GetToken(L"a,b", L",", 0);
    EXPECT_EQ(psz, GetToken(L"c,d", L",", 0));
    EXPECT_STREQ(L"c", psz);
}

TEST(GetToken, TakesItsOwnResult) {
    EXPECT_STREQ(L"z", GetToken(GetToken(L"a b,x y z,c", L",", 1), L" ", 2));
}

TEST(GetToken, SeesTheFirst255CharactersOnly) {
    for (std::size_t n : {254u, 255u, 256u, 1000u}) {
        std::wstring str(n, L'x');
        EXPECT_EQ(str.substr(0, 255), GetToken(GuardedText(str).Get(), L",", 0)) << n;
    }
    std::wstring str = std::wstring(253, L'x') + L",yz,w";
    EXPECT_STREQ(L"y", GetToken(str.c_str(), L",", 1));
    EXPECT_EQ(nullptr, GetToken(str.c_str(), L",", 2));
    EXPECT_EQ(3u, GetTokenCount(str.c_str(), L","));
}

TEST(TokenFunctions, RandomTextsAgreeWithThePlainForm) {
    std::mt19937 random(4);
    GuardedArea area(256), areaSeparators(64);
    for (int i = 0; i < 200000; ++i) {
        std::wstring str, strSeparators;
        for (auto n = random() % 20; n > 0; --n) str += L"ab,; \u00E4"[random() % 6];
        for (auto n = random() % 4; n > 0; --n) strSeparators += L"a,; "[random() % 4];
        Tokens tokens = PlainTokens(str, strSeparators);
        const wchar_t* pszSeparators = areaSeparators.Put(strSeparators);
        ASSERT_EQ(tokens, Cut(area, str, pszSeparators)) << str << " by " << strSeparators;
        const wchar_t* psz = area.Put(str);
        ASSERT_EQ(tokens.size(), GetTokenCount(psz, pszSeparators));
        int nIndex = static_cast<int>(random() % 6) - 1;
        const wchar_t* pszToken = GetToken(psz, pszSeparators, nIndex);
        bool bThere = nIndex >= 0 && static_cast<std::size_t>(nIndex) < tokens.size();
        ASSERT_EQ(bThere, pszToken != nullptr);
        if (bThere) {
            ASSERT_EQ(tokens[static_cast<std::size_t>(nIndex)], pszToken);
        }
    }
}
} // namespace
