#include "app/about/about.h"
#include "app/identity/my_product_info.h"
#include "app/instance/single_instance.h"
#include "runtime/messages/msg.h"

namespace {
constexpr unsigned short kAboutDialog = 370; // the number by which the box is known

constinit int bShown = 0; // our own message box is up

/// 1 if the thread's own box was there to be brought forward. It has a message box's class and is
/// told by its title, which all of ours have; another one of ours in front serves as well.
int ActivateOwnBox() {
    if (!bShown) return 0;
    HWND hwnd = nullptr;
    while ((hwnd = ::FindWindowExW(nullptr, hwnd, L"#32770", GetMyProductInfo().GetMsgTitle()))) {
        if (::GetWindowThreadProcessId(hwnd, nullptr) != ::GetCurrentThreadId()) continue;
        ::SetForegroundWindow(hwnd);
        return 1;
    }
    return 0;
}
} // namespace

void ShowAboutOrActivate() {
    if (ActivatePrevDlg(kAboutDialog) || ActivateOwnBox()) return;
    // A dialog of its own comes with the dialogs.
    MyProductInfo& info = GetMyProductInfo();
    int bNested = bShown;
    bShown = 1;
    MsgFmt(nullptr, MB_OK | MB_ICONINFORMATION,
           L"%s v. %s\n\nCopyright (c) %s Orvanta. All rights reserved.", info.GetName(),
           info.GetVersionStr(), info.GetCopyrightYear());
    bShown = bNested;
}
