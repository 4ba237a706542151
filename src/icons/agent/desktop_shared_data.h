#pragma once
#include <windows.h>

/// What the monitor process and the agent in the shell know of each other. The words lie in a
/// section of the library (".SDATA") whose pages every process that maps the library shares. The
/// monitor's thread alone writes them, each before it posts the code that makes the shell read it;
/// there is no lock.
struct DesktopSharedData {
    unsigned long long nCompanyMsg; // id of the registered company message, 32 bits; 0 before
    HWND hwndListView;              // the desktop's "SysListView32"
    HHOOK hhook;                    // the WH_GETMESSAGE hook on its thread; null: none is set
    HWND hwndView;                  // the desktop's "SHELLDLL_DefView"
    HWND hwndMonitor;               // the monitor window; null: no monitor runs
};
static_assert(sizeof(DesktopSharedData) == 40, "five words, the same for every process");

extern DesktopSharedData desktopSharedData;

// The codes that the company message carries (in wParam) between the monitor, the agent in the
// shell and the tray icon.

constexpr WPARAM kCodeOpenMenu = 371;       // tray icon to monitor window: open the tray menu
constexpr WPARAM kCodeCapture = 372;        // posted to the list view: capture now
constexpr WPARAM kCodeAttach = 373;         // to list view and view; lParam 1: subclass, 0: undo it
constexpr WPARAM kCodeIconsMoved = 374;     // agent to monitor window: icons may have moved
constexpr WPARAM kCodeTellFolderView = 375; // agent to its own list view: after a restore
