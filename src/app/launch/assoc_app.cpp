#include "app/launch/assoc_app.h"
#include "files/path/path_env.h"
#include "files/disk/path_fs.h"
#include "files/path/path_split.h"
#include "runtime/text/text_format.h"
#include "store/registry/reg_key.h"

#include <shellapi.h>
#include <cwchar>

namespace {
constexpr int kTypeSize = 512 / sizeof(wchar_t); // of a type's name, with the terminator
constexpr int kKeySize = kTypeSize + 64;         // of a key's path that holds such a name
constexpr int kFirstIcon = 0;
constexpr int kProgramIcons[] = {1, 0}; // in the order they are tried

/// The unnamed value of a key. 0 if it is missing, empty or does not fit.
int ReadUnnamed(const wchar_t* pszFormat, const wchar_t* pszName, wchar_t* pszBuffer,
                int cchBuffer) {
    wchar_t szKey[kKeySize];
    FormatText(szKey, kKeySize, pszFormat, pszName);
    RegKey key;
    return key.Open(szKey, 0) && key.GetStr(nullptr, pszBuffer, cchBuffer, nullptr) > 0;
}

/// Leaves the first word of a command, up to the closing quote or the first blank.
void CutToProgram(wchar_t* pszCommand) {
    int bQuoted = *pszCommand == L'"';
    if (bQuoted) std::wmemmove(pszCommand, pszCommand + 1, std::wcslen(pszCommand));
    pszCommand[std::wcscspn(pszCommand, bQuoted ? L"\"" : L" ")] = 0;
}

/// The program of a type or a scheme, which have their command in the same place.
int FindProgram(const wchar_t* pszType, wchar_t* pszProgram, wchar_t* pszCommand) {
    wchar_t szCommand[MAX_PATH], szPath[MAX_PATH];
    if (!ReadUnnamed(L"HKCLS\\%s\\shell\\open\\command", pszType, szCommand, MAX_PATH)) return 0;
    if (pszCommand) std::wcscpy(pszCommand, szCommand);
    CutToProgram(szCommand);
    if (!ExpandEnvStrings(szCommand, szPath, MAX_PATH) || !FileExists(szPath)) return 0;
    if (pszProgram) std::wcscpy(pszProgram, szPath);
    return 1;
}

void Empty(wchar_t* pszProgram, wchar_t* pszCommand) {
    if (pszProgram) *pszProgram = 0;
    if (pszCommand) *pszCommand = 0;
}

/// The small icon of that index in a file; null if it has none.
HICON ExtractSmallIcon(const wchar_t* pszPath, int nIcon) {
    HICON hIcon = nullptr;
    UINT nCount = ::ExtractIconExW(pszPath, nIcon, nullptr, &hIcon, 1);
    return nCount == 1 ? hIcon : nullptr;
}

/// The icon of the program for a path's extension. szProgram and nIcon say which.
HICON ExtractProgramIcon(const wchar_t* pszPath, wchar_t (&szProgram)[MAX_PATH], int& nIcon) {
    const wchar_t* pszExtension = FindDotExt(pszPath);
    // A dot in a folder's name begins no extension, and a key's path goes on at a backslash.
    if (!pszExtension || FindLastSeparator(pszExtension)) return nullptr;
    if (!GetAssociatedApp(pszExtension, szProgram, nullptr)) return nullptr;
    for (int n : kProgramIcons) {
        nIcon = n;
        if (HICON hIcon = ExtractSmallIcon(szProgram, n)) return hIcon;
    }
    return nullptr;
}
} // namespace

int GetAssociatedApp(const wchar_t* pszExtension, wchar_t* pszProgram, wchar_t* pszCommand) {
    Empty(pszProgram, pszCommand);
    wchar_t szType[kTypeSize];
    if (!pszExtension || !*pszExtension) return 0;
    return ReadUnnamed(L"HKCLS\\%s", pszExtension, szType, kTypeSize) &&
           FindProgram(szType, pszProgram, pszCommand);
}

int GetProtocolApp(const wchar_t* pszScheme, wchar_t* pszProgram, wchar_t* pszCommand) {
    Empty(pszProgram, pszCommand);
    if (!pszScheme || !*pszScheme) return 0;
    return FindProgram(pszScheme, pszProgram, pszCommand);
}

int GetAssociatedIcon(const wchar_t* pszPath, wchar_t* pszIconFile, int* pnIcon, HICON* phIcon) {
    if (!pszPath || std::wcslen(pszPath) >= MAX_PATH) return 0;
    wchar_t szProgram[MAX_PATH];
    const wchar_t* pszFound = pszPath;
    int nIcon = kFirstIcon;
    HICON hIcon = ExtractSmallIcon(pszPath, nIcon);
    if (!hIcon) {
        pszFound = szProgram;
        hIcon = ExtractProgramIcon(pszPath, szProgram, nIcon);
    }
    if (!hIcon) return 0;
    if (pszIconFile) std::wcscpy(pszIconFile, pszFound);
    if (pnIcon) *pnIcon = nIcon;
    if (phIcon)
        *phIcon = hIcon;
    else
        ::DestroyIcon(hIcon);
    return 1;
}
