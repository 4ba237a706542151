// The page "Buttons".

#include "e2e/support/child_process.h"
#include "gallery/gallery_test_support.h"

#include <algorithm>

namespace {
constexpr int kStripGo = 21530;                 // a bitmap of the library
constexpr int kFrame = 48;                      // its frames' width and height
constexpr COLORREF kMagenta = RGB(255, 0, 255); // shows what is below
constexpr COLORREF kLinkBlue = RGB(0, 0, 187), kLinkRed = RGB(187, 0, 0);
enum Frame { kNormal, kHover, kPressed, kDisabled };

using Pixels = std::vector<COLORREF>;

/// Frames of the strip as they lie one over the other on the background.
Pixels FramesOf(int nStrip, const std::vector<Frame>& frames) {
    HMODULE hmod = ::LoadLibraryExW((FolderBeside(L"gallery") + L"\\TSDLL64.dll").c_str(), nullptr,
                                    LOAD_LIBRARY_AS_DATAFILE);
    HANDLE hbmp =
        ::LoadImageW(hmod, MAKEINTRESOURCEW(nStrip), IMAGE_BITMAP, 0, 0, LR_CREATEDIBSECTION);
    HDC hdc = ::CreateCompatibleDC(nullptr);
    HGDIOBJ hBefore = ::SelectObject(hdc, hbmp);
    Pixels pixels(kFrame * kFrame, ::GetSysColor(COLOR_BTNFACE));
    for (Frame frame : frames) {
        for (int n = 0; n < kFrame * kFrame; ++n) {
            COLORREF cr = ::GetPixel(hdc, frame * kFrame + n % kFrame, n / kFrame);
            if (cr != kMagenta) pixels[n] = cr;
        }
    }
    ::SelectObject(hdc, hBefore);
    ::DeleteDC(hdc);
    ::DeleteObject(hbmp);
    ::FreeLibrary(hmod);
    return pixels;
}

bool Holds(const Pixels& pixels, COLORREF cr) {
    return std::find(pixels.begin(), pixels.end(), cr) != pixels.end();
}

class GalleryButtons : public Gallery {
  protected:
    GalleryButtons() {
        GoToPage(kButtonsPage);
        MoveAway();
        WaitUntil([&] { // the last control is painted
            return Holds(LookOf(IDC_BUTTON_PRESSED), ::GetSysColor(COLOR_BTNTEXT));
        });
    }
    /// The pointer to where no button is.
    void MoveAway() {
        RECT rc = RectOf(PageItem(IDC_BUTTON_PRESSED));
        mouse::MoveTo({rc.right - 10, rc.top});
    }
    /// The pointer and the keyboard.
    void GoAway(int nButton) {
        PressKeys(Main(), {L"alt+p"});
        EXPECT_TRUE(WaitUntil([&] { return FocusId() != nButton; }));
        MoveAway();
    }
    Pixels LookOf(int nId) { return PixelsOf(RectOf(PageItem(nId))); }
    /// The picture in the middle of a button.
    Pixels PictureOf(int nId) {
        RECT rc = RectOf(PageItem(nId));
        rc.left += (WidthOf(rc) - kFrame) / 2;
        rc.top += (HeightOf(rc) - kFrame) / 2;
        return PixelsOf({rc.left, rc.top, rc.left + kFrame, rc.top + kFrame});
    }
    bool WaitForPicture(int nId, const std::vector<Frame>& frames) {
        const Pixels expected = FramesOf(kStripGo, frames);
        return WaitUntil([&] { return PictureOf(nId) == expected; });
    }
    bool WaitForPressed(const std::wstring& strText) {
        return WaitForText(PageItem(IDC_BUTTON_PRESSED), L"Button pressed last: " + strText);
    }
};

} // namespace

TEST_F(GalleryButtons, StripShowsTheLayersOfEachStateAndCheckThePressedOne) {
    EXPECT_TRUE(WaitForPicture(IDC_GO, {kNormal}));
    EXPECT_TRUE(WaitForPicture(IDC_GO + 1, {kNormal, kPressed}));
    EXPECT_TRUE(WaitForPicture(IDC_GO + 2, {kNormal, kDisabled}));
    ClickOn(PageItem(IDC_GO + 1));
    EXPECT_TRUE(WaitForPressed(L"Go, checked"));
    GoAway(IDC_GO + 1);
    EXPECT_TRUE(WaitForPicture(IDC_GO + 1, {kNormal}));
    PressKeys(Main(), {L"Tab", L"Tab"});
    EXPECT_TRUE(WaitForFocus(IDC_GO + 1));
    PressKeys(Main(), {L"space"});
    GoAway(IDC_GO + 1);
    EXPECT_TRUE(WaitForPicture(IDC_GO + 1, {kNormal, kPressed}));
    EXPECT_TRUE(WaitForPicture(IDC_GO, {kNormal})); // no focus frame stays behind
}

TEST_F(GalleryButtons, PictureUnderTheMouseShowsTheHandAndItsHoverLayer) {
    HCURSOR hcurArrow = nullptr;
    EXPECT_TRUE(WaitUntil([&] { return (hcurArrow = CursorNow()) != nullptr; }));
    mouse::MoveTo(MiddleOf(PageItem(IDC_GO)));
    EXPECT_TRUE(WaitUntil([&] { return CursorNow() != hcurArrow; }));
    EXPECT_TRUE(WaitForPicture(IDC_GO, {kNormal, kHover}));
    TakePicture(L"picture-hover", {Main()});
    MoveAway();
    EXPECT_TRUE(WaitUntil([&] { return CursorNow() == hcurArrow; }));
    EXPECT_TRUE(WaitForPicture(IDC_GO, {kNormal}));
}

TEST_F(GalleryButtons, DisabledOneDoesNothing) {
    for (int nFirst : {IDC_GO, IDC_APP, IDC_FACE, IDC_LINK}) {
        const Pixels before = LookOf(nFirst + 2);
        ClickOn(PageItem(nFirst + 2));
        EXPECT_EQ(LookOf(nFirst + 2), before) << nFirst;
    }
    EXPECT_TRUE(WaitForPressed(L"none yet"));
    ClickOn(PageItem(IDC_WEB)); // was handled behind them
    EXPECT_TRUE(WaitForPressed(L"Web, normal"));
}

TEST_F(GalleryButtons, PressedOneIsNamed) {
    ClickOn(PageItem(IDC_ICON_CLOSE));
    EXPECT_TRUE(WaitForPressed(L"Close, normal"));
    ClickOn(PageItem(IDC_FACE + 1));
    EXPECT_TRUE(WaitForPressed(L"Face, checked"));
    ClickOn(PageItem(IDC_LINK));
    EXPECT_TRUE(WaitForPressed(L"Link, normal"));
    PressKeys(Main(), {L"alt+f"}); // the button's own key
    EXPECT_TRUE(WaitForPressed(L"Face, normal"));
    PressKeys(Main(), {L"alt+l"});
    EXPECT_TRUE(WaitForPressed(L"Link, normal"));
    PressKeys(Main(), {L"Tab", L"space"});
    EXPECT_TRUE(WaitForPressed(L"Link, checked"));
    EXPECT_TRUE(WaitForFocus(IDC_LINK + 1));
}

TEST_F(GalleryButtons, LinkUnderTheMouseShowsTheHandItsColourAndItsOtherIcon) {
    const Pixels before = LookOf(IDC_LINK), faceBefore = LookOf(IDC_FACE);
    EXPECT_TRUE(Holds(before, kLinkBlue));
    const HCURSOR hcurArrow = CursorNow();
    mouse::MoveTo(MiddleOf(PageItem(IDC_FACE))); // a face has no look for the mouse
    EXPECT_TRUE(HoldsFor([&] { return CursorNow() == hcurArrow; }, 100));
    EXPECT_EQ(LookOf(IDC_FACE), faceBefore);

    mouse::MoveTo(MiddleOf(PageItem(IDC_LINK)));
    EXPECT_TRUE(WaitUntil([&] { return CursorNow() != hcurArrow; }));
    const int nWidth = WidthOf(RectOf(PageItem(IDC_LINK)));
    const size_t nInIcon = static_cast<size_t>(nWidth) * 11 + 6; // on its left half
    EXPECT_TRUE(WaitUntil([&] {
        const Pixels hovered = LookOf(IDC_LINK);
        return Holds(hovered, kLinkRed) && !Holds(hovered, kLinkBlue) &&
               hovered[nInIcon] != before[nInIcon];
    }));
    TakePicture(L"link-hover", {Main()});
    MoveAway();
    EXPECT_TRUE(WaitUntil([&] { return LookOf(IDC_LINK) == before; }));
    EXPECT_TRUE(WaitUntil([&] { return CursorNow() == hcurArrow; }));
}

TEST_F(GalleryButtons, CheckedOneOfIconsShowsThePressedIconAndFacesStandDown) {
    for (int nFirst : {IDC_ICON_CLOSE, IDC_FACE}) {
        const Pixels checked = LookOf(nFirst + 1);
        ClickOn(PageItem(nFirst + 1));
        GoAway(nFirst + 1);
        Pixels unchecked;
        EXPECT_TRUE(WaitUntil([&] { return (unchecked = LookOf(nFirst + 1)) != checked; }));
        if (nFirst == IDC_ICON_CLOSE) {
            EXPECT_EQ(unchecked, LookOf(nFirst));
        }
        POINT pt = MiddleOf(PageItem(nFirst + 1));
        mouse::Click({pt.x - 10, pt.y}); // not twice at one place, which is a double click
        GoAway(nFirst + 1);
        EXPECT_TRUE(WaitUntil([&] { return LookOf(nFirst + 1) == checked; }));
    }
}
