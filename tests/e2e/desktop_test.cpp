// The test desktop itself: the rest of the end-to-end tests stands on it.

#include "e2e/support/mouse.h"
#include "e2e/support/test_desktop.h"
#include "support/wait_until.h"

#include <gtest/gtest.h>
#include <commctrl.h>
#include <functional>

namespace {
std::wstring ClassOf(HWND hwnd) {
    wchar_t sz[64] = L"";
    ::GetClassNameW(hwnd, sz, 64);
    return sz;
}

bool IsAbove(HWND hwndUpper, HWND hwndLower) {
    for (HWND hwnd = hwndLower; (hwnd = ::GetWindow(hwnd, GW_HWNDPREV));) {
        if (hwnd == hwndUpper) return true;
    }
    return false;
}

/// Drags the item by (dx, dy) and waits until it lies there.
testing::AssertionResult DragsTo(TestDesktop& desktop, int nItem, int dx, int dy,
                                 mouse::Button button) {
    POINT ptBefore = desktop.Items().at(nItem).pt, ptHold = desktop.OnScreen(nItem), ptNow{};
    mouse::Drag(ptHold, {ptHold.x + dx, ptHold.y + dy}, button);
    bool bThere = WaitUntil([&] {
        ptNow = desktop.Items().at(nItem).pt;
        return ptNow.x == ptBefore.x + dx && ptNow.y == ptBefore.y + dy;
    });
    if (bThere) return testing::AssertionSuccess();
    return testing::AssertionFailure() << "from " << ptBefore.x << "," << ptBefore.y
                                       << " it came to " << ptNow.x << "," << ptNow.y;
}

TEST(RealDesktop, HasTheShellsWindowsBelowTheUpperProgman) {
    TestDesktop desktop(DesktopMode::Real);
    EXPECT_EQ(desktop.Progman(), ::FindWindowW(L"Progman", nullptr));
    EXPECT_EQ(desktop.Progman(), ::GetParent(desktop.View()));
    EXPECT_EQ(desktop.View(), ::GetParent(desktop.List()));
    EXPECT_EQ(L"SHELLDLL_DefView", ClassOf(desktop.View()));
    EXPECT_EQ(L"SysListView32", ClassOf(desktop.List()));
}

TEST(RealDesktop, ShowsFilesThatItCreatesRenamesAndDeletes) {
    TestDesktop desktop(DesktopMode::Real);
    int nBefore = desktop.Count();
    desktop.CreateDesktopFile(L"first of the tests.txt");
    EXPECT_EQ(nBefore + 1, desktop.Count());
    desktop.RenameDesktopFile(L"first of the tests.txt", L"second of the tests.txt");
    EXPECT_NO_THROW(desktop.ItemNamed(L"second of the tests.txt"));
    EXPECT_THROW(desktop.ItemNamed(L"first of the tests.txt"), std::runtime_error);
    desktop.DeleteDesktopFile(L"second of the tests.txt");
    EXPECT_EQ(nBefore, desktop.Count());
}

TEST(RealDesktop, KeepsFilesOverARestart) {
    TestDesktop desktop(DesktopMode::Real);
    desktop.CreateDesktopFile(L"kept.txt");
    EXPECT_EQ(0u, desktop.End());
    desktop.Start();
    EXPECT_NO_THROW(desktop.ItemNamed(L"kept.txt"));
    desktop.DeleteDesktopFile(L"kept.txt");
}

TEST(RealDesktop, IconFollowsTheLeftButton) {
    TestDesktop desktop(DesktopMode::Real);
    EXPECT_TRUE(DragsTo(desktop, 0, 300, 200, mouse::Button::Left));
}

TEST(RealDesktop, IconFollowsTheRightButton) {
    TestDesktop desktop(DesktopMode::Real);
    EXPECT_TRUE(DragsTo(desktop, 0, 300, 200, mouse::Button::Right));
}

TEST(RealDesktop, ClickDoesNotLeaveItAboveOtherWindows) {
    TestDesktop desktop(DesktopMode::Real);
    HWND hwndOther = ::CreateWindowExW(0, L"STATIC", L"", WS_POPUP | WS_VISIBLE, 0, 0, 50, 50,
                                       nullptr, nullptr, nullptr, nullptr);
    EXPECT_TRUE(IsAbove(hwndOther, desktop.Progman()));
    mouse::Click({700, 500});
    EXPECT_TRUE(WaitUntil([&] { return ::GetForegroundWindow() == desktop.Progman(); }));
    auto staysAbove = [&] {
        return HoldsFor([&] { return IsAbove(hwndOther, desktop.Progman()); }, 200);
    };
    EXPECT_TRUE(WaitUntil(staysAbove));
    ::DestroyWindow(hwndOther);
}

TEST(RealDesktop, KeepsItsOwnItems) {
    TestDesktop desktop(DesktopMode::Real);
    EXPECT_THROW(desktop.Add(L"not a file"), std::runtime_error);
    EXPECT_THROW(desktop.Clear(), std::runtime_error);
}

TEST(PlainDesktop, IconFollowsTheLeftButton) {
    TestDesktop desktop(DesktopMode::Plain);
    desktop.Fill(5);
    EXPECT_TRUE(DragsTo(desktop, 2, 310, 220, mouse::Button::Left));
}

TEST(PlainDesktop, IconFollowsTheRightButton) {
    TestDesktop desktop(DesktopMode::Plain);
    desktop.Fill(5);
    EXPECT_TRUE(DragsTo(desktop, 2, 310, 220, mouse::Button::Right));
}

class PlainDesktopOfCount : public testing::TestWithParam<int> {};
TEST_P(PlainDesktopOfCount, HasThatManyItemsInDifferentPlaces) {
    TestDesktop desktop(DesktopMode::Plain);
    desktop.Fill(GetParam());
    std::vector<DesktopItem> items = desktop.Items();
    ASSERT_EQ(static_cast<size_t>(GetParam()), items.size());
    for (size_t n = 1; n < items.size(); ++n) {
        EXPECT_FALSE(items[n].pt.x == items[n - 1].pt.x && items[n].pt.y == items[n - 1].pt.y);
    }
}
INSTANTIATE_TEST_SUITE_P(Counts, PlainDesktopOfCount, testing::Values(0, 1, 999, 1000));

TEST(PlainDesktop, KeepsNamesOfAnyLength) {
    TestDesktop desktop(DesktopMode::Plain);
    std::vector<std::wstring> names{L"",
                                    L"x",
                                    std::wstring(259, L'a'),
                                    std::wstring(260, L'b'),
                                    std::wstring(400, L'c'),
                                    L"\xD83D\xDE00 two\ttabs\\",
                                    L"same",
                                    L"same"};
    for (const std::wstring& strName : names) desktop.Add(strName);
    std::vector<DesktopItem> items = desktop.Items();
    ASSERT_EQ(names.size(), items.size());
    for (size_t n = 0; n < names.size(); ++n) EXPECT_EQ(names[n], items[n].strName) << n;
}

TEST(PlainDesktop, AddsMovesRenamesAndRemoves) {
    TestDesktop desktop(DesktopMode::Plain);
    desktop.Add(L"one", {100, 200});
    desktop.Add(L"two");
    desktop.Move(1, {-5, 3000});
    desktop.Rename(0, L"uno");
    std::vector<DesktopItem> items = desktop.Items();
    ASSERT_EQ(2u, items.size());
    EXPECT_EQ(L"uno", items[0].strName);
    EXPECT_EQ(100, items[0].pt.x);
    EXPECT_EQ(200, items[0].pt.y);
    EXPECT_EQ(-5, items[1].pt.x);
    EXPECT_EQ(3000, items[1].pt.y);
    desktop.MoveNamed(L"two", {7, 8});
    EXPECT_EQ(7, desktop.ItemNamed(L"two").pt.x);
    desktop.Remove(0);
    EXPECT_EQ(1, desktop.Count());
    desktop.Clear();
    EXPECT_EQ(0, desktop.Count());
}

TEST(PlainDesktop, ReordersItemsWithoutMovingThem) {
    TestDesktop desktop(DesktopMode::Plain);
    desktop.Add(L"a", {10, 20});
    desktop.Add(L"b", {30, 40});
    desktop.Add(L"c", {50, 60});
    desktop.Reorder({2, 0, 1});
    std::vector<DesktopItem> items = desktop.Items();
    EXPECT_EQ(L"c", items[0].strName);
    EXPECT_EQ(50, items[0].pt.x);
    EXPECT_EQ(L"a", items[1].strName);
    EXPECT_EQ(10, items[1].pt.x);
    EXPECT_EQ(L"b", items[2].strName);
    EXPECT_EQ(40, items[2].pt.y);
    EXPECT_THROW(desktop.Reorder({0, 1}), std::runtime_error);
    EXPECT_THROW(desktop.Reorder({0, 0, 1}), std::runtime_error);
}

TEST(PlainDesktop, RefusesWhatCannotBeDone) {
    TestDesktop desktop(DesktopMode::Plain);
    EXPECT_THROW(desktop.Move(0, {1, 1}), std::runtime_error);
    EXPECT_THROW(desktop.ItemNamed(L"nobody"), std::runtime_error);
    EXPECT_THROW(desktop.Call({L"no such command"}), std::runtime_error);
    EXPECT_THROW(desktop.Call({L"move", L"zero"}), std::runtime_error);
}

std::string ModeName(const testing::TestParamInfo<DesktopMode>& row) {
    constexpr const char* kNames[] = {"Real", "Plain", "WorkerW", "WorkerWInside"};
    return kNames[static_cast<int>(row.param)];
}

class EveryDesktop : public testing::TestWithParam<DesktopMode> {};

TEST_P(EveryDesktop, TurnsAutoArrangeOnAndOff) {
    TestDesktop desktop(GetParam());
    EXPECT_FALSE(desktop.IsAutoArranged());
    desktop.SetAutoArrange(true);
    EXPECT_TRUE(::GetWindowLongPtrW(desktop.List(), GWL_STYLE) & LVS_AUTOARRANGE);
    EXPECT_TRUE(desktop.IsAutoArranged());
    desktop.SetAutoArrange(false);
    EXPECT_FALSE(desktop.IsAutoArranged());
}

TEST_P(EveryDesktop, HasNoGuestByItself) {
    TestDesktop desktop(GetParam());
    EXPECT_FALSE(desktop.HasGuest());
    EXPECT_FALSE(desktop.IsFullyAttached());
    EXPECT_FALSE(desktop.HasLibrary());
}

TEST_P(EveryDesktop, NoticesAPropertyLeftBehind) {
    TestDesktop desktop(GetParam());
    ::SetPropW(desktop.List(), L"CSWND", reinterpret_cast<HANDLE>(1));
    EXPECT_TRUE(desktop.HasGuest());
    ::RemovePropW(desktop.List(), L"CSWND");
    EXPECT_FALSE(desktop.HasGuest());
}

TEST_P(EveryDesktop, TakesMadeUpNotifications) {
    TestDesktop desktop(GetParam());
    for (UINT nCode : {LVN_SETDISPINFOW, LVN_BEGINDRAG, LVN_BEGINRDRAG}) {
        desktop.Notify(nCode);
        desktop.Notify(nCode, true);
    }
    EXPECT_TRUE(desktop.IsRunning());
}

TEST_P(EveryDesktop, EndsAndStartsAgain) {
    TestDesktop desktop(GetParam());
    HWND hwndFirst = desktop.List();
    EXPECT_EQ(0u, desktop.End());
    EXPECT_FALSE(::IsWindow(hwndFirst));
    desktop.Start();
    desktop.Crash();
    EXPECT_FALSE(desktop.IsRunning());
    desktop.Start();
    desktop.Kill();
    EXPECT_FALSE(desktop.IsRunning());
    EXPECT_FALSE(::IsWindow(desktop.Progman()));
}

TEST_P(EveryDesktop, HangsForTheTimeAsked) {
    TestDesktop desktop(GetParam());
    desktop.Hang(1000);
    EXPECT_THROW(desktop.Call({L"count"}, 200), std::runtime_error);
    EXPECT_NO_THROW(desktop.Call({L"count"}));
}

INSTANTIATE_TEST_SUITE_P(Modes, EveryDesktop,
                         testing::Values(DesktopMode::Real, DesktopMode::Plain,
                                         DesktopMode::WorkerW, DesktopMode::WorkerWInside),
                         ModeName);

TEST(WorkerWDesktop, HasTheViewAboveAnEmptyProgman) {
    TestDesktop desktop(DesktopMode::WorkerW);
    HWND hwndHost = ::GetParent(desktop.View());
    EXPECT_EQ(L"WorkerW", ClassOf(hwndHost));
    EXPECT_EQ(desktop.Progman(), ::FindWindowW(L"Progman", nullptr));
    EXPECT_EQ(nullptr, ::FindWindowExW(desktop.Progman(), nullptr, L"SHELLDLL_DefView", nullptr));
    EXPECT_TRUE(WaitUntil([&] { return IsAbove(hwndHost, desktop.Progman()); }));
}

TEST(WorkerWInsideDesktop, HasTheViewInProgmanBeforeAWorkerW) {
    TestDesktop desktop(DesktopMode::WorkerWInside);
    EXPECT_EQ(desktop.Progman(), ::GetParent(desktop.View()));
    EXPECT_EQ(desktop.View(), ::GetParent(desktop.List()));
    HWND hwndWorker = ::FindWindowExW(desktop.Progman(), nullptr, L"WorkerW", nullptr);
    ASSERT_NE(nullptr, hwndWorker);
    EXPECT_EQ(nullptr, ::FindWindowExW(hwndWorker, nullptr, nullptr, nullptr));
    EXPECT_TRUE(WaitUntil([&] { return IsAbove(desktop.View(), hwndWorker); }));
}

/// A window that counts the message.
class Listener {
  public:
    explicit Listener(UINT uMsg) : uCounted(uMsg) {
        hwnd = ::CreateWindowExW(0, L"STATIC", L"", WS_POPUP, 0, 0, 1, 1, nullptr, nullptr, nullptr,
                                 nullptr);
        ::SetWindowLongPtrW(hwnd, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
        ::SetWindowLongPtrW(hwnd, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(Proc));
    }
    ~Listener() { ::DestroyWindow(hwnd); }
    Listener(const Listener&) = delete;
    Listener& operator=(const Listener&) = delete;
    int Count() {
        MSG msg;
        while (::PeekMessageW(&msg, nullptr, 0, 0, PM_REMOVE)) ::DispatchMessageW(&msg);
        return nCount;
    }

  private:
    static LRESULT CALLBACK Proc(HWND hwnd, UINT uMsg, WPARAM wParam, LPARAM lParam) {
        auto* pThis = reinterpret_cast<Listener*>(::GetWindowLongPtrW(hwnd, GWLP_USERDATA));
        if (pThis && uMsg == pThis->uCounted) ++pThis->nCount;
        return ::DefWindowProcW(hwnd, uMsg, wParam, lParam);
    }
    HWND hwnd;
    UINT uCounted;
    int nCount = 0;
};

TEST(PlainDesktop, AnnouncesItsStartUnlessToldNotTo) {
    Listener listener(::RegisterWindowMessageW(L"TaskbarCreated"));
    TestDesktop desktop(DesktopMode::Plain, Announce::Yes);
    EXPECT_TRUE(WaitUntil([&] { return listener.Count() == 1; }));
    desktop.End();
    desktop.Start(Announce::No);
    EXPECT_TRUE(HoldsFor([&] { return listener.Count() == 1; }, 300));
}
} // namespace
