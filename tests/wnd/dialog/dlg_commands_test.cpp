// Colours and commands: what of them is the controls', and what the dialog's.
#include "support/test_window.h"
#include "wnd/dialog/probe_dlg.h"

namespace {
struct CSDlgCommands : testing::Test {
    OpenDlg dlg;
};

struct CSDlgColors : CSDlgCommands {
    CSDlgColors() { hdc = ::CreateCompatibleDC(nullptr); }
    ~CSDlgColors() override { ::DeleteDC(hdc); }
    LRESULT Ask(UINT uMsg, int nId = IDC_EDIT) {
        HWND hwndCtl = uMsg == WM_CTLCOLORDLG ? dlg.hWnd : ::GetDlgItem(dlg, nId);
        return ::SendMessageW(dlg, uMsg, reinterpret_cast<WPARAM>(hdc),
                              reinterpret_cast<LPARAM>(hwndCtl));
    }
    HDC hdc = nullptr;
};

TEST_F(CSDlgColors, BackgroundIsThatOfEveryKindAndOfTheDialog) {
    dlg.SetDlgColors(RGB(1, 2, 3), RGB(4, 5, 6), RGB(7, 8, 9));
    ASSERT_NE(nullptr, dlg.bkgBrush);
    LOGBRUSH brush{};
    ::GetObjectW(dlg.bkgBrush, sizeof(brush), &brush);
    EXPECT_EQ(RGB(1, 2, 3), brush.lbColor);
    for (UINT uMsg = WM_CTLCOLOREDIT; uMsg <= WM_CTLCOLORSTATIC; ++uMsg) {
        ::SetBkMode(hdc, OPAQUE);
        ::SetTextColor(hdc, 0);
        EXPECT_EQ(reinterpret_cast<LRESULT>(dlg.bkgBrush), Ask(uMsg)) << uMsg;
        EXPECT_EQ(TRANSPARENT, ::GetBkMode(hdc)) << uMsg;
        EXPECT_EQ(RGB(4, 5, 6), ::GetTextColor(hdc)) << uMsg;
    }
    EXPECT_EQ(0, dlg.record.CountDlg(WM_CTLCOLORSTATIC)) << "the question ends there";
}

TEST_F(CSDlgColors, WithoutABackgroundOnlySomeControlsAreAsked) {
    ProbeCtrl ctrl(dlg.record);
    ctrl.Init(&dlg, IDC_EDIT, nullptr, 0);
    ctrl.hbr = static_cast<HBRUSH>(::GetStockObject(GRAY_BRUSH));
    for (UINT uMsg = WM_CTLCOLOREDIT; uMsg <= WM_CTLCOLORSTATIC; ++uMsg) {
        bool bAsked =
            uMsg == WM_CTLCOLOREDIT || uMsg == WM_CTLCOLORBTN || uMsg == WM_CTLCOLORSTATIC;
        dlg.record.log.clear();
        HBRUSH hbr = nullptr;
        int nTaken = dlg.CSDlg::OnCtlColor(uMsg, hdc, ctrl.hWnd, &hbr);
        EXPECT_EQ(bAsked ? 1 : 0, nTaken) << uMsg;
        EXPECT_EQ(bAsked ? ctrl.hbr : nullptr, hbr) << uMsg;
        EXPECT_EQ(bAsked ? 1 : 0, dlg.record.Count(Line("ctrl.OnCtlColor", uMsg))) << uMsg;
    }
    EXPECT_EQ(reinterpret_cast<LRESULT>(ctrl.hbr), Ask(WM_CTLCOLOREDIT));
    ctrl.hbr = nullptr;
    dlg.record.dlgMessages.clear();
    Ask(WM_CTLCOLOREDIT);
    EXPECT_EQ(1, dlg.record.CountDlg(WM_CTLCOLOREDIT)) << "nobody took it, so it goes on";
}

TEST_F(CSDlgColors, ControlWithoutAnObjectIsNotAsked) {
    HBRUSH hbr = nullptr;
    EXPECT_EQ(0, dlg.CSDlg::OnCtlColor(WM_CTLCOLORSTATIC, hdc, ::GetWindow(dlg, GW_CHILD), &hbr));
    EXPECT_EQ(0, dlg.CSDlg::OnCtlColor(WM_CTLCOLOREDIT, hdc, nullptr, &hbr));
    EXPECT_EQ(0, dlg.CSDlg::OnCtlColor(WM_CTLCOLORBTN, hdc, ::GetDlgItem(dlg, IDOK), &hbr));
    EXPECT_EQ(nullptr, hbr);
}

TEST_F(CSDlgColors, MessageBoxesColorIsNotAsked) {
    Ask(0x132); // WM_CTLCOLORMSGBOX, just below the others
    Ask(0x139); // and the one above
    EXPECT_EQ("", dlg.record.Only({"OnCtlColor"}));
}

TEST_F(CSDlgColors, SetReplacesTheBrushAndNoColorIsNoBrush) {
    dlg.SetDlgColors(RGB(10, 20, 30), 1, 2);
    HBRUSH hbrFirst = dlg.bkgBrush;
    dlg.SetDlgColors(RGB(30, 20, 10), 3, 4);
    EXPECT_NE(nullptr, dlg.bkgBrush);
    EXPECT_EQ(RGB(30, 20, 10), dlg.bkgColor);
    EXPECT_EQ(3u, dlg.textColor);
    EXPECT_EQ(4u, dlg.thirdColor);
    LOGBRUSH brush{};
    if (hbrFirst != dlg.bkgBrush) {
        EXPECT_EQ(0, ::GetObjectW(hbrFirst, sizeof(brush), &brush));
    }
    HBRUSH hbrSecond = dlg.bkgBrush;
    dlg.SetDlgColors(CLR_INVALID, 5, 6);
    EXPECT_EQ(nullptr, dlg.bkgBrush);
    EXPECT_EQ(CLR_INVALID, dlg.bkgColor);
    EXPECT_EQ(5u, dlg.textColor);
    EXPECT_EQ(0, ::GetObjectW(hbrSecond, sizeof(brush), &brush));
}

TEST_F(CSDlgColors, BrushGoesWithTheObject) {
    HBRUSH hbr = nullptr;
    {
        ProbeDlg other;
        other.SetDlgColors(RGB(3, 2, 1), 0, 0);
        hbr = other.bkgBrush;
    }
    LOGBRUSH brush{};
    EXPECT_EQ(0, ::GetObjectW(hbr, sizeof(brush), &brush));
}

TEST_F(CSDlgCommands, ClickIsToldAndThenMeansWhatTheIdSays) {
    dlg.qwOK = 31;
    dlg.qwCancel = 32;
    dlg.bQuietHelp = true;
    EXPECT_EQ(31, dlg.OnCommand(IDOK, 0, nullptr));
    EXPECT_EQ(32, dlg.OnCommand(IDCANCEL, 0, nullptr));
    EXPECT_EQ(1, dlg.OnCommand(9, 0, nullptr));
    EXPECT_EQ(0, dlg.OnCommand(IDC_BUTTON, 0, nullptr));
    EXPECT_EQ("OnButtonClicked 1; OnOK; OnButtonClicked 2; OnCancel; OnButtonClicked 9; OnHelp -1; "
              "OnButtonClicked 1006",
              dlg.record.Only({"OnButtonClicked", "OnOK", "OnCancel", "OnHelp"}));
}

TEST_F(CSDlgCommands, CodeOneIsAComboBoxesSelection) {
    EXPECT_EQ(0, dlg.OnCommand(IDC_COMBO, CBN_SELCHANGE, nullptr));
    EXPECT_EQ(0, dlg.OnCommand(IDOK, 1, nullptr));
    EXPECT_EQ("OnComboSelChanged 1008; OnComboSelChanged 1",
              dlg.record.Only({"OnComboSelChanged", "OnButtonClicked", "OnOK"}));
}

TEST_F(CSDlgCommands, OtherCodesMeanNothing) {
    for (unsigned short nCode : {2, 3, 0x100, 0x300, 0xFFFF}) {
        EXPECT_EQ(0, dlg.OnCommand(IDOK, nCode, nullptr));
    }
    EXPECT_EQ("", dlg.record.Only({"OnComboSelChanged", "OnButtonClicked", "OnOK"}));
}

TEST_F(CSDlgCommands, ControlIsAskedBeforeTheDialog) {
    ProbeCtrl ctrl(dlg.record);
    ctrl.Init(&dlg, IDC_BUTTON, nullptr, 0);
    EXPECT_EQ(0, dlg.OnCommand(IDC_BUTTON, 0, ctrl.hWnd));
    EXPECT_EQ("ctrl.OnCommand 0; OnButtonClicked 1006",
              dlg.record.Only({"ctrl.OnCommand", "OnButtonClicked"}));
    dlg.record.log.clear();
    ctrl.qwCommand = 0; // its result is 0 and nothing more happens
    EXPECT_EQ(0, dlg.OnCommand(IDOK, 0, ctrl.hWnd));
    ctrl.qwCommand = 77;
    EXPECT_EQ(77, dlg.OnCommand(IDC_BUTTON, 1, ctrl.hWnd));
    EXPECT_EQ("ctrl.OnCommand 0; ctrl.OnCommand 1",
              dlg.record.Only({"ctrl.OnCommand", "OnButtonClicked", "OnComboSelChanged", "OnOK"}));
}

TEST_F(CSDlgCommands, CommandOfAWindowWithoutAControlObjectIsTheDialogs) {
    TestWindow stranger;
    CSWnd plain;
    plain.Subclass(stranger);
    EXPECT_EQ(0, dlg.OnCommand(IDC_BUTTON, 0, stranger));
    EXPECT_EQ(0, dlg.OnCommand(IDC_BUTTON, 0, reinterpret_cast<HWND>(0x7654321)));
    EXPECT_EQ(2, dlg.record.Count("OnButtonClicked 1006"));
    plain.Unsubclass();
    plain.Detach();
}
} // namespace
