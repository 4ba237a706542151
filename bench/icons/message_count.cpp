// Counts the messages of a thread of another process: a library that the platform maps there.

#include "message_count.h"

namespace {
#define SHARED_DATA __attribute__((section(".SDATA"), shared))
LONG nPosted SHARED_DATA = 0;
LONG nSent SHARED_DATA = 0;
LONG nLast SHARED_DATA = 0;

HINSTANCE hinstThis = nullptr;
HHOOK hhookPosted = nullptr, hhookSent = nullptr;

LRESULT CALLBACK OnPosted(int nCode, WPARAM wParam, LPARAM lParam) {
    if (nCode == HC_ACTION && wParam == PM_REMOVE) {
        ::InterlockedIncrement(&nPosted);
        nLast = static_cast<LONG>(reinterpret_cast<const MSG*>(lParam)->message);
    }
    return ::CallNextHookEx(nullptr, nCode, wParam, lParam);
}

LRESULT CALLBACK OnSent(int nCode, WPARAM wParam, LPARAM lParam) {
    if (nCode == HC_ACTION) {
        ::InterlockedIncrement(&nSent);
        nLast = static_cast<LONG>(reinterpret_cast<const CWPSTRUCT*>(lParam)->message);
    }
    return ::CallNextHookEx(nullptr, nCode, wParam, lParam);
}
} // namespace

extern "C" __declspec(dllexport) int InstallCounters(DWORD dwThread) {
    hhookPosted = ::SetWindowsHookExW(WH_GETMESSAGE, &OnPosted, hinstThis, dwThread);
    hhookSent = ::SetWindowsHookExW(WH_CALLWNDPROC, &OnSent, hinstThis, dwThread);
    return hhookPosted && hhookSent;
}

extern "C" __declspec(dllexport) MessageCounts GetCounts() { return {nPosted, nSent, nLast}; }

extern "C" __declspec(dllexport) void RemoveCounters() {
    ::UnhookWindowsHookEx(hhookPosted);
    ::UnhookWindowsHookEx(hhookSent);
}

BOOL WINAPI DllMain(HINSTANCE hinst, DWORD dwReason, void*) {
    if (dwReason == DLL_PROCESS_ATTACH) hinstThis = hinst;
    return TRUE;
}
