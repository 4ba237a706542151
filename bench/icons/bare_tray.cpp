// The least that a program with a tray icon does: a hidden window, the icon, one value in the
// registry. Beside it the product's start is measured.

#include "bare_tray.h"

#include <windows.h>
#include <shellapi.h>

namespace {
LRESULT CALLBACK WndProc(HWND hwnd, UINT uMsg, WPARAM wParam, LPARAM lParam) {
    if (uMsg == WM_DESTROY) ::PostQuitMessage(0);
    return ::DefWindowProcW(hwnd, uMsg, wParam, lParam);
}
} // namespace

int WINAPI wWinMain(HINSTANCE hinst, HINSTANCE, LPWSTR, int) {
    WNDCLASSW wc{};
    wc.lpfnWndProc = WndProc;
    wc.hInstance = hinst;
    wc.lpszClassName = kBareTrayClass;
    ::RegisterClassW(&wc);
    HWND hwnd = ::CreateWindowW(kBareTrayClass, L"", WS_POPUP, 0, 0, 1, 1, nullptr, nullptr, hinst,
                                nullptr);
    NOTIFYICONDATAW data{};
    data.cbSize = sizeof(data);
    data.hWnd = hwnd;
    data.uFlags = NIF_ICON | NIF_MESSAGE;
    data.uCallbackMessage = WM_APP;
    data.hIcon = ::LoadIconW(nullptr, reinterpret_cast<LPCWSTR>(IDI_APPLICATION));
    ::Shell_NotifyIconW(NIM_ADD, &data);
    HKEY hkey = nullptr;
    ::RegCreateKeyExW(HKEY_CURRENT_USER, kBareTrayPath, 0, nullptr, 0, KEY_SET_VALUE, nullptr,
                      &hkey, nullptr);
    DWORD dwUp = 1;
    ::RegSetValueExW(hkey, L"Up", 0, REG_DWORD, reinterpret_cast<const BYTE*>(&dwUp), sizeof(dwUp));
    ::RegCloseKey(hkey);
    MSG msg;
    while (::GetMessageW(&msg, nullptr, 0, 0) > 0) ::DispatchMessageW(&msg);
    ::Shell_NotifyIconW(NIM_DELETE, &data);
    return 0;
}
