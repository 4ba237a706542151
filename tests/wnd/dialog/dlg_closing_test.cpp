// How a dialog ends: OK, Cancel, CloseDialog, and from where it may be called.
#include "support/test_window.h"
#include "support/window_thread.h"
#include "wnd/dialog/probe_dlg.h"

namespace {
constexpr UINT kCloseMsg = WM_APP + 11;

/// A hidden dialog with three control objects whose OnOK is seen.
struct CSDlgClose : testing::Test {
    CSDlgClose() {
        dlg.onInit = [this](ProbeDlg& d) {
            edit.Init(&d, IDC_EDIT, nullptr, 0);
            check.Init(&d, IDC_CHECK, nullptr, 0);
            EXPECT_NE(nullptr, edit.hWnd);
        };
        EXPECT_NE(nullptr, dlg.Modeless(IDD_DIALOG_ITEMS, nullptr, nullptr, 0));
        hwnd = dlg;
        dlg.record.log.clear();
    }
    ~CSDlgClose() override {
        if (::IsWindow(hwnd)) ::DestroyWindow(hwnd);
    }
    std::string Closing() {
        return dlg.record.Only({"UpdateData", "CanClose", "ctrl.OnOK", "DoClose"});
    }
    ProbeDlg dlg;
    ProbeCtrl edit{dlg.record}, check{dlg.record};
    HWND hwnd = nullptr;
};

TEST_F(CSDlgClose, AsksThenTellsTheControlsThenClosesThenDestroys) {
    dlg.onDoClose = [this](ProbeDlg& d) {
        EXPECT_TRUE(::IsWindow(hwnd));
        EXPECT_EQ(1, d.isClosing);
        EXPECT_EQ(5, d.result);
    };
    dlg.onCanClose = [](ProbeDlg& d) {
        EXPECT_EQ(1, d.isClosing);
        EXPECT_EQ(-1, d.result) << "not yet stored";
    };
    EXPECT_EQ(1, dlg.CloseDialog(5, 1));
    EXPECT_EQ("CanClose 5; ctrl.OnOK; ctrl.OnOK; DoClose 5", Closing());
    EXPECT_FALSE(::IsWindow(hwnd));
    EXPECT_EQ(nullptr, dlg.hWnd);
    EXPECT_EQ(0, dlg.isClosing);
    EXPECT_EQ(1, dlg.isClosed);
    EXPECT_EQ(5, dlg.result);
}

struct OKControlsCase {
    const char* pszName;
    int nResult, nOkControls;
    bool bExpected;
};
class CSDlgOKControls : public testing::TestWithParam<OKControlsCase> {};
TEST_P(CSDlgOKControls, DecidesWhetherTheControlsAreTold) {
    const auto& row = GetParam();
    ProbeDlg dlg;
    ProbeCtrl ctrl(dlg.record);
    dlg.onInit = [&](ProbeDlg& d) { ctrl.Init(&d, IDOK, nullptr, 0); };
    ASSERT_NE(nullptr, dlg.Modeless(IDD_DIALOG_HIDDEN, nullptr, nullptr, 0));
    EXPECT_EQ(1, dlg.CloseDialog(row.nResult, row.nOkControls));
    EXPECT_EQ(row.bExpected ? 1 : 0, dlg.record.Count("ctrl.OnOK"));
    EXPECT_EQ(row.nResult, dlg.result);
}
INSTANTIATE_TEST_SUITE_P(Cases, CSDlgOKControls,
                         testing::Values(OKControlsCase{"DefaultForOK", 1, -1, true},
                                         OKControlsCase{"DefaultForCancel", 2, -1, false},
                                         OKControlsCase{"DefaultForAnyOther", 5, -1, true},
                                         OKControlsCase{"DefaultForZero", 0, -1, true},
                                         OKControlsCase{"DefaultForMinusTwo", -2, -1, true},
                                         OKControlsCase{"NotForOK", 1, 0, false},
                                         OKControlsCase{"AlsoForCancel", 2, 1, true},
                                         OKControlsCase{"AnyNonZero", 2, 7, true},
                                         OKControlsCase{"MinusTwoIsNonZero", 2, -2, true}),
                         [](const auto& row) { return std::string(row.param.pszName); });

TEST_F(CSDlgClose, OnlyDirectChildrenThatAreControlsAreTold) {
    CSWnd plain; // an object that is no control's
    plain.Subclass(::GetDlgItem(dlg, IDC_BUTTON));
    HWND hwndDeep =
        ::CreateWindowExW(0, L"STATIC", L"", WS_CHILD, 0, 0, 5, 5, ::GetDlgItem(dlg, IDC_FRAME),
                          reinterpret_cast<HMENU>(UINT_PTR{1700}), nullptr, nullptr);
    ProbeCtrl deep(dlg.record);
    deep.Subclass(hwndDeep);
    dlg.CloseDialog(1, 1);
    EXPECT_EQ(2, dlg.record.Count("ctrl.OnOK"));
}

TEST_F(CSDlgClose, ControlIsToldWhileItsWindowLives) {
    struct StoringCtrl : CSCtrl {
        void Store() override {
            ++nStores;
            bLives = ::IsWindow(hWnd);
        }
        int nStores = 0;
        bool bLives = false;
    } ctrl;
    ctrl.Init(&dlg, IDC_NUMBER, nullptr, 0);
    dlg.CloseDialog(1, -1);
    EXPECT_EQ(1, ctrl.nStores);
    EXPECT_TRUE(ctrl.bLives);
}

TEST_F(CSDlgClose, CanCloseKeepsItOpenWithoutATrace) {
    dlg.nCanClose = 0;
    EXPECT_EQ(1, dlg.CloseDialog(5, 1));
    EXPECT_EQ("CanClose 5", Closing());
    EXPECT_TRUE(::IsWindow(hwnd));
    EXPECT_EQ(-1, dlg.result);
    EXPECT_EQ(0, dlg.isClosing);
    EXPECT_EQ(0, dlg.isClosed);
}

TEST_F(CSDlgClose, CancelAsksCanCloseToo) {
    dlg.nCanClose = 0;
    EXPECT_EQ(1, dlg.OnCancel());
    EXPECT_EQ("CanClose 2", Closing());
    EXPECT_TRUE(::IsWindow(hwnd));
    EXPECT_EQ(-1, dlg.result);
    EXPECT_EQ(0, dlg.isClosing);
    dlg.nCanClose = 9; // any non-zero
    EXPECT_EQ(1, dlg.OnCancel());
    EXPECT_EQ("CanClose 2; CanClose 2; DoClose 2", Closing()) << "and the controls are not told";
    EXPECT_EQ(2, dlg.result);
}

TEST_F(CSDlgClose, OKCollectsAndTellsTheControls) {
    EXPECT_EQ(1, dlg.OnOK());
    EXPECT_EQ("UpdateData; CanClose 1; ctrl.OnOK; ctrl.OnOK; DoClose 1", Closing());
    EXPECT_EQ(1, dlg.dataUpdated);
    EXPECT_FALSE(::IsWindow(hwnd));
}

TEST_F(CSDlgClose, OKStaysOpenWhenTheDataIsRefused) {
    dlg.nUpdateData = 0;
    EXPECT_EQ(0, dlg.OnOK());
    EXPECT_EQ("UpdateData", Closing());
    EXPECT_TRUE(::IsWindow(hwnd));
    EXPECT_EQ(0, dlg.dataUpdated);
    EXPECT_EQ(0, dlg.isClosing);
    dlg.nUpdateData = -1;
    EXPECT_EQ(1, dlg.OnOK());
    EXPECT_FALSE(::IsWindow(hwnd));
}

TEST_F(CSDlgClose, DataThatWasCollectedIsNotCollectedAgain) {
    dlg.dataUpdated = 1;
    dlg.nUpdateData = 0; // would refuse
    EXPECT_EQ(1, dlg.OnOK());
    EXPECT_EQ("CanClose 1; ctrl.OnOK; ctrl.OnOK; DoClose 1", Closing());
}

TEST_F(CSDlgClose, OKThatCanCloseRefusesIsNotCollectedASecondTime) {
    dlg.nCanClose = 0;
    EXPECT_EQ(1, dlg.OnOK());
    EXPECT_EQ(1, dlg.OnOK());
    EXPECT_EQ("UpdateData; CanClose 1; CanClose 1", Closing());
}

TEST_F(CSDlgClose, DoCloseThatIsNotPassedOnLeavesTheMarkClear) {
    struct KeepsMark : ProbeDlg {
        void DoClose(int) override {}
    } other;
    ASSERT_NE(nullptr, other.Modeless(IDD_DIALOG_HIDDEN, nullptr, nullptr, 0));
    other.CloseDialog(4, 0);
    EXPECT_EQ(0, other.isClosed);
    EXPECT_EQ(4, other.result);
    EXPECT_EQ(nullptr, other.hWnd);
}

TEST_F(CSDlgClose, WindowThatHasGoneAlreadyIsNothingToDestroy) {
    ::DestroyWindow(hwnd);
    EXPECT_EQ(1, dlg.CloseDialog(6, 1));
    EXPECT_EQ(6, dlg.result);
    EXPECT_EQ(0, dlg.record.Count("ctrl.OnOK"));
}

TEST_F(CSDlgClose, ObjectThatNeverRanCanBeClosed) {
    ProbeDlg never;
    EXPECT_EQ(1, never.CloseDialog(6, -1));
    EXPECT_EQ(6, never.result);
    EXPECT_EQ(1, never.isClosed);
    EXPECT_EQ(0, never.isClosing);
}

TEST_F(CSDlgClose, EndDialogIsThePlatformsAlone) {
    ProbeDlg modal;
    modal.bStayOpen = true;
    EXPECT_EQ(31, modal.RunModal([](ProbeDlg& d) { EXPECT_NE(0, d.EndDialog(31)); }));
    EXPECT_EQ(-1, modal.result);
    EXPECT_EQ(0, modal.isClosed);
    EXPECT_EQ("", modal.record.Only({"CanClose", "DoClose"}));
}

TEST_F(CSDlgClose, ModalWindowLivesUntilTheMessageIsOver) {
    ProbeDlg modal;
    modal.RunModal([](ProbeDlg& d) {
        HWND hwndModal = d;
        EXPECT_EQ(1, d.CloseDialog(1, 0));
        EXPECT_TRUE(::IsWindow(hwndModal));
        EXPECT_EQ(hwndModal, d.hWnd);
    });
    EXPECT_EQ(nullptr, modal.hWnd);
}

TEST_F(CSDlgClose, PlacementIsFilledAtTheEnd) {
    MyWindowPlacement place;
    ProbeDlg modal;
    modal.EnableResizing(0, &place);
    RECT rc{};
    modal.RunModal([&](ProbeDlg& d) {
        ::SetWindowPos(d, nullptr, 123, 97, 0, 0, SWP_NOSIZE | SWP_NOZORDER);
        ::GetWindowRect(d, &rc);
        place.rcNormalPosition = {};
    });
    EXPECT_TRUE(place.IsInitialized());
    EXPECT_TRUE(::EqualRect(&rc, &place.rcNormalPosition));
}

TEST_F(CSDlgClose, PlacementIsLeftAloneWhenItStaysOpen) {
    MyWindowPlacement place;
    place.Initialize();
    dlg.placement = &place;
    dlg.nCanClose = 0;
    dlg.CloseDialog(1, 0);
    EXPECT_EQ(0, place.rcNormalPosition.right);
    dlg.nCanClose = -1;
    dlg.CloseDialog(1, 0);
    EXPECT_NE(0, place.rcNormalPosition.right);
    dlg.placement = nullptr;
}

// From where a dialog may be closed.

TEST(CSDlgClosedFrom, ItsInitialisation) {
    ProbeDlg dlg;
    dlg.onInit = [](ProbeDlg& d) { d.CloseDialog(9, 0); };
    EXPECT_EQ(9, dlg.Modal(IDD_DIALOG_PLAIN, nullptr, nullptr));
    EXPECT_EQ(9, dlg.result);
    EXPECT_EQ(nullptr, dlg.hWnd);
}

TEST(CSDlgClosedFrom, TheEndOfItsInitialisation) {
    ProbeDlg dlg;
    dlg.onInitDone = [](ProbeDlg& d) { d.CloseDialog(10, 0); };
    EXPECT_EQ(10, dlg.Modal(IDD_DIALOG_PLAIN, nullptr, nullptr));
    EXPECT_EQ(nullptr, dlg.hWnd);
}

TEST(CSDlgClosedFrom, ItsFirstShow) {
    ProbeDlg dlg;
    dlg.onUpdateControls = [](ProbeDlg& d) { d.CloseDialog(12, 0); };
    EXPECT_EQ(12, dlg.Modal(IDD_DIALOG_PLAIN, nullptr, nullptr));
    ProbeDlg dlgModeless;
    dlgModeless.onUpdateControls = [](ProbeDlg& d) { d.CloseDialog(12, 0); };
    dlgModeless.Modeless(IDD_DIALOG_HIDDEN, nullptr, nullptr, 1);
    EXPECT_EQ(nullptr, dlgModeless.hWnd);
    EXPECT_EQ(12, dlgModeless.result);
}

TEST(CSDlgClosedFrom, ItsInitialisationWhenModeless) {
    ProbeDlg dlg;
    dlg.onInit = [](ProbeDlg& d) { d.CloseDialog(9, 0); };
    HWND hwnd = dlg.Modeless(IDD_DIALOG_PLAIN, nullptr, nullptr, 1);
    EXPECT_FALSE(::IsWindow(hwnd));
    EXPECT_EQ(9, dlg.result);
    EXPECT_EQ(nullptr, dlg.hWnd);
}

TEST(CSDlgClosedFrom, ItsPreInit) {
    ProbeDlg dlg;
    dlg.onPreInit = [](ProbeDlg& d) { d.CloseDialog(8, 0); };
    HWND hwnd = dlg.Modeless(IDD_DIALOG_PLAIN, nullptr, nullptr, 1);
    EXPECT_FALSE(::IsWindow(hwnd));
    EXPECT_EQ(8, dlg.result);
    EXPECT_EQ(0, dlg.record.Count("OnInitDialog"));
}

TEST(CSDlgClosedFrom, AControlsCommand) {
    ProbeDlg dlg;
    ProbeCtrl ctrl(dlg.record);
    dlg.onInit = [&](ProbeDlg& d) { ctrl.Init(&d, IDOK, nullptr, 0); };
    ctrl.onCommand = [&] { dlg.CloseDialog(14, 0); };
    ctrl.qwCommand = 1;
    dlg.bStayOpen = true;
    EXPECT_EQ(14, dlg.RunModal([](ProbeDlg& d) { d.SendDlgItemMsg(IDOK, BM_CLICK, 0, 0); }));
    EXPECT_EQ(0, dlg.record.Count("OnOK"));
    EXPECT_EQ(nullptr, ctrl.hWnd);
}

TEST(CSDlgClosedFrom, AControlsCommandWhenModeless) {
    ProbeDlg dlg;
    ProbeCtrl ctrl(dlg.record);
    dlg.onInit = [&](ProbeDlg& d) { ctrl.Init(&d, IDOK, nullptr, 0); };
    ctrl.onCommand = [&] { dlg.CloseDialog(14, 0); };
    ASSERT_NE(nullptr, dlg.Modeless(IDD_DIALOG_PLAIN, nullptr, nullptr, 1));
    ctrl.qwCommand = 1;
    dlg.SendDlgItemMsg(IDOK, BM_CLICK, 0, 0);
    EXPECT_EQ(14, dlg.result);
    EXPECT_EQ(nullptr, dlg.hWnd);
    EXPECT_EQ(nullptr, ctrl.hWnd);
}

TEST(CSDlgClosedFrom, ATimer) {
    ProbeDlg dlg;
    dlg.bStayOpen = true;
    dlg.onDelayed = [](ProbeDlg& d) { d.CloseDialog(15, 0); };
    EXPECT_EQ(15, dlg.RunModal([](ProbeDlg& d) { d.DelayAction(3, 10); }));
    EXPECT_EQ(0, dlg.delayTimer.IsTicking());
}

TEST(CSDlgClosedFrom, AnotherThreadsPostedMessage) {
    WindowThread thread;
    ProbeDlg dlg;
    dlg.bStayOpen = true;
    EXPECT_EQ(1, dlg.RunModal([&](ProbeDlg& d) {
        HWND hwnd = d;
        thread.Post([hwnd] { ::PostMessageW(hwnd, WM_COMMAND, IDOK, 0); });
    }));
    EXPECT_EQ(1, dlg.record.Count("OnOK"));
}

TEST(CSDlgClosedFrom, AnotherThreadsSentMessage) {
    WindowThread thread;
    ProbeDlg dlg;
    dlg.bStayOpen = true;
    EXPECT_EQ(2, dlg.RunModal([&](ProbeDlg& d) {
        HWND hwnd = d;
        thread.Post([hwnd] { ::SendMessageW(hwnd, WM_COMMAND, IDCANCEL, 0); });
    }));
}

TEST(CSDlgClosedFrom, AHookOfTheDialogProcedure) {
    struct ClosingHook : WMHook {
        int OnDlgMessage(CSDlg* pDlg, UINT uMsg, WPARAM, LPARAM, LRESULT*) override {
            if (uMsg == kCloseMsg) pDlg->CloseDialog(16, 0);
            return 0;
        }
    } hook;
    ProbeDlg dlg;
    dlg.AddDlgHook(&hook);
    ASSERT_NE(nullptr, dlg.Modeless(IDD_DIALOG_HIDDEN, nullptr, nullptr, 0));
    ::SendMessageW(dlg, kCloseMsg, 0, 0);
    EXPECT_EQ(16, dlg.result);
    EXPECT_EQ(nullptr, dlg.hWnd);
    EXPECT_EQ(0, dlg.dlgMsgDepth);
}

TEST(CSDlgClosedFrom, TheSystemMenu) {
    ProbeDlg dlg;
    dlg.bStayOpen = true;
    EXPECT_EQ(2, dlg.RunModal([](ProbeDlg& d) { d.PostMsg(WM_SYSCOMMAND, SC_CLOSE, 0); }));
    EXPECT_EQ(1, dlg.record.Count("OnCancel"));
}

TEST(CSDlgClosedFrom, TheEndOfItsParent) {
    ProbeDlg dlg;
    {
        TestWindow parent;
        ASSERT_NE(nullptr, dlg.Modeless(IDD_DIALOG_HIDDEN, nullptr, parent, 0));
    }
    EXPECT_EQ(nullptr, dlg.hWnd);
    EXPECT_EQ(-1, dlg.result);
    EXPECT_EQ(0, dlg.isClosed);
    EXPECT_EQ(1, dlg.record.Count("OnPostNcDestroy"));
}
} // namespace
