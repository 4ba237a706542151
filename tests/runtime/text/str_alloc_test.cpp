#include "runtime/text/str_copy.h"
#include "support/guard_page.h"

#include <windows.h>
#include <gtest/gtest.h>
#include <algorithm>
#include <cstdint>
#include <string>

namespace {
struct AllocatedText {
    wchar_t* psz = nullptr;
    unsigned cch = 0;
    ~AllocatedText() { StrAllocCopy(psz, cch, nullptr, 0); }
};

TEST(StrAllocCopy, TakesAFreshCopyAndItsLength) {
    AllocatedText text;
    std::wstring str = L"abc";
    StrAllocCopy(text.psz, text.cch, str.c_str(), 0);
    str = L"xyz";
    EXPECT_STREQ(L"abc", text.psz);
    EXPECT_EQ(3u, text.cch);
    StrAllocCopy(text.psz, text.cch, L"longer text", 1);
    EXPECT_STREQ(L"longer text", text.psz);
    EXPECT_EQ(11u, text.cch);
}

TEST(StrAllocCopy, NoNewTextLeavesNull) {
    AllocatedText text;
    StrAllocCopy(text.psz, text.cch, nullptr, 1);
    EXPECT_EQ(nullptr, text.psz);
    StrAllocCopy(text.psz, text.cch, L"abc", 1);
    StrAllocCopy(text.psz, text.cch, nullptr, 1);
    EXPECT_EQ(nullptr, text.psz);
    EXPECT_EQ(0u, text.cch);
}

TEST(StrAllocCopy, EmptyNewTextIsAnEmptyCopy) {
    AllocatedText text;
    StrAllocCopy(text.psz, text.cch, L"", 1);
    ASSERT_NE(nullptr, text.psz);
    EXPECT_STREQ(L"", text.psz);
    EXPECT_EQ(0u, text.cch);
}

TEST(StrAllocCopy, NewTextMayLieInTheOldOne) {
    for (int bWipe : {0, 1}) {
        AllocatedText text;
        StrAllocCopy(text.psz, text.cch, L"abcdef", 0);
        StrAllocCopy(text.psz, text.cch, text.psz + 2, bWipe);
        EXPECT_STREQ(L"cdef", text.psz);
        EXPECT_EQ(4u, text.cch);
    }
}

/// Where the "secret" of a text that was given up still stands, as a number of its characters; the
/// text's terminator is changed before, so that it can be told too.
std::size_t LeftBehind(const std::wstring& strSecret, int bWipe) {
    std::wstring strLeft(strSecret.size() + 1, L'\0'); // now: it must not get the freed place
    wchar_t* psz = nullptr;
    unsigned cch = 0;
    StrAllocCopy(psz, cch, strSecret.c_str(), 0);
    psz[cch] = strSecret.back();
    auto nPlace = reinterpret_cast<std::uintptr_t>(psz); // behind it nothing is ours any more
    StrAllocCopy(psz, cch, nullptr, bWipe);
    ::ReadProcessMemory(::GetCurrentProcess(), reinterpret_cast<const void*>(nPlace),
                        strLeft.data(), strLeft.size() * sizeof(wchar_t), nullptr);
    return static_cast<std::size_t>(std::count(strLeft.begin(), strLeft.end(), strSecret.back()));
}

TEST(StrAllocCopy, WipedTextIsNotLeftBehindInMemory) {
    const std::wstring strSecret(5000, L'\x5EC2');
    if (LeftBehind(strSecret, 0) < strSecret.size() / 2) {
        GTEST_SKIP() << "the heap here overwrites what it frees";
    }
    EXPECT_EQ(0u, LeftBehind(strSecret, 1));
}

TEST(StrRealloc, ReplacesTheTextAndTakesEmptyForNone) {
    wchar_t* psz = nullptr;
    StrRealloc(psz, L"abc");
    EXPECT_STREQ(L"abc", psz);
    StrRealloc(psz, psz + 1);
    EXPECT_STREQ(L"bc", psz);
    StrRealloc(psz, L"");
    EXPECT_EQ(nullptr, psz);
    StrRealloc(psz, L"x");
    EXPECT_STREQ(L"x", psz);
    StrRealloc(psz, nullptr);
    EXPECT_EQ(nullptr, psz);
}

TEST(StrErase, WritesThatManyZeros) {
    GuardedArea area(64);
    wchar_t* psz = area.Put(L"abcd");
    StrErase(psz, 0);
    EXPECT_STREQ(L"abcd", psz);
    StrErase(psz, 1);
    EXPECT_EQ(0, psz[0]);
    EXPECT_EQ(L'b', psz[1]);
    StrErase(psz, 3);
    EXPECT_EQ(0, psz[2]);
    EXPECT_EQ(L'd', psz[3]);
    StrErase(psz, 5);
    EXPECT_EQ(0, psz[3]);
    StrErase(nullptr, 5);
}

TEST(IsMemSetTo, OneOnlyIfEveryByteIsThatOne) {
    GuardedMemory memory(5);
    auto* p = static_cast<unsigned char*>(memory.Get());
    memset(p, 0xFF, 5);
    EXPECT_EQ(1, IsMemSetTo(p, 0xFF, 5));
    EXPECT_EQ(0, IsMemSetTo(p, 0, 5));
    p[4] = 0xFE;
    EXPECT_EQ(0, IsMemSetTo(p, 0xFF, 5));
    EXPECT_EQ(1, IsMemSetTo(p, 0xFF, 4));
    EXPECT_EQ(1, IsMemSetTo(p + 4, 0xFE, 1));
    EXPECT_EQ(0, IsMemSetTo(p, 0xFF, 0));
    EXPECT_EQ(0, IsMemSetTo(nullptr, 0, 5));
}
} // namespace
