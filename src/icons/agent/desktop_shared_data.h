#pragma once
#include <windows.h>

// What the two halves of the engine have in common: the names, the codes and the words by which the
// monitor process and the agent in the shell know each other.

/// The monitor window's class, and its title. The host finds the running monitor by it.
constexpr const wchar_t* kMonitorClass = L"TessalyWnd";

// The codes that the company message carries (in wParam) between the monitor, the agent in the
// shell and the tray icon. Where a code does not say otherwise, lParam is 0 and nobody looks at it.

constexpr WPARAM kCodeOpenMenu = 371;   // tray icon to monitor window: open the tray menu; lParam 1
constexpr WPARAM kCodeCapture = 372;    // posted to the list view: capture now
constexpr WPARAM kCodeAttach = 373;     // to list view and view; lParam 1: subclass, 0: undo it
constexpr WPARAM kCodeIconsMoved = 374; // agent to monitor window: icons may have moved
constexpr WPARAM kCodeTellFolderView = 375; // agent to its own list view: after a restore

/// Lies in a section of the library whose pages every process that maps the library shares. All
/// zero until a monitor runs. The monitor's thread alone writes it.
struct DesktopSharedData {
    unsigned long long nCompanyMsg; // id of the registered company message, 32 bits; 0 before
    HWND hwndListView;              // the desktop's "SysListView32"
    HHOOK hhook;                    // the WH_GETMESSAGE hook on its thread; null: none is set
    HWND hwndView;                  // the desktop's "SHELLDLL_DefView"
    HWND hwndMonitor;               // the monitor window; null: no monitor runs
};
static_assert(sizeof(DesktopSharedData) == 40, "five words, the same for every process");

extern DesktopSharedData desktopSharedData;
