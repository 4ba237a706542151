#include "app/about/about.h"
#include "app/identity/product_info.h"
#include "app/instance/single_instance.h"
#include "runtime/messages/msg.h"

namespace {
constexpr unsigned short kAboutDialog = 370; // the number by which the box is known

constinit bool bShown = false; // our own message box is up

/// Whether the thread's own box was there to be brought forward. It is found by the class of
/// message boxes and the title that all of ours have; should another one of ours be in front of it,
/// that one serves as well.
bool ActivateOwnBox() {
    if (!bShown) return false;
    HWND hwnd = nullptr;
    while ((hwnd = ::FindWindowExW(nullptr, hwnd, L"#32770", GetMyProductInfo().GetMsgTitle()))) {
        if (::GetWindowThreadProcessId(hwnd, nullptr) != ::GetCurrentThreadId()) continue;
        ::SetForegroundWindow(hwnd);
        return true;
    }
    return false;
}
} // namespace

void ShowAboutOrActivate() {
    if (ActivatePrevDlg(kAboutDialog) || ActivateOwnBox()) return;
    // A message box for now; a dialog takes its place once there are dialogs.
    MyProductInfo& info = GetMyProductInfo();
    bool bNested = bShown;
    bShown = true;
    MsgFmt(nullptr, MB_OK | MB_ICONINFORMATION,
           L"%s v. %s\n\nCopyright (c) %s Orvanta. All rights reserved.", info.GetName(),
           info.GetVersionStr(), info.GetCopyrightYear());
    bShown = bNested;
}
