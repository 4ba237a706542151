#include "progress/race_blocks.h"
#include "support/heap_checks.h"
#include "support/replace_import.h"

#include <windows.h>
#include <algorithm>
#include <cstddef>
#include <cstring>
#include <new>

extern "C" FARPROC __imp_malloc;
extern "C" FARPROC __imp_free;
extern "C" FARPROC __imp_realloc;

namespace {
// In all of this program's tests dialogs have threads.
[[maybe_unused]] const bool bLeftOut = (LeaveOutProcessHeap(), true);

constexpr unsigned __int64 kLive = 0x4C6976654C697665, kFreed = 0x4672656446726564;
constexpr unsigned char kTailByte = 0xA7, kFreedByte = 0xDD;
constexpr std::size_t kTail = 16;
constexpr std::size_t kKept = 4096; // freed blocks

struct Header {
    unsigned __int64 qwMark;
    std::size_t cb;
};
static_assert(sizeof(Header) == 16, "what follows is aligned as malloc's blocks are");

void*(__cdecl* pfnMalloc)(std::size_t);
void(__cdecl* pfnFree)(void*);
void*(__cdecl* pfnRealloc)(void*, std::size_t);
CRITICAL_SECTION lock;
Header* kept[kKept];
std::size_t nNextKept;
int nBroken;

unsigned char* BytesOf(Header* p) { return reinterpret_cast<unsigned char*>(p + 1); }
bool IsFilled(const unsigned char* p, std::size_t cb, unsigned char b) {
    return std::all_of(p, p + cb, [b](unsigned char is) { return is == b; });
}
bool IsSoundFreed(Header* p) {
    return p->qwMark == kFreed && IsFilled(BytesOf(p), p->cb + kTail, kFreedByte);
}

void* __cdecl CheckedMalloc(std::size_t cb) {
    auto* p = static_cast<Header*>(pfnMalloc(sizeof(Header) + cb + kTail));
    if (!p) return nullptr;
    *p = {kLive, cb};
    memset(BytesOf(p) + cb, kTailByte, kTail);
    return p + 1;
}

void __cdecl CheckedFree(void* pBlock) {
    auto* p = static_cast<Header*>(pBlock) - 1;
    if (!pBlock || (p->qwMark != kLive && p->qwMark != kFreed)) {
        pfnFree(pBlock); // from before, or the runtime's own
        return;
    }
    Header* pOld = nullptr;
    ::EnterCriticalSection(&lock);
    if (p->qwMark == kFreed) {
        ++nBroken; // twice
    } else {
        nBroken += !IsFilled(BytesOf(p) + p->cb, kTail, kTailByte);
        p->qwMark = kFreed;
        memset(BytesOf(p), kFreedByte, p->cb + kTail);
        pOld = kept[nNextKept];
        kept[nNextKept] = p;
        nNextKept = (nNextKept + 1) % kKept;
        nBroken += pOld && !IsSoundFreed(pOld);
    }
    ::LeaveCriticalSection(&lock);
    if (pOld) {
        pOld->qwMark = 0;
        pfnFree(pOld);
    }
}

void* __cdecl CheckedRealloc(void* pBlock, std::size_t cb) {
    auto* p = static_cast<Header*>(pBlock) - 1;
    if (pBlock && p->qwMark != kLive) return pfnRealloc(pBlock, cb);
    void* pNew = CheckedMalloc(cb);
    if (!pNew) return nullptr;
    if (pBlock) memcpy(pNew, pBlock, std::min(cb, p->cb));
    CheckedFree(pBlock);
    return pNew;
}
} // namespace

void CheckBlocks() {
    if (pfnMalloc) return;
    ::InitializeCriticalSection(&lock);
    pfnMalloc = reinterpret_cast<decltype(pfnMalloc)>(reinterpret_cast<void*>(__imp_malloc));
    pfnFree = reinterpret_cast<decltype(pfnFree)>(reinterpret_cast<void*>(__imp_free));
    pfnRealloc = reinterpret_cast<decltype(pfnRealloc)>(reinterpret_cast<void*>(__imp_realloc));
    // For good, as blocks outlive the test that took them. What makes them comes last.
    alignas(ReplaceImport) static unsigned char places[3][sizeof(ReplaceImport)];
    new (places[0]) ReplaceImport(__imp_free, &CheckedFree);
    new (places[1]) ReplaceImport(__imp_realloc, &CheckedRealloc);
    new (places[2]) ReplaceImport(__imp_malloc, &CheckedMalloc);
}

int CountBrokenBlocks() {
    ::EnterCriticalSection(&lock);
    int n = nBroken;
    for (Header* p : kept) n += p && !IsSoundFreed(p);
    ::LeaveCriticalSection(&lock);
    return n;
}
