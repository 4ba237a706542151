#include "richtext/engine/html_probe.h"
#include "richtext/engine/recording_device.h"
#include "support/gui_objects.h"
#include <gtest/gtest.h>
#include <string>
#include <vector>

extern "C" FARPROC __imp_CreateFontIndirectW;

struct FontTagCase {
    const wchar_t* pszName;
    void (*fnChange)(LOGFONTW& lf);
};
constexpr FontTagCase kFontTags[] = {
    {L"B", [](LOGFONTW& lf) { lf.lfWeight = 700; }},
    {L"I", [](LOGFONTW& lf) { lf.lfItalic = 1; }},
    {L"U", [](LOGFONTW& lf) { lf.lfUnderline = 1; }},
    {L"H",
     [](LOGFONTW& lf) {
         lf.lfWeight = 900;
         lf.lfHeight += lf.lfHeight < 0 ? -4 : 4;
     }},
    {L"BIG", [](LOGFONTW& lf) { lf.lfHeight += lf.lfHeight < 0 ? -2 : 2; }},
    {L"SMALL", [](LOGFONTW& lf) { lf.lfHeight -= lf.lfHeight < 0 ? -2 : 2; }},
    {L"A", [](LOGFONTW& lf) { lf.lfUnderline = 1; }},
    {L"A1", [](LOGFONTW& lf) { lf.lfUnderline = 1; }},
    {L"A2", [](LOGFONTW& lf) { lf.lfUnderline = 1; }},
    {L"A3", [](LOGFONTW& lf) { lf.lfUnderline = 1; }},
    {L"A4", [](LOGFONTW& lf) { lf.lfUnderline = 1; }},
    {L"A5", [](LOGFONTW& lf) { lf.lfUnderline = 1; }},
    {L"A6", [](LOGFONTW& lf) { lf.lfUnderline = 1; }},
    {L"A7", [](LOGFONTW& lf) { lf.lfUnderline = 1; }},
    {L"A8", [](LOGFONTW& lf) { lf.lfUnderline = 1; }},
    {L"A9", [](LOGFONTW& lf) { lf.lfUnderline = 1; }},
    {L"AA", [](LOGFONTW& lf) { lf.lfQuality = 4; }},
    {L"CT", [](LOGFONTW& lf) { lf.lfQuality = 5; }},
    {L"D", [](LOGFONTW& lf) { lf.lfStrikeOut = 1; }},
};

std::wstring Tagged(const std::wstring& strTag, const std::wstring& strText) {
    return L"<" + strTag + L">" + strText + L"</" + strTag + L">";
}

LOGFONTW FontOfHandle(HGDIOBJ hfont) {
    LOGFONTW lf{};
    ::GetObjectW(hfont, sizeof(lf), &lf);
    return lf;
}

bool SameFont(const LOGFONTW& lf, const LOGFONTW& lfOther) {
    return std::memcmp(&lf, &lfOther, offsetof(LOGFONTW, lfFaceName)) == 0 &&
           wcscmp(lf.lfFaceName, lfOther.lfFaceName) == 0;
}

bool IsLinkName(const std::wstring& strTag) { return strTag[0] == L'A' && strTag != L"AA"; }

TEST(DrawHTMLTags, EachFontTagChangesItsAttributesAndNothingElse) {
    for (int nHeight : {-20, 20, -11}) {
        for (const FontTagCase& row : kFontTags) {
            HtmlStage stage(&TenPixels, nHeight);
            auto runs = stage.Paint(Tagged(row.pszName, L"x") + L"y", TallRect());
            ASSERT_EQ(2u, runs.size()) << row.pszName;
            LOGFONTW lf = FontOfHandle(stage.font);
            EXPECT_TRUE(SameFont(lf, runs[1].font)) << row.pszName;
            row.fnChange(lf);
            EXPECT_TRUE(SameFont(lf, runs[0].font)) << row.pszName << nHeight;
            EXPECT_EQ(IsLinkName(row.pszName) ? kTestLink : kTestText, runs[0].crText);
            EXPECT_EQ(kTestText, runs[1].crText);
        }
    }
}

TEST(DrawHTMLTags, LowerCaseFontTagsAreTheSame) {
    for (const FontTagCase& row : kFontTags) {
        std::wstring strLower = row.pszName;
        for (wchar_t& ch : strLower) ch = static_cast<wchar_t>(towlower(ch));
        HtmlStage stage;
        auto runs = stage.Paint(L"<" + strLower + L">x</" + row.pszName + L">", TallRect());
        ASSERT_EQ(1u, runs.size());
        LOGFONTW lf = FontOfHandle(stage.font);
        row.fnChange(lf);
        EXPECT_TRUE(SameFont(lf, runs[0].font)) << row.pszName;
    }
}

TEST(DrawHTMLTags, SmallNeverTurnsTheHeightOver) {
    HtmlStage stage(&TenPixels, -2);
    auto runs = stage.Paint(L"<SMALL><SMALL>x</SMALL>y</SMALL>z", TallRect());
    ASSERT_EQ(3u, runs.size());
    EXPECT_EQ(-1, runs[0].font.lfHeight);
    EXPECT_EQ(-1, runs[1].font.lfHeight);
    EXPECT_EQ(-2, runs[2].font.lfHeight);
}

struct ColorTagCase {
    const wchar_t* pszName;
    COLORREF cr;
};
constexpr ColorTagCase kColorTags[] = {
    {L"RED", 0x000080},   {L"GREEN", 0x008000},   {L"BLUE", 0x800000},   {L"GREY", 0x808080},
    {L"LTRED", 0x0000C0}, {L"LTGREEN", 0x00C000}, {L"LTBLUE", 0xC00000}, {L"LTGREY", 0xC0C0C0},
    {L"DKRED", 0x000040}, {L"DKGREEN", 0x004000}, {L"DKGREY", 0x404040},
};

TEST(DrawHTMLTags, EachColorTagHasItsColor) {
    for (const ColorTagCase& row : kColorTags) {
        HtmlStage stage;
        auto runs = stage.Paint(Tagged(row.pszName, L"x") + L"y", TallRect());
        ASSERT_EQ(2u, runs.size()) << row.pszName;
        EXPECT_EQ(row.cr, runs[0].crText) << row.pszName;
        EXPECT_EQ(kTestText, runs[1].crText) << row.pszName;
        EXPECT_TRUE(SameFont(FontOfHandle(stage.font), runs[0].font)) << row.pszName;
    }
}

TEST(DrawHTMLTags, ColorComesBackWithoutItsClosingTag) {
    HtmlStage stage;
    stage.Paint(L"<RED>x<LTBLUE>y", TallRect());
    EXPECT_EQ(kTestText, ::GetTextColor(stage.device));
}

TEST(DrawHTMLTags, DarkBlueIsNoTag) {
    HtmlStage stage;
    auto runs = stage.Paint(L"<RED>a<DKBLUE>x</DKBLUE>y</RED>z", TallRect());
    // The closing tag undoes the red one; what is behind it is printed in the colour before.
    EXPECT_EQ(L"a<DKBLUE>xyz ", JoinRuns(runs));
    ASSERT_EQ(4u, runs.size());
    EXPECT_EQ(0x000080u, runs[1].crText);
    EXPECT_EQ(kTestText, runs[2].crText);
    EXPECT_EQ(kTestText, runs[3].crText);
}

TEST(DrawHTMLTags, ClosingTagUndoesTheInnermostOpenOne) {
    HtmlStage stage;
    auto runs = stage.Paint(L"<B><I><U>a</B>b</CT>c</RED>d", TallRect());
    ASSERT_EQ(4u, runs.size());
    EXPECT_EQ(1, runs[0].font.lfUnderline);
    EXPECT_EQ(0, runs[1].font.lfUnderline);
    EXPECT_EQ(1, runs[1].font.lfItalic);
    EXPECT_EQ(0, runs[2].font.lfItalic);
    EXPECT_EQ(FW_BOLD, runs[2].font.lfWeight);
    EXPECT_EQ(FW_NORMAL, runs[3].font.lfWeight);
    EXPECT_EQ(HGDIOBJ(stage.font), ::GetCurrentObject(stage.device, OBJ_FONT));
}

TEST(DrawHTMLTags, StrayEndOfLiteralTextVanishes) {
    HtmlStage stage;
    EXPECT_EQ(L"ab ", JoinRuns(stage.Paint(L"a</T>b", TallRect())));
    auto runs = stage.Paint(L"</T>DKBLUE>x</DKBLUE>", TallRect());
    ASSERT_EQ(1u, runs.size());
    EXPECT_EQ(L"x", runs[0].strText);
    EXPECT_EQ(0x400000u, runs[0].crText);
}

TEST(DrawHTMLTags, NestedCenterEndsTheOuterOne) {
    HtmlStage stage;
    auto runs = stage.Paint(L"<CENTER>a<CENTER>b</CENTER>c</CENTER>", TallRect());
    ASSERT_LE(3u, runs.size());
    EXPECT_EQ(210, runs[0].x);
    EXPECT_EQ(220, runs[1].x);
    EXPECT_EQ(30, runs[2].x) << "at the pen, not centred";
}

TEST(DrawHTMLTags, NoBreakLeftOpenHoldsForLaterPasses) {
    HtmlStage stage;
    EXPECT_EQ(L"a b ", JoinRuns(stage.Paint(L"a  b", TallRect())));
    stage.Paint(L"x<NOBR>y", TallRect());
    EXPECT_EQ(L"a  b ", JoinRuns(stage.Paint(L"a  b", TallRect())));
    EXPECT_EQ(L"a  b ", JoinRuns(stage.Paint(L"a  b", TallRect())));
    stage.Paint(L"</NOBR>", TallRect());
    EXPECT_EQ(L"a b ", JoinRuns(stage.Paint(L"a  b", TallRect())));
}

TEST(DrawHTMLTags, LiteralTextLeftOpenEndsWithThePass) {
    HtmlStage stage;
    EXPECT_EQ(L"<B>x ", JoinRuns(stage.Paint(L"<T><B>x", TallRect())));
    EXPECT_EQ(L"x", JoinRuns(stage.Paint(L"<B>x</B>", TallRect())));
}

TEST(DrawHTMLTags, LinkInTheTextsColorChangesNoColor) {
    HtmlStage stage;
    stage.tools.SetLinkColor(kTestText);
    auto runs = stage.Paint(L"<A>a</A>b", TallRect());
    ASSERT_EQ(2u, runs.size());
    EXPECT_EQ(kTestText, runs[0].crText);
    EXPECT_EQ(kTestText, runs[1].crText);
    EXPECT_EQ(1, runs[0].font.lfUnderline);
}

TEST(DrawHTMLTags, ClosedTagsLeaveFontAndColorAsTheyWere) {
    HtmlStage stage;
    stage.Paint(L"<H>a<B>b<A>c</A></B></H><RED>d<I>e</I></RED>", TallRect());
    EXPECT_EQ(HGDIOBJ(stage.font), ::GetCurrentObject(stage.device, OBJ_FONT));
    EXPECT_EQ(kTestText, ::GetTextColor(stage.device));
    EXPECT_EQ(TRANSPARENT, ::GetBkMode(stage.device));
}

TEST(DrawHTMLTags, UnclosedFontStaysSelectedUntilTheNextPass) {
    HtmlStage stage;
    stage.Paint(L"a<B>b<I>c", TallRect());
    LOGFONTW lf = FontOfHandle(::GetCurrentObject(stage.device, OBJ_FONT));
    EXPECT_EQ(FW_BOLD, lf.lfWeight);
    EXPECT_EQ(1, lf.lfItalic);
    auto runs = stage.Paint(L"a", TallRect());
    ASSERT_EQ(1u, runs.size());
    EXPECT_EQ(FW_NORMAL, runs[0].font.lfWeight);
    EXPECT_EQ(HGDIOBJ(stage.font), ::GetCurrentObject(stage.device, OBJ_FONT));
}

TEST(DrawHTMLTags, NoFontIsLeftBehind) {
    constexpr const wchar_t* kTexts[] = {L"<B>x</B>",
                                         L"<B><I>x</B>y</I>",
                                         L"<B>x",
                                         L"<B><I><H>x",
                                         L"<RED><B>x</RED>y",
                                         L"<B><RED>x</B>y",
                                         L"<A>x<A1>y</A>z</A1>",
                                         L"<CENTER><B>x</CENTER></CENTER>",
                                         L"</B></B><B></I><I></B>x"};
    RecordingDevice device;
    TestFont font;
    auto drawAll = [&] {
        DrawHTML html(0);
        DrawHTMLLinks links;
        DrawHTMLTools tools(FontGui);
        tools.SetCustomFont(font);
        RECT rc = TallRect();
        for (const wchar_t* psz : kTexts) {
            html.Draw(DrawMeasure, device, &rc, psz, 1000, &links, &tools);
            html.Draw(DrawPaint, device, &rc, psz, 1000, &links, &tools);
        }
        ::SelectObject(device, font);
    };
    drawAll(); // what the platform makes once
    const int nBefore = CountGdiObjects();
    for (int i = 0; i < 20; ++i) drawAll();
    EXPECT_EQ(nBefore, CountGdiObjects());
}

TEST(DrawHTMLTags, LiteralTextStaysSoWhereItFillsTheLine) {
    HtmlStage stage;
    std::wstring strText;
    for (auto& run : stage.Paint((L"<T>" + std::wstring(262, L'i') + L"<B>x<BR></T>").c_str(),
                                 RECT{0, 0, 9000, 200})) {
        strText += run.strText;
        EXPECT_EQ(FW_NORMAL, run.font.lfWeight);
    }
    EXPECT_NE(std::wstring::npos, strText.find(L"<B>x<BR>")) << strText.size();
}

TEST(DrawHTMLTags, CrossedTagsStayOpenUpToALimit) {
    std::wstring str;
    for (int i = 0; i < 20000; ++i) str += L"<I><B></I>";
    RecordingDevice device;
    TestFont font;
    const int nBefore = CountGdiObjects();
    {
        DrawHTML html(0);
        DrawHTMLLinks links;
        DrawHTMLTools tools(FontGui);
        tools.SetCustomFont(font);
        RECT rc = TallRect();
        html.Draw(DrawMeasure, device, &rc, str.c_str(), static_cast<unsigned>(str.size()), &links,
                  &tools);
        EXPECT_LE(CountGdiObjects(), nBefore + DrawHTML::kMaxOpenTags + 1);
        ::SelectObject(device, font);
    }
    EXPECT_LE(CountGdiObjects(), nBefore + 1); // one that the platform made
}

TEST(DrawHTMLTags, NestingDeeperThanTheLimitIsText) {
    constexpr int kTags = 300, kOpen = DrawHTML::kMaxNesting - 1; // the text itself is the first
    std::wstring str;
    for (int i = 0; i < kTags; ++i) str += L"<B>";
    str += L"x";
    for (int i = 0; i < kTags; ++i) str += L"</B>";
    HtmlStage stage;
    auto runs = stage.Paint(str, TallRect(100'000));
    ASSERT_EQ(static_cast<std::size_t>(kTags - kOpen), runs.size());
    for (int i = 0; i < kTags - kOpen - 1; ++i) EXPECT_EQ(L"<B>", runs[i].strText);
    EXPECT_EQ(L"<B>x", runs.back().strText);
    EXPECT_EQ(HGDIOBJ(stage.font), ::GetCurrentObject(stage.device, OBJ_FONT));
}

TEST(DrawHTMLTags, ColorsAndCentringCountForTheNestingToo) {
    std::wstring str;
    for (int i = 0; i < 130; ++i) str += L"<RED><CENTER>";
    HtmlStage stage;
    auto runs = stage.Paint(str, TallRect(100'000));
    EXPECT_EQ(5u, runs.size());
    EXPECT_EQ(L"<CENTER><RED><CENTER><RED><CENTER> ", JoinRuns(runs));
}

HFONT WINAPI NoFont(const LOGFONTW*) { return nullptr; }

TEST(DrawHTMLTags, WithoutANewFontTheOldOneIsUsed) {
    HtmlStage stage;
    {
        ReplaceImport noFonts(__imp_CreateFontIndirectW, &NoFont);
        auto runs = stage.Paint(L"<A>x</A><B>y</B><I>z", TallRect());
        ASSERT_EQ(3u, runs.size());
        EXPECT_EQ(L"xyz ", JoinRuns(runs));
        EXPECT_EQ(kTestLink, runs[0].crText);
        EXPECT_EQ(FW_NORMAL, runs[1].font.lfWeight);
    }
    EXPECT_EQ(HGDIOBJ(stage.font), ::GetCurrentObject(stage.device, OBJ_FONT));
    EXPECT_EQ(DWORD(OBJ_FONT), ::GetObjectType(stage.font)) << "and is not deleted";
}
