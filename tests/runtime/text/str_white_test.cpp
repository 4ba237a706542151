#include "runtime/text/str_chars.h"
#include "support/guard_page.h"

#include <gtest/gtest.h>
#include <random>
#include <string>

namespace {
struct TrimCase {
    const char* pszName;
    const wchar_t* pszText;
    const wchar_t* pszExpected;
};

class TrimTest : public testing::TestWithParam<TrimCase> {};

TEST_P(TrimTest, BothFormsRemoveWhiteCharactersFromTheEnds) {
    GuardedArea area(256);
    for (auto* pfnTrim : {TrimStr, static_cast<void (*)(wchar_t*)>(StrTrimW)}) {
        wchar_t* psz = area.Put(GetParam().pszText);
        pfnTrim(psz);
        EXPECT_STREQ(GetParam().pszExpected, psz);
    }
}

INSTANTIATE_TEST_SUITE_P(
    Cases, TrimTest,
    testing::Values(TrimCase{"Nothing", L"a b", L"a b"}, TrimCase{"Front", L" \t\r\na", L"a"},
                    TrimCase{"Back", L"a \t\r\n", L"a"}, TrimCase{"Both", L"  a b\t", L"a b"},
                    TrimCase{"Empty", L"", L""}, TrimCase{"OneBlank", L" ", L""},
                    TrimCase{"OneCharacter", L"x", L"x"}, TrimCase{"OnlyWhite", L"\r\n \t", L""},
                    TrimCase{"OtherBlanksStay", L"\u00A0a\f\v", L"\u00A0a\f\v"}),
    [](const auto& row) { return std::string(row.param.pszName); });

TEST(TrimStr, NullIsAllowed) {
    TrimStr(nullptr);
    StrTrimW(nullptr);
}

TEST(TrimStr, RandomTextsLoseTheirEndsAndNothingElse) {
    std::mt19937 random(1);
    GuardedArea area(256);
    for (int i = 0; i < 50000; ++i) {
        std::wstring str;
        for (auto n = random() % 12; n > 0; --n) str += L" \t\r\nab\f"[random() % 7];
        std::wstring strExpected;
        std::size_t nFirst = str.find_first_not_of(L" \t\r\n");
        if (nFirst != std::wstring::npos) {
            strExpected = str.substr(nFirst, str.find_last_not_of(L" \t\r\n") - nFirst + 1);
        }
        wchar_t* psz = area.Put(L'#' + str) + 1;
        TrimStr(psz);
        ASSERT_EQ(strExpected, psz);
        ASSERT_EQ(L'#', psz[-1]);
    }
}

TEST(SkipLeadingWhiteSpaces, TableOfAllCases) {
    const struct {
        const wchar_t* pszText;
        int nResult;
        const wchar_t* pszRest;
    } rows[] = {
        {L"", 0, L""},           {L"a", 0, L"a"},
        {L" \t a b", 0, L"a b"}, {L"\"a\"", 1, L"a\""},
        {L" \t\" \ta", 1, L"a"}, {L"\"", 1, L""},
        {L"\"\"a", 1, L"\"a"},                                // one quote only
        {L" ", 0, L""},          {L"\r\n\"a", 0, L"\r\n\"a"}, // blanks and tabs only
        {L"\" \r", 1, L"\r"},
    };
    for (const auto& row : rows) {
        GuardedText text(row.pszText);
        const wchar_t* psz = text.Get();
        EXPECT_EQ(row.nResult, SkipLeadingWhiteSpaces(psz)) << row.pszText;
        EXPECT_STREQ(row.pszRest, psz);
        std::wstring str = row.pszText;
        wchar_t* pszMutable = str.data();
        EXPECT_EQ(row.nResult, SkipLeadingWhiteSpaces(pszMutable)) << row.pszText;
        EXPECT_STREQ(row.pszRest, pszMutable);
    }
}

TEST(SkipLeadingWhiteSpaces, NullStaysNull) {
    const wchar_t* psz = nullptr;
    EXPECT_EQ(0, SkipLeadingWhiteSpaces(psz));
    EXPECT_EQ(nullptr, psz);
}
} // namespace
