#include "icons/agent/agent.h"
#include "icons/agent/capture.h"
#include "icons/agent/desktop_shared_data.h"
#include "icons/icons_test_support.h"
#include "runtime/base/ownership.h"
#include "support/guard_page.h"
#include <gtest/gtest.h>
#include <algorithm>
#include <algorithm>
#include <cstring>
#include <random>

namespace {

// The restore's algorithm, word by word: each icon takes the first record of its key that is left.
std::vector<POINT> ExpectedPositions(const std::vector<TestIcon>& icons,
                                     std::vector<IconRecord> records) {
    std::vector<POINT> positions;
    for (const TestIcon& icon : icons) {
        POINT pt = icon.pt;
        unsigned long long qwKey = KeyOf(icon.strText);
        for (IconRecord& record : records) {
            if (record.qwNameKey != qwKey) continue;
            pt = record.pt;
            record.qwNameKey = 0;
            break;
        }
        positions.push_back(pt);
    }
    return positions;
}

class Restore : public EngineTest {
  protected:
    /// With the records right before a page that may not be touched.
    void RestoreRecords(const std::vector<IconRecord>& records) {
        GuardedMemory memory(records.size() * sizeof(IconRecord));
        if (!records.empty()) std::memcpy(memory.Get(), records.data(), memory.GetSize());
        COPYDATASTRUCT data{records.size(), static_cast<DWORD>(memory.GetSize()), memory.Get()};
        RestoreFrom(view.hwndListView, data);
    }
    void ExpectPositions(const std::vector<POINT>& expected) {
        for (std::size_t i = 0; i < expected.size(); ++i) {
            SCOPED_TRACE(i);
            POINT pt = PosOfIcon(view.hwndListView, static_cast<int>(i));
            EXPECT_EQ(expected[i].x, pt.x);
            EXPECT_EQ(expected[i].y, pt.y);
        }
    }
    int CountOfMoves() const { return view.spyListView.CountOf(LVM_SETITEMPOSITION32); }

    TestView view;
};

TEST_F(Restore, PutsEveryIconBack) {
    SetIcons(view.hwndListView, {{L"a", {1, 1}}, {L"b", {2, 2}}, {L"c", {3, 3}}});
    RestoreRecords(
        {RecordOf(0, L"c", {30, 31}), RecordOf(1, L"a", {-10, 11}), RecordOf(2, L"b", {20, 3000})});
    ExpectPositions({{-10, 11}, {20, 3000}, {30, 31}});
}

TEST_F(Restore, IgnoresRecordsThatNoIconAnswers) {
    SetIcons(view.hwndListView, {{L"a", {1, 1}}});
    RestoreRecords({RecordOf(0, L"x", {9, 9}), RecordOf(1, L"y", {8, 8}), RecordOf(2, L"a", {7, 7}),
                    RecordOf(3, L"z", {6, 6})});
    ExpectPositions({{7, 7}});
}

TEST_F(Restore, LeavesIconsAloneThatNoRecordNames) {
    SetIcons(view.hwndListView, {{L"a", {1, 1}}, {L"b", {2, 2}}, {L"c", {3, 3}}});
    view.spyListView.Clear();
    RestoreRecords({RecordOf(0, L"b", {20, 20})});
    ExpectPositions({{1, 1}, {20, 20}, {3, 3}});
    EXPECT_EQ(1, CountOfMoves());
}

TEST_F(Restore, LeavesARenamedIconAlone) {
    SetIcons(view.hwndListView, {{L"new name", {1, 1}}, {L"A", {2, 2}}});
    RestoreRecords({RecordOf(0, L"old name", {10, 10}), RecordOf(1, L"a", {20, 20})});
    ExpectPositions({{1, 1}, {2, 2}});
}

TEST_F(Restore, GivesEqualNamesTheirRecordsInOrder) {
    SetIcons(view.hwndListView, {{L"twin", {2, 2}}, {L"twin", {1, 1}}});
    RestoreRecords({RecordOf(0, L"twin", {10, 10}), RecordOf(1, L"twin", {20, 20})});
    ExpectPositions({{10, 10}, {20, 20}});
}

TEST_F(Restore, LeavesSurplusIconsOfANameWhereTheyAre) {
    SetIcons(view.hwndListView, {{L"twin", {1, 1}}, {L"twin", {2, 2}}, {L"twin", {3, 3}}});
    RestoreRecords({RecordOf(0, L"twin", {10, 10}), RecordOf(1, L"twin", {20, 20})});
    ExpectPositions({{10, 10}, {20, 20}, {3, 3}});
}

TEST_F(Restore, UsesTheFirstOfSurplusRecordsOfAName) {
    SetIcons(view.hwndListView, {{L"twin", {1, 1}}});
    RestoreRecords({RecordOf(0, L"twin", {10, 10}), RecordOf(1, L"twin", {20, 20})});
    ExpectPositions({{10, 10}});
}

TEST_F(Restore, TakesNeitherIndexNorNameLengthIntoAccount) {
    SetIcons(view.hwndListView, {{L"a", {1, 1}}, {L"b", {2, 2}}});
    IconRecord record = RecordOf(77, L"a", {10, 10});
    record.cchName = 0xFFFFFFFF;
    RestoreRecords({record});
    ExpectPositions({{10, 10}, {2, 2}});
}

TEST_F(Restore, MatchesNamesThatTheListViewCuts) {
    SetIcons(view.hwndListView, {{std::wstring(400, L'n'), {1, 1}}});
    RestoreRecords({RecordOf(0, std::wstring(400, L'n'), {5, 5}),
                    RecordOf(1, std::wstring(259, L'n'), {10, 10})});
    ExpectPositions({{10, 10}});
}

TEST_F(Restore, OfRecordsWithKeyZeroMovesNothing) {
    SetIcons(view.hwndListView, {{L"", {1, 1}}, {L"a", {2, 2}}});
    view.spyListView.Clear();
    RestoreRecords({{0, {10, 10}, 0, 0}, {1, {20, 20}, 1, 0}});
    ExpectPositions({{1, 1}, {2, 2}});
    EXPECT_EQ(0, CountOfMoves());
}

TEST_F(Restore, OfAnEmptyListViewAsksOnlyForTheCount) {
    view.spyListView.Clear();
    RestoreRecords({RecordOf(0, L"a", {1, 1})});
    EXPECT_EQ(1, view.spyListView.CountOf(LVM_GETITEMCOUNT));
    EXPECT_EQ(1, view.spyListView.CountOfAll());
}

TEST_F(Restore, OfNoRecordsMovesNothing) {
    SetIcons(view.hwndListView, {{L"a", {1, 1}}});
    view.spyListView.Clear();
    RestoreRecords({});
    EXPECT_EQ(0, CountOfMoves());
}

TEST_F(Restore, HasNoUpperBound) {
    std::vector<TestIcon> icons;
    std::vector<IconRecord> records;
    std::vector<POINT> expected;
    for (int i = 0; i < 1200; ++i) {
        icons.push_back({L"icon " + std::to_wstring(i), {i, i}});
        expected.push_back({3 * i + 1, 5000 - i});
        records.insert(records.begin(), RecordOf(0, icons.back().strText, expected.back()));
    }
    SetIcons(view.hwndListView, icons);
    RestoreRecords(records);
    ExpectPositions(expected);
}

TEST_F(Restore, LeavesTheSendersDataAsTheyAre) {
    SetIcons(view.hwndListView, {{L"a", {1, 1}}, {L"a", {2, 2}}});
    std::vector<IconRecord> records{RecordOf(0, L"a", {10, 10}), RecordOf(1, L"a", {20, 20})};
    std::vector<IconRecord> before = records;
    COPYDATASTRUCT data{2, 48, records.data()};
    RestoreFrom(view.hwndListView, data);
    EXPECT_TRUE(SameRecord(before[0], records[0]));
    EXPECT_TRUE(SameRecord(before[1], records[1]));
    ExpectPositions({{10, 10}, {20, 20}});
}

TEST_F(Restore, WorksOnDataThatMayOnlyBeRead) {
    SetIcons(view.hwndListView, {{L"a", {1, 1}}});
    void* pPage = ::VirtualAlloc(nullptr, 4096, MEM_RESERVE | MEM_COMMIT, PAGE_READWRITE);
    ScopeExit release([&] { ::VirtualFree(pPage, 0, MEM_RELEASE); });
    IconRecord record = RecordOf(0, L"a", {10, 10});
    std::memcpy(pPage, &record, sizeof(record));
    DWORD dwOld = 0;
    ::VirtualProtect(pPage, 4096, PAGE_READONLY, &dwOld);
    RestoreFrom(view.hwndListView, {1, 24, pPage});
    ExpectPositions({{10, 10}});
}

struct BadDataCase {
    const char* pszName;
    ULONG_PTR dwData;
    DWORD cbData;
    int bWithData;
};

const BadDataCase kBadData[] = {
    {"OneByteLess", 2, 47, 1},
    {"OneByteMore", 2, 49, 1},
    {"OneRecordLess", 2, 24, 1},
    {"OneRecordMore", 1, 48, 1},
    {"NoBytes", 2, 0, 1},
    {"NoCount", 0, 48, 1},
    {"ProductWrapsIn32Bits", 2 + (1ull << 29), 48, 1},
    {"ProductWrapsIn64Bits", 2 + (1ull << 61), 48, 1},
    {"ProductWrapsIn64BitsTwice", 2 + (1ull << 62), 48, 1},
    {"LargestCount", ~0ull, 0xFFFFFFE8, 1},
    {"NegativeCount", static_cast<ULONG_PTR>(-2), static_cast<DWORD>(-48), 1},
    {"NullData", 2, 48, 0},
    {"NullDataNoBytes", 0, 0, 0},
    {"NullDataHugeCount", 0x7FFFFFFFFFFFFFFF, 0xFFFFFFFF, 0},
};

class RestoreBadData : public Restore, public testing::WithParamInterface<BadDataCase> {
  protected:
    void SetUp() override {
        Restore::SetUp();
        SetIcons(view.hwndListView, {{L"a", {1, 1}}, {L"b", {2, 2}}});
        records[0] = RecordOf(0, L"a", {10, 10});
        records[1] = RecordOf(1, L"b", {20, 20});
        std::memcpy(memory.Get(), records, sizeof(records));
        view.spyListView.Clear();
    }
    COPYDATASTRUCT Data() const {
        return {GetParam().dwData, GetParam().cbData,
                GetParam().bWithData ? memory.Get() : nullptr};
    }

    IconRecord records[2];
    GuardedMemory memory{sizeof(records)};
};

TEST_P(RestoreBadData, MovesNothing) {
    RestoreFrom(view.hwndListView, Data());
    EXPECT_EQ(0, CountOfMoves());
    ExpectPositions({{1, 1}, {2, 2}});
}

TEST_P(RestoreBadData, StillGoesOnToTheBaseHandler) {
    ASSERT_TRUE(GetAgentListView().AttachTo(view.hwndListView));
    COPYDATASTRUCT data = Data();
    // Straight to the procedure: the platform would copy the bytes first.
    GetAgentListView().OnWndMessage(WM_COPYDATA, 0, reinterpret_cast<LPARAM>(&data));
    EXPECT_EQ(0, CountOfMoves());
    EXPECT_EQ(1, view.spyListView.CountOf(WM_COPYDATA));
    GetAgentListView().DetachFrom();
}

INSTANTIATE_TEST_SUITE_P(Sizes, RestoreBadData, testing::ValuesIn(kBadData),
                         [](const auto& row) { return std::string(row.param.pszName); });

TEST_F(Restore, RunsOnAMessageAndThenReachesTheBaseHandler) {
    SetIcons(view.hwndListView, {{L"a", {1, 1}}});
    Share(view, nullptr);
    ASSERT_TRUE(GetAgentListView().AttachTo(view.hwndListView));
    view.spyListView.Clear();
    IconRecord record = RecordOf(0, L"a", {10, 10});
    COPYDATASTRUCT data{1, 24, &record};
    ::SendMessageW(view.hwndListView, WM_COPYDATA, 0, reinterpret_cast<LPARAM>(&data));
    ExpectPositions({{10, 10}});
    auto moves = view.spyListView.Get(LVM_SETITEMPOSITION32);
    auto copies = view.spyListView.Get(WM_COPYDATA);
    ASSERT_EQ(1u, moves.size());
    ASSERT_EQ(1u, copies.size());
    EXPECT_LT(moves[0].nOrder, copies[0].nOrder);
    GetAgentListView().DetachFrom();
}

TEST_F(Restore, OfAMessageWithoutDataOnlyReachesTheBaseHandler) {
    ASSERT_TRUE(GetAgentListView().AttachTo(view.hwndListView));
    view.spyListView.Clear();
    GetAgentListView().OnWndMessage(WM_COPYDATA, 0, 0);
    EXPECT_EQ(1, view.spyListView.CountOf(WM_COPYDATA));
    EXPECT_EQ(1, view.spyListView.CountOfAll());
    GetAgentListView().DetachFrom();
}

TEST_F(Restore, MovesItemsWithAutoArrangeSetAsWell) {
    TestView viewArranged(LVS_AUTOARRANGE);
    AddIcon(viewArranged.hwndListView, L"a", {1, 1});
    viewArranged.spyListView.Clear();
    IconRecord record = RecordOf(0, L"a", {10, 10});
    RestoreFrom(viewArranged.hwndListView, {1, 24, &record});
    EXPECT_EQ(1, viewArranged.spyListView.CountOf(LVM_SETITEMPOSITION32));
}

TEST_F(Restore, MatchesAsTheAlgorithmSaysForRandomDesktops) {
    std::mt19937 random(20240901); // the same desktops in each run
    auto upTo = [&](int nMax) { return static_cast<int>(random() % (nMax + 1)); };
    const std::wstring names[] = {L"", L"a", L"A", L"b", L"cc", L"\xD83D\xDE00"};
    for (int nRound = 0; nRound < 300; ++nRound) {
        std::vector<TestIcon> icons;
        std::vector<IconRecord> records;
        for (int i = upTo(9); i > 0; --i)
            icons.push_back({names[upTo(5)], {upTo(2000), upTo(2000)}});
        for (int i = upTo(12); i > 0; --i) {
            records.push_back(RecordOf(upTo(20), names[upTo(5)], {upTo(2000), upTo(2000)}));
            if (upTo(9) == 0) records.back().qwNameKey = 0;
        }
        SetIcons(view.hwndListView, icons);
        RestoreRecords(records);
        auto expected = ExpectedPositions(icons, records);
        ExpectPositions(expected);
        ASSERT_FALSE(HasFailure()) << "round " << nRound;
    }
}

TEST_F(Restore, UndoesAnyShuffleOfACapture) {
    std::mt19937 random(7);
    for (int nRound = 0; nRound < 25; ++nRound) {
        std::vector<TestIcon> icons;
        for (unsigned i = 0, n = 1 + random() % 40; i < n; ++i)
            icons.push_back(
                {L"icon " + std::to_wstring(i),
                 {static_cast<LONG>(random() % 900), static_cast<LONG>(random() % 900)}});
        SetIcons(view.hwndListView, icons);
        std::vector<IconRecord> records(icons.size());
        CaptureIcons(view.hwndListView, records.data(), static_cast<unsigned>(records.size()));
        std::vector<TestIcon> shuffled = icons;
        std::shuffle(shuffled.begin(), shuffled.end(), random);
        std::vector<POINT> expected;
        for (TestIcon& icon : shuffled) {
            expected.push_back(icon.pt);
            icon.pt = {static_cast<LONG>(random() % 900), static_cast<LONG>(random() % 900)};
        }
        SetIcons(view.hwndListView, shuffled);
        RestoreRecords(records);
        ExpectPositions(expected);
        ASSERT_FALSE(HasFailure()) << "round " << nRound;
    }
}

} // namespace
