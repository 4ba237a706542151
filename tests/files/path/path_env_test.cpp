#include "files/path/path_command.h"
#include "files/path_support.h"

#include <gtest/gtest.h>

namespace {
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

TEST_F(EnvStrings, AreReplacedByTheirValues) {
    const struct {
        const wchar_t* pszIn;
        const wchar_t* pszOut;
    } rows[] = {{L"", L""},
                {nullptr, L""},
                {L"plain", L"plain"},
                {L"%TSLY_TEST%", L"value"},
                {L"a\\%tsly_test%\\%TSLY_TEST%", L"a\\value\\value"},
                {L"%TSLY_NONE%", L"%TSLY_NONE%"},
                {L"%TSLY_TEST", L"%TSLY_TEST"}};
    for (const auto& row : rows) {
        PathBuffer out(L"before");
        EXPECT_EQ(1, ExpandEnvStrings(row.pszIn, out, MAX_PATH));
        EXPECT_STREQ(row.pszOut, out);
        if (!row.pszIn) continue;
        out.Set(row.pszIn);
        EXPECT_EQ(1, ExpandEnvStrings(out, out, MAX_PATH));
        EXPECT_STREQ(row.pszOut, out);
    }
}

TEST_F(EnvStrings, ThatDoNotFitExpandedAreCopied) {
    const wchar_t* pszIn = L"%A%%A%";
    ::SetEnvironmentVariableW(L"A", L"12345678");
    for (unsigned cch = 1; cch < 20; ++cch) {
        PathBuffer out(L"", cch);
        EXPECT_EQ(cch > 6, ExpandEnvStrings(pszIn, out, cch)) << cch;
        std::wstring strExpected = cch > 16 ? L"1234567812345678" : pszIn;
        EXPECT_EQ(strExpected.substr(0, cch - 1), out.Str()) << cch;
    }
    ::SetEnvironmentVariableW(L"A", nullptr);
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
        std::wstring strExpected = cchAll <= cch && *szAll ? std::wstring(szAll) : str;
        ASSERT_EQ(strExpected.size() < cch, nResult) << str;
        ASSERT_EQ(strExpected.substr(0, cch - 1), pszOut) << str;
        if (i % 4) continue;
        pszOut = static_cast<wchar_t*>(areaOut.Put(cch * sizeof(wchar_t)));
        UnExpandEnvStrings(pszIn, pszOut, cch);
        ASSERT_LT(std::wcslen(pszOut), cch);
    }
}
} // namespace
