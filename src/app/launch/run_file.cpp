#include "app/launch/run_file.h"
#include "files/disk/path_home.h"
#include "files/disk/path_spelling.h"
#include "files/path/path_command.h"
#include "files/path/path_split.h"
#include "runtime/base/current_product.h"
#include "runtime/messages/wait_cursor.h"
#include "runtime/system/dll_loader.h"
#include "runtime/system/elevation.h"
#include "runtime/system/runtime_func.h"
#include "runtime/system/system_facts.h"
#include "runtime/text/str_format.h"

#include <cwchar>

namespace {
constexpr INT_PTR kLastShellError = 32; // what ShellExecuteW returns above this is no error
constexpr int kDllLineSize = 1024;

/// The file of that name in the folder that pfnFind knows.
int RunFound(decltype(GetLocalPath)* pfnFind, HWND hwnd, const wchar_t* pszName,
             const wchar_t* pszParameters, const wchar_t* pszVerb) {
    wchar_t szPath[MAX_PATH];
    if (!pszName || !pfnFind(szPath, pszName, nullptr)) return 0;
    ShellStart start;
    start.hwnd = hwnd ? hwnd : ::GetDesktopWindow();
    start.pszVerb = pszVerb;
    start.pszFile = szPath;
    start.pszParameters = pszParameters;
    return StartWaiting(start);
}

ShellStart MakePidlStart(const ITEMIDLIST* pidl, const wchar_t* pszDirectory,
                         const wchar_t* pszVerb) {
    ShellStart start;
    start.pszVerb = pszVerb;
    start.pszDirectory = pszDirectory;
    start.pidl = pidl;
    start.nMask = SEE_MASK_IDLIST | SEE_MASK_INVOKEIDLIST;
    return start;
}

/// The program's own path and its folder.
int GetOwnPath(wchar_t (&szPath)[MAX_PATH], wchar_t (&szFolder)[MAX_PATH]) {
    if (!GetModulePath(nullptr, szPath)) return 0;
    GetParentFolder(szFolder, szPath);
    return 1;
}
} // namespace

int RunFile(const wchar_t* pszFile, const wchar_t* pszParameters, const wchar_t* pszDirectory,
            const wchar_t* pszVerb) {
    return RunFileEx(pszFile, pszParameters, pszDirectory, pszVerb, 0, nullptr, SW_SHOWNORMAL);
}

int RunFileEx(const wchar_t* pszFile, const wchar_t* pszParameters, const wchar_t* pszDirectory,
              const wchar_t* pszVerb, ULONG nMask, HANDLE* phProcess, int nShow) {
    ShellStart start;
    start.hwnd = GetStartOwner(nullptr);
    start.pszVerb = pszVerb;
    start.pszFile = pszFile;
    start.pszParameters = pszParameters;
    start.pszDirectory = pszDirectory;
    start.nMask = nMask;
    start.nShow = nShow;
    start.phProcess = phProcess;
    return StartWaiting(start);
}

HANDLE StartProcess(const wchar_t* pszFile, const wchar_t* pszParameters,
                    const wchar_t* pszDirectory) {
    HANDLE hProcess = nullptr;
    RunFileEx(pszFile, pszParameters, pszDirectory, nullptr, 0, &hProcess, SW_SHOWNORMAL);
    return hProcess;
}

int RunPidl(HWND hwnd, const ITEMIDLIST* pidl, const wchar_t* pszDirectory,
            const wchar_t* pszVerb) {
    ShellStart start = MakePidlStart(pidl, pszDirectory, pszVerb);
    start.hwnd = hwnd;
    start.nShow = SW_SHOW;
    return StartByShell(start);
}

int RunPidlEx(HWND hwnd, const ITEMIDLIST* pidl, const wchar_t* pszDirectory,
              const wchar_t* pszParameters, const wchar_t* pszVerb, HANDLE* phProcess) {
    ShellStart start = MakePidlStart(pidl, pszDirectory, pszVerb);
    start.hwnd = GetStartOwner(hwnd);
    start.pszParameters = pszParameters;
    start.phProcess = phProcess;
    return StartByShell(start);
}

int RunLocalFile(HWND hwnd, const wchar_t* pszName, const wchar_t* pszParameters,
                 const wchar_t* pszVerb) {
    return RunFound(&GetLocalPath, hwnd, pszName, pszParameters, pszVerb);
}

int RunSatelliteFile(HWND hwnd, const wchar_t* pszName, const wchar_t* pszParameters,
                     const wchar_t* pszVerb) {
    return RunFound(&GetSatellitePath, hwnd, pszName, pszParameters, pszVerb);
}

int RunMyself(const wchar_t* pszParameters) {
    wchar_t szPath[MAX_PATH], szFolder[MAX_PATH];
    if (!GetOwnPath(szPath, szFolder)) return 0;
    CSWaitCursor wait;
    HINSTANCE hinst =
        ::ShellExecuteW(::GetDesktopWindow(), L"open", szPath, pszParameters, szFolder, SW_SHOW);
    return reinterpret_cast<INT_PTR>(hinst) > kLastShellError;
}

int RunMyselfElevated(HWND hwnd, const wchar_t* pszParameters, HANDLE* phProcess) {
    wchar_t szPath[MAX_PATH], szFolder[MAX_PATH];
    if (phProcess) *phProcess = nullptr;
    if (!GetOwnPath(szPath, szFolder)) return 0;
    ShellStart start;
    start.hwnd = hwnd ? hwnd : ::GetDesktopWindow();
    start.pszVerb = !WinVista() && IsAdminXP() ? L"open" : L"runas";
    start.pszFile = szPath;
    start.pszParameters = pszParameters;
    start.pszDirectory = szFolder;
    start.nMask = SEE_MASK_UNICODE;
    start.nShow = SW_SHOW;
    start.phProcess = phProcess;
    return StartWaiting(start);
}

int RunAs(HWND hwnd, const wchar_t* pszFile, const wchar_t* pszParameters,
          const wchar_t* pszDirectory, HANDLE* phProcess) {
    ShellStart start;
    start.hwnd = hwnd ? hwnd : FindProgman();
    start.pszVerb = L"runas";
    start.pszFile = pszFile;
    start.pszParameters = pszParameters;
    start.pszDirectory = pszDirectory;
    start.phProcess = phProcess;
    return StartWaiting(start);
}

int RunDll32(const wchar_t* pszArguments) {
    // By its full path: a bare name is looked for in the current folder before the system's.
    wchar_t szProgram[MAX_PATH], szParameters[kDllLineSize];
    return MakeSystemPath(szProgram, kRunDll32) &&
           MakeDllLine(szParameters, kDllLineSize, pszArguments) &&
           RunFile(szProgram, szParameters, nullptr, nullptr);
}

int MakeDllLine(wchar_t* pszLine, int cchLine, const wchar_t* pszArguments) {
    constexpr int kQuotes = 2;
    wchar_t szLibrary[MAX_PATH], szQuoted[MAX_PATH + kQuotes];
    if (!pszArguments) pszArguments = L"";
    *pszLine = 0;
    if (!GetModulePath(GetLibraryInstance(), szLibrary)) return 0;
    ConvertToShortPath(szLibrary, MAX_PATH);
    std::wcscpy(szQuoted, szLibrary);
    AddQuotesIfSpace(szQuoted);
    std::size_t cch = std::wcslen(szQuoted) + 1 + std::wcslen(pszArguments);
    if (cch >= static_cast<std::size_t>(cchLine)) return 0;
    FormatText(pszLine, static_cast<std::size_t>(cchLine), L"%s,%s", szQuoted, pszArguments);
    return 1;
}

static_assert(sizeof(SHELLEXECUTEINFOW) == 112, "as 64-bit Windows knows it");

int StartByShell(const ShellStart& start) {
    SHELLEXECUTEINFOW sei{};
    sei.cbSize = sizeof(sei);
    sei.fMask = start.nMask | (start.phProcess ? SEE_MASK_NOCLOSEPROCESS : 0);
    sei.hwnd = start.hwnd;
    sei.lpVerb = start.pszVerb;
    sei.lpFile = start.pszFile;
    sei.lpParameters = start.pszParameters;
    sei.lpDirectory = start.pszDirectory && *start.pszDirectory ? start.pszDirectory : nullptr;
    sei.nShow = start.nShow;
    sei.lpIDList = const_cast<ITEMIDLIST*>(start.pidl);
    int bStarted = ::ShellExecuteExW(&sei) != FALSE;
    if (start.phProcess) *start.phProcess = bStarted ? sei.hProcess : nullptr;
    return bStarted;
}

int StartWaiting(const ShellStart& start) {
    CSWaitCursor wait;
    return StartByShell(start);
}

HWND GetStartOwner(HWND hwnd) {
    if (!hwnd) hwnd = ::GetActiveWindow();
    return hwnd ? ::GetLastActivePopup(hwnd) : nullptr;
}

HWND FindProgman() { return ::FindWindowW(L"Progman", nullptr); }
