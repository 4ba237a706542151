// The one action of a dialog that can be put off.
#include "support/replace_import.h"
#include "wnd/dialog/probe_dlg.h"

#include <memory>

extern "C" FARPROC __imp_SetTimer;
extern "C" FARPROC __imp_KillTimer;

namespace {
constexpr unsigned long kLongMs = 60000;

struct CSDlgDelay : testing::Test {
    OpenDlg dlg{IDD_DIALOG_HIDDEN};
    std::string Actions() { return dlg.record.Only({"OnDelayedAction"}); }
};

TEST_F(CSDlgDelay, ActionComesOnceWithItsCode) {
    EXPECT_NE(0, dlg.DelayAction(5, 10));
    EXPECT_EQ(5u, dlg.delayedAction);
    EXPECT_EQ(1, dlg.delayTimer.IsTicking());
    EXPECT_EQ(1u, dlg.delayTimer.GetID());
    EXPECT_EQ("", Actions());
    EXPECT_TRUE(PumpUntil([&] { return !Actions().empty(); }));
    EXPECT_EQ("OnDelayedAction 5", Actions());
    EXPECT_EQ(0u, dlg.delayedAction);
    EXPECT_EQ(0, dlg.delayTimer.IsTicking());
    EXPECT_FALSE(PumpUntil([&] { return Actions() != "OnDelayedAction 5"; }, 60));
}

TEST_F(CSDlgDelay, SecondCallReplacesTheFirst) {
    dlg.DelayAction(5, 10);
    dlg.DelayAction(6, 20);
    EXPECT_EQ(6u, dlg.delayedAction);
    EXPECT_TRUE(PumpUntil([&] { return !Actions().empty(); }));
    EXPECT_EQ("OnDelayedAction 6", Actions());
}

TEST_F(CSDlgDelay, ZeroTimeDropsWhatWaits) {
    dlg.DelayAction(5, 10);
    EXPECT_EQ(1, dlg.DelayAction(9, 0));
    EXPECT_EQ(0u, dlg.delayedAction);
    EXPECT_EQ(0, dlg.delayTimer.IsTicking());
    EXPECT_FALSE(PumpUntil([&] { return !Actions().empty(); }, 60));
}

TEST_F(CSDlgDelay, ZeroTimeWithNothingWaitingIsDone) {
    EXPECT_EQ(1, dlg.DelayAction(9, 0));
    EXPECT_EQ(0u, dlg.delayedAction);
}

TEST_F(CSDlgDelay, CodesOfAllBitsArrive) {
    dlg.DelayAction(0xFFFFFFFF, 10);
    EXPECT_TRUE(PumpUntil([&] { return !Actions().empty(); }));
    EXPECT_EQ("OnDelayedAction 4294967295", Actions());
}

TEST_F(CSDlgDelay, ActionMayPutOffTheNext) {
    dlg.onDelayed = [n = 0](ProbeDlg& d) mutable {
        // (The default, which runs behind this, ends the waiting: the next is put off from
        // outside.)
        if (++n < 3) d.PostMsg(WM_APP + 40, 0, 0);
    };
    struct Repeating : WMHook {
        int OnDlgMessage(CSDlg* pDlg, UINT uMsg, WPARAM, LPARAM, LRESULT*) override {
            if (uMsg == WM_APP + 40) pDlg->DelayAction(7, 10);
            return 0;
        }
    } hook;
    dlg.AddDlgHook(&hook);
    dlg.DelayAction(7, 10);
    EXPECT_TRUE(PumpUntil([&] { return dlg.record.Count("OnDelayedAction 7") == 3; }));
    dlg.RemoveDlgHook(&hook);
}

UINT_PTR WINAPI RefusingSetTimer(HWND, UINT_PTR, UINT, TIMERPROC) { return 0; }

TEST_F(CSDlgDelay, RefusalOfThePlatformIsZero) {
    ReplaceImport replaced(__imp_SetTimer, &RefusingSetTimer);
    EXPECT_EQ(0, dlg.DelayAction(5, 10));
    EXPECT_EQ(0, dlg.delayTimer.IsTicking());
}

struct TimerCall {
    HWND hwnd;
    UINT_PTR uId;
    UINT nMs;
    bool bProc;
};
std::vector<TimerCall> timersSet;
UINT_PTR WINAPI RecordSetTimer(HWND hwnd, UINT_PTR uId, UINT nMs, TIMERPROC pfn) {
    timersSet.push_back({hwnd, uId, nMs, pfn != nullptr});
    return uId;
}

TEST_F(CSDlgDelay, TimerIsTheWindowsOwnNumberOne) {
    timersSet.clear();
    ReplaceImport replaced(__imp_SetTimer, &RecordSetTimer);
    EXPECT_NE(0, dlg.DelayAction(5, 1234));
    ASSERT_EQ(1u, timersSet.size());
    EXPECT_EQ(dlg.hWnd, timersSet[0].hwnd);
    EXPECT_EQ(1u, timersSet[0].uId);
    EXPECT_EQ(1234u, timersSet[0].nMs);
    EXPECT_FALSE(timersSet[0].bProc);
}

int nKills = 0;
BOOL WINAPI CountKillTimer(HWND, UINT_PTR) {
    ++nKills;
    return TRUE;
}

TEST_F(CSDlgDelay, TimerEndsWithTheObject) {
    auto pDlg = std::make_unique<ProbeDlg>();
    ASSERT_NE(nullptr, pDlg->Modeless(IDD_DIALOG_HIDDEN, nullptr, nullptr, 0));
    HWND hwnd = *pDlg;
    pDlg->DelayAction(5, kLongMs);
    ReplaceImport replaced(__imp_KillTimer, &CountKillTimer);
    nKills = 0;
    pDlg.reset();
    EXPECT_EQ(1, nKills);
    ::DestroyWindow(hwnd);
}

TEST_F(CSDlgDelay, WindowThatGoesTakesTheActionAlong) {
    ProbeDlg other;
    ASSERT_NE(nullptr, other.Modeless(IDD_DIALOG_HIDDEN, nullptr, nullptr, 0));
    other.DelayAction(5, 10);
    other.Destroy();
    EXPECT_FALSE(PumpUntil([&] { return other.record.Count("OnDelayedAction 5") > 0; }, 60));
}
} // namespace
