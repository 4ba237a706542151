#pragma once
#include "support/program_folder.h"
#include "support/start_process.h"

#include <gtest/gtest.h>
#include <windows.h>
#include <initializer_list>
#include <sstream>
#include <string>
#include <vector>

/// Another process with the update check (update_probe.cpp), which runs commands on the settings
/// below a key of that name. It ends with the object at the latest.
class UpdateProcess {
  public:
    UpdateProcess(const std::wstring& strRoot, std::initializer_list<std::wstring> commands) {
        SECURITY_ATTRIBUTES security{sizeof(security), nullptr, TRUE};
        HANDLE hChildIn = nullptr, hChildOut = nullptr;
        ::CreatePipe(&hChildIn, &hIn, &security, 0);
        ::CreatePipe(&hOut, &hChildOut, &security, 0);
        // Only the child may hold its ends: else its input never ends.
        ::SetHandleInformation(hIn, HANDLE_FLAG_INHERIT, 0);
        ::SetHandleInformation(hOut, HANDLE_FLAG_INHERIT, 0);
        std::wstring strLine = L"\"" + ProgramFolder() + L"update_probe.exe\" \"" + strRoot + L"\"";
        for (const std::wstring& strCommand : commands) strLine += L" " + strCommand;
        STARTUPINFOW si{};
        si.cb = sizeof(si);
        si.dwFlags = STARTF_USESTDHANDLES;
        si.hStdInput = hChildIn;
        si.hStdOutput = hChildOut;
        EXPECT_TRUE(StartProcessSurely(nullptr, strLine.data(), nullptr, nullptr, TRUE, 0, nullptr,
                                       nullptr, &si, &pi));
        ::CloseHandle(hChildIn);
        ::CloseHandle(hChildOut);
    }
    ~UpdateProcess() {
        ::CloseHandle(hIn);
        EXPECT_EQ(WAIT_OBJECT_0, ::WaitForSingleObject(pi.hProcess, 10000));
        DWORD dwCode = 1;
        ::GetExitCodeProcess(pi.hProcess, &dwCode);
        EXPECT_EQ(0u, dwCode);
        ::CloseHandle(hOut);
        ::CloseHandle(pi.hThread);
        ::CloseHandle(pi.hProcess);
    }
    UpdateProcess(const UpdateProcess&) = delete;
    UpdateProcess& operator=(const UpdateProcess&) = delete;

    DWORD Id() const { return pi.dwProcessId; }
    /// The numbers of its next line; none at its end.
    std::vector<unsigned long long> Numbers() {
        std::istringstream line(ReadLine());
        std::vector<unsigned long long> numbers;
        for (long long n = 0; line >> n;) numbers.push_back(static_cast<unsigned long long>(n));
        return numbers;
    }
    /// The window that it tells of.
    HWND Window() {
        auto numbers = Numbers();
        return numbers.empty() ? nullptr : reinterpret_cast<HWND>(numbers[0]);
    }

  private:
    std::string ReadLine() {
        std::string str;
        char ch = 0;
        DWORD cb = 0;
        while (::ReadFile(hOut, &ch, 1, &cb, nullptr) && cb && ch != '\n') str += ch;
        return str;
    }

    HANDLE hIn = nullptr, hOut = nullptr;
    PROCESS_INFORMATION pi{};
};
