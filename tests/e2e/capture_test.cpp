// Captures of the desktop: what is stored, what it consists of, and when nothing is stored.

#include "e2e/engine_test_support.h"

namespace {
class CaptureOnEveryDesktop : public EngineTest, public testing::WithParamInterface<DesktopMode> {
  protected:
    void SetUp() override {
        EngineTest::SetUp();
        StartDesktop(GetParam());
        if (GetParam() != DesktopMode::Real) desktop->Fill(7);
    }
};

TEST_P(CaptureOnEveryDesktop, IsStoredAtTheStart) {
    desktop->Move(0, {333, 222});
    uint64_t nBefore = Now();
    monitor.StartOn(*desktop);
    ASSERT_TRUE(WaitUntil([&] { return store.Count() == 1; }));
    uint64_t nAfter = Now();
    StoredSnapshot value = *store.Newest();
    EXPECT_EQ(16u, value.strName.size());
    EXPECT_EQ(std::wstring::npos, value.strName.find_first_not_of(L"0123456789ABCDEF"));
    EXPECT_LE(nBefore, TimeOfName(value.strName));
    EXPECT_GE(nAfter, TimeOfName(value.strName));
    EXPECT_EQ(DWORD{REG_BINARY}, value.dwType);
    EXPECT_EQ(16 + 24 * static_cast<size_t>(desktop->Count()), value.bytes.size());
    EXPECT_TRUE(value.DigestHolds());
    EXPECT_EQ(ExpectedIcons(), value.Icons());
    EXPECT_FALSE(store.Named(L"")); // no mark before a first restore
}

TEST_P(CaptureOnEveryDesktop, IsStoredWhenAnIconHasMovedByOnePixel) {
    StartMonitor();
    ASSERT_EQ(1, store.Count());
    POINT pt = desktop->Items().at(0).pt;
    for (POINT ptNew : {POINT{pt.x + 1, pt.y}, POINT{pt.x + 1, pt.y - 1}}) {
        int nBefore = store.Count();
        desktop->Move(0, ptNew);
        ASSERT_TRUE(Capture());
        ASSERT_EQ(nBefore + 1, store.Count());
        EXPECT_EQ(ExpectedIcons(), store.Newest()->Icons());
        EXPECT_TRUE(store.Newest()->DigestHolds());
    }
}

INSTANTIATE_TEST_SUITE_P(Modes, CaptureOnEveryDesktop,
                         testing::Values(DesktopMode::Real, DesktopMode::Plain,
                                         DesktopMode::WorkerW, DesktopMode::WorkerWInside),
                         ModeName);

struct CountCase {
    int nIcons;
    bool bStored;
};
class CaptureOfCount : public EngineTest, public testing::WithParamInterface<CountCase> {};

TEST_P(CaptureOfCount, IsStoredIfThereAreOneTo999Icons) {
    StartPlain(GetParam().nIcons);
    StartMonitor();
    EXPECT_EQ(GetParam().bStored, store.KeyExists());
    ASSERT_EQ(GetParam().bStored ? 1 : 0, store.Count());
    if (!GetParam().bStored) return;
    EXPECT_EQ(ExpectedIcons(), store.Newest()->Icons());
    EXPECT_EQ(static_cast<size_t>(GetParam().nIcons), store.Newest()->Icons().size());
    EXPECT_TRUE(store.Newest()->DigestHolds());
}
INSTANTIATE_TEST_SUITE_P(Counts, CaptureOfCount,
                         testing::Values(CountCase{0, false}, CountCase{1, true},
                                         CountCase{999, true}, CountCase{1000, false}),
                         [](const auto& row) { return std::to_string(row.param.nIcons); });

using CaptureOnPlain = EngineTest;

TEST_F(CaptureOnPlain, GoesOnWhenThereAreFewerThanThousandAgain) {
    StartPlain(1000);
    StartMonitor();
    EXPECT_EQ(0, store.Count());
    desktop->Remove(500);
    ASSERT_TRUE(Capture());
    ASSERT_EQ(1, store.Count());
    EXPECT_EQ(ExpectedIcons(), store.Newest()->Icons());
}

TEST_F(CaptureOnPlain, KeepsTheLastSnapshotOfADesktopThatBecameEmpty) {
    StartPlain(3);
    StartMonitor();
    auto before = AllValues(store);
    desktop->Clear();
    ASSERT_TRUE(Capture());
    EXPECT_EQ(before, AllValues(store));
}

TEST_F(CaptureOnPlain, TakesNamesOfAnyKindByTheirUnits) {
    StartDesktop(DesktopMode::Plain);
    const std::vector<std::wstring> names{L"",
                                          L"x",
                                          L"X",
                                          L"  blanks  ",
                                          std::wstring(259, L'a'),
                                          std::wstring(260, L'b'),
                                          std::wstring(400, L'c'),
                                          std::wstring(400, L'c'), // a duplicate even after the cut
                                          L"\xD83D\xDE00",
                                          std::wstring(258, L'd') +
                                              L"\xD83D\xDE00", // the cut goes through the pair
                                          std::wstring(257, L'd') + L"\xD83D\xDE00",
                                          L"\xDE00 alone",
                                          L"na\xEFve \x4E2D\x6587",
                                          L"same",
                                          L"same"};
    for (size_t n = 0; n < names.size(); ++n) {
        desktop->Add(names[n], {static_cast<LONG>(40 * n), static_cast<LONG>(30 * n)});
    }
    StartMonitor();
    ASSERT_EQ(1, store.Count());
    std::vector<StoredIcon> icons = store.Newest()->Icons();
    ASSERT_EQ(names.size(), icons.size());
    for (size_t n = 0; n < names.size(); ++n) {
        POINT pt{static_cast<LONG>(40 * n), static_cast<LONG>(30 * n)};
        EXPECT_EQ(Record(static_cast<unsigned>(n), pt, names[n]), icons[n]) << n;
    }
    EXPECT_EQ(0x04B2008FD98C1DD4u, icons[0].nNameKey); // of the empty text
    EXPECT_NE(icons[1].nNameKey, icons[2].nNameKey);
    EXPECT_EQ(259u, icons[5].nNameLength);
    EXPECT_EQ(icons[6].nNameKey, icons[7].nNameKey);
}

TEST_F(CaptureOnPlain, WritesNothingWhenNothingHasChanged) {
    StartPlain(5);
    StartMonitor();
    ASSERT_EQ(1, store.Count());
    // The platform does not count a write of what is there already: under another type it would.
    StoredSnapshot value = *store.Newest();
    store.Plant(value.strName, value.bytes, REG_RESOURCE_LIST);
    auto before = AllValues(store);
    uint64_t nWritten = store.LastWriteTime();
    for (int n = 0; n < 5; ++n) ASSERT_TRUE(Capture());
    EXPECT_EQ(nWritten, store.LastWriteTime());
    EXPECT_EQ(before, AllValues(store));
}

TEST_F(CaptureOnPlain, OfTheSamePlacesInAnotherOrderIsStored) {
    StartPlain(4);
    StartMonitor();
    std::map<std::wstring, POINT> places = Places();
    desktop->Reorder({2, 0, 3, 1});
    std::map<std::wstring, POINT> placesNow = Places();
    for (const auto& [strName, pt] : places) {
        EXPECT_EQ(pt.x, placesNow[strName].x);
        EXPECT_EQ(pt.y, placesNow[strName].y);
    }
    ASSERT_TRUE(Capture());
    ASSERT_EQ(2, store.Count());
    EXPECT_EQ(ExpectedIcons(), store.Newest()->Icons());
}

TEST_F(CaptureOnPlain, ThatEqualsTheSecondNewestIsStored) {
    StartPlain(3);
    StartMonitor();
    POINT pt = desktop->Items().at(1).pt;
    desktop->Move(1, {pt.x + 50, pt.y});
    ASSERT_TRUE(Capture());
    desktop->Move(1, pt);
    ASSERT_TRUE(Capture());
    std::vector<StoredSnapshot> values = store.Values();
    ASSERT_EQ(3u, values.size());
    EXPECT_EQ(values[0].bytes, values[2].bytes);
    EXPECT_NE(values[1].bytes, values[2].bytes);
}

TEST_F(CaptureOnPlain, OfARenamedIconIsStored) {
    StartPlain(3);
    StartMonitor();
    desktop->Rename(1, L"icon 0002"); // another case of letters is another name
    ASSERT_TRUE(Capture());
    desktop->Rename(1, L"icon 0002 with more");
    ASSERT_TRUE(Capture());
    ASSERT_EQ(3, store.Count());
    EXPECT_EQ(ExpectedIcons(), store.Newest()->Icons());
}

TEST_F(CaptureOnPlain, OfMoreOrFewerIconsIsStored) {
    StartPlain(3);
    StartMonitor();
    desktop->Remove(2);
    ASSERT_TRUE(Capture());
    desktop->Add(L"another", {400, 400});
    ASSERT_TRUE(Capture());
    std::vector<StoredSnapshot> values = store.Values();
    ASSERT_EQ(3u, values.size());
    EXPECT_EQ(2u, values[1].Icons().size());
    EXPECT_EQ(ExpectedIcons(), values[2].Icons());
}

TEST_F(CaptureOnPlain, IsStoredBesideAMarkAlone) {
    const std::wstring strMark = L"01D0000000000000";
    const auto* p = reinterpret_cast<const BYTE*>(strMark.c_str());
    store.Plant(L"", std::vector<BYTE>(p, p + 34), REG_SZ);
    StartPlain(2);
    StartMonitor();
    EXPECT_EQ(1, store.Count());
    EXPECT_EQ(strMark, store.Marked());
}

TEST_F(CaptureOnPlain, MakesTheKeyAnewWhenSomebodyDeletedIt) {
    StartPlain(2);
    StartMonitor();
    store.Clear();
    ASSERT_FALSE(store.KeyExists());
    ASSERT_TRUE(Capture());
    ASSERT_EQ(1, store.Count());
    EXPECT_EQ(ExpectedIcons(), store.Newest()->Icons());
}

TEST_F(CaptureOnPlain, IsStoredOverANewestOneThatCannotBeCompared) {
    StartPlain(3);
    std::vector<BYTE> good = MakeSnapshotBytes(ExpectedIcons());
    std::vector<BYTE> badDigest = good, noMultiple = good;
    badDigest[3] ^= 1;
    noMultiple.push_back(0);
    const std::vector<BYTE> rows[] = {badDigest, noMultiple, std::vector<BYTE>(16), {}};
    for (const std::vector<BYTE>& bytes : rows) {
        store.Clear();
        std::wstring strName = NameBeforeNow(1);
        store.Plant(strName, bytes);
        StartMonitor();
        ASSERT_EQ(2, store.Count()) << bytes.size();
        EXPECT_EQ(ExpectedIcons(), store.Newest()->Icons());
        EXPECT_EQ(bytes, store.Named(strName)->bytes);
        ASSERT_TRUE(monitor.Exit());
    }
}

TEST_F(CaptureOnPlain, ThatEqualsTheNewestIsNotStoredAtTheStart) {
    StartPlain(3);
    store.Plant(NameBeforeNow(1), MakeSnapshotBytes(ExpectedIcons()));
    auto before = AllValues(store);
    StartMonitor();
    EXPECT_EQ(before, AllValues(store));
}
} // namespace
