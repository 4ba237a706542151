#pragma once
#include "icons/snapshots/snapshot_commands.h"

// What the monitor does with the desktop, without one: the agent is put into the shell for the
// length of the call and taken out again on every way out. Nothing is shown. The caller has the
// turn of the commands, and no monitor runs.

/// Captures the desktop and stores what has changed: Done, Unchanged, NotWritten, NoDesktop. The
/// agent answers to a window of the monitor's class alone, so that for this time others take this
/// process for a monitor: NoAnswer if one of them closes the window.
CommandResult CaptureWithoutMonitor();
/// RestoreForCommand on the desktop that is found; also NoDesktop if the agent can't be put in.
CommandResult RestoreWithoutMonitor(unsigned __int64 qwTime);
