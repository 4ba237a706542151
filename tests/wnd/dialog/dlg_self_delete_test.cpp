// Dialog objects that delete themselves with their window, in their own handlers too.
#include "support/test_window.h"
#include "wnd/dialog/probe_dlg.h"

namespace {
constexpr UINT kActMsg = WM_APP + 51;

TEST(CSDlgSelfDelete, ModalGivesItsResultThoughTheObjectHasGone) {
    DlgRecord record;
    auto* pDlg = new MortalDlg(record);
    EXPECT_EQ(7, pDlg->RunModal([](ProbeDlg&) {}));
    EXPECT_EQ(1, record.nDeletes);
}

TEST(CSDlgSelfDelete, OwnLoopGivesItsResultThoughTheObjectHasGone) {
    TestWindow owner;
    ::ShowWindow(owner, SW_SHOW);
    DlgRecord record;
    auto* pDlg = new MortalDlg(record);
    pDlg->onInside = [&](ProbeDlg&) { EXPECT_FALSE(::IsWindowEnabled(owner)); };
    EXPECT_EQ(7, pDlg->ModelessWithLoop(1, IDD_DIALOG_PLAIN, nullptr, owner, nullptr));
    EXPECT_EQ(1, record.nDeletes);
    EXPECT_TRUE(::IsWindowEnabled(owner));
    EXPECT_FALSE(TakeThreadMessage(kLoopEnd));
}

TEST(CSDlgSelfDelete, OwnLoopEndsAlsoWhenTheObjectGoesWithinAnotherLoop) {
    DlgRecord record;
    auto* pDlg = new MortalDlg(record);
    pDlg->bStayOpen = true;
    pDlg->onInside = [](ProbeDlg& d) {
        HWND hwnd = d;
        ProbeDlg inner;
        inner.RunModal([hwnd](ProbeDlg&) { ::DestroyWindow(hwnd); });
    };
    EXPECT_EQ(-1, pDlg->ModelessWithLoop(0, IDD_DIALOG_PLAIN, nullptr, nullptr, nullptr));
    EXPECT_EQ(1, record.nDeletes);
    while (TakeThreadMessage(kLoopEnd)) continue;
}

TEST(CSDlgSelfDelete, ModelessGoesWithItsWindow) {
    DlgRecord record;
    auto* pDlg = new MortalDlg(record);
    HWND hwnd = pDlg->Modeless(IDD_DIALOG_HIDDEN, nullptr, nullptr, 0);
    ASSERT_NE(nullptr, hwnd);
    ::DestroyWindow(hwnd);
    EXPECT_EQ(1, record.nDeletes);
}

TEST(CSDlgSelfDelete, CloseDialogFromOutsideSurvivesIt) {
    DlgRecord record;
    auto* pDlg = new MortalDlg(record);
    ASSERT_NE(nullptr, pDlg->Modeless(IDD_DIALOG_HIDDEN, nullptr, nullptr, 0));
    EXPECT_EQ(1, pDlg->CloseDialog(1, -1));
    EXPECT_EQ(1, record.nDeletes);
}

TEST(CSDlgSelfDelete, OKAndCancelFromOutsideSurviveIt) {
    for (int nId : {IDOK, IDCANCEL}) {
        DlgRecord record;
        auto* pDlg = new MortalDlg(record);
        ASSERT_NE(nullptr, pDlg->Modeless(IDD_DIALOG_HIDDEN, nullptr, nullptr, 0));
        EXPECT_EQ(1, nId == IDOK ? pDlg->OnOK() : pDlg->OnCancel());
        EXPECT_EQ(1, record.nDeletes);
    }
}

TEST(CSDlgSelfDelete, CommandFromOutsideSurvivesIt) {
    DlgRecord record;
    auto* pDlg = new MortalDlg(record);
    ASSERT_NE(nullptr, pDlg->Modeless(IDD_DIALOG_HIDDEN, nullptr, nullptr, 0));
    pDlg->OnDlgMessage(WM_COMMAND, IDOK, 0);
    EXPECT_EQ(1, record.nDeletes);
}

TEST(CSDlgSelfDelete, CommandFromOutsideWhoseButtonDestroysTheWindowSurvivesIt) {
    for (int nId : {IDOK, IDCANCEL, IDC_BUTTON}) {
        DlgRecord record;
        auto* pDlg = new MortalDlg(record);
        ASSERT_NE(nullptr, pDlg->Modeless(IDD_DIALOG_HIDDEN, nullptr, nullptr, 0));
        pDlg->onButton = [](ProbeDlg& d, unsigned short) { ::DestroyWindow(d); };
        pDlg->OnDlgMessage(WM_COMMAND, static_cast<WPARAM>(nId), 0);
        EXPECT_EQ(1, record.nDeletes);
    }
}

TEST(CSDlgSelfDelete, MessageFromOutsideWhoseHookDestroysTheWindowSurvivesIt) {
    struct DestroyingHook : WMHook {
        int OnDlgMessage(CSDlg* pDlg, UINT uMsg, WPARAM, LPARAM, LRESULT*) override {
            if (uMsg == kActMsg) ::DestroyWindow(*pDlg);
            return 0; // those behind are asked, if there is anybody to ask for
        }
    } hook, behind;
    DlgRecord record;
    auto* pDlg = new MortalDlg(record);
    ASSERT_NE(nullptr, pDlg->Modeless(IDD_DIALOG_HIDDEN, nullptr, nullptr, 0));
    pDlg->AddDlgHook(&behind);
    pDlg->AddDlgHook(&hook);
    pDlg->OnDlgMessage(kActMsg, 0, 0);
    EXPECT_EQ(1, record.nDeletes);
}

TEST(CSDlgSelfDelete, HookThatDeletesTheObjectItselfEndsTheMessage) {
    struct DeletingHook : WMHook {
        int OnDlgMessage(CSDlg* pDlg, UINT uMsg, WPARAM, LPARAM, LRESULT*) override {
            if (uMsg == kActMsg) delete static_cast<MortalDlg*>(pDlg);
            return 0;
        }
    } hook;
    DlgRecord record;
    auto* pDlg = new MortalDlg(record);
    ASSERT_NE(nullptr, pDlg->Modeless(IDD_DIALOG_HIDDEN, nullptr, nullptr, 0));
    HWND hwnd = *pDlg;
    pDlg->AddDlgHook(&hook);
    pDlg->OnDlgMessage(kActMsg, 0, 0);
    EXPECT_EQ(1, record.nDeletes);
    EXPECT_TRUE(::IsWindow(hwnd)) << "a destructor destroys no window";
    ::SendMessageW(hwnd, WM_COMMAND, IDOK, 0);
    ::DestroyWindow(hwnd);
}

TEST(CSDlgSelfDelete, ClickOnAButtonThatDestroysTheWindow) {
    DlgRecord record;
    auto* pDlg = new MortalDlg(record);
    HWND hwnd = pDlg->Modeless(IDD_DIALOG_PLAIN, nullptr, nullptr, 1);
    pDlg->onButton = [](ProbeDlg& d, unsigned short) { ::DestroyWindow(d); };
    ::SendMessageW(::GetDlgItem(hwnd, IDOK), BM_CLICK, 0, 0);
    EXPECT_FALSE(::IsWindow(hwnd));
    EXPECT_EQ(1, record.nDeletes);
}

struct DestroyingCase {
    const char* pszName;
    std::function<void(MortalDlg&)> fnArrange;
};
class CSDlgDestroyedIn : public testing::TestWithParam<DestroyingCase> {};
TEST_P(CSDlgDestroyedIn, ObjectGoesWhenItsFramesAreOver) {
    // The template without a font has its initialisation as the first message of the procedure.
    for (int nTemplate : {IDD_DIALOG_PLAIN, IDD_DIALOG_NO_FONT}) {
        for (int nWay = 0; nWay < 3; ++nWay) {
            DlgRecord record;
            auto* pDlg = new MortalDlg(record);
            pDlg->bStayOpen = true;
            GetParam().fnArrange(*pDlg);
            switch (nWay) {
            case 0: {
                // The platform's loop looks whether its window lives when a message has come.
                UINT_PTR uTimer = ::SetTimer(nullptr, 0, 20, nullptr);
                pDlg->Modal(nTemplate, nullptr, nullptr);
                ::KillTimer(nullptr, uTimer);
                break;
            }
            case 1: {
                HWND hwnd = pDlg->Modeless(nTemplate, nullptr, nullptr, 1);
                PumpUntil([&] { return record.nDeletes > 0; }, 2000);
                EXPECT_FALSE(::IsWindow(hwnd));
                break;
            }
            case 2: pDlg->ModelessWithLoop(0, nTemplate, nullptr, nullptr, nullptr); break;
            }
            EXPECT_EQ(1, record.nDeletes) << nTemplate << " " << nWay;
            EXPECT_EQ(1, record.Count("OnPostNcDestroy")) << nTemplate << " " << nWay;
            while (TakeThreadMessage(kLoopEnd)) continue;
        }
    }
}
void DestroyIt(ProbeDlg& d) { ::DestroyWindow(d); }
INSTANTIATE_TEST_SUITE_P(
    Handlers, CSDlgDestroyedIn,
    testing::Values(
        DestroyingCase{"OnInitDialog", [](MortalDlg& d) { d.onInit = DestroyIt; }},
        DestroyingCase{"OnInitDone", [](MortalDlg& d) { d.onInitDone = DestroyIt; }},
        DestroyingCase{"UpdateControls", [](MortalDlg& d) { d.onUpdateControls = DestroyIt; }},
        DestroyingCase{"AnyMessage", [](MortalDlg& d) { d.onInside = DestroyIt; }},
        DestroyingCase{"CanClose",
                       [](MortalDlg& d) {
                           d.onCanClose = DestroyIt;
                           d.onInside = [](ProbeDlg& p) { p.CloseDialog(5, 1); };
                       }},
        DestroyingCase{"DoClose",
                       [](MortalDlg& d) {
                           d.onDoClose = DestroyIt;
                           d.onInside = [](ProbeDlg& p) { p.CloseDialog(5, 1); };
                       }},
        DestroyingCase{"OnButtonClicked",
                       [](MortalDlg& d) {
                           d.onButton = [](ProbeDlg& p, unsigned short) { ::DestroyWindow(p); };
                           d.onInside = [](ProbeDlg& p) { ::SendMessageW(p, WM_COMMAND, IDOK, 0); };
                       }},
        DestroyingCase{"OnDelayedAction",
                       [](MortalDlg& d) {
                           d.onDelayed = DestroyIt;
                           d.onInside = [](ProbeDlg& p) { p.DelayAction(1, 10); };
                       }}),
    [](const auto& row) { return std::string(row.param.pszName); });

TEST(CSDlgSelfDelete, ObjectOfAWindowThatGoesBeforeItsInitialisationIsItsOwners) {
    for (int nWay = 0; nWay < 3; ++nWay) {
        DlgRecord record;
        auto* pDlg = new MortalDlg(record);
        pDlg->onPreInit = DestroyIt;
        switch (nWay) {
        case 0: EXPECT_GE(0, pDlg->Modal(IDD_DIALOG_PLAIN, nullptr, nullptr)); break;
        case 1:
            EXPECT_FALSE(::IsWindow(pDlg->Modeless(IDD_DIALOG_PLAIN, nullptr, nullptr, 1)));
            break;
        case 2:
            EXPECT_EQ(-1, pDlg->ModelessWithLoop(0, IDD_DIALOG_PLAIN, nullptr, nullptr, nullptr));
            break;
        }
        ASSERT_EQ(0, record.nDeletes);
        EXPECT_EQ(nullptr, pDlg->hWnd);
        EXPECT_EQ(1, record.Count("OnPostNcDestroy"));
        delete pDlg;
        EXPECT_FALSE(TakeThreadMessage(kLoopEnd));
    }
}

TEST(CSDlgSelfDelete, HookThatDestroysTheWindow) {
    struct DestroyingHook : WMHook {
        int OnDlgMessage(CSDlg* pDlg, UINT uMsg, WPARAM, LPARAM, LRESULT* plResult) override {
            if (uMsg != kActMsg) return 0;
            ::DestroyWindow(*pDlg);
            *plResult = 3;
            return 1;
        }
    } hook;
    DlgRecord record;
    auto* pDlg = new MortalDlg(record);
    HWND hwnd = pDlg->Modeless(IDD_DIALOG_HIDDEN, nullptr, nullptr, 0);
    pDlg->AddDlgHook(&hook);
    ::SendMessageW(hwnd, kActMsg, 0, 0);
    EXPECT_FALSE(::IsWindow(hwnd));
    EXPECT_EQ(1, record.nDeletes);
}

TEST(CSDlgSelfDelete, ControlsOKMayDestroyTheDialog) {
    struct DestroyingCtrl : CSCtrl {
        void OnOK() override { ::DestroyWindow(::GetParent(hWnd)); }
    } ctrl;
    DlgRecord record;
    auto* pDlg = new MortalDlg(record);
    pDlg->onInit = [&](ProbeDlg& d) { ctrl.Init(&d, IDC_EDIT, nullptr, 0); };
    ASSERT_NE(nullptr, pDlg->Modeless(IDD_DIALOG_ITEMS, nullptr, nullptr, 0));
    pDlg->CloseDialog(1, 1);
    EXPECT_EQ(1, record.nDeletes);
}
} // namespace
