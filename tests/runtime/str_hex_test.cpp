#include "runtime/str_hex.h"

#include "support/guard_page.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace {
using Bytes = std::vector<unsigned char>;

/// Reads into memory that has room for exactly the bytes that the count promises.
Bytes Read(unsigned (*pfnRead)(void*, const wchar_t*), const std::wstring& str) {
    GuardedText text(str);
    unsigned n = pfnRead(nullptr, text.Get());
    GuardedMemory memory(n);
    EXPECT_EQ(n, pfnRead(memory.Get(), text.Get()));
    auto* p = static_cast<unsigned char*>(memory.Get());
    return Bytes(p, p + n);
}

TEST(HexToCode, EveryCharacterButTheDigitsIsZero) {
    for (unsigned n = 0; n <= 0xFFFF; ++n) {
        auto ch = static_cast<wchar_t>(n);
        unsigned nExpected = 0;
        if (n >= '0' && n <= '9') nExpected = n - '0';
        if (n >= 'A' && n <= 'F') nExpected = n - 'A' + 10;
        if (n >= 'a' && n <= 'f') nExpected = n - 'a' + 10;
        ASSERT_EQ(nExpected, HexToCode(ch)) << n;
    }
}

TEST(HexToChar, FirstCharacterIsTheHighNibble) {
    EXPECT_EQ(0x1F, HexToChar(L'1', L'F'));
    EXPECT_EQ(0xA0, HexToChar(L'a', L'0'));
    EXPECT_EQ(0xFF, HexToChar(L'f', L'F'));
}

TEST(HexToChar, NoDigitCountsAsZero) {
    EXPECT_EQ(0x05, HexToChar(L'g', L'5'));
    EXPECT_EQ(0x50, HexToChar(L'5', L'\0'));
    EXPECT_EQ(0x00, HexToChar(0x0661, 0xFF11)); // digits of other scripts
}

TEST(HexToBin, ReadsFirstPairFirst) {
    EXPECT_EQ((Bytes{1, 2, 3, 0xAB}), Read(HexToBin, L"010203aB"));
}

TEST(HexToBin, EmptyAndNullTextsGiveNothing) {
    EXPECT_EQ(Bytes{}, Read(HexToBin, L""));
    EXPECT_EQ(0u, HexToBin(nullptr, nullptr));
}

TEST(HexToBin, SingleLastCharacterIsOneMorePair) {
    EXPECT_EQ((Bytes{0xAB, 0xC0}), Read(HexToBin, L"ABC"));
    EXPECT_EQ((Bytes{0x70}), Read(HexToBin, L"7"));
}

TEST(HexToBin, LettersThatAreNoDigitsRejectNothing) {
    EXPECT_EQ((Bytes{0x00, 0x12, 0x0F}), Read(HexToBin, L"xy12zF"));
}

TEST(HexToBinLE, ReversesTheBytes) {
    EXPECT_EQ((Bytes{4, 3, 2, 1}), Read(HexToBinLE, L"01020304"));
    EXPECT_EQ((Bytes{3, 2, 1}), Read(HexToBinLE, L"010203"));
    EXPECT_EQ((Bytes{0xC0, 0xAB}), Read(HexToBinLE, L"ABC"));
    EXPECT_EQ(Bytes{}, Read(HexToBinLE, L""));
}
} // namespace
