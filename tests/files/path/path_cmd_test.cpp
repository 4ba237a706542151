#include "files/path/path_command.h"
#include "files/path_support.h"

#include <gtest/gtest.h>
#include <algorithm>

namespace {
class PathArg : public testing::Test {
  protected:
    void SetUp() override { ::SetEnvironmentVariableW(L"TSLY_TEST", L"D:\\env"); }
    void TearDown() override { ::SetEnvironmentVariableW(L"TSLY_TEST", nullptr); }
};

TEST_F(PathArg, TableOfAllCases) {
    const struct {
        const wchar_t* pszCommand;
        const wchar_t* pszProgram;
        const wchar_t* pszArgs;
    } rows[] = {
        {L"prog", L"prog", L"p x"},
        {L"prog ", L"prog", L"p x"},
        {L"prog \t ", L"prog", L"p x"},
        {L"\"C:\\a b\\prog.exe\"", L"C:\\a b\\prog.exe", L"p x"},
        {L"prog \"%1\"", L"prog", L"\"p x\""},
        {L"prog\t/open %1 /end", L"prog", L"/open p x /end"},
        {L"\"a b\" \"%1\"", L"a b", L"\"p x\""},
        {L"\"a b\"\"%1\"", L"a b", L"\"p x\""},
        {L"\"a b", L"a b", L"p x"}, // a quote without its partner
        {L"prog /open", L"prog", L"/open p x"},
        {L"prog /open ", L"prog", L"/open  p x"},
        {L"prog %1%1 %1", L"prog", L"p xp x p x"},
        {L"prog %", L"prog", L"% p x"},
        {L"prog %2", L"prog", L"%2 p x"},
        {L"prog \"%*\"", L"prog", L"\"%*\" p x"},
        {L"  prog a", L"prog", L"a p x"},
        {L"%TSLY_TEST%\\prog %TSLY_TEST%", L"D:\\env\\prog", L"%TSLY_TEST% p x"},
        {L"\"%TSLY_TEST%\\a b\" %1", L"D:\\env\\a b", L"p x"},
        {L"a\"b c", L"a\"b", L"c p x"}, // a quote within a word is of the word
        {L"prog%1", L"prog%1", L"p x"},
        {L"", L"", L"p x"},
        {L"\"\"", L"", L"p x"},
    };
    for (const auto& row : rows) {
        GuardedText command(row.pszCommand);
        PathBuffer program(L"before"), args(L"before");
        EXPECT_EQ(1, PreparePathArg(command.Get(), L"p x", program, args, MAX_PATH))
            << row.pszCommand;
        EXPECT_STREQ(row.pszProgram, program) << row.pszCommand;
        EXPECT_STREQ(row.pszArgs, args) << row.pszCommand;
        EXPECT_EQ(L'\0', program[std::wcslen(row.pszProgram) + 1]) << row.pszCommand;
    }
}

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

TEST_F(PathArg, ArgumentsTooLongForTheirSizeStayEmpty) {
    const struct {
        const wchar_t* pszCommand;
        unsigned cchArgs; // of the arguments with the terminator
    } rows[] = {{L"p", 9}, {L"p /x", 12}, {L"p /x %1", 12}, {L"p %1 /x", 12}, {L"p %1%1", 17}};
    for (const auto& row : rows) {
        for (unsigned cch = 3; cch < 20; ++cch) {
            PathBuffer program(L"", cch), args(L"", cch);
            int nResult = PreparePathArg(row.pszCommand, L"12345678", program, args, cch);
            EXPECT_EQ(cch >= row.cchArgs, nResult) << row.pszCommand << L" " << cch;
            EXPECT_EQ(nResult ? row.cchArgs - 1 : 0, args.Str().size()) << row.pszCommand;
            EXPECT_STREQ(L"p", program);
        }
    }
}

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
} // namespace
