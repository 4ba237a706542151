#pragma once
#include <windows.h>

// The codes that the company message carries (in wParam) between the monitor, the agent in the
// shell and the tray icon.

constexpr WPARAM kCodeOpenMenu = 371;   // tray icon to monitor window: open the tray menu
constexpr WPARAM kCodeCapture = 372;    // posted to the list view: capture now
constexpr WPARAM kCodeAttach = 373;     // to list view and view; lParam 1: subclass, 0: undo it
constexpr WPARAM kCodeIconsMoved = 374; // agent to monitor window: icons may have moved
