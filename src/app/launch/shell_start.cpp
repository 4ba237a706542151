#include "app/launch/shell_start.h"
#include "wnd/core/wait_cursor.h"

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
