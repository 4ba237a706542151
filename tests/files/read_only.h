#pragma once
#include <windows.h>
#include <string>

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

#define SKIP_UNLESS_PROTECTED(file)                                                                \
    if (!(file).IsProtected()) GTEST_SKIP() << "read-only files can be written by this user"

/// A file of the system that even its administrator may not write. Empty if this machine has none.
inline std::wstring UnwritableFile() {
    std::wstring strPath = L"Z:\\sys\\devices\\system\\cpu\\online";
    HANDLE h = ::CreateFileW(strPath.c_str(), GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, 0, nullptr);
    bool bRefused = h == INVALID_HANDLE_VALUE && ::GetLastError() == ERROR_ACCESS_DENIED;
    if (h != INVALID_HANDLE_VALUE) ::CloseHandle(h);
    return bRefused ? strPath : L"";
}

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
