#pragma once
#include <windows.h>
#include <shellapi.h>
#include <cstring>
#include <set>
#include <string>
#include <utility>
#include <vector>

/// Stands in for the taskbar's window, above it, so that it gets what is asked of the notification
/// area: the platform hands Shell_NotifyIconW's calls over as WM_COPYDATA. Answers as the real one
/// does. Of the thread that makes it, which has to dispatch messages for callers of other threads.
class FakeTray {
  public:
    struct Call {
        DWORD dwMessage; // NIM_
        HWND hwnd;
        UINT uId, uFlags, uCallbackMsg;
        std::wstring strTip, strInfo, strInfoTitle;
        UINT uTimeout;
        DWORD dwInfoFlags;
        UINT cxIcon, cyIcon; // 0 unless NIF_ICON came with an icon
        std::vector<BYTE> iconBits;
    };

    FakeTray() {
        WNDCLASSW wc{};
        wc.lpfnWndProc = &Proc;
        wc.hInstance = ::GetModuleHandleW(nullptr);
        wc.lpszClassName = kClass;
        ::RegisterClassW(&wc);
        hwnd = ::CreateWindowExW(WS_EX_TOPMOST | WS_EX_TOOLWINDOW, kClass, L"", WS_POPUP, 0, 0, 1,
                                 1, nullptr, nullptr, wc.hInstance, nullptr);
        ::SetWindowLongPtrW(hwnd, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
        ::SetWindowPos(hwnd, HWND_TOPMOST, 0, 0, 0, 0,
                       SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE | SWP_NOSENDCHANGING);
    }
    ~FakeTray() {
        ::DestroyWindow(hwnd);
        ::UnregisterClassW(kClass, ::GetModuleHandleW(nullptr));
    }
    FakeTray(const FakeTray&) = delete;
    FakeTray& operator=(const FakeTray&) = delete;

    /// Whether the calls come here.
    bool IsInFront() const { return ::FindWindowW(kClass, nullptr) == hwnd; }
    /// From now on every call fails, or no longer does.
    void Refuse(bool bNew) { bRefuses = bNew; }
    /// As a shell that has just started: knows of no icon.
    void Restart() { icons.clear(); }
    /// The calls since the last time, which are then forgotten, as "add", "modify", "delete",
    /// "focus" or a number, divided by blanks.
    std::string TakeNames() {
        std::string str;
        for (const Call& call : std::exchange(calls, {})) {
            if (!str.empty()) str += ' ';
            str += NameOf(call.dwMessage);
        }
        return str;
    }
    /// How many icons are in.
    std::size_t CountIcons() const { return icons.size(); }

    std::vector<Call> calls;

  private:
    static constexpr const wchar_t* kClass = L"Shell_TrayWnd";

    /// The platform's own form of the data, before the pixels of mask and colour (Wine 8).
    struct Data {
        LONG hwnd;
        UINT uId, uFlags, uCallbackMsg;
        WCHAR szTip[128];
        DWORD dwState, dwStateMask;
        WCHAR szInfo[256];
        UINT uTimeout;
        WCHAR szInfoTitle[64];
        DWORD dwInfoFlags;
        GUID guid;
        UINT cx, cy, nPlanes, nBitsPerPixel;
    };

    static std::string NameOf(DWORD dwMessage) {
        switch (dwMessage) {
        case NIM_ADD: return "add";
        case NIM_MODIFY: return "modify";
        case NIM_DELETE: return "delete";
        case NIM_SETFOCUS: return "focus";
        }
        return std::to_string(dwMessage);
    }

    static LRESULT CALLBACK Proc(HWND hwnd, UINT uMsg, WPARAM wParam, LPARAM lParam) {
        auto* pThis = reinterpret_cast<FakeTray*>(::GetWindowLongPtrW(hwnd, GWLP_USERDATA));
        if (uMsg == WM_COPYDATA && pThis)
            return pThis->OnCall(*reinterpret_cast<const COPYDATASTRUCT*>(lParam));
        return ::DefWindowProcW(hwnd, uMsg, wParam, lParam);
    }

    LRESULT OnCall(const COPYDATASTRUCT& copied) {
        Data data{};
        if (copied.cbData < sizeof(data)) return 0;
        std::memcpy(&data, copied.lpData, sizeof(data));
        HWND hwndIcon = reinterpret_cast<HWND>(static_cast<LONG_PTR>(data.hwnd));
        auto* pBits = static_cast<const BYTE*>(copied.lpData);
        calls.push_back({static_cast<DWORD>(copied.dwData), hwndIcon, data.uId, data.uFlags,
                         data.uCallbackMsg, data.szTip, data.szInfo, data.szInfoTitle,
                         data.uTimeout, data.dwInfoFlags, data.cx, data.cy,
                         std::vector<BYTE>(pBits + sizeof(data), pBits + copied.cbData)});
        std::pair<HWND, UINT> key(hwndIcon, data.uId);
        if (bRefuses) return 0;
        switch (copied.dwData) {
        case NIM_ADD: return icons.insert(key).second;
        case NIM_MODIFY: return icons.count(key) != 0;
        case NIM_DELETE: return icons.erase(key) != 0;
        }
        return 0;
    }

    HWND hwnd = nullptr;
    bool bRefuses = false;
    std::set<std::pair<HWND, UINT>> icons;
};
