#include "runtime/base/dll_buf.h"
#include "support/gui_objects.h"
#include "support/memory_picture.h"
#include "support/replace_import.h"
#include "support/test_window.h"
#include "support/wait_until.h"
#include "wnd/draw/bitmaps.h"
#include "wnd/draw/draw_util.h"

#include <gtest/gtest.h>

extern "C" FARPROC __imp_SetDIBits;

namespace {
constexpr COLORREF kWhite = RGB(255, 255, 255);
const COLORREF kA = MemoryPicture::ColorOf('A');

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

/// A bitmap with that picture, selected nowhere.
class LetterBitmap {
  public:
    LetterBitmap(int cx, int cy, const char* pszRows) {
        MemoryPicture picture(cx, cy);
        picture.Write(pszRows);
        HDC hdcScreen = ::GetDC(nullptr);
        hbm = ::CreateCompatibleBitmap(hdcScreen, cx, cy);
        HDC hdc = ::CreateCompatibleDC(hdcScreen);
        HGDIOBJ hbmBefore = ::SelectObject(hdc, hbm);
        ::BitBlt(hdc, 0, 0, cx, cy, picture, 0, 0, SRCCOPY);
        ::SelectObject(hdc, hbmBefore);
        ::DeleteDC(hdc);
        ::ReleaseDC(nullptr, hdcScreen);
    }
    ~LetterBitmap() { EXPECT_TRUE(::DeleteObject(hbm)) << "still selected"; }
    LetterBitmap(const LetterBitmap&) = delete;
    LetterBitmap& operator=(const LetterBitmap&) = delete;
    operator HBITMAP() const { return hbm; }

  private:
    HBITMAP hbm;
};

TEST(DrawBitmap, CopiesAPart) {
    LetterBitmap bitmap(3, 2, "ABC/DEF");
    MemoryPicture picture(4, 3);
    DrawBitmap(picture, bitmap, 2, 0, 1, 0, 2, 2);
    EXPECT_EQ("..BC/..EF/....", picture.Read());
}

TEST(DrawBitmap, WithWidth0CopiesTheWholeWhateverTheHeight) {
    LetterBitmap bitmap(3, 2, "ABC/DEF");
    MemoryPicture picture(4, 3);
    DrawBitmap(picture, bitmap, 1, 1, 0, 0, 0, 1);
    EXPECT_EQ("..../.ABC/.DEF", picture.Read());
}

TEST(DrawBitmap, CountsInPixelsInAnyMappingMode) {
    LetterBitmap bitmap(3, 2, "ABC/DEF");
    MemoryPicture picture(4, 3);
    ::SetMapMode(picture, MM_TEXT);
    POINT pt{1, 1};
    ::SetMapMode(picture, MM_HIMETRIC);
    ::DPtoLP(picture, &pt, 1);
    DrawBitmap(picture, bitmap, pt.x, pt.y, 1, 0, 2, 2);
    EXPECT_EQ("..../.BC./.EF.", picture.Read());
    EXPECT_EQ(MM_HIMETRIC, ::GetMapMode(picture));
}

TEST(DrawBitmap, TakesNoExtentsForTheBitmapsSide) {
    LetterBitmap bitmap(4, 2, "AABB/AABB");
    MemoryPicture picture(4, 3);
    ::SetMapMode(picture, MM_ANISOTROPIC);
    ::SetViewportExtEx(picture, 2, 2, nullptr);
    DrawBitmap(picture, bitmap, 0, 0, 0, 0, 4, 2);
    EXPECT_EQ("AAAA/AAAA/....", picture.Read()) << "2 by 1 pixels at the scale of 2";
}

TEST(DrawBitmap, CountsSizesFromNoOrigin) {
    LetterBitmap bitmap(3, 2, "ABC/DEF");
    MemoryPicture picture(4, 3);
    ::SetViewportOrgEx(picture, 1, 1, nullptr);
    DrawBitmap(picture, bitmap, 0, 0, 0, 0, 0, 0);
    EXPECT_EQ("..../.ABC/.DEF", picture.Read());
}

TEST(DrawBitmap, DoesNothingWithABitmapThatIsSelectedElsewhere) {
    MemoryPicture selected(2, 2, kA), picture(2, 2);
    DrawBitmap(picture, selected.GetBitmap(), 0, 0, 0, 0, 0, 0);
    EXPECT_EQ("../..", picture.Read());
}

TEST(DrawBitmap, WithoutContextOrBitmapDoesNothing) {
    LetterBitmap bitmap(1, 1, "A");
    MemoryPicture picture(1, 1);
    DrawBitmap(nullptr, bitmap, 0, 0, 0, 0, 0, 0);
    DrawBitmap(picture, nullptr, 0, 0, 0, 0, 1, 1);
    EXPECT_EQ(".", picture.Read());
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
        DrawBitmap(picture, hbm, 0, 0, 0, 0, 0, 0);
        ::DeleteObject(hbm);
        ::DeleteObject(MakeScreenBitmap(0, 0, 2, 2));
        ::DeleteObject(MakeTextBitmap(2, 2, L"x", nullptr, 0, 0));
        ::DeleteObject(MakeShadedBitmap(2, 2, 0, 1, 2));
        if (i == 9) nBefore = CountGdiObjects();
    }
    EXPECT_EQ(nBefore, CountGdiObjects());
}

TEST(GetDibBits, GivesTheTopRowFirst) {
    MemoryPicture picture(3, 2);
    picture.Set(2, 0, RGB(1, 2, 3));
    picture.Set(0, 1, RGB(4, 5, 6));
    GDI_BGR* p = GetDibBits(picture, 3, 2);
    ASSERT_NE(nullptr, p);
    EXPECT_EQ(1, p[2].r);
    EXPECT_EQ(2, p[2].g);
    EXPECT_EQ(3, p[2].b);
    EXPECT_EQ(4, p[3].r);
    EXPECT_EQ(255, p[0].g);
    FreeDllBuf(p);
}

TEST(GetDibBits, ConvertsABitmapOfOtherDepth) {
    HDC hdc = ::CreateCompatibleDC(nullptr);
    BYTE bits[] = {0x80, 0, 0x40, 0}; // 10/01
    HBITMAP hbm = ::CreateBitmap(2, 2, 1, 1, bits);
    HGDIOBJ hbmBefore = ::SelectObject(hdc, hbm);
    GDI_BGR* p = GetDibBits(hdc, 2, 2);
    ASSERT_NE(nullptr, p);
    EXPECT_EQ(255, p[0].r);
    EXPECT_EQ(0, p[1].r);
    EXPECT_EQ(0, p[2].r);
    EXPECT_EQ(255, p[3].b);
    FreeDllBuf(p);
    ::SelectObject(hdc, hbmBefore);
    ::DeleteObject(hbm);
    ::DeleteDC(hdc);
}

TEST(GetDibBits, GivesNullWithoutContextBitmapOrSize) {
    EXPECT_EQ(nullptr, GetDibBits(nullptr, 1, 1));
    HDC hdcDead = ::CreateCompatibleDC(nullptr);
    ::DeleteDC(hdcDead);
    EXPECT_EQ(nullptr, GetDibBits(hdcDead, 1, 1));
    HDC hdcMeta = ::CreateEnhMetaFileW(nullptr, nullptr, nullptr, nullptr);
    EXPECT_EQ(nullptr, GetDibBits(hdcMeta, 1, 1)) << "has no bitmap";
    ::DeleteEnhMetaFile(::CloseEnhMetaFile(hdcMeta));
    MemoryPicture picture(1, 1);
    EXPECT_EQ(nullptr, GetDibBits(picture, 0, 1));
    EXPECT_EQ(nullptr, GetDibBits(picture, 1, 0));
    EXPECT_EQ(nullptr, GetDibBits(picture, -1, -1));
    EXPECT_EQ(nullptr, GetDibBits(picture, 0x7FFFFFFF, 0x7FFFFFFF));
    EXPECT_EQ(nullptr, GetDibBits(picture, 0x10000, 0x2000)) << "2 GiB";
}

TEST(GetDibBits, HasNothingBeyondTheBitmap) {
    MemoryPicture picture(1, 1);
    picture.Set(0, 0, RGB(9, 9, 9));
    GDI_BGR* p = GetDibBits(picture, 1, 3);
    ASSERT_NE(nullptr, p);
    EXPECT_EQ(9, p[0].r);
    EXPECT_EQ(0, p[1].r);
    EXPECT_EQ(0, p[2].r);
    FreeDllBuf(p);
    p = GetDibBits(picture, 3, 1);
    ASSERT_NE(nullptr, p);
    EXPECT_EQ(9, p[0].r);
    EXPECT_EQ(0, p[1].r);
    EXPECT_EQ(0, p[2].r);
    FreeDllBuf(p);
}

using Turn = int(HDC, const RECT*, HDC);
int RotateBy0(HDC hdcTarget, const RECT* prc, HDC hdcSource) {
    return RotateMemoryDC(hdcTarget, prc, hdcSource, 0);
}
int RotateBy1(HDC hdcTarget, const RECT* prc, HDC hdcSource) {
    return RotateMemoryDC(hdcTarget, prc, hdcSource, 1);
}

struct TurnCase {
    const char* pszName;
    Turn* pfn;
    SIZE sizeSource;
    const char* pszSource;
    RECT rc;
    const char* pszExpected; // of 5 by 4
};
class TurnedPicture : public testing::TestWithParam<TurnCase> {};
TEST_P(TurnedPicture, HasEveryPixelInItsPlace) {
    const TurnCase& row = GetParam();
    MemoryPicture source(row.sizeSource.cx, row.sizeSource.cy), target(5, 4);
    source.Write(row.pszSource);
    EXPECT_EQ(1, row.pfn(target, &row.rc, source));
    EXPECT_EQ(row.pszExpected, target.Read());
    EXPECT_EQ(row.pszSource, source.Read()) << "the source stays";
}
INSTANTIATE_TEST_SUITE_P(
    Cases, TurnedPicture,
    testing::Values(
        TurnCase{"By1", RotateBy1, {2, 3}, "AB/CD/EF", {1, 1, 4, 3}, "...../.BDF./.ACE./....."},
        TurnCase{"By0", RotateBy0, {2, 3}, "AB/CD/EF", {1, 1, 4, 3}, "...../.ECA./.FDB./....."},
        TurnCase{"ARowBy1", RotateBy1, {4, 1}, "ABCD", {0, 0, 1, 4}, "D..../C..../B..../A...."},
        TurnCase{"ARowBy0", RotateBy0, {4, 1}, "ABCD", {0, 0, 1, 4}, "A..../B..../C..../D...."},
        TurnCase{"OnePixel", RotateBy1, {1, 1}, "A", {4, 3, 5, 4}, "...../...../...../....A"},
        TurnCase{"PartOfTheSource",
                 RotateBy1,
                 {3, 3},
                 "ABG/CDH/EFI",
                 {0, 0, 3, 2},
                 "BDF../ACE../...../....."},
        TurnCase{"Half", TwistMemoryDC, {3, 2}, "ABC/DEF", {1, 1, 4, 3}, "...../.FED./.CBA./....."},
        TurnCase{"HalfOfAColumn",
                 TwistMemoryDC,
                 {1, 3},
                 "A/B/C",
                 {0, 0, 1, 3},
                 "C..../B..../A..../....."},
        TurnCase{"SidesSwapped",
                 TwistMemoryDC,
                 {3, 2},
                 "ABC/DEF",
                 {3, 2, 0, 0},
                 "...../...../...FE/...CB"}),
    [](const auto& row) { return std::string(row.param.pszName); });

TEST(RotateMemoryDC, ClockwiseTurnsCounterClockwise) {
    MemoryPicture source(2, 1), target(1, 2);
    source.Write("AB");
    RECT rc{0, 0, 1, 2};
    EXPECT_EQ(1, RotateMemoryDC(target, &rc, source, 1));
    EXPECT_EQ("B/A", target.Read());
}

TEST(RotateMemoryDC, GivesZeroWhenThePixelsCantBeRead) {
    MemoryPicture picture(2, 2);
    RECT rc{0, 0, 2, 2}, rcEmpty{1, 0, 1, 2};
    for (Turn* pfn : {RotateBy0, RotateBy1, TwistMemoryDC}) {
        EXPECT_EQ(0, pfn(picture, &rc, nullptr));
        EXPECT_EQ(0, pfn(picture, &rcEmpty, picture));
        EXPECT_EQ(0, pfn(picture, nullptr, picture));
        EXPECT_EQ(0, pfn(nullptr, &rc, picture));
    }
    EXPECT_EQ("../..", picture.Read());
}

TEST(RotateMemoryDC, LeavesWhatItMadeBehindWhenTheReadFails) {
    MemoryPicture picture(2, 2);
    RECT rc{0, 0, 2, 2};
    for (Turn* pfn : {RotateBy1, TwistMemoryDC}) {
        int nBefore = CountGdiObjects();
        EXPECT_EQ(0, pfn(picture, &rc, nullptr));
        EXPECT_EQ(nBefore + 2, CountGdiObjects()) << "a context and a bitmap";
    }
}

TEST(RotateMemoryDC, LeavesNothingBehindWhenItSucceeds) {
    MemoryPicture picture(2, 2);
    RECT rc{0, 0, 2, 2};
    int nBefore = -1;
    for (int i = 0; i < 60; ++i) {
        EXPECT_EQ(1, RotateMemoryDC(picture, &rc, picture, i % 2));
        EXPECT_EQ(1, TwistMemoryDC(picture, &rc, picture));
        if (i == 9) nBefore = CountGdiObjects();
    }
    EXPECT_EQ(nBefore, CountGdiObjects());
}

TEST(RotateMemoryDC, WritesABitmapThatIsNotSelected) {
    static int nWritten, nSelected;
    static decltype(::SetDIBits)* pfnSetDIBits;
    nWritten = nSelected = 0;
    decltype(::SetDIBits)* pfnLook = [](HDC hdc, HBITMAP hbm, UINT uStart, UINT nRows,
                                        const void* p, const BITMAPINFO* pInfo,
                                        UINT uUsage) -> int {
        ++nWritten;
        nSelected += ::GetCurrentObject(hdc, OBJ_BITMAP) == hbm;
        return pfnSetDIBits(hdc, hbm, uStart, nRows, p, pInfo, uUsage);
    };
    MemoryPicture picture(2, 2);
    RECT rc{0, 0, 2, 2};
    ReplaceImport replaced(__imp_SetDIBits, pfnLook);
    pfnSetDIBits = replaced.Original<decltype(::SetDIBits)>();
    EXPECT_EQ(1, RotateMemoryDC(picture, &rc, picture, 1));
    EXPECT_EQ(1, TwistMemoryDC(picture, &rc, picture));
    EXPECT_EQ(2, nWritten);
    EXPECT_EQ(0, nSelected);
}

TEST(RotateMemoryDC, FourQuartersAreTheWholePicture) {
    for (int nWay : {0, 1}) {
        MemoryPicture picture(3, 3);
        picture.Write("ABC/DEF/GHI");
        RECT rc{0, 0, 3, 3};
        for (int i = 0; i < 4; ++i) EXPECT_EQ(1, RotateMemoryDC(picture, &rc, picture, nWay));
        EXPECT_EQ("ABC/DEF/GHI", picture.Read());
    }
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
        static_cast<DWORD*>(pBits)[0] = 0x00112233; // first in memory
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
} // namespace
