#include "files/path/path_chars.h"
#include "files/path/path_split.h"
#include "runtime/text/str_find.h"
#include "shell/folders/shell_icons.h"
#include "shell/folders/shell_names.h"
#include "shell/folders/shortcuts.h"
#include "shell/folders/special_folders.h"
#include "shell/namespace/pidl.h"

#include <shlobj.h>

// The part of shell_names.h that stands on shortcuts and special folders, which stand on its names.

namespace {
constexpr const wchar_t* kZipExt = L".zip";
} // namespace

int GetPathOf(const ITEMIDLIST* pidl, wchar_t* pszOut, unsigned cchOut, int bDesktopForEmpty,
              int bResolveNet) {
    if (!CopyTextCut(pszOut, cchOut, L"")) return 0;
    PIDL desktop;
    if (PIDL::IsEmpty(pidl)) {
        if (!bDesktopForEmpty || !desktop.Attach(CSIDL_DESKTOPDIRECTORY)) return 0;
        pidl = desktop;
    }
    if (!::SHGetPathFromIDListW(pidl, pszOut)) *pszOut = 0;
    if (bResolveNet && *pszOut && (GetAttributesOf(pidl) & SFGAO_LINK) &&
        GetNetHoodSubFolder(pszOut))
        ResolveShortcut(nullptr, pszOut, 1);
    return *pszOut != 0;
}

// Zip files

int IsZipFolder(const ITEMIDLIST* pidl) {
    wchar_t szPath[MAX_PATH];
    return GetPathOf(pidl, szPath, MAX_PATH, 1, 0) && StrIsSame(LocateFileExt(szPath), kZipExt, 1);
}

ITEMIDLIST* GetParentZipFolder(const ITEMIDLIST* pidl) {
    PIDL list(pidl);
    wchar_t szPath[MAX_PATH] = L"";
    while (!list.IsEmpty() && !::SHGetPathFromIDListW(list, szPath)) list.RemoveLast();
    if (list.IsEmpty() || !StrIsSame(LocateFileExt(szPath), kZipExt, 1)) return nullptr;
    ITEMIDLIST* pidlZip = list;
    list.Detach();
    return pidlZip;
}
