#include "runtime/base/sha1.h"

#include <algorithm>
#include <bit>
#include <cstdint>
#include <cstring>

static_assert(std::endian::native == std::endian::little, "words are swapped when loaded");

namespace {
constexpr std::size_t kBlockSize = 64;
constexpr std::size_t kLengthOffset = 56; // in the last block: the length in bits, 64 bits

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
    // What is left, a bit of 1, zeros, and the length: one block, or two if it does not fit.
    unsigned char tail[2 * kBlockSize] = {};
    auto cbLeft = static_cast<std::size_t>(pContext->cbSoFar % kBlockSize);
    std::memcpy(tail, pContext->block, cbLeft);
    tail[cbLeft] = 0x80;
    std::size_t nTailBlocks = cbLeft < kLengthOffset ? 1 : 2;
    unsigned char* pLength = tail + (nTailBlocks - 1) * kBlockSize + kLengthOffset;
    std::uint64_t cBits = pContext->cbSoFar << 3; // modulo 2^64, as the standard has it
    StoreBigEndian(pLength, static_cast<std::uint32_t>(cBits >> 32));
    StoreBigEndian(pLength + 4, static_cast<std::uint32_t>(cBits));
    AddBlocks(pContext->state, tail, nTailBlocks);
    for (unsigned i = 0; i < 5; ++i) StoreBigEndian(digest + 4 * i, pContext->state[i]);
    *pContext = {};
}

extern "C" void SHA1_Calc(unsigned char digest[kSha1Size], const void* pData,
                          unsigned long long cbData) {
    SHA1_Context context;
    SHA1_Init(&context);
    SHA1_Update(&context, pData, cbData);
    SHA1_Final(digest, &context);
}

int IsSHA1_Empty(const unsigned char digest[kSha1Size]) {
    return std::all_of(digest, digest + kSha1Size, [](unsigned char b) { return b == 0; });
}

void DoSHA1_Empty(unsigned char digest[kSha1Size]) { std::memset(digest, 0, kSha1Size); }
