#include "app/launch/cmd_line.h"
#include "support/guard_page.h"

#include <gtest/gtest.h>
#include <algorithm>
#include <random>
#include <string>

namespace {
using std::wstring;

std::string RowName(const char* pszName) { return pszName; }

// Each case runs with the line and the buffer against guard pages.

struct PathCase {
    const char* pszName;
    const wchar_t* pszLine;
    int nResult;
    const wchar_t* pszPath;
};
class GetCmdLnPathTest : public testing::TestWithParam<PathCase> {};

TEST_P(GetCmdLnPathTest, GivesTheFirstToken) {
    GuardedText line(GetParam().pszLine);
    wchar_t sz[64] = L"before";
    EXPECT_EQ(GetParam().nResult, GetCmdLnPath(line.Get(), sz, 64));
    EXPECT_STREQ(GetParam().pszPath, sz);
}

INSTANTIATE_TEST_SUITE_P(
    Cases, GetCmdLnPathTest,
    testing::Values(PathCase{"Plain", L"a.exe", 1, L"a.exe"},
                    PathCase{"StopsAtABlank", L"a.exe b", 1, L"a.exe"},
                    PathCase{"StopsAtATab", L"a.exe\tb", 1, L"a.exe"},
                    PathCase{"QuotedWithABlank", L"\"C:\\a b\\c.exe\" d", 1, L"C:\\a b\\c.exe"},
                    PathCase{"QuotedWithATab", L"\"a\tb\" d", 1, L"a\tb"},
                    PathCase{"BlanksAndTabsBefore", L" \t a b", 1, L"a"},
                    PathCase{"BlanksBeforeAndBehindTheQuote", L" \t\" \tc d\" e", 1, L"c d"},
                    PathCase{"BlanksBeforeTheClosingQuoteStay", L"\"a \" b", 1, L"a "},
                    PathCase{"NoClosingQuote", L"\"a b", 1, L"a b"},
                    PathCase{"QuoteWithinAnUnquotedToken", L"a\"b c\"d", 1, L"a\"b"},
                    PathCase{"LineEndIsNoBlank", L"a\r\nb", 1, L"a\r\nb"},
                    PathCase{"OneCharacter", L"a", 1, L"a"},
                    PathCase{"EmptyQuotes", L"\"\" a", 1, L""},
                    PathCase{"OnlyAQuote", L"\"", 1, L""}, PathCase{"Empty", L"", 0, L""},
                    PathCase{"OnlyBlanksAndTabs", L" \t ", 0, L""}),
    [](const auto& row) { return RowName(row.param.pszName); });

TEST(GetCmdLnPath, CutsToTheBuffer) {
    for (const wchar_t* pszLine : {L"abcdef g", L"\"abcdef\" g"}) {
        for (int cch = 1; cch <= 8; ++cch) {
            GuardedArea area(64);
            auto* psz = static_cast<wchar_t*>(area.Put(cch * sizeof(wchar_t)));
            EXPECT_EQ(1, GetCmdLnPath(pszLine, psz, cch));
            EXPECT_EQ(wstring(L"abcdef").substr(0, cch - 1), psz) << cch;
        }
    }
}

TEST(GetCmdLnPath, WithoutABufferOrALineGivesZero) {
    wchar_t sz[4] = L"abc";
    EXPECT_EQ(0, GetCmdLnPath(L"x", nullptr, 4));
    EXPECT_EQ(0, GetCmdLnPath(L"x", sz, 0));
    EXPECT_EQ(0, GetCmdLnPath(L"x", sz, -1));
    EXPECT_STREQ(L"abc", sz);
    EXPECT_EQ(0, GetCmdLnPath(nullptr, sz, 4));
    EXPECT_STREQ(L"", sz);
}

struct ArgCase {
    const char* pszName;
    const wchar_t* pszLine;
    int nOffset; // -1: no arguments
};
class GetCmdLnArgTest : public testing::TestWithParam<ArgCase> {};

TEST_P(GetCmdLnArgTest, PointsBehindTheFirstToken) {
    GuardedText line(GetParam().pszLine);
    const wchar_t* pszExpected = GetParam().nOffset < 0 ? nullptr : line.Get() + GetParam().nOffset;
    EXPECT_EQ(pszExpected, GetCmdLnArg(line.Get(), nullptr, 0));
    wchar_t sz[64] = L"before";
    EXPECT_EQ(pszExpected, GetCmdLnArg(line.Get(), sz, 64));
    EXPECT_STREQ(pszExpected ? pszExpected : L"", sz);
}

INSTANTIATE_TEST_SUITE_P(
    Cases, GetCmdLnArgTest,
    testing::Values(
        ArgCase{"BehindAPlainToken", L"a /b c", 2}, ArgCase{"BehindATab", L"a\t\t b", 4},
        ArgCase{"BehindAQuotedToken", L"\"a b\" /c", 6},
        ArgCase{"RightBehindTheClosingQuote", L"\"a b\"/c", 5},
        ArgCase{"FirstQuoteOfArgumentsGoes", L"a \"b c\" d", 3},
        ArgCase{"LaterQuotesOfArgumentsStay", L"a b \"c d\"", 2},
        ArgCase{"QuotesBehindAQuotedTokenStay", L"\"a\" \"b c\"", 4},
        ArgCase{"BlanksAtTheEndStay", L"a b ", 2}, ArgCase{"SlashFirst", L"/a b", 0},
        ArgCase{"SlashBehindBlanks", L" \t/a b", 2}, ArgCase{"QuotedSlashFirst", L" \"/a b\" c", 1},
        ArgCase{"MinusFirstIsNoSwitch", L"-a b", 3}, ArgCase{"OnlyAToken", L"a", -1},
        ArgCase{"OnlyAQuotedToken", L"\"a b\"", -1}, ArgCase{"OnlyBlanksBehind", L"a \t ", -1},
        ArgCase{"NoClosingQuote", L"\"a b", -1}, ArgCase{"Empty", L"", -1},
        ArgCase{"OnlyBlanks", L" \t", -1}),
    [](const auto& row) { return RowName(row.param.pszName); });

TEST(GetCmdLnArg, OneQuoteBehindTheTokenGoes) {
    wchar_t sz[16];
    GetCmdLnArg(L"prog \"q r\" z", sz, 16);
    EXPECT_STREQ(L"q r\" z", sz);
    GetCmdLnArg(L"prog\t \" \"q\"", sz, 16);
    EXPECT_STREQ(L"\"q\"", sz);
    GetCmdLnArg(L"\"prog\" \"q r\" z", sz, 16); // its closing quote was the one
    EXPECT_STREQ(L"\"q r\" z", sz);
    EXPECT_EQ(nullptr, GetCmdLnArg(L"prog \" ", sz, 16));
    EXPECT_STREQ(L"", sz);
}

TEST(GetCmdLnArg, CutsTheCopyOnly) {
    const wchar_t* pszLine = L"a bcdef";
    for (int cch = 1; cch <= 7; ++cch) {
        GuardedArea area(64);
        auto* psz = static_cast<wchar_t*>(area.Put(cch * sizeof(wchar_t)));
        EXPECT_EQ(pszLine + 2, GetCmdLnArg(pszLine, psz, cch));
        EXPECT_EQ(wstring(L"bcdef").substr(0, cch - 1), psz) << cch;
    }
    wchar_t sz[] = L"kept";
    EXPECT_EQ(pszLine + 2, GetCmdLnArg(pszLine, sz, 0));
    EXPECT_STREQ(L"kept", sz);
}

TEST(GetCmdLnArg, NullLineHasNone) {
    wchar_t sz[] = L"text";
    EXPECT_EQ(nullptr, GetCmdLnArg(nullptr, sz, 5));
    EXPECT_STREQ(L"", sz);
}

TEST(IsCmdLineOption, TakesTheNameWithAndWithoutASign) {
    EXPECT_EQ(1, IsCmdLineOption(L"/CHECK4UPDATES", L"check4updates"));
    EXPECT_EQ(1, IsCmdLineOption(L"-CHECK4UPDATES", L"check4updates"));
    EXPECT_EQ(1, IsCmdLineOption(L"Check4Updates", L"cHECK4uPDATES"));
    EXPECT_EQ(1, IsCmdLineOption(L"/x", L"/X")); // as it stands
    EXPECT_EQ(1, IsCmdLineOption(L"//x", L"/x"));
    EXPECT_EQ(1, IsCmdLineOption(L"/\x00E4", L"\x00C4"));
    EXPECT_EQ(1, IsCmdLineOption(L"/", L""));
    EXPECT_EQ(1, IsCmdLineOption(L"", L""));
}

TEST(IsCmdLineOption, TakesNothingElse) {
    EXPECT_EQ(0, IsCmdLineOption(L"/check4update", L"check4updates"));
    EXPECT_EQ(0, IsCmdLineOption(L"/check4updatess", L"check4updates"));
    EXPECT_EQ(0, IsCmdLineOption(L"/check4updates ", L"check4updates"));
    EXPECT_EQ(0, IsCmdLineOption(L"//x", L"x"));
    EXPECT_EQ(0, IsCmdLineOption(L"+x", L"x"));
    EXPECT_EQ(0, IsCmdLineOption(L"x", L"/x")); // only the token's sign is left out
    EXPECT_EQ(0, IsCmdLineOption(L"", L"x"));
    EXPECT_EQ(0, IsCmdLineOption(L"x", L""));
    EXPECT_EQ(0, IsCmdLineOption(nullptr, L"x"));
    EXPECT_EQ(0, IsCmdLineOption(L"x", nullptr));
}

TEST(IsCmdLineSwitchPrefix, TakesTheNameWithAndWithoutItsFirstCharacter) {
    EXPECT_EQ(1, IsCmdLineSwitchPrefix(L"/AutoStart:on", L"autostart"));
    EXPECT_EQ(1, IsCmdLineSwitchPrefix(L"-autostart", L"/AUTOSTART"));
    EXPECT_EQ(1, IsCmdLineSwitchPrefix(L"/autostart", L"-auto"));
    EXPECT_EQ(1, IsCmdLineSwitchPrefix(L"/utostart", L"autostart"));
    EXPECT_EQ(0, IsCmdLineSwitchPrefix(L"autostart", L"autostart"));
    EXPECT_EQ(0, IsCmdLineSwitchPrefix(L"/auto", L"autostart"));
    EXPECT_EQ(0, IsCmdLineSwitchPrefix(L"//autostart", L"autostart"));
    EXPECT_EQ(0, IsCmdLineSwitchPrefix(L"/tostart", L"autostart"));
    EXPECT_EQ(0, IsCmdLineSwitchPrefix(L"", L"autostart"));
    EXPECT_EQ(0, IsCmdLineSwitchPrefix(nullptr, L"a"));
    EXPECT_EQ(0, IsCmdLineSwitchPrefix(L"/a", nullptr));
}

TEST(IsCmdLineSwitchPrefix, NameOfOneCharacterFitsEverySwitch) {
    EXPECT_EQ(1, IsCmdLineSwitchPrefix(L"/abc", L"x"));
    EXPECT_EQ(1, IsCmdLineSwitchPrefix(L"-", L"x"));
    EXPECT_EQ(1, IsCmdLineSwitchPrefix(L"/abc", L""));
    EXPECT_EQ(0, IsCmdLineSwitchPrefix(L"abc", L"x"));
}

TEST(IsCmdLinePrefix, WantsASignBehindTheName) {
    EXPECT_EQ(1, IsCmdLinePrefix(L"name=", L"name"));
    EXPECT_EQ(1, IsCmdLinePrefix(L"Name:data", L"nAME"));
    EXPECT_EQ(1, IsCmdLinePrefix(L"/name:data", L"/name"));
    EXPECT_EQ(1, IsCmdLinePrefix(L"=", L""));
    EXPECT_EQ(0, IsCmdLinePrefix(L"name", L"name"));
    EXPECT_EQ(0, IsCmdLinePrefix(L"names=", L"name"));
    EXPECT_EQ(0, IsCmdLinePrefix(L"name =", L"name"));
    EXPECT_EQ(0, IsCmdLinePrefix(L"nam", L"name"));
    EXPECT_EQ(0, IsCmdLinePrefix(L"/name:", L"name"));
    EXPECT_EQ(0, IsCmdLinePrefix(L"", L""));
    EXPECT_EQ(0, IsCmdLinePrefix(nullptr, L"name"));
    EXPECT_EQ(0, IsCmdLinePrefix(L"name=", nullptr));
}

struct DataCase {
    const char* pszName;
    const wchar_t* pszToken;
    int nResult;
    const wchar_t* pszData;
    int nRest; // -1: null
};
class GetCmdLineSwitchDataTest : public testing::TestWithParam<DataCase> {};

TEST_P(GetCmdLineSwitchDataTest, GivesDataAndRest) {
    GuardedText token(GetParam().pszToken);
    const wchar_t* pszExpected = GetParam().nRest < 0 ? nullptr : token.Get() + GetParam().nRest;
    wchar_t sz[64] = L"before";
    const wchar_t* pszRest = L"before";
    EXPECT_EQ(GetParam().nResult, GetCmdLineSwitchData(token.Get(), sz, 64, &pszRest));
    EXPECT_STREQ(GetParam().pszData, sz);
    EXPECT_EQ(pszExpected, pszRest);
    EXPECT_EQ(GetParam().nResult, GetCmdLineSwitchData(token.Get(), sz, 64, nullptr));
    EXPECT_STREQ(GetParam().pszData, sz);
    EXPECT_EQ(GetParam().nResult, GetCmdLineSwitchData(token.Get(), nullptr, 0, &pszRest));
    EXPECT_EQ(pszExpected, pszRest);
}

INSTANTIATE_TEST_SUITE_P(
    Cases, GetCmdLineSwitchDataTest,
    testing::Values(DataCase{"Colon", L"/a:b", 1, L"b", -1},
                    DataCase{"EqualSign", L"/a=b", 1, L"b", -1},
                    DataCase{"FirstSignCounts", L"/a:b=c", 1, L"b=c", -1},
                    DataCase{"UpToABlank", L"/a:b c", 1, L"b", 5},
                    DataCase{"TabIsNoBlank", L"/a:b\tc", 1, L"b\tc", -1},
                    DataCase{"QuotesAreKept", L"/a:\"b c\" d", 1, L"\"b c\"", 9},
                    DataCase{"RightBehindTheQuotes", L"/a:\"b\"c", 1, L"\"b\"", 6},
                    DataCase{"NoClosingQuote", L"/a:\"b c", 1, L"\"b c", -1},
                    DataCase{"QuoteWithinData", L"/a:b\"c d\"", 1, L"b\"c", 7},
                    DataCase{"OnlyAQuote", L"/a:\"", 1, L"\"", -1},
                    DataCase{"NoData", L"/a:", 1, L"", -1},
                    DataCase{"BlankFirst", L"/a: b", 1, L"", 4},
                    DataCase{"OnlyBlanksBehind", L"/a:b  ", 1, L"b", -1},
                    DataCase{"OnlyASign", L"=", 1, L"", -1},
                    DataCase{"SignInTheNextWord", L"/a b=c", 1, L"c", -1},
                    DataCase{"NoSign", L"/a b", 0, L"", -1}, DataCase{"Empty", L"", 0, L"", -1}),
    [](const auto& row) { return RowName(row.param.pszName); });

TEST(GetCmdLineSwitchData, RestIsBehindAllDataAlsoWhenTheyAreCut) {
    const wchar_t* pszToken = L"/a:\"bcd\" e";
    for (int cch = 1; cch <= 8; ++cch) {
        GuardedArea area(64);
        auto* psz = static_cast<wchar_t*>(area.Put(cch * sizeof(wchar_t)));
        const wchar_t* pszRest = nullptr;
        EXPECT_EQ(1, GetCmdLineSwitchData(pszToken, psz, cch, &pszRest));
        EXPECT_EQ(wstring(L"\"bcd\"").substr(0, cch - 1), psz) << cch;
        EXPECT_EQ(pszToken + 9, pszRest);
    }
}

TEST(GetCmdLineSwitchData, NullTokenHasNone) {
    wchar_t sz[] = L"text";
    const wchar_t* pszRest = sz;
    EXPECT_EQ(0, GetCmdLineSwitchData(nullptr, sz, 5, &pszRest));
    EXPECT_STREQ(L"", sz);
    EXPECT_EQ(nullptr, pszRest);
}

struct SplitCase {
    const char* pszName;
    const wchar_t* pszLine;
    const wchar_t* pszPath;
    const wchar_t* pszArguments;
};
class ParseCmdLnTest : public testing::TestWithParam<SplitCase> {};

TEST_P(ParseCmdLnTest, GivesPathAndArguments) {
    const SplitCase& row = GetParam();
    GuardedText line(row.pszLine);
    std::size_t cb = (wcslen(row.pszLine) + 1) * sizeof(wchar_t);
    GuardedMemory path(cb), arguments(cb);
    auto* pszPath = static_cast<wchar_t*>(path.Get());
    auto* pszArguments = static_cast<wchar_t*>(arguments.Get());
    EXPECT_EQ(*row.pszPath != 0, ParseCmdLn(line.Get(), pszPath, pszArguments));
    EXPECT_STREQ(row.pszPath, pszPath);
    EXPECT_STREQ(row.pszArguments, pszArguments);
    wchar_t sz[64];
    EXPECT_EQ(*row.pszPath != 0, ParseCmdLn(line.Get(), sz, nullptr));
    EXPECT_STREQ(row.pszPath, sz);
}

INSTANTIATE_TEST_SUITE_P(
    Cases, ParseCmdLnTest,
    testing::Values(SplitCase{"Plain", L"a b c", L"a", L"b c"},
                    SplitCase{"Quoted", L"\"a b\" c", L"a b", L"c"},
                    SplitCase{"RightBehindTheQuote", L"\"a b\"c", L"a b", L"c"},
                    SplitCase{"SeveralBlanks", L"a   b", L"a", L"b"},
                    SplitCase{"BlanksAtTheEndStay", L"a b ", L"a", L"b "},
                    SplitCase{"TabIsNoBlank", L"a\tb c", L"a\tb", L"c"},
                    SplitCase{"NoArguments", L"a", L"a", L""},
                    SplitCase{"QuotedWithoutArguments", L"\"a b\"", L"a b", L""},
                    SplitCase{"NoClosingQuote", L"\"a b", L"a b", L""},
                    SplitCase{"QuoteWithinThePath", L"a\"b c", L"a\"b", L"c"},
                    SplitCase{"BlankFirst", L" a b", L"", L"a b"},
                    SplitCase{"EmptyQuotes", L"\"\" a", L"", L"a"},
                    SplitCase{"OnlyAQuote", L"\"", L"", L""}, SplitCase{"Empty", L"", L"", L""}),
    [](const auto& row) { return RowName(row.param.pszName); });

TEST(ParseCmdLn, DropsTheQuoteOfTheFirstArgument) {
    wchar_t szPath[32], szArguments[32];
    EXPECT_EQ(1, ParseCmdLn(L"a \"b c\" d", szPath, szArguments));
    EXPECT_STREQ(L"b c\" d", szArguments);
    EXPECT_EQ(1, ParseCmdLn(L"\"a\" \" \"\"b\"", szPath, szArguments));
    EXPECT_STREQ(L"b\"", szArguments);
}

TEST(ParseCmdLn, NullLineIsEmpty) {
    wchar_t szPath[4] = L"abc", szArguments[4] = L"abc";
    EXPECT_EQ(0, ParseCmdLn(nullptr, szPath, szArguments));
    EXPECT_STREQ(L"", szPath);
    EXPECT_STREQ(L"", szArguments);
    EXPECT_EQ(1, ParseCmdLn(L"a b", nullptr, nullptr));
}

// Random lines against plain versions of the same rules.

constexpr int kRandomInputs = 200000;
constexpr std::size_t kLongestInput = 24;

class RandomLines {
  public:
    explicit RandomLines(unsigned nSeed) : random(nSeed) {}
    wstring Next() {
        static constexpr wchar_t kAlphabet[] = L"  \t\t\"\"//--::==aabBcCxX\\.\x00E4\x00C4\xD83D";
        std::uniform_int_distribution<std::size_t> length(0, kLongestInput);
        std::uniform_int_distribution<std::size_t> letter(0, std::size(kAlphabet) - 2);
        wstring str(length(random), L' ');
        for (wchar_t& ch : str) ch = kAlphabet[letter(random)];
        return str;
    }
    int Below(int n) { return std::uniform_int_distribution<int>(0, n - 1)(random); }

  private:
    std::mt19937 random;
};

struct PlainToken {
    std::size_t nBegin, nEnd, nBehind;
    bool bQuoted;
};

PlainToken TokenOf(const wstring& str) {
    auto skip = [&](std::size_t n) {
        return std::min(str.find_first_not_of(L" \t", n), str.size());
    };
    PlainToken token{skip(0), 0, 0, false};
    token.bQuoted = token.nBegin < str.size() && str[token.nBegin] == L'"';
    if (token.bQuoted) token.nBegin = skip(token.nBegin + 1);
    token.nEnd =
        std::min(str.find_first_of(token.bQuoted ? L"\"" : L" \t", token.nBegin), str.size());
    token.nBehind = skip(token.nEnd);
    if (token.nBehind < str.size() && str[token.nBehind] == L'"')
        token.nBehind = skip(token.nBehind + 1);
    return token;
}

wstring Cut(const wstring& str, int cch) {
    return str.substr(0, static_cast<std::size_t>(cch) - 1);
}

TEST(CmdLineRandom, FirstTokenAndArguments) {
    RandomLines lines(20220101);
    GuardedArea textArea(128), bufferArea(128);
    for (int n = 0; n < kRandomInputs; ++n) {
        wstring str = lines.Next();
        const wchar_t* pszLine = textArea.Put(str);
        int cch = 1 + lines.Below(static_cast<int>(kLongestInput) + 2);
        auto* psz = static_cast<wchar_t*>(bufferArea.Put(cch * sizeof(wchar_t)));
        PlainToken token = TokenOf(str);
        wstring strToken = str.substr(token.nBegin, token.nEnd - token.nBegin);
        ASSERT_EQ(token.bQuoted || !strToken.empty(), GetCmdLnPath(pszLine, psz, cch)) << n;
        ASSERT_EQ(Cut(strToken, cch), psz) << n;
        std::size_t nArgument = token.nBehind;
        if (strToken.starts_with(L'/')) nArgument = str.find_first_not_of(L" \t");
        if (nArgument < str.size()) {
            ASSERT_EQ(pszLine + nArgument, GetCmdLnArg(pszLine, psz, cch)) << n;
            ASSERT_EQ(Cut(str.substr(nArgument), cch), psz) << n;
        } else {
            ASSERT_EQ(nullptr, GetCmdLnArg(pszLine, psz, cch)) << n;
            ASSERT_STREQ(L"", psz) << n;
        }
    }
}

TEST(CmdLineRandom, SwitchDataAndRest) {
    RandomLines lines(20220102);
    GuardedArea textArea(128), bufferArea(128);
    for (int n = 0; n < kRandomInputs; ++n) {
        wstring str = lines.Next();
        const wchar_t* pszToken = textArea.Put(str);
        int cch = 1 + lines.Below(static_cast<int>(kLongestInput) + 2);
        auto* psz = static_cast<wchar_t*>(bufferArea.Put(cch * sizeof(wchar_t)));
        const wchar_t* pszRest = pszToken;
        std::size_t nSign = str.find_first_of(L":=");
        if (nSign == wstring::npos) {
            ASSERT_EQ(0, GetCmdLineSwitchData(pszToken, psz, cch, &pszRest)) << n;
            ASSERT_STREQ(L"", psz) << n;
            ASSERT_EQ(nullptr, pszRest) << n;
            continue;
        }
        std::size_t nBegin = nSign + 1, nEnd = std::min(str.find(L' ', nBegin), str.size());
        if (str.substr(nBegin).starts_with(L'"')) {
            nEnd = str.find(L'"', nBegin + 1);
            nEnd = nEnd == wstring::npos ? str.size() : nEnd + 1;
        }
        std::size_t nRest = str.find_first_not_of(L' ', nEnd);
        ASSERT_EQ(1, GetCmdLineSwitchData(pszToken, psz, cch, &pszRest)) << n;
        ASSERT_EQ(Cut(str.substr(nBegin, nEnd - nBegin), cch), psz) << n;
        ASSERT_EQ(nRest == wstring::npos ? nullptr : pszToken + nRest, pszRest) << n;
    }
}

TEST(CmdLineRandom, PathAndArguments) {
    RandomLines lines(20220103);
    GuardedArea textArea(128), pathArea(128), argumentArea(128);
    for (int n = 0; n < kRandomInputs; ++n) {
        wstring str = lines.Next();
        const wchar_t* pszLine = textArea.Put(str);
        std::size_t cb = (str.size() + 1) * sizeof(wchar_t);
        auto* pszPath = static_cast<wchar_t*>(pathArea.Put(cb));
        auto* pszArguments = static_cast<wchar_t*>(argumentArea.Put(cb));
        std::size_t nBegin = str.starts_with(L'"') ? 1 : 0;
        std::size_t nEnd = std::min(str.find(nBegin ? L'"' : L' ', nBegin), str.size());
        std::size_t nArgument = std::min(str.find_first_not_of(L"\" ", nEnd), str.size());
        ASSERT_EQ(nEnd > nBegin, ParseCmdLn(pszLine, pszPath, pszArguments)) << n;
        ASSERT_EQ(str.substr(nBegin, nEnd - nBegin), pszPath) << n;
        ASSERT_EQ(str.substr(nArgument), pszArguments) << n;
    }
}

wstring Folded(wstring str) {
    for (wchar_t& ch : str) {
        if ((ch >= L'a' && ch <= L'z') || ch == L'\x00E4') ch = static_cast<wchar_t>(ch - 32);
    }
    return str;
}

TEST(CmdLineRandom, NamesOfSwitches) {
    RandomLines lines(20220104);
    GuardedArea textArea(128), nameArea(128);
    for (int n = 0; n < kRandomInputs; ++n) {
        wstring strToken = lines.Next(), strName = lines.Next();
        // Names that have nothing to do with the token would hardly ever fit.
        if (lines.Below(4))
            strName = Folded(strToken).substr(lines.Below(3) ? 0 : 1 % (strToken.size() + 1));
        strName.resize(std::min<std::size_t>(strName.size(), lines.Below(10)));
        if (!lines.Below(3))
            strToken.resize(std::min(strToken.size(), strName.size() + lines.Below(3)));
        const wchar_t* pszToken = textArea.Put(strToken);
        const wchar_t* pszName = nameArea.Put(strName);
        wstring strT = Folded(strToken), strN = Folded(strName);
        bool bSwitch = strT.starts_with(L'/') || strT.starts_with(L'-');
        wstring strBehind = bSwitch ? strT.substr(1) : wstring();
        ASSERT_EQ(strT == strN || (bSwitch && strBehind == strN),
                  IsCmdLineOption(pszToken, pszName))
            << n;
        bool bShort = strBehind.starts_with(strN.substr(strN.empty() ? 0 : 1));
        ASSERT_EQ(bSwitch && (strBehind.starts_with(strN) || bShort),
                  IsCmdLineSwitchPrefix(pszToken, pszName))
            << n;
        bool bSign =
            strT.size() > strN.size() && (strT[strN.size()] == L':' || strT[strN.size()] == L'=');
        ASSERT_EQ(strT.starts_with(strN) && bSign, IsCmdLinePrefix(pszToken, pszName)) << n;
    }
}
} // namespace
