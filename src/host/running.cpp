#include "host/running.h"
#include "icons/agent/desktop_shared_data.h"
#include "runtime/base/ownership.h"

#include <windows.h>
#include <tlhelp32.h>

namespace {
/// The name of this program's file; empty if it cannot be told.
const wchar_t* GetOwnName(wchar_t (&szPath)[MAX_PATH]) {
    DWORD cch = ::GetModuleFileNameW(nullptr, szPath, MAX_PATH);
    if (cch == 0 || cch >= MAX_PATH) return L"";
    while (cch && szPath[cch - 1] != L'\\') --cch;
    return szPath + cch;
}

bool IsOfThisSession(DWORD dwProcess) {
    DWORD dwOwn = 0, dwOther = 0;
    return ::ProcessIdToSessionId(::GetCurrentProcessId(), &dwOwn) &&
           ::ProcessIdToSessionId(dwProcess, &dwOther) && dwOther == dwOwn;
}

bool HasOtherProcess() {
    wchar_t szPath[MAX_PATH];
    const wchar_t* pszName = GetOwnName(szPath);
    HANDLE hTaken = ::CreateToolhelp32Snapshot(TH32CS_SNAPPROCESS, 0);
    if (hTaken == INVALID_HANDLE_VALUE) return false;
    OwnedHandle processes(hTaken);
    PROCESSENTRY32W entry{};
    entry.dwSize = sizeof(entry);
    for (BOOL bMore = ::Process32FirstW(processes.Get(), &entry); bMore;
         bMore = ::Process32NextW(processes.Get(), &entry)) {
        if (entry.th32ProcessID != ::GetCurrentProcessId() &&
            ::lstrcmpiW(entry.szExeFile, pszName) == 0 && IsOfThisSession(entry.th32ProcessID)) {
            return true;
        }
    }
    return false;
}
} // namespace

bool IsRunningElsewhere() { return ::FindWindowW(kMonitorClass, nullptr) || HasOtherProcess(); }
