// Runs a command line that lies in a file, and puts what is then on the console there in its place.
// Its exit code is that of the command.
//
//   command_probe shared FILE      the command has this program's console
//   command_probe attached FILE    it begins with none; this program has one
//   command_probe alone FILE       neither has one

#include <windows.h>
#include <string>

namespace {
constexpr SHORT kColumns = 200; // so many that no line goes on in the next
constexpr SHORT kRows = 300;

std::wstring ReadLine(const wchar_t* pszFile) {
    HANDLE h =
        ::CreateFileW(pszFile, GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr);
    std::wstring str(::GetFileSize(h, nullptr) / sizeof(wchar_t), L'\0');
    DWORD cb = 0;
    ::ReadFile(h, str.data(), static_cast<DWORD>(str.size() * sizeof(wchar_t)), &cb, nullptr);
    ::CloseHandle(h);
    return str;
}

DWORD RunToItsEnd(std::wstring strLine, DWORD dwFlags) {
    STARTUPINFOW si{};
    si.cb = sizeof(si);
    PROCESS_INFORMATION pi{};
    if (!::CreateProcessW(nullptr, strLine.data(), nullptr, nullptr, FALSE, dwFlags, nullptr,
                          nullptr, &si, &pi)) {
        return 999;
    }
    ::WaitForSingleObject(pi.hProcess, INFINITE);
    DWORD dwCode = 999;
    ::GetExitCodeProcess(pi.hProcess, &dwCode);
    ::CloseHandle(pi.hThread);
    ::CloseHandle(pi.hProcess);
    return dwCode;
}

std::wstring Screen(HANDLE hConsole) {
    CONSOLE_SCREEN_BUFFER_INFO info{};
    if (!::GetConsoleScreenBufferInfo(hConsole, &info)) return L"";
    std::wstring strAll;
    for (SHORT y = 0; y <= info.dwCursorPosition.Y; ++y) {
        std::wstring str(static_cast<size_t>(info.dwSize.X), L'\0');
        DWORD cch = 0;
        ::ReadConsoleOutputCharacterW(hConsole, str.data(), static_cast<DWORD>(str.size()), {0, y},
                                      &cch);
        str.resize(cch);
        str.erase(str.find_last_not_of(L' ') + 1);
        strAll += str + L"\r\n";
    }
    return strAll;
}

void Write(const wchar_t* pszFile, const std::wstring& str) {
    std::string strOut(str.size() * 3 + 1, '\0');
    int cb =
        ::WideCharToMultiByte(CP_UTF8, 0, str.data(), static_cast<int>(str.size()), strOut.data(),
                              static_cast<int>(strOut.size()), nullptr, nullptr);
    HANDLE h = ::CreateFileW(pszFile, GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr);
    DWORD cbDone = 0;
    ::WriteFile(h, strOut.data(), static_cast<DWORD>(cb), &cbDone, nullptr);
    ::CloseHandle(h);
}
} // namespace

int wmain(int nArguments, wchar_t** ppszArguments) {
    if (nArguments != 3) return 999;
    std::wstring strWay = ppszArguments[1];
    HANDLE hConsole = INVALID_HANDLE_VALUE;
    if (strWay != L"alone") {
        hConsole =
            ::CreateFileW(L"CONOUT$", GENERIC_READ | GENERIC_WRITE,
                          FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING, 0, nullptr);
        if (hConsole == INVALID_HANDLE_VALUE) return 998;
        ::SetConsoleScreenBufferSize(hConsole, {kColumns, kRows});
    }
    DWORD dwCode =
        RunToItsEnd(ReadLine(ppszArguments[2]), strWay == L"shared" ? 0 : DWORD{DETACHED_PROCESS});
    Write(ppszArguments[2], Screen(hConsole));
    return static_cast<int>(dwCode);
}
