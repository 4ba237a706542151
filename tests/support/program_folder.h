#pragma once
#include <windows.h>
#include <string>

/// The folder of the running test program, with its final separator. The programs that tests start
/// lie in it.
inline std::wstring ProgramFolder() {
    wchar_t sz[MAX_PATH] = {};
    ::GetModuleFileNameW(nullptr, sz, MAX_PATH);
    std::wstring str = sz;
    return str.substr(0, str.rfind(L'\\') + 1);
}
