#include "icons/displays/display_layouts.h"
#include "icons/displays/restore_on_change.h"
#include "icons/displays_test_support.h"
#include "icons/icons_test_support.h"
#include "support/heap_count.h"

#include <gtest/gtest.h>
#include <string>

namespace {
const std::wstring kText = L"1920x1080+0+0@96";

class DisplayLayouts : public testing::Test {
  protected:
    DisplayLayouts() { EXPECT_TRUE(setup.Read()); }
    bool Keep(const Layout& layout) { return KeepDisplayLayout(setup, layout); }
    /// The known layout; empty if the set-up is not known.
    Layout Read() {
        HeapArray<IconRecord> records = ReadDisplayLayout(setup);
        return Layout(records.begin(), records.end());
    }
    void ExpectKnown(const Layout& layout) {
        Layout read = Read();
        ASSERT_EQ(layout.size(), read.size());
        EXPECT_EQ(0, memcmp(layout.data(), read.data(), layout.size() * sizeof(IconRecord)));
    }
    static unsigned __int64 Now() {
        FILETIME ft;
        ::GetSystemTimeAsFileTime(&ft);
        return static_cast<unsigned __int64>(ft.dwHighDateTime) << 32 | ft.dwLowDateTime;
    }
    unsigned __int64 UsedOf(const std::wstring& strText) {
        RegContent content = key.ValueOf(strText, L"Used");
        unsigned __int64 qw = 0;
        EXPECT_EQ(static_cast<DWORD>(REG_QWORD), content.dwType);
        EXPECT_EQ(sizeof(qw), content.bytes.size());
        if (content.bytes.size() == sizeof(qw)) memcpy(&qw, content.bytes.data(), sizeof(qw));
        return qw;
    }

    FakeDisplays displays;
    DisplaysKey key;
    DisplaySetup setup;
};

TEST_F(DisplayLayouts, KeepsALayoutWithItsSetupAndTheTime) {
    unsigned __int64 qwBefore = Now();
    EXPECT_TRUE(Keep(MakeLayout(3)));
    RegDump dump = key.Dump();
    EXPECT_TRUE(dump.values.empty());
    ASSERT_EQ(1u, dump.subkeys.size());
    RegDump& own = dump.subkeys[DisplaysKey::NameOfText(kText)];
    EXPECT_EQ(3u, own.values.size());
    EXPECT_EQ(StrContent(kText), own.values[L"Displays"]);
    EXPECT_EQ((RegContent{REG_BINARY, MakeSnapshotValue(MakeLayout(3))}), own.values[L"Layout"]);
    EXPECT_LE(qwBefore, UsedOf(kText));
    EXPECT_GE(Now(), UsedOf(kText));
    ExpectKnown(MakeLayout(3));
}

TEST_F(DisplayLayouts, WritesAnUnchangedLayoutNoMore) {
    Keep(MakeLayout(3));
    RegDump before = key.Dump();
    EXPECT_FALSE(Keep(MakeLayout(3)));
    EXPECT_EQ(before, key.Dump());
    EXPECT_TRUE(Keep(MakeLayout(3, 1)));
    ExpectKnown(MakeLayout(3, 1));
    EXPECT_TRUE(Keep(MakeLayout(4, 1)));
    ExpectKnown(MakeLayout(4, 1));
}

TEST_F(DisplayLayouts, KeepsOneForEachSetup) {
    Keep(MakeLayout(3));
    displays.displays.push_back({{1920, 0, 3200, 1024}});
    ASSERT_TRUE(setup.Read());
    EXPECT_TRUE(Read().empty());
    Keep(MakeLayout(5));
    ExpectKnown(MakeLayout(5));
    displays.displays.pop_back();
    ASSERT_TRUE(setup.Read());
    ExpectKnown(MakeLayout(3));
}

TEST_F(DisplayLayouts, KeepsOnlyWhatACaptureMayHave) {
    EXPECT_FALSE(Keep({}));
    EXPECT_FALSE(Keep(MakeLayout(kMaxCapturedIcons + 1)));
    EXPECT_FALSE(key.Exists());
    EXPECT_TRUE(Keep(MakeLayout(kMaxCapturedIcons)));
    ExpectKnown(MakeLayout(kMaxCapturedIcons));
}

TEST_F(DisplayLayouts, KeepsNothingUnderASetupThatCannotBeTold) {
    displays.displays.clear();
    setup.Read();
    EXPECT_FALSE(Keep(MakeLayout(1)));
    EXPECT_TRUE(Read().empty());
    NoteSetupUse(SetupName());
    EXPECT_FALSE(key.Exists());
}

// What was planted

struct DamageCase {
    const char* pszName;
    void (*pfnDamage)(const DisplaysKey& key, const std::wstring& strName);
};
class DamagedDisplayLayout : public DisplayLayouts,
                             public testing::WithParamInterface<DamageCase> {};

TEST_P(DamagedDisplayLayout, IsUnknownAndWrittenAnew) {
    key.Plant(kText, MakeLayout(3));
    ExpectKnown(MakeLayout(3));
    GetParam().pfnDamage(key, DisplaysKey::NameOfText(kText));
    EXPECT_TRUE(Read().empty());
    EXPECT_TRUE(Keep(MakeLayout(3)));
    ExpectKnown(MakeLayout(3));
    EXPECT_EQ(static_cast<DWORD>(REG_BINARY), key.ValueOf(kText, L"Layout").dwType);
    EXPECT_EQ(StrContent(kText), key.ValueOf(kText, L"Displays"));
}

using KeyRef = const DisplaysKey&;
using NameRef = const std::wstring&;
INSTANTIATE_TEST_SUITE_P(
    Cases, DamagedDisplayLayout,
    testing::Values(
        DamageCase{"Digest",
                   [](KeyRef key, NameRef strName) {
                       RegBytes bytes = MakeSnapshotValue(MakeLayout(3));
                       bytes.back() ^= 1;
                       key.Put(L"Layout", REG_BINARY, bytes, strName);
                   }},
        DamageCase{"OneByteMore",
                   [](KeyRef key, NameRef strName) {
                       RegBytes bytes = MakeSnapshotValue(MakeLayout(3));
                       bytes.push_back(0);
                       key.Put(L"Layout", REG_BINARY, bytes, strName);
                   }},
        DamageCase{"DigestAlone",
                   [](KeyRef key, NameRef strName) {
                       key.Put(L"Layout", REG_BINARY, MakeSnapshotValue({}), strName);
                   }},
        DamageCase{"NoBytes", [](KeyRef key,
                                 NameRef strName) { key.Put(L"Layout", REG_BINARY, {}, strName); }},
        DamageCase{"TooManyRecords",
                   [](KeyRef key, NameRef strName) {
                       key.Put(L"Layout", REG_BINARY,
                               MakeSnapshotValue(MakeLayout(kMaxCapturedIcons + 1)), strName);
                   }},
        DamageCase{"LayoutOfAnotherType",
                   [](KeyRef key, NameRef strName) {
                       key.Put(L"Layout", REG_SZ, MakeSnapshotValue(MakeLayout(3)), strName);
                   }},
        DamageCase{"LayoutOfNoType",
                   [](KeyRef key, NameRef strName) {
                       key.Put(L"Layout", REG_NONE, MakeSnapshotValue(MakeLayout(3)), strName);
                   }},
        DamageCase{"TextOfAnotherSetup",
                   [](KeyRef key, NameRef strName) {
                       key.PutStr(L"Displays", L"1920x1080+0+0@97", strName);
                   }},
        DamageCase{"EmptyText",
                   [](KeyRef key, NameRef strName) { key.PutStr(L"Displays", L"", strName); }},
        DamageCase{"LongText",
                   [](KeyRef key, NameRef strName) {
                       key.PutStr(L"Displays", kText + std::wstring(100000, L' '), strName);
                   }},
        DamageCase{"TextOfAnotherType",
                   [](KeyRef key, NameRef strName) {
                       key.Put(L"Displays", REG_BINARY, BytesOf(kText), strName);
                   }},
        DamageCase{"NothingInIt",
                   [](KeyRef key, NameRef strName) {
                       DeleteRegTree(HKEY_CURRENT_USER,
                                     std::wstring(kDisplaysKey) + L"\\" + strName);
                       key.Create(strName);
                   }}),
    [](const auto& row) { return std::string(row.param.pszName); });

TEST_F(DisplayLayouts, TakesATextWithoutATerminator) {
    key.Plant(kText, MakeLayout(3));
    key.Put(L"Displays", REG_SZ, BytesOf(kText, false), DisplaysKey::NameOfText(kText));
    ExpectKnown(MakeLayout(3));
}

TEST_F(DisplayLayouts, GoesWithoutWhatThereIsNoMemoryFor) {
    Layout layout = MakeLayout(3, 7);
    Keep(MakeLayout(3));
    long nBlocks = CountLiveBlocks();
    for (int n = 1; n <= 12; ++n) {
        FailBlock(n);
        HeapArray<IconRecord> records = ReadDisplayLayout(setup);
        FailBlock(0);
        EXPECT_TRUE(!records.IsReady() || records.GetCount() == 3);
    }
    for (int n = 1; n <= 12; ++n) {
        FailBlock(n);
        KeepDisplayLayout(setup, layout);
        FailBlock(0);
        // The former one, the new one, or none: never one that is damaged.
        Layout read = Read();
        if (!read.empty()) {
            ASSERT_EQ(3u, read.size());
        }
    }
    EXPECT_EQ(nBlocks, CountLiveBlocks());
    Keep(layout);
    ExpectKnown(layout);
}

TEST_F(DisplayLayouts, AreSilentWhereTheRegistryRefuses) {
    ASSERT_TRUE(PlantDeadLink(HKEY_CURRENT_USER, kDisplaysKey));
    EXPECT_TRUE(Read().empty());
    Keep(MakeLayout(3));
    NoteSetupUse(setup.GetName());
    EXPECT_EQ(0, GetRestoreOnChange());
    EXPECT_EQ(0, SetRestoreOnChange(1));
}

// How many there may be

std::wstring OtherText(unsigned n) { return std::to_wstring(n) + L"x1+0+0@96"; }

class ManySetups : public DisplayLayouts {
  protected:
    /// So many, the first of them used longest ago.
    void PlantMany(unsigned nSetups) {
        for (unsigned n = 0; n < nSetups; ++n) key.Plant(OtherText(n), MakeLayout(1), kOld + n);
    }
    bool Has(unsigned n) {
        return key.Dump().subkeys.contains(DisplaysKey::NameOfText(OtherText(n)));
    }
    static constexpr unsigned __int64 kOld = 0x01DB000000000000;
};

TEST_F(ManySetups, TheLongestUnusedGoesWhenThereAreTooMany) {
    PlantMany(kMaxSetups - 1);
    Keep(MakeLayout(3));
    EXPECT_EQ(kMaxSetups, key.Dump().subkeys.size());
    EXPECT_TRUE(Has(0));
    displays.displays[0].nDpi = 120;
    ASSERT_TRUE(setup.Read());
    Keep(MakeLayout(3));
    EXPECT_EQ(kMaxSetups, key.Dump().subkeys.size());
    EXPECT_FALSE(Has(0));
    EXPECT_TRUE(Has(1));
    ExpectKnown(MakeLayout(3));
}

TEST_F(ManySetups, OneWithoutATimeGoesFirst) {
    PlantMany(kMaxSetups);
    std::wstring strLast = DisplaysKey::NameOfText(OtherText(kMaxSetups - 1));
    key.PutNumber(L"Used", REG_DWORD, ~0u, strLast);
    Keep(MakeLayout(3));
    EXPECT_FALSE(Has(kMaxSetups - 1));
    EXPECT_TRUE(Has(0));
    key.PutNumber(L"Used", REG_BINARY, ~0ull, DisplaysKey::NameOfText(OtherText(7)));
    displays.displays[0].nDpi = 120;
    ASSERT_TRUE(setup.Read());
    Keep(MakeLayout(3));
    EXPECT_FALSE(Has(7));
    EXPECT_TRUE(Has(0));
}

TEST_F(ManySetups, ThePresentOneStaysWhateverTheOthersTimes) {
    for (unsigned n = 0; n < kMaxSetups + 8; ++n) key.Plant(OtherText(n), MakeLayout(1), ~0ull - n);
    Keep(MakeLayout(3));
    EXPECT_EQ(kMaxSetups, key.Dump().subkeys.size());
    ExpectKnown(MakeLayout(3));
    EXPECT_TRUE(Has(0));
    EXPECT_FALSE(Has(kMaxSetups + 7));
}

TEST_F(ManySetups, KeysOfOtherNamesDoNotCount) {
    PlantMany(kMaxSetups - 1);
    key.Create(L"other");
    key.Create(std::wstring(33, L'A'));
    key.Create(std::wstring(200, L'A'));
    Keep(MakeLayout(3));
    EXPECT_EQ(kMaxSetups + 3, key.Dump().subkeys.size());
}

TEST_F(ManySetups, OneThatCannotBeDeletedEndsNothing) {
    PlantMany(kMaxSetups);
    ASSERT_TRUE(PlantDeadLink(HKEY_CURRENT_USER,
                              std::wstring(kDisplaysKey) + L"\\" + std::wstring(32, L'0')));
    EXPECT_TRUE(Keep(MakeLayout(3)));
    ExpectKnown(MakeLayout(3));
}

TEST_F(ManySetups, UseIsNotedOfAKnownOneAlone) {
    PlantMany(2);
    NoteSetupUse(setup.GetName());
    EXPECT_EQ(2u, key.Dump().subkeys.size());
    unsigned __int64 qwBefore = Now();
    NoteSetupUse(MakeSetupName(OtherText(1).c_str()));
    EXPECT_EQ(kOld, UsedOf(OtherText(0)));
    EXPECT_LE(qwBefore, UsedOf(OtherText(1)));
}

// The switch

TEST(RestoreOnChange, IsOffUntilSomebodyTurnsItOn) {
    DisplaysKey key;
    EXPECT_EQ(0, GetRestoreOnChange());
    EXPECT_FALSE(key.Exists());
    EXPECT_EQ(1, SetRestoreOnChange(1));
    EXPECT_EQ((RegContent{REG_DWORD, {1, 0, 0, 0}}), key.Dump().values[L"RestoreOnChange"]);
    EXPECT_EQ(1, GetRestoreOnChange());
    key.Plant(kText, MakeLayout(1));
    EXPECT_EQ(1, SetRestoreOnChange(0));
    EXPECT_EQ((RegContent{REG_DWORD, {0, 0, 0, 0}}), key.Dump().values[L"RestoreOnChange"]);
    EXPECT_EQ(0, GetRestoreOnChange());
    EXPECT_EQ(1u, key.Dump().subkeys.size()); // the layouts stay
}

TEST(RestoreOnChange, IsOffByAValueOfAnotherType) {
    DisplaysKey key;
    key.Put(L"RestoreOnChange", REG_BINARY, {1, 0, 0, 0});
    EXPECT_EQ(0, GetRestoreOnChange());
    key.PutStr(L"RestoreOnChange", L"1");
    EXPECT_EQ(0, GetRestoreOnChange());
    EXPECT_EQ(1, SetRestoreOnChange(1));
    EXPECT_EQ(1, GetRestoreOnChange());
    key.TurnOn(7);
    EXPECT_EQ(1, GetRestoreOnChange());
}

TEST(RestoreOnChange, IsToldToTheMonitorThatRuns) {
    DisplaysKey key;
    TestClass monitorClass(L"TessalyWnd");
    TestWindow wnd(L"TessalyWnd");
    ProcSpy spy(wnd);
    SetRestoreOnChange(1);
    EXPECT_EQ(0, spy.CountOfCode(376)); // posted
    PumpAll();
    SetRestoreOnChange(0);
    PumpAll();
    ASSERT_EQ(2, spy.CountOfCode(376));
    EXPECT_EQ(0, spy.GetCode(376)[0].lParam);
}
} // namespace
