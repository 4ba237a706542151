#include "shell/subclass/shell_subclass.h"
#include "support/heap_count.h"
#include "support/runtime_lookup.h"
#include "wnd/control/control_ids.h"
#include "wnd/control/cscombo.h"
#include "wnd/control/csedit.h"
#include "wnd/control/ctrl_dialog.h"
#include "wnd/wnd_probe.h"

#include <gtest/gtest.h>
#include <cwchar>

namespace {
FARPROC LookupWithoutComctl(const wchar_t* pszModule, const char* pszName) {
    bool bHidden = ::_wcsnicmp(pszModule, L"comctl32", 8) == 0;
    return bHidden ? nullptr : FindSystemFunc(pszModule, pszName);
}

/// A platform without the subclass functions: objects take the place of a window's procedure.
struct ControlsByProcedure : testing::Test {
    ControlsByProcedure() {
        ::SetRuntimeLookup(&LookupWithoutComctl);
        EXPECT_EQ(ShellSubclass::kMissing, ShellSubclass::ReInitialize());
        ::SetRuntimeLookup(nullptr);
    }
    ~ControlsByProcedure() override { ShellSubclass::ReInitialize(); }

    static WNDPROC ProcOf(HWND hwnd) {
        return reinterpret_cast<WNDPROC>(::GetWindowLongPtrW(hwnd, GWLP_WNDPROC));
    }
};

TEST_F(ControlsByProcedure, ControlSeesMessagesAndNotifications) {
    Recorded<CSEdit> edit;
    CtrlDialog dialog;
    WNDPROC pfnBefore = nullptr;
    ASSERT_TRUE(RunWith(dialog, [&] {
        pfnBefore = ProcOf(::GetDlgItem(dialog, IDC_CTL_EDIT));
        edit.Init(&dialog, IDC_CTL_EDIT, nullptr, 0);
    }));
    EXPECT_NE(pfnBefore, ProcOf(edit.hWnd));
    edit.SetReadOnly(1);
    ::SendMessageW(edit.hWnd, WM_CHAR, L'x', 1);
    EXPECT_EQ(L"", WndText(edit.hWnd));
    ::SetWindowTextW(edit.hWnd, L"text");
    EXPECT_EQ(L"text", WndText(edit.hWnd));
    EXPECT_EQ(1, edit.CountLogged("OnCommand " + std::to_string(EN_CHANGE)));
    HWND hwnd = edit.hWnd;
    EXPECT_NE(0, edit.Unsubclass());
    EXPECT_EQ(pfnBefore, ProcOf(hwnd));
}

TEST_F(ControlsByProcedure, TypedObjectTakesThePlaceOfThePlainOne) {
    Recorded<CSCtrl> ctrl;
    CtrlDialog dialog;
    ASSERT_TRUE(RunWith(dialog, [&] {
        CSCtrl::AutoInit(&dialog, IDC_CTL_EDIT);
        ctrl.Init(&dialog, IDC_CTL_EDIT, nullptr, 0);
    }));
    EXPECT_EQ(&ctrl, dialog.GetDlgCtrl(IDC_CTL_EDIT));
    ctrl.messages.clear();
    ::SendMessageW(ctrl.hWnd, WM_APP, 0, 0);
    EXPECT_EQ(1, ctrl.Count(WM_APP));
}

TEST_F(ControlsByProcedure, PlainObjectGoesAfterItsLastFrame) {
    Recorded<CSCtrl> ctrl;
    ctrl.log.reserve(20);
    ctrl.messages.reserve(200);
    CtrlDialog dialog;
    ASSERT_TRUE(RunWith(dialog, [] {}));
    HWND hwnd = ::GetDlgItem(dialog, IDC_CTL_EDIT);
    int nDepth = 0;
    ProbeHook hook([&](CSWnd*, UINT uMsg, WPARAM, LPARAM, LRESULT*) {
        if (uMsg != WM_SETTEXT) return 0;
        if (++nDepth < 3) {
            ::SetWindowTextW(hwnd, L"inner");
        } else {
            ctrl.Init(&dialog, IDC_CTL_EDIT, nullptr, 0);
        }
        return 0;
    });
    dialog.GetDlgCtrl(IDC_CTL_EDIT)->AddWndHook(&hook);
    long nBefore = CountLiveBlocks();
    EXPECT_NE(FALSE, ::SetWindowTextW(hwnd, L"outer"));
    EXPECT_LT(CountLiveBlocks(), nBefore);
    EXPECT_EQ(L"outer", WndText(hwnd)) << "the messages under way went where they were to go";
    EXPECT_EQ(&ctrl, dialog.GetDlgCtrl(IDC_CTL_EDIT));
    ctrl.messages.clear();
    ::SetWindowTextW(hwnd, L"again");
    EXPECT_EQ(1, ctrl.Count(WM_SETTEXT));
    EXPECT_EQ(L"again", WndText(hwnd));
}

TEST_F(ControlsByProcedure, ComboHasItsEditField) {
    CSCombo combo;
    CtrlDialog dialog;
    int nTold = 0;
    dialog.onCommand = [&](unsigned, unsigned nCode, HWND) { nTold += nCode == CSCombo::kTextSet; };
    ASSERT_TRUE(RunWith(
        dialog, [&] { combo.Init(&dialog, IDC_CTL_COMBO, nullptr, 0); }, IDD_COMBOS));
    HWND hwndEdit = ::GetDlgItem(combo, 1001);
    EXPECT_NE(nullptr, CSWnd::FromHandle(hwndEdit));
    ::SetWindowTextW(hwndEdit, L"text");
    EXPECT_EQ(L"text", WndText(combo));
    EXPECT_TRUE(PumpUntil([&] { return nTold == 1; }));
    dialog.Destroy();
    EXPECT_EQ(nullptr, static_cast<HWND>(combo));
}
} // namespace
