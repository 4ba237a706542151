#include "icons/icons_test_support.h"
#include "icons/monitor/desktop_discovery.h"
#include <gtest/gtest.h>
#include <atomic>
#include <memory>

namespace {

// A desktop whose view lies above "Progman", with windows between them that come and go: where the
// walk stands on one of those, it has no window above it any more.
TEST(DesktopDiscoveryRace, WindowsThatGoDuringTheWalkDoNotEndIt) {
    TestClass classProgman(L"Progman"), classView(L"SHELLDLL_DefView"), classWorker(L"WorkerW");
    TestWindow wndProgman(L"Progman", nullptr, WS_POPUP);
    TestWindow wndWorker(L"WorkerW", nullptr, WS_POPUP);
    TestWindow wndView(L"SHELLDLL_DefView", wndWorker, WS_CHILD);
    HWND hwndListView = CreateTestListView(wndView);

    std::atomic<bool> bEnd{false};
    std::atomic<int> nMade{0};
    Driver driver([&] {
        while (!bEnd) {
            TestWindow wndBetween(L"STATIC", nullptr, WS_POPUP);
            ::SetWindowPos(wndBetween, wndWorker, 0, 0, 0, 0,
                           SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE);
            ++nMade;
        }
    });
    int nMissed = 0;
    WaitUntil([&] { return nMade > 10; });
    for (int n = 0; n < 2000; ++n) {
        HWND hwndFoundView = nullptr, hwndFoundListView = nullptr;
        if (!FindDesktopShellWnd(&hwndFoundView, &hwndFoundListView))
            ++nMissed;
        else
            EXPECT_EQ(hwndListView, hwndFoundListView);
    }
    bEnd = true;
    EXPECT_EQ(0, nMissed);
    EXPECT_GT(nMade, 20);
}

} // namespace
