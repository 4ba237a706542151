#pragma once
#include <windows.h>

class CoreIOObj;

/// The copy buffer has as many bytes as the file, but no more than this, which is below the ceiling
/// of 32 MiB. More makes no copy faster: each fresh page of the buffer costs a page fault, and from
/// 8 MiB on they cost more than the calls that they spare. bench/files/copy_bench.cpp
constexpr DWORD kCopyBufferSize = 0x100000;

/// Copies cb bytes from position to position through pBuffer of cbBuffer bytes, whole chunks at a
/// time. 1; 0 at the first read or write that fails or is short.
int CopyChunks(CoreIOObj& source, CoreIOObj& target, void* pBuffer, DWORD cbBuffer, DWORD cb);

/// Fills the target from its start like that, and cuts it there. 0 also if it cannot be cut: the
/// rest of its old contents would stand behind the new ones.
int CopyContents(CoreIOObj& source, CoreIOObj& target, void* pBuffer, DWORD cbBuffer, DWORD cb);
