#pragma once
#include "runtime/base/export.h"
#include <windows.h>
#include <shtypes.h>

// What the shell shows for an object, which is named by its list counted from the desktop. bOpen
// asks for the form of an open folder, bLarge for the large icon instead of the small one, bLink
// for the arrow of a shortcut.

/// The index in the system's image list; 0 if the shell does not know the object.
TESSALY_API int GetSysIconIndex(const ITEMIDLIST* pidl, int bOpen, int bLarge, int bLink);
/// The icon, which the caller destroys; null if there is none. *pnIndex, unless null, gets its
/// index in the system's image list.
[[nodiscard]] TESSALY_API HICON GetIconOf(const ITEMIDLIST* pidl, int bOpen, int bLarge, int bLink,
                                          int* pnIndex);
[[nodiscard]] TESSALY_API HICON GetIconOf(const wchar_t* pszPath, int bOpen, int bLarge, int bLink,
                                          int* pnIndex);
/// The object's SFGAO_...; 0 if the shell does not know it.
TESSALY_API DWORD GetAttributesOf(const ITEMIDLIST* pidl);
/// 0xFFFFFFFF if the user has the extensions of files shown, else 0.
TESSALY_API DWORD ShouldShowExt();
