// The dialog object by itself: what it starts with, and what its operations do when nobody
// overrides them.
#include "wnd/dialog/probe_dlg.h"

namespace {
TEST(CSDlgObject, StartsWithoutWindowAndWithItsHookInBothChains) {
    ProbeDlg dlg;
    EXPECT_EQ(1, dlg.isDlg);
    EXPECT_EQ(0, dlg.isCtrl);
    EXPECT_EQ(nullptr, dlg.hWnd);
    EXPECT_EQ(0, dlg.autoDelete);
    EXPECT_EQ(kDlgCentered, dlg.alignMode);
    EXPECT_EQ(1, dlg.alignMode);
    EXPECT_EQ(1, dlg.ctrlGroupsMeasured);
    EXPECT_EQ(0xFFFFFFFFu, dlg.bkgColor);
    EXPECT_EQ(0xFFFFFFFFu, dlg.textColor);
    EXPECT_EQ(0xFFFFFFFFu, dlg.thirdColor);
    EXPECT_EQ(-1, dlg.result);
    ASSERT_EQ(1, dlg.hooks.GetCount());
    EXPECT_EQ(static_cast<WMHook*>(&dlg.msgHandler), dlg.hooks.GetHead());
    ASSERT_EQ(1, dlg.dlgHooks.GetCount());
    EXPECT_EQ(static_cast<WMHook*>(&dlg.msgHandler), dlg.dlgHooks.GetHead());
    EXPECT_EQ(1u, dlg.delayTimer.GetID());
    EXPECT_EQ(0, dlg.delayTimer.IsTicking());
}

TEST(CSDlgObject, EverythingElseStartsAsNothing) {
    ProbeDlg dlg;
    EXPECT_EQ(nullptr, dlg.bkgBrush);
    EXPECT_EQ(nullptr, dlg.hResources);
    EXPECT_EQ(nullptr, dlg.hParent);
    EXPECT_EQ(nullptr, dlg.dragger);
    EXPECT_EQ(nullptr, dlg.placement);
    EXPECT_EQ(0, dlg.modalResult);
    EXPECT_EQ(0u, dlg.dlgId);
    EXPECT_EQ(0u, dlg.helpId);
    EXPECT_EQ(0, dlg.activationTag);
    EXPECT_EQ(0u, dlg.flags);
    EXPECT_EQ(0u, dlg.delayedAction);
    EXPECT_TRUE(dlg.ctrlGroups.IsEmpty());
    for (int n : {dlg.isModeless, dlg.hasOwnLoop, dlg.controlsUpdated, dlg.isChildDlg,
                  dlg.inUpdateControls, dlg.isInitialized, dlg.isClosing, dlg.isClosed,
                  dlg.dlgMsgDepth, dlg.dlgHooksRemovalPending, dlg.dataUpdated, dlg.curWidth,
                  dlg.curHeight, dlg.minWidth, dlg.minHeight, dlg.prevWidth, dlg.prevHeight}) {
        EXPECT_EQ(0, n);
    }
}

TEST(CSDlgObject, ConstructorsArgumentMeansNothing) {
    int nAnything = 5;
    CSDlg dlg(&nAnything);
    CSDlg dlgNull(nullptr);
    EXPECT_EQ(0, dlg.IsReady());
    EXPECT_EQ(0, dlgNull.IsReady());
    EXPECT_EQ(5, nAnything);
}

TEST(CSDlgObject, IsADialogAndAWindow) {
    CSDlg dlg;
    EXPECT_TRUE(dlg.IsKindOf(L"CSDlg"));
    EXPECT_TRUE(dlg.IsKindOf(L"CSWnd"));
    EXPECT_FALSE(dlg.IsKindOf(L"CSCtrl"));
    EXPECT_FALSE(dlg.IsKindOf(L"csdlg"));
    EXPECT_FALSE(dlg.IsKindOf(L""));
    EXPECT_TRUE(dlg.IsDlg());
    EXPECT_FALSE(dlg.IsCtrl());
}

TEST(CSDlgObject, StateQuestionsOfAFreshObjectAreAllNo) {
    CSDlg dlg;
    EXPECT_EQ(0, dlg.IsInitialized());
    EXPECT_EQ(0, dlg.IsClosed());
    EXPECT_EQ(0, dlg.IsClosing());
    EXPECT_EQ(0, dlg.WereControlsUpdated());
    EXPECT_EQ(0, dlg.IsValid());
    EXPECT_EQ(0, dlg.IsSkinSet());
    EXPECT_EQ(0, dlg.IsChildDlg());
}

TEST(CSDlgObject, IsValidNeedsInitialisedShownAndNotClosed) {
    ProbeDlg dlg;
    for (int nBits = 0; nBits < 8; ++nBits) {
        dlg.isInitialized = nBits & 1;
        dlg.controlsUpdated = (nBits >> 1) & 1;
        dlg.isClosed = (nBits >> 2) & 1;
        EXPECT_EQ(nBits == 3, dlg.IsValid() != 0) << nBits;
        EXPECT_EQ(dlg.isInitialized, dlg.IsInitialized());
        EXPECT_EQ(dlg.controlsUpdated, dlg.WereControlsUpdated());
        EXPECT_EQ(dlg.isClosed, dlg.IsClosed());
    }
    dlg.isClosing = 1;
    EXPECT_EQ(1, dlg.IsClosing());
}

TEST(CSDlgObject, FlagsHaveTheirValues) {
    EXPECT_EQ(0x1u, kDlgResizeWidth);
    EXPECT_EQ(0x2u, kDlgResizeHeight);
    EXPECT_EQ(0x4u, kDlgNoCorner);
    EXPECT_EQ(0x8u, kDlgShowsItself);
    EXPECT_EQ(0x10u, kDlgFixedWidth);
    EXPECT_EQ(0x20u, kDlgFixedHeight);
    EXPECT_EQ(0x100u, kDlgResizeEdges);
    EXPECT_EQ(0x400u, kDlgTopmostAtStart);
    EXPECT_EQ(0x40000000u, kDlgKeepBodyCursor);
    EXPECT_EQ(0x80000000u, kDlgStartHidden);
    EXPECT_EQ(2, kDlgCascaded);
    EXPECT_EQ(3, kDlgAtMouse);
}

TEST(CSDlgObject, SetFlagsSetsAndClearsTheBitsOfTheMaskAlone) {
    ProbeDlg dlg;
    dlg.SetFlags(0x80000401, 1);
    EXPECT_EQ(0x80000401u, dlg.flags);
    dlg.SetFlags(0x10, 1);
    EXPECT_EQ(0x80000411u, dlg.flags);
    dlg.SetFlags(0x401, 0);
    EXPECT_EQ(0x80000010u, dlg.flags);
    dlg.SetFlags(0, 1);
    dlg.SetFlags(0, 0);
    EXPECT_EQ(0x80000010u, dlg.flags);
    EXPECT_TRUE(dlg.IsFlag(0x80000000));
    EXPECT_TRUE(dlg.IsFlag(0x10));
    EXPECT_FALSE(dlg.IsFlag(0x1));
    EXPECT_FALSE(dlg.IsFlag(0x400));
    dlg.SetFlags(0x2, -5); // any non-zero
    EXPECT_TRUE(dlg.IsFlag(0x2));
}

TEST(CSDlgDefaults, QuestionsAreAnsweredWithNoOrNothing) {
    ProbeDlg dlg;
    MSG msg{};
    EXPECT_EQ(0, dlg.CSDlg::PreTranslateMessage(&msg));
    __int64 qwResult = 99;
    EXPECT_EQ(0, dlg.CSDlg::OnMyCompanyMsg(1, 2, &qwResult));
    EXPECT_EQ(99, qwResult);
    EXPECT_EQ(0, dlg.CSDlg::OnSysCommand(SC_CLOSE, 1, 2));
    wchar_t szTip[80] = L"as it was";
    EXPECT_EQ(0, dlg.CSDlg::GetTootTip(5u, szTip, 80u));
    EXPECT_STREQ(L"as it was", szTip);
    HINSTANCE hinst = reinterpret_cast<HINSTANCE>(0x1234);
    unsigned short nString = 17;
    EXPECT_EQ(0, dlg.CSDlg::GetTootTip(5u, hinst, nString));
    EXPECT_EQ(reinterpret_cast<HINSTANCE>(0x1234), hinst);
    EXPECT_EQ(17, nString);
    EXPECT_EQ(nullptr, dlg.CSDlg::GetHtmlPage(0));
}

TEST(CSDlgDefaults, ClosingAndUpdatingAreAllowed) {
    ProbeDlg dlg;
    EXPECT_EQ(1, dlg.CSDlg::UpdateControls());
    EXPECT_EQ(0, dlg.controlsUpdated) << "who calls it sets that";
    EXPECT_EQ(1, dlg.CSDlg::UpdateData());
    EXPECT_EQ(1, dlg.dataUpdated);
    EXPECT_EQ(1, dlg.CSDlg::CanClose(2));
    EXPECT_EQ(0, dlg.isClosed);
    dlg.CSDlg::DoClose(2);
    EXPECT_EQ(1, dlg.isClosed);
    EXPECT_EQ(-1, dlg.result);
}

TEST(CSDlgDefaults, NotificationsDoNothing) {
    ProbeDlg dlg;
    dlg.CSDlg::PreInit();
    dlg.CSDlg::OnEnable(1);
    dlg.CSDlg::OnButtonClicked(1);
    dlg.CSDlg::OnComboSelChanged(1);
    dlg.CSDlg::OnDeleteItem(1, nullptr);
    dlg.CSDlg::OnHtmlHelpError(L"page");
    dlg.CSDlg::OnHtmlHelpError(nullptr);
    dlg.CSDlg::OnResize(5, 5);
    RECT rc{1, 2, 3, 4};
    dlg.CSDlg::OnInitRect(rc);
    EXPECT_EQ(1, rc.left);
    EXPECT_EQ(4, rc.bottom);
    dlg.CSDlg::OnMouseMove(0, -1, -1);
    dlg.CSDlg::EnsureDlgItemVisible(nullptr);
    EXPECT_TRUE(dlg.record.log.empty());
    EXPECT_EQ(-1, dlg.result);
}

TEST(CSDlgDefaults, OnDelayedActionEndsTheWaiting) {
    OpenDlg dlg(IDD_DIALOG_HIDDEN);
    dlg.DelayAction(77, 60000);
    ASSERT_EQ(77u, dlg.delayedAction);
    dlg.CSDlg::OnDelayedAction(77);
    EXPECT_EQ(0u, dlg.delayedAction);
    EXPECT_EQ(0, dlg.delayTimer.IsTicking());
}

TEST(CSDlgDefaults, SettingChangeReachesTheControlsObjects) {
    struct SettingCtrl : CSCtrl {
        void OnSystemSettingChange(WPARAM wParam, LPARAM lParam) override {
            wSeen = wParam;
            lSeen = lParam;
        }
        WPARAM wSeen = 0;
        LPARAM lSeen = 0;
    } ctrl;
    ProbeDlg dlg;
    dlg.onInit = [&](ProbeDlg& d) { ctrl.Init(&d, IDOK, nullptr, 0); };
    ASSERT_NE(nullptr, dlg.Modeless(IDD_DIALOG_HIDDEN, nullptr, nullptr, 0));
    ::SendMessageW(dlg, WM_SETTINGCHANGE, 42, 0);
    EXPECT_EQ(42u, ctrl.wSeen);
    dlg.CSDlg::OnSystemSettingChange(43, 44);
    EXPECT_EQ(43u, ctrl.wSeen);
    EXPECT_EQ(44, ctrl.lSeen);
    dlg.Destroy();
}
} // namespace
