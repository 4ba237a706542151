#pragma once
#include "runtime/base/export.h"
#include <windows.h>
#include <shlobj.h> // SHDESCRIPTIONID
#include <shtypes.h>

// What else the shell has. Results are 1 for success and 0 for failure.

/// The view that a window of the class "SHELLDLL_DefView" belongs to, with a reference for the
/// caller. Only a window of this process can be asked: another one's pointers mean nothing here.
[[nodiscard]] TESSALY_API int GetIShellView(HWND hwnd, IShellView** ppOut);
/// What kind of folder the list, counted from the desktop, leads to.
TESSALY_API int GetFolderDescriptionId(SHDESCRIPTIONID* pOut, const ITEMIDLIST* pidl);
