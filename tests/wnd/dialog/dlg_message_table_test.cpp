// What the built-in hook and the window's handler make of each message.
#include "support/replace_import.h"
#include "support/test_window.h"
#include "wnd/core/company_msg.h"
#include "wnd/dialog/html_help.h"
#include "wnd/dialog/probe_dlg.h"

extern "C" FARPROC __imp_TrackMouseEvent;

namespace {
struct CSDlgMessages : testing::Test {
    OpenDlg dlg;
    LRESULT lResult = 0;
};

TEST_F(CSDlgMessages, CompanyMessageGoesToTheDialogFirst) {
    UINT uMsg = GetMyCompanyMsgId();
    EXPECT_EQ(0, dlg.Handle(uMsg, 55, -3));
    EXPECT_EQ("OnMyCompanyMsg 55 -3", dlg.record.Only({"OnMyCompanyMsg"}));
    dlg.qwCompany = 88;
    EXPECT_EQ(1, dlg.Handle(uMsg, 55, -3, &lResult));
    EXPECT_EQ(88, lResult);
    EXPECT_EQ(88, SendMyCompanyMsg(dlg, 55, -3));
}

TEST_F(CSDlgMessages, CompanyMessageThatWasHandledEndsThere) {
    dlg.activationTag = 5;
    dlg.qwCompany = 88;
    EXPECT_EQ(88, SendMyCompanyMsg(dlg, kMsgFindDialog, 5));
    dlg.pages[3] = L"page.htm";
    HelpRequest request{3, nullptr};
    dlg.Handle(GetMyCompanyMsgId(), kMsgHelpRequest, reinterpret_cast<LPARAM>(&request));
    EXPECT_EQ(nullptr, request.pszPage);
}

TEST_F(CSDlgMessages, DialogIsFoundByItsActivationTag) {
    UINT uMsg = GetMyCompanyMsgId();
    EXPECT_EQ(121u, kMsgFindDialog);
    EXPECT_EQ(0, dlg.Handle(uMsg, kMsgFindDialog, 0, &lResult)) << "no tag is no tag to ask for";
    dlg.activationTag = 370;
    EXPECT_EQ(1, dlg.Handle(uMsg, kMsgFindDialog, 370, &lResult));
    EXPECT_EQ(1, lResult);
    for (LPARAM l : {LPARAM{0}, LPARAM{369}, LPARAM{0x10000 + 370}, LPARAM{-1}}) {
        EXPECT_EQ(0, SendMyCompanyMsg(dlg, kMsgFindDialog, l)) << l;
    }
    EXPECT_EQ(1, SendMyCompanyMsg(dlg, kMsgFindDialog, 370));
}

TEST_F(CSDlgMessages, OtherCodesAreNotAnswered) {
    dlg.activationTag = 7;
    for (WPARAM w : {1, 3, 16, 99, 101, 120, 122}) {
        EXPECT_EQ(0, dlg.Handle(GetMyCompanyMsgId(), w, 7)) << w;
        EXPECT_EQ(0, SendMyCompanyMsg(dlg, w, 7)) << w;
    }
    EXPECT_TRUE(::IsWindow(dlg));
}

TEST_F(CSDlgMessages, ShowWindowIsTold) {
    EXPECT_EQ(0, dlg.Handle(WM_SHOWWINDOW, TRUE, SW_PARENTOPENING));
    EXPECT_EQ(1, dlg.record.Count("OnShowWindow 1 3"));
    EXPECT_EQ(0, dlg.Handle(WM_SHOWWINDOW, FALSE, 0));
    EXPECT_EQ(1, dlg.record.Count("OnShowWindow 0 0"));
}

TEST_F(CSDlgMessages, DrawnItemsGoToTheControlsObject) {
    ProbeCtrl ctrl(dlg.record);
    ctrl.Init(&dlg, IDC_OWNER_DRAWN, nullptr, 0);
    DRAWITEMSTRUCT draw{};
    draw.itemID = 5;
    MEASUREITEMSTRUCT measure{};
    measure.itemID = 6;
    DELETEITEMSTRUCT gone{};
    gone.itemID = 7;
    EXPECT_EQ(1, dlg.Handle(WM_DRAWITEM, IDC_OWNER_DRAWN, reinterpret_cast<LPARAM>(&draw)));
    EXPECT_EQ(1, dlg.Handle(WM_MEASUREITEM, IDC_OWNER_DRAWN, reinterpret_cast<LPARAM>(&measure)));
    EXPECT_EQ(1, dlg.Handle(WM_DELETEITEM, IDC_OWNER_DRAWN, reinterpret_cast<LPARAM>(&gone)));
    EXPECT_EQ("ctrl.OnDrawItem 1017 5; ctrl.OnMeasureItem 1017 6; ctrl.OnDeleteItem 1017 7",
              dlg.record.Only({"ctrl.OnDrawItem", "ctrl.OnMeasureItem", "ctrl.OnDeleteItem"}));
}

TEST_F(CSDlgMessages, DrawnItemsWithoutAnObjectAreHandledAllTheSame) {
    DRAWITEMSTRUCT draw{};
    MEASUREITEMSTRUCT measure{};
    measure.itemHeight = 19;
    DELETEITEMSTRUCT gone{};
    for (WPARAM nId : {WPARAM{IDC_NO_ITEM}, WPARAM{0}, WPARAM{0xFFFF}, WPARAM{IDC_BUTTON}}) {
        EXPECT_EQ(1, dlg.Handle(WM_DRAWITEM, nId, reinterpret_cast<LPARAM>(&draw))) << nId;
        EXPECT_EQ(1, dlg.Handle(WM_MEASUREITEM, nId, reinterpret_cast<LPARAM>(&measure))) << nId;
        EXPECT_EQ(1, dlg.Handle(WM_DELETEITEM, nId, reinterpret_cast<LPARAM>(&gone))) << nId;
    }
    EXPECT_EQ(19u, measure.itemHeight);
    ::SendMessageW(dlg, WM_DRAWITEM, IDC_NO_ITEM, reinterpret_cast<LPARAM>(&draw));
}

TEST_F(CSDlgMessages, RealOwnerDrawnButtonDrawsThroughItsObject) {
    ProbeDlg shown;
    ProbeCtrl ctrl(shown.record);
    shown.onInit = [&](ProbeDlg& d) { ctrl.Init(&d, IDC_OWNER_DRAWN, nullptr, 0); };
    ASSERT_NE(nullptr, shown.Modeless(IDD_DIALOG_ITEMS, nullptr, nullptr, 1));
    ::RedrawWindow(::GetDlgItem(shown, IDC_OWNER_DRAWN), nullptr, nullptr,
                   RDW_INVALIDATE | RDW_UPDATENOW);
    EXPECT_LT(0, shown.record.Count("ctrl.OnDrawItem 1017 0"));
    shown.Destroy();
}

TEST_F(CSDlgMessages, WindowPositionsAreTold) {
    WINDOWPOS pos{};
    pos.hwnd = dlg;
    pos.flags = SWP_NOSIZE | SWP_NOMOVE;
    EXPECT_EQ(0, dlg.Handle(WM_WINDOWPOSCHANGING, 0, reinterpret_cast<LPARAM>(&pos)));
    EXPECT_EQ(0, dlg.Handle(WM_WINDOWPOSCHANGED, 0, reinterpret_cast<LPARAM>(&pos)));
    EXPECT_EQ("OnWindowPosChanging; OnWindowPosChanged",
              dlg.record.Only({"OnWindowPosChanging", "OnWindowPosChanged"}));
}

TEST_F(CSDlgMessages, NotificationsResultIsTheDialogs) {
    NMHDR hdr{::GetDlgItem(dlg, IDC_LIST_VIEW), IDC_LIST_VIEW, static_cast<UINT>(NM_CLICK)};
    LPARAM lHdr = reinterpret_cast<LPARAM>(&hdr);
    EXPECT_EQ(1, dlg.Handle(WM_NOTIFY, IDC_LIST_VIEW, lHdr, &lResult));
    EXPECT_EQ(0, lResult);
    EXPECT_EQ("OnNotify 1015 -2", dlg.record.Only({"OnNotify"}));
    dlg.qwNotify = 0x10000005B;
    EXPECT_EQ(1, dlg.Handle(WM_NOTIFY, IDC_LIST_VIEW, lHdr, &lResult));
    EXPECT_EQ(0x10000005B, lResult);
    EXPECT_EQ(0x10000005B, ::SendMessageW(dlg, WM_NOTIFY, IDC_LIST_VIEW, lHdr));
}

TEST_F(CSDlgMessages, HelpKeyIsHelp) {
    dlg.bQuietHelp = true;
    HELPINFO info{};
    info.iCtrlId = 12;
    EXPECT_EQ(1, dlg.Handle(WM_HELP, 0, reinterpret_cast<LPARAM>(&info), &lResult));
    EXPECT_EQ(1, lResult);
    EXPECT_EQ("OnHelp 12", dlg.record.Only({"OnHelp"}));
    EXPECT_EQ(1, ::SendMessageW(dlg, WM_HELP, 0, reinterpret_cast<LPARAM>(&info)));
}

TEST_F(CSDlgMessages, InitialisationIsFollowedByThatOfTheControls) {
    ProbeDlg other;
    ProbeCtrl ctrl(other.record);
    other.onInit = [&](ProbeDlg& d) { ctrl.Init(&d, IDC_EDIT, nullptr, 0); };
    ASSERT_NE(nullptr, other.Modeless(IDD_DIALOG_ITEMS, nullptr, nullptr, 0));
    EXPECT_EQ("OnInitDialog; OnInitDone; ctrl.PostInitDialog",
              other.record.Only({"OnInitDialog", "OnInitDone", "ctrl.PostInitDialog"}));
    other.Destroy();
}

TEST_F(CSDlgMessages, EveryControlWithAnIdGetsAnObject) {
    for (int nId = IDC_EDIT; nId <= IDC_MULTI_LINE; ++nId) {
        EXPECT_NE(nullptr, dlg.GetDlgCtrl(nId)) << nId;
    }
    for (int nId : {IDOK, IDCANCEL, IDHELP}) EXPECT_NE(nullptr, dlg.GetDlgCtrl(nId)) << nId;
    HWND hwndLabel = ::GetWindow(dlg, GW_CHILD);
    ASSERT_EQ(0xFFFF, ::GetDlgCtrlID(hwndLabel) & 0xFFFF);
    EXPECT_EQ(nullptr, CSWnd::FromHandle(hwndLabel)) << "a label needs none";
    CSCtrl* pCtrl = dlg.GetDlgCtrl(IDC_EDIT);
    EXPECT_EQ(1, pCtrl->autoDelete);
    EXPECT_EQ(static_cast<unsigned>(IDC_EDIT), pCtrl->GetID());
}

TEST_F(CSDlgMessages, ChildWithAnotherKindOfObjectKeepsIt) {
    CSWnd plain;
    ProbeDlg other;
    other.onInit = [&](ProbeDlg& d) { plain.Subclass(::GetDlgItem(d, IDC_BUTTON)); };
    ASSERT_NE(nullptr, other.Modeless(IDD_DIALOG_ITEMS, nullptr, nullptr, 0));
    EXPECT_EQ(&plain, CSWnd::FromHandle(::GetDlgItem(other, IDC_BUTTON)));
    EXPECT_EQ(nullptr, other.GetDlgCtrl(IDC_BUTTON));
    EXPECT_NE(nullptr, other.GetDlgCtrl(IDC_FORMAT));
    other.Destroy();
}

TEST_F(CSDlgMessages, CommandsAnswerIsOnCommands) {
    HWND hwndButton = ::GetDlgItem(dlg, IDC_BUTTON);
    EXPECT_EQ(
        0, dlg.Handle(WM_COMMAND, MAKEWPARAM(IDC_BUTTON, 6), reinterpret_cast<LPARAM>(hwndButton)));
    EXPECT_EQ("OnCommand 1006 6 1", dlg.record.Only({"OnCommand"}));
    dlg.qwCommand = 3;
    EXPECT_NE(0, dlg.Handle(WM_COMMAND, MAKEWPARAM(IDC_BUTTON, 6), 0));
}

TEST_F(CSDlgMessages, SystemCommandHasItsLowBitsCleared) {
    EXPECT_EQ(0, dlg.Handle(WM_SYSCOMMAND, SC_CLOSE | 0xB, MAKELPARAM(40, 50)));
    EXPECT_EQ("OnSysCommand 61536 40 50", dlg.record.Only({"OnSysCommand"}));
    EXPECT_EQ(SC_CLOSE, 61536);
    dlg.nSysCommand = 9;
    lResult = 5;
    EXPECT_EQ(1, dlg.Handle(WM_SYSCOMMAND, SC_CLOSE, 0, &lResult));
    EXPECT_EQ(0, lResult);
}

TEST_F(CSDlgMessages, SwallowedSystemCommandReachesNobodyElse) {
    dlg.nSysCommand = 1;
    ::SendMessageW(dlg, WM_SYSCOMMAND, SC_CLOSE, 0);
    EXPECT_EQ(0, dlg.record.CountDlg(WM_CLOSE));
    EXPECT_EQ(TRUE, CSDlg::ModalProc(dlg, WM_SYSCOMMAND, SC_CLOSE, 0));
    EXPECT_EQ(0, ::GetWindowLongPtrW(dlg, DWLP_MSGRESULT));
    dlg.nSysCommand = 0;
    ::SendMessageW(dlg, WM_SYSCOMMAND, SC_CLOSE, 0);
    EXPECT_EQ(1, dlg.record.CountDlg(WM_CLOSE));
}

TEST_F(CSDlgMessages, SystemCommandTakenByAnotherHookReachesNobodyElse) {
    struct TakingHook : WMHook {
        int OnDlgMessage(CSDlg*, UINT uMsg, WPARAM, LPARAM, LRESULT*) override {
            return uMsg == WM_SYSCOMMAND;
        }
    } hook;
    dlg.AddDlgHook(&hook);
    ::SendMessageW(dlg, WM_SYSCOMMAND, SC_CLOSE, 0);
    EXPECT_EQ(0, dlg.record.CountDlg(WM_CLOSE));
    EXPECT_EQ("", dlg.record.Only({"OnSysCommand"}));
    dlg.RemoveDlgHook(&hook);
}

TEST_F(CSDlgMessages, OwnTimerIsTheDelayedAction) {
    dlg.delayedAction = 66;
    EXPECT_EQ(0, dlg.Handle(WM_TIMER, 2, 0));
    EXPECT_EQ("", dlg.record.Only({"OnDelayedAction"}));
    EXPECT_EQ(0, dlg.Handle(WM_TIMER, 1, 0));
    EXPECT_EQ("OnDelayedAction 66", dlg.record.Only({"OnDelayedAction"}));
    EXPECT_EQ(0u, dlg.delayedAction);
}

std::vector<TRACKMOUSEEVENT> tracked;
BOOL WINAPI RecordTracking(TRACKMOUSEEVENT* p) {
    tracked.push_back(*p);
    return TRUE;
}

TEST_F(CSDlgMessages, MouseThatMovesIsAskedToTellWhenItLeaves) {
    ReplaceImport replaced(__imp_TrackMouseEvent, &RecordTracking);
    tracked.clear();
    EXPECT_EQ(0, dlg.Handle(WM_MOUSEMOVE, MK_LBUTTON, MAKELPARAM(4, 5)));
    ASSERT_EQ(1u, tracked.size());
    EXPECT_EQ(static_cast<DWORD>(TME_LEAVE), tracked[0].dwFlags);
    EXPECT_EQ(dlg.hWnd, tracked[0].hwndTrack);
    EXPECT_EQ(100u, tracked[0].dwHoverTime);
    EXPECT_EQ(0, dlg.Handle(WM_MOUSEMOVE, 0, 0xFFFFFFFF));
    EXPECT_EQ(1u, tracked.size()) << "the mark of a mouse that has left";
    dlg.Handle(WM_MOUSEMOVE, 0, MAKELPARAM(0xFFFF, 5));
    EXPECT_EQ(2u, tracked.size());
}

TEST_F(CSDlgMessages, MouseThatHasLeftIsAMoveToMinusOne) {
    EXPECT_EQ(0, dlg.Handle(WM_MOUSELEAVE, 0, 0));
    EXPECT_EQ("", dlg.record.Only({"OnMouseMove"})) << "posted";
    EXPECT_TRUE(PumpUntil([&] { return dlg.record.Count("OnMouseMove 0 -1 -1") == 1; }));
}

TEST_F(CSDlgMessages, MouseMovesArriveWithSignedPlacesAndGoOn) {
    ::SendMessageW(dlg, WM_MOUSEMOVE, MK_LBUTTON | MK_SHIFT, MAKELPARAM(-3, 700));
    EXPECT_EQ("OnMouseMove 5 -3 700", dlg.record.Only({"OnMouseMove"}));
    EXPECT_EQ(1, dlg.record.CountDlg(WM_MOUSEMOVE));
}

TEST_F(CSDlgMessages, WhatIsNotInTheTableIsNotHandled) {
    for (UINT uMsg : {WM_NULL, WM_CLOSE, WM_SIZE, WM_KEYDOWN, WM_LBUTTONDOWN, WM_CTLCOLORDLG,
                      WM_COMPAREITEM, WM_APP}) {
        lResult = 17;
        EXPECT_EQ(0, dlg.msgHandler.OnDlgMessage(&dlg, uMsg, 1, 0, &lResult)) << uMsg;
        EXPECT_EQ(17, lResult) << uMsg;
    }
}
} // namespace
