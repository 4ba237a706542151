#include "progress/ctrl_dlg.h"
#include "support/test_window.h"

#include <gtest/gtest.h>

namespace {
TEST(CSProgressCtrlText, LinesAreEmptiedWhenTheyAreNamed) {
    ProgressDialog test;
    EXPECT_EQ(L"line 0", test.Text(0));
    test.SetupLines();
    for (int n = 0; n < 4; ++n) EXPECT_EQ(L"", test.Text(n)) << n;
}

TEST(CSProgressCtrlText, OnlyNamedLinesAreEmptied) {
    ProgressDialog test;
    test.ctrl.SetupLines(0, IDC_TEST_LINE1, 0, 1999);
    EXPECT_EQ(L"line 0", test.Text(0));
    EXPECT_EQ(L"", test.Text(1));
    EXPECT_EQ(L"line 2", test.Text(2));
    EXPECT_EQ(L"line 3", test.Text(3));
}

TEST(CSProgressCtrlText, GoesToTheControlOfItsLine) {
    ProgressDialog test;
    test.ctrl.SetupLines(IDC_TEST_LINE3, IDC_TEST_LINE2, 0, IDC_TEST_LINE0);
    test.ctrl.SetText(0, L"first");
    test.ctrl.SetText(1, L"");
    test.ctrl.SetText(2, L"nowhere");
    test.ctrl.SetText(3, L"100% %s");
    EXPECT_EQ(L"first", test.Text(3));
    EXPECT_EQ(L"", test.Text(2));
    EXPECT_EQ(L"line 1", test.Text(1));
    EXPECT_EQ(L"100% %s", test.Text(0));
}

TEST(CSProgressCtrlText, InitForgetsTheLines) {
    ProgressDialog test;
    test.ctrl.SetText(0, L"nowhere");
    EXPECT_EQ(L"line 0", test.Text(0));
}

TEST(CSProgressCtrlText, LinesThatDoNotExistAreNothing) {
    ProgressDialog test;
    test.SetupLines();
    for (int nLine : {-1, 4, 5, 1000, -2147483647 - 1, 2147483647}) {
        test.ctrl.SetText(nLine, L"text");
        test.ctrl.SetTextFmt(nLine, L"%d", 1);
    }
    for (int n = 0; n < 4; ++n) EXPECT_EQ(L"", test.Text(n)) << n;
}

TEST(CSProgressCtrlText, IsFormatted) {
    ProgressDialog test;
    test.SetupLines();
    test.ctrl.SetTextFmt(1, L"%d of %d: %s", 3, 10, L"a.txt");
    EXPECT_EQ(L"3 of 10: a.txt", test.Text(1));
    test.ctrl.SetTextFmt(1, L"no arguments");
    EXPECT_EQ(L"no arguments", test.Text(1));
}

TEST(CSProgressCtrlText, FormattedTextIsCutAt1023Characters) {
    ProgressDialog test;
    test.SetupLines();
    std::wstring str(1500, L'x');
    test.ctrl.SetTextFmt(2, L"%s", str.c_str());
    EXPECT_EQ(str.substr(0, 1023), test.Text(2));
    test.ctrl.SetText(2, str.c_str()); // as it is
    EXPECT_EQ(str, test.Text(2));
}

void CallWithList(CSProgressCtrl& ctrl, int nLine, const wchar_t* pszFormat, ...) {
    ArgList args;
    va_start(args.v, pszFormat);
    ctrl.SetText(nLine, pszFormat, args);
    va_end(args.v);
}

TEST(CSProgressCtrlText, NullEmptiesTheLine) {
    ProgressDialog test;
    test.SetupLines();
    test.ctrl.SetText(1, L"text");
    test.ctrl.SetText(1, nullptr);
    EXPECT_EQ(L"", test.Text(1));
}

TEST(CSProgressCtrlText, ModelFormatsIntoTheLines) {
    ProgressDialog test;
    test.SetupLines();
    CallWithList(test.ctrl, 0, L"%s %u", L"list", 7u);
    EXPECT_EQ(L"list 7", test.Text(0));
    test.ctrl.GetProgressEx()->SetText(3, L"%c-%d", L'n', 8);
    EXPECT_EQ(L"n-8", test.Text(3));
    std::wstring str(1500, L'y');
    test.ctrl.GetProgressEx()->SetText(3, L"%s", str.c_str());
    EXPECT_EQ(str.substr(0, 1023), test.Text(3));
}

TEST(CSProgressCtrlEnable, LinesGoWithTheBar) {
    ProgressDialog test;
    test.SetupLines();
    ::EnableWindow(test.Bar(), FALSE);
    for (int n = 0; n < 4; ++n) EXPECT_FALSE(::IsWindowEnabled(test.Line(n))) << n;
    ::EnableWindow(test.Bar(), TRUE);
    for (int n = 0; n < 4; ++n) EXPECT_TRUE(::IsWindowEnabled(test.Line(n))) << n;
    EXPECT_EQ(2, test.tap->Count(WM_ENABLE)); // default handling
}

TEST(CSProgressCtrlEnable, OnlyNamedLinesDo) {
    ProgressDialog test;
    test.ctrl.SetupLines(0, IDC_TEST_LINE1, 0, IDC_TEST_LINE3);
    ::EnableWindow(test.Bar(), FALSE);
    EXPECT_TRUE(::IsWindowEnabled(test.Line(0)));
    EXPECT_FALSE(::IsWindowEnabled(test.Line(1)));
    EXPECT_TRUE(::IsWindowEnabled(test.Line(2)));
    EXPECT_FALSE(::IsWindowEnabled(test.Line(3)));
}

TEST(CSProgressCtrlEnable, ItIsTheBarsStateThatCounts) {
    ProgressDialog test;
    test.SetupLines();
    ::SendMessageW(test.Bar(), WM_ENABLE, FALSE, 0); // but it is enabled
    for (int n = 0; n < 4; ++n) EXPECT_TRUE(::IsWindowEnabled(test.Line(n))) << n;
}

TEST(CSProgressCtrlDrop, GoesToTheObjectOnceAndOn) {
    ProgressDialog test;
    test.ctrl.bDrops = false; // nothing real is dropped
    auto hdrop = reinterpret_cast<HDROP>(0x1234);
    test.tap->answer = [](UINT uMsg, WPARAM, LPARAM) -> std::optional<LRESULT> {
        if (uMsg == WM_DROPFILES) return 77;
        return {};
    };
    test.ctrl.log.clear();
    EXPECT_EQ(77, ::SendMessageW(test.Bar(), WM_DROPFILES, 0x1234, 0));
    EXPECT_EQ(1, test.ctrl.CountLogged("OnDropFiles"));
    EXPECT_EQ(hdrop, test.ctrl.hdropSeen);
    EXPECT_EQ(1, test.tap->Count(WM_DROPFILES));
}

TEST(CSProgressCtrlKind, IsAPlainControl) {
    CSProgressCtrl ctrl;
    EXPECT_EQ(1, ctrl.IsKindOf(L"CSCtrl"));
    EXPECT_EQ(0, ctrl.IsKindOf(L"CSProgressCtrl"));
}

TEST(CSProgressCtrlPump, ModelPumpsTheThreadsMessages) {
    ProgressDialog test;
    int nSeen = 0;
    TestWindow window([&](UINT uMsg, WPARAM, LPARAM) -> std::optional<LRESULT> {
        if (uMsg == WM_APP) ++nSeen;
        return {};
    });
    ::PostMessageW(window, WM_APP, 0, 0);
    ::PostMessageW(test.dialog, WM_NULL, 0, 0);
    test.ctrl.GetProgressEx()->ProcessAllMessages();
    EXPECT_EQ(1, nSeen);
    MSG msg;
    EXPECT_FALSE(::PeekMessageW(&msg, nullptr, WM_APP, WM_APP, PM_NOREMOVE));
}
} // namespace
