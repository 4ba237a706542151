// Life and end of dialog objects and their windows.
#include "support/gui_objects.h"
#include "support/heap_count.h"
#include "support/test_window.h"
#include "wnd/dialog/probe_dlg.h"

namespace {
TEST(CSDlgLife, WindowNamesItsObjectUntilItGoes) {
    ProbeDlg dlg;
    ASSERT_NE(nullptr, dlg.Modeless(IDD_DIALOG_HIDDEN, nullptr, nullptr, 0));
    HWND hwnd = dlg;
    EXPECT_EQ(static_cast<CSDlg*>(&dlg), ::GetPropW(hwnd, L"CSDLG"));
    EXPECT_EQ(&dlg, CSWnd::FromHandle(hwnd));
    HANDLE hBefore = nullptr, hAfter = &dlg;
    dlg.onPostNcDestroy = [&](ProbeDlg&) { hBefore = ::GetPropW(hwnd, L"CSDLG"); };
    dlg.afterPostNcDestroy = [&](ProbeDlg& d) {
        hAfter = ::GetPropW(hwnd, L"CSDLG");
        EXPECT_TRUE(d.hooks.IsEmpty());
    };
    ::DestroyWindow(hwnd);
    EXPECT_EQ(static_cast<CSDlg*>(&dlg), hBefore);
    EXPECT_EQ(nullptr, hAfter);
    EXPECT_EQ(1, dlg.record.Count("OnPostNcDestroy"));
    EXPECT_EQ(nullptr, dlg.hWnd);
}

TEST(CSDlgLife, ProcedureOfAWindowWithoutAnObjectGivesZero) {
    TestWindow stranger;
    EXPECT_EQ(0, CSDlg::ModalProc(stranger, WM_INITDIALOG, 0, 0));
    EXPECT_EQ(0, CSDlg::ModalProc(stranger, WM_COMMAND, IDOK, 0));
    EXPECT_EQ(0, CSDlg::ModalProc(nullptr, WM_COMMAND, IDOK, 0));
    EXPECT_EQ(nullptr, ::GetPropW(stranger, L"CSDLG"));
}

TEST(CSDlgLife, WindowThatLostItsNameIsDeafAndStillEnds) {
    ProbeDlg dlg;
    ASSERT_NE(nullptr, dlg.Modeless(IDD_DIALOG_HIDDEN, nullptr, nullptr, 0));
    HWND hwnd = dlg;
    ::RemovePropW(hwnd, L"CSDLG");
    dlg.record.dlgMessages.clear();
    EXPECT_EQ(0, CSDlg::ModalProc(hwnd, WM_COMMAND, IDOK, 0));
    EXPECT_EQ(0, dlg.record.CountDlg(WM_COMMAND));
    ::DestroyWindow(hwnd);
    EXPECT_EQ(nullptr, dlg.hWnd);
}

TEST(CSDlgLife, ObjectRunsAgainAndAgain) {
    ProbeDlg dlg;
    for (int n = 0; n < 4; ++n) {
        dlg.record.log.clear();
        dlg.nCloseWith = 100 + n;
        EXPECT_EQ(100 + n, dlg.RunModal([&](ProbeDlg& d) {
            EXPECT_EQ(1, d.dlgHooks.GetCount());
            EXPECT_NE(nullptr, d.hooks.Find(static_cast<WMHook*>(&d.msgHandler)));
            POS pos = d.hooks.Find(static_cast<WMHook*>(&d.msgHandler));
            EXPECT_EQ(nullptr, d.hooks.Find(static_cast<WMHook*>(&d.msgHandler), pos)) << "once";
            ::SendMessageW(d, WM_COMMAND, IDC_BUTTON, 0);
        }));
        EXPECT_EQ(1, dlg.record.Count("OnButtonClicked 1006"));
        EXPECT_EQ(1, dlg.record.Count("PreInit"));
        EXPECT_EQ(1, dlg.record.Count("OnInitDone"));
        EXPECT_EQ(1, dlg.record.Count("OnPostNcDestroy"));
        EXPECT_EQ(100 + n, dlg.modalResult);
    }
}

TEST(CSDlgLife, MarksStayForTheNextRunUntilADerivedClassClearsThem) {
    ProbeDlg dlg;
    dlg.RunModal([](ProbeDlg& d) { d.OnOK(); });
    EXPECT_EQ(1, dlg.controlsUpdated);
    EXPECT_EQ(1, dlg.isClosed);
    EXPECT_EQ(1, dlg.dataUpdated);
    dlg.record.log.clear();
    dlg.RunModal([](ProbeDlg& d) {
        EXPECT_EQ(0, d.IsValid());
        d.OnOK();
    });
    EXPECT_EQ("", dlg.record.Only({"UpdateControls", "UpdateData"}));
    dlg.controlsUpdated = dlg.isClosed = dlg.dataUpdated = 0;
    dlg.RunModal([](ProbeDlg& d) {
        EXPECT_EQ(1, d.IsValid());
        d.OnOK();
    });
    EXPECT_EQ("UpdateControls; UpdateData", dlg.record.Only({"UpdateControls", "UpdateData"}));
}

TEST(CSDlgLife, ObjectRunsInEveryWayAfterAnother) {
    ProbeDlg dlg;
    dlg.RunModal([](ProbeDlg&) {});
    dlg.onInside = [](ProbeDlg&) {};
    dlg.nCloseWith = 20;
    EXPECT_EQ(20, dlg.ModelessWithLoop(0, IDD_DIALOG_PLAIN, nullptr, nullptr, nullptr));
    EXPECT_NE(nullptr, dlg.Modeless(IDD_DIALOG_PLAIN, nullptr, nullptr, 0));
    dlg.CloseDialog(21, 0);
    EXPECT_EQ(nullptr, dlg.hWnd);
    EXPECT_EQ(21, dlg.result);
    while (TakeThreadMessage(kLoopEnd)) continue;
}

TEST(CSDlgLife, ModalRunAfterAModelessOneIsClosedByItsWindowsEnd) {
    ProbeDlg dlg;
    dlg.Modeless(IDD_DIALOG_HIDDEN, nullptr, nullptr, 0);
    dlg.CloseDialog(1, 0);
    dlg.RunModal([](ProbeDlg& d) {
        HWND hwnd = d;
        d.CloseDialog(5, 0);
        EXPECT_FALSE(::IsWindow(hwnd));
    });
    EXPECT_EQ(5, dlg.result);
    EXPECT_EQ(nullptr, dlg.hWnd);
}

TEST(CSDlgLife, MemberControlsAreTiedAnewInEachRun) {
    ProbeDlg dlg;
    for (int n = 0; n < 2; ++n) {
        ProbeCtrl ctrl(dlg.record);
        dlg.onInit = [&](ProbeDlg& d) {
            ctrl.Init(&d, IDOK, nullptr, 0);
            EXPECT_NE(nullptr, ctrl.hWnd);
        };
        dlg.RunModal(
            [&](ProbeDlg& d) { EXPECT_EQ(static_cast<CSCtrl*>(&ctrl), d.GetDlgCtrl(IDOK)); });
        EXPECT_EQ(nullptr, ctrl.hWnd);
    }
}

TEST(CSDlgLife, DestructorTakesTheHooksAndLeavesThemAlive) {
    struct CountingHook : WMHook {
        explicit CountingHook(int& n) : nEnds(n) {}
        ~CountingHook() override { ++nEnds; }
        int& nEnds;
    };
    int nEnds = 0;
    {
        CountingHook hook(nEnds);
        {
            ProbeDlg dlg;
            dlg.AddDlgHook(&hook);
            dlg.AddWndHook(&hook);
        }
        EXPECT_EQ(0, nEnds);
    }
    EXPECT_EQ(1, nEnds);
}

// What is left behind.

TEST(CSDlgLeaks, HundredDialogsLeaveGdiAndUserObjectsAndBlocksAsTheyWere) {
    auto runOnce = [](int n) {
        ProbeDlg dlg;
        dlg.SetDlgColors(RGB(n, 2, 3), RGB(0, 0, 0), CLR_INVALID);
        dlg.onInit = [](ProbeDlg& d) { d.SetDlgItemTextFmtCtrl(IDC_FORMAT, 3, L"ten"); };
        dlg.RunModal([](ProbeDlg& d) { d.DelayAction(1, 5000); },
                     n % 5 ? IDD_DIALOG_HIDDEN : IDD_DIALOG_ITEMS);
    };
    for (int n = 0; n < 5; ++n) runOnce(n);
    int nGdi = CountGdiObjects(), nUser = CountUserObjects();
    long nBlocks = CountLiveBlocks();
    for (int n = 0; n < 100; ++n) runOnce(n);
    EXPECT_EQ(nGdi, CountGdiObjects());
    EXPECT_EQ(nUser, CountUserObjects());
    EXPECT_EQ(nBlocks, CountLiveBlocks());
}

TEST(CSDlgLeaks, VisibleOnesAndOwnLoopsLeaveNothingEither) {
    TestWindow owner;
    auto runOnce = [&] {
        ProbeDlg dlg;
        dlg.onInside = [](ProbeDlg& d) { ::UpdateWindow(d); };
        EXPECT_EQ(7, dlg.ModelessWithLoop(1, IDD_DIALOG_ITEMS, nullptr, owner, nullptr));
    };
    for (int n = 0; n < 3; ++n) runOnce();
    int nGdi = CountGdiObjects(), nUser = CountUserObjects();
    long nBlocks = CountLiveBlocks();
    for (int n = 0; n < 15; ++n) runOnce();
    EXPECT_EQ(nGdi, CountGdiObjects());
    EXPECT_EQ(nUser, CountUserObjects());
    EXPECT_EQ(nBlocks, CountLiveBlocks());
}

TEST(CSDlgLeaks, FailedRunsLeaveNothing) {
    ProbeDlg warmUp;
    warmUp.Modal(999, nullptr, nullptr);
    int nGdi = CountGdiObjects(), nUser = CountUserObjects();
    long nBlocks = CountLiveBlocks();
    for (int n = 0; n < 20; ++n) {
        ProbeDlg dlg;
        dlg.Modal(999, nullptr, nullptr);
        dlg.Modeless(999, nullptr, nullptr, 1);
        dlg.ModelessWithLoop(1, 999, nullptr, nullptr, nullptr);
        dlg.CreateIndirect(nullptr, nullptr);
    }
    EXPECT_EQ(nGdi, CountGdiObjects());
    EXPECT_EQ(nUser, CountUserObjects());
    EXPECT_EQ(nBlocks, CountLiveBlocks());
}
} // namespace
