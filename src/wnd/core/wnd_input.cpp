#include "wnd/core/wnd_input.h"

namespace {
constexpr DWORD kHoverMs = 100; // TrackMouseEvent wants one, also where nobody hovers

/// The buttons are asked for as they are, below the user's choice of a left or a right hand.
int PhysicalButton(int nButton) {
    if (!::GetSystemMetrics(SM_SWAPBUTTON)) return nButton;
    if (nButton == VK_LBUTTON) return VK_RBUTTON;
    return nButton == VK_RBUTTON ? VK_LBUTTON : nButton;
}
} // namespace

int IsKeyPressed(int nKey) { return ::GetKeyState(nKey) < 0; }

int IsKeyToggled(int nKey) { return ::GetKeyState(nKey) & 1; }

int IsMouseButtonPressed(int nButton) { return ::GetAsyncKeyState(PhysicalButton(nButton)) < 0; }

int GetCursorClientPos(HWND hwnd, POINT* ppt) {
    POINT pt;
    if (!ppt || !::GetCursorPos(&pt)) return 0;
    if (hwnd) ::MapWindowPoints(HWND_DESKTOP, hwnd, &pt, 1);
    *ppt = pt;
    return 1;
}

int CatchMouseOut(HWND hwnd) {
    TRACKMOUSEEVENT track{sizeof(track), TME_LEAVE, hwnd, kHoverMs};
    return ::TrackMouseEvent(&track);
}

MousePOINT::MousePOINT(HWND hwnd) : POINT{} { GetCursorClientPos(hwnd, this); }

CSWndEnabler::CSWndEnabler(HWND hwndTarget) : hwnd(hwndTarget) { ::EnableWindow(hwnd, FALSE); }

CSWndEnabler::~CSWndEnabler() { ::EnableWindow(hwnd, TRUE); }
