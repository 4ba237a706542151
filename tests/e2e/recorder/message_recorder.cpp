// A library that is mapped into other programs by its hooks and writes down the messages of the
// threads that a test watches.

#include "e2e/support/message_record.h"

namespace {
constexpr UINT kFirstRegisteredMsg = 0xC000;

__attribute__((section(".record"), shared)) MessageRecords recordsOfAll = {};

bool IsWanted(DWORD dwThread, UINT uMsg) {
    for (const MessageRecords::Watched& watched : recordsOfAll.watched) {
        if (watched.dwThread != dwThread) continue;
        return watched.bEverything || uMsg == WM_COPYDATA || uMsg == WM_DISPLAYCHANGE ||
               uMsg >= kFirstRegisteredMsg;
    }
    return false;
}

void Note(DWORD bPosted, HWND hwnd, UINT uMsg, WPARAM wParam, LPARAM lParam) {
    DWORD dwThread = ::GetCurrentThreadId();
    if (!IsWanted(dwThread, uMsg)) return;
    LONG n = ::InterlockedIncrement(&recordsOfAll.nCount) - 1;
    if (n >= MessageRecords::kMax) return;
    if (uMsg == WM_COPYDATA && !bPosted && lParam)
        lParam = static_cast<LPARAM>(reinterpret_cast<const COPYDATASTRUCT*>(lParam)->dwData);
    recordsOfAll.records[n] = {dwThread, bPosted, hwnd, uMsg, wParam, lParam, ::GetTickCount()};
}
} // namespace

extern "C" {
__declspec(dllexport) MessageRecords* GetMessageRecords() { return &recordsOfAll; }

__declspec(dllexport) LRESULT CALLBACK OnPosted(int nCode, WPARAM wParam, LPARAM lParam) {
    const MSG& msg = *reinterpret_cast<const MSG*>(lParam);
    if (nCode == HC_ACTION && wParam == PM_REMOVE)
        Note(1, msg.hwnd, msg.message, msg.wParam, msg.lParam);
    return ::CallNextHookEx(nullptr, nCode, wParam, lParam);
}

__declspec(dllexport) LRESULT CALLBACK OnSent(int nCode, WPARAM wParam, LPARAM lParam) {
    const CWPSTRUCT& msg = *reinterpret_cast<const CWPSTRUCT*>(lParam);
    if (nCode == HC_ACTION) Note(0, msg.hwnd, msg.message, msg.wParam, msg.lParam);
    return ::CallNextHookEx(nullptr, nCode, wParam, lParam);
}
}
