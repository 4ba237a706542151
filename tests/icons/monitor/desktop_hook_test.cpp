#include "icons/agent/agent.h"
#include "icons/agent/desktop_shared_data.h"
#include "icons/icons_test_support.h"
#include "icons/monitor/desktop_hook.h"
#include "icons/monitor/monitor_wnd.h"
#include "support/replace_import.h"
#include "support/wait_until.h"

#include <gtest/gtest.h>
#include <thread>

extern "C" FARPROC __imp_SetWindowsHookExW;

namespace {

const HHOOK kBogusHook = reinterpret_cast<HHOOK>(0x12345);

class DesktopHook : public EngineTest {
  protected:
    void SetUp() override {
        EngineTest::SetUp();
        Share(view, nullptr);
    }
    void TearDown() override {
        if (GetDesktopSharedData().hhook == kBogusHook) GetDesktopSharedData().hhook = nullptr;
        RemoveDesktopHook();
        EngineTest::TearDown();
    }

    TestView view;
};

TEST_F(DesktopHook, InstallSetsAHookAndAttachesByThePostedCode) {
    InstallDesktopHook();
    EXPECT_NE(nullptr, GetDesktopSharedData().hhook);
    EXPECT_FALSE(AgentListView().IsAttached()); // the code is still in the queue
    auto sent = view.spyView.GetCode(kCodeAttach);
    ASSERT_EQ(1u, sent.size()); // the view got it at once
    EXPECT_EQ(1, sent[0].lParam);
    PumpAll();
    EXPECT_TRUE(AgentListView().IsAttached());
    EXPECT_TRUE(AgentView().IsAttached());
    auto posted = view.spyListView.GetCode(kCodeAttach);
    ASSERT_EQ(1u, posted.size()); // it is not swallowed
    EXPECT_EQ(1, posted[0].lParam);
}

TEST_F(DesktopHook, InstallDoesNothingWhileAHookIsSet) {
    GetDesktopSharedData().hhook = kBogusHook;
    InstallDesktopHook();
    PumpAll();
    EXPECT_EQ(kBogusHook, GetDesktopSharedData().hhook);
    EXPECT_EQ(0, view.spyListView.CountOfCode(kCodeAttach));
    EXPECT_EQ(0, view.spyView.CountOfCode(kCodeAttach));
}

TEST_F(DesktopHook, InstallTwiceSetsOneHook) {
    InstallDesktopHook();
    HHOOK hhook = GetDesktopSharedData().hhook;
    InstallDesktopHook();
    EXPECT_EQ(hhook, GetDesktopSharedData().hhook);
    PumpAll();
    EXPECT_EQ(1, view.spyListView.CountOfCode(kCodeAttach));
}

TEST_F(DesktopHook, InstallSurvivesAWindowThatIsGone) {
    view.wndView.Destroy();
    InstallDesktopHook();
    PumpAll();
    EXPECT_FALSE(AgentListView().IsAttached());
}

std::vector<DWORD> hookedThreads;

HHOOK WINAPI NoteHook(int, HOOKPROC, HINSTANCE, DWORD dwThread) {
    hookedThreads.push_back(dwThread);
    return kBogusHook;
}

TEST_F(DesktopHook, IsForTheListViewsThread) {
    ReplaceImport hook(__imp_SetWindowsHookExW, &NoteHook);
    hookedThreads.clear();
    InstallDesktopHook();
    EXPECT_EQ(std::vector<DWORD>{::GetCurrentThreadId()}, hookedThreads);
    EXPECT_EQ(kBogusHook, GetDesktopSharedData().hhook);
}

// Thread 0 would be every thread of the desktop.
TEST_F(DesktopHook, IsNotSetWhereTheListViewHasNoThread) {
    ReplaceImport hook(__imp_SetWindowsHookExW, &NoteHook);
    hookedThreads.clear();
    HWND hwndGone = view.hwndListView;
    ::DestroyWindow(hwndGone);
    for (HWND hwnd : {hwndGone, static_cast<HWND>(nullptr)}) {
        GetDesktopSharedData().hwndListView = hwnd;
        InstallDesktopHook();
        EXPECT_TRUE(hookedThreads.empty());
        EXPECT_EQ(nullptr, GetDesktopSharedData().hhook);
    }
}

TEST_F(DesktopHook, RemoveDetachesBothWindowsAndTakesTheHookAway) {
    InstallDesktopHook();
    PumpAll();
    RemoveDesktopHook();
    EXPECT_EQ(nullptr, GetDesktopSharedData().hhook);
    EXPECT_FALSE(AgentListView().IsAttached());
    EXPECT_FALSE(AgentView().IsAttached());
    // No hook sees the thread's messages any more.
    ::PostMessageW(view.hwndListView, GetTestCompanyMsg(), kCodeAttach, 1);
    PumpAll();
    EXPECT_FALSE(AgentListView().IsAttached());
}

TEST_F(DesktopHook, RemoveDetachesTheListViewThenTheViewThenUnhooks) {
    InstallDesktopHook(); // nothing attached yet: the windows themselves see the codes
    HHOOK hhook = GetDesktopSharedData().hhook;
    HHOOK hSeenByView = nullptr;
    view.spyView.handler = [&](UINT uMsg, WPARAM, LPARAM, LRESULT*) {
        if (uMsg == GetTestCompanyMsg()) hSeenByView = GetDesktopSharedData().hhook;
        return 0;
    };
    view.spyView.Clear();
    RemoveDesktopHook();
    auto toListView = view.spyListView.GetCode(kCodeAttach);
    auto toView = view.spyView.GetCode(kCodeAttach);
    ASSERT_EQ(1u, toListView.size());
    ASSERT_EQ(1u, toView.size());
    EXPECT_EQ(0, toListView[0].lParam);
    EXPECT_EQ(0, toView[0].lParam);
    EXPECT_LT(toListView[0].nOrder, toView[0].nOrder);
    EXPECT_EQ(hhook, hSeenByView);
    EXPECT_FALSE(::UnhookWindowsHookEx(hhook)); // it is gone already
}

TEST_F(DesktopHook, RemoveDetachesAlsoWhatIsAttachedBehindTheDetaching) {
    InstallDesktopHook(); // by a posted code, which what is sent overtakes
    view.spyView.handler = [](UINT uMsg, WPARAM, LPARAM lParam, LRESULT*) {
        if (uMsg == GetTestCompanyMsg() && !lParam) PumpAll(); // now it comes, the hook still set
        return 0;
    };
    RemoveDesktopHook();
    view.spyView.handler = nullptr;
    EXPECT_EQ(2, view.spyListView.CountOfCode(kCodeAttach)) << "detached, then attached";
    EXPECT_FALSE(AgentListView().IsAttached());
    EXPECT_FALSE(AgentView().IsAttached());
    EXPECT_EQ(nullptr, ::GetPropW(view.hwndListView, L"CSWND"));
    EXPECT_EQ(nullptr, ::GetPropW(view.wndView, L"CSWND"));
}

TEST_F(DesktopHook, RemoveWithoutAHookSendsNothing) {
    RemoveDesktopHook();
    PumpAll();
    EXPECT_EQ(0, view.spyListView.CountOfCode(kCodeAttach));
    EXPECT_EQ(0, view.spyView.CountOfCode(kCodeAttach));
}

TEST_F(DesktopHook, OfAMonitorThatHasGoneIsForgotten) {
    GetDesktopSharedData().hhook = kBogusHook;
    GetDesktopSharedData().hwndMonitor = nullptr;
    ForgetStaleDesktopHook();
    EXPECT_EQ(nullptr, GetDesktopSharedData().hhook);

    TestWindow wndGone;
    GetDesktopSharedData().hwndMonitor = wndGone;
    wndGone.Destroy();
    GetDesktopSharedData().hhook = kBogusHook;
    ForgetStaleDesktopHook();
    EXPECT_EQ(nullptr, GetDesktopSharedData().hhook);
}

TEST_F(DesktopHook, OfAHandleThatIsSomebodyElsesWindowNowIsForgotten) {
    TestWindow wndOther;
    GetDesktopSharedData().hwndMonitor = wndOther;
    GetDesktopSharedData().hhook = kBogusHook;
    ForgetStaleDesktopHook();
    EXPECT_EQ(nullptr, GetDesktopSharedData().hhook);
}

TEST_F(DesktopHook, OfAMonitorThatLivesIsLeftAlone) {
    FakeFrontEnd frontEnd;
    MyMonitor_Wnd monitor(frontEnd);
    ASSERT_TRUE(monitor.CreateHidden(nullptr));
    GetDesktopSharedData().hwndMonitor = monitor;
    GetDesktopSharedData().hhook = kBogusHook;
    ForgetStaleDesktopHook();
    EXPECT_EQ(kBogusHook, GetDesktopSharedData().hhook);
    monitor.Destroy();
}

TEST_F(DesktopHook, OfACommandIsSetWithoutWaitingAndLetGoOf) {
    HHOOK hhook = SetDesktopHook();
    ASSERT_NE(nullptr, hhook);
    EXPECT_EQ(0, view.spyView.CountOfCode(kCodeAttach)); // nothing is sent
    EXPECT_FALSE(IsDesktopAttached());
    PumpAll();
    EXPECT_TRUE(IsDesktopAttached());
    EXPECT_TRUE(AgentView().IsAttached());
    LetGoOfDesktop(hhook, 0); // this thread, the shell's here, does not answer meanwhile
    EXPECT_EQ(nullptr, GetDesktopSharedData().hhook);
    EXPECT_TRUE(IsDesktopAttached());
    PumpAll(); // it does when it is back, without a hook
    EXPECT_FALSE(AgentListView().IsAttached());
    EXPECT_FALSE(AgentView().IsAttached());
}

TEST_F(DesktopHook, OfACommandIsNotLetGoOfByALookAtTheQueue) {
    HHOOK hhook = SetDesktopHook();
    PumpAll();
    ASSERT_TRUE(AgentListView().IsAttached());
    std::thread command([&] { LetGoOfDesktop(hhook, kTestDeadlineMs); });
    MSG msg{};
    const UINT uMsg = GetTestCompanyMsg();
    EXPECT_TRUE(WaitUntil(
        [&] { return ::PeekMessageW(&msg, view.hwndListView, uMsg, uMsg, PM_NOREMOVE) != 0; }));
    EXPECT_EQ(static_cast<WPARAM>(kCodeAttach), msg.wParam);
    EXPECT_TRUE(AgentListView().IsAttached());
    EXPECT_TRUE(AgentView().IsAttached());
    EXPECT_TRUE(WaitUntil([&] {
        PumpAll();
        return !AgentListView().IsAttached() && !AgentView().IsAttached();
    }));
    command.join();
    EXPECT_EQ(nullptr, GetDesktopSharedData().hhook);
}

TEST_F(DesktopHook, OfAMonitorThatCameMeanwhileStays) {
    HHOOK hhook = SetDesktopHook();
    PumpAll();
    GetDesktopSharedData().hhook = kBogusHook;
    LetGoOfDesktop(hhook, kTestDeadlineMs);
    PumpAll();
    EXPECT_EQ(kBogusHook, GetDesktopSharedData().hhook);
    EXPECT_TRUE(AgentListView().IsAttached());
    GetDesktopSharedData().hhook = nullptr;
}
} // namespace
