#include "wnd/core/cswnd.h"
#include "wnd/wnd_probe.h"

#include <gtest/gtest.h>

namespace {
TEST(WMHook, DefaultsTakeNothing) {
    WMHook hook;
    LRESULT lResult = 31;
    EXPECT_EQ(0, hook.OnWndMessage(nullptr, WM_APP, 1, 2, &lResult));
    EXPECT_EQ(0, hook.OnDlgMessage(nullptr, WM_APP, 1, 2, &lResult));
    EXPECT_EQ(31, lResult);
}

TEST(WMHook, AddAndRemoveGoToTheWindow) {
    ProbeRecord record;
    ProbeWnd wnd(record);
    WMHook first, second;
    first.AddToWnd(&wnd);
    second.AddToWnd(&wnd);
    ASSERT_EQ(2, wnd.hooks.GetCount());
    EXPECT_EQ(&second, wnd.hooks.GetHead());
    EXPECT_EQ(&first, wnd.hooks.GetTail());
    second.RemoveFromWnd(&wnd);
    ASSERT_EQ(1, wnd.hooks.GetCount());
    EXPECT_EQ(&first, wnd.hooks.GetHead());
    second.RemoveFromWnd(&wnd);
    first.RemoveFromWnd(&wnd);
    EXPECT_TRUE(wnd.hooks.IsEmpty());
}

TEST(WMHook, OneHookMaySeeSeveralWindows) {
    ProbeClass cls;
    ProbeRecord record;
    ProbeWnd one(record), other(record);
    ASSERT_EQ(1, one.Make());
    ASSERT_EQ(1, other.Make());
    std::vector<CSWnd*> seen;
    ProbeHook hook([&](CSWnd* p, UINT uMsg, WPARAM, LPARAM, LRESULT*) {
        if (uMsg == WM_APP) seen.push_back(p);
        return 0;
    });
    hook.AddToWnd(&one);
    hook.AddToWnd(&other);
    ::SendMessageW(other, WM_APP, 0, 0);
    ::SendMessageW(one, WM_APP, 0, 0);
    EXPECT_EQ((std::vector<CSWnd*>{&other, &one}), seen);
    hook.RemoveFromWnd(&one);
    ::SendMessageW(one, WM_APP, 0, 0);
    EXPECT_EQ(2u, seen.size());
    one.Destroy();
    other.Destroy();
}
} // namespace
