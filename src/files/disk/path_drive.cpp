#include "files/disk/path_drive.h"
#include "files/path/path_chars.h"
#include "files/path/path_split.h"
#include "runtime/system/runtime_func.h"

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
