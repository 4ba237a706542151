#include "runtime/threads/message_pump.h"

#include <gtest/gtest.h>

namespace {
int nSeen = 0;
LRESULT CALLBACK CountProc(HWND hwnd, UINT uMsg, WPARAM wParam, LPARAM lParam) {
    if (uMsg != WM_APP) return ::DefWindowProcW(hwnd, uMsg, wParam, lParam);
    ++nSeen;
    if (wParam) ::PostMessageW(hwnd, WM_APP, wParam - 1, 0);
    return 0;
}

HWND MakeWindow() {
    HWND hwnd = ::CreateWindowExW(0, L"STATIC", L"", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, nullptr,
                                  nullptr);
    ::SetWindowLongPtrW(hwnd, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(&CountProc));
    nSeen = 0;
    return hwnd;
}

TEST(ProcessAllMessages, EmptyQueueGivesOne) {
    ProcessAllMessages();
    EXPECT_EQ(1, ProcessAllMessages());
}

TEST(ProcessAllMessages, DispatchesAlsoWhatIsPostedMeanwhile) {
    HWND hwnd = MakeWindow();
    ::PostMessageW(hwnd, WM_APP, 4, 0);
    EXPECT_EQ(1, ProcessAllMessages());
    EXPECT_EQ(5, nSeen);
    ::DestroyWindow(hwnd);
}

TEST(ProcessAllMessages, OfAWindowLeavesTheOthersWaiting) {
    HWND hwnd = MakeWindow(), hwndOther = MakeWindow();
    ::PostMessageW(hwndOther, WM_APP, 0, 0);
    EXPECT_EQ(1, ProcessAllMessages(hwnd));
    EXPECT_EQ(0, nSeen);
    EXPECT_EQ(1, ProcessAllMessages(hwndOther));
    EXPECT_EQ(1, nSeen);
    ::DestroyWindow(hwnd);
    ::DestroyWindow(hwndOther);
}

TEST(ProcessAllMessages, QuitGivesZeroOnceAndIsNotSeenAgain) {
    HWND hwnd = MakeWindow();
    ::PostQuitMessage(3);
    ::PostMessageW(hwnd, WM_APP, 0, 0);
    EXPECT_EQ(0, ProcessAllMessages());
    EXPECT_EQ(1, nSeen);
    EXPECT_EQ(1, ProcessAllMessages());
    MSG msg;
    EXPECT_EQ(FALSE, ::PeekMessageW(&msg, nullptr, 0, 0, PM_REMOVE));
    ::DestroyWindow(hwnd);
}

TEST(WaitPumpingMessages, DispatchesWhileItWaits) {
    HWND hwnd = MakeWindow();
    HANDLE hEvent = ::CreateEventW(nullptr, TRUE, FALSE, nullptr);
    ::PostMessageW(hwnd, WM_APP, 2, 0);
    EXPECT_EQ(0, WaitPumpingMessages(hEvent, 20));
    EXPECT_EQ(3, nSeen);
    ::SetEvent(hEvent);
    EXPECT_EQ(1, WaitPumpingMessages(hEvent, 20));
    ::CloseHandle(hEvent);
    ::DestroyWindow(hwnd);
}

TEST(WaitPumpingMessages, FailedWaitGivesOne) { EXPECT_EQ(1, WaitPumpingMessages(nullptr, 5000)); }
} // namespace
