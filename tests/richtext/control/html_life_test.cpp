// Ends that come at a bad moment: of the control, the dialog and the objects.
#include "richtext/control/html_dlg.h"
#include "support/gui_objects.h"
#include "support/heap_count.h"

namespace {
POINT OnLink(ProbeHtml& html, unsigned iLink = 0) {
    const std::vector<RECT> rects = html.LinkRects(iLink);
    return rects.empty() ? POINT{-1, -1} : Middle(rects[0]);
}

TEST(CSStaticHTMLLife, ControlMayEndInsideTheCommandOfItsOwnLink) {
    ShownHtml shown(IDC_HTML_LINK);
    HWND hwnd = shown.html.hWnd;
    shown.dlg.onCommand = [&](HtmlDlg&, int, int) { ::DestroyWindow(hwnd); };
    const POINT pt = OnLink(shown.html);
    shown.html.Press(pt.x, pt.y); // the notification is sent
    EXPECT_FALSE(::IsWindow(hwnd));
    EXPECT_EQ(L"<A>own</A> and <A1>next</A1>", shown.html.Text()); // the object lives on
}

TEST(CSStaticHTMLLife, ControlMayEndInThePostedCommandOfItsLink) {
    ShownHtml shown(IDC_HTML_LINK);
    HWND hwnd = shown.html.hWnd;
    shown.dlg.onCommand = [&](HtmlDlg&, int, int) { ::DestroyWindow(hwnd); };
    const POINT pt = OnLink(shown.html, 1);
    shown.html.Press(pt.x, pt.y);
    EXPECT_TRUE(::IsWindow(hwnd));
    shown.dlg.Pump();
    EXPECT_FALSE(::IsWindow(hwnd));
}

TEST(CSStaticHTMLLife, DialogMayEndInsideTheCommandOfALink) {
    for (unsigned iLink : {0u, 1u}) {
        ShownHtml shown(IDC_HTML_LINK);
        HWND hwndDlg = shown.dlg.hWnd;
        shown.dlg.onCommand = [](HtmlDlg& d, int, int) { ::DestroyWindow(d.hWnd); };
        const POINT pt = OnLink(shown.html, iLink);
        shown.html.Press(pt.x, pt.y);
        shown.dlg.Pump();
        EXPECT_FALSE(::IsWindow(hwndDlg)) << iLink;
    }
}

TEST(CSStaticHTMLLife, DialogWithItsControlsMayDeleteItselfInALink) {
    for (unsigned iLink : {0u, 1u}) {
        auto* pDlg = new HtmlDlg;
        pDlg->autoDelete = 1;
        pDlg->onInit = [](HtmlDlg& d) { d.html.Init(&d, IDC_HTML_LINK, nullptr, 0); };
        ASSERT_TRUE(pDlg->Show());
        HWND hwndDlg = pDlg->hWnd;
        pDlg->onCommand = [](HtmlDlg& d, int nId, int) {
            if (nId >= IDC_HTML_LINK) ::DestroyWindow(d.hWnd);
        };
        const POINT pt = OnLink(pDlg->html, iLink);
        ::SendMessageW(pDlg->html.hWnd, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(pt.x, pt.y));
        MSG msg;
        while (::PeekMessageW(&msg, nullptr, 0, 0, PM_REMOVE)) ::DispatchMessageW(&msg);
        EXPECT_FALSE(::IsWindow(hwndDlg)) << iLink;
    }
}

TEST(CSStaticHTMLLife, DialogRunModallyIsClosedByALink) {
    HtmlDlg dlg;
    dlg.bCloses = true;
    dlg.onInit = [](HtmlDlg& d) {
        d.html.Init(&d, IDC_HTML_LINK, nullptr, 0);
        ::ShowWindow(d.hWnd, SW_SHOW);
        ::UpdateWindow(d.hWnd);
        d.html.Paint();
        const POINT pt = OnLink(d.html, 1);
        d.html.Press(pt.x, pt.y);
    };
    dlg.onCommand = [](HtmlDlg& d, int nId, int) {
        if (nId == IDC_HTML_LINK + 1) d.CloseDialog(77, 0);
    };
    EXPECT_EQ(77, dlg.Modal(IDD_HTML, ::GetModuleHandleW(nullptr), nullptr));
}

TEST(CSStaticHTMLLife, TextSetInTheCommandOfALinkIsTheNextOnePainted) {
    ShownHtml shown(IDC_HTML_LINK);
    shown.dlg.onCommand = [](HtmlDlg& d, int, int) { d.html.SetHTMLText(L"done"); };
    const POINT pt = OnLink(shown.html);
    shown.html.Press(pt.x, pt.y);
    EXPECT_EQ(L"done", shown.html.Text());
    shown.html.Paint();
    EXPECT_EQ(0u, shown.html.links.GetLinkCount());
    EXPECT_EQ(0, shown.html.Press(pt.x, pt.y));
}

TEST(CSStaticHTMLLife, ControlsOutliveTheirWindowAndServeAgainAsTexts) {
    HtmlDlg dlg;
    dlg.onInit = [](HtmlDlg& d) { d.html.Init(&d, IDC_HTML_LINK, nullptr, 0); };
    ASSERT_TRUE(dlg.Show());
    ::DestroyWindow(dlg.hWnd);
    EXPECT_EQ(L"<A>own</A> and <A1>next</A1>", dlg.html.Text());
    EXPECT_EQ(0, dlg.html.SetHTMLText(L"y"));
    EXPECT_EQ(2u, dlg.html.links.GetLinkCount());
}

TEST(CSStaticHTMLLife, ManyDialogsLeaveNoBlocksAndNoDrawingObjects) {
    const auto once = [] {
        ShownHtml shown(IDC_HTML_LINK);
        shown.html.SetHTMLText(L"<B>bold</B> <A>link</A> <H>head</H> <BIG>open");
        shown.html.Paint();
        shown.html.MakeLink();
        shown.html.Paint();
    };
    for (int i = 0; i < 3; ++i) once();
    const long nBlocks = CountLiveBlocks();
    const int nObjects = CountGdiObjects();
    for (int i = 0; i < 20; ++i) once();
    EXPECT_EQ(nBlocks, CountLiveBlocks());
    EXPECT_LE(CountGdiObjects(), nObjects + 2);
}
} // namespace
