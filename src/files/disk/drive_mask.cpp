#include "files/disk/drive_mask.h"
#include "files/path/path_chars.h"

#include <cwchar>

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
