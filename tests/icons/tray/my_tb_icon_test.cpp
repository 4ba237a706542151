#include "icons/icons_test_support.h"
#include "icons/tray/my_tb_icon.h"
#include "resources/resource_ids.h"
#include "runtime/base/current_product.h"
#include "support/fake_tray.h"
#include <gtest/gtest.h>

namespace {
constexpr UINT kCallbackMsg = WM_USER + 1;
constexpr WPARAM kCodeClose = 1;
constexpr LPARAM kProductId = 16738;

HWND TrayIconWindow() { return ::FindWindowW(kTrayIconClass, nullptr); }
int IsClassThere() {
    WNDCLASSEXW wc{};
    wc.cbSize = sizeof(wc);
    return ::GetClassInfoExW(GetLibraryInstance(), kTrayIconClass, &wc);
}

class MyTBIconTest : public EngineTest {
  protected:
    void SetUp() override {
        EngineTest::SetUp();
        ASSERT_TRUE(tray.IsInFront());
    }
    void TearDown() override {
        MyTBIcon::EndRound();
        PumpAll();
        EXPECT_EQ(nullptr, TrayIconWindow());
        EngineTest::TearDown();
    }
    /// How often the menu was asked for since the last time.
    int TakeRequests() {
        PumpAll();
        int n = 0;
        for (const SeenMessage& message : spy.GetCode(371)) n += message.lParam == 1;
        EXPECT_EQ(n, spy.CountOf(GetTestCompanyMsg())) << "nothing else is asked";
        spy.Clear();
        return n;
    }

    FakeTray tray;
    TestWindow wndMonitor;
    ProcSpy spy{wndMonitor};
};

TEST_F(MyTBIconTest, IsShownWithTheProductsIconAndName) {
    MyTBIcon* pIcon = MyTBIcon::StartRound(wndMonitor);
    ASSERT_EQ(1u, tray.calls.size());
    const FakeTray::Call& call = tray.calls[0];
    EXPECT_EQ(static_cast<DWORD>(NIM_ADD), call.dwMessage);
    EXPECT_EQ(TrayIconWindow(), call.hwnd);
    EXPECT_EQ(static_cast<HWND>(*pIcon), call.hwnd);
    EXPECT_EQ(1u, call.uId);
    EXPECT_EQ(static_cast<UINT>(NIF_MESSAGE | NIF_ICON | NIF_TIP), call.uFlags);
    EXPECT_EQ(kCallbackMsg, call.uCallbackMsg);
    EXPECT_EQ(L"Tessaly", call.strTip);
    EXPECT_EQ(static_cast<UINT>(::GetSystemMetrics(SM_CXSMICON)), call.cxIcon);
    EXPECT_EQ(static_cast<UINT>(::GetSystemMetrics(SM_CYSMICON)), call.cyIcon);
    EXPECT_EQ(1, pIcon->IsIconShown());
    EXPECT_EQ(pIcon, MyTBIcon::GetCurrent());
    EXPECT_EQ(1, pIcon->autoDelete);
}

TEST_F(MyTBIconTest, ShowsTheLibrarysIcon101) {
    MyTBIcon::StartRound(wndMonitor);
    std::vector<BYTE> bits = tray.calls.at(0).iconBits;
    tray.calls.clear();
    struct Plain : TBIcon {
        using TBIcon::SetIcon;
    } plain;
    plain.SetIcon(-101, 0, 0);
    plain.ShowIcon(1);
    EXPECT_EQ(tray.calls.at(0).iconBits, bits);
    EXPECT_FALSE(bits.empty());
    plain.ShowIcon(0);
}

TEST_F(MyTBIconTest, RegistersItsClassForItsLife) {
    {
        MyTBIcon icon;
        WNDCLASSEXW wc{};
        wc.cbSize = sizeof(wc);
        ASSERT_TRUE(::GetClassInfoExW(GetLibraryInstance(), L"TessalyTBIcon", &wc));
        EXPECT_EQ(0u, wc.style);
        EXPECT_EQ(&CSWnd::WndProc, wc.lpfnWndProc);
        EXPECT_EQ(0, wc.cbClsExtra);
        EXPECT_EQ(0, wc.cbWndExtra);
        EXPECT_EQ(nullptr, wc.hIcon);
        EXPECT_EQ(nullptr, wc.hCursor);
        EXPECT_EQ(nullptr, wc.hbrBackground);
        EXPECT_EQ(nullptr, wc.lpszMenuName);
    }
    EXPECT_FALSE(IsClassThere());
    EXPECT_EQ(nullptr, MyTBIcon::GetCurrent());
}

struct ClickCase {
    const char* pszName;
    LPARAM lEvent;
    int nRequests;
};
class MyTBIconClicks : public MyTBIconTest, public testing::WithParamInterface<ClickCase> {};
TEST_P(MyTBIconClicks, AskTheMonitorForItsMenu) {
    MyTBIcon* pIcon = MyTBIcon::StartRound(wndMonitor);
    ::PostMessageW(*pIcon, kCallbackMsg, 1, GetParam().lEvent);
    EXPECT_EQ(GetParam().nRequests, TakeRequests());
}
INSTANTIATE_TEST_SUITE_P(Cases, MyTBIconClicks,
                         testing::Values(ClickCase{"LeftUp", WM_LBUTTONUP, 1},
                                         ClickCase{"RightUp", WM_RBUTTONUP, 1},
                                         ClickCase{"Double", WM_LBUTTONDBLCLK, 1},
                                         ClickCase{"LeftDown", WM_LBUTTONDOWN, 0},
                                         ClickCase{"Move", WM_MOUSEMOVE, 0},
                                         ClickCase{"BalloonClick", NIN_BALLOONUSERCLICK, 0}),
                         [](const auto& row) { return std::string(row.param.pszName); });

TEST_F(MyTBIconTest, DoubleClickAsksForTheMenuMoreThanOnce) {
    MyTBIcon* pIcon = MyTBIcon::StartRound(wndMonitor);
    for (LPARAM lEvent : {WM_LBUTTONDOWN, WM_LBUTTONUP, WM_LBUTTONDBLCLK, WM_LBUTTONUP})
        ::PostMessageW(*pIcon, kCallbackMsg, 1, lEvent);
    EXPECT_EQ(3, TakeRequests());
}

TEST_F(MyTBIconTest, AsksAlsoWhileABalloonIsUp) {
    MyTBIcon* pIcon = MyTBIcon::StartRound(wndMonitor);
    pIcon->SetBalloon(L"Tessaly", NIIF_INFO, 5, L"text");
    pIcon->UpdateIcon();
    ::PostMessageW(*pIcon, kCallbackMsg, 1, NIN_BALLOONSHOW);
    ::PostMessageW(*pIcon, kCallbackMsg, 1, WM_LBUTTONUP);
    EXPECT_EQ(1, TakeRequests());
}

TEST_F(MyTBIconTest, ClosedWindowTakesIconAndObjectAway) {
    MyTBIcon* pIcon = MyTBIcon::StartRound(wndMonitor);
    ::SendMessageW(*pIcon, WM_CLOSE, 0, 0);
    EXPECT_EQ(nullptr, MyTBIcon::GetCurrent());
    EXPECT_EQ("add delete", tray.TakeNames());
    EXPECT_FALSE(IsClassThere());
    MyTBIcon::EndRound(); // finds nothing
}

TEST_F(MyTBIconTest, CloseRequestOfTheProductTakesItAway) {
    MyTBIcon* pIcon = MyTBIcon::StartRound(wndMonitor);
    ::PostMessageW(*pIcon, GetTestCompanyMsg(), kCodeClose, kProductId);
    PumpAll();
    EXPECT_EQ(nullptr, MyTBIcon::GetCurrent());
    EXPECT_EQ("add delete", tray.TakeNames());
}

TEST_F(MyTBIconTest, EndOfTheRoundDeletesTheObjectBeforeItsWindow) {
    MyTBIcon* pIcon = MyTBIcon::StartRound(wndMonitor);
    HWND hwnd = *pIcon;
    ::PostMessageW(hwnd, kCallbackMsg, 1, WM_LBUTTONUP);
    ::PostMessageW(hwnd, WM_TIMER, 1, 0);
    MyTBIcon::EndRound();
    EXPECT_EQ(nullptr, MyTBIcon::GetCurrent());
    EXPECT_TRUE(::IsWindow(hwnd)) << "its close is posted";
    EXPECT_EQ(nullptr, ::GetPropW(hwnd, L"CSWND"));
    PumpAll();
    EXPECT_FALSE(::IsWindow(hwnd));
    EXPECT_EQ(0, TakeRequests());
}

TEST_F(MyTBIconTest, NextRoundBeginsWhileTheFormerWindowStillCloses) {
    MyTBIcon* pFirst = MyTBIcon::StartRound(wndMonitor);
    HWND hwndFirst = *pFirst;
    pFirst->ShowIcon(0);
    MyTBIcon::EndRound();
    MyTBIcon* pSecond = MyTBIcon::StartRound(wndMonitor);
    ASSERT_NE(nullptr, pSecond);
    HWND hwndSecond = *pSecond;
    EXPECT_TRUE(::IsWindow(hwndFirst));
    ASSERT_TRUE(::IsWindow(hwndSecond));
    PumpAll();
    EXPECT_FALSE(::IsWindow(hwndFirst));
    EXPECT_TRUE(::IsWindow(hwndSecond));
    EXPECT_EQ(pSecond, MyTBIcon::GetCurrent());
    EXPECT_EQ(1u, tray.CountIcons());
    ::PostMessageW(hwndSecond, kCallbackMsg, 1, WM_LBUTTONUP);
    EXPECT_EQ(1, TakeRequests());
}

TEST_F(MyTBIconTest, EndOfTheRoundLeavesAnIconThatIsStillShown) {
    MyTBIcon::StartRound(wndMonitor);
    MyTBIcon::EndRound();
    PumpAll();
    EXPECT_EQ("add", tray.TakeNames()) << "the monitor has hidden it before";
}

TEST_F(MyTBIconTest, EndOfTheRoundWithoutAWindowClosesTheOneOfItsClass) {
    auto* pWithout = new MyTBIcon; // registers the class
    MyTBIcon* pOther = new MyTBIcon;
    ASSERT_EQ(1, pOther->CreateWnd(kTrayIconClass));
    pOther->autoDelete = 0;
    delete pWithout; // the class stays, for a window of it lives
    auto* pCurrent = new MyTBIcon;
    EXPECT_EQ(pCurrent, MyTBIcon::GetCurrent());
    MyTBIcon::EndRound();
    HWND hwnd = *pOther;
    PumpAll();
    EXPECT_FALSE(::IsWindow(hwnd));
    delete pOther;
}

TEST_F(MyTBIconTest, WithoutAWindowTheIconIsTriedAllTheSame) {
    // The class is somebody else's here, whose window cannot be created. (It may still be there
    // from a round whose window closed after its object.)
    ::UnregisterClassW(kTrayIconClass, GetLibraryInstance());
    WNDCLASSW wc{};
    wc.lpfnWndProc = [](HWND, UINT, WPARAM, LPARAM) -> LRESULT { return 0; };
    wc.hInstance = GetLibraryInstance();
    wc.lpszClassName = kTrayIconClass;
    ASSERT_TRUE(::RegisterClassW(&wc));
    MyTBIcon* pIcon = MyTBIcon::StartRound(wndMonitor);
    EXPECT_EQ(nullptr, static_cast<HWND>(*pIcon));
    EXPECT_EQ("add", tray.TakeNames());
    pIcon->ShowIcon(0);
    MyTBIcon::EndRound();
    ::UnregisterClassW(kTrayIconClass, GetLibraryInstance());
}
} // namespace
