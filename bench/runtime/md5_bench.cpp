// CalcMD5 beside OpenSSL's MD5 on the same data, one compiler, one process; bench/run links an
// OpenSSL without assembly. Native Linux program: g++ -O2 -std=c++20 -DTESSALY_STATIC -Isrc
// bench/runtime/md5_bench.cpp src/runtime/md5.cpp -lcrypto

#include "../measure.h"
#include "runtime/base/digest.h"

#include <openssl/evp.h>
#include <cstring>

namespace {
/// 1 if CalcMD5 keeps to its limit on that much data, 0 if not; -1 if it is wrong.
int Measure(const char* pszWhat, std::size_t cb, std::size_t nRounds, int nTurns) {
    std::vector<unsigned char> data(cb);
    for (std::size_t i = 0; i < cb; ++i) data[i] = static_cast<unsigned char>(i * 31);
    unsigned char digestOurs[16], digestTheirs[EVP_MAX_MD_SIZE];
    auto ours = [&] {
        for (std::size_t i = 0; i < nRounds; ++i) CalcMD5(digestOurs, data.data(), cb);
    };
    auto theirs = [&] {
        for (std::size_t i = 0; i < nRounds; ++i) {
            EVP_Digest(data.data(), cb, digestTheirs, nullptr, EVP_md5(), nullptr);
        }
    };
    Comparison c = Compare(nTurns, theirs, ours);
    if (std::memcmp(digestOurs, digestTheirs, 16) != 0) {
        std::puts("the digests differ");
        return -1;
    }
    return Report(pszWhat, c, 0.95, false);
}
} // namespace

int main() {
    // Of what a snapshot has at most; then many short turns over more than a cache holds near.
    int nSmall = Measure("OpenSSL's portable MD5 / CalcMD5, 400 x 24 KB", 24 * 1024, 400, 41);
    int nLarge = Measure("OpenSSL's portable MD5 / CalcMD5, 1 MiB", 1 << 20, 1, 401);
    if (nSmall < 0 || nLarge < 0) return 2;
    return nSmall && nLarge ? 0 : 1;
}
