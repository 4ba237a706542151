#pragma once
#include "host/commands/snapshot_request.h"
#include "icons/commands/snapshot_step.h"
#include "icons/snapshots/command_result.h"
#include "runtime/base/heap_array.h"

#include <span>

/// A step of the library's with a time stamp, and with records.
CommandResult DoStep(SnapshotStep step, unsigned __int64 qwTime = 0, bool bQuiet = false);
CommandResult DoImportStep(unsigned __int64 qwTime, std::span<const IconRecord> records);
/// The records of a snapshot whose digest holds: Done, Damaged, NoSnapshot, NoMemory.
CommandResult LoadRecords(const SnapshotEntry& entry, HeapArray<IconRecord>& records);

/// The snapshots as they stand, strictly newest first, whatever order the registry has. Those whose
/// time stamp is no date are left out, as in the menu.
class SnapshotListing {
  public:
    /// Reads them: Done or NoMemory.
    CommandResult Read();
    std::span<const SnapshotEntry> Get() const { return {entries.Get(), nEntries}; }
    /// The one that the request means: of several of one second the newest. Null for none.
    const SnapshotEntry* Find(const SnapshotRequest& request) const;
    /// How many values stand for snapshots, those without a date too.
    unsigned GetStoredCount() const { return nStored; }

  private:
    HeapArray<SnapshotEntry> entries;
    std::size_t nEntries = 0;
    unsigned nStored = 0;
};
