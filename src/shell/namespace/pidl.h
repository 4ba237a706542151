#pragma once
#include "runtime/base/export.h"
#include <windows.h>
#include <objidl.h>  // IMalloc
#include <shtypes.h> // ITEMIDLIST

/// The item id list of a path, or of any text that the desktop folder can parse, counted from the
/// desktop. The caller owns it and frees it with ShellFree. Null if the text names nothing.
[[nodiscard]] TESSALY_API ITEMIDLIST* GetPidlOf(const wchar_t* pszPath);

/// The shell's allocator, from which it takes item id lists and names that its callers free. Asked
/// for at the first use, so that mapping the library calls nothing in the shell; one for the
/// process, borrowed by the caller. Null if the shell refuses.
TESSALY_API IMalloc* GetShellMalloc();

/// Gives a block back to the shell's allocator; nothing for null.
TESSALY_API void ShellFree(void* pBlock);

/// Gives the allocator itself back. For the library's end alone; a later use asks again.
void ReleaseShellMalloc();
