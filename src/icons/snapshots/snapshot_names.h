#pragma once
#include "runtime/base/cs_list.h"
#include "runtime/base/export.h"

#include <cstddef>

// A snapshot is known by the UTC file time of its capture (100 ns since 1601). Its value's name is
// that number in 16 hexadecimal digits, so that a larger name is a later snapshot.

constexpr std::size_t kSnapshotNameLength = 16;

/// The time stamps of snapshots, each of them one unsigned __int64 on the heap that goes when its
/// node goes. Newest first, with the quirk told at InsertSnapshotTime.
class TESSALY_API SnapshotList : public CSList {
  public:
    SnapshotList() { SetCallback(0, FreeTime); }
    SnapshotList(const SnapshotList&) = delete;
    SnapshotList& operator=(const SnapshotList&) = delete;

  private:
    static int FreeTime(unsigned long long qwContext, unsigned nCode, void* pElement);
};

/// Gives back a time stamp that was taken out of a list; null does nothing.
void FreeSnapshotTime(void* pTime);

/// The time stamp at pos, which must not be null.
TESSALY_API unsigned __int64 GetSnapshotTime(const CSList& list, POS pos);
/// Inserts a copy of the time stamp before the first smaller one. 0 when out of memory.
// QUIRK: a time smaller than all others lands in front of the last one, not behind it. Values that
// are listed oldest first come out strictly newest first all the same.
// Test: SnapshotNames.SmallestTimeLandsBeforeTheLast
int InsertSnapshotTime(CSList& list, unsigned __int64 qwTime);

/// The value's name: upper-case digits, always 16.
void FormatSnapshotName(wchar_t (&szName)[kSnapshotNameLength + 1], unsigned __int64 qwTime);
/// The number that a text of eight pairs of hexadecimal digits stands for, 0 for any other length.
/// A single last character counts as a pair, and what is no digit as the digit 0.
TESSALY_API unsigned __int64 ParseSnapshotName(const wchar_t* pszName);
