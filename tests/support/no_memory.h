#pragma once
#include "support/replace_import.h"
#include <windows.h>
#include <cstddef>

extern "C" FARPROC __imp_malloc;

/// No memory for this program's own blocks for the length of a block of code, which should be
/// short: nothing else may ask for any meanwhile, not even an assertion that fails.
class NoMemory {
  private:
    static void* __cdecl Refuse(std::size_t) { return nullptr; }
    ReplaceImport replaced{__imp_malloc, &Refuse};
};
