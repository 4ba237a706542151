#include "runtime/system/system_facts.h"
#include "resources/resource_ids.h"
#include "runtime/messages/msg.h"
#include "runtime/system/win_version.h"
#include "store/registry/reg_key.h"

#ifndef LOCALE_SNAME
#define LOCALE_SNAME 0x0000005c // winnls.h from Windows Vista on
#endif

int SingleFloppy() {
    int bBoth =
        ::GetDriveTypeW(L"A:\\") == DRIVE_REMOVABLE && ::GetDriveTypeW(L"B:\\") == DRIVE_REMOVABLE;
    return !bBoth;
}

int WinProNotSupported(HWND hwndOwner) {
    if (!WinPro()) return 1;
    Msg(hwndOwner, MB_ICONHAND, -IDS_NOT_ON_THIS_EDITION);
    return 0;
}

int IsFastUserSwitchingEnabled() {
    constexpr const wchar_t* kWinlogon =
        L"HKLM\\SOFTWARE\\Microsoft\\Windows NT\\CurrentVersion\\Winlogon";
    RegKey key(kWinlogon, 0);
    return key.GetInt(L"AllowMultipleTSSessions", 0);
}

int GetWinLanguage(wchar_t* pszBuffer, int cchBuffer) {
    if (cchBuffer <= 0) return 0; // a capacity of 0 would ask for the length
    LCTYPE nWhat = WinVista() ? LOCALE_SNAME : LOCALE_SENGLANGUAGE;
    if (::GetLocaleInfoW(LOCALE_SYSTEM_DEFAULT, nWhat, pszBuffer, cchBuffer)) return 1;
    pszBuffer[0] = 0;
    return 0;
}
