#pragma once
#include <windows.h>

/// Asks the running program to close and waits until its process has gone, for at most nTimeoutMs.
/// Returns 1 if nothing runs (any more), 0 if it still runs.
int CloseRunning(DWORD nTimeoutMs);
