#pragma once
#include "runtime/base/export.h"
#include <windows.h>

// Drives as numbers, 0 for A, and as masks with bit 0 for A, as GetLogicalDrives gives them.

/// The mask of one drive: 1 for a number up to 0; 0 for one above 31.
TESSALY_API DWORD GetDriveMask(int nDrive);
/// The number of the set bit with that index, counted from 0 and from the lowest; -1 if the mask
/// has no more than nIndex bits.
TESSALY_API int GetDriveFromMask(DWORD dwMask, unsigned nIndex);
/// The number of bits that are set.
TESSALY_API int CountBits(DWORD dwMask);
/// Lists "A:", "B:" and so on for bits 0 to 25 of the mask, with the separator between, in cchOut
/// characters with the terminator. Drives that do not fit whole are left out. Returns how many are
/// in the list. The mask 0xFFFFFFFF, which some callers use for "unknown", gives 0 and leaves
/// pszOut alone. A null separator counts as empty.
TESSALY_API int GetDrivesList(DWORD dwMask, wchar_t* pszOut, unsigned cchOut,
                              const wchar_t* pszSeparator);
/// 0 to 25 for a path that starts with A to Z, whatever follows; otherwise -1.
// QUIRK: of the small letters only "a" is taken, as 0. Test:
// GetDriveFromPath.SmallLettersButAAreNone
TESSALY_API int GetDriveFromPath(const wchar_t* pszPath);
/// The drive of the Windows folder, whose letter may have either case; -1 if it is on none.
TESSALY_API int GetSystemDrive();
