#pragma once
#include <windows.h>
#include <concepts>
#include <functional>
#include <optional>

/// A window class with DefWindowProcW as its procedure, registered as long as the object lives.
class TestClass {
  public:
    explicit TestClass(const wchar_t* pszNewName) : pszName(pszNewName) {
        WNDCLASSW wc{};
        wc.lpfnWndProc = ::DefWindowProcW;
        wc.hInstance = ::GetModuleHandleW(nullptr);
        wc.lpszClassName = pszName;
        ::RegisterClassW(&wc);
    }
    ~TestClass() { ::UnregisterClassW(pszName, ::GetModuleHandleW(nullptr)); }
    TestClass(const TestClass&) = delete;
    TestClass& operator=(const TestClass&) = delete;

  private:
    const wchar_t* pszName;
};

/// A hidden window of the calling thread: of a class of its own with a handler of the test's, or of
/// any registered class. Destroyed with the object unless it is gone already.
class TestWindow {
  public:
    /// What it gives no value for is DefWindowProcW's business.
    using Handler = std::function<std::optional<LRESULT>(UINT uMsg, WPARAM wParam, LPARAM lParam)>;

    explicit TestWindow(Handler fnHandler = {}, HWND hwndOwner = nullptr,
                        DWORD dwStyle = WS_OVERLAPPEDWINDOW)
        : fn(std::move(fnHandler)) {
        WNDCLASSW wc{};
        wc.lpfnWndProc = WndProc;
        wc.hInstance = ::GetModuleHandleW(nullptr);
        wc.lpszClassName = kClass;
        ::RegisterClassW(&wc); // fails from the second window on
        Create(kClass, L"test window", hwndOwner, dwStyle, 200, 100);
    }
    /// A window without title of that class, such as L"STATIC", with WS_CHILD inside the other one.
    /// (A template, so that {} stays a missing handler.)
    template <std::convertible_to<const wchar_t*> Name>
    explicit TestWindow(Name pszClass, HWND hwndParent = nullptr, DWORD dwStyle = 0) {
        Create(pszClass, L"", hwndParent, dwStyle, 400, 400);
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

    void Create(const wchar_t* pszClass, const wchar_t* pszTitle, HWND hwndParent, DWORD dwStyle,
                int cx, int cy) {
        hwnd = ::CreateWindowExW(0, pszClass, pszTitle, dwStyle, 0, 0, cx, cy, hwndParent, nullptr,
                                 ::GetModuleHandleW(nullptr), this);
    }
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
