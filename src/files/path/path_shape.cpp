#include "files/path/path_shape.h"
#include "files/path/path_chars.h"
#include "runtime/system/dll_loader.h"
#include "runtime/text/str_chars.h"
#include "runtime/text/str_find.h"

#include <atomic>
#include <cwchar>

namespace {
constexpr wchar_t kInvalidFileNameChars[] = L"\\ / : * ? \" < > |";
constexpr wchar_t kInvalidFolderNameChars[] = L": * ? \" < > |";
constexpr AsciiSet kInvalidInFileName(kInvalidFileNameChars);
constexpr AsciiSet kInvalidInFolderName(kInvalidFolderNameChars);
constexpr AsciiSet kMaskChars(L"*?");
constexpr AsciiSet kSeparators(L"\\/");
constexpr std::ptrdiff_t kMaxAltName = 8;
constexpr std::size_t kMaxAltExt = 4; // with its "."

bool HoldsSeparator(const wchar_t* psz) { return kSeparators.AnyIn(psz); }

bool HoldsSeparatorPair(const wchar_t* psz) {
    for (; *psz; ++psz) {
        if (IsPathSeparator(psz[0]) && IsPathSeparator(psz[1])) return true;
    }
    return false;
}

/// Whether the platform shows FTP folders. Kept: the answer does not change while the system runs,
/// and asking loads a library.
bool HasFtpLibrary() {
    constexpr int kNotAsked = -1;
    static constinit std::atomic<int> nHas{kNotAsked}; // asked twice by two threads at worst
    if (nHas == kNotAsked) nHas = GetVerDll(L"msieftp.dll") != 0;
    return nHas != 0;
}

/// All separators are the same here, and case does not count.
bool IsSameChar(wchar_t ch1, wchar_t ch2) {
    return ch1 == ch2 || (IsPathSeparator(ch1) && IsPathSeparator(ch2)) ||
           CharToUpper(ch1) == CharToUpper(ch2);
}

/// What of a text counts as a path, without a separator at its end.
std::size_t LengthOfPath(const wchar_t* psz) {
    return LengthWithoutSeparator(psz, LengthUpTo(psz, kPathChars - 1));
}
} // namespace

int IsFullPathName(const wchar_t* pszPath) {
    return pszPath && (IsPathSeparator(*pszPath) || IsDosFolder(pszPath));
}

int IsPath(const wchar_t* pszPath) {
    if (!pszPath || !*pszPath) return 0;
    return pszPath[1] == L':' || HoldsSeparator(pszPath);
}

int IsMask(const wchar_t* pszPath) { return pszPath && kMaskChars.AnyIn(pszPath); }

int IsDrivePath(const wchar_t* pszPath) {
    if (!pszPath || !StartsWithDrive(pszPath)) return 0;
    return !pszPath[2] || (pszPath[2] == L'\\' && !pszPath[3]);
}

int IsDosFolder(const wchar_t* pszPath) { return pszPath && StartsWithDriveRoot(pszPath); }

int IsRootFolder(const wchar_t* pszPath, int bUnc) {
    if (!pszPath) return 0;
    if (IsDosFolder(pszPath)) return !pszPath[3];
    if (!bUnc || !IsPathSeparator(pszPath[0]) || !IsPathSeparator(pszPath[1])) return 0;
    return pszPath[2] && !HoldsSeparator(pszPath + 2);
}

int IsNetworkPath(const wchar_t* pszPath) { return pszPath && StartsWithServer(pszPath); }

int IsNetworkComputer(const wchar_t* pszPath) {
    return IsNetworkPath(pszPath) && !HoldsSeparator(pszPath + 2);
}

int IsNetworkShare(const wchar_t* pszPath) {
    if (!IsNetworkPath(pszPath)) return 0;
    const wchar_t* p = EndOfName(pszPath + 2);
    return p > pszPath + 2 && *p && p[1] && !HoldsSeparator(p + 1);
}

int IsSubFolderOf(const wchar_t* pszPath, const wchar_t* pszFolder, int bOrSame) {
    if (!pszPath || !*pszPath || !pszFolder || !*pszFolder) return 0;
    for (; *pszFolder && *pszPath; ++pszFolder, ++pszPath) {
        if (!IsSameChar(*pszPath, *pszFolder)) return 0;
    }
    if (*pszFolder) return bOrSame && IsPathSeparator(*pszFolder) && !pszFolder[1];
    if (!*pszPath) return bOrSame;
    if (IsPathSeparator(pszFolder[-1])) return 1; // the loop made at least one step
    if (!IsPathSeparator(*pszPath)) return 0;
    return bOrSame || pszPath[1];
}

int IsSamePath(const wchar_t* pszPath1, const wchar_t* pszPath2) {
    std::size_t cch = LengthOfPath(pszPath1);
    if (LengthOfPath(pszPath2) != cch) return 0;
    for (std::size_t i = 0; i < cch; ++i) {
        if (!IsSameChar(pszPath1[i], pszPath2[i])) return 0;
    }
    return 1;
}

int IsFileInFolder(const wchar_t* pszFile, const wchar_t* pszFolder) {
    if (!pszFile || !pszFolder || !*pszFolder) return 0;
    std::size_t cch = std::wcslen(pszFolder);
    if (std::wcsncmp(pszFile, pszFolder, cch) != 0 || !IsPathSeparator(pszFile[cch])) return 0;
    return !HoldsSeparator(pszFile + cch + 1);
}

int IsValidFileName(const wchar_t* pszName) {
    return pszName && *pszName && !kInvalidInFileName.AnyIn(pszName);
}

int IsValidAltFileName(const wchar_t* pszName) {
    if (!IsValidFileName(pszName)) return 0;
    // Nothing in a valid name makes a path of it, so that the last "." is that of its extension.
    const wchar_t* pDot = std::wcsrchr(pszName, L'.');
    if (!pDot) pDot = pszName + std::wcslen(pszName);
    return pDot - pszName <= kMaxAltName && std::wcslen(pDot) <= kMaxAltExt;
}

int IsValidFolderName(const wchar_t* pszPath) {
    if (!pszPath) return 0;
    if (!StartsWithDrive(pszPath) && std::wcsncmp(pszPath, L"\\\\", 2) != 0) return 0;
    return !HoldsSeparatorPair(pszPath + 2) && !kInvalidInFolderName.AnyIn(pszPath + 2);
}

int IsWipedName(const wchar_t* pszName) {
    if (!pszName) return 1;
    while (*pszName == kFirstWipedChar || *pszName == kLastWipedChar) ++pszName;
    return !*pszName;
}

const wchar_t* GetInvalidFileNameChars() { return kInvalidFileNameChars; }

const wchar_t* GetInvalidFolderNameChars() { return kInvalidFolderNameChars; }

int IsFtpFolder(const wchar_t* pszPath) {
    // The text first: most paths need no answer of the platform.
    return (!pszPath || StrStartsWith(pszPath, L"ftp://", 1)) && HasFtpLibrary();
}

int IsFileSysUNC(const wchar_t* pszName) { return !pszName || !std::wcsstr(pszName, L"FAT"); }
