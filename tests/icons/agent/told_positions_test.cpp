#include "icons/agent/agent.h"
#include "icons/agent/desktop_folder_view.h"
#include "icons/agent/desktop_shared_data.h"
#include "icons/folder_view_test_support.h"
#include "icons/icons_test_support.h"
#include "shell/subclass/shell_subclass.h"
#include "support/this_windows.h"
#include "wnd/core/company_msg.h"

#include <gtest/gtest.h>
#include <shlobj.h>
#include <optional>

namespace {
using Places = std::vector<PlacedItem>;

/// A thread of its own for what waits for the test's one.
class Beside {
  public:
    explicit Beside(std::function<void()> fn)
        : thread([this, fnToDo = std::move(fn)] {
              fnToDo();
              bDone = true;
          }) {}
    ~Beside() { thread.join(); }
    bool IsDone() const { return bDone; }

  private:
    std::atomic<bool> bDone{false};
    std::thread thread;
};

/// The agent on windows of the test's, over a folder view that is a double.
class ToldPositionsTest : public EngineTest {
  protected:
    void SetUp() override {
        EngineTest::SetUp();
        ShellSubclass::ReInitialize();
        Share(view, receiver);
        Hook(kCodeAttach, 1);
        build.emplace(kFirstBuildInCharge);
        shell.emplace(view.wndView);
    }
    void TearDown() override {
        Hook(kCodeAttach, 0);
        PumpAll();
        shell.reset();
        build.reset();
        EngineTest::TearDown();
    }

    static void Hook(WPARAM wCode, LPARAM lParam) {
        MSG msg{};
        msg.message = GetTestCompanyMsg();
        msg.wParam = wCode;
        msg.lParam = lParam;
        DesktopHookProc(HC_ACTION, PM_REMOVE, reinterpret_cast<LPARAM>(&msg));
    }
    void Detach() { ::SendMessageW(view.hwndListView, GetTestCompanyMsg(), kCodeAttach, 0); }
    /// Icons of these names on the list view and in the folder view, all in places of no matter.
    void SetNames(const std::vector<std::wstring>& names) {
        std::vector<TestIcon> icons;
        shell->items.clear();
        for (const std::wstring& strName : names) {
            icons.push_back({strName, {1, 1}});
            shell->items.push_back({strName});
        }
        SetIcons(view.hwndListView, icons);
        view.spyListView.Clear();
    }
    void SendRestore(const std::vector<PlacedItem>& places) {
        std::vector<IconRecord> records;
        for (const PlacedItem& place : places)
            records.push_back(RecordOf(0, place.strName, place.pt));
        COPYDATASTRUCT data{records.size(), static_cast<DWORD>(records.size() * sizeof(IconRecord)),
                            records.data()};
        ::SendMessageW(view.hwndListView, WM_COPYDATA, 0, reinterpret_cast<LPARAM>(&data));
    }
    void SendCode() {
        ::SendMessageW(view.hwndListView, GetTestCompanyMsg(), kCodeTellFolderView, 0);
    }
    void Restore(const std::vector<PlacedItem>& places) {
        SendRestore(places);
        PumpAll();
    }
    void ExpectTold(const std::vector<Places>& expected) {
        EXPECT_EQ(expected, shell->placements);
        EXPECT_EQ(0, shell->CountOfLoans());
    }
    void ExpectPos(int nIcon, POINT pt) {
        POINT ptNow = PosOfIcon(view.hwndListView, nIcon);
        EXPECT_EQ(pt.x, ptNow.x) << nIcon;
        EXPECT_EQ(pt.y, ptNow.y) << nIcon;
    }

    TestView view;
    CaptureReceiver receiver;
    std::optional<FakeBuild> build;
    std::optional<FakeFolderView> shell;
};

TEST_F(ToldPositionsTest, AllThatWasMovedIsToldInOneCall) {
    SetNames({L"a", L"b", L"c"});
    Restore({{L"c", {30, 31}}, {L"a", {-10, 11}}, {L"b", {20, 3000}}});
    ExpectTold({{{L"a", {-10, 11}}, {L"b", {20, 3000}}, {L"c", {30, 31}}}});
    EXPECT_EQ((std::vector<DWORD>{0x80}), shell->placementFlags); // SVSI_POSITIONITEM
    EXPECT_EQ(1, shell->CountOf(Step::Create));
    ExpectPos(1, {20, 3000});
}

TEST_F(ToldPositionsTest, NothingIsToldWithinTheMessageOfTheRestore) {
    SetNames({L"a"});
    SendRestore({{L"a", {5, 6}}});
    ExpectPos(0, {5, 6});
    EXPECT_EQ(0, shell->CountOf(Step::Create));
    PumpAll();
    ExpectTold({{{L"a", {5, 6}}}});
}

TEST_F(ToldPositionsTest, IconsThatStayedAreLeftOut) {
    SetNames({L"stays", L"a", L"stays too", L"b"});
    Restore({{L"b", {1, 2}}, {L"nobody", {3, 4}}, {L"a", {5, 6}}});
    ExpectTold({{{L"a", {5, 6}}, {L"b", {1, 2}}}});
}

TEST_F(ToldPositionsTest, NothingIsAskedWhereNothingMoved) {
    SetNames({L"a"});
    Restore({{L"nobody", {3, 4}}});
    Restore({});
    EXPECT_EQ(0, shell->CountOf(Step::Create));
    EXPECT_EQ(0, view.spyListView.CountOfCode(kCodeTellFolderView));
}

TEST_F(ToldPositionsTest, EqualNamesAreServedInTheirOrder) {
    SetNames({L"twin", L"other", L"twin", L"twin"});
    Restore({{L"twin", {10, 10}}, {L"twin", {20, 20}}});
    ASSERT_EQ(1u, shell->placements.size());
    ExpectTold({{{L"twin", {10, 10}}, {L"twin", {20, 20}}}});
    ExpectPos(0, {10, 10});
    ExpectPos(2, {20, 20});
}

TEST_F(ToldPositionsTest, FolderViewMayHaveItsItemsInAnotherOrder) {
    SetNames({L"a", L"b", L"c"});
    shell->items = {{L"c"}, {L"x"}, {L"a"}};
    Restore({{L"a", {1, 1}}, {L"b", {2, 2}}, {L"c", {3, 3}}});
    ExpectTold({{{L"c", {3, 3}}, {L"a", {1, 1}}}});
}

TEST_F(ToldPositionsTest, LongNamesCountAsFarAsACaptureTakesThem) {
    std::wstring strLong(400, L'n');
    SetNames({strLong, std::wstring(259, L'm')});
    Restore({{std::wstring(259, L'n'), {7, 8}}, {std::wstring(259, L'm'), {9, 10}}});
    ExpectTold({{{strLong, {7, 8}}, {std::wstring(259, L'm'), {9, 10}}}});
}

TEST_F(ToldPositionsTest, NamesAreTheShownOnes) { // the folder hides ".txt" where the view does
    SetNames({L"report", L""});
    Restore({{L"report", {7, 8}}, {L"", {9, 10}}});
    ExpectTold({{{L"report", {7, 8}}, {L"", {9, 10}}}});
}

TEST_F(ToldPositionsTest, ItemsThatVanishWhileTheyAreReadArePassedOver) {
    SetNames({L"a", L"b", L"c", L"d"});
    shell->items[0].bGone = true;
    shell->items[2].bNameless = true;
    Restore({{L"a", {1, 1}}, {L"b", {2, 2}}, {L"c", {3, 3}}, {L"d", {4, 4}}});
    ExpectTold({{{L"b", {2, 2}}, {L"d", {4, 4}}}});
}

TEST_F(ToldPositionsTest, LooksAtNoMoreItemsThanItNeeds) {
    SetNames({L"a", L"b", L"c"});
    Restore({{L"a", {1, 1}}});
    EXPECT_EQ(1, shell->CountOf(Step::Item));
}

TEST_F(ToldPositionsTest, ViewOfAnotherWindowIsLeftAlone) {
    SetNames({L"a"});
    TestWindow wndOther;
    for (HWND hwnd : {static_cast<HWND>(wndOther), view.hwndListView, static_cast<HWND>(nullptr)}) {
        shell->hwndView = hwnd;
        Restore({{L"a", {1, 1}}});
    }
    EXPECT_EQ(3, shell->CountOf(Step::Window));
    ExpectTold({});
}

TEST_F(ToldPositionsTest, EveryRestoreIsTold) {
    SetNames({L"a", L"b"});
    Restore({{L"a", {1, 1}}});
    Restore({{L"b", {2, 2}}});
    ExpectTold({{{L"a", {1, 1}}}, {{L"b", {2, 2}}}});
}

TEST_F(ToldPositionsTest, SecondRestoreTakesThePlaceOfOneThatIsStillToBeTold) {
    SetNames({L"a", L"b"});
    SendRestore({{L"a", {1, 1}}, {L"b", {1, 1}}});
    SendRestore({{L"a", {2, 2}}});
    PumpAll();
    ExpectTold({{{L"a", {2, 2}}}});
    EXPECT_EQ(1, shell->CountOf(Step::Create));
    EXPECT_EQ(1, view.spyListView.CountOfCode(kCodeTellFolderView)); // with nothing left to do
}

TEST_F(ToldPositionsTest, RestoreThatMovesNothingLeavesWhatIsStillToBeTold) {
    SetNames({L"a"});
    SendRestore({{L"a", {1, 1}}});
    SendRestore({{L"nobody", {2, 2}}});
    SendRestore({});
    PumpAll();
    ExpectTold({{{L"a", {1, 1}}}});
}

// The calls to the shell's windows let messages in that are sent meanwhile.
class ToldPositionsMeanwhile : public ToldPositionsTest,
                               public testing::WithParamInterface<Step> {};

TEST_P(ToldPositionsMeanwhile, RestoreIsToldInstead) {
    SetNames({L"a", L"b"});
    shell->onStep[GetParam()] = [&] { SendRestore({{L"b", {2, 2}}}); };
    Restore({{L"a", {1, 1}}, {L"b", {1, 1}}});
    ExpectTold({{{L"b", {2, 2}}}});
}

TEST_P(ToldPositionsMeanwhile, DetachEndsIt) {
    SetNames({L"a", L"b"});
    shell->onStep[GetParam()] = [&] { Detach(); };
    Restore({{L"a", {1, 1}}});
    ExpectTold({});
}

TEST_P(ToldPositionsMeanwhile, EndOfTheListViewEndsIt) {
    SetNames({L"a", L"b"});
    shell->onStep[GetParam()] = [&] { ::DestroyWindow(view.hwndListView); };
    Restore({{L"a", {1, 1}}});
    EXPECT_FALSE(::IsWindow(view.hwndListView));
    ExpectTold({});
}

TEST_P(ToldPositionsMeanwhile, SameCodeAgainDoesNothing) {
    SetNames({L"a", L"b"});
    shell->onStep[GetParam()] = [&] { SendCode(); };
    Restore({{L"a", {1, 1}}});
    ExpectTold({{{L"a", {1, 1}}}});
    EXPECT_EQ(1, shell->CountOf(Step::Create));
}

TEST_P(ToldPositionsMeanwhile, SameCodeAfterAnotherRestoreDoesNothingEither) {
    SetNames({L"a", L"b"});
    shell->onStep[GetParam()] = [&] {
        SendRestore({{L"b", {2, 2}}});
        SendCode();
    };
    Restore({{L"a", {1, 1}}});
    ExpectTold({{{L"b", {2, 2}}}});
}

INSTANTIATE_TEST_SUITE_P(Steps, ToldPositionsMeanwhile,
                         testing::Values(Step::Create, Step::FindWindow, Step::Services,
                                         Step::Browser, Step::View, Step::Window, Step::FolderView,
                                         Step::Folder, Step::Count, Step::Item, Step::Name),
                         [](const auto& row) { return StepName(row.param); });

TEST_F(ToldPositionsTest, RestoreDuringThePositioningIsToldAfterIt) {
    SetNames({L"a", L"b"});
    shell->onStep[Step::Position] = [&] {
        SendRestore({{L"b", {2, 2}}});
        PumpAll(); // its own code comes while the telling is on, and is made up for
    };
    Restore({{L"a", {1, 1}}});
    ExpectTold({{{L"a", {1, 1}}}, {{L"b", {2, 2}}}});
}

TEST_F(ToldPositionsTest, DetachBeforeTheTellingEndsIt) {
    SetNames({L"a"});
    SendRestore({{L"a", {1, 1}}});
    Detach();
    PumpAll();
    Hook(kCodeAttach, 1);
    SendCode(); // nothing is left over for the next attaching
    EXPECT_EQ(0, shell->CountOf(Step::Create));
}

TEST_F(ToldPositionsTest, EndOfTheListViewBeforeTheTellingEndsIt) {
    SetNames({L"a"});
    SendRestore({{L"a", {1, 1}}});
    ::DestroyWindow(view.hwndListView);
    PumpAll();
    EXPECT_EQ(0, shell->CountOf(Step::Create));
}

TEST_F(ToldPositionsTest, WhatWasMovedElsewhereIsNotToldForTheNextListView) {
    SetNames({L"a"});
    SendRestore({{L"a", {1, 1}}});
    TestView viewNext;
    Share(viewNext, receiver);
    Hook(kCodeAttach, 1);
    ::SendMessageW(viewNext.hwndListView, GetTestCompanyMsg(), kCodeTellFolderView, 0);
    EXPECT_EQ(0, shell->CountOf(Step::Create));
    Hook(kCodeAttach, 0);
}

TEST_F(ToldPositionsTest, StrangersCodeDoesNothingWithoutARestore) {
    SetNames({L"a"});
    ::PostMessageW(view.hwndListView, GetTestCompanyMsg(), kCodeTellFolderView, 0);
    ::PostMessageW(view.hwndListView, GetTestCompanyMsg(), kCodeTellFolderView, -1);
    PumpAll();
    EXPECT_EQ(0, shell->CountOf(Step::Create));
    EXPECT_EQ(2, view.spyListView.CountOfCode(kCodeTellFolderView)); // it went on as others do
    Restore({{L"a", {1, 1}}});
    ::PostMessageW(view.hwndListView, GetTestCompanyMsg(), kCodeTellFolderView, 0);
    PumpAll();
    ExpectTold({{{L"a", {1, 1}}}});
    EXPECT_EQ(1, shell->CountOf(Step::Create));
}

TEST_F(ToldPositionsTest, OtherCodesDoNotStartTheTelling) {
    SetNames({L"a"});
    SendRestore({{L"a", {1, 1}}});
    ::SendMessageW(view.hwndListView, GetTestCompanyMsg(), kCodeTellFolderView + 1, 0);
    ::SendMessageW(view.hwndListView, GetTestCompanyMsg(), kCodeCapture, 0);
    ::SendMessageW(view.hwndListView, WM_NULL, kCodeTellFolderView, 0);
    ::SendMessageW(view.wndView, GetTestCompanyMsg(), kCodeTellFolderView, 0);
    EXPECT_EQ(0, shell->CountOf(Step::Create));
}

// COM refuses calls from within a message that another thread sent.
TEST_F(ToldPositionsTest, CodeThatAnotherThreadSendsDoesNotStartTheTelling) {
    SetNames({L"a"});
    SendRestore({{L"a", {1, 1}}});
    {
        Beside stranger([&] { SendCode(); });
        MSG msg; // what is sent is handled, what is posted stays
        while (!stranger.IsDone()) {
            ::PeekMessageW(&msg, nullptr, 0, 0, PM_NOREMOVE | PM_QS_SENDMESSAGE);
            ::Sleep(1);
        }
    }
    EXPECT_EQ(1, view.spyListView.CountOfCode(kCodeTellFolderView));
    EXPECT_EQ(0, shell->CountOf(Step::Create));
    PumpAll();
    ExpectTold({{{L"a", {1, 1}}}});
}

TEST_F(ToldPositionsTest, WithoutTheCompanyMessageNothingIsKept) {
    SetNames({L"a"});
    GetDesktopSharedData().nCompanyMsg = 0;
    SendRestore({{L"a", {1, 1}}});
    GetDesktopSharedData().nCompanyMsg = GetTestCompanyMsg();
    SendCode();
    EXPECT_EQ(0, shell->CountOf(Step::Create));
}

TEST_F(ToldPositionsTest, ThreadWithoutComTellsNothing) {
    shell.reset(); // the platform's own CoCreateInstance
    SetIcons(view.hwndListView, {{L"a", {1, 1}}});
    Restore({{L"a", {9, 9}}});
    ExpectPos(0, {9, 9});
}

TEST_F(ToldPositionsTest, TellsALargeDesktop) {
    std::vector<std::wstring> names;
    Places places;
    for (int i = 0; i < 1200; ++i) { // more than are captured: a restore has no bound
        names.push_back(L"icon " + std::to_wstring(i));
        places.push_back({names.back(), {i, 2 * i}});
    }
    SetNames(names);
    Restore(places);
    ExpectTold({places});
}

struct FailingCase {
    const char* pszName;
    HRESULT hr;
};

class ToldPositionsFailing : public ToldPositionsTest,
                             public testing::WithParamInterface<std::tuple<Step, FailingCase>> {};

TEST_P(ToldPositionsFailing, ChangesNothing) {
    auto [step, how] = GetParam();
    SetNames({L"a", L"b"});
    shell->failing = step;
    shell->hrFailing = how.hr;
    Restore({{L"a", {5, 5}}, {L"b", {6, 6}}});
    EXPECT_LE(1, shell->CountOf(step));
    ExpectTold({});
    ExpectPos(0, {5, 5});
    ExpectPos(1, {6, 6});
    SendCode(); // there is no second try
    EXPECT_EQ(1, shell->CountOf(Step::Create));
    shell->failing = Step::None;
    Restore({{L"a", {7, 7}}});
    ExpectTold({{{L"a", {7, 7}}}});
}

INSTANTIATE_TEST_SUITE_P(
    Steps, ToldPositionsFailing,
    testing::Combine(testing::Values(Step::Create, Step::FindWindow, Step::Services, Step::Browser,
                                     Step::View, Step::Window, Step::FolderView, Step::Folder,
                                     Step::Count, Step::Item, Step::Name),
                     testing::Values(FailingCase{"Failure", E_FAIL},
                                     FailingCase{"NoInterface", E_NOINTERFACE},
                                     FailingCase{"NoCom", CO_E_NOTINITIALIZED},
                                     FailingCase{"CallRefused", RPC_E_CANTCALLOUT_ININPUTSYNCCALL},
                                     FailingCase{"NotImplemented", E_NOTIMPL},
                                     FailingCase{"OutOfMemory", E_OUTOFMEMORY},
                                     FailingCase{"NothingGiven", S_OK},
                                     FailingCase{"NothingThere", S_FALSE})),
    [](const auto& row) {
        return StepName(std::get<0>(row.param)) + std::get<1>(row.param).pszName;
    });

TEST_F(ToldPositionsTest, RefusedPositionsAreNotTriedAgain) {
    SetNames({L"a"});
    shell->failing = Step::Position;
    shell->hrFailing = E_NOTIMPL;
    Restore({{L"a", {5, 5}}});
    SendCode();
    EXPECT_EQ(1, shell->CountOf(Step::Position));
    EXPECT_EQ(0, shell->CountOfLoans());
    ExpectPos(0, {5, 5});
}

struct BuildCase {
    const char* pszName;
    DWORD dwBuild;
    LONG nStatus;
    bool bTold;
};

class ToldPositionsBuild : public ToldPositionsTest,
                           public testing::WithParamInterface<BuildCase> {};

TEST_P(ToldPositionsBuild, DecidesWhetherAnythingIsTold) {
    build.emplace(GetParam().dwBuild, GetParam().nStatus);
    SetNames({L"a"});
    SendRestore({{L"a", {5, 5}}});
    MSG msg;
    bool bPosted =
        ::PeekMessageW(&msg, nullptr, GetTestCompanyMsg(), GetTestCompanyMsg(), PM_NOREMOVE);
    EXPECT_EQ(GetParam().bTold, bPosted);
    PumpAll();
    EXPECT_EQ(GetParam().bTold ? 1 : 0, shell->CountOf(Step::Create));
    EXPECT_EQ(GetParam().bTold ? 1u : 0u, shell->placements.size());
    ExpectPos(0, {5, 5});
}

INSTANTIATE_TEST_SUITE_P(
    Builds, ToldPositionsBuild,
    testing::Values(BuildCase{"NoAnswerAtAll", 0, 0, false},
                    BuildCase{"AnswerThatFailed", 22631, -1, false},
                    BuildCase{"XpX64", 3790, 0, false}, BuildCase{"Vista", 6002, 0, false},
                    BuildCase{"Seven", 7601, 0, false}, BuildCase{"EightOne", 9600, 0, false},
                    BuildCase{"TenBefore", 17134, 0, false},
                    BuildCase{"LastBefore", 17762, 0, false}, BuildCase{"First", 17763, 0, true},
                    BuildCase{"TenLast", 19045, 0, true}, BuildCase{"Eleven", 22000, 0, true},
                    BuildCase{"ElevenNewest", 26100, 0, true}),
    [](const auto& row) { return std::string(row.param.pszName); });

TEST(ToldPositionsOfThisWindows, AreTheFolderViewsFromTheFirstBuildOn) {
    EXPECT_EQ(ThisWindows().dwBuildNumber >= kFirstBuildInCharge, IsFolderViewInCharge());
}

// A shell whose answer takes its time holds up the shell's own thread, and nobody else.
TEST(ToldPositionsOfAShell, SenderOfTheRestoreDoesNotWait) {
    DesktopThread desktop({{L"a", {1, 1}}});
    FakeBuild build(kFirstBuildInCharge);
    FakeFolderView shell(desktop.GetView());
    shell.items = {{L"a"}};
    HANDLE hGoOn = ::CreateEventW(nullptr, TRUE, FALSE, nullptr);
    std::atomic<bool> bHeldUp{false};
    shell.onStep[Step::FindWindow] = [&] {
        bHeldUp = ::WaitForSingleObject(hGoOn, 10000) == WAIT_OBJECT_0;
    };
    GetDesktopSharedData().nCompanyMsg = GetTestCompanyMsg();
    GetDesktopSharedData().hwndListView = desktop.GetListView();
    GetDesktopSharedData().hwndView = desktop.GetView();
    auto hook = [&](LPARAM lAttach) {
        MSG msg{};
        msg.message = GetTestCompanyMsg();
        msg.wParam = kCodeAttach;
        msg.lParam = lAttach;
        desktop.Run([&] { DesktopHookProc(HC_ACTION, PM_REMOVE, reinterpret_cast<LPARAM>(&msg)); });
    };
    hook(1);
    IconRecord record = RecordOf(0, L"a", {5, 5});
    COPYDATASTRUCT data{1, sizeof(record), &record};
    DWORD_PTR nResult = 0;
    EXPECT_TRUE(::SendMessageTimeoutW(desktop.GetListView(), WM_COPYDATA, 0,
                                      reinterpret_cast<LPARAM>(&data), SMTO_NORMAL, 5000,
                                      &nResult));
    EXPECT_FALSE(bHeldUp); // whether or not the telling has begun, its answer has not come
    EXPECT_TRUE(WaitUntil([&] { return shell.CountOf(Step::FindWindow) == 1; }));
    ::SetEvent(hGoOn);
    hook(0); // waits for the shell's thread
    EXPECT_TRUE(bHeldUp);
    EXPECT_EQ((std::vector<Places>{{{L"a", {5, 5}}}}), shell.placements);
    desktop.End();
    ::CloseHandle(hGoOn);
    GetDesktopSharedData() = {};
}
} // namespace
