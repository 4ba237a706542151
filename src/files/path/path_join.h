#pragma once
#include "runtime/base/export.h"

// Joining paths. Only MakeFullPathName asks the platform, for the current directory.
//
// A separator is a backslash or a slash; only backslashes are written. Paths have at most 259
// characters. Null texts count as empty; a null path to change is left alone, and a null output
// gives 0.

/// Adds a backslash unless the folder ends in a separator, then the name, within a buffer of 260
/// characters: what does not fit is cut. The empty folder gets its backslash too.
TESSALY_API void AppendFileName(wchar_t* pszFolder, const wchar_t* pszName);

// A folder, a name and an extension

/// Joins folder, name and extension into pszOut of 260 characters. The environment strings of the
/// folder (not of the name) are expanded, unless pszFolder is pszOut itself, which stays as it is.
/// A null or empty name ends the work there. A separator is put between, one at the name's start is
/// dropped; the extension gets a "." unless it starts with one. The name and the extension must not
/// lie in pszOut.
///
/// Returns 1; 0 if the whole reaches 260 characters: with bCut pszOut then gets as much of the name
/// as fits and no extension, otherwise it becomes empty.
// QUIRK: an empty extension is not null, so it leaves its "." behind the name.
// Test: MakePath.EmptyExtensionGivesADot
TESSALY_API int MakePath(wchar_t* pszOut, const wchar_t* pszFolder, const wchar_t* pszName,
                         const wchar_t* pszExt, int bCut);
/// Joins like MakePath, but into cchOut characters and step by step: folder, separator, name, ".",
/// extension, each whole. Returns 1; 0 as soon as the text has 260 characters or more, or the next
/// piece does not fit: pszOut then keeps what stands there. A folder that does not fit leaves it
/// empty.
[[nodiscard]] TESSALY_API int MakePathEx(wchar_t* pszOut, unsigned cchOut, const wchar_t* pszFolder,
                                         const wchar_t* pszName, const wchar_t* pszExt);
/// Joins like MakePath without bCut, for a name that may be meant for one platform: ":NT:" (in any
/// case) before it is dropped where WinNT is 1. Any other name with ":" before it gives 0 and an
/// empty text.
TESSALY_API int MakePathForOS(wchar_t* pszOut, const wchar_t* pszFolder, const wchar_t* pszName,
                              const wchar_t* pszExt);

// Full paths and lists

/// Makes a path full, in place in a buffer of 260 characters. An empty path becomes the base, if
/// there is one. Otherwise blanks, tabs and quotes at its ends go and its slashes become
/// backslashes; then a path that is not full (IsFullPathName) goes behind the base if that is
/// full, and else is completed by the current directory, unless that gives 260 characters or more:
/// then it stays. One that starts with a single separator gets the base's root (ExtractRootPath).
/// What does not fit is cut.
// QUIRK: if the base has no root, the drive is the one behind the current directory's: "D:" for a
// current directory on C. Test: MakeFullPathName.SingleSeparatorTakesTheDriveBehindTheCurrentOne
TESSALY_API void MakeFullPathName(wchar_t* pszPath, const wchar_t* pszBase);
/// Stores a second terminator behind a text, as the end of a list of texts, if the buffer of cch
/// characters has room for it.
TESSALY_API void AppendSecondTermZero(wchar_t* pszText, unsigned cch);
