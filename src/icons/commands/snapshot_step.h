#pragma once
#include "icons/agent/icon_record.h"
#include "runtime/base/export.h"
#include <windows.h>

/// A snapshot as a command of the command line sees it.
struct SnapshotEntry {
    unsigned __int64 qwTime; // its time stamp, by which the other steps know it
    SYSTEMTIME stLocal;      // the same as a local date
    unsigned nIcons;         // as the value's size says
    int bIntact;             // non-zero: its digest holds
    int bRestoredLast;       // non-zero: it has the mark
};

/// The steps that commands of the command line are made of.
enum class SnapshotStep : int {
    TakeTurn,  // waits for other commands and for a monitor that starts
    Begin,     // the same, and finds the monitor that runs; before the steps that change something
    End,       // gives the turn up
    List,      // the snapshots that have a date, in no order
    Load,      // the records of one
    Remember,  // captures the desktop
    Restore,   // has the icons moved, and the snapshot marked as the one restored last
    Delete,    // deletes a snapshot, damaged or not
    DeleteAll, // deletes all of them, and the mark
    Import,    // stores records under the time of their capture
};

/// A step with its data. What a step does not name it does not look at.
struct SnapshotWork {
    SnapshotStep step;       // what to do
    unsigned __int64 qwTime; // Load, Restore, Delete, Import
    SnapshotEntry* pEntries; // List: room for nEntries; may be null for none
    unsigned nEntries;       // becomes the number of those that there are
    unsigned nStored;        // List: becomes the number of all, those without a date too
    IconRecord* pRecords;    // Load: room for nRecords; Import: these
    unsigned nRecords;       // Load: becomes the number that there are
    int bQuiet;              // Restore: non-zero: nobody is asked whether the desktop may stop
                             // arranging its icons
};

/// Does the step that pWork tells and returns a CommandResult (icons/snapshots/command_result.h).
/// The monitor that runs does what changes something; without one it is done here, and nothing is
/// left behind in the shell or elsewhere. Shows nothing but that question. All waits end in time
/// but those for the user's answer and of Restore for the shell when that is asked whether it
/// arranges its icons, and told to stop. For one thread of a process that has no monitor of its
/// own.
extern "C" TESSALY_API int DoSnapshotStep(SnapshotWork* pWork);
