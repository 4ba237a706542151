// A window of the class that the shell's views have, in a process of its own. What its extra memory
// holds is an address that means nothing elsewhere. Ends when the window is closed.
#include <windows.h>

namespace {
LRESULT CALLBACK WndProc(HWND hwnd, UINT uMsg, WPARAM wParam, LPARAM lParam) {
    if (uMsg == WM_DESTROY) ::PostQuitMessage(0);
    return ::DefWindowProcW(hwnd, uMsg, wParam, lParam);
}
} // namespace

int wmain(int nArgs, wchar_t** ppszArgs) {
    constexpr const wchar_t* kViewClass = L"SHELLDLL_DefView";
    constexpr LONG_PTR kNowhere = 0x7A5A5A58;
    WNDCLASSW wc{};
    wc.lpfnWndProc = WndProc;
    wc.cbWndExtra = sizeof(LONG_PTR);
    wc.hInstance = ::GetModuleHandleW(nullptr);
    wc.lpszClassName = kViewClass;
    if (!::RegisterClassW(&wc)) return 1;
    HWND hwnd = ::CreateWindowW(kViewClass, nArgs > 1 ? ppszArgs[1] : L"", WS_OVERLAPPEDWINDOW, 0,
                                0, 100, 100, nullptr, nullptr, wc.hInstance, nullptr);
    ::SetWindowLongPtrW(hwnd, 0, kNowhere);
    ::SetPropW(hwnd, L"Ready", hwnd);
    MSG msg;
    while (::GetMessageW(&msg, nullptr, 0, 0) > 0) ::DispatchMessageW(&msg);
    return 0;
}
