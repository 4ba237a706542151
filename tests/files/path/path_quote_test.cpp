#include "files/path/path_command.h"
#include "files/path_tables.h"

#include <gtest/gtest.h>

namespace {
using Change = void (*)(wchar_t*, const wchar_t*);

TEST(AddQuotesIfSpace, OnlyABlankCounts) {
    ExpectChanges({{L"", L""},
                   {L"a", L"a"},
                   {L" ", L"\" \""},
                   {L"a b", L"\"a b\""},
                   {L"a\tb", L"a\tb"},
                   {L"\u00A0", L"\u00A0"},
                   {L"\"a b\"", L"\"\"a b\"\""}}, // also around quotes that are there
                  AddQuotesIfSpace);
}

/// Each row also in place by a null input.
void ExpectBothWays(std::initializer_list<ChangeRow> rows, Change change) {
    ExpectCopies(rows, change);
    ExpectChanges(rows, [&](wchar_t* psz) { change(psz, nullptr); });
}

TEST(UnQuote, DropsALeadingQuoteAndStopsAtTheNext) {
    ExpectBothWays({{L"", L""},
                    {L"\"", L""},
                    {L"\"\"", L""},
                    {L"a", L"a"},
                    {L"\"a b\" c", L"a b"},
                    {L"\"a b", L"a b"},
                    {L"a \"b\"", L"a \"b\""},
                    {L" \"a\"", L" \"a\""}},
                   UnQuote);
}

TEST(RemoveWhiteSpacesAndQuotes, TakesBothEnds) {
    ExpectBothWays({{L"", L""},
                    {L" \t ", L""},
                    {L"\"", L""},
                    {L"\"\"", L""},
                    {L"\" \"", L""},
                    {L"\"\"\"", L"\""},
                    {L"a", L"a"},
                    {L" \ta b\t ", L"a b"},
                    {L" \"a b\" ", L"a b"},
                    {L" \" a \" ", L"a"}, // also within the quotes
                    {L"\"\"a\"\"", L"\"a\""},
                    {L"\"a", L"a"},
                    {L"a\"", L"a"},
                    {L"a\"b", L"a\"b"},
                    {L"\na\n", L"\na\n"}},
                   RemoveWhiteSpacesAndQuotes);
}

TEST(QuoteCopies, AreCutAt259CharactersAndChangesInPlaceAreNot) {
    for (Change change : {Change(UnQuote), Change(RemoveWhiteSpacesAndQuotes)}) {
        for (std::size_t cch : {259u, 260u, 261u, 2000u}) {
            std::wstring str(cch, L'n'), strQuoted = L"\"" + str + L"\"";
            PathBuffer out;
            change(out, strQuoted.c_str());
            EXPECT_EQ(str.substr(0, 259), out.Str());
            change(out, str.c_str());
            EXPECT_EQ(str.substr(0, 259), out.Str());
            PathBuffer text(strQuoted, cch + 3);
            change(text, nullptr);
            EXPECT_EQ(str, text.Str());
        }
    }
}

// Random texts against a second telling of the rules

std::wstring Trimmed(std::wstring str) {
    std::size_t nFirst = str.find_first_not_of(L" \t");
    if (nFirst == std::wstring::npos) return L"";
    return str.substr(nFirst, str.find_last_not_of(L" \t") - nFirst + 1);
}

TEST(QuoteRandom, AllThree) {
    RandomPaths paths(851);
    GuardedArea area(2 * 1024);
    PathBuffer out;
    for (int i = 0; i < kRandomInputs; ++i) {
        std::wstring str = paths.Next();
        if (i % 2) str = (i % 4 == 1 ? L" \"" : L"\"") + str + L"\" ";
        bool bInPlace = i % 3 == 0;
        wchar_t* psz = area.Put(str);
        wchar_t* pszOut = bInPlace ? psz : static_cast<wchar_t*>(out);
        UnQuote(pszOut, bInPlace ? nullptr : psz);
        std::wstring strExpected = str;
        if (!str.empty() && str[0] == L'"') strExpected = str.substr(1, str.find(L'"', 1) - 1);
        ASSERT_EQ(strExpected.substr(0, bInPlace ? 2000 : 259), pszOut) << str;

        psz = area.Put(str);
        pszOut = bInPlace ? psz : static_cast<wchar_t*>(out);
        RemoveWhiteSpacesAndQuotes(pszOut, bInPlace ? nullptr : psz);
        strExpected = Trimmed(str);
        if (strExpected.starts_with(L'"')) strExpected = Trimmed(strExpected.substr(1));
        if (strExpected.ends_with(L'"')) strExpected.pop_back();
        std::size_t nLast = strExpected.find_last_not_of(L" \t");
        strExpected.resize(nLast + 1);
        ASSERT_EQ(strExpected.substr(0, bInPlace ? 2000 : 259), pszOut) << str;

        bool bBlank = str.find(L' ') != std::wstring::npos;
        psz = static_cast<wchar_t*>(area.Put((str.size() + 1 + 2 * bBlank) * sizeof(wchar_t)));
        std::wmemcpy(psz, str.c_str(), str.size() + 1);
        AddQuotesIfSpace(psz);
        ASSERT_EQ(bBlank ? L"\"" + str + L"\"" : str, psz);
    }
}
} // namespace
