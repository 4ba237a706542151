#include "icons/monitor/desktop_hook.h"
#include "icons/agent/agent.h"
#include "icons/agent/desktop_shared_data.h"
#include "icons/monitor/monitor_wnd.h"
#include "runtime/base/current_product.h"
#include "wnd/core/company_msg.h"

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

/// Whether a window object is on the shell's window. It may be another copy's.
int IsMarked(HWND hwnd) { return ::GetPropW(hwnd, L"CSWND") != nullptr; }

void SendDetach() {
    SendMyCompanyMsg(desktopSharedData.hwndListView, kCodeAttach, kDetach);
    SendMyCompanyMsg(desktopSharedData.hwndView, kCodeAttach, kDetach);
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
    SendDetach();
    ::UnhookWindowsHookEx(desktopSharedData.hhook);
    desktopSharedData.hhook = nullptr;
    // What is sent overtakes what was posted: an attaching that was still in the queue may have
    // come through the hook since. No other can, once the shell has answered.
    ::SendMessageW(desktopSharedData.hwndListView, WM_NULL, 0, 0);
    if (IsMarked(desktopSharedData.hwndListView) || IsMarked(desktopSharedData.hwndView)) {
        SendDetach();
    }
}

void ForgetStaleDesktopHook() {
    if (!IsMonitorWindow(desktopSharedData.hwndMonitor)) desktopSharedData.hhook = nullptr;
}
