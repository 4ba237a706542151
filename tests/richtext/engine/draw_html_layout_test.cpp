#include "richtext/engine/html_probe.h"
#include "richtext/engine/recording_device.h"
#include "support/memory_picture.h"
#include <gtest/gtest.h>
#include <climits>
#include <iterator>
#include <random>
#include <string>
#include <vector>

std::wstring Repeat(const std::wstring& str, int n) {
    std::wstring strAll;
    for (int i = 0; i < n; ++i) strAll += str;
    return strAll;
}

TEST(DrawHTMLLayout, SmallLetterAtTheLeftEdgeStandsOnePixelIn) {
    HtmlStage stage;
    for (unsigned n = L'!'; n < 0x250; ++n) {
        if (n == L'<' || n == L'&') continue;
        auto runs = stage.Paint({static_cast<wchar_t>(n)}, {0, 0, 400, 100});
        ASSERT_EQ(1u, runs.size()) << n;
        EXPECT_EQ(n >= L'A' && n <= L'Z' ? 0 : 1, runs[0].x) << n;
    }
}

TEST(DrawHTMLLayout, CentringGoesByTheRightEdge) {
    HtmlStage stage;
    for (int nLeft : {1, 50, 100, -60}) {
        for (int nRight : {300, 301, 417}) {
            auto runs = stage.Paint(L"<CENTER>abc</CENTER>", {nLeft, 0, nRight, 100});
            ASSERT_EQ(1u, runs.size());
            EXPECT_EQ(nLeft + (nRight - 30 - 2) / 2, runs[0].x) << nLeft << ' ' << nRight;
        }
    }
}

TEST(DrawHTMLLayout, CentringOfATextTooWideRoundsTowardZero) {
    HtmlStage stage;
    // The second run is 5 characters on a line that ends 3 pixels behind its start.
    auto runs = stage.Paint(L"<CENTER>abcde</CENTER>", {-52, 0, 3, 100});
    ASSERT_EQ(1u, runs.size());
    EXPECT_EQ(-52 + (3 - 50 - 2) / 2, runs[0].x); // -24.5 is -24
    EXPECT_EQ(-76, runs[0].x);
}

TEST(DrawHTMLLayout, LineHeightIsKeptModulo256) {
    constexpr int kHeight = 300, kKept = 300 - 256;
    HtmlStage stage(&TenPixels, -kHeight);
    RECT rc = TallRect();
    EXPECT_EQ(2 * kHeight + 1, stage.Draw(DrawMeasure, L"a<BR>b", &rc));
    auto measured = stage.device.TakeRuns();
    EXPECT_EQ(2 * kKept + 1, stage.Draw(DrawPaint, L"a<BR>b", &rc));
    auto runs = stage.device.TakeRuns();
    ASSERT_EQ(2u, runs.size());
    EXPECT_EQ(5, measured[0].y);
    EXPECT_EQ(5 + kHeight + 1, measured[1].y);
    EXPECT_EQ(5 + kKept - kHeight, runs[0].y);
    EXPECT_EQ(5 + kKept + 1 + kKept - kHeight, runs[1].y);
}

TEST(DrawHTMLLayout, HeightOf256IsNone) {
    HtmlStage stage(&TenPixels, -256);
    RECT rc = TallRect();
    EXPECT_EQ(256, stage.Draw(DrawMeasure, L"a", &rc));
    EXPECT_EQ(0, stage.Draw(DrawPaint, L"a", &rc));
    HtmlStage stageLess(&TenPixels, -255);
    EXPECT_EQ(255, stageLess.Draw(DrawMeasure, L"a", &rc));
    EXPECT_EQ(255, stageLess.Draw(DrawPaint, L"a", &rc));
}

TEST(DrawHTMLLayout, LinesFrom256OnShareTheLastHeight) {
    // Lines 0 to 254 have heights of their own; the last of the others is a heading.
    HtmlStage stage;
    std::wstring str;
    for (int i = 0; i < 299; ++i) str += (i == 100 || i == 270 ? L"<BIG>a</BIG><BR>" : L"a<BR>");
    str += L"<H>b</H>";
    RECT rc = TallRect();
    const int nMeasured = stage.Draw(DrawMeasure, str, &rc);
    EXPECT_EQ(297 * 21 + 2 * 23 + 24, nMeasured);
    stage.device.TakeRuns();
    const int nPainted = stage.Draw(DrawPaint, str, &rc);
    EXPECT_EQ(254 * 21 + 23 + 44 * 25 + 24, nPainted);
    auto runs = stage.device.TakeRuns();
    ASSERT_EQ(300u, runs.size());
    int y = 5;
    for (int i = 0; i < 300; ++i) {
        const int nLine = i < 255 ? (i == 100 ? 22 : 20) : 24;
        const int nText = i == 299 ? 24 : i == 100 || i == 270 ? 22 : 20;
        EXPECT_EQ(y + nLine - nText, runs[i].y) << i;
        y += nLine + 1;
    }
}

TEST(DrawHTMLLayout, PaintWithoutMeasuringTakesTheTextsOwnHeightWhereItWraps) {
    HtmlStage stage;
    RECT rc = {10, 5, 112, 1005};
    stage.Draw(DrawPaint, L"aaaa bbbb cccc", &rc);
    auto runs = stage.device.TakeRuns();
    ASSERT_EQ(2u, runs.size());
    EXPECT_EQ(5, runs[0].y);
    EXPECT_EQ(26 - 20, runs[1].y) << "the last part goes by the table alone, which holds 0";
}

TEST(DrawHTMLLayout, PaintUsesTheHeightsOfTheLastMeasuring) {
    HtmlStage stage;
    RECT rc = TallRect();
    stage.Draw(DrawMeasure, L"<H>a</H><BR>b", &rc);
    stage.device.TakeRuns();
    EXPECT_EQ(45, stage.Draw(DrawPaint, L"a<BR>b", &rc));
    auto runs = stage.device.TakeRuns();
    ASSERT_EQ(2u, runs.size());
    EXPECT_EQ(9, runs[0].y);
    EXPECT_EQ(30, runs[1].y);
}

TEST(DrawHTMLLayout, HalfOfAnOddHeightIsRoundedDown) {
    HtmlStage stage(&TenPixels, -21);
    auto runs = stage.Paint(L"a<BRHALF>b<BRHALF>c", TallRect());
    ASSERT_EQ(3u, runs.size());
    EXPECT_EQ(5, runs[0].y);
    EXPECT_EQ(16, runs[1].y);
    EXPECT_EQ(27, runs[2].y);
}

TEST(DrawHTMLLayout, NullRectKeepsThatOfTheCallBefore) {
    HtmlStage stage;
    RECT rc = {30, 7, 500, 500};
    stage.Draw(DrawMeasure, L"x", &rc);
    rc = {};
    stage.device.TakeRuns();
    stage.Draw(DrawPaint, L"x", nullptr);
    auto runs = stage.device.TakeRuns();
    ASSERT_EQ(1u, runs.size());
    EXPECT_EQ(30, runs[0].x);
    EXPECT_EQ(7, runs[0].y);
}

TEST(DrawHTMLLayout, RectIsReadAndNotWritten) {
    HtmlStage stage;
    RECT rc = {10, 5, 60, INT_MAX};
    stage.Draw(DrawMeasure, L"some words that wrap", &rc);
    EXPECT_EQ(10, rc.left);
    EXPECT_EQ(5, rc.top);
    EXPECT_EQ(60, rc.right);
    EXPECT_EQ(INT_MAX, rc.bottom);
}

TEST(DrawHTMLLayout, MeasuringTellsTheHeightThatATextNeeds) {
    HtmlStage stage;
    const std::wstring str = L"aaaa bbbb cccc dddd eeee <H>ff</H><BRHALF>gggg hhhhh iiii";
    RECT rc = {10, 5, 112, INT_MAX};
    const int nHeight = stage.Draw(DrawMeasure, str, &rc);
    // In a rectangle that is one pixel higher all of it is drawn, and without it the last line not.
    auto all = stage.Paint(str, {10, 5, 112, 5 + nHeight + 1});
    EXPECT_TRUE(stage.device.TakePixels().empty());
    EXPECT_EQ(5 + nHeight, all.back().GetBottom());
    auto less = stage.Paint(str, {10, 5, 112, 5 + nHeight});
    EXPECT_EQ(3u, stage.device.TakePixels().size());
    EXPECT_EQ(all.size() - 1, less.size());
}

TEST(DrawHTMLLayout, NullTextIsEmpty) {
    HtmlStage stage;
    RECT rc = TallRect();
    EXPECT_EQ(20, stage.html.Draw(DrawMeasure, stage.device, &rc, nullptr, 5, &stage.links,
                                  &stage.tools));
    EXPECT_EQ(20,
              stage.html.Draw(DrawPaint, stage.device, &rc, L"", 0, &stage.links, &stage.tools));
    EXPECT_TRUE(stage.device.TakeRuns().empty());
    EXPECT_TRUE(stage.device.TakePixels().empty());
}

TEST(DrawHTMLLayout, LengthBeyondTheTerminatorEndsThere) {
    HtmlStage stage;
    RECT rc = TallRect();
    for (unsigned nLength : {3u, 4u, 100u, 0x7FFFFFFFu, 0xFFFFFFFFu}) {
        stage.html.Draw(DrawPaint, stage.device, &rc, L"abc", nLength, nullptr, &stage.tools);
        EXPECT_EQ(L"abc ", JoinRuns(stage.device.TakeRuns())) << nLength;
        EXPECT_TRUE(stage.device.TakePixels().empty());
    }
}

TEST(DrawHTMLLayout, LongerRunsThanTheBufferAreDrawnInPieces) {
    for (int n : {255, 261, 262, 263, 264, 265, 523, 524, 525, 1000, 5000}) {
        std::wstring str;
        for (int i = 0; i < n; ++i) str += static_cast<wchar_t>(L'a' + i % 26);
        for (const wchar_t* pszBefore : {L"", L"<NOBR>", L"<T>"}) {
            HtmlStage stage;
            auto runs = stage.Paint(pszBefore + str, TallRect(100'000));
            EXPECT_EQ(str + L' ', JoinRuns(runs)) << n;
            int x = 10;
            for (const TextRun& run : runs) {
                EXPECT_EQ(x, run.x);
                EXPECT_EQ(5, run.y);
                EXPECT_GT(264u, run.strText.size());
                x = run.GetRight();
            }
        }
    }
}

TEST(DrawHTMLLayout, ManyWordsOnOneLineAreDrawnInPieces) {
    for (int n : {1, 2, 3, 4, 5, 7}) {
        const std::wstring strWord = std::wstring(n, L'x') + L' ';
        const std::wstring str = Repeat(strWord, 300);
        HtmlStage stage;
        auto runs = stage.Paint(str, TallRect(100'000));
        EXPECT_EQ(str, JoinRuns(runs));
        for (const TextRun& run : runs) EXPECT_EQ(5, run.y);
    }
}

TEST(DrawHTMLLayout, ManyBlanksCostNoRoom) {
    HtmlStage stage;
    EXPECT_EQ(L"a b ",
              JoinRuns(stage.Paint(L"a" + std::wstring(100'000, L' ') + L"b", TallRect())));
    auto runs = stage.Paint(L"<NOBR>a" + std::wstring(1000, L' ') + L"b", TallRect(100'000));
    EXPECT_GT(1100u, JoinRuns(runs).size());
}

TEST(DrawHTMLLayout, EntityAtTheBuffersEndIsNotTornApart) {
    for (int n = 255; n < 270; ++n) {
        const std::wstring str(n, L'x');
        HtmlStage stage;
        EXPECT_EQ(str + L"&y ", JoinRuns(stage.Paint(str + L"&amp;y", TallRect(100'000)))) << n;
        EXPECT_EQ(str + L" y ", JoinRuns(stage.Paint(str + L"&nbsp;y", TallRect(100'000)))) << n;
    }
}

TEST(DrawHTMLLayout, CutBehindAnEntityResumesLate) {
    // The cut takes three characters back, of which the source has more.
    HtmlStage stage;
    auto runs = stage.Paint(L"abcdefghij&amp;kl", TallRect(102));
    ASSERT_EQ(2u, runs.size());
    EXPECT_EQ(L"abcdefghij", runs[0].strText);
    EXPECT_EQ(L";kl ", runs[1].strText);
    // Before it nothing is lost.
    EXPECT_EQ(L"&bcdefghijkl ", JoinRuns(stage.Paint(L"&amp;bcdefghijkl", TallRect(102))));
}

TEST(DrawHTMLLayout, LongRunWrapsLikeAnyOther) {
    HtmlStage stage;
    const std::wstring str(3000, L'x');
    auto runs = stage.Paint(str, TallRect(502));
    ASSERT_EQ(60u, runs.size());
    for (int i = 0; i < 60; ++i) {
        EXPECT_EQ(i == 59 ? 51u : 50u, runs[i].strText.size()) << i; // the last has its blank
        EXPECT_EQ(5 + 21 * i, runs[i].y);
    }
}

TEST(DrawHTMLLayout, RectanglesWithoutRoomDrawNothing) {
    constexpr RECT kRects[] = {{0, 0, 0, 0},     {10, 10, 10, 10},  {10, 10, 5, 5},
                               {0, 0, 2, 100},   {0, 0, 11, 1000},  {10, 10, 400, 9},
                               {10, 0, 12, 400}, {100, 0, 0, 5000}, {-50, -50, -60, 700}};
    for (const RECT& rc : kRects) {
        HtmlStage stage;
        auto runs = stage.Paint(L"some <B>words</B> here", rc);
        EXPECT_TRUE(runs.empty()) << rc.left << ',' << rc.top << ',' << rc.right;
        EXPECT_EQ(3u, stage.device.TakePixels().size());
    }
}

TEST(DrawHTMLLayout, RandomRectanglesAtTheEndsOfTheNumbersAreSafe) {
    constexpr LONG kEnds[] = {INT_MIN, INT_MIN + 1, -1, 0, 1, 300, INT_MAX - 1, INT_MAX};
    std::mt19937 random(4107);
    const auto end = [&] { return kEnds[random() % std::size(kEnds)]; };
    HtmlStage stage;
    for (int i = 0; i < 5000; ++i) {
        const LONG nLeft = end(), nTop = end(), nRight = end(), nBottom = end();
        stage.Paint(L"a <A>b c</A> <CENTER>x<BR>y</CENTER> &amp;", {nLeft, nTop, nRight, nBottom});
    }
}

TEST(DrawHTMLLayout, HighAndNarrowRectangleIsDoneAtOnce) {
    HtmlStage stage;
    RECT rc = {10, 0, 13, INT_MAX};
    const int nHeight = stage.Draw(DrawMeasure, L"never fits", &rc);
    EXPECT_LT(100'000'000, nHeight) << "down to the bottom, line by line";
    EXPECT_GT(60'000, stage.device.GetExtentCalls());
    EXPECT_EQ(3u, stage.device.TakePixels().size());
}

TEST(DrawHTMLLayout, OverflowMarkIsThreePixels) {
    MemoryPicture picture(40, 30);
    DrawHTML html(0);
    DrawHTMLTools tools(FontGui);
    RECT rc = {0, 0, 20, 20};
    html.Draw(DrawMeasure, picture, &rc, L"<BR><BR><BR>", 100, nullptr, &tools);
    for (int y = 0; y < 30; ++y) {
        for (int x = 0; x < 40; ++x) {
            const bool bMark = y == 19 && (x == 17 || x == 15 || x == 13);
            EXPECT_EQ(bMark ? RGB(0, 0, 0) : RGB(255, 255, 255), picture.Get(x, y))
                << x << ',' << y;
        }
    }
}

TEST(DrawHTMLLayout, OverflowMarkHasTheContextsPen) {
    MemoryPicture picture(40, 30);
    HPEN hpen = ::CreatePen(PS_SOLID, 0, RGB(200, 10, 20));
    HGDIOBJ hBefore = ::SelectObject(picture, hpen);
    DrawHTML html(0);
    DrawHTMLTools tools(FontGui);
    RECT rc = {0, 0, 20, 20};
    html.Draw(DrawPaint, picture, &rc,
              L"<BR><BR><BR><BR><BR><BR><BR><BR><BR><BR><BR><BR><BR>"
              L"<BR><BR><BR><BR><BR><BR><BR><BR><BR><BR><BR><BR>",
              1000, nullptr, &tools);
    EXPECT_EQ(RGB(200, 10, 20), picture.Get(17, 19));
    EXPECT_EQ(RGB(200, 10, 20), picture.Get(13, 19));
    EXPECT_EQ(RGB(255, 255, 255), picture.Get(16, 19));
    ::SelectObject(picture, hBefore);
    ::DeleteObject(hpen);
}

TEST(DrawHTMLLayout, WordCostsOneMeasurement) {
    HtmlStage stage;
    RECT rc = TallRect(100'000);
    const std::wstring str = Repeat(L"word ", 40); // 200 characters: one buffer
    stage.Draw(DrawPaint, str, &rc);
    EXPECT_EQ(40 + 1, stage.device.GetExtentCalls()) << "and one for what is drawn";
    stage.Draw(DrawMeasure, str, &rc);
    EXPECT_EQ(2 * 41 + 1, stage.device.GetExtentCalls()) << "and one for the line's font";
}
