#include "icons/monitor/desktop_hook.h"
#include "icons/agent/agent.h"
#include "icons/agent/desktop_shared_data.h"
#include "runtime/base/current_product.h"
#include "wnd/core/company_msg.h"

namespace {
constexpr LPARAM kAttach = 1, kDetach = 0;

/// Whether a window object is on the shell's window. It may be another copy's of the library.
bool IsMarked(HWND hwnd) { return ::GetPropW(hwnd, L"CSWND") != nullptr; }

/// Sent, so that it is done on return. The list view first: its object is the one that calls back.
void SendDetach(const DesktopSharedData& shared) {
    SendMyCompanyMsg(shared.hwndListView, kCodeAttach, kDetach);
    SendMyCompanyMsg(shared.hwndView, kCodeAttach, kDetach);
}

/// With the words claimed, and no hook set.
void SetHookAndPost(DesktopSharedData& shared) {
    DWORD dwThread = ::GetWindowThreadProcessId(shared.hwndListView, nullptr);
    // A hook that is refused is not reported: no capture comes then, and the monitor sits idle. The
    // same where the list view has gone: without a thread it would be a hook on all of them.
    if (dwThread) {
        shared.hhook =
            ::SetWindowsHookExW(WH_GETMESSAGE, &DesktopHookProc, GetLibraryInstance(), dwThread);
    }
    // Posted, because the hook sees only what passes through the thread's queue.
    PostMyCompanyMsg(shared.hwndListView, kCodeAttach, kAttach);
}
} // namespace

void InstallDesktopHook() {
    if (!ClaimDesktopSharedData()) return; // no agent would know of this monitor
    DesktopSharedData& shared = GetDesktopSharedData();
    if (shared.hhook) return;
    SetHookAndPost(shared);
    // QUIRK: the view is sent the same, which has no effect: the hook attaches it too.
    // Test: AgentRoute.ASentAttachDoesNotAttach
    SendMyCompanyMsg(shared.hwndView, kCodeAttach, kAttach);
}

HHOOK SetDesktopHook() {
    if (!ClaimDesktopSharedData()) return nullptr;
    DesktopSharedData& shared = GetDesktopSharedData();
    if (!shared.hhook) SetHookAndPost(shared);
    return shared.hhook;
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

bool IsDesktopAttached() { return IsMarked(GetDesktopSharedData().hwndListView); }

void LetGoOfDesktop(HHOOK hhook, DWORD nTimeoutMs) {
    DesktopSharedData& shared = GetDesktopSharedData();
    // First: the hook would act on the detaching when the shell merely looks at its queue, as COM
    // does while the folder view is told of a restore, and the rest would be told to nobody.
    ::UnhookWindowsHookEx(hhook);
    // A monitor starts all the same when a command has let its time pass.
    if (shared.hhook != hhook) return;
    // Posted: what a restore has still to tell comes before it. To both, as without the hook the
    // agent on each does it itself.
    PostMyCompanyMsg(shared.hwndListView, kCodeAttach, kDetach);
    PostMyCompanyMsg(shared.hwndView, kCodeAttach, kDetach);
    DWORD dwStart = ::GetTickCount();
    while ((IsMarked(shared.hwndListView) || IsMarked(shared.hwndView)) &&
           ::GetTickCount() - dwStart < nTimeoutMs) {
        ::Sleep(1);
    }
    shared.hhook = nullptr;
}
