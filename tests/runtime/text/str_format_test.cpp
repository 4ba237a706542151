#include "runtime/text/str_format.h"
#include "support/guard_page.h"

#include <gtest/gtest.h>
#include <climits>
#include <cwchar>
#include <random>
#include <string>

namespace {
// Sizes, times, names that have to fit

constexpr unsigned long long kKb = 1ull << 10, kMb = 1ull << 20, kGb = 1ull << 30, kTb = 1ull << 40;

struct SizeCase {
    const char* pszName;
    unsigned long long cb;
    int bAlwaysDecimal;
    const wchar_t* pszExpected;
};

class SizeToStrTable : public testing::TestWithParam<SizeCase> {};

TEST_P(SizeToStrTable, GivesTheLargestUnit) {
    wchar_t sz[32];
    SizeToStr(sz, 32, GetParam().cb, GetParam().bAlwaysDecimal);
    EXPECT_STREQ(GetParam().pszExpected, sz);
}

INSTANTIATE_TEST_SUITE_P(
    Cases, SizeToStrTable,
    testing::Values(
        SizeCase{"Nothing", 0, 0, L"0 B"}, SizeCase{"BytesHaveNoTenth", 0, 1, L"0 B"},
        SizeCase{"OneByte", 1, 0, L"1 B"}, SizeCase{"MostBytes", 1023, 0, L"1023 B"},
        SizeCase{"MostBytesHaveNoTenth", 1023, 1, L"1023 B"}, SizeCase{"OneKb", 1024, 0, L"1 KB"},
        SizeCase{"OneKbAlwaysDecimal", 1024, 1, L"1.0 KB"},
        SizeCase{"OneKbAndAHalf", 1536, 0, L"1.5 KB"},
        SizeCase{"BelowATenth", 1024 + 102, 0, L"1 KB"},
        SizeCase{"BelowATenthAlwaysDecimal", 1024 + 102, 1, L"1.0 KB"},
        SizeCase{"ATenth", 1024 + 103, 0, L"1.1 KB"},
        SizeCase{"CutNotRounded", 2 * kKb - 1, 0, L"1.9 KB"},
        SizeCase{"BelowOneMb", kMb - 1, 0, L"1023.9 KB"}, SizeCase{"OneMb", kMb, 0, L"1 MB"},
        SizeCase{"OneMbAlwaysDecimal", kMb, 1, L"1.0 MB"},
        SizeCase{"OneMbAndAHalf", kMb + 512 * kKb, 0, L"1.5 MB"},
        SizeCase{"BelowOneGb", kGb - 1, 0, L"1023.9 MB"}, SizeCase{"OneGb", kGb, 0, L"1 GB"},
        SizeCase{"TwoGbAndAHalf", kGb * 5 / 2, 0, L"2.5 GB"},
        SizeCase{"BelowOneTb", kTb - 1, 0, L"1023.9 GB"}, SizeCase{"OneTb", kTb, 0, L"1 TB"},
        SizeCase{"OneTbAlwaysDecimal", kTb, 1, L"1.0 TB"},
        SizeCase{"NoLargerUnit", kTb * 2000, 0, L"2000 TB"},
        SizeCase{"Largest", ULLONG_MAX, 0, L"16777215.9 TB"}),
    [](const auto& row) { return std::string(row.param.pszName); });

TEST(SizeToStr, AgreesWithThePlainRuleOnSizesOfEveryLength) {
    std::mt19937_64 random(12);
    const wchar_t* kUnits[] = {L" B", L" KB", L" MB", L" GB", L" TB"};
    for (int i = 0; i < 100000; ++i) {
        unsigned long long cb = random() >> random() % 64;
        int nUnit = 0;
        while (nUnit < 4 && cb >> 10 * (nUnit + 1)) ++nUnit;
        std::wstring strExpected = std::to_wstring(cb >> 10 * nUnit);
        unsigned long long nTenth = nUnit ? (cb >> 10 * (nUnit - 1)) % 1024 * 10 / 1024 : 0;
        int bAlwaysDecimal = static_cast<int>(random() % 2);
        if (nTenth || (nUnit && bAlwaysDecimal)) strExpected += L"." + std::to_wstring(nTenth);
        wchar_t sz[32];
        SizeToStr(sz, 32, cb, bAlwaysDecimal);
        ASSERT_EQ(strExpected + kUnits[nUnit], sz) << cb;
    }
}

TEST(SizeToStr, KeepsToItsCapacity) {
    for (unsigned cch = 1; cch <= 7; ++cch) {
        GuardedMemory memory(cch * sizeof(wchar_t));
        auto* psz = static_cast<wchar_t*>(memory.Get());
        SizeToStr(psz, cch, 1536, 0);
        EXPECT_EQ(std::wstring(L"1.5 KB").substr(0, cch - 1), psz);
    }
    SizeToStr(nullptr, 0, 1536, 0);
}

struct RemainingCase {
    const char* pszName;
    unsigned nSeconds;
    const wchar_t* pszLong;
    const wchar_t* pszShort;
};

class GetTextRemainingTable : public testing::TestWithParam<RemainingCase> {};

TEST_P(GetTextRemainingTable, GivesTheTwoLargestUnitsInBothForms) {
    wchar_t sz[64];
    EXPECT_EQ(1, GetTextRemaining(GetParam().nSeconds, sz, 64, 1));
    EXPECT_STREQ(GetParam().pszLong, sz);
    EXPECT_EQ(1, GetTextRemaining(GetParam().nSeconds, sz, 64, 0));
    EXPECT_STREQ(GetParam().pszShort, sz);
}

INSTANTIATE_TEST_SUITE_P(
    Cases, GetTextRemainingTable,
    testing::Values(RemainingCase{"OneSecond", 1, L"1 seconds", L"1 s"},
                    RemainingCase{"MostSeconds", 59, L"59 seconds", L"59 s"},
                    RemainingCase{"OneMinute", 60, L"1 minute(s) 0 seconds", L"1 m 0 s"},
                    RemainingCase{"MinuteAndSecond", 61, L"1 minute(s) 1 seconds", L"1 m 1 s"},
                    RemainingCase{"MostMinutes", 3599, L"59 minute(s) 59 seconds", L"59 m 59 s"},
                    RemainingCase{"OneHour", 3600, L"1 hour(s) 0 minutes", L"1 h 0 m"},
                    RemainingCase{"SecondsAreDropped", 3661, L"1 hour(s) 1 minutes", L"1 h 1 m"},
                    RemainingCase{"Largest", UINT_MAX, L"1193046 hour(s) 28 minutes",
                                  L"1193046 h 28 m"}),
    [](const auto& row) { return std::string(row.param.pszName); });

TEST(GetTextRemaining, NoSecondsGiveZeroAndTheEmptyText) {
    for (int bLongForm : {0, 1}) {
        wchar_t sz[8] = L"old";
        EXPECT_EQ(0, GetTextRemaining(0, sz, 8, bLongForm));
        EXPECT_STREQ(L"", sz);
    }
}

TEST(GetTextRemaining, KeepsToItsCapacity) {
    for (unsigned cch = 1; cch <= 6; ++cch) {
        GuardedMemory memory(cch * sizeof(wchar_t));
        auto* psz = static_cast<wchar_t*>(memory.Get());
        EXPECT_EQ(1, GetTextRemaining(59, psz, cch, 0));
        EXPECT_EQ(std::wstring(L"59 s").substr(0, cch - 1), psz);
    }
    EXPECT_EQ(1, GetTextRemaining(59, nullptr, 0, 0));
    EXPECT_EQ(0, GetTextRemaining(0, nullptr, 0, 0));
}

const std::wstring kTwenty = L"abcdefghijklmnopqrst";

TEST(FitText, TextThatFitsComesBackItself) {
    GuardedText text(kTwenty);
    EXPECT_EQ(text.Get(), FitText(text.Get(), 100, 100));
    EXPECT_EQ(text.Get(), FitText(text.Get(), 100, 101));
    EXPECT_EQ(text.Get(), FitText(text.Get(), 0, 0));
    EXPECT_EQ(text.Get(), FitText(text.Get(), -5, 10));
    const wchar_t* pszEmpty = L"";
    EXPECT_EQ(pszEmpty, FitText(pszEmpty, 100, 10));
    EXPECT_EQ(nullptr, FitText(nullptr, 100, 10));
}

TEST(FitText, CutsOutTheMiddleByProportion) {
    // Half the width: 10 - 3 characters stay, 3 before the dots and 4 behind.
    EXPECT_STREQ(L"abc...qrst", FitText(GuardedText(kTwenty).Get(), 200, 100));
    // Just below the full width all but 3 stay.
    EXPECT_STREQ(L"abcdefgh...lmnopqrst", FitText(kTwenty.c_str(), 200, 199));
}

struct FitCase {
    const char* pszName;
    int cxWanted; // of the 20 characters, which are 200 wide
    const wchar_t* pszExpected;
};

class FitTextTable : public testing::TestWithParam<FitCase> {};

TEST_P(FitTextTable, NoHeadGivesTheEmptyText) {
    EXPECT_STREQ(GetParam().pszExpected, FitText(kTwenty.c_str(), 200, GetParam().cxWanted));
}

INSTANTIATE_TEST_SUITE_P(
    Cases, FitTextTable,
    testing::Values(FitCase{"Five", 50, L"a...t"}, FitCase{"FourAndAHalf", 45, L"a...t"},
                    FitCase{"Four", 40, L""}, FitCase{"Three", 30, L""}, FitCase{"Two", 20, L""},
                    FitCase{"One", 10, L""}, FitCase{"LessThanOne", 1, L""},
                    FitCase{"Nothing", 0, L""}, FitCase{"Negative", -1, L""},
                    FitCase{"FarNegative", -100, L""}, FitCase{"Least", INT_MIN, L""}),
    [](const auto& row) { return std::string(row.param.pszName); });

TEST(FitText, NoWidthOrOneCharacterGivesTheEmptyText) {
    EXPECT_STREQ(L"", FitText(kTwenty.c_str(), 0, -1));
    EXPECT_STREQ(L"", FitText(kTwenty.c_str(), -5, -100));
    EXPECT_STREQ(L"", FitText(L"x", 100, 99));
}

TEST(FitText, EachCallOverwritesTheLastAndTakesItsResult) {
    const wchar_t* psz = FitText(kTwenty.c_str(), 200, 199);
    EXPECT_EQ(psz, FitText(psz, 200, 100));
    EXPECT_STREQ(L"abc...qrst", psz);
}

TEST(FitText, LongResultIsCut) {
    for (std::size_t n : {1020u, 1023u, 1024u, 1026u, 2100u, 5000u}) {
        std::wstring str(n, L'x');
        const wchar_t* psz = FitText(GuardedText(str).Get(), 100000, 99999);
        EXPECT_EQ(std::min<std::size_t>(n, 1023), std::wcslen(psz)) << n;
    }
}

TEST(FitText, RandomWidthsKeepHeadAndTail) {
    std::mt19937 random(9);
    GuardedArea area(256);
    for (int i = 0; i < 100000; ++i) {
        std::wstring str;
        for (auto n = random() % 40; n > 0; --n) str += static_cast<wchar_t>(L'a' + random() % 26);
        int cxFull = static_cast<int>(random() % 500) - 20;
        int cxWanted = static_cast<int>(random() % 500) - 20;
        std::wstring strFit = FitText(area.Put(str), cxFull, cxWanted);
        if (strFit == str || strFit.empty()) continue;
        std::size_t nDots = strFit.find(L"...");
        ASSERT_NE(std::wstring::npos, nDots);
        ASSERT_TRUE(str.starts_with(strFit.substr(0, nDots)));
        ASSERT_TRUE(str.ends_with(strFit.substr(nDots + 3)));
        ASSERT_LE(strFit.size(), str.size());
    }
}

// Formatting and appending

TEST(StrAppendTextFmt, FormatsBehindTheText) {
    wchar_t sz[64] = L"a:";
    StrAppendTextFmt(sz, 64, L" %s=%d", L"x", 5);
    EXPECT_STREQ(L"a: x=5", sz);
    StrAppendTextFmt(sz, 64, L"");
    EXPECT_STREQ(L"a: x=5", sz);
    StrAppendTextFmt(sz, 64, L"%s", sz); // the text itself
    EXPECT_STREQ(L"a: x=5a: x=5", sz);
}

TEST(StrAppendTextFmt, NullFormatClearsTheText) {
    wchar_t sz[16] = L"abc";
    StrAppendTextFmt(sz, 16, nullptr);
    EXPECT_STREQ(L"", sz);
    sz[0] = L'x';
    StrAppendTextFmt(sz, 0, nullptr); // no characters, none cleared
    EXPECT_EQ(L'x', sz[0]);
    StrAppendTextFmt(nullptr, 16, nullptr);
    StrAppendTextFmt(nullptr, 16, L"abc");
}

TEST(StrAppendTextFmt, KeepsToItsCapacity) {
    for (unsigned cch = 3; cch <= 8; ++cch) {
        GuardedMemory memory(cch * sizeof(wchar_t));
        auto* psz = static_cast<wchar_t*>(memory.Get());
        wcscpy(psz, L"ab");
        StrAppendTextFmt(psz, cch, L"%s", L"cdef");
        EXPECT_EQ(std::wstring(L"abcdef").substr(0, cch - 1), psz) << cch;
    }
    GuardedMemory one(sizeof(wchar_t));
    auto* psz = static_cast<wchar_t*>(one.Get());
    *psz = 0;
    StrAppendTextFmt(psz, 1, L"x");
    EXPECT_STREQ(L"", psz);
}

TEST(StrAppendTextFmt, TextWithoutAnEndIsLeftAlone) {
    GuardedMemory memory(2 * sizeof(wchar_t));
    auto* psz = static_cast<wchar_t*>(memory.Get());
    psz[0] = L'a';
    psz[1] = L'b';
    StrAppendTextFmt(psz, 2, L"x");
    EXPECT_EQ(L'a', psz[0]);
    EXPECT_EQ(L'b', psz[1]);
}

TEST(StrAppendTextFmt, FormatsIntoAtMost1023Characters) {
    for (std::size_t n : {1022u, 1023u, 1024u, 1500u}) {
        std::wstring str(n, L'x');
        wchar_t sz[2048] = L"a";
        StrAppendTextFmt(sz, 2048, L"%s", str.c_str());
        EXPECT_EQ(1 + std::min<std::size_t>(n, 1023), std::wcslen(sz)) << n;
    }
}
} // namespace
