#include "support/runtime_lookup.h"
#include "support/replace_import.h"

#include <atomic>
#include <cstdlib>
#include <mutex>

// The two imports by which the product looks functions up.
extern "C" FARPROC __imp_GetModuleHandleW, __imp_GetProcAddress;

namespace {
auto* const pfnGetModuleHandle = FuncOfType<decltype(::GetModuleHandleW)>(__imp_GetModuleHandleW);
auto* const pfnGetProcAddress = FuncOfType<decltype(::GetProcAddress)>(__imp_GetProcAddress);

std::atomic<RuntimeLookup> pfnCurrent{nullptr};
thread_local bool bInLookup = false;

std::mutex mutex;                        // for the two maps
std::map<HMODULE, std::wstring> asked;   // the names under which modules were asked for
std::map<std::wstring, HMODULE> missing; // what stands for a module that is not mapped

HMODULE WINAPI FindModule(LPCWSTR pszModule) {
    HMODULE hmod = pfnGetModuleHandle(pszModule);
    if (!pfnCurrent || bInLookup || !pszModule) return hmod;
    std::lock_guard lock(mutex);
    if (!hmod) {
        HMODULE& hmodMissing = missing[pszModule];
        hmodMissing = reinterpret_cast<HMODULE>(&hmodMissing); // no module lies there
        hmod = hmodMissing;
    }
    asked[hmod] = pszModule;
    return hmod;
}

std::wstring NameOf(HMODULE hmod) {
    std::lock_guard lock(mutex);
    auto it = asked.find(hmod);
    return it == asked.end() ? L"" : it->second;
}

/// The platform's function, whose number may be written as "#15".
FARPROC FindReal(HMODULE hmod, LPCSTR pszName) {
    bool bNumber = !IS_INTRESOURCE(pszName) && *pszName == '#';
    return pfnGetProcAddress(hmod, bNumber ? MAKEINTRESOURCEA(std::atoi(pszName + 1)) : pszName);
}

FARPROC WINAPI FindProc(HMODULE hmod, LPCSTR pszName) {
    RuntimeLookup pfnLookup = pfnCurrent;
    std::wstring strModule = pfnLookup && !bInLookup ? NameOf(hmod) : L"";
    if (strModule.empty()) return FindReal(hmod, pszName);
    std::string strName = IS_INTRESOURCE(pszName)
                              ? "#" + std::to_string(reinterpret_cast<ULONG_PTR>(pszName))
                              : pszName;
    bInLookup = true;
    FARPROC pfn = pfnLookup(strModule.c_str(), strName.c_str());
    bInLookup = false;
    return pfn;
}
} // namespace

void SetRuntimeLookup(RuntimeLookup pfnLookup) {
    // They stay once they are there: another thread may be on its way through them.
    static ReplaceImport moduleHandle(__imp_GetModuleHandleW, &FindModule);
    static ReplaceImport procAddress(__imp_GetProcAddress, &FindProc);
    pfnCurrent = pfnLookup;
}
