// SHA1_Calc beside OpenSSL's SHA-1 on the same data, one compiler, one process; bench/run links an
// OpenSSL without assembly. Our functions carry names that OpenSSL has too, so they stay hidden.
// Native Linux program: g++ -O2 -std=c++20 -fvisibility=hidden -DTESSALY_STATIC -Isrc
// bench/runtime/sha1_bench.cpp src/runtime/sha1.cpp -lcrypto

#include "../measure.h"
#include "runtime/base/digest.h"

#include <openssl/evp.h>
#include <cstring>

int main() {
    constexpr std::size_t kSize = 1 << 20;
    std::vector<unsigned char> data(kSize);
    for (std::size_t i = 0; i < kSize; ++i) data[i] = static_cast<unsigned char>(i * 31);
    unsigned char digestOurs[kSha1Size], digestTheirs[EVP_MAX_MD_SIZE];
    auto ours = [&] { SHA1_Calc(digestOurs, data.data(), kSize); };
    auto theirs = [&] {
        EVP_Digest(data.data(), kSize, digestTheirs, nullptr, EVP_sha1(), nullptr);
    };
    // Many short turns: what else runs on the machine then falls on both sides alike.
    Comparison c = Compare(401, theirs, ours);
    if (std::memcmp(digestOurs, digestTheirs, kSha1Size) != 0) {
        std::puts("the digests differ");
        return 2;
    }
    return Report("OpenSSL's portable SHA-1 / SHA1_Calc, 1 MiB", c, 0.95, false) ? 0 : 1;
}
