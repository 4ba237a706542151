#pragma once
#include "icons/agent/icon_record.h"
#include "runtime/base/cs_list.h"
#include "runtime/base/export.h"
#include "store/registry/reg_key.h"

#include <cstddef>

// The memory of the icon engine: layouts of the desktop as values of the registry key
// HKCU\Software\Orvanta\<product>\Data. A value is the MD5 of its records, 16 bytes, and one or
// more IconRecords in the order of the list view. The key's default value is the name of the
// snapshot that was restored last; it may name one that is gone.
//
// A snapshot is known by the UTC file time of its capture (100 ns since 1601). Its value's name is
// that number in 16 hexadecimal digits, so that a larger name is a later snapshot.
//
// Nothing is kept between calls, each opens the key anew. All run on the monitor's thread. A key
// that cannot be opened makes a capture count as changed and everything else do nothing, silently.

/// So many snapshots are kept, the newest.
constexpr int kMaxSnapshots = 25;

// The time stamps

/// The time stamps of snapshots, each of them one unsigned __int64 on the heap that goes when its
/// node goes. Newest first, with the quirk told at InsertSnapshotTime.
class TESSALY_API SnapshotList : public CSList {
  public:
    SnapshotList() { SetCallback(0, FreeTime); }
    SnapshotList(const SnapshotList&) = delete; // owns the time stamps
    SnapshotList& operator=(const SnapshotList&) = delete;

  private:
    static int FreeTime(unsigned long long qwContext, unsigned nCode, void* pElement);
};

/// Gives back a time stamp that was taken out of a list; null does nothing.
void FreeSnapshotTime(void* pTime);
/// The time stamp at pos, which must not be null.
TESSALY_API unsigned __int64 GetSnapshotTime(const CSList& list, POS pos);
/// Inserts a copy of the time stamp before the first smaller one. False when out of memory.
// QUIRK: a time smaller than all others lands in front of the last one, not behind it. Values that
// are listed oldest first come out strictly newest first all the same.
// Test: SnapshotNames.SmallestTimeLandsBeforeTheLast
bool InsertSnapshotTime(CSList& list, unsigned __int64 qwTime);

/// The number that a text of eight pairs of hexadecimal digits stands for; 0 for any other length
/// and for a null text. A single last character counts as a pair, and what is no digit as the
/// digit 0.
TESSALY_API unsigned __int64 ParseSnapshotName(const wchar_t* pszName);

// The store

/// Opens the store's key; with bWrite it is created if missing. 1 if it is open, 0 if not.
TESSALY_API int OpenSnapshotKey(RegKey& key, int bWrite);
/// Puts the time stamp of each snapshot into the empty list, which does not own them unless it is a
/// SnapshotList. Goes by the values' names alone: 16 characters that do not stand for 0. Returns
/// their number; 0 also for a key that is not open.
TESSALY_API int ListSnapshots(RegKey& key, CSList& list);
/// The number of records of a snapshot; 0 if its value is absent or its size is none of a snapshot.
/// With pRecords they are copied there, if there is room for nRoom of them (0: the caller vouches
/// for the room). Without room for all, or out of memory, nothing is copied.
// QUIRK: a value whose digest fails keeps its number of records and leaves pRecords as it is, so
// callers hand in zeros. Test: SnapshotStore.BadDigestKeepsTheCountAndLeavesTheBuffer
TESSALY_API unsigned ReadSnapshot(RegKey& key, unsigned __int64 qwTime,
                                  IconRecord* pRecords = nullptr, unsigned nRoom = 0);

/// Whether the capture is to be stored: it is not equal to the newest snapshot, byte for byte.
[[nodiscard]] bool IsLayoutChanged(const IconRecord* pRecords, unsigned nRecords);
/// Stores the records under the present time and deletes what is older than the newest 25. False if
/// they are not stored: without memory or the registry's consent, for no records, and for more than
/// a value can hold.
bool StoreSnapshot(const IconRecord* pRecords, unsigned nRecords);
/// Deletes every value of the key, the mark of the last restored snapshot too.
TESSALY_API void DeleteAllSnapshots();

/// Has the shell side move the icons as they were at that time and marks the snapshot as the one
/// restored last. Asks the user first if the list view arranges its icons by itself; after a no
/// nothing is changed. A snapshot without records is not restored, without a word.
TESSALY_API void RestoreSnapshot(unsigned __int64 qwTime);
/// As RestoreSnapshot. True if a layout was sent to the shell side: not after a no, nor for a
/// damaged snapshot, which is marked all the same.
bool PutSnapshotBack(unsigned __int64 qwTime);
