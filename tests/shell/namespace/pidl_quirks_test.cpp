#include "shell/namespace/pidl.h"

#include <shlobj.h>
#include <gtest/gtest.h>

namespace {
TEST(Pidl, AttachAndMakeDoNotFreeWhatWasHeld) {
    IMalloc* pMalloc = GetShellMalloc();
    ITEMIDLIST* pidlFirst = PIDL::Alloc(2);
    pidlFirst->mkid.cb = 0;
    PIDL list;
    list.Attach(pidlFirst);
    list.Make();
    ITEMIDLIST* pidlSecond = list;
    EXPECT_NE(pidlFirst, pidlSecond);
    list.Attach(static_cast<ITEMIDLIST*>(nullptr));
    EXPECT_EQ(1, pMalloc->DidAlloc(pidlFirst));
    EXPECT_EQ(1, pMalloc->DidAlloc(pidlSecond));
    PIDL::Free(pidlFirst);
    PIDL::Free(pidlSecond);
}

TEST(Pidl, MakeRootOfARawListFreesIt) {
    ::CoInitialize(nullptr);
    ITEMIDLIST* pidl = GetPidlOf(L"C:\\windows");
    ASSERT_NE(nullptr, pidl);
    IMalloc* pMalloc = GetShellMalloc();
    EXPECT_EQ(1, pMalloc->DidAlloc(pidl));
    PIDL::MakeRoot(pidl);
    EXPECT_EQ(0, pMalloc->DidAlloc(pidl));
    ::CoUninitialize();
}
} // namespace
