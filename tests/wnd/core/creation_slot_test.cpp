#include "support/wait_until.h"
#include "wnd/core/core_wnd.h"
#include "wnd/wnd_probe.h"

#include <gtest/gtest.h>
#include <atomic>
#include <thread>

namespace {
TEST(CreationSlot, IsEmptyAtFirst) {
    CreationSlot slot;
    EXPECT_EQ(nullptr, slot.Take());
    EXPECT_EQ(nullptr, slot.Take());
}

TEST(CreationSlot, GivesItsObjectOnce) {
    CreationSlot slot;
    int nObject = 0, nOther = 0;
    EXPECT_EQ(1, slot.Set(&nObject));
    EXPECT_EQ(&nObject, slot.Take());
    EXPECT_EQ(nullptr, slot.Take());
    EXPECT_EQ(1, slot.Set(&nObject));
    EXPECT_EQ(1, slot.Set(&nOther));
    EXPECT_EQ(&nOther, slot.Take()) << "the later one";
    EXPECT_EQ(1, slot.Set(&nObject));
    EXPECT_EQ(1, slot.Set(nullptr));
    EXPECT_EQ(nullptr, slot.Take());
}

TEST(CreationSlot, TwoSlotsAreApart) {
    CreationSlot one, other;
    int nObject = 0;
    one.Set(&nObject);
    EXPECT_EQ(nullptr, other.Take());
    EXPECT_EQ(&nObject, one.Take());
}

TEST(CreationSlot, EachThreadHasItsOwn) {
    CreationSlot slot;
    int nMine = 0;
    slot.Set(&nMine);
    std::thread([&] {
        int nTheirs = 0;
        EXPECT_EQ(nullptr, slot.Take());
        EXPECT_EQ(1, slot.Set(&nTheirs));
        EXPECT_EQ(&nTheirs, slot.Take());
    }).join();
    EXPECT_EQ(&nMine, slot.Take());
}

TEST(CreationSlot, GivesThePlatformsSlotBack) {
    int nObject = 0;
    for (int n = 0; n < 5000; ++n) { // the platform has 1,088
        CreationSlot slot;
        ASSERT_EQ(1, slot.Set(&nObject)) << n;
        ASSERT_EQ(&nObject, slot.Take()) << n;
    }
}

TEST(CreationSlot, FirstUseByManyThreadsAtOnce) {
    for (int nRound = 0; nRound < 50; ++nRound) {
        CreationSlot slot;
        std::atomic<int> nReady{0}, nGood{0};
        std::vector<std::thread> threads;
        for (int n = 0; n < 4; ++n) {
            threads.emplace_back([&] {
                int nOwn = 0;
                ++nReady;
                while (nReady < 4) ::SwitchToThread();
                nGood += slot.Set(&nOwn) && slot.Take() == &nOwn && !slot.Take();
            });
        }
        for (auto& t : threads) t.join();
        ASSERT_EQ(4, nGood);
    }
}

// Two threads inside CreateWindowExW at the same time: a hook of the platform holds each between
// its object's waiting and its window's first message until the other is there too.

std::atomic<int> nInside{0};

LRESULT CALLBACK HoldCreation(int nCode, WPARAM wParam, LPARAM lParam) {
    if (nCode == HCBT_CREATEWND) {
        auto* pCreate = reinterpret_cast<CBT_CREATEWNDW*>(lParam);
        if (pCreate->lpcs->lpCreateParams) {
            ++nInside;
            WaitUntil([] { return nInside >= 2; });
        }
    }
    return ::CallNextHookEx(nullptr, nCode, wParam, lParam);
}

TEST(CreationSlot, WindowsOfTwoThreadsFindTheirObjects) {
    ProbeClass cls;
    for (int nRound = 0; nRound < 20; ++nRound) {
        nInside = 0;
        std::atomic<int> nGood{0};
        auto create = [&](const wchar_t* pszTitle) {
            ProbeRecord record;
            ProbeWnd wnd(record);
            HHOOK hhook =
                ::SetWindowsHookExW(WH_CBT, &HoldCreation, nullptr, ::GetCurrentThreadId());
            int bCreated = wnd.Create(kProbeClass, pszTitle, WS_OVERLAPPEDWINDOW, 0, 0, 10, 10,
                                      nullptr, nullptr, &record);
            ::UnhookWindowsHookEx(hhook);
            nGood += bCreated && CSWnd::FromHandle(wnd) == &wnd && record.nPreInits == 1 &&
                     record.Count(WM_CREATE) == 1 && TextOf(wnd) == pszTitle &&
                     ::GetWindowThreadProcessId(wnd, nullptr) == ::GetCurrentThreadId();
            wnd.Destroy();
            nGood += record.nPostNcDestroys == 1;
        };
        std::thread one(create, L"one"), other(create, L"other");
        one.join();
        other.join();
        ASSERT_EQ(2, nInside) << "both were inside at once";
        ASSERT_EQ(4, nGood);
    }
}
} // namespace
