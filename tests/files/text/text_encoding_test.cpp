// Sanitize, ReverseUnicodeBytes, FreeDllBuf.
#include "files/text/cs_file.h"
#include "files/text/text_support.h"
#include "support/guard_page.h"

#include <gtest/gtest.h>
#include <cstring>
#include <random>
#include <string>
#include <vector>

TEST(TextSanitize, ReplacesControlCharactersOfEveryWideOne) {
    std::wstring str;
    for (unsigned ch = 0; ch < 0x10000; ++ch) str += static_cast<wchar_t>(ch);
    CSFile::Sanitize(str.data(), static_cast<unsigned>(str.size()), L'\x2591');
    for (unsigned ch = 0; ch < 0x10000; ++ch) {
        bool bKept =
            ch == 9 || ch == 10 || ch == 12 || ch == 13 || ch == 26 || (ch >= 32 && ch != 127);
        ASSERT_EQ(bKept ? static_cast<wchar_t>(ch) : L'\x2591', str[ch]) << ch;
    }
}

TEST(TextSanitize, ReplacesControlCharactersOfEveryByte) {
    std::string str;
    for (int ch = 0; ch < 256; ++ch) str += static_cast<char>(ch);
    CSFile::Sanitize(str.data(), 256, '#');
    for (int ch = 0; ch < 256; ++ch) {
        bool bKept =
            ch == 9 || ch == 10 || ch == 12 || ch == 13 || ch == 26 || (ch >= 32 && ch != 127);
        EXPECT_EQ(bKept ? static_cast<char>(ch) : '#', str[static_cast<unsigned>(ch)]) << ch;
    }
}

TEST(TextSanitize, FindsOneControlCharacterInALongText) {
    for (int ch : {0, 1, 8, 9, 11, 12, 14, 25, 26, 27, 31, 32, 126, 127}) {
        const bool bKept = IsTextCharacter(static_cast<unsigned>(ch));
        for (std::size_t nAt : {0u, 63u, 64u, 100u, 127u, 128u, 149u}) {
            std::wstring str(150, L'\x20AC');
            std::string bytes(150, '\xE4');
            str[nAt] = static_cast<wchar_t>(ch);
            bytes[nAt] = static_cast<char>(ch);
            std::wstring strExpected = str;
            std::string expected = bytes;
            if (!bKept) {
                strExpected[nAt] = L'?';
                expected[nAt] = '?';
            }
            CSFile::Sanitize(str.data(), 150, L'?');
            CSFile::Sanitize(bytes.data(), 150, '?');
            ASSERT_EQ(strExpected, str) << ch << " " << nAt;
            ASSERT_EQ(expected, bytes) << ch << " " << nAt;
        }
    }
}

TEST(TextSanitize, LooksAtSoManyCharactersAndNoTerminator) {
    wchar_t sz[] = L"\1\0\2\3";
    CSFile::Sanitize(sz, 3, L'\1'); // a replacement may be of the same kind
    EXPECT_EQ(std::wstring(L"\1\1\1\3", 4), std::wstring(sz, 4));
    CSFile::Sanitize(sz, 0, L'?');
    EXPECT_EQ(L'\1', sz[0]);
    CSFile::Sanitize(static_cast<wchar_t*>(nullptr), 0, L'?');
    CSFile::Sanitize(static_cast<char*>(nullptr), 0, '?');
    for (unsigned n = 0; n < 70; ++n) {
        GuardedMemory wide(n * sizeof(wchar_t)), bytes(n);
        std::memset(wide.Get(), 1, wide.GetSize());
        std::memset(bytes.Get(), 1, n);
        CSFile::Sanitize(static_cast<wchar_t*>(wide.Get()), n, L'a');
        CSFile::Sanitize(static_cast<char*>(bytes.Get()), n, 'a');
        EXPECT_EQ(std::string(n, 'a'), std::string(static_cast<char*>(bytes.Get()), n));
        // 0x0101 is no control character
        EXPECT_EQ(std::wstring(n, L'\x101'), std::wstring(static_cast<wchar_t*>(wide.Get()), n));
    }
}

TEST(TextReverse, SwapsTheBytesOfWholePairs) {
    for (DWORD cb = 0; cb < 70; ++cb) {
        GuardedMemory memory(cb);
        auto* p = static_cast<BYTE*>(memory.Get());
        for (DWORD i = 0; i < cb; ++i) p[i] = static_cast<BYTE>(i);
        ReverseUnicodeBytes(p, cb);
        for (DWORD i = 0; i < cb; ++i)
            EXPECT_EQ(i == cb - 1 && cb % 2 ? i : i ^ 1, p[i]) << cb; // a last odd one stays
    }
    ReverseUnicodeBytes(static_cast<BYTE*>(nullptr), 0);
}

TEST(TextReverse, SwapsTheBytesOfCharacters) {
    for (unsigned n = 0; n < 70; ++n) {
        GuardedMemory memory(n * sizeof(wchar_t));
        auto* p = static_cast<wchar_t*>(memory.Get());
        for (unsigned i = 0; i < n; ++i) p[i] = static_cast<wchar_t>(0x1200 + i);
        ReverseUnicodeBytes(p, n);
        for (unsigned i = 0; i < n; ++i) EXPECT_EQ(static_cast<wchar_t>(i << 8 | 0x12), p[i]);
        ReverseUnicodeBytes(p, n);
        for (unsigned i = 0; i < n; ++i) EXPECT_EQ(static_cast<wchar_t>(0x1200 + i), p[i]);
    }
    wchar_t sz[] = L"ab";
    ReverseUnicodeBytes(sz, 1);
    EXPECT_STREQ(L"\x6100\x0062", sz);
    ReverseUnicodeBytes(static_cast<wchar_t*>(nullptr), 0);
}

TEST(TextReverse, TakesBytesAtAnOddPlace) {
    BYTE bytes[] = {0, 1, 2, 3, 4, 5};
    ReverseUnicodeBytes(bytes + 1, 4);
    EXPECT_EQ(0, std::memcmp(bytes, "\0\2\1\4\3\5", 6));
}

TEST(FreeDllBufOfNull, DoesNothing) { FreeDllBuf(nullptr); }
