#pragma once
#include "support/replace_import.h"
#include "support/temp_folder.h"

#include <windows.h>
#include <shlobj.h>
#include <cstring>
#include <filesystem>
#include <functional>
#include <string>
#include <utility>
#include <vector>

extern "C" FARPROC __imp_ReadFile, __imp_WriteFile, __imp_SetEndOfFile, __imp_SHChangeNotify;

/// A file that another handle keeps open for its lifetime, shared with nobody, or with those whom
/// nShare lets in.
class OpenElsewhere {
  public:
    explicit OpenElsewhere(const std::wstring& strPath, DWORD nShare = 0)
        : h(::CreateFileW(strPath.c_str(), GENERIC_READ | GENERIC_WRITE, nShare, nullptr,
                          OPEN_EXISTING, 0, nullptr)) {}
    ~OpenElsewhere() { ::CloseHandle(h); }
    OpenElsewhere(const OpenElsewhere&) = delete;
    OpenElsewhere& operator=(const OpenElsewhere&) = delete;
    bool IsOpen() const { return h != INVALID_HANDLE_VALUE; }

  private:
    HANDLE h;
};

inline bool IsThere(const std::wstring& strPath) {
    return ::GetFileAttributesW(strPath.c_str()) != INVALID_FILE_ATTRIBUTES;
}

/// The time of the last write to a file, which is what the platform here keeps exactly; 0 without
/// the file.
inline unsigned __int64 WriteTime(const std::wstring& strPath) {
    WIN32_FILE_ATTRIBUTE_DATA data{};
    if (!::GetFileAttributesExW(strPath.c_str(), GetFileExInfoStandard, &data)) return 0;
    ULARGE_INTEGER n;
    n.LowPart = data.ftLastWriteTime.dwLowDateTime;
    n.HighPart = data.ftLastWriteTime.dwHighDateTime;
    return n.QuadPart;
}

constexpr unsigned __int64 kOldTime = 0x01C0000012345678, kOlderTime = 0x01BF000087654321;

inline void SetWriteTime(const std::wstring& strPath, unsigned __int64 nTime) {
    FILETIME ft{static_cast<DWORD>(nTime), static_cast<DWORD>(nTime >> 32)};
    HANDLE h = ::CreateFileW(strPath.c_str(), FILE_WRITE_ATTRIBUTES, 7, nullptr, OPEN_EXISTING,
                             FILE_FLAG_BACKUP_SEMANTICS, nullptr);
    ::SetFileTime(h, &ft, &ft, &ft);
    ::CloseHandle(h);
}

/// Bytes that are the same each time and repeat nowhere near a chunk's length.
inline std::string MadeBytes(std::size_t cb) {
    std::string str(cb, 0);
    unsigned n = 4711;
    for (char& ch : str) ch = static_cast<char>((n = n * 1664525 + 1013904223) >> 24);
    return str;
}

/// What the program's reads and writes meet for the length of a block. All of them go through here,
/// counted from 0; one at a time.
class BrokenDisk {
  public:
    BrokenDisk() { pCurrent = this; }
    ~BrokenDisk() { pCurrent = nullptr; }
    BrokenDisk(const BrokenDisk&) = delete;
    BrokenDisk& operator=(const BrokenDisk&) = delete;

    int nFailRead = -1, nShortRead = -1;   // the read that fails, or gives half of what was asked
    int nFailWrite = -1, nShortWrite = -1; // the write that fails, or takes half
    bool bCannotCut = false;               // SetEndOfFile fails
    std::function<void()> beforeRead;      // called with each
    std::vector<DWORD> reads, writes;      // the sizes asked for
    int nCuts = 0;

  private:
    static inline BrokenDisk* pCurrent = nullptr;
    static BOOL WINAPI Read(HANDLE h, LPVOID p, DWORD cb, LPDWORD pcb, LPOVERLAPPED pOver) {
        BrokenDisk& disk = *pCurrent;
        int n = static_cast<int>(disk.reads.size());
        disk.reads.push_back(cb);
        if (disk.beforeRead) disk.beforeRead();
        if (n == disk.nFailRead) {
            if (pcb) *pcb = 0;
            ::SetLastError(ERROR_CRC);
            return FALSE;
        }
        return disk.read.Original<decltype(::ReadFile)>()(h, p, n == disk.nShortRead ? cb / 2 : cb,
                                                          pcb, pOver);
    }
    static BOOL WINAPI Write(HANDLE h, LPCVOID p, DWORD cb, LPDWORD pcb, LPOVERLAPPED pOver) {
        BrokenDisk& disk = *pCurrent;
        int n = static_cast<int>(disk.writes.size());
        disk.writes.push_back(cb);
        if (n == disk.nFailWrite) {
            if (pcb) *pcb = 0;
            ::SetLastError(ERROR_DISK_FULL);
            return FALSE;
        }
        return disk.write.Original<decltype(::WriteFile)>()(
            h, p, n == disk.nShortWrite ? cb / 2 : cb, pcb, pOver);
    }
    static BOOL WINAPI Cut(HANDLE h) {
        BrokenDisk& disk = *pCurrent;
        ++disk.nCuts;
        if (!disk.bCannotCut) return disk.cut.Original<decltype(::SetEndOfFile)>()(h);
        ::SetLastError(ERROR_USER_MAPPED_FILE);
        return FALSE;
    }
    ReplaceImport read{__imp_ReadFile, &Read};
    ReplaceImport write{__imp_WriteFile, &Write};
    ReplaceImport cut{__imp_SetEndOfFile, &Cut};
};

/// What the shell is told for the length of a block, by event and path. One at a time.
class ToldShell {
  public:
    using Event = std::pair<long, std::wstring>;
    ToldShell() { pCurrent = this; }
    ~ToldShell() { pCurrent = nullptr; }
    ToldShell(const ToldShell&) = delete;
    ToldShell& operator=(const ToldShell&) = delete;
    std::vector<Event> events;

  private:
    static inline ToldShell* pCurrent = nullptr;
    static void WINAPI Note(LONG nEvent, UINT uFlags, LPCVOID pItem, LPCVOID) {
        bool bPath = (uFlags & SHCNF_TYPE) == SHCNF_PATHW && pItem;
        pCurrent->events.emplace_back(nEvent,
                                      bPath ? static_cast<const wchar_t*>(pItem) : L"no path");
    }
    ReplaceImport replaced{__imp_SHChangeNotify, &Note};
};

/// Paths or names as a list: each terminated, with a terminator behind the last.
inline std::wstring MakeList(const std::vector<std::wstring>& texts) {
    std::wstring str;
    for (const std::wstring& strText : texts) str += strText + L'\0';
    return str; // its own terminator is the list's
}
