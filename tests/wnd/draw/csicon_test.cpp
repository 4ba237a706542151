#include "app/identity/product_info.h"
#include "support/gui_objects.h"
#include "support/made_icon.h"
#include "support/memory_picture.h"
#include "support/test_resource_ids.h"
#include "support/this_windows.h"
#include "support/told_version.h"
#include "wnd/draw/csicon.h"

#include <gtest/gtest.h>
#include <objbase.h>
#include <cstring>
#include <thread>

namespace {
constexpr COLORREF kRed = RGB(255, 0, 0), kBlue = RGB(0, 0, 255), kWhite = RGB(255, 255, 255);
constexpr int kForeignIcon = 1; // shell32.dll has such an icon, the test program has none

HMODULE ForeignModule() { return ::LoadLibraryW(L"shell32.dll"); }

/// The pixels of an icon: its colour in the middle, and how large it is.
struct Seen {
    COLORREF cr;
    int cx, cy;
};
Seen Look(HICON hicon) {
    MemoryPicture picture(128, 128);
    ::DrawIconEx(picture, 0, 0, hicon, 0, 0, 0, nullptr, DI_NORMAL);
    Seen seen{picture.Get(2, 2), 0, 0};
    while (seen.cx < 128 && picture.Get(seen.cx, 2) != kWhite) ++seen.cx;
    while (seen.cy < 128 && picture.Get(2, seen.cy) != kWhite) ++seen.cy;
    return seen;
}

TEST(CSIcon, StartsWithoutAnIcon) {
    CSIcon icon;
    EXPECT_FALSE(icon.IsReady());
    EXPECT_EQ(nullptr, static_cast<HICON>(icon));
    int cx = 7, cy = 7;
    EXPECT_EQ(0, icon.GetSize(cx, cy));
    EXPECT_EQ(0, cx);
    EXPECT_EQ(0, cy);
}

TEST(CSIcon, HoldsTheHandleBeforeItsSize) {
    struct Layout {
        HICON hIcon;
        int width, height;
    } layout;
    static_assert(sizeof(CSIcon) == sizeof(Layout));
    CSIcon icon;
    icon.Load(IDI_TEST, 0, 0);
    std::memcpy(&layout, static_cast<const void*>(&icon), sizeof(layout));
    EXPECT_EQ(static_cast<HICON>(icon), layout.hIcon);
    EXPECT_EQ(32, layout.width);
    EXPECT_EQ(32, layout.height);
}

struct LoadCase {
    const char* pszName;
    int isSmall, systemSize;
    int cx, cy;
    COLORREF cr;
};
class CSIconLoad : public testing::TestWithParam<LoadCase> {};
TEST_P(CSIconLoad, TakesTheSizeAsked) {
    const LoadCase& row = GetParam();
    CSIcon icon;
    icon.Load(IDI_TEST, row.isSmall, row.systemSize);
    ASSERT_TRUE(icon.IsReady());
    int cx = 0, cy = 0;
    EXPECT_EQ(1, icon.GetSize(cx, cy));
    EXPECT_EQ(row.cx, cx);
    EXPECT_EQ(row.cy, cy);
    Seen seen = Look(icon);
    EXPECT_EQ(row.cr, seen.cr);
    EXPECT_EQ(row.cx, seen.cx);
    EXPECT_EQ(row.cy, seen.cy);
}
INSTANTIATE_TEST_SUITE_P(
    Cases, CSIconLoad,
    testing::Values(LoadCase{"Small", 1, 0, 16, 16, kRed}, LoadCase{"Large", 0, 0, 32, 32, kBlue},
                    LoadCase{"SmallOfTheSystem", 1, 1, ::GetSystemMetrics(SM_CXSMICON),
                             ::GetSystemMetrics(SM_CYSMICON), kRed},
                    LoadCase{"LargeOfTheSystem", 0, 1, ::GetSystemMetrics(SM_CXICON),
                             ::GetSystemMetrics(SM_CYICON), kBlue}),
    [](const auto& row) { return std::string(row.param.pszName); });

TEST(CSIcon, PositiveIdIsTheApplications) {
    CSIcon icon;
    icon.Load(kForeignIcon, 1, 0);
    EXPECT_FALSE(icon.IsReady()) << "the test program is the library, and has no such icon";
    AppInstance app(ForeignModule(), nullptr);
    icon.Load(kForeignIcon, 1, 0);
    EXPECT_TRUE(icon.IsReady());
    icon.Load(IDI_TEST, 1, 0);
    EXPECT_NE(kRed, icon.IsReady() ? Look(icon).cr : kWhite);
}

TEST(CSIcon, NegativeIdIsTheLibrarysWhateverTheApplication) {
    AppInstance app(ForeignModule(), nullptr);
    CSIcon icon;
    icon.Load(-IDI_TEST, 1, 0);
    ASSERT_TRUE(icon.IsReady());
    Seen seen = Look(icon);
    EXPECT_EQ(kRed, seen.cr);
    EXPECT_EQ(16, seen.cx);
}

TEST(CSIcon, TakesTheLow16BitsOfTheId) {
    CSIcon icon;
    icon.Load(0x10000 + IDI_TEST, 1, 0);
    EXPECT_TRUE(icon.IsReady());
    icon.Load(-(0x10000 + IDI_TEST), 1, 0);
    EXPECT_TRUE(icon.IsReady());
}

TEST(CSIcon, AnotherLoadDestroysTheIconHeld) {
    CSIcon icon;
    icon.Load(IDI_TEST, 1, 0);
    HICON hiconOld = icon;
    icon.Load(-IDI_TEST, 0, 0);
    ICONINFO info{};
    EXPECT_FALSE(::GetIconInfo(hiconOld, &info));
    EXPECT_EQ(kBlue, Look(icon).cr);
}

TEST(CSIcon, FailedLoadLeavesNoIconButTheSize) {
    CSIcon icon;
    icon.Load(IDI_TEST, 1, 0);
    icon.Load(4711, 0, 0);
    EXPECT_FALSE(icon.IsReady());
    int cx = 0, cy = 0;
    EXPECT_EQ(0, icon.GetSize(cx, cy));
    EXPECT_EQ(32, cx);
    EXPECT_EQ(32, cy);
    icon.Load(0, 1, 0);
    EXPECT_FALSE(icon.IsReady());
}

TEST(CSIcon, DestroysTheIconAtTheEnd) {
    HICON hicon;
    {
        CSIcon icon;
        icon.Load(IDI_TEST, 1, 0);
        hicon = icon;
    }
    ICONINFO info{};
    EXPECT_FALSE(::GetIconInfo(hicon, &info));
}

TEST(CSIcon, MenuBitmapHasTheIconsSize) {
    ToldVista told;
    CSIcon icon;
    icon.Load(IDI_TEST, 1, 0);
    HBITMAP hbm = CSIcon::IconToMenuBitmap(icon);
    BITMAP bitmap{};
    ASSERT_NE(0, ::GetObjectW(hbm, sizeof(bitmap), &bitmap));
    EXPECT_EQ(16, bitmap.bmWidth);
    EXPECT_EQ(16, bitmap.bmHeight);
    EXPECT_EQ(32, bitmap.bmBitsPixel);
    ::DeleteObject(hbm);
    EXPECT_EQ(nullptr, CSIcon::IconToMenuBitmap(nullptr));
}

TEST(CSIcon, SectionAndItsHeaderAreBottomUpWith32Bits) {
    BITMAPINFO info;
    CSIcon::InitBitmapInfo(&info, sizeof(info), 3, 5, 32);
    EXPECT_EQ(5, info.bmiHeader.biHeight);
    EXPECT_EQ(32, info.bmiHeader.biBitCount);
    SIZE size{3, 5};
    void* pBits = nullptr;
    HBITMAP hbm = nullptr;
    ASSERT_EQ(0, CSIcon::Create32BitHBITMAP(nullptr, &size, &pBits, &hbm));
    static_cast<DWORD*>(pBits)[0] = 0x00FF0000;
    MemoryPicture picture(1, 1);
    HGDIOBJ hbmBefore = ::SelectObject(picture, hbm);
    EXPECT_EQ(kRed, ::GetPixel(picture, 0, 4));
    ::SelectObject(picture, hbmBefore);
    ::DeleteObject(hbm);
}

struct OwnedTestBitmap {
    explicit OwnedTestBitmap(HBITMAP hbm) : h(hbm) {}
    ~OwnedTestBitmap() { ::DeleteObject(h); }
    OwnedTestBitmap(const OwnedTestBitmap&) = delete;
    OwnedTestBitmap& operator=(const OwnedTestBitmap&) = delete;
    HBITMAP h;
};

/// 0 if they differ by at most one step in every channel.
void ExpectPixel(Pixel expected, Pixel seen) {
    for (int nShift = 0; nShift < 32; nShift += 8) {
        EXPECT_NEAR(expected >> nShift & 0xFF, seen >> nShift & 0xFF, 1)
            << std::hex << expected << " " << seen;
    }
}

const std::vector<Pixel> kPixels = {0xFFFF0000, 0xFF00FF00, 0x80FF8040, 0x00FFFFFF, // top row
                                    0x40204060, 0xFF123456, 0x01FF00FF, 0xFF000000};

/// The picture is the same wherever there is one.
class IconToMenuBitmap : public testing::Test {
  protected:
    ToldVista told;
};
} // namespace

TEST(IconToMenuBitmapOnThisWindows, IsThereFromVistaOn) {
    MadeIcon icon(4, 2, kPixels);
    OwnedTestBitmap bitmap(CSIcon::IconToMenuBitmap(icon.Get()));
    EXPECT_EQ(IsThisWindowsAtLeast(6, 0), bitmap.h != nullptr);
}

TEST_F(IconToMenuBitmap, PremultipliesTheColoursAndKeepsTheAlpha) {
    MadeIcon icon(4, 2, kPixels);
    OwnedTestBitmap bitmap(CSIcon::IconToMenuBitmap(icon.Get()));
    auto pixels = PixelsOf(bitmap.h);
    ASSERT_EQ(kPixels.size(), pixels.size());
    for (size_t n = 0; n < pixels.size(); ++n) {
        unsigned dwAlpha = kPixels[n] >> 24;
        Pixel expected = dwAlpha << 24;
        for (int nShift = 0; nShift < 24; nShift += 8)
            expected |= ((kPixels[n] >> nShift & 0xFF) * dwAlpha + 127) / 255 << nShift;
        ExpectPixel(expected, pixels[n]);
    }
}

TEST_F(IconToMenuBitmap, FirstRowInMemoryIsTheTopmost) {
    MadeIcon icon(1, 3, {0xFF0000FF, 0xFF00FF00, 0xFFFF0000});
    OwnedTestBitmap bitmap(CSIcon::IconToMenuBitmap(icon.Get()));
    EXPECT_EQ((std::vector<Pixel>{0xFF0000FF, 0xFF00FF00, 0xFFFF0000}), PixelsOf(bitmap.h));
    // And it is drawn that way round.
    HDC hdc = ::CreateCompatibleDC(nullptr);
    HGDIOBJ hOld = ::SelectObject(hdc, bitmap.h);
    EXPECT_EQ(RGB(0, 0, 0xFF), ::GetPixel(hdc, 0, 0));
    EXPECT_EQ(RGB(0xFF, 0, 0), ::GetPixel(hdc, 0, 2));
    ::SelectObject(hdc, hOld);
    ::DeleteDC(hdc);
}

TEST_F(IconToMenuBitmap, HasTheIconsSize) {
    const SIZE kSizes[] = {{1, 1}, {16, 16}, {17, 5}, {48, 48}, {256, 256}};
    for (SIZE size : kSizes) {
        MadeIcon icon(size.cx, size.cy,
                      std::vector<Pixel>(static_cast<size_t>(size.cx * size.cy), 0xFF336699));
        OwnedTestBitmap bitmap(CSIcon::IconToMenuBitmap(icon.Get()));
        BITMAP bm{};
        ASSERT_NE(0, ::GetObjectW(bitmap.h, sizeof(bm), &bm)) << size.cx;
        EXPECT_EQ(size.cx, bm.bmWidth);
        EXPECT_EQ(size.cy, bm.bmHeight);
        EXPECT_EQ(32, bm.bmBitsPixel);
        EXPECT_EQ(size.cx * 4, bm.bmWidthBytes);
        EXPECT_EQ(0xFF336699, PixelsOf(bitmap.h).back());
    }
}

TEST_F(IconToMenuBitmap, NoIconGivesNull) {
    EXPECT_EQ(nullptr, CSIcon::IconToMenuBitmap(nullptr));
    HICON hiconGone = nullptr;
    {
        MadeIcon icon(4, 2, kPixels);
        hiconGone = icon.Get();
    }
    EXPECT_EQ(nullptr, CSIcon::IconToMenuBitmap(hiconGone));
    EXPECT_EQ(nullptr, CSIcon::IconToMenuBitmap(reinterpret_cast<HICON>(0x7777)));
}

TEST_F(IconToMenuBitmap, WorksOnThreadsWithAndWithoutComAndLeavesThemSo) {
    MadeIcon icon(4, 2, kPixels);
    HRESULT hrAfter = S_OK;
    std::thread([&] {
        OwnedTestBitmap bitmap(CSIcon::IconToMenuBitmap(icon.Get()));
        EXPECT_NE(nullptr, bitmap.h);
        // S_FALSE would say that somebody has left COM on.
        hrAfter = ::CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
        ::CoUninitialize();
    }).join();
    EXPECT_EQ(S_OK, hrAfter);
    for (DWORD dwKind : {COINIT_APARTMENTTHREADED, COINIT_MULTITHREADED}) {
        std::thread([&] {
            ASSERT_EQ(S_OK, ::CoInitializeEx(nullptr, dwKind));
            OwnedTestBitmap bitmap(CSIcon::IconToMenuBitmap(icon.Get()));
            EXPECT_NE(nullptr, bitmap.h);
            EXPECT_EQ(S_FALSE, ::CoInitializeEx(nullptr, dwKind)); // still the caller's
            ::CoUninitialize();
            ::CoUninitialize();
        }).join();
    }
}

TEST_F(IconToMenuBitmap, LeavesNoObjectBehind) {
    MadeIcon icon(4, 2, kPixels);
    ::DeleteObject(CSIcon::IconToMenuBitmap(icon.Get()));
    int nBefore = CountGdiObjects();
    ASSERT_GT(nBefore, 0);
    for (int n = 0; n < 20; ++n) {
        OwnedTestBitmap bitmap(CSIcon::IconToMenuBitmap(icon.Get()));
        EXPECT_EQ(nBefore + 1, CountGdiObjects());
        EXPECT_EQ(nullptr, CSIcon::IconToMenuBitmap(nullptr));
    }
    EXPECT_EQ(nBefore, CountGdiObjects());
}
