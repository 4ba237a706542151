// What tests/setup/setup_test.py asks of the platform: setup_probe.exe hold FILE, window
// CLASS (0: there is one), or setup (0: installer or uninstaller run).
// Links nothing of the product.

#include <windows.h>
#include <cwchar>

namespace {
constexpr int kUsage = 2;

/// Has the file open, so that nobody can move or replace it, until the standard input ends.
int Hold(const wchar_t* pszFile) {
    HANDLE h =
        ::CreateFileW(pszFile, GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr);
    if (h == INVALID_HANDLE_VALUE) return 1;
    DWORD cb = 0;
    char ch = '\n';
    ::WriteFile(::GetStdHandle(STD_OUTPUT_HANDLE), &ch, 1, &cb, nullptr); // it is open now
    while (::ReadFile(::GetStdHandle(STD_INPUT_HANDLE), &ch, 1, &cb, nullptr) && cb) {
    }
    ::CloseHandle(h);
    return 0;
}
} // namespace

int wmain(int nArguments, wchar_t** ppszArguments) {
    if (nArguments == 3 && std::wcscmp(ppszArguments[1], L"hold") == 0)
        return Hold(ppszArguments[2]);
    if (nArguments == 3 && std::wcscmp(ppszArguments[1], L"window") == 0)
        return ::FindWindowW(ppszArguments[2], nullptr) ? 0 : 1;
    if (nArguments == 2 && std::wcscmp(ppszArguments[1], L"setup") == 0)
        return ::OpenMutexW(SYNCHRONIZE, FALSE, L"Local\\Orvanta_Setup_Tessaly") ? 0 : 1;
    return kUsage;
}
