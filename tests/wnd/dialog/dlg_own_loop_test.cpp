// Modeless dialogs with a message loop of their own.
#include "support/replace_import.h"
#include "support/test_window.h"
#include "support/window_thread.h"
#include "wnd/dialog/probe_dlg.h"

extern "C" FARPROC __imp_GetMessageW;

namespace {
constexpr UINT kOtherMsg = WM_APP + 9;

struct CSDlgOwnLoop : testing::Test {
    /// Nothing of the test before, nor of this one for the next, may lie in the queue.
    CSDlgOwnLoop() { Drain(); }
    ~CSDlgOwnLoop() override {
        EXPECT_FALSE(TakeThreadMessage(kLoopEnd)) << "an end that a later loop would take";
        Drain();
    }
    static void Drain() {
        MSG msg;
        while (::PeekMessageW(&msg, nullptr, 0, 0, PM_REMOVE)) ::DispatchMessageW(&msg);
    }
    static int Run(ProbeDlg& dlg, ProbeDlg::Act fnInside, HWND hwndParent = nullptr,
                   int bDisable = 1) {
        dlg.onInside = std::move(fnInside);
        return dlg.ModelessWithLoop(bDisable, IDD_DIALOG_PLAIN, nullptr, hwndParent, nullptr);
    }
};

TEST_F(CSDlgOwnLoop, ReturnsWhatCloseDialogWasGiven) {
    ProbeDlg dlg;
    HWND hwndInside = nullptr, hwndCreated = nullptr;
    dlg.onInside = [&](ProbeDlg& d) {
        hwndInside = d;
        EXPECT_EQ(1, d.hasOwnLoop);
        EXPECT_EQ(1, d.isModeless);
        EXPECT_TRUE(::IsWindowVisible(d));
        EXPECT_EQ(hwndInside, hwndCreated) << "told before the loop";
    };
    EXPECT_EQ(7, dlg.ModelessWithLoop(0, IDD_DIALOG_PLAIN, nullptr, nullptr, &hwndCreated));
    EXPECT_NE(nullptr, hwndInside);
    EXPECT_EQ(hwndInside, hwndCreated);
    EXPECT_FALSE(::IsWindow(hwndInside));
    EXPECT_EQ(nullptr, dlg.hWnd);
}

TEST_F(CSDlgOwnLoop, ShowsWhatDoesNotShowItself) {
    ProbeDlg dlg;
    bool bVisible = false;
    dlg.onInside = [&](ProbeDlg& d) { bVisible = ::IsWindowVisible(d); };
    EXPECT_EQ(7, dlg.ModelessWithLoop(0, IDD_DIALOG_HIDDEN, nullptr, nullptr, nullptr));
    EXPECT_TRUE(bVisible);
}

TEST_F(CSDlgOwnLoop, NegativeIdIsTheLibrarys) {
    ProbeDlg dlg;
    dlg.onInside = [](ProbeDlg&) {};
    EXPECT_EQ(7, dlg.ModelessWithLoop(0, -IDD_DIALOG_PLAIN, ::GetModuleHandleW(L"user32.dll"),
                                      nullptr, nullptr));
}

TEST_F(CSDlgOwnLoop, MissingTemplateGivesMinusOneAndLeavesTheOwnerAlone) {
    TestWindow owner;
    ProbeDlg dlg;
    HWND hwndCreated = owner;
    EXPECT_EQ(-1, dlg.ModelessWithLoop(1, 999, nullptr, owner, &hwndCreated));
    EXPECT_TRUE(::IsWindowEnabled(owner));
}

TEST_F(CSDlgOwnLoop, OwnerIsDisabledMeanwhileAndInFrontAgainAfterwards) {
    TestWindow owner;
    ::ShowWindow(owner, SW_SHOW);
    ProbeDlg dlg;
    EXPECT_EQ(7, Run(
                     dlg, [&](ProbeDlg&) { EXPECT_FALSE(::IsWindowEnabled(owner)); }, owner));
    EXPECT_TRUE(::IsWindowEnabled(owner));
    EXPECT_EQ(owner.Get(), ::GetForegroundWindow());
}

TEST_F(CSDlgOwnLoop, OwnerThatWasDisabledBeforeStaysSo) {
    TestWindow owner;
    ::EnableWindow(owner, FALSE);
    ProbeDlg dlg;
    EXPECT_EQ(7, Run(
                     dlg, [&](ProbeDlg&) { EXPECT_FALSE(::IsWindowEnabled(owner)); }, owner));
    EXPECT_FALSE(::IsWindowEnabled(owner));
}

TEST_F(CSDlgOwnLoop, OwnerStaysEnabledUnlessAskedAndComesToTheFront) {
    TestWindow owner;
    ::ShowWindow(owner, SW_SHOW);
    ProbeDlg dlg;
    Run(
        dlg, [&](ProbeDlg&) { EXPECT_TRUE(::IsWindowEnabled(owner)); }, owner, 0);
    EXPECT_TRUE(::IsWindowEnabled(owner));
    EXPECT_EQ(owner.Get(), ::GetForegroundWindow());
}

TEST_F(CSDlgOwnLoop, OwnerOfAChildIsTheTopWindow) {
    TestWindow top;
    TestWindow child(L"STATIC", top, WS_CHILD);
    TestWindow grandchild(L"STATIC", child, WS_CHILD);
    ProbeDlg dlg;
    Run(
        dlg,
        [&](ProbeDlg&) {
            EXPECT_FALSE(::IsWindowEnabled(top));
            EXPECT_EQ(0, ::GetWindowLongW(child, GWL_STYLE) & WS_DISABLED);
        },
        grandchild);
    EXPECT_TRUE(::IsWindowEnabled(top));
}

TEST_F(CSDlgOwnLoop, ClimbEndsAtAPopup) {
    TestWindow top;
    TestWindow popup({}, top, WS_POPUP);
    TestWindow child(L"STATIC", popup, WS_CHILD);
    ASSERT_EQ(top.Get(), ::GetParent(popup)) << "the climb would go on";
    ProbeDlg dlg;
    Run(
        dlg,
        [&](ProbeDlg&) {
            EXPECT_FALSE(::IsWindowEnabled(popup));
            EXPECT_TRUE(::IsWindowEnabled(top));
        },
        child);
    EXPECT_TRUE(::IsWindowEnabled(popup));
}

TEST_F(CSDlgOwnLoop, WithoutAnOwnerThereIsNothingToDisable) {
    for (int bDisable : {0, 1}) {
        ProbeDlg dlg;
        EXPECT_EQ(7, Run(
                         dlg, [](ProbeDlg&) {}, nullptr, bDisable));
    }
}

TEST_F(CSDlgOwnLoop, OwnerThatGoesMeanwhileEndsTheLoop) {
    TestWindow owner;
    ProbeDlg dlg;
    dlg.bStayOpen = true;
    EXPECT_EQ(-1, Run(
                      dlg, [&](ProbeDlg&) { owner.Destroy(); }, owner));
    EXPECT_EQ(nullptr, dlg.hWnd);
}

TEST_F(CSDlgOwnLoop, LoopsNestAndEachEndsWithItsOwnDialog) {
    ProbeDlg outer, inner;
    outer.nCloseWith = 11;
    inner.nCloseWith = 22;
    TestWindow owner;
    EXPECT_EQ(11, Run(
                      outer,
                      [&](ProbeDlg& d) {
                          EXPECT_EQ(22, Run(
                                            inner,
                                            [&](ProbeDlg&) {
                                                EXPECT_FALSE(::IsWindowEnabled(d));
                                                EXPECT_FALSE(::IsWindowEnabled(owner));
                                            },
                                            d));
                          EXPECT_TRUE(::IsWindow(d));
                          EXPECT_TRUE(::IsWindowEnabled(d));
                          EXPECT_FALSE(::IsWindowEnabled(owner));
                      },
                      owner));
    EXPECT_TRUE(::IsWindowEnabled(owner));
}

TEST_F(CSDlgOwnLoop, EndOfTheOuterDialogEndsTheLoopsOfBoth) {
    ProbeDlg outer, inner;
    outer.bStayOpen = inner.bStayOpen = true;
    EXPECT_EQ(33, Run(outer, [&](ProbeDlg& d) {
                  // The inner one is owned by the outer one and goes with it.
                  EXPECT_EQ(-1, Run(
                                    inner, [&](ProbeDlg&) { d.CloseDialog(33, 0); }, d));
                  EXPECT_EQ(nullptr, inner.hWnd);
              }));
}

TEST_F(CSDlgOwnLoop, OuterDialogThatEndsFirstLeavesTheInnerOneRunning) {
    ProbeDlg outer, inner;
    outer.bStayOpen = true;
    inner.nCloseWith = 22;
    EXPECT_EQ(33, Run(outer, [&](ProbeDlg& d) {
                  EXPECT_EQ(
                      22,
                      Run(inner, [&](ProbeDlg& di) { // no owner: it does not go with the outer one
                          HWND hwndOuter = d;
                          d.CloseDialog(33, 0);
                          EXPECT_FALSE(::IsWindow(hwndOuter));
                          PumpUntil([] { return true; });
                          EXPECT_TRUE(::IsWindow(di));
                      }));
              }));
}

TEST_F(CSDlgOwnLoop, EndMessageOfTheThreadEndsTheLoopAndOneOfAWindowDoesNot) {
    ProbeDlg dlg;
    dlg.bStayOpen = true;
    EXPECT_EQ(-1, Run(dlg, [](ProbeDlg& d) {
        d.PostMsg(kLoopEnd, 0, 0);
        d.PostMsg(kOtherMsg, 0, 0);
        ::PostThreadMessageW(::GetCurrentThreadId(), kLoopEnd, 0, 0);
        ::PostThreadMessageW(::GetCurrentThreadId(), WM_APP, 0, 0);
    }));
    EXPECT_EQ(1, dlg.record.CountWnd(kLoopEnd));
    EXPECT_EQ(1, dlg.record.CountWnd(kOtherMsg));
    EXPECT_TRUE(::IsWindow(dlg));
    EXPECT_TRUE(TakeThreadMessage(WM_APP)) << "what stood behind the end is left";
    dlg.Destroy();
    TakeThreadMessage(kLoopEnd);
}

TEST_F(CSDlgOwnLoop, ModalDialogRunsWithin) {
    ProbeDlg outer, inner;
    outer.nCloseWith = 11;
    EXPECT_EQ(11, Run(outer, [&](ProbeDlg& d) {
                  EXPECT_EQ(7, inner.RunModal([](ProbeDlg&) {}, IDD_DIALOG_PLAIN, d));
              }));
}

TEST_F(CSDlgOwnLoop, QuitEndsTheLoopAndIsLeftToTheOuterOne) {
    TestWindow owner;
    ProbeDlg dlg;
    dlg.bStayOpen = true;
    EXPECT_EQ(-1, Run(
                      dlg, [](ProbeDlg&) { ::PostQuitMessage(5); }, owner));
    EXPECT_TRUE(::IsWindowEnabled(owner));
    MSG msg{};
    EXPECT_TRUE(::PeekMessageW(&msg, nullptr, WM_QUIT, WM_QUIT, PM_REMOVE));
    EXPECT_EQ(5u, msg.wParam);
    if (::IsWindow(dlg)) dlg.Destroy();
    TakeThreadMessage(kLoopEnd);
}

TEST_F(CSDlgOwnLoop, QuitEndsNestedLoopsToo) {
    ProbeDlg outer, inner;
    outer.bStayOpen = inner.bStayOpen = true;
    EXPECT_EQ(-1, Run(outer, [&](ProbeDlg& d) {
        EXPECT_EQ(-1, Run(
                          inner, [](ProbeDlg&) { ::PostQuitMessage(6); }, d));
    }));
    MSG msg{};
    EXPECT_TRUE(::PeekMessageW(&msg, nullptr, WM_QUIT, WM_QUIT, PM_REMOVE));
    EXPECT_EQ(6u, msg.wParam);
    for (ProbeDlg* p : {&inner, &outer}) {
        if (::IsWindow(*p)) p->Destroy();
        TakeThreadMessage(kLoopEnd);
    }
}

decltype(GetMessageW)* pfnRealGetMessage = nullptr;
int nFailAfter = 0;
BOOL WINAPI FailingGetMessage(MSG* pMsg, HWND hwnd, UINT uMin, UINT uMax) {
    if (nFailAfter-- <= 0) return -1;
    return pfnRealGetMessage(pMsg, hwnd, uMin, uMax);
}

TEST_F(CSDlgOwnLoop, FailureOfTheQueueEndsTheLoop) {
    TestWindow owner;
    ProbeDlg dlg;
    nFailAfter = 0;
    {
        ReplaceImport replaced(__imp_GetMessageW, &FailingGetMessage);
        pfnRealGetMessage = replaced.Original<decltype(GetMessageW)>();
        EXPECT_EQ(-1, dlg.ModelessWithLoop(1, IDD_DIALOG_PLAIN, nullptr, owner, nullptr));
    }
    EXPECT_TRUE(::IsWindowEnabled(owner));
    if (::IsWindow(dlg)) dlg.Destroy();
    TakeThreadMessage(kLoopEnd);
}

TEST_F(CSDlgOwnLoop, EndIsPostedToTheThreadWhenTheWindowHasGone) {
    ProbeDlg dlg;
    dlg.hasOwnLoop = 1;
    ASSERT_NE(nullptr, dlg.Modeless(IDD_DIALOG_HIDDEN, nullptr, nullptr, 0));
    EXPECT_FALSE(TakeThreadMessage(kLoopEnd));
    dlg.Destroy();
    EXPECT_TRUE(TakeThreadMessage(kLoopEnd));
    EXPECT_FALSE(TakeThreadMessage(kLoopEnd));
}

TEST_F(CSDlgOwnLoop, DialogWithoutAnOwnLoopPostsNoEnd) {
    ProbeDlg dlg;
    ASSERT_NE(nullptr, dlg.Modeless(IDD_DIALOG_HIDDEN, nullptr, nullptr, 0));
    dlg.Destroy();
    ProbeDlg dlgModal;
    dlgModal.RunModal([](ProbeDlg&) {});
    EXPECT_FALSE(TakeThreadMessage(kLoopEnd));
}

TEST_F(CSDlgOwnLoop, OtherWindowsGetTheirMessagesMeanwhile) {
    int nSeen = 0;
    TestWindow other([&](UINT uMsg, WPARAM wParam, LPARAM) -> std::optional<LRESULT> {
        if (uMsg == kOtherMsg) nSeen += static_cast<int>(wParam);
        return {};
    });
    ::PostMessageW(other, kOtherMsg, 3, 0);
    ProbeDlg dlg;
    dlg.bStayOpen = true;
    Run(dlg, [&](ProbeDlg& d) {
        ::PostMessageW(other, kOtherMsg, 4, 0);
        d.PostMsg(WM_COMMAND, IDCANCEL, 0);
    });
    EXPECT_EQ(7, nSeen);
    EXPECT_EQ(2, dlg.result);
}

TEST_F(CSDlgOwnLoop, MessageThatPreTranslateConsumesGoesNoFurther) {
    ProbeDlg dlg;
    std::vector<WPARAM> asked;
    dlg.onPreTranslate = [&](MSG* pMsg) {
        if (pMsg->message != kOtherMsg) return 0;
        asked.push_back(pMsg->wParam);
        return pMsg->wParam == 1 ? -1 : 0;
    };
    dlg.bStayOpen = true;
    Run(dlg, [](ProbeDlg& d) {
        for (WPARAM w : {1, 2, 3}) d.PostMsg(kOtherMsg, w, 0);
        d.PostMsg(WM_COMMAND, IDCANCEL, 0);
    });
    EXPECT_EQ((std::vector<WPARAM>{1, 2, 3}), asked);
    EXPECT_EQ(2, dlg.record.CountWnd(kOtherMsg));
}

TEST_F(CSDlgOwnLoop, KeysAreTheDialogs) {
    // Escape becomes the Cancel button's click in the platform's own dialog code.
    ProbeDlg dlg;
    dlg.bStayOpen = true;
    Run(dlg, [](ProbeDlg& d) { ::PostMessageW(::GetDlgItem(d, IDOK), WM_KEYDOWN, VK_ESCAPE, 0); });
    EXPECT_EQ(1, dlg.record.Count("OnCancel"));
    EXPECT_EQ(2, dlg.result);
}

TEST_F(CSDlgOwnLoop, ClosedFromAnotherThreadsPostedMessage) {
    WindowThread thread;
    ProbeDlg dlg;
    dlg.bStayOpen = true;
    EXPECT_EQ(1, Run(dlg, [&](ProbeDlg& d) {
                  HWND hwnd = d;
                  thread.Post([hwnd] { ::PostMessageW(hwnd, WM_COMMAND, IDOK, 0); });
              }));
}

TEST_F(CSDlgOwnLoop, ClosedFromATimer) {
    ProbeDlg dlg;
    dlg.bStayOpen = true;
    dlg.onDelayed = [](ProbeDlg& d) { d.CloseDialog(44, 0); };
    EXPECT_EQ(44, Run(dlg, [](ProbeDlg& d) { d.DelayAction(1, 10); }));
}

TEST_F(CSDlgOwnLoop, ClosedInsideItsInitialisationDoesNotHangNorEndTheNextLoop) {
    ProbeDlg dlg;
    dlg.onInit = [](ProbeDlg& d) { d.CloseDialog(9, 0); };
    int nResult = dlg.ModelessWithLoop(0, IDD_DIALOG_PLAIN, nullptr, nullptr, nullptr);
    EXPECT_TRUE(nResult == 9 || nResult == -1) << nResult; // -1 where the platform gives no window
    EXPECT_EQ(9, dlg.result);
    EXPECT_EQ(nullptr, dlg.hWnd);
    ProbeDlg next;
    bool bInside = false;
    EXPECT_EQ(7, Run(next, [&](ProbeDlg&) { bInside = true; }));
    EXPECT_TRUE(bInside);
}

TEST_F(CSDlgOwnLoop, RunsOnAThreadOfItsOwn) {
    WindowThread thread;
    int nResult = 0;
    DWORD dwThread = 0;
    thread.Run([&] {
        ProbeDlg dlg;
        dlg.onInside = [&](ProbeDlg& d) { dwThread = ::GetWindowThreadProcessId(d, nullptr); };
        nResult = dlg.ModelessWithLoop(0, IDD_DIALOG_PLAIN, nullptr, nullptr, nullptr);
    });
    EXPECT_EQ(7, nResult);
    EXPECT_EQ(thread.GetId(), dwThread);
}
} // namespace
