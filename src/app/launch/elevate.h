#pragma once
#include "runtime/base/export.h"
#include <windows.h>

// Starting programs with more or with fewer rights than this process has. An elevated process
// cannot start one that is not; the shell, which is not elevated, does it in its place (the
// hand-over). Texts may be null; phProcess and pdwError too, if they are not wanted. The process
// handle is the caller's to close, and null when nothing was started. *pdwError is 0 after a 1.

/// Through the shell, as this process is.
TESSALY_API int MyShellExec(HWND hwnd, const wchar_t* pszVerb, const wchar_t* pszFile,
                            const wchar_t* pszParameters, const wchar_t* pszDirectory,
                            HANDLE* phProcess, DWORD* pdwError);

/// Without the rights of an administrator. bForce hands over also where this process has none.
///
/// A hand-over takes texts of 259 characters and gives 0 for longer ones, and if there is no shell
/// or another hand-over keeps it busy.
TESSALY_API int RunNonElevated(HWND hwnd, const wchar_t* pszFile, const wchar_t* pszParameters,
                               const wchar_t* pszDirectory, HANDLE* phProcess, DWORD* pdwError,
                               int bForce);
/// The same for the file of that name in the home folder (GetLocalPath), or beside this library.
TESSALY_API int RunLocalFileNonElevated(HWND hwnd, const wchar_t* pszName,
                                        const wchar_t* pszParameters, const wchar_t* pszDirectory,
                                        HANDLE* phProcess, DWORD* pdwError, int bForce);
TESSALY_API int RunSatelliteFileNonElevated(HWND hwnd, const wchar_t* pszName,
                                            const wchar_t* pszParameters,
                                            const wchar_t* pszDirectory, HANDLE* phProcess,
                                            DWORD* pdwError, int bForce);
/// 1 if there is a shell to hand over to. The argument has no meaning.
TESSALY_API int CanRunNonElevated(int bForce);

/// As administrator. Null for hwnd is the shell's window "Progman". bForce hands over, so that it
/// is the shell that asks for the rights. Before Windows Vista a user who is no administrator is
/// asked by this process in either case, and one who is, only with bForce.
TESSALY_API int RunElevated(HWND hwnd, const wchar_t* pszFile, const wchar_t* pszParameters,
                            const wchar_t* pszDirectory, HANDLE* phProcess, DWORD* pdwError,
                            int bForce);
TESSALY_API int RunLocalFileElevated(HWND hwnd, const wchar_t* pszName,
                                     const wchar_t* pszParameters, const wchar_t* pszDirectory,
                                     HANDLE* phProcess, DWORD* pdwError, int bForce);
TESSALY_API int RunSatelliteFileElevated(HWND hwnd, const wchar_t* pszName,
                                         const wchar_t* pszParameters, const wchar_t* pszDirectory,
                                         HANDLE* phProcess, DWORD* pdwError, int bForce);

/// ChangeWindowMessageFilter, which lets a message of less privileged processes through to this one
/// (MSGFLT_ADD) or no longer (MSGFLT_REMOVE); 0 where there is no such function.
TESSALY_API int MyChangeWindowMessageFilter(UINT uMsg, DWORD dwFlag);
