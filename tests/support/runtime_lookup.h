#pragma once
#include "runtime/system/runtime_func.h"
#include <initializer_list>
#include <map>
#include <string>

/// A function as the look-ups give it.
template <class Fn>
FARPROC AsProc(Fn* pfn) {
    return reinterpret_cast<FARPROC>(reinterpret_cast<void*>(pfn));
}

/// A Windows with these functions in the place of its own for the length of a block; null is one
/// that is not there. One at a time:
///
///     ReplaceFunctions replaced{{"IsUserAnAdmin", AsProc(&SaysNo)}};
class ReplaceFunctions {
  public:
    ReplaceFunctions(std::map<std::string, FARPROC> others) {
        replacements = std::move(others);
        SetRuntimeLookup(Lookup);
    }
    ~ReplaceFunctions() { SetRuntimeLookup(nullptr); }
    ReplaceFunctions(const ReplaceFunctions&) = delete;
    ReplaceFunctions& operator=(const ReplaceFunctions&) = delete;

  private:
    static FARPROC Lookup(const wchar_t* pszModule, const char* pszName) {
        auto it = replacements.find(pszName);
        return it == replacements.end() ? FindSystemFunc(pszModule, pszName) : it->second;
    }
    static inline std::map<std::string, FARPROC> replacements;
};

/// A Windows without these functions for the length of a block. One at a time.
class HideFunctions : public ReplaceFunctions {
  public:
    HideFunctions(std::initializer_list<const char*> names) : ReplaceFunctions(Hidden(names)) {}

  private:
    static std::map<std::string, FARPROC> Hidden(std::initializer_list<const char*> names) {
        std::map<std::string, FARPROC> hidden;
        for (const char* psz : names) hidden[psz] = nullptr;
        return hidden;
    }
};
