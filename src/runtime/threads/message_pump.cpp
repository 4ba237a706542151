#include "runtime/threads/message_pump.h"

int ProcessAllMessages(HWND hwnd) {
    int bGoOn = 1;
    MSG msg;
    while (::PeekMessageW(&msg, hwnd, 0, 0, PM_REMOVE)) {
        if (msg.message == WM_QUIT) bGoOn = 0;
        ::TranslateMessage(&msg);
        ::DispatchMessageW(&msg);
    }
    return bGoOn;
}

int WaitPumpingMessages(HANDLE h, DWORD nTimeoutMs) {
    // The mask of 2000 to today without the touch and pointer input that later headers add.
    constexpr DWORD kAllInput = 1279;
    for (;;) {
        switch (::MsgWaitForMultipleObjects(1, &h, FALSE, nTimeoutMs, kAllInput)) {
        case WAIT_TIMEOUT: return 0;
        case WAIT_OBJECT_0:
        case WAIT_ABANDONED_0:
        case WAIT_FAILED: return 1;
        }
        ProcessAllMessages();
    }
}
