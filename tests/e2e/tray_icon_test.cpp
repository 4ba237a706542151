// What the running product asks of the notification area.

#include "e2e/engine_test_support.h"
#include "e2e/support/tray_thread.h"

namespace {
DWORD ProcessOf(HWND hwnd) {
    DWORD dwProcess = 0;
    ::GetWindowThreadProcessId(hwnd, &dwProcess);
    return dwProcess;
}

class TrayIcon : public EngineTest {
  protected:
    TrayThread tray;
};

TEST_F(TrayIcon, ComesWithItsTipAndBalloonAndGoesAtTheEnd) {
    StartPlain(3);
    monitor.StartOn(*desktop, L"");
    ASSERT_TRUE(tray.WaitForCalls(2));
    auto calls = tray.Calls();
    EXPECT_EQ(static_cast<DWORD>(NIM_ADD), calls[0].dwMessage);
    EXPECT_EQ(monitor.ProcessId(), ProcessOf(calls[0].hwnd));
    EXPECT_EQ(L"Tessaly", calls[0].strTip);
    EXPECT_EQ(static_cast<UINT>(::GetSystemMetrics(SM_CXSMICON)), calls[0].cxIcon);
    EXPECT_FALSE(calls[0].iconBits.empty());
    EXPECT_EQ(L"Tessaly", calls[1].strInfoTitle);
    EXPECT_EQ(L"Monitoring the desktop icons...", calls[1].strInfo);
    EXPECT_EQ("add modify", tray.TakeNames());
    ASSERT_TRUE(monitor.Exit());
    EXPECT_EQ("delete", tray.TakeNames());
}

TEST_F(TrayIcon, IsMadeAnewForEachShellAndStaysOne) {
    StartPlain(3);
    monitor.StartOn(*desktop);
    ASSERT_TRUE(tray.WaitForCalls(1));
    EXPECT_EQ("add", tray.TakeNames()) << "quiet";
    for (int n = 0; n < 3; ++n) {
        ::PostMessageW(monitor.Window(), ::RegisterWindowMessageW(L"TaskbarCreated"), 0, 0);
        ASSERT_TRUE(tray.WaitForCalls(2));
        EXPECT_EQ("delete add", tray.TakeNames());
        ASSERT_TRUE(monitor.WaitUntilOn(*desktop));
    }
    tray.Run([](FakeTray& area) { EXPECT_EQ(1u, area.CountIcons()); });
    ASSERT_TRUE(monitor.Exit());
    tray.Run([](FakeTray& area) { EXPECT_EQ(0u, area.CountIcons()); });
}
} // namespace
