// What a rich text control is, and its texts, colours and fonts.
#include "richtext/control/html_dlg.h"
#include "support/test_resource_ids.h"
#include "support/test_window.h"

namespace {
const std::wstring kTemplateText = L"<b>x</b>";

/// A control whose window text is that: told before it is tied.
struct HtmlWithWindowText {
    explicit HtmlWithWindowText(const std::wstring& text) {
        dlg.onInit = [&](HtmlDlg& d) {
            d.SetDlgItemTextW(IDC_HTML_BOLD, text.c_str());
            d.html.Init(&d, IDC_HTML_BOLD, nullptr, 0);
        };
        EXPECT_TRUE(dlg.Show());
    }
    HtmlDlg dlg;
    ProbeHtml& html = dlg.html;
};

TEST(CSStaticHTML, AnswersToItsNameAndThoseOfItsBases) {
    CSStaticHTML html;
    EXPECT_EQ(1, html.IsKindOf(L"CSStaticHTML"));
    EXPECT_EQ(1, html.IsKindOf(L"CSCtrl"));
    EXPECT_EQ(1, html.IsKindOf(L"CSWnd"));
    EXPECT_EQ(0, html.IsKindOf(L"PopupTitle"));
    EXPECT_EQ(0, html.IsKindOf(L"CSDlg"));
    EXPECT_EQ(0, html.IsKindOf(L"csstatichtml"));
    EXPECT_EQ(0, html.IsKindOf(L""));
    EXPECT_EQ(0, html.IsKindOf(nullptr));
    EXPECT_EQ(1, html.IsCtrl());
}

TEST(CSStaticHTML, StartsWithoutTextWithTheSystemsColoursAndTheFontOfDialogs) {
    ProbeHtml html;
    EXPECT_EQ(0, html.bTransparent);
    EXPECT_EQ(0, html.bHover);
    EXPECT_EQ(0, html.bFocused);
    EXPECT_EQ(0, html.bNotify);
    EXPECT_EQ(nullptr, html.pszHTML.Get());
    EXPECT_EQ(0u, html.nHTMLLength);
    EXPECT_EQ(0u, html.links.GetLinkCount());
    EXPECT_EQ(::GetSysColor(COLOR_BTNFACE), html.GetBkgColor());
    EXPECT_EQ(::GetSysColor(COLOR_BTNTEXT), html.GetTextColor());
    EXPECT_EQ(::GetSysColor(COLOR_HOTLIGHT), html.GetLinkColor());
    EXPECT_EQ(::GetStockObject(DEFAULT_GUI_FONT), html.tools.GetFont());
}

TEST(CSStaticHTML, WithoutAWindowTextAndColoursAreKeptAndNothingBreaks) {
    ProbeHtml html;
    EXPECT_EQ(0, html.SetHTMLText(L"y")); // no window, nobody to tell
    EXPECT_EQ(0, html.SetHTMLText(IDS_TEST_PLAIN, nullptr));
    EXPECT_EQ(0u, html.GetHTMLTextLength());
    wchar_t sz[4] = L"old";
    EXPECT_EQ(0, html.GetHTMLText(sz, 4));
    EXPECT_STREQ(L"", sz);
    EXPECT_EQ(1u, html.GetHTMLTextStripTags(nullptr, 0));
    html.MakeLink();
    html.MakeHtml(L"<b>%s</b>");
    EXPECT_EQ(0, html.UpdateText(nullptr));
    EXPECT_EQ(1, html.UpdateText(L"held"));
    EXPECT_EQ(L"held", html.Text());
    html.SetTextColor(RGB(1, 2, 3));
    EXPECT_EQ(RGB(1, 2, 3), html.GetTextColor());
    HDC hdc = ::GetDC(nullptr);
    RECT rc{0, 0, 100, 100};
    EXPECT_LT(0, html.CalcHeight(hdc, &rc));
    ::ReleaseDC(nullptr, hdc);
}

TEST(CSStaticHTML, WithoutItsDialogALinkDoesNothing) {
    TestWindow parent;
    HWND hwnd = ::CreateWindowExW(0, L"STATIC", L"<A1>x</A1>", WS_CHILD | SS_NOTIFY, 0, 0, 100, 50,
                                  parent, nullptr, nullptr, nullptr);
    {
        ProbeHtml html;
        ASSERT_EQ(1, html.Subclass(hwnd));
        HDC hdc = ::GetDC(hwnd);
        RECT rc{0, 0, 100, 50};
        html.CalcHeight(hdc, &rc);
        ::ReleaseDC(hwnd, hdc);
        ASSERT_EQ(1u, html.links.GetLinkCount());
        const POINT pt = Middle(html.LinkRects()[0]);
        EXPECT_EQ(0, html.Press(pt.x, pt.y));
        html.bFocused = 1;
        ::SendMessageW(hwnd, WM_KEYUP, VK_SPACE, 0);
    }
    ::DestroyWindow(hwnd);
}

TEST(CSStaticHTML, InitNotesWhetherTheStaticNotifies) {
    EXPECT_EQ(1, ShownHtml(IDC_HTML_LINK).html.bNotify);
    EXPECT_EQ(0, ShownHtml(IDC_HTML_DEAF).html.bNotify);
}

TEST(CSStaticHTML, InitOfAMissingItemTiesNothing) {
    ShownHtml shown(1999);
    EXPECT_EQ(nullptr, shown.html.hWnd);
    EXPECT_EQ(0, shown.html.SetHTMLText(L"y"));
}

TEST(CSStaticHTML, WithoutColoursOfTheDialogTheSystemsStay) {
    ShownHtml shown(IDC_HTML_BOLD);
    EXPECT_EQ(::GetSysColor(COLOR_BTNFACE), shown.html.GetBkgColor());
    EXPECT_EQ(::GetSysColor(COLOR_BTNTEXT), shown.html.GetTextColor());
    EXPECT_EQ(::GetSysColor(COLOR_HOTLIGHT), shown.html.GetLinkColor());
}

TEST(CSStaticHTML, InitTakesTheColoursOfTheDialog) {
    HtmlDlg dlg;
    dlg.SetDlgColors(RGB(1, 2, 3), RGB(4, 5, 6), RGB(7, 8, 9));
    dlg.onInit = [](HtmlDlg& d) { d.html.Init(&d, IDC_HTML_BOLD, nullptr, 0); };
    ASSERT_TRUE(dlg.Show());
    EXPECT_EQ(RGB(1, 2, 3), dlg.html.GetBkgColor());
    EXPECT_EQ(RGB(4, 5, 6), dlg.html.GetTextColor());
    EXPECT_EQ(RGB(7, 8, 9), dlg.html.GetLinkColor());
}

TEST(CSStaticHTML, InitTakesOnlyThoseColoursThatTheDialogHas) {
    const unsigned long kNone = CLR_INVALID;
    for (int nSet = 0; nSet < 3; ++nSet) {
        HtmlDlg dlg;
        dlg.SetDlgColors(nSet == 0 ? 5 : kNone, nSet == 1 ? 5 : kNone, nSet == 2 ? 5 : kNone);
        dlg.onInit = [](HtmlDlg& d) { d.html.Init(&d, IDC_HTML_BOLD, nullptr, 0); };
        ASSERT_TRUE(dlg.Show());
        EXPECT_EQ(nSet == 0 ? 5 : ::GetSysColor(COLOR_BTNFACE), dlg.html.GetBkgColor()) << nSet;
        EXPECT_EQ(nSet == 1 ? 5 : ::GetSysColor(COLOR_BTNTEXT), dlg.html.GetTextColor()) << nSet;
        EXPECT_EQ(nSet == 2 ? 5 : ::GetSysColor(COLOR_HOTLIGHT), dlg.html.GetLinkColor()) << nSet;
    }
}

TEST(CSStaticHTML, ColoursAndFontChangeWithoutRepainting) {
    ShownHtml shown(IDC_HTML_BOLD);
    ::ValidateRect(shown.html.hWnd, nullptr);
    InvalidateRecord record;
    shown.html.SetTextColor(RGB(1, 1, 1));
    shown.html.SetLinkColor(RGB(2, 2, 2));
    shown.html.SetBkgColor(RGB(3, 3, 3));
    shown.html.SetTransparent(1);
    shown.html.SetFixedFont(1);
    EXPECT_EQ(::GetSysColor(COLOR_BTNTEXT), shown.html.GetTextColor()); // the font's doing
    EXPECT_EQ(1, shown.html.IsTransparent());
    EXPECT_EQ(::GetStockObject(ANSI_FIXED_FONT), shown.html.tools.GetFont());
    shown.html.SetFixedFont(0);
    EXPECT_EQ(::GetStockObject(DEFAULT_GUI_FONT), shown.html.tools.GetFont());
    shown.html.SetTransparent(0);
    EXPECT_EQ(0, shown.html.IsTransparent());
    EXPECT_TRUE(record.Calls().empty());
    EXPECT_FALSE(::GetUpdateRect(shown.html.hWnd, nullptr, FALSE));
}

TEST(CSStaticHTML, SettingsChangeTakesTheSystemsColours) {
    HtmlDlg dlg;
    dlg.SetDlgColors(RGB(1, 2, 3), RGB(4, 5, 6), RGB(7, 8, 9));
    dlg.onInit = [](HtmlDlg& d) { d.html.Init(&d, IDC_HTML_BOLD, nullptr, 0); };
    ASSERT_TRUE(dlg.Show());
    dlg.html.SetTextColor(RGB(9, 9, 9));
    dlg.SendMsg(WM_SETTINGCHANGE, 0, 0);
    EXPECT_EQ(::GetSysColor(COLOR_BTNFACE), dlg.html.GetBkgColor());
    EXPECT_EQ(::GetSysColor(COLOR_BTNTEXT), dlg.html.GetTextColor());
    EXPECT_EQ(::GetSysColor(COLOR_HOTLIGHT), dlg.html.GetLinkColor());
}

// Texts

TEST(CSStaticHTML, TemplatesTextComesWithTheFirstPainting) {
    HtmlDlg dlg;
    bool bNone = false;
    dlg.onInit = [&](HtmlDlg& d) {
        d.html.Init(&d, IDC_HTML_BOLD, nullptr, 0);
        bNone = !d.html.pszHTML.IsReady() && d.html.GetHTMLTextLength() == 0;
    };
    ASSERT_TRUE(dlg.Show());
    EXPECT_TRUE(bNone);
    EXPECT_EQ(kTemplateText, dlg.html.Text());
    EXPECT_EQ(8u, dlg.html.GetHTMLTextLength());
}

TEST(CSStaticHTML, WindowTextStaysTheTemplatesAfterANewText) {
    ShownHtml shown(IDC_HTML_BOLD);
    EXPECT_EQ(1, shown.html.SetHTMLText(L"y"));
    EXPECT_EQ(kTemplateText, shown.html.WindowText());
    EXPECT_EQ(L"y", shown.html.Text());
    EXPECT_EQ(1u, shown.html.GetHTMLTextLength());
}

TEST(CSStaticHTML, TextBeforeTheFirstPaintingTakesThePlaceOfTheTemplates) {
    HtmlDlg dlg;
    dlg.onInit = [](HtmlDlg& d) {
        d.html.Init(&d, IDC_HTML_BOLD, nullptr, 0);
        d.html.SetHTMLText(L"early");
    };
    ASSERT_TRUE(dlg.Show());
    EXPECT_EQ(L"early", dlg.html.Text());
}

TEST(CSStaticHTML, SetTextIsToldByTheMessageAndErases) {
    ShownHtml shown(IDC_HTML_BOLD);
    InvalidateRecord record;
    EXPECT_EQ(1, ::SendMessageW(shown.html.hWnd, WM_SETTEXT, 0, reinterpret_cast<LPARAM>(L"new")));
    EXPECT_EQ(L"new", shown.html.Text());
    EXPECT_EQ(kTemplateText, shown.html.WindowText());
    EXPECT_TRUE(record.IsOne(shown.html.hWnd, TRUE));
}

TEST(CSStaticHTML, SetTextByTheDialogIsTheControlsText) {
    ShownHtml shown(IDC_HTML_BOLD);
    EXPECT_EQ(1, shown.dlg.SetDlgItemTextW(IDC_HTML_BOLD, L"by id"));
    EXPECT_EQ(L"by id", shown.html.Text());
    EXPECT_EQ(kTemplateText, shown.html.WindowText());
}

TEST(CSStaticHTML, NullTextLeavesWhatIsHeld) {
    ShownHtml shown(IDC_HTML_BOLD);
    shown.html.SetHTMLText(L"held");
    InvalidateRecord record;
    EXPECT_EQ(1, ::SendMessageW(shown.html.hWnd, WM_SETTEXT, 0, 0));
    EXPECT_EQ(L"held", shown.html.Text());
    EXPECT_TRUE(record.IsOne(shown.html.hWnd, TRUE));
}

TEST(CSStaticHTML, NullTextReadsTheWindowsIfNoneIsHeld) {
    HtmlDlg dlg;
    std::wstring text;
    dlg.onInit = [&](HtmlDlg& d) {
        d.html.Init(&d, IDC_HTML_BOLD, nullptr, 0);
        d.html.SendMsg(WM_SETTEXT, 0, 0);
        text = d.html.Text();
    };
    ASSERT_TRUE(dlg.Show());
    EXPECT_EQ(kTemplateText, text);
}

TEST(CSStaticHTML, EmptyTextIsATextAndTheTemplatesDoesNotComeBack) {
    ShownHtml shown(IDC_HTML_BOLD);
    EXPECT_EQ(1, shown.html.SetHTMLText(L""));
    TextRecord record;
    shown.html.Paint();
    EXPECT_TRUE(record.Runs().empty());
    EXPECT_EQ(L"", shown.html.Text());
    EXPECT_EQ(0u, shown.html.GetHTMLTextLength());
}

TEST(CSStaticHTML, StringOfTheModuleIsItsText) {
    ShownHtml shown(IDC_HTML_BOLD);
    HINSTANCE hinst = ::GetModuleHandleW(nullptr);
    EXPECT_EQ(1, shown.html.SetHTMLText(IDS_TEST_PLAIN, hinst));
    EXPECT_EQ(L"plain test string", shown.html.Text());
    EXPECT_EQ(1, shown.html.SetHTMLText(L"other"));
    EXPECT_EQ(1, shown.html.SetHTMLText(-IDS_TEST_PLAIN, nullptr));
    EXPECT_EQ(L"plain test string", shown.html.Text());
    EXPECT_EQ(1, shown.html.SetHTMLText(L"other"));
    EXPECT_EQ(1, shown.html.SetHTMLText(IDS_TEST_PLAIN, nullptr));
    EXPECT_EQ(L"plain test string", shown.html.Text());
}

TEST(CSStaticHTML, StringThatIsNotThereIsTheEmptyText) {
    ShownHtml shown(IDC_HTML_BOLD);
    for (int nId : {0, 9999, -9999}) {
        shown.html.SetHTMLText(L"before");
        EXPECT_EQ(1, shown.html.SetHTMLText(nId, ::GetModuleHandleW(nullptr)));
        EXPECT_EQ(L"", shown.html.Text()) << nId;
    }
}

TEST(CSStaticHTML, TextIsCopiedIntoWhatThereIsAndTheLengthIsTold) {
    ShownHtml shown(IDC_HTML_BOLD);
    const std::wstring text = L"12345";
    shown.html.SetHTMLText(text.c_str());
    for (int cch = 0; cch <= 8; ++cch) {
        std::vector<wchar_t> buffer(10, L'#');
        EXPECT_EQ(5, shown.html.GetHTMLText(buffer.data(), cch)) << cch;
        std::wstring expected;
        if (cch > 0) expected = text.substr(0, cch - 1) + L'\0';
        expected.resize(10, L'#');
        EXPECT_EQ(expected, std::wstring(buffer.begin(), buffer.end())) << cch;
    }
    EXPECT_EQ(5, shown.html.GetHTMLText(nullptr, 10));
    wchar_t ch = L'#';
    EXPECT_EQ(5, shown.html.GetHTMLText(&ch, -1));
    EXPECT_EQ(L'#', ch);
}

TEST(CSStaticHTML, StripTagsIsThatOfTheMarkUp) {
    ShownHtml shown(IDC_HTML_BOLD);
    shown.html.SetHTMLText(L"a<br><b>b</b>");
    EXPECT_EQ(5u, shown.html.GetHTMLTextStripTags(nullptr, 0));
    wchar_t sz[5] = L"####";
    EXPECT_EQ(5u, shown.html.GetHTMLTextStripTags(sz, 5));
    EXPECT_STREQ(L"a\r\nb", sz);
}

TEST(CSStaticHTML, UpdateTextTellsWhetherThereIsAText) {
    ShownHtml shown(IDC_HTML_EMPTY);
    EXPECT_EQ(0, shown.html.UpdateText(nullptr)); // the window has none
    EXPECT_EQ(nullptr, shown.html.pszHTML.Get());
    EXPECT_EQ(1, shown.html.UpdateText(L"a"));
    EXPECT_EQ(1, shown.html.UpdateText(nullptr));
    EXPECT_EQ(L"a", shown.html.Text());
    EXPECT_EQ(0, shown.html.UpdateText(L""));
    EXPECT_EQ(0, shown.html.UpdateText(nullptr));
}

TEST(CSStaticHTML, TextOfTheSameLengthReusesTheBlockAndAnyOtherGetsANewOne) {
    ProbeHtml html;
    html.UpdateText(L"12345");
    const wchar_t* psz = html.pszHTML.Get();
    html.UpdateText(L"abcde");
    EXPECT_EQ(psz, html.pszHTML.Get());
    EXPECT_EQ(L"abcde", html.Text());
    html.UpdateText(L"abc");
    EXPECT_NE(psz, html.pszHTML.Get());
    EXPECT_EQ(L"abc", html.Text());
    EXPECT_EQ(3u, html.GetHTMLTextLength());
    psz = html.pszHTML.Get();
    html.UpdateText(std::wstring(5000, L'x').c_str());
    EXPECT_NE(psz, html.pszHTML.Get());
    EXPECT_EQ(std::wstring(5000, L'x'), html.Text());
    html.UpdateText(html.pszHTML.Get() + 4990); // a part of its own
    EXPECT_EQ(std::wstring(10, L'x'), html.Text());
}

// What is made of the window's text

TEST(CSStaticHTML, MakeLinkReadsTheTemplatesText) {
    ShownHtml shown(IDC_HTML_BOLD);
    shown.html.SetHTMLText(L"y");
    shown.html.MakeLink();
    EXPECT_EQ(L"<A><b>x</b></a>", shown.html.Text());
    EXPECT_EQ(kTemplateText, shown.html.WindowText());
    shown.html.Paint();
    EXPECT_EQ(1u, shown.html.links.GetLinkCount());
}

TEST(CSStaticHTML, MakeLinkOfAnEmptyTextIsAnEmptyLink) {
    ShownHtml shown(IDC_HTML_EMPTY);
    shown.html.MakeLink();
    EXPECT_EQ(L"<A></a>", shown.html.Text());
}

TEST(CSStaticHTML, MakeLinkKeepsWithin256Units) {
    for (int n = 246; n <= 258; ++n) {
        HtmlWithWindowText shown(std::wstring(n, L'x'));
        shown.html.MakeLink();
        const std::wstring whole = L"<A>" + std::wstring(std::min(n, 253), L'x') + L"</a>";
        EXPECT_EQ(whole.substr(0, 255), shown.html.Text()) << n;
    }
}

TEST(CSStaticHTML, MakeHtmlFormatsTheWindowsText) {
    ShownHtml shown(IDC_HTML_BOLD);
    shown.html.SetHTMLText(L"y");
    shown.html.MakeHtml(L"<A1>%s!</A1>");
    EXPECT_EQ(L"<A1><b>x</b>!</A1>", shown.html.Text());
    shown.html.MakeHtml(L"without");
    EXPECT_EQ(L"without", shown.html.Text());
    shown.html.MakeHtml(L"%n%s");
    EXPECT_EQ(L"%n<b>x</b>", shown.html.Text());
}

TEST(CSStaticHTML, MakeHtmlReadsAndSetsWithin256Units) {
    for (int n = 252; n <= 258; ++n) {
        HtmlWithWindowText shown(std::wstring(n, L'x'));
        shown.html.MakeHtml(L"%s");
        EXPECT_EQ(std::wstring(std::min(n, 255), L'x'), shown.html.Text()) << n;
        shown.html.MakeHtml(L"<b>%s</b>");
        EXPECT_EQ((L"<b>" + std::wstring(n, L'x') + L"</b>").substr(0, 255), shown.html.Text())
            << n;
    }
}
} // namespace
