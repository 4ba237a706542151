#pragma once
#include "runtime/base/export.h"

// Questions about a path's shape: what it looks like, not what is there. Each gives 1 or 0, and 0
// for a null text unless told otherwise. A separator is a backslash or a slash. Drive letters are A
// to Z and a to z.

// One path

/// Starts with a separator (one is enough), or with a letter, ":" and a separator. "C:a" does not.
TESSALY_API int IsFullPathName(const wchar_t* pszPath);
/// The second character is ":", or the text holds a separator.
TESSALY_API int IsPath(const wchar_t* pszPath);
/// The text holds "*" or "?".
// QUIRK: no other character that a pattern may have counts.
// Test: IsMaskTest.HoldsAStarOrAQuestionMark
TESSALY_API int IsMask(const wchar_t* pszPath);
/// Exactly "X:" or "X:\", the latter with a backslash.
TESSALY_API int IsDrivePath(const wchar_t* pszPath);
/// Starts with a letter, ":" and a separator.
TESSALY_API int IsDosFolder(const wchar_t* pszPath);
/// Exactly "X:" and a separator. With bUnc also two separators and a name without a further one:
/// "\\server", not "\\server\share".
TESSALY_API int IsRootFolder(const wchar_t* pszPath, int bUnc);
/// Two backslashes and at least one more character.
// QUIRK: here, and in the two questions below, slashes at the start do not count, while GetRootPath
// takes them. Test: IsNetworkPathTest.IsTwoBackslashesAndMore
TESSALY_API int IsNetworkPath(const wchar_t* pszPath);
/// Two backslashes and a server's name, with no separator behind it.
TESSALY_API int IsNetworkComputer(const wchar_t* pszPath);
/// Exactly "\\server\share", with no separator behind it.
TESSALY_API int IsNetworkShare(const wchar_t* pszPath);

// Two paths

/// Whether a path lies within a folder, at any depth. Case does not count, a slash is as good as a
/// backslash, and one separator at the end of either makes no difference. For the folder itself the
/// result is bOrSame. Empty texts give 0.
TESSALY_API int IsSubFolderOf(const wchar_t* pszPath, const wchar_t* pszFolder, int bOrSame);
/// Whether two texts are one path: they differ at most in case, in the kind of separators and in
/// one separator at the end, which RemoveBackSlash would cut. Only the first 259 characters count.
/// A null text counts as empty.
TESSALY_API int IsSamePath(const wchar_t* pszPath1, const wchar_t* pszPath2);
/// Whether a file lies right in a folder: its text starts with the folder's, in the same case, and
/// goes on with a separator and a name without separators, which may be empty.
// QUIRK: a folder that ends in a separator holds nothing.
// Test: IsFileInFolderTest.IsANameRightBelowTheFolder
TESSALY_API int IsFileInFolder(const wchar_t* pszFile, const wchar_t* pszFolder);

// Names

/// Not empty, and without the characters of GetInvalidFileNameChars.
TESSALY_API int IsValidFileName(const wchar_t* pszName);
/// A valid file name (IsValidFileName) with at most 8 characters before the last "." and 4 from
/// there on. There need be no ".".
TESSALY_API int IsValidAltFileName(const wchar_t* pszName);
/// Starts with a letter and ":" or with two backslashes; behind those two characters there are no
/// two separators in a row and no characters of GetInvalidFolderNameChars.
TESSALY_API int IsValidFolderName(const wchar_t* pszPath);
/// What a file is called while it is wiped (CSFile::WipeRename): an empty text, or one of U+5555
/// and U+AAAA only. A null text counts as empty.
TESSALY_API int IsWipedName(const wchar_t* pszName);
/// The text "\ / : * ? " < > |", fit to be shown: its blanks are not invalid characters.
TESSALY_API const wchar_t* GetInvalidFileNameChars();
/// The text ": * ? " < > |", fit to be shown: its blanks are not invalid characters.
TESSALY_API const wchar_t* GetInvalidFolderNameChars();

// Folders and file systems

/// The path starts with "ftp://", in any case, and the platform shows such folders: it has
/// "msieftp.dll", which is looked up once per process. A null path asks for that alone.
TESSALY_API int IsFtpFolder(const wchar_t* pszPath);
/// 0 if a file system's name (GetFileSysName) contains "FAT", with case.
// QUIRK: every other name gives 1, known or not, and so does null.
// Test: IsFileSysUNCTest.OnlyFatGivesZero
TESSALY_API int IsFileSysUNC(const wchar_t* pszName);
