#include "icons/commands/desktop_visit.h"
#include "icons/agent/desktop_shared_data.h"
#include "icons/monitor/desktop_discovery.h"
#include "icons/monitor/desktop_hook.h"
#include "icons/monitor/front_end.h"
#include "icons/monitor/monitor_wnd.h"
#include "runtime/base/ownership.h"
#include "wnd/core/company_msg.h"

namespace {
constexpr DWORD kVisitPollMs = 5;

/// A monitor window that is nobody's to look at.
class NoFrontEnd final : public MonitorFrontEnd {
  public:
    void OnMonitorStart() override {}
    void OnRoundStart(MyMonitor_Wnd&, bool) override {}
    void OnMenuRequest(MyMonitor_Wnd&) override {}
    void OnCaptureOutcome(const wchar_t*) override {}
    void OnMonitorClose() override {}
    void OnRoundEnd() override {}
    void OnIconsPutBack(const wchar_t*) override {}
};

/// The agent in the shell, from Begin to the object's end.
class DesktopVisit {
  public:
    DesktopVisit() = default;
    DesktopVisit(const DesktopVisit&) = delete; // the hook is this object's
    DesktopVisit& operator=(const DesktopVisit&) = delete;
    ~DesktopVisit() {
        if (hhook) LetGoOfDesktop(hhook, kShellAnswerMs);
    }

    [[nodiscard]] bool Begin() {
        if (!ClaimDesktopSharedData()) return false;
        DesktopSharedData& shared = GetDesktopSharedData();
        shared.nCompanyMsg = GetMyCompanyMsgId();
        ForgetStaleDesktopHook();
        if (!FindDesktopShellWnd(&shared.hwndView, &shared.hwndListView)) return false;
        hhook = SetDesktopHook();
        return hhook != nullptr;
    }

  private:
    HHOOK hhook = nullptr;
};

/// Dispatches messages until fnDone says yes: Done. NoDesktop after the time, NoAnswer if the loop
/// is to end, as when somebody closes the window that is taken for a monitor's.
template <class Fn>
CommandResult DispatchUntil(Fn fnDone, DWORD nTimeoutMs) {
    DWORD dwStart = ::GetTickCount();
    for (;;) {
        MSG msg;
        while (::PeekMessageW(&msg, nullptr, 0, 0, PM_REMOVE)) {
            // What was done before is done.
            if (msg.message == WM_QUIT)
                return fnDone() ? CommandResult::Done : CommandResult::NoAnswer;
            ::DispatchMessageW(&msg);
        }
        if (fnDone()) return CommandResult::Done;
        if (::GetTickCount() - dwStart >= nTimeoutMs) return CommandResult::NoDesktop;
        ::MsgWaitForMultipleObjects(0, nullptr, FALSE, kVisitPollMs, QS_ALLINPUT);
    }
}

CommandResult CaptureInto(MyMonitor_Wnd& monitor) {
    constexpr unsigned __int64 kOnlyCapture = 1;
    CommandDesk& desk = monitor.GetCommandDesk();
    if (desk.Remember(kOnlyCapture) != CommandResult::Pending) return CommandResult::NoDesktop;
    CommandResult result = DispatchUntil(
        [&] { return desk.GetOutcome(kOnlyCapture) != CommandResult::Pending; }, kShellRestoreMs);
    return result == CommandResult::Done ? desk.GetOutcome(kOnlyCapture) : result;
}
} // namespace

CommandResult CaptureWithoutMonitor() {
    DesktopVisit visit;
    if (!visit.Begin()) return CommandResult::NoDesktop;
    NoFrontEnd frontEnd;
    MyMonitor_Wnd monitor(frontEnd); // the agent answers to no other window
    if (!monitor.CreateHidden(nullptr)) return CommandResult::NoDesktop;
    GetDesktopSharedData().hwndMonitor = monitor;
    // The window goes before the agent: a shell that is sending to it must not wait for this one,
    // which waits for the shell.
    ScopeExit destroy([&] {
        HWND& hwndShared = GetDesktopSharedData().hwndMonitor;
        if (hwndShared == static_cast<HWND>(monitor)) hwndShared = nullptr;
        monitor.Destroy();
    });
    return CaptureInto(monitor);
}

CommandResult RestoreWithoutMonitor(unsigned __int64 qwTime) {
    DesktopVisit visit;
    if (!visit.Begin()) return CommandResult::NoDesktop;
    CommandResult result = DispatchUntil(&IsDesktopAttached, kShellAnswerMs);
    if (result != CommandResult::Done) return result;
    return RestoreForCommand(GetDesktopSharedData().hwndListView, qwTime);
}
