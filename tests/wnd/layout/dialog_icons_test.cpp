#include "support/gui_objects.h"
#include "support/test_resource_ids.h"
#include "wnd/layout/csdlg_main.h"
#include "wnd/layout/layout_probe.h"
#include "wnd/wnd_probe.h"

#include <gtest/gtest.h>
#include <climits>
#include <memory>

namespace {
constexpr int kNoIcon = 31999;

int WidthOf(HICON hicon) {
    ICONINFO info{};
    if (!::GetIconInfo(hicon, &info)) return -1;
    BITMAP bitmap{};
    ::GetObjectW(info.hbmMask, sizeof(bitmap), &bitmap);
    ::DeleteObject(info.hbmColor);
    ::DeleteObject(info.hbmMask);
    return bitmap.bmWidth;
}
HICON IconOf(HWND hwnd, WPARAM wKind) {
    return reinterpret_cast<HICON>(::SendMessageW(hwnd, WM_GETICON, wKind, 0));
}

TEST(IconForDlg, StartsWithoutOne) {
    CSIconForDlg icon;
    EXPECT_EQ(nullptr, static_cast<HICON>(icon));
}

TEST(IconForDlg, LoadsTheSmallOrTheBigOne) {
    CSIconForDlg small, big;
    EXPECT_EQ(1, small.Init(IDI_TEST, 1));
    EXPECT_EQ(::GetSystemMetrics(SM_CXSMICON), WidthOf(small));
    EXPECT_EQ(1, big.Init(IDI_TEST, 0));
    EXPECT_EQ(::GetSystemMetrics(SM_CXICON), WidthOf(big));
}

TEST(IconForDlg, NegativeIdIsTheLibrarys) {
    CSIconForDlg icon;
    EXPECT_EQ(1, icon.Init(-IDI_TEST, 1));
    EXPECT_NE(nullptr, static_cast<HICON>(icon));
}

TEST(IconForDlg, NoSuchIconIsNone) {
    for (int nId : {kNoIcon, -kNoIcon, 0, INT_MAX, INT_MIN}) {
        CSIconForDlg icon;
        EXPECT_EQ(0, icon.Init(nId, 1)) << nId;
        EXPECT_EQ(nullptr, static_cast<HICON>(icon));
    }
}

TEST(IconForDlg, GivesBothToTheWindow) {
    PlainWnd wnd;
    CSIconForDlg icon;
    EXPECT_EQ(1, icon.InitEx(wnd, IDI_TEST));
    EXPECT_EQ(::GetSystemMetrics(SM_CXSMICON), WidthOf(IconOf(wnd, ICON_SMALL)));
    EXPECT_EQ(::GetSystemMetrics(SM_CXICON), WidthOf(IconOf(wnd, ICON_BIG)));
    HICON hicon = icon;
    EXPECT_TRUE(hicon == IconOf(wnd, ICON_SMALL) || hicon == IconOf(wnd, ICON_BIG));
}

TEST(IconForDlg, WindowKeepsItsIconsIfThereAreNone) {
    PlainWnd wnd;
    CSIconForDlg icon;
    EXPECT_EQ(0, icon.InitEx(wnd, kNoIcon));
    EXPECT_EQ(nullptr, IconOf(wnd, ICON_BIG));
    EXPECT_EQ(1, icon.InitEx(nullptr, IDI_TEST)) << "without a window they are loaded all the same";
}

TEST(IconForDlg, LeavesNoObjectsBehind) {
    PlainWnd wnd;
    {
        CSIconForDlg first; // what the platform makes once
        first.InitEx(wnd, IDI_TEST);
    }
    const int nBefore = CountGdiObjects();
    for (int i = 0; i < 10; ++i) {
        CSIconForDlg icon;
        icon.Init(IDI_TEST, 1);
        icon.Init(IDI_TEST, 0);
        icon.InitEx(wnd, IDI_TEST);
        icon.InitEx(wnd, IDI_TEST);
    }
    EXPECT_EQ(nBefore, CountGdiObjects());
}

TEST(IconForDlg, MainDialogLeavesNoObjectsBehind) {
    struct Main : CSDlgMain {
        Main() : CSDlgMain(::GetModuleHandleW(nullptr), IDI_TEST) {}
    };
    { Main first; }
    const int nBefore = CountGdiObjects();
    for (int i = 0; i < 10; ++i) Main dlg;
    EXPECT_EQ(nBefore, CountGdiObjects());
}

TEST(DialogObjects, ManyDialogsLeaveNoneBehind) {
    auto RunOne = [] {
        MyWindowPlacement record;
        LayoutDlg dlg;
        dlg.AddCtrlGroup(IDC_LAYOUT_BUTTON, IDC_LAYOUT_BUTTON, 0, 0);
        dlg.MakeSizing(kDlgResizeWidth | kDlgResizeHeight, &record);
        dlg.SetSize(400, 300);
        ::ShowWindow(dlg, SW_SHOWNOACTIVATE);
        ::UpdateWindow(dlg);
    };
    RunOne();
    const int nGdi = CountGdiObjects(), nUser = CountUserObjects();
    for (int i = 0; i < 20; ++i) RunOne();
    EXPECT_EQ(nGdi, CountGdiObjects());
    EXPECT_EQ(nUser, CountUserObjects());
}
} // namespace
