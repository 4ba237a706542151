#pragma once
#include "runtime/base/export.h"
#include <windows.h>

// Questions about drives and the volumes on them. A drive number counts from 0 for A.

/// Whether the platform knows the drive whose letter, of either case, starts the text; what follows
/// does not count. 0 if it starts with none.
TESSALY_API int DriveExists(const wchar_t* pszPath);
/// DRIVE_... (winbase.h) of a drive number; DRIVE_NO_ROOT_DIR where there is none. An overload of
/// the platform's function, which takes a root's text: a null pointer has to be written nullptr.
TESSALY_API UINT GetDriveTypeW(int nDrive);
/// The same of the drive whose letter starts the path; DRIVE_UNKNOWN (0) if it starts with none.
TESSALY_API UINT GetDriveTypeFromPath(const wchar_t* pszPath);

/// The name of the file system, as "NTFS", of the volume with that path, into cchOut characters.
/// 1; 0 with an empty text if the path has no root (GetRootPath) or the platform gives no name, as
/// for a drive without a disk or when the name does not fit.
TESSALY_API int GetFileSysName(const wchar_t* pszPath, wchar_t* pszOut, unsigned cchOut);
/// How many bytes a file may have on the volume with that path: 0xFFFFFFF0000 where the file system
/// keeps access rights, otherwise 0xFFFFFFFF. 0 if the platform does not know the volume.
TESSALY_API unsigned __int64 GetMaxFileSize(const wchar_t* pszPath);
