#pragma once
#include "runtime/base/export.h"

// Joining paths, and the separators at their ends. Nothing here asks the file system.
//
// A separator is a backslash or a slash; only backslashes are written. Paths have at most 259
// characters. Null texts count as empty, a null path to change is left alone.

/// Adds a backslash unless the text ends in a separator; an empty text stays empty. There must be
/// room for it.
TESSALY_API void AppendBackSlash(wchar_t* pszPath);
/// Cuts one trailing separator, unless a separator or ":" stands before it.
TESSALY_API void RemoveBackSlash(wchar_t* pszPath);
/// Cuts one trailing separator whatever stands before it. 1 if there was one.
TESSALY_API int StripBackSlash(wchar_t* pszPath);
/// Adds a backslash unless the folder ends in a separator, then the name, within a buffer of 260
/// characters: what does not fit is cut. The empty folder gets its backslash too.
TESSALY_API void AppendFileName(wchar_t* pszFolder, const wchar_t* pszName);

/// Joins folder, name and extension into pszOut of 260 characters. The environment strings of the
/// folder (not of the name) are expanded, unless pszFolder is pszOut itself, which stays as it is.
/// A null or empty name ends the work there. A separator is put between, one at the name's start is
/// dropped; the extension gets a "." unless it starts with one. The name and the extension must not
/// lie in pszOut.
///
/// Returns 1. If the whole reaches 260 characters 0: with bCut pszOut then gets as much of the name
/// as fits and no extension, otherwise it becomes empty.
// QUIRK: an empty extension is not null, so it leaves its "." behind the name.
// Test: MakePath.EmptyExtensionGivesADot
TESSALY_API int MakePath(wchar_t* pszOut, const wchar_t* pszFolder, const wchar_t* pszName,
                         const wchar_t* pszExt, int bCut);
/// The same into cchOut characters, step by step (folder, separator, name, ".", extension) with
/// nothing cut: 0 as soon as the text has 260 characters or more, or the next piece does not fit
/// pszOut, with what stands there by then.
TESSALY_API int MakePathEx(wchar_t* pszOut, unsigned cchOut, const wchar_t* pszFolder,
                           const wchar_t* pszName, const wchar_t* pszExt);
/// A name for one platform: ":NT:" (in any case) before it is dropped where WinNT is 1. Any other
/// name with ":" before it gives 0 and an empty text. All else is MakePath without cutting.
TESSALY_API int MakePathForOS(wchar_t* pszOut, const wchar_t* pszFolder, const wchar_t* pszName,
                              const wchar_t* pszExt);

/// Makes a path full, in place in a buffer of 260 characters. An empty path becomes the base, if
/// there is one. Otherwise blanks, tabs and quotes at its ends go and its slashes become
/// backslashes; then a path that is not full (IsFullPathName) goes behind the base if that is
/// full, and else is completed by the current directory, unless that gives 260 characters or more:
/// then it stays. One that starts with a single separator gets the base's root (ExtractRootPath).
/// What does not fit is cut.
// QUIRK: if the base has no root, the drive is the one behind the current directory's: "D:" for a
// current directory on C. Test: MakeFullPathName.SingleSeparatorTakesTheDriveBehindTheCurrentOne
TESSALY_API void MakeFullPathName(wchar_t* pszPath, const wchar_t* pszBase);
/// Stores a second terminator behind the text, as the end of a list, if its cch characters have
/// room.
TESSALY_API void AppendSecondTermZero(wchar_t* pszText, unsigned cch);
