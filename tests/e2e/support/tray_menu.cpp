#include "e2e/support/tray_menu.h"
#include "support/wait_until.h"

#include <stdexcept>
#include <string>

namespace {
constexpr const wchar_t* kMenuClass = L"#32768";

DWORD ProcessOf(HWND hwnd) {
    DWORD dwProcess = 0;
    ::GetWindowThreadProcessId(hwnd, &dwProcess);
    return dwProcess;
}

HWND NextWindow(HWND hwndAfter, const wchar_t* pszClass, DWORD dwProcess) {
    HWND hwnd = hwndAfter;
    while ((hwnd = ::FindWindowExW(nullptr, hwnd, pszClass, nullptr))) {
        if (ProcessOf(hwnd) == dwProcess && ::IsWindowVisible(hwnd)) return hwnd;
    }
    return nullptr;
}

RECT TaskbarPlace() {
    RECT rc{};
    if (!::GetWindowRect(::FindWindowW(L"Shell_TrayWnd", nullptr), &rc))
        throw std::runtime_error("there is no taskbar");
    return rc;
}

/// A row of a menu is as high as the menu's font with a little more; this lies in the outermost.
constexpr int kIntoRow = 10;
} // namespace

POINT TrayMenu::Icon() {
    // The test platform does not tell where an icon is: the first one lies at the right end.
    RECT rc = TaskbarPlace();
    return {rc.right - ::GetSystemMetrics(SM_CXSMICON) * 2 / 3, (rc.top + rc.bottom) / 2};
}

bool TrayMenu::WaitForBalloon() {
    DWORD dwShell = ProcessOf(::FindWindowW(L"Shell_TrayWnd", nullptr));
    return WaitUntil([&] { return NextWindow(nullptr, L"tooltips_class32", dwShell) != nullptr; });
}

int TrayMenu::CountOpen() const {
    int nCount = 0;
    for (HWND hwnd = nullptr; (hwnd = NextWindow(hwnd, kMenuClass, dwProcess));) ++nCount;
    return nCount;
}

void TrayMenu::WaitForOpen(int nCount) const {
    if (!WaitUntil([&] { return CountOpen() == nCount; }))
        throw std::runtime_error(std::to_string(CountOpen()) +
                                 " popups of the menu are open, not " + std::to_string(nCount));
}

void TrayMenu::Open(mouse::Button button) const {
    mouse::Click(Icon(), button);
    WaitForOpen(1);
    mouse::MoveTo(FirstRow()); // the display's keys go to what lies below the pointer
}

void TrayMenu::Press(const std::vector<keyboard::Key>& keys, int nOpenAfter) const {
    keyboard::PressOnDisplay(keys);
    WaitForOpen(nOpenAfter);
}

RECT TrayMenu::Place() const {
    RECT rc{};
    ::GetWindowRect(NextWindow(nullptr, kMenuClass, dwProcess), &rc);
    return rc;
}

void TrayMenu::Click(POINT pt) const {
    mouse::Click(pt);
    WaitForOpen(0);
}

POINT TrayMenu::FirstRow() const {
    RECT rc = Place();
    return {(rc.left + rc.right) / 2, rc.top + kIntoRow};
}

void TrayMenu::ClickFirst() const { Click(FirstRow()); }

void TrayMenu::ClickLast() const {
    RECT rc = Place();
    Click({(rc.left + rc.right) / 2, rc.bottom - kIntoRow});
}
