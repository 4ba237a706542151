#include "icons/monitor/monitor_wnd.h"
#include "app/identity/product_info.h"
#include "icons/agent/desktop_shared_data.h"
#include "icons/monitor/desktop_hook.h"
#include "icons/monitor/front_end.h"
#include "icons/monitor/message_gate.h"
#include "icons/snapshots/snapshot_store.h"
#include "runtime/system/system_facts.h"
#include "runtime/system/wts_api32.h"
#include "shell/namespace/pidl.h"
#include "wnd/core/company_msg.h"

#include <windows.h>
#include <shlobj.h>
#include <wtsapi32.h>

namespace {
constexpr unsigned kDebounceTimerId = 10, kDebounceMs = 10000;
constexpr unsigned kSuppressTimerId = 11, kSuppressMs = 1000;

/// Whatever can add, remove or rename an icon.
constexpr long kWatchedEvents = SHCNE_RENAMEITEM | SHCNE_CREATE | SHCNE_DELETE | SHCNE_MKDIR |
                                SHCNE_RMDIR | SHCNE_DRIVEREMOVED | SHCNE_DRIVEADD |
                                SHCNE_UPDATEITEM | SHCNE_SERVERDISCONNECT | SHCNE_RENAMEFOLDER;
static_assert(kWatchedEvents == 0x2619F);

constinit MyMonitor_Wnd* pCurrent = nullptr;
constinit UINT uTaskbarCreated = 0;
constinit bool RestartFlag = true; // the first round is one too

constexpr const wchar_t* kPutBackText =
    L"The displays have changed. The icons are back as they were with these displays.";
} // namespace

void OnIconsCaptured(const IconRecord* pRecords, unsigned nRecords) {
    if (!pRecords || !nRecords) return;
    bool bChanged = IsLayoutChanged(pRecords, nRecords);
    bool bStored = bChanged && StoreSnapshot(pRecords, nRecords);
    MyMonitor_Wnd* pMonitor = MyMonitor_Wnd::GetCurrent();
    if (!pMonitor) return;
    pMonitor->NoteLayout(pRecords, nRecords, !bChanged || bStored);
    pMonitor->GetCommandDesk().OnCaptured(!bChanged ? CommandResult::Unchanged
                                          : bStored ? CommandResult::Done
                                                    : CommandResult::NotWritten);
    if (!pMonitor->GetSnapshotAnnounce()) return;
    pMonitor->ReportCaptureOutcome(bChanged ? L"Icons stored"
                                            : L"No changes to the icons have been detected.");
}

void RegisterTaskbarCreated() {
    if (!uTaskbarCreated) uTaskbarCreated = ::RegisterWindowMessageW(L"TaskbarCreated");
}

bool GetRestartFlag() { return RestartFlag; }

void SetRestartFlag(bool bRestart) { RestartFlag = bRestart; }

MyMonitor_Wnd* MyMonitor_Wnd::GetCurrent() { return pCurrent; }

MyMonitor_Wnd::MyMonitor_Wnd(MonitorFrontEnd& frontEndToCall)
    : timerDebounce(kDebounceTimerId), timerSuppress(kSuppressTimerId), frontEnd(frontEndToCall) {
    // A failure means that the class is there already, which serves as well.
    RegisterClassExWithWndExtra(kMonitorClass, 0);
    pCurrent = this;
}

MyMonitor_Wnd::~MyMonitor_Wnd() {
    if (pCurrent == this) pCurrent = nullptr;
    UnregisterClassW(kMonitorClass);
    timerSuppress.Stop();
    timerDebounce.Stop();
}

bool MyMonitor_Wnd::CreateHidden(HWND hwndParent) {
    if (!Create(kMonitorClass, kMonitorClass, 0, 0, 0, 1, 1, hwndParent, nullptr, nullptr)) {
        return false;
    }
    LetShellMessagesIn(hWnd, uTaskbarCreated);
    displays.Start(hWnd);
    return true;
}

void MyMonitor_Wnd::RegisterNotification() {
    uNotifyMsg = ::RegisterWindowMessageW(L"WM_TESSALY_SHLN");
    PIDL desktop;
    desktop.Make();
    if (!desktop) return; // out of memory; drags and renames are still heard of
    notify.Register(hWnd, kWatchedEvents, uNotifyMsg, desktop, 0);
}

void MyMonitor_Wnd::EndNotification() { notify.End(); }

void MyMonitor_Wnd::ScheduleCapture() {
    timerDebounce.Stop();
    if (!timerSuppress.IsTicking()) timerDebounce.Start(hWnd, kDebounceMs);
}

/// Refused on XP while the services are starting that it needs: that is when the program starts
/// with Windows. Each capture tries again.
void MyMonitor_Wnd::RegisterSessions() {
    if (bHearsOfSessions || !WinXP()) return;
    bHearsOfSessions = WtsApi32::WTSRegisterSessionNotification(hWnd, NOTIFY_FOR_THIS_SESSION) != 0;
}

void MyMonitor_Wnd::RequestCapture() {
    RegisterSessions();
    displays.OnCaptureAsked();
    // Posted, because the hook sees only what passes through the queue of the list view's thread.
    PostMyCompanyMsg(GetDesktopSharedData().hwndListView, kCodeCapture, 0);
}

void MyMonitor_Wnd::NoteLayout(const IconRecord* pRecords, unsigned nRecords, bool bSeen) {
    displays.OnCaptured({pRecords, nRecords}, bSeen);
}

void MyMonitor_Wnd::SuppressCaptures() {
    timerDebounce.Stop();
    timerSuppress.Start(hWnd, kSuppressMs);
}

void MyMonitor_Wnd::SetHook(int bInstall) {
    if (bInstall) {
        InstallDesktopHook();
    } else {
        RemoveDesktopHook();
    }
}

void MyMonitor_Wnd::ReportCaptureOutcome(const wchar_t* pszText) {
    SnapshotAnnounce = 0; // first: what is told may lead to the next request
    frontEnd.OnCaptureOutcome(pszText);
}

LRESULT MyMonitor_Wnd::OnWndMessage(UINT uMsg, WPARAM wParam, LPARAM lParam) {
    // The ids of registered messages are 0 until they are registered, and 0 is WM_NULL.
    if (uMsg == WM_NULL) return CSWnd::OnWndMessage(uMsg, wParam, lParam);
    if (uMsg == GetMyCompanyMsgId()) {
        OnCompanyMessage(wParam, lParam);
    } else if (uMsg == uNotifyMsg) {
        OnNotification(wParam, lParam);
    } else if (uMsg == uTaskbarCreated) {
        RestartFlag = true;
        ::PostMessageW(hWnd, WM_CLOSE, 0, 0);
    }
    switch (uMsg) {
    case WM_CREATE:
        bHearsOfSessions = false;
        RegisterSessions();
        break;
    case WM_DESTROY:
        if (WinXP()) WtsApi32::WTSUnRegisterSessionNotification(hWnd);
        displays.End();
        break;
    case WM_CLOSE: OnClose(); break;
    case WM_QUERYENDSESSION:
        SetHook(0); // the shell is left clean before the session may end
        break;
    case WM_ENDSESSION:
        if (wParam) {
            ::PostMessageW(hWnd, WM_CLOSE, 0, 0);
        } else {
            SetHook(1); // the end was cancelled
        }
        break;
    case WM_COPYDATA: {
        const auto* pData = reinterpret_cast<const COPYDATASTRUCT*>(lParam);
        if (IsCommandData(pData)) return OnCommand(*pData);
        OnCopyData(reinterpret_cast<HWND>(wParam), pData);
        break;
    }
    case WM_DISPLAYCHANGE: displays.OnChange(); break;
    case WM_TIMER: OnTimer(wParam); break;
    case WM_WTSSESSION_CHANGE: OnSessionChange(wParam); break;
    }
    return CSWnd::OnWndMessage(uMsg, wParam, lParam);
}

void MyMonitor_Wnd::OnCompanyMessage(WPARAM wCode, LPARAM lParam) {
    switch (wCode) {
    case kCompanyCodeClose:
        if (LOWORD(lParam) == GetMyProductInfo().GetID()) ::PostMessageW(hWnd, WM_CLOSE, 0, 0);
        break;
    case kCodeOpenMenu: frontEnd.OnMenuRequest(*this); break;
    case kCodeIconsMoved: ScheduleCapture(); break;
    case kCodeDisplaysSwitch:
        if (displays.OnSwitch()) RequestCapture();
        break;
    }
}

void MyMonitor_Wnd::OnNotification(WPARAM wParam, LPARAM lParam) {
    ITEMIDLIST** ppidl = nullptr;
    long lEvent = 0;
    LPARAM lProcess = static_cast<LPARAM>(static_cast<DWORD>(lParam));
    void* pLock = ShellNotify::OnMsgStart(wParam, lProcess, &ppidl, &lEvent);
    ScheduleCapture(); // any event counts
    if (pLock) ShellNotify::OnMsgEnd(pLock);
}

void MyMonitor_Wnd::OnCopyData(HWND hwndAsked, const COPYDATASTRUCT* pData) {
    if (!pData) {
        OnIconsCaptured(nullptr, 0);
        return;
    }
    // Any program can send this: a count that the data do not hold, or that no capture has, is
    // dropped.
    if (pData->dwData > kMaxCapturedIcons) return;
    if (pData->dwData > pData->cbData / sizeof(IconRecord)) return;
    if (pData->dwData && !pData->lpData) return;
    const auto* pRecords = static_cast<const IconRecord*>(pData->lpData);
    auto nRecords = static_cast<unsigned>(pData->dwData);
    if (displays.TakeCapture(hwndAsked, {pRecords, nRecords})) return;
    OnIconsCaptured(pRecords, nRecords);
}

LRESULT MyMonitor_Wnd::OnCommand(const COPYDATASTRUCT& data) {
    bool bRestores = CommandDesk::MovesIcons(data);
    if (bRestores) SuppressCaptures(); // before anything moves
    if (CommandDesk::AsksForCapture(data)) displays.OnCaptureAsked();
    LRESULT lResult = commandDesk.OnCommandData(data);
    // After any other answer the icons lie as nobody has put them.
    if (bRestores && lResult == static_cast<LRESULT>(CommandResult::Done)) NoteRestore();
    return lResult;
}

void MyMonitor_Wnd::OnTimer(UINT_PTR uTimerId) {
    switch (uTimerId) {
    case kDebounceTimerId:
        // QUIRK: the timer is not stopped: once anything has moved, the desktop is captured every
        // ten seconds until a restore; an unchanged capture stores nothing.
        // Test: MonitorWnd.DebounceTimerGoesOnAfterItFired
        RequestCapture();
        break;
    case kSuppressTimerId: timerSuppress.Stop(); break;
    case DisplayWatcher::kTimerId: OnDisplaysTimer(); break;
    }
}

void MyMonitor_Wnd::OnDisplaysTimer() {
    if (!displays.OnTimer()) return;
    SuppressCaptures(); // before anything moves
    if (displays.PutBack()) frontEnd.OnIconsPutBack(kPutBackText);
}

void MyMonitor_Wnd::OnSessionChange(WPARAM wEvent) {
    switch (wEvent) {
    case WTS_CONSOLE_CONNECT:
    case WTS_REMOTE_CONNECT:
        displays.OnChange(); // it may have others than the one before
        [[fallthrough]];
    case WTS_SESSION_LOCK:
    case WTS_SESSION_UNLOCK: RequestCapture(); break;
    }
}

void MyMonitor_Wnd::OnClose() {
    frontEnd.OnMonitorClose(); // the icon goes while the window that it asks still stands
    Destroy();
    ::PostQuitMessage(0);
}
