// The title line of a dialog that has no caption.
#include "richtext/control/html_dlg.h"
#include "support/test_resource_ids.h"

namespace {
const std::wstring kOpen = L"<b><dkgrey>", kClose = L"</dkgrey></b>";

std::wstring Marked(const std::wstring& text) { return (kOpen + text + kClose).substr(0, 259); }
const wchar_t* IdArg(int nId) {
    return reinterpret_cast<const wchar_t*>(static_cast<INT_PTR>(nId));
}

struct TitleDlg : HtmlDlg {
    PopupTitle title;
    std::wstring text; // in place of the template's
    std::wstring Shown() {
        std::vector<wchar_t> sz(title.GetHTMLTextLength() + 1);
        title.GetHTMLText(sz.data(), static_cast<int>(sz.size()));
        return sz.data();
    }
    std::wstring WindowTextOf(HWND hwnd) {
        wchar_t sz[512] = {};
        // By the platform's own: the control's object must not be in between.
        ::GetWindowTextW(hwnd, sz, 512);
        return sz;
    }
};

struct ShownTitle {
    explicit ShownTitle(const wchar_t* pszText = nullptr) {
        dlg.onInit = [this, pszText](HtmlDlg& d) {
            if (pszText) d.SetDlgItemTextW(IDC_HTML_TITLE, pszText);
            dlg.title.InitTitle(&d);
        };
        EXPECT_TRUE(dlg.Show(IDD_HTML_POPUP));
    }
    TitleDlg dlg;
    PopupTitle& title = dlg.title;
};

TEST(PopupTitle, IsARichTextOfThatId) {
    PopupTitle title;
    EXPECT_EQ(21542u, PopupTitle::kCtrlId);
    EXPECT_EQ(1, title.IsKindOf(L"CSStaticHTML"));
    EXPECT_EQ(1, title.IsKindOf(L"CSCtrl"));
    EXPECT_EQ(0, title.IsKindOf(L"PopupTitle"));
    EXPECT_EQ(sizeof(CSStaticHTML), sizeof(PopupTitle));
}

TEST(PopupTitle, TemplatesTextBecomesTheDialogsAndIsShownBoldAndGrey) {
    ShownTitle shown;
    EXPECT_EQ(21542u, shown.title.GetID());
    EXPECT_EQ(L"The title", shown.dlg.WindowTextOf(shown.dlg.hWnd));
    EXPECT_EQ(L"<b><dkgrey>The title</dkgrey></b>", shown.dlg.Shown());
    EXPECT_EQ(L"The title", shown.dlg.WindowTextOf(shown.title));
    TextRecord record;
    ::RedrawWindow(shown.title, nullptr, nullptr, RDW_INVALIDATE | RDW_UPDATENOW);
    EXPECT_EQ(L"The title", record.Text());
}

TEST(PopupTitle, LongTextOfTheTemplateIsCut) {
    for (int n : {234, 235, 236, 258, 259, 260, 300}) {
        const std::wstring text(n, L't');
        ShownTitle shown(text.c_str());
        EXPECT_EQ(text.substr(0, 259), shown.dlg.WindowTextOf(shown.dlg.hWnd)) << n;
        EXPECT_EQ(Marked(text), shown.dlg.Shown()) << n;
    }
}

TEST(PopupTitle, EmptyTextIsAnEmptyTitle) {
    ShownTitle shown(L"");
    EXPECT_EQ(L"", shown.dlg.WindowTextOf(shown.dlg.hWnd));
    EXPECT_EQ(Marked(L""), shown.dlg.Shown());
}

TEST(PopupTitle, PercentSignsInTheTemplateAreText) {
    ShownTitle shown(L"100%s %n");
    EXPECT_EQ(L"<b><dkgrey>100%s %n</dkgrey></b>", shown.dlg.Shown());
}

TEST(PopupTitle, DialogWithoutTheItemGetsAnEmptyText) {
    TitleDlg dlg;
    dlg.onInit = [&](HtmlDlg& d) { dlg.title.InitTitle(&d); };
    ASSERT_TRUE(dlg.Show(IDD_HTML));
    EXPECT_EQ(L"", dlg.WindowTextOf(dlg.hWnd));
    dlg.title.SetTitleFmt(L"nobody %d", 1);
    EXPECT_EQ(L"", dlg.Shown());
}

TEST(PopupTitle, SetTitleFormatsATextAndLeavesTheDialogsOwn) {
    ShownTitle shown;
    shown.title.SetTitleFmt(L"%s number %d", L"Title", 7);
    EXPECT_EQ(L"<b><dkgrey>Title number 7</dkgrey></b>", shown.dlg.Shown());
    EXPECT_EQ(L"The title", shown.dlg.WindowTextOf(shown.dlg.hWnd));
    EXPECT_EQ(L"The title", shown.dlg.WindowTextOf(shown.title));
    shown.title.SetTitleFmt(L"");
    EXPECT_EQ(Marked(L""), shown.dlg.Shown());
}

TEST(PopupTitle, SetTitleTakesAStringIdAsThePositiveOrTheNegativeNumber) {
    ShownTitle shown;
    shown.title.SetTitleFmt(IdArg(IDS_TEST_NUMBER_AND_TEXT), 7, L"t");
    EXPECT_EQ(L"<b><dkgrey>number 7, text t</dkgrey></b>", shown.dlg.Shown());
    shown.title.SetTitleFmt(IdArg(-IDS_TEST_PLAIN));
    EXPECT_EQ(L"<b><dkgrey>plain test string</dkgrey></b>", shown.dlg.Shown());
    // A negative number that was widened without its sign.
    shown.title.SetTitleFmt(reinterpret_cast<const wchar_t*>(static_cast<UINT_PTR>(
                                static_cast<unsigned>(-IDS_TEST_NUMBER_AND_TEXT))),
                            8, L"u");
    EXPECT_EQ(L"<b><dkgrey>number 8, text u</dkgrey></b>", shown.dlg.Shown());
    shown.title.SetTitleFmt(IdArg(IDS_TEST_HOSTILE_FORMAT));
    EXPECT_EQ(L"<b><dkgrey>%n is no conversion</dkgrey></b>", shown.dlg.Shown());
}

TEST(PopupTitle, StringThatIsNotThereIsAnEmptyTitle) {
    ShownTitle shown;
    for (int nId : {0, 9999, 0xFFFF, -9999, -65536}) {
        shown.title.SetTitleFmt(L"before");
        shown.title.SetTitleFmt(IdArg(nId));
        EXPECT_EQ(Marked(L""), shown.dlg.Shown()) << nId;
    }
}

TEST(PopupTitle, LongTitlesAreCutWithTheirMarks) {
    ShownTitle shown;
    for (int n : {1, 234, 235, 236, 247, 248, 249, 2047, 2048, 2049, 5000}) {
        const std::wstring text(n, L't');
        shown.title.SetTitleFmt(L"%s", text.c_str());
        EXPECT_EQ(Marked(text), shown.dlg.Shown()) << n;
        shown.title.SetTitleFmt(text.c_str());
        EXPECT_EQ(Marked(text), shown.dlg.Shown()) << n;
    }
}

TEST(PopupTitle, ColoursOfTheDialogAreTaken) {
    TitleDlg dlg;
    dlg.SetDlgColors(RGB(1, 2, 3), CLR_INVALID, CLR_INVALID);
    dlg.onInit = [&](HtmlDlg& d) { dlg.title.InitTitle(&d); };
    ASSERT_TRUE(dlg.Show(IDD_HTML_POPUP));
    EXPECT_EQ(RGB(1, 2, 3), dlg.title.GetBkgColor());
}
} // namespace
