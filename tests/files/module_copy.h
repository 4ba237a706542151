#pragma once
#include <windows.h>
#include <string>

/// A copy of one of the platform's modules, loaded from there without being run.
class ModuleCopy {
  public:
    explicit ModuleCopy(const std::wstring& strPath) {
        wchar_t szModule[MAX_PATH] = L"";
        ::GetModuleFileNameW(::GetModuleHandleW(L"msvcrt.dll"), szModule, MAX_PATH);
        ::CopyFileW(szModule, strPath.c_str(), TRUE);
        hmod = ::LoadLibraryExW(strPath.c_str(), nullptr, DONT_RESOLVE_DLL_REFERENCES);
    }
    ModuleCopy(const ModuleCopy&) = delete;
    ModuleCopy& operator=(const ModuleCopy&) = delete;
    ~ModuleCopy() { ::FreeLibrary(hmod); }
    HMODULE Get() const { return hmod; }

  private:
    HMODULE hmod = nullptr;
};
