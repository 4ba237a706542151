#include "icons/agent/agent.h"
#include "icons/agent/desktop_shared_data.h"
#include "icons/agent/icon_record.h"
#include "runtime/base/ownership.h"

#include <windows.h>
#include <commctrl.h>
#include <utility>

namespace {
// No construction at run time: mapping the library into the shell must cost nothing.
constinit MySysLVWnd agentListView;
constinit MyShellWnd agentView;
constinit LibraryHold libraryHold;

const char chInside = 0; // its address lies in this module's image

/// For the caller of LibraryHold::Release to have left this library's code: it still has to return
/// through it.
constexpr DWORD kLeaveMs = 1000;

DWORD WINAPI GiveBack(void* hmod) {
    ::Sleep(kLeaveMs);
    ::FreeLibraryAndExitThread(static_cast<HMODULE>(hmod), 0); // never returns to this code
}

// Ids of registered messages (RegisterWindowMessageW).
constexpr UINT kFirstRegisteredMsg = 0xC000, kLastRegisteredMsg = 0xFFFF;

/// One of the shared words, looked at once: what is checked must be what is used, and whoever can
/// map the library can change it at any time.
template <class Word>
Word ReadOnce(const Word& word) {
    return *const_cast<const volatile Word*>(&word);
}

/// The company message's id; 0 unless it is that of a registered message. Any other would have the
/// shell post whatever somebody has written there.
UINT GetSharedCompanyMsg() {
    UINT uMsg = static_cast<UINT>(ReadOnce(GetDesktopSharedData().nCompanyMsg));
    return uMsg >= kFirstRegisteredMsg && uMsg <= kLastRegisteredMsg ? uMsg : 0;
}

/// The company message with that code? Without an id no message is: 0 is WM_NULL, a message that
/// everybody sends.
bool IsEngineCode(UINT uMsg, WPARAM wParam, WPARAM wCode) {
    UINT uCompanyMsg = GetSharedCompanyMsg();
    return uMsg == uCompanyMsg && uCompanyMsg != 0 && wParam == wCode;
}

/// The monitor window; null if what is shared as such is another window.
HWND GetSharedMonitor() {
    HWND hwnd = ReadOnce(GetDesktopSharedData().hwndMonitor);
    return IsMonitorWindow(hwnd) ? hwnd : nullptr;
}

/// Posted and never sent: the monitor may be waiting for the shell at this moment.
void ReportIconsMoved() {
    UINT uMsg = GetSharedCompanyMsg();
    HWND hwndMonitor = GetSharedMonitor(); // a post to null would go to this thread
    if (uMsg && hwndMonitor) ::PostMessageW(hwndMonitor, uMsg, kCodeIconsMoved, 0);
}

/// Stands for a frame of the agent on the shell's stack. A menu or a drag keeps such frames waiting
/// while messages go on, the detaching ones too: the library may go only when the outermost frame
/// ends and neither window calls into it.
class AgentFrame {
  public:
    AgentFrame() { ++nFrames; }
    ~AgentFrame() {
        if (--nFrames) return;
        if (!agentListView.IsAttached() && !agentView.IsAttached()) libraryHold.Release();
    }
    AgentFrame(const AgentFrame&) = delete;
    AgentFrame& operator=(const AgentFrame&) = delete;

  private:
    static constinit int nFrames; // touched on the shell's thread alone
};
constinit int AgentFrame::nFrames = 0;

/// Each for itself: where one window has gone the other is attached all the same.
void AttachBoth() {
    libraryHold.Take(); // given back by the frame if neither window is there any more
    agentListView.AttachTo(ReadOnce(GetDesktopSharedData().hwndListView));
    agentView.AttachTo(ReadOnce(GetDesktopSharedData().hwndView));
}

void DetachBoth() {
    agentListView.DetachFrom();
    agentView.DetachFrom();
}

bool IsOfThisThread(HWND hwnd) {
    return ::GetWindowThreadProcessId(hwnd, nullptr) == ::GetCurrentThreadId();
}

/// The list view's messages carry pointers of this process: in another one they would be written
/// through all the same.
void CaptureFor(HWND hwndSender) {
    HWND hwndListView = ReadOnce(GetDesktopSharedData().hwndListView);
    HWND hwndMonitor = GetSharedMonitor();
    if (hwndMonitor && IsOfThisThread(hwndListView))
        SendCapture(hwndListView, hwndMonitor, hwndSender);
}

/// Kept out of the hook procedure: the path of foreign messages stays short.
__attribute__((noinline)) void OnRegisteredMessage(const MSG& msg) {
    if (msg.message != GetSharedCompanyMsg()) return;
    AgentFrame frame;
    if (IsEngineCode(msg.message, msg.wParam, kCodeCapture)) {
        CaptureFor(msg.hwnd);
    } else if (IsEngineCode(msg.message, msg.wParam, kCodeAttach)) {
        if (msg.lParam) {
            AttachBoth();
        } else {
            DetachBoth();
        }
    }
}
} // namespace

LRESULT CALLBACK DesktopHookProc(int nCode, WPARAM wParam, LPARAM lParam) {
    // Every message of the shell's desktop thread comes through here: one null test and one
    // comparison for those that can't be ours. Only the others are compared with what is shared,
    // the first of them after this process's session has been looked up.
    // QUIRK: neither nCode nor the remove flag is looked at, so that a program that peeks first and
    // takes then is served twice. Test: Agent.LooksNeitherAtTheHookCodeNorAtTheRemoveFlag
    const MSG* pMsg = reinterpret_cast<const MSG*>(lParam);
    if (pMsg && pMsg->message >= kFirstRegisteredMsg) OnRegisteredMessage(*pMsg);
    return ::CallNextHookEx(GetSharedHook(), nCode, wParam, lParam);
}

AgentWnd::~AgentWnd() {
    hWnd = nullptr; // the library is leaving its process: no window is touched any more
}

bool AgentWnd::AttachTo(HWND hwndTarget) {
    // Handles that were left over from a shell that is gone must not be marked with our objects.
    HWND hwndReal = hwndTarget ? hwndTarget : hWnd;
    if (!IsOfThisThread(hwndReal)) return false;
    // A window that this object left behind would go on calling it, with the new one's handle.
    if (bAttached && hwndReal != hWnd) CommonUnsubclass();
    // The property "CSWND" would be no measure of it later: another copy of the library can take
    // it.
    bAttached = Subclass(hwndTarget) != 0;
    return bAttached;
}

void AgentWnd::DetachFrom() {
    AgentFrame frame;
    CommonUnsubclass();
    bAttached = false;
    OnDetached();
}

void AgentWnd::OnPostNcDestroy() {
    CSWnd::OnPostNcDestroy();
    DetachFrom(); // the window is gone; nothing else would give the library back
}

LRESULT MySysLVWnd::OnWndMessage(UINT uMsg, WPARAM wParam, LPARAM lParam) {
    AgentFrame frame;
    if (IsEngineCode(uMsg, wParam, kCodeAttach) && lParam == 0) {
        DetachFrom();
        return 0;
    }
    // Anybody can post or send this: without a restore before it, or within a message that was
    // sent, where COM refuses the calls, it is one code of many.
    if (IsEngineCode(uMsg, wParam, kCodeTellFolderView) && toldPositions.IsPendingFor(hWnd) &&
        !::InSendMessage()) {
        toldPositions.TellFolderView();
        return 0; // the window may have gone meanwhile
    }
    switch (uMsg) {
    case WM_COPYDATA:
        if (lParam) OnRestore(*reinterpret_cast<const COPYDATASTRUCT*>(lParam));
        break;
    case WM_MOUSEMOVE:
        // The drag's own loop keeps the mouse: the first movement that comes here is after the
        // drop.
        if (!bDragBegun) break;
        bDragBegun = 0;
        ReportIconsMoved();
        break;
    }
    return CSWnd::OnWndMessage(uMsg, wParam, lParam);
}

void MySysLVWnd::OnRestore(const COPYDATASTRUCT& data) {
    if (!toldPositions.Keep(hWnd, RestoreFrom(hWnd, data))) return;
    UINT uCompanyMsg = GetSharedCompanyMsg();
    if (uCompanyMsg && ::PostMessageW(hWnd, uCompanyMsg, kCodeTellFolderView, 0)) return;
    toldPositions.Drop(); // nothing would ask for it
}

LRESULT MyShellWnd::OnWndMessage(UINT uMsg, WPARAM wParam, LPARAM lParam) {
    AgentFrame frame;
    if (IsEngineCode(uMsg, wParam, kCodeAttach) && lParam == 0) {
        DetachFrom();
        return 0;
    }
    if (uMsg == WM_NOTIFY && lParam) {
        const NMHDR& header = *reinterpret_cast<const NMHDR*>(lParam);
        if (header.hwndFrom == GetDesktopSharedData().hwndListView) {
            switch (header.code) {
            case LVN_SETDISPINFOW: ReportIconsMoved(); break;
            case LVN_BEGINDRAG:
            case LVN_BEGINRDRAG: agentListView.SetDragBegun(); break;
            }
        }
    }
    return CSWnd::OnWndMessage(uMsg, wParam, lParam);
}

void LibraryHold::Take() {
    if (hmodHeld) return;
    ::GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS,
                         reinterpret_cast<LPCWSTR>(&chInside), &hmodHeld);
}

void LibraryHold::Release() {
    HMODULE hmod = std::exchange(hmodHeld, nullptr);
    if (!hmod) return;
    OwnedHandle thread(::CreateThread(nullptr, 0, &GiveBack, hmod, 0, nullptr));
    if (!thread) hmodHeld = hmod; // held on; the next release tries again
}
