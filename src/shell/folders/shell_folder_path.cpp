#include "files/path/path_chars.h"
#include "files/path/path_name.h"
#include "runtime/base/heap_array.h"
#include "shell/folders/shell_folder.h"
#include "shell/namespace/pidl.h"

#include <shlobj.h>

// The folder and the list of a path, component by component from the path's root on: the list so
// begins with the computer or the network, as the user goes there, and not with what the desktop
// makes of the whole path.

namespace {
constexpr std::ptrdiff_t kMaxRootChars = 2; // "C:", or the first "\" of "\\server"

/// The separator behind which the first component begins; the end for a root alone. Null if the
/// path begins with no root.
wchar_t* FindRootEnd(wchar_t* pszPath, wchar_t* pszEnd) {
    if (pszEnd - pszPath <= kMaxRootChars) return pszEnd;
    for (wchar_t* psz = pszPath + kMaxRootChars; psz >= pszPath; --psz)
        if (IsPathSeparator(*psz)) return psz;
    return nullptr;
}
} // namespace

iShellFolder::iShellFolder(const wchar_t* pszPath, PIDL& pidlOut) {
    pidlOut.Clear();
    HeapArray<wchar_t> path = CopyToHeap(pszPath);
    if (!path.IsReady() || !path[0]) return;
    ConvertSlashes(path.Get());
    if (BindToPath(path.Get(), path.end() - 1, pidlOut)) return;
    Detach();
    SetupAttributes(nullptr); // no trace of how far it came
    pidlOut.Clear();
}

int iShellFolder::BindToRoot(const wchar_t* pszPath, PIDL& pidlOut) {
    if (!pidlOut.Attach(IsPathSeparator(*pszPath) ? CSIDL_NETWORK : CSIDL_DRIVES)) return 0;
    return BindTo(nullptr) && BindTo(pidlOut);
}

int iShellFolder::BindToPath(wchar_t* pszPath, wchar_t* pszEnd, PIDL& pidlOut) {
    wchar_t* const pszRootEnd = FindRootEnd(pszPath, pszEnd);
    if (!pszRootEnd || !BindToRoot(pszPath, pidlOut)) return 0;
    for (wchar_t* pszCut = pszRootEnd; pszCut < pszEnd;) {
        const wchar_t* pszName = pszCut + 1;
        const bool bFirst = pszCut == pszRootEnd;
        pszCut = EndOfName(pszCut + 1);
        if (pszCut == pszName && !bFirst) continue; // a separator too many
        const wchar_t chCut = *pszCut;
        *pszCut = 0;
        // The root knows drives and servers by the path from its start, folders know the names in
        // them; those of some networks again want the path.
        PIDL item;
        if (!bFirst) item.Attach(ParseDisplayName(pszName, nullptr));
        if (!item) item.Attach(ParseDisplayName(pszPath, nullptr));
        *pszCut = chCut;
        if (!item || !BindTo(item)) return 0;
        pidlOut.AppendAll(item);
    }
    return 1;
}
