#pragma once
#include "runtime/base/export.h"
#include <windows.h>
#include <objidl.h> // IMalloc

/// The shell's allocator, from which it takes item id lists and names that its callers free. Asked
/// for at the first use, so that mapping the library calls nothing in the shell; one for the
/// process, borrowed by the caller. Null if the shell refuses.
TESSALY_API IMalloc* GetShellMalloc();

/// Gives a block back to the shell's allocator; nothing for null.
TESSALY_API void ShellFree(void* pBlock);

/// Gives the allocator itself back. For the library's end alone; a later use asks again.
void ReleaseShellMalloc();
