#include "shell/subclass/shell_subclass.h"
#include "runtime/threads/manual_lock.h"
#include "runtime/system/runtime_func.h"

namespace {
constexpr const wchar_t* kControlsModule = L"COMCTL32";

constinit ManualLock csSubclass;

/// The module is only asked for, never loaded: this runs while the library itself is loaded.
template <class Fn>
Fn* FindControlsFunc(const char* pszName) {
    return reinterpret_cast<Fn*>(reinterpret_cast<void*>(FindMappedFunc(kControlsModule, pszName)));
}
} // namespace

constinit std::atomic<int> ShellSubclass::nState{kNotSetUp};
constinit UINT_PTR ShellSubclass::nId = 0;
constinit wchar_t ShellSubclass::szTag[kTagSize] = {};
constinit std::atomic<ShellSubclass::SetFunc*> ShellSubclass::pfnSet{nullptr};
constinit std::atomic<ShellSubclass::RemoveFunc*> ShellSubclass::pfnRemove{nullptr};
constinit std::atomic<ShellSubclass::DefaultFunc*> ShellSubclass::pfnDefault{nullptr};
constinit std::atomic<ShellSubclass::DefaultFunc*> ShellSubclass::pfnDefaultCopy{nullptr};

void ShellSubclass::StartLock() { csSubclass.Start(); }

void ShellSubclass::StopLock() { csSubclass.Stop(); }

const wchar_t* ShellSubclass::GetTag() { return szTag; }

int ShellSubclass::Initialize(UINT_PTR nNewId, const wchar_t* pszNewTag) {
    if (nState != kNotSetUp) return nState;
    ManualLockGuard lock(csSubclass);
    if (nState != kNotSetUp) return nState; // another thread was quicker
    nId = nNewId;
    // lstrcpynW is not for overlapping texts, and a second look is given the stored tag itself.
    if (pszNewTag != szTag) ::lstrcpynW(szTag, pszNewTag ? pszNewTag : L"", kTagSize);
    pfnSet = FindControlsFunc<SetFunc>("SetWindowSubclass");
    pfnRemove = FindControlsFunc<RemoveFunc>("RemoveWindowSubclass");
    pfnDefault = FindControlsFunc<DefaultFunc>("DefSubclassProc");
    pfnDefaultCopy = pfnDefault.load();
    nState = pfnSet.load() && pfnRemove.load() && pfnDefault.load() ? kReady : kMissing;
    return nState;
}

int ShellSubclass::ReInitialize() {
    nState = kNotSetUp;
    return Initialize(nId, szTag);
}

int ShellSubclass::IsReady() {
    int nNow = nState;
    return nNow == kNotSetUp ? ReInitialize() : nNow;
}

int ShellSubclass::Set(HWND hwnd, SUBCLASSPROC pfnSubclass, DWORD_PTR dwRefData) {
    ManualLockGuard lock(csSubclass);
    SetFunc* pfn = pfnSet;
    return pfn && pfn(hwnd, pfnSubclass, nId, dwRefData);
}

int ShellSubclass::Remove(HWND hwnd, SUBCLASSPROC pfnSubclass) {
    ManualLockGuard lock(csSubclass);
    RemoveFunc* pfn = pfnRemove;
    return pfn && pfn(hwnd, pfnSubclass, nId);
}

LRESULT ShellSubclass::Default(HWND hwnd, UINT uMsg, WPARAM wParam, LPARAM lParam) {
    DefaultFunc* pfn = pfnDefault.load(std::memory_order_relaxed);
    if (!pfn || pfn != pfnDefaultCopy.load(std::memory_order_relaxed)) {
        // This code also runs inside foreign processes: the library's data may have been
        // overwritten, or COMCTL32 unmapped and mapped again.
        ReInitialize();
        pfn = pfnDefault;
        if (!pfn) return ::DefWindowProcW(hwnd, uMsg, wParam, lParam);
    }
    return pfn(hwnd, uMsg, wParam, lParam);
}
