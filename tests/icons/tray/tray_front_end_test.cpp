#include "icons/agent/desktop_shared_data.h"
#include "icons/engine/monitor.h"
#include "icons/icons_test_support.h"
#include "icons/monitor/monitor_wnd.h"
#include "icons/tray/my_tb_icon.h"
#include "icons/tray/tray_front_end.h"
#include "support/fake_tray.h"

#include <gtest/gtest.h>
#include <thread>

namespace {
constexpr LPARAM kProductId = 16738;

class TrayFrontEndTest : public EngineTest {
  protected:
    void SetUp() override {
        EngineTest::SetUp();
        ASSERT_TRUE(tray.IsInFront());
        ASSERT_TRUE(monitor.CreateHidden(nullptr));
        desktopSharedData.hwndMonitor = monitor;
    }
    void TearDown() override {
        frontEnd.OnRoundEnd();
        monitor.Destroy();
        PumpAll();
        EngineTest::TearDown();
    }
    void ExpectBalloon(const wchar_t* pszText) {
        ASSERT_EQ(1u, tray.calls.size());
        const FakeTray::Call& call = tray.calls[0];
        EXPECT_EQ(static_cast<DWORD>(NIM_MODIFY), call.dwMessage);
        EXPECT_TRUE(call.uFlags & NIF_INFO);
        EXPECT_EQ(L"Tessaly", call.strInfoTitle);
        EXPECT_EQ(pszText, call.strInfo);
        EXPECT_EQ(static_cast<DWORD>(NIIF_INFO), call.dwInfoFlags);
        EXPECT_EQ(5000u, call.uTimeout);
        tray.calls.clear();
    }

    FakeTray tray;
    TrayFrontEnd frontEnd;
    MyMonitor_Wnd monitor{frontEnd};
};

TEST_F(TrayFrontEndTest, RoundBeginsWithTheIconAndItsBalloon) {
    frontEnd.OnRoundStart(monitor, 1);
    ASSERT_EQ(2u, tray.calls.size());
    EXPECT_EQ(static_cast<DWORD>(NIM_ADD), tray.calls[0].dwMessage);
    EXPECT_FALSE(tray.calls[0].uFlags & NIF_INFO);
    tray.calls.erase(tray.calls.begin());
    ExpectBalloon(L"Monitoring the desktop icons...");
}

TEST_F(TrayFrontEndTest, QuietRoundBeginsWithTheIconAlone) {
    frontEnd.OnRoundStart(monitor, 0);
    EXPECT_EQ("add", tray.TakeNames());
}

TEST_F(TrayFrontEndTest, OutcomeIsABalloon) {
    frontEnd.OnRoundStart(monitor, 0);
    tray.calls.clear();
    monitor.ReportCaptureOutcome(L"100%s done");
    EXPECT_TRUE(tray.calls.empty()) << "nobody asked";
    monitor.SetSnapshotAnnounce(1);
    monitor.ReportCaptureOutcome(L"100%s done");
    ExpectBalloon(L"100%s done");
}

TEST_F(TrayFrontEndTest, OutcomeOfAnIconThatIsNotShownIsSilent) {
    tray.Refuse(true);
    frontEnd.OnRoundStart(monitor, 1);
    tray.calls.clear();
    frontEnd.OnCaptureOutcome(L"x");
    EXPECT_TRUE(tray.calls.empty());
    tray.Refuse(false);
}

TEST_F(TrayFrontEndTest, MonitorsCloseTakesTheIconAwayBeforeTheRoundEnds) {
    frontEnd.OnRoundStart(monitor, 0);
    frontEnd.OnMonitorClose();
    EXPECT_EQ("add delete", tray.TakeNames());
    EXPECT_NE(nullptr, MyTBIcon::GetCurrent());
    frontEnd.OnRoundEnd();
    EXPECT_EQ(nullptr, MyTBIcon::GetCurrent());
    PumpAll();
    EXPECT_EQ("", tray.TakeNames());
}

TEST_F(TrayFrontEndTest, GoesOnWithoutAnIconThatClosedByItself) {
    frontEnd.OnRoundStart(monitor, 0);
    ::SendMessageW(*MyTBIcon::GetCurrent(), WM_CLOSE, 0, 0);
    tray.calls.clear();
    frontEnd.OnCaptureOutcome(L"x");
    frontEnd.OnMonitorClose();
    frontEnd.OnRoundEnd();
    EXPECT_EQ("", tray.TakeNames());
}

// The whole monitor with it

class TrayOfTheMonitor : public EngineTest {
  protected:
    void SetUp() override {
        EngineTest::SetUp();
        ASSERT_TRUE(tray.IsInFront());
    }
    /// Runs the monitor on this thread, with the driver on another. Calls of the driver's to the
    /// icon's window reach it by messages.
    void Run(int bQuiet, std::function<void()> fnDriver) {
        std::jthread driver([&] {
            bool bStands = WaitUntil([] {
                return desktopSharedData.hwndMonitor && ::FindWindowW(kTrayIconClass, nullptr);
            });
            EXPECT_TRUE(bStands);
            if (bStands) fnDriver();
            ::PostMessageW(desktopSharedData.hwndMonitor, WM_CLOSE, 0, 0);
        });
        DoMonitor(nullptr, bQuiet);
    }
    void TearDown() override {
        PumpAll();
        EXPECT_EQ(nullptr, ::FindWindowW(kTrayIconClass, nullptr));
        EXPECT_EQ(nullptr, MyTBIcon::GetCurrent());
        EXPECT_EQ(0u, tray.CountIcons());
        EngineTest::TearDown();
    }

    FakeTray tray;
    DesktopThread desktop{{{L"one", {10, 20}}}};
};

TEST_F(TrayOfTheMonitor, IsThereWithItsBalloonForTheRound) {
    Run(0, [] {});
    EXPECT_EQ("add modify delete", tray.TakeNames());
}

TEST_F(TrayOfTheMonitor, IsThereWithoutABalloonWhenQuiet) {
    Run(1, [] {});
    EXPECT_EQ("add delete", tray.TakeNames());
}

TEST_F(TrayOfTheMonitor, TellsTheOutcomeOfARequestedCapture) {
    Run(1, [] {
        EXPECT_TRUE(WaitUntil([] { return ReadStoredSnapshots().size() == 1; }));
        ::SendMessageTimeoutW(desktopSharedData.hwndMonitor, WM_NULL, 0, 0, 0, kTestDeadlineMs,
                              nullptr);
        MyMonitor_Wnd::GetCurrent()->SetSnapshotAnnounce(1);
        ::PostMessageW(desktopSharedData.hwndListView, GetTestCompanyMsg(), 372, 0);
        EXPECT_TRUE(WaitUntil([] { return !MyMonitor_Wnd::GetCurrent()->GetSnapshotAnnounce(); }));
    });
    ASSERT_EQ(3u, tray.calls.size());
    EXPECT_EQ(L"No changes to the icons have been detected.", tray.calls[1].strInfo);
    EXPECT_EQ("add modify delete", tray.TakeNames());
}

TEST_F(TrayOfTheMonitor, IsReplacedWhenTheShellRestarts) {
    HWND hwndFirst = nullptr, hwndSecond = nullptr;
    Run(0, [&] {
        hwndFirst = ::FindWindowW(kTrayIconClass, nullptr);
        HWND hwndMonitor = desktopSharedData.hwndMonitor;
        ::PostMessageW(hwndMonitor, GetTestTaskbarCreated(), 0, 0);
        EXPECT_TRUE(WaitUntil([&] {
            HWND hwnd = desktopSharedData.hwndMonitor;
            return hwnd && hwnd != hwndMonitor && !::IsWindow(hwndFirst);
        }));
        EXPECT_TRUE(WaitUntil([&] {
            hwndSecond = ::FindWindowW(kTrayIconClass, nullptr);
            return hwndSecond != nullptr;
        }));
    });
    EXPECT_NE(hwndFirst, hwndSecond);
    EXPECT_EQ("add modify delete add modify delete", tray.TakeNames());
}

TEST_F(TrayOfTheMonitor, GoesAtTheProductsCloseRequestToAll) {
    std::jthread driver([] {
        EXPECT_TRUE(WaitUntil([] { return ::FindWindowW(kTrayIconClass, nullptr) != nullptr; }));
        // The icon's window first: the monitor goes on without it.
        HWND hwndIcon = ::FindWindowW(kTrayIconClass, nullptr);
        ::PostMessageW(hwndIcon, GetTestCompanyMsg(), 1, kProductId);
        EXPECT_TRUE(WaitUntil([&] { return !::IsWindow(hwndIcon); }));
        ::PostMessageW(desktopSharedData.hwndMonitor, GetTestCompanyMsg(), 1, kProductId);
    });
    DoMonitor(nullptr, 1);
    EXPECT_EQ("add delete", tray.TakeNames());
}
} // namespace
