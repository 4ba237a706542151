#pragma once
#include "support/guard_page.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <string>
#include <vector>

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
inline Bytes Pattern(std::size_t cb) {
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
inline Bytes Padded(Bytes message, bool bLowestFirst) {
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
