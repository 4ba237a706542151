#include "shell/subclass/shell_subclasser.h"
#include "shell/subclass/shell_subclass.h"

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
