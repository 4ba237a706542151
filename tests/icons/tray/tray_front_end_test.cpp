#include "icons/tray/tray_front_end.h"
#include "icons/agent/desktop_shared_data.h"
#include "icons/engine/monitor.h"
#include "icons/icons_test_support.h"
#include "icons/monitor/monitor_wnd.h"
#include "runtime/base/current_product.h"
#include "support/fake_tray.h"

#include <gtest/gtest.h>
#include <thread>

namespace {
constexpr UINT kCallbackMsg = WM_USER + 1;
constexpr WPARAM kCodeClose = 1;
constexpr LPARAM kProductId = 16738;

HWND TrayIconWindow() { return ::FindWindowW(kTrayIconClass, nullptr); }

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
        ExpectPlainClass(L"TessalyTBIcon");
    }
    EXPECT_FALSE(IsClassThere(kTrayIconClass));
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
    EXPECT_FALSE(IsClassThere(kTrayIconClass));
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

// The front end that has it

class TrayFrontEndTest : public EngineTest {
  protected:
    void SetUp() override {
        EngineTest::SetUp();
        ASSERT_TRUE(tray.IsInFront());
        ASSERT_TRUE(monitor.CreateHidden(nullptr));
        GetDesktopSharedData().hwndMonitor = monitor;
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
    IconRecord record = RecordOf(0, L"a", {1, 2});
    OnIconsCaptured(&record, 1);
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
                return GetDesktopSharedData().hwndMonitor && ::FindWindowW(kTrayIconClass, nullptr);
            });
            EXPECT_TRUE(bStands);
            if (bStands) fnDriver();
            ::PostMessageW(GetDesktopSharedData().hwndMonitor, WM_CLOSE, 0, 0);
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
        ::SendMessageTimeoutW(GetDesktopSharedData().hwndMonitor, WM_NULL, 0, 0, 0, kTestDeadlineMs,
                              nullptr);
        MyMonitor_Wnd::GetCurrent()->SetSnapshotAnnounce(1);
        ::PostMessageW(GetDesktopSharedData().hwndListView, GetTestCompanyMsg(), 372, 0);
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
        HWND hwndMonitor = GetDesktopSharedData().hwndMonitor;
        ::PostMessageW(hwndMonitor, GetTestTaskbarCreated(), 0, 0);
        EXPECT_TRUE(WaitUntil([&] {
            HWND hwnd = GetDesktopSharedData().hwndMonitor;
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
        ::PostMessageW(GetDesktopSharedData().hwndMonitor, GetTestCompanyMsg(), 1, kProductId);
    });
    DoMonitor(nullptr, 1);
    EXPECT_EQ("add delete", tray.TakeNames());
}
} // namespace
