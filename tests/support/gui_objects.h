#pragma once
#include <windows.h>
#include <winternl.h>

// How many objects of the drawing and of the window system this process has. GetGuiResources, which
// would tell, answers 0 on the test platform.

/// Entries in use of the table of drawing objects, which the platform shows to its processes.
inline int CountGdiObjects() {
    struct Entry {
        unsigned __int64 qwObject;
        unsigned dwOwner;
        unsigned short wUnique;
        unsigned char bType;
        unsigned char bFlags;
        unsigned __int64 qwUserPointer;
    };
    constexpr int kEntries = 0x10000;
    constexpr int kTableOffset = 0xF8; // of the process's block, in 64 bits
    auto* pBlock = reinterpret_cast<const char*>(NtCurrentTeb()->ProcessEnvironmentBlock);
    auto* pTable = *reinterpret_cast<const Entry* const*>(pBlock + kTableOffset);
    if (!pTable) return -1;
    int n = 0;
    for (int i = 0; i < kEntries; ++i) n += pTable[i].bType != 0;
    return n;
}

/// Menus and top-level windows of this process. The low words of menu handles are even numbers from
/// 0x20 on, and a handle without its high word is accepted. (What icons and cursors are drawn with
/// is among the drawing objects.)
inline int CountUserObjects() {
    int n = 0;
    for (unsigned w = 0x20; w < 0x10000; w += 2) {
        if (::IsMenu(reinterpret_cast<HMENU>(static_cast<UINT_PTR>(w)))) ++n;
    }
    auto Count = [](HWND hwnd, LPARAM lCount) -> BOOL {
        DWORD dwProcess = 0;
        ::GetWindowThreadProcessId(hwnd, &dwProcess);
        if (dwProcess == ::GetCurrentProcessId()) ++*reinterpret_cast<int*>(lCount);
        return TRUE;
    };
    ::EnumWindows(Count, reinterpret_cast<LPARAM>(&n));
    return n;
}
