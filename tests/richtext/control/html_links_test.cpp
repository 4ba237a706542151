// The links of a rich text control: the mouse, and how the dialog learns of them.
#include "richtext/control/html_dlg.h"

extern "C" FARPROC __imp_LoadCursorW;
extern "C" FARPROC __imp_SetCursor;
extern "C" FARPROC __imp_TrackMouseEvent;

namespace {
HCURSOR Hand() { return ::LoadCursorW(nullptr, IDC_HAND); }
HCURSOR Arrow() { return ::LoadCursorW(nullptr, IDC_ARROW); }

/// A person's mouse.
void MoveTo(POINT pt) {
    INPUT input = MouseInput(0, pt);
    ::SendInput(1, &input, sizeof(input));
}
void ClickAt(POINT pt) {
    INPUT inputs[2] = {MouseInput(MOUSEEVENTF_LEFTDOWN, pt), MouseInput(MOUSEEVENTF_LEFTUP, pt)};
    ::SendInput(2, inputs, sizeof(INPUT));
}
/// Clicks there and waits until n commands have come, of any code.
bool ClickFor(HtmlDlg& dlg, POINT pt, std::size_t n) {
    ClickAt(pt);
    return PumpUntil([&] { return dlg.commands.size() >= n; });
}
POINT OnLink(ProbeHtml& html, unsigned iLink = 0, unsigned iRect = 0) {
    const std::vector<RECT> rects = html.LinkRects(iLink);
    if (iRect >= rects.size()) {
        ADD_FAILURE() << "no such link";
        return {-1, -1};
    }
    return Middle(rects[iRect]);
}
constexpr LPARAM Point(POINT pt) {
    return static_cast<LPARAM>((pt.y & 0xFFFF) << 16 | (pt.x & 0xFFFF));
}

// Before anything is drawn

TEST(CSStaticHTMLLinks, ThereAreNoneBeforeTheFirstPainting) {
    HtmlDlg dlg;
    LRESULT lHit = -1, lCode = -1;
    dlg.onInit = [&](HtmlDlg& d) {
        d.html.Init(&d, IDC_HTML_LINK, nullptr, 0);
        lHit = d.html.HitTest(3, 3);
        lCode = d.html.SendMsg(WM_GETDLGCODE, VK_SPACE, 0);
        EXPECT_EQ(0, d.html.bHover);
    };
    ASSERT_TRUE(dlg.Show());
    EXPECT_EQ(HTCLIENT, lHit); // the platform's answer for a static that notifies
    EXPECT_EQ(0, lCode & DLGC_WANTMESSAGE);
}

TEST(CSStaticHTMLLinks, EachPaintingMakesThemAnew) {
    ShownHtml shown(IDC_HTML_LINK);
    EXPECT_EQ(2u, shown.html.links.GetLinkCount());
    shown.html.SetHTMLText(L"<A>one</A>");
    EXPECT_EQ(2u, shown.html.links.GetLinkCount());
    shown.html.Paint();
    EXPECT_EQ(1u, shown.html.links.GetLinkCount());
    shown.html.SetHTMLText(L"none");
    shown.html.Paint();
    EXPECT_EQ(0u, shown.html.links.GetLinkCount());
}

// WM_NCHITTEST and WM_SETCURSOR

TEST(CSStaticHTMLLinks, HitTestOverALinkSetsTheHandAndAsksForRepaintingOnce) {
    ShownHtml shown(IDC_HTML_LINK);
    const POINT pt = OnLink(shown.html);
    ::SetCursor(Arrow());
    {
        InvalidateRecord record;
        EXPECT_EQ(HTCLIENT, shown.html.HitTest(pt.x, pt.y));
        EXPECT_TRUE(record.IsOne(shown.html.hWnd, FALSE));
    }
    EXPECT_EQ(1, shown.html.bHover);
    EXPECT_EQ(Hand(), ::GetCursor());
    InvalidateRecord record;
    EXPECT_EQ(HTCLIENT, shown.html.HitTest(pt.x + 1, pt.y));
    EXPECT_TRUE(record.Calls().empty());
}

/// What the platform is asked to tell of the mouse.
std::vector<TRACKMOUSEEVENT> tracked;
BOOL WINAPI RecordTrack(TRACKMOUSEEVENT* pTrack) {
    tracked.push_back(*pTrack);
    return TRUE;
}

TEST(CSStaticHTMLLinks, HitTestOverALinkAsksOnceForWordWhenTheMouseLeaves) {
    ShownHtml shown(IDC_HTML_LINK);
    const POINT pt = OnLink(shown.html);
    shown.html.HitTest(220, pt.y);
    tracked.clear();
    ReplaceImport replaced(__imp_TrackMouseEvent, &RecordTrack);
    shown.html.HitTest(pt.x, pt.y);
    shown.html.HitTest(pt.x, pt.y);
    ASSERT_EQ(1u, tracked.size());
    EXPECT_EQ(shown.html.hWnd, tracked[0].hwndTrack);
    EXPECT_EQ(static_cast<DWORD>(TME_LEAVE), tracked[0].dwFlags);
    EXPECT_EQ(100u, tracked[0].dwHoverTime);
}

TEST(CSStaticHTMLLinks, HoverLastsWhenTheMouseHasLeftUntilATestThatFindsNoLink) {
    ShownHtml shown(IDC_HTML_LINK);
    const POINT pt = OnLink(shown.html);
    shown.html.HitTest(pt.x, pt.y);
    shown.html.SendMsg(WM_MOUSELEAVE, 0, 0);
    EXPECT_EQ(1, shown.html.bHover);
    shown.html.HitTest(220, pt.y);
    EXPECT_EQ(0, shown.html.bHover);
}

TEST(CSStaticHTMLLinks, HitTestBesideALinkEndsTheHoverAndAsksForRepainting) {
    ShownHtml shown(IDC_HTML_LINK);
    const POINT pt = OnLink(shown.html);
    const RECT rcLast = shown.html.LinkRects(1)[0];
    shown.html.HitTest(pt.x, pt.y);
    ASSERT_EQ(1, shown.html.bHover);
    {
        InvalidateRecord record;
        EXPECT_EQ(HTCLIENT, shown.html.HitTest(rcLast.right, pt.y)); // the right edge is outside
        EXPECT_TRUE(record.IsOne(shown.html.hWnd, FALSE));
    }
    EXPECT_EQ(0, shown.html.bHover);
    InvalidateRecord record;
    shown.html.HitTest(rcLast.right + 5, pt.y);
    EXPECT_TRUE(record.Calls().empty());
}

TEST(CSStaticHTMLLinks, EdgesOfALinkRightAndBottomAreOutside) {
    ShownHtml shown(IDC_HTML_BOLD);
    shown.html.SetHTMLText(L"ab <A>link</A> cd");
    shown.html.Paint();
    const RECT rc = shown.html.LinkRects()[0];
    const auto isHit = [&](int x, int y) {
        shown.html.HitTest(x, y);
        return shown.html.bHover != 0;
    };
    EXPECT_TRUE(isHit(rc.left, rc.top));
    EXPECT_TRUE(isHit(rc.right - 1, rc.bottom - 1));
    EXPECT_FALSE(isHit(rc.left - 1, rc.top));
    EXPECT_FALSE(isHit(rc.left, rc.top - 1));
    EXPECT_FALSE(isHit(rc.right, rc.top));
    EXPECT_FALSE(isHit(rc.left, rc.bottom));
}

TEST(CSStaticHTMLLinks, WithoutNotifyTheMouseGoesThroughAlsoOverALink) {
    ShownHtml shown(IDC_HTML_DEAF);
    const POINT pt = OnLink(shown.html);
    ::SetCursor(Arrow());
    EXPECT_EQ(HTTRANSPARENT, shown.html.HitTest(pt.x, pt.y));
    EXPECT_EQ(1, shown.html.bHover);
    EXPECT_EQ(Hand(), ::GetCursor());
    EXPECT_EQ(HTTRANSPARENT, shown.html.HitTest(140, pt.y));
}

TEST(CSStaticHTMLLinks, CursorStaysTheHandOnlyWhileTheMouseIsOverALink) {
    ShownHtml shown(IDC_HTML_LINK);
    const POINT pt = OnLink(shown.html);
    const auto wHwnd = reinterpret_cast<WPARAM>(shown.html.hWnd);
    const LPARAM lHit = MAKELPARAM(HTCLIENT, WM_MOUSEMOVE);
    shown.html.HitTest(pt.x, pt.y);
    EXPECT_EQ(1, shown.html.SendMsg(WM_SETCURSOR, wHwnd, lHit));
    EXPECT_EQ(Hand(), ::GetCursor());
    shown.html.HitTest(220, pt.y);
    shown.html.SendMsg(WM_SETCURSOR, wHwnd, lHit);
    EXPECT_EQ(Arrow(), ::GetCursor());
}

TEST(CSStaticHTMLLinks, RealMouseGetsTheHandOverALinkAndLosesItBeside) {
    ShownHtml shown(IDC_HTML_LINK);
    const POINT pt = OnLink(shown.html);
    MoveTo(shown.html.ToScreen(pt.x, pt.y));
    EXPECT_TRUE(PumpUntil([&] { return shown.html.bHover && ::GetCursor() == Hand(); }));
    MoveTo(shown.html.ToScreen(220, pt.y));
    EXPECT_TRUE(PumpUntil([&] { return !shown.html.bHover && ::GetCursor() == Arrow(); }));
}

// Presses

TEST(CSStaticHTMLLinks, PressOnTheOwnLinkIsTheStaticsOwnNotification) {
    ShownHtml shown(IDC_HTML_LINK);
    const POINT pt = OnLink(shown.html);
    shown.html.Press(pt.x, pt.y);
    shown.dlg.Pump();
    EXPECT_EQ(std::vector<int>{IDC_HTML_LINK}, shown.dlg.Ids(STN_CLICKED));
    ASSERT_EQ(1u, shown.dlg.commands.size());
    EXPECT_EQ(shown.html.hWnd, shown.dlg.commands[0].hwnd);
    shown.html.Press(pt.x, pt.y, WM_LBUTTONDBLCLK);
    shown.dlg.Pump();
    EXPECT_EQ(std::vector<int>{IDC_HTML_LINK}, shown.dlg.Ids(STN_DBLCLK));
    EXPECT_EQ(2u, shown.dlg.commands.size());
}

TEST(CSStaticHTMLLinks, PressOnANumberedLinkIsPostedAsTheButtonOfThatId) {
    ShownHtml shown(IDC_HTML_LINK);
    const POINT pt = OnLink(shown.html, 1);
    EXPECT_EQ(0, shown.html.Press(pt.x, pt.y));
    EXPECT_TRUE(shown.dlg.commands.empty()); // not sent
    shown.dlg.Pump();
    ASSERT_EQ(std::vector<int>{IDC_HTML_LINK + 1}, shown.dlg.Ids());
    EXPECT_EQ(nullptr, shown.dlg.commands[0].hwnd); // there is no such item
    EXPECT_EQ(0, shown.html.Press(pt.x, pt.y, WM_LBUTTONDBLCLK));
    shown.dlg.Pump();
    EXPECT_EQ((std::vector<int>{IDC_HTML_LINK + 1, IDC_HTML_LINK + 1}), shown.dlg.Ids());
}

TEST(CSStaticHTMLLinks, AllTenIdsFollowTheControls) {
    ShownHtml shown(IDC_HTML_BOLD);
    shown.html.SetHTMLText(L"<A1>a</A1> <A2>b</A2> <A3>c</A3> <A4>d</A4> <A5>e</A5> <A6>f</A6> "
                           L"<A7>g</A7> <A8>h</A8> <A9>i</A9>");
    shown.html.Paint();
    ASSERT_EQ(9u, shown.html.links.GetLinkCount());
    std::vector<int> expected;
    for (int i = 0; i < 9; ++i) {
        const POINT pt = OnLink(shown.html, i);
        shown.html.Press(pt.x, pt.y);
        expected.push_back(IDC_HTML_BOLD + i + 1);
    }
    shown.dlg.Pump();
    EXPECT_EQ(expected, shown.dlg.Ids());
}

TEST(CSStaticHTMLLinks, LinkToAnItemOfTheDialogNamesThatItem) {
    ShownHtml shown(IDC_HTML_BOLD);
    shown.html.SetHTMLText(L"<A1>a</A1>"); // 1031 is an item
    shown.html.Paint();
    const POINT pt = OnLink(shown.html);
    shown.html.Press(pt.x, pt.y);
    shown.dlg.Pump();
    ASSERT_EQ(1u, shown.dlg.commands.size());
    EXPECT_EQ(::GetDlgItem(shown.dlg.hWnd, IDC_HTML_DEAF), shown.dlg.commands[0].hwnd);
}

TEST(CSStaticHTMLLinks, PressBesideALinkGoesNoFurther) {
    ShownHtml shown(IDC_HTML_LINK);
    const POINT pt = OnLink(shown.html);
    for (UINT uMsg : {WM_LBUTTONDOWN, WM_LBUTTONDBLCLK}) {
        EXPECT_EQ(0, shown.html.Press(220, pt.y, uMsg));
        EXPECT_EQ(0, shown.html.Press(-1, pt.y, uMsg));
        EXPECT_EQ(0, shown.html.Press(pt.x, -32768, uMsg));
    }
    shown.dlg.Pump();
    EXPECT_TRUE(shown.dlg.commands.empty());
}

TEST(CSStaticHTMLLinks, PointOfAPressIsSigned) {
    ShownHtml shown(IDC_HTML_LINK);
    shown.html.links.Reset();
    auto* pArea = new DrawHTMLLinkArea(IDC_HTML_LINK + 3);
    pArea->StartRect(-10, -10);
    pArea->EndRect(-1, -1);
    shown.html.links.AddTail(pArea);
    shown.html.Press(-5, -5);
    shown.dlg.Pump();
    EXPECT_EQ(std::vector<int>{IDC_HTML_LINK + 3}, shown.dlg.Ids());
}

TEST(CSStaticHTMLLinks, InAControlWithTheId0TheOwnLinkDoesNothingAndTheNextIsTheCommand1) {
    ShownHtml shown(0, IDD_HTML_ZERO);
    ASSERT_EQ(2u, shown.html.links.GetLinkCount());
    const POINT ptOwn = OnLink(shown.html), ptNext = OnLink(shown.html, 1);
    EXPECT_EQ(HTCLIENT, shown.html.HitTest(ptOwn.x, ptOwn.y));
    EXPECT_EQ(1, shown.html.bHover); // it is a link all the same
    EXPECT_EQ(0, shown.html.Press(ptOwn.x, ptOwn.y));
    shown.dlg.Pump();
    EXPECT_TRUE(shown.dlg.commands.empty());
    shown.html.Press(ptNext.x, ptNext.y);
    shown.dlg.Pump();
    EXPECT_EQ(std::vector<int>{1}, shown.dlg.Ids());
}

TEST(CSStaticHTMLLinks, RealClicksOnTheTwoLinksAreTheirCommands) {
    ShownHtml shown(IDC_HTML_LINK);
    const POINT ptOwn = OnLink(shown.html), ptNext = OnLink(shown.html, 1);
    EXPECT_TRUE(ClickFor(shown.dlg, shown.html.ToScreen(ptOwn.x, ptOwn.y), 1));
    EXPECT_TRUE(ClickFor(shown.dlg, shown.html.ToScreen(ptNext.x, ptNext.y), 2));
    EXPECT_EQ((std::vector<int>{IDC_HTML_LINK, IDC_HTML_LINK + 1}), shown.dlg.Ids());
}

TEST(CSStaticHTMLLinks, RealClickBesideTheLinksDoesNothing) {
    ShownHtml shown(IDC_HTML_LINK);
    const RECT rc = shown.html.LinkRects(1)[0];
    const int nBefore = shown.html.messages[WM_LBUTTONUP];
    ClickAt(shown.html.ToScreen(rc.right + 10, rc.top + 2));
    EXPECT_TRUE(PumpUntil([&] { return shown.html.messages[WM_LBUTTONUP] > nBefore; }));
    shown.dlg.Pump();
    EXPECT_TRUE(shown.dlg.commands.empty());
    EXPECT_TRUE(shown.dlg.presses.empty());
}

TEST(CSStaticHTMLLinks, WithoutNotifyARealClickOnALinkReachesTheDialogBehind) {
    ShownHtml shown(IDC_HTML_DEAF);
    const POINT pt = OnLink(shown.html);
    POINT ptDlg = pt;
    ::MapWindowPoints(shown.html.hWnd, shown.dlg.hWnd, &ptDlg, 1);
    ClickAt(shown.html.ToScreen(pt.x, pt.y));
    ASSERT_TRUE(PumpUntil([&] { return !shown.dlg.presses.empty(); }));
    EXPECT_EQ(Point(ptDlg), shown.dlg.presses[0]);
    EXPECT_EQ(0, shown.html.messages[WM_LBUTTONDOWN]);
    EXPECT_TRUE(shown.dlg.commands.empty());
}

TEST(CSStaticHTMLLinks, RealClicksOnEachLineOfAWrappedLinkAreItsCommand) {
    ShownHtml shown(IDC_HTML_WRAP);
    const std::vector<RECT> rects = shown.html.LinkRects();
    ASSERT_LE(3u, rects.size());
    RECT rcClient;
    ::GetClientRect(shown.html.hWnd, &rcClient);
    std::size_t n = 0;
    for (std::size_t i = 0; i < rects.size(); ++i) {
        const RECT& rc = rects[i];
        const bool bFirst = i == 0, bLast = i + 1 == rects.size();
        EXPECT_TRUE(bLast || rc.right == rcClient.right) << i;
        EXPECT_TRUE(bFirst || rc.left == 0) << i;
        EXPECT_TRUE(ClickFor(shown.dlg, shown.html.ToScreen(rc.left + 2, rc.top + 2), ++n)) << i;
        // The far right, where no letter stands but on the last line.
        EXPECT_TRUE(ClickFor(shown.dlg, shown.html.ToScreen(rc.right - 1, rc.bottom - 1), ++n))
            << i;
    }
    EXPECT_EQ(std::vector<int>(n, IDC_HTML_WRAP + 1), shown.dlg.Ids());
    EXPECT_EQ(n, shown.dlg.commands.size());
    // Behind its end there is no link.
    shown.html.Press(rects.back().right, rects.back().top + 2);
    shown.dlg.Pump();
    EXPECT_EQ(n, shown.dlg.commands.size());
}

TEST(CSStaticHTMLLinks, OverlappingAreasAreTakenInTheirOrder) {
    ShownHtml shown(IDC_HTML_LINK);
    shown.html.links.Reset();
    for (unsigned nId : {2000u, 2001u}) {
        auto* pArea = new DrawHTMLLinkArea(nId);
        pArea->StartRect(0, 0);
        pArea->EndRect(10, 10);
        shown.html.links.AddTail(pArea);
    }
    shown.html.Press(5, 5);
    shown.dlg.Pump();
    EXPECT_EQ(std::vector<int>{2000}, shown.dlg.Ids());
}

TEST(CSStaticHTMLLinks, DroppedFilesAreTheVirtualOperations) {
    ShownHtml shown(IDC_HTML_KEYS);
    shown.html.SendMsg(WM_DROPFILES, 0, 0);
    EXPECT_EQ(1, shown.html.nDrops); // once, though a base handles the message too
}

// Which messages go on to the window's own processing

/// Sees what comes there, and is that processing.
class DefaultRecord : public WMHook {
  public:
    static constexpr LRESULT kResult = 4711;
    explicit DefaultRecord(CSWnd& wndSeen) : wnd(wndSeen) { AddToWnd(&wnd); }
    ~DefaultRecord() override { RemoveFromWnd(&wnd); }
    int OnWndMessage(CSWnd*, UINT uMsg, WPARAM, LPARAM, LRESULT* plResult) override {
        seen.push_back(uMsg);
        *plResult = kResult;
        return 1;
    }
    /// Sends a message; whether it went on to the window's own processing, with its result.
    bool GoesOn(UINT uMsg, WPARAM wParam, LPARAM lParam) {
        seen.clear();
        const LRESULT l = ::SendMessageW(wnd, uMsg, wParam, lParam);
        const bool bSeen = std::find(seen.begin(), seen.end(), uMsg) != seen.end();
        EXPECT_EQ(bSeen, l == kResult) << uMsg;
        return bSeen;
    }

  private:
    CSWnd& wnd;
    std::vector<UINT> seen;
};

TEST(CSStaticHTMLLinks, EachMessageGoesOnOrEndsHere) {
    ShownHtml shown(IDC_HTML_LINK);
    const POINT ptOwn = OnLink(shown.html), ptNext = OnLink(shown.html, 1);
    const POINT ptNone{220, ptOwn.y};
    const auto screen = [&](POINT pt) { return Point(shown.html.ToScreen(pt.x, pt.y)); };
    DefaultRecord record(shown.html);
    EXPECT_TRUE(record.GoesOn(WM_NCHITTEST, 0, screen(ptNone)));
    EXPECT_TRUE(record.GoesOn(WM_SETCURSOR, 0, 0));
    EXPECT_FALSE(record.GoesOn(WM_NCHITTEST, 0, screen(ptOwn)));
    EXPECT_FALSE(record.GoesOn(WM_SETCURSOR, 0, 0));
    for (UINT uMsg : {WM_LBUTTONDOWN, WM_LBUTTONDBLCLK}) {
        EXPECT_TRUE(record.GoesOn(uMsg, MK_LBUTTON, Point(ptOwn)));
        EXPECT_FALSE(record.GoesOn(uMsg, MK_LBUTTON, Point(ptNext)));
        EXPECT_FALSE(record.GoesOn(uMsg, MK_LBUTTON, Point(ptNone)));
    }
    EXPECT_FALSE(record.GoesOn(WM_GETDLGCODE, VK_RETURN, 0));
    EXPECT_TRUE(record.GoesOn(WM_GETDLGCODE, VK_LEFT, 0));
    EXPECT_TRUE(record.GoesOn(WM_SETFOCUS, 0, 0));
    EXPECT_TRUE(record.GoesOn(WM_KEYUP, VK_SPACE, 0));
    EXPECT_TRUE(record.GoesOn(WM_KILLFOCUS, 0, 0));
    EXPECT_TRUE(record.GoesOn(WM_KEYUP, VK_SPACE, 0));
    EXPECT_TRUE(record.GoesOn(WM_DROPFILES, 0, 0));
    EXPECT_FALSE(record.GoesOn(WM_SETTEXT, 0, reinterpret_cast<LPARAM>(L"x")));
    EXPECT_FALSE(record.GoesOn(WM_PAINT, 0, 0));
    for (UINT uMsg : {WM_LBUTTONUP, WM_RBUTTONDOWN, WM_KEYDOWN, WM_CHAR, WM_MOUSELEAVE,
                      WM_MOUSEMOVE, WM_GETTEXT, WM_ERASEBKGND, WM_ENABLE}) {
        EXPECT_TRUE(record.GoesOn(uMsg, 0, 0)) << uMsg;
    }
}

int nCursorsLoaded = 0, nCursorsSet = 0;
HCURSOR WINAPI CountLoad(HINSTANCE, LPCWSTR) {
    ++nCursorsLoaded;
    return nullptr;
}
HCURSOR WINAPI CountSet(HCURSOR) {
    ++nCursorsSet;
    return nullptr;
}

TEST(CSStaticHTMLLinks, HandIsLoadedOnceForAllAndSetOnlyWhereItIsNot) {
    ShownHtml shown(IDC_HTML_LINK);
    const POINT pt = OnLink(shown.html);
    shown.html.HitTest(pt.x, pt.y);
    ShownHtml another(IDC_HTML_LINK);
    const HCURSOR hcurHand = Hand(), hcurArrow = Arrow();
    ReplaceImport load(__imp_LoadCursorW, &CountLoad);
    ReplaceImport set(__imp_SetCursor, &CountSet);
    nCursorsLoaded = nCursorsSet = 0;
    set.Original<decltype(::SetCursor)>()(hcurHand);
    another.html.HitTest(pt.x, pt.y);
    EXPECT_EQ(0, nCursorsSet);
    set.Original<decltype(::SetCursor)>()(hcurArrow);
    another.html.HitTest(pt.x, pt.y);
    EXPECT_EQ(1, nCursorsSet);
    EXPECT_EQ(0, nCursorsLoaded);
}

TEST(CSStaticHTMLLinks, EmptyTextLeavesTheLinksOfTheOneBefore) {
    ShownHtml shown(IDC_HTML_LINK);
    const POINT pt = OnLink(shown.html, 1);
    shown.html.SetHTMLText(L"");
    shown.html.Paint();
    EXPECT_EQ(2u, shown.html.links.GetLinkCount());
    shown.html.Press(pt.x, pt.y);
    shown.dlg.Pump();
    EXPECT_EQ(std::vector<int>{IDC_HTML_LINK + 1}, shown.dlg.Ids());
}
} // namespace
