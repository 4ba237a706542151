#include "app/identity/product_info.h"
#include "app/shell_start_recorder.h"
#include "icons/menu_test_support.h"
#include "icons/tray/day_count.h"

#include <gtest/gtest.h>

namespace {
constexpr const wchar_t* kTestRoot = L"Software\\Orvanta\\DayCountTest";

/// A root key of the test's own for the product, with today's date the test's as well.
struct DayCount : testing::Test {
    DayCount() { GetMyProductInfo().PushAppRootKey(root.Path().c_str()); }
    ~DayCount() override { GetMyProductInfo().PopAppRootKey(); }

    TestKey root{kTestRoot};
    TestKey setup{std::wstring(kTestRoot) + L"\\Setup"};
    TestDate today{2017, 11, 3};
    std::wstring TodaysText() { return DateText(TestDate::Get(), 0); }
    std::wstring LastUse() {
        RegContent content = setup.Value(L"LastUse");
        EXPECT_EQ(static_cast<DWORD>(REG_SZ), content.dwType);
        return reinterpret_cast<const wchar_t*>(content.bytes.data());
    }
    /// The stored counter; -1 if there is none.
    int Stored() {
        RegContent content = setup.Value(L"DayCount");
        if (content.dwType != REG_DWORD || content.bytes.size() != 4) return -1;
        return *reinterpret_cast<const int*>(content.bytes.data());
    }
};

/// So many bytes of text, with more of it behind them in memory: the platform takes a terminator
/// along that stands right behind a text.
RegBytes TextOfBytes(size_t cb) {
    RegBytes bytes(cb + 2 * sizeof(wchar_t), 'x');
    bytes.resize(cb);
    return bytes;
}
} // namespace

TEST_F(DayCount, FirstDayOnlyRemembersTheDate) {
    EXPECT_EQ(0u, UpdateDayCount());
    EXPECT_EQ(TodaysText(), LastUse());
    EXPECT_EQ(-1, Stored());
}

TEST_F(DayCount, KeyIsMadeOnTheFirstDay) {
    setup.Delete();
    EXPECT_EQ(0u, UpdateDayCount());
    setup.Create();
    EXPECT_EQ(TodaysText(), LastUse());
}

TEST_F(DayCount, SameDayWritesNothing) {
    UpdateDayCount();
    today.Set(2017, 11, 4);
    UpdateDayCount();
    unsigned long long qwWritten = setup.LastWrite();
    for (int n = 0; n < 5; ++n) EXPECT_EQ(1u, UpdateDayCount());
    EXPECT_EQ(qwWritten, setup.LastWrite());
    setup.PutStr(L"Other", L"x"); // what a write would look like
    EXPECT_NE(qwWritten, setup.LastWrite());
}

TEST_F(DayCount, EachChangeOfTheDateAddsOne) {
    UpdateDayCount();
    const int kDays[][3] = {{2017, 11, 4}, {2017, 11, 30}, {2018, 1, 1}, {2016, 1, 1}};
    DWORD dwExpected = 0;
    for (const auto& day : kDays) { // however many days lie between, and also backwards
        today.Set(day[0], day[1], day[2]);
        EXPECT_EQ(++dwExpected, UpdateDayCount());
        EXPECT_EQ(static_cast<int>(dwExpected), Stored());
        EXPECT_EQ(TodaysText(), LastUse());
        EXPECT_EQ(dwExpected, UpdateDayCount());
    }
}

TEST_F(DayCount, GoesOnFromWhatIsStored) {
    setup.PutDword(L"DayCount", 41);
    setup.PutStr(L"LastUse", L"yesterday");
    EXPECT_EQ(42u, UpdateDayCount());
    EXPECT_EQ(42, Stored());
    setup.PutDword(L"DayCount", 0xFFFFFFFF);
    setup.PutStr(L"LastUse", L"yesterday");
    EXPECT_EQ(0u, UpdateDayCount());
}

TEST_F(DayCount, CounterWithoutADateCountsFromTheNextDay) {
    setup.PutDword(L"DayCount", 7);
    EXPECT_EQ(7u, UpdateDayCount());
    today.Set(2017, 11, 4);
    EXPECT_EQ(8u, UpdateDayCount());
}

TEST_F(DayCount, CounterThatCannotBeReadIsZero) {
    setup.Put(L"DayCount", REG_SZ, BytesOf(L"a text longer than a number"));
    setup.PutStr(L"LastUse", L"yesterday");
    EXPECT_EQ(1u, UpdateDayCount());
    EXPECT_EQ(1, Stored());
}

TEST_F(DayCount, DateOfAnotherTypeOrWithoutItsEndIsReadAllTheSame) {
    for (bool bTerminated : {true, false}) {
        setup.PutDword(L"DayCount", 5);
        setup.Put(L"LastUse", REG_BINARY, BytesOf(TodaysText(), bTerminated));
        EXPECT_EQ(5u, UpdateDayCount());
    }
}

TEST_F(DayCount, DateOfUpTo64BytesCounts) {
    for (size_t cb : {2u, 62u, 63u, 64u}) {
        setup.PutDword(L"DayCount", 5);
        setup.Put(L"LastUse", REG_SZ, TextOfBytes(cb));
        EXPECT_EQ(6u, UpdateDayCount()) << cb;
        EXPECT_EQ(TodaysText(), LastUse());
    }
    for (size_t cb : {0u, 65u, 66u, 4000u}) { // as if there were none
        setup.PutDword(L"DayCount", 5);
        setup.Put(L"LastUse", REG_SZ, TextOfBytes(cb));
        EXPECT_EQ(5u, UpdateDayCount()) << cb;
        EXPECT_EQ(TodaysText(), LastUse());
    }
}

TEST_F(DayCount, DateIsTheShortOneOfTheUsersLocale) {
    const wchar_t* kFormats[] = {L"dd.MM.yyyy", L"yyyy-MM-dd", L"M/d/yy", L"dddd d MMMM"};
    DWORD dwExpected = 0;
    UpdateDayCount();
    for (const wchar_t* pszFormat : kFormats) {
        LocaleEntry format(LOCALE_SSHORTDATE, pszFormat);
        if (!format.IsSet()) GTEST_SKIP() << "the user's locale can't be changed here";
        // Another way to write it is another text, and counts.
        bool bOther = LastUse() != TodaysText();
        dwExpected += bOther;
        EXPECT_EQ(dwExpected, UpdateDayCount());
        EXPECT_EQ(TodaysText(), LastUse());
    }
    EXPECT_GT(dwExpected, 1u);
}

TEST_F(DayCount, DateOfMoreThan31CharactersIsNeverReadBack) {
    const struct {
        const wchar_t* pszFormat;
        size_t cch;
        DWORD dwAfterTwoDays;
    } rows[] = {
        {L"'the long form of a da'yyyy-MM-dd", 31, 2},
        {L"'the long form of a day'yyyy-MM-dd", 32, 0},
    };
    for (const auto& row : rows) {
        setup.Delete();
        setup.Create();
        today.Set(2017, 11, 3);
        LocaleEntry format(LOCALE_SSHORTDATE, row.pszFormat);
        if (!format.IsSet()) GTEST_SKIP() << "the user's locale can't be changed here";
        ASSERT_EQ(row.cch, TodaysText().size());
        UpdateDayCount();
        EXPECT_EQ(TodaysText(), LastUse());
        today.Set(2017, 11, 4);
        UpdateDayCount();
        today.Set(2017, 11, 5);
        EXPECT_EQ(row.dwAfterTwoDays, UpdateDayCount()) << row.cch;
        EXPECT_EQ(TodaysText(), LastUse());
    }
}

TEST_F(DayCount, WithoutItsKeyTheCounterIsWhatItLastWas) {
    setup.PutDword(L"DayCount", 12);
    setup.PutStr(L"LastUse", L"yesterday");
    EXPECT_EQ(13u, UpdateDayCount());
    GetMyProductInfo().PushAppRootKey(L"NoSuchRoot\\Orvanta");
    today.Set(2017, 12, 24);
    EXPECT_EQ(13u, UpdateDayCount());
    EXPECT_EQ(13, Stored());
}

TEST_F(DayCount, CheckForUpdatesIsAskedForFromTheSecondDayOn) {
    ShellStartRecorder shell;
    setup.PutDword(L"NextUpdate", 2); // long due
    setup.PutDword(L"RemindFreq", 3); // never, and not unasked: both count for nothing here
    setup.PutDword(L"AutoCheck", 0);
    UpdateDayCount();
    EXPECT_TRUE(shell.calls.empty());
    today.Set(2017, 11, 4);
    for (int n = 0; n < 2; ++n) { // each call asks
        UpdateDayCount();
        EXPECT_EQ(MaybeText(L"/CHECK4UPDATES"), shell.TakeOne().parameters) << n;
    }
    EXPECT_EQ(3, setup.Value(L"RemindFreq").bytes[0]);
    EXPECT_EQ(0, setup.Value(L"AutoCheck").bytes[0]);
    setup.PutDword(L"NextUpdate", 0xFFFFFFFF); // none is wanted
    UpdateDayCount();
    EXPECT_TRUE(shell.calls.empty());
}
