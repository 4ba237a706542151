#pragma once
#include <windows.h>

// The only place that looks platform functions up by name. Whoever calls one has a way to go on
// without it: null means that this Windows does not have the function. One that has no name is
// asked for by its number, MAKEINTRESOURCEA(15), in the place of the name.

/// The path of the system folder's own file of that name. False if it does not fit.
[[nodiscard]] bool MakeSystemPath(wchar_t (&szPath)[MAX_PATH], const wchar_t* pszName) noexcept;
/// The module of that file name, such as L"user32.dll": the one already mapped, else the system
/// folder's own file, loaded by its full path and never freed. Null if there is none.
HMODULE LoadSystemModule(const wchar_t* pszModule) noexcept;

/// The function of that name in a module that the caller holds; null if it has none.
FARPROC FindModuleFunc(HMODULE hmod, const char* pszName) noexcept;
/// The function of that name in LoadSystemModule's module; null if either is missing.
FARPROC FindSystemFunc(const wchar_t* pszModule, const char* pszName) noexcept;
/// The function of that name in a module of the process; null if either is missing. Loads nothing:
/// for code that may run under the loader lock, or that must see a module which was unmapped and
/// mapped again.
FARPROC FindMappedFunc(const wchar_t* pszModule, const char* pszName) noexcept;

/// A function that was looked up, as one of the type Fn; null stays null.
template <class Fn>
Fn* FuncOfType(FARPROC pfn) noexcept {
    return reinterpret_cast<Fn*>(reinterpret_cast<void*>(pfn));
}

/// The look-ups above with the function's type: FindMappedFunc<decltype(::Sleep)>(...).
template <class Fn>
Fn* FindModuleFunc(HMODULE hmod, const char* pszName) noexcept {
    return FuncOfType<Fn>(FindModuleFunc(hmod, pszName));
}
template <class Fn>
Fn* FindSystemFunc(const wchar_t* pszModule, const char* pszName) noexcept {
    return FuncOfType<Fn>(FindSystemFunc(pszModule, pszName));
}
template <class Fn>
Fn* FindMappedFunc(const wchar_t* pszModule, const char* pszName) noexcept {
    return FuncOfType<Fn>(FindMappedFunc(pszModule, pszName));
}

/// The names of a platform function and of its module, to be declared where the function is used.
/// Nothing is remembered: a caller that asks often keeps the pointer.
template <class Fn>
class RuntimeFunc {
  public:
    constexpr RuntimeFunc(const wchar_t* pszInModule, const char* pszFuncName) noexcept
        : pszModule(pszInModule), pszName(pszFuncName) {}
    RuntimeFunc(const RuntimeFunc&) = delete;
    RuntimeFunc& operator=(const RuntimeFunc&) = delete;

    /// FindSystemFunc, from any thread.
    [[nodiscard]] Fn* Get() const noexcept { return FindSystemFunc<Fn>(pszModule, pszName); }

  private:
    const wchar_t* pszModule;
    const char* pszName;
};
