#pragma once
#include "runtime/base/export.h"

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
TESSALY_API int MakeMixPath(wchar_t* pszText, unsigned cch, const wchar_t* pszPath);

/// Whether the path is the one that the mix path was made of. Case counts; separators may be of
/// both kinds, and one more at the end or between levels makes no difference. 0 for null texts.
TESSALY_API int IsMixPath(const wchar_t* pszMixPath, const wchar_t* pszPath);
/// Whether the path is that one or lies below it.
// QUIRK: an empty mix path is used up at once, so that every path lies under it.
// Test: IsUnderMixPath.EveryPathLiesUnderTheEmptyMixPath
TESSALY_API int IsUnderMixPath(const wchar_t* pszMixPath, const wchar_t* pszPath);
