#include "runtime/base/digest.h"

#include <algorithm>
#include <bit>
#include <cstdint>
#include <cstring>

// Both digests take the data in blocks of 64 bytes. SHA-1 reads them as words with the high byte
// first, MD5 with the low byte first, which are this processor's own.
static_assert(std::endian::native == std::endian::little, "the words of SHA-1 are swapped");

namespace {
constexpr std::size_t kBlockSize = 64;
constexpr std::size_t kLengthOffset = 56; // in the last block: the length in bits, 64 bits

/// What follows the whole blocks: the bytes that are left, a bit of 1, zeros, and room for the
/// length; one block, or two if that does not fit.
struct Tail {
    Tail(const unsigned char* pLeft, std::size_t cbLeft) : nBlocks(cbLeft < kLengthOffset ? 1 : 2) {
        if (cbLeft) std::memcpy(bytes, pLeft, cbLeft);
        bytes[cbLeft] = 0x80;
    }
    unsigned char* GetLength() { return bytes + (nBlocks - 1) * kBlockSize + kLengthOffset; }

    unsigned char bytes[2 * kBlockSize] = {};
    std::size_t nBlocks;
};
} // namespace

// SHA-1

namespace {
std::uint32_t Swapped(std::uint32_t n) { return __builtin_bswap32(n); }

/// The words of a block, of which the last 16 are kept: word n stands at n modulo 16.
struct Schedule {
    const unsigned char* pBlock;
    std::uint32_t w[16];

    template <int n>
    std::uint32_t Word() {
        std::uint32_t nWord;
        if constexpr (n < 16) {
            std::memcpy(&nWord, pBlock + n * sizeof(nWord), sizeof(nWord));
            nWord = Swapped(nWord);
        } else {
            nWord = std::rotl(w[(n - 3) % 16] ^ w[(n - 8) % 16] ^ w[(n - 14) % 16] ^ w[n % 16], 1);
        }
        return w[n % 16] = nWord;
    }
};

// The operations of the four rounds with their constants. Each step waits for the one before it,
// which gave a, so that the digest is as fast as the way from a to the new e is short: whatever
// does not hang on a is added first.

template <int n>
inline void Step(std::uint32_t a, std::uint32_t& b, std::uint32_t c, std::uint32_t d,
                 std::uint32_t& e, Schedule& words) {
    if constexpr (n < 20) {
        e += words.Word<n>() + 0x5A827999;
        e += d ^ (b & (c ^ d));
    } else if constexpr (n < 40) {
        e += words.Word<n>() + 0x6ED9EBA1;
        e += b ^ (c ^ d);
    } else if constexpr (n < 60) {
        // The two halves of the majority have no bit in common: adding is as good as an "or".
        e += words.Word<n>() + 0x8F1BBCDC + (c & d);
        e += b & (c ^ d);
    } else {
        e += words.Word<n>() + 0xCA62C1D6;
        e += b ^ (c ^ d);
    }
    e += std::rotl(a, 5);
    b = std::rotl(b, 30);
}

/// Five steps, after which every word is back in its place.
template <int n>
inline void Steps(std::uint32_t& a, std::uint32_t& b, std::uint32_t& c, std::uint32_t& d,
                  std::uint32_t& e, Schedule& words) {
    Step<n>(a, b, c, d, e, words);
    Step<n + 1>(e, a, b, c, d, words);
    Step<n + 2>(d, e, a, b, c, words);
    Step<n + 3>(c, d, e, a, b, words);
    Step<n + 4>(b, c, d, e, a, words);
}

/// Takes whole blocks straight from the data, at any alignment.
void AddBlocks(unsigned int (&state)[5], const unsigned char* pData, std::uint64_t nBlocks) {
    std::uint32_t a = state[0], b = state[1], c = state[2], d = state[3], e = state[4];
    for (; nBlocks > 0; --nBlocks, pData += kBlockSize) {
        Schedule words{pData, {}};
        Steps<0>(a, b, c, d, e, words);
        Steps<5>(a, b, c, d, e, words);
        Steps<10>(a, b, c, d, e, words);
        Steps<15>(a, b, c, d, e, words);
        Steps<20>(a, b, c, d, e, words);
        Steps<25>(a, b, c, d, e, words);
        Steps<30>(a, b, c, d, e, words);
        Steps<35>(a, b, c, d, e, words);
        Steps<40>(a, b, c, d, e, words);
        Steps<45>(a, b, c, d, e, words);
        Steps<50>(a, b, c, d, e, words);
        Steps<55>(a, b, c, d, e, words);
        Steps<60>(a, b, c, d, e, words);
        Steps<65>(a, b, c, d, e, words);
        Steps<70>(a, b, c, d, e, words);
        Steps<75>(a, b, c, d, e, words);

        a = state[0] += a;
        b = state[1] += b;
        c = state[2] += c;
        d = state[3] += d;
        e = state[4] += e;
    }
}

void StoreBigEndian(unsigned char* p, std::uint32_t n) {
    n = Swapped(n);
    std::memcpy(p, &n, sizeof(n));
}
} // namespace

extern "C" void SHA1_Init(SHA1_Context* pContext) {
    *pContext = {{0x67452301, 0xEFCDAB89, 0x98BADCFE, 0x10325476, 0xC3D2E1F0}, {}, 0};
}

extern "C" void SHA1_Update(SHA1_Context* pContext, const void* pData, unsigned long long cbData) {
    const auto* pBytes = static_cast<const unsigned char*>(pData);
    auto cbHeld = static_cast<std::size_t>(pContext->cbSoFar % kBlockSize);
    pContext->cbSoFar += cbData;
    if (cbHeld) {
        auto cbFill =
            static_cast<std::size_t>(std::min<std::uint64_t>(cbData, kBlockSize - cbHeld));
        if (cbFill) std::memcpy(pContext->block + cbHeld, pBytes, cbFill);
        if (cbHeld + cbFill < kBlockSize) return;
        AddBlocks(pContext->state, pContext->block, 1);
        pBytes += cbFill;
        cbData -= cbFill;
    }
    AddBlocks(pContext->state, pBytes, cbData / kBlockSize);
    auto cbLeft = static_cast<std::size_t>(cbData % kBlockSize);
    if (cbLeft) std::memcpy(pContext->block, pBytes + (cbData - cbLeft), cbLeft);
}

extern "C" void SHA1_Final(unsigned char digest[kSha1Size], SHA1_Context* pContext) {
    Tail tail(pContext->block, static_cast<std::size_t>(pContext->cbSoFar % kBlockSize));
    std::uint64_t cBits = pContext->cbSoFar << 3; // modulo 2^64, as the standard has it
    StoreBigEndian(tail.GetLength(), static_cast<std::uint32_t>(cBits >> 32));
    StoreBigEndian(tail.GetLength() + 4, static_cast<std::uint32_t>(cBits));
    AddBlocks(pContext->state, tail.bytes, tail.nBlocks);
    for (std::size_t i = 0; i < 5; ++i) StoreBigEndian(digest + 4 * i, pContext->state[i]);
    *pContext = {};
}

extern "C" void SHA1_Calc(unsigned char digest[kSha1Size], const void* pData,
                          unsigned long long cbData) {
    SHA1_Context context{};
    SHA1_Init(&context);
    SHA1_Update(&context, pData, cbData);
    SHA1_Final(digest, &context);
}

int IsSHA1_Empty(const unsigned char digest[kSha1Size]) {
    return std::all_of(digest, digest + kSha1Size, [](unsigned char b) { return b == 0; });
}

void DoSHA1_Empty(unsigned char digest[kSha1Size]) { std::memset(digest, 0, kSha1Size); }

// MD5

namespace {
/// The state between blocks: the four words whose bytes are the digest at the end.
struct Md5State {
    std::uint32_t a = 0x67452301, b = 0xEFCDAB89, c = 0x98BADCFE, d = 0x10325476;
};

// The operations of the four rounds. Every step waits for the one before it, which gave b, so that
// the digest is as fast as the way from b to the new a is short: whatever does not hang on b is
// added first.

template <int nShift>
inline void StepF(std::uint32_t& a, std::uint32_t b, std::uint32_t c, std::uint32_t d,
                  std::uint32_t x, std::uint32_t k) {
    a = std::rotl(a + x + k + (d ^ (b & (c ^ d))), nShift) + b;
}

template <int nShift>
inline void StepG(std::uint32_t& a, std::uint32_t b, std::uint32_t c, std::uint32_t d,
                  std::uint32_t x, std::uint32_t k) {
    // The two halves have no bit in common, so adding them is as good as an "or", and the one
    // without b is off the way.
    a = std::rotl(a + x + k + (c & ~d) + (b & d), nShift) + b;
}

template <int nShift>
inline void StepH(std::uint32_t& a, std::uint32_t b, std::uint32_t c, std::uint32_t d,
                  std::uint32_t x, std::uint32_t k) {
    a = std::rotl(a + x + k + (b ^ (c ^ d)), nShift) + b;
}

template <int nShift>
inline void StepI(std::uint32_t& a, std::uint32_t b, std::uint32_t c, std::uint32_t d,
                  std::uint32_t x, std::uint32_t k) {
    a = std::rotl(a + x + k + (c ^ (b | ~d)), nShift) + b;
}

/// Takes whole blocks straight from the data, at any alignment.
// NOLINTNEXTLINE(readability-function-size): 64 steps that differ in their numbers, a line each
void AddBlocks(Md5State& state, const unsigned char* pData, std::uint64_t nBlocks) {
    std::uint32_t a = state.a, b = state.b, c = state.c, d = state.d;
    for (; nBlocks > 0; --nBlocks, pData += kBlockSize) {
        std::uint32_t x[kBlockSize / sizeof(std::uint32_t)];
        std::memcpy(x, pData, kBlockSize);
        const Md5State before{a, b, c, d};

        StepF<7>(a, b, c, d, x[0], 0xD76AA478);
        StepF<12>(d, a, b, c, x[1], 0xE8C7B756);
        StepF<17>(c, d, a, b, x[2], 0x242070DB);
        StepF<22>(b, c, d, a, x[3], 0xC1BDCEEE);
        StepF<7>(a, b, c, d, x[4], 0xF57C0FAF);
        StepF<12>(d, a, b, c, x[5], 0x4787C62A);
        StepF<17>(c, d, a, b, x[6], 0xA8304613);
        StepF<22>(b, c, d, a, x[7], 0xFD469501);
        StepF<7>(a, b, c, d, x[8], 0x698098D8);
        StepF<12>(d, a, b, c, x[9], 0x8B44F7AF);
        StepF<17>(c, d, a, b, x[10], 0xFFFF5BB1);
        StepF<22>(b, c, d, a, x[11], 0x895CD7BE);
        StepF<7>(a, b, c, d, x[12], 0x6B901122);
        StepF<12>(d, a, b, c, x[13], 0xFD987193);
        StepF<17>(c, d, a, b, x[14], 0xA679438E);
        StepF<22>(b, c, d, a, x[15], 0x49B40821);

        StepG<5>(a, b, c, d, x[1], 0xF61E2562);
        StepG<9>(d, a, b, c, x[6], 0xC040B340);
        StepG<14>(c, d, a, b, x[11], 0x265E5A51);
        StepG<20>(b, c, d, a, x[0], 0xE9B6C7AA);
        StepG<5>(a, b, c, d, x[5], 0xD62F105D);
        StepG<9>(d, a, b, c, x[10], 0x02441453);
        StepG<14>(c, d, a, b, x[15], 0xD8A1E681);
        StepG<20>(b, c, d, a, x[4], 0xE7D3FBC8);
        StepG<5>(a, b, c, d, x[9], 0x21E1CDE6);
        StepG<9>(d, a, b, c, x[14], 0xC33707D6);
        StepG<14>(c, d, a, b, x[3], 0xF4D50D87);
        StepG<20>(b, c, d, a, x[8], 0x455A14ED);
        StepG<5>(a, b, c, d, x[13], 0xA9E3E905);
        StepG<9>(d, a, b, c, x[2], 0xFCEFA3F8);
        StepG<14>(c, d, a, b, x[7], 0x676F02D9);
        StepG<20>(b, c, d, a, x[12], 0x8D2A4C8A);

        StepH<4>(a, b, c, d, x[5], 0xFFFA3942);
        StepH<11>(d, a, b, c, x[8], 0x8771F681);
        StepH<16>(c, d, a, b, x[11], 0x6D9D6122);
        StepH<23>(b, c, d, a, x[14], 0xFDE5380C);
        StepH<4>(a, b, c, d, x[1], 0xA4BEEA44);
        StepH<11>(d, a, b, c, x[4], 0x4BDECFA9);
        StepH<16>(c, d, a, b, x[7], 0xF6BB4B60);
        StepH<23>(b, c, d, a, x[10], 0xBEBFBC70);
        StepH<4>(a, b, c, d, x[13], 0x289B7EC6);
        StepH<11>(d, a, b, c, x[0], 0xEAA127FA);
        StepH<16>(c, d, a, b, x[3], 0xD4EF3085);
        StepH<23>(b, c, d, a, x[6], 0x04881D05);
        StepH<4>(a, b, c, d, x[9], 0xD9D4D039);
        StepH<11>(d, a, b, c, x[12], 0xE6DB99E5);
        StepH<16>(c, d, a, b, x[15], 0x1FA27CF8);
        StepH<23>(b, c, d, a, x[2], 0xC4AC5665);

        StepI<6>(a, b, c, d, x[0], 0xF4292244);
        StepI<10>(d, a, b, c, x[7], 0x432AFF97);
        StepI<15>(c, d, a, b, x[14], 0xAB9423A7);
        StepI<21>(b, c, d, a, x[5], 0xFC93A039);
        StepI<6>(a, b, c, d, x[12], 0x655B59C3);
        StepI<10>(d, a, b, c, x[3], 0x8F0CCC92);
        StepI<15>(c, d, a, b, x[10], 0xFFEFF47D);
        StepI<21>(b, c, d, a, x[1], 0x85845DD1);
        StepI<6>(a, b, c, d, x[8], 0x6FA87E4F);
        StepI<10>(d, a, b, c, x[15], 0xFE2CE6E0);
        StepI<15>(c, d, a, b, x[6], 0xA3014314);
        StepI<21>(b, c, d, a, x[13], 0x4E0811A1);
        StepI<6>(a, b, c, d, x[4], 0xF7537E82);
        StepI<10>(d, a, b, c, x[11], 0xBD3AF235);
        StepI<15>(c, d, a, b, x[2], 0x2AD7D2BB);
        StepI<21>(b, c, d, a, x[9], 0xEB86D391);

        a += before.a;
        b += before.b;
        c += before.c;
        d += before.d;
    }
    state = {a, b, c, d};
}
} // namespace

extern "C" void CalcMD5(unsigned char digest[kMd5Size], const void* pData,
                        unsigned long long cbData) {
    const auto* pBytes = static_cast<const unsigned char*>(pData);
    Md5State state;
    AddBlocks(state, pBytes, cbData / kBlockSize);

    auto cbLeft = static_cast<std::size_t>(cbData % kBlockSize);
    Tail tail(pBytes + (cbData - cbLeft), cbLeft);
    std::uint64_t cBits = cbData << 3; // modulo 2^64, as the algorithm has it
    std::memcpy(tail.GetLength(), &cBits, sizeof(cBits));
    AddBlocks(state, tail.bytes, tail.nBlocks);

    std::memcpy(digest, &state, sizeof(state));
}
