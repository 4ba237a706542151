#include "icons/agent.h"
#include "icons/capture.h"
#include "icons/desktop_shared_data.h"
#include "icons/engine_codes.h"
#include "icons/library_hold.h"

#include <commctrl.h>

namespace {
// No construction at run time: mapping the library into the shell must cost nothing.
constinit MySysLVWnd agentListView;
constinit MyShellWnd agentView;
constinit LibraryHold libraryHold;

/// The company message with that code? Its id is 0 until a monitor has registered it, which is
/// WM_NULL, a message that everybody sends.
bool IsEngineCode(UINT uMsg, WPARAM wParam, WPARAM wCode) {
    UINT uCompanyMsg = static_cast<UINT>(desktopSharedData.nCompanyMsg);
    return uMsg == uCompanyMsg && uCompanyMsg != 0 && wParam == wCode;
}

void ReportIconsMoved() {
    UINT uCompanyMsg = static_cast<UINT>(desktopSharedData.nCompanyMsg);
    ::PostMessageW(desktopSharedData.hwndMonitor, uCompanyMsg, kCodeIconsMoved, 0);
}

/// The library may go when neither window calls into it.
void ReleaseLibraryIfDetached() {
    if (!agentListView.IsAttached() && !agentView.IsAttached()) libraryHold.Release();
}

void AttachBoth() {
    libraryHold.Take();
    agentListView.AttachTo(desktopSharedData.hwndListView);
    agentView.AttachTo(desktopSharedData.hwndView);
    ReleaseLibraryIfDetached(); // neither window may be there any more
}

void DetachBoth() {
    agentListView.DetachFrom();
    agentView.DetachFrom();
}

/// Kept out of the hook procedure: the path of foreign messages stays short.
__attribute__((noinline)) void OnEngineMessage(const MSG& msg) {
    if (IsEngineCode(msg.message, msg.wParam, kCodeCapture)) {
        SendCapture(desktopSharedData.hwndListView, desktopSharedData.hwndMonitor, msg.hwnd);
    } else if (IsEngineCode(msg.message, msg.wParam, kCodeAttach)) {
        if (msg.lParam) {
            AttachBoth();
        } else {
            DetachBoth();
        }
    }
}
} // namespace

MySysLVWnd& GetAgentListView() { return agentListView; }

MyShellWnd& GetAgentView() { return agentView; }

LRESULT CALLBACK DesktopHookProc(int nCode, WPARAM wParam, LPARAM lParam) {
    // Every message of the shell's desktop thread comes through here: one null test and one
    // comparison for those that are not ours. Neither nCode nor the remove flag is looked at.
    const MSG* pMsg = reinterpret_cast<const MSG*>(lParam);
    if (pMsg && pMsg->message == static_cast<UINT>(desktopSharedData.nCompanyMsg)) {
        OnEngineMessage(*pMsg);
    }
    return ::CallNextHookEx(desktopSharedData.hhook, nCode, wParam, lParam);
}

AgentWnd::~AgentWnd() {
    hWnd = nullptr; // the library is leaving its process: no window is touched any more
}

int AgentWnd::AttachTo(HWND hwndTarget) {
    // Handles that were left over from a shell that is gone must not be marked with our objects.
    HWND hwndReal = hwndTarget ? hwndTarget : hWnd;
    if (::GetWindowThreadProcessId(hwndReal, nullptr) != ::GetCurrentThreadId()) return 0;
    return Subclass(hwndTarget);
}

void AgentWnd::DetachFrom() {
    CommonUnsubclass();
    ReleaseLibraryIfDetached();
}

int AgentWnd::IsAttached() const { return hWnd && FromHandle(hWnd) == this; }

LRESULT MySysLVWnd::OnWndMessage(UINT uMsg, WPARAM wParam, LPARAM lParam) {
    if (IsEngineCode(uMsg, wParam, kCodeAttach) && lParam == 0) {
        DetachFrom();
        return 0;
    }
    switch (uMsg) {
    case WM_COPYDATA:
        if (lParam) RestoreFrom(hWnd, *reinterpret_cast<const COPYDATASTRUCT*>(lParam));
        break;
    case WM_MOUSEMOVE:
        if (!bDragBegun) break;
        bDragBegun = 0;
        ReportIconsMoved();
        break;
    }
    return CSWnd::OnWndMessage(uMsg, wParam, lParam);
}

LRESULT MyShellWnd::OnWndMessage(UINT uMsg, WPARAM wParam, LPARAM lParam) {
    if (IsEngineCode(uMsg, wParam, kCodeAttach) && lParam == 0) {
        DetachFrom();
        return 0;
    }
    if (uMsg == WM_NOTIFY && lParam) {
        const NMHDR& header = *reinterpret_cast<const NMHDR*>(lParam);
        if (header.hwndFrom == desktopSharedData.hwndListView) {
            switch (header.code) {
            case LVN_SETDISPINFOW: ReportIconsMoved(); break;
            case LVN_BEGINDRAG:
            case LVN_BEGINRDRAG: agentListView.SetDragBegun(); break;
            }
        }
    }
    return CSWnd::OnWndMessage(uMsg, wParam, lParam);
}
