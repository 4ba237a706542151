#pragma once
#include "runtime/base/export.h"
#include <windows.h>
#include <shtypes.h>

// Texts for objects of the namespace, which are named by their lists counted from the desktop.
// Outputs have cchOut characters, or 260 where no size is told. Results are 1 if there is a text
// and 0 otherwise; the output is then empty.

/// The object's path in the file system, of up to 259 characters: pszOut has room for 260 whatever
/// cchOut is. With bDesktopForEmpty the empty list and null stand for the desktop's folder,
/// otherwise they have none. With bResolveNet a link of the network neighbourhood gives its target.
TESSALY_API int GetPathOf(const ITEMIDLIST* pidl, wchar_t* pszOut, unsigned cchOut,
                          int bDesktopForEmpty, int bResolveNet);
/// The object's name in its folder; with bFull its path, for which pszOut has room for 260
/// characters whatever cchOut is. An object outside the file system, but below something in it, is
/// named from there on: "C:\a\b.zip/c/d". The desktop's name for the empty list and null.
TESSALY_API int GetShellNameOf(const ITEMIDLIST* pidl, wchar_t* pszOut, unsigned cchOut, int bFull);
/// GetShellNameOf of what the text names.
TESSALY_API int GetShellPathOf(const wchar_t* pszPath, wchar_t* pszOut, unsigned cchOut, int bFull);
/// The name of the folder with all drives ("My Computer"), read once for the process. pszOut may be
/// null. The result is the process' own copy.
TESSALY_API const wchar_t* GetComputerFolderName(wchar_t* pszOut, unsigned cchOut);

// Zip files, which the shell shows as folders

/// Whether it is a file, or a folder, whose name ends in ".zip" in any case. The empty list and
/// null stand for the desktop's folder.
TESSALY_API int IsZipFolder(const ITEMIDLIST* pidl);
/// The list of the zip file in which the object is, or which it is; the caller frees it with
/// PIDL::Free. Null if there is none.
[[nodiscard]] TESSALY_API ITEMIDLIST* GetParentZipFolder(const ITEMIDLIST* pidl);
