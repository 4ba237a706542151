#include "icons/monitor/desktop_discovery.h"

namespace {
/// Windows that come and go while the walk is on could send it in circles.
constexpr int kMaxWindows = 100000;

HWND GetLowestWindow() {
    HWND hwndFirst = ::GetWindow(::GetDesktopWindow(), GW_CHILD);
    return hwndFirst ? ::GetWindow(hwndFirst, GW_HWNDLAST) : nullptr;
}

/// A window that goes while the walk stands on it has none above it: the walk then ends too early,
/// which is as rare as that. So nothing is believed to be missing before so many walks.
constexpr int kMaxWalks = 5;

int WalkUp(HWND* phwndView, HWND* phwndListView) {
    HWND hwnd = ::FindWindowW(L"Progman", nullptr);
    if (!hwnd) hwnd = GetLowestWindow();
    for (int n = 0; hwnd && n < kMaxWindows; ++n, hwnd = ::GetWindow(hwnd, GW_HWNDPREV)) {
        HWND hwndView = ::FindWindowExW(hwnd, nullptr, L"SHELLDLL_DefView", nullptr);
        if (!hwndView) continue;
        HWND hwndListView = ::FindWindowExW(hwndView, nullptr, L"SysListView32", nullptr);
        if (!hwndListView) continue;
        *phwndView = hwndView;
        *phwndListView = hwndListView;
        return 1;
    }
    return 0;
}
} // namespace

int FindDesktopShellWnd(HWND* phwndView, HWND* phwndListView) {
    if (!phwndView || !phwndListView) return 0;
    for (int n = 0; n < kMaxWalks; ++n) {
        if (WalkUp(phwndView, phwndListView)) return 1;
    }
    return 0;
}
