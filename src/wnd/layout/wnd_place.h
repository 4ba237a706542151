#pragma once
#include "runtime/base/export.h"
#include <windows.h>

// Windows on their monitors. Positions are the screen's pixels; hwndOther may be null. What would
// reach beyond the monitor's left or top starts there, what would reach beyond its right or bottom
// ends there; the monitor is the whole one, its taskbar included. Results are the platform's, 0 for
// what is no window.

/// Moves it into the middle of the other window, or of the monitor if that is null or not larger
/// than 1 by 1 pixel.
TESSALY_API int CenterWindow(HWND hwnd, HWND hwndOther);
/// Moves it a scroll bar's width to the right and a caption's height below the other window's
/// corner, or the monitor's.
TESSALY_API int CascadeWindow(HWND hwnd, HWND hwndOther);
/// Moves its top left corner to the mouse. 0 if that can't be found.
TESSALY_API int MoveWindowToMouse(HWND hwnd);
/// CenterWindow for a window that lies on no monitor.
TESSALY_API void EnsureWindowVisible(HWND hwnd, HWND hwndOther);
/// Shifts the rectangle to the left and up until it ends in the work area of the nearest monitor.
/// What is then, or was before, to the left of that area or above it is cut.
TESSALY_API void FitRectToNearestMonitor(RECT* prc);

// The window's place in the registry, below the product's root key, as "posLeft" and "posTop"
// behind the prefix. Nothing happens if the key can't be opened.

/// Stores the window's top left corner.
TESSALY_API void WndStorePosition(HWND hwnd, LPCWSTR pszPrefix);
/// Half of the window may lie beyond the primary screen's left, right and bottom, none of it beyond
/// the top.
TESSALY_API void WndRestorePosition(HWND hwnd, LPCWSTR pszPrefix);
