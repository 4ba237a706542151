// What the tests of starting programs have started. Writes down how it was started, as a file of
// its own in the folder "tessaly_launch" of the folder for temporary files, and ends with 77.
// With a first argument /MYSELF it first starts itself once more (RunMyself) with the rest, with
// /ELEVATED in the other way (RunMyselfElevated), and writes nothing.
#include "app/launch/cmd_line.h"
#include "app/launch/run_file.h"
#include "app/start/library_start.h"

#include <windows.h>
#include <tlhelp32.h>
#include <cstdio>
#include <cwchar>
#include <string>

namespace {
constexpr int kExitCode = 77;

DWORD ParentProcess() {
    HANDLE hSnapshot = ::CreateToolhelp32Snapshot(TH32CS_SNAPPROCESS, 0);
    PROCESSENTRY32W entry{};
    entry.dwSize = sizeof(entry);
    DWORD dwParent = 0;
    for (BOOL b = ::Process32FirstW(hSnapshot, &entry); b; b = ::Process32NextW(hSnapshot, &entry))
        if (entry.th32ProcessID == ::GetCurrentProcessId()) dwParent = entry.th32ParentProcessID;
    ::CloseHandle(hSnapshot);
    return dwParent;
}

int ShowState() {
    STARTUPINFOW si{};
    si.cb = sizeof(si);
    ::GetStartupInfoW(&si);
    return si.dwFlags & STARTF_USESHOWWINDOW ? si.wShowWindow : -1;
}

std::wstring Report() {
    wchar_t szFolder[MAX_PATH] = L"", szProgram[MAX_PATH] = L"";
    ::GetCurrentDirectoryW(MAX_PATH, szFolder);
    ::GetModuleFileNameW(nullptr, szProgram, MAX_PATH);
    return std::to_wstring(::GetCurrentProcessId()) + L"\n" + std::to_wstring(ParentProcess()) +
           L"\n" + std::to_wstring(ShowState()) + L"\n" + szFolder + L"\n" + szProgram + L"\n" +
           ::GetCommandLineW() + L"\n";
}

/// Whole or not at all: the reader looks for the final name.
int Write(const std::wstring& str) {
    wchar_t szTemp[MAX_PATH];
    ::GetTempPathW(MAX_PATH, szTemp);
    std::wstring strPath =
        std::wstring(szTemp) + L"tessaly_launch\\" + std::to_wstring(::GetCurrentProcessId());
    HANDLE h = ::CreateFileW((strPath + L".new").c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS,
                             0, nullptr);
    if (h == INVALID_HANDLE_VALUE) return 1;
    DWORD cb = 0;
    ::WriteFile(h, str.data(), static_cast<DWORD>(str.size() * sizeof(wchar_t)), &cb, nullptr);
    ::CloseHandle(h);
    return ::MoveFileW((strPath + L".new").c_str(), (strPath + L".txt").c_str()) ? kExitCode : 1;
}
} // namespace

int WINAPI wWinMain(HINSTANCE hinst, HINSTANCE, LPWSTR, int) {
    LibraryStart(hinst);
    wchar_t szFirst[32] = L"";
    const wchar_t* pszArguments = GetCmdLnArg(::GetCommandLineW(), nullptr, 0);
    GetCmdLnPath(pszArguments, szFirst, 32);
    int nResult = 0;
    if (IsCmdLineOption(szFirst, L"MYSELF"))
        nResult = RunMyself(pszArguments + std::wcslen(szFirst) + 1) ? kExitCode : 1;
    else if (IsCmdLineOption(szFirst, L"ELEVATED"))
        nResult = RunMyselfElevated(nullptr, pszArguments + std::wcslen(szFirst) + 1, nullptr)
                      ? kExitCode
                      : 1;
    else
        nResult = Write(Report());
    LibraryStop();
    return nResult;
}
