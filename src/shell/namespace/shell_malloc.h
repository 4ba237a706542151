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

/// The operations of iMalloc (com_wrappers.h) on the process' one allocator (GetShellMalloc). It
/// has neither construction nor end of its own, so that it can be used at any time.
class TESSALY_API ShellMemory {
  public:
    /// A block of cb bytes; null when out of memory, and without an allocator.
    void* Alloc(DWORD cb) const;
    /// Changes a block's size. A null block is allocated anew. Null when out of memory: the block
    /// then stays as it is.
    void* Realloc(void* pBlock, DWORD cb) const;
    void Free(void* pBlock) const { ShellFree(pBlock); } ///< Frees the block (ShellFree).
    void HeapMinimize() const; ///< Gives unused memory back to the system.
};
