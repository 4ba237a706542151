#pragma once
#include "runtime/base/export.h"
#include <windows.h>

// Starting programs with more or with fewer rights than this process has. An elevated process
// cannot start one that is not; the shell, which is not elevated, does it in its place (the
// hand-over). Texts may be null; phProcess and pdwError too, if they are not wanted. The process
// handle is the caller's to close, and null when nothing was started. *pdwError is 0 after a 1.
// Results are 1 if something was started, 0 if not.

/// Starts it through the shell, as this process is.
TESSALY_API int MyShellExec(HWND hwnd, const wchar_t* pszVerb, const wchar_t* pszFile,
                            const wchar_t* pszParameters, const wchar_t* pszDirectory,
                            HANDLE* phProcess, DWORD* pdwError);

/// Starts it without the rights of an administrator. bForce hands over also where this process has
/// none.
///
/// A hand-over takes texts of 259 characters and gives 0 for longer ones, and if there is no shell
/// or another hand-over keeps it busy: *pdwError is ERROR_BUSY after 5 s, or at once for a call
/// from within one.
TESSALY_API int RunNonElevated(HWND hwnd, const wchar_t* pszFile, const wchar_t* pszParameters,
                               const wchar_t* pszDirectory, HANDLE* phProcess, DWORD* pdwError,
                               int bForce);
/// RunNonElevated for the file of that name in the home folder (GetLocalPath), or beside this
/// library (GetSatellitePath). *pdwError is ERROR_FILE_NOT_FOUND if there is no name or the path
/// does not fit.
TESSALY_API int RunLocalFileNonElevated(HWND hwnd, const wchar_t* pszName,
                                        const wchar_t* pszParameters, const wchar_t* pszDirectory,
                                        HANDLE* phProcess, DWORD* pdwError, int bForce);
TESSALY_API int RunSatelliteFileNonElevated(HWND hwnd, const wchar_t* pszName,
                                            const wchar_t* pszParameters,
                                            const wchar_t* pszDirectory, HANDLE* phProcess,
                                            DWORD* pdwError, int bForce);
/// 1 if there is a shell to hand over to. The argument has no meaning.
TESSALY_API int CanRunNonElevated(int bForce);

/// Starts it as administrator. Null for hwnd is the shell's window "Progman". bForce hands over, so
/// that it is the shell that asks for the rights. Before Windows Vista a user who is no
/// administrator is asked by this process in either case, and one who is, only with bForce.
TESSALY_API int RunElevated(HWND hwnd, const wchar_t* pszFile, const wchar_t* pszParameters,
                            const wchar_t* pszDirectory, HANDLE* phProcess, DWORD* pdwError,
                            int bForce);
/// RunElevated for such a file, as above.
TESSALY_API int RunLocalFileElevated(HWND hwnd, const wchar_t* pszName,
                                     const wchar_t* pszParameters, const wchar_t* pszDirectory,
                                     HANDLE* phProcess, DWORD* pdwError, int bForce);
TESSALY_API int RunSatelliteFileElevated(HWND hwnd, const wchar_t* pszName,
                                         const wchar_t* pszParameters, const wchar_t* pszDirectory,
                                         HANDLE* phProcess, DWORD* pdwError, int bForce);

/// ChangeWindowMessageFilter, which lets a message of less privileged processes through to this one
/// (MSGFLT_ADD) or no longer (MSGFLT_REMOVE). 1; 0 where there is no such function.
TESSALY_API int MyChangeWindowMessageFilter(UINT uMsg, DWORD dwFlag);

// The hand-over, for the sources of this folder.

/// A request to the shell's process, in a section of the library ("ve_share") whose pages every
/// process that maps the library shares. It serves one call at a time. Everybody can write to it,
/// also who may not send to the shell: the message's two parameters are the MD5 digest of the
/// request (the structure with hhook, uMsg and the results zero), and only a request that fits them
/// is served. It is wiped when it is taken up. Nor is the process handle taken from here: that
/// comes as the message's answer, which the shell's thread alone gives. All zero between two calls.
struct HandOverData {
    HHOOK hhook;                    // the hook on the thread of the shell's window
    UINT uMsg;                      // id of the message "VistaElevatorMsg"; 0 once it was taken up
    int nResult;                    // of MyShellExec
    HWND hwndOwner;                 // of what the shell asks
    int bWantHandle;                // whether hProcess is to be filled
    DWORD dwError;                  // why it failed; 0 after a 1
    wchar_t szVerb[MAX_PATH];       // empty for none
    HANDLE hProcess;                // a handle of the shell's process
    wchar_t szFile[MAX_PATH];       // what to start
    wchar_t szParameters[MAX_PATH]; // empty for none
    wchar_t szDirectory[MAX_PATH];  // empty for none
};
static_assert(sizeof(HandOverData) == 2120, "the same for every process");

extern HandOverData handOverData; ///< The one request of the machine.

/// Has the shell's process start a program with that verb (null for none): MyShellExec over there.
/// Returns after it has been done, which may be after the user was asked. Its arguments are those
/// of RunNonElevated; the result is false also if the request could not be made.
bool HandOver(HWND hwnd, const wchar_t* pszVerb, const wchar_t* pszFile,
              const wchar_t* pszParameters, const wchar_t* pszDirectory, HANDLE* phProcess,
              DWORD* pdwError);

/// The WH_CALLWNDPROC hook that serves the request in the shell's process.
LRESULT CALLBACK HandOverHookProc(int nCode, WPARAM wParam, LPARAM lParam);
