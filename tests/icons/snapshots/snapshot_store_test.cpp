#include "icons/snapshot_test_support.h"
#include "icons/snapshots/snapshot_store.h"

#include <gtest/gtest.h>

namespace {
using Times = std::vector<unsigned __int64>;
constexpr unsigned __int64 kTime = 0x01DB000000000000; // in the past of any clock

class SnapshotStore : public testing::Test {
  protected:
    SnapshotKey raw;

    Times List() {
        RegKey key;
        SnapshotList list;
        OpenSnapshotKey(key, 0);
        int n = ListSnapshots(key, list);
        Times times;
        for (POS pos = list.GetHeadPos(); pos; list.GetNext(pos)) {
            times.push_back(GetSnapshotTime(list, pos));
        }
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
    static void Capture(const Layout& layout) {
        OnIconsCaptured(layout.data(), static_cast<unsigned>(layout.size()));
    }
    static int IsChanged(const Layout& layout) {
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

// Names of the key, records and values

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
    EXPECT_EQ(1, IsChanged(MakeLayout(1)));
    raw.Create();
}

TEST_F(SnapshotStore, KeyWithOnlyTheMarkHasNoSnapshots) {
    raw.PutStr(L"", NameOf(kTime));
    EXPECT_EQ(Times{}, List());
    EXPECT_EQ(1, IsChanged(MakeLayout(1)));
    Capture(MakeLayout(1));
    EXPECT_EQ(2u, raw.Values().size());
}

TEST_F(SnapshotStore, EveryFieldOfEveryRecordCounts) {
    const Layout layout = MakeLayout(3);
    raw.Plant(kTime, layout);
    EXPECT_EQ(0, IsChanged(layout));
    for (std::size_t nByte = 0; nByte < 3 * sizeof(IconRecord); ++nByte) {
        Layout changed = layout;
        reinterpret_cast<unsigned char*>(changed.data())[nByte] ^= 1;
        EXPECT_EQ(1, IsChanged(changed)) << "byte " << nByte;
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
    EXPECT_EQ(1, IsChanged(MakeLayout(4)));
    EXPECT_EQ(1, IsChanged(MakeLayout(6)));
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
    EXPECT_EQ(1, IsChanged(layout));
}

TEST_F(SnapshotStore, NewestOfNoSnapshotsSizeIsAChange) {
    for (std::size_t cb : {0u, 8u, 16u, 17u, 39u, 41u, 135u}) {
        raw.Put(NameOf(kTime), REG_BINARY, RegBytes(cb, 1));
        EXPECT_EQ(1, IsChanged(MakeLayout(1))) << cb;
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
    const char* pszTitle;
    const wchar_t* pszName;
    Times listed;
};

TEST_F(SnapshotStore, ListGoesByNames) {
    const NameCase kCases[] = {
        {"upper case", L"01DB00000000ABCD", {0x01DB00000000ABCD}},
        {"lower case", L"01db00000000abcd", {0x01DB00000000ABCD}},
        {"no digits", L"x1DB00000000ABCg", {0x01DB00000000ABC0}},
        {"nothing but letters", L"zzzzzzzzzzzzzzzz", {}},
        {"zero", L"0000000000000000", {}},
        {"one", L"0000000000000001", {1}},
        {"15 characters", L"01DB00000000ABC", {}},
        {"17 characters", L"01DB00000000ABCD0", {}},
        {"default value", L"", {}},
    };
    for (const NameCase& row : kCases) {
        raw.Delete();
        raw.Create();
        raw.Put(row.pszName, REG_BINARY, MakeSnapshotValue(MakeLayout(2)));
        EXPECT_EQ(row.listed, List()) << row.pszTitle;
    }
}

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
    EXPECT_EQ(0, IsChanged(layout));
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
    EXPECT_EQ(1, IsChanged(MakeLayout(1)));
}
} // namespace
