#pragma once
#include "runtime/base/export.h"
#include <windows.h>
#include <shtypes.h> // ITEMIDLIST

/// The item id list of a path, or of any text that the desktop folder can parse, counted from the
/// desktop. The caller owns it and frees it with ShellFree. Null if the text names nothing.
[[nodiscard]] TESSALY_API ITEMIDLIST* GetPidlOf(const wchar_t* pszPath);
