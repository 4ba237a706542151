#include "runtime/threads/message_pump.h"
#include "support/test_window.h"
#include "support/wait_until.h"

#include <gtest/gtest.h>
#include <optional>
#include <thread>

namespace {
/// Counts its messages WM_APP and posts itself as many more as each says.
struct CountingWindow : TestWindow {
    CountingWindow()
        : TestWindow([this](UINT uMsg, WPARAM wParam, LPARAM) -> std::optional<LRESULT> {
              if (uMsg != WM_APP) return std::nullopt;
              ++nSeen;
              if (wParam) ::PostMessageW(*this, WM_APP, wParam - 1, 0);
              return 0;
          }) {}
    int nSeen = 0;
};

TEST(ProcessAllMessages, EmptyQueueGivesOne) {
    ProcessAllMessages();
    EXPECT_EQ(1, ProcessAllMessages());
}

TEST(ProcessAllMessages, DispatchesAlsoWhatIsPostedMeanwhile) {
    CountingWindow wnd;
    ::PostMessageW(wnd, WM_APP, 4, 0);
    EXPECT_EQ(1, ProcessAllMessages());
    EXPECT_EQ(5, wnd.nSeen);
}

TEST(ProcessAllMessages, OfAWindowLeavesTheOthersWaiting) {
    CountingWindow wnd, wndOther;
    ::PostMessageW(wndOther, WM_APP, 0, 0);
    EXPECT_EQ(1, ProcessAllMessages(wnd));
    EXPECT_EQ(0, wndOther.nSeen);
    EXPECT_EQ(1, ProcessAllMessages(wndOther));
    EXPECT_EQ(1, wndOther.nSeen);
}

TEST(ProcessAllMessages, QuitGivesZeroOnceAndIsNotSeenAgain) {
    CountingWindow wnd;
    ::PostQuitMessage(3);
    ::PostMessageW(wnd, WM_APP, 0, 0);
    EXPECT_EQ(0, ProcessAllMessages());
    EXPECT_EQ(1, wnd.nSeen);
    EXPECT_EQ(1, ProcessAllMessages());
    MSG msg;
    EXPECT_EQ(FALSE, ::PeekMessageW(&msg, nullptr, 0, 0, PM_REMOVE));
}

TEST(QuitKeeper, GivesBackWhatWasTaken) {
    ::PostQuitMessage(3);
    {
        QuitKeeper keeper;
        EXPECT_EQ(0, ProcessAllMessages());
        EXPECT_EQ(1, ProcessAllMessages());
        QuitKeeper inner; // has nothing to give back
    }
    MSG msg{};
    ASSERT_TRUE(::PeekMessageW(&msg, nullptr, 0, 0, PM_REMOVE));
    EXPECT_EQ(static_cast<UINT>(WM_QUIT), msg.message);
    EXPECT_EQ(3u, msg.wParam);
    EXPECT_FALSE(::PeekMessageW(&msg, nullptr, 0, 0, PM_REMOVE));
}

TEST(QuitKeeper, IsOfItsThreadAlone) {
    QuitKeeper keeper;
    std::thread other([] {
        ::PostQuitMessage(3);
        EXPECT_EQ(0, ProcessAllMessages());
        MSG msg;
        EXPECT_FALSE(::PeekMessageW(&msg, nullptr, 0, 0, PM_REMOVE));
    });
    other.join();
    EXPECT_EQ(1, ProcessAllMessages());
}

TEST(WaitPumpingMessages, DispatchesWhileItWaits) {
    CountingWindow wnd;
    HANDLE hEvent = ::CreateEventW(nullptr, TRUE, FALSE, nullptr);
    ::PostMessageW(wnd, WM_APP, 2, 0);
    EXPECT_FALSE(WaitPumpingMessages(hEvent, 20));
    EXPECT_EQ(3, wnd.nSeen);
    ::SetEvent(hEvent);
    EXPECT_TRUE(WaitPumpingMessages(hEvent, 20));
    ::CloseHandle(hEvent);
}

TEST(WaitPumpingMessages, EachRoundOfMessagesStartsTheTimeAnew) {
    constexpr DWORD kTimeoutMs = 1000;
    HANDLE hEvent = ::CreateEventW(nullptr, TRUE, FALSE, nullptr);
    DWORD nThreadId = ::GetCurrentThreadId();
    std::thread other([=] {
        for (DWORD nPassed = 0; nPassed < 2 * kTimeoutMs; nPassed += 50) {
            ::PostThreadMessageW(nThreadId, WM_APP, 0, 0);
            ::Sleep(50);
        }
        ::SetEvent(hEvent);
    });
    EXPECT_TRUE(WaitPumpingMessages(hEvent, kTimeoutMs));
    other.join();
    ::CloseHandle(hEvent);
}

TEST(WaitPumpingMessages, FailedWaitGivesTrue) { EXPECT_TRUE(WaitPumpingMessages(nullptr, 5000)); }

// Timers

int nCalls = 0;
HWND hwndCalled = nullptr;
UINT_PTR uCalledId = 0;
void CALLBACK CountCall(HWND hwnd, UINT, UINT_PTR uId, DWORD) {
    ++nCalls;
    hwndCalled = hwnd;
    uCalledId = uId;
}

class CSTimerTest : public testing::Test {
  protected:
    void SetUp() override {
        nCalls = 0;
        hwndCalled = nullptr;
    }
    TestWindow wnd;
    HWND hwnd = wnd;
};

TEST_F(CSTimerTest, NewTimerDoesNotTickAndKeepsItsId) {
    CSTimer timer(7);
    EXPECT_EQ(0, timer.IsTicking());
    EXPECT_EQ(7u, timer.GetID());
    EXPECT_EQ(0u, CSTimer().GetID());
}

TEST_F(CSTimerTest, CallsTheProcedureOfAWindowTimer) {
    CSTimer timer(7);
    EXPECT_EQ(1, timer.Start(hwnd, 10, &CountCall));
    EXPECT_EQ(1, timer.IsTicking());
    EXPECT_TRUE(PumpUntil([] { return nCalls >= 2; }));
    EXPECT_EQ(hwnd, hwndCalled);
    EXPECT_EQ(7u, uCalledId);
}

TEST_F(CSTimerTest, DefaultIdBecomesTheIdForGood) {
    CSTimer timer;
    EXPECT_EQ(1, timer.Start(hwnd, 1000, nullptr, 1));
    EXPECT_EQ(1u, timer.GetID());
    EXPECT_EQ(1, timer.Start(hwnd, 1000, nullptr, 2));
    EXPECT_EQ(1u, timer.GetID());
    CSTimer withId(5);
    EXPECT_EQ(1, withId.Start(hwnd, 1000, nullptr, 9));
    EXPECT_EQ(5u, withId.GetID());
}

TEST_F(CSTimerTest, StopEndsTheTickingAndMayBeRepeated) {
    CSTimer timer(3);
    ASSERT_EQ(1, timer.Start(hwnd, 10, &CountCall));
    timer.Stop();
    timer.Stop();
    EXPECT_EQ(0, timer.IsTicking());
    EXPECT_EQ(FALSE, ::KillTimer(hwnd, 3)); // nothing is left of it
    EXPECT_FALSE(PumpUntil([] { return nCalls > 0; }, 60));
}

TEST_F(CSTimerTest, DestructorStops) {
    {
        CSTimer timer(3);
        ASSERT_EQ(1, timer.Start(hwnd, 10, &CountCall));
    }
    EXPECT_EQ(FALSE, ::KillTimer(hwnd, 3));
}

TEST_F(CSTimerTest, WorksWithoutAWindow) {
    CSTimer timer(4);
    ASSERT_EQ(1, timer.Start(nullptr, 10, &CountCall));
    EXPECT_TRUE(PumpUntil([] { return nCalls >= 1; }));
    timer.Stop();
    nCalls = 0;
    EXPECT_FALSE(PumpUntil([] { return nCalls > 0; }, 60));
}

TEST_F(CSTimerTest, SecondStartWithoutAWindowLeavesNoTimerBehind) {
    CSTimer timer(4);
    ASSERT_EQ(1, timer.Start(nullptr, 10, &CountCall));
    ASSERT_EQ(1, timer.Start(hwnd, 100000, &CountCall));
    nCalls = 0;
    EXPECT_FALSE(PumpUntil([] { return nCalls > 0; }, 60));
}

TEST_F(CSTimerTest, StartOnADestroyedWindowFails) {
    HWND hwndGone = TestWindow();
    CSTimer timer(4);
    EXPECT_EQ(0, timer.Start(hwndGone, 10));
    EXPECT_EQ(0, timer.IsTicking());
}
} // namespace
