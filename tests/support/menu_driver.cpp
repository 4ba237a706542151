#include "support/menu_driver.h"
#include "support/input.h"
#include "support/wait_until.h"

#include <vector>

namespace {
constexpr const wchar_t* kPopupClass = L"#32768";
/// A cursor that has stayed for 100 ms is asked of the display itself (Wine 8), and with the answer
/// come the movements that were still on their way.
constexpr DWORD kMovedMs = 150;

/// The visible popups of this process, the one in front first.
std::vector<HWND> Popups() {
    std::vector<HWND> found;
    for (HWND hwnd = nullptr; (hwnd = ::FindWindowExW(nullptr, hwnd, kPopupClass, nullptr));) {
        DWORD dwProcess = 0;
        ::GetWindowThreadProcessId(hwnd, &dwProcess);
        if (dwProcess == ::GetCurrentProcessId() && ::IsWindowVisible(hwnd)) found.push_back(hwnd);
    }
    return found;
}
} // namespace

void PutCursor(POINT pt) {
    DWORD nSince = ::GetTickCount(), nQuietMs = 20;
    PumpUntil([&] {
        POINT ptNow{};
        ::GetCursorPos(&ptNow);
        if (ptNow.x != pt.x || ptNow.y != pt.y) {
            ::SetCursorPos(pt.x, pt.y);
            nSince = ::GetTickCount();
            nQuietMs = kMovedMs;
        }
        return ::GetTickCount() - nSince > nQuietMs;
    });
}

MenuDriver::MenuDriver(HWND hwndMenuOwner, Steps fnSteps)
    : hwndOwner(hwndMenuOwner), dwMenuThread(::GetCurrentThreadId()), fn(std::move(fnSteps)) {
    // A click that closed a menu stays in the queue and would close the next one, too.
    PumpUntil([] { return ::GetAsyncKeyState(VK_LBUTTON) >= 0; });
    thread = std::thread([this] { Run(); });
}

MenuDriver::~MenuDriver() {
    bStop = true;
    if (thread.joinable()) thread.join();
}

bool MenuDriver::Finish() {
    bStop = true; // the call that shows the menu is over: none comes any more
    thread.join();
    return bDone;
}

/// A popup is to be seen a moment before the menu takes the mouse: a click in between goes to what
/// lies below it.
bool MenuDriver::IsMenuReady() const {
    GUITHREADINFO info{};
    info.cbSize = sizeof(info);
    return CountPopups() > 0 && ::GetGUIThreadInfo(dwMenuThread, &info) &&
           info.flags & GUI_INMENUMODE;
}

void MenuDriver::Run() {
    // However late it comes: without hands the test's thread would sit in it for ever.
    WaitUntil([this] { return bStop || IsMenuReady(); }, INFINITE);
    if (bStop) return;
    fn(*this);
    bDone = WaitUntil([] { return CountPopups() == 0; });
    if (!bDone) ::SendMessageW(hwndOwner, WM_CANCELMODE, 0, 0);
}

void MenuDriver::PressKey(WORD wKey) { SendKey(wKey); }

void MenuDriver::Click(POINT pt, bool bRight) {
    INPUT inputs[] = {MouseInput(bRight ? MOUSEEVENTF_RIGHTDOWN : MOUSEEVENTF_LEFTDOWN, pt),
                      MouseInput(bRight ? MOUSEEVENTF_RIGHTUP : MOUSEEVENTF_LEFTUP, pt)};
    ::SendInput(2, inputs, sizeof(INPUT));
}

POINT MenuDriver::PlaceOf(HMENU hmenu, unsigned nPos) const {
    RECT rc{};
    ::GetMenuItemRect(nullptr, hmenu, nPos, &rc); // null: the popup's own window
    return {(rc.left + rc.right) / 2, (rc.top + rc.bottom) / 2};
}

int MenuDriver::CountPopups() { return static_cast<int>(Popups().size()); }

RECT MenuDriver::FirstPopup() {
    RECT rc{};
    auto popups = Popups();
    if (!popups.empty()) ::GetWindowRect(popups.back(), &rc);
    return rc;
}
