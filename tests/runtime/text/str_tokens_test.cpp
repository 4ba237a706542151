#include "runtime/text/str_find.h"
#include "support/guard_page.h"

#include <gtest/gtest.h>
#include <random>
#include <string>
#include <vector>

namespace {
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
