#include "support/gui_objects.h"
#include "support/made_icon.h"
#include "wnd/draw/csicon.h"

#include <gtest/gtest.h>
#include <objbase.h>
#include <thread>

namespace {
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
} // namespace

TEST(MakeIconBitmap, PremultipliesTheColoursAndKeepsTheAlpha) {
    MadeIcon icon(4, 2, kPixels);
    OwnedTestBitmap bitmap(MakeIconBitmap(icon.Get()));
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

TEST(MakeIconBitmap, FirstRowInMemoryIsTheTopmost) {
    MadeIcon icon(1, 3, {0xFF0000FF, 0xFF00FF00, 0xFFFF0000});
    OwnedTestBitmap bitmap(MakeIconBitmap(icon.Get()));
    EXPECT_EQ((std::vector<Pixel>{0xFF0000FF, 0xFF00FF00, 0xFFFF0000}), PixelsOf(bitmap.h));
    // And it is drawn that way round.
    HDC hdc = ::CreateCompatibleDC(nullptr);
    HGDIOBJ hOld = ::SelectObject(hdc, bitmap.h);
    EXPECT_EQ(RGB(0, 0, 0xFF), ::GetPixel(hdc, 0, 0));
    EXPECT_EQ(RGB(0xFF, 0, 0), ::GetPixel(hdc, 0, 2));
    ::SelectObject(hdc, hOld);
    ::DeleteDC(hdc);
}

TEST(MakeIconBitmap, HasTheIconsSize) {
    const SIZE kSizes[] = {{1, 1}, {16, 16}, {17, 5}, {48, 48}, {256, 256}};
    for (SIZE size : kSizes) {
        MadeIcon icon(size.cx, size.cy,
                      std::vector<Pixel>(static_cast<size_t>(size.cx * size.cy), 0xFF336699));
        OwnedTestBitmap bitmap(MakeIconBitmap(icon.Get()));
        BITMAP bm{};
        ASSERT_NE(0, ::GetObjectW(bitmap.h, sizeof(bm), &bm)) << size.cx;
        EXPECT_EQ(size.cx, bm.bmWidth);
        EXPECT_EQ(size.cy, bm.bmHeight);
        EXPECT_EQ(32, bm.bmBitsPixel);
        EXPECT_EQ(size.cx * 4, bm.bmWidthBytes);
        EXPECT_EQ(0xFF336699, PixelsOf(bitmap.h).back());
    }
}

TEST(MakeIconBitmap, NoIconGivesNull) {
    EXPECT_EQ(nullptr, MakeIconBitmap(nullptr));
    HICON hiconGone = nullptr;
    {
        MadeIcon icon(4, 2, kPixels);
        hiconGone = icon.Get();
    }
    EXPECT_EQ(nullptr, MakeIconBitmap(hiconGone));
    EXPECT_EQ(nullptr, MakeIconBitmap(reinterpret_cast<HICON>(0x7777)));
}

TEST(MakeIconBitmap, WorksOnThreadsWithAndWithoutComAndLeavesThemSo) {
    MadeIcon icon(4, 2, kPixels);
    HRESULT hrAfter = S_OK;
    std::thread([&] {
        OwnedTestBitmap bitmap(MakeIconBitmap(icon.Get()));
        EXPECT_NE(nullptr, bitmap.h);
        // S_FALSE would say that somebody has left COM on.
        hrAfter = ::CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
        ::CoUninitialize();
    }).join();
    EXPECT_EQ(S_OK, hrAfter);
    for (DWORD dwKind : {COINIT_APARTMENTTHREADED, COINIT_MULTITHREADED}) {
        std::thread([&] {
            ASSERT_EQ(S_OK, ::CoInitializeEx(nullptr, dwKind));
            OwnedTestBitmap bitmap(MakeIconBitmap(icon.Get()));
            EXPECT_NE(nullptr, bitmap.h);
            EXPECT_EQ(S_FALSE, ::CoInitializeEx(nullptr, dwKind)); // still the caller's
            ::CoUninitialize();
            ::CoUninitialize();
        }).join();
    }
}

TEST(MakeIconBitmap, LeavesNoObjectBehind) {
    MadeIcon icon(4, 2, kPixels);
    ::DeleteObject(MakeIconBitmap(icon.Get()));
    int nBefore = CountGdiObjects();
    ASSERT_GT(nBefore, 0);
    for (int n = 0; n < 20; ++n) {
        OwnedTestBitmap bitmap(MakeIconBitmap(icon.Get()));
        EXPECT_EQ(nBefore + 1, CountGdiObjects());
        EXPECT_EQ(nullptr, MakeIconBitmap(nullptr));
    }
    EXPECT_EQ(nBefore, CountGdiObjects());
}

TEST(MakeBitmap32, MakesABottomUpSectionOnTheScreenOrOnAContext) {
    HDC hdcMemory = ::CreateCompatibleDC(nullptr);
    for (HDC hdc : {static_cast<HDC>(nullptr), hdcMemory}) {
        SIZE size{3, 2};
        void* pBits = nullptr;
        HBITMAP hbm = nullptr;
        EXPECT_EQ(S_OK, MakeBitmap32(hdc, &size, &pBits, &hbm));
        ASSERT_NE(nullptr, hbm);
        ASSERT_NE(nullptr, pBits);
        static_cast<Pixel*>(pBits)[0] = 0x00112233; // first in memory
        HDC hdcDraw = ::CreateCompatibleDC(nullptr);
        HGDIOBJ hOld = ::SelectObject(hdcDraw, hbm);
        EXPECT_EQ(RGB(0x11, 0x22, 0x33), ::GetPixel(hdcDraw, 0, 1)); // and drawn lowest
        EXPECT_EQ(RGB(0, 0, 0), ::GetPixel(hdcDraw, 0, 0));
        ::SelectObject(hdcDraw, hOld);
        ::DeleteDC(hdcDraw);
        BITMAP bm{};
        ::GetObjectW(hbm, sizeof(bm), &bm);
        EXPECT_EQ(3, bm.bmWidth);
        EXPECT_EQ(2, bm.bmHeight);
        EXPECT_EQ(32, bm.bmBitsPixel);
        ::DeleteObject(hbm);
    }
    ::DeleteDC(hdcMemory);
}

TEST(MakeBitmap32, FailureClearsTheResultAndSaysOutOfMemory) {
    auto hbm = reinterpret_cast<HBITMAP>(0x1234);
    SIZE size{0, 5}; // the platform makes no section of no width
    EXPECT_EQ(static_cast<HRESULT>(0x8007000E), MakeBitmap32(nullptr, &size, nullptr, &hbm));
    EXPECT_EQ(nullptr, hbm);
}

TEST(MakeBitmap32, TakesNoAddressAndLeavesNoContextBehind) {
    SIZE size{3, 2};
    int nBefore = CountGdiObjects();
    for (int n = 0; n < 5; ++n) {
        HBITMAP hbm = nullptr;
        EXPECT_EQ(S_OK, MakeBitmap32(nullptr, &size, nullptr, &hbm));
        ::DeleteObject(hbm);
    }
    EXPECT_EQ(nBefore, CountGdiObjects());
}

TEST(FillBitmapInfo, ZeroesTheWholeAndFillsTheHeader) {
    struct {
        BITMAPINFOHEADER header;
        RGBQUAD colors[4];
        unsigned char chBehind;
    } block;
    memset(&block, 0xCC, sizeof(block));
    auto* pInfo = reinterpret_cast<BITMAPINFO*>(&block);
    FillBitmapInfo(pInfo, sizeof(BITMAPINFOHEADER) + sizeof(block.colors), 7, -9, 8);
    EXPECT_EQ(40u, block.header.biSize);
    EXPECT_EQ(7, block.header.biWidth);
    EXPECT_EQ(-9, block.header.biHeight);
    EXPECT_EQ(1, block.header.biPlanes);
    EXPECT_EQ(8, block.header.biBitCount);
    EXPECT_EQ(static_cast<DWORD>(BI_RGB), block.header.biCompression);
    EXPECT_EQ(0u, block.header.biSizeImage);
    EXPECT_EQ(0, block.colors[3].rgbBlue);
    EXPECT_EQ(0xCC, block.chBehind);
}

TEST(FillBitmapInfo, TooSmallASizeGetsZerosOnly) {
    BITMAPINFO info;
    memset(&info, 0xCC, sizeof(info));
    FillBitmapInfo(&info, 8, 7, 9, 32);
    EXPECT_EQ(0u, info.bmiHeader.biSize);
    EXPECT_EQ(0, info.bmiHeader.biWidth);
    EXPECT_EQ(static_cast<LONG>(0xCCCCCCCC), info.bmiHeader.biHeight);
}
