#pragma once
#include "support/start_process.h"
#include <gtest/gtest.h>
#include <windows.h>
#include <sstream>
#include <string>

/// A mark or id that no other test has.
inline std::wstring UniqueInstanceName() {
    static int n = 0;
    return L"Test" + std::to_wstring(::GetCurrentProcessId()) + L"_" + std::to_wstring(++n);
}

/// Another process that asks for the mark and keeps it while the object lives (instance_probe.cpp).
class InstanceProcess {
  public:
    InstanceProcess(int bGlobal, const std::wstring& strName, const std::wstring& strId = {}) {
        SECURITY_ATTRIBUTES security{sizeof(security), nullptr, TRUE};
        HANDLE hChildIn = nullptr, hChildOut = nullptr;
        ::CreatePipe(&hChildIn, &hIn, &security, 0);
        ::CreatePipe(&hOut, &hChildOut, &security, 0);
        // Only the child may hold its ends: else its input never ends.
        ::SetHandleInformation(hIn, HANDLE_FLAG_INHERIT, 0);
        ::SetHandleInformation(hOut, HANDLE_FLAG_INHERIT, 0);
        wchar_t szPath[MAX_PATH];
        ::GetModuleFileNameW(nullptr, szPath, MAX_PATH);
        std::wstring strFolder = szPath;
        strFolder.resize(strFolder.rfind(L'\\') + 1);
        std::wstring strLine = L"\"" + strFolder + L"instance_probe.exe\" " +
                               std::to_wstring(bGlobal) + L" " + strName;
        if (!strId.empty()) strLine += L" " + strId;
        STARTUPINFOW si{};
        si.cb = sizeof(si);
        si.dwFlags = STARTF_USESTDHANDLES;
        si.hStdInput = hChildIn;
        si.hStdOutput = hChildOut;
        EXPECT_TRUE(StartProcessSurely(nullptr, strLine.data(), nullptr, nullptr, TRUE, 0, nullptr,
                                       nullptr, &si, &pi));
        ::CloseHandle(hChildIn);
        ::CloseHandle(hChildOut);
        std::istringstream line(ReadLine());
        UINT_PTR nHandle = 0;
        line >> nAnswer >> nHandle;
        hwnd = reinterpret_cast<HWND>(nHandle);
    }
    ~InstanceProcess() {
        ::CloseHandle(hIn);
        EXPECT_EQ(WAIT_OBJECT_0, ::WaitForSingleObject(pi.hProcess, 10000));
        ::CloseHandle(hOut);
        ::CloseHandle(pi.hThread);
        ::CloseHandle(pi.hProcess);
    }
    InstanceProcess(const InstanceProcess&) = delete;
    InstanceProcess& operator=(const InstanceProcess&) = delete;
    int nAnswer = -1;
    HWND hwnd = nullptr; // its own window, or the one that it found

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
