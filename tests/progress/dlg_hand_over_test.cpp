// What a worker told its handle before there was a dialog.

#include "progress/dlg_support.h"
#include "support/test_window.h"

namespace {
class ProgressHandOver : public ProgressDialogTest {};

SeenMessage Text(int nId, const wchar_t* psz) { return {nId, WM_SETTEXT, 0, 0, psz}; }
SeenMessage Bar(UINT uMsg, WPARAM wParam, LPARAM lParam) {
    return {kBarId, uMsg, wParam, lParam, L""};
}

/// What follows the dialog's own initialisation, which empties the lines and sets the bar up.
std::vector<SeenMessage> BehindInitialisation(const std::vector<SeenMessage>& all) {
    auto it = all.begin();
    for (auto i = all.begin(); i != all.end(); ++i) {
        bool bEmptied = i->nId == kLineIds[3] && i->uMsg == WM_SETTEXT && i->strText.empty();
        if (bEmptied) it = i + 1;
    }
    return {it, all.end()};
}
} // namespace

TEST_F(ProgressHandOver, GoesInItsOrder) {
    DialogRun run;
    MessageLog log(run);
    unsigned long nTickerEnd = 77;
    {
        OpenProgress progress(nullptr, 60000, 0, 0, 1);
        // In another order than that in which they go.
        progress.EnableTicker(30, 500, &nTickerEnd);
        progress.SetPos64(131072);
        for (int n = 0; n < 7; ++n) progress.StepIt();
        progress.SetRange64(0, 262140);
        progress.SetText(3, L"d");
        progress.SetText(1, L"b");
        progress.SetText(0, L"a");
        progress.SetText(2, L"c");
        progress.SetTitle(L"Title");
        progress.StartThread();
        ASSERT_TRUE(progress.GetTicker());
        progress.PauseTicker(1);
        HWND hwnd = progress.GetDlgHWND();
        std::vector<SeenMessage> seen = BehindInitialisation(log.Get());
        std::erase_if(seen, [](const SeenMessage& m) { return m.uMsg == PBM_STEPIT; });
        const std::vector<SeenMessage> expected{
            Text(0, L"Title"),         Text(28003, L"a"),
            Text(28004, L"b"),         Text(28005, L"c"),
            Text(28006, L"d"),         Bar(PBM_SETRANGE32, 0, 65535), // 4 to a unit
            Bar(PBM_SETSTEP, 1, 0),    Bar(PBM_SETPOS, 1, 0),
            Bar(PBM_SETPOS, 32768, 0), Bar(PBM_SETRANGE, 0, MAKELPARAM(0, 500)), // the ticker's
            Bar(PBM_SETPOS, 0, 0),     Bar(PBM_SETSTEP, 1, 0),
        };
        EXPECT_EQ(seen, expected);
        EXPECT_EQ(TextOf(hwnd), L"Title");
        for (int n = 0; n < 4; ++n) EXPECT_EQ(LineOf(hwnd, n), std::wstring(1, L'a' + n)) << n;
    }
    EXPECT_NE(nTickerEnd, 77u);
}

TEST_F(ProgressHandOver, IsNothingIfNothingWasStored) {
    DialogRun run;
    MessageLog log(run);
    OpenProgress progress(nullptr, 60000, 0, 0, 1);
    progress.StartThread();
    EXPECT_EQ(BehindInitialisation(log.Get()), std::vector<SeenMessage>{});
    EXPECT_EQ(TextOf(progress.GetDlgHWND()), kTemplateTitle);
}

TEST_F(ProgressHandOver, RangeWithANegativeEndIsNone) {
    for (auto [nLow, nHigh] : {std::pair<__int64, __int64>{-5, 10}, {-1, -1}, {0, -3}}) {
        SCOPED_TRACE(nLow);
        DialogRun run;
        MessageLog log(run);
        OpenProgress progress(nullptr, 60000, 0, 0, 1);
        progress.SetRange64(nLow, nHigh);
        progress.StartThread();
        EXPECT_EQ(BehindInitialisation(log.Get()), std::vector<SeenMessage>{});
    }
}

TEST_F(ProgressHandOver, EmptyTextsAreTexts) {
    OpenProgress progress(nullptr, 60000, 0, 0, 1);
    progress.SetTitle(L"");
    progress.StartThread();
    EXPECT_EQ(TextOf(progress.GetDlgHWND()), L"");
}

TEST_F(ProgressHandOver, LongAndForeignTextsArriveWhole) {
    const std::wstring strLong(900, L'\x4E2D');
    OpenProgress progress(nullptr, 60000, 0, 0, 1);
    progress.SetText(0, strLong.c_str());
    progress.SetText(1, L"%s %n \x0416");
    progress.SetTitle(L"100% \x00E9");
    progress.StartThread();
    HWND hwnd = progress.GetDlgHWND();
    EXPECT_EQ(LineOf(hwnd, 0), strLong);
    EXPECT_EQ(LineOf(hwnd, 1), L"%s %n \x0416");
    EXPECT_EQ(TextOf(hwnd), L"100% \x00E9");
}

namespace {
/// A worker's calls, none of which depends on whether there is a dialog.
const std::function<void(Progress&)> kCalls[] = {
    [](Progress& p) { p.SetTitle(L"first"); },
    [](Progress& p) { p.SetRange64(0, 200000); },
    [](Progress& p) { p.SetText(0, L"zero"); },
    [](Progress& p) { p.StepIt(); },
    [](Progress& p) { p.SetText(1, L"one"); },
    [](Progress& p) { p.SetText(1, L"one again"); },
    [](Progress& p) { p.SetTextFmt(2, L"%s %d", L"two", 2); },
    [](Progress& p) { p.NextStep(64999); }, // empties line 1
    [](Progress& p) { p.SetText(3, L"three"); },
    [](Progress& p) { p.SetTitleFmt(L"title %d", 2); },
    [](Progress& p) { p.SetText(1, L"one at last"); },
    [](Progress& p) { p.SetPos64(100000); },
    [](Progress& p) { p.SetText(0, L"end"); },
};
} // namespace

TEST_F(ProgressHandOver, NothingIsLostAtWhateverMomentTheDialogComesUp) {
    for (size_t nMoment = 0; nMoment <= std::size(kCalls); ++nMoment) {
        SCOPED_TRACE(nMoment);
        OpenProgress progress(nullptr, 600000, 0, 0, 1);
        for (size_t n = 0; n < std::size(kCalls); ++n) {
            if (n == nMoment) progress.StartThread();
            kCalls[n](progress);
        }
        if (nMoment == std::size(kCalls)) progress.StartThread();
        HWND hwnd = progress.GetDlgHWND();
        ASSERT_TRUE(hwnd);
        EXPECT_EQ(TextOf(hwnd), L"title 2");
        EXPECT_EQ(LineOf(hwnd, 0), L"end");
        EXPECT_EQ(LineOf(hwnd, 1), L"one at last");
        EXPECT_EQ(LineOf(hwnd, 2), L"two 2");
        EXPECT_EQ(LineOf(hwnd, 3), L"three");
        EXPECT_EQ(BarEnd(hwnd, true), 0);
        EXPECT_EQ(BarEnd(hwnd, false), 50000); // 4 to a unit
        EXPECT_EQ(BarPos(hwnd), 25000);
        EXPECT_EQ(progress.GetPos64(), 100000);
    }
}

TEST_F(ProgressHandOver, ComesByTheClockBetweenAnyTwoCalls) {
    for (size_t nMoment = 0; nMoment < std::size(kCalls); ++nMoment) {
        SCOPED_TRACE(nMoment);
        AheadClock clock;
        DialogRun run;
        Progress progress(nullptr, 600000, 0, 0, 1);
        for (size_t n = 0; n < std::size(kCalls); ++n) {
            if (n == nMoment) clock.Advance(600000);
            kCalls[n](progress);
        }
        HWND hwnd = progress.GetDlgHWND();
        ASSERT_TRUE(hwnd);
        EXPECT_EQ(TextOf(hwnd), L"title 2");
        EXPECT_EQ(LineOf(hwnd, 0), L"end");
        EXPECT_EQ(LineOf(hwnd, 1), L"one at last");
        EXPECT_EQ(LineOf(hwnd, 2), L"two 2");
        EXPECT_EQ(LineOf(hwnd, 3), L"three");
        EXPECT_EQ(BarPos(hwnd), 25000);
    }
}

TEST_F(ProgressHandOver, HappensOnceAndTheNextDialogGetsOnlyWhatCameSince) {
    DialogRun run;
    MessageLog log(run);
    OpenProgress progress(nullptr, 60000, 0, 0, 1);
    progress.SetTitle(L"first");
    progress.SetText(0, L"a");
    progress.SetText(1, L"b");
    progress.SetRange64(0, 100);
    progress.StepIt();
    progress.SetPos64(40);
    progress.EnableTicker(20, 9, nullptr);
    progress.StartThread();
    progress.Close();
    EXPECT_FALSE(progress.GetDlgHWND());
    log.Clear();
    progress.SetTitle(L"second"); // shows nothing
    EXPECT_FALSE(progress.GetDlgHWND());
    progress.SetText(2, L"c"); // at once
    HWND hwnd = progress.GetDlgHWND();
    ASSERT_TRUE(hwnd);
    EXPECT_EQ(run.nRuns, 1);
    EXPECT_EQ(TextOf(hwnd), L"second");
    EXPECT_EQ(LineOf(hwnd, 0), L"");
    EXPECT_EQ(LineOf(hwnd, 1), L"");
    EXPECT_EQ(LineOf(hwnd, 2), L"c");
    std::vector<SeenMessage> seen = BehindInitialisation(log.Get());
    std::erase_if(seen, [](const SeenMessage& m) { return m.nId != kBarId; });
    // The ticker's arguments stay: it starts in this dialog too.
    std::erase_if(seen, [](const SeenMessage& m) {
        return m.uMsg == PBM_SETRANGE || m.uMsg == PBM_SETSTEP || m.uMsg == PBM_STEPIT ||
               (m.uMsg == PBM_SETPOS && !m.wParam);
    });
    EXPECT_EQ(seen, std::vector<SeenMessage>{});
    progress.Close();
    progress.StepIt();
    ASSERT_TRUE(progress.GetDlgHWND());
    EXPECT_EQ(TextOf(progress.GetDlgHWND()), kTemplateTitle);
}

TEST_F(ProgressHandOver, ReachesADialogThatIsSlowToComeUp) {
    constexpr DWORD kSlowMs = 150;
    DialogRun run;
    run.fnBefore = [] { ::Sleep(kSlowMs); };
    OpenProgress progress(nullptr, 60000, 0, 0, 1);
    for (size_t n = 0; n < std::size(kCalls); ++n) kCalls[n](progress);
    progress.StartThread();
    HWND hwnd = progress.GetDlgHWND();
    ASSERT_TRUE(hwnd);
    EXPECT_EQ(TextOf(hwnd), L"title 2");
    EXPECT_EQ(LineOf(hwnd, 0), L"end");
    EXPECT_EQ(BarPos(hwnd), 25000);
}

TEST_F(ProgressHandOver, NeverLeavesNothingBehind) {
    const long nBlocks = CountLiveBlocks();
    for (int nRound = 0; nRound < 3; ++nRound) {
        Progress progress(nullptr, 60000, 0, 0, 1);
        for (const auto& call : kCalls) call(progress);
        progress.Close();
        for (const auto& call : {kCalls[0], kCalls[1], kCalls[9], kCalls[11]}) call(progress);
    }
    EXPECT_EQ(CountLiveBlocks(), nBlocks);
}

namespace {
constexpr WPARAM kHandedPos = 500;
HWND hwndWorker;
HHOOK hAskHook;

/// On the dialog's thread: the worker's window is asked something while the bar gets its position.
LRESULT CALLBACK AskWorker(int nCode, WPARAM wParam, LPARAM lParam) {
    auto* p = reinterpret_cast<const CWPSTRUCT*>(lParam);
    if (nCode >= 0 && p->message == PBM_SETPOS && p->wParam == kHandedPos) {
        ::SendMessageW(hwndWorker, WM_APP, 0, 0);
    }
    return ::CallNextHookEx(nullptr, nCode, wParam, lParam);
}
} // namespace

TEST_F(ProgressHandOver, StepsOfAHandlerThatRunsMeanwhileGoOnFromThePosition) {
    DialogRun run;
    run.fnBefore = [] {
        hAskHook = ::SetWindowsHookExW(WH_CALLWNDPROC, &AskWorker, nullptr, ::GetCurrentThreadId());
    };
    run.fnAfter = [] { ::UnhookWindowsHookEx(hAskHook); };
    OpenProgress progress(nullptr, 60000, 0, 0, 1);
    TestWindow window([&](UINT uMsg, WPARAM, LPARAM) -> std::optional<LRESULT> {
        if (uMsg == WM_APP) progress.StepIt();
        return {};
    });
    hwndWorker = window;
    progress.SetRange64(0, 1000);
    progress.SetPos64(kHandedPos);
    progress.StartThread();
    EXPECT_EQ(BarPos(progress.GetDlgHWND()), 501);
    EXPECT_EQ(progress.GetPos64(), 501);
}

// Text updates that come too fast

TEST_F(ProgressHandOver, LinesAreDroppedWhileTheTextIntervalRuns) {
    OpenProgress progress(nullptr, 60000, 50000, 0, 1);
    progress.SetTitle(L"title");
    progress.SetText(0, L"a");
    progress.SetText(1, L"b");
    progress.StartThread();
    HWND hwnd = progress.GetDlgHWND();
    EXPECT_EQ(TextOf(hwnd), L"title"); // is no line
    EXPECT_EQ(LineOf(hwnd, 0), L"");
    EXPECT_EQ(LineOf(hwnd, 1), L"");
}

TEST_F(ProgressHandOver, FirstLineBeginsTheTextIntervalAnew) {
    AheadClock clock;
    OpenProgress progress(nullptr, 900000, 50000, 0, 1);
    progress.SetText(0, L"a");
    progress.SetText(1, L"b");
    progress.SetText(2, L"c");
    clock.Advance(50000);
    progress.StartThread();
    HWND hwnd = progress.GetDlgHWND();
    EXPECT_EQ(LineOf(hwnd, 0), L"a");
    EXPECT_EQ(LineOf(hwnd, 1), L"");
    EXPECT_EQ(LineOf(hwnd, 2), L"");
    progress.SetText(2, L"too early");
    EXPECT_EQ(LineOf(hwnd, 2), L"");
    clock.Advance(49000);
    progress.SetText(2, L"too early");
    EXPECT_EQ(LineOf(hwnd, 2), L"");
    clock.Advance(1000);
    progress.SetText(2, L"now");
    EXPECT_EQ(LineOf(hwnd, 2), L"now");
    progress.SetText(0, L"too early");
    EXPECT_EQ(LineOf(hwnd, 0), L"a");
}

TEST_F(ProgressHandOver, WithoutTextIntervalEachTextIsShown) {
    Progress progress;
    HWND hwnd = progress.GetDlgHWND();
    for (int n = 0; n < 20; ++n) {
        progress.SetTextFmt(n % 4, L"text %d", n);
        EXPECT_EQ(LineOf(hwnd, n % 4), L"text " + std::to_wstring(n));
    }
}
