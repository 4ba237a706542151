#include "support/heap_count.h"

#include <atomic>
#include <cstdlib>
#include <new>

// In place of the C++ runtime's; all other forms of new and delete come down to these.

namespace {
std::atomic<long> nLive{0};
thread_local int nUntilFailure = 0;
} // namespace

long CountLiveBlocks() { return nLive; }

void FailBlock(int n) { nUntilFailure = n; }

// Without an exception on the way, which would want memory itself.
void* operator new(std::size_t cb, const std::nothrow_t&) noexcept {
    bool bFails = nUntilFailure && --nUntilFailure == 0;
    void* p = bFails ? nullptr : std::malloc(cb ? cb : 1);
    if (p) ++nLive;
    return p;
}

void* operator new[](std::size_t cb, const std::nothrow_t& none) noexcept {
    return operator new(cb, none);
}

void* operator new(std::size_t cb) {
    void* p = operator new(cb, std::nothrow);
    if (!p) throw std::bad_alloc();
    return p;
}

void operator delete(void* p) noexcept {
    if (!p) return;
    --nLive;
    std::free(p);
}

void operator delete(void* p, std::size_t) noexcept { operator delete(p); }
