#include "app/shell_start.h"
#include "files/path_split.h"
#include "runtime/library_instance.h"
#include "wnd/wait_cursor.h"

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

int GetModulePath(HINSTANCE hinst, wchar_t (&szPath)[MAX_PATH]) {
    DWORD cch = ::GetModuleFileNameW(hinst, szPath, MAX_PATH);
    if (cch > 0 && cch < MAX_PATH) return 1; // XP cuts a longer one without a terminator
    szPath[0] = 0;
    return 0;
}

int GetSatellitePathOf(const wchar_t* pszName, wchar_t (&szPath)[MAX_PATH]) {
    if (!pszName || !GetModulePath(GetLibraryInstance(), szPath)) return 0;
    wchar_t* pszSeparator = FindLastSeparator(szPath);
    wchar_t* psz = pszSeparator ? pszSeparator + 1 : szPath;
    if ((psz - szPath) + ::lstrlenW(pszName) >= MAX_PATH) return 0;
    ::lstrcpyW(psz, pszName);
    return 1;
}
