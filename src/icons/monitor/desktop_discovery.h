#pragma once
#include "runtime/base/export.h"
#include <windows.h>

/// Finds the shell's view of the desktop ("SHELLDLL_DefView") and the list view in it
/// ("SysListView32"), walking upward through the top-level windows from "Progman", or from the
/// bottom if there is no such window: some shells keep the view in a window above it. Returns 1 and
/// writes both; 0 and writes neither when the walk runs out of windows, or without a place to write
/// to.
TESSALY_API int FindDesktopShellWnd(HWND* phwndView, HWND* phwndListView);
