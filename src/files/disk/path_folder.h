#pragma once
#include "runtime/base/export.h"
#include <windows.h>

// Making, removing and renaming folders, and the recycle bin. Paths have at most 259 characters.
// Results are 1 for success and 0 for failure, after which GetLastError mostly tells why. With
// bNotify the shell is told of a success.

/// Makes the folder and those above it that are missing; 1 as well if it is there already. The path
/// must be full (IsFullPathName) and name a drive, or a network share, below which folders are
/// made; a share itself, or less, gives 1 without being looked at. 0 if a file stands in the way.
/// Shows the wait cursor meanwhile.
TESSALY_API int CreateFolder(const wchar_t* pszPath);
/// The same by the shell (SHCreateDirectoryExW), which asks and complains in front of hwnd, or with
/// null does not. 0 if the folder is there already.
TESSALY_API int CreateFolderEx(HWND hwnd, const wchar_t* pszPath);
/// CreateFolder. An overload of the platform's function.
TESSALY_API int CreateDirectoryExW(const wchar_t* pszPath, int bNotify);
/// Removes an empty folder.
TESSALY_API int RemoveDirectoryEx(const wchar_t* pszPath, int bNotify);

/// Renames or moves a file, to another volume too, and returns when it is on the disk. Nothing is
/// overwritten. Unlike CoreFile::RenameFile, which stays on the volume as MoveFileW does.
TESSALY_API int RenameFile(const wchar_t* pszOld, const wchar_t* pszNew, int bNotify);
/// Renames or moves a folder on its volume.
TESSALY_API int RenameFolder(const wchar_t* pszOld, const wchar_t* pszNew, int bNotify);

/// Whether what is deleted there may go to the recycle bin: the path is on a fixed disk's drive.
TESSALY_API int CanRecycle(const wchar_t* pszPath);
/// Moves a file or folder, or what fits a mask, to the recycle bin, without asking; where there is
/// none it is deleted. hwnd owns the progress dialog.
TESSALY_API int Recycle(HWND hwnd, const wchar_t* pszPath);
