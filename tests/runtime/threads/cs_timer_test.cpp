#include "runtime/threads/message_pump.h"

#include <gtest/gtest.h>

namespace {
int nCalls = 0;
HWND hwndCalled = nullptr;
UINT_PTR uCalledId = 0;
void CALLBACK CountCall(HWND hwnd, UINT, UINT_PTR uId, DWORD) {
    ++nCalls;
    hwndCalled = hwnd;
    uCalledId = uId;
}

/// Dispatches messages until bDone says so or the time is over.
template <class Done>
bool PumpUntil(DWORD nTimeoutMs, Done bDone) {
    DWORD dwStart = ::GetTickCount();
    while (!bDone()) {
        DWORD nPassed = ::GetTickCount() - dwStart;
        if (nPassed >= nTimeoutMs) return false;
        ::MsgWaitForMultipleObjects(0, nullptr, FALSE, nTimeoutMs - nPassed, QS_ALLINPUT);
        MSG msg;
        while (::PeekMessageW(&msg, nullptr, 0, 0, PM_REMOVE)) ::DispatchMessageW(&msg);
    }
    return true;
}

class CSTimerTest : public testing::Test {
  protected:
    void SetUp() override {
        nCalls = 0;
        hwndCalled = nullptr;
        hwnd = ::CreateWindowExW(0, L"STATIC", L"", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, nullptr,
                                 nullptr);
        ASSERT_NE(nullptr, hwnd);
    }
    void TearDown() override { ::DestroyWindow(hwnd); }
    HWND hwnd = nullptr;
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
    EXPECT_TRUE(PumpUntil(5000, [] { return nCalls >= 2; }));
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
    EXPECT_FALSE(PumpUntil(60, [] { return nCalls > 0; }));
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
    EXPECT_TRUE(PumpUntil(5000, [] { return nCalls >= 1; }));
    timer.Stop();
    nCalls = 0;
    EXPECT_FALSE(PumpUntil(60, [] { return nCalls > 0; }));
}

TEST_F(CSTimerTest, SecondStartWithoutAWindowLeavesNoTimerBehind) {
    CSTimer timer(4);
    ASSERT_EQ(1, timer.Start(nullptr, 10, &CountCall));
    ASSERT_EQ(1, timer.Start(hwnd, 100000, &CountCall));
    nCalls = 0;
    EXPECT_FALSE(PumpUntil(60, [] { return nCalls > 0; }));
}

TEST_F(CSTimerTest, StartOnADestroyedWindowFails) {
    HWND hwndGone = ::CreateWindowExW(0, L"STATIC", L"", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr,
                                      nullptr, nullptr);
    ::DestroyWindow(hwndGone);
    CSTimer timer(4);
    EXPECT_EQ(0, timer.Start(hwndGone, 10));
    EXPECT_EQ(0, timer.IsTicking());
}
} // namespace
