#include "files/path/path_command.h"
#include "files/path_support.h"
#include "files/path_tables.h"

#include <gtest/gtest.h>
#include <algorithm>

namespace {
// Commands

class PathArg : public testing::Test {
  protected:
    void SetUp() override { ::SetEnvironmentVariableW(L"TSLY_TEST", L"D:\\env"); }
    void TearDown() override { ::SetEnvironmentVariableW(L"TSLY_TEST", nullptr); }
};

struct CommandCase {
    const char* pszName;
    const wchar_t* pszCommand;
    const wchar_t* pszProgram;
    const wchar_t* pszArgs;
};
class PathArgTest : public PathArg, public testing::WithParamInterface<CommandCase> {};
TEST_P(PathArgTest, PathComesInItsPlacesOrBehind) {
    GuardedText command(GetParam().pszCommand);
    PathBuffer program(L"before"), args(L"before");
    EXPECT_EQ(1, PreparePathArg(command.Get(), L"p x", program, args, MAX_PATH));
    EXPECT_STREQ(GetParam().pszProgram, program);
    EXPECT_STREQ(GetParam().pszArgs, args);
    EXPECT_EQ(L'\0', program[std::wcslen(GetParam().pszProgram) + 1]);
}
INSTANTIATE_TEST_SUITE_P(
    Commands, PathArgTest,
    testing::Values(
        CommandCase{"Program", L"prog", L"prog", L"p x"},
        CommandCase{"BlankBehind", L"prog ", L"prog", L"p x"},
        CommandCase{"BlanksAndTabBehind", L"prog \t ", L"prog", L"p x"},
        CommandCase{"QuotedProgram", L"\"C:\\a b\\prog.exe\"", L"C:\\a b\\prog.exe", L"p x"},
        CommandCase{"QuotedPlace", L"prog \"%1\"", L"prog", L"\"p x\""},
        CommandCase{"TabAndPlaceBetween", L"prog\t/open %1 /end", L"prog", L"/open p x /end"},
        CommandCase{"BothQuoted", L"\"a b\" \"%1\"", L"a b", L"\"p x\""},
        CommandCase{"NoBlankBetween", L"\"a b\"\"%1\"", L"a b", L"\"p x\""},
        CommandCase{"QuoteWithoutItsPartner", L"\"a b", L"a b",
                    L"p x"}, // a quote without its partner
        CommandCase{"NoPlace", L"prog /open", L"prog", L"/open p x"},
        CommandCase{"NoPlaceAndABlank", L"prog /open ", L"prog", L"/open  p x"},
        CommandCase{"ThreePlaces", L"prog %1%1 %1", L"prog", L"p xp x p x"},
        CommandCase{"PercentAlone", L"prog %", L"prog", L"% p x"},
        CommandCase{"OtherNumber", L"prog %2", L"prog", L"%2 p x"},
        CommandCase{"AllArguments", L"prog \"%*\"", L"prog", L"\"%*\" p x"},
        CommandCase{"BlanksBefore", L"  prog a", L"prog", L"a p x"},
        CommandCase{"EnvironmentString", L"%TSLY_TEST%\\prog %TSLY_TEST%", L"D:\\env\\prog",
                    L"%TSLY_TEST% p x"},
        CommandCase{"EnvironmentStringInQuotes", L"\"%TSLY_TEST%\\a b\" %1", L"D:\\env\\a b",
                    L"p x"},
        CommandCase{"QuoteWithinAWord", L"a\"b c", L"a\"b",
                    L"c p x"}, // a quote within a word is of the word
        CommandCase{"PlaceWithinTheProgram", L"prog%1", L"prog%1", L"p x"},
        CommandCase{"Empty", L"", L"", L"p x"}, CommandCase{"EmptyQuotes", L"\"\"", L"", L"p x"}),
    kRowName);

TEST_F(PathArg, PlaceWithinThePathIsNoPlace) {
    PathBuffer program, args;
    EXPECT_EQ(1, PreparePathArg(L"prog \"%1\"", L"C:\\%1", program, args, MAX_PATH));
    EXPECT_STREQ(L"\"C:\\%1\"", args);
    EXPECT_EQ(1, PreparePathArg(L"prog %%11", L"x", program, args, MAX_PATH));
    EXPECT_STREQ(L"%x1", args);
}

TEST_F(PathArg, NullsCountAsEmptyAndOutputsAreNeeded) {
    PathBuffer program, args(L"before");
    EXPECT_EQ(1, PreparePathArg(nullptr, nullptr, program, args, MAX_PATH));
    EXPECT_STREQ(L"", program);
    EXPECT_STREQ(L"", args);
    EXPECT_EQ(0, PreparePathArg(L"a", L"b", nullptr, args, MAX_PATH));
    EXPECT_EQ(0, PreparePathArg(L"a", L"b", program, nullptr, MAX_PATH));
    EXPECT_EQ(0, PreparePathArg(L"a", L"b", program, args, 0));
}

struct SizeCase {
    const char* pszName;
    const wchar_t* pszCommand;
    unsigned cchArgs; // of the arguments with the terminator
};
class PathArgSizeTest : public PathArg, public testing::WithParamInterface<SizeCase> {};
TEST_P(PathArgSizeTest, ArgumentsTooLongForTheirSizeStayEmpty) {
    for (unsigned cch = 3; cch < 20; ++cch) {
        PathBuffer program(L"", cch), args(L"", cch);
        int nResult = PreparePathArg(GetParam().pszCommand, L"12345678", program, args, cch);
        EXPECT_EQ(cch >= GetParam().cchArgs, nResult) << cch;
        EXPECT_EQ(nResult ? GetParam().cchArgs - 1 : 0, args.Str().size()) << cch;
        EXPECT_STREQ(L"p", program);
    }
}
INSTANTIATE_TEST_SUITE_P(Commands, PathArgSizeTest,
                         testing::Values(SizeCase{"PathAlone", L"p", 9},
                                         SizeCase{"Behind", L"p /x", 12},
                                         SizeCase{"PlaceAtTheEnd", L"p /x %1", 12},
                                         SizeCase{"PlaceAtTheStart", L"p %1 /x", 12},
                                         SizeCase{"TwoPlaces", L"p %1%1", 17}),
                         kRowName);

TEST_F(PathArg, ProgramNeedsRoomForTwoTerminators) {
    for (unsigned cch : {5u, 6u}) {
        PathBuffer program(L"", cch), args(L"", cch);
        EXPECT_EQ(cch == 6, PreparePathArg(L"prog", L"x", program, args, cch));
        EXPECT_STREQ(cch == 6 ? L"prog" : L"", program);
    }
    PathBuffer program(L"", 1), args(L"", 1);
    EXPECT_EQ(0, PreparePathArg(L"", L"", program, args, 1));
}

TEST_F(PathArg, ProgramIsAPathWhateverTheSize) {
    for (std::size_t cch : {258u, 259u, 260u, 300u}) {
        std::wstring str(cch, L'p');
        PathBuffer program, args(L"", 2048);
        EXPECT_EQ(cch == 258, PreparePathArg((str + L" a").c_str(), L"x", program, args, 2048));
        EXPECT_EQ(cch == 258 ? str : L"", program.Str());
    }
    PathBuffer program, args(L"", 2048);
    std::wstring str(2045, L'a');
    EXPECT_EQ(1, PreparePathArg((L"p " + str).c_str(), L"x", program, args, 2048));
    EXPECT_EQ(str + L" x", args.Str());
}

TEST_F(PathArg, RandomCommandsAgainstASecondTellingOfTheRules) {
    RandomPaths paths(861);
    GuardedArea areaCommand(4 * 1024), areaPath(2 * 1024), areaProgram(2 * 1024),
        areaArgs(4 * 1024);
    for (int i = 0; i < kRandomInputs; ++i) {
        std::wstring strCommand = paths.Next() + (i % 2 ? L" " : L"\" ") + paths.Next();
        std::wstring strPath = paths.Next();
        std::size_t cch = 1 + paths.Below(i % 8 ? 60 : 700),
                    cchProgram = std::min<std::size_t>(cch, 260);
        auto* pszProgram = static_cast<wchar_t*>(areaProgram.Put(cchProgram * sizeof(wchar_t)));
        auto* pszArgs = static_cast<wchar_t*>(areaArgs.Put(cch * sizeof(wchar_t)));
        int nResult = PreparePathArg(areaCommand.Put(strCommand), areaPath.Put(strPath), pszProgram,
                                     pszArgs, static_cast<unsigned>(cch));
        std::size_t nWord = std::min(strCommand.find_first_not_of(L" \t"), strCommand.size());
        bool bQuoted = nWord < strCommand.size() && strCommand[nWord] == L'"';
        nWord += bQuoted;
        std::size_t nEnd =
            std::min(strCommand.find_first_of(bQuoted ? L"\"" : L" \t", nWord), strCommand.size());
        std::wstring strWord = strCommand.substr(nWord, nEnd - nWord);
        std::size_t nRest = strCommand.find_first_not_of(L" \t", nEnd + bQuoted);
        std::wstring strArgs = nRest == std::wstring::npos ? L"" : strCommand.substr(nRest);
        if (strArgs.empty()) {
            strArgs = strPath;
        } else if (strArgs.find(L"%1") == std::wstring::npos) {
            strArgs += L" " + strPath;
        } else {
            for (std::size_t n = 0; (n = strArgs.find(L"%1", n)) != std::wstring::npos;) {
                strArgs.replace(n, 2, strPath);
                n += strPath.size();
            }
        }
        if (nResult) {
            ASSERT_EQ(strArgs, pszArgs) << strCommand;
            std::size_t cchGot = std::wcslen(pszProgram);
            ASSERT_EQ(L'\0', pszProgram[cchGot + 1]);
            bool bExpands = strWord.find(L'%') != std::wstring::npos;
            ASSERT_TRUE(bExpands || strWord == pszProgram) << strWord;
        } else {
            ASSERT_EQ(L'\0', *pszArgs);
            ASSERT_TRUE(!*pszProgram || pszProgram[std::wcslen(pszProgram) + 1] == 0);
            bool bNoRoom = strArgs.size() >= cch || strWord.size() + 2 > cchProgram;
            ASSERT_TRUE(bNoRoom) << strCommand;
        }
    }
}

// Environment strings

class EnvStrings : public testing::Test {
  protected:
    void SetUp() override { ::SetEnvironmentVariableW(L"TSLY_TEST", L"value"); }
    void TearDown() override { ::SetEnvironmentVariableW(L"TSLY_TEST", nullptr); }
    static std::wstring WindowsFolder() {
        wchar_t sz[MAX_PATH] = {};
        ::GetWindowsDirectoryW(sz, MAX_PATH);
        return sz;
    }
};

struct ExpandCase {
    const char* pszName;
    const wchar_t* pszIn;
    const wchar_t* pszOut;
};
class ExpandEnvStringsTest : public EnvStrings, public testing::WithParamInterface<ExpandCase> {};
TEST_P(ExpandEnvStringsTest, AreReplacedByTheirValues) {
    PathBuffer out(L"before");
    EXPECT_EQ(1, ExpandEnvStrings(GetParam().pszIn, out, MAX_PATH));
    EXPECT_STREQ(GetParam().pszOut, out);
    if (!GetParam().pszIn) return;
    out.Set(GetParam().pszIn);
    EXPECT_EQ(1, ExpandEnvStrings(out, out, MAX_PATH));
    EXPECT_STREQ(GetParam().pszOut, out);
}
INSTANTIATE_TEST_SUITE_P(
    Texts, ExpandEnvStringsTest,
    testing::Values(ExpandCase{"Empty", L"", L""}, ExpandCase{"Null", nullptr, L""},
                    ExpandCase{"Plain", L"plain", L"plain"},
                    ExpandCase{"Variable", L"%TSLY_TEST%", L"value"},
                    ExpandCase{"TwoInAnyCase", L"a\\%tsly_test%\\%TSLY_TEST%", L"a\\value\\value"},
                    ExpandCase{"Unknown", L"%TSLY_NONE%", L"%TSLY_NONE%"},
                    ExpandCase{"WithoutItsEnd", L"%TSLY_TEST", L"%TSLY_TEST"}),
    kRowName);

TEST_F(EnvStrings, ThatDoNotFitExpandedAreCutAndGiveZero) {
    const std::wstring strExpected = L"1234567812345678";
    ::SetEnvironmentVariableW(L"A", L"12345678");
    for (unsigned cch = 1; cch < 20; ++cch) {
        PathBuffer out(L"", cch);
        EXPECT_EQ(cch > 16, ExpandEnvStrings(L"%A%%A%", out, cch)) << cch;
        EXPECT_EQ(strExpected.substr(0, cch - 1), out.Str()) << cch;
        if (cch <= 6) continue;
        out.Set(L"%A%%A%"); // in place
        EXPECT_EQ(cch > 16, ExpandEnvStrings(out, out, cch)) << cch;
        EXPECT_EQ(strExpected.substr(0, cch - 1), out.Str()) << cch;
    }
    ::SetEnvironmentVariableW(L"A", nullptr);
}

TEST_F(EnvStrings, ThatAreLongerThanAPathGiveZero) {
    for (std::size_t cch : {259u, 260u, 300u, 5000u}) {
        std::wstring strValue(cch, L'v');
        ::SetEnvironmentVariableW(L"TSLY_TEST", strValue.c_str());
        PathBuffer out;
        EXPECT_EQ(cch == 259, ExpandEnvStrings(L"%TSLY_TEST%", out, MAX_PATH)) << cch;
        EXPECT_EQ(strValue.substr(0, 259), out.Str()) << cch;
    }
}

TEST_F(EnvStrings, EmptyResultGivesACopy) {
    ::SetEnvironmentVariableW(L"TSLY_TEST", L"");
    wchar_t sz[16];
    if (::ExpandEnvironmentStringsW(L"%TSLY_TEST%", sz, 16) != 1) {
        GTEST_SKIP() << "this platform keeps no empty variables";
    }
    PathBuffer out;
    EXPECT_EQ(1, ExpandEnvStrings(L"%TSLY_TEST%", out, MAX_PATH));
    EXPECT_STREQ(L"%TSLY_TEST%", out);
}

TEST_F(EnvStrings, SizesAtTheLimit) {
    PathBuffer out(L"before");
    EXPECT_EQ(0, ExpandEnvStrings(L"a", out, 0));
    EXPECT_EQ(0, UnExpandEnvStrings(L"a", out, 0));
    EXPECT_STREQ(L"before", out);
    EXPECT_EQ(0, ExpandEnvStrings(L"a", nullptr, MAX_PATH));
    EXPECT_EQ(0, UnExpandEnvStrings(L"a", nullptr, MAX_PATH));
    for (std::size_t cch : {259u, 260u, 261u}) {
        std::wstring str(cch, L'n');
        EXPECT_EQ(cch == 259, ExpandEnvStrings(str.c_str(), out, MAX_PATH));
        EXPECT_EQ(str.substr(0, 259), out.Str());
        EXPECT_EQ(cch == 259, UnExpandEnvStrings(str.c_str(), out, MAX_PATH));
        EXPECT_EQ(str.substr(0, 259), out.Str());
    }
}

TEST_F(EnvStrings, InputMayLieInTheOutput) {
    PathBuffer text;
    for (const wchar_t* psz : {L"%TSLY_TEST%\\a", L"a\\%TSLY_TEST%", L"plain", L""}) {
        std::wstring str = psz, strExpected = str;
        if (auto n = str.find(L"%TSLY_TEST%"); n != str.npos) strExpected.replace(n, 11, L"value");
        for (std::size_t nAt : {1u, 5u, 100u}) {
            text.Set(std::wstring(nAt, L'x') + str);
            EXPECT_EQ(1, ExpandEnvStrings(text + nAt, text, MAX_PATH));
            EXPECT_EQ(strExpected, text.Str());
        }
    }
    std::wstring strPath = WindowsFolder() + L"\\notepad.exe";
    PathBuffer expected;
    EXPECT_EQ(1, UnExpandEnvStrings(strPath.c_str(), expected, MAX_PATH));
    text.Set(L"xx" + strPath);
    EXPECT_EQ(1, UnExpandEnvStrings(text + 2, text, MAX_PATH));
    EXPECT_EQ(expected.Str(), text.Str());
}

TEST_F(EnvStrings, LongTextIsNotExpandedInPlace) {
    std::wstring str = L"%TSLY_TEST%" + std::wstring(249, L'n'); // 260
    PathBuffer text(str, 300);
    EXPECT_EQ(1, ExpandEnvStrings(text, text, 300));
    EXPECT_EQ(str, text.Str());
    str.pop_back();
    text.Set(str);
    EXPECT_EQ(1, ExpandEnvStrings(text, text, 300));
    EXPECT_EQ(L"value" + std::wstring(248, L'n'), text.Str());
}

TEST_F(EnvStrings, UnExpandIsTheReverseForKnownFolders) {
    std::wstring strPath = WindowsFolder() + L"\\notepad.exe";
    PathBuffer out, back;
    EXPECT_EQ(1, UnExpandEnvStrings(strPath.c_str(), out, MAX_PATH));
    EXPECT_EQ(L'%', out[0]) << out.Str();
    EXPECT_EQ(1, ExpandEnvStrings(out, back, MAX_PATH));
    EXPECT_EQ(0, ::lstrcmpiW(strPath.c_str(), back));
    back.Set(strPath);
    EXPECT_EQ(1, UnExpandEnvStrings(back, back, MAX_PATH));
    EXPECT_EQ(out.Str(), back.Str());
}

TEST_F(EnvStrings, UnExpandOfOtherTextsIsACopy) {
    for (const wchar_t* psz : {L"", L"plain", L"Q:\\none", L"\\\\server\\share"}) {
        PathBuffer out(L"before");
        EXPECT_EQ(1, UnExpandEnvStrings(psz, out, MAX_PATH));
        EXPECT_STREQ(psz, out);
    }
    PathBuffer out(L"before");
    EXPECT_EQ(1, UnExpandEnvStrings(nullptr, out, MAX_PATH));
    EXPECT_STREQ(L"", out);
}

TEST_F(EnvStrings, UnExpandFallsBackWhereItDoesNotFit) {
    std::wstring strPath = WindowsFolder() + L"\\x";
    for (unsigned cch = 1; cch < 24; ++cch) {
        PathBuffer out(L"", cch);
        UnExpandEnvStrings(strPath.c_str(), out, cch);
        std::wstring str = out.Str();
        EXPECT_TRUE(str[0] == L'%' || str == strPath.substr(0, cch - 1)) << cch << L" " << str;
    }
}

TEST_F(EnvStrings, RandomTextsStayWithinTheirBuffers) {
    RandomPaths paths(871);
    GuardedArea areaIn(2 * 1024), areaOut(2 * 1024);
    std::wstring strWindows = WindowsFolder();
    static wchar_t szAll[8192];
    for (int i = 0; i < kRandomInputs; ++i) {
        std::wstring str = paths.Next();
        if (i % 8 == 0) str = strWindows + str;
        auto cch = static_cast<unsigned>(1 + paths.Below(i % 4 ? 40 : 400));
        const wchar_t* pszIn = areaIn.Put(str);
        auto* pszOut = static_cast<wchar_t*>(areaOut.Put(cch * sizeof(wchar_t)));
        int nResult = ExpandEnvStrings(pszIn, pszOut, cch);
        DWORD cchAll = ::ExpandEnvironmentStringsW(str.c_str(), szAll, std::size(szAll));
        std::wstring strExpected = cchAll && *szAll ? std::wstring(szAll) : str;
        ASSERT_EQ(strExpected.size() < cch, nResult) << str;
        ASSERT_EQ(strExpected.substr(0, cch - 1), pszOut) << str;
        if (i % 4) continue;
        pszOut = static_cast<wchar_t*>(areaOut.Put(cch * sizeof(wchar_t)));
        UnExpandEnvStrings(pszIn, pszOut, cch);
        ASSERT_LT(std::wcslen(pszOut), cch);
    }
}

// Quotes

using Change = void (*)(wchar_t*, const wchar_t*);

class AddQuotesIfSpaceTest : public ChangeTest {};
TEST_P(AddQuotesIfSpaceTest, OnlyABlankCounts) { ExpectChange(AddQuotesIfSpace); }
INSTANTIATE_TEST_SUITE_P(Texts, AddQuotesIfSpaceTest,
                         testing::Values(ChangeCase{"Empty", L"", L""},
                                         ChangeCase{"Letter", L"a", L"a"},
                                         ChangeCase{"Blank", L" ", L"\" \""},
                                         ChangeCase{"InnerBlank", L"a b", L"\"a b\""},
                                         ChangeCase{"Tab", L"a\tb", L"a\tb"},
                                         ChangeCase{"OtherBlank", L"\u00A0", L"\u00A0"},
                                         ChangeCase{"QuotesAreThere", L"\"a b\"", L"\"\"a b\"\""}),
                         kRowName);

class QuoteTest : public ChangeTest {
  protected:
    /// The row also in place by a null input.
    static void ExpectBothWays(Change change) {
        ExpectCopy(change);
        ExpectChange([&](wchar_t* psz) { change(psz, nullptr); });
    }
};

class UnQuoteTest : public QuoteTest {};
TEST_P(UnQuoteTest, DropsALeadingQuoteAndStopsAtTheNext) { ExpectBothWays(UnQuote); }
INSTANTIATE_TEST_SUITE_P(Texts, UnQuoteTest,
                         testing::Values(ChangeCase{"Empty", L"", L""},
                                         ChangeCase{"Quote", L"\"", L""},
                                         ChangeCase{"TwoQuotes", L"\"\"", L""},
                                         ChangeCase{"Letter", L"a", L"a"},
                                         ChangeCase{"TextBehind", L"\"a b\" c", L"a b"},
                                         ChangeCase{"WithoutAnEnd", L"\"a b", L"a b"},
                                         ChangeCase{"QuotesWithin", L"a \"b\"", L"a \"b\""},
                                         ChangeCase{"BlankBefore", L" \"a\"", L" \"a\""}),
                         kRowName);

class RemoveWhiteSpacesAndQuotesTest : public QuoteTest {};
TEST_P(RemoveWhiteSpacesAndQuotesTest, TakesBothEnds) {
    ExpectBothWays(RemoveWhiteSpacesAndQuotes);
}
INSTANTIATE_TEST_SUITE_P(
    Texts, RemoveWhiteSpacesAndQuotesTest,
    testing::Values(
        ChangeCase{"Empty", L"", L""}, ChangeCase{"BlanksAndTab", L" \t ", L""},
        ChangeCase{"Quote", L"\"", L""}, ChangeCase{"TwoQuotes", L"\"\"", L""},
        ChangeCase{"BlankInQuotes", L"\" \"", L""}, ChangeCase{"ThreeQuotes", L"\"\"\"", L"\""},
        ChangeCase{"Letter", L"a", L"a"}, ChangeCase{"BlanksAndTabs", L" \ta b\t ", L"a b"},
        ChangeCase{"BlanksAndQuotes", L" \"a b\" ", L"a b"},
        ChangeCase{"BlanksWithinQuotes", L" \" a \" ", L"a"}, // also within the quotes
        ChangeCase{"TwoQuotesAtEachEnd", L"\"\"a\"\"", L"\"a\""},
        ChangeCase{"QuoteAtTheStart", L"\"a", L"a"}, ChangeCase{"QuoteAtTheEnd", L"a\"", L"a"},
        ChangeCase{"QuoteWithin", L"a\"b", L"a\"b"}, ChangeCase{"LineFeeds", L"\na\n", L"\na\n"}),
    kRowName);

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
