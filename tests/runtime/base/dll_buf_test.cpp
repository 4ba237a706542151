#include "runtime/base/dll_buf.h"

#include <gtest/gtest.h>
#include <windows.h>
#include <malloc.h>
#include <cstdlib>

namespace {
/// How many blocks of that size the C library's heap has.
int CountBlocks(DWORD cb) {
    HANDLE hHeap = reinterpret_cast<HANDLE>(_get_heap_handle());
    int nBlocks = 0;
    PROCESS_HEAP_ENTRY entry{};
    ::HeapLock(hHeap);
    while (::HeapWalk(hHeap, &entry))
        nBlocks += (entry.wFlags & PROCESS_HEAP_ENTRY_BUSY) && entry.cbData == cb;
    ::HeapUnlock(hHeap);
    return nBlocks;
}

TEST(FreeDllBuf, GivesTheBlockBack) {
    constexpr DWORD kSize = 54321; // nobody else's
    ASSERT_EQ(0, CountBlocks(kSize));
    void* pBuffer = std::malloc(kSize); // as the library's functions allocate for their callers
    ASSERT_EQ(1, CountBlocks(kSize));
    FreeDllBuf(pBuffer);
    EXPECT_EQ(0, CountBlocks(kSize));
}

TEST(FreeDllBuf, NullIsNothingToDo) { FreeDllBuf(nullptr); }
} // namespace
