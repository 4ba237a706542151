#include "support/gui_objects.h"
#include "support/memory_picture.h"
#include "support/test_window.h"
#include "support/wait_until.h"
#include "wnd/draw/draw_util.h"

#include <gtest/gtest.h>

namespace {
constexpr COLORREF kWhite = RGB(255, 255, 255);

/// Looks at a bitmap and deletes it.
std::string ReadAndDelete(HBITMAP hbm) {
    SIZE size = GetBitmapSize(hbm);
    MemoryPicture picture(size.cx, size.cy);
    DrawBitmap(picture, hbm, 0, 0, 0, 0, 0, 0);
    EXPECT_TRUE(::DeleteObject(hbm)) << "is none, or still selected";
    return picture.Read();
}

int IsLikeTheDisplay(HBITMAP hbm) {
    HDC hdc = ::GetDC(nullptr);
    int nBits = ::GetDeviceCaps(hdc, BITSPIXEL);
    ::ReleaseDC(nullptr, hdc);
    BITMAP bitmap{};
    ::GetObjectW(hbm, sizeof(bitmap), &bitmap);
    return bitmap.bmBitsPixel == nBits;
}

TEST(GetBitmapSize, IsTheBitmaps) {
    MemoryPicture picture(7, 5);
    SIZE size = GetBitmapSize(picture.GetBitmap());
    EXPECT_EQ(7, size.cx);
    EXPECT_EQ(5, size.cy);
}

TEST(GetBitmapSize, OfNoBitmapIs0) {
    HBITMAP hbm = ::CreateBitmap(2, 2, 1, 1, nullptr);
    ::DeleteObject(hbm);
    for (HBITMAP hbmNone : {static_cast<HBITMAP>(nullptr), hbm}) {
        SIZE size = GetBitmapSize(hbmNone);
        EXPECT_EQ(0, size.cx);
        EXPECT_EQ(0, size.cy);
    }
}

TEST(MakeBitmap, IsAPictureOfAPart) {
    MemoryPicture picture(3, 3);
    picture.Write("ABC/DEF/GHI");
    EXPECT_EQ("EF/HI", ReadAndDelete(MakeBitmap(picture, 1, 1, 2, 2)));
}

TEST(MakeBitmap, OfNoContextIsNone) { EXPECT_EQ(nullptr, MakeBitmap(nullptr, 0, 0, 2, 2)); }

TEST(MadeBitmaps, WithoutSizeAreNone) {
    MemoryPicture picture(2, 2);
    for (SIZE size : {SIZE{0, 2}, SIZE{2, 0}, SIZE{-1, 2}, SIZE{2, -1}}) {
        RECT rc{0, 0, size.cx, size.cy};
        EXPECT_EQ(nullptr, MakeBitmap(picture, 0, 0, size.cx, size.cy));
        EXPECT_EQ(nullptr, MakeScreenBitmap(0, 0, size.cx, size.cy));
        EXPECT_EQ(nullptr, MakeScreenBitmap(rc));
        EXPECT_EQ(nullptr, MakeTextBitmap(size.cx, size.cy, L"x", nullptr, 0, 0));
        EXPECT_EQ(nullptr, MakeShadedBitmap(size.cx, size.cy, 0, 1, 2));
    }
    EXPECT_EQ("..", ReadAndDelete(MakeBitmap(picture, 0, 0, 2, 1)));
}

TEST(CopyBitmap, IsLikeTheDisplay) {
    BYTE bits[] = {0x80, 0, 0x40, 0}; // monochrome: 10/01
    HBITMAP hbmMono = ::CreateBitmap(2, 2, 1, 1, bits);
    HBITMAP hbmCopy = CopyBitmap(hbmMono);
    EXPECT_TRUE(IsLikeTheDisplay(hbmCopy));
    EXPECT_EQ(".#/#.", ReadAndDelete(hbmCopy));
    EXPECT_TRUE(::DeleteObject(hbmMono)) << "still selected";
}

TEST(CopyBitmap, OfNoneOrOfASelectedOneIsNone) {
    EXPECT_EQ(nullptr, CopyBitmap(nullptr));
    MemoryPicture picture(2, 2);
    EXPECT_EQ(nullptr, CopyBitmap(picture.GetBitmap()));
}

/// What MakeScreenBitmap shows of 3 by 2 pixels, whose place is told in both ways.
std::string ReadScreen(int x, int y, int bByRect) {
    return ReadAndDelete(bByRect ? MakeScreenBitmap(RECT{x, y, x + 3, y + 2})
                                 : MakeScreenBitmap(x, y, 3, 2));
}

TEST(MakeScreenBitmap, ShowsAPartOfTheScreen) {
    TestWindow window({}, nullptr, WS_POPUP);
    ::SetWindowPos(window, HWND_TOPMOST, 40, 50, 20, 20, SWP_SHOWWINDOW | SWP_NOACTIVATE);
    for (int bByRect : {0, 1}) {
        std::string strSeen;
        auto fnShows = [&] { // the screen shows a window some time after it was painted
            HDC hdc = ::GetDC(window);
            PaintRect(hdc, 0, 0, 20, 20, MemoryPicture::ColorOf('A'));
            PaintRect(hdc, 6, 8, 2, 1, MemoryPicture::ColorOf('B'));
            ::ReleaseDC(window, hdc);
            strSeen = ReadScreen(45, 57, bByRect);
            return strSeen == "AAA/ABB";
        };
        EXPECT_TRUE(PumpUntil(fnShows)) << bByRect << ": " << strSeen;
    }
}

TEST(MakeScreenBitmap, IsLikeTheDisplay) {
    HBITMAP hbm = MakeScreenBitmap(5, 5, 3, 2);
    EXPECT_TRUE(IsLikeTheDisplay(hbm));
    EXPECT_TRUE(::DeleteObject(hbm));
}

TEST(MakeTextBitmap, WritesOverTheBackground) {
    const COLORREF crText = RGB(250, 0, 0), crBkg = RGB(0, 0, 240);
    HBITMAP hbm = MakeTextBitmap(60, 20, L"WWW", nullptr, crText, crBkg);
    MemoryPicture picture(60, 20);
    DrawBitmap(picture, hbm, 0, 0, 0, 0, 0, 0);
    EXPECT_TRUE(::DeleteObject(hbm));
    int nText = 0, nLeft = 60;
    for (int y = 0; y < 20; ++y) {
        for (int x = 0; x < 60; ++x) {
            ASSERT_NE(kWhite, picture.Get(x, y)) << "the background is transparent";
            if (picture.Get(x, y) == crBkg) continue;
            ++nText;
            nLeft = x < nLeft ? x : nLeft;
        }
    }
    EXPECT_GT(nText, 20);
    EXPECT_LT(nLeft, 4) << "begins at the left edge";
    EXPECT_EQ(crBkg, picture.Get(59, 19));
}

TEST(MakeTextBitmap, TakesTheFont) {
    LOGFONTW lf{};
    lf.lfHeight = -40;
    HFONT hfont = ::CreateFontIndirectW(&lf);
    HBITMAP hbm = MakeTextBitmap(60, 60, L"M", hfont, RGB(0, 0, 0), kWhite);
    MemoryPicture picture(60, 60);
    DrawBitmap(picture, hbm, 0, 0, 0, 0, 0, 0);
    EXPECT_TRUE(::DeleteObject(hbm));
    EXPECT_TRUE(::DeleteObject(hfont));
    int nLowest = 0;
    for (int y = 0; y < 60; ++y)
        for (int x = 0; x < 60; ++x)
            if (picture.Get(x, y) != kWhite) nLowest = y;
    EXPECT_GT(nLowest, 25);
}

TEST(MakeTextBitmap, WithoutTextIsTheBackground) {
    COLORREF cr = MemoryPicture::ColorOf('A');
    EXPECT_EQ("AA/AA", ReadAndDelete(MakeTextBitmap(2, 2, nullptr, nullptr, 0, cr)));
    EXPECT_EQ("AA/AA", ReadAndDelete(MakeTextBitmap(2, 2, L"", nullptr, 0, cr)));
}

TEST(MakeShadedBitmap, IsAFadeOverTheWhole) {
    HBITMAP hbm = MakeShadedBitmap(2, 12, RGB(160, 80, 40), 1, 4);
    MemoryPicture picture(2, 12), expected(2, 12);
    DrawBitmap(picture, hbm, 0, 0, 0, 0, 0, 0);
    EXPECT_TRUE(::DeleteObject(hbm));
    PaintShadedRect(expected, RECT{0, 0, 2, 12}, RGB(160, 80, 40), 1, 4);
    for (int y = 3; y < 12; ++y) {
        EXPECT_EQ(expected.Get(0, y), picture.Get(0, y)) << y;
        EXPECT_EQ(expected.Get(1, y), picture.Get(1, y)) << y;
    }
}

TEST(MadeBitmaps, LeaveNothingElseBehind) {
    MemoryPicture picture(4, 4);
    int nBefore = -1;
    for (int i = 0; i < 60; ++i) {
        HBITMAP hbm = MakeBitmap(picture, 0, 0, 2, 2);
        ::DeleteObject(CopyBitmap(hbm));
        ::DeleteObject(hbm);
        ::DeleteObject(MakeScreenBitmap(0, 0, 2, 2));
        ::DeleteObject(MakeTextBitmap(2, 2, L"x", nullptr, 0, 0));
        ::DeleteObject(MakeShadedBitmap(2, 2, 0, 1, 2));
        if (i == 9) nBefore = CountGdiObjects();
    }
    EXPECT_EQ(nBefore, CountGdiObjects());
}
} // namespace
