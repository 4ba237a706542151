#pragma once
#include "icons/agent/icon_record.h"
#include "icons/snapshots/snapshot_names.h"
#include "runtime/base/export.h"
#include "store/registry/reg_key.h"

// The memory of the icon engine: layouts of the desktop as values of the registry key
// HKCU\Software\Orvanta\<product>\Data. A value is the MD5 of its records, 16 bytes, and one or
// more IconRecords in the order of the list view. The key's default value is the name of the
// snapshot that was restored last; it may name one that is gone.
//
// Nothing is kept between calls, each opens the key anew. All run on the monitor's thread. A key
// that cannot be opened makes a capture count as changed and everything else do nothing, silently.

/// So many snapshots are kept, the newest.
constexpr int kMaxSnapshots = 25;

/// A capture has arrived: stores it if it differs from the newest snapshot, and reports the outcome
/// if the user asked for the capture. No records: nothing happens at all.
void OnIconsCaptured(const IconRecord* pRecords, unsigned nRecords);
/// 1 if the capture is to be stored, 0 if it equals the newest snapshot byte for byte.
int IsLayoutChanged(const IconRecord* pRecords, unsigned nRecords);
/// Stores the records under the present time and deletes what is older than the newest 25.
void StoreSnapshot(const IconRecord* pRecords, unsigned nRecords);
/// Deletes every value of the key, the mark of the last restored snapshot too.
TESSALY_API void DeleteAllSnapshots();

/// Puts the time stamp of each snapshot into the empty list, which does not own them unless it is a
/// SnapshotList. Goes by the values' names alone: 16 characters that do not stand for 0. Returns
/// their number.
TESSALY_API int ListSnapshots(RegKey& key, CSList& list);
/// The number of records of a snapshot; 0 if its value is absent or its size is none of a snapshot.
/// With pRecords they are copied there, if there is room for nRoom of them (0: the caller vouches
/// for the room).
// QUIRK: a value whose digest fails keeps its number of records and leaves pRecords as it is, so
// callers hand in zeros. Test: SnapshotStore.BadDigestKeepsTheCountAndLeavesTheBuffer
TESSALY_API unsigned ReadSnapshot(RegKey& key, unsigned __int64 qwTime,
                                  IconRecord* pRecords = nullptr, unsigned nRoom = 0);

/// Has the shell side move the icons as they were at that time and marks the snapshot as the one
/// restored last. Asks the user first if the list view arranges its icons by itself; after a no
/// nothing is changed. A snapshot without records is not restored, without a word.
TESSALY_API void RestoreSnapshot(unsigned __int64 qwTime);

/// Opens the store's key; with bWrite it is created if missing. 1 if it is open.
TESSALY_API int OpenSnapshotKey(RegKey& key, int bWrite);
