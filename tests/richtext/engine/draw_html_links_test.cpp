#include "richtext/engine/recording_device.h"
#include "support/heap_count.h"
#include "support/rect.h"
#include <gtest/gtest.h>
#include <string>
#include <vector>

std::vector<RECT> RectsOf(DrawHTMLLinkArea* pArea) {
    std::vector<RECT> rects;
    for (POS pos = pArea->GetHeadPos(); pos;)
        rects.push_back(*static_cast<RECT*>(pArea->GetNext(pos)));
    return rects;
}

DrawHTMLLinkArea* AreaAt(const DrawHTMLLinks& links, int nIndex) {
    POS pos = links.GetHeadPos();
    for (; nIndex; --nIndex) links.GetNext(pos);
    return static_cast<DrawHTMLLinkArea*>(links.GetAt(pos));
}

// --- the records themselves ---

TEST(DrawHTMLLinkAreas, RectBeginsAsAPoint) {
    DrawHTMLLinkArea area(7);
    EXPECT_EQ(nullptr, area.GetCurrentRect());
    EXPECT_EQ(7u, area.GetLinkID());
    area.StartRect(3, 4);
    EXPECT_EQ((RECT{3, 4, 3, 4}), *area.GetCurrentRect());
    EXPECT_EQ(0, area.IsPointOverLink(3, 4)) << "no point is in an empty one";
    area.EndRect(10, 20);
    EXPECT_EQ((RECT{3, 4, 10, 20}), *area.GetCurrentRect());
}

TEST(DrawHTMLLinkAreas, EndBelongsToTheLastRect) {
    DrawHTMLLinkArea area;
    area.EndRect(1, 2); // there is none
    area.StartRect(0, 0);
    area.EndRect(10, 10);
    area.StartRect(5, 20);
    area.EndRect(15, 30);
    EXPECT_EQ((std::vector<RECT>{{0, 0, 10, 10}, {5, 20, 15, 30}}), RectsOf(&area));
}

TEST(DrawHTMLLinkAreas, RightAndBottomAreOutside) {
    DrawHTMLLinkArea area;
    area.StartRect(10, 20);
    area.EndRect(30, 40);
    area.StartRect(-5, 41);
    area.EndRect(0, 50);
    struct {
        int x, y, nOver;
    } constexpr kPoints[] = {{10, 20, 1}, {29, 39, 1}, {30, 39, 0}, {29, 40, 0}, {9, 20, 0},
                             {10, 19, 0}, {-5, 41, 1}, {-1, 49, 1}, {0, 49, 0},  {-6, 45, 0},
                             {-5, 50, 0}, {-5, 40, 0}, {20, 45, 0}, {0, 0, 0}};
    for (const auto& pt : kPoints)
        EXPECT_EQ(pt.nOver, area.IsPointOverLink(pt.x, pt.y)) << pt.x << ',' << pt.y;
}

TEST(DrawHTMLLinkAreas, RectTurnedOverHoldsNothing) {
    DrawHTMLLinkArea area;
    area.StartRect(20, 0);
    area.EndRect(10, 40);
    for (int x = 0; x < 30; ++x)
        for (int y = 0; y < 50; ++y) EXPECT_EQ(0, area.IsPointOverLink(x, y));
}

TEST(DrawHTMLLinkAreas, TextEndsAtItsEndTheTerminatorOr512Characters) {
    DrawHTMLLinkArea area;
    EXPECT_EQ(nullptr, area.GetText());
    const std::wstring str = L"<B>ab</B> & c";
    area.AddText(str.c_str(), str.c_str() + 5);
    EXPECT_STREQ(L"<B>ab", area.GetText());
    area.AddText(str.c_str(), str.c_str() + 400);
    EXPECT_STREQ(str.c_str(), area.GetText()) << "the terminator; and the text before it is freed";
    area.AddText(str.c_str(), str.c_str());
    EXPECT_STREQ(L"", area.GetText());
    area.AddText(str.c_str() + 4, str.c_str());
    EXPECT_STREQ(L"", area.GetText());
    for (std::size_t n : {511, 512, 513, 2000}) {
        const std::wstring strLong(n, L'x');
        area.AddText(strLong.c_str(), strLong.c_str() + n);
        EXPECT_EQ(strLong.substr(0, 512), area.GetText()) << n;
    }
}

TEST(DrawHTMLLinkAreas, ListFreesItsAreas) {
    const long nBefore = CountLiveBlocks();
    {
        DrawHTMLLinks links;
        for (unsigned i = 0; i < 10; ++i) {
            auto* pArea = new DrawHTMLLinkArea(i);
            for (int n = 0; n < 5; ++n) pArea->StartRect(n, n);
            pArea->AddText(L"text", L"");
            links.AddTail(pArea);
        }
        EXPECT_EQ(10u, links.GetLinkCount());
        links.Reset();
        EXPECT_EQ(0u, links.GetLinkCount());
        EXPECT_EQ(nBefore, CountLiveBlocks());
        links.AddTail(new DrawHTMLLinkArea(1));
    }
    EXPECT_EQ(nBefore, CountLiveBlocks());
}

// --- as they come out of a text ---

struct LinkCase {
    const char* pszName;
    const wchar_t* pszMarkup;
    std::vector<unsigned> ids;            // less the first link's
    std::vector<std::vector<RECT>> rects; // of each link
    std::vector<std::wstring> texts;
    RECT rc = {10, 5, 412, 1005};
};

class DrawHTMLLinksOfTexts : public testing::TestWithParam<LinkCase> {};

TEST_P(DrawHTMLLinksOfTexts, HaveTheIdsRectanglesAndTextsOfTheRules) {
    const LinkCase& row = GetParam();
    HtmlStage stage;
    RECT rc = row.rc;
    for (DrawMode mode : {DrawMeasure, DrawPaint, DrawPaint}) {
        stage.Draw(mode, row.pszMarkup, &rc);
        ASSERT_EQ(row.ids.size(), stage.links.GetLinkCount()) << mode;
        for (int i = 0; i < static_cast<int>(row.ids.size()); ++i) {
            DrawHTMLLinkArea* pArea = AreaAt(stage.links, i);
            EXPECT_EQ(HtmlStage::kFirstLink + row.ids[i], pArea->GetLinkID()) << i;
            EXPECT_EQ(row.rects[i], RectsOf(pArea)) << i;
            EXPECT_EQ(row.texts[i], pArea->GetText()) << i;
        }
    }
}

const LinkCase kLinkCases[] = {
    {"None", L"x <B>y</B> <AA>z</AA>", {}, {}, {}},
    {"One", L"x <A>y</A> z", {0}, {{{20, 0, 30, 20}}}, {L"y"}},
    {"AllTen",
     L"<A>a</A><A1>b</A1><A2>c</A2><A3>d</A3><A4>e</A4><A5>f</A5><A6>g</A6><A7>h</A7>"
     L"<A8>i</A8><A9>j</A9>",
     {0, 1, 2, 3, 4, 5, 6, 7, 8, 9},
     {{{0, 0, 10, 20}},
      {{10, 0, 20, 20}},
      {{20, 0, 30, 20}},
      {{30, 0, 40, 20}},
      {{40, 0, 50, 20}},
      {{50, 0, 60, 20}},
      {{60, 0, 70, 20}},
      {{70, 0, 80, 20}},
      {{80, 0, 90, 20}},
      {{90, 0, 100, 20}}},
     {L"a", L"b", L"c", L"d", L"e", L"f", L"g", L"h", L"i", L"j"}},
    {"SecondLine", L"x<BR>y <a2>zz</a2>", {2}, {{{20, 21, 40, 41}}}, {L"zz"}},
    {"BlanksBelongToIt", L"x<A> y </A>z", {0}, {{{10, 0, 40, 20}}}, {L" y "}},
    {"TagsStayInTheText", L"<A><B>x</B>&amp;</A>", {0}, {{{0, 0, 20, 20}}}, {L"<B>x</B>&amp;"}},
    {"Empty", L"x<A></A>", {0}, {{{10, 0, 10, 20}}}, {L""}},
    {"Unclosed", L"x<A>y z", {0}, {{{10, 0, 50, 20}}}, {L"y z"}},
    {"AsHighAsItsLine", L"<A>x<H>y</H></A>", {0}, {{{0, 0, 20, 24}}}, {L"x<H>y</H>"}},
    // The first line is drawn to its right edge, the one between covers all, the last one begins at
    // the left.
    {"OverThreeLines",
     L"<A>aaaa bbbb cccc dddd eeee</A>",
     {0},
     {{{0, 0, 102, 20}, {0, 21, 102, 41}, {0, 42, 100, 62}}},
     {L"aaaa bbbb cccc dddd eeee"},
     {10, 5, 112, 1005}},
    {"WrappedBehindText",
     L"xxx <A>aaaa bbb</A> y",
     {0},
     {{{40, 0, 102, 20}, {0, 21, 30, 41}}},
     {L"aaaa bbb"},
     {10, 5, 112, 1005}},
    {"WrappedWhole",
     L"xxxxxxx <A>aaaa</A>",
     {0},
     {{{80, 0, 102, 20}, {0, 21, 40, 41}}},
     {L"aaaa"},
     {10, 5, 112, 1005}},
    {"LongWord",
     L"<A>abcdefghijklmno</A>",
     {0},
     {{{0, 0, 102, 20}, {0, 21, 50, 41}}},
     {L"abcdefghijklmno"},
     {10, 5, 112, 1005}},
    // A break touches no rectangle: it goes from its beginning to its end.
    {"BreakInside", L"x<A>y<BR>zzz</A>", {0}, {{{10, 0, 30, 41}}}, {L"y<BR>zzz"}},
    {"BreakToTheLeft", L"xx<A>aa<BR>b</A>", {0}, {{{20, 0, 10, 41}}}, {L"aa<BR>b"}},
    {"BreakThenWrap",
     L"<A>x<BR>aaaaaaa bbb</A>",
     {0},
     {{{0, 0, 102, 41}, {0, 42, 40, 62}}},
     {L"x<BR>aaaaaaa bbb"},
     {10, 5, 112, 1005}},
    {"InTheMiddle", L"<CENTER><A>ab</A></CENTER>", {0}, {{{0, 0, 20, 20}}}, {L"ab"}},
    // The inner one takes the place of the outer one, which has nothing to close.
    {"WithinALink", L"<A>x<A1>y</A1>z</A>", {1}, {{{10, 0, 20, 20}}}, {L"y"}},
    {"TwoWithinALink",
     L"<A>x<A1>y</A1>z<A2>w</A2></A>",
     {1, 2},
     {{{10, 0, 20, 20}}, {{30, 0, 40, 20}}},
     {L"y", L"w"}},
    {"SameWithinALink", L"<A>x<A>y</A>z</A>", {0}, {{{10, 0, 20, 20}}}, {L"y"}},
    {"Crossed", L"<A>x<B>y</A>z</B>", {0}, {{{0, 0, 30, 20}}}, {L"x<B>y"}},
    {"NextToEachOther",
     L"<A1>x</A1><A1>y</A1>",
     {1, 1},
     {{{0, 0, 10, 20}}, {{10, 0, 20, 20}}},
     {L"x", L"y"}},
    {"LeftAndTopDoNotCount", L"<A>x</A>", {0}, {{{0, 0, 10, 20}}}, {L"x"}, {-300, -200, 412, 1005}},
};

INSTANTIATE_TEST_SUITE_P(Texts, DrawHTMLLinksOfTexts, testing::ValuesIn(kLinkCases),
                         [](const auto& row) { return std::string(row.param.pszName); });

TEST(DrawHTMLLinkQueries, TellTheFirstLinkHit) {
    HtmlStage stage;
    RECT rc = TallRect();
    stage.Draw(DrawPaint, L"x <A>y</A> <A4>zz</A4>", &rc); // at 20 to 30, and 40 to 60
    stage.Draw(DrawMeasure, L"x <A>y</A> <A4>zz</A4>", &rc);
    DrawHTML& html = stage.html;
    for (int x = -5; x < 70; ++x) {
        const unsigned id = x >= 20 && x < 30 ? 100 : x >= 40 && x < 60 ? 104 : 0;
        EXPECT_EQ(id, html.GetLinkAreaID(&stage.links, x, 0)) << x;
        EXPECT_EQ(id != 0, html.IsLinkArea(&stage.links, x, 19)) << x;
        EXPECT_EQ(0, html.IsLinkArea(&stage.links, x, 20)) << x;
        EXPECT_EQ(0, html.IsLinkArea(&stage.links, x, -1)) << x;
        DrawHTMLLinkArea* pArea = html.FindLinkArea(&stage.links, x, 10);
        EXPECT_EQ(id, pArea ? pArea->GetLinkID() : 0) << x;
    }
}

TEST(DrawHTMLLinkQueries, FirstInTheListWins) {
    DrawHTML html(0);
    DrawHTMLLinks links;
    for (unsigned id : {5u, 6u}) {
        auto* pArea = new DrawHTMLLinkArea(id);
        pArea->StartRect(0, 0);
        pArea->EndRect(10, 10);
        links.AddTail(pArea);
    }
    EXPECT_EQ(5u, html.GetLinkAreaID(&links, 5, 5));
    EXPECT_EQ(AreaAt(links, 0), html.FindLinkArea(&links, 5, 5));
}

TEST(DrawHTMLLinkQueries, NoListHasNoLinks) {
    DrawHTML html(0);
    DrawHTMLLinks links;
    EXPECT_EQ(0, html.IsLinkArea(nullptr, 0, 0));
    EXPECT_EQ(0u, html.GetLinkAreaID(nullptr, 0, 0));
    EXPECT_EQ(nullptr, html.FindLinkArea(nullptr, 0, 0));
    EXPECT_EQ(0, html.IsLinkArea(&links, 0, 0));
    EXPECT_EQ(0u, html.GetLinkAreaID(&links, 0, 0));
    EXPECT_EQ(nullptr, html.FindLinkArea(&links, 0, 0));
}

TEST(DrawHTMLLinkQueries, LinkWithoutACommandIsALinkAllTheSame) {
    HtmlStage stage;
    stage.html.SetLinkCmdID(0);
    RECT rc = TallRect();
    stage.Draw(DrawMeasure, L"<A>x</A><A1>y</A1>", &rc);
    EXPECT_EQ(0u, stage.html.GetLinkAreaID(&stage.links, 0, 0));
    EXPECT_EQ(1, stage.html.IsLinkArea(&stage.links, 0, 0));
    EXPECT_EQ(1u, stage.html.GetLinkAreaID(&stage.links, 10, 0));
}

TEST(DrawHTMLLinkQueries, CommandIdHoldsForLaterPasses) {
    HtmlStage stage;
    RECT rc = TallRect();
    stage.html.SetLinkCmdID(500);
    stage.Draw(DrawMeasure, L"<A3>x</A3>", &rc);
    EXPECT_EQ(503u, stage.html.GetLinkAreaID(&stage.links, 0, 0));
    stage.html.SetLinkCmdID(600);
    EXPECT_EQ(503u, stage.html.GetLinkAreaID(&stage.links, 0, 0));
    stage.Draw(DrawMeasure, L"<A3>x</A3>", &rc);
    EXPECT_EQ(603u, stage.html.GetLinkAreaID(&stage.links, 0, 0));
}

TEST(DrawHTMLLinkQueries, WrappedLinkIsHitOnTheEmptyPartOfItsLines) {
    HtmlStage stage;
    RECT rc = {10, 5, 112, 1005};
    stage.Draw(DrawMeasure, L"<A>aaaa bbbb cccc dddd eeee</A>", &rc);
    EXPECT_EQ(1, stage.html.IsLinkArea(&stage.links, 101, 0)) << "no letter stands there";
    EXPECT_EQ(1, stage.html.IsLinkArea(&stage.links, 99, 30));
    EXPECT_EQ(0, stage.html.IsLinkArea(&stage.links, 102, 0));
    EXPECT_EQ(0, stage.html.IsLinkArea(&stage.links, 50, 20)) << "the pixel between two lines";
    EXPECT_EQ(0, stage.html.IsLinkArea(&stage.links, 50, 41));
}

TEST(DrawHTMLLinkQueries, LinkWithABreakMayBeHitNowhere) {
    HtmlStage stage;
    RECT rc = TallRect();
    stage.Draw(DrawMeasure, L"xx<A>aa<BR>b</A>", &rc);
    ASSERT_EQ(1u, stage.links.GetLinkCount());
    for (int x = 0; x < 100; ++x)
        for (int y = 0; y < 60; ++y) EXPECT_EQ(0, stage.html.IsLinkArea(&stage.links, x, y));
    stage.Draw(DrawMeasure, L"<A>a<BR>bbb</A>", &rc);
    EXPECT_EQ(1, stage.html.IsLinkArea(&stage.links, 25, 5)) << "beside its first line, too";
}

TEST(DrawHTMLLinkQueries, TextWithoutAListLeavesNothingBehind) {
    HtmlStage stage;
    RECT rc = TallRect();
    stage.html.Draw(DrawMeasure, stage.device, &rc, L"<A>x", 100, nullptr, &stage.tools);
    const long nBefore = CountLiveBlocks();
    stage.html.Draw(DrawMeasure, stage.device, &rc, L"<A>x</A><A>y<A1>z</A1></A><A>w", 100, nullptr,
                    &stage.tools);
    EXPECT_LE(CountLiveBlocks() - nBefore, 8) << "what the device recorded";
}
