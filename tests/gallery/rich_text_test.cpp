// The page "Rich text".

#include "gallery/gallery_test_support.h"

#include <algorithm>

namespace {
constexpr int kLine = 14;                       // pixels from a line to the next one
constexpr COLORREF kLinkBlue = RGB(0, 0, 187);  // of the page
constexpr COLORREF kLightRed = RGB(0xC0, 0, 0); // <LTRED>
constexpr size_t kOfAWord = 20;                 // pixels of a word's colour, at least

class GalleryRichText : public Gallery {
  protected:
    GalleryRichText() { GoToPage(kRichTextPage); }
    /// A point within a control of the page; x below 0 is from its right edge.
    POINT PointIn(int nId, int x, int y) {
        RECT rc = RectOf(PageItem(nId));
        return {(x < 0 ? rc.right : rc.left) + x, rc.top + y};
    }
    bool WaitForPressed(const std::wstring& strText) {
        return WaitForText(PageItem(IDC_LINK_PRESSED), L"Link pressed last: " + strText);
    }
    size_t CountOf(int nId, COLORREF cr) {
        const auto pixels = PixelsOf(RectOf(PageItem(nId)));
        return static_cast<size_t>(std::count(pixels.begin(), pixels.end(), cr));
    }
    /// Into the edit, in the place of all that it holds.
    void TypeMarkup(const std::wstring& strMarkup) {
        PressKeys(Main(), {L"alt+p", L"alt+m"});
        EXPECT_TRUE(WaitForFocus(IDC_MARKUP));
        // All is selected a moment later.
        HWND hwndEdit = PageItem(IDC_MARKUP);
        EXPECT_TRUE(WaitUntil([&] {
            return ::SendMessageW(hwndEdit, EM_GETSEL, 0, 0) ==
                   MAKELONG(0, ::SendMessageW(hwndEdit, WM_GETTEXTLENGTH, 0, 0));
        }));
        TypeText(Main(), strMarkup);
        EXPECT_TRUE(WaitForText(PageItem(IDC_MARKUP), strMarkup));
    }
};
} // namespace

TEST_F(GalleryRichText, WrappedLinkIsPressedOnEachLineAndOnTheEmptyPartOfItsRectangle) {
    const POINT places[] = {
        {10, kLine / 2},         {10, kLine + kLine / 2}, {10, 2 * kLine + kLine / 2},
        {-4, kLine / 2}, // behind the words of the first line and of the second one
        {-4, kLine + kLine / 2},
    };
    int nPress = 0;
    for (POINT pt : places) {
        mouse::Click(PointIn(IDC_WRAPPED, pt.x, pt.y));
        ASSERT_TRUE(WaitForPressed(L"IDC_WRAPPED + 0 (press " + std::to_wstring(++nPress) + L")"))
            << pt.x << "," << pt.y;
    }
    mouse::Click(PointIn(IDC_WRAPPED, -4, 2 * kLine + kLine / 2)); // behind its end
    EXPECT_TRUE(HoldsFor(
        [&] {
            return TextOf(PageItem(IDC_LINK_PRESSED)) ==
                   L"Link pressed last: IDC_WRAPPED + 0 (press 5)";
        },
        200));
}

TEST_F(GalleryRichText, LinkShowsTheHand) {
    mouse::MoveTo(PointIn(IDC_WRAPPED, -4, 2 * kLine + kLine / 2));
    HCURSOR hcurBeside = nullptr;
    EXPECT_TRUE(WaitUntil([&] { return (hcurBeside = CursorNow()) != nullptr; }));
    mouse::MoveTo(PointIn(IDC_WRAPPED, 10, kLine / 2));
    EXPECT_TRUE(WaitUntil([&] { return CursorNow() != hcurBeside; }));
    const HCURSOR hcurHand = CursorNow();
    mouse::MoveTo(PointIn(IDC_WRAPPED, -4, 2 * kLine + kLine / 2));
    EXPECT_TRUE(WaitUntil([&] { return CursorNow() == hcurBeside; }));
    mouse::MoveTo(PointIn(IDC_WRAPPED, -4, kLine / 2)); // the empty part of its rectangle
    EXPECT_TRUE(WaitUntil([&] { return CursorNow() == hcurHand; }));
}

TEST_F(GalleryRichText, SpaceAndReturnPressTheLinkOfTheControlThatHasTheKeyboard) {
    PressKeys(Main(), {L"alt+m", L"shift+Tab"});
    EXPECT_TRUE(WaitForFocus(IDC_WRAPPED));
    PressKeys(Main(), {L"space"});
    EXPECT_TRUE(WaitForPressed(L"IDC_WRAPPED + 0 (press 1)"));
    PressKeys(Main(), {L"Return"});
    EXPECT_TRUE(WaitForPressed(L"IDC_WRAPPED + 0 (press 2)"));
    EXPECT_TRUE(WaitForFocus(IDC_WRAPPED));
    PressKeys(Main(), {L"shift+Tab", L"space"});
    EXPECT_TRUE(WaitForPressed(L"IDC_TAGS + 0 (press 3)"));
}

TEST_F(GalleryRichText, EveryColourIsSeen) {
    const COLORREF colours[] = {
        RGB(128, 0, 0), RGB(192, 0, 0),  RGB(64, 0, 0),      RGB(0, 128, 0),
        RGB(0, 192, 0), RGB(0, 64, 0),   RGB(0, 0, 128),     RGB(0, 0, 192),
        kLinkBlue,      RGB(64, 64, 64), RGB(128, 128, 128), RGB(192, 192, 192),
    };
    for (COLORREF cr : colours) {
        EXPECT_TRUE(WaitUntil([&] { return CountOf(IDC_TAGS, cr) > kOfAWord; })) << std::hex << cr;
    }
}

TEST_F(GalleryRichText, TextThatDoesNotFitEndsWithThreePoints) {
    auto points = [&](int nId) {
        RECT rc = RectOf(PageItem(nId));
        const auto pixels = PixelsOf({rc.right - 8, rc.bottom - 1, rc.right, rc.bottom});
        std::wstring strRow;
        for (COLORREF cr : pixels) strRow += cr == RGB(0, 0, 0) ? L'x' : L'.';
        return strRow;
    };
    EXPECT_TRUE(WaitUntil([&] { return points(IDC_NARROW) == L".x.x.x.."; }));
    EXPECT_TRUE(WaitUntil([&] { return CountOf(IDC_DRAWN, kLinkBlue) > 0; })); // the last one
    EXPECT_EQ(points(IDC_TAGS), L"........");
    EXPECT_EQ(points(IDC_WRAPPED), L"........");
    EXPECT_EQ(points(IDC_DRAWN), L"........");
}

TEST_F(GalleryRichText, MarkupIsDrawnAsItIsTyped) {
    EXPECT_TRUE(WaitUntil([&] { return CountOf(IDC_DRAWN, kLinkBlue) > kOfAWord; }));
    TypeMarkup(L"<center><ltred>In the middle</ltred></center>");
    EXPECT_TRUE(WaitUntil([&] { return CountOf(IDC_DRAWN, kLightRed) > kOfAWord; }));
    EXPECT_TRUE(WaitUntil([&] { return CountOf(IDC_DRAWN, kLinkBlue) == 0; }));
    TakePicture(L"typed-markup", {Main()});
    mouse::Click(PointIn(IDC_DRAWN, 10, kLine / 2)); // no link there: is not counted
    TypeMarkup(L"<a9>Press here</a9>");
    EXPECT_TRUE(WaitUntil([&] { return CountOf(IDC_DRAWN, kLinkBlue) > kOfAWord; }));
    EXPECT_TRUE(WaitUntil([&] { return CountOf(IDC_DRAWN, kLightRed) == 0; }));
    mouse::Click(PointIn(IDC_DRAWN, 10, kLine / 2));
    EXPECT_TRUE(WaitForPressed(L"IDC_DRAWN + 9 (press 1)"));
}
