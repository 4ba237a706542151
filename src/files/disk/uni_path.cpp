#include "files/disk/uni_path.h"
#include "files/disk/path_fs.h"
#include "files/path/path_chars.h"
#include "files/path/path_split.h"
#include "files/stream/core_file.h"
#include "runtime/text/str_chars.h"

#include <windows.h>
#include <shlobj.h>
#include <new>

// Declared with the streams (stream/core_io.h), which know of a UniPath no more than its name.
CoreIO::CoreIO(UniPath* pPath, int bToWrite)
    : pInner(CoreFile::CreateObject(pPath ? pPath->Path() : nullptr, bToWrite)) {}

UniPath::~UniPath() { Free(); }

void UniPath::Init() {
    if (nKind == 0) pszText = nullptr;
}

int UniPath::Open(const wchar_t* pszPath) {
    if (nKind != 0) return 0;
    // Bare, as copies of the object share it: a HeapArray would end it with the first of them.
    wchar_t* pszNew = pszPath ? new (std::nothrow) wchar_t[kPathChars] : nullptr;
    if (pszNew) CopyPath(pszNew, pszPath); // before the old text goes, of which it may be a part
    Free();
    pszText = pszNew;
    return pszNew != nullptr;
}

int UniPath::Open(UniPath* pOther) { return Open(pOther ? pOther->Path() : nullptr); }

void UniPath::Free() {
    if (nKind != 0) return;
    delete[] pszText;
    pszText = nullptr;
}

int UniPath::GetFileName(wchar_t* pszOut, unsigned cchOut) const {
    CopyTextCut(pszOut, cchOut, LocateFileName(Path()));
    return Path() != nullptr;
}

int UniPath::GetDisplayPath(wchar_t* pszOut, unsigned cchOut) const {
    CopyTextCut(pszOut, cchOut, Path());
    return Path() != nullptr;
}

int UniPath::IsContainer() const { return ::FolderExists(Path()); }

int UniPath::FileExists() const { return ::FileExists(Path()); }

int UniPath::IsFileInUse() const { return ::IsFileInUse(Path()); }

int UniPath::IsReadOnly() const {
    if (!Path()) return 0;
    DWORD dwAttributes = ::GetFileAttributesW(Path());
    return dwAttributes != INVALID_FILE_ATTRIBUTES && (dwAttributes & FILE_ATTRIBUTE_READONLY);
}

int UniPath::IsSameAs(const UniPath* pOther) const {
    if (!pOther || !Path() || !pOther->Path()) return 0;
    const wchar_t *p1 = Path(), *p2 = pOther->Path();
    while (*p1 && (*p1 == *p2 || CharToUpper(*p1) == CharToUpper(*p2))) {
        ++p1;
        ++p2;
    }
    return !*p1 && !*p2;
}

void UniPath::SHChangeNotify(long nEvent) const {
    if (Path()) ::SHChangeNotify(nEvent, SHCNF_PATHW, Path(), nullptr);
}

int UniPath::MakeParentFolder() {
    if (!Path()) return 0;
    StripFileNameAndBackslash(pszText);
    return 1;
}
