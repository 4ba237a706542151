#pragma once
#include <windows.h>
#include <cstddef>
#include <cstring>
#include <string>

// Modules that are made here, byte by byte: with a version in their resources, and without.

inline VS_FIXEDFILEINFO InfoOfVersion(unsigned __int64 nVersion) {
    VS_FIXEDFILEINFO info{};
    info.dwSignature = 0xFEEF04BD;
    info.dwStrucVersion = 0x10000;
    info.dwFileVersionMS = static_cast<DWORD>(nVersion >> 32);
    info.dwFileVersionLS = static_cast<DWORD>(nVersion);
    info.dwProductVersionMS = 0x00990098; // another one
    info.dwFileFlagsMask = 0x3F;
    info.dwFileOS = VOS_NT_WINDOWS32;
    info.dwFileType = VFT_DLL;
    info.dwFileDateLS = 0x12345678;
    return info;
}

/// A module of one section, of resources if pInfo is there and empty otherwise.
inline std::string MakeModule(const VS_FIXEDFILEINFO* pInfo) {
    constexpr DWORD kAddress = 0x1000, kFileAlign = 0x200;
#pragma pack(push, 1)
    struct Level {
        IMAGE_RESOURCE_DIRECTORY directory;
        DWORD dwName, dwOffset;
    };
    struct Resources {
        Level type, name, language;
        IMAGE_RESOURCE_DATA_ENTRY data;
        WORD cb, cbValue, wType;
        wchar_t szKey[17]; // and what brings the value to a multiple of four bytes
        VS_FIXEDFILEINFO info;
    } resources{};
#pragma pack(pop)
    constexpr DWORD kSubfolder = 0x80000000;
    resources.type.directory.NumberOfIdEntries = 1;
    resources.type.dwName = 16; // RT_VERSION
    resources.type.dwOffset = kSubfolder | offsetof(Resources, name);
    resources.name.directory.NumberOfIdEntries = 1;
    resources.name.dwName = VS_VERSION_INFO;
    resources.name.dwOffset = kSubfolder | offsetof(Resources, language);
    resources.language.directory.NumberOfIdEntries = 1;
    resources.language.dwName = 0x409;
    resources.language.dwOffset = offsetof(Resources, data);
    constexpr DWORD kBlock = sizeof(Resources) - offsetof(Resources, cb);
    resources.data.OffsetToData = kAddress + offsetof(Resources, cb);
    resources.data.Size = kBlock;
    resources.cb = kBlock;
    resources.cbValue = sizeof(VS_FIXEDFILEINFO);
    std::memcpy(resources.szKey, L"VS_VERSION_INFO", sizeof(L"VS_VERSION_INFO"));
    if (pInfo) resources.info = *pInfo;

    IMAGE_DOS_HEADER dos{};
    dos.e_magic = IMAGE_DOS_SIGNATURE;
    dos.e_lfanew = sizeof(dos);
    IMAGE_NT_HEADERS64 nt{};
    nt.Signature = IMAGE_NT_SIGNATURE;
    nt.FileHeader.Machine = IMAGE_FILE_MACHINE_AMD64;
    nt.FileHeader.NumberOfSections = 1;
    nt.FileHeader.SizeOfOptionalHeader = sizeof(nt.OptionalHeader);
    nt.FileHeader.Characteristics =
        IMAGE_FILE_EXECUTABLE_IMAGE | IMAGE_FILE_LARGE_ADDRESS_AWARE | IMAGE_FILE_DLL;
    nt.OptionalHeader.Magic = IMAGE_NT_OPTIONAL_HDR64_MAGIC;
    nt.OptionalHeader.ImageBase = 0x180000000;
    nt.OptionalHeader.SectionAlignment = kAddress;
    nt.OptionalHeader.FileAlignment = kFileAlign;
    nt.OptionalHeader.MajorOperatingSystemVersion = 5;
    nt.OptionalHeader.MajorSubsystemVersion = 5;
    nt.OptionalHeader.SizeOfImage = 2 * kAddress;
    nt.OptionalHeader.SizeOfHeaders = kFileAlign;
    nt.OptionalHeader.Subsystem = IMAGE_SUBSYSTEM_WINDOWS_GUI;
    nt.OptionalHeader.NumberOfRvaAndSizes = IMAGE_NUMBEROF_DIRECTORY_ENTRIES;
    if (pInfo) {
        nt.OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_RESOURCE] = {kAddress,
                                                                           sizeof(resources)};
    }
    IMAGE_SECTION_HEADER section{};
    std::memcpy(section.Name, pInfo ? ".rsrc" : ".data", 5);
    section.Misc.VirtualSize = sizeof(resources);
    section.VirtualAddress = kAddress;
    section.SizeOfRawData = kFileAlign;
    section.PointerToRawData = kFileAlign;
    section.Characteristics = IMAGE_SCN_CNT_INITIALIZED_DATA | IMAGE_SCN_MEM_READ;

    std::string bytes;
    bytes.append(reinterpret_cast<const char*>(&dos), sizeof(dos));
    bytes.append(reinterpret_cast<const char*>(&nt), sizeof(nt));
    bytes.append(reinterpret_cast<const char*>(&section), sizeof(section));
    bytes.resize(kFileAlign);
    if (pInfo) bytes.append(reinterpret_cast<const char*>(&resources), sizeof(resources));
    bytes.resize(2 * kFileAlign);
    return bytes;
}

inline std::string ModuleOfInfo(const VS_FIXEDFILEINFO& info) { return MakeModule(&info); }
inline std::string ModuleOfVersion(unsigned __int64 nVersion) {
    const VS_FIXEDFILEINFO info = InfoOfVersion(nVersion);
    return MakeModule(&info);
}
inline std::string ModuleWithoutVersion() { return MakeModule(nullptr); }
