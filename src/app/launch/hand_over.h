#pragma once
#include <windows.h>

/// A request to the shell's process, in a section of the library ("ve_share") whose pages every
/// process that maps the library shares. It serves one call at a time. Everybody can write to it,
/// also who may not send to the shell: the message's two parameters are the MD5 digest of the
/// request (the structure with hhook, uMsg and the results zero), and only a request that fits them
/// is served. All zero between two calls.
struct HandOverData {
    HHOOK hhook; // the hook on the thread of the shell's window
    UINT uMsg;   // id of the message "VistaElevatorMsg"; 0 once it was taken up
    int nResult; // of MyShellExec
    HWND hwndOwner;
    int bWantHandle;
    DWORD dwError;
    wchar_t szVerb[MAX_PATH]; // empty for none
    HANDLE hProcess;          // a handle of the shell's process
    wchar_t szFile[MAX_PATH];
    wchar_t szParameters[MAX_PATH];
    wchar_t szDirectory[MAX_PATH];
};
static_assert(sizeof(HandOverData) == 2120, "the same for every process");

extern HandOverData handOverData;

/// Has the shell's process start a program with that verb (null for none): MyShellExec over there.
/// Returns after it has been done, which may be after the user was asked. Its arguments are those
/// of RunNonElevated; the result is 0 also if the request could not be made.
int HandOver(HWND hwnd, const wchar_t* pszVerb, const wchar_t* pszFile,
             const wchar_t* pszParameters, const wchar_t* pszDirectory, HANDLE* phProcess,
             DWORD* pdwError);

/// The WH_CALLWNDPROC hook that serves the request in the shell's process.
LRESULT CALLBACK HandOverHookProc(int nCode, WPARAM wParam, LPARAM lParam);
