#include "files/disk/path_drive.h"
#include "files/path/path_chars.h"
#include "files/path/path_name.h"
#include "files/path/path_shape.h"
#include "files/path/path_split.h"
#include "runtime/base/heap_array.h"
#include "runtime/system/runtime_func.h"
#include "runtime/text/str_chars.h"
#include "runtime/text/str_find.h"

#include <windows.h>
#include <winnetwk.h>
#include <cwchar>
#include <iterator>
#include <utility>

namespace {
constexpr unsigned __int64 kMaxFileSizeNtfs = 0xFFFFFFF0000;
constexpr unsigned __int64 kMaxFileSizeFat = 0xFFFFFFFF;
constexpr int kMaskBits = 32;
constexpr DWORD kUnknownMask = 0xFFFFFFFF;

/// "X:\" of a drive's number from 0 to 25; its first two characters are the drive's name.
struct DriveRoot {
    explicit DriveRoot(int nDrive) { sz[0] = LetterOfDrive(nDrive); }
    static constexpr std::size_t kNameLength = 2;
    wchar_t sz[4] = L"_:\\";
};

/// Asks about the volume with that path; each pointer may be null. False if it is not known.
bool AskVolume(const wchar_t* pszPath, DWORD* pdwFlags, wchar_t* pszName, DWORD cchName) {
    wchar_t szRoot[kPathChars];
    return GetRootPath(szRoot, pszPath) &&
           ::GetVolumeInformationW(szRoot, nullptr, 0, nullptr, nullptr, pdwFlags, pszName,
                                   cchName);
}

// Connections to the network

constexpr std::size_t kFirstListSize = 2400;      // bytes
constexpr std::size_t kMaxListSize = 1024 * 1024; // no list of connections is as long
constexpr int kMaxPieces = 1000;                  // nor does one come in as many
constexpr DWORD kAllEntries = 0xFFFFFFFF;
constexpr wchar_t kUncDevice[] = L"\\??\\UNC";
constexpr std::size_t kUncDeviceLength = std::size(kUncDevice) - 1;
/// Room for a connection's name and all that a path can take behind it.
constexpr std::size_t kUncChars = 2 * kPathChars;

// Every Windows has these, but in a library of their own that maps the network providers. Found by
// name when a connection is first asked for, so that processes which never ask, as the shell with
// the agent in it, do not get that library with this one.
constinit RuntimeFunc<decltype(::WNetOpenEnumW)> fnOpenEnum(L"mpr.dll", "WNetOpenEnumW");
constinit RuntimeFunc<decltype(::WNetEnumResourceW)> fnEnumResource(L"mpr.dll",
                                                                    "WNetEnumResourceW");
constinit RuntimeFunc<decltype(::WNetCloseEnum)> fnCloseEnum(L"mpr.dll", "WNetCloseEnum");

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
    }

    bool IsOpen() const { return bOpen; }
    /// The name of the connection of that drive; null if the list does not show one. It lives as
    /// long as this object, up to the next call.
    const wchar_t* FindRemoteName(wchar_t chDrive) {
        for (int nPiece = 0; nPiece < kMaxPieces; ++nPiece) {
            DWORD nCount = ReadPiece();
            if (nCount == 0) break;
            for (DWORD i = 0; i < nCount; ++i) {
                const NETRESOURCEW& entry = block.Get()[i];
                if (entry.lpLocalName && entry.lpRemoteName &&
                    CharToUpper(*entry.lpLocalName) == chDrive) {
                    return entry.lpRemoteName;
                }
            }
        }
        return nullptr;
    }

  private:
    /// Makes room for that many bytes. False without memory, and where the platform asks for no
    /// more than it has, or for too much: it would never be content.
    bool Grow(std::size_t cbWanted) {
        if (block.IsReady() && (cbWanted <= block.GetByteCount() || cbWanted > kMaxListSize)) {
            return false;
        }
        block =
            HeapArray<NETRESOURCEW>((cbWanted + sizeof(NETRESOURCEW) - 1) / sizeof(NETRESOURCEW));
        return block.IsReady();
    }
    /// Reads the next entries, as many as fit, and at least one. 0 at the end or on failure.
    DWORD ReadPiece() {
        if (!block.IsReady() && !Grow(kFirstListSize)) return 0;
        for (;;) {
            DWORD nCount = kAllEntries, cb = static_cast<DWORD>(block.GetByteCount());
            DWORD nResult = fnEnumResource.Get()(hEnum, &nCount, block.Get(), &cb);
            if (nResult == NO_ERROR) return nCount <= block.GetCount() ? nCount : 0;
            if (nResult != ERROR_MORE_DATA || !Grow(cb)) return 0;
        }
    }

    HANDLE hEnum = nullptr;
    bool bOpen = false;
    HeapArray<NETRESOURCEW> block; // entries at its start, the texts that they name at its end
};

/// What the name of the drive's device tells of a connection; null if it is no such device.
const wchar_t* FindInDeviceName(const wchar_t* pszDevice, const wchar_t* pszDrive) {
    if (StrStartsWith(pszDevice, kUncDevice, 1)) return pszDevice + kUncDeviceLength;
    const wchar_t* p = std::wcsstr(pszDevice, pszDrive);
    if (!p || p == pszDevice || p[-1] != L';' || p[2] != L'0') return nullptr;
    return p + 3;
}

/// Puts the network's name of the drive into a path buffer: the list's, or else the device's. False
/// if it has none, or if there is no list.
bool GetConnection(wchar_t* pszOut, wchar_t chDrive) {
    ConnectionList connections;
    if (!connections.IsOpen()) return false;
    if (const wchar_t* pszRemote = connections.FindRemoteName(chDrive)) {
        CopyPath(pszOut, pszRemote);
        return true;
    }
    const wchar_t szDrive[] = {chDrive, L':', 0};
    wchar_t szDevice[kPathChars] = L"";
    if (!::QueryDosDeviceW(szDrive, szDevice, kPathChars)) return false;
    szDevice[kPathChars - 1] = 0;
    const wchar_t* pszServer = FindInDeviceName(szDevice, szDrive);
    if (!pszServer) return false;
    CopyPath(pszOut, L"\\"); // the device's name has one before the server, a path has two
    AppendPath(pszOut, pszServer);
    return true;
}

/// Puts the network form, in the case that it has, into a path buffer. pszPath is another text.
bool MakeUniversalName(wchar_t* pszOut, const wchar_t* pszPath) {
    *pszOut = 0;
    if (IsNetworkPath(pszPath)) {
        CopyPath(pszOut, pszPath);
        return true;
    }
    if (!pszPath || !StartsWithDrive(pszPath)) return false;
    if (!GetConnection(pszOut, CharToUpper(*pszPath))) return false;
    AppendPath(pszOut, pszPath + DriveRoot::kNameLength);
    return true;
}
} // namespace

// Drives and the volumes on them

UINT GetDriveTypeW(int nDrive) {
    if (nDrive < 0 || nDrive >= kDrives) return DRIVE_NO_ROOT_DIR;
    return ::GetDriveTypeW(DriveRoot(nDrive).sz);
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
    *pszOut = 0; // a part of a name would be another file system
    return 0;
}

unsigned __int64 GetMaxFileSize(const wchar_t* pszPath) {
    DWORD dwFlags = 0;
    if (!AskVolume(pszPath, &dwFlags, nullptr, 0)) return 0;
    return dwFlags & FILE_PERSISTENT_ACLS ? kMaxFileSizeNtfs : kMaxFileSizeFat;
}

// Drives as numbers and as masks

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
    std::size_t cch = 0, cchSeparator = LengthOf(pszSeparator);
    int nListed = 0;
    *pszOut = 0;
    for (int i = 0; i < kDrives; ++i) {
        if (!(dwMask & GetDriveMask(i))) continue;
        std::size_t cchBefore = nListed ? cchSeparator : 0;
        if (cch + cchBefore + DriveRoot::kNameLength >= cchOut) break;
        cch += CopyTextPart(pszOut + cch, pszSeparator, cchBefore);
        cch += CopyTextPart(pszOut + cch, DriveRoot(i).sz, DriveRoot::kNameLength);
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

// The network's names

int GetUniversalName(wchar_t* pszOut, unsigned cchOut, const wchar_t* pszPath, int bUpper) {
    if (!pszOut || cchOut == 0) return 0;
    wchar_t szName[kPathChars];
    bool bFound = MakeUniversalName(szName, pszPath);
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
    DWORD dwDrives = ::GetLogicalDrives();
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
    GetUniversalName(pszOut, kPathChars, DriveRoot(nDrive).sz, 1);
    RemoveBackSlash(pszOut);
    return *pszOut != 0;
}

int DosPathFromUncPath(wchar_t* pszOut, const wchar_t* pszUnc) {
    if (!pszOut) return 0;
    wchar_t szUnc[kUncChars] = L""; // a copy: the output may be the path
    if (IsNetworkPath(pszUnc)) CopyTextCut(szUnc, kUncChars, pszUnc);
    *pszOut = 0;
    DWORD dwMask = *szUnc ? GetNetworkDrivesMask() : 0;
    for (int i = 0; i < kDrives; ++i) {
        wchar_t szDrive[kPathChars];
        if (!(dwMask & GetDriveMask(i)) || !GetNetworkDrivePath(i, szDrive)) continue;
        if (!IsSubFolderOf(szUnc, szDrive, 1)) continue;
        const wchar_t* pszRest = szUnc + std::wcslen(szDrive);
        if (IsPathSeparator(*pszRest)) ++pszRest;
        CopyPath(pszOut, DriveRoot(i).sz);
        AppendPath(pszOut, pszRest);
        return 1;
    }
    return 0;
}
