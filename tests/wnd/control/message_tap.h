#pragma once
#include <windows.h>
#include <functional>
#include <map>
#include <optional>
#include <vector>

/// Stands between a window and the objects that are tied to it later: sees what they let through,
/// and answers in the window's place where it is told to.
class MessageTap {
  public:
    struct Message {
        UINT uMsg;
        WPARAM wParam;
        LPARAM lParam;
        bool operator==(const Message&) const = default;
    };

    explicit MessageTap(HWND hwndTapped) : hwnd(hwndTapped) {
        auto pfn = reinterpret_cast<LONG_PTR>(&Proc);
        Place& place = Places()[hwnd];
        place.pTap = this;
        place.pfnBefore = reinterpret_cast<WNDPROC>(::SetWindowLongPtrW(hwnd, GWLP_WNDPROC, pfn));
    }
    ~MessageTap() {
        auto it = Places().find(hwnd);
        if (it != Places().end() && it->second.pTap == this) it->second.pTap = nullptr;
    }
    MessageTap(const MessageTap&) = delete;
    MessageTap& operator=(const MessageTap&) = delete;

    std::vector<Message> Of(UINT uMsg) const {
        std::vector<Message> found;
        for (auto& message : seen) {
            if (message.uMsg == uMsg) found.push_back(message);
        }
        return found;
    }
    int Count(UINT uMsg) const { return static_cast<int>(Of(uMsg).size()); }

    std::vector<Message> seen;
    std::function<std::optional<LRESULT>(UINT, WPARAM, LPARAM)> answer;

  private:
    struct Place {
        WNDPROC pfnBefore = nullptr;
        MessageTap* pTap = nullptr;
    };
    static std::map<HWND, Place>& Places() {
        static std::map<HWND, Place> places;
        return places;
    }
    static LRESULT CALLBACK Proc(HWND hwndMsg, UINT uMsg, WPARAM wParam, LPARAM lParam) {
        Place place = Places()[hwndMsg];
        if (uMsg == WM_NCDESTROY) Places().erase(hwndMsg);
        if (place.pTap) {
            place.pTap->seen.push_back({uMsg, wParam, lParam});
            if (place.pTap->answer) {
                if (auto result = place.pTap->answer(uMsg, wParam, lParam)) return *result;
            }
        }
        return ::CallWindowProcW(place.pfnBefore, hwndMsg, uMsg, wParam, lParam);
    }

    HWND hwnd;
};
