// Objects that end while their workers begin, work or end. What goes wrong there ends the process,
// so each of these runs in a process of its own: the test program again, with one test of the kind
// that only runs when it is asked for.
#include "runtime/threads/cs_thread.h"
#include "support/run_in_child.h"

#include <gtest/gtest.h>
#include <atomic>
#include <memory>
#include <string>

namespace {
constexpr int kRounds = 800; // 5,000 objects in all

std::atomic<int> nLiving{0}; // objects, or parts of them, that a worker could touch
std::atomic<int> nTouchedDead{0};
std::atomic<int> nBegun{0};

/// Says of each object of a derived class whether it is there.
class Derived : public CSThreadEx {
  public:
    explicit Derived(bool bWork, int bDeletesItself = 0)
        : CSThreadEx(bDeletesItself), bWaits(bWork) {
        ++nLiving;
    }
    ~Derived() override {
        Destroy(20000);
        nMark = 0;
        --nLiving;
    }
    unsigned DoThreadEx() override {
        ++nBegun;
        if (bWaits) WaitForCancel(20000);
        if (nMark != kMark) ++nTouchedDead;
        return 0;
    }

  private:
    static constexpr unsigned kMark = 0x600DF00D;
    bool bWaits;
    volatile unsigned nMark = kMark;
};

/// The same without members and without a destructor.
class Bare : public CSThreadEx {
  public:
    unsigned DoThreadEx() override { return 1; }
};

// The compiler takes the operator for one that frees the pointer that it is given.
#pragma GCC diagnostic ignored "-Wfree-nonheap-object"
/// A thread that is not the beginning of its object.
struct Other {
    virtual ~Other() = default;
    void* pFiller = nullptr;
};
class SecondBase : public Other, public CSThreadEx {
  public:
    unsigned DoThreadEx() override { return WaitForCancel(20000) ? 2u : 3u; }
};

void ExpectAllGone() {
    for (DWORD dwStart = ::GetTickCount(); nLiving && ::GetTickCount() - dwStart < 10000;)
        ::Sleep(1);
    EXPECT_EQ(0, nLiving.load());
    EXPECT_EQ(0, nTouchedDead.load());
}

TEST(CSThreadExChild, DISABLED_LocalObjects) {
    for (int i = 0; i < kRounds; ++i) {
        CSThreadEx thread;
        ASSERT_EQ(1, thread.Start());
    }
}

TEST(CSThreadExChild, DISABLED_LocalDerivedObjects) {
    for (int i = 0; i < kRounds; ++i) {
        Bare thread;
        ASSERT_EQ(1, thread.Start());
    }
}

TEST(CSThreadExChild, DISABLED_DeletedObjects) {
    for (int i = 0; i < kRounds; ++i) {
        auto pThread = std::make_unique<Derived>(i % 2 == 0);
        ASSERT_EQ(1, pThread->Start());
    }
    ExpectAllGone();
}

TEST(CSThreadExChild, DISABLED_ObjectsDeletedWhileTheyWork) {
    for (int i = 0; i < kRounds; ++i) {
        int nBefore = nBegun;
        auto pThread = std::make_unique<Derived>(true);
        ASSERT_EQ(1, pThread->Start());
        while (nBegun == nBefore) ::Sleep(0);
    }
    ExpectAllGone();
}

TEST(CSThreadExChild, DISABLED_SelfDeletingObjectsDeletedByTheirOwner) {
    for (int i = 0; i < kRounds; ++i) {
        int nBefore = nBegun;
        auto* pThread = new Derived(true, 1); // works until it is asked to end
        ASSERT_EQ(1, pThread->Start());
        while (i % 2 && nBegun == nBefore) ::Sleep(0);
        delete pThread;
    }
    ExpectAllGone();
}

TEST(CSThreadExChild, DISABLED_SelfDeletingObjectsLeftToThemselves) {
    for (int i = 0; i < kRounds; ++i) {
        ASSERT_EQ(1, (new Derived(false, 1))->Start());
    }
    ExpectAllGone();
}

TEST(CSThreadExChild, DISABLED_ObjectsThatBeginElsewhere) {
    for (int i = 0; i < kRounds / 4; ++i) {
        CSThreadEx* pThread = new SecondBase;
        ASSERT_EQ(1, pThread->Start());
        delete pThread;
    }
}

class CSThreadExEnd : public testing::TestWithParam<const char*> {};
TEST_P(CSThreadExEnd, LeavesNothingBehindThatAWorkerCouldTouch) {
    EXPECT_EQ(0u, RunInChild("CSThreadExChild", GetParam()));
}
INSTANTIATE_TEST_SUITE_P(Cases, CSThreadExEnd,
                         testing::Values("LocalObjects", "LocalDerivedObjects", "DeletedObjects",
                                         "ObjectsDeletedWhileTheyWork",
                                         "SelfDeletingObjectsDeletedByTheirOwner",
                                         "SelfDeletingObjectsLeftToThemselves",
                                         "ObjectsThatBeginElsewhere"),
                         [](const auto& row) { return std::string(row.param); });

TEST(CSThreadEx, WorkThatHasNotBegunWhenTheObjectGoesDoesNotBegin) {
    // The worker is held at its first step, before it can look at the object's life.
    nBegun = 0;
    auto pThread = std::make_unique<Derived>(false);
    ASSERT_EQ(1, pThread->Create(
                     [](void* pArgument) -> unsigned {
                         auto* p = static_cast<Derived*>(pArgument);
                         p->SetReady();
                         p->WaitForCancel(10000); // the owner destroys it
                         return CSThreadEx::ThreadProcEx(static_cast<CSThreadEx*>(p));
                     },
                     pThread.get()));
    pThread.reset();
    EXPECT_EQ(0, nBegun.load());
    ExpectAllGone();
}
} // namespace
