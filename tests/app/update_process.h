#pragma once
#include "support/piped_process.h"
#include "support/program_folder.h"

#include <windows.h>
#include <initializer_list>
#include <sstream>
#include <string>
#include <vector>

/// Another process with the update check (update_probe.cpp), which runs commands on the settings
/// below a key of that name. It ends with the object at the latest.
class UpdateProcess : public PipedProcess {
  public:
    UpdateProcess(const std::wstring& strRoot, std::initializer_list<std::wstring> commands)
        : PipedProcess(Line(strRoot, commands)) {}

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
    static std::wstring Line(const std::wstring& strRoot,
                             std::initializer_list<std::wstring> commands) {
        std::wstring strLine = L"\"" + ProgramFolder() + L"update_probe.exe\" \"" + strRoot + L"\"";
        for (const std::wstring& strCommand : commands) strLine += L" " + strCommand;
        return strLine;
    }
};
