#pragma once
#include <windows.h>

/// Why the library cannot be used.
enum class LibraryProblem {
    None,
    Missing,      // no such file beside the program
    NotLoadable,  // not a library, or not one for this system
    OtherVersion, // of another product version, or without one
    Foreign,      // lacks functions that this program calls
};

/// Finds the library's path: beside this program, and nowhere else. False, with an undefined text,
/// if it does not fit.
[[nodiscard]] bool GetLibraryPath(wchar_t (&szPath)[MAX_PATH]);

/// Maps the library of that full path for the rest of the program's life, after looking at its
/// version without running it. What it imports of the system comes from the system, whatever lies
/// beside this program. Its functions may be called only after None: each is bound to the
/// mapped module on its first call.
[[nodiscard]] LibraryProblem MapLibrary(const wchar_t* pszPath);

/// What a problem is, in words for the user; the empty text for None.
const wchar_t* DescribeProblem(LibraryProblem problem);
