#include "wnd/layout/layout_probe.h"
#include "wnd/layout/recorded_positions.h"

#include <gtest/gtest.h>

namespace {
constexpr int kHead = 1100, kA1 = 1101, kA2 = 1102, kA3 = 1103, kB1 = 1110, kB2 = 1111,
              kTail = 1120, kTail2 = 1121, kFrame = 1190, kNoItem = 4711;

/// A hidden dialog, in the order of siblings: a heading, a run of three, a run of two, two more.
struct CtrlGroups : testing::Test {
    CtrlGroups() {
        EXPECT_TRUE(dlg.Make(IDD_LAYOUT_EMPTY));
        Add(kHead, 10);
        Add(kA1, 40);
        Add(kA2, 65);
        Add(kA3, 90);
        Add(kB1, 120);
        Add(kB2, 145);
        Add(kTail, 180);
        Add(kTail2, 210);
    }
    HWND Add(int nId, int nTop, int nHeight = 20) {
        return dlg.AddItem(nId, {10, nTop, 90, nTop + nHeight});
    }
    HWND Item(int nId) const { return ::GetDlgItem(dlg, nId); }
    int Top(int nId) const { return ChildRect(Item(nId)).top; }
    int Bottom(int nId) const { return ChildRect(Item(nId)).bottom; }
    /// What happens when the dialog is shown.
    void Measure() { dlg.OnShowWindow(1, 0); }
    int HeightOf(int nFirst) { return dlg.FindCtrlGroup(nFirst, 0)->groupHeight; }
    void ExpectTops(int nB1, int nB2, int nTail, int nTail2) {
        EXPECT_EQ(nB1, Top(kB1));
        EXPECT_EQ(nB2, Top(kB2));
        EXPECT_EQ(nTail, Top(kTail));
        EXPECT_EQ(nTail2, Top(kTail2));
    }
    void ExpectOn(std::initializer_list<int> ids, bool bOn) {
        for (int nId : ids) {
            EXPECT_EQ(bOn, IsShown(Item(nId))) << nId;
            EXPECT_EQ(bOn, ::IsWindowEnabled(Item(nId)) != 0) << nId;
        }
    }
    LayoutDlg dlg;
};

TEST_F(CtrlGroups, ANewGroupIsShownAndAtTheTail) {
    EXPECT_EQ(1, dlg.ctrlGroupsMeasured);
    EXPECT_EQ(1, dlg.AddCtrlGroup(kA1, kA3, kFrame, 0));
    EXPECT_EQ(0, dlg.ctrlGroupsMeasured);
    EXPECT_EQ(1, dlg.AddCtrlGroup(kB1, kB2, 0, kA1));
    ASSERT_EQ(2, dlg.ctrlGroups.GetCount());
    auto* pGroup = static_cast<CSCtrlGroup*>(dlg.ctrlGroups.GetTail());
    EXPECT_EQ(unsigned{kB1}, pGroup->firstId);
    EXPECT_EQ(unsigned{kB2}, pGroup->lastId);
    EXPECT_EQ(0u, pGroup->containerId);
    EXPECT_EQ(unsigned{kA1}, pGroup->parentGroupId);
    EXPECT_EQ(1, pGroup->isShown);
    EXPECT_EQ(0, pGroup->groupHeight);
}

TEST_F(CtrlGroups, AreFoundByFirstOrByContainer) {
    dlg.AddCtrlGroup(kA1, kA3, 0, 0);
    dlg.AddCtrlGroup(kB1, kB2, kFrame, 0);
    dlg.AddCtrlGroup(kB1, kTail, kFrame, 0);
    EXPECT_EQ(unsigned{kA3}, dlg.FindCtrlGroup(kA1, 0)->lastId);
    EXPECT_EQ(unsigned{kB2}, dlg.FindCtrlGroup(kB1, 0)->lastId);
    EXPECT_EQ(unsigned{kB2}, dlg.FindCtrlGroup(0, kFrame)->lastId);
    EXPECT_EQ(nullptr, dlg.FindCtrlGroup(kA2, 0));
    EXPECT_EQ(nullptr, dlg.FindCtrlGroup(0, kNoItem));
    EXPECT_EQ(nullptr, dlg.FindCtrlGroup(0, 0));
}

TEST_F(CtrlGroups, HeightReachesToTheNextSibling) {
    dlg.AddCtrlGroup(kA1, kA3, 0, 0);
    dlg.AddCtrlGroup(kB1, kB2, 0, 0);
    Measure();
    EXPECT_EQ(80, HeightOf(kA1));
    EXPECT_EQ(60, HeightOf(kB1));
    EXPECT_EQ(1, dlg.ctrlGroupsMeasured);
}

TEST_F(CtrlGroups, AreMeasuredBeforeTheControlsAreUpdated) {
    struct Asking : LayoutDlg {
        int UpdateControls() override {
            nMeasuredThen = ctrlGroupsMeasured;
            return 1;
        }
        int nMeasuredThen = -1;
    } asking;
    ASSERT_TRUE(asking.Make(IDD_LAYOUT_ITEMS));
    asking.AddCtrlGroup(IDC_LAYOUT_LABEL, IDC_LAYOUT_BUTTON, 0, 0);
    ::ShowWindow(asking, SW_SHOWNOACTIVATE);
    EXPECT_EQ(1, asking.nMeasuredThen);
    EXPECT_LT(0, asking.FindCtrlGroup(IDC_LAYOUT_LABEL, 0)->groupHeight);
}

TEST_F(CtrlGroups, AreMeasuredOnce) {
    dlg.AddCtrlGroup(kA1, kA3, 0, 0);
    Measure();
    PlaceItem(dlg, kB1, {10, 500, 90, 520});
    Measure();
    EXPECT_EQ(80, HeightOf(kA1));
    dlg.AddCtrlGroup(kB1, kB2, 0, 0);
    Measure();
    EXPECT_EQ(460, HeightOf(kA1));
}

TEST_F(CtrlGroups, HeightEndsAtTheContainerIfThatIsNearer) {
    HWND hwndFrame = Add(kFrame, 35, 80); // to 115
    ::SetWindowPos(hwndFrame, HWND_TOP, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE);
    dlg.AddCtrlGroup(kA1, kA3, kFrame, 0);
    Measure();
    EXPECT_EQ(75, HeightOf(kA1));
    PlaceItem(dlg, kFrame, {10, 35, 90, 300});
    dlg.ctrlGroupsMeasured = 0;
    Measure();
    EXPECT_EQ(80, HeightOf(kA1)) << "the next item is nearer";
}

TEST_F(CtrlGroups, AContainerBehindTheGroupIsNoNextSibling) {
    // A frame follows the run that it holds, as in a template drawn from the inside out.
    HWND hwndFrame = Add(kFrame, 35, 95); // to 130
    ::SetWindowPos(hwndFrame, Item(kA3), 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE);
    dlg.AddCtrlGroup(kA1, kA3, kFrame, 0);
    Measure();
    EXPECT_EQ(90, HeightOf(kA1));
    // For a group without a container it is a sibling like others.
    dlg.AddCtrlGroup(kA2, kA3, 0, 0);
    Measure();
    EXPECT_EQ(35 - 65, HeightOf(kA2));
}

TEST_F(CtrlGroups, LastGroupReachesToTheEndOfTheDialogOrContainer) {
    dlg.AddCtrlGroup(kTail, kTail2, 0, 0);
    Measure();
    EXPECT_EQ(ClientRect(dlg).bottom - 180, HeightOf(kTail));
    HWND hwndFrame = Add(kFrame, 175, 66); // to 241
    ::SetWindowPos(hwndFrame, HWND_TOP, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE);
    dlg.FindCtrlGroup(kTail, 0)->containerId = kFrame;
    dlg.ctrlGroupsMeasured = 0;
    Measure();
    EXPECT_EQ(61, HeightOf(kTail));
}

TEST_F(CtrlGroups, FoldingMovesWhatStandsBelow) {
    dlg.AddCtrlGroup(kA1, kA3, 0, 0);
    Measure();
    EXPECT_EQ(-80, dlg.ShowCtrlGroup(kA1, 0, 0));
    ExpectTops(40, 65, 100, 130);
    ExpectOn({kA1, kA2, kA3}, false);
    ExpectOn({kHead, kB1, kB2, kTail, kTail2}, true);
    EXPECT_EQ(10, Top(kHead));
    EXPECT_EQ(40, Top(kA1));
    EXPECT_EQ(90, Top(kA3));
    EXPECT_EQ(80, dlg.ShowCtrlGroup(kA1, 1, 0));
    ExpectTops(120, 145, 180, 210);
    ExpectOn({kA1, kA2, kA3}, true);
}

TEST_F(CtrlGroups, FoldingTwiceIsFoldingOnce) {
    dlg.AddCtrlGroup(kA1, kA3, 0, 0);
    Measure();
    EXPECT_EQ(0, dlg.ShowCtrlGroup(kA1, 1, 0)) << "it is shown";
    EXPECT_EQ(-80, dlg.ShowCtrlGroup(kA1, 0, 0));
    RecordedPositions recorded;
    EXPECT_EQ(0, dlg.ShowCtrlGroup(kA1, 0, 0));
    EXPECT_TRUE(recorded.Calls().empty());
    ExpectTops(40, 65, 100, 130);
}

TEST_F(CtrlGroups, UnknownGroupsAreNothing) {
    RecordedPositions recorded;
    EXPECT_EQ(0, dlg.ShowCtrlGroup(kA1, 0, 0));
    dlg.AddCtrlGroup(kB1, kB2, kFrame, 0);
    EXPECT_EQ(0, dlg.ShowCtrlGroup(kA1, 0, 0));
    EXPECT_EQ(0, dlg.ShowCtrlGroup(0, 0, 0));
    EXPECT_EQ(0, dlg.ShowCtrlGroup(kFrame, 0, 0));
    EXPECT_TRUE(recorded.Calls().empty());
}

TEST_F(CtrlGroups, GroupsFoldIndependently) {
    dlg.AddCtrlGroup(kA1, kA3, 0, 0);
    dlg.AddCtrlGroup(kB1, kB2, 0, 0);
    Measure();
    EXPECT_EQ(-60, dlg.ShowCtrlGroup(kB1, 0, 0));
    EXPECT_EQ(120, Top(kTail));
    EXPECT_EQ(-80, dlg.ShowCtrlGroup(kA1, 0, 0));
    ExpectTops(40, 65, 40, 70);
    EXPECT_EQ(60, dlg.ShowCtrlGroup(kB1, 1, 0));
    ExpectTops(40, 65, 100, 130);
    EXPECT_EQ(80, dlg.ShowCtrlGroup(kA1, 1, 0));
    ExpectTops(120, 145, 180, 210);
}

TEST_F(CtrlGroups, FoldingBeforeItIsMeasuredMovesNothing) {
    dlg.AddCtrlGroup(kA1, kA3, 0, 0);
    EXPECT_EQ(0, dlg.ShowCtrlGroup(kA1, 0, 0));
    ExpectOn({kA1, kA2, kA3}, false);
    ExpectTops(120, 145, 180, 210);
}

TEST_F(CtrlGroups, ContainerShrinksAndGrows) {
    HWND hwndFrame = Add(kFrame, 35, 80);
    ::SetWindowPos(hwndFrame, HWND_TOP, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE);
    dlg.AddCtrlGroup(kA1, kA3, kFrame, 0);
    Measure();
    EXPECT_EQ(-75, dlg.ShowCtrlGroup(kA1, 0, 0));
    EXPECT_EQ(35, Top(kFrame));
    EXPECT_EQ(40, Bottom(kFrame));
    ExpectTops(45, 70, 105, 135);
    EXPECT_EQ(75, dlg.ShowCtrlGroup(kA1, 1, 0));
    EXPECT_EQ(115, Bottom(kFrame));
    ExpectTops(120, 145, 180, 210);
}

TEST_F(CtrlGroups, ItemsAreBroughtIntoView) {
    dlg.AddCtrlGroup(kA1, kA3, 0, 0);
    Measure();
    dlg.ShowCtrlGroup(kA1, 0, 0);
    EXPECT_EQ(std::vector<int>{kA1}, dlg.ensured);
    dlg.ensured.clear();
    dlg.ShowCtrlGroup(kA1, 1, 0);
    EXPECT_EQ((std::vector<int>{kA3, kA1}), dlg.ensured);
}

TEST_F(CtrlGroups, DialogIsRepaintedWithoutErasing) {
    dlg.AddCtrlGroup(kA1, kA3, 0, 0);
    ::ShowWindow(dlg, SW_SHOWNOACTIVATE);
    ::RedrawWindow(dlg, nullptr, nullptr, RDW_UPDATENOW | RDW_ALLCHILDREN);
    ::ValidateRect(dlg, nullptr);
    dlg.ShowCtrlGroup(kA1, 0, 0);
    RECT rc{};
    EXPECT_TRUE(::GetUpdateRect(dlg, &rc, FALSE));
    EXPECT_EQ(ClientRect(dlg), rc);
}

/// A group from kA1 to kB2 with another one, kA3 to kB1, in it.
struct NestedGroups : CtrlGroups {
    NestedGroups() {
        dlg.AddCtrlGroup(kA1, kB2, 0, 0);
        dlg.AddCtrlGroup(kA3, kB1, 0, kA1);
        Measure();
    }
    static constexpr int kOuter = 180 - 40, kInner = 145 - 90;
};

TEST_F(NestedGroups, FoldTogetherByBothHeightsOnce) {
    EXPECT_EQ(kOuter, HeightOf(kA1));
    EXPECT_EQ(kInner, HeightOf(kA3));
    EXPECT_EQ(-(kOuter + kInner), dlg.ShowCtrlGroup(kA1, 0, 0));
    EXPECT_EQ(180 - kOuter - kInner, Top(kTail));
    EXPECT_EQ(210 - kOuter - kInner, Top(kTail2));
    EXPECT_EQ(145, Top(kB2)) << "what is folded away stays where it was";
    EXPECT_EQ(120, Top(kB1));
    ExpectOn({kA1, kA2, kA3, kB1, kB2}, false);
    EXPECT_EQ(0, dlg.FindCtrlGroup(kA3, 0)->isShown);
    EXPECT_EQ(kOuter + kInner, dlg.ShowCtrlGroup(kA1, 1, 0));
    ExpectTops(120, 145, 180, 210);
    ExpectOn({kA1, kA2, kA3, kB1, kB2}, true);
    EXPECT_EQ(1, dlg.FindCtrlGroup(kA3, 0)->isShown);
}

TEST_F(NestedGroups, InnerOneFoldsAlone) {
    EXPECT_EQ(-kInner, dlg.ShowCtrlGroup(kA3, 0, 0));
    EXPECT_EQ(145 - kInner, Top(kB2));
    EXPECT_EQ(180 - kInner, Top(kTail));
    ExpectOn({kA3, kB1}, false);
    ExpectOn({kA1, kA2, kB2}, true);
    EXPECT_EQ(-kOuter, dlg.ShowCtrlGroup(kA1, 0, 0)) << "the inner one is folded already";
    EXPECT_EQ(180 - kInner - kOuter, Top(kTail));
    EXPECT_EQ(kOuter + kInner, dlg.ShowCtrlGroup(kA1, 1, 0));
    EXPECT_EQ(180, Top(kTail));
}

TEST_F(NestedGroups, NestedCallMovesNothingAndLeavesTheContainer) {
    Add(kFrame, 300, 100);
    dlg.FindCtrlGroup(kA3, 0)->containerId = kFrame;
    RECT rcFrame = ItemRect(dlg, kFrame);
    RecordedPositions recorded;
    EXPECT_EQ(-kInner, dlg.ShowCtrlGroup(kA3, 0, 1));
    EXPECT_EQ(rcFrame, ItemRect(dlg, kFrame));
    EXPECT_EQ(145, Top(kB2));
    EXPECT_EQ(180, Top(kTail));
    EXPECT_TRUE(dlg.ensured.empty());
    ExpectOn({kA3, kB1}, false);
}

TEST_F(NestedGroups, GroupOfAnotherParentIsAPlainItem) {
    dlg.FindCtrlGroup(kA3, 0)->parentGroupId = kTail;
    EXPECT_EQ(-kOuter, dlg.ShowCtrlGroup(kA1, 0, 0));
    EXPECT_EQ(1, dlg.FindCtrlGroup(kA3, 0)->isShown);
    ExpectOn({kA1, kA2, kA3, kB1, kB2}, false);
}

TEST_F(NestedGroups, ThreeLevelsAddUp) {
    dlg.AddCtrlGroup(kB1, kB1, 0, kA3);
    Measure();
    constexpr int kInnermost = 145 - 120;
    EXPECT_EQ(-(kOuter + kInner + kInnermost), dlg.ShowCtrlGroup(kA1, 0, 0));
    EXPECT_EQ(180 - kOuter - kInner - kInnermost, Top(kTail));
    EXPECT_EQ(kOuter + kInner + kInnermost, dlg.ShowCtrlGroup(kA1, 1, 0));
    ExpectTops(120, 145, 180, 210);
}

TEST_F(CtrlGroups, AGroupThatIsItsOwnParentFoldsAsAny) {
    dlg.AddCtrlGroup(kA1, kA3, 0, kA1);
    Measure();
    EXPECT_EQ(-80, dlg.ShowCtrlGroup(kA1, 0, 0));
    ExpectOn({kA1, kA2, kA3}, false);
    ExpectTops(40, 65, 100, 130);
}

TEST_F(CtrlGroups, CircularParentsEnd) {
    dlg.AddCtrlGroup(kA1, kNoItem, 0, kB1); // to the last of all
    dlg.AddCtrlGroup(kB1, kNoItem, 0, kA1);
    Measure();
    dlg.ShowCtrlGroup(kA1, 0, 0);
    ExpectOn({kA1, kB1, kTail2}, false);
    dlg.ShowCtrlGroup(kB1, 1, 0);
    dlg.ShowCtrlGroup(kA1, 1, 0);
    ExpectOn({kA1, kA3, kB1, kTail2}, true);
    ExpectOn({kHead}, true);
}

TEST_F(CtrlGroups, MissingItemsBreakNothing) {
    dlg.AddCtrlGroup(kNoItem, kA3, 0, 0);
    dlg.AddCtrlGroup(kTail, kNoItem, 0, 0);
    dlg.AddCtrlGroup(kB1, kB2, kNoItem, 0);
    dlg.AddCtrlGroup(0, 0, 0, 0);
    dlg.AddCtrlGroup(0xFFFFFFFF, 0xFFFFFFFF, 0xFFFFFFFF, 0xFFFFFFFF);
    Measure();
    for (int nShow : {0, 1}) {
        for (unsigned nFirst : {unsigned{kNoItem}, unsigned{kTail}, 0u, 0xFFFFFFFFu}) {
            dlg.ShowCtrlGroup(nFirst, nShow, 0);
        }
    }
    ExpectTops(120, 145, 180, 210);
    ExpectOn({kHead, kA1, kA3, kB1, kTail, kTail2}, true);
    dlg.ShowCtrlGroup(kB1, 0, 0);
    ExpectOn({kB1, kB2}, false);
}

TEST_F(CtrlGroups, ARunWhoseEndStandsBeforeItsBeginningEndsWithTheSiblings) {
    dlg.AddCtrlGroup(kB1, kA1, 0, 0);
    Measure();
    dlg.ShowCtrlGroup(kB1, 0, 0);
    ExpectOn({kB1, kB2, kTail, kTail2}, false);
    ExpectOn({kHead, kA1, kA2, kA3}, true);
}

TEST_F(CtrlGroups, ItemsDestroyedMeanwhileBreakNothing) {
    dlg.AddCtrlGroup(kA1, kA3, kFrame, 0);
    Add(kFrame, 300, 80);
    Measure();
    for (int nId : {kA3, kFrame, kB1, kA1}) {
        ::DestroyWindow(Item(nId));
        dlg.ShowCtrlGroup(kA1, 0, 0);
        dlg.ShowCtrlGroup(kA1, 1, 0);
    }
    EXPECT_EQ(10, Top(kHead));
}

TEST_F(CtrlGroups, WithoutAWindowTheyAreKept) {
    LayoutDlg other;
    EXPECT_EQ(1, other.AddCtrlGroup(kA1, kA3, 0, 0));
    EXPECT_NE(nullptr, other.FindCtrlGroup(kA1, 0));
    EXPECT_EQ(0, other.ShowCtrlGroup(kA1, 0, 0)) << "no height was measured";
}
} // namespace
