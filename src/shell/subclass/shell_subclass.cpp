#include "shell/subclass/shell_subclass.h"
#include "runtime/system/runtime_func.h"
#include "runtime/threads/crit_sec.h"

namespace {
constexpr const wchar_t* kControlsModule = L"COMCTL32";

constinit ManualLock csSubclass;

/// The module is only asked for, never loaded: this runs while the library itself is loaded.
template <class Fn>
Fn* FindControlsFunc(const char* pszName) {
    return FindMappedFunc<Fn>(kControlsModule, pszName);
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

LRESULT ShellSubclasser::OnWndMsg(HWND hwndMsg, UINT uMsg, WPARAM wParam, LPARAM lParam) {
    if (ShellSubclass::IsReady()) return ShellSubclass::Default(hwndMsg, uMsg, wParam, lParam);
    if (!nOldWndProc) return ::DefWindowProcW(hwndMsg, uMsg, wParam, lParam);
    return ::CallWindowProcW(reinterpret_cast<WNDPROC>(nOldWndProc), hwndMsg, uMsg, wParam, lParam);
}

int ShellSubclasser::Subclass(HWND hwndOther) {
    if (!ShellSubclass::IsReady()) return Subclass_Win2K(hwndOther);
    if (!ShellSubclass::Set(hwndOther, ShellSubclasserProc, reinterpret_cast<DWORD_PTR>(this)))
        return 0;
    hwnd = hwndOther;
    return 1;
}

int ShellSubclasser::Unsubclass() {
    if (!ShellSubclass::IsReady()) return Unsubclass_Win2K();
    if (!ShellSubclass::Remove(hwnd, ShellSubclasserProc)) return 0;
    hwnd = nullptr;
    return 1;
}

LRESULT CALLBACK ShellSubclasser::ShellSubclasserProc(HWND hwndMsg, UINT uMsg, WPARAM wParam,
                                                      LPARAM lParam, UINT_PTR /*nSubclassId*/,
                                                      DWORD_PTR dwRefData) {
    auto* pSubclasser = reinterpret_cast<ShellSubclasser*>(dwRefData);
    LRESULT lResult = pSubclasser->OnWndMsg(hwndMsg, uMsg, wParam, lParam);
    if (uMsg == WM_NCDESTROY) {
        pSubclasser->Unsubclass();
        // The platform may have dissolved the window's chain already, and then there was nothing
        // to remove; the window is gone in any case.
        pSubclasser->hwnd = nullptr;
    }
    return lResult;
}

int ShellSubclasser::Subclass_Win2K(HWND hwndOther) {
    const wchar_t* pszTag = ShellSubclass::GetTag();
    if (::GetPropW(hwndOther, pszTag)) return 0;
    auto nPresent = static_cast<UINT_PTR>(::GetWindowLongPtrW(hwndOther, GWLP_WNDPROC));
    if (!nPresent || !::SetPropW(hwndOther, pszTag, this)) return 0;
    UINT_PTR nBefore = nOldWndProc;
    nOldWndProc = nPresent; // before the replacement: the first message may come at once
    if (!::SetWindowLongPtrW(hwndOther, GWLP_WNDPROC,
                             reinterpret_cast<LONG_PTR>(ShellSubclasserWndProc_Win2K))) {
        ::RemovePropW(hwndOther, pszTag);
        nOldWndProc = nBefore;
        return 0;
    }
    hwnd = hwndOther;
    return 1;
}

int ShellSubclasser::Unsubclass_Win2K() {
    const wchar_t* pszTag = ShellSubclass::GetTag();
    if (!hwnd || ::GetPropW(hwnd, pszTag) != this) return 0;
    ::RemovePropW(hwnd, pszTag);
    // QUIRK: a later subclasser that took over the window procedure is cut out by this; the chain
    // exists to avoid just that. Test: FallbackTest.UnsubclassCutsOutALaterSubclasser
    ::SetWindowLongPtrW(hwnd, GWLP_WNDPROC, static_cast<LONG_PTR>(nOldWndProc));
    nOldWndProc = 0;
    hwnd = nullptr;
    return 1;
}

LRESULT CALLBACK ShellSubclasser::ShellSubclasserWndProc_Win2K(HWND hwndMsg, UINT uMsg,
                                                               WPARAM wParam, LPARAM lParam) {
    auto* pSubclasser = static_cast<ShellSubclasser*>(::GetPropW(hwndMsg, ShellSubclass::GetTag()));
    if (!pSubclasser) return ::DefWindowProcW(hwndMsg, uMsg, wParam, lParam);
    LRESULT lResult = pSubclasser->OnWndMsg(hwndMsg, uMsg, wParam, lParam);
    // The handler may have unsubclassed the window; then the object is not to be touched.
    if (uMsg == WM_NCDESTROY && ::GetPropW(hwndMsg, ShellSubclass::GetTag()) == pSubclasser)
        pSubclasser->Unsubclass_Win2K();
    return lResult;
}
