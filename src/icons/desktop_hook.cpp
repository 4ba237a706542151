#include "icons/desktop_hook.h"
#include "icons/agent.h"
#include "icons/desktop_shared_data.h"
#include "icons/engine_codes.h"
#include "icons/monitor_wnd.h"
#include "runtime/library_instance.h"
#include "wnd/company_msg.h"

#include <cwchar>

namespace {
constexpr LPARAM kAttach = 1, kDetach = 0;
constexpr int kCchClass = 32; // a longer class name is not the monitor window's

/// A handle that was left behind may name somebody else's window by now.
bool IsMonitorWindow(HWND hwnd) {
    wchar_t szClass[kCchClass];
    return hwnd && ::GetClassNameW(hwnd, szClass, kCchClass) &&
           std::wcscmp(szClass, kMonitorClass) == 0;
}
} // namespace

void InstallDesktopHook() {
    if (desktopSharedData.hhook) return;
    DWORD dwThread = ::GetWindowThreadProcessId(desktopSharedData.hwndListView, nullptr);
    desktopSharedData.hhook =
        ::SetWindowsHookExW(WH_GETMESSAGE, &DesktopHookProc, GetLibraryInstance(), dwThread);
    // Posted, because the hook sees only what passes through the thread's queue.
    // QUIRK: the view is sent the same, which has no effect: the hook attaches it too.
    // Test: AgentRoute.ASentAttachDoesNotAttach
    PostMyCompanyMsg(desktopSharedData.hwndListView, kCodeAttach, kAttach);
    SendMyCompanyMsg(desktopSharedData.hwndView, kCodeAttach, kAttach);
}

void RemoveDesktopHook() {
    if (!desktopSharedData.hhook) return;
    SendMyCompanyMsg(desktopSharedData.hwndListView, kCodeAttach, kDetach);
    SendMyCompanyMsg(desktopSharedData.hwndView, kCodeAttach, kDetach);
    ::UnhookWindowsHookEx(desktopSharedData.hhook);
    desktopSharedData.hhook = nullptr;
}

void ForgetStaleDesktopHook() {
    if (!IsMonitorWindow(desktopSharedData.hwndMonitor)) desktopSharedData.hhook = nullptr;
}
