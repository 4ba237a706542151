#pragma once
#include "icons/agent/icon_record.h"
#include "icons/snapshots/command_result.h"
#include "runtime/base/heap_array.h"
#include "store/registry/reg_key.h"

#include <windows.h>
#include <span>

// What the command line has done with snapshots: by the monitor where one runs, else by the program
// that was started. Unlike what the menu calls, these tell how they came out, ask nobody, and wait
// for the shell only so long.

/// How long the shell may take to answer a question, and for a restore.
constexpr DWORD kShellAnswerMs = 5000, kShellRestoreMs = 6000;

/// The time stamp of the snapshot that was restored last; 0 if there is none. It may be gone.
unsigned __int64 ReadRestoreMark(const RegKey& key);

/// The records of a snapshot: Done; NoSnapshot, Damaged and NoMemory leave them not ready.
CommandResult LoadSnapshot(RegKey& key, unsigned __int64 qwTime, HeapArray<IconRecord>& records);

/// Whether there is such a snapshot and its digest holds: Done, NoSnapshot, Damaged, NoMemory.
CommandResult TestSnapshot(unsigned __int64 qwTime);
/// Puts the snapshot back on that list view and marks it as the one restored last: Done. Before
/// anything is touched NoSnapshot, Damaged, NoMemory, AutoArranged, NotWritten (the key cannot be
/// opened for writing) and NoDesktop; after it NotWritten if the mark is refused, and NoDesktop if
/// the shell took too long. Within a message that another process has sent, COM calls nobody, and
/// only the list view's style tells AutoArranged: the process that asks has to look itself, too.
CommandResult RestoreForCommand(HWND hwndListView, unsigned __int64 qwTime);
/// Deletes a snapshot, damaged or not, and the mark if it is its: Done, NoSnapshot, NotWritten.
CommandResult DeleteForCommand(unsigned __int64 qwTime);
/// Deletes all and the mark: Done, also if there are none, or NotWritten.
CommandResult DeleteAllForCommand();
/// Stores records under the time of their capture, which must be a date and not in the future, with
/// 1 to kMaxCapturedIcons of them: Done, IsThere, Differs, NoRoom (there are kMaxSnapshots
/// already), NotWritten, NoMemory (for looking at the one that is there); Damaged for what cannot
/// be a snapshot. Never writes over one.
CommandResult ImportForCommand(unsigned __int64 qwTime, std::span<const IconRecord> records);

/// The number of items of the desktop's list view; -1 if the shell does not answer in time.
int CountDesktopIcons(HWND hwndListView);
