#include "shell/folders/shell_folder.h"
#include "support/guard_page.h"

#include <shlobj.h>
#include <gtest/gtest.h>
#include <string>

namespace {
STRRET WideRet(const std::wstring& str) {
    STRRET ret{};
    ret.uType = STRRET_WSTR;
    std::size_t cb = (str.size() + 1) * sizeof(wchar_t);
    ret.pOleStr = static_cast<wchar_t*>(::CoTaskMemAlloc(cb));
    std::memcpy(ret.pOleStr, str.c_str(), cb);
    return ret;
}

TEST(StrRetToText, WholeStructureWithoutATerminatorIsReadToItsEnd) {
    GuardedMemory memory(sizeof(STRRET));
    auto* pRet = static_cast<STRRET*>(memory.Get());
    std::memset(pRet, 'a', sizeof(*pRet));
    pRet->uType = STRRET_CSTR;
    wchar_t sz[300];
    std::fill_n(sz, 300, L'#');
    (void)!StrRetToText(*pRet, nullptr, sz, 300);
    EXPECT_LE(wcslen(sz), sizeof(pRet->cStr));
}

TEST(StrRetToText, OffsetBeyondTheItemIsNotFollowed) {
    // An item of 8 bytes, the end of which is the end of what may be read.
    GuardedMemory memory(10);
    auto* p = static_cast<BYTE*>(memory.Get());
    const BYTE bytes[10] = {8, 0, 'x', 'x', 'a', 'b', 'c', 'd', 0, 0};
    std::memcpy(p, bytes, 10);
    STRRET ret{};
    ret.uType = STRRET_OFFSET;
    wchar_t sz[16];
    for (UINT nOffset : {4u, 7u, 8u, 10u, 11u, 100000u, 0x80000000u, 0xFFFFFFFFu}) {
        ret.uOffset = nOffset;
        std::fill_n(sz, 16, L'#');
        (void)!StrRetToText(ret, static_cast<ITEMIDLIST*>(memory.Get()), sz, 16);
        EXPECT_EQ(nOffset == 4 ? L"abcd" : nOffset == 7 ? L"d" : L"", std::wstring(sz)) << nOffset;
    }
    ret.uOffset = 2;
    (void)!StrRetToText(ret, nullptr, sz, 16);
    EXPECT_STREQ(L"", sz);
}

TEST(StrRetToText, AnsiIsWidenedByTheCodePage) {
    STRRET ret{};
    ret.uType = STRRET_CSTR;
    strcpy(ret.cStr, "caf\xE9");
    wchar_t sz[16], szExpected[16];
    ASSERT_EQ(1, StrRetToText(ret, nullptr, sz, 16));
    ::MultiByteToWideChar(CP_ACP, 0, "caf\xE9", -1, szExpected, 16);
    EXPECT_STREQ(szExpected, sz);
}

TEST(StrRetToText, WideIsCutAtEverySize) {
    for (unsigned cch = 0; cch <= 6; ++cch) {
        STRRET ret = WideRet(L"wide");
        GuardedMemory memory(cch * sizeof(wchar_t));
        auto* psz = static_cast<wchar_t*>(memory.Get());
        (void)!StrRetToText(ret, nullptr, psz, cch);
        if (cch) {
            EXPECT_EQ(std::wstring(L"wide").substr(0, cch - 1), psz);
        }
    }
    STRRET ret{};
    ret.uType = STRRET_WSTR;
    wchar_t sz[4] = L"old";
    (void)!StrRetToText(ret, nullptr, sz, 4); // no text at all
    EXPECT_STREQ(L"", sz);
}
} // namespace
