#include "runtime/base/heap_array.h"
#include "support/guard_page.h"

#include <gtest/gtest.h>
#include <algorithm>
#include <cstdint>
#include <string>
#include <type_traits>
#include <utility>

static_assert(!std::is_copy_constructible_v<HeapArray<int>>);
static_assert(!std::is_copy_assignable_v<HeapArray<int>>);

namespace {
struct Pair {
    int nFirst;
    double dSecond;
};

TEST(HeapArray, WithoutElementsHasNoBlock) {
    HeapArray<int> none, zero(0);
    for (const HeapArray<int>* p : {&none, &zero}) {
        EXPECT_FALSE(p->IsReady());
        EXPECT_EQ(nullptr, p->Get());
        EXPECT_EQ(0u, p->GetCount());
        EXPECT_EQ(0u, p->GetByteCount());
        EXPECT_EQ(p->begin(), p->end());
    }
}

TEST(HeapArray, OneElementIsZeroAndCanBeWritten) {
    HeapArray<Pair> one(1);
    ASSERT_TRUE(one.IsReady());
    EXPECT_EQ(1u, one.GetCount());
    EXPECT_EQ(sizeof(Pair), one.GetByteCount());
    EXPECT_EQ(0, one[0].nFirst);
    EXPECT_EQ(0.0, one[0].dSecond);
    one[0].nFirst = 5;
    EXPECT_EQ(5, std::as_const(one)[0].nFirst);
    EXPECT_EQ(&one[0], one.Get());
}

TEST(HeapArray, AllElementsAreZeroWhateverWasThereBefore) {
    { std::fill_n(HeapArray<unsigned>(1000).Get(), 1000, 0xEEEEEEEEu); }
    HeapArray<unsigned> array(1000);
    EXPECT_EQ(1000, std::count(array.begin(), array.end(), 0u));
    EXPECT_EQ(1000, array.end() - array.begin());
}

class HeapArrayHuge : public testing::TestWithParam<std::size_t> {};

TEST_P(HeapArrayHuge, CountThatNoMemoryHoldsIsNotReady) {
    HeapArray<Pair> array(GetParam());
    EXPECT_FALSE(array.IsReady());
    EXPECT_EQ(nullptr, array.Get());
    EXPECT_EQ(0u, array.GetCount());
}

INSTANTIATE_TEST_SUITE_P(Counts, HeapArrayHuge,
                         testing::Values(SIZE_MAX, SIZE_MAX / sizeof(Pair) + 1, // wraps to little
                                         SIZE_MAX / sizeof(Pair), PTRDIFF_MAX / sizeof(Pair),
                                         std::size_t{1} << 50));

TEST(HeapArray, MovingTakesTheBlockAndLeavesNone) {
    HeapArray<int> first(3);
    int* p = first.Get();
    HeapArray<int> second(std::move(first));
    EXPECT_EQ(p, second.Get());
    EXPECT_EQ(3u, second.GetCount());
    EXPECT_FALSE(first.IsReady());
    EXPECT_EQ(0u, first.GetCount());
    HeapArray<int> third(7);
    third = std::move(second);
    EXPECT_EQ(p, third.Get());
    EXPECT_EQ(3u, third.GetCount());
    EXPECT_FALSE(second.IsReady());
    third = {};
    EXPECT_FALSE(third.IsReady());
}

TEST(CopyToHeap, CopiesWithTheTerminator) {
    GuardedText text(L"abc");
    HeapArray<wchar_t> copy = CopyToHeap(text.Get());
    ASSERT_TRUE(copy.IsReady());
    EXPECT_EQ(4u, copy.GetCount());
    EXPECT_NE(text.Get(), copy.Get());
    EXPECT_STREQ(L"abc", copy.Get());
}

TEST(CopyToHeap, EmptyTextIsACopyAndNullIsNone) {
    HeapArray<wchar_t> copy = CopyToHeap(L"");
    ASSERT_TRUE(copy.IsReady());
    EXPECT_STREQ(L"", copy.Get());
    EXPECT_FALSE(CopyToHeap(nullptr).IsReady());
}
} // namespace
