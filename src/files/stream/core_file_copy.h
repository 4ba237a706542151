#pragma once
#include <windows.h>

class CoreIOObj;

// The inner part of CoreFile::CopyFileW, which works on any two streams.

/// The copy buffer has as many bytes as the file, but no more than this, which is below the ceiling
/// of 32 MiB. More makes no copy faster: each fresh page of the buffer costs a page fault, and from
/// 8 MiB on they cost more than the calls that they spare. bench/files/copy_bench.cpp
constexpr DWORD kCopyBufferSize = 0x100000;

/// Copies cb bytes from position to position through pBuffer of cbBuffer bytes, as much at a time
/// as that holds. True; false at the first read or write that fails or is short.
[[nodiscard]] bool CopyChunks(CoreIOObj& source, CoreIOObj& target, void* pBuffer, DWORD cbBuffer,
                              DWORD cb);

/// Copies like CopyChunks, to the target's start, and cuts the target behind it. False also if it
/// cannot be cut: the rest of its old contents would stand behind the new ones.
[[nodiscard]] bool CopyContents(CoreIOObj& source, CoreIOObj& target, void* pBuffer, DWORD cbBuffer,
                                DWORD cb);
