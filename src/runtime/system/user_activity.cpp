#include "runtime/system/user_activity.h"
#include "runtime/system/runtime_func.h"

namespace {
constexpr DWORD kSystemAndDisplay = ES_SYSTEM_REQUIRED | ES_DISPLAY_REQUIRED;

void SetExecutionState(DWORD dwState) {
    static constinit RuntimeFunc<decltype(::SetThreadExecutionState)> func(
        L"kernel32.dll", "SetThreadExecutionState");
    if (auto* pfn = func.Get()) pfn(dwState);
}
} // namespace

void StopScreenSaver() { SetExecutionState(kSystemAndDisplay); }

void ImitateUserActivity(int bSystem, int bDisplay) {
    if (bDisplay) {
        SetExecutionState(bSystem ? kSystemAndDisplay : ES_DISPLAY_REQUIRED);
    } else {
        SetExecutionState(bSystem ? ES_CONTINUOUS | ES_SYSTEM_REQUIRED : ES_CONTINUOUS);
    }
}

int SetWallpaper(const wchar_t* pszPath) {
    wchar_t szNone[] = L"";
    // The platform only reads it, though it takes no pointer to constant characters.
    wchar_t* psz = pszPath ? const_cast<wchar_t*>(pszPath) : szNone;
    return ::SystemParametersInfoW(SPI_SETDESKWALLPAPER, static_cast<UINT>(::lstrlenW(psz)), psz,
                                   SPIF_UPDATEINIFILE | SPIF_SENDCHANGE);
}
