#pragma once
#include "runtime/base/export.h"

// Starting a function of this library with Windows: a value below the registry's "Run" key, of the
// current user or (bCurrentUser 0) of the machine, that has RunDll32.exe call it. pszArguments
// begin with the function's exported name; the value's whole line has at most 259 characters.

/// bWrite 0 looks; otherwise the value is written (bOn nonzero) or deleted. *pnOn, if there is one,
/// gets whether the value now stands there with exactly that line; it changes only with the result
/// 1. 0 if the key cannot be opened or written, or the line is too long.
TESSALY_API int GetSetAutoRunDll32(int bWrite, int* pnOn, int bOn, int bCurrentUser,
                                   const wchar_t* pszName, const wchar_t* pszArguments);
/// The same with bWrite 1.
TESSALY_API int AutoRunDll32(int* pnOn, int bOn, int bCurrentUser, const wchar_t* pszName,
                             const wchar_t* pszArguments);
