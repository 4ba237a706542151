#pragma once
#include "runtime/base/export.h"
#include <windows.h>

// The folders that the system names by numbers (CSIDL_...), and a short form, which a user can
// read, of paths below three of them: "Documents\letter.txt". COM is the caller's.

/// A special folder. The texts belong to the record.
struct SPEC_FOLDER_DATA {
    int nPathCsidl;      // whose path it is
    int nNamespaceCsidl; // whose name it is
    wchar_t* pszPath;    // with a backslash at its end; null if there is no such folder
    unsigned cchPath;    // of pszPath, without the terminator
    wchar_t* pszName;    // as the shell shows it; null if it has none
};

/// The desktop's, the network neighbourhood's and the user's documents' records, closed by null,
/// which are made at the first use. With bRelease they are freed, and the result is null; a later
/// use makes them anew. For one thread at a time. Out of memory, too, a record has null texts.
TESSALY_API SPEC_FOLDER_DATA** GetSPEC_FOLDER_DATA(int bRelease);
/// The first record below whose folder the path lies, at any depth; null if there is none.
TESSALY_API SPEC_FOLDER_DATA* GetAnySpecialSubFolderData(const wchar_t* pszPath);
/// What follows the network neighbourhood's folder in a path below it; null for other paths.
TESSALY_API const wchar_t* GetNetHoodSubFolder(const wchar_t* pszPath);

/// Gives a path below one of the three folders its short form, in place. Another path stays, and so
/// does one whose short form does not fit cch characters.
TESSALY_API void SimplifyShellName(wchar_t* pszPath, unsigned cch);
/// Takes back what SimplifyShellName did. A text that has no separator, or does not begin with one
/// of the three names, in any case, stays. A path that reaches 260 characters, or does not fit cch,
/// becomes empty.
TESSALY_API void UnSimplifyShellName(wchar_t* pszPath, unsigned cch);

/// Not one of the system's numbers: the folder of the pictures that the lock screen shows.
constexpr int kLockScreenPictures = 238;
/// The path of a special folder into 260 characters. 1 if there is such a folder; 0 also if there
/// is only its path, which is given, and for null.
TESSALY_API int GetSpecialFolderPath(HWND hwnd, int nCsidl, wchar_t* pszOut);
/// The same in double quotes, into 262 characters; empty and 0 if there is no such folder.
TESSALY_API int GetSpecialFolderPathQuoted(HWND hwnd, int nCsidl, wchar_t* pszOut);
