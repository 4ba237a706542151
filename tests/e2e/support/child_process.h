#pragma once
#include "support/wait_until.h"

#include <windows.h>
#include <optional>
#include <string>

/// A folder of the build beside that of the running program, without a final separator.
std::wstring FolderBeside(const std::wstring& strName);
/// What the build made for users: TSEXE64.exe and TSDLL64.dll lie there.
std::wstring ProductFolder();

/// A program that a test started. It is ended without warning when the object goes.
class ChildProcess {
  public:
    ChildProcess() = default;
    ~ChildProcess();
    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;

    /// Starts the program in its own folder, or with another as the current one. Throws
    /// std::runtime_error; also if one still runs.
    void Start(const std::wstring& strPath, const std::wstring& strArguments,
               const std::wstring& strCurrent = {});
    /// The same with neither standard handles nor a console, as the shell starts a program: what it
    /// tells comes up in boxes.
    void StartForBoxes(const std::wstring& strPath, const std::wstring& strArguments);
    bool IsRunning() const;
    DWORD Id() const { return dwId; }
    /// The exit code once it has ended by itself within the time; nothing if it still runs.
    std::optional<DWORD> WaitForEnd(DWORD nMs = kTestDeadlineMs) const;
    /// Returns when it first waits for messages, or after that time.
    void WaitUntilIdle(DWORD nMs = kTestDeadlineMs);
    /// Ends it without warning and waits until it has gone.
    void Kill();
    /// Leaves the program running when the object goes.
    void LetGo();

  private:
    void Run(const std::wstring& strPath, const std::wstring& strArguments,
             const std::wstring& strCurrent, HANDLE hOutput, DWORD dwFlags);
    void Close();
    HANDLE hProcess = nullptr;
    DWORD dwId = 0;
};
