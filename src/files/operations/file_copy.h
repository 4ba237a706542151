#pragma once
#include <windows.h>

// Flags of CSFile::Copy, CSFile::CopyByList and CSFile::DeleteByList.

/// A target that exists is left alone, and the copy counts as done.
constexpr DWORD kCopyKeepTarget = 1;
/// A missing source leaves the target alone. Without it a missing source deletes the target.
constexpr DWORD kCopyKeepIfNoSource = 2;
/// A missing source stands for an empty file.
constexpr DWORD kCopyMissingIsEmpty = 4;
/// Lists: go on after a failure and report it at the end.
constexpr DWORD kListGoOn = 8;
/// Compare only, and write nothing.
constexpr DWORD kCopyVerifyOnly = 16;
/// File versions are not compared.
constexpr DWORD kCopyAnyVersion = 32;
/// DeleteByList tells the shell of each deletion.
constexpr DWORD kListNotify = 64;

/// So much a turn goes from file to file.
constexpr DWORD kFileCopyChunk = 0x10000;
