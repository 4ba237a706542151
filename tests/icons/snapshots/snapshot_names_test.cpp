#include "icons/snapshots/snapshot_names.h"
#include "support/guard_page.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace {
using Times = std::vector<unsigned __int64>;

Times Walk(const CSList& list) {
    Times times;
    for (POS pos = list.GetHeadPos(); pos; list.GetNext(pos))
        times.push_back(GetSnapshotTime(list, pos));
    return times;
}

Times Inserted(const Times& times) {
    SnapshotList list;
    for (unsigned __int64 qw : times) EXPECT_EQ(1, InsertSnapshotTime(list, qw));
    return Walk(list);
}

TEST(SnapshotNames, OldestFirstComesOutNewestFirst) {
    EXPECT_EQ((Times{5, 4, 3, 2, 1}), Inserted({1, 2, 3, 4, 5}));
}

TEST(SnapshotNames, SmallestTimeLandsBeforeTheLast) {
    EXPECT_EQ((Times{3, 5}), Inserted({5, 3}));
    EXPECT_EQ((Times{7, 3, 5}), Inserted({5, 7, 3}));
    EXPECT_EQ((Times{9, 7, 2, 5}), Inserted({5, 7, 9, 2}));
}

TEST(SnapshotNames, TimeInBetweenLandsBeforeTheFirstSmallerOne) {
    EXPECT_EQ((Times{9, 6, 5, 3}), Inserted({3, 5, 9, 6}));
    EXPECT_EQ((Times{9, 5, 4, 3}), Inserted({3, 5, 9, 4}));
}

TEST(SnapshotNames, EqualTimesStayBoth) { EXPECT_EQ((Times{5, 5, 3}), Inserted({3, 5, 5})); }

TEST(SnapshotNames, TimesAreComparedWithoutSign) {
    EXPECT_EQ((Times{0xFFFFFFFFFFFFFFFF, 1}), Inserted({1, 0xFFFFFFFFFFFFFFFF}));
}

TEST(SnapshotNames, NameHasSixteenUpperCaseDigits) {
    wchar_t szName[kSnapshotNameLength + 1];
    FormatSnapshotName(szName, 0x01DB3C4D5E6F7A8B);
    EXPECT_STREQ(L"01DB3C4D5E6F7A8B", szName);
    FormatSnapshotName(szName, 1);
    EXPECT_STREQ(L"0000000000000001", szName);
    FormatSnapshotName(szName, 0xFFFFFFFFFFFFFFFF);
    EXPECT_STREQ(L"FFFFFFFFFFFFFFFF", szName);
}

struct ParseCase {
    const char* pszName;
    const wchar_t* pszText;
    unsigned __int64 qwExpected;
};

TEST(SnapshotNames, ParsingReadsEightPairs) {
    const ParseCase kCases[] = {
        {"upper case", L"01DB3C4D5E6F7A8B", 0x01DB3C4D5E6F7A8B},
        {"lower case", L"01db3c4d5e6f7a8b", 0x01DB3C4D5E6F7A8B},
        {"mixed case", L"01Db3c4D5E6f7A8b", 0x01DB3C4D5E6F7A8B},
        {"no digits count as 0", L"x1DB3C4D5E6Fxxgz", 0x01DB3C4D5E6F0000},
        {"no digit at all", L"zzzzzzzzzzzzzzzz", 0},
        {"zero", L"0000000000000000", 0},
        {"empty", L"", 0},
        {"one character", L"1", 0},
        {"seven pairs", L"01DB3C4D5E6F7A", 0},
        {"last pair single", L"01DB3C4D5E6F7A8", 0x01DB3C4D5E6F7A80},
        {"eight pairs and one character", L"01DB3C4D5E6F7A8B0", 0},
        {"nine pairs", L"01DB3C4D5E6F7A8B00", 0},
        {"largest", L"FFFFFFFFFFFFFFFF", 0xFFFFFFFFFFFFFFFF},
    };
    for (const ParseCase& row : kCases) {
        EXPECT_EQ(row.qwExpected, ParseSnapshotName(GuardedText(row.pszText).Get())) << row.pszName;
    }
}

TEST(SnapshotNames, TextOfAnyLengthGivesZero) {
    EXPECT_EQ(0u, ParseSnapshotName(std::wstring(100000, L'F').c_str()));
    EXPECT_EQ(0u, ParseSnapshotName(nullptr));
}

TEST(SnapshotNames, NameOfEveryBitParsesBack) {
    for (int n = 0; n < 64; ++n) {
        wchar_t szName[kSnapshotNameLength + 1];
        FormatSnapshotName(szName, 1ull << n);
        EXPECT_EQ(1ull << n, ParseSnapshotName(szName));
    }
}
} // namespace
