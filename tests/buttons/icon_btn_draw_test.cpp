// The drawing calls of an icon button: worked out by hand for some, and by the rules for all
// states.
#include "buttons/draw_log.h"
#include "buttons/icon_probe.h"
#include "resources/resource_ids.h"
#include "support/memory_picture.h"

#include <gtest/gtest.h>
#include <algorithm>
#include <string>
#include <vector>

extern "C" FARPROC __imp_CreateDCW;

namespace {
using Btn = ProbeIconBtn;
using Lines = std::vector<std::string>;

/// Values that do not depend on the system's, for the length of a test.
class KnownColors {
  public:
    KnownColors() {
        for (int i : {0, 1}) {
            Btn::rgbBk[i] = i ? 0xB1B1B1 : 0xB0B0B0;
            Btn::rgbText[i] = i ? 0x111111 : 0x101010;
        }
        Btn::rgbGray = 0x777777;
        LOGFONTW lf{};
        lf.lfHeight = -11;
        lf.lfQuality = NONANTIALIASED_QUALITY;
        wcscpy(lf.lfFaceName, L"Tahoma");
        Btn::hFontText = ::CreateFontIndirectW(&lf);
        lf.lfHeight = -16;
        Btn::hFontLink = ::CreateFontIndirectW(&lf);
    }
    ~KnownColors() {
        ::DeleteObject(Btn::hFontText);
        ::DeleteObject(Btn::hFontLink);
        Btn::hFontText = before.hfontText;
        Btn::hFontLink = before.hfontLink;
        std::copy_n(before.rgbBk, 2, Btn::rgbBk);
        std::copy_n(before.rgbText, 2, Btn::rgbText);
        Btn::rgbGray = before.rgbGray;
    }

  private:
    struct {
        COLORREF rgbBk[2] = {Btn::rgbBk[0], Btn::rgbBk[1]};
        COLORREF rgbText[2] = {Btn::rgbText[0], Btn::rgbText[1]};
        COLORREF rgbGray = Btn::rgbGray;
        HFONT hfontText = Btn::hFontText, hfontLink = Btn::hFontLink;
    } before;
};

/// How a button is made and what is said of it at a drawing.
struct Look {
    unsigned long dwFlags = 3;
    const wchar_t* pszText = L"&Open";
    bool bIcon = false, bHoverIcon = false;
    bool bSelected = false, bFocused = false, bDisabled = false, bChecked = false, bHover = false;
    int x = 7, y = 9;

    UINT ItemState() const {
        return (bSelected ? ODS_SELECTED : 0u) | (bDisabled ? ODS_DISABLED : 0u) |
               (bFocused ? ODS_FOCUS : 0u);
    }
    std::string Name() const {
        return Format("flags %lu '%s' icon %d %d selected %d focused %d disabled %d checked %d "
                      "hover %d",
                      dwFlags, Narrow(pszText).c_str(), bIcon, bHoverIcon, bSelected, bFocused,
                      bDisabled, bChecked, bHover);
    }
};

constexpr RECT kItem{5, 4, 105, 45}; // 100 by 41

struct IconBtnDraw : testing::Test {
    /// Draws a button of that look.
    void Draw(const Look& look, HDC hdc, DrawLog* pLog, const RECT& rc = kItem,
              HFONT hfontThis = nullptr) {
        ProbeIconBtn button(look.bIcon ? static_cast<unsigned>(-IDI_DLG_CLOSE) : 0,
                            look.bHoverIcon ? static_cast<unsigned>(-IDI_DLG_CLOSE_HOVER) : 0,
                            look.dwFlags, look.x, look.y);
        ::SetWindowTextW(window, look.pszText);
        ASSERT_EQ(1, button.Subclass(window));
        button.bHover = look.bHover;
        button.dwCheck = look.bChecked;
        button.hFontThis = hfontThis;
        DRAWITEMSTRUCT item{};
        item.CtlType = ODT_BUTTON;
        item.itemState = look.ItemState();
        item.hwndItem = window;
        item.hDC = hdc;
        item.rcItem = rc;
        if (pLog) {
            pLog->hicon = button.hIcon;
            pLog->hiconHover = button.hIconHover;
        }
        button.OnDrawItem(&item);
        button.hFontThis = nullptr;
        button.Unsubclass();
    }
    /// The calls, with texts of 6 by 13 pixels a character.
    Lines Calls(const Look& look, const RECT& rc = kItem) {
        MemoryPicture picture(120, 60, Btn::rgbBk[0]);
        DrawLog log;
        log.bFixedText = true;
        Draw(look, picture, &log, rc);
        return log.Take();
    }

    ProbeIconBtn first{0, 0, 3, 0, 0}; // keeps what is shared
    KnownColors known;
    ShownButton window;
};

// By hand: "Open" is 24 by 13, an icon 16 by 16.

TEST_F(IconBtnDraw, Plain) {
    // 24 of 100, 13 of 41: at (5 + 38, 4 + 14).
    EXPECT_EQ((Lines{"face (5,4)-(105,45) 4 2010",
                     "text '&Open' (43,18)-(67,31) 124 color 101010 on b0b0b0 font text",
                     "rect '&Open' (43,18)-(67,31) 524", "round (41,17)-(69,32) by 4,4 focusBkg"}),
              Calls({}));
}

TEST_F(IconBtnDraw, PlainPressedIsShifted) {
    Look look;
    look.bSelected = look.bFocused = true;
    EXPECT_EQ((Lines{"face (5,4)-(105,45) 4 2210",
                     "text '&Open' (44,19)-(68,32) 124 color 111111 on b1b1b1 font text",
                     "rect '&Open' (44,19)-(68,32) 524", "round (42,18)-(70,33) by 4,4 focusText"}),
              Calls(look));
}

TEST_F(IconBtnDraw, PlainCheckedIsShiftedWithTheColoursOfOneThatIsUp) {
    Look look;
    look.bChecked = true;
    EXPECT_EQ((Lines{"face (5,4)-(105,45) 4 2410",
                     "text '&Open' (44,19)-(68,32) 124 color 101010 on b0b0b0 font text",
                     "rect '&Open' (44,19)-(68,32) 524", "round (42,18)-(70,33) by 4,4 focusBkg"}),
              Calls(look));
}

TEST_F(IconBtnDraw, PlainDisabledHasAShadow) {
    Look look;
    look.bDisabled = true;
    EXPECT_EQ((Lines{"face (5,4)-(105,45) 4 2110",
                     "text '&Open' (44,19)-(68,32) 124 color ffffff on b0b0b0 font text",
                     "text '&Open' (43,18)-(67,31) 124 color 777777 on b0b0b0 font text",
                     "rect '&Open' (43,18)-(67,31) 524", "round (41,17)-(69,32) by 4,4 focusBkg"}),
              Calls(look));
}

TEST_F(IconBtnDraw, PlainDisabledAndPressedHasNone) {
    Look look;
    look.bDisabled = look.bSelected = true;
    EXPECT_EQ((Lines{"face (5,4)-(105,45) 4 2310",
                     "text '&Open' (44,19)-(68,32) 124 color 777777 on b1b1b1 font text",
                     "rect '&Open' (44,19)-(68,32) 524", "round (42,18)-(70,33) by 4,4 focusBkg"}),
              Calls(look));
}

TEST_F(IconBtnDraw, PlainWithAnIcon) {
    Look look;
    look.bIcon = true;
    // 24 + 2 + 16 of 100, 16 of 41: at (5 + 29, 4 + 12); the text 18 further right.
    EXPECT_EQ((Lines{"face (5,4)-(105,45) 4 2010",
                     "text '&Open' (52,16)-(76,32) 124 color 101010 on b0b0b0 font text",
                     "rect '&Open' (52,16)-(76,32) 524", "round (50,15)-(78,30) by 4,4 focusBkg",
                     "icon normal (34,16) 16x16 0 bkg 3"}),
              Calls(look));
}

TEST_F(IconBtnDraw, PlainWithAnIconAlone) {
    Look look;
    look.bIcon = look.bFocused = true;
    look.pszText = L"";
    // 16 of 100, 16 of 41.
    EXPECT_EQ((Lines{"face (5,4)-(105,45) 4 2010", "round (47,16)-(63,32) by 4,4 focusText",
                     "icon normal (47,16) 16x16 0 bkg 3"}),
              Calls(look));
}

TEST_F(IconBtnDraw, PlainWithNothing) {
    Look look;
    look.pszText = L"";
    EXPECT_EQ((Lines{"face (5,4)-(105,45) 4 2010", "round (55,24)-(55,24) by 4,4 focusBkg"}),
              Calls(look));
}

TEST_F(IconBtnDraw, Link) {
    Look look;
    look.dwFlags = 7;
    EXPECT_EQ((Lines{"text '&Open' (43,18)-(67,31) 124 color bb0000 on b0b0b0 font link",
                     "rect '&Open' (43,18)-(67,31) 524", "round (41,17)-(69,32) by 4,4 bkg",
                     "line (43,32)-(67,32) bkg", "line (43,32)-(67,32) linkSolid"}),
              Calls(look));
}

TEST_F(IconBtnDraw, LinkUnderTheMouse) {
    Look look;
    look.dwFlags = 7;
    look.bHover = true;
    EXPECT_EQ((Lines{"text '&Open' (43,18)-(67,31) 124 color 0000bb on b0b0b0 font link",
                     "rect '&Open' (43,18)-(67,31) 524", "round (41,17)-(69,32) by 4,4 bkg",
                     "line (43,32)-(67,32) bkg", "line (43,32)-(67,32) hoverSolid"}),
              Calls(look));
}

TEST_F(IconBtnDraw, LinkWithTheFocus) {
    Look look;
    look.dwFlags = 7;
    look.bFocused = true;
    EXPECT_EQ((Lines{"text '&Open' (43,18)-(67,31) 124 color bb0000 on b0b0b0 font link",
                     "rect '&Open' (43,18)-(67,31) 524", "round (41,17)-(69,32) by 4,4 bkg",
                     "line (43,32)-(67,32) bkg", "round (41,17)-(69,32) by 4,4 linkDotted"}),
              Calls(look));
    look.bHover = true;
    EXPECT_EQ("round (41,17)-(69,32) by 4,4 hoverDotted", Calls(look).back());
}

TEST_F(IconBtnDraw, LinkPressedStaysWhereItIs) {
    Look look;
    look.dwFlags = 7;
    look.bSelected = look.bChecked = true;
    EXPECT_EQ((Lines{"text '&Open' (43,18)-(67,31) 124 color ffffff on b0b0b0 font link",
                     "rect '&Open' (43,18)-(67,31) 524", "round (41,17)-(69,32) by 4,4 bkg",
                     "line (43,32)-(67,32) bkg", "line (43,32)-(67,32) linkSolid"}),
              Calls(look));
}

TEST_F(IconBtnDraw, LinkDisabledIsGreyWithAWhiteShadowAndADashedUnderline) {
    Look look;
    look.dwFlags = 7;
    look.bDisabled = true;
    EXPECT_EQ((Lines{"text '&Open' (44,19)-(68,32) 124 color ffffff on b0b0b0 font link",
                     "text '&Open' (43,18)-(67,31) 124 color 777777 on b0b0b0 font link",
                     "rect '&Open' (43,18)-(67,31) 524", "round (41,17)-(69,32) by 4,4 bkg",
                     "line (43,32)-(67,32) bkg", "line (43,32)-(67,32) grayDashed"}),
              Calls(look));
}

TEST_F(IconBtnDraw, LinkWithAnIconAndNoTextIsTheIconAlone) {
    Look look;
    look.dwFlags = 7;
    look.pszText = L"";
    look.bIcon = true;
    for (bool bFocused : {false, true}) {
        look.bFocused = bFocused;
        EXPECT_EQ((Lines{"icon normal (47,16) 16x16 0 bkg 3"}), Calls(look));
    }
}

TEST_F(IconBtnDraw, LinkShowsItsOtherIconUnderTheMouse) {
    Look look;
    look.dwFlags = 7;
    look.pszText = L"";
    look.bIcon = look.bHoverIcon = true;
    EXPECT_EQ((Lines{"icon normal (47,16) 16x16 0 bkg 3"}), Calls(look));
    look.bHover = true;
    EXPECT_EQ((Lines{"icon hover (47,16) 16x16 0 bkg 3"}), Calls(look));
    look.bHoverIcon = false;
    EXPECT_EQ((Lines{"icon normal (47,16) 16x16 0 bkg 3"}), Calls(look));
    look.bIcon = false;
    look.bHoverIcon = true;
    EXPECT_EQ((Lines{}), Calls(look)) << "without the first there is no second";
}

// As an application writes it: a link, centred vertically, its left edge at 2.
TEST_F(IconBtnDraw, LinkAtTheLeftEdgeUsesNoY) {
    Look look;
    look.dwFlags = 5;
    look.x = 2;
    look.y = kCommonValue;
    look.bIcon = true;
    EXPECT_EQ((Lines{"text '&Open' (20,16)-(44,32) 124 color bb0000 on b0b0b0 font link",
                     "rect '&Open' (20,16)-(44,32) 524", "round (18,15)-(46,30) by 4,4 bkg",
                     "line (20,30)-(44,30) bkg", "line (20,30)-(44,30) linkSolid",
                     "icon normal (2,16) 16x16 0 bkg 3"}),
              Calls(look));
}

struct PlaceCase {
    const char* pszName;
    unsigned long dwFlags;
    RECT rc;
    const char* pszText; // where "Open" goes at (7, 9)
};
void PrintTo(const PlaceCase& row, std::ostream* pOut) { *pOut << row.pszName; }
class IconBtnPlace : public IconBtnDraw, public testing::WithParamInterface<PlaceCase> {};

TEST_P(IconBtnPlace, IsCentredOrFixedForEachAxis) {
    Look look;
    look.dwFlags = GetParam().dwFlags;
    look.bHover = false;
    Lines lines = Calls(look, GetParam().rc);
    std::string strText = lines[look.dwFlags & kIconLink ? 0 : 1];
    EXPECT_EQ(std::string("text '&Open' ") + GetParam().pszText,
              strText.substr(0, strText.find(" 124")));
}

INSTANTIATE_TEST_SUITE_P(
    Flags, IconBtnPlace,
    testing::Values(PlaceCase{"PlainCentred", 3, kItem, "(43,18)-(67,31)"},
                    PlaceCase{"PlainVertically", 1, kItem, "(7,18)-(31,31)"},
                    PlaceCase{"PlainHorizontally", 2, kItem, "(43,9)-(67,22)"},
                    PlaceCase{"PlainFixed", 0, kItem, "(7,9)-(31,22)"},
                    PlaceCase{"LinkCentred", 7, kItem, "(43,18)-(67,31)"},
                    PlaceCase{"LinkVertically", 5, kItem, "(7,18)-(31,31)"},
                    PlaceCase{"LinkHorizontally", 6, kItem, "(43,9)-(67,22)"},
                    PlaceCase{"LinkFixed", 4, kItem, "(7,9)-(31,22)"},
                    PlaceCase{"OddRestIsCut", 3, {0, 0, 29, 18}, "(2,2)-(26,15)"},
                    PlaceCase{"TooSmallIsCutTowardZero", 3, {5, 5, 24, 15}, "(3,4)-(27,17)"}),
    [](const auto& row) { return std::string(row.param.pszName); });

TEST_F(IconBtnDraw, ShiftsAlsoWhatIsFixed) {
    Look look;
    look.dwFlags = 0;
    look.bSelected = true;
    EXPECT_NE(std::string::npos, Calls(look)[1].find("(8,10)-(32,23)"));
}

TEST_F(IconBtnDraw, MeasuresTheTextWithoutItsFirstAmpersand) {
    const struct {
        const wchar_t *pszText, *pszMeasured;
    } rows[] = {{L"&Open", L"Open"}, {L"Open", L"Open"},  {L"O&pen", L"Open"}, {L"&A&B", L"A&B"},
                {L"A&&B", L"A&B"},   {L"Open&", L"Open"}, {L"&", L""}};
    for (const auto& row : rows) {
        Look look;
        look.pszText = row.pszText;
        MemoryPicture picture(120, 60);
        DrawLog log;
        Draw(look, picture, &log);
        ASSERT_EQ(1u, log.measured.size());
        EXPECT_EQ(row.pszMeasured, log.measured[0]);
        EXPECT_NE(std::string::npos, log.Take()[1].find("text '" + Narrow(row.pszText) + "'"))
            << "drawn as it stands";
    }
}

TEST_F(IconBtnDraw, ReadsUpTo127CharactersOfTheText) {
    for (int cch : {126, 127, 128, 500}) {
        std::wstring str(static_cast<size_t>(cch), L'x');
        Look look;
        look.pszText = str.c_str();
        MemoryPicture picture(120, 60);
        DrawLog log;
        Draw(look, picture, &log);
        EXPECT_EQ(static_cast<size_t>(std::min(cch, 127)), log.measured[0].size());
        EXPECT_NE(std::string::npos,
                  log.Take()[1].find("'" + std::string(std::min(cch, 127), 'x') + "'"));
    }
}

TEST_F(IconBtnDraw, PrefersItsOwnFont) {
    LOGFONTW lf{};
    lf.lfHeight = -30;
    HFONT hfont = ::CreateFontIndirectW(&lf);
    for (unsigned long dwFlags : {3ul, 7ul}) {
        Look look;
        look.dwFlags = dwFlags;
        MemoryPicture picture(120, 60);
        DrawLog log;
        Draw(look, picture, &log, kItem, hfont);
        Lines lines = log.Take();
        EXPECT_NE(std::string::npos, lines[dwFlags & 4 ? 0 : 1].find("font other"));
    }
    ::DeleteObject(hfont);
}

// By the rules, in every state

SIZE MeasureText(HDC hdc, HFONT hfont, std::wstring str) {
    if (auto n = str.find(L'&'); n != std::wstring::npos) str.erase(n, 1);
    HGDIOBJ hBefore = ::SelectObject(hdc, hfont);
    SIZE size{};
    ::GetTextExtentPoint32W(hdc, str.c_str(), static_cast<int>(str.size()), &size);
    ::SelectObject(hdc, hBefore);
    return size;
}

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

// The context and the face

TEST_F(IconBtnDraw, LeavesTheContextAsItWas) {
    MemoryPicture picture(120, 60);
    ::SetTextColor(picture, RGB(1, 2, 3));
    ::SetBkColor(picture, RGB(4, 5, 6));
    ::SetBkMode(picture, TRANSPARENT);
    HGDIOBJ hFont = ::GetCurrentObject(picture, OBJ_FONT);
    HGDIOBJ hPen = ::GetCurrentObject(picture, OBJ_PEN);
    HGDIOBJ hBrush = ::GetCurrentObject(picture, OBJ_BRUSH);
    for (unsigned long dwFlags : {3ul, 7ul}) {
        Look look;
        look.dwFlags = dwFlags;
        look.bFocused = look.bDisabled = look.bIcon = true;
        Draw(look, picture, nullptr);
    }
    EXPECT_EQ(RGB(1, 2, 3), ::GetTextColor(picture));
    EXPECT_EQ(RGB(4, 5, 6), ::GetBkColor(picture));
    EXPECT_EQ(TRANSPARENT, ::GetBkMode(picture));
    EXPECT_EQ(hFont, ::GetCurrentObject(picture, OBJ_FONT));
    EXPECT_EQ(hPen, ::GetCurrentObject(picture, OBJ_PEN));
    EXPECT_EQ(hBrush, ::GetCurrentObject(picture, OBJ_BRUSH));
    EXPECT_EQ(1, ::SaveDC(picture)) << "no state is left saved";
}

/// A picture in the place of a context for the display.
struct Screen {
    static HDC WINAPI Create(LPCWSTR pszDriver, LPCWSTR, LPCWSTR, const DEVMODEW*) {
        bDisplay = pszDriver && wcscmp(pszDriver, L"DISPLAY") == 0;
        HDC hdc = ::CreateCompatibleDC(nullptr);
        ::SelectObject(hdc, hbm);
        return hdc;
    }
    static inline HBITMAP hbm = nullptr;
    static inline bool bDisplay = false;
};

TEST_F(IconBtnDraw, WithoutAContextItTakesTheDisplays) {
    void* pBits = nullptr;
    Screen::hbm = MakeDibSection(120, 60, &pBits);
    Look look;
    look.dwFlags = 7;
    {
        ReplaceImport create(__imp_CreateDCW, &Screen::Create);
        Draw(look, nullptr, nullptr);
    }
    EXPECT_TRUE(Screen::bDisplay);
    const auto* p = static_cast<const Pixel*>(pBits);
    EXPECT_TRUE(std::any_of(p, p + 120 * 60, [](Pixel pixel) { return pixel != 0; }));
    EXPECT_TRUE(::DeleteObject(Screen::hbm)) << "the context is gone";
}

TEST_F(IconBtnDraw, ASubclassDrawsAnotherFace) {
    ProbeIconBtn button(0, 0, 3, 0, 0);
    std::vector<unsigned> states;
    RECT rcFace{};
    button.onDrawButton = [&](HDC, RECT* prc, unsigned state) {
        states.push_back(state);
        rcFace = *prc;
    };
    ASSERT_EQ(1, button.Subclass(window));
    MemoryPicture picture(120, 60);
    DrawLog log;
    DRAWITEMSTRUCT item{};
    item.hDC = picture;
    item.rcItem = kItem;
    const struct {
        UINT uItemState;
        unsigned __int64 qwCheck;
        unsigned uExpected;
    } rows[] = {{0, 0, 0x2010},
                {ODS_SELECTED, 0, 0x2210},
                {ODS_DISABLED, 0, 0x2110},
                {0, 1, 0x2410},
                {ODS_FOCUS | ODS_DEFAULT, 0, 0x2010},
                {ODS_SELECTED | ODS_DISABLED | ODS_FOCUS, 1, 0x2710}};
    for (const auto& row : rows) {
        states.clear();
        button.dwCheck = row.qwCheck;
        item.itemState = row.uItemState;
        button.OnDrawItem(&item);
        EXPECT_EQ((std::vector<unsigned>{row.uExpected}), states);
        EXPECT_TRUE(::EqualRect(&kItem, &rcFace));
        for (const std::string& str : log.Take()) EXPECT_NE(0u, str.find("face"));
    }
    button.dwFlags = 7;
    states.clear();
    button.OnDrawItem(&item);
    EXPECT_TRUE(states.empty()) << "a link has no face";
    button.Unsubclass();
}

TEST_F(IconBtnDraw, FrameAndUnderlineTakeThePenThatIsSelected) {
    MemoryPicture picture(120, 60);
    DrawLog log;
    ::SelectObject(picture, Btn::penGrayDotted);
    RECT rc{10, 20, 50, 40};
    first.DrawFocus(picture, rc);
    first.DrawLink(picture, rc);
    EXPECT_EQ((Lines{"round (10,20)-(50,40) by 4,4 grayDotted filled",
                     "line (12,40)-(48,40) grayDotted"}),
              log.Take());
}

TEST_F(IconBtnDraw, DrawsWithoutAWindow) {
    ProbeIconBtn button(static_cast<unsigned>(-IDI_DLG_CLOSE), 0, 3, 0, 0);
    MemoryPicture picture(120, 60);
    DRAWITEMSTRUCT item{};
    item.hDC = picture;
    item.rcItem = kItem;
    DrawLog log;
    log.hicon = button.hIcon;
    button.OnDrawItem(&item);
    EXPECT_EQ((Lines{"face (5,4)-(105,45) 4 2010", "round (47,16)-(63,32) by 4,4 focusBkg",
                     "icon normal (47,16) 16x16 0 bkg 3"}),
              log.Take());
}

// Pixels

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
