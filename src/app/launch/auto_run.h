#pragma once
#include "runtime/base/export.h"
#include <windows.h>

// Starting a function of this library with Windows: a value below the registry's "Run" key, of the
// current user or (bCurrentUser 0) of the machine, that has RunDll32.exe call it. pszArguments
// begin with the function's exported name; the value's whole line has at most 259 characters.

/// bWrite 0 looks; otherwise the value is written (bOn nonzero) or deleted. *pnOn, if there is one,
/// gets whether the value now stands there with exactly that line; it changes only with the result
/// 1. 0 if the key cannot be opened or written, or the line is too long.
TESSALY_API int GetSetAutoRunDll32(int bWrite, int* pnOn, int bOn, int bCurrentUser,
                                   const wchar_t* pszName, const wchar_t* pszArguments);
/// GetSetAutoRunDll32 with bWrite 1.
TESSALY_API int AutoRunDll32(int* pnOn, int bOn, int bCurrentUser, const wchar_t* pszName,
                             const wchar_t* pszArguments);

/// What the start with Windows calls, through RunDll32.exe: starts the program beside this library,
/// without its opening balloon, and returns at once. A program that runs already is left alone. The
/// arguments are those of such a call and have no meaning.
extern "C" TESSALY_API void CALLBACK StartMonitor(HWND hwnd, HINSTANCE hinst, const char* pszLine,
                                                  int nShow);
/// Its exported name.
constexpr const wchar_t* kStartMonitorEntry = L"StartMonitor";
