#include "app/identity/product_info.h"
#include "runtime/base/current_product.h"
#include "runtime/messages/res_str.h"
#include "support/memory_picture.h"
#include "support/test_resource_ids.h"
#include "wnd/draw/csicon.h"

#include <gtest/gtest.h>
#include <cstring>

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

struct IdCase {
    const char* pszName;
    int nId;
    int bModule; // a foreign module is named
    int bApp;    // a foreign application is current
    DefaultModule defaultModule;
    int bExpectForeign;
    unsigned nExpected;
};
class ResolvedId : public testing::TestWithParam<IdCase> {};
TEST_P(ResolvedId, NamesModuleAndNumber) {
    const IdCase& row = GetParam();
    HMODULE hmod = ForeignModule();
    AppInstance app(row.bApp ? hmod : GetLibraryInstance(), nullptr);
    ResourceRef ref = ResolveResourceId(row.nId, row.bModule ? hmod : nullptr, row.defaultModule);
    EXPECT_EQ(row.bExpectForeign ? hmod : GetLibraryInstance(), ref.hinst);
    EXPECT_EQ(row.nExpected, reinterpret_cast<ULONG_PTR>(ref.pszName));
}
constexpr auto kLib = DefaultModule::kLibrary;
constexpr auto kApp = DefaultModule::kApplication;
INSTANTIATE_TEST_SUITE_P(
    Cases, ResolvedId,
    testing::Values(IdCase{"PositiveWithModule", 9, 1, 0, kLib, 1, 9},
                    IdCase{"PositiveWithModuleBesideAnApplication", 9, 1, 1, kApp, 1, 9},
                    IdCase{"PositiveWithoutModuleOfTheLibrary", 9, 0, 1, kLib, 0, 9},
                    IdCase{"PositiveWithoutModuleOfTheApplication", 9, 0, 1, kApp, 1, 9},
                    IdCase{"NegativeWithModule", -9, 1, 1, kLib, 0, 9},
                    IdCase{"NegativeWithModuleBesideAnApplication", -9, 1, 1, kApp, 0, 9},
                    IdCase{"NegativeWithoutModule", -9, 0, 1, kApp, 0, 9},
                    IdCase{"GreatestNumber", 0xFFFF, 0, 0, kLib, 0, 0xFFFF},
                    IdCase{"AboveTheGreatest", 0x10001, 0, 0, kLib, 0, 1},
                    IdCase{"LeastInt", -0x7FFFFFFF - 1, 0, 0, kLib, 0, 0}),
    [](const auto& row) { return std::string(row.param.pszName); });
} // namespace
