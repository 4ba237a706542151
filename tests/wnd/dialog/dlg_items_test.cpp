// A dialog's items by their ids: state, focus, groups, place.
#include "support/test_window.h"
#include "wnd/dialog/dlg_items.h"
#include "wnd/dialog/probe_dlg.h"

namespace {
struct CSDlgItems : testing::Test {
    HWND Item(int nId) { return ::GetDlgItem(dlg, nId); }
    bool IsOn(int nId) { return ::IsWindowEnabled(Item(nId)); }
    bool IsShown(int nId) { return (::GetWindowLongW(Item(nId), GWL_STYLE) & WS_VISIBLE) != 0; }
    OpenDlg dlg;
};

TEST_F(CSDlgItems, FoundByTheirIds) {
    EXPECT_EQ(Item(IDC_EDIT), dlg.GetDlgItem(IDC_EDIT));
    EXPECT_NE(nullptr, dlg.GetDlgItem(IDC_EDIT));
    EXPECT_EQ(nullptr, dlg.GetDlgItem(IDC_NO_ITEM));
}

TEST_F(CSDlgItems, MessagesReachThemAndTheirAnswersComeBack) {
    EXPECT_EQ(0, dlg.SendDlgItemMsg(IDC_LIST, LB_ADDSTRING, 0, reinterpret_cast<LPARAM>(L"one")));
    EXPECT_EQ(1, dlg.SendDlgItemMsg(IDC_LIST, LB_ADDSTRING, 0, reinterpret_cast<LPARAM>(L"two")));
    EXPECT_EQ(2, dlg.SendDlgItemMsg(IDC_LIST, LB_GETCOUNT, 0, 0));
    EXPECT_EQ(0, dlg.SendDlgItemMsg(IDC_NO_ITEM, LB_GETCOUNT, 0, 0));
}

TEST_F(CSDlgItems, ControlObjectsByIdAndByHandle) {
    CSCtrl* pCtrl = dlg.GetDlgCtrl(IDC_EDIT);
    ASSERT_NE(nullptr, pCtrl);
    EXPECT_EQ(pCtrl, dlg.GetDlgCtrl(Item(IDC_EDIT)));
    EXPECT_EQ(pCtrl, CSWnd::FromHandle(Item(IDC_EDIT)));
    EXPECT_EQ(nullptr, dlg.GetDlgCtrl(IDC_NO_ITEM));
    EXPECT_EQ(nullptr, dlg.GetDlgCtrl(static_cast<HWND>(nullptr)));
    EXPECT_EQ(nullptr, dlg.GetDlgCtrl(dlg.hWnd)) << "a window object, but no control's";
    EXPECT_EQ(nullptr, dlg.GetDlgCtrl(::GetWindow(dlg, GW_CHILD))) << "a label";
}

TEST_F(CSDlgItems, ChildWithAnObjectOfAnotherKindHasNoControlObject) {
    TestWindow child(L"STATIC", dlg, WS_CHILD);
    ::SetWindowLongPtrW(child, GWLP_ID, 1500);
    CSWnd plain;
    ASSERT_EQ(1, plain.Subclass(child));
    EXPECT_EQ(nullptr, dlg.GetDlgCtrl(1500));
    EXPECT_EQ(nullptr, dlg.GetDlgCtrl(child.Get()));
    child.Destroy();
}

TEST_F(CSDlgItems, StalePropertyIsNotTrusted) {
    TestWindow child(L"STATIC", dlg, WS_CHILD);
    ::SetWindowLongPtrW(child, GWLP_ID, 1500);
    ::SetPropW(child, L"CSWND", static_cast<CSWnd*>(dlg.GetDlgCtrl(IDC_EDIT)));
    EXPECT_EQ(nullptr, dlg.GetDlgCtrl(1500)) << "the object is another window's";
    ::RemovePropW(child, L"CSWND");
}

TEST_F(CSDlgItems, IdsOfHandles) {
    EXPECT_EQ(static_cast<unsigned>(IDC_EDIT), dlg.GetDlgItemID(Item(IDC_EDIT)));
    EXPECT_EQ(0xFFFFFFFFu, dlg.GetDlgItemID(::GetWindow(dlg, GW_CHILD)));
    ::SetWindowLongPtrW(Item(IDC_FRAME), GWLP_ID, 65535);
    EXPECT_EQ(0xFFFFFFFFu, dlg.GetDlgItemID(::GetWindow(dlg, GW_CHILD)));
    ::SetWindowLongPtrW(Item(IDC_SPIN), GWLP_ID, 65534);
    EXPECT_EQ(65534u, dlg.GetDlgItemID(Item(65534)));
}

TEST_F(CSDlgItems, DefaultButtonMovesWithItsLook) {
    ASSERT_EQ(static_cast<unsigned>(IDOK), ::GetDlgDefBtnID(dlg));
    EXPECT_EQ(1, dlg.SetDlgDefaulButton(IDC_BUTTON));
    EXPECT_EQ(static_cast<unsigned>(IDC_BUTTON), ::GetDlgDefBtnID(dlg));
    EXPECT_EQ(BS_PUSHBUTTON, ::GetWindowLongW(Item(IDOK), GWL_STYLE) & BS_TYPEMASK);
    EXPECT_EQ(1, dlg.SetDlgDefaulButton(IDC_BUTTON)) << "already";
    EXPECT_EQ(static_cast<unsigned>(IDC_BUTTON), ::GetDlgDefBtnID(dlg));
    EXPECT_EQ(1, dlg.SetDlgDefaulButton(IDC_NO_ITEM));
}

TEST_F(CSDlgItems, SameDefaultButtonIsNotTouched) {
    ::SendMessageW(Item(IDOK), BM_SETSTYLE, BS_PUSHBUTTON, FALSE);
    EXPECT_EQ(1, dlg.SetDlgDefaulButton(IDOK));
    EXPECT_EQ(BS_PUSHBUTTON, ::GetWindowLongW(Item(IDOK), GWL_STYLE) & BS_TYPEMASK);
}

TEST_F(CSDlgItems, EnableAndShowAreTwoThings) {
    dlg.EnableDlgItem(IDC_BUTTON, 0);
    EXPECT_FALSE(IsOn(IDC_BUTTON));
    EXPECT_TRUE(IsShown(IDC_BUTTON));
    EXPECT_EQ(0, dlg.IsDlgItemEnabled(IDC_BUTTON));
    dlg.EnableDlgItem(IDC_BUTTON, 5);
    EXPECT_TRUE(IsOn(IDC_BUTTON));
    dlg.ShowDlgItem(IDC_BUTTON, 0);
    EXPECT_FALSE(IsShown(IDC_BUTTON));
    EXPECT_TRUE(IsOn(IDC_BUTTON));
    dlg.ShowDlgItem(IDC_BUTTON, 5);
    EXPECT_TRUE(IsShown(IDC_BUTTON));
    EXPECT_NE(0, dlg.IsDlgItemEnabled(IDC_BUTTON));
}

TEST_F(CSDlgItems, HideAndTurnDoBoth) {
    dlg.HideDlgItem(IDC_BUTTON);
    EXPECT_FALSE(IsOn(IDC_BUTTON));
    EXPECT_FALSE(IsShown(IDC_BUTTON));
    dlg.TurnDlgItem(IDC_BUTTON, 1);
    EXPECT_TRUE(IsOn(IDC_BUTTON));
    EXPECT_TRUE(IsShown(IDC_BUTTON));
    dlg.TurnDlgItem(IDC_BUTTON, 0);
    EXPECT_FALSE(IsOn(IDC_BUTTON));
    EXPECT_FALSE(IsShown(IDC_BUTTON));
}

TEST_F(CSDlgItems, VisibleIsTheItemsOwnBitWhateverTheDialogDoes) {
    ASSERT_FALSE(::IsWindowVisible(Item(IDC_BUTTON))) << "the dialog is hidden";
    EXPECT_NE(0, dlg.IsDlgItemVisible(IDC_BUTTON));
    EXPECT_EQ(0, dlg.IsDlgItemVisible(IDC_UNSEEN));
    EXPECT_EQ(0, dlg.IsDlgItemVisible(IDC_NO_ITEM));
    EXPECT_NE(0, dlg.IsDlgItemEnabled(IDC_BUTTON));
    EXPECT_EQ(0, dlg.IsDlgItemEnabled(IDC_DISABLED));
    EXPECT_EQ(0, dlg.IsDlgItemEnabled(IDC_NO_ITEM));
}

TEST_F(CSDlgItems, ItemsThatDoNotExistAreNothingToDo) {
    dlg.EnableDlgItem(IDC_NO_ITEM, 0);
    dlg.ShowDlgItem(IDC_NO_ITEM, 0);
    dlg.HideDlgItem(IDC_NO_ITEM);
    dlg.TurnDlgItem(IDC_NO_ITEM, 0);
    dlg.SetDlgItemFocus(IDC_NO_ITEM);
    dlg.SetSpinRange(IDC_NO_ITEM, 1, 2);
    dlg.EraseCtrlBkg(nullptr, static_cast<unsigned>(IDC_NO_ITEM));
    dlg.EraseCtrlBkg(nullptr, static_cast<HWND>(nullptr));
    dlg.ValidateDlgItem(IDC_NO_ITEM);
    dlg.ShiftNavButton(IDC_NO_ITEM, 0);
    dlg.EnableDlgItems(IDC_NO_ITEM, IDC_BUTTON, 0);
    dlg.ShowDlgItems(IDC_NO_ITEM, IDC_BUTTON, 0);
    EXPECT_TRUE(IsOn(IDC_BUTTON));
    EXPECT_TRUE(IsShown(IDC_BUTTON));
    EXPECT_TRUE(::IsWindowEnabled(dlg));
}

TEST_F(CSDlgItems, FocusAndTabOrder) {
    ::ShowWindow(dlg, SW_SHOW);
    dlg.SetDlgItemFocus(IDC_CHECK);
    EXPECT_EQ(Item(IDC_CHECK), ::GetFocus());
    dlg.SetDlgItemFocus(IDC_NO_ITEM);
    EXPECT_EQ(Item(IDC_CHECK), ::GetFocus());
    EXPECT_EQ(Item(IDC_RADIO_1), dlg.GetNextDlgTabItem(Item(IDC_CHECK)));
    EXPECT_EQ(Item(IDC_NUMBER), dlg.GetPrevDlgTabItem(Item(IDC_CHECK)));
    dlg.NextDlgCtrl();
    EXPECT_EQ(Item(IDC_RADIO_1), ::GetFocus());
    dlg.PrevDlgCtrl();
    dlg.PrevDlgCtrl();
    EXPECT_EQ(Item(IDC_NUMBER), ::GetFocus());
}

TEST_F(CSDlgItems, SimulatedClickIsPostedWithTheItem) {
    EXPECT_NE(0, dlg.SimulateButton(IDC_BUTTON));
    EXPECT_EQ("", dlg.record.Only({"OnCommand"}));
    EXPECT_TRUE(PumpUntil([&] { return dlg.record.Count("OnCommand 1006 0 1") == 1; }));
    dlg.SimulateButton(IDC_NO_ITEM);
    EXPECT_TRUE(PumpUntil([&] { return dlg.record.Count("OnCommand 1999 0 0") == 1; }));
}

TEST_F(CSDlgItems, CheckBoxes) {
    EXPECT_EQ(0u, dlg.IsDlgButtonChecked(IDC_CHECK));
    EXPECT_NE(0, dlg.CheckDlgButton(IDC_CHECK, BST_CHECKED));
    EXPECT_EQ(1u, dlg.IsDlgButtonChecked(IDC_CHECK));
    EXPECT_EQ(static_cast<LRESULT>(BST_CHECKED),
              ::SendMessageW(Item(IDC_CHECK), BM_GETCHECK, 0, 0));
    dlg.CheckDlgButton(IDC_CHECK, BST_UNCHECKED);
    EXPECT_EQ(0u, dlg.IsDlgButtonChecked(IDC_CHECK));
    EXPECT_EQ(0u, dlg.IsDlgButtonChecked(IDC_NO_ITEM));
}

TEST_F(CSDlgItems, ButtonStateIsThePlatforms) {
    dlg.SetDlgButtonState(IDC_BUTTON, 1);
    EXPECT_NE(0u, dlg.GetDlgButtonState(IDC_BUTTON) & BST_PUSHED);
    dlg.SetDlgButtonState(IDC_BUTTON, 0);
    EXPECT_EQ(0u, dlg.GetDlgButtonState(IDC_BUTTON) & BST_PUSHED);
    dlg.CheckDlgButton(IDC_CHECK, BST_CHECKED);
    EXPECT_EQ(static_cast<unsigned>(BST_CHECKED), dlg.GetDlgButtonState(IDC_CHECK) & 3);
}

TEST_F(CSDlgItems, RadioButtons) {
    EXPECT_EQ(0, dlg.GetCheckedRadioButton(IDC_RADIO_1, IDC_RADIO_3));
    EXPECT_NE(0, dlg.CheckRadioButton(IDC_RADIO_1, IDC_RADIO_3, IDC_RADIO_2));
    EXPECT_EQ(IDC_RADIO_2, dlg.GetCheckedRadioButton(IDC_RADIO_1, IDC_RADIO_3));
    dlg.CheckRadioButton(IDC_RADIO_1, IDC_RADIO_3, IDC_RADIO_3);
    EXPECT_EQ(IDC_RADIO_3, dlg.GetCheckedRadioButton(IDC_RADIO_1, IDC_RADIO_3)) << "the last too";
    EXPECT_EQ(0, dlg.GetCheckedRadioButton(IDC_RADIO_1, IDC_RADIO_2));
    EXPECT_EQ(0, dlg.GetCheckedRadioButton(IDC_RADIO_3, IDC_RADIO_1)) << "no range";
    EXPECT_EQ(IDC_RADIO_3, dlg.GetCheckedRadioButton(IDC_RADIO_3, IDC_RADIO_3));
    dlg.CheckDlgButton(IDC_RADIO_2, BST_CHECKED);
    EXPECT_EQ(IDC_RADIO_2, dlg.GetCheckedRadioButton(900, 2000)) << "the first one, over gaps";
}

TEST_F(CSDlgItems, SpinRange) {
    dlg.SetSpinRange(IDC_SPIN, 10, 200000);
    int nLow = 0, nHigh = 0;
    ::SendMessageW(Item(IDC_SPIN), UDM_GETRANGE32, reinterpret_cast<WPARAM>(&nLow),
                   reinterpret_cast<LPARAM>(&nHigh));
    EXPECT_EQ(10, nLow);
    EXPECT_EQ(200000, nHigh);
}

TEST_F(CSDlgItems, ItemsRectangleIsInClientPixels) {
    RECT rc{}, rcExpected{};
    ::GetWindowRect(Item(IDC_BUTTON), &rcExpected);
    ::MapWindowPoints(nullptr, dlg, reinterpret_cast<POINT*>(&rcExpected), 2);
    EXPECT_NE(0, dlg.GetDlgItemRect(IDC_BUTTON, &rc));
    EXPECT_TRUE(::EqualRect(&rcExpected, &rc));
}

TEST_F(CSDlgItems, RunsOfItemsAreTurnedFromTheFirstToTheLast) {
    dlg.EnableDlgItems(IDC_CHECK, IDC_RADIO_3, 0);
    EXPECT_TRUE(IsOn(IDC_NUMBER));
    for (int nId = IDC_CHECK; nId <= IDC_RADIO_3; ++nId) EXPECT_FALSE(IsOn(nId)) << nId;
    EXPECT_TRUE(IsOn(IDC_BUTTON));
    dlg.EnableDlgItems(IDC_RADIO_2, IDC_RADIO_2, 1);
    EXPECT_TRUE(IsOn(IDC_RADIO_2));
    EXPECT_FALSE(IsOn(IDC_RADIO_1));
    dlg.ShowDlgItems(IDC_CHECK, IDC_RADIO_1, 0);
    EXPECT_TRUE(IsShown(IDC_NUMBER));
    EXPECT_FALSE(IsShown(IDC_CHECK));
    EXPECT_FALSE(IsShown(IDC_RADIO_1));
    EXPECT_TRUE(IsShown(IDC_RADIO_2));
    dlg.ShowDlgItems(IDC_CHECK, IDC_RADIO_1, 1);
    EXPECT_TRUE(IsShown(IDC_CHECK));
}

TEST_F(CSDlgItems, RunFromZeroBeginsAtTheFirstChild) {
    HWND hwndLabel = ::GetWindow(dlg, GW_CHILD);
    dlg.EnableDlgItems(0, IDC_NUMBER, 0);
    EXPECT_FALSE(::IsWindowEnabled(hwndLabel));
    EXPECT_FALSE(IsOn(IDC_EDIT));
    EXPECT_FALSE(IsOn(IDC_NUMBER));
    EXPECT_TRUE(IsOn(IDC_CHECK));
}

TEST_F(CSDlgItems, RunWithoutItsLastGoesToTheEnd) {
    dlg.EnableDlgItems(IDC_MULTI_LINE, IDC_EDIT, 0); // the last stands before the first
    EXPECT_FALSE(IsOn(IDC_MULTI_LINE));
    EXPECT_FALSE(IsOn(IDHELP));
    EXPECT_TRUE(IsOn(IDC_OWNER_DRAWN));
    dlg.ShowDlgItems(IDCANCEL, IDC_NO_ITEM, 0);
    EXPECT_FALSE(IsShown(IDHELP));
    EXPECT_TRUE(IsShown(IDOK));
}

TEST_F(CSDlgItems, BackgroundUnderAControlIsErasedAtOnce) {
    ::ShowWindow(dlg, SW_SHOW);
    ::UpdateWindow(dlg);
    dlg.record.wndMessages.clear();
    dlg.EraseCtrlBkg(nullptr, static_cast<unsigned>(IDC_BUTTON));
    EXPECT_EQ(1, dlg.record.CountWnd(WM_ERASEBKGND));
    RECT rc{}, rcUpdate{}, rcBoth{};
    dlg.GetDlgItemRect(IDC_BUTTON, &rc);
    ::GetUpdateRect(dlg, &rcUpdate, FALSE);
    EXPECT_TRUE(::IntersectRect(&rcBoth, &rc, &rcUpdate) ||
                ::GetUpdateRect(Item(IDC_BUTTON), nullptr, FALSE));
    ::UpdateWindow(dlg);
    dlg.record.wndMessages.clear();
    dlg.EraseCtrlBkg(nullptr, Item(IDC_BUTTON));
    EXPECT_EQ(1, dlg.record.CountWnd(WM_ERASEBKGND));
}

TEST_F(CSDlgItems, ValidatedItemIsNotPaintedAnew) {
    ::ShowWindow(dlg, SW_SHOW);
    ::UpdateWindow(dlg);
    ::InvalidateRect(dlg, nullptr, FALSE);
    dlg.ValidateDlgItem(IDC_BUTTON);
    HRGN hrgn = ::CreateRectRgn(0, 0, 0, 0);
    ::GetUpdateRgn(dlg, hrgn, FALSE);
    RECT rc{};
    dlg.GetDlgItemRect(IDC_BUTTON, &rc);
    EXPECT_FALSE(::RectInRegion(hrgn, &rc));
    EXPECT_TRUE(::PtInRegion(hrgn, rc.left - 3, rc.top - 3));
    ::DeleteObject(hrgn);
}

TEST_F(CSDlgItems, NavigationButtonGoesAboveTheEdgeAndComesBack) {
    RECT rcBefore{}, rc{};
    dlg.GetDlgItemRect(IDC_BUTTON, &rcBefore);
    dlg.ShiftNavButton(IDC_BUTTON, 1); // it is there
    dlg.GetDlgItemRect(IDC_BUTTON, &rc);
    EXPECT_TRUE(::EqualRect(&rcBefore, &rc));
    dlg.ShiftNavButton(IDC_BUTTON, 0);
    dlg.GetDlgItemRect(IDC_BUTTON, &rc);
    EXPECT_EQ(-rcBefore.bottom, rc.top);
    EXPECT_EQ(-rcBefore.top, rc.bottom);
    EXPECT_EQ(rcBefore.left, rc.left);
    EXPECT_EQ(rcBefore.right, rc.right);
    EXPECT_TRUE(IsOn(IDC_BUTTON));
    EXPECT_TRUE(IsShown(IDC_BUTTON));
    RECT rcAgain{};
    dlg.ShiftNavButton(IDC_BUTTON, 0);
    dlg.GetDlgItemRect(IDC_BUTTON, &rcAgain);
    EXPECT_TRUE(::EqualRect(&rcAgain, &rc)) << "it is gone";
    dlg.ShiftNavButton(IDC_BUTTON, 1);
    dlg.GetDlgItemRect(IDC_BUTTON, &rc);
    EXPECT_TRUE(::EqualRect(&rcBefore, &rc));
}

// The functions on a dialog's handle.

struct DlgItemFunctions : CSDlgItems {};

TEST_F(DlgItemFunctions, TurnEnableAndShow) {
    ::TurnDlgItem(dlg, IDC_BUTTON, 0);
    EXPECT_FALSE(IsOn(IDC_BUTTON));
    EXPECT_FALSE(IsShown(IDC_BUTTON));
    ::TurnDlgItem(dlg, IDC_BUTTON, 1);
    EXPECT_TRUE(IsOn(IDC_BUTTON));
    EXPECT_TRUE(IsShown(IDC_BUTTON));
    ::EnableDlgItem(dlg, IDC_BUTTON, 0);
    EXPECT_FALSE(IsOn(IDC_BUTTON));
    EXPECT_TRUE(IsShown(IDC_BUTTON));
    ::EnableDlgItem(dlg, IDC_BUTTON, 1);
    ::ShowDlgItem(dlg, IDC_BUTTON, 0);
    EXPECT_FALSE(IsShown(IDC_BUTTON));
    EXPECT_TRUE(IsOn(IDC_BUTTON));
    ::ShowDlgItem(dlg, IDC_BUTTON, 1);
    EXPECT_TRUE(IsShown(IDC_BUTTON));
}

TEST_F(DlgItemFunctions, FocusMessagesAndDefaultButton) {
    ::ShowWindow(dlg, SW_SHOW);
    EXPECT_EQ(1, ::SetDlgItemFocus(dlg, IDC_NUMBER));
    EXPECT_EQ(Item(IDC_NUMBER), ::GetFocus());
    EXPECT_EQ(0, ::SetDlgItemFocus(dlg, IDC_NO_ITEM));
    EXPECT_EQ(Item(IDC_NUMBER), ::GetFocus());
    EXPECT_EQ(0, ::SendDlgItemMsg(dlg, IDC_LIST, LB_ADDSTRING, 0, reinterpret_cast<LPARAM>(L"x")));
    EXPECT_EQ(1, ::SendDlgItemMsg(dlg, IDC_LIST, LB_GETCOUNT, 0, 0));
    EXPECT_EQ(0, ::SendDlgItemMsg(dlg, IDC_NO_ITEM, LB_GETCOUNT, 0, 0));
    EXPECT_EQ(1, ::SetDlgDefBtnID(dlg, IDCANCEL));
    EXPECT_EQ(static_cast<unsigned>(IDCANCEL), ::GetDlgDefBtnID(dlg));
    EXPECT_EQ(1, ::SetDlgDefBtnID(dlg, IDCANCEL));
}

TEST_F(DlgItemFunctions, WindowWithoutADefaultButtonHasIdZero) {
    TestWindow plain;
    EXPECT_EQ(0u, ::GetDlgDefBtnID(plain));
    EXPECT_EQ(0u, ::GetDlgDefBtnID(nullptr));
}

TEST_F(DlgItemFunctions, SpinAndProgress) {
    EXPECT_NE(-1, ::SetDlgItemSpinRange(dlg, IDC_SPIN, 0, 100000));
    ::SetDlgItemSpinPos(dlg, IDC_SPIN, 77);
    EXPECT_EQ(77, LOWORD(::SendMessageW(Item(IDC_SPIN), UDM_GETPOS, 0, 0)));
    int nLow = -1, nHigh = -1;
    ::SendMessageW(Item(IDC_SPIN), UDM_GETRANGE32, reinterpret_cast<WPARAM>(&nLow),
                   reinterpret_cast<LPARAM>(&nHigh));
    EXPECT_EQ(0, nLow);
    EXPECT_EQ(100000, nHigh);
    ::SetDlgItemProgressRange(dlg, IDC_PROGRESS, 10, 70000);
    ::SetDlgItemProgressPos(dlg, IDC_PROGRESS, 65000);
    EXPECT_EQ(65000, ::SendMessageW(Item(IDC_PROGRESS), PBM_GETPOS, 0, 0));
    EXPECT_EQ(10, ::SendMessageW(Item(IDC_PROGRESS), PBM_GETRANGE, TRUE, 0));
    EXPECT_EQ(70000, ::SendMessageW(Item(IDC_PROGRESS), PBM_GETRANGE, FALSE, 0));
}

TEST_F(DlgItemFunctions, WithoutTheItemTheyGiveZero) {
    for (HWND hwnd : {dlg.hWnd, HWND{nullptr}}) {
        EXPECT_EQ(0, ::TurnDlgItem(hwnd, IDC_NO_ITEM, 1));
        EXPECT_EQ(0, ::EnableDlgItem(hwnd, IDC_NO_ITEM, 1));
        EXPECT_EQ(0, ::ShowDlgItem(hwnd, IDC_NO_ITEM, 1));
        EXPECT_EQ(0, ::SetDlgItemFocus(hwnd, IDC_NO_ITEM));
        EXPECT_EQ(0, ::SetDlgItemSpinRange(hwnd, IDC_NO_ITEM, 1, 2));
        EXPECT_EQ(0, ::SetDlgItemSpinPos(hwnd, IDC_NO_ITEM, 1));
        EXPECT_EQ(0, ::SetDlgItemProgressRange(hwnd, IDC_NO_ITEM, 1, 2));
        EXPECT_EQ(0, ::SetDlgItemProgressPos(hwnd, IDC_NO_ITEM, 1));
        EXPECT_EQ(0, ::SetDlgItemTextFmt(hwnd, IDC_NO_ITEM, L"%d", 1));
        EXPECT_EQ(0, ::SetDlgItemTextFmt(hwnd, IDC_NO_ITEM, 101, 1));
        EXPECT_EQ(0, ::SetDlgItemTextFmt(hwnd, IDC_NO_ITEM, nullptr, 101, 1));
    }
    EXPECT_EQ(0, ::SetWndTextFmtCtrl(nullptr, 1));
}
} // namespace
