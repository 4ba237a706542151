#pragma once
#include "runtime/system/runtime_func.h"
#include "support/program_folder.h"
#include "support/start_process.h"
#include <windows.h>
#include <string>

// Programs started beside the test under a name for which the test platform shows itself as another
// Windows.

/// False on a real Windows, which does no such thing.
inline bool CanShowOtherWindows() {
    return FindModuleFunc(::GetModuleHandleW(L"ntdll.dll"), "wine_get_version") != nullptr;
}

/// What a program prints.
inline std::string OutputOf(const std::wstring& strProgram) {
    SECURITY_ATTRIBUTES security{sizeof(security), nullptr, TRUE};
    HANDLE hRead = nullptr, hWrite = nullptr;
    if (!::CreatePipe(&hRead, &hWrite, &security, 0)) return "no pipe";
    STARTUPINFOW si{};
    si.cb = sizeof(si);
    si.dwFlags = STARTF_USESTDHANDLES;
    si.hStdOutput = hWrite;
    PROCESS_INFORMATION pi{};
    std::wstring strLine = L"\"" + strProgram + L"\"";
    BOOL bStarted = StartProcessSurely(strProgram.c_str(), strLine.data(), nullptr, nullptr, TRUE,
                                       0, nullptr, nullptr, &si, &pi);
    ::CloseHandle(hWrite);
    std::string str;
    char ab[512];
    for (DWORD cb = 0; bStarted && ::ReadFile(hRead, ab, sizeof(ab), &cb, nullptr) && cb;)
        str.append(ab, cb);
    ::CloseHandle(hRead);
    if (!bStarted) return "not started";
    ::WaitForSingleObject(pi.hProcess, 10000);
    ::CloseHandle(pi.hThread);
    ::CloseHandle(pi.hProcess);
    return str;
}

/// What the program of that name beside this one prints under the platform's name of a Windows,
/// such as L"winxp64".
inline std::string OutputOnOtherWindows(const std::wstring& strName,
                                        const std::wstring& strVersion) {
    std::wstring strExe = L"tessaly_" + strVersion + L"_" + strName;
    std::wstring strKey = L"Software\\Wine\\AppDefaults\\" + strExe;
    HKEY hkey = nullptr;
    if (::RegCreateKeyExW(HKEY_CURRENT_USER, strKey.c_str(), 0, nullptr, 0, KEY_ALL_ACCESS, nullptr,
                          &hkey, nullptr)) {
        return "no key";
    }
    ::RegSetValueExW(hkey, L"Version", 0, REG_SZ, reinterpret_cast<const BYTE*>(strVersion.c_str()),
                     static_cast<DWORD>((strVersion.size() + 1) * sizeof(wchar_t)));
    ::RegCloseKey(hkey);
    wchar_t szTemp[MAX_PATH] = {};
    ::GetTempPathW(MAX_PATH, szTemp);
    std::wstring strProgram = szTemp + strExe;
    std::string str = "no copy";
    if (::CopyFileW((ProgramFolder() + strName).c_str(), strProgram.c_str(), FALSE)) {
        str = OutputOf(strProgram);
        ::DeleteFileW(strProgram.c_str());
    }
    ::RegDeleteKeyW(HKEY_CURRENT_USER, strKey.c_str());
    return str;
}
