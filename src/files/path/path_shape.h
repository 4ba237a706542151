#pragma once
#include "runtime/base/export.h"

// Tests of a path's shape: what it looks like, not what is there. Each gives 1 or 0, and 0 for a
// null text unless told otherwise. A separator is a backslash or a slash. Drive letters are A to Z
// and a to z.

/// Starts with a separator (one is enough), or with a letter, ":" and a separator. "C:a" does not.
TESSALY_API int IsFullPathName(const wchar_t* pszPath);
/// The second character is ":", or the text holds a separator.
TESSALY_API int IsPath(const wchar_t* pszPath);
/// The text holds "*" or "?".
// QUIRK: no other character that a pattern may have counts.
// Test: IsMask.HoldsAStarOrAQuestionMarkAndNothingElseCounts
TESSALY_API int IsMask(const wchar_t* pszPath);
/// Exactly "X:" or "X:\", the latter with a backslash.
TESSALY_API int IsDrivePath(const wchar_t* pszPath);
/// Starts with a letter, ":" and a separator.
TESSALY_API int IsDosFolder(const wchar_t* pszPath);
/// Exactly "X:" and a separator. With bUnc also two separators and a name without a further one:
/// "\\server", not "\\server\share".
TESSALY_API int IsRootFolder(const wchar_t* pszPath, int bUnc);
/// Two backslashes and at least one more character.
// QUIRK: here, and in the two tests below, slashes at the start do not count, while GetRootPath
// takes them. Test: IsNetworkPath.IsTwoBackslashesAndMore
TESSALY_API int IsNetworkPath(const wchar_t* pszPath);
/// The same without a further separator.
TESSALY_API int IsNetworkComputer(const wchar_t* pszPath);
/// Exactly "\\server\share", with no separator behind it.
TESSALY_API int IsNetworkShare(const wchar_t* pszPath);

/// Whether a path lies within a folder, at any depth. Case does not count, all separators are the
/// same, one at the end of either makes no difference. For the folder itself the result is bOrSame.
/// Empty texts give 0.
TESSALY_API int IsSubFolderOf(const wchar_t* pszPath, const wchar_t* pszFolder, int bOrSame);
/// The same path but for case, the kind of separators and one trailing separator (RemoveBackSlash).
/// Only the first 259 characters count. A null text counts as empty.
TESSALY_API int IsSamePath(const wchar_t* pszPath1, const wchar_t* pszPath2);
/// The file's text is the folder's, with case, a separator, and a name without separators, which
/// may be empty.
// QUIRK: a folder that ends in a separator holds nothing. Test: IsFileInFolder.TableOfAllCases
TESSALY_API int IsFileInFolder(const wchar_t* pszFile, const wchar_t* pszFolder);

/// Not empty, and without the characters of GetInvalidFileNameChars.
TESSALY_API int IsValidFileName(const wchar_t* pszName);
/// The same with at most 8 characters before the last "." and 4 from there on. There need be no
/// ".".
TESSALY_API int IsValidAltFileName(const wchar_t* pszName);
/// Starts with a letter and ":" or with two backslashes; behind those two characters there are no
/// two separators in a row and no characters of GetInvalidFolderNameChars.
TESSALY_API int IsValidFolderName(const wchar_t* pszPath);
/// The text "\ / : * ? " < > |", fit to be shown: its blanks are not invalid characters.
TESSALY_API const wchar_t* GetInvalidFileNameChars();
/// The text ": * ? " < > |", likewise.
TESSALY_API const wchar_t* GetInvalidFolderNameChars();

/// The path starts with "ftp://", in any case, and the platform shows such folders: it has
/// "msieftp.dll", which is looked up once per process. A null path asks for that alone.
TESSALY_API int IsFtpFolder(const wchar_t* pszPath);
/// The same where it is known whether the platform has that library.
int IsFtpFolderWith(int bHasLibrary, const wchar_t* pszPath);
/// 0 if a file system's name contains "FAT", with case; 1 for every other, also for null.
TESSALY_API int IsFileSysUNC(const wchar_t* pszName);
