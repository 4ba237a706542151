#include "runtime/text/str_chars.h"
#include "support/guard_page.h"

#include <windows.h>
#include <gtest/gtest.h>
#include <random>
#include <string>
#include <vector>

namespace {
// Sets of characters

/// A set of characters: a flag for each that there is.
class Codes {
  public:
    Codes() = default;
    Codes(std::initializer_list<unsigned> codes) {
        for (unsigned n : codes) flags[n] = true;
    }
    bool Has(unsigned n) const { return flags[n]; }
    void Add(const Codes& other) {
        for (unsigned n = 0; n <= 0xFFFF; ++n) flags[n] = flags[n] || other.flags[n];
    }
    void Add(unsigned n) { flags[n] = true; }
    bool operator==(const Codes& other) const { return flags == other.flags; }

  private:
    std::vector<bool> flags = std::vector<bool>(0x10000);
};

Codes Range(unsigned nFirst, unsigned nLast) {
    Codes codes;
    for (unsigned n = nFirst; n <= nLast; ++n) codes.Add(n);
    return codes;
}

Codes Join(std::initializer_list<Codes> parts) {
    Codes all;
    for (const Codes& part : parts) all.Add(part);
    return all;
}

const Codes kCapitals = Range('A', 'Z'), kLetters = Join({kCapitals, Range('a', 'z')}),
            kDigits = Range('0', '9');

struct CharSetCase {
    const char* pszName;
    int (*pfnTest)(wchar_t);
    Codes members;
};

class CharSets : public testing::TestWithParam<CharSetCase> {};

TEST_P(CharSets, HaveTheirMembersOfAllCharacters) {
    for (unsigned n = 0; n <= 0xFFFF; ++n) {
        ASSERT_EQ(static_cast<int>(GetParam().members.Has(n)),
                  GetParam().pfnTest(static_cast<wchar_t>(n)))
            << n;
    }
}

INSTANTIATE_TEST_SUITE_P(
    Cases, CharSets,
    testing::Values(
        CharSetCase{"White", IsWhiteChar, {' ', 9, 13, 10}},
        CharSetCase{"Alpha", IsAlphaChar, kLetters},
        CharSetCase{"Capital", IsCapitalChar, kCapitals}, CharSetCase{"Num", IsNumChar, kDigits},
        CharSetCase{"AlphaNum", IsAlphaNumChar, Join({kLetters, kDigits})},
        CharSetCase{"Hex", IsHexChar, Join({kDigits, Range('A', 'F'), Range('a', 'f')})},
        CharSetCase{"Code", IsCodeChar, Join({Range(0, 31), {127}})},
        CharSetCase{"Printable", IsPrintableChar,
                    Join({Range(32, 126), {9, 10, 12, 13, 26}, Range(128, 0xFFFF)})},
        CharSetCase{
            "Punctuation", IsPunctuationChar,
            Join(
                {{33, 34}, Range(39, 47), {58, 59, 61, 63}, Range(91, 94), {96}, Range(123, 126)})},
        CharSetCase{
            "Misc", IsMiscChar,
            Join({{32, 33}, Range(35, 47), Range(58, 64), Range(91, 96), Range(123, 126)})}),
    [](const auto& row) { return std::string(row.param.pszName); });

TEST(IsPrintableChar, SaysYesTo26AndNoTo127And27) {
    EXPECT_EQ(1, IsPrintableChar(L'\x1A'));
    EXPECT_EQ(0, IsPrintableChar(L'\x7F'));
    EXPECT_EQ(0, IsPrintableChar(L'\x1B'));
}

TEST(IsPrintableChar, EightBitFormAgreesAndKnowsNoSign) {
    for (unsigned n = 0; n <= 0xFF; ++n) {
        EXPECT_EQ(IsPrintableChar(static_cast<wchar_t>(n)), IsPrintableChar(static_cast<char>(n)))
            << n;
    }
    EXPECT_EQ(1, IsPrintableChar('\x80'));
    EXPECT_EQ(1, IsPrintableChar('\xFF'));
}

TEST(MakeStrPrintable, ReplacesTheFirstCharactersByDots) {
    std::wstring str = L"a\x01\x1F \t\n\f\r\x1A\x1B\x7F\x80\xFFFF\x02";
    MakeStrPrintable(str.data(), static_cast<unsigned>(str.size() - 1));
    EXPECT_EQ(L"a.. \t\n\f\r\x1A..\x80\xFFFF\x02", str);
}

TEST(MakeStrPrintable, TerminatorWithinTheCountIsReplacedToo) {
    wchar_t sz[] = {L'a', 0, L'b', 0};
    MakeStrPrintable(sz, 3);
    EXPECT_STREQ(L"a.b", sz);
}

TEST(MakeStrPrintable, TouchesNothingForNoCharactersOrNull) {
    wchar_t sz[] = L"\x01";
    MakeStrPrintable(sz, 0);
    EXPECT_STREQ(L"\x01", sz);
    MakeStrPrintable(nullptr, 5);
    GuardedArea area(64);
    wchar_t* psz = area.Put(L"\x02");
    MakeStrPrintable(psz, 2);
    EXPECT_EQ(L'.', psz[1]);
}

// Upper and lower case

std::wstring Edited(void (*pfnEdit)(wchar_t*), const std::wstring& str) {
    GuardedArea area((str.size() + 1) * sizeof(wchar_t));
    wchar_t* psz = area.Put(str);
    pfnEdit(psz);
    return psz;
}

TEST(CharToUpper, AgreesWithThePlatformOnEveryCharacterInBothForms) {
    for (unsigned n = 0; n <= 0xFFFF; ++n) {
        auto ch = static_cast<wchar_t>(n);
        wchar_t szUpper[] = {ch, 0}, szLower[] = {ch, 0};
        ::CharUpperBuffW(szUpper, 1);
        ::CharLowerBuffW(szLower, 1);
        wchar_t chUpper = ch, chLower = ch;
        CharToUpper(&chUpper);
        CharToLower(&chLower);
        ASSERT_EQ(szUpper[0], CharToUpper(ch)) << n;
        ASSERT_EQ(szLower[0], CharToLower(ch)) << n;
        ASSERT_EQ(szUpper[0], chUpper) << n;
        ASSERT_EQ(szLower[0], chLower) << n;
    }
}

TEST(CharToLower, ConvertsLettersOfEveryScript) {
    EXPECT_EQ(L'z', CharToLower(L'Z'));
    EXPECT_EQ(0xE4, CharToLower(0xC4));
    EXPECT_EQ(0x434, CharToLower(0x414));
    EXPECT_EQ(L'1', CharToLower(L'1'));
}

TEST(CharToLower, NullInPlaceDoesNothing) {
    CharToLower(static_cast<wchar_t*>(nullptr));
    CharToUpper(static_cast<wchar_t*>(nullptr));
    StrToLower(nullptr);
    StrToUpper(nullptr);
    StrCapitalizeAll(nullptr);
    StrRot13(nullptr);
}

TEST(StrToUpper, ConvertsAWholeText) {
    EXPECT_EQ(L"A \u00C4 1 \u0414", Edited(StrToUpper, L"a \u00E4 1 \u0434"));
    EXPECT_EQ(L"", Edited(StrToUpper, L""));
    EXPECT_EQ(L"X", Edited(StrToUpper, L"x"));
}

TEST(StrToLower, ConvertsAWholeText) {
    EXPECT_EQ(L"a \u00E4 1 \u0434", Edited(StrToLower, L"A \u00C4 1 \u0414"));
    EXPECT_EQ(L"", Edited(StrToLower, L""));
}

TEST(StrCapitalizeAll, RaisesTheFirstLetterOfEachWord) {
    EXPECT_EQ(L"Some Words\tAnd\r\nLINES", Edited(StrCapitalizeAll, L"some words\tand\r\nlINES"));
    EXPECT_EQ(L"  A  B ", Edited(StrCapitalizeAll, L"  a  b "));
    EXPECT_EQ(L"", Edited(StrCapitalizeAll, L""));
    EXPECT_EQ(L" ", Edited(StrCapitalizeAll, L" "));
    EXPECT_EQ(L"X", Edited(StrCapitalizeAll, L"x"));
}

TEST(StrCapitalizeAll, OnlyAsciiLettersBeginAWord) {
    EXPECT_EQ(L"\u00E9Tat 3Rd (Note) A-b", Edited(StrCapitalizeAll, L"\u00E9tat 3rd (note) a-b"));
    EXPECT_EQ(L"1 2 Three", Edited(StrCapitalizeAll, L"1 2 three"));
}

TEST(StrRot13, RotatesAsciiLettersOnly) {
    EXPECT_EQ(L"NOPQRSTUVWXYZABCDEFGHIJKLM", Edited(StrRot13, L"ABCDEFGHIJKLMNOPQRSTUVWXYZ"));
    EXPECT_EQ(L"nopqrstuvwxyzabcdefghijklm", Edited(StrRot13, L"abcdefghijklmnopqrstuvwxyz"));
    EXPECT_EQ(L"@[`{09 \u00E4", Edited(StrRot13, L"@[`{09 \u00E4"));
    EXPECT_EQ(L"", Edited(StrRot13, L""));
}

TEST(StrRot13, TwiceGivesTheTextBack) {
    std::wstring str = L"Mixed Text, 1 \u00E4 z";
    EXPECT_EQ(str, Edited(StrRot13, Edited(StrRot13, str)));
}

// Blanks at the ends

struct TrimCase {
    const char* pszName;
    const wchar_t* pszText;
    const wchar_t* pszExpected;
};

class TrimTest : public testing::TestWithParam<TrimCase> {};

TEST_P(TrimTest, BothFormsRemoveWhiteCharactersFromTheEnds) {
    GuardedArea area(256);
    for (auto* pfnTrim : {TrimStr, static_cast<void (*)(wchar_t*)>(StrTrimW)}) {
        wchar_t* psz = area.Put(GetParam().pszText);
        pfnTrim(psz);
        EXPECT_STREQ(GetParam().pszExpected, psz);
    }
}

INSTANTIATE_TEST_SUITE_P(
    Cases, TrimTest,
    testing::Values(TrimCase{"Nothing", L"a b", L"a b"}, TrimCase{"Front", L" \t\r\na", L"a"},
                    TrimCase{"Back", L"a \t\r\n", L"a"}, TrimCase{"Both", L"  a b\t", L"a b"},
                    TrimCase{"Empty", L"", L""}, TrimCase{"OneBlank", L" ", L""},
                    TrimCase{"OneCharacter", L"x", L"x"}, TrimCase{"OnlyWhite", L"\r\n \t", L""},
                    TrimCase{"OtherBlanksStay", L"\u00A0a\f\v", L"\u00A0a\f\v"}),
    [](const auto& row) { return std::string(row.param.pszName); });

TEST(TrimStr, NullIsAllowed) {
    TrimStr(nullptr);
    StrTrimW(nullptr);
}

TEST(TrimStr, RandomTextsLoseTheirEndsAndNothingElse) {
    std::mt19937 random(1);
    GuardedArea area(256);
    for (int i = 0; i < 50000; ++i) {
        std::wstring str;
        for (auto n = random() % 12; n > 0; --n) str += L" \t\r\nab\f"[random() % 7];
        std::wstring strExpected;
        std::size_t nFirst = str.find_first_not_of(L" \t\r\n");
        if (nFirst != std::wstring::npos) {
            strExpected = str.substr(nFirst, str.find_last_not_of(L" \t\r\n") - nFirst + 1);
        }
        wchar_t* psz = area.Put(L'#' + str) + 1;
        TrimStr(psz);
        ASSERT_EQ(strExpected, psz);
        ASSERT_EQ(L'#', psz[-1]);
    }
}

struct SkipCase {
    const char* pszName;
    const wchar_t* pszText;
    int nResult;
    const wchar_t* pszRest;
};

class SkipLeadingWhiteSpacesTable : public testing::TestWithParam<SkipCase> {};

TEST_P(SkipLeadingWhiteSpacesTable, BothFormsPassBlanksAndOneQuote) {
    const SkipCase& row = GetParam();
    GuardedText text(row.pszText);
    const wchar_t* psz = text.Get();
    EXPECT_EQ(row.nResult, SkipLeadingWhiteSpaces(psz));
    EXPECT_STREQ(row.pszRest, psz);
    std::wstring str = row.pszText;
    wchar_t* pszMutable = str.data();
    EXPECT_EQ(row.nResult, SkipLeadingWhiteSpaces(pszMutable));
    EXPECT_STREQ(row.pszRest, pszMutable);
}

INSTANTIATE_TEST_SUITE_P(
    Cases, SkipLeadingWhiteSpacesTable,
    testing::Values(
        SkipCase{"Empty", L"", 0, L""}, SkipCase{"Nothing", L"a", 0, L"a"},
        SkipCase{"Blanks", L" \t a b", 0, L"a b"}, SkipCase{"Quote", L"\"a\"", 1, L"a\""},
        SkipCase{"BlanksAroundTheQuote", L" \t\" \ta", 1, L"a"},
        SkipCase{"OnlyAQuote", L"\"", 1, L""}, SkipCase{"OneQuoteOnly", L"\"\"a", 1, L"\"a"},
        SkipCase{"OnlyABlank", L" ", 0, L""}, SkipCase{"LineEndsStay", L"\r\n\"a", 0, L"\r\n\"a"},
        SkipCase{"LineEndBehindTheQuoteStays", L"\" \r", 1, L"\r"}),
    [](const auto& row) { return std::string(row.param.pszName); });

TEST(SkipBlanksAndTabs, EndsAtTheFirstOtherCharacter) {
    GuardedText text(L" \t \ra"), blanks(L"\t ");
    EXPECT_EQ(text.Get() + 3, SkipBlanksAndTabs(text.Get()));
    EXPECT_EQ(blanks.Get() + 2, SkipBlanksAndTabs(blanks.Get()));
    std::wstring str = L" x";
    EXPECT_EQ(str.data() + 1, SkipBlanksAndTabs(str.data()));
}

TEST(AsciiSet, HasWhatItWasGiven) {
    constexpr AsciiSet kSet = AsciiSet(L"a b").Add(L'0', L'2').Add(L'~', L'~');
    Codes members;
    for (unsigned n = 0; n <= 0xFFFF; ++n) {
        if (kSet.Has(static_cast<wchar_t>(n))) members.Add(n);
    }
    EXPECT_EQ((Codes{'0', '1', '2', 'a', 'b', '~'}), members) << "a blank only sets apart";
    EXPECT_TRUE(AsciiSet().Add(L' ', L' ').Has(L' '));
    EXPECT_FALSE(AsciiSet().Has(0));
}

TEST(AsciiSet, AnyInLooksUpToTheTerminator) {
    constexpr AsciiSet kSet(L"* ?");
    EXPECT_TRUE(kSet.AnyIn(GuardedText(L"ab?").Get()));
    EXPECT_FALSE(kSet.AnyIn(GuardedText(L"ab\u012A").Get())) << "of 16 bits";
    EXPECT_FALSE(kSet.AnyIn(GuardedText(L"").Get()));
}

TEST(SkipLeadingWhiteSpaces, NullStaysNull) {
    const wchar_t* psz = nullptr;
    EXPECT_EQ(0, SkipLeadingWhiteSpaces(psz));
    EXPECT_EQ(nullptr, psz);
}
} // namespace
