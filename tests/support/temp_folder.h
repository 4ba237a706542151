#pragma once
#include <windows.h>
#include <filesystem>
#include <fstream>
#include <string>

/// A new empty folder, removed with all that is in it.
class TempFolder {
  public:
    TempFolder() {
        static int nCount = 0;
        wchar_t szTemp[MAX_PATH] = {};
        ::GetTempPathW(MAX_PATH, szTemp);
        path = std::filesystem::path(szTemp) /
               (L"tessaly_test_" + std::to_wstring(::GetCurrentProcessId()) + L"_" +
                std::to_wstring(++nCount));
        std::filesystem::create_directories(path);
    }
    ~TempFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(path, ignored);
    }
    TempFolder(const TempFolder&) = delete;
    TempFolder& operator=(const TempFolder&) = delete;

    std::wstring Get() const { return path.wstring(); }
    std::wstring File(const std::wstring& strName) const { return (path / strName).wstring(); }
    /// Makes a file with that content and gives its path.
    std::wstring MakeFile(const std::wstring& strName, const std::string& strContent) const {
        std::ofstream(path / strName, std::ios::binary) << strContent;
        return File(strName);
    }
    /// The content of a file; empty if there is none.
    std::string ReadFile(const std::wstring& strName) const {
        std::ifstream in(path / strName, std::ios::binary);
        return {std::istreambuf_iterator<char>(in), {}};
    }

  private:
    std::filesystem::path path;
};
