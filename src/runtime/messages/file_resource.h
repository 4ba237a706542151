#pragma once
#include "runtime/base/export.h"
#include <windows.h>

// Files that are held as resources, of the type "FILE_DATA" unless another is named. A negative id
// is a resource of the library, with its magnitude, whatever module is named; a positive one
// without a module is looked for in the current AppInstance's, or the library.

/// The resource's data, which live as long as the module, and their size in bytes. Null (size 0) if
/// there is none; pcb may be null.
[[nodiscard]] TESSALY_API const void*
LoadFileResource(DWORD* pcb, int nId, HINSTANCE hinst = nullptr, const wchar_t* pszType = nullptr);

/// What CreateFileFromResource does with a file that exists; if several are given, the first of
/// these counts. With none the user is asked.
constexpr unsigned kExistingFileFails = 1;       // the result is 0
constexpr unsigned kExistingFileStays = 2;       // the result is 1
constexpr unsigned kExistingFileOverwritten = 4; // without a question

/// Writes such a resource to a file, nFlags being the sum of kExistingFile... Failures to create
/// and to write are told in a box over hwnd; what was written in part is deleted. 1 if the file was
/// written or an existing one shall stay. 0 if it could not be written, if the existing one may not
/// be overwritten, and if there is no such resource; in the last two cases the file is not touched.
TESSALY_API int CreateFileFromResource(HWND hwnd, const wchar_t* pszFile, int nId, HINSTANCE hinst,
                                       unsigned nFlags);
