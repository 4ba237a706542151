#pragma once
#include <windows.h>
#include <atomic>

/// Looks a function up in a system module; null if this Windows does not have it.
using RuntimeLookup = FARPROC (*)(const wchar_t* pszModule, const char* pszName);

/// The path of the system folder's own file of that name. 0 if it does not fit.
int MakeSystemPath(wchar_t (&szPath)[MAX_PATH], const wchar_t* pszName) noexcept;
/// The module of that file name, such as L"user32.dll": the one already mapped, else the system
/// folder's own file, loaded by its full path and never freed. Null if there is none.
HMODULE LoadSystemModule(const wchar_t* pszModule) noexcept;
/// The function of that name in LoadSystemModule's module; null if either is missing.
FARPROC FindSystemFunc(const wchar_t* pszModule, const char* pszName) noexcept;
/// The function of that name in a module that the caller holds; null if it has none.
FARPROC FindModuleFunc(HMODULE hmod, const char* pszName) noexcept;
/// The function of that name in a module of the process; null if either is missing. Loads nothing
/// and remembers nothing: for code that may run under the loader lock, or that must see a module
/// which was unmapped and mapped again. A look-up set with SetRuntimeLookup answers instead.
FARPROC FindMappedFunc(const wchar_t* pszModule, const char* pszName) noexcept;

/// Where every RuntimeFunc looks. A test that needs a Windows without some function replaces the
/// look-up for a while; null brings FindSystemFunc back. Each RuntimeFunc then looks again.
void SetRuntimeLookup(RuntimeLookup pfnLookup) noexcept;

namespace runtime_detail {
extern std::atomic<RuntimeLookup> pfnCurrentLookup;
extern std::atomic<unsigned> nGeneration; // rises with each SetRuntimeLookup, starts at 1
} // namespace runtime_detail

/// A platform function found at run time, on first use, from any thread. Declare it
/// `static constinit`: nothing then happens before the first Get, not even a guard.
template <class Fn>
class RuntimeFunc {
  public:
    constexpr RuntimeFunc(const wchar_t* pszInModule, const char* pszFuncName) noexcept
        : pszModule(pszInModule), pszName(pszFuncName) {}
    RuntimeFunc(const RuntimeFunc&) = delete;
    RuntimeFunc& operator=(const RuntimeFunc&) = delete;

    /// Null: this Windows does not have it.
    Fn* Get() noexcept {
        unsigned nNow = runtime_detail::nGeneration.load(std::memory_order_acquire);
        if (nSeen.load(std::memory_order_acquire) != nNow) {
            FARPROC p = runtime_detail::pfnCurrentLookup.load()(pszModule, pszName);
            pfn.store(reinterpret_cast<Fn*>(reinterpret_cast<void*>(p)));
            nSeen.store(nNow, std::memory_order_release);
        }
        return pfn.load(std::memory_order_relaxed);
    }

  private:
    const wchar_t* pszModule;
    const char* pszName;
    std::atomic<Fn*> pfn{nullptr};
    std::atomic<unsigned> nSeen{0};
};
