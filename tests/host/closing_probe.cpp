// A window as the running monitor has it, which ends the process when it is asked to close. Prints
// a line when it stands.
#include "app/identity/product_info.h"
#include "icons/agent/desktop_shared_data.h"
#include "wnd/core/company_msg.h"

#include <cstdio>

namespace {
LRESULT CALLBACK MonitorProc(HWND hwnd, UINT uMsg, WPARAM wParam, LPARAM lParam) {
    if (uMsg == GetMyCompanyMsgId() && wParam == 1 && lParam == GetMyProductInfo().GetID())
        ::PostQuitMessage(0);
    return ::DefWindowProcW(hwnd, uMsg, wParam, lParam);
}
} // namespace

int wmain() {
    WNDCLASSW wc{};
    wc.lpfnWndProc = &MonitorProc;
    wc.lpszClassName = kMonitorClass;
    wc.hInstance = ::GetModuleHandleW(nullptr);
    ::RegisterClassW(&wc);
    ::CreateWindowExW(0, wc.lpszClassName, L"", WS_POPUP, 0, 0, 0, 0, nullptr, nullptr,
                      wc.hInstance, nullptr);
    std::printf("ready\n");
    std::fflush(stdout);
    MSG msg;
    while (::GetMessageW(&msg, nullptr, 0, 0) > 0) ::DispatchMessageW(&msg);
    return 0;
}
