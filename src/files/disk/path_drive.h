#pragma once
#include "runtime/base/export.h"
#include <windows.h>

// Questions about drives and the volumes on them. A drive number counts from 0 for A.

/// 1 if the platform knows the drive whose letter, of either case, starts the text, whatever
/// follows. 0 also for a text that starts with none, and for null.
TESSALY_API int DriveExists(const wchar_t* pszPath);
/// DRIVE_... (winbase.h) of a drive number; DRIVE_NO_ROOT_DIR where there is none. An overload of
/// the platform's function, which takes a root's text: a null pointer has to be written nullptr.
TESSALY_API UINT GetDriveTypeW(int nDrive);
/// DRIVE_... of the drive whose letter, of either case, starts the path; DRIVE_NO_ROOT_DIR where
/// there is none, DRIVE_UNKNOWN (0) if the path starts with no letter.
TESSALY_API UINT GetDriveTypeFromPath(const wchar_t* pszPath);

/// The name of the file system, as "NTFS", of the volume with that path, into cchOut characters.
/// 1; 0 with an empty text if the path has no root (GetRootPath) or the platform gives no name, as
/// for a drive without a disk or when the name does not fit.
TESSALY_API int GetFileSysName(const wchar_t* pszPath, wchar_t* pszOut, unsigned cchOut);
/// How many bytes a file may have on the volume with that path: 0xFFFFFFF0000 where the file system
/// keeps access rights, otherwise 0xFFFFFFFF. 0 if the platform does not know the volume.
TESSALY_API unsigned __int64 GetMaxFileSize(const wchar_t* pszPath);

// Drives as numbers, 0 for A, and as masks with bit 0 for A, as GetLogicalDrives gives them.

/// The mask of one drive; that of drive 0 for a negative number, and 0 for one above 31.
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
// QUIRK: of the small letters only "a" is taken, as 0.
// Test: GetDriveFromPath.SmallLettersButAAreNone
TESSALY_API int GetDriveFromPath(const wchar_t* pszPath);
/// The drive of the Windows folder, whose letter may have either case; -1 if it is on none.
TESSALY_API int GetSystemDrive();

// Paths on drives that are connected to the network, and the network's names for them. Where the
// platform has no network connections (mpr.dll) nothing is connected.

/// Puts the network form of a path into cchOut characters, cut to fit: of a path on a connected
/// drive the connection's name and what follows the "X:"; of a network path (IsNetworkPath) a copy.
/// With bUpper all of it is in upper case. 1; 0 with an empty text for a path that has none, or if
/// the platform cannot list the connections. pszOut may be the path.
// QUIRK: a connection that the list does not show is read from the device's name only where that
// is "\??\UNC\..." or has ";X:0" directly before the server's backslash; newer systems put a longer
// number there, whose rest is then taken along.
// Test: GetUniversalNameTest.LongerNumberInTheDeviceNameIsTakenAlong
TESSALY_API int GetUniversalName(wchar_t* pszOut, unsigned cchOut, const wchar_t* pszPath,
                                 int bUpper);
/// Gives a path its network form (GetUniversalName) in place, in a buffer of 260 characters. One
/// without such a form stays, and null does nothing.
TESSALY_API void ConvertPathToUNC(wchar_t* pszPath);

/// The mask, with bit 0 for A, of the drives that the platform calls remote.
TESSALY_API DWORD GetNetworkDrivesMask();
/// The network form of a drive's root, "\\SERVER\SHARE" in upper case, into 260 characters. 1; 0
/// with an empty text.
TESSALY_API int GetNetworkDrivePath(int nDrive, wchar_t* pszOut);
/// The path on a connected drive, "X:\...", for a network path at or below a drive's root, into 260
/// characters, cut to fit; of several drives the first in the alphabet. The network path may be
/// longer than other paths. 1; 0 with an empty text if no drive leads there. pszOut may be the
/// path.
TESSALY_API int DosPathFromUncPath(wchar_t* pszOut, const wchar_t* pszUnc);
