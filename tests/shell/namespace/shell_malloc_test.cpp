#include "shell/namespace/shell_malloc.h"
#include "support/replace_import.h"

#include <shlobj.h>
#include <gtest/gtest.h>
#include <atomic>
#include <thread>
#include <vector>

extern "C" FARPROC __imp_SHGetMalloc;

namespace {
TEST(ShellMalloc, GivesTheShellsAllocatorEachTime) {
    IMalloc* pMalloc = GetShellMalloc();
    ASSERT_NE(nullptr, pMalloc);
    EXPECT_EQ(pMalloc, GetShellMalloc());
    void* pBlock = pMalloc->Alloc(16);
    ASSERT_NE(nullptr, pBlock);
    EXPECT_EQ(1, pMalloc->DidAlloc(pBlock));
    ShellFree(pBlock);
}

TEST(ShellMalloc, FreeOfNullDoesNothing) { ShellFree(nullptr); }

TEST(ShellMalloc, FreesWhatTheShellAllocated) {
    LPITEMIDLIST pidl = nullptr;
    ASSERT_EQ(S_OK, ::SHGetFolderLocation(nullptr, CSIDL_WINDOWS, nullptr, 0, &pidl));
    ShellFree(pidl);
}

TEST(ShellMalloc, IsAskedForAgainAfterItWasReleased) {
    ReleaseShellMalloc();
    ReleaseShellMalloc();
    EXPECT_NE(nullptr, GetShellMalloc());
}

/// An allocator that counts.
struct CountingMalloc : IMalloc {
    LONG nReferences = 0;
    std::atomic<int> nAskedFor{0};
    std::vector<void*> freed;

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID, void**) override { return E_NOINTERFACE; }
    ULONG STDMETHODCALLTYPE AddRef() override {
        return static_cast<ULONG>(::InterlockedIncrement(&nReferences));
    }
    ULONG STDMETHODCALLTYPE Release() override {
        return static_cast<ULONG>(::InterlockedDecrement(&nReferences));
    }
    void* STDMETHODCALLTYPE Alloc(SIZE_T) override { return nullptr; }
    void* STDMETHODCALLTYPE Realloc(void*, SIZE_T) override { return nullptr; }
    void STDMETHODCALLTYPE Free(void* p) override { freed.push_back(p); }
    SIZE_T STDMETHODCALLTYPE GetSize(void*) override { return 0; }
    int STDMETHODCALLTYPE DidAlloc(void*) override { return -1; }
    void STDMETHODCALLTYPE HeapMinimize() override {}
};
CountingMalloc* pCounting = nullptr;
HRESULT WINAPI GiveCounting(LPMALLOC* pp) {
    ++pCounting->nAskedFor;
    pCounting->AddRef();
    *pp = pCounting;
    return S_OK;
}
IMalloc* pOfQuicker = nullptr;
HRESULT WINAPI GiveCountingLate(LPMALLOC* pp) {
    // While the first asks, another thread comes and goes.
    if (++pCounting->nAskedFor == 1) {
        std::thread([] { pOfQuicker = GetShellMalloc(); }).join();
    }
    pCounting->AddRef();
    *pp = pCounting;
    return S_OK;
}
HRESULT WINAPI GiveNothing(LPMALLOC* pp) {
    *pp = nullptr;
    return E_FAIL;
}

/// The shell's allocator is the test's own, and the platform's again at the end.
class ShellMallocCalls : public testing::Test {
  protected:
    ShellMallocCalls() {
        ReleaseShellMalloc();
        pCounting = &counting;
    }
    ~ShellMallocCalls() override { ReleaseShellMalloc(); }
    CountingMalloc counting;
    ReplaceImport replaced{__imp_SHGetMalloc, &GiveCounting};
};

TEST_F(ShellMallocCalls, IsAskedForOnceAndGivenBackOnce) {
    EXPECT_EQ(&counting, GetShellMalloc());
    EXPECT_EQ(&counting, GetShellMalloc());
    EXPECT_EQ(1, counting.nAskedFor.load());
    EXPECT_EQ(1, counting.nReferences);
    ReleaseShellMalloc();
    EXPECT_EQ(0, counting.nReferences);
    ReleaseShellMalloc();
    EXPECT_EQ(0, counting.nReferences);
    EXPECT_EQ(&counting, GetShellMalloc());
    EXPECT_EQ(2, counting.nAskedFor.load());
}

TEST_F(ShellMallocCalls, FreeIsTheAllocators) {
    int nBlock = 0;
    ShellFree(&nBlock);
    EXPECT_EQ(std::vector<void*>{&nBlock}, counting.freed);
    ShellFree(nullptr);
    EXPECT_EQ(1u, counting.freed.size());
}

TEST_F(ShellMallocCalls, WithoutOneNothingIsFreed) {
    ReplaceImport none(__imp_SHGetMalloc, &GiveNothing);
    int nBlock = 0;
    EXPECT_EQ(nullptr, GetShellMalloc());
    ShellFree(&nBlock);
    EXPECT_TRUE(counting.freed.empty());
}

TEST_F(ShellMallocCalls, SlowerThreadGivesItsReferenceBack) {
    pOfQuicker = nullptr;
    ReplaceImport slow(__imp_SHGetMalloc, &GiveCountingLate);
    EXPECT_EQ(&counting, GetShellMalloc());
    EXPECT_EQ(&counting, pOfQuicker);
    EXPECT_EQ(2, counting.nAskedFor.load());
    EXPECT_EQ(1, counting.nReferences);
}

TEST_F(ShellMallocCalls, ThreadsAtOnceHoldOneReference) {
    for (int nRound = 0; nRound < 20; ++nRound) {
        std::vector<std::thread> threads;
        for (int n = 0; n < 4; ++n) threads.emplace_back([] { GetShellMalloc(); });
        for (auto& thread : threads) thread.join();
        EXPECT_EQ(1, counting.nReferences);
        ReleaseShellMalloc();
        EXPECT_EQ(0, counting.nReferences);
    }
}

TEST(ShellMalloc, ThreadsGetTheSameOne) {
    ReleaseShellMalloc();
    std::vector<IMalloc*> found(8);
    std::vector<std::thread> threads;
    for (auto& p : found) threads.emplace_back([&p] { p = GetShellMalloc(); });
    for (auto& thread : threads) thread.join();
    for (auto* p : found) EXPECT_EQ(GetShellMalloc(), p);
}
} // namespace
