#include "runtime/base/cs_buf.h"

#include <gtest/gtest.h>
#include <windows.h>
#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <new>
#include <type_traits>

static_assert(std::has_virtual_destructor_v<CSBuf>);
static_assert(std::is_base_of_v<CSBuf, CSBufZ>);

namespace {
TEST(CSBuf, StartsAsZerosOfTheSize) {
    CSBuf buf(300);
    ASSERT_TRUE(buf.IsReady());
    unsigned char* p = buf;
    EXPECT_EQ(300, std::count(p, p + 300, 0));
}

TEST(CSBuf, SizeZeroHasNoBlock) {
    CSBuf buf(0);
    EXPECT_FALSE(buf.IsReady());
    EXPECT_TRUE(buf.IsEmpty());
    EXPECT_EQ(nullptr, static_cast<unsigned char*>(buf));
}

TEST(CSBuf, IsEmptyWhileTheFirstByteIsZero) {
    CSBuf buf(2);
    EXPECT_TRUE(buf.IsEmpty());
    buf.SetAt(1, 5);
    EXPECT_TRUE(buf.IsEmpty());
    buf.SetAt(0, 5);
    EXPECT_FALSE(buf.IsEmpty());
}

TEST(CSBuf, BytesAreReadAndWrittenByIndex) {
    CSBuf buf(3);
    buf.SetAt(0, 1);
    buf.SetAt(2, 0xFF);
    EXPECT_EQ(1, buf.GetAt(0));
    EXPECT_EQ(0, buf.GetAt(1));
    EXPECT_EQ(0xFF, buf.GetAt(2));
}

TEST(CSBuf, IndexesOutsideReadZeroAndWriteNothing) {
    CSBuf buf(3);
    buf.SetAt(3, 7);
    buf.SetAt(0xFFFFFFFF, 7);
    EXPECT_EQ(0, buf.GetAt(3));
    EXPECT_EQ(0, buf.GetAt(0xFFFFFFFF));
    CSBuf none(0);
    none.SetAt(0, 7);
    EXPECT_EQ(0, none.GetAt(0));
}

TEST(CSBuf, CopyAndAssignmentShareTheBlock) {
    CSBuf buf(4);
    CSBuf copy(buf);
    CSBuf assigned(0);
    assigned = buf;
    copy.SetAt(1, 9);
    EXPECT_EQ(9, buf.GetAt(1));
    EXPECT_EQ(9, assigned.GetAt(1));
    copy.Abandon();
    assigned.Abandon();
    EXPECT_FALSE(copy.IsReady());
    EXPECT_TRUE(buf.IsReady());
}

constexpr unsigned kBlock = 2000;
constexpr unsigned char kMark = 0xA7;

/// How many bytes of the freed block at p still have the mark, read as a debugger would. Nothing is
/// allocated here: it might be that very block.
unsigned CountMarksInFreedBlock(const unsigned char* p) {
    static unsigned char seen[kBlock];
    SIZE_T cbRead = 0;
    if (!::ReadProcessMemory(::GetCurrentProcess(), p, seen, kBlock, &cbRead)) return 0;
    return static_cast<unsigned>(std::count(seen, seen + cbRead, kMark));
}

template <class Buf>
unsigned CountMarksAfterDestruction() {
    unsigned char* p;
    {
        Buf buf(kBlock);
        p = buf;
        std::memset(p, kMark, kBlock);
    }
    return CountMarksInFreedBlock(p);
}

/// Without it, a block that was not wiped would look as one that was.
#define SKIP_IF_HEAP_CLEARS()                                                                      \
    if (CountMarksAfterDestruction<CSBuf>() < kBlock / 2)                                          \
    GTEST_SKIP() << "this heap clears what is freed"

TEST(CSBufZ, LeavesNothingOfItsContentsInMemory) {
    SKIP_IF_HEAP_CLEARS();
    EXPECT_EQ(0u, CountMarksAfterDestruction<CSBufZ>());
}

struct ZOfBlock : CSBufZ {
    ZOfBlock() : CSBufZ(kBlock) {}
};

TEST(CSBufZ, ArrayFormWipesEveryBlock) {
    SKIP_IF_HEAP_CLEARS();
    auto* pBufs = new ZOfBlock[3];
    unsigned char* p[3];
    for (int i = 0; i < 3; ++i) {
        p[i] = pBufs[i];
        std::memset(p[i], kMark, kBlock);
    }
    delete[] pBufs;
    for (unsigned char* pOne : p) EXPECT_EQ(0u, CountMarksInFreedBlock(pOne));
}

TEST(CSBufZ, IsWipedThroughItsBaseToo) {
    SKIP_IF_HEAP_CLEARS();
    CSBuf* pBuf = new CSBufZ(kBlock);
    unsigned char* p = *pBuf;
    std::memset(p, kMark, kBlock);
    delete pBuf;
    EXPECT_EQ(0u, CountMarksInFreedBlock(p));
}

TEST(CSBufZ, SizeZeroHasNoBlockAndWipesNothing) {
    // Between marks, so that a wipe of anything but a block is seen.
    alignas(CSBufZ) unsigned char abRoom[3 * sizeof(CSBufZ)];
    std::memset(abRoom, kMark, sizeof(abRoom));
    auto* pBuf = new (abRoom + sizeof(CSBufZ)) CSBufZ(0);
    EXPECT_FALSE(pBuf->IsReady());
    EXPECT_TRUE(pBuf->IsEmpty());
    EXPECT_EQ(nullptr, static_cast<unsigned char*>(*pBuf));
    pBuf->SetAt(0, 7);
    EXPECT_EQ(0, pBuf->GetAt(0));
    pBuf->~CSBufZ();
    EXPECT_EQ(sizeof(CSBufZ), std::count(abRoom, abRoom + sizeof(CSBufZ), kMark));
    EXPECT_EQ(sizeof(CSBufZ),
              std::count(abRoom + 2 * sizeof(CSBufZ), abRoom + sizeof(abRoom), kMark));
}

TEST(CSBufZ, AbandonedBlockIsNeitherWipedNorMissed) {
    unsigned char* p;
    {
        CSBufZ buf(kBlock); // keeps its size when the block has gone
        p = buf;
        std::memset(p, kMark, kBlock);
        buf.Abandon();
    }
    EXPECT_EQ(kBlock, std::count(p, p + kBlock, kMark));
    std::free(p);
}
} // namespace
