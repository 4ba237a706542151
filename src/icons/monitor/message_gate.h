#pragma once
#include <windows.h>

/// Lets what the shell sends to the monitor window through to it: the company message, captures
/// (WM_COPYDATA) and "TaskbarCreated". From Vista on, a monitor that was started as administrator
/// would otherwise get none of them, since the shell runs at a lower integrity level. Handlers of
/// these messages trust nothing in them anyway. Does nothing on older systems.
void LetShellMessagesIn(HWND hwnd, UINT uTaskbarCreatedMsg);
