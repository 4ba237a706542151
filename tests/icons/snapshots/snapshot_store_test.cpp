#include "icons/agent/desktop_shared_data.h"
#include "icons/icons_test_support.h"
#include "icons/monitor/monitor_wnd.h"
#include "icons/snapshot_test_support.h"
#include "icons/snapshots/snapshot_store.h"
#include "icons/snapshots/snapshot_time.h"
#include "support/guard_page.h"
#include "support/message_box_driver.h"

#include <gtest/gtest.h>
#include <windows.h>
#include <commctrl.h>

namespace {
using Times = std::vector<unsigned __int64>;
constexpr unsigned __int64 kTime = 0x01DB000000000000; // in the past of any clock

Times Walk(const CSList& list) {
    Times times;
    for (POS pos = list.GetHeadPos(); pos; list.GetNext(pos))
        times.push_back(GetSnapshotTime(list, pos));
    return times;
}

Times Inserted(const Times& times) {
    SnapshotList list;
    for (unsigned __int64 qw : times) EXPECT_TRUE(InsertSnapshotTime(list, qw));
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

class SnapshotNameParsing : public testing::TestWithParam<ParseCase> {};

TEST_P(SnapshotNameParsing, ReadsEightPairs) {
    EXPECT_EQ(GetParam().qwExpected, ParseSnapshotName(GuardedText(GetParam().pszText).Get()));
}

INSTANTIATE_TEST_SUITE_P(
    Cases, SnapshotNameParsing,
    testing::Values(ParseCase{"UpperCase", L"01DB3C4D5E6F7A8B", 0x01DB3C4D5E6F7A8B},
                    ParseCase{"LowerCase", L"01db3c4d5e6f7a8b", 0x01DB3C4D5E6F7A8B},
                    ParseCase{"MixedCase", L"01Db3c4D5E6f7A8b", 0x01DB3C4D5E6F7A8B},
                    ParseCase{"NoDigitsCountAs0", L"x1DB3C4D5E6Fxxgz", 0x01DB3C4D5E6F0000},
                    ParseCase{"NoDigitAtAll", L"zzzzzzzzzzzzzzzz", 0},
                    ParseCase{"Zero", L"0000000000000000", 0}, ParseCase{"Empty", L"", 0},
                    ParseCase{"OneCharacter", L"1", 0},
                    ParseCase{"SevenPairs", L"01DB3C4D5E6F7A", 0},
                    ParseCase{"LastPairSingle", L"01DB3C4D5E6F7A8", 0x01DB3C4D5E6F7A80},
                    ParseCase{"EightPairsAndOneCharacter", L"01DB3C4D5E6F7A8B0", 0},
                    ParseCase{"NinePairs", L"01DB3C4D5E6F7A8B00", 0},
                    ParseCase{"Largest", L"FFFFFFFFFFFFFFFF", 0xFFFFFFFFFFFFFFFF}),
    [](const auto& row) { return std::string(row.param.pszName); });

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
// The key and its values

class SnapshotStore : public testing::Test {
  protected:
    SnapshotKey raw;

    Times List() {
        RegKey key;
        SnapshotList list;
        OpenSnapshotKey(key, 0);
        int n = ListSnapshots(key, list);
        Times times = Walk(list);
        EXPECT_EQ(n, static_cast<int>(times.size()));
        return times;
    }
    unsigned Read(unsigned __int64 qwTime, Layout& layout, unsigned nRoom = 0) {
        RegKey key;
        OpenSnapshotKey(key, 0);
        return ReadSnapshot(key, qwTime, layout.data(), nRoom);
    }
    unsigned Count(unsigned __int64 qwTime) {
        RegKey key;
        OpenSnapshotKey(key, 0);
        return ReadSnapshot(key, qwTime);
    }
    /// A capture's whole way into the store.
    static void Capture(const Layout& layout) {
        OnIconsCaptured(layout.data(), static_cast<unsigned>(layout.size()));
    }
    static bool IsChanged(const Layout& layout) {
        return IsLayoutChanged(layout.data(), static_cast<unsigned>(layout.size()));
    }
};

bool operator==(const Layout& left, const Layout& right) {
    return left.size() == right.size() &&
           memcmp(left.data(), right.data(), left.size() * sizeof(IconRecord)) == 0;
}

unsigned __int64 Now() {
    FILETIME ft{};
    ::GetSystemTimeAsFileTime(&ft);
    return static_cast<unsigned __int64>(ft.dwHighDateTime) << 32 | ft.dwLowDateTime;
}

TEST_F(SnapshotStore, KeyIsBelowTheProductsName) {
    raw.PutStr(L"mark", L"here");
    RegKey key;
    ASSERT_EQ(1, OpenSnapshotKey(key, 0));
    EXPECT_TRUE(key.FindValue(L"mark"));
}

TEST_F(SnapshotStore, KeyIsMadeOnlyForWriting) {
    raw.Delete();
    RegKey key;
    EXPECT_EQ(0, OpenSnapshotKey(key, 0));
    EXPECT_EQ(0, OpenSnapshotKey(key, 0));
    EXPECT_EQ(1, OpenSnapshotKey(key, 1));
    raw.Create();
}

TEST_F(SnapshotStore, ValueIsDigestAndRecords) {
    Layout layout = MakeLayout(3);
    layout[1].pt = {-5, 0x12345678};
    unsigned __int64 qwBefore = Now();
    StoreSnapshot(layout.data(), 3);
    unsigned __int64 qwAfter = Now();

    auto values = raw.Values();
    ASSERT_EQ(1u, values.size());
    const auto& [strName, content] = *values.begin();
    EXPECT_EQ(16u, strName.size());
    unsigned __int64 qwTime = ParseSnapshotName(strName.c_str());
    EXPECT_EQ(NameOf(qwTime), strName); // upper case
    EXPECT_LE(qwBefore, qwTime);
    EXPECT_GE(qwAfter, qwTime);
    EXPECT_EQ((RegContent{REG_BINARY, MakeSnapshotValue(layout)}), content);
    ASSERT_EQ(16u + 3 * 24, content.bytes.size());
    // The second record, byte for byte.
    RegBytes fields(content.bytes.begin() + 16 + 24, content.bytes.begin() + 16 + 40);
    EXPECT_EQ((RegBytes{1, 0, 0, 0, 0xFB, 0xFF, 0xFF, 0xFF, 0x78, 0x56, 0x34, 0x12, 6, 0, 0, 0}),
              fields);
}

TEST_F(SnapshotStore, StoringMakesTheKey) {
    raw.Delete();
    Capture(MakeLayout(2));
    raw.Create();
    EXPECT_EQ(1u, raw.Values().size());
}

TEST_F(SnapshotStore, LargestCaptureIsStoredAndReadBack) {
    for (unsigned nIcons : {1u, 998u, kMaxCapturedIcons}) {
        Layout layout = MakeLayout(nIcons);
        Capture(layout);
        Layout read(nIcons);
        EXPECT_EQ(nIcons, Read(List().at(0), read));
        EXPECT_TRUE(layout == read);
        raw.Delete();
        raw.Create();
    }
}

TEST_F(SnapshotStore, CaptureWithoutRecordsStoresNothing) {
    OnIconsCaptured(nullptr, 0);
    OnIconsCaptured(nullptr, 5);
    Layout layout = MakeLayout(1);
    OnIconsCaptured(layout.data(), 0);
    StoreSnapshot(layout.data(), 0);
    StoreSnapshot(nullptr, 1);
    EXPECT_TRUE(raw.Values().empty());
}

TEST_F(SnapshotStore, CountThatNoValueCanHoldStoresNothing) {
    Layout layout = MakeLayout(1);
    StoreSnapshot(layout.data(), 0xFFFFFFFF); // would be read far beyond the record
    StoreSnapshot(layout.data(), 0x0AAAAAAB); // 24 times this is 8 in 32 bits
    EXPECT_TRUE(raw.Values().empty());
}

// Comparing

TEST_F(SnapshotStore, UnchangedCaptureWritesNothing) {
    Layout layout = MakeLayout(20);
    Capture(layout);
    auto values = raw.Values();
    ASSERT_EQ(1u, values.size());
    unsigned __int64 qwLastWrite = raw.LastWrite();
    for (int i = 0; i < 3; ++i) Capture(layout);
    EXPECT_EQ(qwLastWrite, raw.LastWrite());
    EXPECT_EQ(values, raw.Values());
}

TEST_F(SnapshotStore, WithoutAKeyEverythingIsAChange) {
    raw.Delete();
    EXPECT_TRUE(IsChanged(MakeLayout(1)));
    raw.Create();
}

TEST_F(SnapshotStore, KeyWithOnlyTheMarkHasNoSnapshots) {
    raw.PutStr(L"", NameOf(kTime));
    EXPECT_EQ(Times{}, List());
    EXPECT_TRUE(IsChanged(MakeLayout(1)));
    Capture(MakeLayout(1));
    EXPECT_EQ(2u, raw.Values().size());
}

TEST_F(SnapshotStore, EveryFieldOfEveryRecordCounts) {
    const Layout layout = MakeLayout(3);
    raw.Plant(kTime, layout);
    EXPECT_FALSE(IsChanged(layout));
    for (std::size_t nByte = 0; nByte < 3 * sizeof(IconRecord); ++nByte) {
        Layout changed = layout;
        reinterpret_cast<unsigned char*>(changed.data())[nByte] ^= 1;
        EXPECT_TRUE(IsChanged(changed)) << "byte " << nByte;
    }
}

TEST_F(SnapshotStore, MovingOneIconByOnePixelIsStored) {
    Layout layout = MakeLayout(5);
    Capture(layout);
    ++layout[4].pt.y;
    Capture(layout);
    EXPECT_EQ(2u, List().size());
}

TEST_F(SnapshotStore, AnotherOrderInTheListViewIsStored) {
    Layout layout = MakeLayout(5);
    Capture(layout);
    std::swap(layout[1], layout[2]);
    std::swap(layout[1].nIndex, layout[2].nIndex);
    Capture(layout);
    EXPECT_EQ(2u, List().size());
}

TEST_F(SnapshotStore, MoreOrFewerIconsAreAChange) {
    raw.Plant(kTime, MakeLayout(5));
    EXPECT_TRUE(IsChanged(MakeLayout(4)));
    EXPECT_TRUE(IsChanged(MakeLayout(6)));
}

TEST_F(SnapshotStore, OnlyTheNewestIsCompared) {
    Layout older = MakeLayout(5, 1), newest = MakeLayout(5, 2);
    raw.Plant(kTime, older);
    raw.Plant(kTime + 1, newest);
    Capture(older);
    EXPECT_EQ(3u, List().size());
    Capture(older);
    EXPECT_EQ(3u, List().size());
}

TEST_F(SnapshotStore, NewestWithABadDigestIsAChange) {
    Layout layout = MakeLayout(5);
    RegBytes value = MakeSnapshotValue(layout);
    value[3] ^= 0x80;
    raw.Put(NameOf(kTime), REG_BINARY, value);
    EXPECT_TRUE(IsChanged(layout));
}

TEST_F(SnapshotStore, NewestOfNoSnapshotsSizeIsAChange) {
    for (std::size_t cb : {0u, 8u, 16u, 17u, 39u, 41u, 135u}) {
        raw.Put(NameOf(kTime), REG_BINARY, RegBytes(cb, 1));
        EXPECT_TRUE(IsChanged(MakeLayout(1))) << cb;
        EXPECT_EQ((Times{kTime}), List()) << cb; // listed by its name all the same
    }
}

// Trimming

TEST_F(SnapshotStore, KeepsThe25Newest) {
    // What stands before, and how many of the oldest have to go.
    for (unsigned nBefore : {0u, 1u, 23u, 24u, 25u, 26u, 27u, 60u}) {
        raw.Delete();
        raw.Create();
        for (unsigned n = 0; n < nBefore; ++n) raw.Plant(kTime + n, MakeLayout(2, n));
        Capture(MakeLayout(3));
        Times times = List();
        unsigned nKept = std::min(nBefore, 24u);
        ASSERT_EQ(nKept + 1, times.size()) << nBefore;
        EXPECT_EQ(nKept + 1, raw.Values().size()) << nBefore;
        EXPECT_EQ(3u, Count(times[0])) << nBefore; // the new one
        for (unsigned n = 0; n < nKept; ++n)
            EXPECT_EQ(kTime + nBefore - 1 - n, times[n + 1]) << nBefore;
    }
}

TEST_F(SnapshotStore, UnchangedCaptureTrimsNothing) {
    for (unsigned n = 0; n < 30; ++n) raw.Plant(kTime + n, MakeLayout(2, n));
    Capture(MakeLayout(2, 29));
    EXPECT_EQ(30u, List().size());
}

TEST_F(SnapshotStore, TrimmingLeavesTheMarkAndForeignValues) {
    for (unsigned n = 0; n < 26; ++n) raw.Plant(kTime + n, MakeLayout(2, n));
    raw.PutStr(L"", NameOf(kTime)); // names a snapshot that goes
    raw.Put(L"0000000000000000", REG_BINARY, {1});
    raw.Put(L"000000000000001", REG_BINARY, {1});
    raw.Put(std::wstring(300, L'A'), REG_BINARY, {1});
    Capture(MakeLayout(3));
    EXPECT_EQ(25u, List().size());
    EXPECT_FALSE(raw.HasValue(NameOf(kTime)));
    EXPECT_EQ(BytesOf(NameOf(kTime)), raw.Value(L"").bytes);
    EXPECT_EQ(25u + 4, raw.Values().size());
}

TEST_F(SnapshotStore, TrimmingDeletesMalformedSnapshotsByTheirNames) {
    raw.Put(NameOf(kTime), REG_BINARY, {1, 2, 3});
    for (unsigned n = 1; n <= 24; ++n) raw.Plant(kTime + n, MakeLayout(2, n));
    Capture(MakeLayout(3));
    EXPECT_FALSE(raw.HasValue(NameOf(kTime)));
    EXPECT_EQ(25u, raw.Values().size());
}

// Listing

struct NameCase {
    const char* pszName;
    const wchar_t* pszValueName;
    Times listed;
};

class SnapshotListing : public SnapshotStore, public testing::WithParamInterface<NameCase> {};

TEST_P(SnapshotListing, GoesByNames) {
    raw.Put(GetParam().pszValueName, REG_BINARY, MakeSnapshotValue(MakeLayout(2)));
    EXPECT_EQ(GetParam().listed, List());
}

INSTANTIATE_TEST_SUITE_P(
    Cases, SnapshotListing,
    testing::Values(NameCase{"UpperCase", L"01DB00000000ABCD", {0x01DB00000000ABCD}},
                    NameCase{"LowerCase", L"01db00000000abcd", {0x01DB00000000ABCD}},
                    NameCase{"NoDigits", L"x1DB00000000ABCg", {0x01DB00000000ABC0}},
                    NameCase{"NothingButLetters", L"zzzzzzzzzzzzzzzz", {}},
                    NameCase{"Zero", L"0000000000000000", {}},
                    NameCase{"One", L"0000000000000001", {1}},
                    NameCase{"Of15Characters", L"01DB00000000ABC", {}},
                    NameCase{"Of17Characters", L"01DB00000000ABCD0", {}},
                    NameCase{"DefaultValue", L"", {}}),
    [](const auto& row) { return std::string(row.param.pszName); });

TEST_F(SnapshotStore, LongNamesAreSkipped) {
    raw.Plant(kTime, MakeLayout(1));
    for (std::size_t cch : {254u, 255u, 256u, 257u, 1000u, 16000u}) {
        raw.Put(std::wstring(cch, L'0'), REG_BINARY, {1});
        raw.Put(std::wstring(cch, L'F'), REG_BINARY, {1});
    }
    raw.Plant(0xFFFFFFFFFFFFFFFF, MakeLayout(1));
    EXPECT_EQ((Times{0xFFFFFFFFFFFFFFFF, kTime}), List());
}

TEST_F(SnapshotStore, ListIsNewestFirst) {
    for (unsigned n : {3u, 1u, 2u, 5u, 4u}) raw.Plant(kTime + n, MakeLayout(1));
    EXPECT_EQ((Times{kTime + 5, kTime + 4, kTime + 3, kTime + 2, kTime + 1}), List());
}

TEST_F(SnapshotStore, NameThatIsListedLateAndReadsSmallIsOutOfOrder) {
    raw.Put(L"ZZ00000000000001", REG_BINARY, {1}); // enumerated last, stands for 1
    raw.Plant(kTime, MakeLayout(1));
    raw.Plant(kTime + 1, MakeLayout(1));
    Times times = List();
    if (times.front() == 1) GTEST_SKIP() << "values are not enumerated by name here";
    EXPECT_EQ((Times{kTime + 1, 1, kTime}), times);
}

TEST_F(SnapshotStore, ListingEndsOnAKeyThatIsNotOpen) {
    RegKey key;
    SnapshotList list;
    EXPECT_EQ(0, ListSnapshots(key, list));
    HKEY hkeyClosed = nullptr;
    ::RegOpenKeyExW(raw.Get(), nullptr, 0, KEY_READ, &hkeyClosed);
    ::RegCloseKey(hkeyClosed);
    key.Attach(hkeyClosed, 0);
    EXPECT_EQ(0, ListSnapshots(key, list));
    key.Detach();
}

TEST_F(SnapshotStore, ListingEndsOnAKeyThatWasDeleted) {
    raw.Plant(kTime, MakeLayout(1));
    RegKey key;
    SnapshotList list;
    ASSERT_EQ(1, OpenSnapshotKey(key, 0));
    raw.Delete();
    EXPECT_EQ(0, ListSnapshots(key, list));
    raw.Create();
}

// Reading

TEST_F(SnapshotStore, MissingSnapshotHasNoRecords) { EXPECT_EQ(0u, Count(kTime)); }

TEST_F(SnapshotStore, SizeDecidesTheNumberOfRecords) {
    for (unsigned cb = 0; cb <= 100; ++cb) {
        raw.Put(NameOf(kTime), REG_BINARY, RegBytes(cb, 1));
        unsigned nExpected = cb > 16 && (cb - 16) % 24 == 0 ? (cb - 16) / 24 : 0;
        EXPECT_EQ(nExpected, Count(kTime)) << cb;
    }
}

TEST_F(SnapshotStore, LowerCaseNameIsFoundByItsTime) {
    Layout layout = MakeLayout(3), read(3);
    raw.Put(L"01db00000000abcd", REG_BINARY, MakeSnapshotValue(layout));
    EXPECT_EQ(3u, Read(0x01DB00000000ABCD, read));
    EXPECT_TRUE(layout == read);
    EXPECT_FALSE(IsChanged(layout));
}

TEST_F(SnapshotStore, BadDigestKeepsTheCountAndLeavesTheBuffer) {
    const RegBytes good = MakeSnapshotValue(MakeLayout(2));
    const Layout before = MakeLayout(2, 99);
    for (std::size_t nByte = 0; nByte < good.size(); ++nByte) {
        RegBytes bad = good;
        bad[nByte] ^= 0x10;
        raw.Put(NameOf(kTime), REG_BINARY, bad);
        Layout read = before;
        EXPECT_EQ(2u, Read(kTime, read)) << nByte;
        EXPECT_TRUE(before == read) << nByte;
    }
}

TEST_F(SnapshotStore, TooLittleRoomLeavesTheBuffer) {
    Layout layout = MakeLayout(3);
    raw.Plant(kTime, layout);
    const Layout before = MakeLayout(2, 99);
    Layout small = before;
    EXPECT_EQ(3u, Read(kTime, small, 2));
    EXPECT_TRUE(before == small);
    Layout fits(3);
    EXPECT_EQ(3u, Read(kTime, fits, 3));
    EXPECT_TRUE(layout == fits);
}

TEST_F(SnapshotStore, AnyTypeOfValueIsRead) {
    Layout layout = MakeLayout(2), read(2);
    raw.Put(NameOf(kTime), REG_SZ, MakeSnapshotValue(layout));
    EXPECT_EQ(2u, Count(kTime));
    Read(kTime, read);
    EXPECT_TRUE(layout == read);
}

// Deleting all

TEST_F(SnapshotStore, DeleteAllLeavesAnEmptyKey) {
    for (unsigned n = 0; n < 25; ++n) raw.Plant(kTime + n, MakeLayout(2, n));
    raw.PutStr(L"", NameOf(kTime));
    raw.PutStr(L"foreign", L"text");
    DeleteAllSnapshots();
    EXPECT_TRUE(raw.Values().empty());
    RegKey key;
    EXPECT_EQ(1, OpenSnapshotKey(key, 0)); // the key is still there
    EXPECT_TRUE(IsChanged(MakeLayout(1)));
}
// Restoring

constexpr LONG_PTR kAutoArrange = LVS_AUTOARRANGE;

/// A list view that keeps what a restore sends it and moves nothing.
class SnapshotRestore : public testing::Test {
  protected:
    struct Sent {
        Layout layout;
        WPARAM wSender;
    };

    void SetUp() override {
        GetDesktopSharedData().hwndListView = view.hwndListView;
        view.spyListView.handler = [this](UINT uMsg, WPARAM wParam, LPARAM lParam,
                                          LRESULT* plResult) {
            return Keep(uMsg, wParam, lParam, plResult);
        };
    }
    void TearDown() override { GetDesktopSharedData().hwndListView = nullptr; }
    int Keep(UINT uMsg, WPARAM wParam, LPARAM lParam, LRESULT* plResult) {
        if (uMsg != WM_COPYDATA) return 0;
        const auto* pData = reinterpret_cast<const COPYDATASTRUCT*>(lParam);
        EXPECT_EQ(pData->dwData * sizeof(IconRecord), pData->cbData);
        const auto* pRecords = static_cast<const IconRecord*>(pData->lpData);
        sent.push_back({Layout(pRecords, pRecords + pData->dwData), wParam});
        *plResult = 1;
        return 1;
    }
    LONG_PTR Style() const { return ::GetWindowLongPtrW(view.hwndListView, GWL_STYLE); }
    void SetAutoArrange() {
        ::SetWindowLongPtrW(view.hwndListView, GWL_STYLE, Style() | kAutoArrange);
    }
    std::wstring GetMark() {
        RegContent content = raw.Value(L"");
        if (content.bytes.size() < sizeof(wchar_t)) return L"none";
        EXPECT_EQ(static_cast<DWORD>(REG_SZ), content.dwType);
        return reinterpret_cast<const wchar_t*>(content.bytes.data());
    }

    SnapshotKey raw;
    TestView view;
    std::vector<Sent> sent;
};

TEST_F(SnapshotRestore, SendsTheRecordsAndMarksTheSnapshot) {
    Layout layout = MakeLayout(4);
    raw.Plant(kTime, layout);
    raw.Plant(kTime + 1, MakeLayout(5));
    RestoreSnapshot(kTime);
    ASSERT_EQ(1u, sent.size());
    EXPECT_TRUE(layout == sent[0].layout);
    EXPECT_EQ(0u, sent[0].wSender);
    EXPECT_EQ(NameOf(kTime), GetMark());
}

TEST_F(SnapshotRestore, MarkMovesToTheSnapshotRestoredLast) {
    raw.Plant(kTime, MakeLayout(1));
    raw.Plant(kTime + 1, MakeLayout(999));
    RestoreSnapshot(kTime);
    RestoreSnapshot(kTime + 1);
    EXPECT_EQ(NameOf(kTime + 1), GetMark());
    ASSERT_EQ(2u, sent.size());
    EXPECT_EQ(999u, sent[1].layout.size());
}

TEST_F(SnapshotRestore, RestoringTheMarkedSnapshotAgainWritesNothing) {
    raw.Plant(kTime, MakeLayout(1));
    RegBytes mark = BytesOf(NameOf(kTime));
    raw.Put(L"", REG_BINARY, mark); // a write would change the type
    RestoreSnapshot(kTime);
    EXPECT_EQ((RegContent{REG_BINARY, mark}), raw.Value(L""));
    EXPECT_EQ(1u, sent.size());
}

TEST_F(SnapshotRestore, SnapshotWithoutRecordsIsNeitherSentNorMarked) {
    raw.Put(NameOf(kTime), REG_BINARY, RegBytes(16, 1));
    raw.Put(NameOf(kTime + 1), REG_BINARY, RegBytes(41, 1));
    RestoreSnapshot(kTime);
    RestoreSnapshot(kTime + 1);
    RestoreSnapshot(kTime + 2); // missing
    EXPECT_TRUE(sent.empty());
    EXPECT_EQ(L"none", GetMark());
}

TEST_F(SnapshotRestore, BadDigestSendsZerosAndMarksAllTheSame) {
    RegBytes value = MakeSnapshotValue(MakeLayout(3));
    value[20] ^= 1;
    raw.Put(NameOf(kTime), REG_BINARY, value);
    RestoreSnapshot(kTime);
    ASSERT_EQ(1u, sent.size());
    EXPECT_TRUE(Layout(3) == sent[0].layout);
    EXPECT_EQ(NameOf(kTime), GetMark());
}

TEST_F(SnapshotRestore, AutoArrangeIsClearedAfterAYes) {
    SetAutoArrange();
    LONG_PTR dwBefore = Style();
    raw.Plant(kTime, MakeLayout(2));
    MessageBoxDriver driver({IDYES});
    RestoreSnapshot(kTime);
    ASSERT_EQ(1u, driver.Finish().size());
    EXPECT_EQ(dwBefore & ~kAutoArrange, Style());
    EXPECT_EQ(1u, sent.size());
    EXPECT_EQ(NameOf(kTime), GetMark());
    EXPECT_EQ(
        L"Your Desktop is currently set to auto arrange the icons. In order to restore the "
        L"icons, the auto arrange option needs to be cleared.\n\nOK to clear this option? (If "
        L"you select No, the icons will NOT be restored.)",
        driver.Finish()[0].strText);
}

TEST_F(SnapshotRestore, NothingChangesAfterANo) {
    SetAutoArrange();
    LONG_PTR dwBefore = Style();
    raw.Plant(kTime, MakeLayout(2));
    raw.PutStr(L"", L"before");
    MessageBoxDriver driver({IDNO});
    RestoreSnapshot(kTime);
    ASSERT_EQ(1u, driver.Finish().size());
    EXPECT_EQ(dwBefore, Style());
    EXPECT_TRUE(sent.empty());
    EXPECT_EQ(L"before", GetMark());
}

TEST_F(SnapshotRestore, TellsWhetherALayoutWasSent) {
    EXPECT_FALSE(PutSnapshotBack(kTime)); // there is none
    raw.Plant(kTime, MakeLayout(2));
    EXPECT_TRUE(PutSnapshotBack(kTime));
    RegBytes value = MakeSnapshotValue(MakeLayout(3));
    value[20] ^= 1;
    raw.Put(NameOf(kTime), REG_BINARY, value);
    EXPECT_FALSE(PutSnapshotBack(kTime));
    EXPECT_EQ(2u, sent.size());
    raw.Plant(kTime, MakeLayout(2));
    SetAutoArrange();
    MessageBoxDriver driver({IDNO});
    EXPECT_FALSE(PutSnapshotBack(kTime));
    EXPECT_EQ(1u, driver.Finish().size());
    EXPECT_EQ(2u, sent.size());
}

TEST_F(SnapshotRestore, WithoutAutoArrangeNothingIsAsked) {
    raw.Plant(kTime, MakeLayout(2));
    MessageBoxDriver driver({IDNO});
    RestoreSnapshot(kTime);
    EXPECT_TRUE(driver.Finish().empty());
    EXPECT_EQ(1u, sent.size());
}

TEST_F(SnapshotRestore, WithoutAListViewOnlyTheMarkIsSet) {
    GetDesktopSharedData().hwndListView = nullptr;
    raw.Plant(kTime, MakeLayout(2));
    RestoreSnapshot(kTime);
    EXPECT_EQ(NameOf(kTime), GetMark());
}
} // namespace
