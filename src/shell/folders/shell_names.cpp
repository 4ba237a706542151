#include "shell/folders/shell_names.h"
#include "files/path/path_chars.h"
#include "runtime/base/heap_array.h"
#include "runtime/text/str_find.h"
#include "shell/folders/shell_folder.h"
#include "shell/namespace/pidl.h"

#include <shlobj.h>

namespace {
wchar_t szComputer[MAX_PATH];

/// The folder becomes that of the list less its last item, whose name goes to pszOut.
void GetLastName(iShellFolder& folder, const ITEMIDLIST* pidl, wchar_t* pszOut, unsigned cchOut) {
    PIDL parent(pidl);
    parent.RemoveLast();
    folder.BindToAbs(parent);
    folder.GetDisplayNameOf(PIDL::GetLast(pidl), SHGDN_INFOLDER, pszOut, cchOut);
}

void GetDesktopName(const ITEMIDLIST* pidl, wchar_t* pszOut, unsigned cchOut) {
    iShellFolder(nullptr, nullptr).GetDisplayNameOf(pidl, SHGDN_NORMAL, pszOut, cchOut);
}

/// The path of the nearest folder above that is in the file system, and the names from there on.
/// pszOut has room for any path if bFull.
void GetPathFromParents(const ITEMIDLIST* pidl, wchar_t* pszOut, unsigned cchOut, int bFull) {
    HeapArray<wchar_t> tail(cchOut), longer(cchOut);
    if (!tail.IsReady() || !longer.IsReady()) return;
    iShellFolder folder;
    for (PIDL rest(pidl); !rest.IsEmpty();) {
        wchar_t szName[MAX_PATH];
        GetLastName(folder, rest, szName, MAX_PATH);
        rest.RemoveLast();
        CopyTextCut(longer.Get(), cchOut, szName);
        if (tail[0]) AppendTextCut(longer.Get(), cchOut, L"/");
        AppendTextCut(longer.Get(), cchOut, tail.Get());
        std::swap(tail, longer);
        if (!folder.IsInFileSystem()) continue;
        wchar_t szPath[MAX_PATH];
        GetPathOf(rest, szPath, MAX_PATH, 0, 0);
        CopyTextCut(pszOut, bFull ? MAX_PATH : cchOut, szPath);
        AppendTextCut(pszOut, cchOut, L"/");
        AppendTextCut(pszOut, cchOut, tail.Get());
        return;
    }
}
} // namespace

int GetShellNameOf(const ITEMIDLIST* pidl, wchar_t* pszOut, unsigned cchOut, int bFull) {
    if (!CopyTextCut(pszOut, cchOut, L"")) return 0;
    if (PIDL::IsEmpty(pidl)) {
        PIDL desktop;
        desktop.Make();
        GetDesktopName(desktop, pszOut, cchOut);
        return *pszOut != 0;
    }
    if (bFull) {
        GetPathOf(pidl, pszOut, cchOut, 0, 0);
        if (StrStartsWith(pszOut, L"::", 0)) GetDesktopName(pidl, pszOut, cchOut);
    } else {
        iShellFolder folder;
        GetLastName(folder, pidl, pszOut, cchOut);
    }
    if (!*pszOut) GetPathFromParents(pidl, pszOut, cchOut, bFull);
    return *pszOut != 0;
}

int GetShellPathOf(const wchar_t* pszPath, wchar_t* pszOut, unsigned cchOut, int bFull) {
    PIDL list;
    list.Attach(GetPidlOf(pszPath)); // before the output is emptied, which the path may lie in
    if (!CopyTextCut(pszOut, cchOut, L"") || !list) return 0;
    return GetShellNameOf(list, pszOut, cchOut, bFull);
}

const wchar_t* GetComputerFolderName(wchar_t* pszOut, unsigned cchOut) {
    PIDL computer;
    if (!*szComputer && computer.Attach(CSIDL_DRIVES))
        GetShellNameOf(computer, szComputer, MAX_PATH, 0);
    CopyTextCut(pszOut, cchOut, szComputer);
    return szComputer;
}
