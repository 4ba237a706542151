#include "files/path/path_name.h"
#include "files/path_tables.h"

#include <gtest/gtest.h>
#include <algorithm>

namespace {
TEST(ConvertSlashes, EverySlashBecomesABackslash) {
    ExpectChanges({{L"", L""}, {L"/", L"\\"}, {L"C:/a\\b//c", L"C:\\a\\b\\\\c"}}, ConvertSlashes);
}

// Separators at the end

TEST(AppendBackSlash, AddsOneUnlessThereIsOne) {
    ExpectChanges({{L"", L""},
                   {L"a", L"a\\"},
                   {L"a\\", L"a\\"},
                   {L"a/", L"a/"},
                   {L"C:", L"C:\\"},
                   {L"C:\\", L"C:\\"},
                   {L"\\", L"\\"}},
                  AppendBackSlash);
}

TEST(RemoveBackSlash, CutsOneUnlessASeparatorOrColonStandsBefore) {
    ExpectChanges({{L"", L""},
                   {L"\\", L""},
                   {L"/", L""},
                   {L"a", L"a"},
                   {L"a/", L"a"},
                   {L"C:\\", L"C:\\"},
                   {L"C:/", L"C:/"},
                   {L"C:\\a\\", L"C:\\a"},
                   {L"a\\\\", L"a\\\\"},
                   {L"a/\\", L"a/\\"},
                   {L":\\", L":\\"}},
                  RemoveBackSlash);
}

TEST(StripBackSlash, CutsOneWithoutCondition) {
    ExpectChanges({{L"", L""},
                   {L"\\", L""},
                   {L"a", L"a"},
                   {L"a/", L"a"},
                   {L"C:\\", L"C:"},
                   {L"C:/", L"C:"},
                   {L"a\\\\", L"a\\"}},
                  [](wchar_t* psz) {
                      std::size_t cch = psz ? std::wcslen(psz) : 0;
                      int bCut = StripBackSlash(psz);
                      EXPECT_EQ(bCut, psz && std::wcslen(psz) < cch);
                  });
}

// Names

TEST(ConvertDashes, FourDashesBecomeAHyphen) {
    ExpectChanges({{L"", L""},
                   {L"\u2012\u2013\u2014\u2015", L"----"},
                   {L"\u2011a\u2016-", L"\u2011a\u2016-"}},
                  ConvertDashes);
}

TEST(MakeNamePretty, FirstUpperOthersLower) {
    ExpectChanges({{L"", L""},
                   {L"a", L"A"},
                   {L"aBC DEF", L"Abc def"},
                   {L"\u00E4\u00C4", L"\u00C4\u00E4"},
                   {L"1A", L"1a"}},
                  MakeNamePretty);
}

TEST(FixFileName, EachOfTheTenBecomesADash) {
    auto fix = [](wchar_t* pszOut, const wchar_t* pszIn) {
        EXPECT_EQ(pszOut != nullptr, FixFileName(pszOut, pszIn));
    };
    const std::initializer_list<ChangeRow> rows = {{L"", L""},
                                                   {L"a.b:c", L"a-b-c"},
                                                   {L"\"*./:<>?\\|", L"----------"},
                                                   {L"a b&#46;;%'", L"a b&#46;;%'"}};
    ExpectCopies(rows, fix);
    ExpectChanges(rows, [&](wchar_t* psz) { fix(psz, nullptr); });
}

TEST(EncodeAndDecodeFileName, TableOfAllCases) {
    const ChangeRow rows[] = {
        {L"", L""},
        {L"a.b", L"a&#46;b"},
        {L"\"*./:<>?\\|", L"&#34;&#42;&#46;&#47;&#58;&#60;&#62;&#63;&#92;&#124;"},
        {L"a b&c#;", L"a b&c#;"}};
    for (const ChangeRow& row : rows) {
        PathBuffer out(L"before");
        EXPECT_EQ(1, EncodeFileName(out, row.pszText));
        EXPECT_STREQ(row.pszResult, out);
        EXPECT_EQ(1, DecodeFileName(out, row.pszResult));
        EXPECT_STREQ(row.pszText, out);
        out.Set(row.pszText);
        EXPECT_EQ(1, EncodeFileName(out, out));
        EXPECT_STREQ(row.pszResult, out);
        EXPECT_EQ(1, DecodeFileName(out, out));
        EXPECT_STREQ(row.pszText, out);
    }
    PathBuffer out(L"before");
    EXPECT_EQ(1, EncodeFileName(out, nullptr));
    EXPECT_STREQ(L"", out);
    out.Set(L"before");
    EXPECT_EQ(1, DecodeFileName(out, nullptr));
    EXPECT_STREQ(L"", out);
    EXPECT_EQ(0, EncodeFileName(nullptr, L"a"));
    EXPECT_EQ(0, DecodeFileName(nullptr, L"a"));
}

TEST(DecodeFileName, OtherNumbersAreDropped) {
    const ChangeRow rows[] = {{L"&#65;", L""},
                              {L"a&#65;b", L"ab"},
                              {L"a&#46", L"a."}, // the group runs to the end
                              {L"&#46x;b", L".b"},
                              {L"&#;a", L"a"},
                              {L"&#x;a", L"a"},
                              {L"&#", L""},
                              {L"&", L"&"},
                              {L"&&#46;", L"&."},
                              {L"&#&#46;", L""}, // one group
                              {L"&#046;", L"."},
                              {L"&#0;a", L"a"},
                              {L"&#65582;a", L"a"},                // 46 and 0x10000
                              {L"&#4294967342;a", L"a"},           // 46 and 2^32
                              {L"&#18446744073709551662;a", L"a"}, // 46 and 2^64
                              {L"&# 46;a", L"a"},
                              {L"&#-46;a", L"a"}};
    for (const ChangeRow& row : rows) {
        GuardedText text(row.pszText);
        PathBuffer out;
        EXPECT_EQ(1, DecodeFileName(out, text.Get())) << row.pszText;
        EXPECT_STREQ(row.pszResult, out) << row.pszText;
    }
}

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

TEST(UpdateMask, TableOfAllCases) {
    const struct {
        const wchar_t* pszMask;
        const wchar_t* pszName;
        const wchar_t* pszResult;
    } rows[] = {{L"abc", L"abd", L"ab*"}, {L"ab*", L"ax", L"a*"},   {L"abc", L"abc", L"abc"},
                {L"ab*", L"abc", L"ab*"}, {L"ab*", L"ab", L"ab*"},  {L"ab", L"abc", L"ab*"},
                {L"abc", L"ab", L"ab*"},  {L"", L"a", L"*"},        {L"a", L"", L"*"},
                {L"", L"", L""},          {L"*", L"x", L"*"},       {L"Abc", L"abc", L"*"},
                {L"a*c", L"abc", L"a*"},  {L"a*c", L"a*c", L"a*c"}, {L"a*cd", L"a*ce", L"a*"}};
    for (const auto& row : rows) {
        PathBuffer mask(row.pszMask,
                        std::max(std::wcslen(row.pszMask), std::wcslen(row.pszResult)) + 1);
        GuardedText name(row.pszName);
        UpdateMask(mask, name.Get());
        EXPECT_STREQ(row.pszResult, mask) << row.pszMask << L" " << row.pszName;
    }
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
