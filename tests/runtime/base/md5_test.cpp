#include "runtime/base/digest.h"
#include "runtime/digest_text.h"

#include <gtest/gtest.h>
#include <array>
#include <bit>
#include <cmath>
#include <cstdint>
#include <string>
#include <utility>

namespace {
using Digest = std::array<unsigned char, 16>;

Digest Calc(const void* pData, unsigned long long cbData) {
    return CalcDigest<16>(CalcMD5, pData, cbData);
}

/// MD5 word for word as the RFC tells it: the message is padded as a whole, the constants come from
/// the sine. Slow and obvious.
Digest PlainMd5(Bytes message) {
    message = Padded(std::move(message), true);
    static const int kShift[4][4] = {
        {7, 12, 17, 22}, {5, 9, 14, 20}, {4, 11, 16, 23}, {6, 10, 15, 21}};
    std::uint32_t h[4] = {0x67452301, 0xefcdab89, 0x98badcfe, 0x10325476};
    for (std::size_t nBase = 0; nBase < message.size(); nBase += 64) {
        std::uint32_t a = h[0], b = h[1], c = h[2], d = h[3];
        for (unsigned i = 0; i < 64; ++i) {
            std::uint32_t f;
            unsigned g;
            switch (i / 16) {
            case 0:
                f = (b & c) | (~b & d);
                g = i;
                break;
            case 1:
                f = (b & d) | (c & ~d);
                g = (5 * i + 1) % 16;
                break;
            case 2:
                f = b ^ c ^ d;
                g = (3 * i + 5) % 16;
                break;
            default:
                f = c ^ (b | ~d);
                g = (7 * i) % 16;
                break;
            }
            std::uint32_t x = 0;
            for (unsigned j = 0; j < 4; ++j) {
                x |= static_cast<std::uint32_t>(message[nBase + 4 * g + j]) << (8 * j);
            }
            auto k = static_cast<std::uint32_t>(std::fabs(std::sin(i + 1.0)) * 4294967296.0);
            std::uint32_t next = b + std::rotl(a + f + k + x, kShift[i / 16][i % 4]);
            a = d;
            d = c;
            c = b;
            b = next;
        }
        h[0] += a;
        h[1] += b;
        h[2] += c;
        h[3] += d;
    }
    Digest digest;
    for (int i = 0; i < 16; ++i) digest[i] = static_cast<unsigned char>(h[i / 4] >> (8 * (i % 4)));
    return digest;
}

struct KnownDigest {
    const char* pszText;
    const char* pszDigest;
};

TEST(CalcMD5, GivesTheDigestsOfTheStandard) {
    // RFC 1321, A.5
    static const KnownDigest kKnown[] = {
        {"", "d41d8cd98f00b204e9800998ecf8427e"},
        {"a", "0cc175b9c0f1b6a831c399e269772661"},
        {"abc", "900150983cd24fb0d6963f7d28e17f72"},
        {"message digest", "f96b697d7cb7938d525a2f31aaf161d0"},
        {"abcdefghijklmnopqrstuvwxyz", "c3fcd3d76192e4007dfb496cca67e13b"},
        {"ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789",
         "d174ab98d277d9f5a5611c2c9f419d9f"},
        {"12345678901234567890123456789012345678901234567890123456789012345678901234567890",
         "57edf4a22be3c955ac49da2e2107b67a"},
    };
    for (const KnownDigest& known : kKnown) {
        EXPECT_EQ(known.pszDigest, Hex(Calc(known.pszText, strlen(known.pszText))))
            << known.pszText;
    }
}

TEST(CalcMD5, NoDataMayBeNull) {
    EXPECT_EQ("d41d8cd98f00b204e9800998ecf8427e", Hex(Calc(nullptr, 0)));
}

TEST(CalcMD5, EveryShortLengthAgreesWithThePlainForm) {
    for (std::size_t cb = 0; cb <= 300; ++cb) {
        EXPECT_EQ(Hex(PlainMd5(Pattern(cb))), Hex(CalcOfPattern<16>(CalcMD5, cb)))
            << cb << " bytes";
    }
}

TEST(CalcMD5, LongDataAgreesWithThePlainForm) {
    for (std::size_t cb : {23976u, 23992u, 65536u, 1000003u}) {
        EXPECT_EQ(Hex(PlainMd5(Pattern(cb))), Hex(CalcOfPattern<16>(CalcMD5, cb)))
            << cb << " bytes";
    }
}

TEST(CalcMD5, AlignmentOfTheDataDoesNotMatter) { EXPECT_TRUE(IsSameAtAnyAlignment<16>(CalcMD5)); }

TEST(CalcMD5, WritesSixteenBytesAndNoMore) { EXPECT_TRUE(WritesNothingAround<16>(CalcMD5)); }
} // namespace
