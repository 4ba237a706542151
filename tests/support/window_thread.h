#pragma once
#include "support/wait_until.h"
#include <windows.h>
#include <atomic>
#include <functional>
#include <thread>

/// A thread with a message loop: for windows that must belong to another thread than the test's.
class WindowThread {
  public:
    WindowThread() : thread([this] { Loop(); }) {
        WaitUntil([this] { return nThreadId != 0; });
    }
    ~WindowThread() {
        ::PostThreadMessageW(nThreadId, WM_QUIT, 0, 0);
        thread.join();
    }
    WindowThread(const WindowThread&) = delete;
    WindowThread& operator=(const WindowThread&) = delete;

    DWORD GetId() const { return nThreadId; }
    /// Runs fn on the thread and returns when it has run.
    void Run(std::function<void()> fn) { Start(std::move(fn), true); }
    /// Runs fn on the thread without waiting for its end, as for one that shows a box.
    void Post(std::function<void()> fn) { Start(std::move(fn), false); }

  private:
    struct Task {
        std::function<void()> fn;
        HANDLE hDone;
    };
    static constexpr UINT kTaskMsg = WM_APP + 0x77;

    void Start(std::function<void()> fn, bool bWait) {
        HANDLE hDone = bWait ? ::CreateEventW(nullptr, TRUE, FALSE, nullptr) : nullptr;
        auto* pTask = new Task{std::move(fn), hDone};
        ::PostThreadMessageW(nThreadId, kTaskMsg, 0, reinterpret_cast<LPARAM>(pTask));
        if (!bWait) return;
        ::WaitForSingleObject(hDone, INFINITE);
        ::CloseHandle(hDone);
    }
    void Loop() {
        MSG msg;
        ::PeekMessageW(&msg, nullptr, 0, 0, PM_NOREMOVE); // makes the queue
        nThreadId = ::GetCurrentThreadId();
        while (::GetMessageW(&msg, nullptr, 0, 0) > 0) {
            if (!msg.hwnd && msg.message == kTaskMsg) {
                auto* pTask = reinterpret_cast<Task*>(msg.lParam);
                pTask->fn();
                if (pTask->hDone) ::SetEvent(pTask->hDone);
                delete pTask;
            } else {
                ::DispatchMessageW(&msg);
            }
        }
    }

    std::atomic<DWORD> nThreadId{0};
    std::thread thread;
};
