#include "icons/icons_test_support.h"
#include "icons/monitor/desktop_discovery.h"

#include <gtest/gtest.h>
#include <atomic>
#include <memory>
#include <thread>

namespace {

// Windows made here lie above all that are there: each new one goes on top. The platform of the
// tests may have a "Progman" of its own, below and without a view.
class DesktopDiscovery : public testing::Test {
  protected:
    HWND AddTop(const wchar_t* pszClass) { return Add(pszClass, nullptr, WS_POPUP); }
    HWND AddView(HWND hwndParent) { return Add(L"SHELLDLL_DefView", hwndParent, WS_CHILD); }
    HWND AddChild(const wchar_t* pszClass, HWND hwndParent) {
        return Add(pszClass, hwndParent, WS_CHILD);
    }
    HWND AddListView(HWND hwndParent) { return CreateTestListView(hwndParent); }

    void ExpectFound(HWND hwndView, HWND hwndListView) {
        HWND hwndViewFound = nullptr, hwndListViewFound = nullptr;
        EXPECT_EQ(1, FindDesktopShellWnd(&hwndViewFound, &hwndListViewFound));
        EXPECT_EQ(hwndView, hwndViewFound);
        EXPECT_EQ(hwndListView, hwndListViewFound);
    }
    void ExpectNotFound() {
        HWND hwndView = reinterpret_cast<HWND>(0x11), hwndListView = reinterpret_cast<HWND>(0x22);
        EXPECT_EQ(0, FindDesktopShellWnd(&hwndView, &hwndListView));
        EXPECT_EQ(reinterpret_cast<HWND>(0x11), hwndView);
        EXPECT_EQ(reinterpret_cast<HWND>(0x22), hwndListView);
    }

  private:
    HWND Add(const wchar_t* pszClass, HWND hwndParent, DWORD dwStyle) {
        windows.push_back(std::make_unique<ClassWindow>(pszClass, hwndParent, dwStyle));
        return *windows.back();
    }
    TestClass classProgman{L"Progman"}, classView{L"SHELLDLL_DefView"}, classWorker{L"WorkerW"};
    std::vector<std::unique_ptr<ClassWindow>> windows; // go before their classes
};

TEST_F(DesktopDiscovery, WithoutAViewFindsNothingAndWritesNothing) {
    ExpectNotFound();
    AddTop(L"Progman");
    AddTop(L"WorkerW");
    ExpectNotFound();
}

TEST_F(DesktopDiscovery, FindsTheViewInProgman) {
    HWND hwndView = AddView(AddTop(L"Progman"));
    HWND hwndListView = AddListView(hwndView);
    ExpectFound(hwndView, hwndListView);
}

TEST_F(DesktopDiscovery, FindsTheViewInAWindowAboveProgman) {
    AddTop(L"Progman");
    AddTop(L"WorkerW");
    HWND hwndView = AddView(AddTop(L"WorkerW"));
    HWND hwndListView = AddListView(hwndView);
    AddTop(L"WorkerW");
    ExpectFound(hwndView, hwndListView);
}

TEST_F(DesktopDiscovery, TakesTheLowestOfTwoViewsAboveProgman) {
    AddTop(L"Progman");
    HWND hwndView = AddView(AddTop(L"WorkerW"));
    HWND hwndListView = AddListView(hwndView);
    AddListView(AddView(AddTop(L"WorkerW")));
    ExpectFound(hwndView, hwndListView);
}

TEST_F(DesktopDiscovery, DoesNotLookBelowProgman) {
    AddListView(AddView(AddTop(L"WorkerW")));
    AddTop(L"Progman");
    ExpectNotFound();
}

TEST_F(DesktopDiscovery, PassesOverAViewWithoutAListView) {
    AddView(AddTop(L"Progman"));
    HWND hwndView = AddView(AddTop(L"WorkerW"));
    HWND hwndListView = AddListView(hwndView);
    ExpectFound(hwndView, hwndListView);
}

TEST_F(DesktopDiscovery, OfAViewWithoutAListViewWritesNothing) {
    AddView(AddTop(L"Progman"));
    ExpectNotFound();
}

TEST_F(DesktopDiscovery, WantsTheListViewRightInTheView) {
    HWND hwndProgman = AddTop(L"Progman");
    AddView(hwndProgman);
    AddListView(hwndProgman);
    ExpectNotFound();
}

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

// A desktop whose view lies above "Progman", with windows between them that come and go: where the
// walk stands on one of those, it has no window above it any more.
TEST(DesktopDiscoveryRace, WindowsThatGoDuringTheWalkDoNotEndIt) {
    TestClass classProgman(L"Progman"), classView(L"SHELLDLL_DefView"), classWorker(L"WorkerW");
    ClassWindow wndProgman(L"Progman", nullptr, WS_POPUP);
    ClassWindow wndWorker(L"WorkerW", nullptr, WS_POPUP);
    ClassWindow wndView(L"SHELLDLL_DefView", wndWorker, WS_CHILD);
    HWND hwndListView = CreateTestListView(wndView);

    std::atomic<bool> bEnd{false};
    std::atomic<int> nMade{0};
    std::jthread driver([&] {
        while (!bEnd) {
            TestWindow wndBetween;
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

// The trees of the real shells, window by window.

TEST_F(DesktopDiscovery, FindsTheViewOfTheFirstSystems) { // Windows XP; 7 and later at their start
    HWND hwndProgman = AddTop(L"Progman");
    HWND hwndView = AddView(hwndProgman);
    HWND hwndListView = AddListView(hwndView);
    AddTop(L"STATIC"); // a program's window
    ExpectFound(hwndView, hwndListView);
}

// Windows 7 to 11 23H2, once something has asked Progman to part from the icons, as a slide show
// of wallpapers does: one WorkerW has the view, the other, below it, the wallpaper.
TEST_F(DesktopDiscovery, FindsTheViewThatHasLeftProgmanForAWorkerW) {
    AddTop(L"Progman");
    AddTop(L"WorkerW");
    HWND hwndView = AddView(AddTop(L"WorkerW"));
    HWND hwndListView = AddListView(hwndView);
    AddTop(L"STATIC");
    AddTop(L"WorkerW"); // hidden ones of other threads lie anywhere
    ExpectFound(hwndView, hwndListView);
}

// Windows 11 24H2: Progman has both, the view and the WorkerW of the wallpaper, in either order.
TEST_F(DesktopDiscovery, FindsTheViewBesideAWorkerWInProgman) {
    HWND hwndProgman = AddTop(L"Progman");
    AddChild(L"WorkerW", hwndProgman);
    HWND hwndView = AddView(hwndProgman);
    AddChild(L"WorkerW", hwndProgman);
    HWND hwndListView = AddListView(hwndView);
    AddTop(L"WorkerW");
    ExpectFound(hwndView, hwndListView);
}

TEST_F(DesktopDiscovery, DoesNotLookIntoAWorkerWInProgman) {
    HWND hwndWorker = AddChild(L"WorkerW", AddTop(L"Progman"));
    AddListView(AddView(hwndWorker));
    ExpectNotFound();
}

} // namespace
