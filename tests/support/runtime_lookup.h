#pragma once
#include "runtime/system/runtime_func.h"

#include <initializer_list>
#include <map>
#include <string>
#include <utility>

/// Looks a function up in a system module; null if this Windows does not have it. The name of one
/// that is asked for by its number is "#15".
using RuntimeLookup = FARPROC (*)(const wchar_t* pszModule, const char* pszName);

/// Where this program's look-ups of functions end from now on, by the names that were asked for,
/// whether the module is there or not; null brings the platform's back. While the look-up runs, the
/// thread sees the platform's own: it passes on what it leaves alone with FindSystemFunc.
void SetRuntimeLookup(RuntimeLookup pfnLookup);

/// A function without its type, as the look-ups give it.
template <class Fn>
FARPROC AsProc(Fn* pfn) {
    return reinterpret_cast<FARPROC>(reinterpret_cast<void*>(pfn));
}

/// Another Windows for the length of a block: in the place of platform functions that are found at
/// run time stand the test's own, or nothing. Every other function is the platform's. One object of
/// this class or of HideFunctions at a time.
///
///     ReplaceFunctions windows;
///     windows.Set("IsUserAnAdmin", &SaysNo);
///     windows.Hide("ChangeWindowMessageFilterEx");
class ReplaceFunctions {
  public:
    /// By name; null hides one.
    using Table = std::map<std::string, FARPROC, std::less<>>;

    explicit ReplaceFunctions(Table newTable = {}) {
        table = std::move(newTable);
        SetRuntimeLookup(&Find);
    }
    ~ReplaceFunctions() {
        SetRuntimeLookup(nullptr);
        table.clear();
    }
    ReplaceFunctions(const ReplaceFunctions&) = delete;
    ReplaceFunctions& operator=(const ReplaceFunctions&) = delete;

    template <class Fn>
    void Set(const char* pszName, Fn* pfn) {
        Change(pszName, AsProc(pfn));
    }
    void Hide(const char* pszName) { Change(pszName, nullptr); }

  private:
    static void Change(const char* pszName, FARPROC pfn) {
        table[pszName] = pfn;
        SetRuntimeLookup(&Find); // has what was found already looked for anew
    }
    static FARPROC Find(const wchar_t* pszModule, const char* pszName) {
        auto it = table.find(pszName);
        return it == table.end() ? FindSystemFunc(pszModule, pszName) : it->second;
    }
    static inline Table table;
};

/// A Windows without these functions for the length of a block.
class HideFunctions {
  public:
    HideFunctions(std::initializer_list<const char*> names) {
        for (const char* pszName : names) functions.Hide(pszName);
    }

  private:
    ReplaceFunctions functions;
};
