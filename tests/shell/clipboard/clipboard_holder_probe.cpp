// Has the clipboard open until it is told to end: clipboard_holder_probe NAME, with events NAMEOpen
// (set when it is open) and NAMEEnd.
#include <windows.h>
#include <string>

int wmain(int nArgs, wchar_t** ppszArgs) {
    if (nArgs < 2) return 2;
    std::wstring strName = ppszArgs[1];
    HANDLE hOpen = ::OpenEventW(EVENT_MODIFY_STATE, FALSE, (strName + L"Open").c_str());
    HANDLE hEnd = ::OpenEventW(SYNCHRONIZE, FALSE, (strName + L"End").c_str());
    HWND hwnd =
        ::CreateWindowExW(0, L"STATIC", L"", 0, 0, 0, 9, 9, nullptr, nullptr, nullptr, nullptr);
    if (!hOpen || !hEnd || !hwnd) return 3;
    constexpr int kTries = 500;
    for (int n = 0; !::OpenClipboard(hwnd); ++n) {
        if (n == kTries) return 4;
        ::Sleep(10);
    }
    ::SetEvent(hOpen);
    constexpr DWORD kLongestMs = 60000;
    ::WaitForSingleObject(hEnd, kLongestMs);
    ::CloseClipboard();
    ::DestroyWindow(hwnd);
    return 0;
}
