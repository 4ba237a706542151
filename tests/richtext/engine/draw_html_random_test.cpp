#include "richtext/engine/html_probe.h"
#include "richtext/engine/model_gdi.h"
#include "support/gui_objects.h"
#include "support/guard_page.h"
#include "support/heap_count.h"
#include <gtest/gtest.h>
#include <algorithm>
#include <random>
#include <string>
#include <vector>

// Any text at all: nothing is read behind it, nothing is left behind, and it takes a time that
// grows as its length does.

constexpr const wchar_t* kPieces[] = {L"<B>",
                                      L"</B>",
                                      L"<I>",
                                      L"</i>",
                                      L"<u>",
                                      L"</U>",
                                      L"<H>",
                                      L"</H>",
                                      L"<BIG>",
                                      L"</BIG>",
                                      L"<SMALL>",
                                      L"</SMALL>",
                                      L"<A>",
                                      L"</A>",
                                      L"<A1>",
                                      L"</A1>",
                                      L"<a9>",
                                      L"</A9>",
                                      L"<AA>",
                                      L"</AA>",
                                      L"<CT>",
                                      L"</CT>",
                                      L"<D>",
                                      L"</D>",
                                      L"<RED>",
                                      L"</RED>",
                                      L"<DKBLUE>",
                                      L"</DKBLUE>",
                                      L"DKBLUE>",
                                      L"<LTGREY>",
                                      L"</LTGREY>",
                                      L"<BR>",
                                      L"<BRHALF>",
                                      L"<NOBR>",
                                      L"</NOBR>",
                                      L"<CENTER>",
                                      L"</CENTER>",
                                      L"<T>",
                                      L"</T>",
                                      L"&amp;",
                                      L"&lt;",
                                      L"&gt;",
                                      L"&nbsp;",
                                      L"&nbsp",
                                      L"&",
                                      L"&;",
                                      L"<",
                                      L">",
                                      L"</",
                                      L"<B",
                                      L"/",
                                      L"\\",
                                      L" ",
                                      L"  ",
                                      L"\t",
                                      L"\r\n",
                                      L"a",
                                      L"word",
                                      L"Long-and-longer",
                                      L"x y z",
                                      L"iiiiiiiiiiiiiiiiiiiiiiiiii",
                                      L"\xD83D\xDE00",
                                      L"\xFFFF"};

std::wstring RandomMarkup(std::mt19937& random, int nMost) {
    std::wstring str;
    for (unsigned n = random() % nMost; n; --n) str += kPieces[random() % std::size(kPieces)];
    return str;
}

constexpr int kNoBottom = 1'000'000;
/// Every other one is higher than any text.
RECT RandomRect(std::mt19937& random) {
    const int x = static_cast<int>(random() % 3) * 10 - 10, y = static_cast<int>(random() % 20);
    const int cy = random() % 2 ? kNoBottom : static_cast<int>(random() % 200);
    return {x, y, x + static_cast<int>(random() % 300), y + cy};
}

/// What a pass drew: a number that is another one for other texts or places from left to right.
unsigned nDrawn;
bool bBadText;
void NoteText(int x, int, const wchar_t* psz, int cch) {
    if (cch <= 0 || cch >= 264) bBadText = true;
    nDrawn = nDrawn * 31 + static_cast<unsigned>(x);
    for (int i = 0; i < cch; ++i) nDrawn = nDrawn * 31 + psz[i];
}

TEST(DrawHTMLAnything, RandomMarkupIsDrawnAlikeInBothPassesAndLeavesNothing) {
    constexpr int kTexts = 1'000'000, kTextsOfAnObject = 100;
    const long nBlocks = CountLiveBlocks();
    {
        ModelGdi gdi;
        gdi.fnOnText = &NoteText;
        bBadText = false;
        DrawHTMLTools tools(FontCustom);
        tools.SetCustomFont(gdi.GetBaseFont());
        GuardedArea area(4096);
        std::mt19937 random(4102);
        int nUnlike = 0;
        for (int i = 0; i < kTexts / kTextsOfAnObject; ++i) {
            HtmlProbe html;
            DrawHTMLLinks links;
            for (int n = 0; n < kTextsOfAnObject; ++n) {
                const std::wstring str = RandomMarkup(random, 16);
                const wchar_t* psz = area.Put(str);
                RECT rc = RandomRect(random);
                const unsigned nLength =
                    random() % 4 ? static_cast<unsigned>(str.size()) : random() % 40;
                const int bNoBreak = html.bNoBreak;
                nDrawn = 0;
                html.Draw(DrawMeasure, gdi.GetDC(), &rc, psz, nLength, &links, &tools);
                const unsigned nMeasured = std::exchange(nDrawn, 0);
                const unsigned nLinks = links.GetLinkCount();
                // Whether words break is left over from pass to pass. Where the bottom ends a
                // text the passes may differ: one knows how high the line will get.
                const bool bSame = bNoBreak == html.bNoBreak && rc.bottom >= kNoBottom;
                html.Draw(DrawPaint, gdi.GetDC(), nullptr, psz, nLength, &links, &tools);
                if (bSame && (nDrawn != nMeasured || nLinks != links.GetLinkCount())) ++nUnlike;
                ASSERT_FALSE(bBadText) << "text " << i << '/' << n;
                ASSERT_EQ(0, gdi.GetFaults()) << "text " << i << '/' << n;
                ASSERT_EQ(nullptr, html.pCurrentLink);
                ASSERT_GE(16, gdi.GetLiveFonts());
            }
            ::SelectObject(gdi.GetDC(), gdi.GetBaseFont()); // before the object goes
        }
        EXPECT_EQ(0, nUnlike);
        EXPECT_EQ(0, gdi.GetLiveFonts());
    }
    EXPECT_EQ(nBlocks, CountLiveBlocks());
}

TEST(DrawHTMLAnything, RandomMarkupLeavesNoObjectOfThePlatforms) {
    HDC hdc = ::CreateCompatibleDC(nullptr);
    std::mt19937 random(4103);
    GuardedArea area(4096);
    DrawHTMLTools tools(FontGui);
    auto drawSome = [&](int nTexts) {
        DrawHTML html(0);
        DrawHTMLLinks links;
        for (int i = 0; i < nTexts; ++i) {
            const std::wstring str = RandomMarkup(random, 16);
            const wchar_t* psz = area.Put(str);
            RECT rc = RandomRect(random);
            const auto nLength = static_cast<unsigned>(str.size());
            html.Draw(DrawMeasure, hdc, &rc, psz, nLength, &links, &tools);
            html.Draw(DrawPaint, hdc, &rc, psz, nLength, &links, &tools);
        }
        ::SelectObject(hdc, tools.GetFont());
    };
    drawSome(100);
    const int nBefore = CountGdiObjects();
    drawSome(3000);
    EXPECT_EQ(nBefore, CountGdiObjects());
    ::DeleteDC(hdc);
}

TEST(DrawHTMLAnything, RandomCharactersAreDrawn) {
    ModelGdi gdi;
    DrawHTMLTools tools(FontCustom);
    tools.SetCustomFont(gdi.GetBaseFont());
    GuardedArea area(4096);
    std::mt19937 random(4104);
    for (int i = 0; i < 50'000; ++i) {
        std::wstring str;
        const unsigned nRange = i % 2 ? 0x40 : 0xFFFF;
        for (unsigned n = random() % 60; n; --n)
            str += static_cast<wchar_t>(1 + (i % 2 ? 0x1F : 0) + random() % nRange);
        const wchar_t* psz = area.Put(str);
        RECT rc = RandomRect(random);
        DrawHTML html(0);
        DrawHTMLLinks links;
        html.Draw(DrawMeasure, gdi.GetDC(), &rc, psz, 100, &links, &tools);
        html.Draw(DrawPaint, gdi.GetDC(), &rc, psz, 100, &links, &tools);
        ::SelectObject(gdi.GetDC(), gdi.GetBaseFont());
        const unsigned n = DrawHTML::GetHTMLTextStripTags(psz, nullptr, 0);
        ASSERT_LE(n, 2 * str.size() + 1);
    }
    EXPECT_EQ(0, gdi.GetFaults());
}

struct LongCase {
    const char* pszName;
    const wchar_t* pszPiece; // again and again
    int nWidth;
};
constexpr LongCase kLongCases[] = {
    {"Words", L"word and word ", 400},
    {"OneWord", L"abcdefghij", 400},
    {"OneWordInANarrowPlace", L"abcdefghij", 32},
    {"NothingFits", L"abcdefghij ", 5},
    {"Blanks", L"          ", 400},
    {"NoBreak", L"<NOBR>a b c d", 100'000'000},
    {"Breaks", L"<BR>", 400},
    {"OpenBold", L"<B>", 400},
    {"OpenBoldWithWords", L"<B>word ", 400},
    {"CloseBold", L"</B>", 400},
    {"OpenAndCloseBold", L"<B>x</B>", 400},
    {"OpenColors", L"<RED><LTBLUE>", 400},
    {"OpenCenter", L"<CENTER>x", 400},
    {"OpenLinks", L"<A>x<A1>", 400},
    {"OpenLinksThatAllClose", L"<A>x</A>", 400},
    {"AllKindsOpen", L"<B><I><U><H><BIG><SMALL><A><AA><CT><D><RED><GREEN><BLUE><CENTER>x", 400},
    {"Crossed", L"<B><I>x</B></I>", 400},
    {"InnerTagsNeverClose", L"<RED><B>x</RED>", 400},
    {"InnerLinksNeverClose", L"<CENTER><A>x</CENTER>", 400},
    {"Brackets", L"<<<<<<<<", 400},
    {"BracketsAndSlashes", L"</</", 400},
    {"Ampersands", L"&&&&&&&&", 400},
    {"HalfEntities", L"&amp", 400},
    {"Entities", L"&nbsp;&amp;", 400},
    {"Literal", L"<T><B>&amp;", 400},
    {"StrayLiteralEnds", L"</T>", 400},
    {"Slashes", L"\\\\\\\\////", 400},
    {"Nearly", L"</CENTER</SMALL<CENTER", 400},
};

class DrawHTMLHugeTexts : public testing::TestWithParam<LongCase> {};

std::wstring RepeatTo(const wchar_t* pszPiece, std::size_t n) {
    std::wstring str;
    str.reserve(n + wcslen(pszPiece));
    while (str.size() < n) str += pszPiece;
    return str;
}

TEST_P(DrawHTMLHugeTexts, RandomLengthOfAnyKindIsDrawn) {
    // A time that grew with the square of the length would be hours here; the bench looks closer.
    ModelGdi gdi;
    DrawHTMLTools tools(FontCustom);
    tools.SetCustomFont(gdi.GetBaseFont());
    DrawHTMLLinks links;
    for (std::size_t nUnits : {10'000, 1'000'000}) {
        const std::wstring str = RepeatTo(GetParam().pszPiece, nUnits);
        GuardedText text(str);
        DrawHTML html(0);
        RECT rc = {10, 5, 10 + GetParam().nWidth, 0x7FFFFFFF};
        EXPECT_LT(0, html.Draw(DrawMeasure, gdi.GetDC(), &rc, text.Get(),
                               static_cast<unsigned>(str.size()), &links, &tools));
        ::SelectObject(gdi.GetDC(), gdi.GetBaseFont());
    }
    EXPECT_EQ(0, gdi.GetFaults());
    links.Reset();
    EXPECT_EQ(0, gdi.GetLiveFonts()) << "the fonts go with the object";
}

INSTANTIATE_TEST_SUITE_P(Kinds, DrawHTMLHugeTexts, testing::ValuesIn(kLongCases),
                         [](const auto& row) { return std::string(row.param.pszName); });

TEST(DrawHTMLAnything, TenMegabytesOfRandomMarkupAreDrawn) {
    ModelGdi gdi;
    DrawHTMLTools tools(FontCustom);
    tools.SetCustomFont(gdi.GetBaseFont());
    std::mt19937 random(4105);
    std::wstring str;
    while (str.size() * sizeof(wchar_t) < 10u << 20) str += RandomMarkup(random, 30);
    GuardedText text(str);
    DrawHTMLLinks links;
    {
        DrawHTML html(0);
        RECT rc = {10, 5, 700, 0x7FFFFFFF};
        const int nHeight =
            html.Draw(DrawMeasure, gdi.GetDC(), &rc, text.Get(), 0x7FFFFFFF, &links, &tools);
        EXPECT_LT(1'000'000, nHeight);
        html.Draw(DrawPaint, gdi.GetDC(), &rc, text.Get(), 0x7FFFFFFF, &links, &tools);
        ::SelectObject(gdi.GetDC(), gdi.GetBaseFont());
    }
    EXPECT_EQ(0, gdi.GetFaults());
    EXPECT_EQ(0, gdi.GetLiveFonts());
}

TEST(DrawHTMLAnything, RandomMarkupBehindTenThousandOpenTagsIsDrawn) {
    HDC hdc = ::CreateCompatibleDC(nullptr);
    DrawHTMLTools tools(FontGui);
    DrawHTMLLinks links;
    std::mt19937 random(4108);
    for (const wchar_t* pszTag : {L"<B>", L"<RED>", L"<A>", L"<CENTER>"}) {
        const std::wstring strTags = RepeatTo(pszTag, wcslen(pszTag) * 10'000);
        const std::wstring str = strTags + RandomMarkup(random, 100) + RepeatTo(L"</B>", 40'000);
        DrawHTML html(0);
        RECT rc = {0, 0, 400, 0x7FFFFFFF};
        html.Draw(DrawMeasure, hdc, &rc, str.c_str(), static_cast<unsigned>(str.size()), &links,
                  &tools);
        html.Draw(DrawPaint, hdc, &rc, str.c_str(), static_cast<unsigned>(str.size()), &links,
                  &tools);
        EXPECT_EQ(HGDIOBJ(tools.GetFont()), ::GetCurrentObject(hdc, OBJ_FONT))
            << "ten thousand closing tags close them all";
    }
    ::DeleteDC(hdc);
}
