#include "files/text/text_decoder_test_support.h"
#include "support/wait_until.h"

#include <windows.h>
#include <filesystem>
#include <fstream>
#include <iterator>

namespace {
constexpr const wchar_t* kPython = L"Z:\\usr\\bin\\python3";
constexpr DWORD kRunMs = 120000; // many files on a busy machine

/// The name of a file as programs of the system below the test platform know it.
std::wstring UnixPath(const std::wstring& strPath) {
    using UnixName = char*(CDECL*)(LPCWSTR);
    auto pfn = reinterpret_cast<UnixName>(reinterpret_cast<void*>(
        ::GetProcAddress(::GetModuleHandleW(L"kernel32.dll"), "wine_get_unix_file_name")));
    char* psz = pfn ? pfn(strPath.c_str()) : nullptr;
    if (!psz) return strPath;
    std::wstring str = std::filesystem::path(psz).wstring();
    ::HeapFree(::GetProcessHeap(), 0, psz);
    return str;
}
} // namespace

std::string RunTextFiles(const std::wstring& strDo, const std::wstring& strFolder) {
    if (!std::filesystem::exists(kPython)) return kNoTextFiles;
    std::wstring strLine = L"python3 \"" TESSALY_TEXT_FILES L"\" " + strDo + L" \"" +
                           UnixPath(strFolder) + L"\" " + std::to_wstring(::GetACP());
    STARTUPINFOW si{};
    si.cb = sizeof(si);
    // Its handles are not closed: for a Unix program the platform writes numbers there that may by
    // now be the handles of something else.
    PROCESS_INFORMATION pi{};
    if (!::CreateProcessW(kPython, strLine.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr,
                          &si, &pi)) {
        return "Python could not be started";
    }
    const std::filesystem::path result = std::filesystem::path(strFolder) / L"result";
    if (!WaitUntil([&] { return std::filesystem::exists(result); }, kRunMs))
        return "text_files.py did not end";
    std::ifstream in(result, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
}
