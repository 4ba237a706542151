#include "wnd/core/wnd_input.h"
#include "support/input.h"
#include "support/replace_import.h"
#include "support/test_window.h"
#include "support/wait_until.h"
#include "wnd/wnd_probe.h"

#include <gtest/gtest.h>
#include <optional>
#include <vector>

extern "C" FARPROC __imp_GetAsyncKeyState, __imp_GetSystemMetrics, __imp_GetCursorPos;
extern "C" FARPROC __imp_TrackMouseEvent;

namespace {
// Keys

/// The thread's keys as a test wants them.
struct KeyStates {
    KeyStates() { ::GetKeyboardState(before); }
    ~KeyStates() { ::SetKeyboardState(before); }
    void Set(int nKey, BYTE bState) {
        BYTE states[256];
        ::GetKeyboardState(states);
        states[nKey] = bState;
        ::SetKeyboardState(states);
    }
    BYTE before[256];
};

TEST(KeyState, PressedAndToggledAreTwoBits) {
    KeyStates keys;
    struct Row {
        BYTE bState;
        int bPressed, bToggled;
    };
    for (int nKey : {VK_CAPITAL, VK_SHIFT, static_cast<int>('A'), 0xFE}) {
        for (Row row : {Row{0x00, 0, 0}, Row{0x80, 1, 0}, Row{0x01, 0, 1}, Row{0x81, 1, 1}}) {
            keys.Set(nKey, row.bState);
            EXPECT_EQ(row.bPressed, IsKeyPressed(nKey)) << nKey << " " << int(row.bState);
            EXPECT_EQ(row.bToggled, IsKeyToggled(nKey)) << nKey << " " << int(row.bState);
        }
    }
}

TEST(KeyState, KeyThatIsNoneIsNeither) {
    for (int nKey : {0, 256, -1}) {
        EXPECT_EQ(0, IsKeyPressed(nKey)) << nKey;
        EXPECT_EQ(0, IsKeyToggled(nKey)) << nKey;
    }
}

// Buttons

std::vector<int> asked;
int nDown = 0; // the button that is down
int bSwapped = 0;
SHORT WINAPI TellAsyncKeyState(int nKey) {
    asked.push_back(nKey);
    return nKey == nDown ? static_cast<SHORT>(0x8000) : 1; // pressed since the last question
}
int WINAPI TellMetrics(int nIndex) { return nIndex == 23 ? bSwapped : 0; }

struct MouseButtons : testing::Test {
    MouseButtons() {
        asked.clear();
        nDown = bSwapped = 0;
    }
    ReplaceImport state{__imp_GetAsyncKeyState, &TellAsyncKeyState};
    ReplaceImport metrics{__imp_GetSystemMetrics, &TellMetrics};
};

TEST_F(MouseButtons, AreAskedForAsTheUserHasSwappedThem) {
    struct Row {
        int bSwapped, nButton, nAsked;
    };
    for (Row row : {Row{0, 1, 1}, Row{0, 2, 2}, Row{0, 4, 4}, Row{1, 1, 2}, Row{1, 2, 1},
                    Row{1, 4, 4}, Row{1, 5, 5}, Row{1, 3, 3}, Row{-1, 1, 2}}) {
        asked.clear();
        bSwapped = row.bSwapped;
        nDown = row.nAsked;
        EXPECT_EQ(1, IsMouseButtonPressed(row.nButton)) << row.bSwapped << " " << row.nButton;
        EXPECT_EQ(std::vector<int>{row.nAsked}, asked);
        nDown = 0;
        EXPECT_EQ(0, IsMouseButtonPressed(row.nButton)) << "only that it was down once";
    }
}

TEST(IsMouseButtonPressed, TellsOfTheRealMouse) {
    // A window of the test's takes the click. Button and movement in one input, over the window.
    TestWindow window({}, nullptr, WS_POPUP);
    ::SetWindowPos(window, HWND_TOPMOST, 300, 300, 100, 100, SWP_SHOWWINDOW | SWP_NOACTIVATE);
    POINT pt{350, 350};
    INPUT input = MouseInput(MOUSEEVENTF_MIDDLEDOWN, pt);
    EXPECT_EQ(0, IsMouseButtonPressed(VK_MBUTTON));
    ASSERT_EQ(1u, ::SendInput(1, &input, sizeof(input)));
    EXPECT_TRUE(PumpUntil([] { return IsMouseButtonPressed(VK_MBUTTON) == 1; }));
    input = MouseInput(MOUSEEVENTF_MIDDLEUP, pt);
    ASSERT_EQ(1u, ::SendInput(1, &input, sizeof(input)));
    EXPECT_TRUE(PumpUntil([] { return IsMouseButtonPressed(VK_MBUTTON) == 0; }));
}

// The cursor

std::optional<POINT> ptTold; // none: it can't be read
BOOL WINAPI TellCursor(POINT* ppt) {
    if (!ptTold) return FALSE;
    *ppt = *ptTold;
    return TRUE;
}

struct CursorPos : testing::Test {
    CursorPos() { ptTold = POINT{500, 400}; }
    TestWindow window{{}, nullptr, WS_POPUP | WS_BORDER};
    TestWindow child{L"STATIC", window, WS_CHILD};
    ReplaceImport replaced{__imp_GetCursorPos, &TellCursor};
};

TEST_F(CursorPos, IsInTheWindowsClientPixels) {
    ::SetWindowPos(window, nullptr, 120, 130, 200, 200, SWP_NOZORDER | SWP_NOACTIVATE);
    ::SetWindowPos(child, nullptr, 7, 9, 20, 20, SWP_NOZORDER);
    POINT pt{};
    EXPECT_EQ(1, GetCursorClientPos(window, &pt));
    EXPECT_EQ(500 - 121, pt.x);
    EXPECT_EQ(400 - 131, pt.y);
    EXPECT_EQ(1, GetCursorClientPos(child, &pt));
    EXPECT_EQ(500 - 121 - 7, pt.x);
    EXPECT_EQ(400 - 131 - 9, pt.y);
    MousePOINT mouse(child);
    EXPECT_EQ(pt.x, mouse.x);
    EXPECT_EQ(pt.y, mouse.y);
}

TEST_F(CursorPos, IsTheScreensWithoutAWindow) {
    POINT pt{};
    EXPECT_EQ(1, GetCursorClientPos(nullptr, &pt));
    EXPECT_EQ(500, pt.x);
    EXPECT_EQ(400, pt.y);
    MousePOINT mouse(nullptr);
    EXPECT_EQ(500, mouse.x);
    EXPECT_EQ(400, mouse.y);
}

TEST_F(CursorPos, ThatCannotBeReadGivesZeroAndLeavesThePoint) {
    ptTold.reset();
    POINT pt{11, 12};
    EXPECT_EQ(0, GetCursorClientPos(window, &pt));
    EXPECT_EQ(11, pt.x);
    EXPECT_EQ(12, pt.y);
    MousePOINT mouse(window);
    EXPECT_EQ(0, mouse.x);
    EXPECT_EQ(0, mouse.y);
}

TEST_F(CursorPos, NullPointGivesZero) { EXPECT_EQ(0, GetCursorClientPos(window, nullptr)); }

TEST(MousePOINT, IsWhereThePlatformHasTheCursor) {
    PlainWnd plain;
    POINT pt{};
    ASSERT_TRUE(::GetCursorPos(&pt));
    MousePOINT onScreen(nullptr);
    EXPECT_EQ(pt.x, onScreen.x);
    EXPECT_EQ(pt.y, onScreen.y);
    ::ScreenToClient(plain, &pt);
    MousePOINT inWindow(plain);
    EXPECT_EQ(pt.x, inWindow.x);
    EXPECT_EQ(pt.y, inWindow.y);
    POINT& asPoint = inWindow; // it is one
    EXPECT_EQ(pt.x, asPoint.x);
}

// Leaving

std::optional<TRACKMOUSEEVENT> tracked;
BOOL bTrackResult = TRUE;
BOOL WINAPI NoteTrack(TRACKMOUSEEVENT* pTrack) {
    tracked = *pTrack;
    return bTrackResult;
}

TEST(CatchMouseOut, AsksForTheLeaveAlone) {
    ReplaceImport replaced(__imp_TrackMouseEvent, &NoteTrack);
    PlainWnd plain;
    for (BOOL bResult : {TRUE, FALSE}) {
        bTrackResult = bResult;
        EXPECT_EQ(bResult, CatchMouseOut(plain));
        ASSERT_TRUE(tracked);
        EXPECT_EQ(24u, tracked->cbSize);
        EXPECT_EQ(2u, tracked->dwFlags);
        EXPECT_EQ(plain, tracked->hwndTrack);
        EXPECT_EQ(100u, tracked->dwHoverTime);
    }
}

TEST(CatchMouseOut, WindowHearsWhenTheMouseLeavesIt) {
    int nLeaves = 0, nMoves = 0;
    TestWindow window(
        [&](UINT uMsg, WPARAM, LPARAM) -> std::optional<LRESULT> {
            nLeaves += uMsg == WM_MOUSELEAVE;
            nMoves += uMsg == WM_MOUSEMOVE;
            return {};
        },
        nullptr, WS_POPUP);
    ::SetWindowPos(window, HWND_TOPMOST, 300, 300, 100, 100, SWP_SHOWWINDOW | SWP_NOACTIVATE);
    auto MoveTo = [](POINT pt) {
        INPUT input = MouseInput(0, pt);
        ASSERT_EQ(1u, ::SendInput(1, &input, sizeof(input)));
    };
    MoveTo({350, 350});
    ASSERT_TRUE(PumpUntil([&] { return nMoves > 0; }));
    EXPECT_NE(0, CatchMouseOut(window));
    EXPECT_EQ(0, nLeaves);
    MoveTo({500, 500});
    EXPECT_TRUE(PumpUntil([&] { return nLeaves > 0; }));
    EXPECT_EQ(0, CatchMouseOut(DeadWindow()));
}

// Disabling

TEST(CSWndEnabler, DisablesForTheLengthOfABlock) {
    PlainWnd plain;
    ASSERT_TRUE(::IsWindowEnabled(plain));
    {
        CSWndEnabler disabled(plain);
        EXPECT_FALSE(::IsWindowEnabled(plain));
    }
    EXPECT_TRUE(::IsWindowEnabled(plain));
}

TEST(CSWndEnabler, EnablesInTheEndWhatWasDisabledBefore) {
    PlainWnd plain;
    ::EnableWindow(plain, FALSE);
    { CSWndEnabler disabled(plain); }
    EXPECT_TRUE(::IsWindowEnabled(plain));
}

TEST(CSWndEnabler, InnerOneEnablesTooEarlyForTheOuterOne) {
    PlainWnd plain;
    CSWndEnabler outer(plain);
    { CSWndEnabler inner(plain); }
    EXPECT_TRUE(::IsWindowEnabled(plain));
}

TEST(CSWndEnabler, WindowThatGoesMeanwhileOrNeverWasIsNoMatter) {
    {
        TestWindow window;
        CSWndEnabler disabled(window);
        window.Destroy();
    }
    { CSWndEnabler disabled(nullptr); }
    { CSWndEnabler disabled(DeadWindow()); }
}
} // namespace
