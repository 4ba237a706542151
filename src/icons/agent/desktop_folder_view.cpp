#include "icons/agent/desktop_folder_view.h"
#include "runtime/system/runtime_func.h"

#include <windows.h>
#include <exdisp.h>
#include <servprov.h>
#include <shlguid.h>
#include <shlobj.h>

namespace {
/// Windows 10 1809. Builds before it take the list view's positions over when the shell ends.
constexpr DWORD kFirstBuild = 17763;

/// What fnAsk puts behind its pointer; empty if it fails. Some of the calls on the way succeed and
/// give nothing: S_FALSE of FindWindowSW means that there is no such window.
template <class Interface, class Fn>
OwnedInterface<Interface> TakeFrom(Fn fnAsk) {
    void* p = nullptr;
    if (FAILED(fnAsk(&p))) return {};
    return OwnedInterface<Interface>(static_cast<Interface*>(p));
}

template <class Interface>
OwnedInterface<Interface> QueryFor(IUnknown* p, REFIID iid) {
    return TakeFrom<Interface>([&](void** ppv) { return p->QueryInterface(iid, ppv); });
}

/// The desktop among the shell's windows.
OwnedInterface<IDispatch> FindDesktopWindow() {
    // Without COM on the thread this says so (CO_E_NOTINITIALIZED), and that is the end of it.
    auto windows = TakeFrom<IShellWindows>([](void** ppv) {
        return ::CoCreateInstance(CLSID_ShellWindows, nullptr, CLSCTX_LOCAL_SERVER,
                                  IID_IShellWindows, ppv);
    });
    if (!windows) return {};
    VARIANT location{}, root{}; // the second stays VT_EMPTY
    location.vt = VT_I4;
    location.lVal = CSIDL_DESKTOP;
    LONG lWindow = 0;
    OwnedInterface<IDispatch> desktop;
    if (FAILED(windows.Get()->FindWindowSW(&location, &root, SWC_DESKTOP, &lWindow,
                                           SWFO_NEEDDISPATCH, desktop.Put())))
        return {};
    return desktop;
}

OwnedInterface<IShellView> FindDesktopView() {
    OwnedInterface<IDispatch> desktop = FindDesktopWindow();
    if (!desktop) return {};
    auto services = QueryFor<IServiceProvider>(desktop.Get(), IID_IServiceProvider);
    if (!services) return {};
    auto browser = TakeFrom<IShellBrowser>([&](void** ppv) {
        return services.Get()->QueryService(SID_STopLevelBrowser, IID_IShellBrowser, ppv);
    });
    OwnedInterface<IShellView> view;
    if (!browser || FAILED(browser.Get()->QueryActiveShellView(view.Put()))) return {};
    return view;
}
} // namespace

bool IsFolderViewInCharge() {
    static constinit RuntimeFunc<LONG WINAPI(OSVERSIONINFOW*)> func(L"ntdll.dll", "RtlGetVersion");
    auto* pfn = func.Get();
    OSVERSIONINFOW info{};
    info.dwOSVersionInfoSize = sizeof(info);
    return pfn && pfn(&info) == ERROR_SUCCESS && info.dwBuildNumber >= kFirstBuild;
}

OwnedInterface<IFolderView> FindDesktopFolderView(HWND hwndView) {
    if (!hwndView) return {};
    OwnedInterface<IShellView> view = FindDesktopView();
    // Another shell's list view has no business with what the platform's one keeps.
    HWND hwndOfView = nullptr;
    if (!view || FAILED(view.Get()->GetWindow(&hwndOfView)) || hwndOfView != hwndView) return {};
    return QueryFor<IFolderView>(view.Get(), IID_IFolderView);
}

OwnedInterface<IFolderView2> FindDesktopFolderView2(HWND hwndView) {
    OwnedInterface<IFolderView> view = FindDesktopFolderView(hwndView);
    if (!view) return {};
    return QueryFor<IFolderView2>(view.Get(), IID_IFolderView2);
}
