#include "runtime/text/str_chars.h"
#include "support/guard_page.h"

#include <windows.h>
#include <gtest/gtest.h>
#include <string>

namespace {
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
} // namespace
