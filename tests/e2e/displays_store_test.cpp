// What is remembered per set of displays: when it is written, what it consists of, how much is
// kept, and what becomes of it when it is damaged.

#include "e2e/displays_test_support.h"

namespace {
constexpr int kMaxSetUps = 32, kMaxSnapshots = 25;
constexpr uint64_t kSecond = 10'000'000;

class DisplaysStore : public DisplaysTest {
  protected:
    /// Has one icon moved and waits until the layout of the present set-up is that.
    void MoveAndLearn() {
        MoveSomething();
        ASSERT_TRUE(Capture());
        ASSERT_TRUE(WaitUntil([&] { return IsKnownAsItIs(TextOf(kHome)); }));
    }
    static std::wstring MadeUp(int n) { return std::to_wstring(700 + n) + L"x500+0+0@96"; }
    /// The n-th is the n-th longest unused.
    void PlantMadeUp(int nCount) {
        for (int n = 0; n < nCount; ++n)
            layouts.Plant(MadeUp(n), SomeIcons(3, n),
                          Now() - (1000 - static_cast<uint64_t>(n)) * kSecond);
    }
};

TEST_F(DisplaysStore, FirstCaptureOfAMonitorMakesThePresentSetUpKnown) {
    layouts.PlantSwitch(1);
    StartPlain(5);
    uint64_t nBefore = Now();
    StartMonitor();
    ASSERT_TRUE(WaitUntil([&] { return IsKnownAsItIs(TextOf(kHome)); }));
    uint64_t nAfter = Now();
    ASSERT_EQ(1, layouts.Count());
    StoredLayout stored = layouts.All()[0];
    EXPECT_EQ(TextOf(kHome), stored.Displays());
    EXPECT_EQ(L"1024x768+0+0@96", stored.Displays());
    EXPECT_EQ(LayoutReader::NameFor(stored.Displays()), stored.strName);
    EXPECT_EQ(DWORD{REG_BINARY}, stored.layout->dwType);
    EXPECT_TRUE(stored.layout->DigestHolds());
    EXPECT_EQ(store.Newest()->bytes, stored.layout->bytes);
    ASSERT_TRUE(stored.Used());
    EXPECT_LE(nBefore, *stored.Used());
    EXPECT_GE(nAfter, *stored.Used());
}

TEST_F(DisplaysStore, ChangedLayoutIsWrittenAndAnUnchangedOneWritesNothing) {
    StartSwitchedOn(5);
    StoredLayout first = *layouts.Of(TextOf(kHome));
    for (int n = 0; n < 3; ++n) ASSERT_TRUE(Capture());
    EXPECT_EQ(first, *layouts.Of(TextOf(kHome)));
    MoveAndLearn();
    StoredLayout second = *layouts.Of(TextOf(kHome));
    EXPECT_LT(first.Used(), second.Used());
    EXPECT_EQ(store.Newest()->bytes, second.layout->bytes);
    EXPECT_EQ(2, store.Count());
    EXPECT_EQ(1, layouts.Count());
}

TEST_F(DisplaysStore, CaptureThatTheSnapshotsHaveAlreadyMakesTheSetUpKnown) {
    StartPlain(5);
    StartMonitor();
    ASSERT_EQ(1, store.Count());
    layouts.PlantSwitch(1);
    monitor.Kill();
    StartMonitor();
    EXPECT_TRUE(WaitUntil([&] { return IsKnownAsItIs(TextOf(kHome)); }));
    EXPECT_EQ(1, store.Count());
}

TEST_F(DisplaysStore, NextMonitorRenewsOnlyWhenItWasUsed) {
    StartSwitchedOn(5);
    StoredLayout first = *layouts.Of(TextOf(kHome));
    monitor.Kill();
    StartMonitor();
    ASSERT_TRUE(WaitUntil([&] { return layouts.Of(TextOf(kHome))->Used() > first.Used(); }));
    EXPECT_EQ(first.layout, layouts.Of(TextOf(kHome))->layout);
    StoredLayout second = *layouts.Of(TextOf(kHome));
    ASSERT_TRUE(Capture());
    EXPECT_EQ(second, *layouts.Of(TextOf(kHome)));
}

TEST_F(DisplaysStore, LayoutsAreNoneOfTheSnapshotsAndSurviveThem) {
    StartSwitchedOn(5);
    layouts.Plant(TextOf(kLarge), SomeIcons(5), 1);
    for (int n = 0; n < kMaxSnapshots + 1; ++n) {
        MoveSomething();
        ASSERT_TRUE(Capture());
    }
    EXPECT_EQ(kMaxSnapshots, store.Count());
    EXPECT_TRUE(WaitUntil([&] { return IsKnownAsItIs(TextOf(kHome)); }));
    EXPECT_EQ(2, layouts.Count());
    store.Clear();
    EXPECT_EQ(2, layouts.Count());
}

TEST_F(DisplaysStore, OldestGoesWhenThereAreMoreThanThirtyTwo) {
    PlantMadeUp(kMaxSetUps);
    StartSwitchedOn(4);
    ASSERT_TRUE(WaitUntil([&] { return layouts.Count() == kMaxSetUps; }));
    EXPECT_FALSE(layouts.Of(MadeUp(0)));
    for (int n = 1; n < kMaxSetUps; ++n) EXPECT_TRUE(layouts.Of(MadeUp(n))) << n;
    MoveAndLearn(); // it is one of them now
    EXPECT_EQ(kMaxSetUps, layouts.Count());
    EXPECT_TRUE(layouts.Of(MadeUp(1)));
}

TEST_F(DisplaysStore, AllBeyondThirtyTwoGoTheOldestFirst) {
    constexpr int kMore = 8;
    PlantMadeUp(kMaxSetUps + kMore);
    StartSwitchedOn(4);
    ASSERT_TRUE(WaitUntil([&] { return layouts.Count() == kMaxSetUps; }));
    for (int n = 0; n < kMaxSetUps + kMore; ++n)
        EXPECT_EQ(n > kMore, layouts.Of(MadeUp(n)).has_value()) << n;
}

TEST_F(DisplaysStore, NoneGoesWhenTheThirtySecondComes) {
    PlantMadeUp(kMaxSetUps - 1);
    StartSwitchedOn(4);
    EXPECT_TRUE(HoldsFor([&] { return layouts.Count() == kMaxSetUps; }, 300));
}

struct DamagedTime {
    const char* pszName;
    void (*pfnDamage)(const LayoutReader&, const std::wstring& strDisplays);
};
class DisplaysTime : public DisplaysStore, public testing::WithParamInterface<DamagedTime> {};
TEST_P(DisplaysTime, ThatIsMissingOrDamagedCountsAsTheOldest) {
    PlantMadeUp(kMaxSetUps);
    GetParam().pfnDamage(layouts, MadeUp(17));
    StartSwitchedOn(4);
    ASSERT_TRUE(WaitUntil([&] { return layouts.Count() == kMaxSetUps; }));
    EXPECT_FALSE(layouts.Of(MadeUp(17)));
    EXPECT_TRUE(layouts.Of(MadeUp(0)));
}
INSTANTIATE_TEST_SUITE_P(
    Kinds, DisplaysTime,
    testing::Values(
        DamagedTime{"Missing", [](const LayoutReader& layouts,
                                  const std::wstring& str) { layouts.DeleteValue(str, L"Used"); }},
        DamagedTime{"OfAnotherType",
                    [](const LayoutReader& layouts, const std::wstring& str) {
                        layouts.PlantValue(str, L"Used", REG_BINARY, std::vector<BYTE>(8, 0x7F));
                    }},
        DamagedTime{"TooShort",
                    [](const LayoutReader& layouts, const std::wstring& str) {
                        layouts.PlantValue(str, L"Used", REG_QWORD, std::vector<BYTE>(7, 0x7F));
                    }}),
    [](const auto& row) { return std::string(row.param.pszName); });

struct Damage {
    const char* pszName;
    void (*pfnDo)(const LayoutReader&, const std::wstring& strDisplays);
};
std::vector<BYTE> Without(std::vector<BYTE> bytes, size_t nFewer) {
    bytes.resize(bytes.size() - nFewer);
    return bytes;
}
std::vector<BYTE> WithAnother(std::vector<BYTE> bytes, size_t nAt) {
    bytes[nAt] ^= 1;
    return bytes;
}
/// More than any capture has.
std::vector<StoredIcon> TooManyIcons() {
    std::vector<StoredIcon> icons(1000);
    for (uint32_t n = 0; n < icons.size(); ++n)
        icons[n] = {n, static_cast<int32_t>(n), 10, 5, 1'000'000 + n};
    return icons;
}
const Damage kDamages[] = {
    {"LayoutMissing", [](const LayoutReader& layouts,
                         const std::wstring& str) { layouts.DeleteValue(str, L"Layout"); }},
    {"LayoutEmpty",
     [](const LayoutReader& layouts, const std::wstring& str) {
         layouts.PlantValue(str, L"Layout", REG_BINARY, {});
     }},
    {"LayoutCutWithinTheDigest",
     [](const LayoutReader& layouts, const std::wstring& str) {
         layouts.PlantValue(str, L"Layout", REG_BINARY, std::vector<BYTE>(15));
     }},
    {"LayoutWithoutRecords",
     [](const LayoutReader& layouts, const std::wstring& str) {
         layouts.PlantValue(str, L"Layout", REG_BINARY, MakeSnapshotBytes({}));
     }},
    {"LayoutCutWithinARecord",
     [](const LayoutReader& layouts, const std::wstring& str) {
         layouts.PlantValue(str, L"Layout", REG_BINARY,
                            Without(MakeSnapshotBytes(SomeIcons(3)), 1));
     }},
    {"LayoutLongerThanItsDigest",
     [](const LayoutReader& layouts, const std::wstring& str) {
         auto bytes = MakeSnapshotBytes(SomeIcons(3));
         bytes.resize(bytes.size() + sizeof(StoredIcon));
         layouts.PlantValue(str, L"Layout", REG_BINARY, bytes);
     }},
    {"DigestWrong",
     [](const LayoutReader& layouts, const std::wstring& str) {
         layouts.PlantValue(str, L"Layout", REG_BINARY,
                            WithAnother(MakeSnapshotBytes(SomeIcons(3)), 0));
     }},
    {"RecordWrong",
     [](const LayoutReader& layouts, const std::wstring& str) {
         layouts.PlantValue(str, L"Layout", REG_BINARY,
                            WithAnother(MakeSnapshotBytes(SomeIcons(3)), 40));
     }},
    {"TooManyRecords",
     [](const LayoutReader& layouts, const std::wstring& str) {
         layouts.PlantValue(str, L"Layout", REG_BINARY, MakeSnapshotBytes(TooManyIcons()));
     }},
    {"LayoutOfAnotherType",
     [](const LayoutReader& layouts, const std::wstring& str) {
         layouts.PlantValue(str, L"Layout", REG_SZ, MakeSnapshotBytes(SomeIcons(3)));
     }},
    {"TextMissing", [](const LayoutReader& layouts,
                       const std::wstring& str) { layouts.DeleteValue(str, L"Displays"); }},
    {"TextOfAnotherSetUp",
     [](const LayoutReader& layouts, const std::wstring& str) {
         layouts.PlantValue(str, L"Displays", REG_SZ, TextBytes(L"1x1+0+0@96"));
     }},
    {"TextWithMoreBehindIt",
     [](const LayoutReader& layouts, const std::wstring& str) {
         layouts.PlantValue(str, L"Displays", REG_SZ, TextBytes(str + L" "));
     }},
    {"TextOfAnotherType",
     [](const LayoutReader& layouts, const std::wstring& str) {
         layouts.PlantValue(str, L"Displays", REG_BINARY, TextBytes(str));
     }},
};

TEST_F(DisplaysStore, DamagedLayoutIsWrittenAnewByTheNextCapture) {
    StartSwitchedOn(3);
    const StoredLayout good = *layouts.Of(TextOf(kHome));
    for (const Damage& damage : kDamages) {
        SCOPED_TRACE(damage.pszName);
        damage.pfnDo(layouts, TextOf(kHome));
        ASSERT_TRUE(Capture());
        bool bGood = WaitUntil(
            [&] {
                std::optional<StoredLayout> now = layouts.Of(TextOf(kHome));
                return now && now->layout == good.layout && now->displays == good.displays;
            },
            2000);
        EXPECT_TRUE(bGood);
    }
    EXPECT_EQ(1, layouts.Count());
    EXPECT_EQ(1, store.Count());
}

/// Each of them takes the settling time.
class DisplaysDamage : public DisplaysStore, public testing::WithParamInterface<Damage> {};
TEST_P(DisplaysDamage, MakesTheSetUpUnknown) {
    StartSwitchedOn(3);
    layouts.Plant(TextOf(kLarge), Shifted(250, 150), Now());
    GetParam().pfnDo(layouts, TextOf(kLarge));
    display.SetSize(kLarge);
    EXPECT_TRUE(StayAfterSettling());
    ASSERT_TRUE(Capture());
    EXPECT_TRUE(WaitUntil([&] { return IsKnownAsItIs(TextOf(kLarge)); }));
    EXPECT_TRUE(StillCaptures());
}
INSTANTIATE_TEST_SUITE_P(Some, DisplaysDamage,
                         testing::Values(kDamages[6], kDamages[8], kDamages[9], kDamages[11]),
                         [](const auto& row) { return std::string(row.param.pszName); });

TEST_F(DisplaysStore, SeveralDisplaysAreOneSetUpThePrimaryOneFirst) {
    StartSwitchedOn(3);
    // In no order of place.
    display.PlugIn({{1824, 100, 2624, 700}, {1024, 300, 1664, 780}, {1024, 0, 1824, 300}});
    ASSERT_TRUE(StayAfterSettling());
    ASSERT_TRUE(Capture());
    const std::wstring strText = L"1024x768+0+0@96 800x300+1024+0@96 640x480+1024+300@96 "
                                 L"800x600+1824+100@96";
    EXPECT_TRUE(WaitUntil([&] { return IsKnownAsItIs(strText); }));
    EXPECT_EQ(2, layouts.Count());
}
} // namespace
