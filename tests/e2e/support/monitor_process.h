#pragma once
#include "e2e/support/child_process.h"
#include "e2e/support/engine_names.h"
#include "e2e/support/test_desktop.h"
#include <windows.h>
#include <string>

/// The product, running as its users run it.
class MonitorProcess {
  public:
    MonitorProcess() = default;
    MonitorProcess(const MonitorProcess&) = delete;
    MonitorProcess& operator=(const MonitorProcess&) = delete;

    /// Starts TSEXE64.exe and returns at once.
    void Start(const std::wstring& strArguments = L"/QUIET");
    /// Starts it and returns when its window is there, both of the desktop's windows are attached
    /// and it waits for messages. Throws std::runtime_error if that takes too long.
    void StartOn(TestDesktop& desktop, const std::wstring& strArguments = L"/QUIET");
    /// Returns when the running monitor has taken up the desktop; false if that takes too long.
    bool WaitUntilOn(TestDesktop& desktop, DWORD nMs = kTestDeadlineMs);

    /// Runs a second TSEXE64.exe with /EXIT; true if both have ended in time, the second with 0.
    bool Exit(DWORD nMs = kTestDeadlineMs);
    void Kill() { process.Kill(); }
    bool IsRunning() const { return process.IsRunning(); }
    DWORD ProcessId() const { return process.Id(); }
    std::optional<DWORD> WaitForEnd(DWORD nMs = kTestDeadlineMs) { return process.WaitForEnd(nMs); }
    void LetGo() { process.LetGo(); }

    /// The monitor window of this process; null if there is none.
    HWND Window() const;
    /// Posts the company message to the monitor's window.
    void PostCompanyMsg(WPARAM nCode, LPARAM lParam = 0) const;
    /// Asks for a capture as the debounce timer does.
    static void RequestCapture(const TestDesktop& desktop);
    /// Posts what a shell change event arrives as. The test platform delivers none across
    /// processes.
    void PostShellEvent() const;

  private:
    ChildProcess process;
};
