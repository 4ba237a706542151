#pragma once
#include "runtime/base/export.h"
#include <windows.h>
#include <shtypes.h>

// The platform's dialogs in which a user chooses a folder or a file. hwnd owns them; COM is the
// caller's. A null title is the library's own. Paths have 260 characters, in and out, and come out
// as DosPathToShellPath spells them. Results are 1 if something was chosen and 0 otherwise unless
// told otherwise.

/// A folder of the file system, or what else nFlags (BIF_...) allow; from Windows 2000 on in the
/// resizable dialog with a line to type in. pszPath is what is chosen at first, and stays if
/// nothing else is. Only what is below the root, a list counted from the desktop, can be chosen;
/// null for all.
TESSALY_API int BrowseForFolder(HWND hwnd, wchar_t* pszPath, const wchar_t* pszTitle,
                                unsigned nFlags, const ITEMIDLIST* pidlRoot);
/// Any folder of the namespace. pidlStart, unless null, is what is chosen at first; pszDisplayName
/// of 260 characters, unless null, takes the name of what was chosen. The result is its list, which
/// the caller frees with PIDL::Free; null for none.
[[nodiscard]] TESSALY_API ITEMIDLIST* BrowseForFolder(HWND hwnd, const ITEMIDLIST* pidlStart,
                                                      wchar_t* pszDisplayName,
                                                      const wchar_t* pszTitle, unsigned nFlags,
                                                      const ITEMIDLIST* pidlRoot);
/// A folder of the network. 1 if there is a path in the end, also if it is the one that was there.
TESSALY_API int BrowseForNetFolder(HWND hwnd, wchar_t* pszPath);

/// Makes the list of texts that the file dialogs take out of a filter "Texts|*.txt|...": the entry
/// for all files comes behind one that does not end in "|", and is all there is for an empty filter
/// and null. Every "|" becomes a terminator. pszOut has room for the filter and 20 characters.
TESSALY_API void PrepareBrowseFilter(wchar_t* pszOut, const wchar_t* pszFilter);
/// A file to open or, with bSave, to write, which pszPath names at first. pszFolder, pszFilter (see
/// PrepareBrowseFilter) and pszDefaultExt may be null. nFlags are OFN_...; 0 asks before a file is
/// overwritten, or has the file be there, has its folder be there, shows no read-only box and
/// leaves the current directory.
TESSALY_API int BrowseForFile(HWND hwnd, int bSave, wchar_t* pszPath, const wchar_t* pszTitle,
                              const wchar_t* pszFolder, const wchar_t* pszFilter,
                              const wchar_t* pszDefaultExt, unsigned nFlags);
