#pragma once
#include <windows.h>

// The road between the monitor and the agent: putting the agent into the shell and taking it out.
// Monitor's thread only; the desktop's windows are those of GetDesktopSharedData.

/// Sets the hook on the list view's thread and has it subclass both windows, unless a hook is set.
/// No hook is set for a list view that has gone; nothing is done if there is no room for this
/// session's words.
void InstallDesktopHook();
/// Detaches both windows and then removes the hook, if one is set. Returns after the shell's
/// windows are its own again.
void RemoveDesktopHook();
/// Forgets the hook that a monitor left behind which ended without removing it; the platform took
/// it away with that process. The hook of a monitor that lives is left alone.
void ForgetStaleDesktopHook();
