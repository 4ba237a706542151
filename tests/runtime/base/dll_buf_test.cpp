#include "runtime/base/dll_buf.h"

#include "support/replace_import.h"

#include <gtest/gtest.h>
#include <windows.h>
#include <cstdlib>

extern "C" FARPROC __imp_free; // where the import's address lies

namespace {
const void* pFreed = nullptr;
const ReplaceImport* pReplaced = nullptr;
void __cdecl RecordFree(void* p) {
    pFreed = p;
    pReplaced->Original<void __cdecl(void*)>()(p);
}

// The heap checks keep a freed block for a while: the heap itself can't be asked.
TEST(FreeDllBuf, GivesTheBlockToTheCLibrary) {
    void* pBuffer = std::malloc(54321); // as the library's functions allocate for their callers
    {
        ReplaceImport replaced(__imp_free, &RecordFree);
        pReplaced = &replaced;
        FreeDllBuf(pBuffer);
    }
    EXPECT_EQ(pBuffer, pFreed);
}

TEST(FreeDllBuf, NullIsNothingToDo) { FreeDllBuf(nullptr); }
} // namespace
