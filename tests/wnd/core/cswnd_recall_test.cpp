#include "wnd/core/cswnd.h"
#include "support/test_window.h"
#include "wnd/wnd_probe.h"

#include <gtest/gtest.h>
#include <memory>
#include <vector>

namespace {
TEST(RecallHandle, AnswersAsFromHandleDoes) {
    ProbeClass cls;
    PlainWnd plain;
    ProbeRecord record;
    ProbeWnd wnd(record), other(record);
    EXPECT_EQ(nullptr, CSWnd::RecallHandle(nullptr));
    EXPECT_EQ(nullptr, CSWnd::RecallHandle(plain));
    EXPECT_EQ(nullptr, CSWnd::RecallHandle(DeadWindow()));
    ASSERT_EQ(1, wnd.Make());
    HWND hwnd = wnd;
    EXPECT_EQ(&wnd, CSWnd::RecallHandle(hwnd));
    wnd.Destroy();
    EXPECT_EQ(nullptr, CSWnd::RecallHandle(hwnd));

    ASSERT_EQ(1, wnd.Subclass(plain));
    EXPECT_EQ(&wnd, CSWnd::RecallHandle(plain));
    ASSERT_EQ(1, other.Subclass(plain));
    EXPECT_EQ(&other, CSWnd::RecallHandle(plain)) << "the last one";
    other.Unsubclass();
    EXPECT_EQ(CSWnd::FromHandle(plain), CSWnd::RecallHandle(plain));
    wnd.Unsubclass();
    EXPECT_EQ(nullptr, CSWnd::RecallHandle(plain));
}

TEST(RecallHandle, ObjectThatIsGoneOrDetachedIsNone) {
    PlainWnd plain;
    ProbeRecord record;
    auto pWnd = std::make_unique<ProbeWnd>(record);
    ASSERT_EQ(1, pWnd->Subclass(plain));
    pWnd->Unsubclass();
    pWnd.reset();
    EXPECT_EQ(nullptr, CSWnd::RecallHandle(plain));
    ProbeWnd wnd(record);
    ASSERT_EQ(1, wnd.Subclass(plain));
    wnd.Detach();
    EXPECT_EQ(nullptr, CSWnd::RecallHandle(plain));
    wnd.Attach(plain);
    wnd.Unsubclass();
}

TEST(RecallHandle, PropertyOfAnotherProgramIsNotLookedAt) {
    PlainWnd plain;
    ProbeRecord record;
    ProbeWnd wnd(record), other(record);
    ASSERT_EQ(1, wnd.Subclass(plain));
    ::SetPropW(plain, L"CSWND", static_cast<CSWnd*>(&other));
    EXPECT_EQ(nullptr, CSWnd::FromHandle(plain));
    EXPECT_EQ(&wnd, CSWnd::RecallHandle(plain));
    wnd.Unsubclass();
    EXPECT_EQ(nullptr, CSWnd::RecallHandle(plain));
}

TEST(RecallHandle, MoreWindowsThanAreRememberedAreFound) {
    ProbeClass cls;
    ProbeRecord record;
    std::vector<std::unique_ptr<ProbeWnd>> wnds;
    for (int i = 0; i < 700; ++i) {
        wnds.push_back(std::make_unique<ProbeWnd>(record));
        ASSERT_EQ(1, wnds.back()->Make());
    }
    for (auto& pWnd : wnds) EXPECT_EQ(pWnd.get(), CSWnd::RecallHandle(*pWnd));
    for (auto& pWnd : wnds) pWnd->Destroy();
}

TEST(CSWndInChain, IsWhileTheMessageIsWithThePlatform) {
    ProbeRecord record;
    ProbeWnd wnd(record);
    bool bInHandler = true, bBehind = true, bAtTheEnd = false;
    TestWindow plain([&](UINT uMsg, WPARAM, LPARAM) -> std::optional<LRESULT> {
        if (uMsg == WM_APP) bAtTheEnd = wnd.IsInChain();
        return {};
    });
    ASSERT_EQ(1, wnd.Subclass(plain));
    EXPECT_FALSE(wnd.IsInChain());
    wnd.onMessage = [&](ProbeWnd& w, UINT uMsg, WPARAM wParam, LPARAM lParam) -> ProbeWnd::Answer {
        if (uMsg != WM_APP) return {};
        bInHandler = w.IsInChain();
        LRESULT lResult = w.DoWndMessage(uMsg, wParam, lParam, nullptr);
        bBehind = w.IsInChain();
        return lResult;
    };
    ::SendMessageW(plain, WM_APP, 0, 0);
    EXPECT_FALSE(bInHandler);
    EXPECT_TRUE(bAtTheEnd);
    EXPECT_FALSE(bBehind);
    wnd.Unsubclass();
}
} // namespace
