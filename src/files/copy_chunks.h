#pragma once
#include <windows.h>

class CoreIOObj;

constexpr DWORD kCopyBufferSize = 0x2000000; // 32 MiB: more makes no copy faster

/// Copies cb bytes from position to position through pBuffer of cbBuffer bytes, whole chunks at a
/// time. 1; 0 at the first read or write that fails or is short.
int CopyChunks(CoreIOObj& source, CoreIOObj& target, void* pBuffer, DWORD cbBuffer, DWORD cb);

/// Fills the target from its start like that, and cuts it there. 0 also if it cannot be cut: the
/// rest of its old contents would stand behind the new ones.
int CopyContents(CoreIOObj& source, CoreIOObj& target, void* pBuffer, DWORD cbBuffer, DWORD cb);
