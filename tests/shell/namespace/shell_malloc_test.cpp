#include "shell/namespace/pidl.h"
#include <gtest/gtest.h>
#include <shlobj.h>

#include <thread>
#include <vector>

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

TEST(ShellMalloc, ThreadsGetTheSameOne) {
    ReleaseShellMalloc();
    std::vector<IMalloc*> found(8);
    std::vector<std::thread> threads;
    for (auto& p : found) threads.emplace_back([&p] { p = GetShellMalloc(); });
    for (auto& thread : threads) thread.join();
    for (auto* p : found) EXPECT_EQ(GetShellMalloc(), p);
}
