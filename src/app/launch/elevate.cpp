#include "app/launch/elevate.h"
#include "app/launch/hand_over.h"
#include "app/launch/shell_start.h"
#include "files/disk/path_home.h"
#include "runtime/system/elevation.h"
#include "runtime/system/runtime_func.h"
#include "runtime/system/win_version.h"

namespace {
constexpr const wchar_t* kAsAdministrator = L"runas";

/// The file of that name, in the folder that pfnFind knows, in the way of pfnRun.
int RunFound(decltype(RunElevated)* pfnRun, decltype(GetLocalPath)* pfnFind, HWND hwnd,
             const wchar_t* pszName, const wchar_t* pszParameters, const wchar_t* pszDirectory,
             HANDLE* phProcess, DWORD* pdwError, int bForce) {
    wchar_t szPath[MAX_PATH];
    if (pszName && pfnFind(szPath, pszName, nullptr))
        return pfnRun(hwnd, szPath, pszParameters, pszDirectory, phProcess, pdwError, bForce);
    if (phProcess) *phProcess = nullptr;
    if (pdwError) *pdwError = ERROR_FILE_NOT_FOUND;
    return 0;
}
} // namespace

int MyShellExec(HWND hwnd, const wchar_t* pszVerb, const wchar_t* pszFile,
                const wchar_t* pszParameters, const wchar_t* pszDirectory, HANDLE* phProcess,
                DWORD* pdwError) {
    ShellStart start;
    start.hwnd = hwnd;
    start.pszVerb = pszVerb;
    start.pszFile = pszFile;
    start.pszParameters = pszParameters;
    start.pszDirectory = pszDirectory;
    start.phProcess = phProcess;
    int bStarted = StartByShell(start);
    if (pdwError) *pdwError = bStarted ? ERROR_SUCCESS : ::GetLastError();
    return bStarted;
}

int RunNonElevated(HWND hwnd, const wchar_t* pszFile, const wchar_t* pszParameters,
                   const wchar_t* pszDirectory, HANDLE* phProcess, DWORD* pdwError, int bForce) {
    if (!bForce && (!WinVista() || !IsElevated()))
        return MyShellExec(hwnd, nullptr, pszFile, pszParameters, pszDirectory, phProcess,
                           pdwError);
    return HandOver(hwnd, nullptr, pszFile, pszParameters, pszDirectory, phProcess, pdwError);
}

int RunLocalFileNonElevated(HWND hwnd, const wchar_t* pszName, const wchar_t* pszParameters,
                            const wchar_t* pszDirectory, HANDLE* phProcess, DWORD* pdwError,
                            int bForce) {
    return RunFound(&RunNonElevated, &GetLocalPath, hwnd, pszName, pszParameters, pszDirectory,
                    phProcess, pdwError, bForce);
}

int RunSatelliteFileNonElevated(HWND hwnd, const wchar_t* pszName, const wchar_t* pszParameters,
                                const wchar_t* pszDirectory, HANDLE* phProcess, DWORD* pdwError,
                                int bForce) {
    return RunFound(&RunNonElevated, &GetSatellitePath, hwnd, pszName, pszParameters, pszDirectory,
                    phProcess, pdwError, bForce);
}

int CanRunNonElevated(int) { return FindProgman() != nullptr; }

int RunElevated(HWND hwnd, const wchar_t* pszFile, const wchar_t* pszParameters,
                const wchar_t* pszDirectory, HANDLE* phProcess, DWORD* pdwError, int bForce) {
    if (!hwnd) hwnd = FindProgman();
    if (!WinVista() && !IsAdminXP())
        return MyShellExec(hwnd, kAsAdministrator, pszFile, pszParameters, pszDirectory, phProcess,
                           pdwError);
    if (bForce)
        return HandOver(hwnd, kAsAdministrator, pszFile, pszParameters, pszDirectory, phProcess,
                        pdwError);
    return MyShellExec(hwnd, WinVista() ? kAsAdministrator : nullptr, pszFile, pszParameters,
                       pszDirectory, phProcess, pdwError);
}

int RunLocalFileElevated(HWND hwnd, const wchar_t* pszName, const wchar_t* pszParameters,
                         const wchar_t* pszDirectory, HANDLE* phProcess, DWORD* pdwError,
                         int bForce) {
    return RunFound(&RunElevated, &GetLocalPath, hwnd, pszName, pszParameters, pszDirectory,
                    phProcess, pdwError, bForce);
}

int RunSatelliteFileElevated(HWND hwnd, const wchar_t* pszName, const wchar_t* pszParameters,
                             const wchar_t* pszDirectory, HANDLE* phProcess, DWORD* pdwError,
                             int bForce) {
    return RunFound(&RunElevated, &GetSatellitePath, hwnd, pszName, pszParameters, pszDirectory,
                    phProcess, pdwError, bForce);
}

int MyChangeWindowMessageFilter(UINT uMsg, DWORD dwFlag) {
    static constinit RuntimeFunc<BOOL WINAPI(UINT, DWORD)> func(L"user32.dll",
                                                                "ChangeWindowMessageFilter");
    auto* pfn = func.Get();
    return pfn && pfn(uMsg, dwFlag);
}
