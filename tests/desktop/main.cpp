// The shell of the tests: a window "Progman" with a view of the desktop in it, that does what it is
// told. Arguments: [real|plain|workerw|inside] [/SILENT]
//   real     the platform's own view over the files of the profile's desktop folder
//   plain    the same window classes over a list of any items
//   workerw  plain, but the view lies in a "WorkerW" above an empty Progman
//   inside   plain, with a "WorkerW" in Progman behind the view, as Windows 11 24H2 has it
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
constexpr UINT_PTR kSinkTimer = 1;
constexpr UINT kSinkMs = 50; // between two looks whether the window has been raised
constexpr int kSinkLooks = 20;

/// Puts the window directly above hwndBelow, or beneath all others if that is null.
void PlaceAbove(HWND hwnd, HWND hwndBelow) {
    HWND hwndAbove = hwndBelow ? ::GetWindow(hwndBelow, GW_HWNDPREV) : HWND_BOTTOM;
    if (hwndAbove == hwnd) return;
    ::SetWindowPos(hwnd, hwndAbove ? hwndAbove : HWND_TOP, 0, 0, 0, 0,
                   SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE | SWP_NOSENDCHANGING);
}

/// A click on the desktop must not raise it above the programs. The test platform raises an active
/// window some time after its activation and without a word to it: look a few times.
void OnSinkTimer(HWND hwnd) {
    static int nLooks;
    PlaceAbove(hwnd, reinterpret_cast<HWND>(::GetWindowLongPtrW(hwnd, GWLP_USERDATA)));
    if (++nLooks < kSinkLooks) return;
    nLooks = 0;
    ::KillTimer(hwnd, kSinkTimer);
}

LRESULT CALLBACK HostProc(HWND hwnd, UINT uMsg, WPARAM wParam, LPARAM lParam) {
    switch (uMsg) {
    case WM_WINDOWPOSCHANGING: reinterpret_cast<WINDOWPOS*>(lParam)->flags |= SWP_NOZORDER; break;
    case WM_ACTIVATE:
        if (LOWORD(wParam) != WA_INACTIVE) ::SetTimer(hwnd, kSinkTimer, kSinkMs, nullptr);
        break;
    case WM_TIMER:
        if (wParam == kSinkTimer) OnSinkTimer(hwnd);
        return 0;
    case WM_CLOSE: ::PostQuitMessage(0); return 0;
    }
    return ::DefWindowProcW(hwnd, uMsg, wParam, lParam);
}

/// A window over the screen's work area that stays directly above hwndBelow.
HWND CreateHost(const wchar_t* pszClass, HWND hwndBelow, DWORD dwMoreStyle = 0) {
    WNDCLASSW wc{};
    wc.lpfnWndProc = HostProc;
    wc.hInstance = ::GetModuleHandleW(nullptr);
    wc.hCursor = ::LoadCursorW(nullptr, IDC_ARROW);
    wc.hbrBackground = ::CreateSolidBrush(kDesktopColor);
    wc.lpszClassName = pszClass;
    ::RegisterClassW(&wc);
    // Not the whole screen: the test platform's taskbar stays hidden once it has been covered.
    RECT rc{};
    ::SystemParametersInfoW(SPI_GETWORKAREA, 0, &rc, 0);
    HWND hwnd = ::CreateWindowExW(WS_EX_TOOLWINDOW, pszClass, L"Program Manager",
                                  WS_POPUP | WS_CLIPCHILDREN | dwMoreStyle, rc.left, rc.top,
                                  rc.right - rc.left, rc.bottom - rc.top, nullptr, nullptr,
                                  wc.hInstance, nullptr);
    if (!hwnd) throw std::runtime_error("the desktop's window could not be made");
    ::SetWindowLongPtrW(hwnd, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(hwndBelow));
    PlaceAbove(hwnd, hwndBelow);
    ::ShowWindow(hwnd, SW_SHOWNOACTIVATE);
    ::SetTimer(hwnd, kSinkTimer, kSinkMs, nullptr); // showing it may have raised it, too
    return hwnd;
}

/// The window that the wallpaper is painted on where the view lies in Progman beside it.
void CreateWallpaperWindow(HWND hwndProgman) {
    WNDCLASSW wc{};
    wc.lpfnWndProc = ::DefWindowProcW;
    wc.hInstance = ::GetModuleHandleW(nullptr);
    wc.hbrBackground = ::CreateSolidBrush(kDesktopColor);
    wc.lpszClassName = L"WorkerW";
    ::RegisterClassW(&wc);
    RECT rc{};
    ::GetClientRect(hwndProgman, &rc);
    HWND hwnd = ::CreateWindowExW(0, L"WorkerW", L"", WS_CHILD | WS_VISIBLE, 0, 0, rc.right,
                                  rc.bottom, hwndProgman, nullptr, wc.hInstance, nullptr);
    if (!hwnd) throw std::runtime_error("the wallpaper's window could not be made");
    ::SetWindowPos(hwnd, HWND_BOTTOM, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE);
}

void CreateDesktop(Desktop& desktop) {
    // The test platform has an empty Progman of its own; who looks for a Progman finds the upper.
    HWND hwndPlatforms = ::FindWindowW(L"Progman", nullptr);
    bool bEmpty = desktop.strMode == L"workerw";
    // Disabled it is never activated, and so never raised above the WorkerW, not even for a moment.
    desktop.hwndProgman = desktop.hwndHost =
        CreateHost(L"Progman", hwndPlatforms, bEmpty ? WS_DISABLED : 0);
    if (bEmpty) {
        desktop.hwndHost = CreateHost(L"WorkerW", desktop.hwndProgman);
    }
    bool bReal = desktop.strMode == L"real";
    desktop.view = bReal ? CreateShellView(desktop.hwndHost) : CreatePlainView(desktop.hwndHost);
    if (desktop.strMode == L"inside") CreateWallpaperWindow(desktop.hwndProgman);
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
        } else if (strArg == L"real" || strArg == L"plain" || strArg == L"workerw" ||
                   strArg == L"inside") {
            desktop.strMode = strArg;
        } else {
            fprintf(stderr, "usage: test_desktop [real|plain|workerw|inside] [/SILENT]\n");
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
