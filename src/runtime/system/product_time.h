#pragma once
#include "runtime/base/export.h"
#include <windows.h>

/// The product's own time: now, in seconds since 26 December 1995, 00:00 UTC.
TESSALY_API DWORD GetCurTime();
/// The same of a given time (UTC), in 32 bits.
TESSALY_API DWORD GetProductTime(const FILETIME& ft);
/// Now, UTC. Returns 1.
TESSALY_API int GetSysFileTime(FILETIME* pft);
/// The packed date: year - 1980 in the high bits, month in 4 bits, day in 5. Null means today by
/// the local clock.
TESSALY_API DWORD GetDOSdate(const SYSTEMTIME* pst = nullptr);
