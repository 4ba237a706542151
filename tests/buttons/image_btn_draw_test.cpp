// What an image button shows, beside a composition of its images' own pixels.
#include "buttons/display_picture.h"
#include "buttons/image_probe.h"
#include "resources/resource_ids.h"
#include "support/memory_picture.h"

#include <gtest/gtest.h>
#include <array>
#include <string>

namespace {
enum Frame { kNormal, kHover, kPressed, kDisabled, kFocus, kFrames };

/// What a button can be at a time.
struct State {
    bool bSelected, bDisabled, bFocused, bHover, bChecked, bStateBit;

    static constexpr int kAll = 64;
    explicit State(int n)
        : bSelected(n & 1), bDisabled(n & 2), bFocused(n & 4), bHover(n & 8), bChecked(n & 16),
          bStateBit(n & 32) {}
    UINT ItemState() const {
        return (bSelected ? ODS_SELECTED : 0u) | (bDisabled ? ODS_DISABLED : 0u) |
               (bFocused ? ODS_FOCUS : 0u);
    }
    std::string Name() const {
        return std::string(bSelected ? "selected " : "") + (bDisabled ? "disabled " : "") +
               (bFocused ? "focused " : "") + (bHover ? "hover " : "") +
               (bChecked ? "checked " : "") + (bStateBit ? "pushed" : "");
    }
    bool IsPressed() const { return bSelected || bChecked || bStateBit; }
};

/// The rules for a strip: what lies over what. bHas is which frames there are.
std::vector<int> LayersOf(const State& s, const std::array<bool, kFrames>& bHas, bool bNoFrame) {
    std::vector<int> layers;
    auto Add = [&](int nFrame) {
        if (bHas[nFrame]) layers.push_back(nFrame);
    };
    Add(kNormal);
    if (s.bHover && !s.bDisabled) Add(kHover);
    if (s.IsPressed()) {
        if (bHas[kPressed])
            Add(kPressed);
        else if (s.bDisabled)
            Add(kDisabled);
    } else if (s.bDisabled) {
        Add(kDisabled);
    }
    if (s.bFocused && !s.bDisabled && !bNoFrame) Add(kFocus);
    return layers;
}

/// The rules for icons: at most one.
std::vector<int> IconOf(const State& s, const std::array<bool, kFrames>& bHas) {
    int nChoice = -1;
    if (s.bFocused && !s.bDisabled)
        nChoice = kFocus;
    else if (s.IsPressed())
        nChoice = kPressed;
    else if (s.bDisabled)
        nChoice = kDisabled;
    else if (s.bHover)
        nChoice = kHover;
    if (nChoice >= 0 && bHas[nChoice]) return {nChoice};
    if (s.bHover && !s.bDisabled && bHas[kHover]) return {kHover};
    if (bHas[kNormal]) return {kNormal};
    return {};
}

void Draw(ProbeImageBtn& button, HDC hdc, const RECT& rc, const State& s) {
    button.bHover = s.bHover;
    button.bChecked = s.bChecked;
    button.nState = s.bStateBit ? 1 : 0;
    DRAWITEMSTRUCT item{};
    item.CtlType = ODT_BUTTON;
    item.itemAction = ODA_DRAWENTIRE;
    item.itemState = s.ItemState();
    item.hwndItem = button;
    item.hDC = hdc;
    item.rcItem = rc;
    button.OnDrawItem(&item);
}

constexpr COLORREF kPaper = RGB(0xE1, 0xE2, 0xE3);
constexpr int kCx = 8, kCy = 4; // 32 pixels: one for each set of five frames

Pixel ColorOfFrame(int nFrame) {
    constexpr Pixel kColors[kFrames] = {0x102030, 0x20C040, 0xD03050, 0x708090, 0x2040F0};
    return kColors[nFrame];
}
COLORREF ToColorRef(Pixel pixel) {
    return RGB(pixel >> 16 & 0xFF, pixel >> 8 & 0xFF, pixel & 0xFF);
}

/// A strip in which pixel p of frame f is opaque if bit f of p is set, so that each order of layers
/// is seen; and five icons, each of one colour.
HANDLE MakeImage(const MadeResources::Asked& asked) {
    if (asked.uType == IMAGE_BITMAP) {
        std::vector<Pixel> pixels(kFrames * kCx * kCy, 0xFF00FF);
        for (int f = 0; f < kFrames; ++f)
            for (int p = 0; p < kCx * kCy; ++p)
                if (p >> f & 1)
                    pixels[p / kCx * kFrames * kCx + f * kCx + p % kCx] = ColorOfFrame(f);
        return MakeStrip(kFrames * kCx, kCy, pixels);
    }
    std::vector<Pixel> pixels(kCx * kCy, 0xFF000000 | ColorOfFrame(asked.nId - 1));
    return ::CopyIcon(MadeIcon(kCx, kCy, pixels).Get());
}

struct ImageBtnDraw : testing::Test {
    void SetUp() override { ASSERT_EQ(1, button.Subclass(window)); }
    void TearDown() override { button.Unsubclass(); }
    void LoadMade(bool bIcons, unsigned long dwFlags) {
        MadeResources made;
        made.fnMake = &MakeImage;
        if (bIcons)
            button.LoadIconW(kCx, kCy, nullptr, 1, 2, 3, 4, 5, dwFlags);
        else
            button.LoadBmp(kCx, kCy, nullptr, 1, 0, dwFlags);
        ASSERT_EQ(kFrames, button.CountImages());
    }
    /// The button without those images of which the bit is clear in nMask.
    std::array<bool, kFrames> Keep(int nMask) {
        std::array<bool, kFrames> bHas;
        int* piImages[] = {&button.iNormal, &button.iHover, &button.iPressed, &button.iDisabled,
                           &button.iFocus};
        for (int f = 0; f < kFrames; ++f) {
            bHas[f] = nMask >> f & 1;
            *piImages[f] = bHas[f] ? f : -1;
        }
        return bHas;
    }
    /// Draws at rc and compares with the layers at (x, y).
    void ExpectLayers(const RECT& rc, int x, int y, const State& s, const std::vector<int>& layers,
                      const std::string& strWhat) {
        constexpr int kWidth = 24, kHeight = 18;
        MemoryPicture picture(kWidth, kHeight, kPaper);
        Draw(button, picture, rc, s);
        int nWrong = 0;
        for (int py = 0; py < kHeight; ++py) {
            for (int px = 0; px < kWidth; ++px) {
                COLORREF crExpected = kPaper;
                int dx = px - x, dy = py - y;
                if (dx >= 0 && dy >= 0 && dx < kCx && dy < kCy) {
                    for (int f : layers)
                        if (button.bIconMode || (dy * kCx + dx) >> f & 1)
                            crExpected = ToColorRef(ColorOfFrame(f));
                }
                nWrong += picture.Get(px, py) != crExpected;
            }
        }
        EXPECT_EQ(0, nWrong) << "pixels of " << strWhat << s.Name();
    }

    ShownButton window;
    ProbeImageBtn button;
};

constexpr RECT kItem{3, 2, 17, 13}; // 14 by 11: 3 pixels beside the image, and above it

TEST_F(ImageBtnDraw, AStripLaysFramesOverEachOtherInEveryStateAndWithAnyMissing) {
    for (unsigned long dwFlags : {3ul, 11ul}) {
        LoadMade(false, dwFlags);
        for (int nMask = 0; nMask < 32; ++nMask) {
            auto bHas = Keep(nMask);
            for (int n = 0; n < State::kAll; ++n) {
                State s(n);
                ExpectLayers(kItem, 6, 5, s, LayersOf(s, bHas, dwFlags == 11),
                             "frames " + std::to_string(nMask) + " flags " +
                                 std::to_string(dwFlags) + ": ");
            }
        }
    }
}

TEST_F(ImageBtnDraw, IconsShowOneInEveryStateAndWithAnyMissing) {
    LoadMade(true, 11); // 8 means nothing here
    for (int nMask = 0; nMask < 32; ++nMask) {
        auto bHas = Keep(nMask);
        for (int n = 0; n < State::kAll; ++n) {
            State s(n);
            ExpectLayers(kItem, 6, 5, s, IconOf(s, bHas), "icons " + std::to_string(nMask) + ": ");
        }
    }
}

// The rules above written out, so that they are not only those of this file's two functions.
TEST_F(ImageBtnDraw, TheCommonStatesOfAStrip) {
    LoadMade(false, 3);
    auto Expect = [&](int nState, std::vector<int> layers) {
        ExpectLayers(kItem, 6, 5, State(nState), layers, "");
    };
    constexpr int kSelected = 1, kDis = 2, kFoc = 4, kHov = 8, kChk = 16;
    Expect(0, {kNormal});
    Expect(kHov, {kNormal, kHover});
    Expect(kSelected, {kNormal, kPressed});
    Expect(kChk, {kNormal, kPressed});
    Expect(kChk | kHov, {kNormal, kHover, kPressed});
    Expect(kDis, {kNormal, kDisabled});
    Expect(kDis | kHov, {kNormal, kDisabled});
    Expect(kDis | kChk, {kNormal, kPressed});
    Expect(kFoc, {kNormal, kFocus});
    Expect(kFoc | kDis, {kNormal, kDisabled});
    Expect(kFoc | kHov | kSelected, {kNormal, kHover, kPressed, kFocus});
    button.dwFlags = 11;
    Expect(kFoc, {kNormal});
    button.dwFlags = 3;
    button.iPressed = -1;
    Expect(kChk, {kNormal});
    Expect(kChk | kDis, {kNormal, kDisabled});
}

TEST_F(ImageBtnDraw, TheCommonStatesOfIcons) {
    LoadMade(true, 3);
    auto Expect = [&](int nState, int nIcon) {
        ExpectLayers(kItem, 6, 5, State(nState), {nIcon}, "");
    };
    constexpr int kSelected = 1, kDis = 2, kFoc = 4, kHov = 8, kChk = 16;
    Expect(0, kNormal);
    Expect(kHov, kHover);
    Expect(kSelected | kHov, kPressed);
    Expect(kChk, kPressed);
    Expect(kDis, kDisabled);
    Expect(kDis | kHov, kDisabled);
    Expect(kDis | kFoc, kDisabled);
    Expect(kFoc | kSelected | kHov | kChk, kFocus);
    button.iHover = -1;
    Expect(kHov, kNormal);
    button.iDisabled = -1;
    Expect(kDis, kNormal);
    button.iHover = 1;
    Expect(kDis | kHov, kNormal);
    button.iFocus = -1;
    Expect(kFoc | kHov, kHover);
    button.iPressed = -1;
    Expect(kSelected, kNormal);
}

struct PlaceCase {
    const char* pszName;
    unsigned long dwFlags;
    RECT rc;
    int x, y;
};
class ImageBtnPlace : public ImageBtnDraw, public testing::WithParamInterface<PlaceCase> {};

TEST_P(ImageBtnPlace, StandsThereInBothModes) {
    const PlaceCase& row = GetParam();
    for (bool bIcons : {false, true}) {
        LoadMade(bIcons, row.dwFlags);
        ExpectLayers(row.rc, row.x, row.y, State(0), {kNormal}, bIcons ? "icons " : "strip ");
    }
}

INSTANTIATE_TEST_SUITE_P(
    Flags, ImageBtnPlace,
    testing::Values(PlaceCase{"TopLeft", 0, kItem, 3, 2}, PlaceCase{"Vertically", 1, kItem, 3, 5},
                    PlaceCase{"Horizontally", 2, kItem, 6, 2}, PlaceCase{"Both", 3, kItem, 6, 5},
                    PlaceCase{"OtherBitsMeanNothing", 0xFFFFFFF4, kItem, 3, 2},
                    PlaceCase{"OddRestIsCut", 3, {0, 0, 13, 9}, 2, 2},
                    PlaceCase{"TooSmallIsCutTowardZero", 3, {5, 5, 8, 8}, 3, 5},
                    PlaceCase{"ExactFit", 3, {4, 5, 12, 9}, 4, 5}),
    [](const auto& row) { return std::string(row.param.pszName); });

TEST_F(ImageBtnDraw, AButtonWithoutImagesShowsNothing) {
    for (int n = 0; n < State::kAll; ++n) ExpectLayers(kItem, 0, 0, State(n), {}, "no images: ");
}

TEST_F(ImageBtnDraw, AMissingStripShowsNothing) {
    button.LoadBmp(kCx, kCy, nullptr, 31999, 0, 3);
    for (int n = 0; n < State::kAll; ++n) ExpectLayers(kItem, 0, 0, State(n), {}, "no strip: ");
}

TEST_F(ImageBtnDraw, WithoutAContextItTakesTheDisplays) {
    LoadMade(true, 0);
    void* pBits = nullptr;
    DisplayPicture::hbm = MakeDibSection(20, 20, &pBits);
    {
        ReplaceImport create(__imp_CreateDCW, &DisplayPicture::Create);
        Draw(button, nullptr, {3, 2, 17, 13}, State(0));
    }
    EXPECT_TRUE(DisplayPicture::bDisplay);
    const auto* pPixels = static_cast<const Pixel*>(pBits);
    EXPECT_EQ(ColorOfFrame(kNormal), pPixels[2 * 20 + 3] & 0xFFFFFF);
    EXPECT_EQ(0u, pPixels[1 * 20 + 3] & 0xFFFFFF);
    EXPECT_TRUE(::DeleteObject(DisplayPicture::hbm)) << "the context is gone";
}

TEST_F(ImageBtnDraw, LeavesTheContextAsItWas) {
    LoadMade(false, 3);
    MemoryPicture picture(24, 18, kPaper);
    ::SetTextColor(picture, RGB(1, 2, 3));
    ::SetBkColor(picture, RGB(4, 5, 6));
    ::SetBkMode(picture, TRANSPARENT);
    for (int n = 0; n < State::kAll; ++n) Draw(button, picture, kItem, State(n));
    EXPECT_EQ(RGB(1, 2, 3), ::GetTextColor(picture));
    EXPECT_EQ(RGB(4, 5, 6), ::GetBkColor(picture));
    EXPECT_EQ(TRANSPARENT, ::GetBkMode(picture));
    EXPECT_EQ(1, ::SaveDC(picture)) << "no state is left saved";
}

TEST(ImageBtnAlone, DrawsWithoutAWindow) {
    ProbeImageBtn button(48, 48, nullptr, -IDB_BUTTON_STRIP_1, 0, 3);
    MemoryPicture picture(48, 48, kPaper);
    State s(0);
    Draw(button, picture, {0, 0, 48, 48}, s);
    int nPainted = 0;
    for (int y = 0; y < 48; ++y)
        for (int x = 0; x < 48; ++x) nPainted += picture.Get(x, y) != kPaper;
    EXPECT_LT(48 * 48 / 4, nPainted);
}

// The library's own strips

class ImageBtnOwnStrip : public ImageBtnDraw, public testing::WithParamInterface<int> {};

TEST_P(ImageBtnOwnStrip, IsComposedOfItsFramesInEveryState) {
    constexpr int kSide = 48;
    auto hbm =
        static_cast<HBITMAP>(::LoadImageW(::GetModuleHandleW(nullptr), MAKEINTRESOURCEW(GetParam()),
                                          IMAGE_BITMAP, 0, 0, LR_CREATEDIBSECTION));
    ASSERT_NE(nullptr, hbm);
    MemoryPicture strip(kFrames * kSide, kSide);
    HDC hdc = ::CreateCompatibleDC(nullptr);
    HGDIOBJ hbmBefore = ::SelectObject(hdc, hbm);
    ::BitBlt(strip, 0, 0, kFrames * kSide, kSide, hdc, 0, 0, SRCCOPY);
    ::SelectObject(hdc, hbmBefore);
    ::DeleteDC(hdc);
    ::DeleteObject(hbm);

    button.LoadBmp(kSide, kSide, nullptr, -GetParam(), 0, 3);
    for (int n = 0; n < State::kAll; ++n) {
        State s(n);
        auto layers = LayersOf(s, {true, true, true, true, true}, false);
        MemoryPicture picture(kSide + 12, kSide + 6, kPaper);
        Draw(button, picture, {0, 0, kSide + 12, kSide + 6}, s);
        int nWrong = 0;
        for (int y = 0; y < kSide + 6; ++y) {
            for (int x = 0; x < kSide + 12; ++x) {
                COLORREF crExpected = kPaper;
                int dx = x - 6, dy = y - 3;
                if (dx >= 0 && dy >= 0 && dx < kSide && dy < kSide) {
                    for (int f : layers) {
                        COLORREF cr = strip.Get(f * kSide + dx, dy);
                        if (cr != RGB(255, 0, 255)) crExpected = cr;
                    }
                }
                nWrong += picture.Get(x, y) != crExpected;
            }
        }
        EXPECT_EQ(0, nWrong) << "pixels of " << s.Name();
    }
}

INSTANTIATE_TEST_SUITE_P(Strips, ImageBtnOwnStrip,
                         testing::Values(IDB_BUTTON_STRIP_1, IDB_BUTTON_STRIP_2,
                                         IDB_BUTTON_STRIP_3));

// An icon with smooth edges, beside what the platform draws of it by itself.
TEST_F(ImageBtnDraw, AnIconOfTheLibraryIsBlendedOverWhatIsThere) {
    constexpr int kSide = 16;
    button.LoadIconW(kSide, kSide, nullptr, -IDI_DLG_CLOSE, IDI_DLG_CLOSE_HOVER, 0, 0, 0, 0);
    for (bool bHover : {false, true}) {
        MemoryPicture picture(kSide, kSide, kPaper), expected(kSide, kSide, kPaper);
        Draw(button, picture, {0, 0, kSide, kSide}, State(bHover ? 8 : 0));
        auto hicon = static_cast<HICON>(
            ::LoadImageW(::GetModuleHandleW(nullptr),
                         MAKEINTRESOURCEW(bHover ? IDI_DLG_CLOSE_HOVER : IDI_DLG_CLOSE), IMAGE_ICON,
                         kSide, kSide, 0));
        ::DrawIconEx(expected, 0, 0, hicon, kSide, kSide, 0, nullptr, DI_NORMAL);
        ::DestroyIcon(hicon);
        int nFar = 0, nPainted = 0;
        auto Differs = [](int n, int m) { return n - m > 2 || m - n > 2; };
        for (int y = 0; y < kSide; ++y) {
            for (int x = 0; x < kSide; ++x) {
                COLORREF cr = picture.Get(x, y), crOther = expected.Get(x, y);
                nPainted += cr != kPaper;
                nFar += Differs(GetRValue(cr), GetRValue(crOther)) ||
                        Differs(GetGValue(cr), GetGValue(crOther)) ||
                        Differs(GetBValue(cr), GetBValue(crOther));
            }
        }
        EXPECT_LT(kSide, nPainted);
        EXPECT_EQ(0, nFar) << bHover;
    }
}
} // namespace
