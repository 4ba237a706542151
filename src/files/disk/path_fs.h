#pragma once
#include "runtime/base/export.h"
#include <windows.h>

// Questions about files and folders, answered by the file system. Nothing is found under a null
// path, an empty one, or one of 260 characters or more. Results are 1 and 0 unless told otherwise.

/// FILE_ATTRIBUTE_..., by GetFileAttributesW or, where that fails, by FindFirstFileW: that also
/// tells of files that the system keeps locked, and of the first one that fits a mask.
/// INVALID_FILE_ATTRIBUTES if there is none.
TESSALY_API DWORD GetFileAttributes2(const wchar_t* pszPath);

// 1 if there is a file, a folder, either of them; asked by GetFileAttributes2, so that a mask
// counts as the first name that fits it.
TESSALY_API int FileExists(const wchar_t* pszPath);
TESSALY_API int FolderExists(const wchar_t* pszPath);
TESSALY_API int FileOrFolderExists(const wchar_t* pszPath);
// 1 if there is a file, a folder, either of them; asked by GetFileAttributesW alone, which knows no
// masks.
TESSALY_API int IsFileExists(const wchar_t* pszPath);
TESSALY_API int IsFolderExists(const wchar_t* pszPath);
TESSALY_API int IsFileOrFolderExists(const wchar_t* pszPath);

/// The file's size in bytes; 0 if there is no such file.
TESSALY_API unsigned __int64 FileSize(const wchar_t* pszPath);

/// Puts the short name of the file or folder (its last name alone) into cchOut characters, cut to
/// fit; an empty text if it has none, because it is short already, or is missing. 1 if not empty.
TESSALY_API int GetAltFileName(wchar_t* pszOut, unsigned cchOut, const wchar_t* pszPath);
/// Puts the short name of what the folder and the name, joined by MakePath, lead to into cchOut
/// characters, cut to fit; the folder's environment strings are expanded. Empty as well if the two
/// reach 260 characters. 1 if not empty.
TESSALY_API int GetAltFileName(wchar_t* pszOut, unsigned cchOut, const wchar_t* pszFolder,
                               const wchar_t* pszName);
/// Puts the short name of the file or folder into 260 characters; pszOut may be null. *pData, which
/// may be null too, gets all that the platform tells about the file, or zeros if there is none. 1
/// if the name is not empty.
TESSALY_API int GetShortFileName(const wchar_t* pszPath, wchar_t* pszOut, WIN32_FIND_DATAW* pData);

/// Whether somebody else keeps the file open, or it cannot be written for another reason, as when
/// it is read-only: it is opened for reading and writing, shared with nobody. Its times stay. 0 for
/// a folder or if there is no such file.
TESSALY_API int IsFileInUse(const wchar_t* pszPath);
/// Whether files can be made in the folder: one named after the time is made, written and deleted
/// again. 0 if there is no such folder.
TESSALY_API int IsDirWritable(const wchar_t* pszPath);

// Making, removing and renaming folders, and the recycle bin. Paths have at most 259 characters.
// Results are 1 for success and 0 for failure, after which GetLastError mostly tells why. With
// bNotify the shell is told of a success.

/// Makes the folder and those above it that are missing; 1 as well if it is there already. The path
/// must be full (IsFullPathName) and name a drive, or a network share, below which folders are
/// made; a share itself, or less, gives 1 without being looked at. 0 if a file stands in the way.
/// Shows the wait cursor meanwhile.
TESSALY_API int CreateFolder(const wchar_t* pszPath);
/// Makes the folder and those above it by the shell (SHCreateDirectoryExW), which asks and
/// complains in front of hwnd; with null it does neither. 0 if the folder is there already.
TESSALY_API int CreateFolderEx(HWND hwnd, const wchar_t* pszPath);
/// Makes the folder as CreateFolder does. An overload of the platform's function.
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
/// none it is deleted. The path must be full: what a relative one names, the platform deletes for
/// good. hwnd owns the progress dialog.
TESSALY_API int Recycle(HWND hwnd, const wchar_t* pszPath);
