#include "progress/model_bar.h"
#include "progress/progress_clock.h"
#include "support/guard_page.h"

#include <gtest/gtest.h>

namespace {
struct Timed {
    FakeClock clock;
    TestBar bar;

    explicit Timed(DWORD dwStart = FakeClock::kStart) : clock(dwStart) {
        bar.SetRange64(0, 60'000);
    }
    /// A first step, which is not counted, and then some so far apart.
    void Step(DWORD nMs, int nSteps) {
        if (!bar.dwLastTick) bar.StepIt();
        for (int i = 0; i < nSteps; ++i) {
            clock.Advance(nMs);
            bar.StepIt();
        }
    }
};

TEST(ProgressExTime, FirstStepIsNotCounted) {
    Timed timed;
    timed.bar.StepIt();
    EXPECT_EQ(0u, timed.bar.dwSteps);
    EXPECT_EQ(0u, timed.bar.qwTotalMs);
    EXPECT_EQ(timed.clock.Get(), timed.bar.dwLastTick);
    EXPECT_EQ(0u, timed.bar.GetAverageStepDuration());
    EXPECT_EQ(0u, timed.bar.GetSecondsRemaining());
    EXPECT_EQ(0u, timed.bar.GetEventsPerSeconds(1));
}

TEST(ProgressExTime, LaterStepsAreCountedFromTheLastOne) {
    Timed timed;
    timed.Step(10, 1);
    timed.Step(30, 2);
    EXPECT_EQ(3u, timed.bar.dwSteps);
    EXPECT_EQ(70u, timed.bar.qwTotalMs);
    EXPECT_EQ(23u, timed.bar.GetAverageStepDuration());
}

TEST(ProgressExTime, StepsWithoutTimeBetweenThemAreCounted) {
    Timed timed;
    timed.Step(0, 5);
    EXPECT_EQ(5u, timed.bar.dwSteps);
    EXPECT_EQ(0u, timed.bar.GetAverageStepDuration());
    EXPECT_EQ(0u, timed.bar.GetSecondsRemaining());
    EXPECT_EQ(0u, timed.bar.GetEventsPerSeconds(60));
}

TEST(ProgressExTime, ClockThatWrapsIsCountedOn) {
    Timed timed(0xFFFFFFF0);
    timed.Step(0x20, 1);
    EXPECT_EQ(0x10u, timed.bar.dwLastTick);
    EXPECT_EQ(0x20u, timed.bar.qwTotalMs);
}

TEST(ProgressExTime, StepAtTickZeroCountsAsNone) {
    Timed timed(0xFFFFFFF0);
    timed.Step(0x10, 1);
    EXPECT_EQ(0u, timed.bar.dwLastTick);
    EXPECT_EQ(1u, timed.bar.dwSteps);
    timed.clock.Advance(50);
    timed.bar.StepIt(); // from nowhere
    EXPECT_EQ(1u, timed.bar.dwSteps);
    EXPECT_EQ(0x10u, timed.bar.qwTotalMs);
}

TEST(ProgressExTime, TotalIsOf64Bits) {
    Timed timed(1);
    timed.Step(3'000'000'000u, 3);
    EXPECT_EQ(9'000'000'000u, timed.bar.qwTotalMs);
    EXPECT_EQ(3'000'000'000u, timed.bar.GetAverageStepDuration());
}

TEST(ProgressExTime, StepsBelowTheDivisorAreNotTimed) {
    FakeClock clock;
    TestBar bar;
    bar.SetRange64(0, 65535 * 4);
    for (int n = 0; n < 12; ++n) {
        bar.StepIt();
        clock.Advance(5);
    }
    EXPECT_EQ(2u, bar.dwSteps);
    EXPECT_EQ(40u, bar.qwTotalMs);
}

TEST(ProgressExPause, TakesNoTime) {
    Timed timed;
    timed.Step(10, 2);
    timed.bar.Pause(1);
    EXPECT_EQ(1, timed.bar.nPaused);
    EXPECT_EQ(0u, timed.bar.dwLastTick);
    timed.clock.Advance(100'000);
    timed.bar.Pause(0);
    EXPECT_EQ(0, timed.bar.nPaused);
    timed.clock.Advance(1000);
    timed.bar.StepIt(); // the first after the pause
    EXPECT_EQ(2u, timed.bar.dwSteps);
    EXPECT_EQ(20u, timed.bar.qwTotalMs);
    timed.Step(30, 1);
    EXPECT_EQ(3u, timed.bar.dwSteps);
    EXPECT_EQ(50u, timed.bar.qwTotalMs);
}

TEST(ProgressExPause, CountsItsDepth) {
    TestBar bar;
    bar.Pause(1);
    bar.Pause(1);
    EXPECT_EQ(2, bar.nPaused);
    bar.Pause(0);
    EXPECT_EQ(1, bar.nPaused);
    bar.Pause(0);
    bar.Pause(0);
    EXPECT_EQ(-1, bar.nPaused);
}

TEST(ProgressExPause, StopsNoStepAndNoTiming) {
    Timed timed;
    timed.bar.Pause(1);
    timed.Step(10, 2);
    EXPECT_EQ(2u, timed.bar.dwSteps);
    EXPECT_EQ(20u, timed.bar.qwTotalMs);
    EXPECT_EQ(3, timed.bar.nPos);
}

TEST(ProgressExPause, ItsEndLeavesTheLastTick) {
    Timed timed;
    timed.bar.Pause(1);
    timed.Step(10, 1);
    timed.bar.Pause(0);
    timed.Step(10, 1);
    EXPECT_EQ(2u, timed.bar.dwSteps);
}

struct RemainingCase {
    const char* pszName;
    int nLeft;  // bar units to go
    DWORD nMs;  // of each step
    int nSteps; // that were timed
    unsigned nSeconds;
};

class ProgressExRemainingTable : public testing::TestWithParam<RemainingCase> {};

TEST_P(ProgressExRemainingTable, IsWhatTheStepsTookSoFar) {
    auto& row = GetParam();
    Timed timed(1);
    timed.Step(row.nMs, row.nSteps);
    timed.bar.SetPos64(60'000 - row.nLeft);
    EXPECT_EQ(row.nSeconds, timed.bar.GetSecondsRemaining());
}

INSTANTIATE_TEST_SUITE_P(
    Cases, ProgressExRemainingTable,
    testing::Values(RemainingCase{"NothingLeft", 0, 1000, 3, 0},
                    RemainingCase{"NoStepTimed", 100, 1000, 0, 0},
                    RemainingCase{"Plain", 30, 1000, 4, 30}, RemainingCase{"IsCut", 19, 100, 2, 1},
                    RemainingCase{"BelowASecond", 9, 100, 2, 0},
                    RemainingCase{"AllOfIt", 60'000, 1, 7, 60},
                    RemainingCase{"AnHour", 3600, 1000, 2, 3600},
                    RemainingCase{"LargestProduct", 1, 4'294'967, 1, 4294},
                    RemainingCase{"FirstThatWraps", 1, 4'294'968, 1, 0},
                    RemainingCase{"Wraps", 100, 43'000, 2, 5},
                    RemainingCase{"LastBeforeItWraps", 4294, 1000, 1, 4294},
                    RemainingCase{"FirstBehindTheWrap", 4295, 1000, 1, 0},
                    RemainingCase{"ADay", 86'400, 1000, 1, 500}, // of 20 wraps
                    // Only the product with what is left wraps, not the average.
                    RemainingCase{"SlowSteps", 1, 4'000'000, 2, 4000},
                    RemainingCase{"PastTheEnd", -1, 1000, 2, 4293}),
    [](const auto& row) { return std::string(row.param.pszName); });

TEST(ProgressExTime, AverageOfAStepIsTakenInMicroseconds) {
    Timed timed;
    timed.Step(2, 1);
    timed.Step(3, 1);
    timed.bar.SetPos64(58'000); // 2,000 steps of 2.5 ms
    EXPECT_EQ(5u, timed.bar.GetSecondsRemaining());
    EXPECT_EQ(2u, timed.bar.GetAverageStepDuration());
}

TEST(ProgressExTime, ReversedRangeLeavesWhatItsDifferenceWrapsTo) {
    FakeClock clock;
    TestBar bar;
    bar.Setup(100, 0, 99);
    for (int i = 0; i < 2; ++i) {
        bar.StepIt();
        clock.Advance(1000);
    }
    bar.SetPos64(99); // -99 steps of a second
    EXPECT_EQ((0u - 99u * 1'000'000u) / 1'000'000u, bar.GetSecondsRemaining());
}

struct RateCase {
    const char* pszName;
    __int64 high; // of the range
    DWORD nMs;    // of each bar step
    int nSteps;
    unsigned nSeconds;
    unsigned nEvents;
};

class ProgressExRateTable : public testing::TestWithParam<RateCase> {};

TEST_P(ProgressExRateTable, IsOfRealUnits) {
    auto& row = GetParam();
    FakeClock clock(1);
    TestBar bar;
    bar.SetRange64(0, row.high);
    for (int i = 0; i <= row.nSteps; ++i) {
        if (i) clock.Advance(row.nMs);
        while (!bar.StepIt()) {
        }
    }
    EXPECT_EQ(row.nEvents, bar.GetEventsPerSeconds(row.nSeconds));
}

INSTANTIATE_TEST_SUITE_P(
    Cases, ProgressExRateTable,
    testing::Values(RateCase{"Plain", 100, 500, 4, 1, 2},
                    RateCase{"PerMinute", 100, 500, 4, 60, 120},
                    RateCase{"IsCut", 100, 700, 3, 1, 1}, RateCase{"NoSeconds", 100, 500, 4, 0, 0},
                    RateCase{"NoSteps", 100, 500, 0, 5, 0}, RateCase{"NoTime", 100, 0, 5, 5, 0},
                    RateCase{"OfADivisor", 131070, 500, 4, 10, 40},
                    RateCase{"IsCutBeforeTheDivisor", 131070, 667, 3, 1, 2},
                    RateCase{"LargeDivisor", 65535LL * 1000, 10, 2, 1, 100'000},
                    RateCase{"LastBeforeTheProductWraps", 100, 10, 2, 2'147'483, 214'748'300},
                    RateCase{"ProductWraps", 100, 10, 2, 3'000'000, 85'251'635}),
    [](const auto& row) { return std::string(row.param.pszName); });

TEST(ProgressExTime, RateMayNeed64Bits) {
    TestBar bar;
    bar.dwDivisor = 1'000'000;
    bar.dwSteps = 10;
    bar.qwTotalMs = 1000;
    EXPECT_EQ(10'000'000'000u, bar.GetEventsPerSeconds(1000));
}

TEST(ProgressExTime, RateOfATotalBeyond32BitsIsDividedByAllOfIt) {
    Timed timed(1);
    timed.Step(4'000'000'000u, 2);
    EXPECT_EQ(0u, timed.bar.GetEventsPerSeconds(2'000'000)); // 4e9 by 8e9
}

TEST(ProgressExText, RemainingIsOfTheOwnEstimate) {
    Timed timed;
    timed.Step(1000, 3);
    timed.bar.SetPos64(60'000 - 125);
    wchar_t sz[64] = L"before";
    EXPECT_EQ(1, timed.bar.GetTextRemaining(sz, 64, 1));
    EXPECT_STREQ(L"2 minute(s) 5 seconds", sz);
    EXPECT_EQ(1, timed.bar.GetTextRemaining(sz, 64, 0));
    EXPECT_STREQ(L"2 m 5 s", sz);
    timed.bar.SetPos64(60'000 - 59);
    EXPECT_EQ(1, timed.bar.GetTextRemaining(sz, 64, 1));
    EXPECT_STREQ(L"59 seconds", sz);
    timed.bar.SetPos64(60'000 - 3600);
    EXPECT_EQ(1, timed.bar.GetTextRemaining(sz, 64, 1));
    EXPECT_STREQ(L"1 hour(s) 0 minutes", sz);
    EXPECT_EQ(1, timed.bar.GetTextRemaining(sz, 64, 0));
    EXPECT_STREQ(L"1 h 0 m", sz);
}

TEST(ProgressExText, RemainingOfNothingEmptiesTheBuffer) {
    TestBar bar;
    wchar_t sz[64] = L"before";
    EXPECT_EQ(0, bar.GetTextRemaining(sz, 64, 1));
    EXPECT_STREQ(L"", sz);
}

TEST(ProgressExText, RemainingIsCutToItsBuffer) {
    Timed timed;
    timed.Step(1000, 3);
    timed.bar.SetPos64(60'000 - 125);
    GuardedMemory memory(4 * sizeof(wchar_t));
    auto* psz = static_cast<wchar_t*>(memory.Get());
    EXPECT_EQ(1, timed.bar.GetTextRemaining(psz, 4, 0));
    EXPECT_STREQ(L"2 m", psz);
}

// ProgressTracker

TEST(ProgressTracker, WithoutEventsEverythingIsNothing) {
    FakeClock clock;
    ProgressTracker tracker;
    EXPECT_EQ(0u, tracker.GetAverageEventDuration());
    EXPECT_EQ(0u, tracker.GetAverageEventsDuration(10));
    EXPECT_EQ(0u, tracker.GetAverageEventsPerSeconds(10));
    tracker.Update(); // only starts
    clock.Advance(5);
    EXPECT_EQ(0u, tracker.GetAverageEventDuration());
    EXPECT_EQ(0u, tracker.GetAverageEventsDuration(10));
    EXPECT_EQ(0u, tracker.GetAverageEventsPerSeconds(10));
}

struct TrackerCase {
    const char* pszName;
    DWORD nMs;
    int nEvents;
    unsigned n; // asked for so many events, or seconds
    unsigned nOne, nMany, nRate;
};

class ProgressTrackerTable : public testing::TestWithParam<TrackerCase> {};

TEST_P(ProgressTrackerTable, TellsDurationsAndRate) {
    auto& row = GetParam();
    FakeClock clock(1);
    ProgressTracker tracker;
    tracker.Update();
    for (int i = 0; i < row.nEvents; ++i) {
        clock.Advance(row.nMs);
        tracker.Update();
    }
    EXPECT_EQ(row.nOne, tracker.GetAverageEventDuration());
    EXPECT_EQ(row.nMany, tracker.GetAverageEventsDuration(row.n));
    EXPECT_EQ(row.nRate, tracker.GetAverageEventsPerSeconds(row.n));
}

INSTANTIATE_TEST_SUITE_P(
    Cases, ProgressTrackerTable,
    testing::Values(TrackerCase{"Plain", 100, 5, 10, 100, 1000, 100},
                    TrackerCase{"One", 250, 4, 1, 250, 250, 4},
                    TrackerCase{"None", 250, 4, 0, 250, 0, 0},
                    TrackerCase{"NoTime", 0, 4, 10, 0, 0, 0},
                    TrackerCase{"Slow", 3'000'000'000u, 2, 1, 3'000'000'000u, 3'000'000'000u, 0},
                    TrackerCase{"ManyTimesSlow", 1'000'000, 4, 4000, 1'000'000, 4'000'000'000u, 4},
                    TrackerCase{"LongTime", 10, 2, 3'000'000, 10, 30'000'000, 300'000'000}),
    [](const auto& row) { return std::string(row.param.pszName); });

TEST(ProgressTracker, DurationOfManyIsCutOnce) {
    FakeClock clock;
    ProgressTracker tracker;
    tracker.Update();
    for (DWORD nMs : {1, 2, 2}) {
        clock.Advance(nMs);
        tracker.Update();
    }
    EXPECT_EQ(1u, tracker.GetAverageEventDuration());
    EXPECT_EQ(5u, tracker.GetAverageEventsDuration(3));
    EXPECT_EQ(16u, tracker.GetAverageEventsDuration(10));
    EXPECT_EQ(600u, tracker.GetAverageEventsPerSeconds(1));
}

TEST(ProgressTracker, ClockThatWrapsIsCountedOn) {
    FakeClock clock(0xFFFFFFF0);
    ProgressTracker tracker;
    tracker.Update();
    clock.Advance(0x20);
    tracker.Update();
    EXPECT_EQ(0x20u, tracker.GetAverageEventDuration());
}

TEST(ProgressTracker, EventAtTickZeroCountsAsNone) {
    FakeClock clock(0);
    ProgressTracker tracker;
    tracker.Update();
    clock.Advance(50);
    tracker.Update();
    EXPECT_EQ(0u, tracker.GetAverageEventDuration());
    clock.Advance(20);
    tracker.Update();
    EXPECT_EQ(20u, tracker.GetAverageEventDuration());
}

TEST(ProgressTracker, PauseTakesNoTime) {
    FakeClock clock;
    ProgressTracker tracker;
    tracker.Update();
    clock.Advance(10);
    tracker.Update();
    tracker.Pause(1);
    clock.Advance(5000);
    tracker.Pause(0);
    clock.Advance(500);
    tracker.Update(); // the first after the pause
    EXPECT_EQ(10u, tracker.GetAverageEventsDuration(1));
    clock.Advance(30);
    tracker.Update();
    EXPECT_EQ(20u, tracker.GetAverageEventDuration());
    EXPECT_EQ(100u, tracker.GetAverageEventsPerSeconds(2));
}

TEST(ProgressTracker, PauseStopsNoEvent) {
    FakeClock clock;
    ProgressTracker tracker;
    tracker.Pause(1);
    tracker.Pause(1);
    tracker.Update();
    clock.Advance(10);
    tracker.Update();
    tracker.Pause(0);
    clock.Advance(30);
    tracker.Update(); // its end leaves the last tick
    EXPECT_EQ(20u, tracker.GetAverageEventDuration());
}
} // namespace
