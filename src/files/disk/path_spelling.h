#pragma once
#include "runtime/base/export.h"

// The other spellings that one path has: short and long names, the case that the file system knows,
// and the mix path, which holds them all.

// Short and long names of what exists, in place in buffers of 260 characters unless told otherwise.
// A null path does nothing and gives 0. A mask is taken for the first name that fits it.

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
/// Gives every name of the path its long form in place, as ConvertPathToLFN does, with backslashes
/// for slashes; a drive's root only gets its letter in upper case. Returns 1; 0 for null.
TESSALY_API int ShortToLFN(wchar_t* pszPath);
/// The path as the shell shows it: ShortToLFN, and then the case of each name as the file system
/// has it, from the end of the path to its start as far as it exists. If the result reaches 260
/// characters, the path becomes empty.
// QUIRK: the folders above a name that was found go through ExpandEnvStrings, so that one with the
// name "%TEMP%" is replaced. Test: DosPathToShellPathTest.FolderThatLooksLikeAnEnvironmentString
// QUIRK: a path of one or two characters gets the first one in upper case, whatever it is.
// Test: DosPathToShellPathTest.ShortTexts
TESSALY_API void DosPathToShellPath(wchar_t* pszPath);

// Mix paths. A mix path is a text that holds a path with all the spellings of each of its levels,
// so that the path is recognised whichever of them it is written in. Levels stand between "|", the
// spellings of one level between ">":
//
//     C:>\\server\share|Program Files>PROGRA~1|Folder

/// Makes the mix path of a path that exists, into cch characters. Its first level is "X:" with an
/// upper-case letter and, on a drive that is connected to the network, the name of the connection;
/// or "\\server\share". Each other level is a long name and, if there is one, the short name.
/// 1; 0 with an empty text if a level cannot be found, the path starts with neither a drive's root
/// nor two backslashes, or the text does not fit.
[[nodiscard]] TESSALY_API int MakeMixPath(wchar_t* pszText, unsigned cch, const wchar_t* pszPath);

/// Whether the path is the one that the mix path was made of. Case counts; separators may be of
/// both kinds, and one more at the end or between levels makes no difference. 0 for null texts.
TESSALY_API int IsMixPath(const wchar_t* pszMixPath, const wchar_t* pszPath);
/// Whether the path is the one that the mix path was made of, or lies below it. Case and separators
/// count as in IsMixPath. 0 for null texts.
// QUIRK: an empty mix path is used up at once, so that every path lies under it.
// Test: IsUnderMixPath.EveryPathLiesUnderTheEmptyMixPath
TESSALY_API int IsUnderMixPath(const wchar_t* pszMixPath, const wchar_t* pszPath);
