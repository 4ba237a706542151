#include "progress/model_bar.h"

#include <gtest/gtest.h>
#include <algorithm>
#include <limits>
#include <random>

namespace {
constexpr __int64 kMin64 = std::numeric_limits<__int64>::min();
constexpr __int64 kMax64 = std::numeric_limits<__int64>::max();
constexpr unsigned kMax32 = 0xFFFFFFFF;
constexpr int kMinInt = std::numeric_limits<int>::min();
constexpr int kMaxInt = std::numeric_limits<int>::max();

TEST(ProgressExRange, NewObjectHasDivisorOneAndNothingElse) {
    TestBar bar;
    EXPECT_EQ(1u, bar.dwDivisor);
    EXPECT_EQ(0, bar.bCanceled.load());
    EXPECT_EQ(0u, bar.nSubStep);
    EXPECT_EQ(0, bar.nLow);
    EXPECT_EQ(0, bar.nHigh);
    EXPECT_EQ(0, bar.nPos);
    EXPECT_EQ(0u, bar.qwTotalMs);
    EXPECT_EQ(0u, bar.dwSteps);
    EXPECT_EQ(0u, bar.dwLastTick);
    EXPECT_EQ(0, bar.nPaused);
    EXPECT_TRUE(bar.log.empty());
}

struct RangeCase {
    const char* pszName;
    __int64 low, high;
    unsigned dwDivisor;
    int nLow, nHigh;
};

class ProgressExRangeTable : public testing::TestWithParam<RangeCase> {};

TEST_P(ProgressExRangeTable, IsBroughtIntoBarUnits) {
    auto& row = GetParam();
    TestBar bar;
    bar.SetRange64(row.low, row.high);
    EXPECT_EQ(row.dwDivisor, bar.dwDivisor);
    EXPECT_EQ(row.nLow, bar.nLow);
    EXPECT_EQ(row.nHigh, bar.nHigh);
    EXPECT_EQ(BarLog({"range " + std::to_string(row.nLow) + " " + std::to_string(row.nHigh)}),
              bar.log);
}

INSTANTIATE_TEST_SUITE_P(
    Cases, ProgressExRangeTable,
    testing::Values(
        RangeCase{"Empty", 0, 0, 1, 0, 0}, RangeCase{"Percent", 0, 100, 1, 0, 100},
        RangeCase{"NotFromZero", 10, 20, 1, 10, 20}, RangeCase{"EqualEnds", 7, 7, 1, 7, 7},
        RangeCase{"LastWithoutDivisor", 0, 65535, 1, 0, 65535},
        RangeCase{"FirstWithDivisor", 0, 65536, 2, 0, 32768},
        RangeCase{"LastOfTwo", 0, 131070, 2, 0, 65535},
        RangeCase{"FirstOfThree", 0, 131071, 3, 0, 43690},
        RangeCase{"Million", 0, 1'000'000, 16, 0, 62500},
        RangeCase{"TenMillion", 0, 10'000'000, 153, 0, 65359},
        RangeCase{"FourGigabytes", 0, 0x100000000, 65538, 0, 65534},
        RangeCase{"LowAtTheEdge", 65535, 65535, 1, 65535, 65535},
        RangeCase{"LowBeyondTheEdge", 65536, 10, 2, 32768, 5},
        RangeCase{"BothLargeMultiply", 65536, 131072, 6, 10922, 21845},
        RangeCase{"Negative", -100, 0, 1, -100, 0}, RangeCase{"AroundZero", -50, 50, 1, -50, 50},
        RangeCase{"NegativeAtTheEdge", -65535, 65535, 1, -65535, 65535},
        RangeCase{"NegativeBeyondTheEdge", -65536, 0, 2, -32768, 0},
        RangeCase{"NegativeIsCutTowardsZero", -65537, 3, 2, -32768, 1},
        RangeCase{"NegativeAndLargeMultiply", -131070, 131070, 4, -32767, 32767},
        RangeCase{"Reversed", 100, 0, 1, 100, 0},
        RangeCase{"ReversedAndLarge", 131070, 100, 2, 65535, 50},
        RangeCase{"NegativeHighIsNoDivisor", 0, -100'000, 1, 0, -100'000},
        RangeCase{"ReversedAroundZero", 70'000, -70'000, 2, 35'000, -35'000},
        // 65535 x 0xFFFFFFFF is the last range that the divisor reaches with its 32 bits.
        RangeCase{"LargestDivisor", 0, 65535LL * 0xFFFFFFFF, kMax32, 0, 65535},
        RangeCase{"BeyondTheLargestDivisor", 0, 65535LL * 0xFFFFFFFF + 1, kMax32, 0, 65535},
        RangeCase{"DivisorThatWouldWrapToZero", 0, 65535LL << 32, kMax32, 0, 65535},
        RangeCase{"DivisorThatWouldWrapToOne", 0, (65535LL << 32) + 1, kMax32, 0, 65535},
        RangeCase{"ProductThatWouldWrapToZero", 65535LL << 16, 65535LL << 16, kMax32, 0, 0},
        // Of the largest numbers the quotient would be one more than what fits.
        RangeCase{"LargestNumber", 0, kMax64, kMax32, 0, kMaxInt},
        RangeCase{"SmallestNumber", kMin64, 0, kMax32, kMinInt, 0},
        RangeCase{"Whole64Bits", kMin64, kMax64, kMax32, kMinInt, kMaxInt},
        RangeCase{"Whole64BitsReversed", kMax64, kMin64, kMax32, kMaxInt, kMinInt},
        RangeCase{"NextToSmallestNumber", kMin64 + 1, 5, kMax32, kMinInt, 0},
        // Only what is above 0 makes the high end count.
        RangeCase{"FarDown", 0, kMin64, 1, 0, kMinInt}),
    [](const auto& row) { return std::string(row.param.pszName); });

/// The rule in numbers that cannot wrap.
unsigned DivisorOf(__int64 low, __int64 high) {
    using Wide = unsigned __int128;
    constexpr Wide kBarUnits = 65535;
    Wide magnitude = low < 0 ? Wide(0) - static_cast<Wide>(static_cast<__int128>(low)) : Wide(low);
    Wide divisor = 1;
    if (magnitude > kBarUnits) divisor = (magnitude + kBarUnits - 1) / kBarUnits;
    if (high > static_cast<__int64>(kBarUnits)) {
        divisor *= (static_cast<Wide>(high) + kBarUnits - 1) / kBarUnits;
    }
    return divisor > kMax32 ? kMax32 : static_cast<unsigned>(divisor);
}

int InBarUnits(__int64 value, unsigned dwDivisor) {
    return static_cast<int>(
        std::clamp<__int64>(value / static_cast<__int64>(dwDivisor), kMinInt, kMaxInt));
}

TEST(ProgressExRange, RandomRangesOfAllSizesKeepToTheRule) {
    std::mt19937_64 random(20261);
    for (int i = 0; i < 20000; ++i) {
        // Of any length from 1 to 64 bits.
        auto Number = [&] {
            unsigned nShift = static_cast<unsigned>(random() % 64);
            return static_cast<__int64>(random()) >> nShift;
        };
        __int64 low = Number(), high = Number(), pos = Number();
        TestBar bar;
        bar.Setup(low, high, pos);
        unsigned dwDivisor = DivisorOf(low, high);
        ASSERT_EQ(dwDivisor, bar.dwDivisor) << low << " to " << high;
        ASSERT_EQ(InBarUnits(low, dwDivisor), bar.nLow) << low << " to " << high;
        ASSERT_EQ(InBarUnits(high, dwDivisor), bar.nHigh) << low << " to " << high;
        ASSERT_EQ(InBarUnits(pos, dwDivisor), bar.nPos) << pos << " of " << low << " to " << high;
    }
}

TEST(ProgressExRange, RangeAgainStartsWithDivisorAndSubStepAnew) {
    TestBar bar;
    bar.SetRange64(0, 65535 * 3);
    bar.StepIt();
    bar.StepIt();
    EXPECT_EQ(2u, bar.nSubStep);
    bar.SetRange64(0, 65535 * 2);
    EXPECT_EQ(0u, bar.nSubStep);
    EXPECT_EQ(2u, bar.dwDivisor);
    bar.SetRange64(0, 10);
    EXPECT_EQ(1u, bar.dwDivisor);
}

TEST(ProgressExRange, RangeLeavesPositionAndTimes) {
    TestBar bar;
    bar.Setup(0, 100, 40);
    bar.dwSteps = 3;
    bar.qwTotalMs = 30;
    bar.dwLastTick = 5;
    bar.SetRange64(0, 200);
    EXPECT_EQ(40, bar.nPos);
    EXPECT_EQ(3u, bar.dwSteps);
    EXPECT_EQ(30u, bar.qwTotalMs);
    EXPECT_EQ(5u, bar.dwLastTick);
}

struct PosCase {
    const char* pszName;
    __int64 low, high, pos;
    int nPos;
};

class ProgressExPosTable : public testing::TestWithParam<PosCase> {};

TEST_P(ProgressExPosTable, IsBroughtIntoBarUnits) {
    auto& row = GetParam();
    TestBar bar;
    bar.SetRange64(row.low, row.high);
    bar.log.clear();
    bar.SetPos64(row.pos);
    EXPECT_EQ(row.nPos, bar.nPos);
    EXPECT_EQ(BarLog({"pos " + std::to_string(row.nPos)}), bar.log);
}

INSTANTIATE_TEST_SUITE_P(
    Cases, ProgressExPosTable,
    testing::Values(PosCase{"Plain", 0, 100, 42, 42}, PosCase{"Divided", 0, 131070, 1001, 500},
                    PosCase{"BeforeTheRange", 10, 20, 3, 3},
                    PosCase{"BehindTheRange", 10, 20, 33, 33}, PosCase{"Negative", -100, 0, -7, -7},
                    PosCase{"NegativeIsCutTowardsZero", -131070, 0, -1001, -500},
                    PosCase{"Middle", 0, 0x100000000, 0x80000000, 32767},
                    PosCase{"OfTheWholeRange", kMin64, kMax64, 0xFFFFFFFFLL * 12345, 12345}),
    [](const auto& row) { return std::string(row.param.pszName); });

TEST(ProgressExRange, SetupTellsRangeThenPosition) {
    TestBar bar;
    bar.Setup(0, 131070, 1001);
    EXPECT_EQ(BarLog({"range 0 65535", "pos 500"}), bar.log);
    EXPECT_EQ(500, bar.nPos);
}

struct PercentCase {
    const char* pszName;
    __int64 low, high, pos;
    int nPercent;
};

class ProgressExPercentTable : public testing::TestWithParam<PercentCase> {};

TEST_P(ProgressExPercentTable, IsOfTheRange) {
    TestBar bar;
    bar.Setup(GetParam().low, GetParam().high, GetParam().pos);
    EXPECT_EQ(GetParam().nPercent, bar.GetPercentCompleted());
}

INSTANTIATE_TEST_SUITE_P(
    Cases, ProgressExPercentTable,
    testing::Values(PercentCase{"Start", 0, 200, 0, 0}, PercentCase{"End", 0, 200, 200, 100},
                    PercentCase{"IsCut", 0, 3, 2, 66}, PercentCase{"FromLow", 100, 200, 150, 50},
                    PercentCase{"BeforeLow", 100, 200, 50, -50},
                    PercentCase{"BehindHigh", 0, 100, 250, 250},
                    PercentCase{"Negative", -100, 0, -25, 75},
                    PercentCase{"NegativeIsCutTowardsZero", 0, 300, -2, 0},
                    PercentCase{"Reversed", 100, 0, 25, 75},
                    PercentCase{"Large", 0, 1'000'000'000'000, 750'000'000'000, 75},
                    PercentCase{"LargestWithoutDivisor", 0, 65535, 65535, 100},
                    PercentCase{"EqualEndsAreNothing", 5, 5, 5, 0},
                    PercentCase{"EqualEndsAreNothingElsewhere", 5, 5, 9, 0},
                    PercentCase{"EmptyRange", 0, 0, 0, 0},
                    PercentCase{"MiddleOfTheWholeRange", kMin64, kMax64, 0, 50},
                    PercentCase{"EndOfTheWholeRange", kMin64, kMax64, kMax64, 100},
                    // More than fits.
                    PercentCase{"FarBehindATinyRange", 0, -1, 0x20000000, kMinInt}),
    [](const auto& row) { return std::string(row.param.pszName); });

TEST(ProgressExRange, PercentOfAnythingIsSomeNumber) {
    std::mt19937_64 random(4711);
    constexpr int kEdges[] = {std::numeric_limits<int>::min(),
                              std::numeric_limits<int>::min() + 1,
                              -65536,
                              -1,
                              0,
                              1,
                              65535,
                              std::numeric_limits<int>::max()};
    TestBar bar;
    for (int nLow : kEdges) {
        for (int nHigh : kEdges) {
            for (int nPos : kEdges) {
                bar.nLow = nLow;
                bar.nHigh = nHigh;
                bar.nPos = nPos;
                bar.dwSteps = 1;
                bar.qwTotalMs = random();
                bar.GetPercentCompleted(); // undefined arithmetic would end the program
                bar.GetSecondsRemaining();
            }
        }
    }
}
} // namespace
