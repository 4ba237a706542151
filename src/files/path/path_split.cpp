#include "files/path/path_split.h"
#include "files/path/path_chars.h"
#include "files/path/path_name.h"
#include "files/path/path_shape.h"

#include <algorithm>
#include <cwchar>

// The finders come for texts that may be changed and for others: one template each, of which the
// public pairs are instances.

namespace {
/// Behind the last character that is a break, else the start; null for null.
template <class Char, class IsBreak>
Char* BehindLast(Char* pszPath, IsBreak&& isBreak) {
    if (!pszPath) return nullptr;
    Char* pFound = pszPath;
    for (Char* p = pszPath; *p; ++p) {
        if (isBreak(*p)) pFound = p + 1;
    }
    return pFound;
}

template <class Char>
Char* NameOf(Char* pszPath) {
    return BehindLast(pszPath, IsPathBreak);
}

template <class Char>
Char* LastDot(Char* pszText) {
    Char* pFound = nullptr;
    for (Char* p = pszText; p && *p; ++p) {
        if (*p == L'.') pFound = p;
    }
    return pFound;
}

template <class Char>
Char* LastSeparator(Char* pszPath) {
    Char* p = BehindLast(pszPath, IsPathSeparator);
    return p > pszPath ? p - 1 : nullptr;
}

template <class Char>
Char* NameOrNull(Char* pszPath) {
    Char* p = BehindLast(pszPath, IsPathSeparator);
    return p && *p ? p : nullptr;
}

/// The separator goes, unless it makes a drive's root.
void CutAtSeparator(const wchar_t* pszPath, wchar_t* pSeparator) {
    if (pSeparator > pszPath && pSeparator[-1] == L':') ++pSeparator;
    *pSeparator = 0;
}

/// The end of "\\server"; null if the path does not start like that.
const wchar_t* EndOfServer(const wchar_t* pszPath) {
    if (!IsPathSeparator(pszPath[0]) || !IsPathSeparator(pszPath[1])) return nullptr;
    const wchar_t* pEnd = EndOfName(pszPath + 2);
    return pEnd > pszPath + 2 ? pEnd : nullptr;
}

/// The end of "\\server\share"; null if the path does not start like that.
const wchar_t* EndOfShare(const wchar_t* pszPath) {
    const wchar_t* pServer = EndOfServer(pszPath);
    if (!pServer || !*pServer) return nullptr;
    const wchar_t* pEnd = EndOfName(pServer + 1);
    return pEnd > pServer + 1 ? pEnd : nullptr;
}

/// Writes the path up to pEnd as the root, with backslashes and the text pszTail behind it. False,
/// with an empty text, where there is no root or where it does not fit.
bool PutRoot(wchar_t* pszOut, const wchar_t* pszPath, const wchar_t* pEnd, const wchar_t* pszTail) {
    if (!pszOut) return false;
    auto cch = pEnd ? static_cast<std::size_t>(pEnd - pszPath) : 0;
    if (cch == 0 || cch + std::wcslen(pszTail) >= kPathChars) {
        *pszOut = 0;
        return false;
    }
    CopyTextPart(pszOut, pszPath, cch);
    ConvertSlashes(pszOut);
    CopyTextPart(pszOut + cch, pszTail, kPathChars - 1 - cch);
    return true;
}
} // namespace

const wchar_t* LocateFileName(const wchar_t* pszPath) { return NameOf(pszPath); }
wchar_t* LocateFileName(wchar_t* pszPath) { return NameOf(pszPath); }
const wchar_t* LocateFileExt(const wchar_t* pszPath) { return LastDot(NameOf(pszPath)); }
wchar_t* LocateFileExt(wchar_t* pszPath) { return LastDot(NameOf(pszPath)); }
const wchar_t* FindNameExt(const wchar_t* pszPath) { return NameOrNull(pszPath); }
wchar_t* FindNameExt(wchar_t* pszPath) { return NameOrNull(pszPath); }
const wchar_t* FindDotExt(const wchar_t* pszPath) { return LastDot(pszPath); }
wchar_t* FindDotExt(wchar_t* pszPath) { return LastDot(pszPath); }
const wchar_t* FindLastSeparator(const wchar_t* pszPath) { return LastSeparator(pszPath); }
wchar_t* FindLastSeparator(wchar_t* pszPath) { return LastSeparator(pszPath); }

wchar_t* FindLastPathComponent(wchar_t* pszPath) {
    StripBackSlash(pszPath);
    return NameOf(pszPath);
}

void StripFileName(wchar_t* pszPath) {
    if (pszPath) *NameOf(pszPath) = 0;
}

void StripFileNameAndBackslash(wchar_t* pszPath) {
    if (!pszPath) return;
    wchar_t* pName = NameOf(pszPath);
    if (pName > pszPath && IsPathSeparator(pName[-1])) {
        CutAtSeparator(pszPath, pName - 1);
    } else {
        *pName = 0;
    }
}

void StripFileExt(wchar_t* pszPath) {
    wchar_t* pDot = LocateFileExt(pszPath);
    if (pDot) *pDot = 0;
}

void DirFromPath(wchar_t* pszOut, const wchar_t* pszPath) {
    CopyPath(pszOut, pszPath);
    StripFileName(pszOut);
    RemoveBackSlash(pszOut);
}

void GetParentFolder(wchar_t* pszOut, const wchar_t* pszPath) {
    CopyPath(pszOut, pszPath);
    wchar_t* pSeparator = LastSeparator(pszOut);
    if (pSeparator) CutAtSeparator(pszOut, pSeparator);
}

int ParsePath(wchar_t* pszFolder, wchar_t* pszName, wchar_t* pszExt, const wchar_t* pszPath) {
    if (!pszPath) pszPath = L"";
    const wchar_t* pName = BehindLast(pszPath, IsPathSeparator);
    const wchar_t* pDot = FindDotExt(pszPath);
    auto cchFolder = static_cast<std::size_t>(pName - pszPath); // with the separator
    // The folder comes last: it may be the path.
    if (pszExt) CopyPath(pszExt, pDot);
    if (pszName) {
        std::size_t cch = kPathChars - 1;
        // The last "." may be a folder's: then the name has none.
        if (pszExt && pDot && pDot >= pName && pDot < pName + cch) {
            cch = static_cast<std::size_t>(pDot - pName);
        }
        CopyTextPart(pszName, pName, cch);
    }
    if (pszFolder) {
        CopyTextPart(pszFolder, pszPath, std::min(cchFolder, kPathChars - 1));
        if (cchFolder && cchFolder < kPathChars && !IsRootFolder(pszFolder, 1)) {
            pszFolder[cchFolder - 1] = 0;
        }
    }
    return 1;
}

int GetRootPath(wchar_t* pszOut, const wchar_t* pszPath) {
    if (!pszPath) pszPath = L"";
    if (StartsWithDriveRoot(pszPath)) return PutRoot(pszOut, pszPath, pszPath + 2, L"\\");
    return PutRoot(pszOut, pszPath, EndOfShare(pszPath), L"\\");
}

int ExtractRootPath(wchar_t* pszOut, const wchar_t* pszPath) {
    if (!pszPath) pszPath = L"";
    if (StartsWithDriveRoot(pszPath)) return PutRoot(pszOut, pszPath, pszPath + 2, L"");
    return PutRoot(pszOut, pszPath, EndOfServer(pszPath), L"");
}
