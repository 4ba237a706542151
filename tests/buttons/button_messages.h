#pragma once
#include "buttons/call_log.h"
#include "buttons/message_spy.h"
#include "buttons/shown_button.h"

#include <gtest/gtest.h>
#include <windows.h>
#include <memory>

/// What tests of a button's messages have: the window, its object, and what that hands on and asks
/// for. And what both kinds of buttons do alike.
template <class Button>
class ButtonMessages {
  protected:
    template <class... Args>
    explicit ButtonMessages(const wchar_t* pszText, Args... args)
        : window(pszText), button(args...) {}
    void Tie() {
        ASSERT_EQ(1, button.Subclass(window));
        spy = std::make_unique<MessageSpy>(button);
        log = std::make_unique<CallLog>(window);
    }
    void Untie() {
        log.reset();
        spy.reset();
        if (button.IsReady()) button.Unsubclass();
    }
    LRESULT Send(UINT uMsg, WPARAM wParam = 0, LPARAM lParam = 0) {
        return ::SendMessageW(window, uMsg, wParam, lParam);
    }

    void ExpectTheCursorStaysWhileTheMouseIsOver() {
        HCURSOR hcurCross = ::LoadCursorW(nullptr, IDC_CROSS);
        ::SetCursor(hcurCross);
        auto wParam = reinterpret_cast<WPARAM>(static_cast<HWND>(window));
        button.bHover = 1;
        EXPECT_EQ(1, Send(WM_SETCURSOR, wParam, MAKELPARAM(HTCLIENT, WM_MOUSEMOVE)));
        EXPECT_EQ(0, spy->Count(WM_SETCURSOR)) << "no default handling";
        EXPECT_EQ(hcurCross, ::GetCursor());
        button.bHover = 0;
        Send(WM_SETCURSOR, wParam, MAKELPARAM(HTCLIENT, WM_MOUSEMOVE));
        EXPECT_EQ(1, spy->Count(WM_SETCURSOR));
        EXPECT_EQ(::LoadCursorW(nullptr, IDC_ARROW), ::GetCursor());
    }
    void ExpectDroppedFilesComeOnceAndBeforeTheDefault() {
        int nDropsBefore = -1;
        spy->onMessage = [&](UINT uMsg) {
            if (uMsg == WM_DROPFILES) nDropsBefore = button.nDrops;
        };
        Send(WM_DROPFILES);
        EXPECT_EQ(1, button.nDrops);
        EXPECT_EQ(1, nDropsBefore);
        EXPECT_EQ(1, spy->Count(WM_DROPFILES));
    }

    ShownButton window;
    Button button;
    std::unique_ptr<MessageSpy> spy;
    std::unique_ptr<CallLog> log;
};
