#pragma once
#include "runtime/base/export.h"
#include <windows.h>

// Versions of files. A version is a number of four parts of 16 bits, the highest first, as
// dwFileVersionMS and dwFileVersionLS of VS_FIXEDFILEINFO hold them one behind the other.

/// The version that a file's resources tell; 0 for a folder, a missing file, or one without. *pInfo
/// gets what else they tell; it may be null, and stays as it is when the result is 0 for want of a
/// version. "version.dll" is mapped at the first use.
[[nodiscard]] TESSALY_API unsigned __int64 GetFileVersion(const wchar_t* pszPath,
                                                          VS_FIXEDFILEINFO* pInfo);

/// Puts a version, as "1.2.3.4", into cchOut characters. 1; 0 if it does not fit, and then the text
/// is cut.
TESSALY_API int GetFileVersionStr(wchar_t* pszOut, unsigned cchOut, unsigned __int64 nVersion);
/// The same for a file's version (GetFileVersion); one without a version has "0.0.0.0".
TESSALY_API int GetFileVersionStr(wchar_t* pszOut, unsigned cchOut, const wchar_t* pszPath,
                                  VS_FIXEDFILEINFO* pInfo);

/// The number of a version's text: for each part between dots, however many there are, the result
/// moves up by 16 bits and the part's decimal value is added. A part's value is the digits that it
/// begins with, 0 without any. The text is cut: each dot becomes a terminator. 0 for a null or an
/// empty text.
// QUIRK: parts are not aligned to the left: "1.2" gives 0x10002, and of five the first is lost.
// Test: FileQuirks.PartsOfAVersionAreNotAlignedToTheLeft
TESSALY_API unsigned __int64 ParseFileVersionStr(wchar_t* pszText);

/// Puts the first three parts of a version's text into cchOut characters, cut to fit; what has
/// fewer parts stays as it is. Of the text 259 characters count. pszOut may be pszText; a null text
/// counts as empty.
TESSALY_API void StripBuildNumberIfAny(wchar_t* pszOut, unsigned cchOut, const wchar_t* pszText);
