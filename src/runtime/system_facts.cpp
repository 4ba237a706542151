#include "runtime/system_facts.h"
#include "runtime/win_version.h"

#ifndef LOCALE_SNAME
#define LOCALE_SNAME 0x0000005c // winnls.h from Windows Vista on
#endif

int SingleFloppy() {
    int bBoth =
        ::GetDriveTypeW(L"A:\\") == DRIVE_REMOVABLE && ::GetDriveTypeW(L"B:\\") == DRIVE_REMOVABLE;
    return !bBoth;
}

int GetWinLanguage(wchar_t* pszBuffer, int cchBuffer) {
    if (cchBuffer <= 0) return 0; // a capacity of 0 would ask for the length
    LCTYPE nWhat = WinVista() ? LOCALE_SNAME : LOCALE_SENGLANGUAGE;
    if (::GetLocaleInfoW(LOCALE_SYSTEM_DEFAULT, nWhat, pszBuffer, cchBuffer)) return 1;
    pszBuffer[0] = 0;
    return 0;
}
