#include "runtime/system/runtime_func.h"

bool MakeSystemPath(wchar_t (&szPath)[MAX_PATH], const wchar_t* pszName) noexcept {
    UINT cch = ::GetSystemDirectoryW(szPath, MAX_PATH);
    UINT cchName = static_cast<UINT>(::lstrlenW(pszName));
    if (cch == 0 || cch + 1 + cchName + 1 > MAX_PATH) return false;
    szPath[cch] = L'\\';
    ::lstrcpyW(szPath + cch + 1, pszName);
    return true;
}

HMODULE LoadSystemModule(const wchar_t* pszModule) noexcept {
    HMODULE hmod = ::GetModuleHandleW(pszModule);
    if (hmod) return hmod;
    // XP has no search flags for LoadLibraryExW; a bare name would look beside the program first.
    wchar_t szPath[MAX_PATH];
    return MakeSystemPath(szPath, pszModule) ? ::LoadLibraryW(szPath) : nullptr;
}

FARPROC FindModuleFunc(HMODULE hmod, const char* pszName) noexcept {
    return ::GetProcAddress(hmod, pszName);
}

FARPROC FindSystemFunc(const wchar_t* pszModule, const char* pszName) noexcept {
    HMODULE hmod = LoadSystemModule(pszModule);
    return hmod ? FindModuleFunc(hmod, pszName) : nullptr;
}

FARPROC FindMappedFunc(const wchar_t* pszModule, const char* pszName) noexcept {
    HMODULE hmod = ::GetModuleHandleW(pszModule);
    return hmod ? FindModuleFunc(hmod, pszName) : nullptr;
}
