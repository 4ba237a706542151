#include "runtime/text/str_find.h"
#include "support/guard_page.h"

#include <gtest/gtest.h>

namespace {
TEST(IsNumStr, AsksForDigitsAndAtLeastOne) {
    const struct {
        const wchar_t* psz;
        int nResult;
    } rows[] = {{L"0", 1},  {L"0123456789", 1}, {L"", 0},   {L"12a", 0}, {L"a12", 0},
                {L"-1", 0}, {L" 1", 0},         {L"1 ", 0}, {L"1.5", 0}, {L"\u0661", 0}};
    for (const auto& row : rows) {
        EXPECT_EQ(row.nResult, IsNumStr(GuardedText(row.psz).Get())) << row.psz;
    }
    EXPECT_EQ(0, IsNumStr(nullptr));
}

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

TEST(GetLineCount, IsOneMoreThanTheLineFeeds) {
    const struct {
        const wchar_t* psz;
        unsigned n;
        unsigned nLines;
    } rows[] = {
        {L"", 0, 0},
        {L"", 5, 0},
        {L"a", 1, 1},
        {L"a\nb", 3, 2},
        {L"a\r\nb\r\n", 6, 3}, // an empty last line counts
        {L"\n", 1, 2},
        {L"a\nb\nc", 2, 2}, // only the first n characters
        {L"a\nb\nc", 1, 1},
        {L"a\nb\nc", 0, 1},
        {L"a\nb\nc", 1000, 3}, // no further than the
                               // terminator
        {L"a\rb", 3, 1},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(row.nLines, GetLineCount(GuardedText(row.psz).Get(), row.n))
            << row.psz << " " << row.n;
    }
    EXPECT_EQ(0u, GetLineCount(nullptr, 3));
}
} // namespace
