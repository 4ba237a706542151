#include "progress/progress_ex.h"
#include "progress/progress_top_log.h"
#include "progress/progress_window.h"
#include "progress/ticker_blocks.h"
#include "support/heap_count.h"
#include "support/test_resource_ids.h"
#include "support/test_window.h"

#include <gtest/gtest.h>
#include <thread>

namespace {
TEST(ProgressShown, WithoutDelayComesUpAtOnce) {
    Progress progress;
    ASSERT_TRUE(IsShown(progress));
    EXPECT_TRUE(::IsWindow(WindowOf(progress)));
    EXPECT_NE(nullptr, progress.GetDlg());
    EXPECT_NE(nullptr, progress.GetProgressCtrl());
    EXPECT_NE(nullptr, progress.GetProgressEx());
    EXPECT_EQ(nullptr, progress.GetTicker());
    EXPECT_EQ(1, CountProgressWindows());
    progress.Close();
    EXPECT_EQ(nullptr, progress.GetDlg());
    EXPECT_EQ(nullptr, progress.GetDlgHWND());
    EXPECT_EQ(nullptr, progress.GetProgressCtrl());
    EXPECT_EQ(nullptr, progress.GetProgressEx());
    EXPECT_EQ(0, progress.IsCanceled());
    EXPECT_EQ(0, CountProgressWindows());
}

TEST(ProgressShown, DestructorClosesTheDialog) {
    { Progress progress(nullptr, 0, 0, 0, 1); }
    EXPECT_EQ(0, CountProgressWindows());
}

TEST(ProgressShown, NoLinesAreFour) {
    Progress progress(nullptr, 0, 0, 0, 1);
    for (int n = 0; n < 4; ++n) {
        HWND hwndLine = ::GetDlgItem(WindowOf(progress), kShownLineId + n);
        EXPECT_NE(0, ::GetWindowLongPtrW(hwndLine, GWL_STYLE) & WS_VISIBLE) << n;
    }
}

TEST(ProgressShown, LinesAreCountedBeforeItIsShown) {
    FakeClock clock;
    Progress progress(nullptr, 100, 0, 4, 1);
    progress.SetLinesCount(2);
    clock.Advance(100);
    progress.StepIt();
    for (int n = 0; n < 4; ++n) {
        HWND hwndLine = ::GetDlgItem(WindowOf(progress), kShownLineId + n);
        EXPECT_EQ(n < 2, (::GetWindowLongPtrW(hwndLine, GWL_STYLE) & WS_VISIBLE) != 0) << n;
    }
}

TEST(ProgressShown, TextsAreSetAtOnce) {
    Progress progress;
    progress.SetTitle(L"title");
    EXPECT_EQ(L"title", TitleOf(progress));
    progress.SetTitleFmt(L"%d of %d", 1, 2);
    EXPECT_EQ(L"1 of 2", TitleOf(progress));
    for (int n = 0; n < 4; ++n) {
        progress.SetTextFmt(n, L"line %d", n);
        EXPECT_EQ(L"line " + std::to_wstring(n), TextOf(progress, n));
        progress.SetText(n, L"%s");
        EXPECT_EQ(L"%s", TextOf(progress, n));
    }
    std::wstring str(1500, L'w');
    progress.SetTextFmt(0, L"%s", str.c_str());
    EXPECT_EQ(str.substr(0, 1023), TextOf(progress, 0));
    progress.SetTitleFmt(L"%s", str.c_str());
    EXPECT_EQ(str.substr(0, 1023), TitleOf(progress));
}

TEST(ProgressShown, HostileTextsAreNothing) {
    Progress progress;
    progress.SetText(3, L"three");
    for (int nLine : {-1, 4, 5, 1000, 2147483647, -2147483647 - 1}) {
        progress.SetText(nLine, L"text");
    }
    EXPECT_EQ(L"three", TextOf(progress, 3));
    progress.SetText(3, nullptr);
    EXPECT_EQ(L"", TextOf(progress, 3));
    progress.SetTitle(nullptr);
    EXPECT_EQ(L"", TitleOf(progress));
}

struct TextCase {
    const char* pszName;
    DWORD dwStart;
};

class ProgressTextIntervalTable : public testing::TestWithParam<TextCase> {};

TEST_P(ProgressTextIntervalTable, TextsWithinItAreDropped) {
    FakeClock clock(GetParam().dwStart);
    Progress progress(nullptr, 0, 200, 4, 1);
    auto IsTaken = [&](int nLine, const wchar_t* psz) {
        progress.SetText(nLine, psz);
        return TextOf(progress, nLine) == psz;
    };
    EXPECT_FALSE(IsTaken(0, L"at once")); // it runs from the beginning
    clock.Advance(199);
    EXPECT_FALSE(IsTaken(1, L"199 ms"));
    clock.Advance(1);
    EXPECT_TRUE(IsTaken(0, L"200 ms"));
    EXPECT_FALSE(IsTaken(0, L"again"));
    EXPECT_FALSE(IsTaken(1, L"other line"));
    EXPECT_EQ(L"200 ms", TextOf(progress, 0));
    clock.Advance(199);
    EXPECT_FALSE(IsTaken(1, L"399 ms"));
    clock.Advance(1);
    EXPECT_TRUE(IsTaken(1, L"400 ms"));
    clock.Advance(5000);
    EXPECT_TRUE(IsTaken(2, L"5400 ms"));
    EXPECT_FALSE(IsTaken(2, L"5400 ms again"));
    progress.SetTitle(L"title"); // is no text
    EXPECT_EQ(L"title", TitleOf(progress));
}

INSTANTIATE_TEST_SUITE_P(Cases, ProgressTextIntervalTable,
                         testing::Values(TextCase{"Plain", 100'000},
                                         TextCase{"LargeTicks", 0xF0000000},
                                         TextCase{"OverTheWrap", 0xFFFFFF80}),
                         [](const auto& row) { return std::string(row.param.pszName); });

TEST(ProgressShown, DroppedTextsAreNotShownLater) {
    FakeClock clock;
    Progress progress(nullptr, 0, 200, 4, 1);
    progress.SetText(0, L"dropped");
    clock.Advance(200);
    progress.SetText(1, L"taken");
    EXPECT_EQ(L"", TextOf(progress, 0));
    EXPECT_EQ(L"taken", TextOf(progress, 1));
}

TEST(ProgressShown, TextOfAFormatFollowsTheInterval) {
    FakeClock clock;
    Progress progress(nullptr, 0, 200, 4, 1);
    progress.SetTextFmt(0, L"%d", 1);
    EXPECT_EQ(L"", TextOf(progress, 0));
    clock.Advance(200);
    progress.SetTextFmt(0, L"%d", 2);
    EXPECT_EQ(L"2", TextOf(progress, 0));
}

TEST(ProgressShown, RangeBeginsAtZeroAgainThatOf64BitsDoesNot) {
    Progress progress;
    progress.SetRange(0, 100);
    EXPECT_EQ(0, LowOf(progress));
    EXPECT_EQ(100, HighOf(progress));
    progress.SetPos(40);
    EXPECT_EQ(40, PosOf(progress));
    progress.SetRange64(0, 200);
    EXPECT_EQ(200, HighOf(progress));
    EXPECT_EQ(40, PosOf(progress));
    EXPECT_EQ(20, progress.GetProgressEx()->GetPercentCompleted());
    progress.SetRange(0, 50);
    EXPECT_EQ(50, HighOf(progress));
    EXPECT_EQ(0, PosOf(progress));
    EXPECT_EQ(0, progress.GetProgressEx()->GetPercentCompleted());
}

TEST(ProgressShown, RangesMayBeNegativeNow) {
    Progress progress;
    progress.SetRange(-50, 50);
    EXPECT_EQ(-50, LowOf(progress));
    EXPECT_EQ(50, HighOf(progress));
    EXPECT_EQ(0, PosOf(progress));
    progress.SetPos(-20);
    EXPECT_EQ(-20, PosOf(progress));
    EXPECT_EQ(-20, progress.GetPos64());
}

TEST(ProgressShown, PositionIsInBarUnits) {
    Progress progress;
    progress.SetRange64(0, 131070);
    progress.SetPos64(1001);
    EXPECT_EQ(500, PosOf(progress));
    EXPECT_EQ(1001, progress.GetPos64());
    progress.SetPos(30);
    EXPECT_EQ(15, PosOf(progress));
    EXPECT_EQ(30, progress.GetPos64());
}

TEST(ProgressShown, StepsMoveTheBarOncePerDivisor) {
    Progress progress;
    progress.SetRange64(0, 131070);
    progress.StepIt();
    EXPECT_EQ(0, PosOf(progress));
    progress.StepIt();
    EXPECT_EQ(1, PosOf(progress));
    progress.StepIt();
    EXPECT_EQ(1, PosOf(progress));
    EXPECT_EQ(3, progress.GetPos64());
}

struct TopCase {
    const char* pszName;
    void (*fnCall)(Progress&);
    const char *pszBehind, *pszInFront;
};

class ProgressTopTable : public testing::TestWithParam<TopCase> {};

TEST_P(ProgressTopTable, MoveOfTheBarBringsTheDialogToTheTop) {
    Progress progress;
    for (bool bInFront : {false, true}) {
        progress.SetRange(0, 10);
        progress.StepIt();
        TopLog log(progress, bInFront);
        GetParam().fnCall(progress);
        EXPECT_EQ(bInFront ? GetParam().pszInFront : GetParam().pszBehind, log.Take());
    }
}

INSTANTIATE_TEST_SUITE_P(
    Cases, ProgressTopTable,
    testing::Values(TopCase{"SetPos", [](Progress& p) { p.SetPos(5); }, "top update ", "update "},
                    TopCase{"StepIt", [](Progress& p) { p.StepIt(); }, "top update ", "update "},
                    TopCase{"SetText", [](Progress& p) { p.SetText(0, L"text"); }, "", ""},
                    TopCase{"SetRange64", [](Progress& p) { p.SetRange64(0, 20); }, "", ""}),
    [](const auto& row) { return std::string(row.param.pszName); });

TEST(ProgressShown, StepsAreTimed) {
    FakeClock clock;
    Progress progress;
    progress.SetRange(0, 100);
    for (int i = 0; i < 5; ++i) {
        progress.StepIt();
        clock.Advance(1000);
    }
    EXPECT_EQ(1000u, progress.GetProgressEx()->GetAverageStepDuration());
    EXPECT_EQ(95u, progress.GetProgressEx()->GetSecondsRemaining());
}

TEST(ProgressShown, InitSetsAllAtOnce) {
    Progress progress;
    progress.SetPos64(77);
    progress.Init(300, IDS_TEST_PLAIN, IDS_TEST_NUMBER_AND_TEXT);
    EXPECT_EQ(0, LowOf(progress));
    EXPECT_EQ(300, HighOf(progress));
    EXPECT_EQ(0, PosOf(progress));
    EXPECT_EQ(0, progress.GetPos64());
    EXPECT_EQ(L"plain test string", TitleOf(progress));
    EXPECT_EQ(L"number %d, text %s", TextOf(progress, 1));
    progress.Init(200'000, 0xFFF0, 0xFFF1);
    EXPECT_EQ(50'000, HighOf(progress)); // of four
    EXPECT_EQ(L"", TitleOf(progress));
    EXPECT_EQ(L"", TextOf(progress, 1));
}

TEST(ProgressShown, NextStepStepsAndSaysWhatIsNext) {
    Progress progress;
    progress.SetRange(0, 10);
    EXPECT_EQ(1, progress.NextStep(IDS_TEST_PLAIN));
    EXPECT_EQ(1, PosOf(progress));
    EXPECT_EQ(1, progress.GetPos64());
    EXPECT_EQ(L"plain test string", TextOf(progress, 1));
    EXPECT_EQ(1, progress.NextStep(0xFFF0));
    EXPECT_EQ(2, PosOf(progress));
    EXPECT_EQ(L"", TextOf(progress, 1));
}

TEST(ProgressShown, CanBeHiddenAndShown) {
    Progress progress;
    EXPECT_TRUE(Settle(progress));
    progress.Show(0);
    EXPECT_FALSE(::IsWindowVisible(WindowOf(progress)));
    TestWindow other;
    ::ShowWindow(other, SW_SHOW);
    ::SetForegroundWindow(other);
    progress.Show(1);
    EXPECT_TRUE(::IsWindowVisible(WindowOf(progress)));
    EXPECT_TRUE(PumpInRealTime([&] { return ::GetForegroundWindow() == WindowOf(progress); }));
}

TEST(ProgressShown, TickerRunsInTheDialog) {
    unsigned long nResult = 4711;
    Progress progress;
    progress.EnableTicker(5, 1000, &nResult);
    ASSERT_NE(nullptr, progress.GetTicker());
    EXPECT_EQ(1000, HighOf(progress));
    EXPECT_TRUE(PumpInRealTime([&] { return PosOf(progress) >= 2; }));
    progress.PauseTicker(1);
    PumpInRealTime([] { return false; }, std::chrono::milliseconds(50)); // one may be under way
    int nPos = PosOf(progress);
    EXPECT_FALSE(
        PumpInRealTime([&] { return PosOf(progress) > nPos; }, std::chrono::milliseconds(50)));
    progress.PauseTicker(0);
    EXPECT_TRUE(PumpInRealTime([&] { return PosOf(progress) > nPos; }));
    nPos = PosOf(progress);
    progress.Close();
    EXPECT_EQ(nullptr, progress.GetTicker());
    EXPECT_GE(nResult, static_cast<unsigned long>(nPos));
    EXPECT_LE(nResult, 1000u);
}

TEST(ProgressShown, OwnMessagesOfTheWorkerGoOnWithItsTexts) {
    Progress progress;
    int nSent = 0;
    TestWindow window([&](UINT uMsg, WPARAM, LPARAM) -> std::optional<LRESULT> {
        if (uMsg == WM_APP) ++nSent;
        return {};
    });
    // Sent from another thread: it waits until this one looks at its messages.
    std::thread sender([hwnd = window.Get()] { ::SendNotifyMessageW(hwnd, WM_APP, 0, 0); });
    sender.join();
    progress.SetText(0, L"text");
    EXPECT_EQ(1, nSent);
}

struct QuitCase {
    const char* pszName;
    void (*fnCall)(Progress&);
};

class ProgressQuitTable : public testing::TestWithParam<QuitCase> {};

TEST_P(ProgressQuitTable, QuitStaysForTheOuterLoop) {
    FakeClock clock;
    Progress shown, waiting(nullptr, 100, 0, 4, 1);
    clock.Advance(100);
    ::PostQuitMessage(7);
    GetParam().fnCall(shown);
    GetParam().fnCall(waiting);
    shown.Close();
    waiting.Close();
    MSG msg{};
    EXPECT_TRUE(::PeekMessageW(&msg, nullptr, WM_QUIT, WM_QUIT, PM_REMOVE));
    EXPECT_EQ(7u, msg.wParam);
    EXPECT_FALSE(::PeekMessageW(&msg, nullptr, WM_QUIT, WM_QUIT, PM_REMOVE));
}

INSTANTIATE_TEST_SUITE_P(
    Cases, ProgressQuitTable,
    testing::Values(QuitCase{"StepIt", [](Progress& p) { p.StepIt(); }},
                    QuitCase{"SetText", [](Progress& p) { p.SetText(0, L"text"); }},
                    QuitCase{"Ticker", [](Progress& p) { p.EnableTicker(5, 10, nullptr); }},
                    QuitCase{"Close", [](Progress& p) { p.Close(); }}),
    [](const auto& row) { return std::string(row.param.pszName); });

// Its end

TEST(ProgressFinished, CanceledByHandIsToldToTheWorker) {
    Progress progress;
    progress.SetRange(0, 10);
    EXPECT_EQ(1, progress.NextStep(IDS_TEST_PLAIN));
    ASSERT_TRUE(CancelByHand(progress));
    EXPECT_TRUE(PumpInRealTime([&] { return progress.IsCanceled() == 1; }));
    EXPECT_EQ(0, progress.NextStep(IDS_TEST_PLAIN));
    EXPECT_EQ(1, progress.GetPos64()); // not stepped
    EXPECT_EQ(nullptr, progress.GetProgressCtrl());
    EXPECT_EQ(nullptr, progress.GetProgressEx());
}

TEST(ProgressFinished, WorkerThatGoesOnHarmsNothing) {
    Progress progress;
    ASSERT_TRUE(CancelByHand(progress));
    progress.SetTitle(L"title");
    progress.SetRange(0, 10);
    progress.SetRange64(0, 10);
    progress.SetPos64(5);
    for (int i = 0; i < 5; ++i) {
        progress.StepIt();
        progress.SetTextFmt(i % 4, L"%d", i);
    }
    progress.Show(1);
    progress.Show(0);
    progress.PauseTicker(1);
    EXPECT_EQ(10, progress.GetPos64());
    EXPECT_FALSE(IsShown(progress));
    EXPECT_EQ(0, CountProgressWindows());
    progress.Close();
    EXPECT_EQ(1, progress.IsCanceled());
}

TEST(ProgressFinished, NotCanceledWhenClosed) {
    Progress progress;
    progress.StepIt();
    progress.Close();
    EXPECT_EQ(0, progress.IsCanceled());
    progress.Close();
    EXPECT_EQ(0, progress.IsCanceled());
}

struct AgainCase {
    const char* pszName;
    DWORD dwTick;
    void (*fnCall)(Progress&);
    bool bShown;
};

class ProgressAgainTable : public testing::TestWithParam<AgainCase> {};

TEST_P(ProgressAgainTable, CallAfterCloseBringsANewDialogUpAtOnce) {
    FakeClock clock(GetParam().dwTick);
    Progress progress(nullptr, 0, 0, 4, 1);
    ASSERT_TRUE(IsShown(progress));
    progress.Close();
    ASSERT_FALSE(IsShown(progress));
    GetParam().fnCall(progress);
    EXPECT_EQ(GetParam().bShown, IsShown(progress));
    progress.Close();
    EXPECT_EQ(0, progress.IsCanceled());
    EXPECT_EQ(0, CountProgressWindows());
}

INSTANTIATE_TEST_SUITE_P(
    Cases, ProgressAgainTable,
    testing::Values(AgainCase{"StepIt", 5000, [](Progress& p) { p.StepIt(); }, true},
                    AgainCase{"SetText", 5000, [](Progress& p) { p.SetText(0, L"t"); }, true},
                    AgainCase{"StepItAtLargeTicks", 0xF0000000, [](Progress& p) { p.StepIt(); },
                              true},
                    AgainCase{"SetPos", 5000, [](Progress& p) { p.SetPos(1); }, false}),
    [](const auto& row) { return std::string(row.param.pszName); });

TEST(ProgressFinished, SecondDialogHasWhatWasToldBetween) {
    Progress progress;
    progress.SetText(0, L"first");
    progress.SetRange(0, 100);
    progress.SetPos(60);
    progress.Close();
    progress.SetTitle(L"second");
    progress.SetRange(0, 30);
    progress.SetPos(10);
    progress.SetText(1, L"again");
    ASSERT_TRUE(IsShown(progress));
    EXPECT_EQ(L"second", TitleOf(progress));
    EXPECT_EQ(L"", TextOf(progress, 0));
    EXPECT_EQ(L"again", TextOf(progress, 1));
    EXPECT_EQ(30, HighOf(progress));
    EXPECT_EQ(10, PosOf(progress));
}

TEST(ProgressFinished, ParentIsGivenBackWhenTheUserHasCanceled) {
    TestWindow parent;
    {
        Progress progress(parent, 0, 0, 4, 1);
        EXPECT_FALSE(::IsWindowEnabled(parent));
        ASSERT_TRUE(CancelByHand(progress));
        EXPECT_FALSE(::IsWindowEnabled(parent));
    }
    EXPECT_TRUE(::IsWindowEnabled(parent));
}

// The guards

TEST(ProgressDeleter, DestroysAndFrees) {
    TestWindow parent;
    { ProgressDeleter none(nullptr); }
    { ProgressDeleter first(new Progress(nullptr, 60'000, 0, 4, 1)); }
    long nBlocks = CountSettledBlocks();
    {
        ProgressDeleter deleter(new Progress(parent, 60'000, 0, 4, 1));
        EXPECT_FALSE(::IsWindowEnabled(parent));
    }
    EXPECT_TRUE(::IsWindowEnabled(parent));
    EXPECT_EQ(nBlocks, CountSettledBlocks());
    { ProgressDeleter shown(new Progress()); }
    EXPECT_EQ(0, CountProgressWindows());
}

TEST(ProgressPauseHide, HidesForAPromptAndComesBack) {
    Progress progress;
    progress.EnableTicker(5, 60'000, nullptr);
    EXPECT_TRUE(Settle(progress));
    EXPECT_TRUE(PumpInRealTime([&] { return PosOf(progress) >= 1; }));
    TestWindow prompt;
    int nPos = 0;
    {
        ProgressPauseHide hide(&progress);
        EXPECT_FALSE(::IsWindowVisible(WindowOf(progress)));
        ::ShowWindow(prompt, SW_SHOW);
        ::SetForegroundWindow(prompt);
        PumpInRealTime([] { return false; }, std::chrono::milliseconds(50)); // one is under way
        nPos = PosOf(progress);
        EXPECT_FALSE(
            PumpInRealTime([&] { return PosOf(progress) > nPos; }, std::chrono::milliseconds(50)));
    }
    EXPECT_TRUE(::IsWindowVisible(WindowOf(progress)));
    EXPECT_TRUE(PumpInRealTime([&] { return ::GetForegroundWindow() == WindowOf(progress); }));
    EXPECT_TRUE(PumpInRealTime([&] { return PosOf(progress) > nPos; }));
}

TEST(ProgressPauseHide, BeforeTheDialogIsNothing) {
    Progress progress(nullptr, 60'000, 0, 4, 1);
    { ProgressPauseHide hide(&progress); }
    EXPECT_FALSE(IsShown(progress));
}

TEST(ProgressPauseHide, DialogThatGoesMeanwhileIsNoHarm) {
    Progress progress;
    progress.EnableTicker(5, 60'000, nullptr);
    {
        ProgressPauseHide hide(&progress);
        progress.Close();
    }
    EXPECT_FALSE(IsShown(progress));
}
} // namespace
