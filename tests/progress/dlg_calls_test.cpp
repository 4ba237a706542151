// The worker's calls while the dialog is there.

#include "progress/dlg_support.h"
#include "support/test_window.h"

namespace {
class ProgressCalls : public ProgressDialogTest {};

/// Which of the two lies over the other.
bool IsOver(HWND hwnd, HWND hwndOther) {
    for (HWND h = ::GetTopWindow(nullptr); h; h = ::GetWindow(h, GW_HWNDNEXT)) {
        if (h == hwnd || h == hwndOther) return h == hwnd;
    }
    return false;
}
} // namespace

TEST_F(ProgressCalls, TitleAndLinesAreSetAtOnce) {
    Progress progress;
    HWND hwnd = progress.GetDlgHWND();
    progress.SetTitle(L"one");
    EXPECT_EQ(TextOf(hwnd), L"one");
    progress.SetTitleFmt(L"%s %d", L"two", 2);
    EXPECT_EQ(TextOf(hwnd), L"two 2");
    for (int n = 0; n < 4; ++n) {
        progress.SetTextFmt(n, L"line %d", n);
        EXPECT_EQ(LineOf(hwnd, n), L"line " + std::to_wstring(n));
    }
    progress.SetText(1, L"");
    EXPECT_EQ(LineOf(hwnd, 1), L"");
    EXPECT_EQ(LineOf(hwnd, 0), L"line 0");
}

TEST_F(ProgressCalls, LineThatThereIsNotIsNothing) {
    Progress progress;
    HWND hwnd = progress.GetDlgHWND();
    for (int nLine : {-1, 4, 100, INT_MAX, INT_MIN}) progress.SetText(nLine, L"text");
    for (int n = 0; n < 4; ++n) EXPECT_EQ(LineOf(hwnd, n), L"");
    EXPECT_EQ(TextOf(hwnd), kTemplateTitle);
}

TEST_F(ProgressCalls, BarFollowsRangePositionAndSteps) {
    Progress progress;
    HWND hwnd = progress.GetDlgHWND();
    progress.SetRange(0, 40);
    EXPECT_EQ(BarEnd(hwnd, true), 0);
    EXPECT_EQ(BarEnd(hwnd, false), 40);
    progress.SetPos(30);
    EXPECT_EQ(BarPos(hwnd), 30);
    EXPECT_EQ(progress.GetPos64(), 30);
    progress.StepIt();
    EXPECT_EQ(BarPos(hwnd), 31);
    EXPECT_EQ(progress.GetPos64(), 31);
    progress.SetRange(10, 20); // back to 0 in the bar's units, which the bar holds within its range
    EXPECT_EQ(BarPos(hwnd), 10);
    progress.SetRange64(0, 262140);
    progress.SetPos64(131072);
    EXPECT_EQ(BarEnd(hwnd, false), 65535);
    EXPECT_EQ(BarPos(hwnd), 32768);
    for (int n = 0; n < 3; ++n) progress.StepIt();
    EXPECT_EQ(BarPos(hwnd), 32768);
    progress.StepIt();
    EXPECT_EQ(BarPos(hwnd), 32769);
    EXPECT_EQ(progress.GetPos64(), 131076);
}

TEST_F(ProgressCalls, StepsThatMoveTheBarBringTheDialogToTheTop) {
    Progress progress;
    HWND hwnd = progress.GetDlgHWND();
    progress.SetRange64(0, 131070); // 2 to a unit
    TestWindow other;
    auto isFirst = [&] { return IsOver(hwnd, other); };
    auto coverBy = [&] {
        ::SetWindowPos(other, HWND_TOP, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE | SWP_SHOWWINDOW);
    };
    coverBy();
    ASSERT_FALSE(isFirst());
    progress.StepIt();
    EXPECT_FALSE(isFirst());
    progress.StepIt();
    EXPECT_TRUE(PumpUntil(isFirst)); // a step that nobody could see yet may wait a moment
    coverBy();
    progress.SetPos64(77);
    EXPECT_TRUE(PumpUntil(isFirst));
}

TEST_F(ProgressCalls, StepBringsADialogUpThatIsInTheForegroundButCovered) {
    Progress progress;
    HWND hwnd = progress.GetDlgHWND();
    progress.SetRange(0, 10);
    TestWindow other;
    ASSERT_TRUE(PumpUntil([&] { // the dialog's loop may show it once more meanwhile
        ::SetWindowPos(other, HWND_TOP, 0, 0, 0, 0,
                       SWP_NOMOVE | SWP_NOSIZE | SWP_SHOWWINDOW | SWP_NOACTIVATE);
        return IsOver(other, hwnd) && ::GetForegroundWindow() == hwnd;
    }));
    progress.StepIt();
    EXPECT_TRUE(PumpUntil([&] { return IsOver(hwnd, other); }));
}

TEST_F(ProgressCalls, NextStepStepsTellsAndGoesOn) {
    Progress progress;
    HWND hwnd = progress.GetDlgHWND();
    progress.SetRange64(0, 100);
    EXPECT_EQ(progress.NextStep(28008), 1);
    EXPECT_EQ(BarPos(hwnd), 1);
    EXPECT_EQ(LineOf(hwnd, 1), kQuestion);
    EXPECT_EQ(progress.NextStep(64999), 1); // there is no such string
    EXPECT_EQ(BarPos(hwnd), 2);
    EXPECT_EQ(LineOf(hwnd, 1), L"");
    EXPECT_EQ(progress.GetPos64(), 2);
}

TEST_F(ProgressCalls, InitSetsRangeTitleAndText) {
    Progress progress;
    HWND hwnd = progress.GetDlgHWND();
    progress.SetPos64(1);
    progress.Init(70, 28008, 28008);
    EXPECT_EQ(BarEnd(hwnd, false), 70);
    EXPECT_EQ(BarPos(hwnd), 0);
    EXPECT_EQ(TextOf(hwnd), kQuestion);
    EXPECT_EQ(LineOf(hwnd, 1), kQuestion);
    progress.Init(7, 64999, 64999);
    EXPECT_EQ(TextOf(hwnd), L"");
    EXPECT_EQ(LineOf(hwnd, 1), L"");
}

TEST_F(ProgressCalls, ShowHidesAndShows) {
    Progress progress;
    HWND hwnd = progress.GetDlgHWND();
    progress.Show(0);
    EXPECT_FALSE(::IsWindowVisible(hwnd));
    TestWindow other;
    ::ShowWindow(other, SW_SHOW);
    ::SetForegroundWindow(other);
    progress.Show(1);
    EXPECT_TRUE(::IsWindowVisible(hwnd));
    EXPECT_TRUE(PumpUntil([&] { return ::GetForegroundWindow() == hwnd; }));
    progress.Show(0);
    progress.Close(); // also of a hidden one
    EXPECT_FALSE(::IsWindow(hwnd));
    progress.Show(1);
}

TEST_F(ProgressCalls, DialogHiddenWhileItComesUpStaysHidden) {
    for (int n = 0; n < 10; ++n) {
        Progress progress;
        progress.Show(0);
        HWND hwnd = progress.GetDlgHWND();
        EXPECT_TRUE(HoldsFor([&] { return !::IsWindowVisible(hwnd); }, 50));
        progress.Show(1);
        EXPECT_TRUE(::IsWindowVisible(hwnd));
    }
}

TEST_F(ProgressCalls, TextKeepsTheWorkersOwnWindowsAlive) {
    int nSent = 0, nPosted = 0;
    TestWindow window([&](UINT uMsg, WPARAM, LPARAM) -> std::optional<LRESULT> {
        nSent += uMsg == WM_APP + 1;
        nPosted += uMsg == WM_APP + 2;
        return {};
    });
    Progress progress;
    HWND hwnd = window;
    std::thread other([&] {
        ::SendNotifyMessageW(hwnd, WM_APP + 1, 0, 0);
        ::PostMessageW(hwnd, WM_APP + 2, 0, 0);
    });
    other.join();
    progress.SetText(0, L"text");
    EXPECT_EQ(nSent, 1);
    EXPECT_EQ(nPosted, 1);
}

// The ticker

TEST_F(ProgressCalls, TickerMovesTheBarOnAThreadOfItsOwn) {
    unsigned long nEnd = 0;
    {
        Progress progress;
        HWND hwnd = progress.GetDlgHWND();
        const std::vector<DWORD> before = ThreadIds();
        progress.EnableTicker(13, 5000, &nEnd);
        ASSERT_TRUE(progress.GetTicker());
        std::vector<DWORD> added = ThreadIds();
        std::erase_if(added, [&](DWORD nId) {
            return std::find(before.begin(), before.end(), nId) != before.end();
        });
        ASSERT_EQ(added.size(), 1u);
        HANDLE hTicker = ::OpenThread(THREAD_QUERY_INFORMATION, FALSE, added[0]);
        EXPECT_EQ(::GetThreadPriority(hTicker), THREAD_PRIORITY_ABOVE_NORMAL);
        ::CloseHandle(hTicker);
        EXPECT_EQ(BarEnd(hwnd, false), 5000);
        EXPECT_TRUE(WaitUntil([&] { return BarPos(hwnd) >= 3; }));
        EXPECT_TRUE(IsShown(::GetDlgItem(hwnd, kBarId)));
    }
    EXPECT_GE(nEnd, 3u);
    EXPECT_LE(nEnd, 5000u);
}

TEST_F(ProgressCalls, TickerPausesAndGoesOn) {
    Progress progress;
    HWND hwnd = progress.GetDlgHWND();
    progress.EnableTicker(3, 60000, nullptr);
    EXPECT_TRUE(WaitUntil([&] { return BarPos(hwnd) > 0; }));
    progress.PauseTicker(1);
    progress.PauseTicker(1); // a flag, not a depth
    ::Sleep(20);             // the step that was under way
    const int nPos = BarPos(hwnd);
    EXPECT_TRUE(HoldsFor([&] { return BarPos(hwnd) == nPos; }, 60));
    progress.PauseTicker(0);
    EXPECT_TRUE(WaitUntil([&] { return BarPos(hwnd) > nPos; }));
}

TEST_F(ProgressCalls, TickerStopsAtItsEndAndKeepsItsThread) {
    unsigned long nEnd = 0;
    {
        Progress progress;
        HWND hwnd = progress.GetDlgHWND();
        const int nThreads = CountThreads();
        progress.EnableTicker(1, 4, &nEnd);
        EXPECT_TRUE(WaitUntil([&] { return BarPos(hwnd) == 4; }));
        EXPECT_TRUE(HoldsFor([&] { return BarPos(hwnd) == 4; }, 30));
        EXPECT_EQ(CountThreads(), nThreads + 1);
    }
    EXPECT_EQ(nEnd, 4u);
}

TEST_F(ProgressCalls, SecondTickerTakesThePlaceOfTheFirst) {
    unsigned long nFirst = 1000, nSecond = 1000;
    {
        Progress progress;
        const int nThreads = CountThreads();
        progress.EnableTicker(5, 100, &nFirst);
        progress.EnableTicker(5, 200, &nSecond);
        EXPECT_NE(nFirst, 1000u); // has ended
        EXPECT_TRUE(WaitUntil([&] { return CountThreads() == nThreads + 1; }));
        EXPECT_EQ(BarEnd(progress.GetDlgHWND(), false), 200);
    }
    EXPECT_NE(nSecond, 1000u);
}

TEST_F(ProgressCalls, TickerEndsWithACanceledDialog) {
    unsigned long nEnd = 1000;
    Progress progress;
    progress.EnableTicker(2, 100, &nEnd);
    PressCancel(progress.GetDlgHWND());
    ASSERT_TRUE(AnswerQuestion(IDYES));
    EXPECT_TRUE(PumpUntil([&] { return progress.IsCanceled() != 0; }));
    EXPECT_TRUE(WaitUntil([&] { return !progress.GetDlgHWND(); }));
    EXPECT_TRUE(WaitUntil([&] { return nEnd != 1000; }));
    EXPECT_FALSE(progress.GetTicker());
}
