// The links of a rich text control: the keyboard and its focus.
#include "richtext/control/html_dlg.h"

#include <gtest/gtest.h>
#include <vector>

namespace {
TEST(CSStaticHTMLLinks, DialogCodeWantsSpaceAndReturnOnlyWhereThereIsALink) {
    ShownHtml shown(IDC_HTML_KEYS);
    EXPECT_EQ(DLGC_WANTMESSAGE, shown.html.SendMsg(WM_GETDLGCODE, VK_SPACE, 0));
    EXPECT_EQ(DLGC_WANTMESSAGE, shown.html.SendMsg(WM_GETDLGCODE, VK_RETURN, 0));
    EXPECT_EQ(DLGC_STATIC, shown.html.SendMsg(WM_GETDLGCODE, VK_TAB, 0));
    EXPECT_EQ(DLGC_STATIC, shown.html.SendMsg(WM_GETDLGCODE, 0, 0));
    shown.html.SetHTMLText(L"none");
    shown.html.Paint();
    EXPECT_EQ(DLGC_STATIC, shown.html.SendMsg(WM_GETDLGCODE, VK_SPACE, 0));
    EXPECT_EQ(DLGC_STATIC, shown.html.SendMsg(WM_GETDLGCODE, VK_RETURN, 0));
}

TEST(CSStaticHTMLLinks, KeyLetGoIsTheControlsOwnCommandWithTheFocusAndALink) {
    ShownHtml shown(IDC_HTML_KEYS);
    const auto up = [&](WPARAM wKey) {
        shown.dlg.commands.clear();
        shown.html.SendMsg(WM_KEYUP, wKey, 0);
        EXPECT_TRUE(shown.dlg.commands.empty()); // posted, not sent
        shown.dlg.Pump();
        return shown.dlg.Ids();
    };
    ::SetFocus(::GetDlgItem(shown.dlg.hWnd, IDC_HTML_EDIT));
    EXPECT_TRUE(up(VK_SPACE).empty());
    shown.html.SetFocus();
    EXPECT_EQ(std::vector<int>{IDC_HTML_KEYS}, up(VK_SPACE));
    EXPECT_EQ(shown.html.hWnd, shown.dlg.commands[0].hwnd);
    EXPECT_EQ(std::vector<int>{IDC_HTML_KEYS}, up(VK_RETURN));
    EXPECT_TRUE(up(VK_TAB).empty());
    EXPECT_TRUE(up('A').empty());
    shown.html.SetHTMLText(L"<A1>x</A1> <A2>y</A2>");
    shown.html.Paint();
    EXPECT_EQ(std::vector<int>{IDC_HTML_KEYS}, up(VK_SPACE)); // no choice among links
    shown.html.SetHTMLText(L"none");
    shown.html.Paint();
    EXPECT_TRUE(up(VK_SPACE).empty());
}

TEST(CSStaticHTMLLinks, RealKeysReachTheLinkThroughTheDialog) {
    ShownHtml shown(IDC_HTML_KEYS);
    HtmlDlg& dlg = shown.dlg;
    ::SetFocus(::GetDlgItem(dlg.hWnd, IDC_HTML_EDIT));
    dlg.Pump();
    dlg.commands.clear();
    SendKey(VK_TAB);
    ASSERT_TRUE(dlg.PumpKeysUntil([&] { return ::GetFocus() == shown.html.hWnd; }));
    EXPECT_EQ(1, shown.html.bFocused);
    for (WORD wKey : {VK_SPACE, VK_RETURN}) {
        dlg.commands.clear();
        SendKey(wKey);
        EXPECT_TRUE(dlg.PumpKeysUntil([&] { return !dlg.commands.empty(); }));
        dlg.Pump();
        EXPECT_EQ(std::vector<int>{IDC_HTML_KEYS}, dlg.Ids()) << wKey; // not the OK button
    }
    dlg.commands.clear();
    SendKey(VK_TAB);
    ASSERT_TRUE(dlg.PumpKeysUntil([&] { return ::GetFocus() != shown.html.hWnd; }));
    EXPECT_EQ(0, shown.html.bFocused);
}

TEST(CSStaticHTMLLinks, WithoutALinkReturnStaysTheDefaultButton) {
    ShownHtml shown(IDC_HTML_KEYS);
    HtmlDlg& dlg = shown.dlg;
    shown.html.SetHTMLText(L"none");
    shown.html.Paint();
    shown.html.SetFocus();
    dlg.Pump();
    dlg.commands.clear();
    SendKey(VK_RETURN);
    EXPECT_TRUE(dlg.PumpKeysUntil([&] { return !dlg.commands.empty(); }));
    EXPECT_EQ(std::vector<int>{IDOK}, dlg.Ids());
}

TEST(CSStaticHTMLLinks, FocusIsNotedAndRepaintedWithoutErasing) {
    ShownHtml shown(IDC_HTML_KEYS);
    {
        InvalidateRecord record;
        shown.html.SendMsg(WM_SETFOCUS, 0, 0);
        EXPECT_TRUE(record.IsOne(shown.html.hWnd, FALSE));
    }
    EXPECT_EQ(1, shown.html.bFocused);
    InvalidateRecord record;
    shown.html.SendMsg(WM_KILLFOCUS, 0, 0);
    EXPECT_TRUE(record.IsOne(shown.html.hWnd, FALSE));
    EXPECT_EQ(0, shown.html.bFocused);
}
} // namespace
