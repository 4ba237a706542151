#pragma once
#include "wnd/core/cswnd.h"

#include <functional>
#include <vector>

/// Sees the messages that a window object hands to the default processing, before that.
class MessageSpy : public WMHook {
  public:
    struct Seen {
        UINT uMsg;
        WPARAM wParam;
        LPARAM lParam;
    };

    explicit MessageSpy(CSWnd& wndSpied) : wnd(wndSpied) { AddToWnd(&wnd); }
    ~MessageSpy() override { RemoveFromWnd(&wnd); }

    int OnWndMessage(CSWnd*, UINT uMsg, WPARAM wParam, LPARAM lParam, LRESULT* plResult) override {
        seen.push_back({uMsg, wParam, lParam});
        if (onMessage) onMessage(uMsg);
        if (uMsg != uAnswered) return 0;
        *plResult = lAnswer;
        return 1;
    }
    int Count(UINT uMsg) const {
        int n = 0;
        for (const Seen& one : seen) n += one.uMsg == uMsg;
        return n;
    }
    /// From now on the message is answered so, without the platform.
    void Answer(UINT uMsg, LRESULT lResult) {
        uAnswered = uMsg;
        lAnswer = lResult;
    }

    std::vector<Seen> seen;
    std::function<void(UINT)> onMessage;

  private:
    CSWnd& wnd;
    UINT uAnswered = 0;
    LRESULT lAnswer = 0;
};
