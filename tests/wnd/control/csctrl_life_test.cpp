#include "support/guard_page.h"
#include "support/heap_count.h"
#include "support/no_memory.h"
#include "wnd/control/control_ids.h"
#include "wnd/control/csctrl.h"
#include "wnd/control/csedit.h"
#include "wnd/control/ctrl_dialog.h"
#include "wnd/wnd_probe.h"

#include <gtest/gtest.h>
#include <memory>

namespace {
using Ctrl = Recorded<CSCtrl>;

/// A message of the plain object is under way when the typed one takes its place.
class CSCtrlInitInMessage : public testing::TestWithParam<int> {};
TEST_P(CSCtrlInitInMessage, ThePlainObjectGoesAfterItsLastFrame) {
    Ctrl ctrl;
    ctrl.log.reserve(20);
    ctrl.messages.reserve(200);
    CtrlDialog dialog;
    dialog.log.reserve(40);
    ASSERT_TRUE(RunWith(dialog, [] {}));
    HWND hwnd = ::GetDlgItem(dialog, IDC_CTL_EDIT);
    CSCtrl* pPlain = dialog.GetDlgCtrl(IDC_CTL_EDIT);
    ASSERT_NE(nullptr, pPlain);
    int nDepth = 0;
    ProbeHook hook([&](CSWnd*, UINT uMsg, WPARAM, LPARAM, LRESULT*) {
        if (uMsg != WM_APP) return 0;
        if (++nDepth < GetParam()) {
            ::SendMessageW(hwnd, WM_APP, 0, 0);
        } else {
            ctrl.Init(&dialog, IDC_CTL_EDIT, nullptr, 0);
        }
        return 0;
    });
    pPlain->AddWndHook(&hook);
    long nBefore = CountLiveBlocks();
    ::SendMessageW(hwnd, WM_APP, 0, 0);
    EXPECT_EQ(GetParam(), nDepth);
    EXPECT_LT(CountLiveBlocks(), nBefore) << "the plain object is gone";
    EXPECT_EQ(&ctrl, dialog.GetDlgCtrl(IDC_CTL_EDIT));
    ctrl.messages.clear();
    ::SendMessageW(hwnd, WM_APP, 0, 0);
    EXPECT_EQ(1, ctrl.Count(WM_APP));
    EXPECT_EQ(GetParam(), nDepth) << "the hook went with the plain object";
    EXPECT_NE(FALSE, ::SetWindowTextW(hwnd, L"works on"));
    EXPECT_EQ(L"works on", WndText(hwnd));
}
TEST_P(CSCtrlInitInMessage, AndTheWindowMayGoInTheSameMessage) {
    Ctrl ctrl;
    CtrlDialog dialog;
    ASSERT_TRUE(RunWith(dialog, [] {}));
    HWND hwnd = ::GetDlgItem(dialog, IDC_CTL_EDIT);
    int nDepth = 0;
    ProbeHook hook([&](CSWnd*, UINT uMsg, WPARAM, LPARAM, LRESULT*) {
        if (uMsg != WM_APP) return 0;
        if (++nDepth < GetParam()) {
            ::SendMessageW(hwnd, WM_APP, 0, 0);
        } else {
            ctrl.Init(&dialog, IDC_CTL_EDIT, nullptr, 0);
            ::DestroyWindow(hwnd);
        }
        return 0;
    });
    dialog.GetDlgCtrl(IDC_CTL_EDIT)->AddWndHook(&hook);
    ::SendMessageW(hwnd, WM_APP, 0, 0);
    EXPECT_FALSE(::IsWindow(hwnd));
    EXPECT_EQ(1, ctrl.CountLogged("OnPostNcDestroy"));
    EXPECT_EQ(nullptr, ctrl.hWnd);
}
INSTANTIATE_TEST_SUITE_P(Depth, CSCtrlInitInMessage, testing::Values(1, 2, 5));

TEST(CSCtrlLife, InitInANotificationOfThePlainObjectsControl) {
    // The edit tells of its change from within WM_SETTEXT, which went through the plain object.
    Ctrl ctrl;
    CtrlDialog dialog;
    ASSERT_TRUE(RunWith(dialog, [] {}));
    HWND hwnd = ::GetDlgItem(dialog, IDC_CTL_EDIT);
    long nBefore = 0;
    dialog.onCommand = [&](unsigned nId, unsigned nCode, HWND) {
        if (nId != IDC_CTL_EDIT || nCode != EN_CHANGE || nBefore) return;
        ctrl.log.reserve(20);
        ctrl.messages.reserve(200);
        nBefore = CountLiveBlocks();
        ctrl.Init(&dialog, IDC_CTL_EDIT, nullptr, 0);
    };
    EXPECT_NE(FALSE, ::SetWindowTextW(hwnd, L"changed"));
    ASSERT_NE(0, nBefore);
    dialog.onCommand = nullptr;
    EXPECT_LT(CountLiveBlocks(), nBefore);
    EXPECT_EQ(&ctrl, dialog.GetDlgCtrl(IDC_CTL_EDIT));
    EXPECT_EQ(L"changed", WndText(hwnd));
    const std::string strChange = "OnCommand " + std::to_string(EN_CHANGE);
    EXPECT_EQ(1, ctrl.CountLogged(strChange)) << "the same notification is the new object's";
    ::SetWindowTextW(hwnd, L"again");
    EXPECT_EQ(1, ctrl.Count(WM_SETTEXT));
    EXPECT_EQ(2, ctrl.CountLogged(strChange));
}

TEST(CSCtrlLife, PlainObjectDiesWithItsControl) {
    CtrlDialog dialog;
    CSCtrl* pPlain = nullptr;
    ASSERT_TRUE(RunWith(dialog, [&] { pPlain = CSCtrl::AutoInit(&dialog, IDC_CTL_EDIT); }));
    ASSERT_NE(nullptr, pPlain);
    HWND hwnd = ::GetDlgItem(dialog, IDC_CTL_EDIT);
    EXPECT_NE(0, pPlain->autoDelete);
    EXPECT_EQ(static_cast<unsigned>(IDC_CTL_EDIT), pPlain->GetID());
    EXPECT_EQ(&dialog, pPlain->GetDlg());
    EXPECT_EQ(hwnd, static_cast<HWND>(*pPlain));
    EXPECT_EQ(pPlain, dialog.GetDlgCtrl(IDC_CTL_EDIT));
    pPlain->GetOriginalText();
    long nBefore = CountLiveBlocks();
    ::DestroyWindow(hwnd);
    EXPECT_LT(CountLiveBlocks(), nBefore);
}

TEST(CSCtrlLife, DialogsLeaveNoObjectsBehind) {
    long nBefore = 0;
    for (int n = 0; n < 3; ++n) {
        if (n == 1) nBefore = CountLiveBlocks();
        CtrlDialog dialog;
        ASSERT_TRUE(RunWith(dialog, [] {}));
        for (int nId : {IDC_CTL_FORMAT, IDC_CTL_EDIT, IDC_CTL_BUTTON}) {
            ASSERT_NE(nullptr, dialog.GetDlgCtrl(nId));
            dialog.GetDlgCtrl(nId)->GetOriginalText();
        }
    }
    EXPECT_EQ(nBefore, CountLiveBlocks());
}

TEST(CSCtrlLife, PlainObjectMayOutliveTheDialogsObject) {
    GuardedMemory memory(sizeof(CSDlg)); // is not there any more afterwards
    auto* pDialog = new (memory.Get()) CSDlg(nullptr);
    HWND hwndDlg = pDialog->Modeless(IDD_CONTROLS, nullptr, nullptr, 0);
    ASSERT_NE(nullptr, hwndDlg);
    HWND hwnd = ::GetDlgItem(hwndDlg, IDC_CTL_EDIT);
    ASSERT_NE(nullptr, CSCtrl::FromHandle(hwnd));
    pDialog->~CSDlg();
    DWORD dwOld = 0;
    ASSERT_NE(FALSE, ::VirtualProtect(memory.Get(), sizeof(CSDlg), PAGE_NOACCESS, &dwOld));
    EXPECT_NE(FALSE, ::SetWindowTextW(hwnd, L"text"));
    EXPECT_EQ(L"text", WndText(hwnd));
    ::DestroyWindow(hwndDlg);
    EXPECT_FALSE(::IsWindow(hwnd));
}

/// As a dialog's class is written: its controls' objects are members.
struct DialogWithEdit : CSDlg {
    __int64 OnInitDialog(unsigned __int64 wParam, __int64 lParam) override {
        __int64 lResult = CSDlg::OnInitDialog(wParam, lParam);
        edit.Init(this, IDC_CTL_EDIT, nullptr, 0);
        return lResult;
    }
    CSEdit edit;
};
TEST(CSCtrlLife, MemberLeavesItsControlWithTheDialogsObject) {
    GuardedMemory memory(sizeof(DialogWithEdit)); // is not there any more afterwards
    auto* pDialog = new (memory.Get()) DialogWithEdit;
    HWND hwndDlg = pDialog->Modeless(IDD_CONTROLS, nullptr, nullptr, 0);
    ASSERT_NE(nullptr, hwndDlg);
    HWND hwnd = ::GetDlgItem(hwndDlg, IDC_CTL_EDIT);
    ASSERT_EQ(&pDialog->edit, CSCtrl::FromHandle(hwnd));
    pDialog->~DialogWithEdit();
    DWORD dwOld = 0;
    ASSERT_NE(FALSE, ::VirtualProtect(memory.Get(), sizeof(DialogWithEdit), PAGE_NOACCESS, &dwOld));
    EXPECT_NE(FALSE, ::SetWindowTextW(hwnd, L"text"));
    EXPECT_EQ(L"text", WndText(hwnd));
    EXPECT_EQ(nullptr, CSCtrl::FromHandle(hwnd));
    ::DestroyWindow(hwndDlg);
    EXPECT_FALSE(::IsWindow(hwnd));
}

TEST(CSCtrlLife, AnotherObjectInThePlaceOfTheDialogsIsNotTouched) {
    GuardedMemory memory(sizeof(CSDlg));
    auto* pDialog = new (memory.Get()) CSDlg(nullptr);
    HWND hwndDlg = pDialog->Modeless(IDD_CONTROLS, nullptr, nullptr, 0);
    ASSERT_NE(nullptr, hwndDlg);
    HWND hwnd = ::GetDlgItem(hwndDlg, IDC_CTL_EDIT);
    CSCtrl* pPlain = CSCtrl::FromHandle(hwnd);
    ASSERT_NE(nullptr, pPlain);
    CSDlg* pNext = nullptr;
    ProbeHook hook([&](CSWnd*, UINT uMsg, WPARAM, LPARAM, LRESULT*) {
        if (uMsg != WM_APP || pNext) return 0;
        pDialog->~CSDlg();
        pNext = new (memory.Get()) CSDlg(nullptr);
        EXPECT_NE(nullptr, pNext->Modeless(IDD_CONTROLS, nullptr, nullptr, 0));
        return 0;
    });
    pPlain->AddWndHook(&hook);
    ::SendMessageW(hwnd, WM_APP, 0, 0);
    ASSERT_NE(nullptr, pNext);
    ::DestroyWindow(hwndDlg);
    EXPECT_TRUE(pNext->IsReady());
    pNext->Destroy();
    EXPECT_EQ(nullptr, static_cast<HWND>(*pNext)) << "its life with the window has ended";
    pNext->~CSDlg();
}

TEST(CSCtrlLife, AutoInitWithoutMemoryGivesNull) {
    CtrlDialog dialog;
    CSCtrl* p = nullptr;
    ASSERT_TRUE(RunWith(dialog, [&] {
        NoMemory none;
        p = CSCtrl::AutoInit(&dialog, IDC_CTL_EDIT);
    }));
    EXPECT_EQ(nullptr, p);
}

TEST(CSCtrlLife, AutoInitOfAMissingControlLeavesNothingThatNobodyOwns) {
    CtrlDialog dialog;
    ASSERT_TRUE(RunWith(dialog, [] {}));
    long nBefore = CountLiveBlocks();
    delete CSCtrl::AutoInit(&dialog, IDC_CTL_MISSING);
    EXPECT_EQ(nBefore, CountLiveBlocks());
}

TEST(CSCtrlLife, MemberIsUntiedBeforeTheDialogEndsAndIsNotTiedAgain) {
    Ctrl ctrl;
    CtrlDialog dialog;
    bool bUntiedBefore = false;
    dialog.onPost = [&] {
        bUntiedBefore = ctrl.hWnd == nullptr && ctrl.CountLogged("OnPostNcDestroy") == 1;
    };
    ASSERT_TRUE(RunWith(dialog, [&] { ctrl.Init(&dialog, IDC_CTL_EDIT, nullptr, 0); }));
    dialog.Destroy();
    EXPECT_TRUE(bUntiedBefore);
    EXPECT_EQ(&dialog, ctrl.dlg) << "Init works once";
    ASSERT_TRUE(dialog.Run(IDD_CONTROLS));
    EXPECT_EQ(nullptr, ctrl.hWnd);
    EXPECT_NE(nullptr, dialog.GetDlgCtrl(IDC_CTL_EDIT)) << "a plain one";
}

/// The control's window goes in the object's own handler; the dialog goes on.
class CSCtrlEndsIn : public testing::TestWithParam<int> {};
TEST_P(CSCtrlEndsIn, ItsOwnOnCommand) {
    int nDeletes = 0;
    auto* pCtrl = new Ctrl;
    pCtrl->pnDeletes = &nDeletes;
    CtrlDialog dialog;
    ASSERT_TRUE(RunWith(dialog, [&] { pCtrl->Init(&dialog, IDC_CTL_BUTTON, nullptr, 0); }));
    pCtrl->autoDelete = 1;
    HWND hwnd = ::GetDlgItem(dialog, IDC_CTL_BUTTON);
    pCtrl->onCommand = [&, hwnd](unsigned, __int64* plResult) {
        *plResult = 0x5A;
        ::DestroyWindow(hwnd);
        return GetParam();
    };
    dialog.log.clear();
    EXPECT_EQ(GetParam() ? 0x5A : 0, dialog.OnCommand(IDC_CTL_BUTTON, BN_CLICKED, hwnd));
    EXPECT_FALSE(::IsWindow(hwnd));
    EXPECT_EQ(1, nDeletes);
    EXPECT_EQ(GetParam() ? Log{} : Log{"clicked " + std::to_string(IDC_CTL_BUTTON)}, dialog.log);
}
TEST_P(CSCtrlEndsIn, ItsOwnOnCommandOfARealClick) {
    int nDeletes = 0;
    auto* pCtrl = new Ctrl;
    pCtrl->pnDeletes = &nDeletes;
    CtrlDialog dialog;
    ASSERT_TRUE(RunWith(dialog, [&] { pCtrl->Init(&dialog, IDC_CTL_BUTTON, nullptr, 0); }));
    pCtrl->autoDelete = 1;
    HWND hwnd = ::GetDlgItem(dialog, IDC_CTL_BUTTON);
    int nDeletesInside = -1;
    pCtrl->onCommand = [&, hwnd](unsigned nCode, __int64*) {
        if (nCode != BN_CLICKED) return 0;
        ::DestroyWindow(hwnd);
        nDeletesInside = nDeletes;
        return GetParam();
    };
    ::SendMessageW(hwnd, BM_CLICK, 0, 0);
    EXPECT_FALSE(::IsWindow(hwnd));
    EXPECT_EQ(0, nDeletesInside) << "frames of it are under way";
    EXPECT_EQ(1, nDeletes);
}
TEST_P(CSCtrlEndsIn, ItsOwnOnNotify) {
    int nDeletes = 0;
    auto* pCtrl = new Ctrl;
    pCtrl->pnDeletes = &nDeletes;
    CtrlDialog dialog;
    ASSERT_TRUE(RunWith(dialog, [&] { pCtrl->Init(&dialog, IDC_CTL_BUTTON, nullptr, 0); }));
    pCtrl->autoDelete = 1;
    HWND hwnd = ::GetDlgItem(dialog, IDC_CTL_BUTTON);
    pCtrl->onNotify = [&, hwnd](NMHDR*, __int64* plResult) {
        *plResult = 0x5A;
        ::DestroyWindow(hwnd);
        return GetParam();
    };
    NMHDR hdr{hwnd, IDC_CTL_BUTTON, static_cast<UINT>(-2)};
    LRESULT lResult =
        ::SendMessageW(dialog, WM_NOTIFY, IDC_CTL_BUTTON, reinterpret_cast<LPARAM>(&hdr));
    EXPECT_EQ(GetParam() ? 0x5A : 0, lResult);
    EXPECT_EQ(1, nDeletes);
    EXPECT_EQ(0, ::SendMessageW(dialog, WM_NOTIFY, IDC_CTL_BUTTON, reinterpret_cast<LPARAM>(&hdr)))
        << "from a window that is gone";
}
INSTANTIATE_TEST_SUITE_P(Returning, CSCtrlEndsIn, testing::Values(0, 1));

TEST(CSCtrlLife, DialogMayGoInAControlsOnCommand) {
    Ctrl ctrl;
    auto pDialog = std::make_unique<CtrlDialog>();
    ASSERT_TRUE(RunWith(*pDialog, [&] { ctrl.Init(pDialog.get(), IDC_CTL_BUTTON, nullptr, 0); }));
    HWND hwndDlg = *pDialog;
    ctrl.onCommand = [&](unsigned nCode, __int64*) {
        if (nCode == BN_CLICKED) pDialog->Destroy();
        return 0;
    };
    ::SendMessageW(ctrl.hWnd, BM_CLICK, 0, 0);
    EXPECT_FALSE(::IsWindow(hwndDlg));
    EXPECT_EQ(nullptr, ctrl.hWnd);
    EXPECT_EQ(1, ctrl.CountLogged("OnPostNcDestroy"));
}
} // namespace
