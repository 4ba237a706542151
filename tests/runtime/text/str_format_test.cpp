#include "runtime/text/str_format.h"
#include "support/guard_page.h"

#include <gtest/gtest.h>
#include <climits>
#include <cwchar>
#include <random>
#include <string>

namespace {
constexpr unsigned long long kKb = 1ull << 10, kMb = 1ull << 20, kGb = 1ull << 30, kTb = 1ull << 40;

TEST(SizeToStr, TableOfAllCases) {
    const struct {
        unsigned long long cb;
        int bAlwaysDecimal;
        const wchar_t* pszExpected;
    } rows[] = {
        {0, 0, L"0 B"},
        {0, 1, L"0 B"},
        {1, 0, L"1 B"},
        {1023, 0, L"1023 B"},
        {1023, 1, L"1023 B"},
        {1024, 0, L"1 KB"},
        {1024, 1, L"1.0 KB"},
        {1536, 0, L"1.5 KB"},
        {1024 + 102, 0, L"1 KB"}, // 102 * 10 is below 1,024
        {1024 + 102, 1, L"1.0 KB"},
        {1024 + 103, 0, L"1.1 KB"},
        {2 * kKb - 1, 0, L"1.9 KB"}, // cut, not rounded
        {kMb - 1, 0, L"1023.9 KB"},
        {kMb, 0, L"1 MB"},
        {kMb, 1, L"1.0 MB"},
        {kMb + 512 * kKb, 0, L"1.5 MB"},
        {kGb - 1, 0, L"1023.9 MB"},
        {kGb, 0, L"1 GB"},
        {kGb * 5 / 2, 0, L"2.5 GB"},
        {kTb - 1, 0, L"1023.9 GB"},
        {kTb, 0, L"1 TB"},
        {kTb, 1, L"1.0 TB"},
        {kTb * 2000, 0, L"2000 TB"}, // there is no larger unit
        {ULLONG_MAX, 0, L"16777215.9 TB"},
    };
    for (const auto& row : rows) {
        wchar_t sz[32];
        SizeToStr(sz, 32, row.cb, row.bAlwaysDecimal);
        EXPECT_STREQ(row.pszExpected, sz) << row.cb;
    }
}

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

TEST(GetTextRemaining, TableOfAllCases) {
    const struct {
        unsigned nSeconds;
        const wchar_t* pszLong;
        const wchar_t* pszShort;
    } rows[] = {
        {1, L"1 seconds", L"1 s"},
        {59, L"59 seconds", L"59 s"},
        {60, L"1 minute(s) 0 seconds", L"1 m 0 s"},
        {61, L"1 minute(s) 1 seconds", L"1 m 1 s"},
        {3599, L"59 minute(s) 59 seconds", L"59 m 59 s"},
        {3600, L"1 hour(s) 0 minutes", L"1 h 0 m"},
        {3661, L"1 hour(s) 1 minutes", L"1 h 1 m"}, // the seconds are dropped
        {UINT_MAX, L"1193046 hour(s) 28 minutes", L"1193046 h 28 m"},
    };
    for (const auto& row : rows) {
        wchar_t sz[64];
        EXPECT_EQ(1, GetTextRemaining(row.nSeconds, sz, 64, 1));
        EXPECT_STREQ(row.pszLong, sz);
        EXPECT_EQ(1, GetTextRemaining(row.nSeconds, sz, 64, 0));
        EXPECT_STREQ(row.pszShort, sz);
    }
}

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

TEST(FitText, NoHeadGivesTheEmptyText) {
    const struct {
        int cxWanted;
        const wchar_t* pszExpected;
    } rows[] = {{50, L"a...t"}, {45, L"a...t"}, {40, L""}, {30, L""},   {20, L""},     {10, L""},
                {1, L""},       {0, L""},       {-1, L""}, {-100, L""}, {INT_MIN, L""}};
    for (const auto& row : rows) {
        EXPECT_STREQ(row.pszExpected, FitText(kTwenty.c_str(), 200, row.cxWanted)) << row.cxWanted;
    }
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
} // namespace
