#include "icons/monitor/message_gate.h"
#include "icons/agent/desktop_shared_data.h"
#include "runtime/base/ownership.h"
#include "runtime/system/runtime_func.h"
#include "wnd/core/company_msg.h"

#include <optional>

// winuser.h has these from Vista and Windows 7 on.
#ifndef MSGFLT_ADD
#define MSGFLT_ADD 1
#endif
#ifndef MSGFLT_ALLOW
#define MSGFLT_ALLOW 1
#endif

namespace {
// Of winnt.h from Windows Vista on.
constexpr auto kTokenIntegrityLevel = static_cast<TOKEN_INFORMATION_CLASS>(25);
constexpr DWORD kProcessQueryLimitedInformation = 0x1000;
constexpr DWORD kSecurityMandatoryMediumRid = 0x2000;

/// TOKEN_MANDATORY_LABEL and behind it the label itself, whose last number is the level.
struct LabelOfToken {
    SID_AND_ATTRIBUTES label;
    unsigned char sid[SECURITY_MAX_SID_SIZE];
};

/// The integrity level that the process runs at; none where there is no such thing, as before
/// Vista, or where it can't be asked.
std::optional<DWORD> ReadLevel(HANDLE hProcess) {
    OwnedHandle token;
    if (!hProcess || !::OpenProcessToken(hProcess, TOKEN_QUERY, token.Put())) return {};
    LabelOfToken told{};
    DWORD cb = 0;
    if (!::GetTokenInformation(token.Get(), kTokenIntegrityLevel, &told, sizeof(told), &cb))
        return {};
    const auto* pSid = static_cast<const SID*>(told.label.Sid);
    if (!pSid || !pSid->SubAuthorityCount) return {};
    return pSid->SubAuthority[pSid->SubAuthorityCount - 1];
}

/// TOKEN_USER and behind it the user.
struct UserOfToken {
    SID_AND_ATTRIBUTES user;
    unsigned char sid[SECURITY_MAX_SID_SIZE];
};

/// The user that the process runs as; told.user.Sid points into told. False where it can't be
/// asked.
bool ReadUser(HANDLE hProcess, UserOfToken& told) {
    OwnedHandle token;
    if (!hProcess || !::OpenProcessToken(hProcess, TOKEN_QUERY, token.Put())) return false;
    DWORD cb = 0;
    return ::GetTokenInformation(token.Get(), TokenUser, &told, sizeof(told), &cb) && told.user.Sid;
}

/// The process that has the window, to be asked; empty if there is none or it may not be.
OwnedHandle OpenProcessOf(HWND hwnd, DWORD dwAccess = kProcessQueryLimitedInformation) {
    DWORD dwProcess = 0;
    ::GetWindowThreadProcessId(hwnd, &dwProcess);
    if (!dwProcess) return {};
    return OwnedHandle(::OpenProcess(dwAccess, FALSE, dwProcess));
}

/// The level of the desktop's process.
DWORD ReadShellLevel() {
    OwnedHandle shell = OpenProcessOf(GetDesktopSharedData().hwndListView);
    // A monitor that runs as another user, an administrator, may not be let at the shell.
    return ReadLevel(shell.Get()).value_or(kSecurityMandatoryMediumRid);
}

bool IsShellKeptOut() {
    std::optional<DWORD> dwOwn = ReadLevel(::GetCurrentProcess());
    return dwOwn && *dwOwn > ReadShellLevel();
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

void LetShellMessagesIn(HWND hwnd, UINT uTaskbarCreatedMsg) {
    // Whoever sends them is not known to the handlers. They see to it that what a message carries
    // holds together; a capture that somebody has made up is stored like one of the desktop's, and
    // a row of them pushes all others out of the store. So nobody is let in for nothing.
    if (!IsShellKeptOut()) return;
    LetIn(hwnd, GetMyCompanyMsgId());
    LetIn(hwnd, WM_COPYDATA);
    LetIn(hwnd, uTaskbarCreatedMsg);
}

bool IsOfHigherLevel(HWND hwnd) {
    std::optional<DWORD> dwOwn = ReadLevel(::GetCurrentProcess());
    if (!dwOwn) return false; // before Vista there is no such thing
    OwnedHandle process = OpenProcessOf(hwnd);
    std::optional<DWORD> dwOther = ReadLevel(process.Get());
    return dwOther && *dwOther > *dwOwn;
}

bool IsOfSameUser(HWND hwnd) {
    OwnedHandle process = OpenProcessOf(hwnd);
    if (!process) process = OpenProcessOf(hwnd, PROCESS_QUERY_INFORMATION); // before Vista
    UserOfToken own{}, other{};
    return ReadUser(::GetCurrentProcess(), own) && ReadUser(process.Get(), other) &&
           ::EqualSid(own.user.Sid, other.user.Sid);
}
