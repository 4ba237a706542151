#pragma once
#include <windows.h>
#include <functional>
#include <optional>

/// A hidden window with a handler of the test's own; no value from the handler is DefWindowProcW's
/// business. Destroyed with the object unless it is gone already.
class TestWindow {
  public:
    using Handler = std::function<std::optional<LRESULT>(UINT uMsg, WPARAM wParam, LPARAM lParam)>;

    explicit TestWindow(Handler fnHandler = {}, HWND hwndOwner = nullptr,
                        DWORD dwStyle = WS_OVERLAPPEDWINDOW)
        : fn(std::move(fnHandler)) {
        WNDCLASSW wc{};
        wc.lpfnWndProc = WndProc;
        wc.hInstance = ::GetModuleHandleW(nullptr);
        wc.lpszClassName = kClass;
        ::RegisterClassW(&wc); // fails from the second window on
        hwnd = ::CreateWindowExW(0, kClass, L"test window", dwStyle, 0, 0, 200, 100, hwndOwner,
                                 nullptr, wc.hInstance, this);
    }
    ~TestWindow() { Destroy(); }
    TestWindow(const TestWindow&) = delete;
    TestWindow& operator=(const TestWindow&) = delete;

    HWND Get() const { return hwnd; }
    operator HWND() const { return hwnd; }
    void Destroy() {
        if (hwnd) ::DestroyWindow(hwnd);
        hwnd = nullptr;
    }

  private:
    static constexpr const wchar_t* kClass = L"TestWindow";

    static LRESULT CALLBACK WndProc(HWND hwndMsg, UINT uMsg, WPARAM wParam, LPARAM lParam) {
        if (uMsg == WM_NCCREATE) {
            auto* pCreate = reinterpret_cast<CREATESTRUCTW*>(lParam);
            ::SetWindowLongPtrW(hwndMsg, GWLP_USERDATA,
                                reinterpret_cast<LONG_PTR>(pCreate->lpCreateParams));
        }
        auto* pThis = reinterpret_cast<TestWindow*>(::GetWindowLongPtrW(hwndMsg, GWLP_USERDATA));
        if (pThis && pThis->fn) {
            if (auto result = pThis->fn(uMsg, wParam, lParam)) return *result;
        }
        return ::DefWindowProcW(hwndMsg, uMsg, wParam, lParam);
    }

    Handler fn;
    HWND hwnd = nullptr;
};
