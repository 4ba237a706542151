// The shell of the tests: a window "Progman" with a view of the desktop in it, that does what it is
// told. Arguments: [real|plain|workerw] [/SILENT]
//   real     the platform's own view over the files of the profile's desktop folder
//   plain    the same window classes over a list of any items
//   workerw  plain, but the view lies in a "WorkerW" above an empty Progman
//   /SILENT  no "TaskbarCreated" at the start

#include "desktop/commands.h"
#include "desktop/dragging.h"

#include <windows.h>
#include <commctrl.h>
#include <objbase.h>
#include <cstdio>
#include <stdexcept>
#include <string_view>

namespace {
LRESULT CALLBACK HostProc(HWND hwnd, UINT uMsg, WPARAM wParam, LPARAM lParam) {
    switch (uMsg) {
    case WM_WINDOWPOSCHANGING:
        // A click on the desktop must not raise it above the programs.
        reinterpret_cast<WINDOWPOS*>(lParam)->flags |= SWP_NOZORDER;
        break;
    case WM_CLOSE: ::PostQuitMessage(0); return 0;
    }
    return ::DefWindowProcW(hwnd, uMsg, wParam, lParam);
}

/// A window over the whole screen, hidden still, in front of all others.
HWND CreateHost(const wchar_t* pszClass) {
    WNDCLASSW wc{};
    wc.lpfnWndProc = ::DefWindowProcW; // HostProc later: the window must find its place first
    wc.hInstance = ::GetModuleHandleW(nullptr);
    wc.hCursor = ::LoadCursorW(nullptr, IDC_ARROW);
    wc.hbrBackground = reinterpret_cast<HBRUSH>(COLOR_DESKTOP + 1);
    wc.lpszClassName = pszClass;
    ::RegisterClassW(&wc);
    HWND hwnd = ::CreateWindowExW(
        WS_EX_TOOLWINDOW, pszClass, L"Program Manager", WS_POPUP | WS_CLIPCHILDREN,
        ::GetSystemMetrics(SM_XVIRTUALSCREEN), ::GetSystemMetrics(SM_YVIRTUALSCREEN),
        ::GetSystemMetrics(SM_CXVIRTUALSCREEN), ::GetSystemMetrics(SM_CYVIRTUALSCREEN), nullptr,
        nullptr, wc.hInstance, nullptr);
    if (!hwnd) throw std::runtime_error("the desktop's window could not be made");
    return hwnd;
}

/// Shows the window directly above hwndBelow, or beneath all others if that is null, for good.
void PlaceAbove(HWND hwnd, HWND hwndBelow) {
    HWND hwndAbove = hwndBelow ? ::GetWindow(hwndBelow, GW_HWNDPREV) : HWND_BOTTOM;
    if (hwndAbove == hwnd) hwndAbove = ::GetWindow(hwnd, GW_HWNDPREV);
    if (!hwndAbove) hwndAbove = HWND_TOP;
    ::SetWindowPos(hwnd, hwndAbove, 0, 0, 0, 0,
                   SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE | SWP_SHOWWINDOW);
    ::SetWindowLongPtrW(hwnd, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(HostProc));
}

void CreateDesktop(Desktop& desktop) {
    // The test platform has an empty Progman of its own; who looks for a Progman finds the upper.
    HWND hwndPlatforms = ::FindWindowW(L"Progman", nullptr);
    desktop.hwndProgman = desktop.hwndHost = CreateHost(L"Progman");
    PlaceAbove(desktop.hwndProgman, hwndPlatforms);
    if (desktop.strMode == L"workerw") {
        desktop.hwndHost = CreateHost(L"WorkerW");
        PlaceAbove(desktop.hwndHost, desktop.hwndProgman);
    }
    bool bReal = desktop.strMode == L"real";
    desktop.view = bReal ? CreateShellView(desktop.hwndHost) : CreatePlainView(desktop.hwndHost);
    InstallDragging(desktop.view->View(), desktop.view->List(),
                    bReal ? DragSource::PlatformView : DragSource::PlainView);
    if (!CreateCommandWindow(desktop)) throw std::runtime_error("no command window");
}

void RunUntilQuit(Desktop& desktop) {
    MSG msg;
    while (::GetMessageW(&msg, nullptr, 0, 0) > 0) {
        if (desktop.view->TakesKey(msg)) continue;
        ::TranslateMessage(&msg);
        ::DispatchMessageW(&msg);
    }
}
} // namespace

int wmain(int argc, wchar_t** argv) {
    Desktop desktop;
    desktop.strMode = L"real";
    bool bSilent = false;
    for (int n = 1; n < argc; ++n) {
        std::wstring_view strArg = argv[n];
        if (strArg == L"/SILENT") {
            bSilent = true;
        } else if (strArg == L"real" || strArg == L"plain" || strArg == L"workerw") {
            desktop.strMode = strArg;
        } else {
            fprintf(stderr, "usage: test_desktop [real|plain|workerw] [/SILENT]\n");
            return 2;
        }
    }
    INITCOMMONCONTROLSEX controls{sizeof(controls), ICC_LISTVIEW_CLASSES};
    ::InitCommonControlsEx(&controls);
    if (FAILED(::OleInitialize(nullptr))) return 1;
    try {
        CreateDesktop(desktop);
        if (!bSilent) {
            ::SendNotifyMessageW(HWND_BROADCAST, ::RegisterWindowMessageW(L"TaskbarCreated"), 0, 0);
        }
        RunUntilQuit(desktop);
    } catch (const std::exception& failure) {
        fprintf(stderr, "test_desktop: %s\n", failure.what());
        return 1;
    }
    desktop.view.reset();
    ::OleUninitialize();
    return 0;
}
