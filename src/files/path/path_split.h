#pragma once
#include "runtime/base/export.h"

// Taking paths apart. Nothing here asks the file system.
//
// A separator is a backslash or a slash. Paths have at most 259 characters; where one is copied to
// a buffer, that has 260, and what is longer is cut. A null path counts as empty; functions
// whose result points into the path give null for it.

// Places in a path: first in one that stays as it is, then in one that the caller may change

/// The place behind the last separator or ":", else the start. Behind a separator at the end that
/// is the terminator.
TESSALY_API const wchar_t* LocateFileName(const wchar_t* pszPath);
TESSALY_API wchar_t* LocateFileName(wchar_t* pszPath);
/// The last "." of the name that LocateFileName finds; null if it has none.
TESSALY_API const wchar_t* LocateFileExt(const wchar_t* pszPath);
TESSALY_API wchar_t* LocateFileExt(wchar_t* pszPath);
/// The place behind the last separator, else the start; a ":" does not count. Null if nothing
/// stands there.
TESSALY_API const wchar_t* FindNameExt(const wchar_t* pszPath);
TESSALY_API wchar_t* FindNameExt(wchar_t* pszPath);
/// The last "." of the whole text, which may be a folder's; null if there is none.
TESSALY_API const wchar_t* FindDotExt(const wchar_t* pszPath);
TESSALY_API wchar_t* FindDotExt(wchar_t* pszPath);
/// The last separator; null if there is none.
TESSALY_API const wchar_t* FindLastSeparator(const wchar_t* pszPath);
TESSALY_API wchar_t* FindLastSeparator(wchar_t* pszPath);
/// Cuts off one separator at the end. Returns what LocateFileName then finds.
TESSALY_API wchar_t* FindLastPathComponent(wchar_t* pszPath);

// Cutting in place. A null path is left alone.

/// Cuts behind the last separator or ":"; a bare name becomes empty.
TESSALY_API void StripFileName(wchar_t* pszPath);
/// Cuts the name and the separator before it, which stays if a ":" stands before it.
TESSALY_API void StripFileNameAndBackslash(wchar_t* pszPath);
/// Cuts at the "." that LocateFileExt finds.
TESSALY_API void StripFileExt(wchar_t* pszPath);

// Parts, as copies in buffers of 260 characters. A null output takes nothing.

/// The folder of a path, by StripFileName and RemoveBackSlash. pszOut may be the path.
TESSALY_API void DirFromPath(wchar_t* pszOut, const wchar_t* pszPath);
/// The path cut at its last separator, which stays if a ":" stands before it. Without a separator
/// the whole path. pszOut may be the path.
TESSALY_API void GetParentFolder(wchar_t* pszOut, const wchar_t* pszPath);
/// Three parts at once, each unless its pointer is null. pszExt gets the text from FindDotExt's "."
/// on; pszName what stands behind the last separator, less that extension if pszExt was asked for
/// and the "." is in the name; pszFolder what stands before the last separator, with the separator
/// only where the two are a root ("C:\"), and nothing without a separator. Returns 1. pszFolder may
/// be the path.
TESSALY_API int ParsePath(wchar_t* pszFolder, wchar_t* pszName, wchar_t* pszExt,
                          const wchar_t* pszPath);

/// "X:\" of a path on a drive, "\\server\share\" of one in the network, for full paths
/// (IsFullPathName). Returns 1; 0 with an empty text for any other path, also one that starts with
/// a single separator or has no share. pszOut may be the path.
TESSALY_API int GetRootPath(wchar_t* pszOut, const wchar_t* pszPath);
/// "X:" of a path on a drive, "\\server" of one in the network, for full paths. Returns 1; 0 with
/// an empty text for any other path, also one that starts with a single separator. pszOut may be
/// the path.
// QUIRK: unlike GetRootPath it gives no separator and needs no share; what it gives for a drive is
// no root by IsRootFolder. Test: RootPathsTest.OfFullPathsOnly
TESSALY_API int ExtractRootPath(wchar_t* pszOut, const wchar_t* pszPath);
