#include "support/test_resource_ids.h"
#include "wnd/layout/csdlg_main.h"
#include "wnd/layout/layout_probe.h"
#include "wnd/wnd_probe.h"

#include <gtest/gtest.h>
#include <algorithm>

// Dialogs that end, or lose their controls, in a handler that their layout calls.

namespace {
constexpr unsigned long kBoth = kDlgResizeWidth | kDlgResizeHeight;

/// Where a dialog ends itself.
enum class Place { kInitRect, kResize, kInitDone, kChanging, kChanged };
constexpr Place kPlaces[] = {Place::kInitRect, Place::kResize, Place::kInitDone, Place::kChanging,
                             Place::kChanged};

void EndAt(LayoutDlg* pDlg, Place place, const std::function<void()>& fnEnd) {
    switch (place) {
    case Place::kInitRect: pDlg->onInitRect = [=](RECT&) { fnEnd(); }; break;
    case Place::kResize: pDlg->onResize = [=](int, int) { fnEnd(); }; break;
    case Place::kInitDone: pDlg->onInitDone = fnEnd; break;
    case Place::kChanging: pDlg->onChanging = [=](WINDOWPOS*) { fnEnd(); }; break;
    case Place::kChanged: pDlg->onChanged = [=](WINDOWPOS*) { fnEnd(); }; break;
    }
}

/// A record by which each of those places is reached during the initialisation.
struct EndingDialog : testing::TestWithParam<Place> {
    EndingDialog() {
        record.Initialize();
        record.showCmd = SW_SHOWNORMAL;
        record.rcNormalPosition = {30, 40, 530, 440};
    }
    MyWindowPlacement record;
};
std::string NameOf(const testing::TestParamInfo<Place>& row) {
    const char* const names[] = {"InInitRect", "InResize", "InInitDone", "InChanging", "InChanged"};
    return names[static_cast<int>(row.param)];
}
INSTANTIATE_TEST_SUITE_P(Cases, EndingDialog, testing::ValuesIn(kPlaces), NameOf);

TEST_P(EndingDialog, ClosedWhileItComesUpIsGone) {
    LayoutDlg dlg;
    dlg.EnableResizing(kBoth, &record);
    bool bEnded = false;
    EndAt(&dlg, GetParam(), [&] {
        if (bEnded) return;
        bEnded = true;
        dlg.CloseDialog(IDCANCEL, 0);
    });
    dlg.Make(IDD_LAYOUT_SIZING);
    EXPECT_TRUE(bEnded);
    EXPECT_TRUE(dlg.IsClosed());
    EXPECT_FALSE(::IsWindow(dlg));
    if (GetParam() != Place::kInitDone) {
        EXPECT_EQ(0, std::count(dlg.log.begin(), dlg.log.end(), "InitDone"));
    }
}

TEST_P(EndingDialog, ItsObjectMayGoWithIt) {
    auto* pDlg = new LayoutDlg;
    pDlg->autoDelete = 1;
    pDlg->EnableResizing(kBoth, &record);
    bool bEnded = false;
    HWND hwnd = nullptr;
    EndAt(pDlg, GetParam(), [&, pDlg] {
        if (bEnded) return;
        bEnded = true;
        hwnd = *pDlg;
        ::DestroyWindow(hwnd);
    });
    pDlg->Modeless(IDD_LAYOUT_SIZING, nullptr, nullptr, 1);
    EXPECT_TRUE(bEnded);
    EXPECT_NE(nullptr, hwnd);
    EXPECT_FALSE(::IsWindow(hwnd));
}

TEST_P(EndingDialog, ModalOneGivesItsResult) {
    LayoutDlg dlg;
    dlg.EnableResizing(kBoth, &record);
    bool bEnded = false;
    EndAt(&dlg, GetParam(), [&] {
        if (bEnded) return;
        bEnded = true;
        dlg.CloseDialog(77, 0);
    });
    EXPECT_EQ(77, dlg.Modal(IDD_LAYOUT_SIZING, nullptr, nullptr));
    EXPECT_TRUE(bEnded);
    EXPECT_FALSE(::IsWindow(dlg));
}

TEST_P(EndingDialog, RecordThatGoesWithItIsNotUsedAfterwards) {
    struct Owner {
        MyWindowPlacement record;
        LayoutDlg dlg;
    };
    auto* pOwner = new Owner;
    pOwner->record = record;
    pOwner->dlg.EnableResizing(kBoth, &pOwner->record);
    bool bEnded = false;
    EndAt(&pOwner->dlg, GetParam(), [&] {
        if (bEnded) return;
        bEnded = true;
        pOwner->dlg.DisableResizing();
        ::DestroyWindow(pOwner->dlg);
    });
    pOwner->dlg.Make(IDD_LAYOUT_SIZING);
    EXPECT_TRUE(bEnded);
    EXPECT_FALSE(::IsWindow(pOwner->dlg));
    delete pOwner;
}

TEST(EndingMainDialog, EndsWhileItComesUp) {
    struct Main : CSDlgMain {
        Main() : CSDlgMain(::GetModuleHandleW(nullptr), IDI_TEST) {}
        void OnInitDone() override { ::DestroyWindow(hWnd); }
    };
    MyWindowPlacement record; // so that the registry is left alone
    Main dlg;
    dlg.EnableResizing(kDlgStartHidden, &record);
    dlg.Modeless(IDD_LAYOUT_MAIN, nullptr, nullptr, 0);
    EXPECT_FALSE(::IsWindow(dlg));
    MSG msg;
    EXPECT_TRUE(::PeekMessageW(&msg, nullptr, WM_QUIT, WM_QUIT, PM_REMOVE));
}

TEST(EndingPage, ThatEndsWhileItCatchesUpIsNone) {
    struct Page : CSDlgChild {
        void OnResize(int, int) override { ::DestroyWindow(hWnd); }
    } page;
    LayoutDlg parent;
    ASSERT_TRUE(parent.MakeSizing());
    parent.SetSize(parent.minWidth + 50, parent.minHeight + 50);
    EXPECT_EQ(0, page.Init(&parent, IDC_LAYOUT_BUTTON, IDD_LAYOUT_PAGE, nullptr, 1));
    EXPECT_FALSE(::IsWindow(page));
}

/// A dialog whose button ends it as soon as that is moved or disabled.
struct EndingByControl : testing::Test {
    EndingByControl() {
        pDlg->autoDelete = 1;
        EXPECT_TRUE(pDlg->Make(IDD_LAYOUT_ITEMS));
        hwndDlg = *pDlg;
        HWND button = ::GetDlgItem(hwndDlg, IDC_LAYOUT_BUTTON);
        CSWnd* pButton = CSWnd::FromHandle(button);
        hook.fn = [this](CSWnd*, UINT uMsg, WPARAM, LPARAM, LRESULT*) {
            if (uMsg == WM_WINDOWPOSCHANGED || uMsg == WM_ENABLE) ::DestroyWindow(hwndDlg);
            return 0;
        };
        if (pButton) pButton->AddWndHook(&hook);
    }
    ~EndingByControl() override {
        EXPECT_FALSE(::IsWindow(hwndDlg));
        if (::IsWindow(hwndDlg)) ::DestroyWindow(hwndDlg);
    }
    LayoutDlg* pDlg = new LayoutDlg;
    HWND hwndDlg = nullptr;
    ProbeHook hook;
};

TEST_F(EndingByControl, Move) { pDlg->MoveCtrl(IDC_LAYOUT_BUTTON, 1, 1, 1); }
TEST_F(EndingByControl, Center) { pDlg->CenterCtrl(IDC_LAYOUT_BUTTON, 1, 0); }
TEST_F(EndingByControl, Edge) { pDlg->MoveCtrlEdge(IDC_LAYOUT_BUTTON, IDC_LAYOUT_FRAME, 1); }
TEST_F(EndingByControl, Slot) { pDlg->MoveResizeCtrlToSlot(IDC_LAYOUT_BUTTON, IDC_LAYOUT_SLOT); }
TEST_F(EndingByControl, Span) { pDlg->CenterDlgItem(IDC_LAYOUT_BUTTON, 0, 0, 3); }
TEST_F(EndingByControl, Block) { pDlg->AlignDlgItems(IDC_LAYOUT_LABEL, IDC_LAYOUT_OTHER, 1); }
TEST_F(EndingByControl, GroupThatHoldsIt) {
    pDlg->AddCtrlGroup(IDC_LAYOUT_LABEL, IDC_LAYOUT_EDIT, 0, 0);
    pDlg->OnShowWindow(1, 0);
    EXPECT_EQ(0, pDlg->ShowCtrlGroup(IDC_LAYOUT_LABEL, 0, 0));
}
TEST_F(EndingByControl, GroupAboveIt) {
    pDlg->AddCtrlGroup(IDC_LAYOUT_LABEL, IDC_LAYOUT_LABEL, 0, 0);
    pDlg->OnShowWindow(1, 0);
    EXPECT_EQ(0, pDlg->ShowCtrlGroup(IDC_LAYOUT_LABEL, 0, 0));
}
TEST_F(EndingByControl, NestedGroup) {
    pDlg->AddCtrlGroup(IDC_LAYOUT_LABEL, IDC_LAYOUT_EDIT, IDC_LAYOUT_FRAME, 0);
    pDlg->AddCtrlGroup(IDC_LAYOUT_BUTTON, IDC_LAYOUT_BUTTON, 0, IDC_LAYOUT_LABEL);
    pDlg->OnShowWindow(1, 0);
    EXPECT_EQ(0, pDlg->ShowCtrlGroup(IDC_LAYOUT_LABEL, 0, 0));
}
} // namespace
