#include "runtime/base/digest.h"
#include "support/guard_page.h"

#include <gtest/gtest.h>
#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <random>
#include <string>
#include <utility>
#include <vector>

namespace {
using Bytes = std::vector<unsigned char>;

/// What a digest function with the usual three parameters makes of the data.
template <std::size_t cb>
std::array<unsigned char, cb> CalcDigest(void (*pfnCalc)(unsigned char*, const void*,
                                                         unsigned long long),
                                         const void* pData, unsigned long long cbData) {
    std::array<unsigned char, cb> digest;
    digest.fill(0xEE);
    pfnCalc(digest.data(), pData, cbData);
    return digest;
}

/// The digest as the standards print it.
template <std::size_t cb>
std::string Hex(const std::array<unsigned char, cb>& digest) {
    std::string str;
    for (unsigned char b : digest) {
        str += "0123456789abcdef"[b >> 4];
        str += "0123456789abcdef"[b & 15];
    }
    return str;
}

/// Data in which neighbouring blocks differ.
Bytes Pattern(std::size_t cb) {
    Bytes bytes(cb);
    for (std::size_t i = 0; i < cb; ++i)
        bytes[i] = static_cast<unsigned char>(i * 131 + (i >> 8) + 7);
    return bytes;
}

/// The digest of Pattern(cbData), which ends right before a page that may not be touched.
template <std::size_t cb>
std::array<unsigned char, cb> CalcOfPattern(void (*pfnCalc)(unsigned char*, const void*,
                                                            unsigned long long),
                                            std::size_t cbData) {
    GuardedMemory memory(cbData);
    Bytes bytes = Pattern(cbData);
    std::copy(bytes.begin(), bytes.end(), static_cast<unsigned char*>(memory.Get()));
    return CalcDigest<cb>(pfnCalc, memory.Get(), cbData);
}

/// A message padded to whole blocks of 64 bytes, as MD5 and SHA-1 have it: a bit of 1, zeros, and
/// the length in bits, least or most significant byte first.
Bytes Padded(Bytes message, bool bLowestFirst) {
    unsigned long long cBits = message.size() * 8ull;
    message.push_back(0x80);
    while (message.size() % 64 != 56) message.push_back(0);
    for (int i = 0; i < 8; ++i) {
        message.push_back(static_cast<unsigned char>(cBits >> 8 * (bLowestFirst ? i : 7 - i)));
    }
    return message;
}

/// The same data gives the same digest wherever it lies.
template <std::size_t cb>
bool IsSameAtAnyAlignment(void (*pfnCalc)(unsigned char*, const void*, unsigned long long)) {
    Bytes bytes = Pattern(200);
    auto expected = CalcDigest<cb>(pfnCalc, bytes.data(), bytes.size());
    for (std::size_t nOffset = 1; nOffset < 16; ++nOffset) {
        Bytes shifted(nOffset);
        shifted.insert(shifted.end(), bytes.begin(), bytes.end());
        if (CalcDigest<cb>(pfnCalc, shifted.data() + nOffset, bytes.size()) != expected) {
            return false;
        }
    }
    return true;
}

/// A digest fills its size in bytes and leaves those before and behind it.
template <std::size_t cb>
bool WritesNothingAround(void (*pfnCalc)(unsigned char*, const void*, unsigned long long)) {
    constexpr std::size_t kAround = 4;
    Bytes buffer(cb + 2 * kAround, 0xEE);
    pfnCalc(buffer.data() + kAround, "abc", 3);
    Bytes around(kAround, 0xEE);
    return std::equal(around.begin(), around.end(), buffer.begin()) &&
           std::equal(around.begin(), around.end(), buffer.end() - kAround);
}

// SHA-1

using Sha1 = std::array<unsigned char, kSha1Size>;

Sha1 CalcSha1(const void* pData, unsigned long long cbData) {
    return CalcDigest<kSha1Size>(SHA1_Calc, pData, cbData);
}

/// SHA-1 word for word as the standard tells it: the message is padded as a whole, all 80 words of
/// a block are made first. Slow and obvious.
Sha1 PlainSha1(Bytes message) {
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
    Sha1 digest;
    for (int i = 0; i < 20; ++i)
        digest[i] = static_cast<unsigned char>(h[i / 4] >> (24 - i % 4 * 8));
    return digest;
}

TEST(SHA1_Calc, GivesTheDigestsOfTheStandard) {
    // FIPS 180-1, appendices A to C, and the empty text.
    EXPECT_EQ("da39a3ee5e6b4b0d3255bfef95601890afd80709", Hex(CalcSha1("", 0)));
    EXPECT_EQ("a9993e364706816aba3e25717850c26c9cd0d89d", Hex(CalcSha1("abc", 3)));
    EXPECT_EQ("84983e441c3bd26ebaae4aa1f95129e5e54670f1",
              Hex(CalcSha1("abcdbcdecdefdefgefghfghighijhijkijkljklmklmnlmnomnopnopq", 56)));
    std::string strMillion(1000000, 'a');
    EXPECT_EQ("34aa973cd4c4daa4f61eeb2bdbad27316534016f",
              Hex(CalcSha1(strMillion.data(), strMillion.size())));
}

TEST(SHA1_Calc, NoDataMayBeNull) {
    EXPECT_EQ("da39a3ee5e6b4b0d3255bfef95601890afd80709", Hex(CalcSha1(nullptr, 0)));
}

TEST(SHA1_Calc, EveryShortLengthAgreesWithThePlainForm) {
    for (std::size_t cb = 0; cb <= 300; ++cb) {
        EXPECT_EQ(Hex(PlainSha1(Pattern(cb))), Hex(CalcOfPattern<kSha1Size>(SHA1_Calc, cb)))
            << cb << " bytes";
    }
}

TEST(SHA1_Calc, LongDataAgreesWithThePlainForm) {
    for (std::size_t cb : {65536u, 1000003u}) {
        EXPECT_EQ(Hex(PlainSha1(Pattern(cb))), Hex(CalcOfPattern<kSha1Size>(SHA1_Calc, cb)))
            << cb << " bytes";
    }
}

TEST(SHA1_Calc, AlignmentOfTheDataDoesNotMatter) {
    EXPECT_TRUE(IsSameAtAnyAlignment<kSha1Size>(SHA1_Calc));
}

TEST(SHA1_Calc, WritesTwentyBytesAndNoMore) {
    EXPECT_TRUE(WritesNothingAround<kSha1Size>(SHA1_Calc));
}

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
        Sha1 digest;
        SHA1_Final(digest.data(), &context);
        ASSERT_EQ(Hex(CalcSha1(bytes.data(), bytes.size())), Hex(digest)) << bytes.size();
    }
}

TEST(SHA1_Update, CopyOfAContextGoesOnByItself) {
    SHA1_Context context, copy;
    SHA1_Init(&context);
    SHA1_Update(&context, "ab", 2);
    copy = context;
    SHA1_Update(&context, "x", 1);
    SHA1_Update(&copy, "c", 1);
    Sha1 digest, digestCopy;
    SHA1_Final(digest.data(), &context);
    SHA1_Final(digestCopy.data(), &copy);
    EXPECT_EQ(Hex(CalcSha1("abx", 3)), Hex(digest));
    EXPECT_EQ(Hex(CalcSha1("abc", 3)), Hex(digestCopy));
}

TEST(SHA1_Final, ClearsTheContext) {
    SHA1_Context context;
    SHA1_Init(&context);
    SHA1_Update(&context, "secret", 6);
    Sha1 digest;
    SHA1_Final(digest.data(), &context);
    for (unsigned char b : context.block) EXPECT_EQ(0, b);
    for (unsigned n : context.state) EXPECT_EQ(0u, n);
    EXPECT_EQ(0u, context.cbSoFar);
}

TEST(IsSHA1_Empty, OneOnlyIfAllBytesAreZero) {
    Sha1 digest{};
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

// MD5

using Md5 = std::array<unsigned char, kMd5Size>;

Md5 CalcMd5(const void* pData, unsigned long long cbData) {
    return CalcDigest<kMd5Size>(CalcMD5, pData, cbData);
}

/// MD5 word for word as the RFC tells it: the message is padded as a whole, the constants come from
/// the sine. Slow and obvious.
Md5 PlainMd5(Bytes message) {
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
    Md5 digest;
    for (int i = 0; i < 16; ++i) digest[i] = static_cast<unsigned char>(h[i / 4] >> (8 * (i % 4)));
    return digest;
}

struct KnownDigest {
    const char* pszName;
    const char* pszText;
    const char* pszDigest;
};

class CalcMD5Table : public testing::TestWithParam<KnownDigest> {};

TEST_P(CalcMD5Table, GivesTheDigestsOfTheStandard) { // RFC 1321, A.5
    const char* psz = GetParam().pszText;
    EXPECT_EQ(GetParam().pszDigest, Hex(CalcMd5(psz, strlen(psz))));
}

INSTANTIATE_TEST_SUITE_P(
    Cases, CalcMD5Table,
    testing::Values(
        KnownDigest{"Empty", "", "d41d8cd98f00b204e9800998ecf8427e"},
        KnownDigest{"OneLetter", "a", "0cc175b9c0f1b6a831c399e269772661"},
        KnownDigest{"ThreeLetters", "abc", "900150983cd24fb0d6963f7d28e17f72"},
        KnownDigest{"Words", "message digest", "f96b697d7cb7938d525a2f31aaf161d0"},
        KnownDigest{"Alphabet", "abcdefghijklmnopqrstuvwxyz", "c3fcd3d76192e4007dfb496cca67e13b"},
        KnownDigest{"LettersAndDigits",
                    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789",
                    "d174ab98d277d9f5a5611c2c9f419d9f"},
        KnownDigest{
            "Digits",
            "12345678901234567890123456789012345678901234567890123456789012345678901234567890",
            "57edf4a22be3c955ac49da2e2107b67a"}),
    [](const auto& row) { return std::string(row.param.pszName); });

TEST(CalcMD5, NoDataMayBeNull) {
    EXPECT_EQ("d41d8cd98f00b204e9800998ecf8427e", Hex(CalcMd5(nullptr, 0)));
}

TEST(CalcMD5, EveryShortLengthAgreesWithThePlainForm) {
    for (std::size_t cb = 0; cb <= 300; ++cb) {
        EXPECT_EQ(Hex(PlainMd5(Pattern(cb))), Hex(CalcOfPattern<kMd5Size>(CalcMD5, cb)))
            << cb << " bytes";
    }
}

TEST(CalcMD5, LongDataAgreesWithThePlainForm) {
    for (std::size_t cb : {23976u, 23992u, 65536u, 1000003u}) {
        EXPECT_EQ(Hex(PlainMd5(Pattern(cb))), Hex(CalcOfPattern<kMd5Size>(CalcMD5, cb)))
            << cb << " bytes";
    }
}

TEST(CalcMD5, AlignmentOfTheDataDoesNotMatter) {
    EXPECT_TRUE(IsSameAtAnyAlignment<kMd5Size>(CalcMD5));
}

TEST(CalcMD5, WritesSixteenBytesAndNoMore) { EXPECT_TRUE(WritesNothingAround<kMd5Size>(CalcMD5)); }
} // namespace
