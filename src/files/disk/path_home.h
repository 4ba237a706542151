#pragma once
#include "runtime/base/export.h"
#include <windows.h>

// Where the product and its modules are, and the form in which such paths are kept. Outputs are
// path buffers of 260 characters unless told otherwise; each function gives 1, or 0 with an empty
// text, also when the path reaches 260 characters. A module is given by its handle; null is the
// running program, as for the platform, unless told otherwise.

/// The folder in which the product is installed, as stored (ProcessHomeFolder; read anew with each
/// call); without one, the folder of the module that this library is part of, as
/// DosPathToShellPath gives it. Stored text is given as it is but for a separator at its end, which
/// only a root keeps.
TESSALY_API int GetHomeDir(wchar_t* pszOut);
/// Stores the folder of the module that this library is part of as the product's home, unless one
/// is stored. 1 if one is stored then; 0 for a user who may not write it.
TESSALY_API int SetHomeDir();

/// The module's file name with its extension.
TESSALY_API int GetModuleFNameExt(HINSTANCE hinst, wchar_t* pszOut);
// In the next four functions the name may be pszOut.

/// The home folder (GetHomeDir) joined to the name by MakePath; to the file name of that module if
/// pszName is null.
TESSALY_API int GetLocalPath(wchar_t* pszOut, const wchar_t* pszName, HINSTANCE hinst);
/// The path that GetLocalPath gives, in double quotes, which have to fit too.
TESSALY_API int GetLocalFileNameQuoted(wchar_t* pszOut, const wchar_t* pszName, HINSTANCE hinst);
/// The folder where that module really is, joined to the name by MakePath; the folder alone if
/// pszName is null. A null module is the one that this library is part of.
TESSALY_API int GetSatellitePath(wchar_t* pszOut, const wchar_t* pszName, HINSTANCE hinst);
/// The path that GetSatellitePath gives, in double quotes, which have to fit too.
TESSALY_API int GetSatellitePathQuoted(wchar_t* pszOut, const wchar_t* pszName, HINSTANCE hinst);

/// The running program's full path and its folder, which has no separator at its end unless it is a
/// root. Each may be null and otherwise has cch characters; one that does not fit becomes empty,
/// and the result is 0.
TESSALY_API int GetLocalPathDir(wchar_t* pszFull, wchar_t* pszFolder, unsigned cch);
/// The running program's folder, as GetLocalPathDir gives it, into cch characters. 0 also for null.
TESSALY_API int GetLocalFolder(wchar_t* pszOut, unsigned cch);
/// Whether there is a file (FileExists) of that name in the home folder; for null, one of the
/// running program's name.
TESSALY_API int LocalFileExists(const wchar_t* pszName);

// The form in which paths of the system's and the product's own files are kept, so that they still
// hold on another machine: "%S\NAME" for a file in the system folder, "%W\NAME" in the Windows
// folder, "%_\NAME" in the product's home folder (GetHomeDir). Outputs are path buffers of 260
// characters and may be the input; what is longer is cut.

/// Gives the path that form if it lies right in one of the three folders; otherwise a copy. A null
/// path counts as empty.
// QUIRK: a folder's path with a separator at its end counts as lying in itself, so that the Windows
// folder's gives "%W\windows". Test: MakeCanonicalPathTest.FolderWithASeparatorLiesInItself
TESSALY_API void MakeCanonicalPath(const wchar_t* pszPath, wchar_t* pszOut);
/// Takes back what MakeCanonicalPath did. 1 for a text that starts with "%"; any other is copied,
/// with 0, and null gives an empty one. The letter counts with its case; if it is none of the
/// three, what follows it remains, behind a backslash.
TESSALY_API int GetPathFromCanonical(const wchar_t* pszText, wchar_t* pszOut);
