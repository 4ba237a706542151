#include "runtime/text/encoding.h"
#include "support/guard_page.h"

#include <gtest/gtest.h>
#include <climits>
#include <random>
#include <string>
#include <vector>

namespace {
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
} // namespace
