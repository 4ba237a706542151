#pragma once
#include <windows.h>

// By what the product's processes know each other. Written down here once more, and not taken from
// the product's headers: a library and a program of two versions, and other programs, find each
// other by these, so that a change of one has to fail a test.

constexpr const wchar_t* kMonitorClass = L"TessalyWnd"; // and the window's title

inline UINT CompanyMsg() { return ::RegisterWindowMessageW(L"OrvantaMessage"); }
inline UINT ShellEventMsg() { return ::RegisterWindowMessageW(L"WM_TESSALY_SHLN"); }

// The company message's codes.
constexpr WPARAM kCodeClose = 1;        // lParam: the product's number
constexpr WPARAM kCodeOpenMenu = 371;   // tray icon to monitor
constexpr WPARAM kCodeCapture = 372;    // to the list view
constexpr WPARAM kCodeAttach = 373;     // to the desktop's windows; lParam 1: attach, 0: detach
constexpr WPARAM kCodeIconsMoved = 374; // agent to monitor
