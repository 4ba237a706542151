#include "runtime/text/text_format.h"
#include "support/guard_page.h"

#include <gtest/gtest.h>
#include <iterator>
#include <random>
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

TEST(FormatText, RandomFormatsKeepToTheBufferAndWriteNoArgument) {
    std::mt19937 random(20241121);
    // No precision: with a long one of a number Wine 8 overruns a block of its own.
    constexpr wchar_t kChars[] = L"%%%%nnsSdXcphlLwI641-+0# qy";
    GuardedArea areaFormat(64), areaOut(64);
    GuardedText argument(L"t"); // what every conversion finds, also one that would write
    const wchar_t* psz = argument.Get();
    for (int i = 0; i < 200000; ++i) {
        std::wstring str(random() % 16, 0); // at most 7 conversions
        for (wchar_t& ch : str) ch = kChars[random() % (std::size(kChars) - 1)];
        unsigned cch = 1 + random() % 20;
        auto* pszOut = static_cast<wchar_t*>(areaOut.Put(cch * sizeof(wchar_t)));
        int n = FormatText(pszOut, cch, areaFormat.Put(str), psz, psz, psz, psz, psz, psz, psz);
        ASSERT_EQ(static_cast<int>(wcslen(pszOut)), n) << str;
        ASSERT_LT(static_cast<unsigned>(n), cch) << str;
        ASSERT_STREQ(L"t", psz) << str;
    }
}
} // namespace
