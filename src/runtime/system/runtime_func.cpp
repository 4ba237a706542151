#include "runtime/system/runtime_func.h"

namespace runtime_detail {
constinit std::atomic<RuntimeLookup> pfnCurrentLookup{&FindSystemFunc};
constinit std::atomic<unsigned> nGeneration{1};
} // namespace runtime_detail

int MakeSystemPath(wchar_t (&szPath)[MAX_PATH], const wchar_t* pszName) noexcept {
    UINT cch = ::GetSystemDirectoryW(szPath, MAX_PATH);
    UINT cchName = static_cast<UINT>(::lstrlenW(pszName));
    if (cch == 0 || cch + 1 + cchName + 1 > MAX_PATH) return 0;
    szPath[cch] = L'\\';
    ::lstrcpyW(szPath + cch + 1, pszName);
    return 1;
}

HMODULE LoadSystemModule(const wchar_t* pszModule) noexcept {
    HMODULE hmod = ::GetModuleHandleW(pszModule);
    if (hmod) return hmod;
    // XP has no search flags for LoadLibraryExW; a bare name would look beside the program first.
    wchar_t szPath[MAX_PATH];
    return MakeSystemPath(szPath, pszModule) ? ::LoadLibraryW(szPath) : nullptr;
}

FARPROC FindSystemFunc(const wchar_t* pszModule, const char* pszName) noexcept {
    HMODULE hmod = LoadSystemModule(pszModule);
    return hmod ? FindModuleFunc(hmod, pszName) : nullptr;
}

FARPROC FindModuleFunc(HMODULE hmod, const char* pszName) noexcept {
    return ::GetProcAddress(hmod, pszName);
}

FARPROC FindMappedFunc(const wchar_t* pszModule, const char* pszName) noexcept {
    RuntimeLookup pfnLookup = runtime_detail::pfnCurrentLookup.load();
    if (pfnLookup != &FindSystemFunc) return pfnLookup(pszModule, pszName);
    HMODULE hmod = ::GetModuleHandleW(pszModule);
    return hmod ? ::GetProcAddress(hmod, pszName) : nullptr;
}

void SetRuntimeLookup(RuntimeLookup pfnLookup) noexcept {
    runtime_detail::pfnCurrentLookup = pfnLookup ? pfnLookup : &FindSystemFunc;
    ++runtime_detail::nGeneration;
}
