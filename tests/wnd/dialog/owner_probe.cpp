// Shows a window with the title that it is given, until that is closed. Started by the tests.
#include <windows.h>

namespace {
LRESULT CALLBACK OwnerProc(HWND hwnd, UINT uMsg, WPARAM wParam, LPARAM lParam) {
    if (uMsg == WM_DESTROY) ::PostQuitMessage(0);
    return ::DefWindowProcW(hwnd, uMsg, wParam, lParam);
}
} // namespace

int wmain(int nArgs, wchar_t** ppszArgs) {
    if (nArgs != 2) return 2;
    WNDCLASSW wc{};
    wc.lpfnWndProc = OwnerProc;
    wc.hInstance = ::GetModuleHandleW(nullptr);
    wc.lpszClassName = L"TessalyOwnerProbe";
    ::RegisterClassW(&wc);
    HWND hwnd = ::CreateWindowExW(0, wc.lpszClassName, ppszArgs[1], WS_OVERLAPPEDWINDOW, 50, 50,
                                  300, 200, nullptr, nullptr, wc.hInstance, nullptr);
    if (!hwnd) return 1;
    ::ShowWindow(hwnd, SW_SHOW);
    MSG msg;
    while (::GetMessageW(&msg, nullptr, 0, 0) > 0) ::DispatchMessageW(&msg);
    return 0;
}
