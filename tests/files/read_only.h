#pragma once
#include "support/temp_folder.h"
#include <windows.h>
#include <filesystem>
#include <fstream>
#include <string>

// Files that cannot be written, and disks without room. Two disks are made for the tests by
// scripts/desktop_env.sh, for a user who may mount them.

/// Makes a file read-only for its lifetime.
class ReadOnlyFile {
  public:
    explicit ReadOnlyFile(const std::wstring& strFile) : strPath(strFile) {
        ::SetFileAttributesW(strPath.c_str(), FILE_ATTRIBUTE_READONLY);
    }
    ReadOnlyFile(const ReadOnlyFile&) = delete;
    ReadOnlyFile& operator=(const ReadOnlyFile&) = delete;
    ~ReadOnlyFile() { ::SetFileAttributesW(strPath.c_str(), FILE_ATTRIBUTE_NORMAL); }

    /// The platform refuses to open it for writing. Wine leaves that to the file system, which
    /// lets its administrator write.
    bool IsProtected() const {
        HANDLE h =
            ::CreateFileW(strPath.c_str(), GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, 0, nullptr);
        if (h != INVALID_HANDLE_VALUE) ::CloseHandle(h);
        return h == INVALID_HANDLE_VALUE;
    }

  private:
    std::wstring strPath;
};

/// The root of a disk made for the tests, by the variable that tells of it; empty if there is none.
inline std::wstring MadeDisk(const wchar_t* pszVariable) {
    wchar_t sz[MAX_PATH] = {};
    DWORD cch = ::GetEnvironmentVariableW(pszVariable, sz, MAX_PATH);
    return cch && cch < MAX_PATH ? sz : L"";
}

/// A file with "old" in it that cannot be written: read-only by its attribute, in the test's
/// folder; for an administrator whom that does not stop, on the read-only disk.
class ProtectedFile {
  public:
    explicit ProtectedFile(const TempFolder& folder, const wchar_t* pszName = L"protected")
        : strPath(folder.MakeFile(pszName, "old")), file(strPath) {
        if (file.IsProtected()) return;
        std::wstring strDisk = MadeDisk(L"TESSALY_READ_ONLY_DISK");
        strPath = strDisk.empty() ? L"" : strDisk + L"\\file";
    }
    bool IsThere() const { return !strPath.empty(); }
    const std::wstring& Path() const { return strPath; }
    std::string Content() const {
        std::ifstream in(std::filesystem::path(strPath), std::ios::binary);
        return {std::istreambuf_iterator<char>(in), {}};
    }

  private:
    std::wstring strPath;
    ReadOnlyFile file;
};

#define SKIP_UNLESS_PROTECTED(file)                                                                \
    if (!(file).IsThere())                                                                         \
    GTEST_SKIP() << "this user writes read-only files and can mount no read-only disk"

/// A file of the system that even its administrator may not write: on the read-only disk, or what
/// the system has of its own. Empty if this machine has none.
inline std::wstring UnwritableFile() {
    std::wstring strDisk = MadeDisk(L"TESSALY_READ_ONLY_DISK");
    if (!strDisk.empty()) return strDisk + L"\\file";
    std::wstring strPath = L"Z:\\sys\\devices\\system\\cpu\\online";
    HANDLE h = ::CreateFileW(strPath.c_str(), GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, 0, nullptr);
    bool bRefused = h == INVALID_HANDLE_VALUE && ::GetLastError() == ERROR_ACCESS_DENIED;
    if (h != INVALID_HANDLE_VALUE) ::CloseHandle(h);
    return bRefused ? strPath : L"";
}

/// The small disk, full but for some bytes; empty again at the end. Files made before Fill, and
/// empty ones afterwards, can be there besides.
class SmallDisk {
  public:
    static constexpr DWORD kSize = 256 * 1024;
    static constexpr DWORD kCluster = 4096; // what a file takes up is rounded up to this

    SmallDisk() : strRoot(MadeDisk(L"TESSALY_SMALL_DISK")) { Clear(); }
    SmallDisk(const SmallDisk&) = delete;
    SmallDisk& operator=(const SmallDisk&) = delete;
    ~SmallDisk() { Clear(); }

    bool IsThere() const { return !strRoot.empty(); }
    std::wstring File(const wchar_t* pszName) const { return strRoot + L"\\" + pszName; }
    /// Makes a file with that content and gives its path.
    std::wstring MakeFile(const wchar_t* pszName, const std::string& strContent) const {
        std::ofstream(std::filesystem::path(File(pszName)), std::ios::binary) << strContent;
        return File(pszName);
    }
    std::string ReadFile(const wchar_t* pszName) const {
        std::ifstream in(std::filesystem::path(File(pszName)), std::ios::binary);
        return {std::istreambuf_iterator<char>(in), {}};
    }
    /// Takes up all that is free but for nClustersLeft. False if the disk is none of a small size.
    bool Fill(DWORD nClustersLeft = 0) const {
        ULARGE_INTEGER cbFree{};
        if (!::GetDiskFreeSpaceExW(strRoot.c_str(), &cbFree, nullptr, nullptr)) return false;
        if (cbFree.QuadPart > kSize || cbFree.QuadPart < nClustersLeft * kCluster) return false;
        MakeFile(
            L"filling",
            std::string(static_cast<std::size_t>(cbFree.QuadPart) - nClustersLeft * kCluster, 'f'));
        return ::GetDiskFreeSpaceExW(strRoot.c_str(), &cbFree, nullptr, nullptr) &&
               cbFree.QuadPart == nClustersLeft * kCluster;
    }

  private:
    void Clear() const {
        if (!IsThere()) return;
        std::error_code ignored;
        for (const auto& entry : std::filesystem::directory_iterator(strRoot, ignored))
            std::filesystem::remove_all(entry.path(), ignored);
    }
    std::wstring strRoot;
};

#define SKIP_WITHOUT_SMALL_DISK(disk)                                                              \
    if (!(disk).IsThere()) GTEST_SKIP() << "this user can mount no small disk"

/// A file on which every write finds the disk full. Empty if this machine has none.
inline std::wstring FullDiskFile() {
    std::wstring strPath = L"Z:\\dev\\full";
    HANDLE h = ::CreateFileW(strPath.c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr,
                             OPEN_EXISTING, 0, nullptr);
    if (h == INVALID_HANDLE_VALUE) return L"";
    DWORD cbDone = 0;
    bool bFull = !::WriteFile(h, "x", 1, &cbDone, nullptr) && ::GetLastError() == ERROR_DISK_FULL;
    ::CloseHandle(h);
    return bFull ? strPath : L"";
}
