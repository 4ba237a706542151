#include "support/heap_count.h"
#include "support/no_memory.h"
#include "wnd/control/control_ids.h"
#include "wnd/control/csctrl.h"
#include "wnd/control/csedit.h"
#include "wnd/control/ctrl_dialog.h"
#include "wnd/wnd_probe.h"

#include <gtest/gtest.h>

namespace {
using Ctrl = Recorded<CSCtrl>;

TEST(CSCtrl, IsOfItsClassAndOfItsBase) {
    CSCtrl ctrl;
    CSEdit edit;
    for (CSCtrl* p : {&ctrl, static_cast<CSCtrl*>(&edit)}) {
        EXPECT_NE(0, p->IsKindOf(L"CSCtrl"));
        EXPECT_NE(0, p->IsKindOf(L"CSWnd"));
        EXPECT_EQ(0, p->IsKindOf(L"CSDlg"));
        EXPECT_EQ(0, p->IsKindOf(L"CSEdit"));
        EXPECT_NE(0, p->IsCtrl());
        EXPECT_EQ(0, p->IsDlg());
        EXPECT_EQ(0, p->autoDelete);
        EXPECT_EQ(0u, p->GetID());
        EXPECT_EQ(nullptr, static_cast<HWND>(*p));
    }
}

TEST(CSCtrl, InitStoresAndTiesThenCallsOnInit) {
    Ctrl ctrl;
    CtrlDialog dialog;
    ASSERT_TRUE(RunWith(dialog, [&] { ctrl.Init(&dialog, IDC_CTL_EDIT, L"name", 0x0ABCDEF1); }));
    HWND hwnd = ::GetDlgItem(dialog, IDC_CTL_EDIT);
    EXPECT_EQ(&dialog, ctrl.dlg);
    EXPECT_EQ(static_cast<unsigned>(IDC_CTL_EDIT), ctrl.GetID());
    EXPECT_STREQ(L"name", ctrl.ctrlName);
    EXPECT_EQ(0x0ABCDEF1u, ctrl.myStyle);
    EXPECT_EQ(hwnd, ctrl.hWnd);
    EXPECT_EQ(static_cast<CSWnd*>(&ctrl), ::GetPropW(hwnd, L"CSWND"));
    EXPECT_EQ(1, ctrl.CountLogged("OnInit"));
    EXPECT_EQ(hwnd, ctrl.hwndAtInit);
    EXPECT_EQ(&dialog, ctrl.pDlgAtInit);
    EXPECT_EQ(&ctrl, dialog.GetDlgCtrl(IDC_CTL_EDIT));
    EXPECT_EQ(&ctrl, CSCtrl::FromHandle(hwnd));

    ::SendMessageW(hwnd, WM_APP + 1, 0, 0);
    EXPECT_EQ(1, ctrl.Count(WM_APP + 1));
    EXPECT_NE(FALSE, ::SetWindowTextW(hwnd, L"text")) << "the control works on";
    EXPECT_EQ(L"text", WndText(hwnd));
}

TEST(CSCtrl, SecondInitDoesNothingAlsoWithAnotherId) {
    Ctrl ctrl;
    CtrlDialog dialog;
    ASSERT_TRUE(RunWith(dialog, [&] {
        ctrl.Init(&dialog, IDC_CTL_EDIT, nullptr, 1);
        ctrl.Init(&dialog, IDC_CTL_EDIT, L"again", kDropAnyPath);
        ctrl.Init(&dialog, IDC_CTL_OTHER_EDIT, L"other", kDropAnyPath);
        ctrl.Init(nullptr, IDC_CTL_OTHER_EDIT, L"other", kDropAnyPath);
    }));
    EXPECT_EQ(&dialog, ctrl.dlg);
    EXPECT_EQ(static_cast<unsigned>(IDC_CTL_EDIT), ctrl.GetID());
    EXPECT_EQ(nullptr, ctrl.ctrlName);
    EXPECT_EQ(1u, ctrl.myStyle);
    EXPECT_EQ(::GetDlgItem(dialog, IDC_CTL_EDIT), ctrl.hWnd);
    EXPECT_EQ(1, ctrl.CountLogged("OnInit"));
    EXPECT_NE(&ctrl, dialog.GetDlgCtrl(IDC_CTL_OTHER_EDIT));
    EXPECT_EQ(0u, ::GetWindowLongPtrW(ctrl.hWnd, GWL_EXSTYLE) & WS_EX_ACCEPTFILES);
}

TEST(CSCtrl, InitOfAMissingControlStoresAndStaysUntied) {
    Ctrl ctrl;
    CtrlDialog dialog;
    ASSERT_TRUE(RunWith(dialog, [&] {
        ctrl.Init(&dialog, IDC_CTL_MISSING, L"name", kDropAnyPath);
        ctrl.Init(&dialog, IDC_CTL_EDIT, nullptr, 0);
    }));
    EXPECT_EQ(&dialog, ctrl.dlg);
    EXPECT_EQ(static_cast<unsigned>(IDC_CTL_MISSING), ctrl.GetID());
    EXPECT_STREQ(L"name", ctrl.ctrlName);
    EXPECT_EQ(static_cast<unsigned long>(kDropAnyPath), ctrl.myStyle);
    EXPECT_EQ(nullptr, ctrl.hWnd);
    EXPECT_EQ(Log{}, ctrl.log);
    EXPECT_EQ(nullptr, dialog.GetDlgCtrl(IDC_CTL_MISSING));
}

struct AcceptCase {
    const char* pszName;
    unsigned long dwStyle;
    bool bAccepts;
};
struct AcceptDialog : Dialogs {
    void Reset() {}
};
using CSCtrlAccepts = SharedBy<AcceptDialog, AcceptCase>;
TEST_P(CSCtrlAccepts, FilesByTheTopFourBits) {
    auto& t = Get();
    HWND hwnd = t.Item(IDC_CTL_EDIT);
    ::DragAcceptFiles(hwnd, FALSE);
    auto Accepts = [&] {
        return (::GetWindowLongPtrW(hwnd, GWL_EXSTYLE) & WS_EX_ACCEPTFILES) != 0;
    };
    ASSERT_FALSE(Accepts());
    Ctrl ctrl;
    ctrl.Init(&t.dialog, IDC_CTL_EDIT, nullptr, GetParam().dwStyle);
    EXPECT_EQ(GetParam().bAccepts, Accepts());
    ctrl.ModifyMyStyle(kDropMask, GetParam().bAccepts ? 0UL : kDropMask);
    EXPECT_EQ(GetParam().bAccepts, Accepts()) << "only Init looks at it";
    ctrl.Unsubclass();
}
INSTANTIATE_TEST_SUITE_P(Bits, CSCtrlAccepts,
                         testing::Values(AcceptCase{"None", 0, false},
                                         AcceptCase{"AllOthers", 0x0FFFFFFF, false},
                                         AcceptCase{"AnyPath", 0x80000000, true},
                                         AcceptCase{"FileName", 0x40000000, true},
                                         AcceptCase{"Folder", 0x20000000, true},
                                         AcceptCase{"File", 0x10000000, true},
                                         AcceptCase{"FileAndOthers", 0x10000001, true}),
                         [](const auto& row) { return std::string(row.param.pszName); });

TEST(CSCtrl, InitTakesThePlaceOfAPlainObjectAndDeletesIt) {
    Ctrl ctrl;
    CtrlDialog dialog;
    long nWithPlain = 0, nAfter = 0;
    CSCtrl* pPlain = nullptr;
    ASSERT_TRUE(RunWith(dialog, [&] {
        long nBefore = CountLiveBlocks();
        pPlain = CSCtrl::AutoInit(&dialog, IDC_CTL_EDIT);
        nWithPlain = CountLiveBlocks() - nBefore;
        EXPECT_EQ(pPlain, dialog.GetDlgCtrl(IDC_CTL_EDIT));
        ctrl.log.reserve(10);
        ctrl.messages.reserve(100);
        nBefore = CountLiveBlocks() - nWithPlain;
        ctrl.Init(&dialog, IDC_CTL_EDIT, nullptr, 0);
        nAfter = CountLiveBlocks() - nBefore;
    }));
    EXPECT_GT(nWithPlain, 0);
    EXPECT_EQ(0, nAfter) << "nothing is left of it";
    EXPECT_EQ(&ctrl, dialog.GetDlgCtrl(IDC_CTL_EDIT));
    EXPECT_EQ(static_cast<CSWnd*>(&ctrl), ::GetPropW(ctrl.hWnd, L"CSWND"));
    ctrl.messages.clear();
    ::SendMessageW(ctrl.hWnd, WM_APP, 0, 0);
    EXPECT_EQ(1, ctrl.Count(WM_APP)) << "once";
    EXPECT_EQ(1, ctrl.CountLogged("PostInitDialog"));
    HWND hwnd = ctrl.hWnd;
    dialog.Destroy();
    EXPECT_FALSE(::IsWindow(hwnd));
    EXPECT_EQ(1, ctrl.CountLogged("OnPostNcDestroy"));
    EXPECT_EQ(nullptr, ctrl.hWnd);
}

TEST(CSCtrl, InitTakesThePlaceOfAKeptObjectAndLeavesThat) {
    Ctrl first, second;
    CtrlDialog dialog;
    int nDeletes = 0;
    first.pnDeletes = &nDeletes;
    ASSERT_TRUE(RunWith(dialog, [&] {
        first.Init(&dialog, IDC_CTL_EDIT, nullptr, 0);
        second.Init(&dialog, IDC_CTL_EDIT, nullptr, 0);
    }));
    EXPECT_EQ(0, nDeletes);
    EXPECT_EQ(&second, dialog.GetDlgCtrl(IDC_CTL_EDIT));
    first.messages.clear();
    ::SendMessageW(second.hWnd, WM_APP, 0, 0);
    EXPECT_EQ(0, first.Count(WM_APP));
    EXPECT_EQ(1, second.Count(WM_APP));
    dialog.Destroy();
    EXPECT_EQ(0, first.CountLogged("OnPostNcDestroy"));
    EXPECT_EQ(1, second.CountLogged("OnPostNcDestroy"));
    first.pnDeletes = nullptr;
}

TEST(CSCtrl, InitTakesThePlaceOfAWindowObjectThatIsNoControl) {
    ProbeRecord record;
    Ctrl ctrl;
    CtrlDialog dialog;
    ASSERT_TRUE(RunWith(dialog, [&] {
        auto* pWnd = new ProbeWnd(record);
        pWnd->Subclass(::GetDlgItem(dialog, IDC_CTL_EDIT));
        pWnd->autoDelete = 1;
        EXPECT_EQ(nullptr, dialog.GetDlgCtrl(IDC_CTL_EDIT));
        ctrl.Init(&dialog, IDC_CTL_EDIT, nullptr, 0);
        EXPECT_EQ(1, record.nDeletes);
        EXPECT_EQ(0, record.nPostNcDestroys);
    }));
    EXPECT_EQ(&ctrl, dialog.GetDlgCtrl(IDC_CTL_EDIT));
}

TEST(CSCtrl, ModifyMyStyleClearsThenSets) {
    Ctrl ctrl;
    ctrl.ModifyMyStyle(0, 0xF0);
    EXPECT_EQ(0xF0u, ctrl.myStyle);
    ctrl.ModifyMyStyle(0x30, 0x11);
    EXPECT_EQ(0xD1u, ctrl.myStyle) << "what is in both is set";
    ctrl.ModifyMyStyle(0xFFFFFFFF, 0x80000000);
    EXPECT_EQ(0x80000000u, ctrl.myStyle);
}

TEST(CSCtrl, ShowCtrlShowsAndHides) {
    Ctrl ctrl;
    CtrlDialog dialog;
    ASSERT_TRUE(RunWith(dialog, [&] { ctrl.Init(&dialog, IDC_CTL_EDIT, nullptr, 0); }));
    for (int bShow : {0, 1, 0, 7}) {
        ctrl.ShowCtrl(bShow);
        bool bVisible = ::GetWindowLongPtrW(ctrl.hWnd, GWL_STYLE) & WS_VISIBLE;
        EXPECT_EQ(bShow != 0, bVisible);
        EXPECT_TRUE(::IsWindowEnabled(ctrl.hWnd)) << "nothing else";
    }
}

TEST(CSCtrl, OriginalTextIsThatOfTheFirstCall) {
    Ctrl ctrl;
    CtrlDialog dialog;
    ASSERT_TRUE(RunWith(dialog, [&] { ctrl.Init(&dialog, IDC_CTL_FORMAT, nullptr, 0); }));
    LPCWSTR pszFirst = ctrl.GetOriginalText();
    EXPECT_STREQ(L"Step %d of %s", pszFirst);
    ::SetWindowTextW(ctrl.hWnd, L"something else, and longer");
    EXPECT_EQ(pszFirst, ctrl.GetOriginalText()) << "the same copy";
    EXPECT_STREQ(L"Step %d of %s", pszFirst);
    ::SetWindowTextW(ctrl.hWnd, L"");
    EXPECT_STREQ(L"Step %d of %s", ctrl.GetOriginalText());
    dialog.Destroy();
    EXPECT_STREQ(L"Step %d of %s", ctrl.GetOriginalText()) << "good as long as the object";
}

TEST(CSCtrl, EmptyOriginalTextIsAskedForAgain) {
    Ctrl ctrl;
    CtrlDialog dialog;
    ctrl.messages.reserve(1000);
    ASSERT_TRUE(RunWith(dialog, [&] { ctrl.Init(&dialog, IDC_CTL_EDIT, nullptr, 0); }));
    long nBefore = CountLiveBlocks();
    LPCWSTR psz = ctrl.GetOriginalText();
    EXPECT_EQ(nBefore, CountLiveBlocks()) << "nothing is stored";
    ASSERT_NE(nullptr, psz);
    EXPECT_STREQ(L"", psz);
    ::SetWindowTextW(ctrl.hWnd, L"now");
    EXPECT_STREQ(L"now", ctrl.GetOriginalText());
    ::SetWindowTextW(ctrl.hWnd, L"later");
    EXPECT_STREQ(L"now", ctrl.GetOriginalText());
}

TEST(CSCtrl, OriginalTextOfAnyLength) {
    for (std::size_t cch : {1u, 259u, 260u, 1023u, 1024u, 5000u}) {
        Ctrl ctrl;
        CtrlDialog dialog;
        ASSERT_TRUE(RunWith(dialog, [&] { ctrl.Init(&dialog, IDC_CTL_FORMAT, nullptr, 0); }));
        std::wstring str(cch, L'x');
        str.back() = L'y';
        ::SetWindowTextW(ctrl.hWnd, str.c_str());
        EXPECT_EQ(str, ctrl.GetOriginalText());
    }
}

TEST(CSCtrl, OriginalTextWithoutMemoryIsEmptyAndAskedForAgain) {
    Ctrl ctrl;
    CtrlDialog dialog;
    ASSERT_TRUE(RunWith(dialog, [&] { ctrl.Init(&dialog, IDC_CTL_FORMAT, nullptr, 0); }));
    ctrl.messages.reserve(1000);
    LPCWSTR psz = nullptr;
    {
        NoMemory none;
        psz = ctrl.GetOriginalText();
    }
    ASSERT_NE(nullptr, psz);
    EXPECT_STREQ(L"", psz);
    EXPECT_STREQ(L"Step %d of %s", ctrl.GetOriginalText());
}

TEST(CSCtrl, OriginalTextWithoutAWindowIsEmpty) {
    CSCtrl ctrl;
    ASSERT_NE(nullptr, ctrl.GetOriginalText());
    EXPECT_STREQ(L"", ctrl.GetOriginalText());
}

TEST(CSCtrl, DefaultsDoNothing) {
    CSCtrl ctrl;
    HBRUSH hbr = reinterpret_cast<HBRUSH>(5);
    __int64 lResult = 77;
    NMHDR hdr{};
    ctrl.OnInit();
    ctrl.PostInitDialog();
    EXPECT_EQ(0, ctrl.OnCtlColor(WM_CTLCOLOREDIT, nullptr, &hbr));
    EXPECT_EQ(reinterpret_cast<HBRUSH>(5), hbr);
    EXPECT_EQ(0, ctrl.OnCommand(BN_CLICKED, &lResult));
    EXPECT_EQ(0, ctrl.OnNotify(&hdr, &lResult));
    EXPECT_EQ(77, lResult);
    ctrl.OnDrawItem(nullptr);
    ctrl.OnMeasureItem(nullptr);
    ctrl.OnDeleteItem(nullptr);
    ctrl.OnOK();
}

TEST(CSCtrl, OnOKStores) {
    Ctrl ctrl;
    static_cast<CSCtrl&>(ctrl).OnOK();
    EXPECT_EQ((Log{"OnOK", "Store"}), ctrl.log);
}

TEST(CSCtrl, FromHandleGivesControlsOnly) {
    ProbeClass cls;
    ProbeRecord record;
    ProbeWnd wnd(record);
    ASSERT_EQ(1, wnd.Make());
    PlainWnd plain;
    EXPECT_EQ(nullptr, CSCtrl::FromHandle(nullptr));
    EXPECT_EQ(nullptr, CSCtrl::FromHandle(plain));
    EXPECT_EQ(nullptr, CSCtrl::FromHandle(DeadWindow()));
    EXPECT_EQ(nullptr, CSCtrl::FromHandle(wnd)) << "a window object that is no control's";
    CtrlDialog dialog;
    ASSERT_TRUE(RunWith(dialog, [] {}));
    EXPECT_EQ(nullptr, CSCtrl::FromHandle(dialog));
    EXPECT_NE(nullptr, CSCtrl::FromHandle(::GetDlgItem(dialog, IDC_CTL_EDIT)));
    wnd.Destroy();
}

TEST(CSCtrl, HooksSeeTheControlsMessages) {
    Ctrl ctrl;
    CtrlDialog dialog;
    ASSERT_TRUE(RunWith(dialog, [&] { ctrl.Init(&dialog, IDC_CTL_EDIT, nullptr, 0); }));
    ProbeHook hook([](CSWnd*, UINT uMsg, WPARAM, LPARAM, LRESULT* plResult) {
        if (uMsg != WM_GETTEXTLENGTH) return 0;
        *plResult = 4711;
        return 1;
    });
    ctrl.AddWndHook(&hook);
    EXPECT_EQ(4711, ::SendMessageW(ctrl.hWnd, WM_GETTEXTLENGTH, 0, 0));
    ctrl.RemoveWndHook(&hook);
}
} // namespace
