// Dialogs and items above and below each other.
#include "support/test_window.h"
#include "wnd/dialog/dlg_items.h"
#include "wnd/dialog/probe_dlg.h"

namespace {
TEST(GetTopDlg, ClimbsFromTheWindowsParentToADialogThatIsNoPage) {
    OpenDlg top(IDD_DIALOG_ITEMS);
    ProbeDlg page;
    page.isChildDlg = 1;
    ASSERT_NE(nullptr, page.Modeless(IDD_DIALOG_PAGE, nullptr, top, 0));
    EXPECT_EQ(static_cast<CSDlg*>(&top), ::GetTopDlg(::GetDlgItem(page, IDC_EDIT)));
    EXPECT_EQ(static_cast<CSDlg*>(&top), ::GetTopDlg(page));
    EXPECT_EQ(static_cast<CSDlg*>(&top), ::GetTopDlg(::GetDlgItem(top, IDOK)));
    EXPECT_EQ(nullptr, ::GetTopDlg(top)) << "itself is not above itself";
    EXPECT_EQ(nullptr, ::GetTopDlg(nullptr));
    page.Destroy();
}

TEST(GetTopDlg, PassesOverWindowsWithoutAnObjectAndOthersObjects) {
    OpenDlg top(IDD_DIALOG_HIDDEN);
    TestWindow frame(L"STATIC", top, WS_CHILD);
    TestWindow inner(L"STATIC", frame, WS_CHILD);
    CSWnd plain;
    plain.Subclass(frame);
    EXPECT_EQ(static_cast<CSDlg*>(&top), ::GetTopDlg(inner));
    frame.Destroy();
    TestWindow alone;
    TestWindow child(L"STATIC", alone, WS_CHILD);
    EXPECT_EQ(nullptr, ::GetTopDlg(child));
}

TEST(CheckDlgIDs, ComparesTheChildrenInTheirOrder) {
    OpenDlg dlg(IDD_DIALOG_HIDDEN);
    unsigned nLabel = static_cast<unsigned>(::GetDlgCtrlID(::GetWindow(dlg, GW_CHILD)));
    unsigned nothing[] = {0}, first[] = {nLabel, 0}, both[] = {nLabel, IDOK, 0};
    unsigned oneMore[] = {nLabel, IDOK, 77, 0}, swapped[] = {IDOK, nLabel, 0};
    unsigned other[] = {nLabel, IDCANCEL, 0};
    EXPECT_EQ(1, ::CheckDlgIDs(dlg, nothing));
    EXPECT_EQ(1, ::CheckDlgIDs(dlg, first));
    EXPECT_EQ(1, ::CheckDlgIDs(dlg, both));
    EXPECT_EQ(1, ::CheckDlgIDs(dlg, oneMore)) << "the children end first";
    EXPECT_EQ(0, ::CheckDlgIDs(dlg, swapped));
    EXPECT_EQ(0, ::CheckDlgIDs(dlg, other));
    TestWindow childless;
    EXPECT_EQ(1, ::CheckDlgIDs(childless, both));
}
} // namespace
