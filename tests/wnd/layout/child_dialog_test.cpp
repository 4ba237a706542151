#include "wnd/control/csctrl.h"
#include "wnd/layout/csdlg_main.h"
#include "wnd/layout/layout_probe.h"

#include <gtest/gtest.h>

namespace {
struct ParentDlg : LayoutDlg {
    void OnButtonClicked(unsigned short nId) override { clicked.push_back(nId); }
    void OnComboSelChanged(unsigned short nId) override { chosen.push_back(nId); }
    std::vector<int> clicked, chosen;
};

struct PageDlg : CSDlgChild {
    ~PageDlg() override {
        if (hWnd && ::IsWindow(hWnd)) ::DestroyWindow(hWnd);
    }
    void OnResize(int dw, int dh) override {
        resizes.push_back({dw, dh});
        rcAtResize = WindowRect(hWnd);
    }
    int Make(CSDlg& parent, int nShow = 1) {
        return Init(&parent, IDC_LAYOUT_SLOT, IDD_LAYOUT_PAGE, nullptr, nShow);
    }
    using CSDlg::hooks;
    using CSDlg::isChildDlg;
    using CSDlgChild::parentDlg;
    using CSDlgChild::slotId;
    std::vector<std::pair<int, int>> resizes;
    RECT rcAtResize{};
};

struct ChildDialog : testing::Test {
    ChildDialog() {
        EXPECT_TRUE(parent.Make(IDD_LAYOUT_MAIN));
        PlaceItem(parent, IDC_LAYOUT_SLOT, {15, 25, 165, 105});
    }
    ParentDlg parent;
    PageDlg page;
};

TEST_F(ChildDialog, TakesThePlaceOfItsSlot) {
    ASSERT_EQ(1, page.Make(parent));
    EXPECT_EQ((RECT{15, 25, 165, 105}), ChildRect(page));
    EXPECT_EQ(static_cast<HWND>(parent), ::GetParent(page));
    EXPECT_EQ(&parent, page.parentDlg);
    EXPECT_EQ(unsigned{IDC_LAYOUT_SLOT}, page.slotId);
    EXPECT_EQ(1, page.isChildDlg);
    EXPECT_TRUE(IsShown(page));
    EXPECT_TRUE(page.resizes.empty());
    EXPECT_TRUE(page.IsInitialized());
}

TEST_F(ChildDialog, ComesHiddenIfAsked) {
    ASSERT_EQ(1, page.Make(parent, 0));
    EXPECT_FALSE(IsShown(page));
    EXPECT_EQ((RECT{15, 25, 165, 105}), ChildRect(page));
}

TEST_F(ChildDialog, WithoutATemplateThereIsNone) {
    EXPECT_EQ(0, page.Init(&parent, IDC_LAYOUT_SLOT, 399, nullptr, 1));
    EXPECT_EQ(nullptr, static_cast<HWND>(page));
    EXPECT_TRUE(page.resizes.empty());
}

TEST_F(ChildDialog, WithoutASlotItStaysWhereTheTemplateSays) {
    EXPECT_EQ(1, page.Init(&parent, 4711, IDD_LAYOUT_PAGE, nullptr, 1));
    EXPECT_TRUE(::IsWindow(page));
}

TEST_F(ChildDialog, WithoutAParentThereIsNone) {
    EXPECT_EQ(0, page.Init(nullptr, IDC_LAYOUT_SLOT, IDD_LAYOUT_PAGE, nullptr, 1));
}

TEST_F(ChildDialog, ParentWithoutAWindowHasNoPages) {
    ParentDlg unborn;
    EXPECT_EQ(0, page.Make(unborn));
}

TEST_F(ChildDialog, CatchesUpWithAParentThatHasGrown) {
    ParentDlg sizing;
    ASSERT_TRUE(sizing.MakeSizing());
    sizing.AddItem(IDC_LAYOUT_SLOT, {5, 6, 105, 76});
    sizing.SetSize(sizing.minWidth + 70, sizing.minHeight + 30);
    ASSERT_EQ(1, page.Make(sizing));
    EXPECT_EQ((std::vector<std::pair<int, int>>{{70, 30}}), page.resizes);
    EXPECT_EQ((RECT{5, 6, 105, 76}), ChildRect(page));
    EXPECT_NE(Width(ChildRect(page)), Width(page.rcAtResize)) << "before it takes its place";
}

TEST_F(ChildDialog, OneDirectionIsEnoughToCatchUp) {
    ParentDlg sizing;
    ASSERT_TRUE(sizing.MakeSizing());
    sizing.SetSize(sizing.minWidth, sizing.minHeight + 30);
    ASSERT_EQ(1, page.Make(sizing));
    EXPECT_EQ((std::vector<std::pair<int, int>>{{0, 30}}), page.resizes);
}

TEST_F(ChildDialog, ParentAtItsSmallestIsNothingToCatchUp) {
    ParentDlg sizing;
    ASSERT_TRUE(sizing.MakeSizing());
    ASSERT_EQ(1, page.Make(sizing));
    EXPECT_TRUE(page.resizes.empty());
}

TEST_F(ChildDialog, ParentOfAFixedSizeHasNotGrown) {
    ParentDlg fixed;
    fixed.SetFlags(kDlgFixedWidth | kDlgFixedHeight, 1);
    ASSERT_TRUE(fixed.Make(IDD_LAYOUT_SIZING));
    fixed.SetSize(400, 300);
    ASSERT_EQ(1, page.Make(fixed));
    EXPECT_TRUE(page.resizes.empty());
}

TEST_F(ChildDialog, IsNotDragged) {
    ASSERT_EQ(1, page.Make(parent));
    EXPECT_FALSE(page.IsFullDrag());
    EXPECT_EQ(1, page.hooks.GetCount());
    EXPECT_TRUE(parent.IsFullDrag());
    POINT pt = {100, 5};
    ::ClientToScreen(page, &pt);
    EXPECT_EQ(HTCLIENT, ::SendMessageW(page, WM_NCHITTEST, 0, PointParam(pt.x, pt.y)));
}

TEST_F(ChildDialog, InitialisationGivesTheBasesResult) {
    struct Asked : PageDlg {
        __int64 OnInitDialog(unsigned __int64 wParam, __int64 lParam) override {
            return qwAnswer = CSDlgChild::OnInitDialog(wParam, lParam);
        }
        __int64 qwAnswer = -1;
    } asked;
    ASSERT_EQ(1, asked.Make(parent));
    EXPECT_EQ(1, asked.qwAnswer);
}

TEST_F(ChildDialog, DoesNotCloseItself) {
    ASSERT_EQ(1, page.Make(parent));
    EXPECT_EQ(1, page.OnOK());
    EXPECT_EQ(1, page.OnCancel());
    ::SendMessageW(page, WM_COMMAND, IDOK, 0);
    ::SendMessageW(page, WM_COMMAND, IDCANCEL, 0);
    EXPECT_TRUE(::IsWindow(page));
    EXPECT_FALSE(page.IsClosed());
    EXPECT_EQ((std::vector<int>{IDOK, IDCANCEL}), parent.clicked);
}

TEST_F(ChildDialog, ParentSeesItsClicksAndChoices) {
    ASSERT_EQ(1, page.Make(parent));
    ::SendMessageW(::GetDlgItem(page, IDC_LAYOUT_BUTTON), BM_CLICK, 0, 0);
    EXPECT_EQ(std::vector<int>{IDC_LAYOUT_BUTTON}, parent.clicked);
    ::SendMessageW(page, WM_COMMAND, MAKEWPARAM(IDC_LAYOUT_COMBO, CBN_SELCHANGE),
                   reinterpret_cast<LPARAM>(::GetDlgItem(page, IDC_LAYOUT_COMBO)));
    EXPECT_EQ(std::vector<int>{IDC_LAYOUT_COMBO}, parent.chosen);
    page.OnButtonClicked(0);
    page.OnComboSelChanged(0xFFFF);
    EXPECT_EQ(0, parent.clicked.back());
    EXPECT_EQ(0xFFFF, parent.chosen.back());
}

TEST_F(ChildDialog, PageWithoutAParentKeepsItsClicks) {
    page.OnButtonClicked(1);
    page.OnComboSelChanged(1);
    EXPECT_TRUE(parent.clicked.empty());
}

TEST_F(ChildDialog, PageInAPageForwardsUpward) {
    ASSERT_EQ(1, page.Make(parent));
    PageDlg inner;
    ASSERT_EQ(1, inner.Init(&page, IDC_LAYOUT_BUTTON, IDD_LAYOUT_PAGE, nullptr, 1));
    EXPECT_EQ(ItemRect(page, IDC_LAYOUT_BUTTON), ChildRect(inner));
    ::SendMessageW(::GetDlgItem(inner, IDC_LAYOUT_BUTTON), BM_CLICK, 0, 0);
    EXPECT_EQ(std::vector<int>{IDC_LAYOUT_BUTTON}, parent.clicked);
}

TEST_F(ChildDialog, TakesNoForeground) {
    ::ShowWindow(parent, SW_SHOW);
    ParentDlg other;
    ASSERT_NE(nullptr, other.Modeless(IDD_LAYOUT_MAIN, nullptr, nullptr, 1));
    ::SetForegroundWindow(other);
    ASSERT_EQ(static_cast<HWND>(other), ::GetForegroundWindow());
    ASSERT_EQ(1, page.Make(parent));
    EXPECT_EQ(static_cast<HWND>(other), ::GetForegroundWindow());
}

TEST_F(ChildDialog, GoesWithItsParent) {
    ASSERT_EQ(1, page.Make(parent));
    parent.CloseDialog(IDCANCEL, 0);
    EXPECT_FALSE(::IsWindow(page));
    ParentDlg next;
    ASSERT_TRUE(next.Make(IDD_LAYOUT_MAIN));
    EXPECT_EQ(1, page.Make(next)) << "and can stand in another one";
    EXPECT_FALSE(page.IsFullDrag());
}
/// A parent that deletes itself with its window, and a page that is its member.
struct ParentWithPage : CSDlg {
    explicit ParentWithPage(int& nDeleted) : n(nDeleted) { autoDelete = 1; }
    ~ParentWithPage() override { ++n; }
    void OnButtonClicked(unsigned short) override {
        ::DestroyWindow(hWnd);
        EXPECT_EQ(0, n) << "while a handler of its page runs";
    }
    CSDlgChild member;
    int& n;
};
TEST(ChildDialogLife, ParentThatGoesInAHandlerOfItsPageOutlastsIt) {
    int nDeleted = 0;
    auto* pParent = new ParentWithPage(nDeleted);
    ASSERT_NE(nullptr, pParent->Modeless(IDD_LAYOUT_MAIN, nullptr, nullptr, 0));
    ASSERT_EQ(1, pParent->member.Init(pParent, IDC_LAYOUT_SLOT, IDD_LAYOUT_PAGE, nullptr, 0));
    ::SendMessageW(pParent->member, WM_COMMAND, IDOK, 0);
    EXPECT_EQ(1, nDeleted);
}

TEST_F(ChildDialog, PageThatRunsKeepsItsParent) {
    ASSERT_EQ(1, page.Make(parent));
    ParentDlg other;
    ASSERT_TRUE(other.Make(IDD_LAYOUT_MAIN));
    EXPECT_EQ(0, page.Make(other));
    EXPECT_EQ(&parent, page.parentDlg);
}
} // namespace
