#pragma once
#include "support/piped_process.h"
#include "support/program_folder.h"

#include <windows.h>
#include <sstream>
#include <string>

/// A mark or id that no other test has.
inline std::wstring UniqueInstanceName() {
    static int n = 0;
    return L"Test" + std::to_wstring(::GetCurrentProcessId()) + L"_" + std::to_wstring(++n);
}

/// Another process that asks for the mark and keeps it while the object lives (instance_probe.cpp).
class InstanceProcess : public PipedProcess {
  public:
    InstanceProcess(int bGlobal, const std::wstring& strName, const std::wstring& strId = {})
        : PipedProcess(L"\"" + ProgramFolder() + L"instance_probe.exe\" " +
                       std::to_wstring(bGlobal) + L" " + strName +
                       (strId.empty() ? L"" : L" " + strId)) {
        std::istringstream line(ReadLine());
        UINT_PTR nHandle = 0;
        line >> nAnswer >> nHandle;
        hwnd = reinterpret_cast<HWND>(nHandle);
    }
    int nAnswer = -1;
    HWND hwnd = nullptr; // its own window, or the one that it found
};
