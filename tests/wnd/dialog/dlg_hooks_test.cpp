// The chain of hooks for the messages of the dialog procedure.
#include "wnd/dialog/probe_dlg.h"

#include <list>
#include <memory>
#include <random>

namespace {
constexpr UINT kMsg = WM_APP + 21;

/// Writes its letter down and then does what it is told.
struct LetterHook : WMHook {
    LetterHook(std::string& strCalls, char chNew) : calls(strCalls), ch(chNew) {}
    int OnDlgMessage(CSDlg* pDlg, UINT uMsg, WPARAM wParam, LPARAM lParam,
                     LRESULT* plResult) override {
        if (uMsg != uWatched) return 0;
        calls += ch;
        wSeen = wParam;
        lSeen = lParam;
        lAtStart = *plResult;
        pSeen = pDlg;
        return act ? act(pDlg, plResult) : 0;
    }
    std::string& calls;
    char ch;
    UINT uWatched = kMsg;
    WPARAM wSeen = 0;
    LPARAM lSeen = 0;
    LRESULT lAtStart = -1;
    CSDlg* pSeen = nullptr;
    std::function<int(CSDlg*, LRESULT*)> act;
};

struct CSDlgHooks : testing::Test {
    ~CSDlgHooks() override { dlg.RemoveAllDlgHooks(); }
    /// So that a is asked first.
    void AddAll() {
        for (auto* p : {&c, &b, &a}) dlg.AddDlgHook(p);
    }
    std::string Send(LRESULT* plResult = nullptr) {
        calls.clear();
        LRESULT lResult = ::SendMessageW(dlg, kMsg, 5, 6);
        if (plResult) *plResult = lResult;
        return calls;
    }
    std::string Do(WMHook* pAfter, LRESULT* plResult = nullptr) {
        calls.clear();
        LRESULT lResult = dlg.DoDlgMessage(kMsg, 5, 6, pAfter);
        if (plResult) *plResult = lResult;
        return calls;
    }
    OpenDlg dlg{IDD_DIALOG_HIDDEN};
    std::string calls;
    LetterHook a{calls, 'a'}, b{calls, 'b'}, c{calls, 'c'}, d{calls, 'd'};
};

TEST_F(CSDlgHooks, LastAddedIsAskedFirst) {
    AddAll();
    EXPECT_EQ("abc", Send());
    EXPECT_EQ("abc", Do(nullptr));
    EXPECT_EQ(4, dlg.dlgHooks.GetCount()) << "the built-in one is behind them";
    EXPECT_EQ(static_cast<WMHook*>(&dlg.msgHandler), dlg.dlgHooks.GetTail());
}

TEST_F(CSDlgHooks, HooksOwnSideSaysTheSame) {
    c.AddToDlg(&dlg);
    b.AddToDlg(&dlg);
    a.AddToDlg(&dlg);
    EXPECT_EQ("abc", Send());
    b.RemoveFromDlg(&dlg);
    EXPECT_EQ("ac", Send());
    b.RemoveFromDlg(&dlg);
    EXPECT_EQ("ac", Send());
}

TEST_F(CSDlgHooks, ArgumentsArriveAsTheyAre) {
    AddAll();
    ::SendMessageW(dlg, kMsg, 0xFEDCBA9876543210, -0x123456789AB);
    EXPECT_EQ(0xFEDCBA9876543210, a.wSeen);
    EXPECT_EQ(-0x123456789AB, a.lSeen);
    EXPECT_EQ(0, a.lAtStart);
    EXPECT_EQ(static_cast<CSDlg*>(&dlg), a.pSeen);
}

TEST_F(CSDlgHooks, NonZeroStopsThoseBehindAndGivesTheResult) {
    AddAll();
    for (int nStop : {1, -1, INT_MIN}) {
        b.act = [nStop](CSDlg*, LRESULT* pl) {
            *pl = 44;
            return nStop;
        };
        LRESULT lResult = 0;
        EXPECT_EQ("ab", Send(&lResult));
        EXPECT_EQ(44, lResult);
        EXPECT_EQ("ab", Do(nullptr, &lResult));
        EXPECT_EQ(44, lResult);
    }
}

TEST_F(CSDlgHooks, ResultIsInTheDialogsSlotAndThatOfTheProcedure) {
    dlg.AddDlgHook(&a);
    a.act = [](CSDlg*, LRESULT* pl) {
        *pl = 0x123456789A;
        return 1;
    };
    EXPECT_EQ(0x123456789A, dlg.OnDlgMessage(kMsg, 0, 0));
    EXPECT_EQ(0x123456789A, ::GetWindowLongPtrW(dlg, DWLP_MSGRESULT));
    a.act = [](CSDlg*, LRESULT* pl) {
        *pl = 71;
        return 1;
    };
    EXPECT_EQ(71, CSDlg::ModalProc(dlg, kMsg, 0, 0));
    EXPECT_EQ(71, ::GetWindowLongPtrW(dlg, DWLP_MSGRESULT));
    a.act = nullptr;
    EXPECT_EQ(0, CSDlg::ModalProc(dlg, kMsg, 0, 0));
    EXPECT_EQ(0, ::GetWindowLongPtrW(dlg, DWLP_MSGRESULT));
}

TEST_F(CSDlgHooks, AfterAsksOnlyThoseBehind) {
    AddAll();
    EXPECT_EQ("bc", Do(&a));
    EXPECT_EQ("c", Do(&b));
    EXPECT_EQ("", Do(&c));
    EXPECT_EQ("", Do(&d)) << "one that is not in the chain";
}

TEST_F(CSDlgHooks, BuiltInOneIsBehindTheLastAdded) {
    a.uWatched = WM_COMMAND;
    a.act = [&](CSDlg* p, LRESULT* pl) {
        *pl = p->DoDlgMessage(WM_COMMAND, IDC_BUTTON, 0, &a);
        EXPECT_EQ(1, dlg.record.Count("OnButtonClicked 1006"));
        return 1;
    };
    dlg.AddDlgHook(&a);
    ::SendMessageW(dlg, WM_COMMAND, IDC_BUTTON, 0);
    EXPECT_EQ(1, dlg.record.Count("OnButtonClicked 1006"));
}

TEST_F(CSDlgHooks, HookInFrontKeepsMessagesFromTheDialog) {
    a.uWatched = WM_COMMAND;
    a.act = [](CSDlg*, LRESULT*) { return 1; };
    dlg.AddDlgHook(&a);
    ::SendMessageW(dlg, WM_COMMAND, IDOK, 0);
    EXPECT_EQ("", dlg.record.Only({"OnCommand", "OnOK"}));
    dlg.RemoveDlgHook(&a);
    ::SendMessageW(dlg, WM_COMMAND, IDC_BUTTON, 0);
    EXPECT_EQ(1, dlg.record.Count("OnCommand 1006 0 0"));
}

TEST_F(CSDlgHooks, HookBehindGetsWhatTheDialogHasNotHandled) {
    dlg.RemoveDlgHook(&dlg.msgHandler);
    dlg.AddDlgHook(&a);
    dlg.AddDlgHook(&dlg.msgHandler);
    a.uWatched = WM_COMMAND;
    ::SendMessageW(dlg, WM_COMMAND, IDC_BUTTON, 0); // OnCommand gives 0
    EXPECT_EQ("a", calls);
    dlg.qwCommand = 1;
    ::SendMessageW(dlg, WM_COMMAND, IDC_BUTTON, 0);
    EXPECT_EQ("a", calls) << "handled";
    EXPECT_EQ("OnCommand 1006 0 0; OnCommand 1006 0 0", dlg.record.Only({"OnCommand"}));
}

TEST_F(CSDlgHooks, DialogWithoutItsBuiltInHookIsDeaf) {
    dlg.RemoveDlgHook(&dlg.msgHandler);
    ::SendMessageW(dlg, WM_COMMAND, IDOK, 0);
    EXPECT_EQ("", dlg.record.Only({"OnCommand"}));
    dlg.AddDlgHook(&dlg.msgHandler);
    ::SendMessageW(dlg, WM_COMMAND, IDC_BUTTON, 0);
    EXPECT_EQ(1, dlg.record.Count("OnCommand 1006 0 0"));
}

TEST_F(CSDlgHooks, HookThatTakesItselfOffWhileItRuns) {
    AddAll();
    a.act = [&](CSDlg* p, LRESULT*) {
        p->RemoveDlgHook(&a);
        return 0;
    };
    EXPECT_EQ("abc", Send());
    EXPECT_EQ("bc", Send());
    EXPECT_EQ(3, dlg.dlgHooks.GetCount()) << "no empty entry stays";
}

TEST_F(CSDlgHooks, HookThatTakesTheNextOnesOffWhileItRuns) {
    AddAll();
    a.act = [&](CSDlg* p, LRESULT*) {
        p->RemoveDlgHook(&b);
        p->RemoveDlgHook(&c);
        return 0;
    };
    EXPECT_EQ("a", Send());
    EXPECT_EQ(2, dlg.dlgHooks.GetCount());
}

TEST_F(CSDlgHooks, HookThatGoesWhileItRunsMayBeFreed) {
    auto pHook = std::make_unique<LetterHook>(calls, 'x');
    pHook->act = [&](CSDlg* p, LRESULT*) {
        p->RemoveDlgHook(pHook.get());
        return 0;
    };
    AddAll();
    dlg.AddDlgHook(pHook.get());
    EXPECT_EQ("xabc", Send());
    pHook.reset();
    EXPECT_EQ("abc", Send());
}

TEST_F(CSDlgHooks, HookAddedWhileAnotherRunsIsAskedNextTime) {
    dlg.AddDlgHook(&b);
    b.act = [&](CSDlg* p, LRESULT*) {
        if (calls == "b") p->AddDlgHook(&a);
        return 0;
    };
    EXPECT_EQ("b", Send());
    EXPECT_EQ("ab", Send());
}

TEST_F(CSDlgHooks, RemoveAllWithinAHookWaitsForTheOutermostDispatch) {
    AddAll();
    int nInside = -1;
    b.act = [&](CSDlg* p, LRESULT*) {
        p->RemoveAllDlgHooks();
        EXPECT_EQ(1, dlg.dlgHooksRemovalPending != 0);
        nInside = dlg.dlgHooks.GetCount();
        return 0;
    };
    EXPECT_EQ("abc", Send());
    EXPECT_EQ(4, nInside);
    EXPECT_TRUE(dlg.dlgHooks.IsEmpty());
    EXPECT_EQ(0, dlg.dlgHooksRemovalPending);
    EXPECT_EQ("", Send());
}

TEST_F(CSDlgHooks, RemoveAllWithinANestedDispatchWaitsForTheOuterOne) {
    AddAll();
    int nLevel = 0, nAfterInner = -1;
    a.act = [&](CSDlg*, LRESULT*) {
        if (++nLevel == 1) {
            ::SendMessageW(dlg, kMsg, 5, 6);
            nAfterInner = dlg.dlgHooks.GetCount();
        } else {
            EXPECT_EQ(2, dlg.dlgMsgDepth);
            dlg.RemoveAllDlgHooks();
        }
        return 0;
    };
    EXPECT_EQ("aabcbc", Send());
    EXPECT_EQ(4, nAfterInner);
    EXPECT_TRUE(dlg.dlgHooks.IsEmpty());
    EXPECT_EQ(0, dlg.dlgMsgDepth);
}

TEST_F(CSDlgHooks, RemoveAllOutsideIsDoneAtOnce) {
    AddAll();
    dlg.RemoveAllDlgHooks();
    EXPECT_TRUE(dlg.dlgHooks.IsEmpty());
    EXPECT_EQ(0, dlg.dlgHooksRemovalPending);
    EXPECT_EQ(1, dlg.hooks.GetCount() > 0) << "the window's own chain stays";
}

TEST_F(CSDlgHooks, UnknownAndEmptyHooksAreNothing) {
    dlg.RemoveDlgHook(&d);
    dlg.RemoveDlgHook(nullptr);
    AddAll();
    dlg.AddDlgHook(nullptr);
    EXPECT_EQ("abc", Send());
    dlg.RemoveDlgHook(&d);
    EXPECT_EQ("abc", Send());
}

TEST_F(CSDlgHooks, SameHookTwiceIsAskedTwiceAndGoesOneByOne) {
    dlg.AddDlgHook(&a);
    dlg.AddDlgHook(&a);
    EXPECT_EQ("aa", Send());
    dlg.RemoveDlgHook(&a);
    EXPECT_EQ("a", Send());
}

TEST_F(CSDlgHooks, DepthIsThatOfTheDispatchesUnderWay) {
    dlg.AddDlgHook(&a);
    int nDepth = -1;
    a.act = [&](CSDlg*, LRESULT*) {
        nDepth = dlg.dlgMsgDepth;
        return 0;
    };
    EXPECT_EQ(0, dlg.dlgMsgDepth);
    Send();
    EXPECT_EQ(1, nDepth);
    EXPECT_EQ(0, dlg.dlgMsgDepth);
}

TEST_F(CSDlgHooks, WindowsChainIsAskedBeforeTheDialogs) {
    struct WndHook : WMHook {
        explicit WndHook(std::string& str) : calls(str) {}
        int OnWndMessage(CSWnd*, UINT uMsg, WPARAM, LPARAM, LRESULT* pl) override {
            if (uMsg != kMsg) return 0;
            calls += 'w';
            *pl = 55;
            return bTakes;
        }
        std::string& calls;
        bool bTakes = false;
    } hook(calls);
    dlg.AddWndHook(&hook);
    dlg.AddDlgHook(&a);
    EXPECT_EQ("wa", Send());
    hook.bTakes = true;
    LRESULT lResult = 0;
    EXPECT_EQ("w", Send(&lResult));
    EXPECT_EQ(55, lResult);
    dlg.RemoveWndHook(&hook);
}

TEST_F(CSDlgHooks, StayForTheNextRunOfTheObject) {
    ProbeDlg again;
    a.uWatched = WM_INITDIALOG;
    again.AddDlgHook(&a);
    for (int n = 0; n < 2; ++n) again.RunModal([](ProbeDlg&) {}, IDD_DIALOG_HIDDEN);
    EXPECT_EQ("aa", calls);
    again.RemoveDlgHook(&a);
}

TEST(CSDlgHooksRandom, RandomChangesWithinDispatchesLeaveTheChainSound) {
    std::mt19937 random(7);
    OpenDlg dlg(IDD_DIALOG_HIDDEN);
    std::string calls;
    std::list<LetterHook> hooks;
    for (char ch = 'a'; ch < 'i'; ++ch) hooks.emplace_back(calls, ch);
    int nDepth = 0;
    auto change = [&](CSDlg*, LRESULT*) {
        auto it = hooks.begin();
        std::advance(it, random() % hooks.size());
        if (random() % 2)
            dlg.AddDlgHook(&*it);
        else
            dlg.RemoveDlgHook(&*it);
        if (random() % 40 == 0) dlg.RemoveAllDlgHooks();
        if (nDepth < 3 && random() % 6 == 0) {
            ++nDepth;
            ::SendMessageW(dlg, kMsg, 0, 0);
            --nDepth;
        }
        return static_cast<int>(random() % 10 == 0);
    };
    for (auto& hook : hooks) hook.act = change;
    for (int n = 0; n < 500; ++n) {
        dlg.AddDlgHook(&hooks.front());
        ::SendMessageW(dlg, kMsg, 0, 0);
        ASSERT_EQ(0, dlg.dlgMsgDepth);
        for (POS pos = dlg.dlgHooks.GetHeadPos(); pos;) {
            ASSERT_NE(nullptr, dlg.dlgHooks.GetNext(pos)) << "an empty entry outside a dispatch";
        }
    }
    dlg.RemoveAllDlgHooks();
}
} // namespace
