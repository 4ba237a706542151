// How a rich text control is painted, and how high it says that it is.
#include "richtext/control/html_dlg.h"
#include "support/gui_objects.h"
#include "support/memory_picture.h"
#include "wnd/draw/draw_util.h"

namespace {
constexpr COLORREF kBack = RGB(10, 200, 30);

/// Has the control paint itself into a picture of its client area, by way of the screen.
COLORREF PixelAt(ProbeHtml& html, int x, int y) {
    HDC hdc = ::GetDC(html.hWnd);
    const COLORREF cr = ::GetPixel(hdc, x, y);
    ::ReleaseDC(html.hWnd, hdc);
    return cr;
}
RECT ClientRect(HWND hwnd) {
    RECT rc{};
    ::GetClientRect(hwnd, &rc);
    return rc;
}
int HeightFor(ProbeHtml& html, int cx, int cy = 1000) {
    HDC hdc = ::CreateCompatibleDC(nullptr);
    RECT rc{0, 0, cx, cy};
    const int n = html.CalcHeight(hdc, &rc);
    ::DeleteDC(hdc);
    return n;
}

TEST(CSStaticHTMLPaint, TemplatesMarkUpIsDrawnWithoutACallButInit) {
    HtmlDlg dlg;
    dlg.onInit = [](HtmlDlg& d) { d.html.Init(&d, IDC_HTML_BOLD, nullptr, 0); };
    TextRecord record;
    ASSERT_TRUE(dlg.Show());
    ASSERT_LE(1u, record.Runs().size());
    const TextRecord::Run& run = record.Runs()[0];
    EXPECT_EQ(L"x", run.text);
    LOGFONTW lf{};
    ::GetObjectW(::GetStockObject(DEFAULT_GUI_FONT), sizeof(lf), &lf);
    EXPECT_LT(lf.lfWeight, run.lWeight);
    EXPECT_EQ(::GetSysColor(COLOR_BTNTEXT), run.cr);
}

TEST(CSStaticHTMLPaint, ColoursAreThoseOfTheControl) {
    ShownHtml shown(IDC_HTML_LINK);
    shown.html.SetTextColor(RGB(1, 2, 3));
    shown.html.SetLinkColor(RGB(4, 5, 6));
    shown.html.SetBkgColor(kBack);
    TextRecord record;
    shown.html.Paint();
    std::vector<COLORREF> colors;
    for (const auto& run : record.Runs()) colors.push_back(run.cr);
    EXPECT_EQ((std::vector<COLORREF>{RGB(4, 5, 6), RGB(1, 2, 3), RGB(4, 5, 6)}), colors);
    const RECT rc = ClientRect(shown.html.hWnd);
    EXPECT_EQ(kBack, PixelAt(shown.html, rc.right - 1, rc.bottom - 1));
    EXPECT_EQ(kBack, PixelAt(shown.html, rc.right / 2 + 20, 0));
}

TEST(CSStaticHTMLPaint, PaintingLeavesNothingToPaintAndNoObjects) {
    ShownHtml shown(IDC_HTML_LINK);
    shown.html.SetHTMLText(L"<B>a</B><H>b</H><A>c</A><BIG><I>open");
    shown.html.Paint();
    const int nBefore = CountGdiObjects();
    for (int i = 0; i < 50; ++i) shown.html.Paint();
    EXPECT_LE(CountGdiObjects(), nBefore + 1); // the fonts of one painting may stay until the next
    EXPECT_FALSE(::GetUpdateRect(shown.html.hWnd, nullptr, FALSE));
}

TEST(CSStaticHTMLPaint, EmptyTextIsTheBackgroundAlone) {
    ShownHtml shown(IDC_HTML_EMPTY);
    shown.html.SetBkgColor(kBack);
    TextRecord record;
    shown.html.Paint();
    EXPECT_TRUE(record.Runs().empty());
    EXPECT_EQ(nullptr, shown.html.pszHTML.Get());
    EXPECT_EQ(kBack, PixelAt(shown.html, 3, 3));
}

TEST(CSStaticHTMLPaint, FocusIsAFrameOfDotsInTheTextColour) {
    ShownHtml shown(IDC_HTML_KEYS);
    shown.html.SetBkgColor(RGB(255, 255, 255));
    shown.html.SetTextColor(RGB(0, 0, 255));
    const RECT rc = ClientRect(shown.html.hWnd);
    const auto readEdge = [&] {
        int n = 0;
        for (int x = 0; x < rc.right; ++x) {
            n += PixelAt(shown.html, x, rc.bottom - 1) == RGB(0, 0, 255);
        }
        return n;
    };
    shown.html.Paint();
    EXPECT_EQ(0, readEdge());
    shown.html.SetFocus();
    ::UpdateWindow(shown.html.hWnd);
    const int n = readEdge();
    EXPECT_LT(rc.right / 4, n);
    EXPECT_LT(n, rc.right); // dotted
    ::SetFocus(::GetDlgItem(shown.dlg.hWnd, IDC_HTML_EDIT));
    ::UpdateWindow(shown.html.hWnd);
    EXPECT_EQ(0, readEdge());
}

// The dialog's picture below

/// A dialog that paints itself in two halves, left and right of an x.
struct DialogWithPicture {
    explicit DialogWithPicture(int bTransparent) {
        dlg.onInit = [=](HtmlDlg& d) {
            d.html.Init(&d, IDC_HTML_BOLD, nullptr, 0);
            d.html.SetTransparent(bTransparent);
        };
        dlg.onErase = [this](HDC hdc) {
            ++nErased;
            RECT rc = ClientRect(dlg.hWnd);
            PaintRect(hdc, &rc, RGB(0, 0, 200));
            rc.right = x;
            PaintRect(hdc, &rc, crLeft);
        };
        EXPECT_TRUE(dlg.Show());
        RECT rc;
        dlg.GetDlgItemRect(IDC_HTML_BOLD, &rc);
        x = rc.left + 40;
        ::RedrawWindow(dlg.hWnd, nullptr, nullptr,
                       RDW_INVALIDATE | RDW_ERASE | RDW_UPDATENOW | RDW_ALLCHILDREN);
    }
    COLORREF crLeft = RGB(200, 0, 0);
    int x = 0, nErased = 0;
    HtmlDlg dlg;
    ProbeHtml& html = dlg.html;
};

TEST(CSStaticHTMLPaint, TransparentShowsTheDialogsPicture) {
    DialogWithPicture shown(1);
    const RECT rc = ClientRect(shown.html.hWnd);
    EXPECT_EQ(RGB(200, 0, 0), PixelAt(shown.html, 38, rc.bottom - 1));
    EXPECT_EQ(RGB(0, 0, 200), PixelAt(shown.html, 42, rc.bottom - 1));
    EXPECT_EQ(RGB(0, 0, 200), PixelAt(shown.html, rc.right - 1, 0));
}

TEST(CSStaticHTMLPaint, OpaqueHidesTheDialogsPicture) {
    DialogWithPicture shown(0);
    const RECT rc = ClientRect(shown.html.hWnd);
    EXPECT_EQ(::GetSysColor(COLOR_BTNFACE), PixelAt(shown.html, 38, rc.bottom - 1));
    EXPECT_EQ(::GetSysColor(COLOR_BTNFACE), PixelAt(shown.html, rc.right - 1, 0));
}

TEST(CSStaticHTMLPaint, TransparentHasTheDialogErasedAnewUnderEachText) {
    DialogWithPicture shown(1);
    const RECT rc = ClientRect(shown.html.hWnd);
    shown.crLeft = RGB(0, 150, 0);
    const int nBefore = shown.nErased;
    shown.html.SetHTMLText(L"other");
    TextRecord record;
    ::UpdateWindow(shown.html.hWnd);
    EXPECT_EQ(L"other ", record.Text()); // with the blank that ends a text
    EXPECT_LT(nBefore, shown.nErased);
    EXPECT_EQ(RGB(0, 150, 0), PixelAt(shown.html, 38, rc.bottom - 1));
    EXPECT_FALSE(::GetUpdateRect(shown.html.hWnd, nullptr, FALSE));
}

TEST(CSStaticHTMLPaint, DialogMayEndTheControlWhileItErases) {
    DialogWithPicture shown(1);
    HWND hwnd = shown.html.hWnd;
    shown.dlg.onErase = [&](HDC) {
        shown.dlg.onErase = nullptr;
        ::DestroyWindow(hwnd);
    };
    ::InvalidateRect(hwnd, nullptr, FALSE);
    ::UpdateWindow(hwnd);
    EXPECT_FALSE(::IsWindow(hwnd));
}

// Heights

TEST(CSStaticHTMLPaint, CalculatedHeightIsWhatIsPainted) {
    ShownHtml shown(IDC_HTML_WRAP);
    const RECT rc = ClientRect(shown.html.hWnd);
    for (const wchar_t* psz :
         {L"x", L"one<BR>two", L"<H>Large</H><BR>small", L"one two three four five six",
          L"a<BRHALF>b<BR>c", L"<SMALL>s</SMALL><BIG>b</BIG>", L"<A>a link that wraps</A>"}) {
        shown.html.SetHTMLText(psz);
        TextRecord record;
        shown.html.Paint();
        EXPECT_EQ(record.Bottom(), HeightFor(shown.html, rc.right)) << psz;
    }
}

TEST(CSStaticHTMLPaint, HeightGrowsWithTheTextAndTheNarrownessOnly) {
    ShownHtml shown(IDC_HTML_BOLD);
    shown.html.SetHTMLText(L"one two three");
    const int cy = HeightFor(shown.html, 1000);
    EXPECT_EQ(cy, HeightFor(shown.html, 500));
    EXPECT_LT(cy, HeightFor(shown.html, 30));
    shown.html.SetHTMLText(L"one two three<BR>four");
    EXPECT_EQ(2 * cy + 1, HeightFor(shown.html, 1000));
    shown.html.SetHTMLText(L"");
    EXPECT_EQ(cy, HeightFor(shown.html, 1000)); // a line of nothing
}

TEST(CSStaticHTMLPaint, HeightNeedsNoPaintingBefore) {
    HtmlDlg dlg;
    int cy = 0, cyAfter = 0;
    dlg.onInit = [&](HtmlDlg& d) {
        d.SetDlgItemTextW(IDC_HTML_BOLD, L"one<BR>two");
        d.html.Init(&d, IDC_HTML_BOLD, nullptr, 0);
        cy = HeightFor(d.html, 300);
    };
    ASSERT_TRUE(dlg.Show());
    cyAfter = HeightFor(dlg.html, 300);
    EXPECT_EQ(cyAfter, cy);
}

TEST(CSStaticHTMLPaint, HeightMakesTheLinksAnewForItsRectangleUntilTheNextPainting) {
    ShownHtml shown(IDC_HTML_LINK);
    shown.html.SetHTMLText(L"<A>one two</A>");
    shown.html.Paint();
    EXPECT_EQ(1u, shown.html.LinkRects().size());
    const RECT rc = shown.html.LinkRects()[0];
    HeightFor(shown.html, rc.right - 6);
    EXPECT_EQ(2u, shown.html.LinkRects().size());
    shown.html.Paint();
    ASSERT_EQ(1u, shown.html.LinkRects().size());
    EXPECT_EQ(rc, shown.html.LinkRects()[0]);
}

// CSDlg::AdjustHeight

struct Adjusted {
    Adjusted(const wchar_t* psz, bool bInit = true) {
        dlg.onInit = [=](HtmlDlg& d) {
            if (bInit) d.html.Init(&d, IDC_HTML_BOLD, nullptr, 0);
            if (psz) d.SetDlgItemTextW(IDC_HTML_BOLD, psz);
        };
        EXPECT_TRUE(dlg.Modeless(IDD_HTML_SMALL, ::GetModuleHandleW(nullptr), nullptr, 0) !=
                    nullptr);
        ::GetClientRect(::GetDlgItem(dlg.hWnd, IDC_HTML_BOLD), &rcCtl);
        ::GetWindowRect(dlg.hWnd, &rcBefore);
        dlg.AdjustHeight(IDC_HTML_BOLD);
        ::GetWindowRect(dlg.hWnd, &rcAfter);
    }
    int Wider() const { return (rcAfter.right - rcAfter.left) - (rcBefore.right - rcBefore.left); }
    int Higher() const { return (rcAfter.bottom - rcAfter.top) - (rcBefore.bottom - rcBefore.top); }
    HtmlDlg dlg;
    RECT rcCtl{}, rcBefore{}, rcAfter{};
};

TEST(CSStaticHTMLPaint, AdjustHeightGrowsByTheTextsHeightAndTwentyMore) {
    Adjusted adjusted(nullptr); // the template's text, nothing painted yet
    const int cy = HeightFor(adjusted.dlg.html, adjusted.rcCtl.right);
    ASSERT_LT(adjusted.rcCtl.bottom, cy);
    EXPECT_EQ(cy - adjusted.rcCtl.bottom + 20, adjusted.Higher());
    EXPECT_EQ(0, adjusted.Wider());
}

TEST(CSStaticHTMLPaint, AdjustHeightMeasuresTheRichTextAndNotItsTags) {
    Adjusted adjusted(L"<H>one</H><BR><H>two</H><BR><A1>three</A1>");
    HtmlDlg& dlg = adjusted.dlg;
    EXPECT_EQ(1u, dlg.html.links.GetLinkCount()); // for the rectangle that was measured
    const int cy = HeightFor(dlg.html, adjusted.rcCtl.right);
    EXPECT_EQ(cy - adjusted.rcCtl.bottom + 20, adjusted.Higher());
    Adjusted plain(L"one\ntwo\nthree", false);
    EXPECT_LT(plain.Higher(), adjusted.Higher());
}

TEST(CSStaticHTMLPaint, AdjustHeightLeavesADialogWhoseTextFits) {
    Adjusted adjusted(L"<B>a</B>");
    EXPECT_EQ(0, adjusted.Higher());
    EXPECT_EQ(0, adjusted.Wider());
}

TEST(CSStaticHTMLPaint, AdjustHeightWrapsALongWordInsteadOfWidening) {
    Adjusted adjusted(std::wstring(100, L'w').c_str());
    EXPECT_EQ(0, adjusted.Wider());
    EXPECT_LT(0, adjusted.Higher());
}

TEST(CSStaticHTMLPaint, AdjustHeightMeasuresInARectangleOfThousandPixels) {
    std::wstring text;
    for (int i = 0; i < 300; ++i) text += L"line<BR>";
    Adjusted adjusted(text.c_str());
    const int cy = HeightFor(adjusted.dlg.html, adjusted.rcCtl.right, 1000);
    EXPECT_LT(cy, HeightFor(adjusted.dlg.html, adjusted.rcCtl.right, 3000));
    EXPECT_EQ(cy - adjusted.rcCtl.bottom + 20, adjusted.Higher());
}
} // namespace
