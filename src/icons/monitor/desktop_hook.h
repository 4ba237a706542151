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

// For a command that works without a monitor: it ends in time also where the shell does not answer.

/// InstallDesktopHook without a word to the view, which would be waited for. The hook; null if none
/// is set.
[[nodiscard]] HHOOK SetDesktopHook();
/// Whether the agent is on the list view, or another window object. It comes some time after the
/// hook was set.
[[nodiscard]] bool IsDesktopAttached();
/// Has both windows detached, behind all that was posted to them before, and then removes the hook
/// that SetDesktopHook gave. A shell that lets the time pass does it when it is back: until then
/// its windows call into the library, which the agent holds. If a monitor has set its own hook
/// meanwhile, the agent is that one's, and only the hook goes.
void LetGoOfDesktop(HHOOK hhook, DWORD nTimeoutMs);
