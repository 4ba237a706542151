// Restores of a stored layout on the running engine, asked for as the menu asks for them.

#include "e2e/engine_test_support.h"

#include <commctrl.h>
#include <chrono>
#include <future>

namespace {
class Restore : public EngineTest {
  protected:
    void RestoreNamed(const std::wstring& strName) { ProductLibrary().Restore(strName); }
    std::wstring PlantLayout(const std::vector<StoredIcon>& icons, uint64_t nSecondsAgo = 60) {
        std::wstring strName = NameBeforeNow(nSecondsAgo);
        store.Plant(strName, MakeSnapshotBytes(icons));
        return strName;
    }
    void ExpectAt(int nIndex, POINT pt) {
        POINT ptNow = desktop->Items().at(static_cast<size_t>(nIndex)).pt;
        EXPECT_EQ(pt.x, ptNow.x) << nIndex;
        EXPECT_EQ(pt.y, ptNow.y) << nIndex;
    }
};

class RestoreOnEveryDesktop : public Restore, public testing::WithParamInterface<DesktopMode> {};
TEST_P(RestoreOnEveryDesktop, PutsEveryIconBackAndMarksTheSnapshot) {
    StartDesktop(GetParam());
    if (GetParam() != DesktopMode::Real) desktop->Fill(12);
    StartMonitor();
    StoredSnapshot value = *store.Newest();
    std::vector<StoredIcon> before = ExpectedIcons();
    for (int n = 0, nCount = desktop->Count(); n < nCount; ++n) desktop->Move(n, {500 - n, 30 * n});
    ASSERT_NE(before, ExpectedIcons());
    RestoreNamed(value.strName);
    EXPECT_EQ(before, ExpectedIcons());
    EXPECT_EQ(value.strName, store.Marked());
    EXPECT_EQ(DWORD{REG_SZ}, store.Named(L"")->dwType);
    EXPECT_EQ(1, store.Count()); // a restore stores nothing itself
    ASSERT_TRUE(Capture());
    EXPECT_EQ(1, store.Count()); // and left the desktop as the snapshot has it
}
INSTANTIATE_TEST_SUITE_P(Modes, RestoreOnEveryDesktop,
                         testing::Values(DesktopMode::Real, DesktopMode::Plain,
                                         DesktopMode::WorkerW, DesktopMode::WorkerWInside),
                         ModeName);

TEST_F(Restore, GivesIconsOfTheSameNameTheStoredPlacesInTheirOrder) {
    StartDesktop(DesktopMode::Plain);
    desktop->Add(L"same", {100, 10});
    desktop->Add(L"other", {200, 20});
    desktop->Add(L"same", {300, 30});
    StartMonitor();
    std::wstring strName = store.Newest()->strName;
    desktop->Move(0, {300, 30});
    desktop->Move(2, {100, 10});
    desktop->Add(L"same", {400, 40}); // one more than is stored
    RestoreNamed(strName);
    ExpectAt(0, {100, 10});
    ExpectAt(1, {200, 20});
    ExpectAt(2, {300, 30});
    ExpectAt(3, {400, 40});
}

TEST_F(Restore, IgnoresRecordsThatNoIconAnswers) {
    StartPlain(3);
    StartMonitor();
    std::wstring strName = store.Newest()->strName;
    std::vector<DesktopItem> items = desktop->Items();
    desktop->Remove(1);
    desktop->Move(0, {5, 6});
    desktop->Move(1, {7, 8});
    RestoreNamed(strName);
    ExpectAt(0, items[0].pt);
    ExpectAt(1, items[2].pt);
}

TEST_F(Restore, LeavesIconsThatNoRecordNames) {
    StartPlain(2);
    StartMonitor();
    std::wstring strName = store.Newest()->strName;
    std::vector<DesktopItem> items = desktop->Items();
    desktop->Add(L"new", {321, 123});
    desktop->Move(0, {5, 6});
    RestoreNamed(strName);
    ExpectAt(0, items[0].pt);
    ExpectAt(1, items[1].pt);
    ExpectAt(2, {321, 123});
}

TEST_F(Restore, LeavesARenamedIconWhereItIs) {
    StartPlain(3);
    StartMonitor();
    std::wstring strName = store.Newest()->strName;
    std::vector<DesktopItem> items = desktop->Items();
    desktop->Rename(1, L"ICON 0002");
    for (int n = 0; n < 3; ++n) desktop->Move(n, {600 + n, 10});
    RestoreNamed(strName);
    ExpectAt(0, items[0].pt);
    ExpectAt(1, {601, 10});
    ExpectAt(2, items[2].pt);
}

TEST_F(Restore, GoesByTheNameKeyAlone) {
    StartDesktop(DesktopMode::Plain);
    desktop->Add(L"a", {10, 20});
    desktop->Add(std::wstring(400, L'c'), {30, 40});
    StartMonitor();
    std::vector<StoredIcon> icons{Record(77, {501, 51}, std::wstring(300, L'c')),
                                  Record(0xFFFFFFFF, {502, 52}, L"a")};
    icons[1].nNameLength = 0xFFFFFFFF;
    RestoreNamed(PlantLayout(icons));
    ExpectAt(0, {502, 52});
    ExpectAt(1, {501, 51}); // cut to the same 259 characters
}

TEST_F(Restore, HasNoUpperBound) {
    StartPlain(1200);
    StartMonitor();
    std::vector<StoredIcon> icons = ExpectedIcons();
    for (StoredIcon& icon : icons) icon.x += 1000;
    RestoreNamed(PlantLayout(icons));
    EXPECT_EQ(icons, ExpectedIcons());
}

TEST_F(Restore, OfABadDigestMovesNothingAndMarks) {
    StartPlain(4);
    StartMonitor();
    std::vector<StoredIcon> icons = ExpectedIcons();
    std::vector<StoredIcon> moved = icons;
    for (StoredIcon& icon : moved) icon.x += 100;
    std::vector<BYTE> bytes = MakeSnapshotBytes(moved);
    bytes.back() ^= 1;
    std::wstring strName = NameBeforeNow(60);
    store.Plant(strName, bytes);
    RestoreNamed(strName);
    EXPECT_EQ(icons, ExpectedIcons());
    EXPECT_EQ(strName, store.Marked());
    EXPECT_TRUE(StillCaptures());
}

TEST_F(Restore, OfWhatHoldsNoRecordsDoesNothing) {
    StartPlain(4);
    StartMonitor();
    std::vector<StoredIcon> icons = ExpectedIcons();
    std::vector<BYTE> noMultiple = MakeSnapshotBytes(icons);
    noMultiple.pop_back();
    for (const auto& bytes : {std::vector<BYTE>{}, std::vector<BYTE>(16), noMultiple}) {
        std::wstring strName = NameBeforeNow(60);
        store.Plant(strName, bytes);
        auto before = AllValues(store);
        RestoreNamed(strName);
        EXPECT_EQ(before, AllValues(store)); // no mark either
    }
    auto before = AllValues(store);
    RestoreNamed(L"01D0000000000001"); // there is none
    EXPECT_EQ(before, AllValues(store));
    EXPECT_EQ(icons, ExpectedIcons());
    EXPECT_TRUE(StillCaptures());
}

TEST_F(Restore, MovesTheMark) {
    StartPlain(2);
    StartMonitor();
    std::vector<StoredIcon> icons = ExpectedIcons();
    std::wstring strFirst = PlantLayout(icons, 200), strSecond = PlantLayout(icons, 100);
    RestoreNamed(strFirst);
    EXPECT_EQ(strFirst, store.Marked());
    RestoreNamed(strSecond);
    EXPECT_EQ(strSecond, store.Marked());
}

/// The list view arranges its icons by itself, and the user is asked.
class RestoreWithAutoArrange : public Restore, public testing::WithParamInterface<DesktopMode> {
  protected:
    void SetUp() override {
        Restore::SetUp();
        StartDesktop(GetParam());
        if (GetParam() != DesktopMode::Real) desktop->Fill(5);
        StartMonitor();
        strName = store.Newest()->strName;
        icons = ExpectedIcons();
        for (int n = 0, nCount = desktop->Count(); n < nCount; ++n) {
            desktop->Move(n, {400 + 10 * n, 20 * n});
        }
        moved = ExpectedIcons();
        desktop->SetAutoArrange(true);
    }
    /// The restore sits in its box on a thread of its own until the test has pressed the button.
    void RestoreAndAnswer(int nButton) {
        ProductLibrary library;
        auto done = std::async(std::launch::async, [&] { library.Restore(strName); });
        std::optional<SeenMessageBox> box = AnswerMessageBox(::GetCurrentProcessId(), nButton);
        ASSERT_EQ(std::future_status::ready, done.wait_for(std::chrono::seconds(10)));
        ASSERT_TRUE(box);
        EXPECT_EQ(L"Tessaly", box->strTitle);
        EXPECT_EQ(kAutoArrangeText, box->strText);
        EXPECT_EQ((std::vector<int>{IDYES, IDNO}), box->buttons);
    }
    LONG_PTR Style() { return ::GetWindowLongPtrW(desktop->List(), GWL_STYLE); }
    std::wstring strName;
    std::vector<StoredIcon> icons, moved;
};

TEST_P(RestoreWithAutoArrange, ClearsTheStyleAndRestoresAfterAYes) {
    LONG_PTR nStyle = Style();
    RestoreAndAnswer(IDYES);
    EXPECT_EQ(nStyle & ~LONG_PTR{LVS_AUTOARRANGE}, Style());
    EXPECT_FALSE(desktop->IsAutoArranged());
    EXPECT_EQ(icons, ExpectedIcons());
    EXPECT_EQ(strName, store.Marked());
}

TEST_P(RestoreWithAutoArrange, ChangesNothingAfterANo) {
    LONG_PTR nStyle = Style();
    store.Plant(L"", {'x', 0, 0, 0}, REG_SZ);
    auto before = AllValues(store);
    RestoreAndAnswer(IDNO);
    EXPECT_EQ(nStyle, Style());
    EXPECT_TRUE(desktop->IsAutoArranged());
    EXPECT_EQ(moved, ExpectedIcons());
    EXPECT_EQ(before, AllValues(store));
}
INSTANTIATE_TEST_SUITE_P(Modes, RestoreWithAutoArrange,
                         testing::Values(DesktopMode::Real, DesktopMode::Plain), ModeName);
} // namespace
