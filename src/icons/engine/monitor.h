#pragma once
#include "runtime/base/export.h"
#include <windows.h>

class MonitorFrontEnd;

/// Runs the monitor on the calling thread and returns when the user exits: finds the desktop, puts
/// the agent into the shell, watches and stores, and starts over whenever the shell has restarted.
/// hwndParent is the parent of the monitor window and of the message that the desktop can't be
/// found; null for none. quiet non-zero leaves the opening announcement out. Called once per
/// process.
extern "C" TESSALY_API void DoMonitor(HWND hwndParent, int quiet);

/// DoMonitor with another face than the icon in the notification area, which is not owned.
void RunMonitor(MonitorFrontEnd& frontEnd, HWND hwndParent, int quiet);
