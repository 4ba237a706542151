#include "icons/monitor/desktop_discovery.h"

namespace {
/// Windows that come and go while the walk is on could send it in circles.
constexpr int kMaxWindows = 100000;

/// A window that goes while the walk stands on it has none above it any more, so that the walk ends
/// too early. That is rare: several walks in a row that find nothing mean that nothing is there.
constexpr int kMaxWalks = 5;

HWND GetLowestWindow() {
    HWND hwndFirst = ::GetWindow(::GetDesktopWindow(), GW_CHILD);
    return hwndFirst ? ::GetWindow(hwndFirst, GW_HWNDLAST) : nullptr;
}

bool WalkUp(HWND* phwndView, HWND* phwndListView) {
    HWND hwnd = ::FindWindowW(L"Progman", nullptr);
    if (!hwnd) hwnd = GetLowestWindow();
    for (int n = 0; hwnd && n < kMaxWindows; ++n, hwnd = ::GetWindow(hwnd, GW_HWNDPREV)) {
        HWND hwndView = ::FindWindowExW(hwnd, nullptr, L"SHELLDLL_DefView", nullptr);
        if (!hwndView) continue;
        HWND hwndListView = ::FindWindowExW(hwndView, nullptr, L"SysListView32", nullptr);
        if (!hwndListView) continue;
        *phwndView = hwndView;
        *phwndListView = hwndListView;
        return true;
    }
    return false;
}
} // namespace

int FindDesktopShellWnd(HWND* phwndView, HWND* phwndListView) {
    if (!phwndView || !phwndListView) return 0;
    for (int n = 0; n < kMaxWalks; ++n) {
        if (WalkUp(phwndView, phwndListView)) return 1;
    }
    return 0;
}
