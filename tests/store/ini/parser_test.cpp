#include "store/ini/parser.h"
#include "support/guard_page.h"

#include <gtest/gtest.h>
#include <algorithm>
#include <cwchar>
#include <iterator>
#include <random>
#include <string>

namespace {
/// What is left behind the position.
std::wstring Rest(Parser& parser) {
    std::wstring str;
    while (parser.NotEnd()) {
        str += parser.GetCurrentChar();
        parser.SkipChar();
    }
    return str;
}

/// What is left after one step, and the step's result.
template <class Fn>
std::wstring After(const std::wstring& strText, Fn fnStep, int nExpected) {
    GuardedText text(strText);
    Parser parser(text.Get(), 0);
    EXPECT_EQ(nExpected, fnStep(parser));
    return Rest(parser);
}

TEST(Parser, TextEndsAtItsTerminatorOrItsLength) {
    Parser whole(L"abc", 0), cut(L"abc", 2), longer(L"abc", 9), inner(L"ab\0c", 4);
    EXPECT_EQ(L"abc", Rest(whole));
    EXPECT_EQ(L"ab", Rest(cut));
    EXPECT_EQ(L"abc", Rest(longer));
    EXPECT_EQ(L"ab", Rest(inner));
    EXPECT_EQ(0, Parser(L"", 0).NotEnd());
    EXPECT_EQ(0, Parser(nullptr, 0).NotEnd());
    EXPECT_EQ(0, Parser(nullptr, 5).NotEnd());
    EXPECT_EQ(1, Parser(L"a", 1).NotEnd());
}

TEST(Parser, NothingBehindTheLengthIsRead) {
    GuardedMemory memory(sizeof(wchar_t));
    auto* pch = static_cast<wchar_t*>(memory.Get());
    for (wchar_t ch : {L'a', L'\r', L'\n', L' ', L'['}) {
        *pch = ch;
        Parser parser(pch, 1);
        EXPECT_EQ(ch == L'\n', parser.IsCR());
        wchar_t szToken[4];
        parser.TokenCopy(szToken, 4);
        parser.SkipChar();
        EXPECT_EQ(0, parser.NotEnd() || parser.IsWhite() || parser.IsTab() || parser.IsCR() ||
                         parser.IsUnicodePrefix() || parser.MustBe(ch));
        EXPECT_EQ(1, parser.IsOneOf(L""));
        EXPECT_EQ(0, parser.SkipUnicodePrefix() || parser.SkipChar() || parser.SkipWhite() ||
                         parser.SkipCR() || parser.SkipLine() || parser.SkipWhiteLines() ||
                         parser.SkipToken());
        parser.TokenCopy(szToken, 4);
        EXPECT_STREQ(L"", szToken);
    }
}

TEST(Parser, CharactersAround) {
    Parser parser(L"abc", 0);
    parser.SkipChar();
    EXPECT_EQ(L'a', parser.GetPrevChar());
    EXPECT_EQ(L'b', parser.GetCurrentChar());
    EXPECT_EQ(L'c', parser.GetNextChar());
}

TEST(Parser, WhiteIsBlankAndTab) {
    EXPECT_EQ(1, Parser(L" ", 0).IsWhite());
    EXPECT_EQ(1, Parser(L"\t", 0).IsWhite());
    EXPECT_EQ(1, Parser(L"\t", 0).IsTab());
    EXPECT_EQ(0, Parser(L" ", 0).IsTab());
    for (const wchar_t* psz : {L"", L"a", L"\r", L"\n", L"\xA0", L"\v"}) {
        EXPECT_EQ(0, Parser(psz, 0).IsWhite());
        EXPECT_EQ(0, Parser(psz, 0).IsTab());
    }
}

TEST(Parser, IsCR) {
    EXPECT_EQ(1, Parser(L"\n", 0).IsCR());
    EXPECT_EQ(1, Parser(L"\r\n", 0).IsCR());
    for (const wchar_t* psz : {L"", L"\r", L"\ra", L"\r\r\n", L"a\n", L" \n"}) {
        EXPECT_EQ(0, Parser(psz, 0).IsCR());
    }
    EXPECT_EQ(0, Parser(L"\r\n", 1).IsCR()); // the line feed lies behind the end
}

TEST(Parser, IsOneOf) {
    EXPECT_EQ(1, Parser(L"b", 0).IsOneOf(L"abc"));
    EXPECT_EQ(0, Parser(L"d", 0).IsOneOf(L"abc"));
    EXPECT_EQ(0, Parser(L"d", 0).IsOneOf(L""));
    EXPECT_EQ(0, Parser(L"d", 0).IsOneOf(nullptr));
    EXPECT_EQ(1, Parser(L"", 0).IsOneOf(L"abc"));
    EXPECT_EQ(1, Parser(L"", 0).IsOneOf(L""));
}

TEST(Parser, UnicodePrefix) {
    auto skip = [](Parser& parser) { return parser.SkipUnicodePrefix(); };
    EXPECT_EQ(1, Parser(L"\xFEFF", 0).IsUnicodePrefix());
    EXPECT_EQ(0, Parser(L"\xFFFE", 0).IsUnicodePrefix());
    EXPECT_EQ(L"a", After(L"\xFEFF"
                          L"a",
                          skip, 1));
    EXPECT_EQ(L"\xFEFF", After(L"\xFEFF\xFEFF", skip, 1));
    EXPECT_EQ(L"a", After(L"a", skip, 1));
    EXPECT_EQ(L"", After(L"\xFEFF", skip, 0));
    EXPECT_EQ(L"", After(L"", skip, 0));
}

TEST(Parser, SkipChar) {
    auto skip = [](Parser& parser) { return parser.SkipChar(); };
    EXPECT_EQ(L"b", After(L"ab", skip, 1));
    EXPECT_EQ(L"", After(L"a", skip, 0));
    EXPECT_EQ(L"", After(L"", skip, 0));
}

TEST(Parser, SkipWhite) {
    auto skip = [](Parser& parser) { return parser.SkipWhite(); };
    EXPECT_EQ(L"a ", After(L" \t a ", skip, 1));
    EXPECT_EQ(L"\n", After(L" \n", skip, 1));
    EXPECT_EQ(L"", After(L"  ", skip, 0));
}

TEST(Parser, SkipCRPassesEachOnce) {
    auto skip = [](Parser& parser) { return parser.SkipCR(); };
    EXPECT_EQ(L"a", After(L"\r\na", skip, 1));
    EXPECT_EQ(L"a", After(L"\ra", skip, 1));
    EXPECT_EQ(L"a", After(L"\na", skip, 1));
    EXPECT_EQ(L"\ra", After(L"\n\ra", skip, 1));
    EXPECT_EQ(L"\na", After(L"\r\n\na", skip, 1));
    EXPECT_EQ(L"\ra", After(L"\r\ra", skip, 1));
    EXPECT_EQ(L"a", After(L"a", skip, 1));
    EXPECT_EQ(L"", After(L"\r", skip, 0));
}

TEST(Parser, SkipLine) {
    auto skip = [](Parser& parser) { return parser.SkipLine(); };
    EXPECT_EQ(L"b", After(L"a\r\nb", skip, 1));
    EXPECT_EQ(L"b", After(L"a\nb", skip, 1));
    EXPECT_EQ(L"\nb", After(L"\n\nb", skip, 1));
    EXPECT_EQ(L"c", After(L"a\rb\r\nc", skip, 1)); // a carriage return alone ends no line
    EXPECT_EQ(L"b", After(L"a\r\r\nb", skip, 1));
    EXPECT_EQ(L"", After(L"a", skip, 0));
}

TEST(Parser, SkipWhiteLines) {
    auto skip = [](Parser& parser) { return parser.SkipWhiteLines(); };
    EXPECT_EQ(L"a", After(L" \t\r\n\n \r\n  a", skip, 1));
    EXPECT_EQ(L"a\n", After(L"a\n", skip, 1));
    EXPECT_EQ(L"\ra", After(L" \n\ra", skip, 1));
    EXPECT_EQ(L"", After(L" \n \n ", skip, 0));
}

TEST(Parser, SkipToken) {
    auto skip = [](Parser& parser) { return parser.SkipToken(); };
    EXPECT_EQ(L" b", After(L"a b", skip, 1));
    EXPECT_EQ(L"\tb", After(L"a\tb", skip, 1));
    EXPECT_EQ(L"\r\n", After(L"a\r\n", skip, 1));
    EXPECT_EQ(L"\n", After(L"a\rb\n", skip, 1));
    EXPECT_EQ(L" a", After(L" a", skip, 1));
    EXPECT_EQ(L"", After(L"abc", skip, 0));
}

TEST(Parser, MustBe) {
    auto skip = [](Parser& parser) { return parser.MustBe(L'='); };
    EXPECT_EQ(L"a", After(L"=a", skip, 1));
    EXPECT_EQ(L"", After(L"=", skip, 1));
    EXPECT_EQ(L"a=", After(L"a=", skip, 0));
    Parser atEnd(L"", 0);
    EXPECT_EQ(0, atEnd.MustBe(0));
}

TEST(Parser, CharCopyMovesBothOn) {
    Parser parser(L"abc", 0);
    wchar_t sz[4] = {};
    wchar_t* pszOut = sz;
    parser.CharCopy(pszOut);
    parser.CharCopy(pszOut);
    EXPECT_STREQ(L"ab", sz);
    EXPECT_EQ(sz + 2, pszOut);
    EXPECT_EQ(L'c', parser.GetCurrentChar());
}

TEST(Parser, TokenCopyKeepsToItsBuffer) {
    struct Case {
        const wchar_t* pszText;
        unsigned cchOut;
        const wchar_t* pszExpected;
        const wchar_t* pszRest;
    };
    for (const auto& row : {Case{L"abc d", 10, L"abc", L" d"}, Case{L"abc", 4, L"abc", L""},
                            Case{L"abc", 3, L"ab", L"c"}, Case{L"abc", 1, L"", L"abc"},
                            Case{L"a\tb", 4, L"a", L"\tb"}, Case{L"a\r\n", 4, L"a", L"\r\n"},
                            Case{L" a", 4, L"", L" a"}, Case{L"", 4, L"", L""}}) {
        GuardedMemory memory(row.cchOut * sizeof(wchar_t));
        auto* pszOut = static_cast<wchar_t*>(memory.Get());
        Parser parser(row.pszText, 0);
        parser.TokenCopy(pszOut, row.cchOut);
        EXPECT_STREQ(row.pszExpected, pszOut);
        EXPECT_EQ(row.pszRest, Rest(parser));
    }
    Parser parser(L"abc", 0);
    parser.TokenCopy(nullptr, 5);
    wchar_t ch = L'?';
    parser.TokenCopy(&ch, 0);
    EXPECT_EQ(L'?', ch);
    EXPECT_EQ(L"abc", Rest(parser));
}

/// What both of a parser's copies are to give, told slowly: the copy, and what is left.
struct Copied {
    std::wstring strCopy, strRest;
    bool operator==(const Copied&) const = default;
};
Copied CopySlowly(const std::wstring& strText, unsigned cchOut, int bLine, wchar_t ch) {
    Parser parser(strText.c_str(), 0);
    Copied copied;
    while (parser.NotEnd() && !(bLine ? parser.IsCR() : parser.GetCurrentChar() == ch)) {
        if (copied.strCopy.size() + 1 < cchOut) copied.strCopy += parser.GetCurrentChar();
        parser.SkipChar();
    }
    copied.strRest = Rest(parser);
    return copied;
}
Copied CopyAtGuards(const std::wstring& strText, unsigned cchOut, int bLine, wchar_t ch,
                    int bByLength) {
    GuardedArea in(100 * sizeof(wchar_t)), out(100 * sizeof(wchar_t));
    auto* psz = static_cast<wchar_t*>(in.Put(strText.size() * sizeof(wchar_t)));
    std::copy(strText.begin(), strText.end(), psz);
    if (!bByLength) psz = in.Put(strText);
    auto* pszOut = static_cast<wchar_t*>(out.Put(cchOut * sizeof(wchar_t)));
    Parser parser(psz, bByLength ? static_cast<unsigned>(strText.size()) : 0);
    unsigned cch =
        bLine ? parser.CopyToLineEnd(pszOut, cchOut) : parser.CopyToChar(ch, pszOut, cchOut);
    EXPECT_EQ(cch, std::wcslen(pszOut));
    return {pszOut, Rest(parser)};
}

struct CopyLineCase {
    const char* pszName;
    const wchar_t* pszText;
    unsigned cchOut;
    const wchar_t *pszCopy, *pszRest;
};

class ParserCopyToLineEnd : public testing::TestWithParam<CopyLineCase> {};

TEST_P(ParserCopyToLineEnd, CutsWhatDoesNotFitAndPassesIt) {
    const CopyLineCase& row = GetParam();
    Copied expected{row.pszCopy, row.pszRest};
    for (int bByLength : {0, 1}) {
        if (bByLength && !*row.pszText) continue; // length 0 is up to the terminator
        EXPECT_EQ(expected, CopyAtGuards(row.pszText, row.cchOut, 1, 0, bByLength)) << bByLength;
    }
}

INSTANTIATE_TEST_SUITE_P(
    Cases, ParserCopyToLineEnd,
    testing::Values(CopyLineCase{"Empty", L"", 5, L"", L""},
                    CopyLineCase{"UpToTheEnd", L"ab", 5, L"ab", L""},
                    CopyLineCase{"Fits", L"abcd\nx", 5, L"abcd", L"\nx"},
                    CopyLineCase{"DoesNotFit", L"abcde\r\nx", 5, L"abcd", L"\r\nx"},
                    CopyLineCase{"RoomForNothing", L"abc\nx", 1, L"", L"\nx"},
                    CopyLineCase{"EmptyLine", L"\r\n", 5, L"", L"\r\n"},
                    CopyLineCase{"CarriageReturnAloneIsNoLineEnd", L"a\rb\n", 9, L"a\rb", L"\n"},
                    CopyLineCase{"LastCarriageReturn", L"ab\r", 9, L"ab\r", L""},
                    CopyLineCase{"OtherControls", L"a\tb\v\x01\xFFFF", 9, L"a\tb\v\x01\xFFFF",
                                 L""}),
    [](const auto& row) { return std::string(row.param.pszName); });

TEST(Parser, CopyToCharGoesOverLineEnds) {
    EXPECT_EQ((Copied{L"a\r\nb", L"=c=d"}), CopyAtGuards(L"a\r\nb=c=d", 9, 0, L'=', 0));
    EXPECT_EQ((Copied{L"a", L"=c=d"}), CopyAtGuards(L"ab=c=d", 2, 0, L'=', 1));
    EXPECT_EQ((Copied{L"ab", L""}), CopyAtGuards(L"ab", 9, 0, L'=', 1));
}

TEST(Parser, RandomCopiesAreThoseOfSingleSteps) {
    std::mt19937 random(20240702);
    constexpr wchar_t kChars[] = L"ab=\r\n\t\x000E\xFFFF";
    for (int n = 0; n < 3000; ++n) {
        std::wstring strText(1 + random() % 40, 0);
        for (wchar_t& ch : strText) ch = kChars[random() % (std::size(kChars) - 1)];
        unsigned cchOut = 1 + random() % 45;
        for (int bLine : {0, 1}) {
            ASSERT_EQ(CopySlowly(strText, cchOut, bLine, L'='),
                      CopyAtGuards(strText, cchOut, bLine, L'=', random() % 2))
                << n;
        }
    }
}

TEST(Parser, RandomStepsStayInBounds) {
    std::mt19937 random(20240702);
    const wchar_t kChars[] = L"\r\n \tab=\xFEFF";
    GuardedMemory text(20 * sizeof(wchar_t)), token(8 * sizeof(wchar_t));
    auto* const pEnd = static_cast<wchar_t*>(text.Get()) + 20;
    auto* const pTokenEnd = static_cast<wchar_t*>(token.Get()) + 8;
    for (int n = 0; n < 200000; ++n) {
        unsigned cch = 1 + random() % 20;
        std::generate(pEnd - cch, pEnd, [&] { return kChars[random() % std::size(kChars)]; });
        Parser parser(pEnd - cch, cch);
        for (unsigned nStep = 0; parser.NotEnd() && nStep < cch; ++nStep) {
            unsigned cchToken = random() % 9;
            switch (random() % 9) {
            case 0: parser.SkipUnicodePrefix(); break;
            case 1: parser.SkipWhite(); break;
            case 2: parser.SkipCR(); break;
            case 3: parser.SkipLine(); break;
            case 4: parser.SkipWhiteLines(); break;
            case 5: parser.SkipToken(); break;
            case 6: parser.MustBe(kChars[random() % std::size(kChars)]); break;
            case 7: parser.TokenCopy(pTokenEnd - cchToken, cchToken); break;
            default: parser.SkipChar();
            }
            EXPECT_LE(parser.IsWhite() + parser.IsCR() + parser.IsUnicodePrefix(), 1);
            EXPECT_LE(parser.IsTab(), parser.IsWhite());
        }
        ASSERT_LE(Rest(parser).size(), cch);
    }
}
} // namespace
