#include "app/update/jitter_table.h"
#include "app/fake_clock.h"
#include "app/update/update_state.h"

#include <gtest/gtest.h>
#include <iterator>
#include <set>
#include <utility>

constexpr DWORD kDay = 86400, kHour = 3600;

TEST(UpdateJitter, NextCheckIsThatOfTheTable) {
    EXPECT_EQ(50u, std::size(kJitterRows));
    for (const JitterRow& row : kJitterRows) {
        FakeClock clock(row.now);
        UpdateState state;
        state.SetupNextUpdate(row.dwDays);
        EXPECT_EQ(row.dwNext, state.dwNextUpdate)
            << row.now.wYear << "-" << row.now.wMonth << "-" << row.now.wDay << " + " << row.dwDays;
    }
}

TEST(UpdateJitter, FollowsFromTheMomentAlone) {
    for (const JitterRow& row : kJitterRows) {
        FakeClock clock(row.now);
        UpdateState fresh, used;
        used.dwLastUpdate = 1234;
        used.dwNextUpdate = 0xFFFFFFFF;
        used.dwFrequency = kCheckNever;
        used.dwAutoCheck = 0;
        used.SetupNextUpdate(1);
        used.SetupNextUpdate(row.dwDays);
        fresh.SetupNextUpdate(row.dwDays);
        EXPECT_EQ(fresh.dwNextUpdate, used.dwNextUpdate);
        EXPECT_EQ(1234u, used.dwLastUpdate);
        EXPECT_EQ(static_cast<DWORD>(kCheckNever), used.dwFrequency);
    }
}

TEST(UpdateJitter, AddsLessThanAnHourAndClearsTheLowestBit) {
    constexpr DWORD kFrom = 700'000'000;
    std::set<DWORD> added;
    for (DWORD dw = kFrom; dw < kFrom + 5000; ++dw) {
        DWORD dwNext = AddUpdateJitter(dw);
        ASSERT_EQ(0u, dwNext & 1);
        ASSERT_GE(dwNext + 1, dw); // a moment whose lowest bit was cleared
        ASSERT_LT(dwNext, dw + kHour);
        added.insert(dwNext / 60 - dw / 60);
    }
    EXPECT_LE(59u, added.size()) << "moments near each other are spread over the hour";
}

TEST(UpdateJitter, DaysAreThoseOfTheFrequencyUnlessTheyAreGiven) {
    constexpr DWORD kNow = 688'000'000;
    FakeClock clock(kNow);
    for (auto [nFrequency, nDays] :
         {std::pair{0u, 1u}, {1u, 7u}, {2u, 30u}, {3u, 3650u}, {7u, 3650u}}) {
        UpdateState state;
        state.dwFrequency = nFrequency;
        state.SetupNextUpdate();
        EXPECT_EQ(AddUpdateJitter(kNow + nDays * kDay), state.dwNextUpdate) << nFrequency;
        state.SetupNextUpdate(2);
        EXPECT_EQ(AddUpdateJitter(kNow + 2 * kDay), state.dwNextUpdate) << nFrequency;
    }
}
