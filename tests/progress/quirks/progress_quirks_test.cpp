// The oddities of progress that are kept on purpose, and a first look at the whole.

#include "progress/progress.h"
#include "progress/progress_dlg.h"
#include "progress/progress_ex.h"
#include "resources/resource_ids.h"
#include "support/wait_until.h"

#include <commctrl.h>
#include <gtest/gtest.h>
#include <string>

namespace {
class PlainProgress : public ProgressEx {
  public:
    void DoStepIt() override {}
    void DoSetPos(int) override {}
    void DoSetRange(int, int) override {}
    int ProcessAllMessages() override { return 1; }

    using ProgressEx::dwDivisor;
    using ProgressEx::dwSteps;
    using ProgressEx::qwTotalMs;
};

std::wstring GetText(HWND hwndDlg, int nId) {
    wchar_t sz[128] = L"";
    ::GetDlgItemTextW(hwndDlg, nId, sz, 128);
    return sz;
}

LRESULT GetBarPos(Progress& progress) {
    return ::SendDlgItemMessageW(progress.GetDlgHWND(), IDC_PROGRESS_BAR, PBM_GETPOS, 0, 0);
}
} // namespace

TEST(ProgressQuirks, TwoLargeEndsMultiplyTheDivisor) {
    PlainProgress progress;
    progress.SetRange64(-70000, 70000);
    EXPECT_EQ(4u, progress.dwDivisor); // 3 would do
}

TEST(ProgressQuirks, RemainingTimeBeginsAgainBeyond32Bits) {
    PlainProgress progress;
    progress.Setup(0, 100, 0);
    progress.dwSteps = 1;
    progress.qwTotalMs = 42949; // of one step: 4,294.9 seconds for all
    EXPECT_EQ(4294u, progress.GetSecondsRemaining());
    progress.qwTotalMs = 42950;
    EXPECT_EQ(0u, progress.GetSecondsRemaining());
}

TEST(ProgressQuirks, SystemMenuStaysComplete) {
    Progress progress;
    HMENU hmenu = ::GetSystemMenu(progress.GetDlgHWND(), FALSE);
    for (UINT nCmd : {SC_RESTORE, SC_MINIMIZE, SC_MAXIMIZE, SC_CLOSE}) {
        EXPECT_NE(static_cast<UINT>(-1), ::GetMenuState(hmenu, nCmd, MF_BYCOMMAND)) << nCmd;
    }
}

TEST(ProgressQuirks, OnlyTheShortRangeResetsThePosition) {
    Progress progress;
    progress.SetRange64(0, 100);
    progress.SetPos(40);
    progress.SetRange64(0, 200);
    EXPECT_EQ(40, GetBarPos(progress));
    progress.SetRange(0, 300);
    EXPECT_EQ(0, GetBarPos(progress));
}

TEST(ProgressQuirks, StoredLinesAreDroppedWhileTheIntervalRuns) {
    constexpr unsigned long kLongMs = 600000;
    Progress progress(nullptr, 1, kLongMs);
    progress.SetText(0, L"first");
    progress.SetText(1, L"second");
    ASSERT_TRUE(WaitUntil([&] {
        progress.StepIt();
        return progress.GetDlgHWND() != nullptr;
    }));
    EXPECT_EQ(L"", GetText(progress.GetDlgHWND(), IDC_PROGRESS_LINE_0));
    EXPECT_EQ(L"", GetText(progress.GetDlgHWND(), IDC_PROGRESS_LINE_1));
}

// What has to hold for anything else to be looked at.

TEST(ProgressSmoke, DialogShowsWhatItIsToldAndCloses) {
    Progress progress(nullptr, 0, 0, 3);
    HWND hwnd = progress.GetDlgHWND();
    ASSERT_NE(nullptr, hwnd);
    progress.SetTitle(L"Copying");
    progress.SetText(0, L"C:\\a folder\\a file.txt");
    progress.SetText(1, L"12 of 100 files");
    progress.SetText(2, L"3 minute(s) 10 seconds");
    progress.SetRange64(0, 1000000);
    for (int n = 0; n < 400000; ++n) progress.StepIt();
    EXPECT_EQ(25000, GetBarPos(progress));
    EXPECT_EQ(L"12 of 100 files", GetText(hwnd, IDC_PROGRESS_LINE_1));
    progress.Close();
    progress.Close();
    EXPECT_FALSE(::IsWindow(hwnd));
    EXPECT_FALSE(progress.IsCanceled());
    EXPECT_EQ(nullptr, progress.GetDlgHWND());
}

TEST(ProgressSmoke, QuestionDoesNotHoldTheEndUp) {
    Progress progress;
    HWND hwnd = progress.GetDlgHWND();
    ::PostMessageW(hwnd, WM_COMMAND, IDCANCEL, 0);
    ASSERT_TRUE(WaitUntil([&] { return !::IsWindowEnabled(hwnd); }));
    progress.Close();
    EXPECT_FALSE(progress.IsCanceled());
}

TEST(ProgressSmoke, EnterDoesNotEndADialogThatCannotBeCancelled) {
    Progress progress(nullptr, 0, 0, 0, 0);
    HWND hwnd = progress.GetDlgHWND();
    ::SendMessageW(hwnd, WM_COMMAND, IDOK, 0);
    progress.SetText(0, L"goes on");
    EXPECT_EQ(L"goes on", GetText(hwnd, IDC_PROGRESS_LINE_0));
    progress.Close();
    EXPECT_FALSE(::IsWindow(hwnd));
}

TEST(ProgressSmoke, QuitStaysInTheQueue) {
    MSG msg;
    ::PostQuitMessage(7);
    {
        Progress progress;
        progress.SetText(0, L"text");
    }
    ASSERT_TRUE(::PeekMessageW(&msg, nullptr, 0, 0, PM_REMOVE));
    EXPECT_EQ(static_cast<UINT>(WM_QUIT), msg.message);
    EXPECT_EQ(7u, msg.wParam);
    EXPECT_FALSE(::PeekMessageW(&msg, nullptr, 0, 0, PM_REMOVE));
}

TEST(ProgressSmoke, TickerLeavesItsPosition) {
    unsigned long dwResult = 0;
    {
        Progress progress;
        progress.EnableTicker(5, 1000, &dwResult);
        ASSERT_TRUE(WaitUntil([&] { return GetBarPos(progress) >= 5; }));
    }
    EXPECT_GE(dwResult, 5u);
}

TEST(ProgressSmoke, CloseFromAHandlerWhileTheDialogComesUp) {
    for (int n = 0; n < 50; ++n) {
        struct Probe : Progress {
            Probe() : Progress(nullptr, 100000) {}
            using Progress::StartThread;
        } progress;
        static Progress* pClosing;
        pClosing = &progress;
        UINT_PTR uTimer = ::SetTimer(nullptr, 0, 10, [](HWND, UINT, UINT_PTR, DWORD) {
            if (pClosing) pClosing->Close();
        });
        progress.StartThread();
        pClosing = nullptr;
        ::KillTimer(nullptr, uTimer);
    }
}
