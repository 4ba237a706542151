#include "icons/icons_test_support.h"
#include "icons/monitor/desktop_discovery.h"
#include <gtest/gtest.h>

TEST(DesktopDiscoveryArguments, MissingPlaceForAResultFindsNothing) {
    DesktopThread desktop({});
    HWND hwndView = nullptr, hwndListView = nullptr;
    ASSERT_EQ(1, FindDesktopShellWnd(&hwndView, &hwndListView));
    hwndView = hwndListView = nullptr;
    EXPECT_EQ(0, FindDesktopShellWnd(nullptr, &hwndListView));
    EXPECT_EQ(0, FindDesktopShellWnd(&hwndView, nullptr));
    EXPECT_EQ(nullptr, hwndView);
    EXPECT_EQ(nullptr, hwndListView);
}
