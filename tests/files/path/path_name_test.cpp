#include "files/path/path_name.h"
#include "files/path_tables.h"

#include <gtest/gtest.h>
#include <algorithm>

namespace {
class ConvertSlashesTest : public ChangeTest {};
TEST_P(ConvertSlashesTest, EverySlashBecomesABackslash) { ExpectChange(ConvertSlashes); }
INSTANTIATE_TEST_SUITE_P(Texts, ConvertSlashesTest,
                         testing::Values(ChangeCase{"Empty", L"", L""},
                                         ChangeCase{"Slash", L"/", L"\\"},
                                         ChangeCase{"Mixed", L"C:/a\\b//c", L"C:\\a\\b\\\\c"}),
                         kRowName);

// Separators at the end

class AppendBackSlashTest : public ChangeTest {};
TEST_P(AppendBackSlashTest, AddsOneUnlessThereIsOne) { ExpectChange(AppendBackSlash); }
INSTANTIATE_TEST_SUITE_P(
    Texts, AppendBackSlashTest,
    testing::Values(ChangeCase{"Empty", L"", L""}, ChangeCase{"Name", L"a", L"a\\"},
                    ChangeCase{"Backslash", L"a\\", L"a\\"}, ChangeCase{"Slash", L"a/", L"a/"},
                    ChangeCase{"Drive", L"C:", L"C:\\"}, ChangeCase{"Root", L"C:\\", L"C:\\"},
                    ChangeCase{"BackslashAlone", L"\\", L"\\"}),
    kRowName);

class RemoveBackSlashTest : public ChangeTest {};
TEST_P(RemoveBackSlashTest, CutsOneUnlessASeparatorOrColonStandsBefore) {
    ExpectChange(RemoveBackSlash);
}
INSTANTIATE_TEST_SUITE_P(
    Texts, RemoveBackSlashTest,
    testing::Values(ChangeCase{"Empty", L"", L""}, ChangeCase{"Backslash", L"\\", L""},
                    ChangeCase{"Slash", L"/", L""}, ChangeCase{"Name", L"a", L"a"},
                    ChangeCase{"SlashAtTheEnd", L"a/", L"a"}, ChangeCase{"Root", L"C:\\", L"C:\\"},
                    ChangeCase{"RootWithASlash", L"C:/", L"C:/"},
                    ChangeCase{"Path", L"C:\\a\\", L"C:\\a"},
                    ChangeCase{"TwoBackslashes", L"a\\\\", L"a\\\\"},
                    ChangeCase{"SlashAndBackslash", L"a/\\", L"a/\\"},
                    ChangeCase{"Colon", L":\\", L":\\"}),
    kRowName);

class StripBackSlashTest : public ChangeTest {};
TEST_P(StripBackSlashTest, CutsOneWithoutCondition) {
    ExpectChange([](wchar_t* psz) {
        std::size_t cch = psz ? std::wcslen(psz) : 0;
        int bCut = StripBackSlash(psz);
        EXPECT_EQ(bCut, psz && std::wcslen(psz) < cch);
    });
}
INSTANTIATE_TEST_SUITE_P(
    Texts, StripBackSlashTest,
    testing::Values(ChangeCase{"Empty", L"", L""}, ChangeCase{"Backslash", L"\\", L""},
                    ChangeCase{"Name", L"a", L"a"}, ChangeCase{"SlashAtTheEnd", L"a/", L"a"},
                    ChangeCase{"Root", L"C:\\", L"C:"}, ChangeCase{"RootWithASlash", L"C:/", L"C:"},
                    ChangeCase{"TwoBackslashes", L"a\\\\", L"a\\"}),
    kRowName);

// Names

class ConvertDashesTest : public ChangeTest {};
TEST_P(ConvertDashesTest, FourDashesBecomeAHyphen) { ExpectChange(ConvertDashes); }
INSTANTIATE_TEST_SUITE_P(
    Texts, ConvertDashesTest,
    testing::Values(ChangeCase{"Empty", L"", L""},
                    ChangeCase{"TheFour", L"\u2012\u2013\u2014\u2015", L"----"},
                    ChangeCase{"OthersStay", L"\u2011a\u2016-", L"\u2011a\u2016-"}),
    kRowName);

class MakeNamePrettyTest : public ChangeTest {};
TEST_P(MakeNamePrettyTest, FirstUpperOthersLower) { ExpectChange(MakeNamePretty); }
INSTANTIATE_TEST_SUITE_P(
    Texts, MakeNamePrettyTest,
    testing::Values(ChangeCase{"Empty", L"", L""}, ChangeCase{"Letter", L"a", L"A"},
                    ChangeCase{"Words", L"aBC DEF", L"Abc def"},
                    ChangeCase{"BeyondAscii", L"\u00E4\u00C4", L"\u00C4\u00E4"},
                    ChangeCase{"Digit", L"1A", L"1a"}),
    kRowName);

class FixFileNameTest : public ChangeTest {};
TEST_P(FixFileNameTest, EachOfTheTenBecomesADash) {
    auto fix = [](wchar_t* pszOut, const wchar_t* pszIn) {
        EXPECT_EQ(pszOut != nullptr, FixFileName(pszOut, pszIn));
    };
    ExpectCopy(fix);
    ExpectChange([&](wchar_t* psz) { fix(psz, nullptr); });
}
INSTANTIATE_TEST_SUITE_P(Texts, FixFileNameTest,
                         testing::Values(ChangeCase{"Empty", L"", L""},
                                         ChangeCase{"DotAndColon", L"a.b:c", L"a-b-c"},
                                         ChangeCase{"TheTen", L"\"*./:<>?\\|", L"----------"},
                                         ChangeCase{"OthersStay", L"a b&#46;;%'", L"a b&#46;;%'"}),
                         kRowName);

class EncodeFileNameTest : public ChangeTest {};
TEST_P(EncodeFileNameTest, DecodesToWhatItWas) {
    auto [pszName, pszText, pszResult] = GetParam();
    PathBuffer out(L"before");
    EXPECT_EQ(1, EncodeFileName(out, pszText));
    EXPECT_STREQ(pszResult, out);
    EXPECT_EQ(1, DecodeFileName(out, pszResult));
    EXPECT_STREQ(pszText, out);
    out.Set(pszText);
    EXPECT_EQ(1, EncodeFileName(out, out));
    EXPECT_STREQ(pszResult, out);
    EXPECT_EQ(1, DecodeFileName(out, out));
    EXPECT_STREQ(pszText, out);
}
INSTANTIATE_TEST_SUITE_P(
    Texts, EncodeFileNameTest,
    testing::Values(ChangeCase{"Empty", L"", L""}, ChangeCase{"Dot", L"a.b", L"a&#46;b"},
                    ChangeCase{"TheTen", L"\"*./:<>?\\|",
                               L"&#34;&#42;&#46;&#47;&#58;&#60;&#62;&#63;&#92;&#124;"},
                    ChangeCase{"OthersStay", L"a b&c#;", L"a b&c#;"}),
    kRowName);

TEST(EncodeAndDecodeFileName, NullsCountAsEmptyAndAnOutputIsNeeded) {
    PathBuffer out(L"before");
    EXPECT_EQ(1, EncodeFileName(out, nullptr));
    EXPECT_STREQ(L"", out);
    out.Set(L"before");
    EXPECT_EQ(1, DecodeFileName(out, nullptr));
    EXPECT_STREQ(L"", out);
    EXPECT_EQ(0, EncodeFileName(nullptr, L"a"));
    EXPECT_EQ(0, DecodeFileName(nullptr, L"a"));
}

class DecodeFileNameTest : public ChangeTest {};
TEST_P(DecodeFileNameTest, OtherNumbersAreDropped) {
    GuardedText text(GetParam().pszText);
    PathBuffer out;
    EXPECT_EQ(1, DecodeFileName(out, text.Get()));
    EXPECT_STREQ(GetParam().pszResult, out);
}
INSTANTIATE_TEST_SUITE_P(
    Texts, DecodeFileNameTest,
    testing::Values(ChangeCase{"OtherCharacter", L"&#65;", L""},
                    ChangeCase{"Between", L"a&#65;b", L"ab"},
                    ChangeCase{"WithoutAnEnd", L"a&#46", L"a."}, // the group runs to the end
                    ChangeCase{"LetterBehind", L"&#46x;b", L".b"},
                    ChangeCase{"NoDigits", L"&#;a", L"a"}, ChangeCase{"NoNumber", L"&#x;a", L"a"},
                    ChangeCase{"StartAlone", L"&#", L""}, ChangeCase{"Ampersand", L"&", L"&"},
                    ChangeCase{"TwoAmpersands", L"&&#46;", L"&."},
                    ChangeCase{"GroupWithinAGroup", L"&#&#46;", L""}, // one group
                    ChangeCase{"LeadingZero", L"&#046;", L"."}, ChangeCase{"Zero", L"&#0;a", L"a"},
                    ChangeCase{"WrapsAt16Bits", L"&#65582;a", L"a"},      // 46 and 0x10000
                    ChangeCase{"WrapsAt32Bits", L"&#4294967342;a", L"a"}, // 46 and 2^32
                    ChangeCase{"WrapsAt64Bits", L"&#18446744073709551662;a", L"a"}, // 46 and 2^64
                    ChangeCase{"Blank", L"&# 46;a", L"a"}, ChangeCase{"Minus", L"&#-46;a", L"a"}),
    kRowName);

TEST(NameCopies, TakeAtMost259Characters) {
    using Change = int (*)(wchar_t*, const wchar_t*);
    for (Change change : {Change(FixFileName), Change(EncodeFileName), Change(DecodeFileName)}) {
        for (std::size_t cch : {258u, 259u, 260u, 261u, 600u}) {
            std::wstring str(cch, L'n');
            PathBuffer out;
            EXPECT_EQ(cch < 260, change(out, str.c_str()));
            EXPECT_EQ(str.substr(0, 259), out.Str());
        }
    }
    PathBuffer longer(std::wstring(300, L'.'), 301);
    EXPECT_EQ(0, FixFileName(longer, nullptr));
    EXPECT_EQ(std::wstring(259, L'-'), longer.Str());
}

TEST(EncodeFileName, CutsNoGroupInTwo) {
    PathBuffer out;
    std::wstring str(254, L'n');
    EXPECT_EQ(1, EncodeFileName(out, (str + L'.').c_str()));
    EXPECT_EQ(str + L"&#46;", out.Str());
    EXPECT_EQ(0, EncodeFileName(out, (str + L"|").c_str()));
    EXPECT_EQ(str, out.Str());
    EXPECT_EQ(0, EncodeFileName(out, (str + L"n.").c_str()));
    EXPECT_EQ(str + L'n', out.Str());
}

TEST(DecodeFileName, GroupsThatGiveNothingAreTakenToTheEnd) {
    std::wstring str(259, L'n');
    PathBuffer out;
    EXPECT_EQ(0, DecodeFileName(out, (str + L"&#46;").c_str()));
    EXPECT_EQ(str, out.Str());
    std::wstring strGroups;
    for (int i = 0; i < 259; ++i) strGroups += L"&#46;&#65;";
    EXPECT_EQ(0, DecodeFileName(out, strGroups.c_str())); // the last group was not looked at
    EXPECT_EQ(std::wstring(259, L'.'), out.Str());
}

struct MaskCase {
    const char* pszName;
    const wchar_t* pszMask;
    const wchar_t* pszFileName;
    const wchar_t* pszResult;
};
class UpdateMaskTest : public testing::TestWithParam<MaskCase> {};
TEST_P(UpdateMaskTest, KeepsWhatTheTwoHaveInCommon) {
    const MaskCase& row = GetParam();
    PathBuffer mask(row.pszMask,
                    std::max(std::wcslen(row.pszMask), std::wcslen(row.pszResult)) + 1);
    GuardedText name(row.pszFileName);
    UpdateMask(mask, name.Get());
    EXPECT_STREQ(row.pszResult, mask);
}
INSTANTIATE_TEST_SUITE_P(Masks, UpdateMaskTest,
                         testing::Values(MaskCase{"LastLetter", L"abc", L"abd", L"ab*"},
                                         MaskCase{"StarAndLess", L"ab*", L"ax", L"a*"},
                                         MaskCase{"Equal", L"abc", L"abc", L"abc"},
                                         MaskCase{"FitsTheStar", L"ab*", L"abc", L"ab*"},
                                         MaskCase{"NothingForTheStar", L"ab*", L"ab", L"ab*"},
                                         MaskCase{"LongerName", L"ab", L"abc", L"ab*"},
                                         MaskCase{"ShorterName", L"abc", L"ab", L"ab*"},
                                         MaskCase{"EmptyMask", L"", L"a", L"*"},
                                         MaskCase{"EmptyName", L"a", L"", L"*"},
                                         MaskCase{"BothEmpty", L"", L"", L""},
                                         MaskCase{"StarAlone", L"*", L"x", L"*"},
                                         MaskCase{"OtherCase", L"Abc", L"abc", L"*"},
                                         MaskCase{"InnerStar", L"a*c", L"abc", L"a*"},
                                         MaskCase{"EqualWithAStar", L"a*c", L"a*c", L"a*c"},
                                         MaskCase{"StarAndMore", L"a*cd", L"a*ce", L"a*"}),
                         kRowName);

TEST(UpdateMask, NullsDoNothing) {
    UpdateMask(nullptr, L"a");
    PathBuffer mask(L"abc");
    UpdateMask(mask, nullptr);
    EXPECT_STREQ(L"abc", mask);
}

TEST(UpdateMask, StaysWithin260Characters) {
    std::wstring str(259, L'n');
    PathBuffer mask(str);
    UpdateMask(mask, (str + L"more").c_str());
    EXPECT_EQ(str.substr(0, 258) + L"*", mask.Str());
    mask.Set(str.substr(1));
    UpdateMask(mask, str.c_str());
    EXPECT_EQ(str.substr(1) + L"*", mask.Str());
}

// Random texts against a second telling of the rules

bool IsInTable(wchar_t ch) { return std::wstring(L"\"*./:<>?\\|").find(ch) != std::wstring::npos; }

TEST(NameRandom, CharacterChanges) {
    RandomPaths paths(841);
    GuardedArea area(2 * 1024);
    for (int i = 0; i < kRandomInputs; ++i) {
        std::wstring str = paths.Next();
        wchar_t* psz = area.Put(str);
        ConvertSlashes(psz);
        std::wstring strExpected = str;
        for (wchar_t& ch : strExpected) ch = ch == L'/' ? L'\\' : ch;
        ASSERT_EQ(strExpected, psz);
        psz = area.Put(str);
        ConvertDashes(psz);
        strExpected = str;
        for (wchar_t& ch : strExpected) ch = ch == 0x2013 ? L'-' : ch;
        ASSERT_EQ(strExpected, psz);
        psz = area.Put(str);
        MakeNamePretty(psz);
        ::CharLowerBuffW(str.data(), static_cast<DWORD>(str.size()));
        if (!str.empty()) ::CharUpperBuffW(str.data(), 1);
        ASSERT_EQ(str, psz);
    }
}

TEST(NameRandom, SeparatorsAtTheEnd) {
    RandomPaths paths(831);
    GuardedArea area(2 * 1024);
    FrontGuardedPath front;
    for (int i = 0; i < kRandomInputs; ++i) {
        std::wstring str = paths.Next();
        bool bEnds = !str.empty() && IsSep(str.back());
        std::wstring strWithout = bEnds ? str.substr(0, str.size() - 1) : str;
        bool bRoot =
            bEnds && !strWithout.empty() && (IsSep(strWithout.back()) || strWithout.back() == L':');
        wchar_t* psz = i % 2 ? area.Put(str) : front.Put(str);
        RemoveBackSlash(psz);
        ASSERT_EQ(bRoot ? str : strWithout, psz);
        psz = i % 2 ? area.Put(str) : front.Put(str);
        ASSERT_EQ(bEnds, StripBackSlash(psz));
        ASSERT_EQ(strWithout, psz);
        bool bAdds = !bEnds && !str.empty();
        psz = i % 2 ? static_cast<wchar_t*>(area.Put((str.size() + 1 + bAdds) * sizeof(wchar_t)))
                    : front.Put(str);
        std::wmemcpy(psz, str.c_str(), str.size() + 1);
        AppendBackSlash(psz);
        ASSERT_EQ(bAdds ? str + L"\\" : str, psz);
    }
}

TEST(NameRandom, FixFileName) {
    RandomPaths paths(842);
    GuardedArea area(2 * 1024);
    PathBuffer out;
    for (int i = 0; i < kRandomInputs; ++i) {
        std::wstring str = paths.Next();
        wchar_t* psz = area.Put(str);
        wchar_t* pszOut = i % 2 ? static_cast<wchar_t*>(out) : psz;
        int nResult = FixFileName(pszOut, i % 2 ? psz : nullptr);
        ASSERT_EQ(str.size() < 260, nResult);
        str = str.substr(0, 259);
        for (wchar_t& ch : str) ch = IsInTable(ch) ? L'-' : ch;
        ASSERT_EQ(str, pszOut);
    }
}

TEST(NameRandom, EncodedNamesHoldNoneOfTheTenAndDecodeBack) {
    RandomPaths paths(843);
    GuardedArea area(2 * 1024);
    PathBuffer out, outDecoded;
    for (int i = 0; i < kRandomInputs; ++i) {
        std::wstring str = paths.Next();
        int nResult = EncodeFileName(out, area.Put(str));
        std::wstring strEncoded = out.Str(), strAll;
        for (wchar_t ch : str) {
            std::wstring strGroup = L"&#" + std::to_wstring(ch) + L";";
            strAll += IsInTable(ch) ? strGroup : std::wstring(1, ch);
        }
        ASSERT_EQ(strAll.size() < 260, nResult);
        ASSERT_TRUE(strAll.starts_with(strEncoded));
        ASSERT_TRUE(nResult ? strAll == strEncoded : strEncoded.size() > 259 - 6);
        if (str.find(L"&#") != std::wstring::npos) continue;
        ASSERT_EQ(1, DecodeFileName(outDecoded, strEncoded.c_str()));
        ASSERT_TRUE(nResult ? str == outDecoded.Str() : str.starts_with(outDecoded.Str()));
    }
}

std::wstring Decoded(const std::wstring& str) {
    std::wstring strOut;
    for (std::size_t n = 0; n < str.size();) {
        if (str.compare(n, 2, L"&#") != 0) {
            strOut += str[n++];
            continue;
        }
        std::size_t nEnd = std::min(str.find(L';', n), str.size());
        std::wstring strNumber = str.substr(n + 2, nEnd - n - 2);
        strNumber = strNumber.substr(0, strNumber.find_first_not_of(L"0123456789"));
        double dCode = strNumber.empty() ? 0 : std::stod(strNumber);
        auto ch = static_cast<wchar_t>(dCode < 65536 ? dCode : 0);
        if (ch && IsInTable(ch)) strOut += ch;
        n = nEnd + 1;
    }
    return strOut;
}

TEST(NameRandom, DecodeFileName) {
    RandomPaths paths(844);
    GuardedArea area(2 * 1024);
    PathBuffer out;
    for (int i = 0; i < kRandomInputs; ++i) {
        std::wstring str = paths.Next();
        if (i % 3 == 0) str += L"&#" + std::to_wstring(paths.Below(130)) + L";" + paths.Next();
        wchar_t* psz = area.Put(str);
        wchar_t* pszOut = i % 2 ? static_cast<wchar_t*>(out) : psz;
        int nResult = DecodeFileName(pszOut, psz);
        std::wstring strAll = Decoded(str);
        ASSERT_EQ(strAll.substr(0, 259), pszOut) << str;
        ASSERT_TRUE(nResult || strAll.size() >= 259) << str;
        ASSERT_TRUE(!nResult || strAll.size() <= 259) << str;
    }
}

TEST(NameRandom, UpdateMask) {
    RandomPaths paths(845);
    GuardedArea area(2 * 1024);
    PathBuffer mask;
    for (int i = 0; i < kRandomInputs; ++i) {
        std::wstring str = paths.Next(259), strName = str.substr(0, paths.Below(str.size() + 2));
        if (i % 2) strName += paths.Next();
        if (i % 16 == 0) strName = str;
        mask.Set(str);
        UpdateMask(mask, area.Put(strName));
        std::size_t n = 0;
        while (n < str.size() && n < strName.size() && str[n] == strName[n] && str[n] != L'*') ++n;
        std::wstring strExpected = str.substr(0, std::min<std::size_t>(n, 258)) + L"*";
        ASSERT_EQ(str == strName ? str : strExpected, mask.Str()) << str << L" " << strName;
    }
}
} // namespace
