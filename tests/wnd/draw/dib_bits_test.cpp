#include "support/gui_objects.h"
#include "support/memory_picture.h"
#include "support/replace_import.h"
#include "wnd/draw/dib_bits.h"

#include <gtest/gtest.h>
#include <cstdlib>

extern "C" FARPROC __imp_SetDIBits;

namespace {
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
    std::free(p);
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
    std::free(p);
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
    std::free(p);
    p = GetDibBits(picture, 3, 1);
    ASSERT_NE(nullptr, p);
    EXPECT_EQ(9, p[0].r);
    EXPECT_EQ(0, p[1].r);
    EXPECT_EQ(0, p[2].r);
    std::free(p);
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
} // namespace
