// The drawing calls of an icon button in all its states, by the rules.
#include "buttons/icon_look.h"

#include <gtest/gtest.h>
#include <algorithm>
#include <string>

namespace {
Lines RulesFor(const Look& look, HDC hdc) {
    constexpr UINT kFormat = 0x124;
    Lines lines;
    const bool bLink = look.dwFlags & 4, bText = *look.pszText;
    HFONT hfont = bLink ? Btn::hFontLink : Btn::hFontText;
    const COLORREF crBk = Btn::rgbBk[!bLink && look.bSelected];
    SIZE sizeText = MeasureText(hdc, hfont, look.pszText);
    int cx = (bText ? sizeText.cx : 0) + (look.bIcon ? 16 : 0) + (bText && look.bIcon ? 2 : 0);
    int cy = std::max(bText ? sizeText.cy : 0L, look.bIcon ? 16L : 0L);
    int x = kItem.left + (kItem.right - kItem.left - cx) / 2;
    int y = kItem.top + (kItem.bottom - kItem.top - cy) / 2;
    if (!(look.dwFlags & 1)) y = look.y;
    if (!(look.dwFlags & 2)) x = look.x;
    if ((look.bSelected || look.bChecked) && !bLink) {
        ++x;
        ++y;
    }
    RECT rc{x, y, x + cx, y + cy};
    if (bText && look.bIcon) rc.left += 18;
    if (!bLink) {
        lines.push_back(Format("face %s 4 %x", RectText(kItem).c_str(),
                               0x2010 | (look.bChecked ? 0x400 : 0) | (look.bSelected ? 0x200 : 0) |
                                   (look.bDisabled ? 0x100 : 0)));
    }
    if (bText) {
        auto strText = Narrow(look.pszText);
        auto AddText = [&](const RECT& rcText, COLORREF cr) {
            lines.push_back(Format("text '%s' %s %x color %06lx on %06lx font %s", strText.c_str(),
                                   RectText(rcText).c_str(), kFormat, cr, crBk,
                                   bLink ? "link" : "text"));
        };
        if (look.bDisabled && !look.bSelected)
            AddText({rc.left + 1, rc.top + 1, rc.right + 1, rc.bottom + 1}, 0xFFFFFF);
        COLORREF cr = Btn::rgbText[look.bSelected];
        if (bLink) cr = look.bHover ? Btn::rgbHover : Btn::rgbLink[look.bSelected];
        if (look.bDisabled) cr = Btn::rgbGray;
        AddText(rc, cr);
        lines.push_back(Format("rect '%s' %s 524", strText.c_str(), RectText(rc).c_str()));
        HGDIOBJ hBefore = ::SelectObject(hdc, hfont);
        ::DrawTextW(hdc, look.pszText, -1, &rc, kFormat);
        ::DrawTextW(hdc, look.pszText, -1, &rc, 0x524);
        ::SelectObject(hdc, hBefore);
        rc = {rc.left - 2, rc.top - 1, rc.right + 2, rc.bottom + 1};
        if (bLink) {
            RECT rcLine{rc.left + 2, rc.bottom, rc.right - 2, rc.bottom};
            auto AddRound = [&](const char* pszPen) {
                lines.push_back(Format("round %s by 4,4 %s", RectText(rc).c_str(), pszPen));
            };
            auto AddLine = [&](const char* pszPen) {
                lines.push_back(Format("line %s %s", RectText(rcLine).c_str(), pszPen));
            };
            AddRound("bkg");
            AddLine("bkg");
            if (look.bFocused)
                AddRound(look.bHover ? "hoverDotted" : "linkDotted");
            else
                AddLine(look.bDisabled ? "grayDashed" : look.bHover ? "hoverSolid" : "linkSolid");
        }
    }
    if (!bLink) {
        lines.push_back(Format("round %s by 4,4 %s", RectText(rc).c_str(),
                               look.bFocused ? "focusText" : "focusBkg"));
    }
    if (look.bIcon) {
        lines.push_back(Format("icon %s (%d,%d) 16x16 0 bkg 3",
                               look.bHover && look.bHoverIcon ? "hover" : "normal", x, y));
    }
    return lines;
}

class IconBtnDrawAll : public IconBtnDraw, public testing::WithParamInterface<unsigned long> {};

TEST_P(IconBtnDrawAll, FollowsTheRulesInEveryState) {
    constexpr int kStates = 256;
    MemoryPicture picture(120, 60), scratch(120, 60);
    for (const wchar_t* pszText : {L"&Open", L""}) {
        for (int n = 0; n < kStates; ++n) {
            Look look;
            look.dwFlags = GetParam();
            look.pszText = pszText;
            look.bIcon = n & 1;
            look.bHoverIcon = n & 2;
            look.bSelected = n & 4;
            look.bFocused = n & 8;
            look.bDisabled = n & 16;
            look.bChecked = n & 32;
            look.bHover = n & 64;
            look.x = n & 128 ? kCommonValue - 1 : 7;
            Lines expected = RulesFor(look, scratch);
            DrawLog log;
            Draw(look, picture, &log);
            ASSERT_EQ(expected, log.Take()) << look.Name();
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Flags, IconBtnDrawAll, testing::Range(0ul, 8ul));
} // namespace
