#include "runtime/messages/res_str.h"
#include "runtime/text/str_format.h"
#include "support/guard_page.h"
#include "support/test_resource_ids.h"

#include <gtest/gtest.h>
#include <string>

namespace {
TEST(StrAppendTextFmt, FormatsBehindTheText) {
    wchar_t sz[64] = L"a:";
    StrAppendTextFmt(sz, 64, L" %s=%d", L"x", 5);
    EXPECT_STREQ(L"a: x=5", sz);
    StrAppendTextFmt(sz, 64, L"");
    EXPECT_STREQ(L"a: x=5", sz);
    StrAppendTextFmt(sz, 64, L"%s", sz); // the text itself
    EXPECT_STREQ(L"a: x=5a: x=5", sz);
}

TEST(StrAppendTextFmt, TakesAStringOfTheTableAsTheFormat) {
    for (int nSign : {1, -1}) {
        wchar_t sz[64] = L"a, ";
        StrAppendTextFmt(sz, 64, nSign * IDS_TEST_NUMBER_AND_TEXT, 12, L"abc");
        EXPECT_STREQ(L"a, number 12, text abc", sz);
        StrAppendTextFmt(sz, 64, nSign * IDS_TEST_EMPTY_WHEN_FORMATTED, L"");
        EXPECT_STREQ(L"a, number 12, text abc", sz);
    }
}

TEST(StrAppendTextFmt, MissingStringAppendsNothing) {
    wchar_t sz[16] = L"abc";
    StrAppendTextFmt(sz, 16, -9, L"x");
    EXPECT_STREQ(L"abc", sz);
}

TEST(StrAppendTextFmt, NullFormatAndIdZeroClearTheText) {
    wchar_t sz[16] = L"abc";
    StrAppendTextFmt(sz, 16, nullptr);
    EXPECT_STREQ(L"", sz);
    sz[0] = L'x';
    StrAppendTextFmt(sz, 16, 0);
    EXPECT_STREQ(L"", sz);
    sz[0] = L'x';
    StrAppendTextFmt(sz, 0, 0); // no characters, none cleared
    EXPECT_EQ(L'x', sz[0]);
    StrAppendTextFmt(nullptr, 16, nullptr);
    StrAppendTextFmt(nullptr, 16, 0);
    StrAppendTextFmt(nullptr, 16, L"abc");
}

TEST(StrAppendTextFmt, KeepsToItsCapacity) {
    for (unsigned cch = 3; cch <= 8; ++cch) {
        GuardedMemory memory(cch * sizeof(wchar_t));
        auto* psz = static_cast<wchar_t*>(memory.Get());
        wcscpy(psz, L"ab");
        StrAppendTextFmt(psz, cch, L"%s", L"cdef");
        EXPECT_EQ(std::wstring(L"abcdef").substr(0, cch - 1), psz) << cch;
    }
    GuardedMemory one(sizeof(wchar_t));
    auto* psz = static_cast<wchar_t*>(one.Get());
    *psz = 0;
    StrAppendTextFmt(psz, 1, L"x");
    EXPECT_STREQ(L"", psz);
}

TEST(StrAppendTextFmt, TextWithoutAnEndIsLeftAlone) {
    GuardedMemory memory(2 * sizeof(wchar_t));
    auto* psz = static_cast<wchar_t*>(memory.Get());
    psz[0] = L'a';
    psz[1] = L'b';
    StrAppendTextFmt(psz, 2, L"x");
    EXPECT_EQ(L'a', psz[0]);
    EXPECT_EQ(L'b', psz[1]);
}

TEST(StrAppendTextFmt, FormatsIntoAtMost1023Characters) {
    for (std::size_t n : {1022u, 1023u, 1024u, 1500u}) {
        std::wstring str(n, L'x');
        wchar_t sz[2048] = L"a";
        StrAppendTextFmt(sz, 2048, L"%s", str.c_str());
        EXPECT_EQ(1 + std::min<std::size_t>(n, 1023), std::wcslen(sz)) << n;
    }
}
} // namespace
