#pragma once
#include <windows.h>
#include <filesystem>
#include <fstream>
#include <string>

/// The platform's short name of a file or folder; empty if it has none.
inline std::wstring AltNameOf(const std::wstring& strPath) {
    WIN32_FIND_DATAW data{};
    HANDLE h = ::FindFirstFileW(strPath.c_str(), &data);
    if (h != INVALID_HANDLE_VALUE) ::FindClose(h);
    return data.cAlternateFileName;
}

/// Makes folders below one until the path has that many characters, and gives that path.
inline std::wstring MakeFolderOfLength(const std::wstring& strBelow, std::size_t cch) {
    std::wstring str = strBelow;
    while (str.size() < cch) {
        std::size_t cchLeft = cch - str.size() - 1; // behind a separator
        // No level may be left with no character to its name.
        std::size_t cchName = cchLeft <= 40 ? cchLeft : 30;
        str += L"\\" + std::wstring(cchName, L'd');
    }
    std::filesystem::create_directories(str);
    return str;
}

/// A file whose path has 259 characters, and longer ways to write it.
class LongestFile {
  public:
    explicit LongestFile(const std::wstring& strBelow) {
        strFolder = MakeFolderOfLength(strBelow, 200);
        strName = std::wstring(259 - strFolder.size() - 1, L'f');
        std::ofstream(std::filesystem::path(Path(0)), std::ios::binary) << "abc";
    }
    /// The path, longer by that many separators.
    std::wstring Path(std::size_t cchMore) const {
        return strFolder + std::wstring(cchMore + 1, L'\\') + strName;
    }

  private:
    std::wstring strFolder, strName;
};
