#pragma once
#include "support/replace_import.h"
#include "support/runtime_lookup.h"

#include <windows.h>
#include <winnetwk.h>
#include <cstring>
#include <map>
#include <string>
#include <vector>

extern "C" FARPROC __imp_GetDriveTypeW, __imp_GetLogicalDrives, __imp_GetVolumeInformationW,
    __imp_QueryDosDeviceW;

/// The drives and network connections of another machine for the length of a block: what the
/// product asks the platform about them is answered from here. One at a time.
class FakeDrives {
  public:
    struct Connection {
        const wchar_t* pszLocal; // null: a connection without a drive
        const wchar_t* pszRemote;
    };

    /// Without a network the functions of mpr.dll are not there.
    explicit FakeDrives(bool bNetwork = true)
        : network({{"WNetOpenEnumW", bNetwork ? Give(OpenEnum) : nullptr},
                   {"WNetEnumResourceW", bNetwork ? Give(EnumResource) : nullptr},
                   {"WNetCloseEnum", bNetwork ? Give(CloseEnum) : nullptr}}) {
        pCurrent = this;
    }
    ~FakeDrives() { pCurrent = nullptr; }
    FakeDrives(const FakeDrives&) = delete;
    FakeDrives& operator=(const FakeDrives&) = delete;

    std::map<wchar_t, UINT> types;           // DRIVE_... by letter; also what is there at all
    std::map<wchar_t, std::wstring> devices; // names of devices by letter
    std::map<std::wstring, DWORD> volumes;   // flags by root
    std::wstring strFileSystem = L"NTFS";    // of all volumes
    std::vector<Connection> connections;     // in the order of the list
    std::size_t nPerPiece = 1000;            // how many of them one call gives
    DWORD nOpenResult = NO_ERROR;            // of WNetOpenEnumW
    DWORD nEnumResult = NO_ERROR;            // of WNetEnumResourceW, if it is an error
    bool bSaysMoreForEver = false;           // it never has enough room
    std::vector<DWORD> sizes;                // the sizes that it was offered
    std::vector<DWORD> counts;               // and the counts
    std::vector<DWORD> openArguments;        // of WNetOpenEnumW
    int nOpen = 0;                           // enumerations not closed

    /// A drive that is connected, as the platform shows it everywhere.
    void Connect(const wchar_t* pszLocal, const wchar_t* pszRemote) {
        types[pszLocal[0]] = DRIVE_REMOTE;
        connections.push_back({pszLocal, pszRemote});
    }

  private:
    static inline FakeDrives* pCurrent = nullptr;

    template <class Fn>
    static FARPROC Give(Fn* pfn) {
        return reinterpret_cast<FARPROC>(reinterpret_cast<void*>(pfn));
    }

    static UINT WINAPI DriveType(LPCWSTR pszRoot) {
        auto it = pCurrent->types.find(*pszRoot);
        bool bRoot = std::wcslen(pszRoot) == 3 && std::wcscmp(pszRoot + 1, L":\\") == 0;
        return !bRoot || it == pCurrent->types.end() ? DRIVE_NO_ROOT_DIR : it->second;
    }
    static DWORD WINAPI LogicalDrives() {
        DWORD dwMask = 0;
        for (auto& [ch, nType] : pCurrent->types) dwMask |= DWORD{1} << (ch - L'A');
        return dwMask;
    }
    static DWORD WINAPI QueryDevice(LPCWSTR pszDrive, LPWSTR pszOut, DWORD cch) {
        auto it = pCurrent->devices.find(*pszDrive);
        if (it == pCurrent->devices.end() || std::wcslen(pszDrive) != 2) return 0;
        if (it->second.size() + 2 > cch) return 0;
        std::wcscpy(pszOut, it->second.c_str());
        pszOut[it->second.size() + 1] = 0; // a list
        return static_cast<DWORD>(it->second.size() + 2);
    }
    static BOOL WINAPI VolumeInformation(LPCWSTR pszRoot, LPWSTR, DWORD, LPDWORD, LPDWORD,
                                         LPDWORD pdwFlags, LPWSTR pszName, DWORD cchName) {
        auto it = pCurrent->volumes.find(pszRoot);
        if (it == pCurrent->volumes.end()) return FALSE;
        if (pdwFlags) *pdwFlags = it->second;
        if (pszName && pCurrent->strFileSystem.size() >= cchName) return FALSE;
        if (pszName) std::wcscpy(pszName, pCurrent->strFileSystem.c_str());
        return TRUE;
    }

    static DWORD WINAPI OpenEnum(DWORD nScope, DWORD nType, DWORD nUsage, LPNETRESOURCEW pWhere,
                                 LPHANDLE phEnum) {
        pCurrent->openArguments = {nScope, nType, nUsage, pWhere ? DWORD{1} : DWORD{0}};
        if (pCurrent->nOpenResult != NO_ERROR) return pCurrent->nOpenResult;
        *phEnum = reinterpret_cast<HANDLE>(new std::size_t(0));
        ++pCurrent->nOpen;
        return NO_ERROR;
    }
    static DWORD WINAPI CloseEnum(HANDLE hEnum) {
        delete reinterpret_cast<std::size_t*>(hEnum);
        --pCurrent->nOpen;
        return NO_ERROR;
    }
    static std::size_t SizeOf(const wchar_t* psz) {
        return psz ? (std::wcslen(psz) + 1) * sizeof(wchar_t) : 0;
    }
    /// As the platform does: the entries at the block's start, their texts at its end.
    static DWORD WINAPI EnumResource(HANDLE hEnum, LPDWORD pnCount, LPVOID pBlock, LPDWORD pcb) {
        FakeDrives& drives = *pCurrent;
        auto& nNext = *reinterpret_cast<std::size_t*>(hEnum);
        drives.sizes.push_back(*pcb);
        drives.counts.push_back(*pnCount);
        if (drives.nEnumResult != NO_ERROR) return drives.nEnumResult;
        std::size_t nEnd = std::min(nNext + drives.nPerPiece, drives.connections.size());
        if (nNext == nEnd) return ERROR_NO_MORE_ITEMS;
        std::size_t cbNeeded = 0;
        for (std::size_t i = nNext; i < nEnd; ++i) {
            const Connection& c = drives.connections[i];
            cbNeeded += sizeof(NETRESOURCEW) + SizeOf(c.pszLocal) + SizeOf(c.pszRemote);
        }
        if (cbNeeded > *pcb || drives.bSaysMoreForEver) {
            *pcb = static_cast<DWORD>(drives.bSaysMoreForEver ? *pcb * 2 : cbNeeded);
            return ERROR_MORE_DATA;
        }
        auto* pEntry = static_cast<NETRESOURCEW*>(pBlock);
        char* pEnd = static_cast<char*>(pBlock) + *pcb / sizeof(wchar_t) * sizeof(wchar_t);
        auto put = [&](const wchar_t* psz) -> wchar_t* {
            if (!psz) return nullptr;
            pEnd -= SizeOf(psz);
            std::memcpy(pEnd, psz, SizeOf(psz));
            return reinterpret_cast<wchar_t*>(pEnd);
        };
        *pnCount = static_cast<DWORD>(nEnd - nNext);
        for (; nNext < nEnd; ++nNext, ++pEntry) {
            *pEntry = {};
            pEntry->lpLocalName = put(drives.connections[nNext].pszLocal);
            pEntry->lpRemoteName = put(drives.connections[nNext].pszRemote);
        }
        return NO_ERROR;
    }

    ReplaceFunctions network;
    ReplaceImport driveType{__imp_GetDriveTypeW, &DriveType};
    ReplaceImport logicalDrives{__imp_GetLogicalDrives, &LogicalDrives};
    ReplaceImport queryDevice{__imp_QueryDosDeviceW, &QueryDevice};
    ReplaceImport volumeInformation{__imp_GetVolumeInformationW, &VolumeInformation};
};
