#pragma once
#include "support/start_process.h"
#include "support/wait_until.h"

#include <gtest/gtest.h>
#include <windows.h>
#include <string>

/// A program of the tests that tells what it does in lines, and ends when its input does: with the
/// object, at the latest.
class PipedProcess {
  public:
    explicit PipedProcess(std::wstring strLine) {
        SECURITY_ATTRIBUTES security{sizeof(security), nullptr, TRUE};
        HANDLE hChildIn = nullptr, hChildOut = nullptr;
        ::CreatePipe(&hChildIn, &hIn, &security, 0);
        ::CreatePipe(&hOut, &hChildOut, &security, 0);
        // Only the child may hold its ends: else its input never ends.
        ::SetHandleInformation(hIn, HANDLE_FLAG_INHERIT, 0);
        ::SetHandleInformation(hOut, HANDLE_FLAG_INHERIT, 0);
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
    ~PipedProcess() {
        ::CloseHandle(hIn);
        EXPECT_EQ(WAIT_OBJECT_0, ::WaitForSingleObject(pi.hProcess, kTestDeadlineMs));
        DWORD dwCode = 1;
        ::GetExitCodeProcess(pi.hProcess, &dwCode);
        EXPECT_EQ(0u, dwCode);
        ::CloseHandle(hOut);
        ::CloseHandle(pi.hThread);
        ::CloseHandle(pi.hProcess);
    }
    PipedProcess(const PipedProcess&) = delete;
    PipedProcess& operator=(const PipedProcess&) = delete;

    DWORD Id() const { return pi.dwProcessId; }
    /// Its next line, without the end of that; empty at the end of its output.
    std::string ReadLine() {
        std::string str;
        char ch = 0;
        DWORD cb = 0;
        while (::ReadFile(hOut, &ch, 1, &cb, nullptr) && cb && ch != '\n') str += ch;
        return str;
    }

  private:
    HANDLE hIn = nullptr, hOut = nullptr;
    PROCESS_INFORMATION pi{};
};
