#include "app/launch/run_file.h"
#include "files/disk/path_home.h"
#include "files/disk/path_spelling.h"
#include "files/path/path_chars.h"
#include "files/path/path_split.h"
#include "runtime/base/current_product.h"
#include "runtime/messages/wait_cursor.h"
#include "runtime/system/dll_loader.h"
#include "runtime/system/elevation.h"
#include "runtime/system/runtime_func.h"
#include "runtime/system/system_facts.h"
#include "runtime/text/str_format.h"

#include <cwchar>

static_assert(sizeof(SHELLEXECUTEINFOW) == 112, "as 64-bit Windows knows it");

namespace {
constexpr INT_PTR kLastShellError = 32; // what ShellExecuteW returns above this is no error
constexpr int kDllLineSize = 1024;
constexpr ULONG kByPidl = SEE_MASK_IDLIST | SEE_MASK_INVOKEIDLIST;

/// The file of that name in the folder that pfnFind knows.
bool RunFound(decltype(GetLocalPath)* pfnFind, HWND hwnd, const wchar_t* pszName,
              const wchar_t* pszParameters, const wchar_t* pszVerb) {
    wchar_t szPath[MAX_PATH];
    return pszName && pfnFind(szPath, pszName, nullptr) &&
           StartWaiting({.hwnd = hwnd ? hwnd : ::GetDesktopWindow(),
                         .pszVerb = pszVerb,
                         .pszFile = szPath,
                         .pszParameters = pszParameters});
}

/// The program's own path and its folder.
bool GetOwnPath(wchar_t (&szPath)[MAX_PATH], wchar_t (&szFolder)[MAX_PATH]) {
    if (!GetModulePath(nullptr, szPath)) return false;
    GetParentFolder(szFolder, szPath);
    return true;
}
} // namespace

int RunFile(const wchar_t* pszFile, const wchar_t* pszParameters, const wchar_t* pszDirectory,
            const wchar_t* pszVerb) {
    return RunFileEx(pszFile, pszParameters, pszDirectory, pszVerb, 0, nullptr, SW_SHOWNORMAL);
}

int RunFileEx(const wchar_t* pszFile, const wchar_t* pszParameters, const wchar_t* pszDirectory,
              const wchar_t* pszVerb, ULONG nMask, HANDLE* phProcess, int nShow) {
    return StartWaiting({.hwnd = GetStartOwner(nullptr),
                         .pszVerb = pszVerb,
                         .pszFile = pszFile,
                         .pszParameters = pszParameters,
                         .pszDirectory = pszDirectory,
                         .nMask = nMask,
                         .nShow = nShow,
                         .phProcess = phProcess});
}

HANDLE StartProcess(const wchar_t* pszFile, const wchar_t* pszParameters,
                    const wchar_t* pszDirectory) {
    HANDLE hProcess = nullptr;
    RunFileEx(pszFile, pszParameters, pszDirectory, nullptr, 0, &hProcess, SW_SHOWNORMAL);
    return hProcess;
}

int RunPidl(HWND hwnd, const ITEMIDLIST* pidl, const wchar_t* pszDirectory,
            const wchar_t* pszVerb) {
    return StartByShell({.hwnd = hwnd,
                         .pszVerb = pszVerb,
                         .pszDirectory = pszDirectory,
                         .pidl = pidl,
                         .nMask = kByPidl,
                         .nShow = SW_SHOW});
}

int RunPidlEx(HWND hwnd, const ITEMIDLIST* pidl, const wchar_t* pszDirectory,
              const wchar_t* pszParameters, const wchar_t* pszVerb, HANDLE* phProcess) {
    return StartByShell({.hwnd = GetStartOwner(hwnd),
                         .pszVerb = pszVerb,
                         .pszParameters = pszParameters,
                         .pszDirectory = pszDirectory,
                         .pidl = pidl,
                         .nMask = kByPidl,
                         .phProcess = phProcess});
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
    return ExecuteByShell(::GetDesktopWindow(), L"open", szPath, pszParameters, szFolder, SW_SHOW);
}

int RunMyselfElevated(HWND hwnd, const wchar_t* pszParameters, HANDLE* phProcess) {
    wchar_t szPath[MAX_PATH], szFolder[MAX_PATH];
    if (phProcess) *phProcess = nullptr;
    if (!GetOwnPath(szPath, szFolder)) return 0;
    // Before Vista "runas" asks for a user and a password, which an administrator needs not give.
    bool bIsEnough = !WinVista() && IsAdminXP();
    return StartWaiting({.hwnd = hwnd ? hwnd : ::GetDesktopWindow(),
                         .pszVerb = bIsEnough ? L"open" : L"runas",
                         .pszFile = szPath,
                         .pszParameters = pszParameters,
                         .pszDirectory = szFolder,
                         .nMask = SEE_MASK_UNICODE,
                         .nShow = SW_SHOW,
                         .phProcess = phProcess});
}

int RunAs(HWND hwnd, const wchar_t* pszFile, const wchar_t* pszParameters,
          const wchar_t* pszDirectory, HANDLE* phProcess) {
    return StartWaiting({.hwnd = hwnd ? hwnd : FindProgman(),
                         .pszVerb = L"runas",
                         .pszFile = pszFile,
                         .pszParameters = pszParameters,
                         .pszDirectory = pszDirectory,
                         .phProcess = phProcess});
}

int RunDll32(const wchar_t* pszArguments) {
    // By its full path: a bare name is looked for in the current folder before the system's.
    wchar_t szProgram[MAX_PATH], szParameters[kDllLineSize];
    return MakeSystemPath(szProgram, kRunDll32) &&
           MakeDllLine(szParameters, kDllLineSize, pszArguments) &&
           RunFile(szProgram, szParameters, nullptr, nullptr);
}

// What the other files of this folder start things by

bool MakeDllLine(wchar_t* pszLine, int cchLine, const wchar_t* pszArguments) {
    constexpr int kQuotes = 2;
    wchar_t szLibrary[MAX_PATH], szQuoted[MAX_PATH + kQuotes];
    if (!pszArguments) pszArguments = L"";
    *pszLine = 0;
    if (!GetModulePath(GetLibraryInstance(), szLibrary)) return false;
    ConvertToShortPath(szLibrary, MAX_PATH);
    std::wcscpy(szQuoted, szLibrary);
    // Either would end the path.
    if (std::wcschr(szQuoted, L' ') || std::wcschr(szQuoted, L',')) AddQuotes(szQuoted);
    std::size_t cch = std::wcslen(szQuoted) + 1 + std::wcslen(pszArguments);
    if (cch >= static_cast<std::size_t>(cchLine)) return false;
    FormatText(pszLine, static_cast<std::size_t>(cchLine), L"%s,%s", szQuoted, pszArguments);
    return true;
}

bool StartByShell(const ShellStart& start) {
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
    bool bStarted = ::ShellExecuteExW(&sei) != FALSE;
    // A failed call may leave anything in the structure.
    if (start.phProcess) *start.phProcess = bStarted ? sei.hProcess : nullptr;
    return bStarted;
}

bool StartWaiting(const ShellStart& start) {
    CSWaitCursor wait;
    return StartByShell(start);
}

bool ExecuteByShell(HWND hwnd, const wchar_t* pszVerb, const wchar_t* pszFile,
                    const wchar_t* pszParameters, const wchar_t* pszDirectory, int nShow) {
    HINSTANCE hinst = ::ShellExecuteW(hwnd, pszVerb, pszFile, pszParameters, pszDirectory, nShow);
    return reinterpret_cast<INT_PTR>(hinst) > kLastShellError;
}

HWND GetStartOwner(HWND hwnd) {
    if (!hwnd) hwnd = ::GetActiveWindow();
    return hwnd ? ::GetLastActivePopup(hwnd) : nullptr;
}

HWND FindProgman() { return ::FindWindowW(L"Progman", nullptr); }
