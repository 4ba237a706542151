#include "progress/progress_ticker.h"
#include "progress/ticker_blocks.h"
#include "support/heap_count.h"
#include "support/test_window.h"
#include "support/wait_until.h"
#include "support/window_thread.h"

#include <gtest/gtest.h>
#include <commctrl.h>
#include <atomic>
#include <memory>

namespace {
constexpr unsigned long kIntervalMs = 5;
constexpr unsigned long kUntouched = 4711;

/// A window in the place of a bar, which counts what it is told.
struct FakeBar {
    std::atomic<int> nSteps{0}, nOthers{0};
    std::atomic<LPARAM> lRange{-1};
    std::atomic<int> nPos{-1}, nStep{-1};
    TestWindow window{[this](UINT uMsg, WPARAM wParam, LPARAM lParam) -> std::optional<LRESULT> {
        switch (uMsg) {
        case PBM_STEPIT: ++nSteps; return 0;
        case PBM_SETRANGE: lRange = lParam; return 0;
        case PBM_SETPOS: nPos = static_cast<int>(wParam); return 0;
        case PBM_SETSTEP: nStep = static_cast<int>(wParam); return 0;
        case WM_APP: ++nOthers; return 0;
        default: return {};
        }
    }};
};

TEST(ProgressTicker, SetsTheBarUp) {
    FakeBar bar;
    ProgressTicker ticker(bar.window, kIntervalMs, 250, 0, nullptr);
    EXPECT_EQ(MAKELPARAM(0, 250), bar.lRange);
    EXPECT_EQ(0, bar.nPos);
    EXPECT_EQ(1, bar.nStep);
}

TEST(ProgressTicker, MayBeLongerThan16Bits) {
    TestWindow bar(PROGRESS_CLASSW);
    ProgressTicker ticker(bar, kIntervalMs, 100'000, 0, nullptr);
    EXPECT_EQ(100'000, ::SendMessageW(bar, PBM_GETRANGE, FALSE, 0));
}

TEST(ProgressTicker, WithoutMemoryForItsThreadStepsByHand) {
    FakeBar bar;
    unsigned long nResult = kUntouched;
    {
        FailBlock(1);
        ProgressTicker ticker(bar.window, kIntervalMs, 3, 0, &nResult);
        EXPECT_FALSE(PumpUntil([&] { return bar.nSteps > 0; }, 10 * kIntervalMs));
        for (int i = 0; i < 5; ++i) ticker.StepIt();
        EXPECT_EQ(3, bar.nSteps);
    }
    EXPECT_EQ(3u, nResult);
}

TEST(ProgressTicker, SetsARealBarUpAndFillsIt) {
    TestWindow bar(PROGRESS_CLASSW);
    ::SendMessageW(bar, PBM_SETRANGE32, 5, 1000);
    ::SendMessageW(bar, PBM_SETPOS, 500, 0);
    unsigned long nResult = kUntouched;
    {
        ProgressTicker ticker(bar, kIntervalMs, 7, 0, &nResult);
        EXPECT_EQ(7, ::SendMessageW(bar, PBM_GETRANGE, FALSE, 0));
        EXPECT_EQ(0, ::SendMessageW(bar, PBM_GETRANGE, TRUE, 0));
        EXPECT_TRUE(PumpUntil([&] { return ::SendMessageW(bar, PBM_GETPOS, 0, 0) == 7; }));
        for (int i = 0; i < 20; ++i) ticker.StepIt();
        EXPECT_EQ(7, ::SendMessageW(bar, PBM_GETPOS, 0, 0));
        EXPECT_EQ(kUntouched, nResult); // told at the end
    }
    EXPECT_EQ(7u, nResult);
}

TEST(ProgressTicker, StepsByTheClockUpToItsEnd) {
    FakeBar bar;
    unsigned long nResult = kUntouched;
    {
        ProgressTicker ticker(bar.window, kIntervalMs, 5, 0, &nResult);
        EXPECT_TRUE(PumpUntil([&] { return bar.nSteps == 5; }));
        EXPECT_FALSE(PumpUntil([&] { return bar.nSteps > 5; }, 20 * kIntervalMs));
    }
    EXPECT_EQ(5u, nResult);
}

TEST(ProgressTicker, ResultIsWhatTheBarWasStepped) {
    FakeBar bar;
    unsigned long nResult = kUntouched;
    {
        ProgressTicker ticker(bar.window, kIntervalMs, 1000, 0, &nResult);
        EXPECT_TRUE(PumpUntil([&] { return bar.nSteps >= 3; }));
    }
    EXPECT_EQ(static_cast<unsigned long>(bar.nSteps), nResult);
    EXPECT_LT(nResult, 1000u);
}

TEST(ProgressTicker, WithoutAPlaceForTheResultTellsNone) {
    FakeBar bar;
    {
        ProgressTicker ticker(bar.window, kIntervalMs, 1000, 0, nullptr);
        EXPECT_TRUE(PumpUntil([&] { return bar.nSteps >= 1; }));
    }
    int nSteps = bar.nSteps;
    EXPECT_FALSE(PumpUntil([&] { return bar.nSteps > nSteps; }, 10 * kIntervalMs));
}

TEST(ProgressTicker, OfLengthZeroNeverSteps) {
    FakeBar bar;
    unsigned long nResult = kUntouched;
    {
        ProgressTicker ticker(bar.window, kIntervalMs, 0, 0, &nResult);
        ticker.StepIt();
        EXPECT_FALSE(PumpUntil([&] { return bar.nSteps > 0; }, 10 * kIntervalMs));
        EXPECT_EQ(MAKELPARAM(0, 0), bar.lRange);
    }
    EXPECT_EQ(0u, nResult);
}

TEST(ProgressTicker, PauseIsAFlagAndNoDepth) {
    FakeBar bar;
    unsigned long nResult = kUntouched;
    {
        ProgressTicker ticker(bar.window, kIntervalMs, 1000, 0, &nResult);
        EXPECT_TRUE(PumpUntil([&] { return bar.nSteps >= 2; }));
        ticker.Pause(1);
        ticker.Pause(1);
        PumpUntil([] { return false; }, 4 * kIntervalMs); // a step may be under way
        int nSteps = bar.nSteps;
        ticker.StepIt();
        EXPECT_FALSE(PumpUntil([&] { return bar.nSteps > nSteps; }, 10 * kIntervalMs));
        ticker.Pause(0);
        EXPECT_TRUE(PumpUntil([&] { return bar.nSteps > nSteps + 1; }));
    }
    EXPECT_EQ(static_cast<unsigned long>(bar.nSteps), nResult);
}

TEST(ProgressTicker, StepOfTheCallerCountsAndPumpsTheBarsMessages) {
    FakeBar bar;
    unsigned long nResult = kUntouched;
    constexpr unsigned long kLongMs = 300;
    {
        ProgressTicker ticker(bar.window, kLongMs, 1000, 0, &nResult);
        EXPECT_TRUE(PumpUntil([&] { return bar.nSteps == 1; })); // the thread's first
        ::PostMessageW(bar.window, WM_APP, 0, 0);
        for (int i = 0; i < 10; ++i) ticker.StepIt();
        EXPECT_GE(bar.nSteps, 11);
        EXPECT_EQ(1, bar.nOthers);
    }
    EXPECT_EQ(static_cast<unsigned long>(bar.nSteps), nResult);
}

TEST(ProgressTicker, ClockAndCallerTogetherStopAtTheEnd) {
    FakeBar bar;
    unsigned long nResult = kUntouched;
    {
        ProgressTicker ticker(bar.window, 0, 300, 0, &nResult);
        for (int i = 0; i < 1000; ++i) ticker.StepIt();
        EXPECT_TRUE(PumpUntil([&] { return bar.nSteps >= 300; }));
        EXPECT_FALSE(PumpUntil([&] { return bar.nSteps > 300; }, 20));
    }
    EXPECT_EQ(300u, nResult);
}

TEST(ProgressTicker, ShowsTheBarAndHidesItAgain) {
    FakeBar bar;
    EXPECT_FALSE(::IsWindowVisible(bar.window));
    {
        ProgressTicker ticker(bar.window, kIntervalMs, 10, 1, nullptr);
        EXPECT_TRUE(::IsWindowVisible(bar.window));
    }
    EXPECT_FALSE(::IsWindowVisible(bar.window));
}

TEST(ProgressTicker, LeavesTheBarAsItIsUnlessAsked) {
    FakeBar bar;
    { ProgressTicker ticker(bar.window, kIntervalMs, 10, 0, nullptr); }
    EXPECT_FALSE(::IsWindowVisible(bar.window));
    ::ShowWindow(bar.window, SW_SHOWNA);
    { ProgressTicker ticker(bar.window, kIntervalMs, 10, 0, nullptr); }
    EXPECT_TRUE(::IsWindowVisible(bar.window));
}

TEST(ProgressTicker, OfNoWindowOrOneThatGoesIsHarmless) {
    unsigned long nResult = kUntouched;
    {
        ProgressTicker ticker(nullptr, kIntervalMs, 3, 1, &nResult);
        ticker.StepIt();
    }
    EXPECT_LE(nResult, 3u);
    auto pBar = std::make_unique<FakeBar>();
    ProgressTicker ticker(pBar->window, kIntervalMs, 1000, 1, &nResult);
    EXPECT_TRUE(PumpUntil([&] { return pBar->nSteps >= 1; }));
    pBar.reset();
    ticker.StepIt();
    PumpUntil([] { return false; }, 4 * kIntervalMs);
}

TEST(ProgressTicker, WorksForABarOfAnotherThread) {
    WindowThread thread;
    std::unique_ptr<FakeBar> pBar;
    thread.Run([&] { pBar = std::make_unique<FakeBar>(); });
    unsigned long nResult = kUntouched;
    {
        ProgressTicker ticker(pBar->window, kIntervalMs, 6, 1, &nResult);
        EXPECT_TRUE(PumpUntil([&] { return pBar->nSteps == 6; }));
        EXPECT_TRUE(::IsWindowVisible(pBar->window));
    }
    EXPECT_FALSE(::IsWindowVisible(pBar->window));
    EXPECT_EQ(6u, nResult);
    thread.Run([&] { pBar.reset(); });
}

TEST(ProgressTicker, EndsAtOnceAtAnyMomentAndLeavesNothing) {
    FakeBar bar;
    { ProgressTicker ticker(bar.window, 0, 10, 0, nullptr); } // what the first one keeps
    long nBlocks = CountSettledBlocks();
    DWORD nHandles = 0, nHandlesAfter = 0;
    ::GetProcessHandleCount(::GetCurrentProcess(), &nHandles);
    for (int i = 0; i < 200; ++i) {
        int nBefore = bar.nSteps;
        unsigned long nResult = kUntouched;
        {
            ProgressTicker ticker(bar.window, static_cast<unsigned long>(i % 3), 100'000, 0,
                                  &nResult);
            if (i % 2) ticker.StepIt();
        }
        ASSERT_EQ(static_cast<unsigned long>(bar.nSteps - nBefore), nResult) << i;
    }
    int nSteps = bar.nSteps;
    EXPECT_FALSE(PumpUntil([&] { return bar.nSteps > nSteps; }, 20));
    EXPECT_EQ(nBlocks, CountSettledBlocks());
    ::GetProcessHandleCount(::GetCurrentProcess(), &nHandlesAfter);
    EXPECT_LE(nHandlesAfter, nHandles + 2);
}

TEST(ProgressTickerPause, PausesForABlock) {
    FakeBar bar;
    ProgressTicker ticker(bar.window, kIntervalMs, 100'000, 0, nullptr);
    EXPECT_TRUE(PumpUntil([&] { return bar.nSteps >= 1; }));
    int nSteps = 0;
    {
        ProgressTickerPause pause(&ticker);
        PumpUntil([] { return false; }, 4 * kIntervalMs); // a step may be under way
        nSteps = bar.nSteps;
        EXPECT_FALSE(PumpUntil([&] { return bar.nSteps > nSteps; }, 10 * kIntervalMs));
    }
    EXPECT_TRUE(PumpUntil([&] { return bar.nSteps > nSteps; }));
}
} // namespace
