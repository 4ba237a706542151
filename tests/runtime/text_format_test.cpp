#include "runtime/text_format.h"

#include <gtest/gtest.h>
#include <string>

namespace {
std::wstring Format(const wchar_t* pszFormat, ...) {
    wchar_t sz[64];
    va_list args;
    va_start(args, pszFormat);
    int n = FormatTextV(sz, 64, pszFormat, args);
    va_end(args);
    EXPECT_EQ(static_cast<int>(wcslen(sz)), n);
    return sz;
}

TEST(FormatText, PercentSIsWideText) { EXPECT_EQ(L"a-wide", Format(L"a-%s", L"wide")); }

TEST(FormatText, PercentHsIsNarrowText) { EXPECT_EQ(L"narrow", Format(L"%hs", "narrow")); }

TEST(FormatText, PrintsNumbersWithWidthAndPrecision) {
    EXPECT_EQ(L"000000FF 7 -3", Format(L"%08X %u %d", 255u, 7u, -3));
    EXPECT_EQ(L"18446744073709551615", Format(L"%I64u", ~0ull));
    EXPECT_EQ(L"   ab", Format(L"%*.2s", 5, L"abc"));
}

TEST(FormatText, PercentPercentIsOnePercent) { EXPECT_EQ(L"100%", Format(L"%d%%", 100)); }

TEST(FormatText, WritingConversionIsPrintedAndTakesNoArgument) {
    int nUntouched = 5;
    EXPECT_EQ(L"%n and 7", Format(L"%n and %d", 7, &nUntouched));
    EXPECT_EQ(5, nUntouched);
}

TEST(FormatText, UnknownConversionsArePrintedAsTheyStand) {
    EXPECT_EQ(L"%y %", Format(L"%y %"));
    EXPECT_EQ(L"% %-5q!", Format(L"% %-5q!"));
    EXPECT_EQ(L"%k x", Format(L"%k %s", L"x"));
}

TEST(FormatText, CutsAtTheBufferAndTerminates) {
    wchar_t sz[5] = L"zzzz";
    EXPECT_EQ(4, FormatText(sz, L"%s", L"abcdefgh"));
    EXPECT_STREQ(L"abcd", sz);
    EXPECT_EQ(4, FormatText(sz, L"%s", L"abcd"));
    EXPECT_STREQ(L"abcd", sz);
    EXPECT_EQ(3, FormatText(sz, L"%s", L"abc"));
    EXPECT_STREQ(L"abc", sz);
}

TEST(FormatText, BufferOfOneIsEmptied) {
    wchar_t ch = L'z';
    EXPECT_EQ(0, FormatText(&ch, 1, L"%d", 5));
    EXPECT_EQ(L'\0', ch);
}

TEST(FormatText, EmptyBufferIsLeftAlone) {
    wchar_t ch = L'z';
    EXPECT_EQ(0, FormatText(&ch, 0, L"%d", 5));
    EXPECT_EQ(L'z', ch);
    EXPECT_EQ(0, FormatText(nullptr, 0, L"x"));
}

TEST(FormatText, NullFormatGivesEmptyText) {
    wchar_t sz[4] = L"abc";
    EXPECT_EQ(0, FormatText(sz, static_cast<const wchar_t*>(nullptr)));
    EXPECT_STREQ(L"", sz);
}

TEST(FormatText, CutRepairedFormatTerminatesToo) {
    wchar_t sz[3];
    EXPECT_EQ(2, FormatText(sz, L"%n%n"));
    EXPECT_STREQ(L"%n", sz);
}
} // namespace
