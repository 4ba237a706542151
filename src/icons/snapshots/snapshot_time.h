#pragma once
#include <windows.h>
#include <cstddef>

// The time stamps of snapshots as names and as dates.

/// Characters of a snapshot's name, without the terminator.
constexpr std::size_t kSnapshotNameLength = 16;
/// The name of the snapshot's value in the registry: upper-case hexadecimal digits, always 16.
void FormatSnapshotName(wchar_t (&szName)[kSnapshotNameLength + 1], unsigned __int64 qwTime);

/// The local date and time of a snapshot's time stamp (UTC file time). False if it stands for none.
[[nodiscard]] bool ToLocalTime(unsigned __int64 qwTime, SYSTEMTIME& st);
/// The same date in UTC.
[[nodiscard]] bool ToUtcTime(unsigned __int64 qwTime, SYSTEMTIME& st);
/// The present time as a time stamp.
unsigned __int64 GetPresentTime();

/// Room for the longest date that FormatTime writes.
constexpr int kTimeTextSize = 24;
/// "2026-11-21T10:05:00".
void FormatTime(wchar_t (&szText)[kTimeTextSize], const SYSTEMTIME& st);

/// Whether a time stamp is that of a snapshot which an import may bring: a date, also in local
/// time, and not in the future.
[[nodiscard]] bool IsImportableTime(unsigned __int64 qwTime);
