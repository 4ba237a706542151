#include "shell/namespace/freed_blocks.h"
#include "shell/namespace/pidl.h"

#include <shlobj.h>
#include <gtest/gtest.h>

namespace {
TEST(Pidl, AttachAndMakeDoNotFreeWhatWasHeld) {
    FreedBlocks freed;
    ITEMIDLIST* pidlFirst = PIDL::Alloc(2);
    pidlFirst->mkid.cb = 0;
    PIDL list;
    list.Attach(pidlFirst);
    list.Make();
    ITEMIDLIST* pidlSecond = list;
    EXPECT_NE(pidlFirst, pidlSecond);
    list.Attach(static_cast<ITEMIDLIST*>(nullptr));
    EXPECT_FALSE(freed.Has(pidlFirst));
    EXPECT_FALSE(freed.Has(pidlSecond));
    PIDL::Free(pidlFirst);
    PIDL::Free(pidlSecond);
}

TEST(Pidl, MakeRootOfARawListFreesIt) {
    ::CoInitialize(nullptr);
    ITEMIDLIST* pidl = GetPidlOf(L"C:\\windows");
    ASSERT_NE(nullptr, pidl);
    FreedBlocks freed;
    PIDL::MakeRoot(pidl);
    EXPECT_TRUE(freed.Has(pidl));
    ::CoUninitialize();
}
} // namespace
