#include "files/disk/path_drive.h"
#include "files/path/path_chars.h"
#include "files/path/path_join.h"
#include "files/path/path_shape.h"
#include "files/path/path_split.h"
#include "runtime/system/runtime_func.h"
#include "runtime/text/str_chars.h"
#include "runtime/text/str_find.h"

#include <winnetwk.h>
#include <cwchar>
#include <new>

namespace {
constexpr unsigned __int64 kMaxFileSizeNtfs = 0xFFFFFFF0000;
constexpr unsigned __int64 kMaxFileSizeFat = 0xFFFFFFFF;

// Every Windows has these two; looked up so that a test can have the drives of another machine.
constinit RuntimeFunc<UINT WINAPI(LPCWSTR)> fnGetDriveType(L"kernel32.dll", "GetDriveTypeW");
constinit RuntimeFunc<decltype(::GetVolumeInformationW)>
    fnGetVolumeInformation(L"kernel32.dll", "GetVolumeInformationW");

/// Asks about the volume with that path; each pointer may be null. 0 if it is not known.
int AskVolume(const wchar_t* pszPath, DWORD* pdwFlags, wchar_t* pszName, DWORD cchName) {
    wchar_t szRoot[kPathChars];
    if (!GetRootPath(szRoot, pszPath) || !fnGetVolumeInformation.Get()) return 0;
    return fnGetVolumeInformation.Get()(szRoot, nullptr, 0, nullptr, nullptr, pdwFlags, pszName,
                                        cchName) != 0;
}
} // namespace

UINT GetDriveTypeW(int nDrive) {
    if (nDrive < 0 || nDrive >= kDrives || !fnGetDriveType.Get()) return DRIVE_NO_ROOT_DIR;
    wchar_t szRoot[] = L"_:\\";
    szRoot[0] = static_cast<wchar_t>(L'A' + nDrive);
    return fnGetDriveType.Get()(szRoot);
}

UINT GetDriveTypeFromPath(const wchar_t* pszPath) {
    int nDrive = pszPath ? DriveOfLetter(*pszPath) : -1;
    return nDrive < 0 ? DRIVE_UNKNOWN : ::GetDriveTypeW(nDrive);
}

int DriveExists(const wchar_t* pszPath) {
    UINT nType = GetDriveTypeFromPath(pszPath);
    return nType != DRIVE_UNKNOWN && nType != DRIVE_NO_ROOT_DIR;
}

int GetFileSysName(const wchar_t* pszPath, wchar_t* pszOut, unsigned cchOut) {
    if (!pszOut || cchOut == 0) return 0;
    *pszOut = 0;
    wchar_t szName[kPathChars] = L"";
    if (!AskVolume(pszPath, nullptr, szName, kPathChars)) return 0;
    if (CopyTextCut(pszOut, cchOut, szName) && *pszOut) return 1;
    *pszOut = 0;
    return 0;
}

unsigned __int64 GetMaxFileSize(const wchar_t* pszPath) {
    DWORD dwFlags = 0;
    if (!AskVolume(pszPath, &dwFlags, nullptr, 0)) return 0;
    return dwFlags & FILE_PERSISTENT_ACLS ? kMaxFileSizeNtfs : kMaxFileSizeFat;
}

namespace {
constexpr int kMaskBits = 32;
constexpr DWORD kUnknownMask = 0xFFFFFFFF;
} // namespace

DWORD GetDriveMask(int nDrive) {
    if (nDrive <= 0) return 1;
    return nDrive < kMaskBits ? DWORD{1} << nDrive : 0;
}

int GetDriveFromMask(DWORD dwMask, unsigned nIndex) {
    for (int i = 0; i < kMaskBits; ++i) {
        if ((dwMask & GetDriveMask(i)) && nIndex-- == 0) return i;
    }
    return -1;
}

// (std::popcount would call into the compiler's own library on these processors.)
int CountBits(DWORD dwMask) {
    int n = 0;
    for (; dwMask; dwMask >>= 1) n += dwMask & 1;
    return n;
}

int GetDrivesList(DWORD dwMask, wchar_t* pszOut, unsigned cchOut, const wchar_t* pszSeparator) {
    if (dwMask == kUnknownMask || !pszOut || cchOut == 0) return 0;
    wchar_t szDrive[] = L"_:";
    std::size_t cchSeparator = pszSeparator ? std::wcslen(pszSeparator) : 0;
    std::size_t cch = 0;
    int nListed = 0;
    *pszOut = 0;
    for (int i = 0; i < kDrives; ++i) {
        if (!(dwMask & GetDriveMask(i))) continue;
        std::size_t cchBefore = nListed ? cchSeparator : 0;
        if (cch + cchBefore + 2 >= cchOut) break;
        cch += CopyTextPart(pszOut + cch, pszSeparator, cchBefore);
        szDrive[0] = static_cast<wchar_t>(L'A' + i);
        cch += CopyTextPart(pszOut + cch, szDrive, 2);
        ++nListed;
    }
    return nListed;
}

int GetDriveFromPath(const wchar_t* pszPath) {
    if (!pszPath) return -1;
    if (*pszPath == L'a') return 0;
    return IsCapitalChar(*pszPath) ? *pszPath - L'A' : -1;
}

int GetSystemDrive() {
    wchar_t szWindows[kPathChars];
    UINT cch = ::GetWindowsDirectoryW(szWindows, kPathChars);
    return cch > 0 && cch < kPathChars ? DriveOfLetter(*szWindows) : -1;
}

namespace {
constexpr DWORD kFirstListSize = 2400;      // bytes
constexpr DWORD kMaxListSize = 1024 * 1024; // no list of connections is as long
constexpr int kMaxPieces = 1000;            // nor as many
constexpr wchar_t kUncDevice[] = L"\\??\\UNC";
constexpr std::size_t kUncDeviceLength = 7;
constexpr DWORD kAllEntries = 0xFFFFFFFF;
/// Room for a connection's name and all that a path can take behind it.
constexpr std::size_t kUncChars = 2 * kPathChars;

// Found when a connection is first asked for: few programs ever do.
constinit RuntimeFunc<decltype(::WNetOpenEnumW)> fnOpenEnum(L"mpr.dll", "WNetOpenEnumW");
constinit RuntimeFunc<decltype(::WNetEnumResourceW)> fnEnumResource(L"mpr.dll",
                                                                    "WNetEnumResourceW");
constinit RuntimeFunc<decltype(::WNetCloseEnum)> fnCloseEnum(L"mpr.dll", "WNetCloseEnum");
// Every Windows has these two; looked up so that a test can have the drives of another machine.
constinit RuntimeFunc<decltype(::GetLogicalDrives)> fnGetLogicalDrives(L"kernel32.dll",
                                                                       "GetLogicalDrives");
constinit RuntimeFunc<decltype(::QueryDosDeviceW)> fnQueryDosDevice(L"kernel32.dll",
                                                                    "QueryDosDeviceW");

/// The list of this user's connections to disks, read piece by piece into one block.
class ConnectionList {
  public:
    ConnectionList() {
        if (!fnOpenEnum.Get() || !fnEnumResource.Get() || !fnCloseEnum.Get()) return;
        bOpen =
            fnOpenEnum.Get()(RESOURCE_CONNECTED, RESOURCETYPE_DISK, 0, nullptr, &hEnum) == NO_ERROR;
    }
    ConnectionList(const ConnectionList&) = delete; // owns the enumeration
    ConnectionList& operator=(const ConnectionList&) = delete;
    ~ConnectionList() {
        if (bOpen) fnCloseEnum.Get()(hEnum);
        delete[] pBlock;
    }

    int IsOpen() const { return bOpen; }
    /// The name of the connection of that drive; null if the list does not show one. It lives as
    /// long as this object, up to the next call.
    const wchar_t* FindRemoteName(wchar_t chDrive) {
        for (int nPiece = 0; nPiece < kMaxPieces; ++nPiece) {
            DWORD nCount = ReadPiece();
            if (nCount == 0) break;
            const auto* pEntries = reinterpret_cast<const NETRESOURCEW*>(pBlock);
            for (DWORD i = 0; i < nCount; ++i) {
                const NETRESOURCEW& entry = pEntries[i];
                if (entry.lpLocalName && entry.lpRemoteName &&
                    CharToUpper(*entry.lpLocalName) == chDrive) {
                    return entry.lpRemoteName;
                }
            }
        }
        return nullptr;
    }

  private:
    int Grow(DWORD cbWanted) {
        if (pBlock && (cbWanted <= cb || cbWanted > kMaxListSize)) return 0;
        delete[] pBlock;
        pBlock = new (std::nothrow) BYTE[cbWanted];
        cb = pBlock ? cbWanted : 0;
        return pBlock != nullptr;
    }
    /// The next entries, as many as fit, and at least one. 0 at the end or on failure.
    DWORD ReadPiece() {
        if (!pBlock && !Grow(kFirstListSize)) return 0;
        for (;;) {
            DWORD nCount = kAllEntries, cbNeeded = cb;
            DWORD nResult = fnEnumResource.Get()(hEnum, &nCount, pBlock, &cbNeeded);
            if (nResult == NO_ERROR) return nCount <= cb / sizeof(NETRESOURCEW) ? nCount : 0;
            if (nResult != ERROR_MORE_DATA || !Grow(cbNeeded)) return 0;
        }
    }

    HANDLE hEnum = nullptr;
    int bOpen = 0;
    BYTE* pBlock = nullptr; // aligned as new aligns
    DWORD cb = 0;
};

/// What the name of the drive's device tells of a connection; null if it is no such device.
const wchar_t* FindInDeviceName(const wchar_t* pszDevice, const wchar_t* pszDrive) {
    if (StrStartsWith(pszDevice, kUncDevice, 1)) return pszDevice + kUncDeviceLength;
    const wchar_t* p = std::wcsstr(pszDevice, pszDrive);
    if (!p || p == pszDevice || p[-1] != L';' || p[2] != L'0') return nullptr;
    return p + 3;
}

/// The network's name of the drive, into a path buffer: the list's, or else the device's. 0 if it
/// has none, or if there is no list.
int GetConnection(wchar_t* pszOut, wchar_t chDrive) {
    ConnectionList connections;
    if (!connections.IsOpen()) return 0;
    if (const wchar_t* pszRemote = connections.FindRemoteName(chDrive)) {
        CopyPath(pszOut, pszRemote);
        return 1;
    }
    wchar_t szDrive[] = L"_:", szDevice[kPathChars] = L"";
    szDrive[0] = chDrive;
    if (!fnQueryDosDevice.Get() || !fnQueryDosDevice.Get()(szDrive, szDevice, kPathChars)) return 0;
    szDevice[kPathChars - 1] = 0;
    const wchar_t* pszServer = FindInDeviceName(szDevice, szDrive);
    if (!pszServer) return 0;
    CopyPath(pszOut, L"\\");
    AppendTextCut(pszOut, kPathChars, pszServer);
    return 1;
}

/// The network form without a change of case, into a path buffer. pszPath is another text.
int MakeUniversalName(wchar_t* pszOut, const wchar_t* pszPath) {
    *pszOut = 0;
    if (IsNetworkPath(pszPath)) {
        CopyPath(pszOut, pszPath);
        return 1;
    }
    if (!pszPath || !StartsWithDrive(pszPath)) return 0;
    if (!GetConnection(pszOut, CharToUpper(*pszPath))) return 0;
    AppendTextCut(pszOut, kPathChars, pszPath + 2);
    return 1;
}
} // namespace

int GetUniversalName(wchar_t* pszOut, unsigned cchOut, const wchar_t* pszPath, int bUpper) {
    if (!pszOut || cchOut == 0) return 0;
    wchar_t szName[kPathChars];
    int bFound = MakeUniversalName(szName, pszPath);
    if (bUpper) StrToUpper(szName);
    CopyTextCut(pszOut, cchOut, szName);
    return bFound;
}

void ConvertPathToUNC(wchar_t* pszPath) {
    wchar_t szName[kPathChars];
    GetUniversalName(szName, kPathChars, pszPath, 0);
    if (*szName) CopyPath(pszPath, szName);
}

DWORD GetNetworkDrivesMask() {
    DWORD dwMask = 0;
    DWORD dwDrives = fnGetLogicalDrives.Get() ? fnGetLogicalDrives.Get()() : 0;
    for (int i = 0; i < kDrives; ++i) {
        DWORD dwDrive = GetDriveMask(i);
        if ((dwDrives & dwDrive) && ::GetDriveTypeW(i) == DRIVE_REMOTE) dwMask |= dwDrive;
    }
    return dwMask;
}

int GetNetworkDrivePath(int nDrive, wchar_t* pszOut) {
    if (!pszOut) return 0;
    *pszOut = 0;
    if (nDrive < 0 || nDrive >= kDrives) return 0;
    wchar_t szRoot[] = L"_:\\";
    szRoot[0] = static_cast<wchar_t>(L'A' + nDrive);
    GetUniversalName(pszOut, kPathChars, szRoot, 1);
    RemoveBackSlash(pszOut);
    return *pszOut != 0;
}

int DosPathFromUncPath(wchar_t* pszOut, const wchar_t* pszUnc) {
    if (!pszOut) return 0;
    wchar_t szUnc[kUncChars] = L"";
    if (IsNetworkPath(pszUnc)) CopyTextCut(szUnc, kUncChars, pszUnc);
    *pszOut = 0;
    DWORD dwMask = *szUnc ? GetNetworkDrivesMask() : 0;
    for (int i = 0; i < kDrives; ++i) {
        wchar_t szDrive[kPathChars];
        if (!(dwMask & GetDriveMask(i)) || !GetNetworkDrivePath(i, szDrive)) continue;
        if (!IsSubFolderOf(szUnc, szDrive, 1)) continue;
        const wchar_t* pszRest = szUnc + std::wcslen(szDrive);
        if (IsPathSeparator(*pszRest)) ++pszRest;
        CopyPath(pszOut, L"_:\\");
        *pszOut = static_cast<wchar_t>(L'A' + i);
        AppendTextCut(pszOut, kPathChars, pszRest);
        return 1;
    }
    return 0;
}
