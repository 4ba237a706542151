#pragma once
#include "runtime/base/export.h"
#include <windows.h>
#include <shellapi.h>
#include <shtypes.h> // ITEMIDLIST

// Starting programs and documents through the shell. Results are the shell's: 1 started, 0 not
// (GetLastError tells why, and the shell may have told the user). Any text may be null; verb null
// is the file's default one, an empty directory counts as none. A process handle that is asked for
// (phProcess not null) is the caller's to close, and null when nothing was started or no process
// belongs to it (a document that a running program took over). The wait cursor shows during a call
// unless said.
//
// The owner of what the shell shows is the last active pop-up of the thread's active window, or
// none, where no window is given.

/// Starts a program, or opens a document with its own.
TESSALY_API int RunFile(const wchar_t* pszFile, const wchar_t* pszParameters,
                        const wchar_t* pszDirectory, const wchar_t* pszVerb);
/// RunFile with SEE_MASK_... flags of its own, one of SW_... and a process handle.
TESSALY_API int RunFileEx(const wchar_t* pszFile, const wchar_t* pszParameters,
                          const wchar_t* pszDirectory, const wchar_t* pszVerb, ULONG nMask,
                          HANDLE* phProcess, int nShow);
/// The handle of the new process; null for none.
[[nodiscard]] TESSALY_API HANDLE StartProcess(const wchar_t* pszFile, const wchar_t* pszParameters,
                                              const wchar_t* pszDirectory);

/// Opens an item of the shell's namespace, by its list counted from the desktop. hwnd, which may be
/// null, owns what the shell shows. No wait cursor.
TESSALY_API int RunPidl(HWND hwnd, const ITEMIDLIST* pidl, const wchar_t* pszDirectory,
                        const wchar_t* pszVerb);
/// RunPidl with parameters and a process handle. The owner is the last active pop-up of hwnd or,
/// for null, of the active window.
TESSALY_API int RunPidlEx(HWND hwnd, const ITEMIDLIST* pidl, const wchar_t* pszDirectory,
                          const wchar_t* pszParameters, const wchar_t* pszVerb, HANDLE* phProcess);

/// Starts the file of that name in the home folder (GetLocalPath). Null for hwnd is the desktop's
/// window. 0 also if the path does not fit into 260 characters.
TESSALY_API int RunLocalFile(HWND hwnd, const wchar_t* pszName, const wchar_t* pszParameters,
                             const wchar_t* pszVerb);
/// Starts the file of that name beside this library (GetSatellitePath), otherwise as RunLocalFile.
TESSALY_API int RunSatelliteFile(HWND hwnd, const wchar_t* pszName, const wchar_t* pszParameters,
                                 const wchar_t* pszVerb);

/// Starts this process's program once more, in its folder. 0 also if its path does not fit into 260
/// characters.
TESSALY_API int RunMyself(const wchar_t* pszParameters);
/// Starts this process's program once more as administrator; before Windows Vista that is asked for
/// only where the user is none. Null for hwnd is the desktop's window.
TESSALY_API int RunMyselfElevated(HWND hwnd, const wchar_t* pszParameters, HANDLE* phProcess);
/// Starts it as administrator. Null for hwnd is the shell's window "Progman".
TESSALY_API int RunAs(HWND hwnd, const wchar_t* pszFile, const wchar_t* pszParameters,
                      const wchar_t* pszDirectory, HANDLE* phProcess);

/// Starts "RunDll32.exe" of the system folder with this library, a comma and the arguments, which
/// begin with an exported function's name. 0 also if they do not fit into 1,024 characters.
TESSALY_API int RunDll32(const wchar_t* pszArguments);

/// The program that calls an exported function of a library.
constexpr const wchar_t* kRunDll32 = L"RunDll32.exe";

// What the other files of this folder start things by.

/// What that program wants to be told: this library's short path, a comma and the arguments. False
/// and an empty text if it does not fit. Where a path has no short form, quotes keep together what
/// its blanks and commas would take apart.
[[nodiscard]] bool MakeDllLine(wchar_t* pszLine, int cchLine, const wchar_t* pszArguments);

/// What ShellExecuteExW is asked for. Texts may be null.
struct ShellStart {
    HWND hwnd = nullptr;                    // owns what the shell shows; null: nobody
    const wchar_t* pszVerb = nullptr;       // null: the file's default one
    const wchar_t* pszFile = nullptr;       // the program or document
    const wchar_t* pszParameters = nullptr; // what a program is told
    const wchar_t* pszDirectory = nullptr;  // an empty one is none
    const ITEMIDLIST* pidl = nullptr;       // in the place of a file
    ULONG nMask = 0;                        // SEE_MASK_...; that for the process handle is added
    int nShow = SW_SHOWNORMAL;              // SW_...
    HANDLE* phProcess = nullptr;            // null: not wanted
};

/// Whether the shell did it. *phProcess gets the new process, null if there is none; the caller
/// closes it.
bool StartByShell(const ShellStart& start);
/// StartByShell with the wait cursor.
bool StartWaiting(const ShellStart& start);
/// ShellExecuteW, which tells no process: whether the shell did it.
bool ExecuteByShell(HWND hwnd, const wchar_t* pszVerb, const wchar_t* pszFile,
                    const wchar_t* pszParameters, const wchar_t* pszDirectory, int nShow);

/// The last active pop-up of the window, or of the thread's active one if that is null; null if
/// there is neither.
HWND GetStartOwner(HWND hwnd);
/// The shell's window "Progman"; null if there is none.
HWND FindProgman();
