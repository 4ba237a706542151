// The drawing calls of an icon button, worked out by hand, and what else it does when it draws.
#include "buttons/display_picture.h"
#include "buttons/icon_look.h"

#include <gtest/gtest.h>
#include <algorithm>
#include <string>
#include <vector>

namespace {
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

TEST_F(IconBtnDraw, WithoutAContextItTakesTheDisplays) {
    void* pBits = nullptr;
    DisplayPicture::hbm = MakeDibSection(120, 60, &pBits);
    Look look;
    look.dwFlags = 7;
    {
        ReplaceImport create(__imp_CreateDCW, &DisplayPicture::Create);
        Draw(look, nullptr, nullptr);
    }
    EXPECT_TRUE(DisplayPicture::bDisplay);
    const auto* p = static_cast<const Pixel*>(pBits);
    EXPECT_TRUE(std::any_of(p, p + 120 * 60, [](Pixel pixel) { return pixel != 0; }));
    EXPECT_TRUE(::DeleteObject(DisplayPicture::hbm)) << "the context is gone";
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
} // namespace
