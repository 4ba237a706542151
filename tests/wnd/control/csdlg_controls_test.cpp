#include "support/heap_count.h"
#include "support/no_memory.h"
#include "support/replace_import.h"
#include "wnd/control/control_ids.h"
#include "wnd/control/csctrl.h"
#include "wnd/control/ctrl_dialog.h"
#include "wnd/wnd_probe.h"

#include <gtest/gtest.h>
#include <algorithm>

extern "C" FARPROC __imp_SetForegroundWindow;

namespace {
using Ctrl = Recorded<CSCtrl>;

// Every control has an object

TEST(CSDlgControls, EachControlWithAnIdGetsAnObject) {
    Dialogs t;
    int nControls = 0, nLabels = 0;
    for (HWND hwnd = ::GetWindow(t.dialog, GW_CHILD); hwnd; hwnd = ::GetWindow(hwnd, GW_HWNDNEXT)) {
        auto nId = static_cast<unsigned short>(::GetDlgCtrlID(hwnd));
        CSCtrl* p = t.dialog.GetDlgCtrl(hwnd);
        if (nId == 0xFFFF) {
            ++nLabels;
            EXPECT_EQ(nullptr, p);
            EXPECT_EQ(nullptr, ::GetPropW(hwnd, L"CSWND"));
            continue;
        }
        ++nControls;
        ASSERT_NE(nullptr, p) << nId;
        EXPECT_EQ(p, t.dialog.GetDlgCtrl(nId));
        EXPECT_EQ(nId, p->GetID());
        EXPECT_EQ(&t.dialog, p->GetDlg());
        EXPECT_EQ(hwnd, static_cast<HWND>(*p));
        EXPECT_EQ(nId == IDC_CTL_BUTTON, p->autoDelete == 0) << "the others are plain";
    }
    EXPECT_EQ(10, nControls);
    EXPECT_EQ(1, nLabels);
}

TEST(CSDlgControls, LabelsGetNoObject) {
    CtrlDialog dialog;
    std::vector<HWND> labels;
    HWND hwndOther = nullptr;
    dialog.onInit = [&] {
        auto Add = [&](int nId) {
            return ::CreateWindowExW(0, L"STATIC", L"", WS_CHILD, 0, 0, 5, 5, dialog,
                                     reinterpret_cast<HMENU>(static_cast<INT_PTR>(nId)), nullptr,
                                     nullptr);
        };
        labels = {Add(0xFFFF), Add(-1)};
        hwndOther = Add(0xFFFE);
    };
    ASSERT_TRUE(dialog.Run(IDD_CONTROLS));
    for (HWND hwnd : labels) EXPECT_EQ(nullptr, CSWnd::FromHandle(hwnd));
    EXPECT_NE(nullptr, dialog.GetDlgCtrl(hwndOther));
}

TEST(CSDlgControls, ChildrenOfControlsGetNoObject) {
    Dialogs t;
    HWND hwndInside = nullptr;
    CtrlDialog dialog;
    dialog.onInit = [&] {
        hwndInside = ::CreateWindowExW(0, L"STATIC", L"", WS_CHILD, 0, 0, 5, 5,
                                       ::GetDlgItem(dialog, IDC_CTL_BUTTON),
                                       reinterpret_cast<HMENU>(IDC_CTL_EDIT), nullptr, nullptr);
    };
    ASSERT_TRUE(dialog.Run(IDD_CONTROLS));
    EXPECT_EQ(nullptr, CSWnd::FromHandle(hwndInside));
}

TEST(CSDlgControls, OfTwoControlsWithOneIdTheFirstIsMeant) {
    CtrlDialog dialog;
    HWND hwndSecond = nullptr;
    CSCtrl* pFirst = nullptr;
    dialog.onInit = [&] {
        pFirst = CSCtrl::AutoInit(&dialog, IDC_CTL_EDIT);
        hwndSecond = ::CreateWindowExW(0, L"STATIC", L"", WS_CHILD, 0, 0, 5, 5, dialog,
                                       reinterpret_cast<HMENU>(IDC_CTL_EDIT), nullptr, nullptr);
    };
    ASSERT_TRUE(dialog.Run(IDD_CONTROLS));
    ASSERT_NE(hwndSecond, ::GetDlgItem(dialog, IDC_CTL_EDIT));
    EXPECT_EQ(pFirst, dialog.GetDlgCtrl(IDC_CTL_EDIT)) << "the same object as before";
    EXPECT_EQ(nullptr, dialog.GetDlgCtrl(hwndSecond));
}

TEST(CSDlgControls, ComesToTheFrontUnlessItIsAPage) {
    static std::vector<HWND> fronts;
    auto Front = [](HWND hwnd) -> BOOL {
        fronts.push_back(hwnd);
        return TRUE;
    };
    BOOL(WINAPI * pfnFront)(HWND) = Front;
    for (int bPage : {0, 1}) {
        fronts.clear();
        CtrlDialog dialog;
        dialog.isChildDlg = bPage;
        ReplaceImport replaced(__imp_SetForegroundWindow, pfnFront);
        ASSERT_TRUE(dialog.Run(IDD_CONTROLS));
        EXPECT_EQ(bPage ? 0 : 1, std::count(fronts.begin(), fronts.end(), dialog.hWnd));
    }
}

TEST(CSDlgControls, PostInitDialogFollowsOnInitDialog) {
    Ctrl ctrl;
    CtrlDialog dialog;
    bool bDoneInside = true;
    dialog.onInit = [&] {
        ctrl.Init(&dialog, IDC_CTL_BUTTON, nullptr, 0);
        bDoneInside = ctrl.CountLogged("PostInitDialog") > 0;
    };
    ASSERT_TRUE(dialog.Run(IDD_CONTROLS));
    EXPECT_FALSE(bDoneInside);
    EXPECT_EQ((Log{"OnInit", "PostInitDialog"}), ctrl.log);
}

TEST(CSDlgControls, ObjectThatIsNoControlsKeepsItsWindow) {
    ProbeRecord record;
    ProbeWnd wnd(record);
    CtrlDialog dialog;
    dialog.onInit = [&] { wnd.Subclass(::GetDlgItem(dialog, IDC_CTL_EDIT)); };
    ASSERT_TRUE(dialog.Run(IDD_CONTROLS));
    EXPECT_EQ(&wnd, CSWnd::FromHandle(::GetDlgItem(dialog, IDC_CTL_EDIT)));
    EXPECT_EQ(nullptr, dialog.GetDlgCtrl(IDC_CTL_EDIT));
    EXPECT_EQ(nullptr, dialog.GetDlgCtrl(::GetDlgItem(dialog, IDC_CTL_EDIT)));
    EXPECT_EQ(0, ::SendMessageW(dialog, WM_COMMAND, MAKEWPARAM(IDC_CTL_EDIT, EN_CHANGE),
                                reinterpret_cast<LPARAM>(wnd.hWnd)));
    ::SendMessageW(dialog, WM_CTLCOLOREDIT, 0, reinterpret_cast<LPARAM>(wnd.hWnd));
    dialog.CloseDialog(1, 1);
}

TEST(CSDlgControls, ControlsMayGoWhileTheOthersGetTheirObjects) {
    struct : Ctrl {
        void PostInitDialog() override {
            ::DestroyWindow(::GetDlgItem(*dlg, IDC_CTL_OTHER_EDIT));
            ::DestroyWindow(*this);
        }
    } ctrl;
    CtrlDialog dialog;
    dialog.onInit = [&] { ctrl.Init(&dialog, IDC_CTL_EDIT, nullptr, 0); };
    ASSERT_TRUE(dialog.Run(IDD_CONTROLS));
    EXPECT_EQ(nullptr, ctrl.hWnd);
    EXPECT_EQ(nullptr, ::GetDlgItem(dialog, IDC_CTL_OTHER_EDIT));
    for (int nId : {IDC_CTL_COMBO_LIST, IDC_CTL_BUTTON, IDC_CTL_FORMAT, IDCANCEL}) {
        EXPECT_NE(nullptr, dialog.GetDlgCtrl(nId)) << nId;
    }
}

TEST(CSDlgControls, DialogComesUpWithoutMemoryForItsControls) {
    CtrlDialog dialog;
    std::optional<NoMemory> none;
    dialog.log.reserve(50);
    dialog.onInit = [&] { none.emplace(); };
    // From OnInitDialog to the end of WM_INITDIALOG there is none.
    HWND hwnd = dialog.Modeless(IDD_CONTROLS, nullptr, nullptr, 0);
    none.reset();
    ASSERT_NE(nullptr, hwnd);
    EXPECT_EQ(nullptr, dialog.GetDlgCtrl(IDC_CTL_EDIT));
    EXPECT_EQ(0, ::SendMessageW(dialog, WM_COMMAND, MAKEWPARAM(IDC_CTL_EDIT, EN_CHANGE),
                                reinterpret_cast<LPARAM>(::GetDlgItem(dialog, IDC_CTL_EDIT))));
}

TEST(CSDlgControls, GetDlgCtrlOfStrangersIsNull) {
    Dialogs t;
    EXPECT_EQ(nullptr, t.dialog.GetDlgCtrl(IDC_CTL_MISSING));
    EXPECT_EQ(nullptr, t.dialog.GetDlgCtrl(static_cast<HWND>(nullptr)));
    EXPECT_EQ(nullptr, t.dialog.GetDlgCtrl(static_cast<HWND>(t.dialog)));
    EXPECT_EQ(nullptr, t.dialog.GetDlgCtrl(DeadWindow()));
    PlainWnd plain;
    EXPECT_EQ(nullptr, t.dialog.GetDlgCtrl(static_cast<HWND>(plain)));
    EXPECT_EQ(&t.ctrl, t.dialog.GetDlgCtrl(IDC_CTL_BUTTON));
    EXPECT_EQ(&t.ctrl, t.dialog.GetDlgCtrl(t.ctrl.hWnd));
}

// WM_COMMAND

TEST(CSDlgControls, ControlIsAskedFirstAndEndsItWithItsResult) {
    Dialogs t;
    t.ctrl.onCommand = [&](unsigned nCode, __int64* plResult) {
        EXPECT_TRUE(t.dialog.log.empty()) << "before anything else";
        *plResult = 1;
        return nCode == 5 ? 1 : 0;
    };
    EXPECT_EQ(1, t.Handle(WM_COMMAND, MAKEWPARAM(IDC_CTL_BUTTON, 5), t.ctrl.hWnd));
    EXPECT_EQ((Log{"OnCommand 5"}), t.ctrl.log);
    EXPECT_EQ(Log{}, t.dialog.log);
    EXPECT_EQ(0, t.Handle(WM_COMMAND, MAKEWPARAM(IDC_CTL_BUTTON, BN_CLICKED), t.ctrl.hWnd))
        << "the result is not the control's";
    EXPECT_EQ(Log{Dialogs::Clicked(IDC_CTL_BUTTON)}, t.dialog.log);
}

TEST(CSDlgControls, CommandResultOfAControlIsTheOperations) {
    Dialogs t;
    t.ctrl.onCommand = [](unsigned, __int64* plResult) {
        *plResult = 0x123456789A;
        return -1;
    };
    EXPECT_EQ(0x123456789A, t.dialog.OnCommand(IDC_CTL_BUTTON, 0, t.ctrl.hWnd));
    t.ctrl.onCommand = [](unsigned, __int64*) { return 1; };
    EXPECT_EQ(0, t.dialog.OnCommand(IDC_CTL_BUTTON, 0, t.ctrl.hWnd))
        << "a result that it left alone";
}

TEST(CSDlgControls, ControlIsTakenByItsHandleNotByTheId) {
    Dialogs t;
    t.Command(IDC_CTL_EDIT, 5, t.ctrl.hWnd);
    EXPECT_EQ((Log{"OnCommand 5"}), t.ctrl.log);
    t.ctrl.log.clear();
    t.Command(IDC_CTL_BUTTON, 5, nullptr);
    t.Command(IDC_CTL_BUTTON, 5, DeadWindow());
    EXPECT_EQ(Log{}, t.ctrl.log);
}

struct ClickCase {
    const char* pszName;
    int nId;
    Log log;
    __int64 nResult;
};
using CSDlgClick = SharedBy<Dialogs, ClickCase>;
TEST_P(CSDlgClick, IsToldAndThenActs) {
    auto& row = GetParam();
    for (bool bWithControl : {false, true}) {
        auto& t = Get();
        t.Reset();
        HWND hwnd = bWithControl ? t.Item(row.nId) : nullptr;
        auto nId = static_cast<unsigned short>(row.nId);
        EXPECT_EQ(row.nResult, t.dialog.OnCommand(nId, 0, hwnd));
        EXPECT_EQ(row.log, t.dialog.log);
        t.dialog.log.clear();
        for (unsigned short nCode : {2, 5, 9, 0xFFFF}) {
            EXPECT_EQ(0, t.dialog.OnCommand(nId, nCode, hwnd));
        }
        EXPECT_EQ(Log{}, t.dialog.log) << "other codes";
        EXPECT_EQ(0, t.dialog.OnCommand(nId, 1, hwnd));
        EXPECT_EQ((Log{"selected " + std::to_string(row.nId)}), t.dialog.log);
    }
}
INSTANTIATE_TEST_SUITE_P(
    Each, CSDlgClick,
    testing::Values(ClickCase{"OK", IDOK, {"clicked 1", "OnOK"}, CtrlDialog::kOkResult},
                    ClickCase{
                        "Cancel", IDCANCEL, {"clicked 2", "OnCancel"}, CtrlDialog::kCancelResult},
                    ClickCase{"Help", IDC_CTL_HELP_BUTTON, {"clicked 9", "OnHelp null"}, 1},
                    ClickCase{"Button", IDC_CTL_BUTTON, {Dialogs::Clicked(IDC_CTL_BUTTON)}, 0},
                    ClickCase{"Edit", IDC_CTL_EDIT, {Dialogs::Clicked(IDC_CTL_EDIT)}, 0},
                    ClickCase{"Missing", IDC_CTL_MISSING, {Dialogs::Clicked(IDC_CTL_MISSING)}, 0}),
    [](const auto& row) { return std::string(row.param.pszName); });

TEST(CSDlgControls, ControlMayKeepAClickOfOk) {
    Dialogs t(IDOK);
    t.ctrl.onCommand = [](unsigned, __int64*) { return 1; };
    ::SendMessageW(t.ctrl.hWnd, BM_CLICK, 0, 0);
    EXPECT_EQ(1, t.ctrl.CountLogged("OnCommand 0"));
    EXPECT_FALSE(t.dialog.Logged("OnOK"));
    EXPECT_FALSE(t.dialog.Logged("clicked 1"));
}

TEST(CSDlgControls, RealListTellsItsSelection) {
    Dialogs t(IDC_CTL_COMBO_LIST, 1);
    for (auto* psz : {L"one", L"two"}) {
        ::SendMessageW(t.ctrl.hWnd, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(psz));
    }
    ::SetFocus(t.ctrl.hWnd);
    ::SendMessageW(t.ctrl.hWnd, WM_KEYDOWN, VK_DOWN, 1);
    EXPECT_EQ(1, t.ctrl.CountLogged("OnCommand 1"));
    EXPECT_TRUE(t.dialog.Logged("selected " + std::to_string(IDC_CTL_COMBO_LIST)));
}

// Colours

TEST(CSDlgControls, ColorsAreTheControlsForEditButtonAndStatic) {
    Dialogs t;
    t.ctrl.hbrAnswer = reinterpret_cast<HBRUSH>(0x4711);
    for (UINT uMsg = WM_CTLCOLORMSGBOX; uMsg <= WM_CTLCOLORSTATIC; ++uMsg) {
        t.ctrl.log.clear();
        HBRUSH hbr = reinterpret_cast<HBRUSH>(7);
        bool bAsks = uMsg == 307 || uMsg == 309 || uMsg == 312;
        EXPECT_EQ(bAsks ? 1 : 0, t.dialog.OnCtlColor(uMsg, nullptr, t.ctrl.hWnd, &hbr)) << uMsg;
        EXPECT_EQ(reinterpret_cast<HBRUSH>(bAsks ? 0x4711 : 7), hbr) << uMsg;
        EXPECT_EQ(bAsks ? Log{"OnCtlColor " + std::to_string(uMsg)} : Log{}, t.ctrl.log);
    }
    HBRUSH hbr = reinterpret_cast<HBRUSH>(7);
    t.ctrl.nCtlColorAnswer = -5;
    EXPECT_EQ(1, t.dialog.OnCtlColor(WM_CTLCOLORBTN, nullptr, t.ctrl.hWnd, &hbr))
        << "whether, not what";
    for (HWND hwnd : {static_cast<HWND>(nullptr), DeadWindow(), t.Item(IDC_CTL_EDIT)}) {
        EXPECT_EQ(0, t.dialog.OnCtlColor(WM_CTLCOLOREDIT, nullptr, hwnd, &hbr));
    }
}

TEST(CSDlgControls, DialogsOwnColorsAreForAllKinds) {
    Dialogs t;
    t.ctrl.hbrAnswer = reinterpret_cast<HBRUSH>(0x4711);
    t.dialog.SetDlgColors(RGB(1, 2, 3), RGB(4, 5, 6), 0);
    HDC hdc = ::CreateCompatibleDC(nullptr);
    for (UINT uMsg = WM_CTLCOLOREDIT; uMsg <= WM_CTLCOLORSTATIC; ++uMsg) {
        ::SetTextColor(hdc, 0);
        ::SetBkMode(hdc, OPAQUE);
        HBRUSH hbr = nullptr;
        EXPECT_EQ(1, t.dialog.OnCtlColor(uMsg, hdc, t.ctrl.hWnd, &hbr)) << uMsg;
        LOGBRUSH info{};
        ASSERT_NE(0, ::GetObjectW(hbr, sizeof(info), &info));
        EXPECT_EQ(RGB(1, 2, 3), info.lbColor);
        EXPECT_EQ(RGB(4, 5, 6), ::GetTextColor(hdc));
        EXPECT_EQ(TRANSPARENT, ::GetBkMode(hdc));
        EXPECT_EQ(reinterpret_cast<LRESULT>(hbr),
                  ::SendMessageW(t.dialog, uMsg, reinterpret_cast<WPARAM>(hdc),
                                 reinterpret_cast<LPARAM>(t.ctrl.hWnd)));
    }
    EXPECT_EQ(Log{}, t.ctrl.log);
    ::DeleteDC(hdc);
    t.dialog.SetDlgColors(CLR_INVALID, 0, 0);
    HBRUSH hbr = nullptr;
    EXPECT_EQ(1, t.dialog.OnCtlColor(WM_CTLCOLORBTN, nullptr, t.ctrl.hWnd, &hbr));
    EXPECT_EQ(reinterpret_cast<HBRUSH>(0x4711), hbr) << "the control's again";
}

// Drawn by their owner

TEST(CSDlgControls, DrawMeasureAndDeleteGoToTheControlOfTheId) {
    Dialogs t(IDC_CTL_OWNER_DRAWN);
    DRAWITEMSTRUCT draw{};
    MEASUREITEMSTRUCT measure{};
    DELETEITEMSTRUCT del{};
    struct {
        UINT uMsg;
        void* pItem;
        const char* pszLogged;
    } rows[] = {{WM_DRAWITEM, &draw, "OnDrawItem"},
                {WM_MEASUREITEM, &measure, "OnMeasureItem"},
                {WM_DELETEITEM, &del, "OnDeleteItem"}};
    for (auto& row : rows) {
        t.ctrl.log.clear();
        EXPECT_EQ(1, t.Handle(row.uMsg, IDC_CTL_OWNER_DRAWN, row.pItem));
        EXPECT_EQ(Log{row.pszLogged}, t.ctrl.log);
        EXPECT_EQ(row.pItem, t.ctrl.pItemSeen);
        EXPECT_EQ(1, t.Handle(row.uMsg, IDC_CTL_MISSING, row.pItem)) << "handled all the same";
        EXPECT_EQ(1, t.Handle(row.uMsg, IDC_CTL_EDIT, row.pItem)) << "a plain one does nothing";
        EXPECT_EQ(1u, t.ctrl.log.size());
    }
}

TEST(CSDlgControls, RealButtonIsDrawnByItsObject) {
    Dialogs t(IDC_CTL_OWNER_DRAWN, 1);
    ::InvalidateRect(t.ctrl.hWnd, nullptr, TRUE);
    EXPECT_TRUE(PumpUntil([&] { return t.ctrl.CountLogged("OnDrawItem") > 0; }));
}

// OK

TEST(CSDlgControls, OkGoesToEachControl) {
    Ctrl ctrl, other;
    CtrlDialog dialog;
    ProbeRecord record;
    ProbeWnd wnd(record);
    dialog.onInit = [&] {
        ctrl.Init(&dialog, IDC_CTL_EDIT, nullptr, 0);
        other.Init(&dialog, IDC_CTL_OTHER_EDIT, nullptr, 0);
        wnd.Subclass(::GetDlgItem(dialog, IDC_CTL_FORMAT));
    };
    ASSERT_TRUE(dialog.Run(IDD_CONTROLS));
    ctrl.log.clear();
    other.log.clear();
    EXPECT_EQ(1, dialog.CloseDialog(1, 1));
    for (auto* p : {&ctrl, &other}) {
        for (auto* psz : {"OnOK", "Store", "OnPostNcDestroy"}) EXPECT_EQ(1, p->CountLogged(psz));
        EXPECT_EQ(0, p->CountLogged("Load"));
    }
}

TEST(CSDlgControls, OkIsForDirectChildrenAlone) {
    Dialogs t;
    Ctrl inner;
    HWND hwndInner = ::CreateWindowExW(0, L"STATIC", L"", WS_CHILD, 0, 0, 5, 5, t.ctrl.hWnd,
                                       reinterpret_cast<HMENU>(5), nullptr, nullptr);
    inner.Subclass(hwndInner);
    t.dialog.CloseDialog(1, 1);
    EXPECT_EQ(1, t.ctrl.CountLogged("OnOK"));
    EXPECT_EQ(0, inner.CountLogged("OnOK"));
}

struct CloseCase {
    int nResult, nOkControls;
    bool bTold;
};
class CSDlgOkControls : public testing::TestWithParam<CloseCase> {};
TEST_P(CSDlgOkControls, TellsTheControlsOfOk) {
    Dialogs t;
    EXPECT_EQ(1, t.dialog.CloseDialog(GetParam().nResult, GetParam().nOkControls));
    EXPECT_EQ(GetParam().bTold ? 1 : 0, t.ctrl.CountLogged("OnOK"));
}
INSTANTIATE_TEST_SUITE_P(Cases, CSDlgOkControls,
                         testing::Values(CloseCase{1, 1, true}, CloseCase{1, 0, false},
                                         CloseCase{1, -1, true}, CloseCase{2, -1, false},
                                         CloseCase{2, 1, true}, CloseCase{0, -1, true},
                                         CloseCase{7, 5, true}));

TEST(CSDlgControls, ControlsMayGoWhileOkIsTold) {
    struct : Ctrl {
        void OnOK() override {
            ::DestroyWindow(::GetDlgItem(*dlg, IDC_CTL_OTHER_EDIT));
            ::DestroyWindow(*this);
        }
    } ctrl;
    Ctrl gone, behind;
    CtrlDialog dialog;
    dialog.onInit = [&] {
        ctrl.Init(&dialog, IDC_CTL_EDIT, nullptr, 0);
        gone.Init(&dialog, IDC_CTL_OTHER_EDIT, nullptr, 0);
        behind.Init(&dialog, IDC_CTL_BUTTON, nullptr, 0);
    };
    ASSERT_TRUE(dialog.Run(IDD_CONTROLS));
    EXPECT_EQ(1, dialog.CloseDialog(1, 1));
    EXPECT_EQ(0, gone.CountLogged("OnOK"));
    EXPECT_EQ(1, behind.CountLogged("OnOK"));
    EXPECT_EQ(nullptr, static_cast<HWND>(dialog));
}

// Texts

TEST(CSDlgControls, TextOfAControlIsItsFormatAgainAndAgain) {
    Dialogs t;
    for (int n : {1, 2, 30}) {
        EXPECT_NE(0, t.dialog.SetDlgItemTextFmtCtrl(IDC_CTL_FORMAT, n, L"many"));
        EXPECT_EQ(L"Step " + std::to_wstring(n) + L" of many", WndText(t.Item(IDC_CTL_FORMAT)));
    }
    EXPECT_STREQ(L"Step %d of %s", t.dialog.GetDlgCtrl(IDC_CTL_FORMAT)->GetOriginalText());
}

TEST(CSDlgControls, TextFormatOfAControlWithoutObjectGivesItOne) {
    CtrlDialog dialog;
    bool bHad = true, bHas = false;
    dialog.onInit = [&] {
        bHad = dialog.GetDlgCtrl(IDC_CTL_FORMAT) != nullptr;
        dialog.SetDlgItemTextFmtCtrl(IDC_CTL_FORMAT, 1, L"2");
        bHas = dialog.GetDlgCtrl(IDC_CTL_FORMAT) != nullptr;
    };
    ASSERT_TRUE(dialog.Run(IDD_CONTROLS));
    EXPECT_FALSE(bHad);
    EXPECT_TRUE(bHas);
    EXPECT_EQ(L"Step 1 of 2", WndText(::GetDlgItem(dialog, IDC_CTL_FORMAT)));
    dialog.SetDlgItemTextFmtCtrl(IDC_CTL_FORMAT, 3, L"4");
    EXPECT_EQ(L"Step 3 of 4", WndText(::GetDlgItem(dialog, IDC_CTL_FORMAT)));
}

TEST(CSDlgControls, HostileFormatOfAControlIsText) {
    Dialogs t;
    EXPECT_NE(0, t.dialog.SetDlgItemTextFmtCtrl(IDC_CTL_HOSTILE_FORMAT));
    EXPECT_EQ(L"%n and 100%", WndText(t.Item(IDC_CTL_HOSTILE_FORMAT)));
}

TEST(CSDlgControls, LongTextOfAControlIsCut) {
    Dialogs t;
    std::wstring str(2000, L'x');
    EXPECT_NE(0, t.dialog.SetDlgItemTextFmtCtrl(IDC_CTL_FORMAT, 1, str.c_str()));
    EXPECT_EQ((L"Step 1 of " + str).substr(0, 1023), WndText(t.Item(IDC_CTL_FORMAT)));
}

TEST(CSDlgControls, TextFormatOfAMissingControlLeavesNothing) {
    Dialogs t;
    long nBefore = CountLiveBlocks();
    EXPECT_EQ(0, t.dialog.SetDlgItemTextFmtCtrl(IDC_CTL_MISSING, 1, L"x"));
    EXPECT_EQ(nBefore, CountLiveBlocks());
}

TEST(CSDlgControls, TextFormatWithoutMemoryDoesNotCrash) {
    CtrlDialog dialog;
    dialog.onInit = [&] {
        NoMemory none;
        dialog.SetDlgItemTextFmtCtrl(IDC_CTL_FORMAT, 1, L"x");
    };
    EXPECT_TRUE(dialog.Run(IDD_CONTROLS));
}
} // namespace
