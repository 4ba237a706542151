#pragma once
#include "desktop/desktop_view.h"
#include "desktop/protocol.h"
#include <windows.h>
#include <string>

/// The desktop as its commands see it. All of it belongs to the shell's one thread.
struct Desktop {
    std::wstring strMode; // "real", "plain", "workerw" or "inside"
    HWND hwndProgman = nullptr;
    HWND hwndHost = nullptr; // the view's parent: Progman, or the WorkerW above it
    std::unique_ptr<DesktopView> view;
};

/// Makes the command window; from then on each command is answered between two other messages of
/// the shell. Returns null if the platform refused.
HWND CreateCommandWindow(Desktop& desktop);
