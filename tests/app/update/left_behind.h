#pragma once
#include <windows.h>
#include <tlhelp32.h>

// What this process has in use of the system's objects: for tests that nothing is left.

/// The threads of this process.
inline int CountThreads() {
    int n = 0;
    HANDLE h = ::CreateToolhelp32Snapshot(TH32CS_SNAPTHREAD, 0);
    THREADENTRY32 entry{};
    entry.dwSize = sizeof(entry);
    for (BOOL b = ::Thread32First(h, &entry); b; b = ::Thread32Next(h, &entry))
        n += entry.th32OwnerProcessID == ::GetCurrentProcessId();
    ::CloseHandle(h);
    return n;
}

/// The open handles of this process, of the first few thousand numbers. (The platform's own count
/// is 0 on the test platform.)
inline int CountHandles() {
    constexpr ULONG_PTR kStep = 4, kLast = 0x4000;
    int n = 0;
    DWORD dwFlags = 0;
    for (ULONG_PTR nHandle = kStep; nHandle < kLast; nHandle += kStep)
        n += ::GetHandleInformation(reinterpret_cast<HANDLE>(nHandle), &dwFlags) != 0;
    return n;
}
