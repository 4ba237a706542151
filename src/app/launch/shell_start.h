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
    ULONG nMask = 0; // SEE_MASK_...; that for the process handle is added
    int nShow = SW_SHOWNORMAL;
    HANDLE* phProcess = nullptr; // null: not wanted
};

/// 1 if the shell did it. *phProcess gets the new process, null if there is none; the caller closes
/// it.
int StartByShell(const ShellStart& start);
/// The same with the wait cursor.
int StartWaiting(const ShellStart& start);

/// The last active pop-up of the window, or of the thread's active one if that is null; null if
/// there is neither.
HWND GetStartOwner(HWND hwnd);
/// The shell's window "Progman"; null if there is none.
HWND FindProgman();
