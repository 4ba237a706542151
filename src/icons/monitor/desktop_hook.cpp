#include "icons/monitor/desktop_hook.h"
#include "icons/agent/agent.h"
#include "icons/agent/desktop_shared_data.h"
#include "runtime/base/current_product.h"
#include "runtime/system/runtime_func.h"
#include "wnd/core/company_msg.h"

// winuser.h has these from Vista and Windows 7 on.
#ifndef MSGFLT_ADD
#define MSGFLT_ADD 1
#endif
#ifndef MSGFLT_ALLOW
#define MSGFLT_ALLOW 1
#endif

namespace {
constexpr LPARAM kAttach = 1, kDetach = 0;

/// Whether a window object is on the shell's window. It may be another copy's of the library.
bool IsMarked(HWND hwnd) { return ::GetPropW(hwnd, L"CSWND") != nullptr; }

/// Sent, so that it is done on return. The list view first: its object is the one that calls back.
void SendDetach(const DesktopSharedData& shared) {
    SendMyCompanyMsg(shared.hwndListView, kCodeAttach, kDetach);
    SendMyCompanyMsg(shared.hwndView, kCodeAttach, kDetach);
}

void LetIn(HWND hwnd, UINT uMsg) {
    static constinit RuntimeFunc<BOOL WINAPI(HWND, UINT, DWORD, void*)> funcOfWindow(
        L"user32.dll", "ChangeWindowMessageFilterEx");
    static constinit RuntimeFunc<BOOL WINAPI(UINT, DWORD)> funcOfProcess(
        L"user32.dll", "ChangeWindowMessageFilter");
    if (!uMsg) return; // not registered
    if (auto* pfn = funcOfWindow.Get()) {
        pfn(hwnd, uMsg, MSGFLT_ALLOW, nullptr);
    } else if (auto* pfnVista = funcOfProcess.Get()) {
        pfnVista(uMsg, MSGFLT_ADD); // Vista knows no single windows
    }
}
} // namespace

void InstallDesktopHook() {
    if (!ClaimDesktopSharedData()) return; // no agent would know of this monitor
    DesktopSharedData& shared = GetDesktopSharedData();
    if (shared.hhook) return;
    DWORD dwThread = ::GetWindowThreadProcessId(shared.hwndListView, nullptr);
    // A hook that is refused is not reported: no capture comes then, and the monitor sits idle. The
    // same where the list view has gone: without a thread it would be a hook on all of them.
    if (dwThread) {
        shared.hhook =
            ::SetWindowsHookExW(WH_GETMESSAGE, &DesktopHookProc, GetLibraryInstance(), dwThread);
    }
    // Posted, because the hook sees only what passes through the thread's queue.
    // QUIRK: the view is sent the same, which has no effect: the hook attaches it too.
    // Test: AgentRoute.ASentAttachDoesNotAttach
    PostMyCompanyMsg(shared.hwndListView, kCodeAttach, kAttach);
    SendMyCompanyMsg(shared.hwndView, kCodeAttach, kAttach);
}

void RemoveDesktopHook() {
    DesktopSharedData& shared = GetDesktopSharedData();
    if (!shared.hhook) return;
    // Windows that still called into the library would bring the shell down once the hook's library
    // goes.
    SendDetach(shared);
    ::UnhookWindowsHookEx(shared.hhook);
    shared.hhook = nullptr;
    // What is sent overtakes what was posted: an attaching that was still in the queue may have
    // come through the hook since. No other can, once the shell has answered.
    ::SendMessageW(shared.hwndListView, WM_NULL, 0, 0);
    if (IsMarked(shared.hwndListView) || IsMarked(shared.hwndView)) SendDetach(shared);
}

void ForgetStaleDesktopHook() {
    DesktopSharedData& shared = GetDesktopSharedData();
    if (!IsMonitorWindow(shared.hwndMonitor)) shared.hhook = nullptr;
}

void LetShellMessagesIn(HWND hwnd, UINT uTaskbarCreatedMsg) {
    // Anybody may send these from now on: their handlers trust nothing in them.
    LetIn(hwnd, GetMyCompanyMsgId());
    LetIn(hwnd, WM_COPYDATA);
    LetIn(hwnd, uTaskbarCreatedMsg);
}
