// The person who watches: Cancel and its question.

#include "progress/dlg_support.h"
#include "support/test_window.h"

extern "C" FARPROC __imp_EndDialog;

namespace {
class ProgressCancel : public ProgressDialogTest {};

/// The ways to ask for the end.
const std::function<void(HWND)> kWays[] = {
    [](HWND hwnd) { PressCancel(hwnd); },
    [](HWND hwnd) { ::PostMessageW(hwnd, WM_CLOSE, 0, 0); },
    [](HWND hwnd) { ::PostMessageW(hwnd, WM_SYSCOMMAND, SC_CLOSE, 0); },
    [](HWND hwnd) { ::PostMessageW(::GetDlgItem(hwnd, IDCANCEL), WM_KEYDOWN, VK_ESCAPE, 1); },
};

bool HasGone(Progress& progress) {
    return PumpUntil([&] { return progress.IsCanceled() && !progress.GetDlgHWND(); });
}
} // namespace

TEST_F(ProgressCancel, NoLetsTheWorkGoOn) {
    for (size_t n = 0; n < std::size(kWays); ++n) {
        SCOPED_TRACE(n);
        Progress progress;
        HWND hwnd = progress.GetDlgHWND();
        kWays[n](hwnd);
        EXPECT_TRUE(AnswerQuestion(IDNO));
        EXPECT_TRUE(WaitUntil([&] { return ::IsWindowEnabled(hwnd) != 0; }));
        EXPECT_TRUE(::IsWindow(hwnd));
        EXPECT_FALSE(progress.IsCanceled());
        EXPECT_FALSE(progress.GetProgressEx()->IsCanceled());
        EXPECT_EQ(progress.NextStep(28008), 1);
        EXPECT_EQ(LineOf(hwnd, 1), kQuestion);
        progress.Close();
        EXPECT_FALSE(progress.IsCanceled());
    }
}

TEST_F(ProgressCancel, QuestionIsTheLibrarysOverTheDialog) {
    Progress progress;
    HWND hwnd = progress.GetDlgHWND();
    PressCancel(hwnd);
    HWND hwndBox = nullptr;
    ASSERT_TRUE(WaitUntil([&] { return (hwndBox = FindQuestion()) != nullptr; }));
    SeenMessageBox box = ReadMessageBox(hwndBox);
    EXPECT_EQ(box.strText, kQuestion);
    EXPECT_EQ(box.buttons, (std::vector<int>{IDYES, IDNO}));
    EXPECT_TRUE(box.bHasIcon);
    EXPECT_EQ(box.hwndOwner, hwnd);
    EXPECT_FALSE(::IsWindowEnabled(hwnd));
    // The work goes on behind it.
    progress.SetRange64(0, 9);
    EXPECT_EQ(progress.NextStep(28008), 1);
    EXPECT_EQ(BarPos(hwnd), 1);
    EXPECT_EQ(LineOf(hwnd, 1), kQuestion);
    EXPECT_TRUE(AnswerQuestion(IDNO));
    EXPECT_TRUE(WaitUntil([&] { return ::IsWindowEnabled(hwnd) != 0; }));
    EXPECT_FALSE(progress.IsCanceled());
}

namespace {
Progress* pEnding;
std::atomic<int> nCanceledAtEnd{-1};
std::atomic<INT_PTR> nEndResult{0};
BOOL(WINAPI* pfnEndDialog)(HWND, INT_PTR);
BOOL WINAPI WatchEnd(HWND hwnd, INT_PTR nResult) {
    if (pEnding && ::GetDlgItem(hwnd, kBarId)) {
        ProgressEx* pEx = pEnding->GetProgressEx();
        nCanceledAtEnd = pEx ? pEx->IsCanceled() != 0 : -2;
        nEndResult = nResult;
    }
    return pfnEndDialog(hwnd, nResult);
}
} // namespace

TEST_F(ProgressCancel, YesCancels) {
    ReplaceImport replaced(__imp_EndDialog, &WatchEnd);
    pfnEndDialog = replaced.Original<BOOL WINAPI(HWND, INT_PTR)>();
    for (size_t n = 0; n < std::size(kWays); ++n) {
        SCOPED_TRACE(n);
        DialogRun run;
        Progress progress;
        pEnding = &progress;
        nCanceledAtEnd = -1;
        HWND hwnd = progress.GetDlgHWND();
        kWays[n](hwnd);
        ASSERT_TRUE(AnswerQuestion(IDYES));
        ASSERT_TRUE(HasGone(progress));
        pEnding = nullptr;
        EXPECT_EQ(nCanceledAtEnd, 1); // the bar's model knew first
        EXPECT_EQ(nEndResult, IDCANCEL);
        EXPECT_FALSE(::IsWindow(hwnd));
        EXPECT_EQ(progress.NextStep(28008), 0);
        EXPECT_EQ(progress.GetPos64(), 0);
        EXPECT_TRUE(WaitUntil([&] { return run.nRuns == 1; }));
        EXPECT_EQ(run.nResult, IDCANCEL);
    }
}

TEST_F(ProgressCancel, EnterPressesCancelAlsoAfterAQuestion) {
    Progress progress;
    HWND hwnd = progress.GetDlgHWND();
    for (int nAnswer : {IDNO, IDNO, IDYES}) {
        HWND hwndFocus = nullptr;
        ASSERT_TRUE(WaitUntil([&] { return (hwndFocus = FocusOf(hwnd)) != nullptr; }));
        EXPECT_EQ(hwndFocus, ::GetDlgItem(hwnd, IDCANCEL));
        ::PostMessageW(hwndFocus, WM_KEYDOWN, VK_RETURN, 1);
        ASSERT_TRUE(AnswerQuestion(nAnswer));
        if (nAnswer == IDNO) {
            EXPECT_TRUE(WaitUntil([&] { return ::IsWindowEnabled(hwnd) != 0; }));
        }
    }
    EXPECT_TRUE(HasGone(progress));
}

TEST_F(ProgressCancel, EnterElsewhereDoesNotEndTheDialog) {
    Progress progress;
    HWND hwnd = progress.GetDlgHWND();
    ::PostMessageW(::GetDlgItem(hwnd, kBarId), WM_KEYDOWN, VK_RETURN, 1);
    ::SendMessageW(hwnd, WM_NULL, 0, 0);
    EXPECT_TRUE(HoldsFor([&] { return ::IsWindow(hwnd) != 0; }, 100));
    if (FindQuestion()) {
        EXPECT_TRUE(AnswerQuestion(IDNO));
    }
    EXPECT_FALSE(progress.IsCanceled());
    EXPECT_TRUE(progress.GetDlgHWND());
}

TEST_F(ProgressCancel, WorkerThatKeepsReportingHarmsNothingAndSeesNoSecondDialog) {
    DialogRun run;
    Progress progress;
    PressCancel(progress.GetDlgHWND());
    ASSERT_TRUE(AnswerQuestion(IDYES));
    ASSERT_TRUE(HasGone(progress));
    progress.SetTitle(L"T");
    progress.SetText(0, L"text");
    progress.SetTextFmt(3, L"%d", 3);
    progress.SetRange(0, 5);
    progress.SetRange64(0, 1 << 30);
    progress.SetPos64(4);
    progress.StepIt();
    progress.Show(1);
    progress.Show(0);
    progress.EnableTicker(5, 5, nullptr);
    EXPECT_EQ(progress.GetPos64(), 5);
    EXPECT_FALSE(progress.GetDlgHWND());
    EXPECT_TRUE(progress.IsCanceled());
    EXPECT_EQ(CountProgressDialogs(), 0);
    EXPECT_EQ(run.nRuns, 1);
    progress.Close();
    EXPECT_TRUE(progress.IsCanceled());
}

TEST_F(ProgressCancel, DialogWhoseThreadIsToldToQuitReadsAsItsResultSays) {
    DialogRun run;
    Progress progress;
    HWND hwnd = progress.GetDlgHWND();
    // As another program could. What the dialog gives then differs from platform to platform.
    ::PostThreadMessageW(::GetWindowThreadProcessId(hwnd, nullptr), WM_QUIT, 0, 0);
    EXPECT_TRUE(WaitUntil([&] { return !::IsWindow(hwnd) && run.nRuns == 1; }));
    EXPECT_TRUE(WaitUntil([&] { return !progress.GetDlgHWND(); }));
    progress.Close();
    EXPECT_EQ(progress.IsCanceled() != 0, run.nResult != IDOK);
}

TEST_F(ProgressCancel, ParentIsEnabledAgainOnEveryPath) {
    const std::function<void(OpenProgress&)> paths[] = {
        [](OpenProgress&) {},
        [](OpenProgress& p) { p.StartThread(); },
        [](OpenProgress& p) {
            p.StartThread();
            p.Close();
        },
        [](OpenProgress& p) {
            p.Close();
            p.Close();
        },
        [](OpenProgress& p) {
            p.StartThread();
            PressCancel(p.GetDlgHWND());
            EXPECT_TRUE(AnswerQuestion(IDYES));
            EXPECT_TRUE(HasGone(p));
        },
        [](OpenProgress& p) {
            p.StartThread();
            PressCancel(p.GetDlgHWND());
            EXPECT_TRUE(AnswerQuestion(IDNO));
        },
        [](OpenProgress& p) {
            p.StartThread();
            p.Show(0);
        },
    };
    for (size_t n = 0; n < std::size(paths); ++n) {
        SCOPED_TRACE(n);
        TestWindow parent;
        ::ShowWindow(parent, SW_SHOW);
        {
            OpenProgress progress(parent, 60000, 0, 0, 1);
            EXPECT_FALSE(::IsWindowEnabled(parent));
            paths[n](progress);
            EXPECT_FALSE(::IsWindowEnabled(parent)); // the destructor does it
        }
        EXPECT_TRUE(::IsWindowEnabled(parent));
        EXPECT_TRUE(PumpUntil([&] { return ::GetForegroundWindow() == parent; }));
    }
}

TEST_F(ProgressCancel, ModelessParentStaysEnabled) {
    TestWindow parent;
    ::ShowWindow(parent, SW_SHOW);
    {
        OpenProgress progress(nullptr, 60000, 0, 0, 1);
        progress.SetModelessParent(parent);
        EXPECT_TRUE(::IsWindowEnabled(parent));
        progress.StartThread();
        EXPECT_TRUE(::IsWindowEnabled(parent));
        ::EnableWindow(parent, FALSE);
    }
    EXPECT_TRUE(::IsWindowEnabled(parent));
    EXPECT_TRUE(PumpUntil([&] { return ::GetForegroundWindow() == parent; }));
}

TEST_F(ProgressCancel, ParentThatHasGoneIsNothing) {
    for (bool bShown : {false, true}) {
        auto pParent = std::make_unique<TestWindow>();
        OpenProgress progress(*pParent, 60000, 0, 0, 1);
        pParent.reset();
        if (bShown) progress.StartThread();
        progress.SetText(0, L"text");
    }
}
