#include "support/heap_checks.h"
#include "support/replace_import.h"

#include <gtest/gtest.h>
#include <malloc.h>
#include <objbase.h>
#include <windows.h>
#include <algorithm>
#include <atomic>
#include <cstddef>
#include <vector>

// Where the imports' addresses lie.
extern "C" FARPROC __imp_CoTaskMemFree;
extern "C" FARPROC __imp_GlobalFree;
extern "C" FARPROC __imp_HeapFree;
extern "C" FARPROC __imp_HeapReAlloc;
extern "C" FARPROC __imp_LocalFree;
extern "C" FARPROC __imp_free;
extern "C" FARPROC __imp_realloc;

// The platform's own checks look at all blocks at each call of a heap, which takes a test program a
// hundred times as long. One block is looked at in no time, and all of them at the end of a test.

namespace {
std::atomic<int> nDamaged{0};
bool bLeavesOutProcessHeap = false;

void LookAtBlock(HANDLE hHeap, const void* p) {
    if (p && !::HeapValidate(hHeap, 0, p)) ++nDamaged;
}

// A movable block's handle points into a table of handles, beside the alignment of blocks.
void LookAtFixedBlock(const void* p) {
    if (reinterpret_cast<std::size_t>(p) % MEMORY_ALLOCATION_ALIGNMENT == 0)
        LookAtBlock(::GetProcessHeap(), p);
}

HANDLE OwnHeap() { return reinterpret_cast<HANDLE>(::_get_heap_handle()); }

// The functions that free and grow, with a look before.
void __cdecl Free(void* p);
void* __cdecl ReAlloc(void* p, std::size_t cb);
BOOL WINAPI FreeOfHeap(HANDLE hHeap, DWORD dwFlags, void* p);
void* WINAPI ReAllocOfHeap(HANDLE hHeap, DWORD dwFlags, void* p, std::size_t cb);
HLOCAL WINAPI FreeLocal(HLOCAL h);
HGLOBAL WINAPI FreeGlobal(HGLOBAL h);
void WINAPI FreeTaskMemory(void* p);

struct Replaced {
    ReplaceImport free{__imp_free, &Free};
    ReplaceImport reAlloc{__imp_realloc, &ReAlloc};
    ReplaceImport heapFree{__imp_HeapFree, &FreeOfHeap};
    ReplaceImport heapReAlloc{__imp_HeapReAlloc, &ReAllocOfHeap};
    ReplaceImport localFree{__imp_LocalFree, &FreeLocal};
    ReplaceImport globalFree{__imp_GlobalFree, &FreeGlobal};
    ReplaceImport taskMemory{__imp_CoTaskMemFree, &FreeTaskMemory};
};
const Replaced* pReplaced = nullptr;

void __cdecl Free(void* p) {
    LookAtBlock(OwnHeap(), p);
    pReplaced->free.Original<decltype(Free)>()(p);
}
void* __cdecl ReAlloc(void* p, std::size_t cb) {
    LookAtBlock(OwnHeap(), p);
    return pReplaced->reAlloc.Original<decltype(ReAlloc)>()(p, cb);
}
BOOL WINAPI FreeOfHeap(HANDLE hHeap, DWORD dwFlags, void* p) {
    LookAtBlock(hHeap, p);
    return pReplaced->heapFree.Original<decltype(FreeOfHeap)>()(hHeap, dwFlags, p);
}
void* WINAPI ReAllocOfHeap(HANDLE hHeap, DWORD dwFlags, void* p, std::size_t cb) {
    LookAtBlock(hHeap, p);
    return pReplaced->heapReAlloc.Original<decltype(ReAllocOfHeap)>()(hHeap, dwFlags, p, cb);
}
HLOCAL WINAPI FreeLocal(HLOCAL h) {
    LookAtFixedBlock(h);
    return pReplaced->localFree.Original<decltype(FreeLocal)>()(h);
}
HGLOBAL WINAPI FreeGlobal(HGLOBAL h) {
    LookAtFixedBlock(h);
    return pReplaced->globalFree.Original<decltype(FreeGlobal)>()(h);
}
void WINAPI FreeTaskMemory(void* p) {
    LookAtFixedBlock(p);
    pReplaced->taskMemory.Original<decltype(FreeTaskMemory)>()(p);
}

class HeapListener : public testing::EmptyTestEventListener {
    void OnTestEnd(const testing::TestInfo&) override {
        if (int n = nDamaged.exchange(0))
            ADD_FAILURE() << n << " heap blocks are damaged that were freed";
        std::vector<HANDLE> heaps(::GetProcessHeaps(0, nullptr) + 16); // some may come meanwhile
        DWORD nHeaps = ::GetProcessHeaps(static_cast<DWORD>(heaps.size()), heaps.data());
        for (DWORD n = 0; n < nHeaps && n < heaps.size(); ++n) {
            bool bTold = std::find(damaged.begin(), damaged.end(), heaps[n]) != damaged.end();
            if (bTold || (bLeavesOutProcessHeap && heaps[n] == ::GetProcessHeap())) continue;
            if (::HeapValidate(heaps[n], 0, nullptr)) continue;
            damaged.push_back(heaps[n]); // and stays so, in all later tests
            ADD_FAILURE() << "the heap " << heaps[n] << " is damaged";
        }
    }
    std::vector<HANDLE> damaged;
};
} // namespace

void CheckHeaps() {
    static const Replaced replaced;
    pReplaced = &replaced;
    testing::UnitTest::GetInstance()->listeners().Append(new HeapListener);
}

void LeaveOutProcessHeap() { bLeavesOutProcessHeap = true; }
