#pragma once
#include "runtime/base/export.h"
#include <windows.h>

/// Takes and dispatches every message that waits for the window, or for the calling thread if hwnd
/// is null. Returns 1; 0 if WM_QUIT was among them. WM_QUIT is not put back: no later loop sees it.
TESSALY_API int ProcessAllMessages(HWND hwnd = nullptr);

/// Waits for the handle, up to nTimeoutMs, and dispatches the thread's messages meanwhile. Each
/// round of messages starts the time anew. Returns 1 if the handle was signalled (or the wait
/// failed), 0 after the time.
int WaitPumpingMessages(HANDLE h, DWORD nTimeoutMs);
