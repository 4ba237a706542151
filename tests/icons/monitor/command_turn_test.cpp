#include "icons/monitor/command_turn.h"
#include "support/wait_until.h"

#include <gtest/gtest.h>
#include <atomic>
#include <thread>

namespace {
constexpr const wchar_t* kName = L"Local\\Tessaly.Command";

TEST(CommandTurnTest, IsOneThreadsAtATime) {
    CommandTurn turn;
    ASSERT_TRUE(turn.Take(0));
    std::atomic<int> nTaken = -1;
    std::thread([&] {
        CommandTurn other;
        nTaken = other.Take(50);
    }).join();
    EXPECT_EQ(0, nTaken);
    ASSERT_TRUE(turn.Take(0)); // again
    std::thread waiting([&] {
        CommandTurn other;
        nTaken = other.Take(kTestDeadlineMs);
    });
    turn.Release();
    turn.Release();
    waiting.join();
    EXPECT_EQ(1, nTaken);
    EXPECT_TRUE(turn.Take(kTestDeadlineMs)); // the other one's went with its object
}

TEST(CommandTurnTest, AbandonedOneIsTaken) {
    HANDLE hKept = nullptr;
    std::thread([&] {
        hKept = ::CreateMutexW(nullptr, TRUE, kName); // the thread ends as its owner
    }).join();
    CommandTurn turn;
    EXPECT_TRUE(turn.Take(0));
    ::CloseHandle(hKept);
}

TEST(CommandTurnTest, NameOfSomethingElseIsWaitedForInVain) {
    HANDLE hEvent = ::CreateEventW(nullptr, TRUE, FALSE, kName);
    CommandTurn turn;
    EXPECT_FALSE(turn.Take(0));
    EXPECT_FALSE(turn.Take(120));
    ::CloseHandle(hEvent);
    EXPECT_TRUE(turn.Take(0));
}

TEST(CommandTurnTest, LeavesNoName) {
    {
        CommandTurn turn;
        EXPECT_TRUE(turn.Take(0));
    }
    HANDLE h = ::OpenMutexW(SYNCHRONIZE, FALSE, kName);
    EXPECT_EQ(nullptr, h);
    if (h) ::CloseHandle(h);
}
} // namespace
