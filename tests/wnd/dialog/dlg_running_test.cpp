// A dialog comes up from a template: modally, modelessly, from memory.
#include "runtime/base/current_product.h"
#include "support/test_window.h"
#include "support/window_thread.h"
#include "wnd/dialog/probe_dlg.h"

namespace {
HINSTANCE OtherModule() { return ::GetModuleHandleW(L"user32.dll"); }

/// The template of IDD_DIALOG_HIDDEN from the program's resources, as memory.
const DLGTEMPLATE* TemplateInMemory(int nId) {
    HRSRC hres = ::FindResourceW(nullptr, MAKEINTRESOURCEW(nId), RT_DIALOG);
    return static_cast<const DLGTEMPLATE*>(::LockResource(::LoadResource(nullptr, hres)));
}

TEST(CSDlgModal, ReturnsAndKeepsWhatCloseDialogWasGiven) {
    ProbeDlg dlg;
    bool bInside = false;
    EXPECT_EQ(42, dlg.RunModal([&](ProbeDlg& d) {
        bInside = true;
        EXPECT_TRUE(::IsWindow(d));
        EXPECT_EQ(0, d.isModeless);
        EXPECT_EQ(0, d.hasOwnLoop);
        d.CloseDialog(42, 0);
    }));
    EXPECT_TRUE(bInside);
    EXPECT_EQ(42, dlg.modalResult);
    EXPECT_EQ(42, dlg.result);
    EXPECT_EQ(nullptr, dlg.hWnd);
    EXPECT_EQ(0, dlg.isModeless);
}

TEST(CSDlgRunning, ObjectThatRunsGetsNoSecondWindow) {
    ProbeDlg dlg;
    EXPECT_EQ(42, dlg.RunModal([](ProbeDlg& d) {
        HWND hwnd = d, hwndCreated = nullptr;
        EXPECT_EQ(nullptr, d.Modeless(IDD_DIALOG_HIDDEN, nullptr, nullptr, 0));
        EXPECT_EQ(-1, d.Modal(IDD_DIALOG_HIDDEN, nullptr, nullptr));
        EXPECT_EQ(-1, d.ModelessWithLoop(0, IDD_DIALOG_HIDDEN, nullptr, nullptr, &hwndCreated));
        EXPECT_EQ(0, d.CreateIndirect(TemplateInMemory(IDD_DIALOG_HIDDEN), nullptr));
        EXPECT_EQ(hwnd, d);
        EXPECT_EQ(0, d.isModeless);
        EXPECT_EQ(0, d.hasOwnLoop);
        d.CloseDialog(42, 0);
    }));
    dlg.isClosed = 0;
    EXPECT_EQ(43, dlg.RunModal([](ProbeDlg& d) { d.CloseDialog(43, 0); })) << "when it has ended";
}

TEST(CSDlgModal, NegativeAndLargeResultsArriveAsTheyAre) {
    for (int nResult : {-5, 0, INT_MAX, INT_MIN}) {
        ProbeDlg dlg;
        dlg.nCloseWith = nResult;
        EXPECT_EQ(nResult, dlg.RunModal([](ProbeDlg&) {}, IDD_DIALOG_HIDDEN));
        EXPECT_EQ(nResult, dlg.modalResult);
    }
}

TEST(CSDlgModal, OperationsComeInTheirOrder) {
    DlgRecord record;
    {
        ProbeDlg dlg(record);
        dlg.RunModal([](ProbeDlg& d) { d.CloseDialog(3, 0); });
    }
    EXPECT_EQ("PreInit; OnInitDialog; OnInitDone; UpdateControls; CanClose 3; DoClose 3; "
              "OnPostNcDestroy",
              record.Only({"PreInit", "OnInitDialog", "OnInitDone", "UpdateControls", "CanClose",
                           "DoClose", "OnPostNcDestroy"}));
    EXPECT_EQ(1, record.nDeletes);
}

TEST(CSDlgModal, StateQuestionsFollowTheRun) {
    ProbeDlg dlg;
    dlg.onInit = [](ProbeDlg& d) { EXPECT_EQ(0, d.IsInitialized()); };
    dlg.onInitDone = [](ProbeDlg& d) {
        EXPECT_EQ(1, d.IsInitialized());
        EXPECT_EQ(0, d.WereControlsUpdated());
        EXPECT_EQ(0, d.IsValid());
    };
    dlg.onUpdateControls = [](ProbeDlg& d) {
        EXPECT_EQ(1, d.inUpdateControls);
        EXPECT_EQ(0, d.WereControlsUpdated());
    };
    dlg.onDoClose = [](ProbeDlg& d) {
        EXPECT_EQ(1, d.IsClosing());
        EXPECT_EQ(0, d.IsClosed());
        EXPECT_EQ(1, d.IsValid());
    };
    dlg.RunModal([](ProbeDlg& d) {
        EXPECT_EQ(0, d.inUpdateControls);
        EXPECT_EQ(1, d.WereControlsUpdated());
        EXPECT_EQ(1, d.IsValid());
        EXPECT_EQ(0, d.IsClosing());
        d.CloseDialog(1, 0);
        EXPECT_EQ(0, d.IsClosing());
        EXPECT_EQ(1, d.IsClosed());
        EXPECT_EQ(0, d.IsValid());
    });
    EXPECT_EQ(1, dlg.IsClosed());
    EXPECT_EQ(0, dlg.IsValid());
}

TEST(CSDlgModal, ObjectIsTiedBeforePreInit) {
    ProbeDlg dlg;
    int nSeen = 0;
    dlg.onPreInit = [&](ProbeDlg& d) {
        ++nSeen;
        ASSERT_NE(nullptr, d.hWnd);
        EXPECT_EQ(static_cast<CSDlg*>(&d), ::GetPropW(d.hWnd, L"CSDLG"));
        EXPECT_EQ(static_cast<CSWnd*>(&d), CSWnd::FromHandle(d.hWnd));
        EXPECT_EQ(static_cast<unsigned>(IDD_DIALOG_PLAIN), d.dlgId);
        EXPECT_EQ(0, d.record.CountDlg(WM_INITDIALOG));
    };
    dlg.RunModal([](ProbeDlg&) {});
    EXPECT_EQ(1, nSeen);
}

TEST(CSDlgModal, ParentAndModuleAreKept) {
    TestWindow parent;
    ProbeDlg dlg;
    dlg.RunModal(
        [&](ProbeDlg& d) {
            EXPECT_EQ(parent.Get(), d.hParent);
            EXPECT_EQ(GetLibraryInstance(), d.hResources) << "a null module is the library";
            EXPECT_FALSE(::IsWindowEnabled(parent));
        },
        IDD_DIALOG_PLAIN, parent);
    EXPECT_TRUE(::IsWindowEnabled(parent));
    EXPECT_EQ(parent.Get(), dlg.hParent);
}

TEST(CSDlgModal, NegativeIdIsTheLibrarysWhateverModuleIsNamed) {
    ProbeDlg dlg;
    bool bInside = false;
    dlg.onInside = [&](ProbeDlg& d) {
        bInside = true;
        EXPECT_EQ(static_cast<unsigned>(IDD_DIALOG_PLAIN), d.dlgId);
        EXPECT_EQ(GetLibraryInstance(), d.hResources);
    };
    EXPECT_EQ(7, dlg.Modal(-IDD_DIALOG_PLAIN, OtherModule(), nullptr));
    EXPECT_TRUE(bInside);
}

TEST(CSDlgModal, PositiveIdIsThatOfTheNamedModule) {
    ProbeDlg dlg;
    EXPECT_EQ(-1, dlg.Modal(IDD_DIALOG_PLAIN, OtherModule(), nullptr));
    EXPECT_EQ(OtherModule(), dlg.hResources);
    EXPECT_TRUE(dlg.record.log.empty());
    ProbeDlg dlgOwn;
    dlgOwn.onInside = [](ProbeDlg&) {};
    EXPECT_EQ(7, dlgOwn.Modal(IDD_DIALOG_HIDDEN, ::GetModuleHandleW(nullptr), nullptr));
}

TEST(CSDlgModal, LowSixteenBitsOfTheIdNameTheTemplate) {
    ProbeDlg dlg;
    dlg.onInside = [](ProbeDlg&) {};
    EXPECT_EQ(7, dlg.Modal(0x50000 + IDD_DIALOG_HIDDEN, nullptr, nullptr));
}

TEST(CSDlgModal, MissingTemplateGivesThePlatformsResultAndShowsNothing) {
    ProbeDlg dlg;
    for (int nId : {999, -999, 0}) {
        __int64 qwResult = dlg.Modal(nId, nullptr, nullptr);
        EXPECT_TRUE(qwResult == -1 || qwResult == 0) << qwResult;
        EXPECT_EQ(qwResult, dlg.modalResult);
    }
    EXPECT_EQ(nullptr, dlg.hWnd);
    EXPECT_EQ(-1, dlg.result);
    EXPECT_TRUE(dlg.record.log.empty());
}

TEST(CSDlgModal, TemplateThatBreaksOffLeavesTheObjectForAnotherRun) {
    ProbeDlg dlg;
    EXPECT_GE(0, dlg.Modal(IDD_DIALOG_BROKEN, nullptr, nullptr));
    EXPECT_EQ(nullptr, dlg.hWnd);
    EXPECT_EQ(nullptr, dlg.Modeless(IDD_DIALOG_BROKEN, nullptr, nullptr, 1));
    EXPECT_EQ(nullptr, dlg.hWnd);
    EXPECT_EQ(0, dlg.record.Count("OnInitDialog"));
    dlg.isModeless = 0;
    EXPECT_EQ(
        7, dlg.RunModal([](ProbeDlg& d) { ::SendMessageW(d, WM_COMMAND, IDC_DIALOG_BUTTON, 0); }));
    EXPECT_EQ(1, dlg.record.Count("OnButtonClicked 1006"));
}

TEST(CSDlgModal, ObjectOfAFailedRunIsNotTiedToTheNextWindow) {
    ProbeDlg dlg;
    dlg.Modal(999, nullptr, nullptr);
    TestWindow stranger;
    EXPECT_EQ(0, CSDlg::ModalProc(stranger, WM_APP, 0, 0));
    EXPECT_EQ(nullptr, ::GetPropW(stranger, L"CSDLG"));
    EXPECT_EQ(nullptr, CSWnd::FromHandle(stranger));
    EXPECT_EQ(nullptr, dlg.hWnd);
}

TEST(CSDlgModal, RunsInsideAnother) {
    ProbeDlg outer, inner;
    outer.nCloseWith = 11;
    inner.nCloseWith = 22;
    outer.RunModal([&](ProbeDlg& d) {
        EXPECT_EQ(22, inner.RunModal(
                          [&](ProbeDlg& di) {
                              EXPECT_NE(d.hWnd, di.hWnd);
                              EXPECT_FALSE(::IsWindowEnabled(d));
                          },
                          IDD_DIALOG_PLAIN, d));
        EXPECT_TRUE(::IsWindowEnabled(d));
        EXPECT_EQ(static_cast<CSDlg*>(&d), ::GetPropW(d.hWnd, L"CSDLG"));
    });
    EXPECT_EQ(11, outer.modalResult);
    EXPECT_EQ(22, inner.modalResult);
}

TEST(CSDlgModal, ThreadsRunTheirDialogsAtTheSameTime) {
    constexpr int kRounds = 15;
    std::atomic<int> nGood{0};
    auto runAll = [&](int nBase) {
        for (int n = 0; n < kRounds; ++n) {
            DlgRecord record;
            ProbeDlg dlg(record);
            dlg.nCloseWith = nBase + n;
            bool bOwn = false;
            dlg.onPreInit = [&](ProbeDlg& d) {
                bOwn = ::GetWindowThreadProcessId(d.hWnd, nullptr) == ::GetCurrentThreadId();
            };
            __int64 qwResult = dlg.RunModal([](ProbeDlg&) {}, IDD_DIALOG_HIDDEN);
            nGood += bOwn && qwResult == nBase + n;
        }
    };
    WindowThread thread;
    std::atomic<bool> bDone{false};
    thread.Post([&] {
        runAll(1000);
        bDone = true;
    });
    runAll(2000);
    EXPECT_TRUE(WaitUntil([&] { return bDone.load(); }));
    EXPECT_EQ(2 * kRounds, nGood);
}

TEST(CSDlgModeless, GivesTheWindowAndReturnsAtOnce) {
    TestWindow parent;
    ProbeDlg dlg;
    HWND hwnd = dlg.Modeless(IDD_DIALOG_HIDDEN, nullptr, parent, 0);
    ASSERT_NE(nullptr, hwnd);
    EXPECT_EQ(hwnd, dlg.hWnd);
    EXPECT_EQ(1, dlg.isModeless);
    EXPECT_EQ(0, dlg.hasOwnLoop);
    EXPECT_EQ(parent.Get(), dlg.hParent);
    EXPECT_EQ(static_cast<unsigned>(IDD_DIALOG_HIDDEN), dlg.dlgId);
    EXPECT_EQ(GetLibraryInstance(), dlg.hResources);
    EXPECT_TRUE(::IsWindowEnabled(parent));
    EXPECT_FALSE(::IsWindowVisible(hwnd));
    EXPECT_EQ(0, dlg.record.Count("UpdateControls")) << "it has not been shown";
    dlg.Destroy();
    EXPECT_EQ(nullptr, dlg.hWnd);
}

TEST(CSDlgModeless, ShowsAndPaintsWhenAsked) {
    ProbeDlg dlg;
    HWND hwnd = dlg.Modeless(IDD_DIALOG_HIDDEN, nullptr, nullptr, 1);
    EXPECT_TRUE(::IsWindowVisible(hwnd));
    EXPECT_FALSE(::GetUpdateRect(hwnd, nullptr, FALSE));
    EXPECT_EQ(1, dlg.record.Count("UpdateControls"));
    dlg.Destroy();
}

TEST(CSDlgModeless, StartHiddenGoesBeforeShow) {
    ProbeDlg dlg;
    dlg.SetFlags(kDlgStartHidden, 1);
    HWND hwnd = dlg.Modeless(IDD_DIALOG_HIDDEN, nullptr, nullptr, 1);
    ASSERT_NE(nullptr, hwnd);
    EXPECT_FALSE(::IsWindowVisible(hwnd));
    dlg.Destroy();
    ProbeDlg dlgVisible; // what the platform has shown is hidden again
    dlgVisible.SetFlags(kDlgStartHidden, 1);
    hwnd = dlgVisible.Modeless(IDD_DIALOG_PLAIN, nullptr, nullptr, 1);
    EXPECT_FALSE(::IsWindowVisible(hwnd));
    dlgVisible.Destroy();
}

TEST(CSDlgModeless, NegativeIdIsTheLibrarys) {
    ProbeDlg dlg;
    EXPECT_NE(nullptr, dlg.Modeless(-IDD_DIALOG_HIDDEN, OtherModule(), nullptr, 0));
    EXPECT_EQ(static_cast<unsigned>(IDD_DIALOG_HIDDEN), dlg.dlgId);
    EXPECT_EQ(GetLibraryInstance(), dlg.hResources);
    dlg.Destroy();
}

TEST(CSDlgModeless, MissingTemplateGivesNull) {
    ProbeDlg dlg;
    EXPECT_EQ(nullptr, dlg.Modeless(999, nullptr, nullptr, 1));
    EXPECT_EQ(nullptr, dlg.Modeless(IDD_DIALOG_PLAIN, OtherModule(), nullptr, 1));
    EXPECT_EQ(nullptr, dlg.hWnd);
    EXPECT_TRUE(dlg.record.log.empty());
}

TEST(CSDlgModeless, PageIsAChildOfItsParent) {
    OpenDlg top(IDD_DIALOG_HIDDEN);
    ProbeDlg page;
    page.isChildDlg = 1;
    HWND hwnd = page.Modeless(IDD_DIALOG_PAGE, nullptr, top, 0);
    ASSERT_NE(nullptr, hwnd);
    EXPECT_EQ(top.hWnd, ::GetParent(hwnd));
    EXPECT_EQ(1, page.IsChildDlg());
    page.Destroy();
}

TEST(CSDlgIndirect, ComesFromMemoryWithoutAnIdAndWithoutBeingModeless) {
    TestWindow parent;
    ProbeDlg dlg;
    EXPECT_EQ(1, dlg.CreateIndirect(TemplateInMemory(IDD_DIALOG_HIDDEN), parent));
    ASSERT_NE(nullptr, dlg.hWnd);
    EXPECT_EQ(0u, dlg.dlgId);
    EXPECT_EQ(0, dlg.isModeless);
    EXPECT_EQ(parent.Get(), dlg.hParent);
    EXPECT_EQ(GetLibraryInstance(), dlg.hResources);
    EXPECT_EQ(1, dlg.record.Count("OnInitDialog"));
    EXPECT_FALSE(::IsWindowVisible(dlg));
    EXPECT_NE(nullptr, ::GetDlgItem(dlg, IDOK));
    dlg.Destroy();
    EXPECT_EQ(nullptr, dlg.hWnd);
}

TEST(CSDlgRun, DialogFromMemoryIsOnlyHiddenByCloseDialog) {
    ProbeDlg dlg;
    ASSERT_EQ(1, dlg.CreateIndirect(TemplateInMemory(IDD_DIALOG_HIDDEN), nullptr));
    HWND hwnd = dlg;
    ::ShowWindow(hwnd, SW_SHOW);
    EXPECT_EQ(1, dlg.CloseDialog(5, 0));
    EXPECT_EQ(5, dlg.result);
    EXPECT_EQ(1, dlg.isClosed);
    EXPECT_TRUE(::IsWindow(hwnd));
    EXPECT_FALSE(::IsWindowVisible(hwnd));
    ::DestroyWindow(hwnd);
    EXPECT_EQ(nullptr, dlg.hWnd);
}

TEST(CSDlgIndirect, NoTemplateGivesZero) {
    ProbeDlg dlg;
    EXPECT_EQ(0, dlg.CreateIndirect(nullptr, nullptr));
    EXPECT_EQ(nullptr, dlg.hWnd);
}

TEST(CSDlgShow, ControlsAreUpdatedAtTheFirstShowOnly) {
    OpenDlg dlg(IDD_DIALOG_HIDDEN);
    int nInside = 0;
    dlg.onUpdateControls = [&](ProbeDlg& d) { nInside += d.inUpdateControls; };
    for (int n = 0; n < 3; ++n) {
        ::ShowWindow(dlg, SW_SHOW);
        ::ShowWindow(dlg, SW_HIDE);
    }
    EXPECT_EQ(1, dlg.record.Count("UpdateControls"));
    EXPECT_EQ(1, nInside);
    EXPECT_EQ(0, dlg.inUpdateControls);
    EXPECT_EQ(1, dlg.controlsUpdated);
    EXPECT_EQ(3, dlg.record.Count("OnShowWindow 1 0"));
}

TEST(CSDlgShow, ShowWithinUpdateControlsIsNoSecondCall) {
    OpenDlg dlg(IDD_DIALOG_HIDDEN);
    dlg.onUpdateControls = [](ProbeDlg& d) {
        if (d.record.Count("UpdateControls") < 3) ::SendMessageW(d, WM_SHOWWINDOW, 1, 0);
    };
    ::ShowWindow(dlg, SW_SHOW);
    EXPECT_EQ(1, dlg.controlsUpdated);
    EXPECT_EQ(1, dlg.record.Count("UpdateControls"));
}

TEST(CSDlgInit, PlatformGivesTheFirstControlTheFocus) {
    // The result of OnInitDialog goes to the platform: 1 has it set the focus.
    ProbeDlg dlg;
    dlg.RunModal([](ProbeDlg& d) { EXPECT_EQ(::GetDlgItem(d, IDOK), ::GetFocus()); });
}

TEST(CSDlgInit, DialogComesToTheForeground) {
    ProbeDlg dlg;
    dlg.RunModal([](ProbeDlg& d) { EXPECT_EQ(d.hWnd, ::GetForegroundWindow()); });
}

TEST(CSDlgInit, PageLeavesTheForegroundAlone) {
    OpenDlg top(IDD_DIALOG_HIDDEN, nullptr, 1);
    TestWindow other;
    ::ShowWindow(other, SW_SHOW);
    ::SetForegroundWindow(other);
    ProbeDlg page;
    page.isChildDlg = 1;
    page.Modeless(IDD_DIALOG_PAGE, nullptr, top, 0);
    EXPECT_EQ(other.Get(), ::GetForegroundWindow());
    page.Destroy();
}
} // namespace
