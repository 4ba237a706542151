#include "runtime/base/ownership.h"

#include <gtest/gtest.h>
#include <type_traits>
#include <utility>
#include <vector>

namespace {
std::vector<int*> closed;
void Close(int* p) { closed.push_back(p); }
using Owned = OwnedHandleOf<int*, &Close>;

static_assert(!std::is_copy_constructible_v<Owned> && !std::is_copy_assignable_v<Owned>);
static_assert(sizeof(Owned) == sizeof(int*));

class OwnedHandleTest : public testing::Test {
  protected:
    OwnedHandleTest() { closed.clear(); }
    int a = 1, b = 2;
};

TEST_F(OwnedHandleTest, ClosesOnceAtItsEnd) {
    {
        Owned owned(&a);
        EXPECT_EQ(&a, owned.Get());
        EXPECT_TRUE(owned);
    }
    EXPECT_EQ(std::vector<int*>{&a}, closed);
}

TEST_F(OwnedHandleTest, EmptyOneClosesNothing) {
    {
        Owned owned;
        EXPECT_FALSE(owned);
        owned.Reset();
    }
    EXPECT_TRUE(closed.empty());
}

TEST_F(OwnedHandleTest, ReleaseGivesTheHandleAway) {
    {
        Owned owned(&a);
        EXPECT_EQ(&a, owned.Release());
        EXPECT_EQ(nullptr, owned.Get());
    }
    EXPECT_TRUE(closed.empty());
}

TEST_F(OwnedHandleTest, ResetTakesTheNewOneAndThenClosesTheOld) {
    Owned owned(&a);
    owned.Reset(&b);
    EXPECT_EQ(std::vector<int*>{&a}, closed);
    EXPECT_EQ(&b, owned.Get());
}

TEST_F(OwnedHandleTest, PutClosesWhatWasHeld) {
    Owned owned(&a);
    *owned.Put() = &b;
    EXPECT_EQ(std::vector<int*>{&a}, closed);
    EXPECT_EQ(&b, owned.Get());
}

TEST_F(OwnedHandleTest, MovingLeavesTheOtherEmpty) {
    Owned first(&a), third(&b);
    Owned second(std::move(first));
    EXPECT_FALSE(first);
    EXPECT_EQ(&a, second.Get());
    third = std::move(second);
    EXPECT_EQ(std::vector<int*>{&b}, closed);
    EXPECT_EQ(&a, third.Get());
    EXPECT_FALSE(second);
}

TEST(ScopeExit, RunsAtTheEndUnlessDismissed) {
    int nRuns = 0;
    {
        ScopeExit count([&] { ++nRuns; });
        EXPECT_EQ(0, nRuns);
    }
    EXPECT_EQ(1, nRuns);
    {
        ScopeExit count([&] { ++nRuns; });
        count.Dismiss();
    }
    EXPECT_EQ(1, nRuns);
}

/// Counts how many of its kind live.
struct Counted {
    Counted() { ++nAlive; }
    ~Counted() { --nAlive; }
    static inline int nAlive = 0;
};
constinit ManualObject<Counted> object;
static_assert(std::is_trivially_destructible_v<ManualObject<Counted>>);

TEST(ManualObject, LivesFromStartToStop) {
    EXPECT_EQ(nullptr, object.Get());
    object.Start();
    Counted* p = object.Get();
    ASSERT_NE(nullptr, p);
    EXPECT_EQ(1, Counted::nAlive);
    object.Start(); // lives already
    EXPECT_EQ(p, object.Get());
    EXPECT_EQ(1, Counted::nAlive);
    object.Stop();
    EXPECT_EQ(nullptr, object.Get());
    EXPECT_EQ(0, Counted::nAlive);
    object.Stop(); // there is none
    EXPECT_EQ(0, Counted::nAlive);
    object.Start(); // and again
    EXPECT_EQ(1, Counted::nAlive);
    object.Stop();
}

/// Asks for itself while it ends.
struct Curious {
    ~Curious();
    static inline bool bSawItself = false;
};
constinit ManualObject<Curious> curious;
Curious::~Curious() { bSawItself = curious.Get() != nullptr; }

TEST(ManualObject, IsGoneForWhoeverAsksWhileItEnds) {
    curious.Start();
    curious.Stop();
    EXPECT_FALSE(Curious::bSawItself);
}
} // namespace
