#pragma once
#include <windows.h>

class UniPath;

/// What CSFile::IFileOp does where the platform has no file operation object: the shell's older
/// function, with the same results. The last result tells why it failed.
int RunShellFileOp(HWND hwnd, unsigned nOp, const UniPath* pSource, const UniPath* pTarget,
                   const wchar_t* pszNewName);
