#include "runtime/text/encoding.h"
#include "support/guard_page.h"

#include <windows.h>
#include <gtest/gtest.h>
#include <string>

namespace {
struct CodePageCase {
    const char* pszName;
    UINT uCodePage;
    int (*pfnWiden)(const char*, wchar_t*, int);
    int (*pfnNarrow)(const wchar_t*, char*, int);
};

class CodePageTest : public testing::TestWithParam<CodePageCase> {};

TEST_P(CodePageTest, GivesThePlatformsResultAndText) {
    const CodePageCase& row = GetParam();
    for (const wchar_t* psz : {L"", L"x", L"plain text", L"\u00E4\u20AC\u0434", L"\xD83D\xDE00"}) {
        char szExpected[64] = {}, szGot[64] = {};
        int n = ::WideCharToMultiByte(row.uCodePage, 0, psz, -1, szExpected, 64, nullptr, nullptr);
        EXPECT_EQ(n, row.pfnNarrow(psz, szGot, 64));
        EXPECT_STREQ(szExpected, szGot);
        EXPECT_EQ(n, row.pfnNarrow(psz, nullptr, 0)); // only measures

        wchar_t szExpectedBack[64] = {}, szBack[64] = {};
        n = ::MultiByteToWideChar(row.uCodePage, 0, szExpected, -1, szExpectedBack, 64);
        EXPECT_EQ(n, row.pfnWiden(szExpected, szBack, 64));
        EXPECT_STREQ(szExpectedBack, szBack);
        EXPECT_EQ(n, row.pfnWiden(szExpected, nullptr, 0));
    }
}

TEST_P(CodePageTest, TextThatDoesNotFitGivesZeroAndTheEmptyText) {
    const CodePageCase& row = GetParam();
    for (int n = 1; n <= 4; ++n) {
        auto cb = static_cast<std::size_t>(n);
        GuardedMemory narrow(cb), wide(cb * sizeof(wchar_t));
        auto* pszNarrow = static_cast<char*>(narrow.Get());
        auto* pszWide = static_cast<wchar_t*>(wide.Get());
        EXPECT_EQ(n == 4 ? 4 : 0, row.pfnNarrow(L"abc", pszNarrow, n)) << n;
        EXPECT_STREQ(n == 4 ? "abc" : "", pszNarrow) << n;
        EXPECT_EQ(n == 4 ? 4 : 0, row.pfnWiden("abc", pszWide, n)) << n;
        EXPECT_STREQ(n == 4 ? L"abc" : L"", pszWide) << n;
        if (n < 4) {
            EXPECT_EQ(DWORD{ERROR_INSUFFICIENT_BUFFER}, ::GetLastError());
        }
    }
}

TEST_P(CodePageTest, NullSourceGivesZeroAndTheEmptyText) {
    char szNarrow[4] = "old";
    wchar_t szWide[4] = L"old";
    EXPECT_EQ(0, GetParam().pfnNarrow(nullptr, szNarrow, 4));
    EXPECT_STREQ("", szNarrow);
    EXPECT_EQ(0, GetParam().pfnWiden(nullptr, szWide, 4));
    EXPECT_STREQ(L"", szWide);
}

INSTANTIATE_TEST_SUITE_P(Cases, CodePageTest,
                         testing::Values(CodePageCase{"System", CP_ACP, mb2wc, wc2mb},
                                         CodePageCase{"Oem", CP_OEMCP, mb2wcOEM, wc2mbOEM},
                                         CodePageCase{"Utf8", CP_UTF8, utf82wc, wc2utf8}),
                         [](const auto& row) { return std::string(row.param.pszName); });

TEST(wc2utf8, WritesUtf8) {
    char sz[16];
    EXPECT_EQ(10, wc2utf8(L"\u00E4\u20AC\xD83D\xDE00", sz, 16));
    EXPECT_STREQ("\xC3\xA4\xE2\x82\xAC\xF0\x9F\x98\x80", sz);
    wchar_t szBack[16];
    EXPECT_EQ(5, utf82wc(sz, szBack, 16));
    EXPECT_STREQ(L"\u00E4\u20AC\xD83D\xDE00", szBack);
}
} // namespace
