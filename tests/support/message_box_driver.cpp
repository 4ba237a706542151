#include "support/message_box_driver.h"
#include "support/wait_until.h"

#include <utility>

namespace {
constexpr const wchar_t* kBoxClass = L"#32770";
constexpr int kBoxTextId = 0xFFFF;
constexpr DWORD kPollMs = 10;

HWND FindBoxAfter(HWND hwndAfter, const wchar_t* pszTitle) {
    for (HWND hwnd = hwndAfter; (hwnd = ::FindWindowExW(nullptr, hwnd, kBoxClass, pszTitle));) {
        DWORD nProcess = 0;
        ::GetWindowThreadProcessId(hwnd, &nProcess);
        if (nProcess == ::GetCurrentProcessId() && ::IsWindowVisible(hwnd)) return hwnd;
    }
    return nullptr;
}

std::wstring TextOf(HWND hwnd) {
    wchar_t sz[4096] = {};
    ::GetWindowTextW(hwnd, sz, 4096);
    return sz;
}

SeenMessageBox Read(HWND hwnd) {
    SeenMessageBox box;
    box.strTitle = TextOf(hwnd);
    box.hwndOwner = ::GetWindow(hwnd, GW_OWNER);
    box.nStyle = ::GetWindowLongPtrW(hwnd, GWL_STYLE);
    for (HWND hwndItem = ::GetWindow(hwnd, GW_CHILD); hwndItem;
         hwndItem = ::GetWindow(hwndItem, GW_HWNDNEXT)) {
        wchar_t szClass[32] = {};
        ::GetClassNameW(hwndItem, szClass, 32);
        bool bShown = ::GetWindowLongPtrW(hwndItem, GWL_STYLE) & WS_VISIBLE;
        int nId = ::GetDlgCtrlID(hwndItem) & 0xFFFF;
        if (nId == kBoxTextId) box.strText = TextOf(hwndItem);
        if (!::lstrcmpiW(szClass, L"Button") && bShown) box.buttons.push_back(nId);
        if (::lstrcmpiW(szClass, L"Static")) continue;
        auto hicon = reinterpret_cast<HICON>(::SendMessageW(hwndItem, STM_GETICON, 0, 0));
        if (!hicon) continue;
        box.hicon = hicon;
        box.bHasIcon = 1;
    }
    return box;
}
} // namespace

int IsMessageBoxOpen(const wchar_t* pszTitle) { return FindBoxAfter(nullptr, pszTitle) != nullptr; }

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

HWND MessageBoxDriver::FindBox() const { return FindBoxAfter(nullptr, strBoxTitle.c_str()); }

void MessageBoxDriver::Run() {
    for (int nButton : buttons) {
        HWND hwnd = nullptr;
        // However late it comes: unanswered, the test's thread would sit in it for ever.
        while (!(hwnd = FindBox()))
            if (::WaitForSingleObject(hStop, kPollMs) == WAIT_OBJECT_0) return;
        DWORD nStart = ::GetTickCount();
        seen.push_back(Read(hwnd));
        // Again and again: a box that is still coming up may lose the first.
        while (::IsWindow(hwnd)) {
            ::PostMessageW(hwnd, WM_COMMAND, static_cast<WPARAM>(nButton), 0);
            if (!WaitUntil([&] { return !::IsWindow(hwnd); }, 500) &&
                ::GetTickCount() - nStart > kTestDeadlineMs)
                return;
        }
    }
}
