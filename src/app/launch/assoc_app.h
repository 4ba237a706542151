#pragma once
#include "runtime/base/export.h"
#include <windows.h>

// Which program the registry names for files and addresses. Buffers have 260 characters and may be
// null; they are empty after a 0.

/// The program that opens files of that extension (L".txt", the name of a key below HKCLS), as the
/// registered command names it: environment strings are expanded, and it exists and is no folder.
/// pszCommand gets the whole command as it is registered, also if its program is missing. 1 or 0.
TESSALY_API int GetAssociatedApp(const wchar_t* pszExtension, wchar_t* pszProgram,
                                 wchar_t* pszCommand);
/// The same for addresses that begin with the scheme (L"http").
TESSALY_API int GetProtocolApp(const wchar_t* pszScheme, wchar_t* pszProgram, wchar_t* pszCommand);

/// The small icon that a file shows: its own first one, or else the second, or else the first, of
/// the program for its extension. pszIconFile, *pnIcon and *phIcon get the file, the index and the
/// icon, which the caller destroys (null for not wanted); they are written only with the result 1.
/// 0 if there is no icon.
TESSALY_API int GetAssociatedIcon(const wchar_t* pszPath, wchar_t* pszIconFile, int* pnIcon,
                                  HICON* phIcon);
