#include "icons/agent/agent.h"
#include "icons/agent/desktop_shared_data.h"
#include "icons/engine/monitor.h"
#include "icons/icons_test_support.h"
#include "icons/monitor/monitor_wnd.h"
#include "runtime/base/current_product.h"
#include "runtime/base/digest.h"
#include "support/message_box_driver.h"

#include <gtest/gtest.h>
#include <atomic>
#include <cstring>
#include <thread>

namespace {

using Calls = std::vector<std::string>;

const std::vector<TestIcon> kIcons = {{L"one", {10, 20}}, {L"two", {30, 40}}};
const HHOOK kBogusHook = reinterpret_cast<HHOOK>(0x12345);

class DoMonitorTest : public EngineTest {
  protected:
    /// Has the monitor's thread leave its loop if it hangs.
    void Run(HWND hwndParent, int bQuiet, std::function<void()> fnDriver = nullptr) {
        DWORD dwThread = ::GetCurrentThreadId();
        std::atomic<bool> bReturned{false};
        {
            std::jthread driver([&] {
                if (fnDriver) fnDriver();
                if (WaitUntil([&] { return bReturned.load(); }, kTestDeadlineMs)) return;
                bHung = true;
                while (!bReturned) {
                    ::PostThreadMessageW(dwThread, WM_QUIT, 0, 0);
                    ::Sleep(50);
                }
            });
            RunMonitor(frontEnd, hwndParent, bQuiet);
            bReturned = true;
        }
        EXPECT_FALSE(bHung.load());
        PumpAll();
    }
    static void Close() { ::PostMessageW(GetDesktopSharedData().hwndMonitor, WM_CLOSE, 0, 0); }
    /// The round ends as soon as it has begun.
    void CloseAtOnce() {
        frontEnd.fnRoundStart = [](MyMonitor_Wnd&) { Close(); };
    }
    /// Waits for the desktop to be captured; false if it is not.
    static bool WaitForSnapshots(std::size_t nWanted) {
        return WaitUntil([=] { return ReadStoredSnapshots().size() >= nWanted; });
    }
    void ExpectNothingLeftIn(DesktopThread& desktop) {
        EXPECT_EQ(nullptr, ::GetPropW(desktop.GetListView(), L"CSWND"));
        EXPECT_EQ(nullptr, ::GetPropW(desktop.GetView(), L"CSWND"));
        EXPECT_EQ(nullptr, GetDesktopSharedData().hhook);
        EXPECT_EQ(nullptr, GetDesktopSharedData().hwndMonitor);
        EXPECT_EQ(nullptr, MyMonitor_Wnd::GetCurrent());
        EXPECT_EQ(nullptr, ::FindWindowW(kMonitorClass, nullptr));
        // The thread's messages go past the agent.
        ::PostMessageW(desktop.GetListView(), GetTestCompanyMsg(), kCodeAttach, 1);
        desktop.Run([] { PumpAll(); });
        EXPECT_EQ(nullptr, ::GetPropW(desktop.GetListView(), L"CSWND"));
    }

    std::atomic<bool> bHung{false};
    FakeFrontEnd frontEnd;
};

TEST_F(DoMonitorTest, GoesThroughARoundInItsOrder) {
    DesktopThread desktop(kIcons);
    CloseAtOnce();
    Run(nullptr, 0);
    EXPECT_EQ((Calls{"monitor start", "round start, announced", "monitor close", "round end"}),
              frontEnd.calls);
    EXPECT_FALSE(GetRestartFlag());
    ExpectNothingLeftIn(desktop);
}

TEST_F(DoMonitorTest, AnnouncesNothingWhenQuiet) {
    DesktopThread desktop(kIcons);
    CloseAtOnce();
    Run(nullptr, 1);
    EXPECT_EQ((Calls{"monitor start", "round start", "monitor close", "round end"}),
              frontEnd.calls);
}

TEST_F(DoMonitorTest, HasEverythingInPlaceWhenARoundStarts) {
    DesktopThread desktop(kIcons);
    TestWindow wndParent;
    frontEnd.fnRoundStart = [&](MyMonitor_Wnd& monitor) {
        HWND hwnd = monitor;
        EXPECT_EQ(GetTestCompanyMsg(), GetDesktopSharedData().nCompanyMsg);
        EXPECT_EQ(desktop.GetListView(), GetDesktopSharedData().hwndListView);
        EXPECT_EQ(desktop.GetView(), GetDesktopSharedData().hwndView);
        EXPECT_EQ(hwnd, GetDesktopSharedData().hwndMonitor);
        EXPECT_NE(nullptr, GetDesktopSharedData().hhook);
        EXPECT_EQ(hwnd, ::FindWindowW(kMonitorClass, kMonitorClass));
        EXPECT_EQ(static_cast<HWND>(wndParent), ::GetWindow(hwnd, GW_OWNER));
        EXPECT_EQ(&monitor, MyMonitor_Wnd::GetCurrent());
        EXPECT_FALSE(GetRestartFlag());
        EXPECT_EQ(0, monitor.GetSnapshotAnnounce());
        EXPECT_FALSE(IsCapturePending(monitor));
        Close();
    };
    Run(wndParent, 0);
    EXPECT_EQ(4u, frontEnd.calls.size());
}

TEST_F(DoMonitorTest, CapturesTheDesktopFirst) {
    DesktopThread desktop(kIcons);
    bool bStored = false, bAttached = false;
    Run(nullptr, 1, [&] {
        bStored = WaitForSnapshots(1);
        bAttached =
            ::GetPropW(desktop.GetListView(), L"CSWND") && ::GetPropW(desktop.GetView(), L"CSWND");
        Close();
    });
    ASSERT_TRUE(bStored);
    EXPECT_TRUE(bAttached);
    auto stored = ReadStoredSnapshots();
    ASSERT_EQ(1u, stored.size());
    IconRecord expected[] = {RecordOf(0, L"one", {10, 20}), RecordOf(1, L"two", {30, 40})};
    ASSERT_EQ(kMd5Size + sizeof(expected), stored.begin()->second.size());
    EXPECT_EQ(0, std::memcmp(stored.begin()->second.data() + kMd5Size, expected, sizeof(expected)));
    EXPECT_TRUE(frontEnd.outcomes.empty()); // nobody asked for it
    ExpectNothingLeftIn(desktop);
}

TEST_F(DoMonitorTest, HooksTheListViewsThread) {
    DesktopThread desktop(kIcons);
    Run(nullptr, 1, [] {
        WaitForSnapshots(1);
        Close();
    });
    auto posted = desktop.SpyListView().GetCode(kCodeAttach);
    ASSERT_EQ(1u, posted.size()); // the detach did not come through
    EXPECT_EQ(1, posted[0].lParam);
    auto texts = desktop.SpyListView().Get(LVM_GETITEMW);
    ASSERT_EQ(2u, texts.size());
    EXPECT_EQ(desktop.GetThreadId(), texts[0].dwThread);
    EXPECT_EQ(1u, desktop.SpyView().GetCode(kCodeAttach).size());
}

TEST_F(DoMonitorTest, EndsTheRoundBeforeItTakesTheAgentOut) {
    DesktopThread desktop(kIcons);
    CloseAtOnce();
    int bHookAtEnd = -1, bAttachedAtEnd = -1, bWindowAtEnd = -1, bWindowAtClose = -1;
    frontEnd.fnMonitorClose = [&] {
        bWindowAtClose = ::IsWindow(GetDesktopSharedData().hwndMonitor);
    };
    frontEnd.fnRoundEnd = [&] {
        bHookAtEnd = GetDesktopSharedData().hhook != nullptr;
        WaitUntil([&] { return ::GetPropW(desktop.GetListView(), L"CSWND") != nullptr; });
        bAttachedAtEnd = ::GetPropW(desktop.GetListView(), L"CSWND") != nullptr;
        bWindowAtEnd = ::IsWindow(GetDesktopSharedData().hwndMonitor);
    };
    Run(nullptr, 1);
    EXPECT_EQ(1, bWindowAtClose);
    EXPECT_EQ(1, bHookAtEnd);
    EXPECT_EQ(1, bAttachedAtEnd);
    EXPECT_EQ(0, bWindowAtEnd);
    ExpectNothingLeftIn(desktop);
}

TEST_F(DoMonitorTest, DetachesTheListViewBeforeTheView) {
    DesktopThread desktop(kIcons);
    // Without an agent that takes them, the windows see the codes themselves.
    frontEnd.fnRoundStart = [&](MyMonitor_Wnd&) {
        WaitUntil([&] { return ::GetPropW(desktop.GetListView(), L"CSWND") != nullptr; });
        desktop.Run([] {
            AgentListView().DetachFrom();
            AgentView().DetachFrom();
        });
        desktop.SpyListView().Clear();
        desktop.SpyView().Clear();
        Close();
    };
    Run(nullptr, 1);
    auto toListView = desktop.SpyListView().GetCode(kCodeAttach);
    auto toView = desktop.SpyView().GetCode(kCodeAttach);
    ASSERT_EQ(1u, toListView.size());
    ASSERT_EQ(1u, toView.size());
    EXPECT_EQ(0, toListView[0].lParam);
    EXPECT_EQ(0, toView[0].lParam);
    EXPECT_LT(toListView[0].nOrder, toView[0].nOrder);
}

TEST_F(DoMonitorTest, RestoresWhileItRuns) {
    DesktopThread desktop(kIcons);
    POINT pt{};
    Run(nullptr, 1, [&] {
        WaitForSnapshots(1);
        IconRecord record = RecordOf(0, L"two", {77, 78});
        COPYDATASTRUCT data{1, 24, &record};
        ::SendMessageW(desktop.GetListView(), WM_COPYDATA, 0, reinterpret_cast<LPARAM>(&data));
        desktop.Run([&] { pt = PosOfIcon(desktop.GetListView(), 1); });
        Close();
    });
    EXPECT_EQ(77, pt.x);
    EXPECT_EQ(78, pt.y);
}

TEST_F(DoMonitorTest, HearsOfADragThroughTheAgent) {
    DesktopThread desktop(kIcons);
    bool bPending = false;
    Run(nullptr, 1, [&] {
        WaitForSnapshots(1);
        NMLISTVIEW notify{};
        notify.hdr.hwndFrom = desktop.GetListView();
        notify.hdr.code = static_cast<UINT>(LVN_BEGINDRAG);
        desktop.Run([&] {
            ::SendMessageW(desktop.GetView(), WM_NOTIFY, 0, reinterpret_cast<LPARAM>(&notify));
        });
        ::PostMessageW(desktop.GetListView(), WM_MOUSEMOVE, 0, 0);
        bPending = WaitUntil([] { return IsCapturePending(GetDesktopSharedData().hwndMonitor); });
        Close();
    });
    EXPECT_TRUE(bPending);
}

TEST_F(DoMonitorTest, ClosesOnTheProductsCloseCode) {
    DesktopThread desktop(kIcons);
    Run(nullptr, 1, [] {
        WaitForSnapshots(1);
        ::PostMessageW(GetDesktopSharedData().hwndMonitor, GetTestCompanyMsg(), 1, 16738);
    });
    EXPECT_EQ((Calls{"monitor start", "round start", "monitor close", "round end"}),
              frontEnd.calls);
}

// Rounds

TEST_F(DoMonitorTest, GoesRoundAgainWhenAShellHasStarted) {
    DesktopThread desktop(kIcons);
    int nRounds = 0;
    frontEnd.fnRoundStart = [&](MyMonitor_Wnd& monitor) {
        UINT uMsg = ++nRounds < 3 ? GetTestTaskbarCreated() : static_cast<UINT>(WM_CLOSE);
        ::PostMessageW(monitor, uMsg, 0, 0);
    };
    Run(nullptr, 0);
    EXPECT_EQ((Calls{"monitor start", "round start, announced", "monitor close", "round end",
                     "round start, announced", "monitor close", "round end",
                     "round start, announced", "monitor close", "round end"}),
              frontEnd.calls);
    ExpectNothingLeftIn(desktop);
}

TEST_F(DoMonitorTest, StaysQuietInLaterRounds) {
    DesktopThread desktop(kIcons);
    int nRounds = 0;
    frontEnd.fnRoundStart = [&](MyMonitor_Wnd& monitor) {
        UINT uMsg = ++nRounds < 2 ? GetTestTaskbarCreated() : static_cast<UINT>(WM_CLOSE);
        ::PostMessageW(monitor, uMsg, 0, 0);
    };
    Run(nullptr, 1);
    EXPECT_EQ((Calls{"monitor start", "round start", "monitor close", "round end", "round start",
                     "monitor close", "round end"}),
              frontEnd.calls);
}

TEST_F(DoMonitorTest, TakesUpTheNextShell) {
    auto first = std::make_unique<DesktopThread>(kIcons);
    std::unique_ptr<DesktopThread> second;
    bool bFirst = false, bSecond = false, bAttached = false;
    Run(nullptr, 1, [&] {
        bFirst = WaitForSnapshots(1);
        first->End();
        second = std::make_unique<DesktopThread>(std::vector<TestIcon>{{L"three", {50, 60}}});
        ::PostMessageW(GetDesktopSharedData().hwndMonitor, GetTestTaskbarCreated(), 0, 0);
        bSecond = WaitForSnapshots(2);
        bAttached = ::GetPropW(second->GetListView(), L"CSWND") != nullptr;
        Close();
    });
    EXPECT_TRUE(bFirst);
    EXPECT_TRUE(bSecond);
    EXPECT_TRUE(bAttached);
    IconRecord expected = RecordOf(0, L"three", {50, 60});
    auto stored = ReadStoredSnapshots();
    ASSERT_EQ(2u, stored.size());
    ASSERT_EQ(40u, stored.rbegin()->second.size());
    EXPECT_EQ(0, std::memcmp(stored.rbegin()->second.data() + kMd5Size, &expected, 24));
    ExpectNothingLeftIn(*second);
}

TEST_F(DoMonitorTest, DoesNothingWhenNoRoundIsWanted) {
    DesktopThread desktop(kIcons);
    SetRestartFlag(false);
    GetDesktopSharedData().hwndMonitor = desktop.GetView();
    Run(nullptr, 0);
    EXPECT_EQ(Calls{"monitor start"}, frontEnd.calls); // the day counter comes before
    EXPECT_EQ(nullptr, GetDesktopSharedData().hwndMonitor);
    EXPECT_EQ(GetTestCompanyMsg(), GetDesktopSharedData().nCompanyMsg);
}

TEST_F(DoMonitorTest, EndsSilentlyWhenItsWindowCannotBeCreated) {
    DesktopThread desktop(kIcons);
    Run(reinterpret_cast<HWND>(0xDEAD), 0);
    EXPECT_EQ(Calls{"monitor start"}, frontEnd.calls);
    EXPECT_FALSE(GetRestartFlag());
    ExpectNothingLeftIn(desktop);
    EXPECT_TRUE(ReadStoredSnapshots().empty());
}

// A desktop that can't be found

void ExpectDesktopMessage(const std::vector<SeenMessageBox>& boxes) {
    ASSERT_EQ(1u, boxes.size());
    const SeenMessageBox& box = boxes[0];
    EXPECT_EQ(L"Cannot obtain the desktop properties. Please report this error to technical "
              L"support. ",
              box.strText);
    EXPECT_EQ(::LoadIconW(nullptr, reinterpret_cast<LPCWSTR>(IDI_ERROR)), box.hicon);
    EXPECT_EQ(1u, box.buttons.size());
}

TEST_F(DoMonitorTest, TellsThatTheDesktopCannotBeFound) {
    MessageBoxDriver box({IDOK});
    Run(nullptr, 1);
    ExpectDesktopMessage(box.Finish());
    EXPECT_EQ(Calls{"monitor start"}, frontEnd.calls);
    EXPECT_EQ(nullptr, GetDesktopSharedData().hhook);
}

TEST_F(DoMonitorTest, TellsItOnTopOfTheGivenParent) {
    TestWindow wndParent;
    MessageBoxDriver box({IDOK});
    Run(wndParent, 0);
    ExpectDesktopMessage(box.Finish());
    EXPECT_EQ(wndParent.Get(), box.Finish().at(0).hwndOwner);
}

TEST_F(DoMonitorTest, TellsItWhenTheNextShellHasNoDesktopYet) {
    auto desktop = std::make_unique<DesktopThread>(kIcons);
    MessageBoxDriver box({IDOK});
    Run(nullptr, 1, [&] {
        WaitForSnapshots(1);
        desktop->End();
        ::PostMessageW(GetDesktopSharedData().hwndMonitor, GetTestTaskbarCreated(), 0, 0);
    });
    ExpectDesktopMessage(box.Finish());
    EXPECT_EQ((Calls{"monitor start", "round start", "monitor close", "round end"}),
              frontEnd.calls);
    EXPECT_EQ(nullptr, GetDesktopSharedData().hhook);
    EXPECT_EQ(nullptr, MyMonitor_Wnd::GetCurrent());
}

// What a monitor before has left behind

class DoMonitorStale : public DoMonitorTest {
  protected:
    void ExpectWorks() {
        DesktopThread desktop(kIcons);
        bool bStored = false;
        Run(nullptr, 1, [&] {
            bStored = WaitForSnapshots(1);
            Close();
        });
        EXPECT_TRUE(bStored);
        ExpectNothingLeftIn(desktop);
    }
};

TEST_F(DoMonitorStale, HookOfNoMonitorIsNotTakenForItsOwn) {
    GetDesktopSharedData().hhook = kBogusHook;
    ExpectWorks();
}

TEST_F(DoMonitorStale, HookOfADeadMonitorIsNotTakenForItsOwn) {
    TestWindow wndGone;
    GetDesktopSharedData().hwndMonitor = wndGone;
    GetDesktopSharedData().hhook = kBogusHook;
    wndGone.Destroy();
    ExpectWorks();
}

TEST_F(DoMonitorStale, HookIsForgottenWhenTheHandleIsSomebodyElsesNow) {
    TestWindow wndOther;
    GetDesktopSharedData().hwndMonitor = wndOther;
    GetDesktopSharedData().hhook = kBogusHook;
    ExpectWorks();
}

TEST_F(DoMonitorStale, DesktopWordsAreReplaced) {
    TestWindow wndOther;
    GetDesktopSharedData().nCompanyMsg = 1;
    GetDesktopSharedData().hwndListView = wndOther;
    GetDesktopSharedData().hwndView = wndOther;
    ExpectWorks();
}

TEST_F(DoMonitorStale, HookOfALivingMonitorStandsUntilTheRoundEnds) {
    // The living monitor's window belongs to another thread, as if to another process.
    DesktopThread desktop(kIcons);
    FakeFrontEnd otherFrontEnd;
    std::unique_ptr<MyMonitor_Wnd> other;
    desktop.Run([&] {
        other = std::make_unique<MyMonitor_Wnd>(otherFrontEnd);
        ASSERT_TRUE(other->CreateHidden(nullptr));
    });
    GetDesktopSharedData().hwndMonitor = *other;
    GetDesktopSharedData().hhook = kBogusHook;
    HHOOK hhookSeen = nullptr;
    frontEnd.fnRoundStart = [&](MyMonitor_Wnd&) {
        hhookSeen = GetDesktopSharedData().hhook;
        Close();
    };
    Run(nullptr, 1);
    EXPECT_EQ(kBogusHook, hhookSeen);
    EXPECT_EQ(1, desktop.SpyView().CountOfCode(kCodeAttach)); // the detach alone
    EXPECT_EQ(nullptr, GetDesktopSharedData().hhook);
    desktop.Run([&] {
        other->Destroy();
        other.reset();
    });
    ::UnregisterClassW(kMonitorClass, GetLibraryInstance());
}

} // namespace
