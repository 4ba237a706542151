#include "app/identity/product_info.h"
#include "support/memory_picture.h"
#include "support/replace_import.h"
#include "support/test_resource_ids.h"
#include "wnd/draw/csimage_list.h"

#include <gtest/gtest.h>
#include <cstring>
#include <utility>
#include <vector>

extern "C" FARPROC __imp_ImageList_AddMasked;
extern "C" FARPROC __imp_ImageList_ReplaceIcon;
extern "C" FARPROC __imp_ImageList_SetIconSize;
extern "C" FARPROC __imp_ImageList_GetIconSize;
extern "C" FARPROC __imp_ImageList_Draw;
extern "C" FARPROC __imp_ImageList_SetOverlayImage;

namespace {
constexpr COLORREF kRed = RGB(255, 0, 0), kGreen = RGB(0, 255, 0), kBlue = RGB(0, 0, 255),
                   kWhite = RGB(255, 255, 255), kMagenta = RGB(255, 0, 255);

/// What the list draws of an image, at two pixels in.
COLORREF ColorOf(CSImageList& list, int nIndex, unsigned uStyle = ILD_NORMAL) {
    MemoryPicture picture(40, 40);
    EXPECT_EQ(1, list.Draw(nIndex, picture, 1, 1, uStyle));
    return picture.Get(3, 3);
}

/// Alive, as far as the platform tells.
int IsList(HIMAGELIST hList) {
    int cx = 0, cy = 0;
    return ::ImageList_GetIconSize(hList, &cx, &cy);
}

struct List16 : testing::Test {
    void SetUp() override { ASSERT_EQ(1, list.Create(16, 16, ILC_COLOR32 | ILC_MASK, 2, 2)); }
    CSImageList list;
};

TEST(CSImageList, StartsWithoutAList) {
    CSImageList list;
    EXPECT_EQ(nullptr, static_cast<HIMAGELIST>(list));
    EXPECT_EQ(0, list.IsReady());
    EXPECT_EQ(-1, list.GetBitmapSize().cx);
    EXPECT_EQ(-1, list.GetBitmapSize().cy);
    EXPECT_EQ(0u, list.GetIconSize());
    EXPECT_EQ(-1, list.AddIcon(IDI_TEST, nullptr));
    EXPECT_EQ(0, list.Detach());
    EXPECT_EQ(1, list.Destroy()) << "nothing to destroy";
}

TEST(CSImageList, HoldsTheBitmapsSizeBeforeTheHandle) {
    struct Layout {
        int bitmapWidth, bitmapHeight;
        HIMAGELIST hList;
    } layout;
    CSImageList list;
    list.Create(16, 16, ILC_COLOR32, 0, 1);
    std::memcpy(&layout, static_cast<const void*>(&list), sizeof(layout));
    EXPECT_EQ(-1, layout.bitmapWidth);
    EXPECT_EQ(-1, layout.bitmapHeight);
    EXPECT_EQ(static_cast<HIMAGELIST>(list), layout.hList);
}

TEST(CSImageList, CreateMakesAListOfThatSize) {
    CSImageList list;
    EXPECT_EQ(1, list.Create(10, 20, ILC_COLOR32, 0, 1));
    EXPECT_EQ(1, list.IsReady());
    EXPECT_EQ(static_cast<unsigned long>(MAKELONG(10, 20)), list.GetIconSize());
    EXPECT_EQ(1, list.SetIconSize(300, 5));
    EXPECT_EQ(static_cast<unsigned long>(MAKELONG(300, 5)), list.GetIconSize());
}

TEST(CSImageList, CreateThatFailsLeavesNone) {
    CSImageList list;
    EXPECT_EQ(0, list.Create(-1, -1, ILC_COLOR32, 0, 1));
    EXPECT_EQ(0, list.IsReady());
    EXPECT_EQ(-1, list.CreateFromBitmap(-1, -1, 0, 1, IDB_TEST_STRIP, nullptr, kMagenta));
}

TEST(CSImageList, IsDestroyedAtTheEnd) {
    HIMAGELIST hList;
    {
        CSImageList list;
        list.Create(16, 16, ILC_COLOR32, 0, 1);
        hList = list;
        EXPECT_TRUE(IsList(hList));
    }
    EXPECT_FALSE(IsList(hList));
}

TEST(CSImageList, DestroyKeepsTheHandle) {
    CSImageList list;
    list.Create(16, 16, ILC_COLOR32, 0, 1);
    HIMAGELIST hList = list;
    EXPECT_EQ(1, list.Destroy());
    EXPECT_FALSE(IsList(hList));
    EXPECT_EQ(hList, static_cast<HIMAGELIST>(list));
    EXPECT_EQ(1, list.IsReady());
    EXPECT_EQ(0, list.Destroy()) << "there is a handle but no list";
    EXPECT_EQ(-1, list.AddIcon(IDI_TEST, nullptr));
    EXPECT_EQ(-1, list.AddIcon(::LoadIconW(nullptr, reinterpret_cast<LPCWSTR>(IDI_ERROR))));
    EXPECT_EQ(-1, list.AddFromBitmap(IDB_TEST_STRIP, nullptr, kMagenta));
    EXPECT_EQ(0u, list.GetIconSize());
    EXPECT_EQ(0, list.SetIconSize(8, 8));
    EXPECT_EQ(0, list.SetOverlayImage(0, 1));
    MemoryPicture picture(1, 1);
    EXPECT_EQ(0, list.Draw(0, picture, 0, 0, ILD_NORMAL));
    EXPECT_EQ(1, list.Create(16, 16, ILC_COLOR32, 0, 1));
    EXPECT_EQ(1, list.Destroy());
}

TEST(CSImageList, HandsNoDestroyedListToThePlatform) {
    static std::vector<HIMAGELIST> seen;
    seen.clear();
    // In 64 bits a function may be called with more arguments than it takes.
    int(WINAPI * pfnNote)(HIMAGELIST) = [](HIMAGELIST hList) -> int {
        seen.push_back(hList);
        return 0;
    };
    ReplaceImport add(__imp_ImageList_AddMasked, pfnNote),
        replace(__imp_ImageList_ReplaceIcon, pfnNote), set(__imp_ImageList_SetIconSize, pfnNote),
        get(__imp_ImageList_GetIconSize, pfnNote), draw(__imp_ImageList_Draw, pfnNote),
        overlay(__imp_ImageList_SetOverlayImage, pfnNote);
    CSImageList list;
    list.Create(16, 16, ILC_COLOR32, 0, 1);
    auto fnAskAll = [&] {
        list.AddMasked(nullptr, 0);
        list.AddIcon(static_cast<HICON>(nullptr));
        list.SetIconSize(1, 1);
        list.GetIconSize();
        list.Draw(0, nullptr, 0, 0, 0);
        list.SetOverlayImage(0, 1);
        return std::exchange(seen, {});
    };
    EXPECT_EQ(std::vector<HIMAGELIST>(6, list), fnAskAll());
    list.Destroy();
    EXPECT_EQ(std::vector<HIMAGELIST>(6, nullptr), fnAskAll());
}

TEST(CSImageList, CreateAndAttachDestroyTheListHeld) {
    CSImageList list;
    list.Create(16, 16, ILC_COLOR32, 0, 1);
    HIMAGELIST hFirst = list;
    list.Create(32, 32, ILC_COLOR32, 0, 1);
    HIMAGELIST hSecond = list;
    EXPECT_FALSE(hFirst != hSecond && IsList(hFirst));
    EXPECT_EQ(1, list.Attach(hSecond));
    EXPECT_TRUE(IsList(hSecond)) << "it is the one";
    EXPECT_EQ(0, list.Attach(nullptr));
    EXPECT_FALSE(IsList(hSecond));
}

TEST(CSImageList, AttachTakesAndDetachForgets) {
    HIMAGELIST hList = ::ImageList_Create(16, 16, ILC_COLOR32, 0, 1);
    {
        CSImageList list;
        EXPECT_EQ(1, list.Attach(hList));
        EXPECT_EQ(hList, static_cast<HIMAGELIST>(list));
        EXPECT_EQ(1, list.Detach());
        EXPECT_EQ(nullptr, static_cast<HIMAGELIST>(list));
    }
    EXPECT_TRUE(IsList(hList));
    {
        CSImageList list;
        list.Attach(hList);
    }
    EXPECT_FALSE(IsList(hList));
}

TEST(CSImageList, CreateFromBitmapIsMaskedWith32BitColour) {
    CSImageList list;
    EXPECT_EQ(0, list.CreateFromBitmap(16, 16, 2, 0, IDB_TEST_STRIP, nullptr, kMagenta));
    EXPECT_EQ(32, list.GetBitmapSize().cx);
    EXPECT_EQ(16, list.GetBitmapSize().cy);
    EXPECT_EQ(2, ::ImageList_GetImageCount(list));
    EXPECT_EQ(kGreen, ColorOf(list, 0));
    EXPECT_EQ(kWhite, ColorOf(list, 1)) << "transparent";
}

TEST(CSImageList, CreateFromBitmapWithoutTheBitmapLeavesAnEmptyList) {
    CSImageList list;
    EXPECT_EQ(-1, list.CreateFromBitmap(16, 16, 2, 0, 4711, nullptr, kMagenta));
    EXPECT_EQ(1, list.IsReady());
    EXPECT_EQ(0, ::ImageList_GetImageCount(list));
    EXPECT_EQ(-1, list.GetBitmapSize().cx);
}

TEST_F(List16, AddFromBitmapAddsAfterWhatIsThere) {
    EXPECT_EQ(0, list.AddFromBitmap(-IDB_TEST_STRIP, nullptr, kGreen));
    EXPECT_EQ(2, list.AddFromBitmap(IDB_TEST_STRIP, nullptr, kMagenta));
    EXPECT_EQ(kWhite, ColorOf(list, 0));
    EXPECT_EQ(kMagenta, ColorOf(list, 1));
    EXPECT_EQ(kGreen, ColorOf(list, 2));
}

TEST_F(List16, AddFromBitmapGivesMinusOneWithoutTheBitmap) {
    list.AddFromBitmap(IDB_TEST_STRIP, nullptr, kMagenta);
    EXPECT_EQ(-1, list.AddFromBitmap(4711, nullptr, kMagenta));
    EXPECT_EQ(32, list.GetBitmapSize().cx) << "stays";
    EXPECT_EQ(2, ::ImageList_GetImageCount(list));
}

TEST_F(List16, NegativeIdIsTheLibrarysWhateverModule) {
    HMODULE hmod = ::LoadLibraryW(L"shell32.dll");
    AppInstance app(hmod, nullptr);
    EXPECT_EQ(-1, list.AddFromBitmap(IDB_TEST_STRIP, hmod, kMagenta));
    EXPECT_EQ(0, list.AddFromBitmap(-IDB_TEST_STRIP, hmod, kMagenta));
    EXPECT_EQ(2, list.AddIcon(-IDI_TEST, hmod));
    EXPECT_EQ(kRed, ColorOf(list, 2));
}

TEST_F(List16, NullModuleIsTheLibraryWhateverTheApplication) {
    AppInstance app(::LoadLibraryW(L"shell32.dll"), nullptr);
    EXPECT_EQ(0, list.AddIcon(IDI_TEST, nullptr));
    EXPECT_EQ(kRed, ColorOf(list, 0));
}

TEST_F(List16, AddMaskedCopiesTheBitmap) {
    HBITMAP hbm;
    {
        MemoryPicture picture(16, 16, kBlue);
        hbm = ::CreateCompatibleBitmap(picture, 16, 16);
        HDC hdc = ::CreateCompatibleDC(picture);
        HGDIOBJ hbmBefore = ::SelectObject(hdc, hbm);
        ::BitBlt(hdc, 0, 0, 16, 16, picture, 0, 0, SRCCOPY);
        ::SelectObject(hdc, hbmBefore);
        ::DeleteDC(hdc);
    }
    EXPECT_EQ(0, list.AddMasked(hbm, kMagenta));
    EXPECT_TRUE(::DeleteObject(hbm));
    EXPECT_EQ(kBlue, ColorOf(list, 0));
    EXPECT_EQ(-1, list.AddMasked(nullptr, kMagenta));
}

TEST_F(List16, IconsAreLoadedAtTheListsSize) {
    EXPECT_EQ(0, list.AddIcon(IDI_TEST, nullptr));
    EXPECT_EQ(kRed, ColorOf(list, 0)) << "the small image";
    CSImageList large;
    large.Create(32, 32, ILC_COLOR32 | ILC_MASK, 1, 1);
    EXPECT_EQ(0, large.AddIcon(IDI_TEST, nullptr));
    EXPECT_EQ(kBlue, ColorOf(large, 0)) << "the large image";
    EXPECT_EQ(-1, list.AddIcon(4711, nullptr));
}

TEST_F(List16, ReplacesAnIconByHandleOrId) {
    HICON hicon = ::LoadIconW(nullptr, reinterpret_cast<LPCWSTR>(IDI_ERROR));
    EXPECT_EQ(0, list.AddIcon(hicon));
    EXPECT_EQ(1, list.AddIcon(hicon));
    EXPECT_EQ(1, list.ReplaceIcon(1, IDI_TEST, nullptr));
    EXPECT_EQ(kRed, ColorOf(list, 1));
    EXPECT_EQ(1, list.ReplaceIcon(1, hicon));
    EXPECT_NE(kRed, ColorOf(list, 1));
    EXPECT_EQ(2, list.ReplaceIcon(-1, IDI_TEST, nullptr)) << "adds";
    EXPECT_EQ(-1, list.ReplaceIcon(9, hicon));
    EXPECT_EQ(-1, list.ReplaceIcon(0, 4711, nullptr));
    EXPECT_EQ(3, ::ImageList_GetImageCount(list));
}

TEST_F(List16, DrawsAtThePlaceInTheStyle) {
    list.AddFromBitmap(IDB_TEST_STRIP, nullptr, kMagenta);
    MemoryPicture picture(40, 20);
    EXPECT_EQ(1, list.Draw(0, picture, 20, 2, ILD_NORMAL));
    EXPECT_EQ(kWhite, picture.Get(19, 2));
    EXPECT_EQ(kWhite, picture.Get(20, 1));
    EXPECT_EQ(kGreen, picture.Get(20, 2));
    EXPECT_EQ(kGreen, picture.Get(35, 17));
    EXPECT_EQ(kWhite, picture.Get(36, 17));
    EXPECT_NE(kGreen, ColorOf(list, 0, ILD_MASK));
    EXPECT_EQ(0, list.Draw(7, picture, 0, 0, ILD_NORMAL));
}

TEST_F(List16, OverlayIsDrawnOnTop) {
    list.AddFromBitmap(IDB_TEST_STRIP, nullptr, kMagenta);
    list.AddIcon(IDI_TEST, nullptr);
    EXPECT_EQ(1, list.SetOverlayImage(2, 1));
    EXPECT_EQ(kRed, ColorOf(list, 0, ILD_NORMAL | INDEXTOOVERLAYMASK(1)));
    EXPECT_EQ(kGreen, ColorOf(list, 0, ILD_NORMAL));
    EXPECT_EQ(0, list.SetOverlayImage(2, 99));
}
} // namespace
