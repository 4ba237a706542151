#pragma once
#include <windows.h>

/// Lets what the shell sends to the monitor window through to it: the company message, captures
/// (WM_COPYDATA) and "TaskbarCreated", whose id is given (0: it is not registered). Only where the
/// monitor runs at a higher integrity level than the shell of GetDesktopSharedData, as one does
/// that was started as administrator: from Vista on it would otherwise get none of them. A shell
/// whose level can't be asked counts as one of the level that shells have by default. Monitor's
/// thread only.
///
/// The platform knows no single senders: while the gate is open, every program of the shell's level
/// and of those below it can send these to the window (on Vista to every window of the process).
void LetShellMessagesIn(HWND hwnd, UINT uTaskbarCreatedMsg);

/// Whether the window is one of a process that runs at a higher integrity level than this one,
/// which lets no message of this one in but those of its gate. False where that can't be asked.
[[nodiscard]] bool IsOfHigherLevel(HWND hwnd);

/// Whether the window is one of a process that runs as the same user as this one. False where that
/// can't be asked, as of most processes of another user.
[[nodiscard]] bool IsOfSameUser(HWND hwnd);
