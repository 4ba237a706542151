#pragma once
#include "runtime/base/export.h"
#include <windows.h>

// Paths on drives that are connected to the network, and the network's names for them. A drive
// number counts from 0 for A. On a system without network connections (mpr.dll) nothing is
// connected.

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
/// The same in place in a buffer of 260 characters. A path without a network form stays.
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
