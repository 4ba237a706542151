#include "runtime/text/encoding.h"
#include "support/guard_page.h"

#include <windows.h>
#include <gtest/gtest.h>
#include <climits>
#include <random>
#include <string>
#include <vector>

namespace {
// Hexadecimal text

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

// Bytes as text for file names

using Bytes = std::vector<unsigned char>;
const std::wstring kAlphabet = L"ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-_";

/// The text bit by bit: bit n of the data is bit n % 6 of character n / 6.
std::wstring PlainText(const Bytes& bytes) {
    std::wstring str;
    for (std::size_t nBase = 0; nBase < bytes.size(); nBase += 3) {
        std::size_t cb = std::min<std::size_t>(3, bytes.size() - nBase);
        for (std::size_t nChar = 0; nChar < 4; ++nChar) {
            if (nChar > cb) {
                str += L'=';
                continue;
            }
            unsigned nPiece = 0;
            for (std::size_t nBit = 6 * nChar; nBit < 6 * nChar + 6 && nBit < 8 * cb; ++nBit) {
                nPiece |= (bytes[nBase + nBit / 8] >> nBit % 8 & 1u) << (nBit - 6 * nChar);
            }
            str += kAlphabet[nPiece];
        }
    }
    return str;
}

/// The bytes that a text of any kind holds.
Bytes PlainBytes(std::wstring str) {
    while (str.size() % 4) str += L'=';
    Bytes bytes;
    for (std::size_t nBase = 0; nBase < str.size(); nBase += 4) {
        unsigned nBits = 0;
        for (std::size_t i = 0; i < 4; ++i) {
            std::size_t nPiece = kAlphabet.find(str[nBase + i]);
            if (nPiece == std::wstring::npos) break;
            nBits += static_cast<unsigned>(nPiece) << (6 * i);
        }
        int cb = 1 + (str[nBase + 2] != L'=') + (str[nBase + 3] != L'=');
        for (int i = 0; i < cb; ++i) bytes.push_back(static_cast<unsigned char>(nBits >> 8 * i));
    }
    return bytes;
}

std::wstring Encode(const Bytes& bytes) {
    auto n = static_cast<unsigned>(bytes.size());
    std::vector<wchar_t> text(BinToBase64FS(nullptr, 0, bytes.data(), n) + 1, L'#');
    BinToBase64FS(text.data(), static_cast<unsigned>(text.size()) - 1, bytes.data(), n);
    return text.data();
}

Bytes Decode(const std::wstring& str) {
    GuardedText text(str);
    Bytes bytes(Base64FSToBin(nullptr, 0, text.Get()));
    auto n = static_cast<unsigned>(bytes.size());
    EXPECT_EQ(n, Base64FSToBin(bytes.data(), n, text.Get()));
    return bytes;
}

TEST(BinToBase64FS, WritesLowestBitsFirst) {
    EXPECT_EQ(L"BA==", Encode({0x01}));
    EXPECT_EQ(L"_D==", Encode({0xFF}));
    EXPECT_EQ(L"AA==", Encode({0x00}));
    EXPECT_EQ(L"AEA=", Encode({0x00, 0x01}));
    EXPECT_EQ(L"BIwA", Encode({0x01, 0x02, 0x03}));
    EXPECT_EQ(L"____", Encode({0xFF, 0xFF, 0xFF}));
    EXPECT_EQ(L"-___", Encode({0xFE, 0xFF, 0xFF}));
}

TEST(BinToBase64FS, EveryCharacterOfTheAlphabetComesInItsPlace) {
    for (unsigned n = 0; n < 64; ++n) {
        EXPECT_EQ(kAlphabet[n], Encode({static_cast<unsigned char>(n)})[0]);
        EXPECT_EQ((Bytes{static_cast<unsigned char>(n)}),
                  Decode(std::wstring(1, kAlphabet[n]) + L"A=="));
    }
}

TEST(BinToBase64FS, ReturnsTheCharactersAndTheTerminator) {
    const unsigned char data[7] = {};
    const unsigned expected[] = {0, 5, 5, 5, 9, 9, 9, 13};
    for (unsigned n = 0; n <= 7; ++n) {
        EXPECT_EQ(expected[n], BinToBase64FS(nullptr, 0, data, n)) << n;
        EXPECT_EQ(expected[n], BinToBase64FS(nullptr, 100, data, n)) << n;
        wchar_t sz[16];
        EXPECT_EQ(expected[n], BinToBase64FS(sz, 16, data, n)) << n;
    }
}

TEST(BinToBase64FS, NoDataGivesZeroAndTheEmptyText) {
    wchar_t sz[8] = L"old";
    EXPECT_EQ(0u, BinToBase64FS(sz, 8, "a", 0));
    EXPECT_STREQ(L"", sz);
    EXPECT_EQ(0u, BinToBase64FS(nullptr, 0, nullptr, 0));
    EXPECT_EQ(0u, BinToBase64FS(sz, 8, nullptr, 5));
}

TEST(BinToBase64FS, NumberBeyond32BitsGivesZero) {
    // Only measured: the data is not looked at.
    EXPECT_EQ(4294967293u, BinToBase64FS(nullptr, 0, "", 3221225469u));
    EXPECT_EQ(0u, BinToBase64FS(nullptr, 0, "", 3221225472u));
    EXPECT_EQ(0u, BinToBase64FS(nullptr, 0, "", UINT_MAX));
}

TEST(BinToBase64FS, WhatDoesNotFitIsCutToWholeGroups) {
    const Bytes bytes{1, 2, 3, 4, 5, 6, 7};
    std::wstring strAll = PlainText(bytes);
    for (unsigned cch = 0; cch <= 14; ++cch) {
        GuardedMemory memory(cch * sizeof(wchar_t));
        auto* psz = static_cast<wchar_t*>(memory.Get());
        EXPECT_EQ(13u, BinToBase64FS(psz, cch, bytes.data(), 7)) << cch;
        if (cch == 0) continue;
        EXPECT_EQ(strAll.substr(0, std::min((cch - 1) / 4, 3u) * 4), psz) << cch;
    }
}

TEST(Base64FSToBin, CountsByThePadsOfEachGroup) {
    EXPECT_EQ((Bytes{0x01}), Decode(L"BA=="));
    EXPECT_EQ((Bytes{0x01, 0x02}), Decode(L"BIA="));
    EXPECT_EQ((Bytes{0x01, 0x02, 0x03}), Decode(L"BIwA"));
    EXPECT_EQ((Bytes{0x01, 0x00}), Decode(L"BA=A"));           // one pad, wherever it stands
    EXPECT_EQ((Bytes{0x01, 0x01, 0x02}), Decode(L"BA==BIA=")); // pads within the text
    EXPECT_EQ((Bytes{0x00}), Decode(L"===="));
}

TEST(Base64FSToBin, StrangeCharacterEndsItsGroupOnly) {
    EXPECT_EQ((Bytes{0x01, 0x00, 0x00, 0x01, 0x02, 0x03}), Decode(L"B!wABIwA"));
    EXPECT_EQ((Bytes{0x00, 0x00, 0x00}), Decode(L"!IwA"));
    EXPECT_EQ((Bytes{0x00, 0x00, 0x00}), Decode(L"+/ \u0100"));
}

TEST(Base64FSToBin, ShortLastGroupCountsAsPadded) {
    EXPECT_EQ((Bytes{0x01}), Decode(L"B"));
    EXPECT_EQ((Bytes{0x01}), Decode(L"BA"));
    EXPECT_EQ((Bytes{0x01, 0x02}), Decode(L"BIA"));
    EXPECT_EQ((Bytes{0x01, 0x02, 0x03, 0x01}), Decode(L"BIwAB"));
}

TEST(Base64FSToBin, EmptyAndNullTextsHoldNothing) {
    EXPECT_EQ(Bytes{}, Decode(L""));
    EXPECT_EQ(0u, Base64FSToBin(nullptr, 0, nullptr));
}

TEST(Base64FSToBin, CapacityLimitsOnlyWhatIsWritten) {
    const Bytes bytes{1, 2, 3, 4, 5};
    std::wstring str = PlainText(bytes);
    for (unsigned cb = 0; cb <= 6; ++cb) {
        GuardedMemory memory(cb);
        EXPECT_EQ(5u, Base64FSToBin(memory.Get(), cb, str.c_str())) << cb;
        EXPECT_EQ(0, memcmp(memory.Get(), bytes.data(), std::min(cb, 5u))) << cb;
    }
    EXPECT_EQ(5u, Base64FSToBin(nullptr, 100, str.c_str()));
}

TEST(Base64FS, RandomDataComesBack) {
    std::mt19937 random(6);
    GuardedArea areaData(64), areaText(256);
    for (int i = 0; i < 200000; ++i) {
        Bytes bytes(random() % 24);
        for (unsigned char& b : bytes) b = static_cast<unsigned char>(random());
        auto n = static_cast<unsigned>(bytes.size());
        void* pData = areaData.Put(n);
        if (n) memcpy(pData, bytes.data(), n);
        unsigned cch = BinToBase64FS(nullptr, 0, pData, n);
        auto* psz = static_cast<wchar_t*>(areaText.Put((cch ? cch : 1) * sizeof(wchar_t)));
        ASSERT_EQ(cch, BinToBase64FS(psz, cch ? cch : 1, pData, n));
        ASSERT_EQ(PlainText(bytes), psz);
        auto* pBack = static_cast<unsigned char*>(areaData.Put(n));
        ASSERT_EQ(n, Base64FSToBin(pBack, n, psz));
        ASSERT_EQ(bytes, Bytes(pBack, pBack + n));
    }
}

TEST(Base64FSToBin, RandomTextsStayWithinTheirBuffers) {
    std::mt19937 random(7);
    GuardedArea areaData(64), areaText(256);
    for (int i = 0; i < 200000; ++i) {
        std::wstring str;
        for (auto n = random() % 24; n > 0; --n) {
            auto nKind = random() % 8;
            str += nKind == 0   ? L'='
                   : nKind == 1 ? static_cast<wchar_t>(1 + random() % 0xFFFF)
                                : kAlphabet[random() % 64];
        }
        Bytes expected = PlainBytes(str);
        const wchar_t* psz = areaText.Put(str);
        auto n = static_cast<unsigned>(expected.size());
        unsigned cb = random() % (n + 1);
        auto* p = static_cast<unsigned char*>(areaData.Put(cb));
        ASSERT_EQ(n, Base64FSToBin(p, cb, psz)) << str;
        expected.resize(cb);
        ASSERT_EQ(expected, Bytes(p, p + cb)) << str;
    }
}

// Code pages

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

// CVT

std::wstring Text(std::size_t n) {
    std::wstring str(n, L'x');
    if (n) str.back() = L'z';
    return str;
}

TEST(CVT, SizeIs260IfNotTold) {
    EXPECT_EQ(260u, CVT().GetSize());
    EXPECT_EQ(12u, CVT(12).GetSize());
}

TEST(CVT, WideTextBecomesNarrow) {
    CVT cvt;
    EXPECT_STREQ("Desktop", cvt.T_A(L"Desktop"));
    EXPECT_STREQ("", cvt.T_A(L""));
}

TEST(CVT, NullTextCountsAsEmpty) {
    CVT cvt;
    cvt.T_A(L"before");
    EXPECT_STREQ("", cvt.T_A(static_cast<const wchar_t*>(nullptr)));
}

TEST(CVT, NarrowTextMayHaveAllCharactersOfTheSize) {
    CVT cvt(8);
    EXPECT_STREQ("xxxxxxxz", cvt.T_A(Text(8).c_str()));
}

TEST(CVT, LongerTextIsCutAndTerminated) {
    CVT cvt(8);
    EXPECT_STREQ("xxxxxxxx", cvt.T_A(Text(9).c_str()));
    EXPECT_STREQ("xxxxxxxx", cvt.T_A(Text(5000).c_str()));
}

TEST(CVT, ReadsNoFurtherThanTheTerminator) {
    CVT cvt(50);
    GuardedText text(L"end");
    EXPECT_STREQ("end", cvt.T_A(text.Get()));
}

TEST(CVT, ChangedNarrowTextComesBackWide) {
    CVT cvt;
    char* psz = cvt.T_A(L"in");
    strcpy(psz, "changed by a narrow function");
    wchar_t szOut[260];
    cvt.A_T(szOut);
    EXPECT_STREQ(L"changed by a narrow function", szOut);
}

TEST(CVT, WidePlaceHoldsTheSizeAndStartsEmpty) {
    CVT cvt(16);
    wchar_t* psz = cvt.A_T();
    EXPECT_STREQ(L"", psz);
    wcscpy(psz, Text(16).c_str());
    EXPECT_EQ(psz, cvt.A_T());
    EXPECT_EQ(Text(16), psz);
}

TEST(CVT, WideTextInThePlaceComesOutNarrow) {
    CVT cvt;
    wcscpy(cvt.A_T(), L"made by a wide function");
    char szOut[260];
    cvt.T_A(szOut);
    EXPECT_STREQ("made by a wide function", szOut);
}

TEST(CVT, PlaceIsLargeEnoughAfterTheOtherDirectionWasUsed) {
    CVT cvt(400);
    cvt.T_A(L"first");
    wcscpy(cvt.A_T(), Text(400).c_str());
    EXPECT_EQ(Text(400), cvt.A_T());
}

TEST(CVT, OutputsHaveTheSizeWithTheTerminator) {
    CVT cvt(8);
    wcscpy(cvt.A_T(), Text(8).c_str());
    GuardedMemory narrow(8);
    cvt.T_A(static_cast<char*>(narrow.Get()));
    EXPECT_STREQ("xxxxxxx", static_cast<char*>(narrow.Get()));

    CVT back(8);
    back.T_A(Text(8).c_str());
    GuardedMemory wide(8 * sizeof(wchar_t));
    back.A_T(static_cast<wchar_t*>(wide.Get()));
    EXPECT_STREQ(L"xxxxxxx", static_cast<wchar_t*>(wide.Get()));
}

TEST(CVT, OutputsAreEmptyBeforeAnythingWasPutIn) {
    CVT cvt(4);
    char szNarrow[4] = "abc";
    wchar_t szWide[4] = L"abc";
    cvt.T_A(szNarrow);
    cvt.A_T(szWide);
    EXPECT_STREQ("", szNarrow);
    EXPECT_STREQ(L"", szWide);
}

TEST(CVT, SizeOfZeroHasRoomForNothing) {
    CVT cvt(0);
    EXPECT_STREQ("", cvt.T_A(L"text"));
    char ch = 'z';
    cvt.T_A(&ch);
    EXPECT_EQ('z', ch);
}

TEST(CVT, WideTextPassesThrough) {
    const wchar_t* psz = L"same";
    EXPECT_EQ(psz, CVT::T_W(psz));
}

TEST(CVT, AccentsOfTheSystemCodePageSurviveTheRoundTrip) {
    const wchar_t* pszText = L"B\u00FCro";
    if (::GetACP() != 1252 && ::GetACP() != CP_UTF8) GTEST_SKIP() << "code page without u umlaut";
    CVT cvt;
    cvt.T_A(pszText);
    wchar_t szOut[260];
    cvt.A_T(szOut);
    EXPECT_STREQ(pszText, szOut);
}
} // namespace
