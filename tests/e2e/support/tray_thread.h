#pragma once
#include "support/fake_tray.h"
#include "support/wait_until.h"

#include <windows.h>
#include <cstddef>
#include <functional>
#include <string>
#include <thread>
#include <vector>

/// The tests' notification area, on a thread of its own that answers while the test waits.
class TrayThread {
  public:
    TrayThread()
        : hReady(::CreateEventW(nullptr, TRUE, FALSE, nullptr)), thread([this] { Main(); }) {
        ::WaitForSingleObject(hReady, kTestDeadlineMs);
    }
    ~TrayThread() {
        ::PostThreadMessageW(dwThread, WM_QUIT, 0, 0);
        thread.join();
        ::CloseHandle(hReady);
    }
    TrayThread(const TrayThread&) = delete;
    TrayThread& operator=(const TrayThread&) = delete;

    /// Runs fn beside the tray's calls, none of which comes meanwhile.
    void Run(const std::function<void(FakeTray&)>& fn) {
        HANDLE hDone = ::CreateEventW(nullptr, TRUE, FALSE, nullptr);
        std::function<void(FakeTray&)> fnTold = [&](FakeTray& tray) {
            fn(tray);
            ::SetEvent(hDone);
        };
        ::PostThreadMessageW(dwThread, kRunMsg, 0, reinterpret_cast<LPARAM>(&fnTold));
        ::WaitForSingleObject(hDone, INFINITE);
        ::CloseHandle(hDone);
    }
    std::vector<FakeTray::Call> Calls() {
        std::vector<FakeTray::Call> calls;
        Run([&](FakeTray& tray) { calls = tray.calls; });
        return calls;
    }
    std::string TakeNames() {
        std::string str;
        Run([&](FakeTray& tray) { str = tray.TakeNames(); });
        return str;
    }
    bool WaitForCalls(std::size_t n) {
        return WaitUntil([&] { return Calls().size() >= n; });
    }

  private:
    static constexpr UINT kRunMsg = WM_APP;

    void Main() {
        FakeTray tray;
        dwThread = ::GetCurrentThreadId();
        ::SetEvent(hReady);
        MSG msg;
        while (::GetMessageW(&msg, nullptr, 0, 0) > 0) {
            if (!msg.hwnd && msg.message == kRunMsg) {
                (*reinterpret_cast<std::function<void(FakeTray&)>*>(msg.lParam))(tray);
            } else {
                ::DispatchMessageW(&msg);
            }
        }
    }

    HANDLE hReady;
    DWORD dwThread = 0;
    std::thread thread;
};
