#include "richtext/engine/recording_device.h"
#include <gtest/gtest.h>
#include <numeric>
#include <random>
#include <string>
#include <vector>

struct WrapCase {
    const char* pszName;
    const wchar_t* pszMarkup;
    const wchar_t* pszLetters; // what is drawn of it, without the blanks
};

constexpr WrapCase kWrapCases[] = {
    {"Words", L"The quick brown fox jumps over the lazy dog and runs away from it all, quickly.",
     L"Thequickbrownfoxjumpsoverthelazydogandrunsawayfromitall,quickly."},
    {"Fonts", L"The <B>quick <I>brown</I> fox</B> jumps <H>over</H> the <SMALL>lazy</SMALL> dog",
     L"Thequickbrownfoxjumpsoverthelazydog"},
    {"LongWords", L"iiiiiiiiiiiiiiiiiiiiiiiiiiii WWWWWWWWWWWWWWWWWWWW mixediWiWiWiWiWiWiWiWiWi",
     L"iiiiiiiiiiiiiiiiiiiiiiiiiiiiWWWWWWWWWWWWWWWWWWWWmixediWiWiWiWiWiWiWiWiWi"},
    {"Paths", L"C:\\Windows\\System32\\drivers\\etc and /usr/share/doc/nothing/to/see/here",
     L"C:\\Windows\\System32\\drivers\\etcand/usr/share/doc/nothing/to/see/here"},
    {"Links", L"See <A>the first link of all</A> or <A1>another</A1>, <A2>and</A2> again",
     L"Seethefirstlinkofalloranother,andagain"},
    {"Breaks", L"one<BR>two three<BRHALF>four five six<BR><BR>seven eight nine ten eleven",
     L"onetwothreefourfivesixseveneightnineteneleven"},
    {"TornByTags", L"un<B>be</B>liev<I>able, </I>but<RED>t</RED><GREEN>r</GREEN><BLUE>u</BLUE>e",
     L"unbelievable,buttrue"},
    {"NoBreak", L"these <NOBR>stay together</NOBR> and <NOBR>these do as well</NOBR> I think",
     L"thesestaytogetherandthesedoaswellIthink"},
    {"Literal", L"<T>if a<b then c>d</T> and <T><B>no bold</B> letters</T> at all, really",
     L"ifa<bthenc>dand<B>nobold</B>lettersatall,really"},
    {"UnknownTags", L"a < b and <FOO> or <BAR x> or <BAZ>glued</BAZ> together </CENTER> here",
     L"a<band<FOO>or<BARx>or<BAZ>glued</BAZ>together</CENTER>here"},
};

std::wstring WithoutBlanks(std::wstring str) {
    std::erase(str, L' ');
    return str;
}

class DrawHTMLWrap : public testing::TestWithParam<WrapCase> {};

TEST_P(DrawHTMLWrap, AtAllWidthsInRandomOrderTheRunsAreTheTextAndKeepWithinTheLimit) {
    const std::wstring strLetters = GetParam().pszLetters;
    std::vector<int> widths(401); // from 0 to 400
    std::iota(widths.begin(), widths.end(), 0);
    std::shuffle(widths.begin(), widths.end(), std::mt19937(4106));
    HtmlStage stage(&Proportional); // one for all: nothing but the table is left from before
    for (int cx : widths) {
        RECT rc = {10, 5, 10 + cx, 2505};
        // A pass that ended early may have left words unbreakable for the next one.
        stage.Draw(DrawPaint, L"</NOBR>", &rc);
        const int nMeasured = stage.Draw(DrawMeasure, GetParam().pszMarkup, &rc);
        const std::vector<TextRun> measured = stage.device.TakeRuns();
        const bool bMarkMeasured = !stage.device.TakePixels().empty();
        stage.Draw(DrawPaint, L"</NOBR>", &rc);
        const int nPainted = stage.Draw(DrawPaint, GetParam().pszMarkup, &rc);
        const std::vector<TextRun> runs = stage.device.TakeRuns();
        const bool bMark = !stage.device.TakePixels().empty();

        const std::wstring strDrawn = WithoutBlanks(JoinRuns(runs));
        if (cx >= kWidest + 2) {
            ASSERT_EQ(strLetters, strDrawn) << cx;
            ASSERT_FALSE(bMark) << cx;
        } else { // a letter that never fits ends it
            ASSERT_EQ(strLetters.substr(0, strDrawn.size()), strDrawn) << cx;
            ASSERT_EQ(strLetters != strDrawn, bMark) << cx;
        }
        ASSERT_EQ(nMeasured, nPainted) << cx;
        ASSERT_EQ(bMarkMeasured, bMark) << cx;
        ASSERT_EQ(measured.size(), runs.size()) << cx;
        int xNext = rc.left, yBottom = 0;
        for (std::size_t i = 0; i < runs.size(); ++i) {
            const TextRun& run = runs[i];
            ASSERT_EQ(measured[i].strText, run.strText) << cx;
            ASSERT_EQ(measured[i].x, run.x) << cx;
            ASSERT_LE(measured[i].y, run.y) << cx;
            // A blank at the end may stand beyond it: nobody sees it.
            const std::size_t nLast = run.strText.find_last_not_of(L' ');
            if (nLast != std::wstring::npos) {
                const int cxSeen = RecordingDevice::WidthOf(run.strText.substr(0, nLast + 1));
                ASSERT_LE(run.x + cxSeen, rc.right - 2) << cx << ' ' << run.strText;
            }
            // A run goes on where the one before ended, or stands at the left of a line below.
            if (run.x != xNext) {
                ASSERT_EQ(rc.left, run.x) << cx << ' ' << run.strText;
                ASSERT_GT(run.GetBottom(), yBottom) << cx << ' ' << run.strText;
            }
            xNext = run.GetRight();
            yBottom = run.GetBottom();
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Texts, DrawHTMLWrap, testing::ValuesIn(kWrapCases),
                         [](const auto& row) { return std::string(row.param.pszName); });

TEST(DrawHTMLWraps, LineHoldsAsManyWordsAsFit) {
    // Plain words of one length: a line takes what the width has room for, but for the word that is
    // given up where a line is cut right behind it.
    HtmlStage stage;
    std::wstring str;
    for (int i = 0; i < 60; ++i) str += L"abcd ";
    for (int nChars = 4; nChars < 60; ++nChars) {
        auto runs = stage.Paint(str, TallRect(nChars * 10 + 2));
        for (std::size_t i = 0; i + 1 < runs.size(); ++i) {
            const auto nUsed = static_cast<int>(runs[i].strText.size());
            EXPECT_LE(nUsed, nChars);
            EXPECT_GE(nUsed + 10, nChars) << "no line has room for two more words";
        }
    }
}

TEST(DrawHTMLWraps, HeightNeverGrowsWithTheWidth) {
    HtmlStage stage;
    const std::wstring str = L"one two three four five six seven eight nine ten eleven twelve";
    int nBefore = INT_MAX;
    for (int cx = 62; cx <= 800; cx += 10) {
        RECT rc = TallRect(cx);
        const int nHeight = stage.Draw(DrawMeasure, str, &rc);
        EXPECT_LE(nHeight, nBefore) << cx;
        nBefore = nHeight;
    }
    EXPECT_EQ(20, nBefore);
}
