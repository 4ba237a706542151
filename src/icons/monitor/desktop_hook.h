#pragma once

// Putting the agent into the shell and taking it out. Monitor's thread only; the desktop's windows
// are those of desktopSharedData.

/// Sets the hook on the list view's thread and has it subclass both windows, unless a hook is set.
void InstallDesktopHook();
/// Detaches both windows and then removes the hook, if one is set. Returns after the shell's
/// windows are its own again: a window that still called into the library would bring the shell
/// down once the hook's library goes.
void RemoveDesktopHook();
/// Forgets the hook that a monitor left behind which ended without removing it; the platform took
/// it away with that process. The hook of a monitor that lives is left alone.
void ForgetStaleDesktopHook();
