#include "runtime/text/encoding.h"
#include "support/guard_page.h"

#include <windows.h>
#include <gtest/gtest.h>
#include <random>
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

template <class Char>
std::basic_string<Char> Written(unsigned cch, const Bytes& bytes, int nExpected) {
    GuardedMemory memory(cch * sizeof(Char));
    auto* psz = static_cast<Char*>(memory.Get());
    unsigned n = static_cast<unsigned>(bytes.size());
    EXPECT_EQ(nExpected, BinToHex(psz, cch, bytes.data(), n)) << cch;
    return psz;
}

TEST(BinToHex, WritesUpperCasePairsAndATerminator) {
    EXPECT_EQ(L"01ABFF00", Written<wchar_t>(9, {1, 0xAB, 0xFF, 0}, 1));
    EXPECT_EQ("01ABFF00", Written<char>(9, {1, 0xAB, 0xFF, 0}, 1));
    EXPECT_EQ(L"", Written<wchar_t>(1, {}, 1));
    EXPECT_EQ("", Written<char>(1, {}, 1));
}

TEST(BinToHex, WhatDoesNotFitIsCutToWholePairs) {
    const Bytes bytes{0x12, 0x34, 0x56};
    for (unsigned cch = 1; cch <= 8; ++cch) {
        std::string str = std::string("123456").substr(0, std::min((cch - 1) / 2, 3u) * 2);
        EXPECT_EQ(str, Written<char>(cch, bytes, cch >= 7)) << cch;
        EXPECT_EQ(std::wstring(str.begin(), str.end()), Written<wchar_t>(cch, bytes, cch >= 7));
    }
}

TEST(BinToHex, NoPlaceOrNoDataIsHarmless) {
    wchar_t sz[4] = L"old";
    EXPECT_EQ(0, BinToHex(sz, 0, "a", 1));
    EXPECT_STREQ(L"old", sz);
    EXPECT_EQ(0, BinToHex(static_cast<wchar_t*>(nullptr), 4, "a", 1));
    EXPECT_EQ(0, BinToHex(sz, 4, nullptr, 1));
    EXPECT_STREQ(L"", sz);
}

TEST(HexToBin, RandomTextsStayWithinTheirBuffers) {
    std::mt19937 random(5);
    GuardedArea areaText(256), areaData(64);
    for (int i = 0; i < 200000; ++i) {
        std::wstring str;
        for (auto n = random() % 24; n > 0; --n) {
            str += random() % 4 ? L"0123456789abcdefABCDEF"[random() % 22]
                                : static_cast<wchar_t>(1 + random() % 0xFFFF);
        }
        const wchar_t* psz = areaText.Put(str);
        auto n = static_cast<unsigned>((str.size() + 1) / 2);
        ASSERT_EQ(n, HexToBin(nullptr, psz));
        auto* p = static_cast<unsigned char*>(areaData.Put(n));
        ASSERT_EQ(n, HexToBin(p, psz));
        Bytes bytes(p, p + n);
        p = static_cast<unsigned char*>(areaData.Put(n));
        ASSERT_EQ(n, HexToBinLE(p, psz));
        ASSERT_EQ(Bytes(bytes.rbegin(), bytes.rend()), Bytes(p, p + n));
        // Written again, the bytes give the same bytes.
        auto* pszAgain = static_cast<wchar_t*>(areaText.Put((2 * n + 1) * sizeof(wchar_t)));
        ASSERT_EQ(1, BinToHex(pszAgain, 2 * n + 1, bytes.data(), n));
        p = static_cast<unsigned char*>(areaData.Put(n));
        ASSERT_EQ(n, HexToBin(p, pszAgain));
        ASSERT_EQ(bytes, Bytes(p, p + n));
    }
}

TEST(StrToHex, WritesTheTextInTheSystemCodePage) {
    wchar_t sz[32];
    EXPECT_EQ(1, StrToHex(sz, 32, L"Az 1"));
    EXPECT_STREQ(L"417A2031", sz);
    EXPECT_EQ(1, StrToHex(sz, 32, L"x"));
    EXPECT_STREQ(L"78", sz);
}

TEST(StrToHex, EmptyTextGivesAnEmptyResultAndZero) {
    wchar_t sz[8] = L"old";
    EXPECT_EQ(0, StrToHex(sz, 8, L""));
    EXPECT_STREQ(L"", sz);
    sz[0] = L'x';
    EXPECT_EQ(0, StrToHex(sz, 8, nullptr));
    EXPECT_STREQ(L"", sz);
}

TEST(StrToHex, TakesAtMost260Bytes) {
    for (std::size_t n : {259u, 260u, 261u, 1000u}) {
        wchar_t sz[2048];
        EXPECT_EQ(1, StrToHex(sz, 2048, std::wstring(n, L'a').c_str()));
        EXPECT_EQ(std::min<std::size_t>(n, 260) * 2, std::wcslen(sz)) << n;
    }
}

TEST(StrToHex, ResultKeepsToItsCapacity) {
    for (unsigned cch = 1; cch <= 6; ++cch) {
        GuardedMemory memory(cch * sizeof(wchar_t));
        auto* psz = static_cast<wchar_t*>(memory.Get());
        EXPECT_EQ(1, StrToHex(psz, cch, L"ab"));
        EXPECT_EQ(std::wstring(L"6162").substr(0, std::min((cch - 1) / 2, 2u) * 2), psz) << cch;
    }
    EXPECT_EQ(1, StrToHex(nullptr, 0, L"ab"));
}

TEST(HexToStr, GivesBackWhatStrToHexMade) {
    std::wstring strLong(260, L'q');
    for (const std::wstring& str : {std::wstring(L"Some text, 1"), std::wstring(L"x"), strLong}) {
        wchar_t szHex[600], szBack[600];
        StrToHex(szHex, 600, str.c_str());
        EXPECT_EQ(1, HexToStr(szBack, 600, szHex));
        EXPECT_EQ(str, szBack);
    }
}

TEST(HexToStr, CharactersOfTheSystemCodePageComeBack) {
    char szNarrow[] = "\xE4";
    wchar_t szWide[4] = {};
    ASSERT_GT(::MultiByteToWideChar(CP_ACP, 0, szNarrow, -1, szWide, 4), 0);
    wchar_t sz[8];
    EXPECT_EQ(1, HexToStr(sz, 8, L"e4"));
    EXPECT_STREQ(szWide, sz);
}

TEST(HexToStr, EmptyTextGivesTheEmptyTextAndOne) {
    wchar_t sz[4] = L"old";
    EXPECT_EQ(1, HexToStr(sz, 4, L""));
    EXPECT_STREQ(L"", sz);
    EXPECT_EQ(1, HexToStr(sz, 4, nullptr));
    EXPECT_EQ(0, HexToStr(nullptr, 4, L"61"));
    EXPECT_EQ(0, HexToStr(sz, 0, L"61"));
}

TEST(HexToStr, EndsAtAZeroByteAndAtItsCapacity) {
    wchar_t sz[8];
    EXPECT_EQ(1, HexToStr(sz, 8, L"610062"));
    EXPECT_STREQ(L"a", sz);
    EXPECT_EQ(1, HexToStr(sz, 8, L"00"));
    EXPECT_STREQ(L"", sz);
    for (unsigned cch = 1; cch <= 4; ++cch) {
        GuardedMemory memory(cch * sizeof(wchar_t));
        auto* psz = static_cast<wchar_t*>(memory.Get());
        EXPECT_EQ(1, HexToStr(psz, cch, L"616263"));
        EXPECT_EQ(std::wstring(L"abc").substr(0, cch - 1), psz);
    }
}

TEST(HexToStr, RandomTextsStayWithinTheirBuffers) {
    std::mt19937 random(11);
    GuardedArea areaText(64), areaOut(64);
    for (int i = 0; i < 200000; ++i) {
        std::wstring str;
        for (auto n = random() % 24; n > 0; --n) {
            str += random() % 8 ? L"0123456789abcdefABCDEF"[random() % 22]
                                : static_cast<wchar_t>(1 + random() % 0xFFFF);
        }
        char szNarrow[16] = {};
        HexToBin(szNarrow, str.c_str());
        wchar_t szWide[16];
        ASSERT_GT(::MultiByteToWideChar(CP_ACP, 0, szNarrow, -1, szWide, 16), 0);
        unsigned cch = 1 + random() % 14;
        auto* pszOut = static_cast<wchar_t*>(areaOut.Put(cch * sizeof(wchar_t)));
        ASSERT_EQ(1, HexToStr(pszOut, cch, areaText.Put(str))) << str;
        ASSERT_EQ(std::wstring(szWide).substr(0, cch - 1), pszOut) << str;
    }
}

TEST(HexToStr, ConvertsInPlace) {
    wchar_t sz[16] = L"abc";
    EXPECT_EQ(1, StrToHex(sz, 16, sz));
    EXPECT_STREQ(L"616263", sz);
    EXPECT_EQ(1, HexToStr(sz, 16, sz));
    EXPECT_STREQ(L"abc", sz);
}
} // namespace
