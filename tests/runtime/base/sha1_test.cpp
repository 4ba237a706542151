#include "runtime/base/digest.h"
#include "runtime/digest_text.h"

#include <gtest/gtest.h>
#include <array>
#include <bit>
#include <cstdint>
#include <random>
#include <string>
#include <utility>

namespace {
using Digest = std::array<unsigned char, 20>;

Digest Calc(const void* pData, unsigned long long cbData) {
    return CalcDigest<20>(SHA1_Calc, pData, cbData);
}

/// SHA-1 word for word as the standard tells it: the message is padded as a whole, all 80 words of
/// a block are made first. Slow and obvious.
Digest PlainSha1(Bytes message) {
    message = Padded(std::move(message), false);
    std::uint32_t h[5] = {0x67452301, 0xEFCDAB89, 0x98BADCFE, 0x10325476, 0xC3D2E1F0};
    for (std::size_t nBase = 0; nBase < message.size(); nBase += 64) {
        std::uint32_t w[80] = {};
        for (std::size_t t = 0; t < 64; ++t) w[t / 4] = w[t / 4] << 8 | message[nBase + t];
        for (int t = 16; t < 80; ++t) {
            w[t] = std::rotl(w[t - 3] ^ w[t - 8] ^ w[t - 14] ^ w[t - 16], 1);
        }
        std::uint32_t a = h[0], b = h[1], c = h[2], d = h[3], e = h[4];
        for (int t = 0; t < 80; ++t) {
            std::uint32_t f = (b & c) | (~b & d), k = 0x5A827999;
            if (t >= 20) f = b ^ c ^ d, k = 0x6ED9EBA1;
            if (t >= 40) f = (b & c) | (b & d) | (c & d), k = 0x8F1BBCDC;
            if (t >= 60) f = b ^ c ^ d, k = 0xCA62C1D6;
            std::uint32_t next = std::rotl(a, 5) + f + e + w[t] + k;
            e = d;
            d = c;
            c = std::rotl(b, 30);
            b = a;
            a = next;
        }
        h[0] += a;
        h[1] += b;
        h[2] += c;
        h[3] += d;
        h[4] += e;
    }
    Digest digest;
    for (int i = 0; i < 20; ++i)
        digest[i] = static_cast<unsigned char>(h[i / 4] >> (24 - i % 4 * 8));
    return digest;
}

TEST(SHA1_Calc, GivesTheDigestsOfTheStandard) {
    // FIPS 180-1, appendices A to C, and the empty text.
    EXPECT_EQ("da39a3ee5e6b4b0d3255bfef95601890afd80709", Hex(Calc("", 0)));
    EXPECT_EQ("a9993e364706816aba3e25717850c26c9cd0d89d", Hex(Calc("abc", 3)));
    EXPECT_EQ("84983e441c3bd26ebaae4aa1f95129e5e54670f1",
              Hex(Calc("abcdbcdecdefdefgefghfghighijhijkijkljklmklmnlmnomnopnopq", 56)));
    std::string strMillion(1000000, 'a');
    EXPECT_EQ("34aa973cd4c4daa4f61eeb2bdbad27316534016f",
              Hex(Calc(strMillion.data(), strMillion.size())));
}

TEST(SHA1_Calc, NoDataMayBeNull) {
    EXPECT_EQ("da39a3ee5e6b4b0d3255bfef95601890afd80709", Hex(Calc(nullptr, 0)));
}

TEST(SHA1_Calc, EveryShortLengthAgreesWithThePlainForm) {
    for (std::size_t cb = 0; cb <= 300; ++cb) {
        EXPECT_EQ(Hex(PlainSha1(Pattern(cb))), Hex(CalcOfPattern<20>(SHA1_Calc, cb)))
            << cb << " bytes";
    }
}

TEST(SHA1_Calc, LongDataAgreesWithThePlainForm) {
    for (std::size_t cb : {65536u, 1000003u}) {
        EXPECT_EQ(Hex(PlainSha1(Pattern(cb))), Hex(CalcOfPattern<20>(SHA1_Calc, cb)))
            << cb << " bytes";
    }
}

TEST(SHA1_Calc, AlignmentOfTheDataDoesNotMatter) {
    EXPECT_TRUE(IsSameAtAnyAlignment<20>(SHA1_Calc));
}

TEST(SHA1_Calc, WritesTwentyBytesAndNoMore) { EXPECT_TRUE(WritesNothingAround<20>(SHA1_Calc)); }

TEST(SHA1_Update, PiecesOfAnySizeGiveTheSameDigest) {
    std::mt19937 random(8);
    for (int i = 0; i < 3000; ++i) {
        Bytes bytes = Pattern(random() % 400);
        SHA1_Context context;
        SHA1_Init(&context);
        for (std::size_t nDone = 0; nDone < bytes.size();) {
            std::size_t n = std::min<std::size_t>(random() % 150, bytes.size() - nDone);
            SHA1_Update(&context, bytes.data() + nDone, n); // also with none
            nDone += n;
        }
        SHA1_Update(&context, nullptr, 0);
        Digest digest;
        SHA1_Final(digest.data(), &context);
        ASSERT_EQ(Hex(Calc(bytes.data(), bytes.size())), Hex(digest)) << bytes.size();
    }
}

TEST(SHA1_Update, CopyOfAContextGoesOnByItself) {
    SHA1_Context context, copy;
    SHA1_Init(&context);
    SHA1_Update(&context, "ab", 2);
    copy = context;
    SHA1_Update(&context, "x", 1);
    SHA1_Update(&copy, "c", 1);
    Digest digest, digestCopy;
    SHA1_Final(digest.data(), &context);
    SHA1_Final(digestCopy.data(), &copy);
    EXPECT_EQ(Hex(Calc("abx", 3)), Hex(digest));
    EXPECT_EQ(Hex(Calc("abc", 3)), Hex(digestCopy));
}

TEST(SHA1_Final, ClearsTheContext) {
    SHA1_Context context;
    SHA1_Init(&context);
    SHA1_Update(&context, "secret", 6);
    Digest digest;
    SHA1_Final(digest.data(), &context);
    for (unsigned char b : context.block) EXPECT_EQ(0, b);
    for (unsigned n : context.state) EXPECT_EQ(0u, n);
    EXPECT_EQ(0u, context.cbSoFar);
}

TEST(IsSHA1_Empty, OneOnlyIfAllBytesAreZero) {
    Digest digest{};
    EXPECT_EQ(1, IsSHA1_Empty(digest.data()));
    for (std::size_t i = 0; i < digest.size(); ++i) {
        digest[i] = 1;
        EXPECT_EQ(0, IsSHA1_Empty(digest.data())) << i;
        digest[i] = 0;
    }
}

TEST(DoSHA1_Empty, SetsTwentyBytesToZero) {
    unsigned char buffer[22];
    memset(buffer, 0xEE, sizeof(buffer));
    DoSHA1_Empty(buffer + 1);
    EXPECT_EQ(1, IsSHA1_Empty(buffer + 1));
    EXPECT_EQ(0xEE, buffer[0]);
    EXPECT_EQ(0xEE, buffer[21]);
}
} // namespace
