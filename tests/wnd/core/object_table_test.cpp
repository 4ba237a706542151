#include "wnd/core/object_table.h"
#include "support/heap_count.h"

#include <gtest/gtest.h>
#include <atomic>
#include <random>
#include <set>
#include <thread>
#include <vector>

namespace {
/// Objects of that size, side by side.
template <std::size_t kBytes>
struct Objects {
    explicit Objects(std::size_t n) : bytes(n * kBytes) {}
    const void* operator[](std::size_t n) const { return &bytes[n * kBytes]; }
    std::vector<char> bytes;
};

TEST(ObjectTable, HasWhatWasAddedAndNotRemoved) {
    ObjectTable table;
    Objects<8> objects(3);
    EXPECT_FALSE(table.Has(objects[0]));
    EXPECT_TRUE(table.Add(objects[0]));
    EXPECT_TRUE(table.Add(objects[1]));
    EXPECT_TRUE(table.Has(objects[0]));
    EXPECT_TRUE(table.Has(objects[1]));
    EXPECT_FALSE(table.Has(objects[2]));
    EXPECT_FALSE(table.Has(static_cast<const char*>(objects[0]) + 1));
    table.Remove(objects[0]);
    table.Remove(objects[2]); // never was there
    EXPECT_FALSE(table.Has(objects[0]));
    EXPECT_TRUE(table.Has(objects[1]));
}

TEST(ObjectTable, NullIsNoObject) {
    ObjectTable table;
    EXPECT_FALSE(table.Add(nullptr));
    EXPECT_FALSE(table.Has(nullptr));
    table.Remove(nullptr);
}

TEST(ObjectTable, AddedTwiceIsRemovedAtOnce) {
    ObjectTable table;
    int nObject = 0;
    EXPECT_TRUE(table.Add(&nObject));
    EXPECT_TRUE(table.Add(&nObject));
    table.Remove(&nObject);
    EXPECT_FALSE(table.Has(&nObject));
}

TEST(ObjectTable, GrowsAndGivesItsMemoryBack) {
    Objects<184> objects(5000);
    long nBefore = CountLiveBlocks();
    {
        ObjectTable table;
        for (std::size_t n = 0; n < 5000; ++n) ASSERT_TRUE(table.Add(objects[n]));
        for (std::size_t n = 0; n < 5000; ++n) ASSERT_TRUE(table.Has(objects[n]));
        EXPECT_LT(nBefore, CountLiveBlocks());
        long nGrown = CountLiveBlocks();
        for (std::size_t n = 0; n < 5000; ++n) table.Remove(objects[n]);
        for (std::size_t n = 0; n < 5000; ++n) ASSERT_FALSE(table.Has(objects[n]));
        for (std::size_t n = 0; n < 5000; ++n) ASSERT_TRUE(table.Add(objects[n]));
        EXPECT_EQ(nGrown, CountLiveBlocks()) << "places are used again";
    }
    EXPECT_EQ(nBefore, CountLiveBlocks());
}

TEST(ObjectTableRandom, IsASet) {
    std::mt19937 random(20240);
    ObjectTable table;
    Objects<24> objects(600);
    std::set<const void*> model;
    for (int n = 0; n < 20000; ++n) {
        const void* p = objects[random() % 600];
        if (random() % 2) {
            ASSERT_TRUE(table.Add(p));
            model.insert(p);
        } else {
            table.Remove(p);
            model.erase(p);
        }
        const void* pAsked = objects[random() % 600];
        ASSERT_EQ(model.count(pAsked) != 0, table.Has(pAsked));
    }
}

TEST(ObjectTable, ThreadsAddAndRemoveTheirOwnAtOnce) {
    constexpr std::size_t kThreads = 4, kEach = 700;
    ObjectTable table;
    Objects<8> objects(kThreads * kEach);
    std::atomic<int> nBad{0};
    std::vector<std::thread> threads;
    for (std::size_t nThread = 0; nThread < kThreads; ++nThread) {
        threads.emplace_back([&, nThread] {
            std::size_t nFirst = nThread * kEach;
            for (int nRound = 0; nRound < 20; ++nRound) {
                for (std::size_t n = 0; n < kEach; ++n) nBad += !table.Add(objects[nFirst + n]);
                for (std::size_t n = 0; n < kEach; ++n) nBad += !table.Has(objects[nFirst + n]);
                for (std::size_t n = 0; n < kEach; ++n) table.Remove(objects[nFirst + n]);
                for (std::size_t n = 0; n < kEach; ++n) nBad += table.Has(objects[nFirst + n]);
            }
        });
    }
    for (auto& t : threads) t.join();
    EXPECT_EQ(0, nBad);
}
} // namespace
