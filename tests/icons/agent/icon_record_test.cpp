#include "icons/agent/icon_record.h"
#include "icons/agent/agent.h"
#include "icons/icons_test_support.h"
#include "runtime/base/digest.h"
#include "runtime/base/ownership.h"
#include "support/guard_page.h"

#include <gtest/gtest.h>
#include <algorithm>
#include <array>
#include <cstring>
#include <random>

namespace {
// The name key

unsigned __int64 KeyOfBytes(const std::wstring& str) {
    unsigned char digest[kMd5Size];
    CalcMD5(digest, str.data(), str.size() * 2);
    unsigned __int64 qw = 0;
    for (int i = 7; i >= 0; --i) qw = qw << 8 | digest[i];
    return qw;
}

TEST(MakeNameKey, EmptyTextIsTheDigestOfNothing) {
    EXPECT_EQ(0x04B2008FD98C1DD4u, MakeNameKey(L"", 0));
}

TEST(MakeNameKey, IsTheFirstEightDigestBytesLowestFirst) {
    EXPECT_EQ(KeyOfBytes(L"Recycle Bin"), MakeNameKey(L"Recycle Bin", 11));
}

TEST(MakeNameKey, LengthOfZeroMeasuresTheText) {
    EXPECT_EQ(MakeNameKey(L"Recycle Bin", 11), MakeNameKey(L"Recycle Bin", 0));
}

TEST(MakeNameKey, TakesExactlyTheUnitsTold) {
    EXPECT_EQ(MakeNameKey(L"Recycle", 7), MakeNameKey(L"Recycle Bin", 7));
    EXPECT_EQ(KeyOfBytes(std::wstring(L"a\0b", 3)), MakeNameKey(L"a\0b", 3));
}

TEST(MakeNameKey, FoldsAndNormalisesNothing) {
    EXPECT_NE(MakeNameKey(L"text", 0), MakeNameKey(L"Text", 0));
    EXPECT_NE(MakeNameKey(L"\u00E4", 0), MakeNameKey(L"a\u0308", 0));
}

TEST(MakeNameKey, SurrogatePairsAreTwoUnits) {
    EXPECT_EQ(KeyOfBytes(L"\xD83D\xDE00"), MakeNameKey(L"\xD83D\xDE00", 2));
}

TEST(MakeNameKey, ReadsNothingBehindTheText) {
    for (std::size_t cch : {0u, 1u, 259u, 260u, 1000u}) {
        std::wstring str(cch, L'n');
        GuardedText text(str);
        EXPECT_EQ(KeyOfBytes(str), MakeNameKey(text.Get(), 0)) << cch;
        EXPECT_EQ(KeyOfBytes(str), MakeNameKey(text.Get(), static_cast<unsigned>(cch))) << cch;
    }
}

// Beside the platform's own digest

constexpr unsigned long long kKeyOfNothing = 0x04B2008FD98C1DD4; // MD5 of zero bytes

TEST(NameKey, OfEmptyTextIsTheDigestOfNothing) { EXPECT_EQ(kKeyOfNothing, MakeNameKey(L"", 0)); }

TEST(NameKey, OfNoTextIsThatOfTheEmptyOneWhateverTheLength) {
    EXPECT_EQ(kKeyOfNothing, MakeNameKey(nullptr, 0));
    EXPECT_EQ(kKeyOfNothing, MakeNameKey(nullptr, 5));
}

TEST(NameKey, MeasuresATextOfLengthZero) {
    EXPECT_EQ(KeyOf(L"Documents"), MakeNameKey(L"Documents", 0));
    EXPECT_EQ(KeyOf(L"Documents"), MakeNameKey(L"Documents", 9));
}

TEST(NameKey, TakesExactlyTheGivenLength) {
    EXPECT_EQ(KeyOf(L"Doc"), MakeNameKey(L"Documents", 3));
    EXPECT_EQ(KeyOf(std::wstring_view(L"a\0b", 3)), MakeNameKey(L"a\0b", 3));
}

TEST(NameKey, FoldsNothing) {
    EXPECT_NE(MakeNameKey(L"readme", 0), MakeNameKey(L"README", 0));
    EXPECT_NE(MakeNameKey(L"\u00E9", 0), MakeNameKey(L"e\u0301", 0));
}

// Capturing

class Capture : public EngineTest {
  protected:
    std::vector<IconRecord> CaptureAll(unsigned nCount) {
        GuardedMemory memory(nCount * sizeof(IconRecord));
        auto* pRecords = static_cast<IconRecord*>(memory.Get());
        EXPECT_EQ(nCount, CaptureIcons(view.hwndListView, pRecords, nCount));
        return {pRecords, pRecords + nCount};
    }
    void AddIcons(unsigned nCount) {
        for (unsigned i = 0; i < nCount; ++i)
            AddIcon(view.hwndListView, L"icon " + std::to_wstring(i),
                    {static_cast<LONG>(i * 3), static_cast<LONG>(1000 - i)});
    }
    /// The list view refuses to tell the text of that item.
    void HideTextOf(int nItem) {
        view.spyListView.handler = [=](UINT uMsg, WPARAM, LPARAM lParam, LRESULT* plResult) {
            *plResult = 0;
            return uMsg == LVM_GETITEMW && reinterpret_cast<const LVITEMW*>(lParam)->iItem == nItem;
        };
    }
    void ExpectRecord(const IconRecord& record, unsigned nIndex, std::wstring_view strText) {
        EXPECT_EQ(nIndex, record.nIndex);
        EXPECT_EQ(strText.size(), record.cchName);
        EXPECT_EQ(KeyOf(strText), record.qwNameKey);
    }

    TestView view;
};

TEST_F(Capture, OfCountZeroOnlyTellsHowManyItemsThereAre) {
    EXPECT_EQ(0u, CaptureIcons(view.hwndListView, nullptr, 0));
    AddIcons(3);
    view.spyListView.Clear();
    EXPECT_EQ(3u, CaptureIcons(view.hwndListView, nullptr, 0));
    EXPECT_EQ(0, view.spyListView.CountOf(LVM_GETITEMW));
    EXPECT_EQ(0, view.spyListView.CountOf(LVM_GETITEMPOSITION));
}

TEST_F(Capture, RecordsItemsInTheListViewsOrder) {
    AddIcon(view.hwndListView, L"zebra", {7, 8});
    AddIcon(view.hwndListView, L"apple", {-20, 3000});
    AddIcon(view.hwndListView, L"Zebra", {0, -5});
    auto records = CaptureAll(3);
    EXPECT_TRUE(SameRecord(RecordOf(0, L"zebra", {7, 8}), records[0]));
    EXPECT_TRUE(SameRecord(RecordOf(1, L"apple", {-20, 3000}), records[1]));
    EXPECT_TRUE(SameRecord(RecordOf(2, L"Zebra", {0, -5}), records[2]));
    EXPECT_NE(records[0].qwNameKey, records[2].qwNameKey); // capital letters count
}

TEST_F(Capture, OfFewerThanThereAreTakesTheFirstOnes) {
    AddIcons(5);
    auto records = CaptureAll(2);
    EXPECT_TRUE(SameRecord(RecordOf(1, L"icon 1", {3, 999}), records[1]));
}

struct NameCase {
    const char* pszName;
    std::wstring strText;
    std::size_t cchCaptured;
};

class CaptureName : public Capture, public testing::WithParamInterface<NameCase> {};

TEST_P(CaptureName, IsKnownByTheTextThatFitsTheBuffer) {
    AddIcon(view.hwndListView, L"before", {1, 2});
    AddIcon(view.hwndListView, GetParam().strText, {3, 4});
    AddIcon(view.hwndListView, L"after", {5, 6});
    auto records = CaptureAll(3);
    ExpectRecord(records[0], 0, L"before");
    ExpectRecord(records[1], 1, GetParam().strText.substr(0, GetParam().cchCaptured));
    ExpectRecord(records[2], 2, L"after");
}

INSTANTIATE_TEST_SUITE_P(Lengths, CaptureName,
                         testing::Values(NameCase{"Empty", L"", 0}, NameCase{"One", L"x", 1},
                                         NameCase{"Of258", std::wstring(258, L'a'), 258},
                                         NameCase{"Of259", std::wstring(259, L'b'), 259},
                                         NameCase{"Of260", std::wstring(259, L'b') + L"c", 259},
                                         NameCase{"Of400", std::wstring(400, L'd'), 259},
                                         NameCase{"SurrogatePair", L"\xD83D\xDE00 smile", 8},
                                         NameCase{"LoneSurrogate", L"\xDE00\xD83D", 2},
                                         NameCase{"PairThatIsCut",
                                                  std::wstring(258, L'e') + L"\xD83D\xDE00", 259}),
                         [](const auto& row) { return std::string(row.param.pszName); });

TEST_F(Capture, OfEmptyTextHasTheKeyOfNothing) {
    AddIcon(view.hwndListView, L"", {1, 2});
    EXPECT_EQ(0x04B2008FD98C1DD4ull, CaptureAll(1)[0].qwNameKey);
}

TEST_F(Capture, OfEqualTextsGivesEqualKeys) {
    AddIcon(view.hwndListView, L"twin", {1, 1});
    AddIcon(view.hwndListView, L"twin", {2, 2});
    auto records = CaptureAll(2);
    EXPECT_EQ(records[0].qwNameKey, records[1].qwNameKey);
    EXPECT_EQ(KeyOf(L"twin"), records[0].qwNameKey);
    EXPECT_EQ(2, records[1].pt.x);
}

TEST_F(Capture, AsksForTheTextOfEachItemIntoABufferOf260) {
    AddIcons(3);
    std::vector<LVITEMW> asked;
    view.spyListView.handler = [&](UINT uMsg, WPARAM, LPARAM lParam, LRESULT*) {
        if (uMsg == LVM_GETITEMW) asked.push_back(*reinterpret_cast<const LVITEMW*>(lParam));
        return 0;
    };
    CaptureAll(3);
    ASSERT_EQ(3u, asked.size());
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(static_cast<UINT>(LVIF_TEXT), asked[i].mask);
        EXPECT_EQ(i, asked[i].iItem);
        EXPECT_EQ(0, asked[i].iSubItem);
        EXPECT_EQ(260, asked[i].cchTextMax);
        EXPECT_NE(nullptr, asked[i].pszText);
    }
}

TEST_F(Capture, OfAnUnreadableFirstItemTakesTheEmptyText) {
    AddIcons(2);
    HideTextOf(0);
    auto records = CaptureAll(2);
    ExpectRecord(records[0], 0, L"");
    ExpectRecord(records[1], 1, L"icon 1");
}

TEST_F(Capture, OfAnUnreadableLaterItemKeepsTheTextBefore) {
    AddIcons(3);
    HideTextOf(1);
    auto records = CaptureAll(3);
    ExpectRecord(records[1], 1, L"icon 0");
    ExpectRecord(records[2], 2, L"icon 2");
}

TEST_F(Capture, ReadsCallbackItemsThroughTheirOwner) {
    LVITEMW item{};
    item.mask = LVIF_TEXT;
    item.pszText = LPSTR_TEXTCALLBACKW;
    ::SendMessageW(view.hwndListView, LVM_INSERTITEMW, 0, reinterpret_cast<LPARAM>(&item));
    view.spyView.handler = [](UINT uMsg, WPARAM, LPARAM lParam, LRESULT*) {
        auto* pInfo = reinterpret_cast<NMLVDISPINFOW*>(lParam);
        if (uMsg != WM_NOTIFY || pInfo->hdr.code != LVN_GETDISPINFOW) return 0;
        if (pInfo->item.mask & LVIF_TEXT)
            ::lstrcpynW(pInfo->item.pszText, L"from the owner", pInfo->item.cchTextMax);
        return 1;
    };
    ExpectRecord(CaptureAll(1)[0], 0, L"from the owner");
}

TEST_F(Capture, OfOwnerDataWithoutAnswersStaysInItsBuffer) {
    TestView viewOwnerData(LVS_OWNERDATA);
    ::SendMessageW(viewOwnerData.hwndListView, LVM_SETITEMCOUNT, 4, 0);
    std::array<IconRecord, 4> records{};
    EXPECT_EQ(4u, CaptureIcons(viewOwnerData.hwndListView, nullptr, 0));
    EXPECT_EQ(4u, CaptureIcons(viewOwnerData.hwndListView, records.data(), 4));
    for (unsigned i = 0; i < 4; ++i) {
        EXPECT_EQ(i, records[i].nIndex);
        EXPECT_LE(records[i].cchName, 259u);
    }
}

// A list view may answer with a text of its own in place of filling the buffer.
class RedirectedCapture : public Capture {
  protected:
    void Redirect(int nItem, wchar_t* pszText) {
        view.spyListView.handler = [=](UINT uMsg, WPARAM, LPARAM lParam, LRESULT* plResult) {
            auto* pItem = reinterpret_cast<LVITEMW*>(lParam);
            if (uMsg != LVM_GETITEMW || pItem->iItem != nItem) return 0;
            pItem->pszText = pszText;
            pItem->cchTextMax = 1;
            *plResult = TRUE;
            return 1;
        };
    }
};

TEST_F(RedirectedCapture, TakesTheListViewsOwnText) {
    AddIcons(3);
    wchar_t szOwn[] = L"own text";
    Redirect(1, szOwn);
    auto records = CaptureAll(3);
    ExpectRecord(records[0], 0, L"icon 0");
    ExpectRecord(records[1], 1, L"own text");
    ExpectRecord(records[2], 2, L"icon 2");
    EXPECT_STREQ(L"own text", szOwn); // the next item went into the agent's buffer again
}

TEST_F(RedirectedCapture, CutsALongerTextLikeItsOwnBuffer) {
    AddIcons(2);
    std::wstring strLong(400, L'q');
    Redirect(0, strLong.data());
    auto records = CaptureAll(2);
    ExpectRecord(records[0], 0, std::wstring(259, L'q'));
    ExpectRecord(records[1], 1, L"icon 1");
    EXPECT_EQ(std::wstring(400, L'q'), strLong);
}

TEST_F(RedirectedCapture, SurvivesANullText) {
    AddIcons(2);
    Redirect(0, nullptr);
    auto records = CaptureAll(2);
    EXPECT_EQ(0u, records[0].nIndex);
    ExpectRecord(records[1], 1, L"icon 1");
}

TEST_F(RedirectedCapture, SurvivesABufferThatIsFilledToItsEnd) {
    AddIcons(1);
    view.spyListView.handler = [](UINT uMsg, WPARAM, LPARAM lParam, LRESULT*) {
        if (uMsg != LVM_GETITEMW) return 0;
        std::wmemset(reinterpret_cast<LVITEMW*>(lParam)->pszText, L'w', 260); // no terminator
        return 1;
    };
    ExpectRecord(CaptureAll(1)[0], 0, std::wstring(259, L'w'));
}

struct CountCase {
    unsigned nIcons;
    int bSent;
};

class SendCaptureCount : public Capture, public testing::WithParamInterface<CountCase> {};

TEST_P(SendCaptureCount, DecidesWhetherAnythingIsSent) {
    AddIcons(GetParam().nIcons);
    CaptureReceiver receiver;
    SendCapture(view.hwndListView, receiver, view.hwndListView);
    ASSERT_EQ(GetParam().bSent, static_cast<int>(receiver.captures.size()));
    if (!GetParam().bSent) {
        EXPECT_EQ(0, view.spyListView.CountOf(LVM_GETITEMW));
        return;
    }
    const ReceivedCapture& capture = receiver.captures[0];
    EXPECT_EQ(reinterpret_cast<WPARAM>(view.hwndListView), capture.wParam);
    EXPECT_EQ(GetParam().nIcons, capture.dwData);
    EXPECT_EQ(GetParam().nIcons * 24, capture.cbData);
    for (unsigned i = 0; i < GetParam().nIcons; ++i) {
        SCOPED_TRACE(i);
        EXPECT_TRUE(SameRecord(RecordOf(i, L"icon " + std::to_wstring(i),
                                        {static_cast<LONG>(i * 3), static_cast<LONG>(1000 - i)}),
                               capture.records[i]));
    }
}

INSTANTIATE_TEST_SUITE_P(Counts, SendCaptureCount,
                         testing::Values(CountCase{0, 0}, CountCase{1, 1}, CountCase{2, 1},
                                         CountCase{999, 1}, CountCase{1000, 0}, CountCase{1001, 0}),
                         [](const auto& row) { return "Of" + std::to_string(row.param.nIcons); });

TEST_F(Capture, NamesTheWindowThatTheHookSawAsItsSender) {
    AddIcons(1);
    CaptureReceiver receiver;
    SendCapture(view.hwndListView, receiver, view.wndView);
    ASSERT_EQ(1u, receiver.captures.size());
    EXPECT_EQ(reinterpret_cast<WPARAM>(static_cast<HWND>(view.wndView)),
              receiver.captures[0].wParam);
}

TEST_F(Capture, IsSentInVainToAMonitorThatIsNotThere) {
    AddIcons(1);
    SendCapture(view.hwndListView, nullptr, view.hwndListView);
    TestWindow wndGone;
    HWND hwndStale = wndGone;
    wndGone.Destroy();
    SendCapture(view.hwndListView, hwndStale, view.hwndListView);
    SendCapture(nullptr, nullptr, nullptr);
}

// Restoring

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
    ASSERT_TRUE(AgentListView().AttachTo(view.hwndListView));
    COPYDATASTRUCT data = Data();
    // Straight to the procedure: the platform would copy the bytes first.
    AgentListView().OnWndMessage(WM_COPYDATA, 0, reinterpret_cast<LPARAM>(&data));
    EXPECT_EQ(0, CountOfMoves());
    EXPECT_EQ(1, view.spyListView.CountOf(WM_COPYDATA));
    AgentListView().DetachFrom();
}

INSTANTIATE_TEST_SUITE_P(Sizes, RestoreBadData, testing::ValuesIn(kBadData),
                         [](const auto& row) { return std::string(row.param.pszName); });

TEST_F(Restore, RunsOnAMessageAndThenReachesTheBaseHandler) {
    SetIcons(view.hwndListView, {{L"a", {1, 1}}});
    Share(view, nullptr);
    ASSERT_TRUE(AgentListView().AttachTo(view.hwndListView));
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
    AgentListView().DetachFrom();
}

TEST_F(Restore, OfAMessageWithoutDataOnlyReachesTheBaseHandler) {
    ASSERT_TRUE(AgentListView().AttachTo(view.hwndListView));
    view.spyListView.Clear();
    AgentListView().OnWndMessage(WM_COPYDATA, 0, 0);
    EXPECT_EQ(1, view.spyListView.CountOf(WM_COPYDATA));
    EXPECT_EQ(1, view.spyListView.CountOfAll());
    AgentListView().DetachFrom();
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
