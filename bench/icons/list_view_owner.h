#pragma once
#include <windows.h>

// A process that owns a list view with icons, as the shell does, and does timed work on it when it
// is asked.

constexpr const wchar_t* kOwnerClass = L"TessalyBenchOwner";
constexpr int kIcons = 999;

// Sent to the owner's window; the result is the time of one turn in microseconds.
constexpr UINT kMsgCapture = WM_APP + 1;     // CaptureIcons of all items
constexpr UINT kMsgBareRead = WM_APP + 2;    // the same list-view messages and nothing else
constexpr UINT kMsgRestore = WM_APP + 3;     // RestoreFrom with records of all items
constexpr UINT kMsgBareRestore = WM_APP + 4; // the same capture and position messages, bare

/// The owner's process: makes the window and its list view, and runs until the window closes.
int RunOwner();
