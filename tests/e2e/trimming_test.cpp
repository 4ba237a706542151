// What is in the key when a new snapshot comes: the newest 25 stay, and what is no snapshot is left
// alone.

#include "e2e/engine_test_support.h"

#include <algorithm>

namespace {
constexpr int kMaxSnapshots = 25;

class Trimming : public EngineTest {
  protected:
    void SetUp() override {
        EngineTest::SetUp();
        StartPlain(4);
    }
    /// Plants that many snapshots, an hour between two of them. Returns the names, newest first.
    std::vector<std::wstring> PlantSnapshots(int nCount) {
        std::vector<std::wstring> names;
        for (int n = 1; n <= nCount; ++n) {
            names.push_back(NameBeforeNow(3600u * static_cast<unsigned>(n)));
            store.Plant(names.back(), MakeSnapshotBytes(SomeIcons(3, n)));
        }
        return names;
    }
    /// A first capture, which differs from all that is planted.
    void StoreOne() {
        auto before = AllValues(store);
        StartMonitor();
        std::vector<std::wstring> names;
        for (const StoredSnapshot& value : store.Values()) {
            if (!before.count(value.strName)) names.push_back(value.strName);
        }
        ASSERT_EQ(1u, names.size());
        strNew = names[0];
        EXPECT_EQ(ExpectedIcons(), store.Named(strNew)->Icons());
        // What is still there is as it was.
        for (const auto& [strName, content] : AllValues(store)) {
            if (strName != strNew) {
                EXPECT_EQ(before[strName], content);
            }
        }
    }
    bool IsThere(const std::wstring& strName) {
        std::vector<StoredSnapshot> values = store.Values();
        return std::any_of(values.begin(), values.end(),
                           [&](const auto& value) { return value.strName == strName; });
    }
    std::wstring strNew;
};

class TrimmingOf : public Trimming, public testing::WithParamInterface<int> {};
TEST_P(TrimmingOf, KeepsTheNewest25WithTheNewOne) {
    std::vector<std::wstring> names = PlantSnapshots(GetParam());
    const std::vector<BYTE> mark{'o', 0, 'l', 0, 'd', 0, 0, 0};
    store.Plant(L"", mark, REG_SZ);
    StoreOne();
    EXPECT_EQ(std::min(GetParam() + 1, kMaxSnapshots), store.Count());
    for (int n = 0; n < GetParam(); ++n) {
        EXPECT_EQ(n < kMaxSnapshots - 1, IsThere(names[static_cast<size_t>(n)])) << n;
    }
    EXPECT_EQ(L"old", store.Marked());
    ASSERT_TRUE(StillCaptures());
    EXPECT_EQ(std::min(GetParam() + 2, kMaxSnapshots), store.Count());
}
INSTANTIATE_TEST_SUITE_P(Planted, TrimmingOf, testing::Values(0, 23, 24, 25, 26, 40),
                         testing::PrintToStringParamName());

TEST_F(Trimming, WaitsForACaptureThatDiffers) {
    PlantSnapshots(30);
    store.Plant(NameBeforeNow(1), MakeSnapshotBytes(ExpectedIcons()));
    auto before = AllValues(store);
    StartMonitor();
    EXPECT_EQ(before, AllValues(store));
}

TEST_F(Trimming, TakesTheMarkedOneAndLeavesTheMark) {
    std::vector<std::wstring> names = PlantSnapshots(25);
    const auto* p = reinterpret_cast<const BYTE*>(names.back().c_str());
    store.Plant(L"", std::vector<BYTE>(p, p + 34), REG_SZ);
    StoreOne();
    EXPECT_FALSE(IsThere(names.back()));
    EXPECT_EQ(names.back(), store.Marked());
}

TEST_F(Trimming, CountsAndTakesNamesInLowerCase) {
    std::vector<std::wstring> names = PlantSnapshots(24);
    std::wstring strOldest = NameBeforeNow(3600 * 100) + L"";
    std::wstring strLower;
    for (wchar_t ch : strOldest) strLower += static_cast<wchar_t>(::towlower(ch));
    if (strLower == strOldest) strLower = L"01d0000000000abc"; // no letter in it by chance
    store.Plant(strLower, MakeSnapshotBytes(SomeIcons(2)));
    StoreOne();
    EXPECT_FALSE(IsThere(strLower));
    EXPECT_EQ(kMaxSnapshots, store.Count());
    for (const std::wstring& strName : names) EXPECT_TRUE(IsThere(strName));
}

TEST_F(Trimming, ComparesWithANewestNameInLowerCase) {
    store.Plant(L"01ffabcdefabcdef", MakeSnapshotBytes(ExpectedIcons()));
    auto before = AllValues(store);
    StartMonitor();
    EXPECT_EQ(before, AllValues(store));
}

struct NameCase {
    const char* pszRow;
    std::wstring strName;
};
class NamesOfNoSnapshot : public Trimming, public testing::WithParamInterface<NameCase> {};
TEST_P(NamesOfNoSnapshot, AreNeitherCountedNorTaken) {
    const std::wstring& strOdd = GetParam().strName;
    std::vector<std::wstring> names = PlantSnapshots(24);
    store.Plant(strOdd, MakeSnapshotBytes(SomeIcons(5)));
    StoreOne(); // the 25th
    EXPECT_TRUE(IsThere(strOdd));
    for (const std::wstring& strName : names) EXPECT_TRUE(IsThere(strName));
    ASSERT_TRUE(StillCaptures()); // the 26th
    EXPECT_TRUE(IsThere(strOdd));
    EXPECT_FALSE(IsThere(names.back()));
    EXPECT_TRUE(IsThere(names[names.size() - 2]));
    EXPECT_EQ(kMaxSnapshots + 1, store.Count());
}
INSTANTIATE_TEST_SUITE_P(
    Cases, NamesOfNoSnapshot,
    testing::Values(NameCase{"15Characters", L"01D000000000000"},
                    NameCase{"17Characters", L"01D00000000000000"},
                    NameCase{"Zero", L"0000000000000000"},
                    NameCase{"NoDigitAtAll", L"ZZZZZZZZZZZZZZZZ"}, // stands for zero
                    NameCase{"1Character", L"1"},
                    NameCase{"254Characters", std::wstring(254, L'1')},
                    NameCase{"255Characters", std::wstring(255, L'1')},
                    NameCase{"256Characters", std::wstring(256, L'1')},
                    NameCase{"300Characters", L"01Z" + std::wstring(297, L'F')},
                    NameCase{"5000Characters", L"01Z" + std::wstring(4997, L'F')}),
    [](const auto& row) { return std::string(row.param.pszRow); });

TEST_F(Trimming, NameWithOtherLettersTakesAPlaceAndStays) {
    // It stands for 1, the smallest, and being listed last comes to stand before the last one of
    // the list: that one goes first, and under the number 1 itself there is nothing to delete.
    std::vector<std::wstring> names = PlantSnapshots(24);
    const std::wstring strOdd = L"GGGGGGGGGGGGGGG1";
    store.Plant(strOdd, MakeSnapshotBytes(SomeIcons(5)));
    StoreOne();
    EXPECT_TRUE(IsThere(strOdd));
    EXPECT_FALSE(IsThere(names.back()));
    for (size_t n = 0; n + 1 < names.size(); ++n) EXPECT_TRUE(IsThere(names[n])) << n;
    EXPECT_EQ(kMaxSnapshots, store.Count());
}

struct ContentCase {
    const char* pszRow;
    DWORD dwType;
    std::vector<BYTE> bytes;
};
std::vector<BYTE> BadDigest() {
    std::vector<BYTE> bytes = MakeSnapshotBytes(SomeIcons(4));
    bytes[0] ^= 0xFF;
    return bytes;
}
class ContentOfNoSnapshot : public Trimming, public testing::WithParamInterface<ContentCase> {};
TEST_P(ContentOfNoSnapshot, IsCountedByItsNameAndTakenByItsAge) {
    std::vector<std::wstring> names = PlantSnapshots(24);
    std::wstring strYoung = NameBeforeNow(3600 * 2 + 1800), strOld = NameBeforeNow(3600 * 48);
    store.Plant(strYoung, GetParam().bytes, GetParam().dwType);
    store.Plant(strOld, GetParam().bytes, GetParam().dwType);
    StoreOne(); // 27 with it
    EXPECT_EQ(kMaxSnapshots, store.Count());
    EXPECT_TRUE(IsThere(strYoung));
    EXPECT_FALSE(IsThere(strOld));
    EXPECT_FALSE(IsThere(names.back()));
    for (size_t n = 0; n + 1 < names.size(); ++n) EXPECT_TRUE(IsThere(names[n])) << n;
}
INSTANTIATE_TEST_SUITE_P(
    Cases, ContentOfNoSnapshot,
    testing::Values(ContentCase{"Empty", REG_BINARY, {}},
                    ContentCase{"16Bytes", REG_BINARY, std::vector<BYTE>(16, 7)},
                    ContentCase{"NoMultiple", REG_BINARY, std::vector<BYTE>(16 + 47, 7)},
                    ContentCase{"BadDigest", REG_BINARY, BadDigest()},
                    ContentCase{"Text", REG_SZ, {'h', 0, 'i', 0, 0, 0}},
                    ContentCase{"Number", REG_DWORD, {1, 2, 3, 4}},
                    ContentCase{"RecordsAsText", REG_SZ, MakeSnapshotBytes(SomeIcons(4))}),
    [](const auto& row) { return std::string(row.param.pszRow); });

TEST_F(Trimming, LeavesSubkeysAlone) {
    HKEY hkey = nullptr;
    std::wstring strPath = std::wstring(SnapshotReader::kPath) + L"\\01D0000000000000";
    ::RegCreateKeyExW(HKEY_CURRENT_USER, strPath.c_str(), 0, nullptr, 0, KEY_ALL_ACCESS, nullptr,
                      &hkey, nullptr);
    ::RegCloseKey(hkey);
    PlantSnapshots(30);
    StoreOne();
    EXPECT_EQ(kMaxSnapshots, store.Count());
    EXPECT_EQ(ERROR_SUCCESS,
              ::RegOpenKeyExW(HKEY_CURRENT_USER, strPath.c_str(), 0, KEY_READ, &hkey));
    ::RegCloseKey(hkey);
}
} // namespace
