#pragma once
#include <windows.h>

// What is drawn of a text, worked out by hand from the rules of the language and of the layout, and
// not with the program. The measure is that of RecordingDevice: each character 10 pixels wide, the
// font 20 high; H makes that 24, BIG 22, SMALL 18. One pixel lies between lines, two stay free at
// the right.
//
// A run is x,y;STYLE:TEXT. In the style stand b (bold) or h (black), i, u, s (struck out), 4 or 5
// (quality), then /HEIGHT if it is not 20, then #RRGGBB if it is not the text's colour. In the text
// _ is a blank. "mark" are the three pixels in the corner.

struct GoldenText {
    const char* pszName;
    const wchar_t* pszMarkup;
    const wchar_t* pszRuns;
    int nHeight;                   // what Draw returns, in both passes
    RECT rc = {10, 5, 412, 1005};  // 40 characters wide
    unsigned nLength = 0xFFFFFFFF; // as told to Draw
};

constexpr RECT kTenWide = {10, 5, 112, 1005}; // ten characters

constexpr GoldenText kGoldenTexts[] = {
    // Characters and words
    {"Word", L"Hello", L"10,5:Hello_", 20},
    {"Empty", L"", L"", 20},
    {"BlanksOnly", L" \t\r\n ", L"", 20},
    {"BlanksBefore", L"  \t\r\n Hello", L"10,5:Hello_", 20},
    {"BlanksBetween", L"a  \t b\r\nc", L"10,5:a_b_c_", 20},
    {"BlanksBehind", L"a  ", L"10,5:a_", 20},
    {"FormFeedIsNoBlank", L"a\f\v\x00A0z", L"10,5:a\f\v\x00A0z_", 20},
    {"Entities", L"&AMP;&lt;&Gt;", L"10,5:&<>_", 20},
    {"EntityIsNotReadTwice", L"&amp;lt;", L"10,5:&lt;_", 20},
    {"HardBlank", L"x&nbsp;y", L"10,5:x_y_", 20},
    {"HardBlanksStay", L"x&nbsp;&nbsp; y", L"10,5:x___y_", 20},
    {"UnknownEntity", L"&foo; & &amp", L"10,5:&foo;_&_&amp_", 20},
    {"AmpersandBeforeEntity", L"&&amp;x", L"10,5:&&x_", 20},
    {"EntityOutOfReach", L"&abcdefghijkl;", L"10,5:&abcdefghijkl;_", 20},
    {"LoneBracket", L"a < b", L"10,5:a_ 30,5:<_ 50,5:b_", 20},
    {"BracketAtTheEnd", L"a<", L"10,5:a 20,5:<_", 20},
    {"ClosingBracket", L"a > b", L"10,5:a_>_b_", 20},
    {"UnknownTag", L"<FOO>bar", L"10,5:<FOO>bar_", 20},
    {"UnknownTagAndBlank", L"<FOO> bar", L"10,5:<FOO>_ 70,5:bar_", 20},
    {"TagWithBlank", L"<B >x", L"10,5:<B_ 40,5:>x_", 20},
    {"TagWithAttribute", L"<A HREF=x>y</A>", L"10,5:<A_ 40,5:HREF=x>y", 20},
    {"BracketBeforeTag", L"<<B>x</B>", L"10,5:< 20,5;b:x", 20},
    {"LengthEndsText", L"abc def ghi", L"10,5:abc_def_", 20, {10, 5, 412, 1005}, 5},
    {"LengthInsideAWord", L"abcdef", L"10,5:abcdef_", 20, {10, 5, 412, 1005}, 2},
    {"LengthZero", L"abc", L"", 20, {10, 5, 412, 1005}, 0},
    // Font tags
    {"Bold", L"a<B>b</B>c", L"10,5:a 20,5;b:b 30,5:c_", 20},
    {"CaseOfTags", L"<b>x</B>", L"10,5;b:x", 20},
    {"BlankBeforeAndBehindTags", L"a <B>b</B> c", L"10,5:a_ 30,5;b:b 40,5:_c_", 20},
    {"BlankOnBothSidesOfATag", L"a <B> b</B>", L"10,5:a_ 30,5;b:_b", 20},
    {"BlankAlone", L"a<B> </B>b", L"10,5:a 20,5;b:_ 30,5:b_", 20},
    {"EmptySpan", L"<B></B>a", L"10,5:a_", 20},
    {"ItalicUnderlineStrike", L"<I>a</I><U>b c</U><D>d</D>", L"10,5;i:a 20,5;u:b_c 50,5;s:d", 20},
    {"Smoothing", L"<AA>c</AA><CT>d</CT>", L"10,5;4:c 20,5;5:d", 20},
    {"AllAtOnce", L"<B><I><U><D><CT>x</CT></D></U></I></B>y", L"10,5;bius5:x 20,5:y_", 20},
    {"Heading", L"a <H>b</H> c", L"10,9:a_ 30,5;h/24:b 40,9:_c_", 24},
    {"HeadingTwice", L"<H><H>x</H></H>y", L"10,5;h/28:x 20,13:y_", 28},
    {"BigAndSmall", L"<BIG>a</BIG><SMALL>b</SMALL>", L"10,5;/22:a 20,9;/18:b", 22},
    {"SmallLineIsAsHighAsItsFirstFont", L"<SMALL>a</SMALL>", L"10,7;/18:a", 20},
    {"BigAndSmallUndoEachOther", L"<BIG><SMALL>a</SMALL></BIG>", L"10,7:a", 22},
    {"BoldOfAHeadingIsLessBold", L"<H><B>a</B></H>", L"10,5;b/24:a", 24},
    {"FontWithoutLettersCounts", L"<H></H>a<BR>b", L"10,9:a 10,30:b_", 45},
    {"CrossedTags", L"<B><I>x</B>y</I>z", L"10,5;bi:x 20,5;b:y 30,5:z_", 20},
    {"StrayClosingTags", L"</B>a</I></RED>b", L"10,5:a 20,5:b_", 20},
    {"UnclosedFont", L"a<B>b c", L"10,5:a 20,5;b:b_c_", 20},
    {"UnclosedFontInColor", L"<RED><B>a</RED>b", L"10,5;b#800000:a 20,5:b_", 20},
    // Colours
    {"Colors", L"<RED>a</RED><ltblue>b</LTBLUE>c", L"10,5;#800000:a 20,5;#0000C0:b 30,5:c_", 20},
    {"ColorsNest", L"<RED>a<GREEN>b</GREEN>c</RED>d",
     L"10,5;#800000:a 20,5;#008000:b 30,5;#800000:c 40,5:d_", 20},
    {"UnclosedColor", L"<RED>a b", L"10,5;#800000:a_b_", 20},
    {"UnclosedColorInFont", L"<B><RED>a</B>b", L"10,5;b#800000:a 20,5;b:b_", 20},
    {"DarkBlue", L"<DKBLUE>x</DKBLUE>y", L"10,5:<DKBLUE>x 100,5:y_", 20},
    {"DarkBlueUndoesWhatIsOpen", L"<B><DKBLUE>x</DKBLUE>y</B>", L"10,5;b:<DKBLUE>x 100,5:y", 20},
    {"DarkBlueBehindStrayEnd", L"</T>DKBLUE>x</DKBLUE>y", L"10,5;#000040:x 20,5:y_", 20},
    // Links
    {"Link", L"x <A>y</A> z", L"10,5:x_ 30,5;u#0000FF:y 40,5:_z_", 20},
    {"ColorInLink", L"<A3>a<RED>b</RED>c</A3>", L"10,5;u#0000FF:a 20,5;u#800000:b 30,5;u#0000FF:c",
     20},
    // Literal text
    {"Literal", L"<T><B>&amp;</B></T>", L"10,5:<B>&amp;</B>", 20},
    {"LiteralCollapsesBlanks", L"<T>a  <b> b</T> c", L"10,5:a_<b>_b 80,5:_c_", 20},
    {"UnclosedLiteral", L"<T>x<B>y", L"10,5:x<B>y_", 20},
    {"StrayEndOfLiteral", L"a</T>b", L"10,5:a 20,5:b_", 20},
    {"TagBehindStrayEnd", L"</T><B>x</B>", L"10,5;b:x", 20},
    {"BreakBehindStrayEnd", L"</T><BR>x", L"10,5:<BR>x_", 20},
    {"LiteralBehindStrayEnd", L"</T><T>x", L"10,5:<T>x_", 20},
    {"StrayEndTwice", L"</T></T>x", L"10,5:< 20,5:/T>x_", 20},
    {"NoBreakBehindStrayEnd", L"</T><NOBR>a  b", L"10,5:a__b_", 20},
    {"BracketBehindStrayEndIsText", L"</T>b<I>c</I>", L"10,5:b<I>c", 20},
    // Line breaks
    {"Break", L"a<BR>b", L"10,5:a 10,26:b_", 41},
    {"BreakHalf", L"a<BRHALF>b", L"10,5:a 10,16:b_", 31},
    {"Breaks", L"a<br><Br>b", L"10,5:a 10,47:b_", 62},
    {"BreakFirst", L"<BR>a", L"10,26:a_", 41},
    {"BreakLast", L"a<BR>", L"10,5:a", 41},
    {"BlanksAroundBreak", L"a <BR> b", L"10,5:a_ 10,26:_b_", 41},
    {"HalfOfABigLine", L"<BIG>a</BIG><BRHALF>b", L"10,5;/22:a 10,17:b_", 32},
    {"BreakInHeading", L"<H>a<BR>b</H>", L"10,5;h/24:a 10,30;h/24:b", 49},
    {"LineBehindHeadingIsLower", L"<H>a</H>b<BR>c", L"10,5;h/24:a 20,9:b 10,30:c_", 45},
    // Wrapping, ten characters wide
    {"Wrap", L"aaaa bbbb cccc", L"10,5:aaaa_bbbb 10,26:_cccc_", 41, kTenWide},
    {"WrapTakesTheLastWhole", L"aaaa bbbb cccc dddd eeee",
     L"10,5:aaaa_bbbb 10,26:_cccc 10,47:_dddd_eeee_", 62, kTenWide},
    {"WrapBehindATag", L"<B>aaaa</B> bbbb cccc", L"10,5;b:aaaa 50,5:_bbbb_ 10,26:cccc_", 41,
     kTenWide},
    {"WrapOfAHighLine", L"aa <H>b</H> cc dd ee", L"10,9:aa_ 40,5;h/24:b 50,9:_cc_dd_ 10,30:ee_", 45,
     kTenWide},
    {"WrapOfTheFirstWordOfARun", L"aaaaaaaa<B>bbbb</B>", L"10,5:aaaaaaaa 10,26;b:bbbb", 41,
     kTenWide},
    {"LongWord", L"abcdefghijklmno", L"10,5:abcdefghij 10,26:klmno_", 41, kTenWide},
    {"LongWordOverThreeLines", L"abcdefghijklmnopqrstuvw",
     L"10,5:abcdefghij 10,26:klmnopqrst 10,47:uvw_", 62, kTenWide},
    {"LongWordBehindOneLetter", L"a bcdefghijklmno", L"10,5:a_bcdefghi 10,26:jklmno_", 41,
     kTenWide},
    {"LongWordBehindAWord", L"ab cdefghijklmno", L"10,5:ab 10,26:_cdefghijk 10,47:lmno_", 62,
     kTenWide},
    {"ExactFit", L"abcdefghij", L"10,5:abcdefghij_", 20, kTenWide},
    {"PathWrapsBehindAFolder", L"<B>xx</B>C:\\aaa\\bbb", L"10,5;b:xx 30,5:C:\\aaa 10,26:\\bbb_", 41,
     kTenWide},
    {"PathWrapsBeforeASlash", L"<B>xx</B>a://b/ccc", L"10,5;b:xx 30,5:a://b 10,26:/ccc_", 41,
     kTenWide},
    {"PathWithoutBreak", L"<B>xx</B><NOBR>C:\\aaa\\bbb", L"10,5;b:xx 10,26:C:\\aaa\\bbb_", 41,
     kTenWide},
    {"NoBreakKeepsBlanks", L"<NOBR>a  b\t c</NOBR> d  e", L"10,5:a__b\t_c 80,5:_d_e_", 20},
    {"NoBreakStartsWithOneBlank", L"<NOBR>  a", L"10,5:_a_", 20},
    {"CutBehindEntitiesResumesLate", L"abcdefghij&amp;kl", L"10,5:abcdefghij 10,26:;kl_", 41,
     kTenWide},
    {"CutAtHardBlankResumesLate", L"aaa&nbsp;bbbbbbbbb", L"10,5:aaa 10,26:;bbbbbbbbb_", 41,
     kTenWide},
    {"CutBehindManyBlanks", L"aaaa     bbbbbbb", L"10,5:aaaa 10,26:_bbbbbbb_", 41, kTenWide},
    {"TooNarrowForALetter", L"ab", L"mark", 62, {10, 5, 21, 60}},
    // The bottom
    {"LineAtTheBottomIsLeftOut", L"aaaa bbbb cccc", L"10,5:aaaa_bbbb mark", 41, {10, 5, 112, 46}},
    {"LineAboveTheBottomIsDrawn",
     L"aaaa bbbb cccc",
     L"10,5:aaaa_bbbb 10,26:_cccc_",
     41,
     {10, 5, 112, 47}},
    {"ThirdLineIsLeftOut",
     L"aaaa bbbb cccc dddd eeee",
     L"10,5:aaaa_bbbb 10,26:_cccc mark",
     62,
     {10, 5, 112, 67}},
    {"BreaksBelowTheBottom",
     L"a<BR>b<BR>c<BR>d",
     L"10,5:a 10,26:b 10,47:c mark",
     62,
     {10, 5, 412, 47}},
    {"WordsAtTheBottom", L"a<BR>b c", L"10,5:a 10,26:b_ mark", 41, {10, 5, 412, 26}},
    {"EndBelowTheBottom", L"a<BR>b<BR>c", L"10,5:a 10,26:b 10,47:c_", 62, {10, 5, 412, 47}},
    // Centring
    {"Center", L"<CENTER>ab</CENTER>c", L"205,5:ab 30,5:c_", 20},
    {"CenterOddWidth", L"<CENTER>ab</CENTER>", L"205,5:ab", 20, {10, 5, 413, 1005}},
    {"CenterOfEachRun", L"<CENTER>ab<B>cd</B></CENTER>", L"205,5:ab 225,5;b:cd", 20},
    {"CenterWithinCenter", L"<CENTER>a<CENTER>b</CENTER>c</CENTER>d",
     L"210,5:a 220,5:b 30,5:c 40,5:< 50,5:/CENTER>d_", 20},
    {"CenterOfTheLastLineOnly", L"<CENTER>aaaa bbbb cccc</CENTER>", L"10,5:aaaa_bbbb 40,26:_cccc",
     41, kTenWide},
    {"StrayEndOfCenter", L"a</CENTER>b", L"10,5:a 20,5:< 30,5:/CENTER>b_", 20},
    // The left edge of the context
    {"SmallLetterAtTheEdge", L"apple", L"1,0:apple_", 20, {0, 0, 402, 1000}},
    {"CapitalAtTheEdge", L"Apple", L"0,0:Apple_", 20, {0, 0, 402, 1000}},
    {"CapitalZAtTheEdge", L"Zoo", L"0,0:Zoo_", 20, {0, 0, 402, 1000}},
    {"OtherCapitalAtTheEdge", L"\x00C4pfel", L"1,0:\x00C4pfel_", 20, {0, 0, 402, 1000}},
    {"DigitAtTheEdge", L"1", L"1,0:1_", 20, {0, 0, 402, 1000}},
    {"BlankAtTheEdge", L"<B> x</B>y", L"1,0;b:x 10,0:y_", 20, {0, 0, 402, 1000}},
    {"BlankAndCapitalAtTheEdge", L"<B> X</B>y", L"0,0;b:X 10,0:y_", 20, {0, 0, 402, 1000}},
    {"WrapAtTheEdge", L"aaaa bbbb cccc", L"1,0:aaaa_bbbb 1,21:cccc_", 41, {0, 0, 102, 1000}},
    {"EdgeInTheMiddleOfALine", L"<B>a</B>b", L"-10,0;b:a 1,0:b_", 20, {-10, 0, 392, 1000}},
    {"CenterAtTheEdge", L"<CENTER>ab</CENTER>", L"191,0:ab", 20, {0, 0, 402, 1000}},
};
