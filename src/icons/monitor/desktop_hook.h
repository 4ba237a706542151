#pragma once
#include <windows.h>

// The road between the monitor and the agent: putting the agent into the shell and taking it out,
// and letting its messages through to the monitor window. Monitor's thread only; the desktop's
// windows are those of GetDesktopSharedData.

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

/// Lets what the shell sends to the monitor window through to it: the company message, captures
/// (WM_COPYDATA) and "TaskbarCreated", whose id is given (0: it is not registered). From Vista on,
/// a monitor that was started as administrator would otherwise get none of them, since the shell
/// runs at a lower integrity level. Does nothing on older systems.
void LetShellMessagesIn(HWND hwnd, UINT uTaskbarCreatedMsg);
