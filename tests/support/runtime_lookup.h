#pragma once
#include "runtime/system/runtime_func.h"
#include <cstring>
#include <initializer_list>
#include <string>
#include <vector>

/// A Windows without these functions for the length of a block. One at a time.
class HideFunctions {
  public:
    HideFunctions(std::initializer_list<const char*> names) {
        hidden.assign(names.begin(), names.end());
        SetRuntimeLookup(Lookup);
    }
    ~HideFunctions() { SetRuntimeLookup(nullptr); }
    HideFunctions(const HideFunctions&) = delete;
    HideFunctions& operator=(const HideFunctions&) = delete;

  private:
    static FARPROC Lookup(const wchar_t* pszModule, const char* pszName) {
        for (const std::string& str : hidden) {
            if (str == pszName) return nullptr;
        }
        return FindSystemFunc(pszModule, pszName);
    }
    static inline std::vector<std::string> hidden;
};
