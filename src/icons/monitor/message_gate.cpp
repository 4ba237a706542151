#include "icons/monitor/message_gate.h"
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

void LetShellMessagesIn(HWND hwnd, UINT uTaskbarCreatedMsg) {
    LetIn(hwnd, GetMyCompanyMsgId());
    LetIn(hwnd, WM_COPYDATA);
    LetIn(hwnd, uTaskbarCreatedMsg);
}
