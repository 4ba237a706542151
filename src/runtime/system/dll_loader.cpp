#include "runtime/system/dll_loader.h"
#include "runtime/system/runtime_func.h"

#include <shlwapi.h> // DLLVERSIONINFO
#include <atomic>
#include <type_traits>

extern "C" IMAGE_DOS_HEADER __ImageBase; // the linker's name for the start of this image

namespace {
using GetVersionFunc = std::remove_pointer_t<DLLGETVERSIONPROC>;
constexpr DWORD kOldestVersion = 4; // what has no DllGetVersion is of the first shell

int PathBesideThisLibrary(wchar_t (&szPath)[MAX_PATH], const wchar_t* pszName) {
    if (!GetModulePath(reinterpret_cast<HMODULE>(&__ImageBase), szPath)) return 0;
    int cch = ::lstrlenW(szPath);
    while (cch && szPath[cch - 1] != L'\\') --cch;
    if (cch + ::lstrlenW(pszName) + 1 > MAX_PATH) return 0;
    ::lstrcpyW(szPath + cch, pszName);
    return 1;
}

int IsFullPath(const wchar_t* pszName) {
    if (pszName[0] == L'\\' && pszName[1] == L'\\') return 1;
    return pszName[0] && pszName[1] == L':' && pszName[2] == L'\\';
}

HMODULE LoadByName(const wchar_t* pszName) {
    if (IsFullPath(pszName)) return ::LoadLibraryW(pszName);
    HMODULE hmod = nullptr;
    if (::GetModuleHandleExW(0, pszName, &hmod)) return hmod; // counted: freed like a loaded one
    wchar_t szPath[MAX_PATH];
    return MakeSystemPath(szPath, pszName) ? ::LoadLibraryW(szPath) : nullptr;
}

/// What the library's DllGetVersion tells; 4.0 without one.
DLLVERSIONINFO AskVersion(const DLL_Loader& library) {
    DLLVERSIONINFO info{};
    info.cbSize = sizeof(info);
    auto* pfn = FindModuleFunc<GetVersionFunc>(library, "DllGetVersion");
    if (pfn && SUCCEEDED(pfn(&info))) return info;
    info = {};
    info.dwMajorVersion = kOldestVersion;
    return info;
}
} // namespace

DLL_Loader::DLL_Loader(const wchar_t* pszName, int bLocal) {
    if (pszName) Load(pszName, bLocal);
}

int DLL_Loader::Load(const wchar_t* pszName, int bLocal) {
    Unload();
    if (!pszName || !*pszName) return 0;
    if (!bLocal) {
        hmod.Reset(LoadByName(pszName));
    } else {
        wchar_t szPath[MAX_PATH];
        if (PathBesideThisLibrary(szPath, pszName)) hmod.Reset(::LoadLibraryW(szPath));
    }
    return hmod.Get() != nullptr;
}

FARPROC DLL_Loader::GetAPI(const char* pszName) const {
    return hmod ? FindModuleFunc(hmod.Get(), pszName) : nullptr;
}

unsigned short GetVerDll(const wchar_t* pszName, DWORD* pdwMajor, DWORD* pdwMinor,
                         DWORD* pdwBuild) {
    DLL_Loader library(pszName ? pszName : L"SHELL32");
    DLLVERSIONINFO info{};
    if (static_cast<HMODULE>(library)) info = AskVersion(library);
    if (pdwMajor) *pdwMajor = info.dwMajorVersion;
    if (pdwMinor) *pdwMinor = info.dwMinorVersion;
    if (pdwBuild) *pdwBuild = info.dwBuildNumber;
    return MAKEWORD(info.dwMinorVersion, info.dwMajorVersion);
}

unsigned short GetVerDll_ComCtl32() {
    static constinit std::atomic<unsigned short> nVersion{0}; // asked twice by two threads at worst
    if (nVersion == 0) nVersion = GetVerDll(L"COMCTL32");
    return nVersion;
}

int GetModulePath(HINSTANCE hinst, wchar_t (&szPath)[MAX_PATH]) {
    DWORD cch = ::GetModuleFileNameW(hinst, szPath, MAX_PATH);
    if (cch > 0 && cch < MAX_PATH) return 1; // XP cuts a longer one without a terminator
    szPath[0] = 0;
    return 0;
}
