// The pixels of an icon button.
#include "buttons/icon_look.h"

#include <gtest/gtest.h>
#include <algorithm>
#include <cstdio>
#include <string>
#include <vector>

namespace {
using Pixels = std::vector<COLORREF>;
Pixels ReadAll(const MemoryPicture& picture) {
    Pixels pixels;
    for (int y = 0; y < 60; ++y)
        for (int x = 0; x < 120; ++x) pixels.push_back(picture.Get(x, y));
    return pixels;
}
int CountOf(const MemoryPicture& picture, COLORREF cr) {
    Pixels pixels = ReadAll(picture);
    return static_cast<int>(std::count(pixels.begin(), pixels.end(), cr));
}

struct IconBtnPixels : IconBtnDraw {
    void SetUp() override {
        penBefore = Btn::penBkg;
        Btn::penBkg = ::CreatePen(PS_SOLID, 0, Btn::rgbBk[0]); // the colour that this test knows
    }
    void TearDown() override {
        ::DeleteObject(Btn::penBkg);
        Btn::penBkg = penBefore;
    }
    /// The looks painted one after another into one picture.
    Pixels Paint(const std::vector<Look>& looks) {
        MemoryPicture picture(120, 60, Btn::rgbBk[0]);
        for (const Look& look : looks) Draw(look, picture, nullptr);
        return ReadAll(picture);
    }

    HPEN penBefore = nullptr;
};

Look LinkLook(bool bFocused, bool bHover) {
    Look look;
    look.dwFlags = 7;
    look.bFocused = bFocused;
    look.bHover = bHover;
    return look;
}

TEST_F(IconBtnPixels, OfALinkLeaveNothingOfThePaintingBefore) {
    for (int nBefore = 0; nBefore < 4; ++nBefore) {
        for (int nAfter = 0; nAfter < 4; ++nAfter) {
            Look before = LinkLook(nBefore & 1, nBefore & 2),
                 after = LinkLook(nAfter & 1, nAfter & 2);
            EXPECT_EQ(Paint({after}), Paint({before, after}))
                << before.Name() << " then " << after.Name();
            if (nBefore == nAfter) continue;
            EXPECT_NE(Paint({before}), Paint({after}));
        }
    }
}

TEST_F(IconBtnPixels, OfALinkAreItsColoursAndTheBackground) {
    const struct {
        Look look;
        COLORREF cr;
    } rows[] = {{LinkLook(false, false), RGB(0, 0, 187)},
                {LinkLook(false, true), RGB(187, 0, 0)},
                {LinkLook(true, false), RGB(0, 0, 187)},
                {LinkLook(true, true), RGB(187, 0, 0)}};
    for (const auto& row : rows) {
        Pixels pixels = Paint({row.look});
        auto nInk = std::count(pixels.begin(), pixels.end(), row.cr);
        auto nPaper = std::count(pixels.begin(), pixels.end(), Btn::rgbBk[0]);
        EXPECT_LT(40, nInk) << row.look.Name();
        EXPECT_EQ(static_cast<long long>(pixels.size()), nInk + nPaper) << row.look.Name();
    }
}

TEST_F(IconBtnPixels, OfAnUnderlineEndTwoPixelsInside) {
    MemoryPicture picture(120, 60, Btn::rgbBk[0]);
    Look look = LinkLook(false, false);
    DrawLog log;
    Draw(look, picture, &log);
    RECT rc{};
    std::string str = log.Take().back();
    ASSERT_EQ(4, std::sscanf(str.c_str(), "line (%ld,%ld)-(%ld,%ld) linkSolid", &rc.left, &rc.top,
                             &rc.right, &rc.bottom))
        << str;
    for (int x = 0; x < 120; ++x) {
        COLORREF crExpected = x >= rc.left && x < rc.right ? RGB(0, 0, 187) : Btn::rgbBk[0];
        ASSERT_EQ(crExpected, picture.Get(x, rc.top)) << x;
    }
}

// Everything in which the two differ lies in one row, below the first letter.
TEST_F(IconBtnPixels, OfTheMnemonicAreUnderlined) {
    for (unsigned long dwFlags : {3ul, 7ul}) {
        Look look;
        look.dwFlags = dwFlags;
        look.bFocused = true; // for a link: no underline of its own
        Pixels with = Paint({look});
        look.pszText = L"Open";
        Pixels without = Paint({look});
        int nRow = -1, nFirst = 120, nLast = -1, nCount = 0;
        for (int i = 0; i < 120 * 60; ++i) {
            if (with[i] == without[i]) continue;
            if (nRow < 0) nRow = i / 120;
            EXPECT_EQ(nRow, i / 120);
            nFirst = std::min(nFirst, i % 120);
            nLast = std::max(nLast, i % 120);
            ++nCount;
        }
        HDC hdc = ::CreateCompatibleDC(nullptr);
        SIZE sizeO = MeasureText(hdc, dwFlags & 4 ? Btn::hFontLink : Btn::hFontText, L"O");
        SIZE sizeAll = MeasureText(hdc, dwFlags & 4 ? Btn::hFontLink : Btn::hFontText, L"Open");
        ::DeleteDC(hdc);
        int xText = 5 + (100 - sizeAll.cx) / 2;
        EXPECT_LE(sizeO.cx - 2, nCount);
        EXPECT_LE(xText, nFirst);
        EXPECT_GE(xText + sizeO.cx, nLast);
    }
}

TEST_F(IconBtnPixels, OfTheIconAreThoseThatThePlatformDraws) {
    for (bool bHover : {false, true}) {
        Look look = LinkLook(false, bHover);
        look.pszText = L"";
        look.bIcon = look.bHoverIcon = true;
        Pixels drawn = Paint({look});
        MemoryPicture expected(120, 60, Btn::rgbBk[0]);
        auto hicon = static_cast<HICON>(::LoadImageW(
            ::GetModuleHandleW(nullptr),
            MAKEINTRESOURCEW(bHover ? IDI_DLG_CLOSE_HOVER : IDI_DLG_CLOSE), IMAGE_ICON, 16, 16, 0));
        ::DrawIconEx(expected, 47, 16, hicon, 16, 16, 0, Btn::hbrBkg, DI_NORMAL);
        ::DestroyIcon(hicon);
        EXPECT_EQ(ReadAll(expected), drawn) << bHover;
    }
}

TEST_F(IconBtnPixels, OfADisabledTextHaveAWhiteShadow) {
    MemoryPicture picture(120, 60, Btn::rgbBk[0]);
    Look look;
    look.dwFlags = 7;
    look.bDisabled = true;
    Draw(look, picture, nullptr);
    EXPECT_LT(40, CountOf(picture, Btn::rgbGray));
    EXPECT_EQ(0, CountOf(picture, RGB(0, 0, 187)));
}

// The platform's face, text and frame, put together here.
TEST_F(IconBtnPixels, OfAPlainButtonAreTheFaceTheTextAndTheFrame) {
    for (bool bFocused : {false, true}) {
        for (bool bSelected : {false, true}) {
            Look look;
            look.bFocused = bFocused;
            look.bSelected = bSelected;
            MemoryPicture expected(120, 60, Btn::rgbBk[0]);
            RECT rcFace = kItem;
            ::DrawFrameControl(expected, &rcFace, DFC_BUTTON,
                               DFCS_BUTTONPUSH | DFCS_ADJUSTRECT | (bSelected ? DFCS_PUSHED : 0));
            SIZE size = MeasureText(expected, Btn::hFontText, L"Open");
            int nShift = bSelected ? 1 : 0;
            RECT rc{5 + (100 - size.cx) / 2 + nShift, 4 + (41 - size.cy) / 2 + nShift, 0, 0};
            rc.right = rc.left + size.cx;
            rc.bottom = rc.top + size.cy;
            ::SelectObject(expected, Btn::hFontText);
            ::SetBkColor(expected, Btn::rgbBk[bSelected]);
            ::SetTextColor(expected, Btn::rgbText[bSelected]);
            ::DrawTextW(expected, L"&Open", -1, &rc, DT_SINGLELINE | DT_VCENTER | DT_NOCLIP);
            ::SelectObject(expected, ::GetStockObject(NULL_BRUSH));
            ::SelectObject(expected, bFocused ? Btn::penFocusText : Btn::penFocusBkg);
            ::RoundRect(expected, rc.left - 2, rc.top - 1, rc.right + 2, rc.bottom + 1, 4, 4);
            EXPECT_EQ(ReadAll(expected), Paint({look})) << look.Name();
        }
    }
}
} // namespace
