#include "shell/namespace/pidl.h"
#include "support/temp_folder.h"

#include <shlobj.h>
#include <gtest/gtest.h>
#include <string>
#include <thread>
#include <vector>

namespace {
// Item id lists

TEST(GetPidlOf, FileGivesAListThatLeadsBackToIt) {
    TempFolder folder;
    std::wstring strFile = folder.MakeFile(L"one.txt", "x");
    ITEMIDLIST* pidl = GetPidlOf(strFile.c_str());
    ASSERT_NE(nullptr, pidl);
    wchar_t szPath[MAX_PATH] = {};
    EXPECT_TRUE(::SHGetPathFromIDListW(pidl, szPath));
    EXPECT_EQ(0, ::lstrcmpiW(strFile.c_str(), szPath));
    ShellFree(pidl);
}

TEST(GetPidlOf, TextThatNamesNothingGivesNull) {
    TempFolder folder;
    EXPECT_EQ(nullptr, GetPidlOf(folder.File(L"missing.txt").c_str()));
    EXPECT_EQ(nullptr, GetPidlOf(L"\\\\?\\"));
    EXPECT_EQ(nullptr, GetPidlOf(nullptr));
}

TEST(GetPidlOf, OverlongPathGivesNull) {
    std::wstring strLong = L"C:\\" + std::wstring(40000, L'x');
    EXPECT_EQ(nullptr, GetPidlOf(strLong.c_str()));
}

// The shell's allocator

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
} // namespace
