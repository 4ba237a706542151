#pragma once
#include "runtime/system/runtime_func.h"

#include <map>
#include <initializer_list>
#include <string>
#include <utility>

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
        Change(pszName, Erased(pfn));
    }
    void Hide(const char* pszName) { Change(pszName, nullptr); }

    /// The function without its type, as the table holds it.
    template <class Fn>
    static FARPROC Erased(Fn* pfn) {
        return reinterpret_cast<FARPROC>(reinterpret_cast<void*>(pfn));
    }

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
