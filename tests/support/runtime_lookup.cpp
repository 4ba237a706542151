#include "support/runtime_lookup.h"
#include "support/replace_import.h"

#include <atomic>
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

FARPROC WINAPI FindProc(HMODULE hmod, LPCSTR pszName) {
    RuntimeLookup pfnLookup = pfnCurrent;
    bool bByName = pfnLookup && !bInLookup && !IS_INTRESOURCE(pszName);
    std::wstring strModule = bByName ? NameOf(hmod) : L"";
    if (strModule.empty()) return pfnGetProcAddress(hmod, pszName);
    bInLookup = true;
    FARPROC pfn = pfnLookup(strModule.c_str(), pszName);
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
