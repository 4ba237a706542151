#pragma once
#include "runtime/base/export.h"

// Short and long names of what exists, in place in buffers of 260 characters unless told otherwise.
// A null path gives 0. A mask is taken for the first name that fits it.

/// Gives every name of the path its short form (GetShortPathNameW), within cch characters and 259
/// at most. Of a path whose end does not exist the longest part that does is shortened, and the
/// rest stays behind it, cut to fit. A drive's root ("C:", "C:\") only gets its letter in upper
/// case. 1; 0 if nothing of the path exists, or the short form does not fit: then it stays as it
/// is.
TESSALY_API int ConvertToShortPath(wchar_t* pszPath, unsigned cch);

/// Writes the path with every name in its long form to pszOut, 260 characters: first the root,
/// "X:\" with an upper-case letter or "\\server\share\", then each name as the file system has it.
/// From the first name that does not exist on the rest is copied as it is; so are "." and "..". A
/// path without such a root leaves pszOut alone. What does not fit is cut. A slash counts as a
/// separator.
/// pszInTail and pszOutTail are null; otherwise they are the places in pszIn and pszOut from where
/// on that remains to be done. pszIn is cut and mended on the way.
TESSALY_API void ConvertPathToLFN(wchar_t* pszOut, wchar_t* pszIn, wchar_t* pszOutTail,
                                  wchar_t* pszInTail);
/// The same in place, with backslashes for slashes; a drive's root only gets its letter in upper
/// case. Returns 1.
TESSALY_API int ShortToLFN(wchar_t* pszPath);
/// The path as the shell shows it: ShortToLFN, and then the case of each name as the file system
/// has it, from the end of the path to its start as far as it exists. If the result reaches 260
/// characters, the path becomes empty.
// QUIRK: the folders above a name that was found go through ExpandEnvStrings, so that one with the
// name "%TEMP%" is replaced. A path of one or two characters gets the first one in upper case,
// whatever it is. Test: DosPathToShellPathTest.FolderThatLooksLikeAnEnvironmentString and
// ShortTexts
TESSALY_API void DosPathToShellPath(wchar_t* pszPath);
