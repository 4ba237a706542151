// The dialog's thread and what the dialog does when it comes up.

#include "progress/dlg_support.h"
#include "support/test_window.h"
#include "support/told_version.h"

#include <objbase.h>

extern "C" FARPROC __imp_CoCreateInstance;
extern "C" FARPROC __imp__beginthreadex;

namespace {
class ProgressStart : public ProgressDialogTest {};

DWORD ThreadOf(HWND hwnd) { return ::GetWindowThreadProcessId(hwnd, nullptr); }
} // namespace

TEST_F(ProgressStart, WithoutDelayTheDialogIsUpWhenTheConstructorReturns) {
    DialogRun run;
    {
        Progress progress;
        HWND hwnd = progress.GetDlgHWND();
        ASSERT_TRUE(::IsWindow(hwnd));
        EXPECT_TRUE(::IsWindowVisible(hwnd));
        EXPECT_NE(ThreadOf(hwnd), ::GetCurrentThreadId());
        EXPECT_EQ(run.nTemplate, kProgressTemplate);
        EXPECT_EQ(run.hinst, ::GetModuleHandleW(nullptr)); // the library is the program here
        EXPECT_EQ(run.hwndOwner, nullptr);
        EXPECT_EQ(run.pfnProc, &CSDlg::ModalProc);
        EXPECT_EQ(run.nPriority, THREAD_PRIORITY_ABOVE_NORMAL);
        EXPECT_EQ(::GetWindow(hwnd, GW_OWNER), nullptr);
        EXPECT_TRUE(WaitUntil([&] { return ::GetForegroundWindow() == hwnd; }));
        EXPECT_FALSE(progress.IsCanceled());
        EXPECT_EQ(BarEnd(hwnd, true), 0);
        EXPECT_EQ(BarEnd(hwnd, false), 1);
        EXPECT_EQ(BarPos(hwnd), 0);
        for (int n = 0; n < 4; ++n) EXPECT_EQ(LineOf(hwnd, n), L"") << n;
        EXPECT_TRUE(progress.GetProgressEx());
        EXPECT_TRUE(progress.GetProgressCtrl());
        EXPECT_FALSE(progress.GetProgressEx()->IsCanceled());
        EXPECT_FALSE(progress.GetTicker());
    }
    EXPECT_EQ(run.nRuns, 1);
    EXPECT_EQ(run.nResult, IDOK);
}

TEST_F(ProgressStart, NothingReachesThroughWhileThereIsNoDialog) {
    Progress progress(nullptr, 60000, 0, 0, 1);
    EXPECT_FALSE(progress.GetDlgHWND());
    EXPECT_FALSE(progress.GetDlg());
    EXPECT_FALSE(progress.GetProgressCtrl());
    EXPECT_FALSE(progress.GetProgressEx());
    EXPECT_FALSE(progress.GetTicker());
}

TEST_F(ProgressStart, DialogHasTheProductsIconInBothSizes) {
    Progress progress;
    HWND hwnd = progress.GetDlgHWND();
    EXPECT_TRUE(::SendMessageW(hwnd, WM_GETICON, ICON_SMALL, 0));
    EXPECT_TRUE(::SendMessageW(hwnd, WM_GETICON, ICON_BIG, 0));
}

TEST_F(ProgressStart, CancelHasTheFocus) {
    Progress progress;
    HWND hwnd = progress.GetDlgHWND(), hwndCancel = ::GetDlgItem(hwnd, IDCANCEL);
    EXPECT_TRUE(::IsWindowEnabled(hwndCancel));
    EXPECT_TRUE(WaitUntil([&] { return FocusOf(hwnd) == hwndCancel; }));
}

TEST_F(ProgressStart, CancelThatIsNotToBeIsGreyAndWithoutFocus) {
    Progress progress(nullptr, 0, 0, 0, 0);
    HWND hwnd = progress.GetDlgHWND(), hwndCancel = ::GetDlgItem(hwnd, IDCANCEL);
    ASSERT_TRUE(hwndCancel);
    EXPECT_FALSE(::IsWindowEnabled(hwndCancel));
    EXPECT_TRUE(IsShown(hwndCancel));
    ::SendMessageW(hwnd, WM_NULL, 0, 0);
    EXPECT_NE(FocusOf(hwnd), hwndCancel);
    // Nor is there another way to it.
    ::PostMessageW(hwnd, WM_CLOSE, 0, 0);
    ::PostMessageW(hwnd, WM_KEYDOWN, VK_ESCAPE, 1);
    EXPECT_TRUE(HoldsFor([&] { return !IsMessageBoxOpen() && ::IsWindow(hwnd); }, 100));
    EXPECT_FALSE(progress.IsCanceled());
}

TEST_F(ProgressStart, SystemMenuIsWhole) {
    for (int bWithModelessParent : {0, 1}) {
        SCOPED_TRACE(bWithModelessParent);
        TestWindow parent;
        OpenProgress progress(nullptr, 60000, 0, 0, 1);
        if (bWithModelessParent) progress.SetModelessParent(parent);
        progress.StartThread();
        HMENU hmenu = ::GetSystemMenu(progress.GetDlgHWND(), FALSE);
        ASSERT_TRUE(hmenu);
        for (UINT nCommand : {SC_RESTORE, SC_MOVE, SC_SIZE, SC_MINIMIZE, SC_MAXIMIZE, SC_CLOSE})
            EXPECT_NE(::GetMenuState(hmenu, nCommand, MF_BYCOMMAND), 0xFFFFFFFFu) << nCommand;
    }
}

TEST_F(ProgressStart, DialogIsCentredOnItsParent) {
    TestWindow parent;
    ::SetWindowPos(parent, nullptr, 330, 210, 601, 401, SWP_NOZORDER | SWP_NOACTIVATE);
    Progress progress(parent, 0, 0, 0, 1);
    RECT rc{};
    ::GetWindowRect(progress.GetDlgHWND(), &rc);
    EXPECT_EQ(rc.left, 330 + (601 - (rc.right - rc.left)) / 2);
    EXPECT_EQ(rc.top, 210 + (401 - (rc.bottom - rc.top)) / 2);
    EXPECT_EQ(::GetWindow(progress.GetDlgHWND(), GW_OWNER), nullptr);
}

namespace {
std::atomic<DWORD> nTaskbarThread{0};
IID iidTaskbar;
CLSID clsidTaskbar;
std::atomic<int> nTaskbarAsked{0};

HRESULT WINAPI RefuseInstance(REFCLSID clsid, IUnknown*, DWORD dwContext, REFIID iid, void** pp) {
    clsidTaskbar = clsid;
    iidTaskbar = iid;
    nTaskbarThread = ::GetCurrentThreadId();
    if (dwContext & CLSCTX_INPROC_SERVER) ++nTaskbarAsked;
    *pp = nullptr;
    return REGDB_E_CLASSNOTREG;
}
} // namespace

TEST_F(ProgressStart, TaskbarMirrorIsAskedForOnTheDialogsThread) {
    constexpr GUID kTaskbarList{
        0x56fdf344, 0xfd6d, 0x11d0, {0x95, 0x8a, 0x00, 0x60, 0x97, 0xc9, 0xa0, 0x90}};
    constexpr GUID kTaskbarList3{
        0xea1afb91, 0x9e28, 0x4b86, {0x90, 0xe9, 0x9e, 0x9f, 0x8a, 0x5e, 0xef, 0xaf}};
    ToldVersion told(
        Version(VER_PLATFORM_WIN32_NT, 6, 1, VER_NT_WORKSTATION)); // the first with one
    ReplaceImport replaced(__imp_CoCreateInstance, &RefuseInstance);
    nTaskbarAsked = 0;
    Progress progress;
    EXPECT_EQ(nTaskbarAsked, 1);
    EXPECT_EQ(nTaskbarThread, ThreadOf(progress.GetDlgHWND()));
    EXPECT_TRUE(::IsEqualGUID(clsidTaskbar, kTaskbarList));
    EXPECT_TRUE(::IsEqualGUID(iidTaskbar, kTaskbarList3));
}

TEST_F(ProgressStart, SecondStartDoesNothing) {
    DialogRun run;
    OpenProgress progress;
    HWND hwnd = progress.GetDlgHWND();
    progress.StartThread();
    EXPECT_EQ(progress.GetDlgHWND(), hwnd);
    EXPECT_EQ(CountProgressDialogs(), 1);
}

TEST_F(ProgressStart, TemplateThatDoesNotLoadReadsAsCanceled) {
    constexpr int kNoSuchTemplate = 28999;
    WarmUp();
    const Belongings before;
    {
        ShortWaits waits;
        DialogRun run;
        run.nOtherTemplate = kNoSuchTemplate;
        TestWindow parent;
        Progress progress(parent, 0, 0, 0, 1);
        EXPECT_TRUE(WaitUntil([&] { return run.nRuns == 1; }));
        EXPECT_TRUE(WaitUntil([&] { return progress.IsCanceled() != 0; }));
        EXPECT_TRUE(WaitUntil([&] { return !progress.GetDlgHWND(); }));
        EXPECT_EQ(progress.NextStep(1), 0);
        progress.SetTitle(L"T");
        progress.SetText(0, L"text");
        progress.StepIt();
        progress.SetPos64(3);
        EXPECT_EQ(run.nRuns, 1);
        progress.Close();
    }
    EXPECT_TRUE(NothingIsLeft(before)) << "now " << Belongings() << ", before " << before;
}

namespace {
std::uintptr_t __cdecl NoThread(void*, unsigned, unsigned(__stdcall*)(void*), void*, unsigned,
                                unsigned*) {
    errno = EAGAIN;
    return 0;
}
} // namespace

TEST_F(ProgressStart, ThreadThatCannotBeMadeHarmsNothing) {
    ShortWaits waits;
    TestWindow parent;
    {
        ReplaceImport replaced(__imp__beginthreadex, &NoThread);
        Progress progress(parent, 0, 0, 0, 1);
        progress.SetTitle(L"T");
        progress.SetText(0, L"text");
        progress.SetRange64(0, 10);
        progress.StepIt();
        EXPECT_FALSE(progress.GetDlgHWND());
        EXPECT_EQ(progress.GetPos64(), 1);
        progress.Close();
        progress.Close();
    }
    EXPECT_TRUE(::IsWindowEnabled(parent));
    EXPECT_EQ(CountProgressDialogs(), 0);
}

TEST_F(ProgressStart, WaitsExpireAndTheDialogStillServesWhenItComes) {
    WarmUp();
    const Belongings before;
    {
        ShortWaits waits;
        DialogRun run;
        HANDLE hGo = ::CreateEventW(nullptr, TRUE, FALSE, nullptr);
        run.fnBefore = [&] { ::WaitForSingleObject(hGo, 20000); };
        OpenProgress progress(nullptr, 60000, 0, 0, 1);
        progress.SetTitle(L"late");
        progress.SetText(0, L"line");
        progress.SetRange64(0, 50);
        progress.StartThread(); // returns, though there is no dialog
        EXPECT_GE(waits.Count(), 1);
        EXPECT_EQ(CountProgressDialogs(), 0);
        progress.SetText(1, L"meanwhile");
        progress.StepIt();
        ::SetEvent(hGo);
        ASSERT_TRUE(WaitUntil([&] {
            HWND hwnd = progress.GetDlgHWND();
            return hwnd && ::IsWindowVisible(hwnd);
        }));
        // What was stored before comes with the next call.
        progress.SetText(2, L"after");
        HWND hwnd = progress.GetDlgHWND();
        EXPECT_EQ(TextOf(hwnd), L"late");
        EXPECT_EQ(LineOf(hwnd, 0), L"line");
        EXPECT_EQ(LineOf(hwnd, 1), L"meanwhile");
        EXPECT_EQ(LineOf(hwnd, 2), L"after");
        EXPECT_EQ(BarEnd(hwnd, false), 50);
        EXPECT_EQ(BarPos(hwnd), 1);
        progress.SetTitle(L"title");
        EXPECT_EQ(TextOf(hwnd), L"title");
        progress.Close();
        EXPECT_FALSE(progress.IsCanceled());
        ::CloseHandle(hGo);
    }
    EXPECT_TRUE(NothingIsLeft(before)) << "now " << Belongings() << ", before " << before;
}

TEST_F(ProgressStart, InterfaceThreadTakesPartWhileTheDialogComesUp) {
    // The dialog's creation asks a window of the worker's, which sits in the constructor.
    LRESULT nAnswer = 0;
    int nPosted = 0;
    TestWindow window([&](UINT uMsg, WPARAM, LPARAM) -> std::optional<LRESULT> {
        if (uMsg == WM_APP + 1) return 4711;
        if (uMsg == WM_APP + 2) ++nPosted;
        return {};
    });
    HWND hwndMine = window;
    DialogRun run;
    run.fnBefore = [&] { nAnswer = ::SendMessageW(hwndMine, WM_APP + 1, 0, 0); };
    ::PostMessageW(hwndMine, WM_APP + 2, 0, 0);
    Progress progress;
    EXPECT_EQ(nAnswer, 4711);
    EXPECT_EQ(nPosted, 1);
    EXPECT_TRUE(progress.GetDlgHWND());
}

TEST_F(ProgressStart, SilentWorkerShowsNothing) {
    DialogRun run;
    AheadClock clock;
    const int nThreads = CountThreads();
    Progress progress(nullptr, 30, 0, 0, 1);
    clock.Advance(60000);
    progress.SetTitle(L"T"); // does not look at the clock
    progress.SetRange64(0, 10);
    progress.SetPos64(3);
    progress.EnableTicker(10, 10, nullptr);
    progress.SetLinesCount(2);
    EXPECT_TRUE(HoldsFor([&] { return CountThreads() <= nThreads; }, 60));
    EXPECT_FALSE(progress.GetDlgHWND());
    EXPECT_EQ(run.nTemplate, 0);
    progress.StepIt();
    EXPECT_TRUE(progress.GetDlgHWND());
}

TEST_F(ProgressStart, WorkerThatEndsBeforeTheDelayHasNoThreadAndNoWindow) {
    DialogRun run;
    TestWindow parent;
    const int nThreads = CountThreads();
    {
        Progress progress(parent, 2000, 0, 0, 1);
        EXPECT_FALSE(::IsWindowEnabled(parent));
        for (int n = 0; n < 100; ++n) EXPECT_EQ(progress.NextStep(1), 1);
        progress.SetText(0, L"text");
        EXPECT_FALSE(progress.IsCanceled());
        EXPECT_FALSE(progress.GetDlgHWND());
        EXPECT_LE(CountThreads(), nThreads);
    }
    EXPECT_TRUE(::IsWindowEnabled(parent));
    EXPECT_EQ(run.nTemplate, 0);
}

TEST_F(ProgressStart, EachCallThatLooksAtTheClockBringsItUpWhenDue) {
    const std::function<void(Progress&)> calls[] = {
        [](Progress& p) { p.StepIt(); },
        [](Progress& p) { p.NextStep(1); },
        [](Progress& p) { p.SetText(0, L"text"); },
        [](Progress& p) { p.SetTextFmt(0, L"%d", 3); },
    };
    for (size_t n = 0; n < std::size(calls); ++n) {
        SCOPED_TRACE(n);
        AheadClock clock;
        Progress progress(nullptr, 50000, 0, 0, 1);
        clock.Advance(49000);
        calls[n](progress);
        EXPECT_FALSE(progress.GetDlgHWND());
        clock.Advance(1000);
        calls[n](progress);
        EXPECT_TRUE(progress.GetDlgHWND());
    }
}
