#pragma once
#include <windows.h>
#include <string>

/// CreateProcessW, asked again while it fails with ERROR_INTERNAL_ERROR: under load the test
/// platform now and then makes a process that ends before it has begun, and says it like that.
template <class... Args>
BOOL StartProcessSurely(Args... args) {
    constexpr int kTries = 6;
    for (int n = 1;; ++n) {
        if (::CreateProcessW(args...)) return TRUE;
        if (::GetLastError() != ERROR_INTERNAL_ERROR || n == kTries) return FALSE;
    }
}

/// Runs a program with that command line to its end, for half a minute at most; whether it gave 0.
inline bool RunToEnd(std::wstring strLine) {
    constexpr DWORD kLongestMs = 30000;
    STARTUPINFOW si{};
    si.cb = sizeof(si);
    PROCESS_INFORMATION pi{};
    if (!StartProcessSurely(nullptr, strLine.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr,
                            &si, &pi)) {
        return false;
    }
    DWORD dwExit = STILL_ACTIVE;
    ::WaitForSingleObject(pi.hProcess, kLongestMs);
    ::GetExitCodeProcess(pi.hProcess, &dwExit);
    ::CloseHandle(pi.hThread);
    ::CloseHandle(pi.hProcess);
    return dwExit == 0;
}
