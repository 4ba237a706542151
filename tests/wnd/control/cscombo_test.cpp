#include "wnd/control/cscombo.h"
#include "wnd/control/combos.h"

#include <gtest/gtest.h>
#include <memory>

namespace {
TEST(CSCombo, TiesTheEditFieldInside) {
    for (int nId : {IDC_CTL_COMBO, IDC_CTL_COMBO_SIMPLE}) {
        Combos t(nId);
        ASSERT_NE(nullptr, t.hwndEdit);
        EXPECT_EQ(t.hwndEdit, t.combo.Edit());
        EXPECT_EQ(&t.combo, t.combo.Owner());
        EXPECT_EQ(static_cast<CSWnd*>(&t.combo.editCtrl), CSWnd::FromHandle(t.hwndEdit));
        EXPECT_EQ(0, t.combo.editCtrl.autoDelete);
        EXPECT_EQ(nullptr, t.dialog.GetDlgCtrl(t.hwndEdit)) << "no control of the dialog";
        t.dialog.Destroy();
        EXPECT_EQ(nullptr, t.combo.Edit());
        EXPECT_EQ(nullptr, t.combo.hWnd);
    }
}

TEST(CSCombo, WithoutAnEditFieldItIsTheBase) {
    Combos t(IDC_CTL_COMBO_LIST);
    EXPECT_EQ(nullptr, t.combo.Owner());
    EXPECT_EQ(nullptr, t.combo.Edit());
    EXPECT_EQ(3, t.combo.GetCount());
    EXPECT_EQ(1, t.combo.SelectStr(L"banana"));
    EXPECT_EQ(L"banana", WndText(t.combo.hWnd));
    EXPECT_EQ(0, t.combo.IsFocused());
    t.combo.MoveItem(1, 1);
    EXPECT_EQ(0, t.combo.GetCurSel());
}

TEST(CSCombo, LimitAndDropDownAreOneMessage) {
    Combos t;
    t.combo.SetMaxTextLimit(33);
    t.tap->answer = [](UINT uMsg, WPARAM, LPARAM) -> std::optional<LRESULT> {
        return uMsg == CB_SHOWDROPDOWN ? std::optional<LRESULT>(4711) : std::nullopt;
    };
    EXPECT_EQ(4711, t.combo.ShowDropDown(1));
    EXPECT_EQ(4711, t.combo.ShowDropDown(0));
    using Message = MessageTap::Message;
    EXPECT_EQ((std::vector<Message>{{321, 33, 0}, {335, 1, 0}, {335, 0, 0}}), t.tap->seen);
    EXPECT_EQ(33, ::SendMessageW(t.hwndEdit, EM_GETLIMITTEXT, 0, 0));
}

TEST(CSCombo, IsFocusedWhileTheCaretIsInTheEditField) {
    Combos t(IDC_CTL_COMBO, 1);
    ASSERT_TRUE(FocusIn(t.dialog, ::GetDlgItem(t.dialog, IDC_CTL_OTHER_EDIT)));
    EXPECT_EQ(0, t.combo.IsFocused());
    ::SetFocus(t.combo.hWnd);
    EXPECT_EQ(t.hwndEdit, ::GetFocus()) << "the combo box passes it on";
    EXPECT_NE(0, t.combo.IsFocused());
    ::SetFocus(t.hwndEdit);
    EXPECT_NE(0, t.combo.IsFocused());
    ::SetFocus(::GetDlgItem(t.dialog, IDC_CTL_COMBO_LIST));
    EXPECT_EQ(0, t.combo.IsFocused());
}

TEST(CSCombo, IsFocusedWithoutAnEditField) {
    Combos t(IDC_CTL_COMBO_LIST, 1);
    ASSERT_TRUE(FocusIn(t.dialog, t.combo.hWnd));
    ASSERT_EQ(t.combo.hWnd, ::GetFocus());
    EXPECT_NE(0, t.combo.IsFocused());
    ::SetFocus(nullptr);
    EXPECT_EQ(0, t.combo.IsFocused()) << "no window is no edit field";
}

TEST(CSCombo, WithoutAWindowItIsNotFocused) {
    CSCombo combo;
    HWND hwndBefore = ::SetFocus(nullptr);
    EXPECT_EQ(0, combo.IsFocused());
    ::SetFocus(hwndBefore);
}

// The rules of the two marks

struct CodeCase {
    const char* pszName;
    unsigned short nCode;
    LRESULT lSelection; // the list's, while asked
    int nBlock, nKeep;  // before
    int nReturn, nBlockAfter, nKeepAfter;
};
using CSComboCode = SharedBy<Combos, CodeCase>;
TEST_P(CSComboCode, SetsTheMarks) {
    auto& row = GetParam();
    auto& t = Get();
    t.tap->answer = [&](UINT uMsg, WPARAM, LPARAM) -> std::optional<LRESULT> {
        return uMsg == CB_GETCURSEL ? std::optional(row.lSelection) : std::nullopt;
    };
    t.combo.blockEditText = row.nBlock;
    t.combo.keepEditText = row.nKeep;
    EXPECT_EQ(row.nReturn, t.Command(row.nCode));
    EXPECT_EQ(row.nBlockAfter, t.combo.blockEditText);
    EXPECT_EQ(row.nKeepAfter, t.combo.keepEditText);
}
INSTANTIATE_TEST_SUITE_P(
    Each, CSComboCode,
    testing::Values(
        CodeCase{"SelChange", 1, 0, 1, 0, 0, 0, 0}, CodeCase{"SelChangeKept", 1, 0, 0, 1, 0, 1, 1},
        CodeCase{"CloseUp", 8, 0, 1, 0, 0, 0, 0}, CodeCase{"CloseUpKept", 8, 0, 0, 1, 0, 1, 1},
        CodeCase{"KillFocus", 4, 0, 1, 1, 0, 0, 1}, CodeCase{"KillFocusPlain", 4, 0, 0, 0, 0, 0, 0},
        CodeCase{"DropDown", 7, 0, 0, 1, 0, 1, 0}, CodeCase{"DropDownAgain", 7, 0, 1, 0, 0, 1, 0},
        CodeCase{"SelEndOkKept", 9, 0, 1, 1, 1, 1, 1},
        CodeCase{"SelEndOkKeptWithoutSelection", 9, -1, 0, 1, 1, 0, 1},
        CodeCase{"SelEndOkOfFirst", 9, 0, 1, 0, 0, 1, 0},
        CodeCase{"SelEndOkOfOther", 9, 5, 0, 0, 0, 0, 0},
        CodeCase{"SelEndOkWithoutSelection", 9, -1, 1, 0, 0, 1, 1},
        CodeCase{"SelEndOkWithoutSpace", 9, -2, 0, 0, 0, 0, 1},
        CodeCase{"SelEndCancel", 10, 0, 1, 0, 0, 1, 1},
        CodeCase{"SelEndCancelAgain", 10, 0, 0, 1, 0, 0, 1},
        CodeCase{"DoubleClick", 2, 0, 1, 0, 0, 1, 0}, CodeCase{"SetFocus", 3, 0, 0, 1, 0, 0, 1},
        CodeCase{"EditChange", 5, 0, 1, 1, 0, 1, 1}, CodeCase{"EditUpdate", 6, 0, 1, 0, 0, 1, 0},
        CodeCase{"TextSet", 0x63, 0, 1, 0, 0, 1, 0}, CodeCase{"Zero", 0, 0, 0, 1, 0, 0, 1},
        CodeCase{"OutOfSpace", 0xFFFF, 0, 1, 1, 0, 1, 1}),
    [](const auto& row) { return std::string(row.param.pszName); });

TEST(CSCombo, DialogSeesTheSelectionBehindTheCombo) {
    Combos t;
    t.dialog.log.clear();
    auto l = reinterpret_cast<LPARAM>(t.combo.hWnd);
    t.combo.blockEditText = 1;
    t.combo.keepEditText = 0;
    EXPECT_EQ(0, ::SendMessageW(t.dialog, WM_COMMAND, MAKEWPARAM(IDC_CTL_COMBO, CBN_SELCHANGE), l));
    EXPECT_EQ(0, t.combo.blockEditText);
    EXPECT_TRUE(t.dialog.Logged("selected " + std::to_string(IDC_CTL_COMBO)));
}

// Texts that a program sets

TEST(CSCombo, DefaultSwallowsOneTextWhileBlocked) {
    CSCombo plain;
    __int64 lResult = 77;
    EXPECT_EQ(0, plain.OnEditCtrlMsg(WM_SETTEXT, 0, 0, &lResult));
    Combo combo;
    for (UINT uMsg : {WM_GETTEXT, WM_CHAR, WM_KEYDOWN, WM_NULL, WM_APP}) {
        combo.blockEditText = 1;
        EXPECT_EQ(0, combo.CSCombo::OnEditCtrlMsg(uMsg, 0, 0, &lResult)) << uMsg;
        EXPECT_EQ(1, combo.blockEditText);
    }
    EXPECT_EQ(1, combo.CSCombo::OnEditCtrlMsg(WM_SETTEXT, 0, 0, &lResult));
    EXPECT_EQ(0, combo.blockEditText);
    EXPECT_EQ(0, combo.CSCombo::OnEditCtrlMsg(WM_SETTEXT, 0, 0, &lResult));
    EXPECT_EQ(77, lResult);
}

TEST(CSCombo, EveryTextIsToldToTheDialogSwallowedOrNot) {
    for (int bBlocked : {0, 1}) {
        Combos t;
        ::SetWindowTextW(t.hwndEdit, L"first");
        EXPECT_EQ(0, t.nTextsSet) << "posted, not sent";
        EXPECT_EQ(1, t.TakePosted());
        t.combo.blockEditText = bBlocked;
        ::SetWindowTextW(t.hwndEdit, L"second");
        EXPECT_EQ(bBlocked ? L"first" : L"second", t.Text());
        EXPECT_EQ(0, t.combo.blockEditText);
        EXPECT_EQ(1, t.TakePosted());
        ::SetWindowTextW(t.hwndEdit, L"third");
        EXPECT_EQ(L"third", t.Text());
        EXPECT_EQ(1, t.TakePosted());
        t.combo.SetText(L"fourth"); // of the combo box, which passes it on
        EXPECT_EQ(L"fourth", t.Text());
        EXPECT_EQ(1, t.TakePosted());
    }
}

TEST(CSCombo, ToldTextNamesTheCombo) {
    Combos t;
    ::SetWindowTextW(t.hwndEdit, L"text");
    MSG msg{};
    ASSERT_TRUE(::PeekMessageW(&msg, t.dialog, WM_COMMAND, WM_COMMAND, PM_REMOVE));
    EXPECT_EQ(static_cast<WPARAM>(MAKEWPARAM(IDC_CTL_COMBO, kTextSet)), msg.wParam);
    EXPECT_EQ(reinterpret_cast<LPARAM>(t.combo.hWnd), msg.lParam);
    EXPECT_EQ(kTextSet, static_cast<unsigned>(CSCombo::kTextSet));
}

TEST(CSCombo, TypedTextIsNotToldSo) {
    Combos t;
    for (wchar_t ch : std::wstring(L"ab")) ::SendMessageW(t.hwndEdit, WM_CHAR, ch, 1);
    EXPECT_EQ(L"ab", t.Text());
    EXPECT_EQ(0, t.TakePosted());
}

TEST(CSCombo, DerivedClassSeesAllMessagesOfTheEditField) {
    Combos t;
    t.combo.editMessages.clear();
    t.editTap->seen.clear();
    for (UINT uMsg : {WM_APP + 1, WM_APP + 2}) ::SendMessageW(t.hwndEdit, uMsg, 3, 4);
    EXPECT_EQ((std::vector<UINT>{WM_APP + 1, WM_APP + 2}), t.combo.editMessages);
    EXPECT_EQ(0, t.combo.lResultBefore);
    EXPECT_EQ(2u, t.editTap->seen.size());

    WPARAM wSeen = 0;
    LPARAM lSeen = 0;
    t.combo.onEdit = [&](UINT uMsg, WPARAM wParam, LPARAM lParam, __int64* plResult) {
        if (uMsg != WM_APP + 1 && uMsg != WM_SETTEXT) return false;
        wSeen = wParam;
        lSeen = lParam;
        *plResult = -0x123456789A;
        return true;
    };
    EXPECT_EQ(-0x123456789A, ::SendMessageW(t.hwndEdit, WM_APP + 1, ~0ULL, -9));
    EXPECT_EQ(~0ULL, wSeen);
    EXPECT_EQ(-9, lSeen);
    EXPECT_EQ(2u, t.editTap->seen.size()) << "swallowed";
    EXPECT_EQ(-0x123456789A, ::SendMessageW(t.hwndEdit, WM_SETTEXT, 0, 0));
    EXPECT_EQ(1, t.TakePosted()) << "also when it is swallowed";
    t.combo.onEdit = nullptr;
}

TEST(CSCombo, ResultIsZeroWhenNothingIsSaid) {
    Combos t;
    t.combo.blockEditText = 1;
    EXPECT_EQ(0, ::SendMessageW(t.hwndEdit, WM_SETTEXT, 0, reinterpret_cast<LPARAM>(L"x")));
}

TEST(CSCombo, EditFieldMayGoInItsOwnMessage) {
    Combos t;
    t.combo.onEdit = [&](UINT uMsg, WPARAM, LPARAM, __int64*) {
        if (uMsg != WM_APP && uMsg != WM_SETTEXT) return false;
        t.combo.onEdit = nullptr;
        ::DestroyWindow(::GetParent(t.hwndEdit));
        return true;
    };
    ::SendMessageW(t.hwndEdit, WM_SETTEXT, 0, reinterpret_cast<LPARAM>(L"x"));
    EXPECT_EQ(nullptr, t.combo.hWnd);
    EXPECT_EQ(nullptr, t.combo.Edit());
}

TEST(CSCombo, HeapObjectWaitsForItsEditFieldsMessage) {
    auto* pCombo = new Combo;
    int nDeletes = 0, nDeletesInside = -1;
    pCombo->pnDeletes = &nDeletes;
    CtrlDialog dialog;
    dialog.onInit = [&] { pCombo->Init(&dialog, IDC_CTL_COMBO, nullptr, 0); };
    ASSERT_TRUE(dialog.Run(IDD_COMBOS));
    pCombo->autoDelete = 1;
    HWND hwndCombo = *pCombo, hwndEdit = pCombo->Edit();
    pCombo->onEdit = [&, hwndCombo](UINT uMsg, WPARAM, LPARAM, __int64*) {
        if (uMsg != WM_APP || !::IsWindow(hwndCombo)) return false;
        ::DestroyWindow(hwndCombo);
        nDeletesInside = nDeletes;
        return nDeletes == 0;
    };
    ::SendMessageW(hwndEdit, WM_APP, 0, 0);
    EXPECT_FALSE(::IsWindow(hwndCombo));
    EXPECT_EQ(0, nDeletesInside) << "the edit field's object is a part of it";
    EXPECT_EQ(1, nDeletes);
}

TEST(CSCombo, DialogThatDeletesItselfWaitsForTheEditFieldsMessage) {
    // A key in the edit field: its object, the combo box and the dialog are at work, and both
    // objects are parts of the dialog's.
    struct OwnDialog : CtrlDialog {
        Combo combo;
    };
    auto* pDialog = new OwnDialog;
    int nDeletes = 0, nDeletesInside = -1, nDeletesBehind = -1;
    pDialog->combo.pnDeletes = &nDeletes;
    pDialog->onInit = [=] { pDialog->combo.Init(pDialog, IDC_CTL_COMBO, nullptr, 0); };
    ASSERT_TRUE(pDialog->Run(IDD_COMBOS));
    pDialog->autoDelete = 1;
    HWND hwndDlg = *pDialog;
    pDialog->onCommand = [&, hwndDlg](unsigned, unsigned nCode, HWND) {
        if (nCode != CBN_EDITCHANGE) return;
        ::DestroyWindow(hwndDlg);
        nDeletesInside = nDeletes;
    };
    ProbeHook hook;
    hook.fn = [&](CSWnd* pWnd, UINT uMsg, WPARAM wParam, LPARAM lParam, LRESULT* plResult) {
        if (uMsg != WM_CHAR) return 0;
        *plResult = pWnd->DoWndMessage(uMsg, wParam, lParam, &hook);
        nDeletesBehind = nDeletes;
        return 1;
    };
    pDialog->combo.editCtrl.AddWndHook(&hook);
    ::SendMessageW(pDialog->combo.Edit(), WM_CHAR, L'x', 1);
    EXPECT_FALSE(::IsWindow(hwndDlg));
    EXPECT_EQ(0, nDeletesInside);
    EXPECT_EQ(0, nDeletesBehind) << "the edit field's object is still at work";
    EXPECT_EQ(1, nDeletes);
}

TEST(CSCombo, AnotherObjectTakesTheEditFieldToo) {
    auto pFirst = std::make_unique<Combo>();
    Combos t;
    HWND hwnd = ::GetDlgItem(t.dialog, IDC_CTL_COMBO);
    Combo second;
    pFirst->Init(&t.dialog, IDC_CTL_COMBO, nullptr, 0);
    second.Init(&t.dialog, IDC_CTL_COMBO, nullptr, 0);
    EXPECT_EQ(&second, t.dialog.GetDlgCtrl(hwnd));
    for (bool bWithFirst : {true, false}) {
        if (!bWithFirst) pFirst.reset();
        EXPECT_EQ(static_cast<CSWnd*>(&second.editCtrl), CSWnd::FromHandle(t.hwndEdit));
        second.editMessages.clear();
        if (bWithFirst) pFirst->editMessages.clear();
        second.blockEditText = 1;
        ::SetWindowTextW(t.hwndEdit, L"swallowed");
        EXPECT_EQ(1, second.CountEdit(WM_SETTEXT));
        if (bWithFirst) {
            EXPECT_EQ(0, pFirst->CountEdit(WM_SETTEXT));
        }
        EXPECT_EQ(L"", t.Text());
        MSG msg;
        int nPosted = 0;
        while (::PeekMessageW(&msg, t.dialog, WM_COMMAND, WM_COMMAND, PM_REMOVE)) {
            nPosted += HIWORD(msg.wParam) == kTextSet;
        }
        EXPECT_EQ(1, nPosted);
    }
    t.dialog.Destroy();
    EXPECT_EQ(nullptr, second.Edit());
}

TEST(CSCombo, DialogMayGoInTheEditFieldsMessage) {
    Combos t;
    t.combo.onEdit = [&](UINT uMsg, WPARAM, LPARAM, __int64*) {
        if (uMsg != WM_SETTEXT) return false;
        t.combo.onEdit = nullptr;
        t.dialog.Destroy();
        return false;
    };
    ::SendMessageW(t.hwndEdit, WM_SETTEXT, 0, reinterpret_cast<LPARAM>(L"x"));
    EXPECT_EQ(nullptr, t.combo.Edit());
}
} // namespace
