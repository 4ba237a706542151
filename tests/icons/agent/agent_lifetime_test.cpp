#include "icons/agent/agent.h"
#include "icons/agent/desktop_shared_data.h"
#include "icons/icons_test_support.h"
#include "shell/subclass/shell_subclass.h"
#include <gtest/gtest.h>

namespace {

// The agent's reference to its own library: whoever returns into a library that is gone takes the
// shell down.

constexpr UINT kMenuMsg = WM_APP + 6; // stands for a message whose handler runs a loop

class AgentLifetime : public EngineTest {
  protected:
    void SetUp() override {
        EngineTest::SetUp();
        ASSERT_EQ(ShellSubclass::kReady, ShellSubclass::ReInitialize());
        Share(view, receiver);
        ASSERT_FALSE(IsAgentHoldingLibrary());
    }
    void TearDown() override {
        GetAgentListView().DetachFrom();
        GetAgentView().DetachFrom();
        EngineTest::TearDown();
    }
    static void Hook(WPARAM wCode, LPARAM lParam) {
        MSG msg{};
        msg.message = GetTestCompanyMsg();
        msg.wParam = wCode;
        msg.lParam = lParam;
        DesktopHookProc(HC_ACTION, PM_REMOVE, reinterpret_cast<LPARAM>(&msg));
    }
    void DetachBySending() {
        ::SendMessageW(view.hwndListView, GetTestCompanyMsg(), kCodeAttach, 0);
        ::SendMessageW(view.wndView, GetTestCompanyMsg(), kCodeAttach, 0);
    }

    TestView view;
    CaptureReceiver receiver;
};

TEST_F(AgentLifetime, LibraryIsHeldWhileAWindowIsAttached) {
    Hook(kCodeAttach, 1);
    EXPECT_TRUE(IsAgentHoldingLibrary());
    ::SendMessageW(view.hwndListView, GetTestCompanyMsg(), kCodeAttach, 0);
    EXPECT_TRUE(IsAgentHoldingLibrary());
    ::SendMessageW(view.wndView, GetTestCompanyMsg(), kCodeAttach, 0);
    EXPECT_FALSE(IsAgentHoldingLibrary());
}

TEST_F(AgentLifetime, LibraryGoesAfterThePostedDetach) {
    Hook(kCodeAttach, 1);
    Hook(kCodeAttach, 0);
    EXPECT_FALSE(IsAgentHoldingLibrary());
}

TEST_F(AgentLifetime, LibraryIsNotHeldWhenNoWindowCouldBeAttached) {
    desktopSharedData.hwndListView = desktopSharedData.hwndView = nullptr;
    view.wndView.Destroy();
    Hook(kCodeAttach, 1);
    EXPECT_FALSE(IsAgentHoldingLibrary());
}

TEST_F(AgentLifetime, LibraryGoesWithTheWindows) {
    Hook(kCodeAttach, 1);
    ::DestroyWindow(view.hwndListView);
    EXPECT_TRUE(IsAgentHoldingLibrary());
    view.wndView.Destroy();
    EXPECT_FALSE(IsAgentHoldingLibrary());
}

TEST_F(AgentLifetime, LibraryStaysUnderAFrameThatWaitsForAMenu) {
    for (HWND hwnd : {view.hwndListView, static_cast<HWND>(view.wndView)}) {
        ProcSpy& spy = hwnd == view.hwndListView ? view.spyListView : view.spyView;
        int bHeldInside = 0;
        spy.handler = [&](UINT uMsg, WPARAM, LPARAM, LRESULT*) {
            if (uMsg != kMenuMsg) return 0;
            DetachBySending();
            bHeldInside = IsAgentHoldingLibrary();
            return 1;
        };
        Hook(kCodeAttach, 1);
        ::SendMessageW(hwnd, kMenuMsg, 0, 0);
        spy.handler = nullptr;
        EXPECT_TRUE(bHeldInside);
        EXPECT_FALSE(GetAgentListView().IsAttached());
        EXPECT_FALSE(GetAgentView().IsAttached());
        EXPECT_FALSE(IsAgentHoldingLibrary());
    }
}

TEST_F(AgentLifetime, LibraryStaysUnderAFrameWhenTheHookDetaches) {
    int bHeldInside = 0;
    view.spyView.handler = [&](UINT uMsg, WPARAM, LPARAM, LRESULT*) {
        if (uMsg != kMenuMsg) return 0;
        Hook(kCodeAttach, 0);
        bHeldInside = IsAgentHoldingLibrary();
        return 1;
    };
    Hook(kCodeAttach, 1);
    ::SendMessageW(view.wndView, kMenuMsg, 0, 0);
    EXPECT_TRUE(bHeldInside);
    EXPECT_FALSE(IsAgentHoldingLibrary());
}

TEST_F(AgentLifetime, LibraryStaysWhenAnotherCopyTakesTheWindowsProperty) {
    Hook(kCodeAttach, 1);
    ::RemovePropW(view.hwndListView, L"CSWND");
    ::SendMessageW(view.wndView, GetTestCompanyMsg(), kCodeAttach, 0);
    EXPECT_TRUE(GetAgentListView().IsAttached());
    EXPECT_TRUE(IsAgentHoldingLibrary()); // the list view still calls into it
    ::SendMessageW(view.hwndListView, GetTestCompanyMsg(), kCodeAttach, 0);
    EXPECT_FALSE(IsAgentHoldingLibrary());
}

TEST_F(AgentLifetime, WindowLeftForAnotherNoLongerCallsTheAgent) {
    Hook(kCodeAttach, 1);
    TestView viewNext;
    AddIcon(viewNext.hwndListView, L"one", {1, 1});
    Share(viewNext, receiver);
    Hook(kCodeAttach, 1);
    EXPECT_EQ(nullptr, ::GetPropW(view.hwndListView, L"CSWND"));
    EXPECT_NE(nullptr, ::GetPropW(viewNext.hwndListView, L"CSWND"));
    // A message of the old window would be answered by the new one.
    EXPECT_EQ(0, ::SendMessageW(view.hwndListView, LVM_GETITEMCOUNT, 0, 0));
    ::DestroyWindow(view.hwndListView);
    EXPECT_TRUE(GetAgentListView().IsAttached());
    EXPECT_TRUE(::IsWindow(viewNext.hwndListView));
    Hook(kCodeAttach, 0);
    EXPECT_FALSE(IsAgentHoldingLibrary());
}

} // namespace
