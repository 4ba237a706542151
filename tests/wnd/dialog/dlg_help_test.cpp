// Help requests and tooltips.
#include "support/message_box_driver.h"
#include "support/test_window.h"
#include "wnd/core/company_msg.h"
#include "wnd/dialog/html_help.h"
#include "wnd/dialog/probe_dlg.h"

namespace {
/// A request as others send it; what came back.
LPCWSTR Ask(HWND hwnd, unsigned nId) {
    HelpRequest request{nId, L"not asked"};
    SendMyCompanyMsg(hwnd, kMsgHelpRequest, reinterpret_cast<LPARAM>(&request));
    EXPECT_EQ(nId, request.nHelpId);
    return request.pszPage;
}

TEST(CSDlgHelpRequest, DialogWritesItsPageIntoTheRecord) {
    OpenDlg dlg(IDD_DIALOG_HIDDEN);
    dlg.pages[17] = L"seventeen.htm";
    EXPECT_STREQ(L"seventeen.htm", Ask(dlg, 17));
    EXPECT_EQ(nullptr, Ask(dlg, 18));
    EXPECT_EQ("GetHtmlPage 17; GetHtmlPage 18", dlg.record.Only({"GetHtmlPage"}));
    HelpRequest request{17, nullptr};
    EXPECT_EQ(1, dlg.Handle(GetMyCompanyMsgId(), 100, reinterpret_cast<LPARAM>(&request)));
    EXPECT_EQ(100u, kMsgHelpRequest);
}

TEST(CSDlgHelpRequest, ClimbsUntilADialogNamesAPage) {
    OpenDlg top(IDD_DIALOG_HIDDEN);
    OpenDlg middle(IDD_DIALOG_HIDDEN, top);
    OpenDlg low(IDD_DIALOG_HIDDEN, middle);
    top.pages[5] = L"top.htm";
    EXPECT_STREQ(L"top.htm", Ask(low, 5));
    middle.pages[5] = L"middle.htm";
    EXPECT_STREQ(L"middle.htm", Ask(low, 5));
    low.pages[5] = L"low.htm";
    EXPECT_STREQ(L"low.htm", Ask(low, 5));
    EXPECT_EQ(3, low.record.Count("GetHtmlPage 5"));
    EXPECT_EQ(2, middle.record.Count("GetHtmlPage 5"));
    EXPECT_EQ(1, top.record.Count("GetHtmlPage 5"));
    EXPECT_EQ(nullptr, Ask(low, 6));
}

TEST(CSDlgHelpRequest, ParentThatIsNoDialogMayAnswerToo) {
    TestWindow parent([](UINT uMsg, WPARAM wParam, LPARAM lParam) -> std::optional<LRESULT> {
        if (uMsg != GetMyCompanyMsgId() || wParam != kMsgHelpRequest) return {};
        auto* pRequest = reinterpret_cast<HelpRequest*>(lParam);
        EXPECT_EQ(nullptr, pRequest->pszPage);
        if (pRequest->nHelpId == 8) pRequest->pszPage = L"parent.htm";
        return 0;
    });
    OpenDlg dlg(IDD_DIALOG_HIDDEN, parent);
    EXPECT_STREQ(L"parent.htm", Ask(dlg, 8));
    EXPECT_EQ(nullptr, Ask(dlg, 9));
}

TEST(CSDlgHelpRequest, RequestWithoutARecordIsNothing) {
    OpenDlg dlg(IDD_DIALOG_HIDDEN);
    SendMyCompanyMsg(dlg, kMsgHelpRequest, 0);
    EXPECT_TRUE(::IsWindow(dlg));
}

/// The help file is not there: each page that is shown gives a box.
struct CSDlgHelp : testing::Test {
    /// How many boxes were answered while fn ran.
    template <class Fn>
    size_t Boxes(Fn fn) {
        MessageBoxDriver driver({IDOK, IDOK});
        fn();
        return driver.Finish().size();
    }
};

TEST_F(CSDlgHelp, OwnPageIsShown) {
    OpenDlg dlg(IDD_DIALOG_HIDDEN);
    dlg.pages[0] = L"own.htm";
    EXPECT_EQ(1u, Boxes([&] { dlg.OnHelp(nullptr); }));
    EXPECT_EQ("GetHtmlPage 0; OnHtmlHelpError",
              dlg.record.Only({"GetHtmlPage", "OnHtmlHelpError"}));
    EXPECT_EQ(L"own.htm", dlg.strErrorPage);
}

TEST_F(CSDlgHelp, WithoutAPageTheTopmostParentIsAskedForTheTemplatesId) {
    OpenDlg parent(IDD_DIALOG_HIDDEN);
    OpenDlg dlg(IDD_DIALOG_PLAIN, parent);
    parent.pages[IDD_DIALOG_PLAIN] = L"parent.htm";
    EXPECT_EQ(1u, Boxes([&] { dlg.OnHelp(nullptr); }));
    EXPECT_EQ("GetHtmlPage 0", dlg.record.Only({"GetHtmlPage"}));
    EXPECT_EQ("GetHtmlPage 300", parent.record.Only({"GetHtmlPage"}));
    EXPECT_EQ(L"parent.htm", dlg.strErrorPage);
    EXPECT_EQ(0, parent.record.Count("OnHtmlHelpError"));
}

TEST_F(CSDlgHelp, HelpIdGoesBeforeTheTemplatesId) {
    OpenDlg parent(IDD_DIALOG_HIDDEN);
    OpenDlg dlg(IDD_DIALOG_PLAIN, parent);
    dlg.helpId = 4711;
    EXPECT_EQ(0u, Boxes([&] { dlg.OnHelp(nullptr); }));
    EXPECT_EQ("GetHtmlPage 4711", parent.record.Only({"GetHtmlPage"}));
    EXPECT_EQ(0, dlg.record.Count("OnHtmlHelpError"));
}

TEST_F(CSDlgHelp, WithoutAParentTheDialogIsAskedItself) {
    OpenDlg dlg(IDD_DIALOG_PLAIN);
    dlg.pages[IDD_DIALOG_PLAIN] = L"by id.htm";
    EXPECT_EQ(1u, Boxes([&] { dlg.OnHelp(nullptr); }));
    EXPECT_EQ("GetHtmlPage 0; GetHtmlPage 300", dlg.record.Only({"GetHtmlPage"}));
    EXPECT_EQ(L"by id.htm", dlg.strErrorPage);
}

TEST_F(CSDlgHelp, ParentsAreClimbedToTheTop) {
    OpenDlg top(IDD_DIALOG_HIDDEN);
    TestWindow child(L"STATIC", top, WS_CHILD);
    OpenDlg dlg(IDD_DIALOG_PLAIN, child);
    top.pages[IDD_DIALOG_PLAIN] = L"top.htm";
    EXPECT_EQ(1u, Boxes([&] { dlg.OnHelp(nullptr); }));
    EXPECT_EQ(L"top.htm", dlg.strErrorPage);
}

TEST_F(CSDlgHelp, NobodyKnowingAPageShowsNothing) {
    OpenDlg dlg(IDD_DIALOG_PLAIN);
    EXPECT_EQ(0u, Boxes([&] {
                  dlg.OnHelp(nullptr);
                  HELPINFO info{};
                  info.iCtrlId = IDOK;
                  dlg.OnHelp(&info);
              }));
    EXPECT_EQ(0, dlg.record.Count("OnHtmlHelpError"));
}

TEST_F(CSDlgHelp, HelpButtonAndHelpMessageAreTheSame) {
    OpenDlg dlg(IDD_DIALOG_ITEMS);
    dlg.bQuietHelp = true;
    dlg.SendDlgItemMsg(IDHELP, BM_CLICK, 0, 0);
    EXPECT_EQ(1, dlg.record.Count("OnHelp -1"));
    HELPINFO info{sizeof(info), HELPINFO_WINDOW, IDC_EDIT, ::GetDlgItem(dlg, IDC_EDIT), 0, {}};
    ::SendMessageW(dlg, WM_HELP, 0, reinterpret_cast<LPARAM>(&info));
    EXPECT_EQ(1, dlg.record.Count("OnHelp 1000"));
}

// Notifications and tooltips.

struct CSDlgNotify : testing::Test {
    __int64 Notify(HWND hwndFrom, int nCode, UINT_PTR nId = 1234) {
        NMHDR hdr{hwndFrom, nId, static_cast<UINT>(nCode)};
        return dlg.OnNotify(static_cast<int>(nId), &hdr);
    }
    std::string Asked() { return dlg.record.Only({"ctrl.OnNotify", "TipString", "TipText"}); }
    OpenDlg dlg;
    ProbeCtrl ctrl{dlg.record};
};

TEST_F(CSDlgNotify, WithoutASourceIsNothing) {
    EXPECT_EQ(0, Notify(nullptr, TTN_NEEDTEXTW));
    EXPECT_EQ(0, Notify(nullptr, NM_CLICK));
    EXPECT_EQ("", Asked());
}

TEST_F(CSDlgNotify, SourcesControlIsAsked) {
    ctrl.Init(&dlg, IDC_LIST_VIEW, nullptr, 0);
    EXPECT_EQ(0, Notify(ctrl.hWnd, NM_CLICK));
    ctrl.qwNotify = 0x200000001;
    EXPECT_EQ(0x200000001, Notify(ctrl.hWnd, NM_CLICK));
    EXPECT_EQ("ctrl.OnNotify -2; ctrl.OnNotify -2", Asked());
}

TEST_F(CSDlgNotify, ControlOfTheSourcesParentIsAskedIfTheSourceHasNone) {
    ctrl.Init(&dlg, IDC_LIST_VIEW, nullptr, 0);
    TestWindow inner(L"STATIC", ctrl.hWnd, WS_CHILD);
    ctrl.qwNotify = 5;
    EXPECT_EQ(5, Notify(inner, NM_CLICK));
    TestWindow deep(L"STATIC", inner, WS_CHILD);
    EXPECT_EQ(0, Notify(deep, NM_CLICK)) << "its parent, and no further";
    EXPECT_EQ("ctrl.OnNotify -2", Asked());
}

TEST_F(CSDlgNotify, SourcesOwnControlGoesBeforeItsParents) {
    ctrl.Init(&dlg, IDC_LIST_VIEW, nullptr, 0);
    ctrl.qwNotify = 5;
    TestWindow inner(L"STATIC", ctrl.hWnd, WS_CHILD);
    ProbeCtrl ctrlInner(dlg.record);
    ctrlInner.Subclass(inner);
    ctrlInner.qwNotify = 6;
    EXPECT_EQ(6, Notify(inner, NM_CLICK));
}

TEST_F(CSDlgNotify, OnlyTooltipsAskForTexts) {
    EXPECT_EQ(0, Notify(::GetDlgItem(dlg, IDC_LIST_VIEW), NM_CLICK));
    EXPECT_EQ(0, Notify(::GetDlgItem(dlg, IDC_LIST_VIEW), TTN_SHOW));
    EXPECT_EQ("", Asked());
    EXPECT_EQ(-530, static_cast<int>(TTN_NEEDTEXTW));
    EXPECT_EQ(-520, static_cast<int>(TTN_NEEDTEXTA));
}

/// A tooltip request with something behind the text that must stay.
template <class Info>
struct TipRequest {
    explicit TipRequest(HWND hwndFrom, int nCode, UINT_PTR nId = 1234) {
        info.hdr = {hwndFrom, nId, static_cast<UINT>(nCode)};
        info.hinst = reinterpret_cast<HINSTANCE>(0x1111);
        info.uFlags = 0x2222;
    }
    Info info{};
};
using TipRequestW = TipRequest<NMTTDISPINFOW>;
using TipRequestA = TipRequest<NMTTDISPINFOA>;

TEST_F(CSDlgNotify, TooltipTextAsAString) {
    dlg.nTipResult = 1;
    dlg.hinstTip = ::GetModuleHandleW(nullptr);
    dlg.nTipString = 101;
    HWND hwnd = ::GetDlgItem(dlg, IDC_BUTTON);
    TipRequestW wide(hwnd, TTN_NEEDTEXTW);
    EXPECT_EQ(0, dlg.OnNotify(1234, &wide.info.hdr));
    EXPECT_EQ(dlg.hinstTip, wide.info.hinst);
    EXPECT_EQ(MAKEINTRESOURCEW(101), wide.info.lpszText);
    TipRequestA narrow(hwnd, TTN_NEEDTEXTA);
    EXPECT_EQ(0, dlg.OnNotify(1234, &narrow.info.hdr));
    EXPECT_EQ(dlg.hinstTip, narrow.info.hinst);
    EXPECT_EQ(MAKEINTRESOURCEA(101), narrow.info.lpszText);
    EXPECT_EQ("TipString 1234; TipString 1234", Asked().substr(Asked().find("TipString")));
    EXPECT_EQ(0x2222u, wide.info.uFlags);
    EXPECT_EQ(0x2222u, narrow.info.uFlags);
}

TEST_F(CSDlgNotify, StringZeroOrNoneFallsThroughToTheText) {
    dlg.pszTip = L"a tip";
    struct Row {
        int nResult;
        unsigned short nString;
    };
    for (Row row : {Row{1, 0}, Row{0, 101}, Row{-1, 0}}) {
        dlg.record.log.clear();
        dlg.nTipResult = row.nResult;
        dlg.nTipString = row.nString;
        dlg.hinstTip = reinterpret_cast<HINSTANCE>(0x5555);
        TipRequestW wide(::GetWindow(dlg, GW_CHILD), TTN_NEEDTEXTW);
        EXPECT_EQ(0, dlg.OnNotify(1234, &wide.info.hdr));
        EXPECT_STREQ(L"a tip", wide.info.szText);
        EXPECT_EQ(reinterpret_cast<HINSTANCE>(0x1111), wide.info.hinst);
        EXPECT_EQ("TipString 1234; TipText 1234 80", Asked());
    }
}

TEST_F(CSDlgNotify, NarrowRequestGetsTheTextConverted) {
    dlg.pszTip = L"a tip";
    TipRequestA narrow(::GetWindow(dlg, GW_CHILD), TTN_NEEDTEXTA);
    EXPECT_EQ(0, dlg.OnNotify(1234, &narrow.info.hdr));
    EXPECT_STREQ("a tip", narrow.info.szText);
    EXPECT_EQ("TipString 1234; TipText 1234 80", Asked());
}

TEST_F(CSDlgNotify, TextsOfAllEightyCharactersStayInTheirRecord) {
    std::wstring strLong(200, L'x');
    dlg.pszTip = strLong.c_str();
    TipRequestW wide(::GetWindow(dlg, GW_CHILD), TTN_NEEDTEXTW);
    dlg.OnNotify(1234, &wide.info.hdr);
    EXPECT_EQ(79u, wcslen(wide.info.szText));
    EXPECT_EQ(reinterpret_cast<HINSTANCE>(0x1111), wide.info.hinst);
    TipRequestA narrow(::GetWindow(dlg, GW_CHILD), TTN_NEEDTEXTA);
    dlg.OnNotify(1234, &narrow.info.hdr);
    EXPECT_EQ(79u, strnlen(narrow.info.szText, 80));
    EXPECT_EQ(reinterpret_cast<HINSTANCE>(0x1111), narrow.info.hinst);
}

TEST_F(CSDlgNotify, NarrowTextThatGrowsInTheConversionIsTerminated) {
    std::wstring strWide(200, L'\x6F22'); // up to three bytes each, or a question mark
    dlg.pszTip = strWide.c_str();
    TipRequestA narrow(::GetWindow(dlg, GW_CHILD), TTN_NEEDTEXTA);
    memset(narrow.info.szText, '#', sizeof(narrow.info.szText));
    dlg.OnNotify(1234, &narrow.info.hdr);
    EXPECT_GT(80u, strnlen(narrow.info.szText, 80));
    EXPECT_EQ(reinterpret_cast<HINSTANCE>(0x1111), narrow.info.hinst);
}

TEST_F(CSDlgNotify, WithoutATextTheRecordStaysEmpty) {
    TipRequestW wide(::GetWindow(dlg, GW_CHILD), TTN_NEEDTEXTW);
    EXPECT_EQ(0, dlg.OnNotify(1234, &wide.info.hdr));
    EXPECT_STREQ(L"", wide.info.szText);
    TipRequestA narrow(::GetWindow(dlg, GW_CHILD), TTN_NEEDTEXTA);
    EXPECT_EQ(0, dlg.OnNotify(1234, &narrow.info.hdr));
    EXPECT_STREQ("", narrow.info.szText);
}

TEST_F(CSDlgNotify, ControlMayAnswerForItsTooltip) {
    ctrl.Init(&dlg, IDC_BUTTON, nullptr, 0);
    ctrl.qwNotify = 3;
    TipRequestW wide(ctrl.hWnd, TTN_NEEDTEXTW);
    EXPECT_EQ(3, dlg.OnNotify(1234, &wide.info.hdr));
    ctrl.qwNotify.reset();
    EXPECT_EQ(0, dlg.OnNotify(1234, &wide.info.hdr));
    EXPECT_EQ("ctrl.OnNotify -530; ctrl.OnNotify -530; TipString 1234; TipText 1234 80", Asked());
}

TEST_F(CSDlgNotify, RealTooltipShowsTheDialogsText) {
    dlg.pszTip = L"what the dialog says";
    HWND hwndTip = ::CreateWindowExW(0, TOOLTIPS_CLASSW, nullptr, WS_POPUP | TTS_ALWAYSTIP, 0, 0, 0,
                                     0, dlg, nullptr, nullptr, nullptr);
    ASSERT_NE(nullptr, hwndTip);
    TOOLINFOW tool{};
    tool.cbSize = TTTOOLINFOW_V1_SIZE;
    tool.uFlags = TTF_TRACK | TTF_ABSOLUTE;
    tool.hwnd = dlg;
    tool.uId = 88;
    tool.lpszText = LPSTR_TEXTCALLBACKW;
    ASSERT_TRUE(::SendMessageW(hwndTip, TTM_ADDTOOLW, 0, reinterpret_cast<LPARAM>(&tool)));
    ::SendMessageW(hwndTip, TTM_TRACKACTIVATE, TRUE, reinterpret_cast<LPARAM>(&tool));
    wchar_t szShown[100] = L"";
    ::GetWindowTextW(hwndTip, szShown, 100);
    EXPECT_STREQ(L"what the dialog says", szShown);
    EXPECT_LT(0, dlg.record.Count("TipText 88 80"));
    ::DestroyWindow(hwndTip);
}
} // namespace
