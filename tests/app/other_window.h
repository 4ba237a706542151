#pragma once
#include "support/wait_until.h"
#include "support/window_thread.h"

#include <gtest/gtest.h>
#include <windows.h>
#include <chrono>
#include <functional>
#include <optional>

/// A visible top-level window of any class on a thread of its own, as of another program; messages
/// go to the test's handler first. Destroyed with the object unless it is gone already.
class OtherWindow {
  public:
    using Handler =
        std::function<std::optional<LRESULT>(HWND hwnd, UINT uMsg, WPARAM wParam, LPARAM lParam)>;
    static constexpr const wchar_t* kClass = L"OtherWindow";
    static constexpr const wchar_t* kDialogClass = L"#32770";

    explicit OtherWindow(Handler fnHandler = {}, const wchar_t* pszClass = kClass,
                         const wchar_t* pszTitle = L"other window", DWORD dwStyle = 0)
        : fn(std::move(fnHandler)) {
        thread.Run([&] {
            WNDCLASSW wc{};
            wc.lpfnWndProc = ::DefWindowProcW;
            wc.hInstance = ::GetModuleHandleW(nullptr);
            wc.lpszClassName = kClass;
            ::RegisterClassW(&wc); // fails from the second window on
            hwnd =
                ::CreateWindowExW(0, pszClass, pszTitle, WS_OVERLAPPEDWINDOW | WS_VISIBLE | dwStyle,
                                  20, 20, 200, 100, nullptr, nullptr, wc.hInstance, nullptr);
            Listen(hwnd);
        });
    }
    ~OtherWindow() {
        Resume();
        thread.Run([this] {
            if (::IsWindow(hwndOwned)) ::DestroyWindow(hwndOwned);
            if (::IsWindow(hwnd)) ::DestroyWindow(hwnd);
        });
        if (hResume) ::CloseHandle(hResume);
    }
    OtherWindow(const OtherWindow&) = delete;
    OtherWindow& operator=(const OtherWindow&) = delete;

    operator HWND() const { return hwnd; }
    /// One more window on the same thread: one that the first owns, or with WS_CHILD a child.
    HWND MakeOwned(DWORD dwStyle = WS_POPUP | WS_CAPTION | WS_VISIBLE) {
        thread.Run([&] {
            hwndOwned = ::CreateWindowExW(0, kClass, L"owned", dwStyle, 40, 40, 100, 50, hwnd,
                                          nullptr, ::GetModuleHandleW(nullptr), nullptr);
        });
        return hwndOwned;
    }
    /// Hands the messages of the second window to the handler too.
    void ListenToOwned() {
        thread.Run([this] { Listen(hwndOwned); });
    }
    /// The thread no longer looks at its messages until Resume.
    void Hang() {
        hResume = ::CreateEventW(nullptr, TRUE, FALSE, nullptr);
        thread.Post([this] {
            bHangs = true;
            ::WaitForSingleObject(hResume, INFINITE);
        });
        WaitUntil([this] { return bHangs.load(); });
    }
    void Resume() {
        if (hResume) ::SetEvent(hResume);
    }
    void Minimise() {
        thread.Run([this] { ::ShowWindow(hwnd, SW_MINIMIZE); });
    }
    WindowThread& Thread() { return thread; }

  private:
    void Listen(HWND hwndListened) {
        ::SetPropW(hwndListened, kProperty, this);
        pfnBefore = reinterpret_cast<WNDPROC>(
            ::SetWindowLongPtrW(hwndListened, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(&WndProc)));
    }
    static LRESULT CALLBACK WndProc(HWND hwndMsg, UINT uMsg, WPARAM wParam, LPARAM lParam) {
        auto* pThis = static_cast<OtherWindow*>(::GetPropW(hwndMsg, kProperty));
        if (!pThis) return ::DefWindowProcW(hwndMsg, uMsg, wParam, lParam);
        if (uMsg == WM_NCDESTROY) ::RemovePropW(hwndMsg, kProperty);
        if (pThis->fn) {
            if (auto result = pThis->fn(hwndMsg, uMsg, wParam, lParam)) return *result;
        }
        return ::CallWindowProcW(pThis->pfnBefore, hwndMsg, uMsg, wParam, lParam);
    }
    static constexpr const wchar_t* kProperty = L"OtherWindowTest";

    Handler fn;
    WNDPROC pfnBefore = nullptr;
    HWND hwnd = nullptr, hwndOwned = nullptr;
    HANDLE hResume = nullptr;
    std::atomic<bool> bHangs{false};
    WindowThread thread;
};

/// Whether the window is in front, or comes there.
inline bool HasForeground(HWND hwnd) {
    return WaitUntil([=] { return ::GetForegroundWindow() == hwnd; });
}
inline void GiveForeground(HWND hwnd) {
    ::SetForegroundWindow(hwnd);
    ASSERT_TRUE(HasForeground(hwnd));
}

/// How long fn runs: for what asks windows that hang.
template <class Fn>
double Seconds(Fn fn) {
    auto start = std::chrono::steady_clock::now();
    fn();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}
