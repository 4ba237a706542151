#include "progress/progress_window.h"
#include "progress/ticker_blocks.h"
#include "support/heap_count.h"
#include "support/test_resource_ids.h"
#include "support/test_window.h"

#include <gtest/gtest.h>
#include <functional>

namespace {
constexpr DWORD kDelayMs = 1000;

struct DueCase {
    const char* pszName;
    DWORD dwStart, nDelayMs, nElapsedMs;
    bool bShown;
};

class ProgressDueTable : public testing::TestWithParam<DueCase> {};

TEST_P(ProgressDueTable, StepBringsTheDialogUpOnceItIsDue) {
    auto& row = GetParam();
    FakeClock clock(row.dwStart);
    Progress progress(nullptr, row.nDelayMs, 0, 4, 1);
    EXPECT_FALSE(IsShown(progress));
    clock.Advance(row.nElapsedMs);
    progress.StepIt();
    EXPECT_EQ(row.bShown, IsShown(progress));
}

INSTANTIATE_TEST_SUITE_P(Cases, ProgressDueTable,
                         testing::Values(DueCase{"AtOnce", 5000, 1000, 0, false},
                                         DueCase{"JustBefore", 5000, 1000, 999, false},
                                         DueCase{"AtTheTick", 5000, 1000, 1000, true},
                                         DueCase{"LongAfter", 5000, 1000, 1'000'000, true},
                                         DueCase{"ShortDelay", 5000, 1, 1, true},
                                         DueCase{"LargeTickBefore", 0xF0000000, 1000, 999, false},
                                         DueCase{"LargeTick", 0xF0000000, 1000, 1000, true},
                                         // Over the end of the tick count.
                                         DueCase{"WrapBeforeIt", 0xFFFFFF00, 1000, 10, false},
                                         DueCase{"WrapBehindIt", 0xFFFFFF00, 1000, 999, false},
                                         DueCase{"WrapDue", 0xFFFFFF00, 1000, 1000, true}),
                         [](const auto& row) { return std::string(row.param.pszName); });

struct ClockCase {
    const char* pszName;
    void (*fnCall)(Progress&);
    bool bShown;
};

class ProgressClockTable : public testing::TestWithParam<ClockCase> {};

TEST_P(ProgressClockTable, TestsTheClockOrNot) {
    FakeClock clock;
    Progress progress(nullptr, kDelayMs, 0, 4, 1);
    GetParam().fnCall(progress);
    EXPECT_FALSE(IsShown(progress));
    clock.Advance(kDelayMs);
    GetParam().fnCall(progress);
    EXPECT_EQ(GetParam().bShown, IsShown(progress));
}

INSTANTIATE_TEST_SUITE_P(
    Cases, ProgressClockTable,
    testing::Values(
        ClockCase{"SetText", [](Progress& p) { p.SetText(2, L"text"); }, true},
        ClockCase{"SetTextFmt", [](Progress& p) { p.SetTextFmt(2, L"%d", 1); }, true},
        ClockCase{"StepIt", [](Progress& p) { p.StepIt(); }, true},
        ClockCase{"NextStep", [](Progress& p) { p.NextStep(IDS_TEST_PLAIN); }, true},
        ClockCase{"Init", [](Progress& p) { p.Init(10, IDS_TEST_PLAIN, IDS_TEST_PLAIN); }, true},
        ClockCase{"SetTitle", [](Progress& p) { p.SetTitle(L"title"); }, false},
        ClockCase{"SetTitleFmt", [](Progress& p) { p.SetTitleFmt(L"%d", 1); }, false},
        ClockCase{"SetLinesCount", [](Progress& p) { p.SetLinesCount(2); }, false},
        ClockCase{"SetRange", [](Progress& p) { p.SetRange(0, 10); }, false},
        ClockCase{"SetRange64", [](Progress& p) { p.SetRange64(0, 10); }, false},
        ClockCase{"SetPos", [](Progress& p) { p.SetPos(5); }, false},
        ClockCase{"SetPos64", [](Progress& p) { p.SetPos64(5); }, false},
        ClockCase{"EnableTicker", [](Progress& p) { p.EnableTicker(5, 10, nullptr); }, false},
        ClockCase{"PauseTicker", [](Progress& p) { p.PauseTicker(1); }, false},
        ClockCase{"Show", [](Progress& p) { p.Show(1); }, false},
        ClockCase{"Questions",
                  [](Progress& p) {
                      p.IsCanceled();
                      p.GetPos64();
                      p.GetTicker();
                  },
                  false},
        ClockCase{"Close", [](Progress& p) { p.Close(); }, false}),
    [](const auto& row) { return std::string(row.param.pszName); });

TEST(ProgressWaiting, HasNothingToReachThroughTo) {
    Progress progress(nullptr, kDelayMs, 0, 4, 1);
    EXPECT_EQ(nullptr, progress.GetDlg());
    EXPECT_EQ(nullptr, progress.GetDlgHWND());
    EXPECT_EQ(nullptr, progress.GetProgressCtrl());
    EXPECT_EQ(nullptr, progress.GetProgressEx());
    EXPECT_EQ(nullptr, progress.GetTicker());
    EXPECT_EQ(0, progress.IsCanceled());
    EXPECT_EQ(0, progress.GetPos64());
}

TEST(ProgressWaiting, WorkerThatEndsInTimeShowsNothing) {
    FakeClock clock;
    {
        Progress progress(nullptr, kDelayMs, 0, 4, 1);
        progress.Init(10, IDS_TEST_PLAIN, IDS_TEST_PLAIN);
        progress.EnableTicker(10, 10, nullptr);
        for (int i = 0; i < 10; ++i) {
            clock.Advance(50);
            EXPECT_EQ(1, progress.NextStep(IDS_TEST_PLAIN));
        }
        clock.Advance(10 * kDelayMs); // silent from here on
        progress.Close();
        EXPECT_EQ(0, progress.IsCanceled());
        EXPECT_EQ(10, progress.GetPos64());
        EXPECT_EQ(0, CountProgressWindows());
    }
    EXPECT_EQ(0, CountProgressWindows());
}

TEST(ProgressWaiting, CountsTheCallersPosition) {
    Progress progress(nullptr, 60'000, 0, 4, 1);
    progress.SetPos64(1LL << 40);
    progress.StepIt();
    progress.NextStep(IDS_TEST_PLAIN);
    EXPECT_EQ((1LL << 40) + 2, progress.GetPos64());
    progress.SetPos(7);
    EXPECT_EQ(7, progress.GetPos64());
    progress.SetPos64(-3);
    EXPECT_EQ(-3, progress.GetPos64());
    progress.Init(100, 0, 0);
    EXPECT_EQ(0, progress.GetPos64());
}

TEST(ProgressWaiting, FreesWhatItWasTold) {
    { Progress first(nullptr, 60'000, 0, 4, 1); }
    long nBlocks = CountSettledBlocks();
    {
        Progress progress(nullptr, 60'000, 0, 4, 1);
        for (int i = 0; i < 3; ++i) {
            progress.SetTitle(L"title");
            progress.SetTitleFmt(L"%d", i);
            for (int nLine = 0; nLine < 4; ++nLine) progress.SetText(nLine, L"text");
        }
        EXPECT_GT(CountLiveBlocks(), nBlocks);
    }
    EXPECT_EQ(nBlocks, CountSettledBlocks());
}

TEST(ProgressWaiting, HostileCallsAreNothing) {
    Progress progress(nullptr, 60'000, 0, 4, 1);
    progress.SetTitle(nullptr);
    for (int nLine : {-1, 4, 5, 1000, 2147483647, -2147483647 - 1}) {
        progress.SetText(nLine, L"text");
        progress.SetTextFmt(nLine, L"%d", 1);
    }
    progress.SetText(0, nullptr);
    progress.Init(0, 0xFFFF, 0xFFFF);
    EXPECT_EQ(1, progress.NextStep(0xFFFF));
    progress.Show(0);
    progress.Show(1);
    progress.PauseTicker(1);
    progress.PauseTicker(0);
    progress.Close();
    progress.Close();
    EXPECT_EQ(0, progress.IsCanceled());
}

TEST(ProgressWaiting, WithoutMemoryTextsAreLost) {
    Progress progress(nullptr, 60'000, 0, 4, 1);
    FailBlock(1);
    progress.SetTitle(L"title");
    FailBlock(1);
    progress.SetText(0, L"text");
    progress.SetText(0, L"text");
}

TEST(ProgressWaiting, WithoutMemoryForTheThreadTriesAgainAtTheNextCall) {
    FakeClock clock;
    Progress progress(nullptr, kDelayMs, 0, 4, 1);
    clock.Advance(kDelayMs);
    FailBlock(1);
    progress.StepIt();
    EXPECT_FALSE(IsShown(progress));
    EXPECT_EQ(0, progress.IsCanceled());
    progress.SetRange(0, 10);
    progress.StepIt();
    ASSERT_TRUE(IsShown(progress));
    EXPECT_EQ(2, PosOf(progress));
}

// The parent

TEST(ProgressParent, IsDisabledMeanwhile) {
    TestWindow parent;
    {
        Progress progress(parent, 60'000, 0, 4, 1);
        EXPECT_FALSE(::IsWindowEnabled(parent));
        progress.Close();
        EXPECT_FALSE(::IsWindowEnabled(parent)); // only the end gives it back
    }
    EXPECT_TRUE(::IsWindowEnabled(parent));
}

TEST(ProgressParent, ComesToTheForegroundAtTheEnd) {
    TestWindow parent, other;
    ::ShowWindow(parent, SW_SHOW);
    ::ShowWindow(other, SW_SHOW);
    {
        Progress progress(parent, 60'000, 0, 4, 1);
        ::SetForegroundWindow(other);
        EXPECT_TRUE(PumpInRealTime([&] { return ::GetForegroundWindow() == other; }));
    }
    EXPECT_TRUE(PumpInRealTime([&] { return ::GetForegroundWindow() == parent; }));
}

TEST(ProgressParent, OfAModelessOneStaysEnabled) {
    TestWindow parent;
    {
        Progress progress(nullptr, 60'000, 0, 4, 1);
        progress.SetModelessParent(parent);
        EXPECT_TRUE(::IsWindowEnabled(parent));
        ::EnableWindow(parent, FALSE); // by somebody else
    }
    EXPECT_TRUE(::IsWindowEnabled(parent));
}

TEST(ProgressParent, ThatGoesMeanwhileIsNoHarm) {
    TestWindow parent;
    Progress progress(parent, 60'000, 0, 4, 1);
    parent.Destroy();
    progress.StepIt();
}

// What was stored comes with the dialog

struct Stored {
    FakeClock clock;
    Progress progress{nullptr, kDelayMs, 0, 4, 1};

    /// The dialog comes up with a text, which changes neither range nor position.
    void Show() {
        clock.Advance(kDelayMs);
        progress.SetText(3, L"shown");
        ASSERT_TRUE(IsShown(progress));
    }
};

TEST(ProgressStored, TextsAreTheLastOnesThatWereSet) {
    Stored stored;
    stored.progress.SetTitle(L"first");
    stored.progress.SetTitleFmt(L"%s %d", L"title", 2);
    stored.progress.SetText(0, L"zero");
    stored.progress.SetText(1, L"one");
    stored.progress.SetText(1, L"another one");
    stored.progress.SetTextFmt(2, L"%d%%", 50);
    stored.Show();
    EXPECT_EQ(L"title 2", TitleOf(stored.progress));
    EXPECT_EQ(L"zero", TextOf(stored.progress, 0));
    EXPECT_EQ(L"another one", TextOf(stored.progress, 1));
    EXPECT_EQ(L"50%", TextOf(stored.progress, 2));
    EXPECT_EQ(L"shown", TextOf(stored.progress, 3));
}

TEST(ProgressStored, CopiesOfTheTextsAreKept) {
    Stored stored;
    wchar_t szTitle[] = L"title", szText[] = L"text";
    stored.progress.SetTitle(szTitle);
    stored.progress.SetText(0, szText);
    szTitle[0] = szText[0] = L'X';
    stored.Show();
    EXPECT_EQ(L"title", TitleOf(stored.progress));
    EXPECT_EQ(L"text", TextOf(stored.progress, 0));
}

TEST(ProgressStored, FormattedTextsAreCutAt1023Characters) {
    Stored stored;
    std::wstring str(1500, L'w');
    stored.progress.SetTitleFmt(L"%s", str.c_str());
    stored.progress.SetTextFmt(0, L"%s", str.c_str());
    stored.progress.SetText(1, str.c_str());
    stored.Show();
    EXPECT_EQ(str.substr(0, 1023), TitleOf(stored.progress));
    EXPECT_EQ(str.substr(0, 1023), TextOf(stored.progress, 0));
    EXPECT_EQ(str, TextOf(stored.progress, 1));
}

TEST(ProgressStored, NothingLeavesTheDialogAsItIsMade) {
    Stored stored;
    stored.Show();
    EXPECT_EQ(L"Processing...", TitleOf(stored.progress));
    for (int n = 0; n < 3; ++n) EXPECT_EQ(L"", TextOf(stored.progress, n)) << n;
    EXPECT_EQ(0, LowOf(stored.progress));
    EXPECT_EQ(1, HighOf(stored.progress));
    EXPECT_EQ(0, PosOf(stored.progress));
    EXPECT_EQ(nullptr, stored.progress.GetTicker());
}

struct HandOverCase {
    const char* pszName;
    void (*fnBefore)(Progress&);
    int nLow, nHigh, nPos; // of the bar
    __int64 qwPos;         // the caller's
};

class ProgressHandOverTable : public testing::TestWithParam<HandOverCase> {};

TEST_P(ProgressHandOverTable, ReachesTheBar) {
    auto& row = GetParam();
    Stored stored;
    row.fnBefore(stored.progress);
    stored.Show();
    EXPECT_EQ(row.nLow, LowOf(stored.progress));
    EXPECT_EQ(row.nHigh, HighOf(stored.progress));
    EXPECT_EQ(row.nPos, PosOf(stored.progress));
    EXPECT_EQ(row.qwPos, stored.progress.GetPos64());
}

void StepTimes(Progress& progress, int n) {
    for (int i = 0; i < n; ++i) progress.StepIt();
}

INSTANTIATE_TEST_SUITE_P(
    Cases, ProgressHandOverTable,
    testing::Values(
        HandOverCase{"Range", [](Progress& p) { p.SetRange(5, 50); }, 5, 50, 5, 0},
        HandOverCase{"Range64", [](Progress& p) { p.SetRange64(0, 1LL << 40); }, 0, 65534, 0, 0},
        HandOverCase{"LastRange",
                     [](Progress& p) {
                         p.SetRange(5, 50);
                         p.SetRange64(0, 7);
                     },
                     0, 7, 0, 0},
        HandOverCase{"NegativeLowIsNone", [](Progress& p) { p.SetRange(-5, 50); }, 0, 1, 0, 0},
        HandOverCase{"NegativeHighIsNone", [](Progress& p) { p.SetRange(5, -50); }, 0, 1, 0, 0},
        HandOverCase{"Steps",
                     [](Progress& p) {
                         p.SetRange(0, 20);
                         StepTimes(p, 5);
                     },
                     0, 20, 5, 5},
        HandOverCase{"StepsWithDivisor",
                     [](Progress& p) {
                         p.SetRange64(0, 131070);
                         StepTimes(p, 201);
                     },
                     0, 65535, 100, 201},
        HandOverCase{"Position",
                     [](Progress& p) {
                         p.SetRange64(0, 131070);
                         p.SetPos64(1000);
                     },
                     0, 65535, 500, 1000},
        HandOverCase{"PositionZeroBehindSteps",
                     [](Progress& p) {
                         p.SetRange(0, 20);
                         StepTimes(p, 5);
                         p.SetPos(0);
                     },
                     0, 20, 0, 0},
        HandOverCase{"PositionGoesBehindSteps",
                     [](Progress& p) {
                         p.SetRange(0, 20);
                         p.SetPos(3);
                         StepTimes(p, 2);
                     },
                     0, 20, 3, 5},
        HandOverCase{"NegativePositionIsNone",
                     [](Progress& p) {
                         p.SetRange(0, 20);
                         StepTimes(p, 2);
                         p.SetPos(-7);
                     },
                     0, 20, 2, -7},
        HandOverCase{"Init",
                     [](Progress& p) {
                         StepTimes(p, 2);
                         p.Init(30, 0, 0);
                     },
                     0, 30, 0, 0}),
    [](const auto& row) { return std::string(row.param.pszName); });

TEST(ProgressStored, StepThatBringsTheDialogUpCounts) {
    Stored stored;
    stored.progress.SetRange(0, 20);
    StepTimes(stored.progress, 4);
    stored.clock.Advance(kDelayMs);
    stored.progress.StepIt();
    EXPECT_EQ(5, PosOf(stored.progress));
    EXPECT_EQ(5, stored.progress.GetPos64());
}

TEST(ProgressStored, InitSetsTitleAndSecondLine) {
    Stored stored;
    stored.progress.Init(10, IDS_TEST_PLAIN, IDS_TEST_NUMBER_AND_TEXT);
    stored.Show();
    EXPECT_EQ(L"plain test string", TitleOf(stored.progress));
    EXPECT_EQ(L"number %d, text %s", TextOf(stored.progress, 1));
    EXPECT_EQ(L"", TextOf(stored.progress, 0));
}

TEST(ProgressStored, InitWithoutStringsEmptiesBoth) {
    Stored stored;
    stored.progress.SetTitle(L"title");
    stored.progress.SetText(1, L"text");
    stored.progress.Init(10, 0xFFF0, 0xFFF1);
    stored.Show();
    EXPECT_EQ(L"", TitleOf(stored.progress));
    EXPECT_EQ(L"", TextOf(stored.progress, 1));
}

TEST(ProgressStored, TickerStartsWithTheDialogAndTellsItsEnd) {
    unsigned long nResult = 4711;
    Stored stored;
    stored.progress.EnableTicker(5, 4, &nResult);
    EXPECT_EQ(nullptr, stored.progress.GetTicker());
    stored.Show();
    EXPECT_NE(nullptr, stored.progress.GetTicker());
    EXPECT_TRUE(PumpInRealTime([&] { return PosOf(stored.progress) == 4; }));
    stored.progress.Close();
    EXPECT_EQ(4u, nResult);
}

TEST(ProgressStored, TickerOfIntervalZeroIsNone) {
    Stored stored;
    stored.progress.EnableTicker(0, 4, nullptr);
    stored.Show();
    EXPECT_EQ(nullptr, stored.progress.GetTicker());
}
} // namespace
