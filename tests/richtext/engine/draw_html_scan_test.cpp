#include "richtext/engine/html_probe.h"
#include "support/guard_page.h"
#include <gtest/gtest.h>
#include <random>
#include <string>
#include <vector>

struct ItemCase {
    const wchar_t* pszText;
    const wchar_t* pszItem;
    int nResult;
};

TEST(DrawHTMLScan, IsNextItemComparesAPrefixInAnyCase) {
    constexpr ItemCase kCases[] = {
        {L"<B>x", L"<B>", 1},
        {L"<b>x", L"<B>", 1},
        {L"<B>", L"<B>", 1},
        {L"<B", L"<B>", 0},
        {L"", L"<B>", 0},
        {L"<B >", L"<B>", 0},
        {L"<BR>", L"<B>", 0},
        {L"x<B>", L"<B>", 0},
        {L"<brHALF>", L"<BRHALF>", 1},
        {L"&NBSP;", L"&nbsp;", 1},
        {L"anything", L"", 1},
        {L"", L"", 1},
        {L"abcd", L"ABC", 1},
        {L"{b}", L"[B]", 0},           // not letters, though a bit apart
        {L"<\x00C4>", L"<\x00E4>", 0}, // only ASCII folds
        {L"<\x017F>", L"<s>", 0},      // the long s is no s
        {L"<\x212A>", L"<K>", 0},      // nor the Kelvin sign a k
    };
    for (const ItemCase& row : kCases) {
        const wchar_t* cursor = row.pszText;
        EXPECT_EQ(row.nResult, DrawHTML::IsNextItem(cursor, row.pszItem)) << row.pszText;
        EXPECT_EQ(row.pszText + (row.nResult ? wcslen(row.pszItem) : 0), cursor) << row.pszText;
    }
}

TEST(DrawHTMLScan, IsNextItemReadsNothingBehindTheTerminator) {
    for (const wchar_t* psz : {L"", L"<", L"</", L"</CENTER", L"</CENTER>"}) {
        GuardedText text(psz);
        const wchar_t* cursor = text.Get();
        EXPECT_EQ(wcslen(psz) == 9, DrawHTML::IsNextItem(cursor, DrawHTML::pszKet_CENTER));
    }
}

TEST(DrawHTMLScan, FindNextItemGivesTheFirstPlaceFromTheCursorOn) {
    const wchar_t* psz = L"a</b></B>";
    EXPECT_EQ(psz + 1, DrawHTML::FindNextItem(psz, L"</B>"));
    EXPECT_EQ(psz + 1, DrawHTML::FindNextItem(psz + 1, L"</B>"));
    EXPECT_EQ(psz + 5, DrawHTML::FindNextItem(psz + 2, L"</B>"));
    EXPECT_EQ(nullptr, DrawHTML::FindNextItem(psz + 6, L"</B>"));
    EXPECT_EQ(nullptr, DrawHTML::FindNextItem(L"", L"</B>"));
    EXPECT_EQ(nullptr, DrawHTML::FindNextItem(L"</B", L"</B>"));
    EXPECT_EQ(psz, DrawHTML::FindNextItem(psz, L"A"));
}

TEST(DrawHTMLScan, FindNextItemFindsBehindAFalseStart) {
    const wchar_t* psz = L"<<</<</B</B>";
    EXPECT_EQ(psz + 8, DrawHTML::FindNextItem(psz, L"</B>"));
    const wchar_t* pszLetters = L"DKBDKDKBLUE>";
    EXPECT_EQ(pszLetters + 5, DrawHTML::FindNextItem(pszLetters, DrawHTML::pszBra_DKBLUE));
}

TEST(DrawHTMLScan, FindNextItemStopsAtTheTerminator) {
    GuardedText text(L"abc<</");
    EXPECT_EQ(nullptr, DrawHTML::FindNextItem(text.Get(), L"</B>"));
    GuardedText textWithZero(std::wstring_view(L"a\0</B>", 6));
    EXPECT_EQ(nullptr, DrawHTML::FindNextItem(textWithZero.Get(), L"</B>"));
}

struct StripCase {
    const wchar_t* pszHtml;
    const wchar_t* pszPlain;
};

constexpr StripCase kStripCases[] = {
    {L"", L""},
    {L"plain text", L"plain text"},
    {L"a<br>b", L"a\r\nb"},
    {L"a<BR><bR>b", L"a\r\n\r\nb"},
    {L"a<BRHALF>b", L"ab"},
    {L"<B>a</B> b", L"a b"},
    {L"<FOO BAR=1>a", L"a"},
    {L"&lt;a&amp;&nbsp;", L"&lt;a&amp;&nbsp;"},
    {L"a < b > c", L"a  c"},
    {L"a<<b>c>d", L"ac>d"},
    {L"a>b", L"a>b"},
    {L"<T><B></T>", L""},
    {L"a<B", L"a"},
    {L"a<", L"a"},
    {L"<>a", L"a"},
    {L"<BR", L""},
    {L" a\tb\r\n", L" a\tb\r\n"},
};

TEST(DrawHTMLStripTags, DropsTagsAndBreaksLines) {
    for (const StripCase& row : kStripCases) {
        wchar_t out[64];
        std::fill(std::begin(out), std::end(out), L'#');
        const auto nSize = static_cast<unsigned>(wcslen(row.pszPlain)) + 1;
        EXPECT_EQ(nSize, DrawHTML::GetHTMLTextStripTags(row.pszHtml, out, 64)) << row.pszHtml;
        EXPECT_STREQ(row.pszPlain, out) << row.pszHtml;
        EXPECT_EQ(L'#', out[nSize]) << row.pszHtml;
    }
}

TEST(DrawHTMLStripTags, TellsTheSizeWithoutABuffer) {
    for (const StripCase& row : kStripCases)
        EXPECT_EQ(wcslen(row.pszPlain) + 1, DrawHTML::GetHTMLTextStripTags(row.pszHtml, nullptr, 0))
            << row.pszHtml;
}

TEST(DrawHTMLStripTags, WritesNoMoreThanItTells) {
    for (const StripCase& row : kStripCases) {
        GuardedText html(row.pszHtml);
        const unsigned n = DrawHTML::GetHTMLTextStripTags(html.Get(), nullptr, 0);
        GuardedMemory out(n * sizeof(wchar_t));
        auto* psz = static_cast<wchar_t*>(out.Get());
        EXPECT_EQ(n, DrawHTML::GetHTMLTextStripTags(html.Get(), psz, static_cast<int>(n)));
        EXPECT_STREQ(row.pszPlain, psz);
    }
}

TEST(DrawHTMLStripTags, EveryCapacityGivesTheSame) {
    for (int nCapacity : {-2147483647 - 1, -1, 0, 1, 2, 3, 5, 6, 100, 2147483647}) {
        wchar_t out[8];
        EXPECT_EQ(5u, DrawHTML::GetHTMLTextStripTags(L"a<br>b", out, nCapacity)) << nCapacity;
        EXPECT_STREQ(L"a\r\nb", out) << nCapacity;
    }
}

TEST(DrawHTMLStripTags, NullIsAnEmptyText) {
    wchar_t out[2] = {L'#', L'#'};
    EXPECT_EQ(1u, DrawHTML::GetHTMLTextStripTags(nullptr, out, 2));
    EXPECT_EQ(L'\0', out[0]);
    EXPECT_EQ(L'#', out[1]);
    EXPECT_EQ(1u, DrawHTML::GetHTMLTextStripTags(nullptr, nullptr, 0));
    EXPECT_EQ(1u, DrawHTML::GetHTMLTextStripTags(L"", nullptr, 5));
}

TEST(DrawHTMLWords, WhiteSpaceIsFourCharacters) {
    HtmlProbe probe;
    for (unsigned n = 1; n <= 0xFFFF; ++n) {
        const wchar_t sz[] = {static_cast<wchar_t>(n), L'x', 0};
        const bool bBlank = n == ' ' || n == '\t' || n == '\r' || n == '\n';
        const wchar_t* cursor = sz;
        ASSERT_EQ(bBlank, probe.SkipWhiteSpace(cursor)) << n;
        ASSERT_EQ(sz + bBlank, cursor) << n;
    }
    const wchar_t* pszMany = L" \r\n\t  x ";
    EXPECT_EQ(1, probe.SkipWhiteSpace(pszMany));
    EXPECT_STREQ(L"x ", pszMany);
    const wchar_t* pszEmpty = L"";
    EXPECT_EQ(0, probe.SkipWhiteSpace(pszEmpty));
}

struct WordCase {
    const wchar_t* pszText;
    const wchar_t* pszWord;
    const wchar_t* pszRest;
};

TEST(DrawHTMLWords, WordEndsAtBlanksTagsAndBeforeSlashes) {
    constexpr WordCase kCases[] = {
        {L"word", L"word", L""},
        {L"two words", L"two", L" words"},
        {L"a\tb", L"a", L"\tb"},
        {L"a\rb", L"a", L"\rb"},
        {L"a\nb", L"a", L"\nb"},
        {L" a", L"", L" a"},
        {L"", L"", L""},
        {L"<B>", L"", L"<B>"},
        {L"a<b", L"a", L"<b"},
        {L"a>b", L"a>b", L""},
        {L"C:\\Windows", L"C:", L"\\Windows"},
        {L"\\Windows\\x", L"\\Windows", L"\\x"},
        {L"/a/b", L"/a", L"/b"},
        {L"//a", L"/", L"/a"},
        {L"&amp;/a", L"&", L"/a"},
        {L"&amp;&lt;&gt;x&nbsp;y z", L"&<>x y", L" z"},
        {L"&AMP;&Lt;&gT;&nBsP;", L"&<> ", L""},
        {L"&nbsp;", L" ", L""},
        {L"&amp;amp;", L"&amp;", L""},
        {L"&&amp;", L"&&", L""},
        {L"&amp", L"&amp", L""},
        {L"&amp ;", L"&amp", L" ;"},
        {L"&quot;", L"&quot;", L""},
        {L"&;", L"&;", L""},
        {L"&", L"&", L""},
        {L"&lt<;", L"&lt", L"<;"},
        {L"&12345678;&amp;", L"&12345678;&", L""},
        {L"&1234567890;x", L"&1234567890;x", L""},
        {L"&12345678901;x", L"&12345678901;x", L""},
        {L"DKBLUE>", L"DKBLUE>", L""},
    };
    HtmlProbe probe;
    for (const WordCase& row : kCases) {
        HtmlProbe::Word word = probe.TakeWord(row.pszText);
        EXPECT_EQ(row.pszWord, word.strWord) << row.pszText;
        EXPECT_EQ(row.pszRest, word.strRest) << row.pszText;
        EXPECT_EQ(*row.pszWord ? 1 : 0, word.nResult) << row.pszText;
    }
}

TEST(DrawHTMLWords, FirstBracketMayBeText) {
    HtmlProbe probe;
    EXPECT_EQ(L"<FOO>bar", probe.TakeWord(L"<FOO>bar<B>", 1).strWord);
    EXPECT_EQ(L"<", probe.TakeWord(L"<<B>", 1).strWord);
    EXPECT_EQ(L"<", probe.TakeWord(L"</CENTER>", 1).strWord) << "a slash that is not first";
    EXPECT_EQ(L"a<b", probe.TakeWord(L"a<b<c", 1).strWord) << "the first, wherever it stands";
    EXPECT_EQ(L"<&", probe.TakeWord(L"<&amp; b", 1).strWord);
}

TEST(DrawHTMLWords, LiteralTextEndsAtItsOwnTagOnly) {
    HtmlProbe probe;
    probe.bLiteral = 1;
    EXPECT_EQ(L"<B>x<", probe.TakeWord(L"<B>x</B>").strWord) << "slashes divide it all the same";
    EXPECT_EQ(L"<B>x", probe.TakeWord(L"<B>x</T>y").strWord);
    EXPECT_EQ(L"</t>y", probe.TakeWord(L"<B></t>y").strRest);
    EXPECT_EQ(L"&amp;", probe.TakeWord(L"&amp; x").strWord);
    EXPECT_EQ(L"", probe.TakeWord(L"</T>").strWord);
    EXPECT_EQ(L"<", probe.TakeWord(L"</T>", 1).strWord) << "the first bracket is text";
}

TEST(DrawHTMLWords, WithoutBreaksAWordRunsToTheNextTag) {
    HtmlProbe probe;
    probe.bNoBreak = 1;
    HtmlProbe::Word word = probe.TakeWord(L" a\t b\r\n\\c/d&amp;e<B>");
    EXPECT_EQ(L" a\t b\r\n\\c/d&e", word.strWord);
    EXPECT_EQ(L"<B>", word.strRest);
    probe.bLiteral = 1;
    EXPECT_EQ(L"a <B> &lt; </B>", probe.TakeWord(L"a <B> &lt; </B></T>").strWord);
}

TEST(DrawHTMLWords, PathHasAWordForEachFolder) {
    HtmlProbe probe;
    EXPECT_EQ(L"|C:|\\Windows|\\System32|and|http:|/|/x",
              probe.AllWords(L"C:\\Windows\\System32 and http://x"));
}

TEST(DrawHTMLWords, ReadsNothingBehindTheTerminator) {
    HtmlProbe probe;
    for (const wchar_t* psz :
         {L"&", L"&a", L"&am", L"&amp", L"&nbsp", L"&123456789", L"a<", L"a\\", L"", L" "}) {
        GuardedText text(psz);
        const std::wstring str = psz;
        const bool bStops = str == L"a<" || str == L"a\\";
        EXPECT_EQ(bStops ? L"a" : str == L" " ? L"" : str, probe.TakeWord(text.Get()).strWord);
        probe.bLiteral = 1;
        probe.TakeWord(text.Get());
        probe.bLiteral = 0;
    }
}

/// The rules of a word once more, character by character, without a thought for speed.
std::wstring SlowWord(const std::wstring& str, bool bFirstLT, bool bLiteral, bool bNoBreak) {
    auto startsWith = [&](std::size_t n, std::wstring_view strItem) {
        return str.size() - n >= strItem.size() &&
               ::_wcsnicmp(str.c_str() + n, strItem.data(), strItem.size()) == 0;
    };
    std::wstring strOut;
    for (std::size_t n = 0; n < str.size();) {
        if (str[n] == L'<') {
            if (bFirstLT)
                bFirstLT = false;
            else if (!bLiteral || startsWith(n, L"</T>"))
                return strOut;
        }
        if (str[n] == L'&' && !bLiteral) {
            const std::size_t nSemicolon = str.substr(n, 11).find(L';');
            if (nSemicolon != std::wstring::npos) {
                const std::pair<std::wstring, wchar_t> kNames[] = {
                    {L"&amp;", L'&'}, {L"&lt;", L'<'}, {L"&gt;", L'>'}, {L"&nbsp;", L' '}};
                bool bTaken = false;
                for (const auto& [strName, ch] : kNames) {
                    if (bTaken || !startsWith(n, strName)) continue;
                    strOut += ch;
                    n += strName.size();
                    bTaken = true;
                }
                if (bTaken) continue;
            }
        }
        if (!bNoBreak) {
            if (wcschr(L" \t\r\n", str[n])) return strOut;
            if (!strOut.empty() && (str[n] == L'\\' || str[n] == L'/')) return strOut;
        }
        strOut += str[n++];
    }
    return strOut;
}

TEST(DrawHTMLWords, RandomTextsGiveTheWordsOfTheRules) {
    const std::vector<std::wstring> pieces = {
        L"a",     L"Z", L"<",   L">",    L"/",     L"\\",     L" ",  L"\t", L"&",
        L"&amp;", L";", L"<B>", L"</T>", L"&nbsp", L"&nbsp;", L"\r", L"x",  L"&1234567"};
    std::mt19937 random(4101);
    GuardedArea area(256);
    HtmlProbe probe;
    for (int i = 0; i < 200'000; ++i) {
        std::wstring str;
        for (unsigned n = random() % 8; n; --n) str += pieces[random() % pieces.size()];
        const int firstLT = static_cast<int>(random() % 2);
        probe.bLiteral = random() % 4 == 0;
        probe.bNoBreak = random() % 4 == 0;
        ASSERT_EQ(SlowWord(str, firstLT, probe.bLiteral, probe.bNoBreak),
                  probe.TakeWord(area.Put(str), firstLT).strWord)
            << str << " round " << i;
    }
}

struct LiteralCase {
    const wchar_t* pszLiteral;
    const wchar_t* pszExpected;
};

TEST(DrawHTMLScan, LiteralsAreThoseOfTheLanguage) {
    using H = DrawHTML;
    const LiteralCase kCases[] = {
        {H::pszBra_B, L"<B>"},
        {H::pszKet_B, L"</B>"},
        {H::pszBra_I, L"<I>"},
        {H::pszKet_I, L"</I>"},
        {H::pszBra_U, L"<U>"},
        {H::pszKet_U, L"</U>"},
        {H::pszBra_H, L"<H>"},
        {H::pszKet_H, L"</H>"},
        {H::pszBra_BIG, L"<BIG>"},
        {H::pszKet_BIB, L"</BIG>"},
        {H::pszBra_SMALL, L"<SMALL>"},
        {H::pszKet_SMALL, L"</SMALL>"},
        {H::pszBra_A, L"<A>"},
        {H::pszKet_A, L"</A>"},
        {H::pszBra_A1, L"<A1>"},
        {H::pszKet_A1, L"</A1>"},
        {H::pszBra_A9, L"<A9>"},
        {H::pszKet_A9, L"</A9>"},
        {H::pszBra_AA, L"<AA>"},
        {H::pszKet_AA, L"</AA>"},
        {H::pszBra_CT, L"<CT>"},
        {H::pszKet_CT, L"</CT>"},
        {H::pszBra_D, L"<D>"},
        {H::pszKet_D, L"</D>"},
        {H::pszBra_RED, L"<RED>"},
        {H::pszKet_RED, L"</RED>"},
        {H::pszBra_DKBLUE, L"DKBLUE>"},
        {H::pszKet_DKBLUE, L"</DKBLUE>"},
        {H::pszBra_NOBR, L"<NOBR>"},
        {H::pszKet_NOBR, L"</NOBR>"},
        {H::pszBra_CENTER, L"<CENTER>"},
        {H::pszKet_CENTER, L"</CENTER>"},
        {H::pszBra_T, L"<T>"},
        {H::pszKet_T, L"</T>"},
        {H::pszBR, L"<BR>"},
        {H::pszBRHALF, L"<BRHALF>"},
        {H::pszAMP, L"&amp;"},
        {H::pszLT, L"&lt;"},
        {H::pszGT, L"&gt;"},
        {H::pszNBSP, L"&nbsp;"},
    };
    for (const LiteralCase& row : kCases) EXPECT_STREQ(row.pszExpected, row.pszLiteral);
}
