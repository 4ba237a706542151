#pragma once
#include <windows.h>

// What the recording library and the test that loads it share: a section that all processes with
// the library have in common.

struct MessageRecord {
    DWORD dwThread;
    DWORD bPosted;
    HWND hwnd;
    UINT uMsg;
    WPARAM wParam;
    LPARAM lParam; // of WM_COPYDATA COPYDATASTRUCT::dwData
    DWORD dwTime;  // GetTickCount, when it was taken or arrived
};

struct MessageRecords {
    static constexpr LONG kMax = 4096, kMaxThreads = 4;
    struct Watched {
        DWORD dwThread;
        DWORD bEverything; // or only what the engine's parts say to each other
    } watched[kMaxThreads];
    LONG nCount; // may be larger than kMax: the rest is lost
    MessageRecord records[kMax];
};
