#pragma once
#include <windows.h>
#include <shellapi.h>
#include <shtypes.h> // ITEMIDLIST

/// What ShellExecuteExW is asked for. Texts may be null.
struct ShellStart {
    HWND hwnd = nullptr;
    const wchar_t* pszVerb = nullptr;
    const wchar_t* pszFile = nullptr;
    const wchar_t* pszParameters = nullptr;
    const wchar_t* pszDirectory = nullptr; // an empty one is none
    const ITEMIDLIST* pidl = nullptr;
    ULONG nMask = 0;             // SEE_MASK_...; that for the process handle is added
    int nShow = SW_SHOWNORMAL;
    HANDLE* phProcess = nullptr; // where the process handle goes, null for not wanted
};

/// 1 if the shell did it. *phProcess is null otherwise.
int StartByShell(const ShellStart& start);
/// The same with the wait cursor.
int StartByShellWaiting(const ShellStart& start);

/// The last active pop-up of the window, or of the thread's active one if that is null; null if
/// there is none either.
HWND GetStartOwner(HWND hwnd);
/// The shell's window "Progman"; null if there is none.
HWND FindProgman();
/// The path of a module and the folder of it, with its final separator. 0 if it does not fit.
int GetModuleFolder(HINSTANCE hinst, wchar_t (&szFolder)[MAX_PATH]);
/// The folder and the name as one path. 0 if that does not fit.
int AppendName(wchar_t (&szFolder)[MAX_PATH], const wchar_t* pszName);
/// The path of the file of that name beside this library. 0 if that does not fit.
int GetPathBesideLibrary(wchar_t (&szPath)[MAX_PATH], const wchar_t* pszName);
