#include "runtime/text/str_chars.h"
#include "support/guard_page.h"

#include <gtest/gtest.h>
#include <set>
#include <string>

namespace {
using Codes = std::set<unsigned>;

Codes Range(unsigned nFirst, unsigned nLast) {
    Codes codes;
    for (unsigned n = nFirst; n <= nLast; ++n) codes.insert(n);
    return codes;
}

Codes Join(std::initializer_list<Codes> parts) {
    Codes all;
    for (const Codes& part : parts) all.insert(part.begin(), part.end());
    return all;
}

TEST(CharSets, TableOfAllRows) {
    const Codes capitals = Range('A', 'Z'), letters = Join({capitals, Range('a', 'z')}),
                digits = Range('0', '9');
    const struct {
        const char* pszName;
        int (*pfnTest)(wchar_t);
        Codes members;
    } rows[] = {
        {"IsWhiteChar", IsWhiteChar, {' ', 9, 13, 10}},
        {"IsAlphaChar", IsAlphaChar, letters},
        {"IsCapitalChar", IsCapitalChar, capitals},
        {"IsNumChar", IsNumChar, digits},
        {"IsAlphaNumChar", IsAlphaNumChar, Join({letters, digits})},
        {"IsHexChar", IsHexChar, Join({digits, Range('A', 'F'), Range('a', 'f')})},
        {"IsCodeChar", IsCodeChar, Join({Range(0, 31), {127}})},
        {"IsPrintableChar", IsPrintableChar,
         Join({Range(32, 126), {9, 10, 12, 13, 26}, Range(128, 0xFFFF)})},
        {"IsPunctuationChar", IsPunctuationChar,
         Join({{33, 34}, Range(39, 47), {58, 59, 61, 63}, Range(91, 94), {96}, Range(123, 126)})},
        {"IsMiscChar", IsMiscChar,
         Join({{32, 33}, Range(35, 47), Range(58, 64), Range(91, 96), Range(123, 126)})},
    };
    for (const auto& row : rows) {
        for (unsigned n = 0; n <= 0xFFFF; ++n) {
            ASSERT_EQ(static_cast<int>(row.members.count(n)), row.pfnTest(static_cast<wchar_t>(n)))
                << row.pszName << " of " << n;
        }
    }
}

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
} // namespace
