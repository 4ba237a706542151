#pragma once
#include "e2e/support/unix_shell.h"
#include "support/temp_folder.h"

#include <windows.h>
#include <fstream>
#include <map>
#include <string>

/// The script that reads shortcuts beside the library; empty if there is no Python or no script.
inline std::filesystem::path FindLinkReader() {
    if (::GetFileAttributesW(L"Z:\\usr\\bin\\env") == INVALID_FILE_ATTRIBUTES) return {};
    wchar_t sz[MAX_PATH] = {};
    ::GetModuleFileNameW(nullptr, sz, MAX_PATH);
    for (std::filesystem::path path = sz; path.has_relative_path(); path = path.parent_path()) {
        auto script = path / L"tests\\shell\\folders\\read_link.py";
        if (std::filesystem::exists(script)) return script;
    }
    return {};
}

/// A path as the system below the test platform calls it.
inline std::wstring UnixPath(const std::wstring& strPath) {
    using UnixName = char* CDECL(const wchar_t*);
    auto* pfn = reinterpret_cast<UnixName*>(reinterpret_cast<void*>(
        ::GetProcAddress(::GetModuleHandleW(L"kernel32.dll"), "wine_get_unix_file_name")));
    if (!pfn) return L"";
    char* psz = pfn(strPath.c_str());
    if (!psz) return L"";
    std::wstring str(psz, psz + strlen(psz));
    ::HeapFree(::GetProcessHeap(), 0, psz);
    return str;
}

/// What the script reads in a shortcut, by its keys. Throws std::runtime_error if it finds a fault.
inline std::map<std::string, std::string> ReadLinkFile(const std::wstring& strLink) {
    TempFolder out;
    const std::wstring strOut = out.MakeFile(L"values", "");
    const std::wstring strCopy = out.File(L"copy.lnk"); // by a name that a command line can hold
    ::CopyFileW(strLink.c_str(), strCopy.c_str(), TRUE);
    RunUnixShell(L"python3 '" + UnixPath(FindLinkReader().wstring()) + L"' '" + UnixPath(strCopy) +
                 L"' '" + UnixPath(strOut) + L"'");
    std::ifstream in(std::filesystem::path(strOut), std::ios::binary);
    std::map<std::string, std::string> values;
    for (std::string strLine; std::getline(in, strLine);) {
        auto nAt = strLine.find('=');
        values[strLine.substr(0, nAt)] = strLine.substr(nAt + 1);
    }
    return values;
}
