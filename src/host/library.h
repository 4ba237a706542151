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

/// DoMonitor, the library's entry for this program (icons/engine/monitor.h).
using MonitorFunc = void(HWND hwndParent, int bQuiet);

/// The library's path: beside this program, and nowhere else. 0 if it does not fit.
int GetLibraryPath(wchar_t (&szPath)[MAX_PATH]);

/// Maps the library of that full path for good, after looking at its version without running it.
/// Its functions may be called only after None: they are bound to the mapped module on their first
/// call. pfnMonitor is written only then.
LibraryProblem LoadLibraryFile(const wchar_t* pszPath, MonitorFunc*& pfnMonitor);

/// What a problem is, in words for the user.
const wchar_t* DescribeProblem(LibraryProblem problem);
