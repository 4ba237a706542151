#include "runtime/threads/cs_thread.h"
#include "support/test_window.h"
#include "support/wait_until.h"

#include <gtest/gtest.h>
#include <atomic>
#include <functional>
#include <memory>
#include <new>
#include <optional>

namespace {
struct Latch { // a manual event for the tests' own signals
    HANDLE h = ::CreateEventW(nullptr, TRUE, FALSE, nullptr);
    ~Latch() { ::CloseHandle(h); }
    void Set() { ::SetEvent(h); }
    bool Wait(DWORD nMs = 10000) { return ::WaitForSingleObject(h, nMs) == WAIT_OBJECT_0; }
};

/// Runs what the test gives it.
class Worker : public CSThreadEx {
  public:
    explicit Worker(std::function<unsigned(Worker&)> fnWork, int bDeletesItself = 0)
        : CSThreadEx(bDeletesItself), fn(std::move(fnWork)) {}
    ~Worker() override {
        if (pbGone) pbGone->Set();
    }
    unsigned DoThreadEx() override { return fn(*this); }
    std::function<unsigned(Worker&)> fn;
    Latch* pbGone = nullptr;
};

unsigned WorkUntilCanceled(Worker& worker) { return worker.WaitForCancel(20000) ? 5u : 6u; }

bool BecomesDone(CSThread& thread) {
    return WaitUntil([&] { return !static_cast<HANDLE>(thread); });
}

TEST(CSThread, ThatNeverRanSaysYesToEverything) {
    CSThread thread;
    EXPECT_EQ(nullptr, static_cast<HANDLE>(thread));
    EXPECT_EQ(1, thread.IsReady());
    EXPECT_EQ(1, thread.IsDone());
    EXPECT_EQ(1, thread.IsCanceled());
    EXPECT_EQ(1, thread.WaitForReady(60000));
    EXPECT_EQ(1, thread.WaitForDone(0));
    EXPECT_EQ(1, thread.WaitForCancel(60000));
    EXPECT_EQ(1, thread.WaitForThread(60000));
    EXPECT_EQ(1, thread.CheckEvent(nullptr));
    EXPECT_EQ(1, thread.Destroy(60000));
    thread.CloseThreadHandle();
}

struct PlainThread {
    CSThread thread;
    Latch latchGo;
    std::atomic<DWORD> dwId{0};
    std::atomic<int> nPriority{-100};
    static unsigned __stdcall Run(void* pArgument) {
        auto* p = static_cast<PlainThread*>(pArgument);
        p->dwId = ::GetCurrentThreadId();
        p->nPriority = ::GetThreadPriority(::GetCurrentThread());
        p->thread.SetReady();
        p->latchGo.Wait();
        p->thread.SetDone();
        return 11;
    }
};

TEST(CSThread, CreateRunsTheFunctionAtItsPriority) {
    PlainThread plain;
    ASSERT_EQ(1, plain.thread.Create(&PlainThread::Run, &plain, THREAD_PRIORITY_BELOW_NORMAL));
    EXPECT_NE(0u, plain.dwId.load());
    EXPECT_NE(::GetCurrentThreadId(), plain.dwId.load());
    EXPECT_EQ(THREAD_PRIORITY_BELOW_NORMAL, plain.nPriority.load());
    EXPECT_EQ(1, plain.thread.IsReady());
    EXPECT_EQ(0, plain.thread.IsDone());
    EXPECT_EQ(0, plain.thread.IsCanceled());
    EXPECT_EQ(0, plain.thread.WaitForDone(0));
    EXPECT_EQ(0, plain.thread.WaitForDone(5));
    EXPECT_EQ(0, plain.thread.WaitForThread(0));
    plain.latchGo.Set();
    EXPECT_EQ(1, plain.thread.WaitForDone(10000));
    EXPECT_EQ(1, plain.thread.WaitForThread(10000));
    DWORD dwCode = 0;
    EXPECT_TRUE(::GetExitCodeThread(plain.thread, &dwCode));
    EXPECT_EQ(11u, dwCode);
    // A plain function does not close the handle: the object still has a thread.
    EXPECT_NE(nullptr, static_cast<HANDLE>(plain.thread));
    plain.thread.CloseThreadHandle();
    EXPECT_EQ(nullptr, static_cast<HANDLE>(plain.thread));
}

unsigned __stdcall NeverReady(void* pArgument) {
    static_cast<Latch*>(pArgument)->Wait(30000);
    return 0;
}

TEST(CSThread, CreateReturnsAfterFiveSecondsWithoutReady) {
    CSThread thread;
    Latch latch;
    DWORD dwStart = ::GetTickCount();
    EXPECT_EQ(1, thread.Create(&NeverReady, &latch));
    DWORD nPassed = ::GetTickCount() - dwStart;
    EXPECT_GE(nPassed, 4900u);
    EXPECT_LT(nPassed, 9000u);
    EXPECT_EQ(0, thread.IsReady());
    latch.Set();
    EXPECT_EQ(1, thread.WaitForThread(10000));
    thread.SetDone();
}

TEST(CSThread, DestroyWithTimeZeroCancelsLooksOnceAndClosesTheHandle) {
    Latch latchInWait, latchCanceled, latchGo, latchEnd;
    std::atomic<int> bCanceled{-1};
    Worker worker([&](Worker& self) {
        // Handled inside the wait: it began while there was a thread handle, so that the event
        // alone ends it. Without a handle every question is answered with yes.
        TestWindow wnd([&](UINT uMsg, WPARAM, LPARAM) -> std::optional<LRESULT> {
            if (uMsg == WM_APP) latchInWait.Set();
            return std::nullopt;
        });
        ::PostMessageW(wnd, WM_APP, 0, 0);
        bCanceled = self.WaitForCancel(10000);
        latchCanceled.Set();
        latchGo.Wait(); // not done yet
        latchEnd.Set();
        return 0u;
    });
    CSThread* pThread = &worker;
    ASSERT_EQ(1, worker.Start());
    ASSERT_TRUE(latchInWait.Wait());
    EXPECT_FALSE(latchCanceled.Wait(50));
    DWORD dwStart = ::GetTickCount();
    EXPECT_EQ(0, pThread->Destroy(0));
    EXPECT_LT(::GetTickCount() - dwStart, 3000u); // half of what the destructor gives it
    EXPECT_EQ(nullptr, static_cast<HANDLE>(worker));
    EXPECT_TRUE(latchCanceled.Wait(5000));
    EXPECT_EQ(1, bCanceled.load());
    latchGo.Set();
    ASSERT_TRUE(latchEnd.Wait());
}

TEST(CSThread, DestroyWaitsForTheWorkerToAnswer) {
    Worker worker(&WorkUntilCanceled);
    ASSERT_EQ(1, worker.Start());
    EXPECT_EQ(0, worker.IsCanceled());
    EXPECT_EQ(1, worker.Stop(10000));
    EXPECT_EQ(1, worker.IsDone());
    EXPECT_EQ(nullptr, static_cast<HANDLE>(worker));
}

TEST(CSThread, DestroyWaitIsTakenUpAnewAfterMessages) {
    Latch latchGo;
    Worker worker([&](Worker&) {
        latchGo.Wait();
        return 0u;
    });
    ASSERT_EQ(1, worker.Start());
    ::PostThreadMessageW(::GetCurrentThreadId(), WM_APP, 0, 0);
    EXPECT_EQ(0, worker.WaitForDone(20));
    MSG msg;
    EXPECT_EQ(FALSE, ::PeekMessageW(&msg, nullptr, WM_APP, WM_APP, PM_REMOVE)); // was taken
    latchGo.Set();
    EXPECT_EQ(1, worker.WaitForDone(10000));
}

TEST(CSThread, WaitKeepsTheCallersWindowsAlive) {
    static Worker* pWorker;
    Worker worker(&WorkUntilCanceled);
    pWorker = &worker;
    TestWindow wnd;
    ASSERT_EQ(1, worker.Start());
    // The timer's procedure runs only if the wait dispatches.
    ::SetTimer(wnd, 1, 10, [](HWND, UINT, UINT_PTR, DWORD) { pWorker->SetCancel(); });
    EXPECT_EQ(1, worker.WaitForDone(10000));
}

TEST(CSThread, DestructorStopsTheWorker) {
    std::atomic<int> bEnded{0};
    {
        Worker worker([&](Worker& self) {
            WorkUntilCanceled(self);
            bEnded = 1;
            return 0u;
        });
        ASSERT_EQ(1, worker.Start());
        worker.Stop(10000);
    }
    EXPECT_EQ(1, bEnded.load());
}

TEST(CSThread, LiveMarkIsSetAndCleared) {
    alignas(CSThread) unsigned char abRoom[sizeof(CSThread)] = {};
    auto HasMark = [&] {
        for (std::size_t i = 0; i + 4 <= sizeof(abRoom); i += 4)
            if (*reinterpret_cast<volatile unsigned*>(abRoom + i) == 0x4927FA34) return true;
        return false;
    };
    auto* pThread = new (abRoom) CSThread;
    EXPECT_TRUE(HasMark());
    pThread->~CSThread();
    EXPECT_FALSE(HasMark());
}

TEST(CSThreadEx, BaseDoesNothingAndEndsWithZero) {
    CSThreadEx thread;
    EXPECT_EQ(0u, thread.DoThreadEx());
    EXPECT_EQ(1, thread.Start());
    EXPECT_TRUE(BecomesDone(thread));
}

TEST(CSThreadEx, ExitCodeIsTheWorksResult) {
    Latch latchGo;
    Worker worker([&](Worker&) {
        latchGo.Wait();
        return 77u;
    });
    ASSERT_EQ(1, worker.Start());
    HANDLE hKept = nullptr;
    ASSERT_TRUE(::DuplicateHandle(::GetCurrentProcess(), worker, ::GetCurrentProcess(), &hKept, 0,
                                  FALSE, DUPLICATE_SAME_ACCESS));
    latchGo.Set();
    EXPECT_EQ(WAIT_OBJECT_0, ::WaitForSingleObject(hKept, 10000));
    DWORD dwCode = 0;
    EXPECT_TRUE(::GetExitCodeThread(hKept, &dwCode));
    EXPECT_EQ(77u, dwCode);
    ::CloseHandle(hKept);
    EXPECT_EQ(nullptr, static_cast<HANDLE>(worker)); // closed by the worker itself
    EXPECT_EQ(1, worker.IsCanceled());
}

TEST(CSThreadEx, CanBeStartedAgain) {
    std::atomic<int> nRuns{0};
    Worker worker([&](Worker&) {
        ++nRuns;
        return 0u;
    });
    for (int i = 1; i <= 50; ++i) {
        ASSERT_EQ(1, worker.Start());
        ASSERT_TRUE(BecomesDone(worker));
        EXPECT_EQ(i, nRuns.load());
    }
}

TEST(CSThreadEx, LeftWorkerDoesNotEndTheNextOne) {
    Latch latchOld, latchOldGone;
    std::atomic<int> nRun{0};
    Worker worker([&](Worker& self) {
        if (++nRun == 1) {
            latchOld.Wait();
            return 1u;
        }
        return WorkUntilCanceled(self);
    });
    ASSERT_EQ(1, worker.Start());
    HANDLE hOld = nullptr;
    ASSERT_TRUE(::DuplicateHandle(::GetCurrentProcess(), worker, ::GetCurrentProcess(), &hOld, 0,
                                  FALSE, DUPLICATE_SAME_ACCESS));
    worker.Destroy(0);
    ASSERT_EQ(1, worker.Start());
    latchOld.Set();
    ASSERT_EQ(WAIT_OBJECT_0, ::WaitForSingleObject(hOld, 10000));
    ::CloseHandle(hOld);
    EXPECT_NE(nullptr, static_cast<HANDLE>(worker));
    EXPECT_EQ(0, worker.IsDone());
    EXPECT_EQ(1, worker.Stop(10000));
}

TEST(CSThreadEx, DeletesItselfAfterTheWork) {
    Latch latchGone;
    auto* pWorker = new Worker([](Worker&) { return 0u; }, 1);
    pWorker->pbGone = &latchGone;
    EXPECT_EQ(1, pWorker->Start());
    EXPECT_TRUE(latchGone.Wait());
}

TEST(CSThreadEx, WithoutTheFlagStaysForItsOwner) {
    Latch latchGone;
    auto pWorker = std::make_unique<Worker>([](Worker&) { return 0u; });
    pWorker->pbGone = &latchGone;
    ASSERT_EQ(1, pWorker->Start());
    ASSERT_TRUE(BecomesDone(*pWorker));
    EXPECT_FALSE(latchGone.Wait(0));
}

TEST(CSThreadEx, StopOfASelfDeletingObjectIsSafe) {
    for (int i = 0; i < 100; ++i) {
        Latch latchGone;
        auto* pWorker = new Worker(&WorkUntilCanceled, 1);
        pWorker->pbGone = &latchGone;
        ASSERT_EQ(1, pWorker->Start());
        EXPECT_EQ(1, pWorker->Stop(10000));
        EXPECT_TRUE(latchGone.Wait());
    }
}

TEST(CSThreadEx, ManyQuickSelfDeletingThreadsAllGo) {
    constexpr int kThreads = 200;
    static std::atomic<int> nGone;
    nGone = 0;
    struct Quick : CSThreadEx {
        Quick() : CSThreadEx(1) {}
        ~Quick() override { ++nGone; }
    };
    for (int i = 0; i < kThreads; ++i) EXPECT_EQ(1, (new Quick)->Start());
    EXPECT_TRUE(WaitUntil([&] { return nGone == kThreads; })) << nGone;
}

/// Its worker never answers a cancel; its memory stays readable after the object's end.
class Deaf : public CSThreadEx {
  public:
    Deaf(Latch& latchAtWork, Latch& latchWork, Latch& latchAtEnd, int bDeletesItself)
        : CSThreadEx(bDeletesItself), latchBegun(latchAtWork), latchGo(latchWork),
          latchEnd(latchAtEnd) {}
    unsigned DoThreadEx() override {
        Latch& latch = latchEnd;
        latchBegun.Set();
        latchGo.Wait(30000); // read before the end of the object
        latch.Set();
        return 0;
    }

  private:
    Latch& latchBegun;
    Latch& latchGo;
    Latch& latchEnd;
};

TEST(CSThreadEx, WorkerThatOutlivesTheObjectTouchesNothing) {
    Latch latchBegun, latchGo, latchEnd;
    alignas(Deaf) static unsigned char abRoom[sizeof(Deaf)];
    auto* pDeaf = new (abRoom) Deaf(latchBegun, latchGo, latchEnd, 1);
    ASSERT_EQ(1, pDeaf->Start());
    ASSERT_TRUE(latchBegun.Wait()); // ready comes before the work
    HANDLE hKept = nullptr;
    ASSERT_TRUE(::DuplicateHandle(::GetCurrentProcess(), *pDeaf, ::GetCurrentProcess(), &hKept, 0,
                                  FALSE, DUPLICATE_SAME_ACCESS));
    DWORD dwStart = ::GetTickCount();
    pDeaf->~Deaf(); // gives up after its six seconds
    DWORD nPassed = ::GetTickCount() - dwStart;
    EXPECT_GE(nPassed, 5900u);
    EXPECT_LT(nPassed, 10000u);
    std::fill(std::begin(abRoom), std::end(abRoom), static_cast<unsigned char>(0xCC));
    latchGo.Set();
    ASSERT_TRUE(latchEnd.Wait());
    ASSERT_EQ(WAIT_OBJECT_0, ::WaitForSingleObject(hKept, 10000));
    ::CloseHandle(hKept);
    for (unsigned char b : abRoom) ASSERT_EQ(0xCC, b);
}

/// Counts its messages WM_APP.
struct CountingWindow : TestWindow {
    CountingWindow()
        : TestWindow([this](UINT uMsg, WPARAM, LPARAM) -> std::optional<LRESULT> {
              if (uMsg != WM_APP) return std::nullopt;
              ++nSeen;
              return 0;
          }) {}
    int nSeen = 0;
};

TEST(CSThread, ProcessAllMessagesOfAWindowLeavesTheOthersWaiting) {
    CSThread thread; // none need run: the messages are the caller's
    CountingWindow wnd, wndOther;
    for (int i = 0; i < 3; ++i) ::PostMessageW(wnd, WM_APP, 0, 0);
    ::PostMessageW(wndOther, WM_APP, 0, 0);
    EXPECT_EQ(1, thread.ProcessAllMessages(wnd));
    EXPECT_EQ(3, wnd.nSeen);
    EXPECT_EQ(0, wndOther.nSeen);
    EXPECT_EQ(1, thread.ProcessAllMessages(wndOther));
    EXPECT_EQ(1, wndOther.nSeen);
}

TEST(CSThread, ProcessAllMessagesWithoutAWindowTakesAllOfTheThread) {
    CSThread thread;
    CountingWindow wnd, wndOther;
    ::PostMessageW(wnd, WM_APP, 0, 0);
    ::PostMessageW(wndOther, WM_APP, 0, 0);
    ::PostThreadMessageW(::GetCurrentThreadId(), WM_APP + 1, 0, 0);
    EXPECT_EQ(1, thread.ProcessAllMessages());
    EXPECT_EQ(1, wnd.nSeen);
    EXPECT_EQ(1, wndOther.nSeen);
    MSG msg;
    EXPECT_EQ(FALSE, ::PeekMessageW(&msg, nullptr, WM_APP + 1, WM_APP + 1, PM_REMOVE));
    EXPECT_EQ(1, thread.ProcessAllMessages());
}

TEST(CSThread, ProcessAllMessagesGivesZeroIfQuitWasAmongThem) {
    CSThread thread;
    CountingWindow wnd;
    ::PostMessageW(wnd, WM_APP, 0, 0);
    ::PostQuitMessage(3);
    EXPECT_EQ(0, thread.ProcessAllMessages());
    EXPECT_EQ(1, wnd.nSeen);
    EXPECT_EQ(1, thread.ProcessAllMessages());
}
} // namespace
