// Close, from whatever state.

#include "progress/dlg_support.h"
#include "support/test_window.h"

namespace {
class ProgressClose : public ProgressDialogTest {};

void ExpectClosed(Progress& progress) {
    progress.Close();
    EXPECT_FALSE(progress.GetDlgHWND());
    EXPECT_FALSE(progress.GetProgressEx());
    EXPECT_EQ(CountProgressDialogs(), 0);
}
} // namespace

TEST_F(ProgressClose, BeforeThereIsADialog) {
    const Belongings before;
    {
        Progress progress(nullptr, 60000, 0, 0, 1);
        progress.SetText(0, L"text");
        ExpectClosed(progress);
        ExpectClosed(progress);
        EXPECT_FALSE(progress.IsCanceled());
    }
    EXPECT_TRUE(Belongings() <= before);
}

TEST_F(ProgressClose, OfAShownDialogAlsoTwice) {
    WarmUp();
    const Belongings before;
    {
        DialogRun run;
        Progress progress;
        HWND hwnd = progress.GetDlgHWND();
        ExpectClosed(progress);
        EXPECT_FALSE(::IsWindow(hwnd));
        EXPECT_FALSE(progress.IsCanceled());
        EXPECT_EQ(run.nResult, IDOK);
        EXPECT_EQ(run.nRuns, 1);
        ExpectClosed(progress);
        EXPECT_FALSE(progress.IsCanceled());
    }
    EXPECT_TRUE(NothingIsLeft(before)) << "now " << Belongings() << ", before " << before;
    EXPECT_EQ(CountLiveBlocks(), before.nBlocks);
}

TEST_F(ProgressClose, OfACanceledDialog) {
    { // the platform's first message box
        Progress progress;
        PressCancel(progress.GetDlgHWND());
        ASSERT_TRUE(AnswerQuestion(IDYES));
    }
    const Belongings before;
    {
        Progress progress;
        PressCancel(progress.GetDlgHWND());
        ASSERT_TRUE(AnswerQuestion(IDYES));
        ASSERT_TRUE(PumpUntil([&] { return progress.IsCanceled() != 0; }));
        ExpectClosed(progress);
        EXPECT_TRUE(progress.IsCanceled());
        ExpectClosed(progress);
    }
    EXPECT_TRUE(NothingIsLeft(before)) << "now " << Belongings() << ", before " << before;
}

TEST_F(ProgressClose, WhileTheQuestionIsOpen) {
    for (int nAnswer : {IDNO, IDYES}) {
        SCOPED_TRACE(nAnswer);
        Progress progress;
        PressCancel(progress.GetDlgHWND());
        ASSERT_TRUE(WaitUntil([] { return IsMessageBoxOpen() != 0; }));
        std::atomic<bool> bClosed{false};
        std::thread person([&] { // answers, unless the question went with its dialog
            WaitUntil([&] {
                HWND hwndBox = FindQuestion();
                if (hwndBox && !bClosed) ::PostMessageW(hwndBox, WM_COMMAND, nAnswer, 0);
                return bClosed.load();
            });
        });
        ExpectClosed(progress);
        bClosed = true;
        person.join();
        EXPECT_FALSE(IsMessageBoxOpen());
    }
}

TEST_F(ProgressClose, WhileThePersonHoldsTheEdgeOrTheMenu) {
    for (WPARAM nCommand :
         {WPARAM{SC_SIZE + WMSZ_RIGHT}, WPARAM{SC_MOVE + HTCAPTION}, WPARAM{SC_KEYMENU}}) {
        SCOPED_TRACE(nCommand);
        DialogRun run;
        Progress progress;
        HWND hwnd = progress.GetDlgHWND();
        const DWORD nThread = ::GetWindowThreadProcessId(hwnd, nullptr);
        ::PostMessageW(hwnd, WM_SYSCOMMAND, nCommand, nCommand == SC_KEYMENU ? L' ' : 0);
        EXPECT_TRUE(WaitUntil([&] {
            GUITHREADINFO info{};
            info.cbSize = sizeof(info);
            ::GetGUIThreadInfo(nThread, &info);
            return (info.flags & (GUI_INMOVESIZE | GUI_INMENUMODE | GUI_SYSTEMMENUMODE)) != 0;
        }));
        ExpectClosed(progress);
        EXPECT_FALSE(progress.IsCanceled());
    }
}

TEST_F(ProgressClose, OfAMinimisedAndOfAHiddenDialog) {
    for (int nShow : {SW_MINIMIZE, SW_HIDE}) {
        Progress progress;
        ::ShowWindow(progress.GetDlgHWND(), nShow);
        ExpectClosed(progress);
        EXPECT_FALSE(progress.IsCanceled());
    }
}

TEST_F(ProgressClose, WithATickerRunning) {
    unsigned long nEnd = 1000;
    Progress progress;
    progress.EnableTicker(1, 100000, &nEnd);
    EXPECT_TRUE(WaitUntil([&] { return BarPos(progress.GetDlgHWND()) > 0; }));
    ExpectClosed(progress);
    EXPECT_NE(nEnd, 1000u);
}

TEST_F(ProgressClose, ByAMessageOfTheWorkersOwnWhileStartWaits) {
    // The worker's thread dispatches messages while it waits for the dialog; one of their handlers
    // closes. The dialog is not there yet, or is just coming up.
    for (bool bBeforeWindow : {true, false}) {
        for (int nCloses : {1, 2}) {
            SCOPED_TRACE(testing::Message() << bBeforeWindow << " " << nCloses);
            WarmUp();
            const Belongings before;
            {
                DialogRun run;
                OpenProgress progress(nullptr, 60000, 0, 0, 1);
                progress.SetTitle(L"T");
                progress.SetText(0, L"text");
                progress.SetRange64(0, 9);
                progress.EnableTicker(5, 5, nullptr);
                TestWindow window([&](UINT uMsg, WPARAM, LPARAM) -> std::optional<LRESULT> {
                    if (uMsg != WM_APP + 1) return {};
                    for (int n = 0; n < nCloses; ++n) progress.Close();
                    return 1;
                });
                HWND hwndMine = window;
                run.fnBefore = [&] {
                    ::PostMessageW(hwndMine, WM_APP + 1, 0, 0);
                    if (bBeforeWindow) ::Sleep(50); // lets Close come first
                };
                progress.StartThread();
                EXPECT_TRUE(PumpUntil([&] { return run.nRuns == 1; }));
                progress.Close();
                EXPECT_EQ(CountProgressDialogs(), 0);
                EXPECT_FALSE(progress.GetDlgHWND());
            }
            EXPECT_TRUE(NothingIsLeft(before)) << "now " << Belongings() << ", before " << before;
        }
    }
}

TEST_F(ProgressClose, AfterTheWaitsHaveExpiredAndBeforeTheDialogCame) {
    WarmUp();
    const Belongings before;
    {
        ShortWaits waits;
        DialogRun run;
        run.fnBefore = [] { ::Sleep(300); }; // far longer than the waits last
        OpenProgress progress(nullptr, 60000, 0, 0, 1);
        progress.SetText(0, L"text");
        progress.StartThread();
        EXPECT_EQ(run.nRuns, 0);
        ExpectClosed(progress); // comes back although there was no window to post to
        EXPECT_EQ(run.nRuns, 1);
        EXPECT_FALSE(progress.IsCanceled());
        ExpectClosed(progress);
    }
    EXPECT_TRUE(NothingIsLeft(before)) << "now " << Belongings() << ", before " << before;
}

TEST_F(ProgressClose, DestructorCloses) {
    DialogRun run;
    HWND hwnd = nullptr;
    {
        Progress progress;
        hwnd = progress.GetDlgHWND();
    }
    EXPECT_FALSE(::IsWindow(hwnd));
    EXPECT_EQ(run.nResult, IDOK);
}

TEST_F(ProgressClose, WhatQuitTheWorkersLoopIsNotLost) {
    // The program ends while its work does: its loop is to see that.
    for (bool bShown : {false, true}) {
        SCOPED_TRACE(bShown);
        ::PostQuitMessage(31);
        {
            Progress progress(nullptr, bShown ? 0 : 60000, 0, 0, 1);
            progress.SetText(0, L"text");
            progress.NextStep(28008);
            progress.Close();
        }
        MSG msg{};
        EXPECT_TRUE(::PeekMessageW(&msg, nullptr, WM_QUIT, WM_QUIT, PM_REMOVE));
        EXPECT_EQ(msg.message, static_cast<UINT>(WM_QUIT));
        EXPECT_EQ(msg.wParam, 31u);
        while (::PeekMessageW(&msg, nullptr, WM_QUIT, WM_QUIT, PM_REMOVE)) {
        }
    }
}

TEST_F(ProgressClose, DialogRunsAsOftenAsItIsAskedTo) {
    WarmUp();
    const Belongings before;
    {
        DialogRun run;
        Progress progress;
        for (int n = 0; n < 10; ++n) {
            progress.Close();
            EXPECT_FALSE(progress.GetDlgHWND());
            progress.StepIt();
            EXPECT_TRUE(progress.GetDlgHWND());
        }
        progress.Close();
        EXPECT_EQ(run.nRuns, 11);
        EXPECT_EQ(progress.GetPos64(), 10);
    }
    EXPECT_TRUE(NothingIsLeft(before)) << "now " << Belongings() << ", before " << before;
    EXPECT_EQ(CountLiveBlocks(), before.nBlocks);
}
