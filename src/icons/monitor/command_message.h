#pragma once
#include "icons/snapshots/snapshot_commands.h"
#include <windows.h>

// How a program that was started with a command hands it to the monitor that runs: WM_COPYDATA to
// the monitor window, told from a capture by a number that none has. The answer is a CommandResult;
// a monitor that does not know commands drops it as a capture with too many icons, with the answer
// 0.

/// COPYDATASTRUCT::dwData of a command in this form.
constexpr ULONG_PTR kCommandData = 0x54530001;
static_assert(kCommandData > kMaxCapturedIcons);

enum class CommandCode : DWORD {
    Remember = 1, // qwValue: a number of the sender's choice; the answer is Pending
    Outcome,      // of the Remember of that number; Pending until its capture has come
    Restore,      // qwValue: the snapshot's time stamp
    Delete,       // the same
    DeleteAll,
    Import, // qwValue: the time stamp; the records follow
};

/// The data, before the records. Their size is that of this and of so many records, nothing else.
struct CommandMessage {
    CommandCode code;
    DWORD nRecords; // 0 for all but Import
    unsigned __int64 qwValue;
};
static_assert(sizeof(CommandMessage) == 16);

/// How long a command waits for its turn, for the window of a monitor that is starting, and for an
/// answer of the monitor.
constexpr DWORD kCommandTimeoutMs = 15000;
