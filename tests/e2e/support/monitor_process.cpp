#include "e2e/support/monitor_process.h"

#include <stdexcept>

namespace {
std::wstring ProductProgram() { return ProductFolder() + L"\\TSEXE64.exe"; }
} // namespace

void MonitorProcess::Start(const std::wstring& strArguments) {
    process.Start(ProductProgram(), strArguments);
}

void MonitorProcess::StartOn(TestDesktop& desktop, const std::wstring& strArguments) {
    Start(strArguments);
    if (!WaitUntilOn(desktop)) throw std::runtime_error("the monitor did not take up the desktop");
    // Only then has it asked for its first capture, behind what it tells the notification area.
    process.WaitUntilIdle();
}

bool MonitorProcess::WaitUntilOn(TestDesktop& desktop, DWORD nMs) {
    return WaitUntil([&] { return Window() && desktop.IsFullyAttached(); }, nMs);
}

bool MonitorProcess::Exit(DWORD nMs) {
    ChildProcess second;
    second.Start(ProductProgram(), L"/EXIT");
    std::optional<DWORD> exitCode = second.WaitForEnd(nMs);
    return exitCode == DWORD{0} && process.WaitForEnd(nMs).has_value();
}

HWND MonitorProcess::Window() const {
    HWND hwnd = nullptr;
    while ((hwnd = ::FindWindowExW(nullptr, hwnd, kMonitorClass, nullptr))) {
        DWORD dwOwner = 0;
        ::GetWindowThreadProcessId(hwnd, &dwOwner);
        if (dwOwner == process.Id()) return hwnd;
    }
    return nullptr;
}

void MonitorProcess::PostCompanyMsg(WPARAM nCode, LPARAM lParam) const {
    ::PostMessageW(Window(), CompanyMsg(), nCode, lParam);
}

void MonitorProcess::RequestCapture(const TestDesktop& desktop) {
    ::PostMessageW(desktop.List(), CompanyMsg(), kCodeCapture, 0);
}

void MonitorProcess::PostShellEvent() const { ::PostMessageW(Window(), ShellEventMsg(), 0, 0); }
