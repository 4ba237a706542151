#include "shell/namespace/shell_notify.h"
#include "runtime/base/ownership.h"
#include "runtime/system/runtime_func.h"
#include "shell/namespace/pidl.h"

namespace {
constexpr int kSources = SHCNRF_InterruptLevel | SHCNRF_ShellLevel | SHCNRF_NewDelivery;
constexpr int kSourcesRecursive = kSources | SHCNRF_RecursiveInterrupt;

template <class Fn>
void FindShellFunc(Fn*& pfn, const char* pszName) {
    pfn = FindMappedFunc<Fn>(L"SHELL32", pszName);
}
} // namespace

constinit int ShellNotify::bInitialized = 0;
constinit decltype(&::SHChangeNotifyRegister) ShellNotify::pfnRegister = nullptr;
constinit decltype(&::SHChangeNotifyDeregister) ShellNotify::pfnDeregister = nullptr;
constinit decltype(&::SHChangeNotification_Lock) ShellNotify::pfnLock = nullptr;
constinit decltype(&::SHChangeNotification_Unlock) ShellNotify::pfnUnlock = nullptr;

ShellNotify::ShellNotify() {
    if (bInitialized) return;
    // Two first constructions at once find the same functions.
    FindShellFunc(pfnRegister, "SHChangeNotifyRegister");
    FindShellFunc(pfnDeregister, "SHChangeNotifyDeregister");
    FindShellFunc(pfnLock, "SHChangeNotification_Lock");
    FindShellFunc(pfnUnlock, "SHChangeNotification_Unlock");
    bInitialized = 1;
}

ShellNotify::~ShellNotify() { End(); }

void ShellNotify::End() {
    if (nId && pfnDeregister) pfnDeregister(nId);
    nId = 0;
}

int ShellNotify::Register(HWND hwnd, long nEvents, unsigned uMsg, const wchar_t* pszPath,
                          int nRecursive) {
    ITEMIDLIST* pidl = GetPidlOf(pszPath);
    ScopeExit release([&] { ShellFree(pidl); });
    return Register(hwnd, nEvents, uMsg, pidl, nRecursive);
}

int ShellNotify::Register(HWND hwnd, long nEvents, unsigned uMsg, const ITEMIDLIST* pidl,
                          int nRecursive) {
    End();
    if (!pfnRegister) return 0;
    SHChangeNotifyEntry entry{pidl, nRecursive};
    int nSources = nRecursive ? kSourcesRecursive : kSources;
    nId = pfnRegister(hwnd, nSources, nEvents, uMsg, 1, &entry);
    return nId != 0;
}

void* ShellNotify::OnMsgStart(WPARAM wParam, LPARAM lParam, ITEMIDLIST*** pppidl, long* pnEvent) {
    if (!pfnLock) return nullptr;
    return pfnLock(reinterpret_cast<HANDLE>(wParam), static_cast<DWORD>(lParam), pppidl, pnEvent);
}

void ShellNotify::OnMsgEnd(void* hLock) {
    if (pfnUnlock && hLock) pfnUnlock(hLock);
}
