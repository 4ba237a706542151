#include "icons/agent/capture.h"
#include "icons/icons_test_support.h"
#include "support/guard_page.h"
#include <gtest/gtest.h>
#include <array>
#include <cstring>

namespace {

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
    view.spyListView.handler = [](UINT uMsg, WPARAM, LPARAM lParam, LRESULT* plResult) {
        *plResult = 0;
        return uMsg == LVM_GETITEMW && reinterpret_cast<const LVITEMW*>(lParam)->iItem == 0;
    };
    auto records = CaptureAll(2);
    ExpectRecord(records[0], 0, L"");
    ExpectRecord(records[1], 1, L"icon 1");
}

TEST_F(Capture, OfAnUnreadableLaterItemKeepsTheTextBefore) {
    AddIcons(3);
    view.spyListView.handler = [](UINT uMsg, WPARAM, LPARAM lParam, LRESULT* plResult) {
        *plResult = 0;
        return uMsg == LVM_GETITEMW && reinterpret_cast<const LVITEMW*>(lParam)->iItem == 1;
    };
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

} // namespace
