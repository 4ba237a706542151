// CalcMD5 beside OpenSSL's MD5 on the same data, one compiler, one process. Native Linux program:
// g++ -O2 -std=c++20 -DTESSALY_STATIC -Isrc bench/runtime/md5_bench.cpp src/runtime/md5.cpp
// -lcrypto

#include "../measure.h"
#include "runtime/md5.h"

#include <openssl/evp.h>
#include <cstring>

int main() {
    constexpr std::size_t kSize = 24 * 1024, kRounds = 400;
    std::vector<unsigned char> data(kSize);
    for (std::size_t i = 0; i < kSize; ++i) data[i] = static_cast<unsigned char>(i * 31);
    unsigned char digestOurs[16], digestTheirs[EVP_MAX_MD_SIZE];
    auto ours = [&] {
        for (std::size_t i = 0; i < kRounds; ++i) CalcMD5(digestOurs, data.data(), kSize);
    };
    auto theirs = [&] {
        for (std::size_t i = 0; i < kRounds; ++i) {
            EVP_Digest(data.data(), kSize, digestTheirs, nullptr, EVP_md5(), nullptr);
        }
    };
    Comparison c = Compare(41, theirs, ours);
    if (std::memcmp(digestOurs, digestTheirs, 16) != 0) {
        std::puts("the digests differ");
        return 2;
    }
    return Report("OpenSSL's MD5 / CalcMD5, 400 x 24 KB", c, 0.95, false) ? 0 : 1;
}
