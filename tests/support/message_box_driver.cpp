#include "support/message_box_driver.h"

#include <utility>

namespace {
constexpr const wchar_t* kBoxClass = L"#32770";
constexpr int kBoxTextId = 0xFFFF;
constexpr DWORD kPollMs = 10;
constexpr DWORD kPressAgainMs = 500; // a box that is still coming up may lose the first press
constexpr DWORD kAnswerMs = 2000;

/// Asks the window itself: of a control in another process, GetWindowText gives nothing.
std::wstring TextOf(HWND hwnd) {
    wchar_t sz[4096] = {};
    DWORD_PTR nResult = 0;
    ::SendMessageTimeoutW(hwnd, WM_GETTEXT, 4096, reinterpret_cast<LPARAM>(sz), SMTO_NORMAL,
                          kAnswerMs, &nResult);
    return sz;
}

/// Presses the button until the box has gone; false if it stays.
bool Press(HWND hwndBox, int nButton) {
    return WaitUntil([&] {
        ::PostMessageW(hwndBox, WM_COMMAND, static_cast<WPARAM>(nButton), 0);
        return WaitUntil([&] { return !::IsWindow(hwndBox); }, kPressAgainMs);
    });
}
} // namespace

HWND FindMessageBox(DWORD dwProcess, const wchar_t* pszTitle) {
    for (HWND hwnd = nullptr; (hwnd = ::FindWindowExW(nullptr, hwnd, kBoxClass, pszTitle));) {
        DWORD dwOwner = 0;
        ::GetWindowThreadProcessId(hwnd, &dwOwner);
        if (dwOwner == dwProcess && ::IsWindowVisible(hwnd)) return hwnd;
    }
    return nullptr;
}

SeenMessageBox ReadMessageBox(HWND hwndBox) {
    SeenMessageBox box;
    box.strTitle = TextOf(hwndBox);
    box.hwndOwner = ::GetWindow(hwndBox, GW_OWNER);
    box.nStyle = ::GetWindowLongPtrW(hwndBox, GWL_STYLE);
    for (HWND hwndItem = ::GetWindow(hwndBox, GW_CHILD); hwndItem;
         hwndItem = ::GetWindow(hwndItem, GW_HWNDNEXT)) {
        wchar_t szClass[32] = {};
        ::GetClassNameW(hwndItem, szClass, 32);
        bool bShown = ::GetWindowLongPtrW(hwndItem, GWL_STYLE) & WS_VISIBLE;
        int nId = ::GetDlgCtrlID(hwndItem) & 0xFFFF;
        if (nId == kBoxTextId) box.strText = TextOf(hwndItem);
        if (!::lstrcmpiW(szClass, L"Button") && bShown) box.buttons.push_back(nId);
        DWORD_PTR nIcon = 0;
        if (!::lstrcmpiW(szClass, L"Static") &&
            ::SendMessageTimeoutW(hwndItem, STM_GETICON, 0, 0, SMTO_NORMAL, kAnswerMs, &nIcon) &&
            nIcon) {
            box.hicon = reinterpret_cast<HICON>(nIcon);
            box.bHasIcon = 1;
        }
    }
    return box;
}

std::optional<SeenMessageBox> AnswerMessageBox(DWORD dwProcess, int nButton, DWORD nDeadlineMs) {
    HWND hwnd = nullptr;
    if (!WaitUntil([&] { return (hwnd = FindMessageBox(dwProcess)) != nullptr; }, nDeadlineMs))
        return {};
    SeenMessageBox box = ReadMessageBox(hwnd);
    Press(hwnd, nButton);
    return box;
}

int IsMessageBoxOpen(const wchar_t* pszTitle) {
    return FindMessageBox(::GetCurrentProcessId(), pszTitle) != nullptr;
}

MessageBoxDriver::MessageBoxDriver(std::vector<int> buttonsToPress, std::wstring strTitle)
    : buttons(std::move(buttonsToPress)), strBoxTitle(std::move(strTitle)) {
    hStop = ::CreateEventW(nullptr, TRUE, FALSE, nullptr);
    hThread = ::CreateThread(nullptr, 0, ThreadProc, this, 0, nullptr);
}

MessageBoxDriver::~MessageBoxDriver() {
    Finish();
    ::CloseHandle(hStop);
}

const std::vector<SeenMessageBox>& MessageBoxDriver::Finish() {
    if (hThread) {
        ::SetEvent(hStop);
        ::WaitForSingleObject(hThread, INFINITE);
        ::CloseHandle(std::exchange(hThread, nullptr));
    }
    return seen;
}

DWORD WINAPI MessageBoxDriver::ThreadProc(void* pDriver) {
    static_cast<MessageBoxDriver*>(pDriver)->Run();
    return 0;
}

void MessageBoxDriver::Run() {
    const wchar_t* pszTitle = strBoxTitle.empty() ? nullptr : strBoxTitle.c_str();
    for (int nButton : buttons) {
        HWND hwnd = nullptr;
        // However late it comes: unanswered, the test's thread would sit in it for ever.
        while (!(hwnd = FindMessageBox(::GetCurrentProcessId(), pszTitle)))
            if (::WaitForSingleObject(hStop, kPollMs) == WAIT_OBJECT_0) return;
        seen.push_back(ReadMessageBox(hwnd));
        if (!Press(hwnd, nButton)) return;
    }
}
