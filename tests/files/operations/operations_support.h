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

// Program files that hold nothing but a version.

constexpr DWORD kVersionSignature = 0xFEEF04BD; // winver.h: VS_FFI_SIGNATURE

inline VS_FIXEDFILEINFO MadeVersionInfo(unsigned __int64 nVersion,
                                        DWORD dwSignature = kVersionSignature) {
    VS_FIXEDFILEINFO info{};
    info.dwSignature = dwSignature;
    info.dwStrucVersion = 0x10000;
    info.dwFileVersionMS = static_cast<DWORD>(nVersion >> 32);
    info.dwFileVersionLS = static_cast<DWORD>(nVersion);
    info.dwProductVersionMS = 0x00090008;
    info.dwFileType = VFT_DLL;
    return info;
}

/// The bytes of a library whose one section is a version resource, with one byte of the caller's
/// behind it.
inline std::string MadeModule(const VS_FIXEDFILEINFO& info, char chLast = 0) {
    constexpr DWORD kHeaders = 0x400, kRva = 0x1000, kSection = 0x400;
    constexpr DWORD kDirectory = 0x10 + 8; // with one entry
    std::string str(kHeaders + kSection, 0);
    auto put = [&](std::size_t nAt, const auto& value) {
        std::memcpy(str.data() + nAt, &value, sizeof(value));
    };
    IMAGE_DOS_HEADER dos{};
    dos.e_magic = IMAGE_DOS_SIGNATURE;
    dos.e_lfanew = 0x40;
    put(0, dos);
    IMAGE_NT_HEADERS64 nt{};
    nt.Signature = IMAGE_NT_SIGNATURE;
    nt.FileHeader.Machine = IMAGE_FILE_MACHINE_AMD64;
    nt.FileHeader.NumberOfSections = 1;
    nt.FileHeader.SizeOfOptionalHeader = sizeof(nt.OptionalHeader);
    nt.FileHeader.Characteristics =
        IMAGE_FILE_EXECUTABLE_IMAGE | IMAGE_FILE_LARGE_ADDRESS_AWARE | IMAGE_FILE_DLL;
    nt.OptionalHeader.Magic = IMAGE_NT_OPTIONAL_HDR64_MAGIC;
    nt.OptionalHeader.ImageBase = 0x180000000;
    nt.OptionalHeader.SectionAlignment = 0x1000;
    nt.OptionalHeader.FileAlignment = 0x200;
    nt.OptionalHeader.MajorOperatingSystemVersion = 5;
    nt.OptionalHeader.MajorSubsystemVersion = 5;
    nt.OptionalHeader.MinorSubsystemVersion = 2;
    nt.OptionalHeader.SizeOfImage = 0x2000;
    nt.OptionalHeader.SizeOfHeaders = kHeaders;
    nt.OptionalHeader.Subsystem = IMAGE_SUBSYSTEM_WINDOWS_GUI;
    nt.OptionalHeader.NumberOfRvaAndSizes = IMAGE_NUMBEROF_DIRECTORY_ENTRIES;
    nt.OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_RESOURCE] = {kRva, kSection};
    put(0x40, nt);
    IMAGE_SECTION_HEADER section{};
    std::memcpy(section.Name, ".rsrc", 5);
    section.Misc.VirtualSize = kSection;
    section.VirtualAddress = kRva;
    section.SizeOfRawData = kSection;
    section.PointerToRawData = kHeaders;
    section.Characteristics = IMAGE_SCN_CNT_INITIALIZED_DATA | IMAGE_SCN_MEM_READ;
    put(0x40 + sizeof(nt), section);
    // Type, name and language, each a directory with one entry, and then the data's place.
    const DWORD ids[] = {16 /* RT_VERSION */, 1, 0x409};
    constexpr DWORD kEntry = 3 * kDirectory, kData = kEntry + 16;
    for (DWORD i = 0; i < 3; ++i) {
        DWORD nAt = kHeaders + i * kDirectory;
        put(nAt + 14, WORD{1}); // entries by number
        put(nAt + 16, ids[i]);
        put(nAt + 20, i < 2 ? (0x80000000 | (i + 1) * kDirectory) : kEntry);
    }
    struct VersionHead {
        WORD cb, cbValue, nType;
        wchar_t szKey[16];
        WORD nPadding;
        VS_FIXEDFILEINFO info;
    };
    static_assert(sizeof(VersionHead) == 40 + 52);
    VersionHead head{sizeof(VersionHead), sizeof(info), 0, L"VS_VERSION_INFO", 0, info};
    put(kHeaders + kEntry, DWORD{kRva + kData});
    put(kHeaders + kEntry + 4, DWORD{sizeof(head)});
    put(kHeaders + kData, head);
    str.back() = chLast;
    return str;
}
inline std::string MadeModule(unsigned __int64 nVersion, char chLast = 0) {
    return MadeModule(MadeVersionInfo(nVersion), chLast);
}
