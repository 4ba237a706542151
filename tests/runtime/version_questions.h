#pragma once
#include "runtime/system/system_facts.h"

/// The questions of what Windows this is, by name.
struct VersionQuestion {
    const char* pszName;
    int (*pfn)();
};
inline constexpr VersionQuestion kVersionQuestions[] = {
    {"WinNT", &WinNT},
    {"Win2K", &Win2K},
    {"WinXP", &WinXP},
    {"WinServer2003", &WinServer2003},
    {"WinVista", &WinVista},
    {"Win7", &Win7},
    {"Win8", &Win8},
    {"Win81", &Win81},
    {"Win10", &Win10},
    {"Win2K_only", &Win2K_only},
    {"WinXP_only", &WinXP_only},
    {"WinVista_only", &WinVista_only},
    {"Win7_only", &Win7_only},
    {"WinServer", &WinServer},
    {"WinPro", &WinPro},
};
